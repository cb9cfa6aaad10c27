#pragma once

#include <QPointF>

#include <vector>

class Node;

/// The drag of one node by the mouse, and of all nodes that are selected with it. Owned by the node, whose
/// mouse events it is told; of the other nodes it moves those that its own first move has picked up.
class NodeDrag
{
public:
    explicit NodeDrag(Node &dragged) : node(dragged) {}

    /// The left button went down on the node.
    void press() { isPressed = true; }
    /// The mouse went from `press` to `place`, in scene coordinates, with the left button held.
    void move(const QPointF &press, const QPointF &place);

private:
    std::vector<Node *> selectedNodesAndThis() const;
    void pickUp();
    void carry(const QPointF &way) const;

    Node &node;
    bool isPressed = false; // and not moved since
    quint64 number = 0;     // of the drag that has picked the node up last
    QPointF placeBefore;    // of the node, scene coordinates
    QPointF pressPlace;     // scene coordinates: what the event says of the drag that this node leads
};
