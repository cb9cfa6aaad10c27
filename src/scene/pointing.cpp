#include "scene/pointing.h"

#include <QGraphicsScene>
#include <QGraphicsSceneMouseEvent>
#include <QGraphicsView>

// As the framework looks for whoever gets the event: with a pixel of the view, not with a point, which is
// beside what the pixel only touches.
QGraphicsItem *itemUnder(const QGraphicsScene &canvas, const QGraphicsSceneMouseEvent &event)
{
    const QWidget *viewport = event.widget();
    const auto *view = viewport ? qobject_cast<const QGraphicsView *>(viewport->parentWidget()) : nullptr;
    if (!view)
        return canvas.itemAt(event.scenePos(), QTransform());
    const QList<QGraphicsItem *> hit = view->items(viewport->mapFromGlobal(event.screenPos()));
    return hit.isEmpty() ? nullptr : hit.constFirst();
}

QPointF placeOfPointer(const QGraphicsScene &canvas, const std::optional<QPointF> &mouse)
{
    if (mouse || canvas.views().isEmpty())
        return mouse.value_or(QPointF());
    const QGraphicsView *view = canvas.views().constFirst();
    return view->mapToScene(view->viewport()->rect().center());
}
