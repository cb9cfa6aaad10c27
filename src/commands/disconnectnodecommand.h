#pragma once

#include <QUndoCommand>

class NodegraphScene;

/// Takes away what feeds a node's input. Owned by the undo stack that it is pushed on.
class DisconnectNodeCommand : public QUndoCommand
{
public:
    /// `scene` must outlive every call of redo() and undo(). `nodeIndex` is the downstream node, `prevIndex`
    /// the upstream one; a node that is gone when the command runs makes that run do nothing.
    DisconnectNodeCommand(NodegraphScene *scene, int nodeIndex, int prevIndex);

    void undo() override;
    void redo() override;

private:
    NodegraphScene *scene;
    int nodeIndex;
    int prevIndex;
};
