#pragma once

#include <QUndoCommand>

class NodegraphScene;

/// Feeds one node's input from another node's output. Owned by the undo stack that it is pushed on.
class ConnectNodesCommand : public QUndoCommand
{
public:
    /// `scene` must outlive every call of redo() and undo(). `nodeIndex` is the downstream node, `prevIndex`
    /// the upstream one; a node that is gone when the command runs makes that run do nothing.
    ConnectNodesCommand(NodegraphScene *scene, int nodeIndex, int prevIndex);

    void undo() override;
    void redo() override;

private:
    NodegraphScene *scene;
    int nodeIndex;
    int prevIndex;
};
