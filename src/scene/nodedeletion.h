#pragma once

#include "scene/handout.h"

class MassRemoval;
class Node;
class NodegraphScene;

/// Which nodes go when the user deletes: each by an undo command of its own, so that each can come back.
/// Owned by the scene, which carries the commands out.
class NodeDeletion
{
public:
    /// Both must outlive every call; `together` is the one that `graph` takes its items out with.
    NodeDeletion(NodegraphScene &graph, MassRemoval &together, HandOut out);

    /// The selected nodes, or if none are selected `node`, or if that is null the current node.
    void deleteSelected(Node *node);
    /// All there are, even if nobody runs the commands.
    void deleteAll();

private:
    void deleteByCommand(Node *node);

    NodegraphScene &scene;
    MassRemoval &removal;
    HandOut handOut;
};
