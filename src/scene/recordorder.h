#pragma once

#include <cstddef>
#include <vector>

/// The order in which records with these indices must stand in a file so that each is read into its own node.
///
/// The reader gives the node of the record at place k the provisional index 2k and then looks it up by that
/// number. A record whose own index is 2k must therefore not stand before place k, or the record at place k
/// would be read over it. Returns positions in `indices`: the given order where that reads back whole, else
/// the nearest one that does. There always is one if no index occurs twice; nothing is dropped otherwise.
std::vector<std::size_t> recordOrder(const std::vector<int> &indices);
