#include "scene/nodegraphscene.h"

#include <QGraphicsSceneMouseEvent>
#include <QGraphicsView>

void NodegraphScene::mousePressEvent(QGraphicsSceneMouseEvent *event)
{
    drag.end(); // a second button during a drag leaves nothing of the first behind
    setCurrentNode(nullptr);
    if (event->button() == Qt::LeftButton) {
        if (itemUnder(*event)) {
            band.stop();
        } else {
            selectedNodes.clear();
            band.begin(event->scenePos());
        }
    }
    QGraphicsScene::mousePressEvent(event);
}

void NodegraphScene::mouseMoveEvent(QGraphicsSceneMouseEvent *event)
{
    if (drag.isByLine())
        drag.moveTo(lastMousePos);
    if (band.isActive()) {
        band.stretchTo(event->scenePos());
        band.catchFrom(nodes, selectedNodes);
    }
    // The framework repaints for a band or line only where it is and was in the view, and reckons that in
    // whole numbers: at the scale of a damaged file's places it reckons wrongly.
    if (band.isActive() || drag.hasLine())
        update();
    for (Node *node : selectedNodes)
        node->reportSocketPlaces();
    QGraphicsScene::mouseMoveEvent(event);
}

void NodegraphScene::mouseReleaseEvent(QGraphicsSceneMouseEvent *event)
{
    drag.removeLine(); // first, so that it cannot be what lies under the mouse
    if (auto *socket = dynamic_cast<Socket *>(itemUnder(*event)))
        sl_manualNodeConnect(socket);
    drag.end();
    band.end();
    update(); // after a scroll or a zoom in its midst, the framework does not know where the band was painted
    settleMovedLines();
    QGraphicsScene::mouseReleaseEvent(event);
}

/// The topmost item that the mouse is on, null on the empty canvas. As the framework looks for whoever gets
/// the event: with a pixel of the view, not with a point, which is beside what the pixel only touches.
QGraphicsItem *NodegraphScene::itemUnder(const QGraphicsSceneMouseEvent &event) const
{
    const QWidget *viewport = event.widget();
    const auto *view = viewport ? qobject_cast<const QGraphicsView *>(viewport->parentWidget()) : nullptr;
    if (!view)
        return itemAt(event.scenePos(), QTransform());
    const QList<QGraphicsItem *> hit = view->items(viewport->mapFromGlobal(event.screenPos()));
    return hit.isEmpty() ? nullptr : hit.constFirst();
}

/// While nodes are dragged their lines are one step behind; when they are dropped every line must be exact.
/// That goes for all nodes: what is dragged may have been cut, deselected or joined by new events since the
/// press.
void NodegraphScene::settleMovedLines()
{
    for (Node *node : nodes)
        node->updateLines();
}

void NodegraphScene::sl_socketClick(int type, QPointF pos)
{
    if (const auto *node = qobject_cast<Node *>(sender()))
        drag.pressSocket(*node, type, pos);
}

void NodegraphScene::sl_socketClickDrag() { drag.moveTo(lastMousePos); }

void NodegraphScene::sl_connectionLineClicked(ConnectionLine *line, int type)
{
    drag.grabLine(*line, type, lastMousePos);
}

void NodegraphScene::sl_manualNodeConnect(Socket *socket) { drag.dropOn(socket); }
