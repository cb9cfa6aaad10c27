#pragma once

#include <vector>

class Node;

/// Which event ends the story, and the chain of events that leads there. Owned by the scene, which publishes
/// it and says when anything has changed that the chain follows from. Owns no nodes.
///
/// The chain is walked when somebody asks: emptying a graph changes its story with every event.
class StoryChain
{
public:
    /// The node that carries the mark, null when there is none.
    Node *end() const { return end_; }
    /// Moves the mark to `node`, which must not be null.
    void setEnd(Node *node);
    /// The connections have changed, or a mark has.
    void change() { isKnown = false; }
    /// The node is dying; if it is the end there is none any more.
    void forget(const Node *node);

    /// From the first event, which nothing feeds, to the end; empty without an end.
    const std::vector<Node *> &nodes() const;

private:
    Node *end_ = nullptr;
    mutable std::vector<Node *> chain;
    mutable bool isKnown = true;
};
