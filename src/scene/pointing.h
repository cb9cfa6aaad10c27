#pragma once

#include <QPointF>

#include <optional>

class QGraphicsItem;
class QGraphicsScene;
class QGraphicsSceneMouseEvent;

// What the user points at on a canvas.

/// The topmost item that the mouse is on, null on the empty canvas.
QGraphicsItem *itemUnder(const QGraphicsScene &canvas, const QGraphicsSceneMouseEvent &event);

/// The mouse's last place, or the middle of what is shown if it has not been on the canvas yet.
QPointF placeOfPointer(const QGraphicsScene &canvas, const std::optional<QPointF> &mouse);
