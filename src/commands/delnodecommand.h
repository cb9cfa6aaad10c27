#pragma once

#include <QPointF>
#include <QPointer>
#include <QString>
#include <QUndoCommand>

#include <vector>

class Node;
class NodeData;
class NodegraphScene;

/// Deletes a node from a scene; undo() makes one like it with the same index and connections. Owned by the
/// undo stack that it is pushed on.
class DelNodeCommand : public QUndoCommand
{
public:
    /// `scene` must outlive every call of redo() and undo(). The rest describes the node: its scene position,
    /// its index, its payload (its text is copied, not null) and its title.
    DelNodeCommand(NodegraphScene *scene, const QPointF &pos, int index, const NodeData *data,
                   const QString &name);
    /// As above, with what it is told by the node itself, which must be one of the scene's.
    DelNodeCommand(NodegraphScene *scene, Node &node);

    void undo() override;
    void redo() override;

    /// Of the node, or of the one that undo() made last.
    int nodeIndex() const { return index; }

private:
    void begin();
    Node *meantNode() const;
    void captureLinksAndMarks();
    void captureAgain();
    void restoreLinks();

    NodegraphScene *scene;
    int index;
    QPointF pos;
    int type;
    QString description;
    QString name;
    QPointer<Node> node; // the node at construction, later the one that undo() made
    QPointer<Node> prevNode;
    bool hadInput = false;
    int prevIndex = -1; // of the upstream node, -1 without one
    std::vector<QPointer<Node>> nextNodes;
    std::vector<int> nextIndices;
    bool important = false;
    bool endOfStory = false;
    bool undone = false; // what is known may be older than the node
};
