#pragma once

#include "scene/nodeindexmap.h"
#include "scene/nodelist.h"

/// Every node of a scene: in which order they came, under which index each is found, and which index the next
/// one gets. Owns none of them. The scene enters each node that it makes and takes out each that goes.
class NodeRegister
{
public:
    /// In the order of their creation.
    const std::vector<Node *> &nodes() const { return list.nodes(); }
    bool contains(const Node *node) const { return byIndex.contains(node); }
    /// The oldest node with that index, null if there is none.
    Node *find(int index) const { return byIndex.first(index); }

    /// Enters it under the index that it has.
    void add(Node *node);
    /// Nothing happens if it was not entered.
    void remove(Node *node);
    /// Files the node under another index, which it is about to get.
    void reindex(Node *node, int index) { byIndex.reindex(node, index); }

    /// The index of the next node that the user adds: how many there have been, also those that went.
    int nextIndex() const { return count; }
    /// The same, given away: the next node gets another one.
    int takeNextIndex() { return count++; }
    /// The wanted index if no other node has it, else the first free one from the next index on.
    int freeIndex(int wanted, const Node *node) const { return byIndex.freeIndex(wanted, node, count); }
    /// Counts from 0 again.
    void restart() { count = 0; }

private:
    NodeList list;
    NodeIndexMap byIndex;
    int count = 0;
};
