#pragma once

#include <QHash>

#include <map>
#include <utility>

class Node;

/// Finds a scene's nodes by their index without walking the list. Owns nothing.
///
/// Damaged files can hold several nodes with one index; the one that was inserted first is then the match, as
/// it would be in a walk from the start of the scene's list.
class NodeIndexMap
{
public:
    void insert(Node *node, int index);
    /// Files the node under another index; it keeps its age. Unknown nodes are ignored.
    void reindex(Node *node, int index);
    void remove(Node *node);
    void clear();
    bool contains(const Node *node) const { return keys.contains(node); }

    /// The oldest node with that index, null if there is none.
    Node *first(int index) const;
    /// Whether a node other than `node` has that index.
    bool isTakenByOther(int index, const Node *node) const;
    /// The wanted index if no other node has it, else the first free one from `counter` on.
    int freeIndex(int wanted, const Node *node, int counter) const;

private:
    using Key = std::pair<int, quint64>; // index, age

    std::map<Key, Node *> nodesByKey;
    QHash<const Node *, Key> keys;
    quint64 nextAge = 0;
};
