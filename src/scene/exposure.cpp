#include "scene/exposure.h"

#include "items/node.h"
#include "items/socket.h"

#include <QGraphicsScene>
#include <QGraphicsSceneContextMenuEvent>
#include <QGraphicsSceneDragDropEvent>
#include <QGraphicsSceneHelpEvent>
#include <QGraphicsSceneMouseEvent>
#include <QGraphicsSceneWheelEvent>

#include <optional>

namespace {

// Scene units: what lies less than two pixels beside an edge, at the smallest scale at which sockets are
// shown among many events (see CanvasDetail). From further away a press that comes before the frame finds the
// event.
constexpr double aroundPainted = 50.0;
constexpr double aroundPointer = 20.0;

std::optional<QPointF> placeOf(const QEvent &event)
{
    switch (event.type()) {
    case QEvent::GraphicsSceneMousePress:
    case QEvent::GraphicsSceneMouseMove:
    case QEvent::GraphicsSceneMouseRelease:
    case QEvent::GraphicsSceneMouseDoubleClick:
        return static_cast<const QGraphicsSceneMouseEvent &>(event).scenePos();
    case QEvent::GraphicsSceneContextMenu:
        return static_cast<const QGraphicsSceneContextMenuEvent &>(event).scenePos();
    case QEvent::GraphicsSceneDragEnter:
    case QEvent::GraphicsSceneDragMove:
    case QEvent::GraphicsSceneDrop:
        return static_cast<const QGraphicsSceneDragDropEvent &>(event).scenePos();
    case QEvent::GraphicsSceneHelp:
        return static_cast<const QGraphicsSceneHelpEvent &>(event).scenePos();
    case QEvent::GraphicsSceneWheel:
        return static_cast<const QGraphicsSceneWheelEvent &>(event).scenePos();
    default:
        return std::nullopt;
    }
}

template <typename IsWanted>
void makeAround(const QGraphicsScene &canvas, const QRectF &area, const IsWanted &isWanted)
{
    const QList<QGraphicsItem *> all = canvas.items(area, Qt::IntersectsItemBoundingRect);
    for (QGraphicsItem *item : all) {
        if (auto *node = dynamic_cast<Node *>(item); node && node->isLate() && isWanted(*node))
            node->make();
    }
}

bool isShownWhole(const Node &node) { return node.shownParts() == NodeDetail::Parts::all; }

} // namespace

void Exposure::noteNew(const Node &node) { hasSeenLate = hasSeenLate || node.isLate(); }

void Exposure::aboutToPaint(const QRectF &area) const
{
    if (hasSeenLate)
        makeAround(canvas, area.adjusted(-aroundPainted, -aroundPainted, aroundPainted, aroundPainted),
                   isShownWhole);
}

void Exposure::aboutToHandle(const QEvent &event) const
{
    const std::optional<QPointF> place = hasSeenLate ? placeOf(event) : std::nullopt;
    if (!place)
        return;
    const QPointF reach(aroundPointer, aroundPointer);
    const QRectF area(*place - reach, *place + reach);
    makeAround(canvas, area, [&area](const Node &node) {
        return isShownWhole(node) || (node.shownParts() == NodeDetail::Parts::handles &&
                                      (node.socketOutline(SocketType::input).intersects(area) ||
                                       node.socketOutline(SocketType::output).intersects(area)));
    });
}
