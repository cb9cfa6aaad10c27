#include "scene/viewroom.h"

#include <QGraphicsView>

namespace {
constexpr double margin = 100.0;
constexpr double farthest = 1e7; // scroll bars count in whole pixels, at any zoom
} // namespace

void makeRoomFor(QGraphicsView &view, const QRectF &area)
{
    const QRectF reachable(-farthest, -farthest, 2 * farthest, 2 * farthest);
    if (view.sceneRect().contains(area) || !reachable.contains(area))
        return;
    view.setSceneRect(view.sceneRect() | area.adjusted(-margin, -margin, margin, margin));
}
