#pragma once

#include "scene/nodelist.h"

class QGraphicsScene;
class QRectF;

/// The current node of a scene, and the nodes that select all and the rubber band have collected. Owns none
/// of them. What is painted as selected is each node's own state, which is set here and elsewhere.
class NodeSelection
{
public:
    /// `shown` must outlive this object.
    explicit NodeSelection(QGraphicsScene &shown) : canvas(shown) {}

    /// The node that last reported itself pressed or was made current, null when there is none.
    Node *current() const { return current_; }
    /// Null makes none current. An event that becomes current takes the keyboard away from any other's texts.
    void setCurrent(Node *node);
    /// The same, and selected; the one before is not selected any more.
    void moveCurrentTo(Node *node);

    const std::vector<Node *> &collected() const { return collected_.nodes(); }
    void collect(const std::vector<Node *> &nodes) { collected_ = nodes; }
    void clear() { collected_.clear(); }
    /// Collects all of them and selects each.
    void selectAll(const std::vector<Node *> &nodes);
    /// Collects nothing any more and deselects each.
    void deselectAll(const std::vector<Node *> &nodes);

    /// It is about to go.
    void forget(Node *node);

    /// What the current node covers, or those that are collected, or else all; scene coordinates, with a
    /// margin. Empty without any node.
    QRectF bounds(const std::vector<Node *> &all) const;

private:
    QGraphicsScene &canvas;
    Node *current_ = nullptr;
    NodeList collected_;
};
