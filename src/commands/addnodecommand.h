#pragma once

#include <QPointF>
#include <QString>
#include <QUndoCommand>

#include <memory>
#include <optional>

class DelNodeCommand;
class Node;
class NodegraphScene;

/// Adds a node to a scene. Owned by the undo stack that it is pushed on.
class AddNodeCommand : public QUndoCommand
{
public:
    /// `scene` must outlive every call of redo() and undo(); `pos` in scene coordinates; an empty `name`
    /// keeps the default title.
    AddNodeCommand(NodegraphScene *scene, const QPointF &pos, int index, int type, const QString &name);
    ~AddNodeCommand() override;

    /// Says, before the first redo(), that the new node will be handed the end-of-story mark of the node with
    /// that index, so that undo() gives it back there.
    void willTakeMarkFrom(int nodeIndex) { formerEndIndex = nodeIndex; }

    void undo() override;
    /// The first time the node is made and attached as a new one is; later it comes back as undo() found it.
    void redo() override;

private:
    void addFirst();
    void bringBack();
    void rememberFormerEnd(const Node *former, const Node *node);

    NodegraphScene *scene;
    int index; // the one that the node really got, once it has been made
    QPointF pos;
    int type;
    QString name;
    std::unique_ptr<DelNodeCommand> removal; // what undo() did, null before the first undo()
    bool hadEndMark = false;                 // when it was undone
    std::optional<int> formerEndIndex;       // the node that the end-of-story mark was taken from, if any
};
