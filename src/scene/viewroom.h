#pragma once

class QGraphicsView;
class QRectF;

/// Lets a view scroll to `area` (scene coordinates) where it lies beyond the canvas: a long chain runs out of
/// it, and nodes can be dragged over its edge. Areas too far away for scroll bars are left alone.
void makeRoomFor(QGraphicsView &view, const QRectF &area);
