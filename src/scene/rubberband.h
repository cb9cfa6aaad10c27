#pragma once

#include <QColor>
#include <QPointF>

#include <vector>

class Node;
class QGraphicsRectItem;
class QGraphicsScene;

/// The rectangle that a drag over the empty canvas draws, and the catching of what it touches. Owned by the
/// scene, which tells it of presses, moves and releases. All positions are scene coordinates.
class RubberBand
{
public:
    /// Puts an empty rectangle of that colour on `drawnOn`, which owns it.
    RubberBand(QGraphicsScene &drawnOn, const QColor &colour);
    /// Puts a new one there, after the canvas has destroyed the old one with all its items.
    void renew();

    bool isActive() const { return active; }
    /// The rectangle shows nothing new until it is stretched.
    void begin(const QPointF &from);
    void stretchTo(const QPointF &corner);
    /// It is no longer stretched, but stays to be seen until end().
    void stop() { active = false; }
    void end();

    /// Selects those of `nodes` that the rectangle touches, from the topmost one down, and adds to `caught`
    /// those that are not in it. Hidden ones slip through.
    void catchFrom(const std::vector<Node *> &nodes, std::vector<Node *> &caught) const;

private:
    QGraphicsScene &canvas;
    QColor veil;
    QGraphicsRectItem *rectangle = nullptr;
    QPointF origin;
    bool active = false;
};
