#pragma once

#include <QObject>
#include <QPoint>

class Node;
class NodegraphView;
class QKeyEvent;

/// Going about a canvas without a mouse: Ctrl and an arrow make the next event in that direction the current
/// one, F2 begins to edit its title, and from there its description, and Escape leaves the text. Owned by the
/// view.
class CanvasKeys : public QObject
{
    Q_OBJECT

public:
    explicit CanvasKeys(NodegraphView *keyedView);

protected:
    bool eventFilter(QObject *watched, QEvent *event) override;

private:
    bool press(const QKeyEvent &event);
    /// The node whose text is being edited, null if none is.
    Node *editedNode() const;
    /// The nearest one that is shown, looking from `from` (which may be null) in that direction; null if
    /// there is none.
    Node *nextNode(const Node *from, QPoint direction) const;
    void makeCurrent(Node *node);
    void bringIntoSight(const Node *node);
    void edit(Node *node);
    void comeClose(const Node *node);

    NodegraphView *view;
};
