#pragma once

class NodegraphScene;

/// Writes the lines that emptying the graph event by event writes, for one that goes as a whole: the log
/// tells of its events all the same. Changes nothing.
void logClearing(const NodegraphScene &graph);
