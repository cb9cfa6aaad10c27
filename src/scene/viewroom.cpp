#include "scene/viewroom.h"

#include <QGraphicsView>

#include <algorithm>
#include <cmath>

namespace {

constexpr double margin = 100.0;
constexpr double farthest = 1e7;      // scroll bars count in whole pixels, at any zoom
constexpr double pixelsAround = 50.0; // of canvas that are seen around what was brought into sight

struct Span
{
    double from;
    double length;
};

/// One direction of a view of that `room`: all of the span and what is `around` it, or as much as fits.
Span inSight(Span span, double around, double room)
{
    const double side = std::clamp((room - span.length) / 2, 0.0, around);
    return {span.from - side, std::min(span.length + 2 * side, room)};
}

double wayIntoReach(double low, double high)
{
    constexpr double end = farthest - margin;
    if (low < -end)
        return -end - low;
    return high > end ? std::max(end - high, -end - low) : 0.0;
}

} // namespace

void makeRoomFor(QGraphicsView &view, const QRectF &area)
{
    const QRectF reachable(-farthest, -farthest, 2 * farthest, 2 * farthest);
    if (view.sceneRect().contains(area) || !reachable.contains(area))
        return;
    view.setSceneRect(view.sceneRect() | area.adjusted(-margin, -margin, margin, margin));
}

void bringIntoSight(QGraphicsView &view, const QRectF &area)
{
    const double scale = std::abs(view.transform().m11());
    const QSizeF room = QSizeF(view.viewport()->size()) / scale;
    const Span across = inSight({area.x(), area.width()}, pixelsAround / scale, room.width());
    const Span down = inSight({area.y(), area.height()}, pixelsAround / scale, room.height());
    const QRectF wanted(across.from, down.from, across.length, down.length);
    makeRoomFor(view, area);
    makeRoomFor(view, wanted);
    // Told to show what is already there, a view may still move by a pixel.
    if (!view.mapToScene(view.viewport()->rect()).boundingRect().contains(wanted))
        view.ensureVisible(wanted, 0, 0);
}

void bringIntoSight(const QGraphicsScene &canvas, const QRectF &area)
{
    const QList<QGraphicsView *> all = canvas.views();
    for (QGraphicsView *view : all)
        bringIntoSight(*view, area);
}

QPointF wayIntoReach(const QRectF &area)
{
    return {wayIntoReach(area.left(), area.right()), wayIntoReach(area.top(), area.bottom())};
}
