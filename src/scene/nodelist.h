#pragma once

#include <QSet>

#include <vector>

class Node;

/// Nodes in the order in which they were added. Owns none.
///
/// Those that are removed leave gaps, which are closed when somebody looks: thousands that go one after the
/// other would else move all that stand behind each of them.
class NodeList
{
public:
    const std::vector<Node *> &nodes() const;
    bool isEmpty() const { return nodes().empty(); }

    NodeList &operator=(const std::vector<Node *> &others);
    void add(Node *node);
    /// Nothing happens if it is not listed.
    void remove(const Node *node);
    void clear();

private:
    mutable std::vector<Node *> list; // with those that have been removed
    mutable QSet<const Node *> removed;
};
