#pragma once

#include <QPointF>

class QGraphicsScene;
class QGraphicsView;
class QRectF;

/// Lets a view scroll to `area` (scene coordinates) where it lies beyond the canvas: a long chain runs out of
/// it, and nodes can be dragged over its edge. Areas too far away for scroll bars are left alone.
void makeRoomFor(QGraphicsView &view, const QRectF &area);

/// Scrolls just enough to show `area` whole with a piece of canvas around it, and makes room for that. Of
/// what is larger than the view its upper left corner is shown. Nothing moves if it is in sight already.
void bringIntoSight(QGraphicsView &view, const QRectF &area);
/// The same in all views of a canvas.
void bringIntoSight(const QGraphicsScene &canvas, const QRectF &area);

/// By how much `area` has to be moved so that scroll bars can get there; (0, 0) for all that is not far away.
QPointF wayIntoReach(const QRectF &area);
