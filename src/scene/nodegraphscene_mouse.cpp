#include "scene/nodegraphscene.h"

#include <QGraphicsRectItem>
#include <QGraphicsSceneMouseEvent>
#include <QGraphicsView>
#include <QPainterPath>
#include <QSet>

namespace {

constexpr double rubberBandZ = 100.0;

bool isTouched(const Node &node, const QRectF &band)
{
    const QRectF outline = node.boundingRect().translated(node.scenePos());
    if (band.contains(outline))
        return true;
    if (!band.adjusted(-1, -1, 1, 1).intersects(outline))
        return false;
    // Edges count, and so does a band of no width.
    QPainterPath path;
    path.addRect(band.translated(-node.scenePos()));
    return node.collidesWithPath(path);
}

} // namespace

void NodegraphScene::mousePressEvent(QGraphicsSceneMouseEvent *event)
{
    drag.end(); // a second button during a drag leaves nothing of the first behind
    setCurrentNode(nullptr);
    if (event->button() == Qt::LeftButton) {
        rubberBandActive = !itemUnder(*event);
        if (rubberBandActive) {
            selectedNodes.clear();
            rubberBandOrigin = event->scenePos();
        }
    }
    QGraphicsScene::mousePressEvent(event);
}

void NodegraphScene::mouseMoveEvent(QGraphicsSceneMouseEvent *event)
{
    if (drag.isByLine())
        drag.moveTo(lastMousePos);
    if (rubberBandActive) {
        selectionRect->setRect(QRectF(rubberBandOrigin, event->scenePos()).normalized());
        selectionRect->setZValue(rubberBandZ);
        selectInRubberBand();
    }
    // The framework repaints for a band or line only where it is and was in the view, and reckons that in
    // whole numbers: at the scale of a damaged file's places it reckons wrongly.
    if (rubberBandActive || drag.hasLine())
        update();
    for (Node *node : selectedNodes) {
        emit node->s_inSocketMove(node->getInSocket()->sceneCentre());
        emit node->s_outSocketMove(node->getOutSocket()->sceneCentre());
    }
    QGraphicsScene::mouseMoveEvent(event);
}

void NodegraphScene::mouseReleaseEvent(QGraphicsSceneMouseEvent *event)
{
    drag.removeLine(); // first, so that it cannot be what lies under the mouse
    if (auto *socket = dynamic_cast<Socket *>(itemUnder(*event)))
        sl_manualNodeConnect(socket);
    drag.end();
    rubberBandActive = false;
    selectionRect->setRect(QRectF());
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

void NodegraphScene::selectInRubberBand()
{
    if (!selectionRect)
        return;
    QSet<const Node *> listed(selectedNodes.begin(), selectedNodes.end());
    const QRectF band = selectionRect->rect();
    // From the topmost one down. The framework's own search would look into each node's parts as well.
    for (std::size_t i = nodes.size(); i-- > 0;) {
        Node *node = nodes[i];
        if (!node->isVisible() || !isTouched(*node, band))
            continue;
        node->setSelected(true);
        if (!listed.contains(node)) {
            listed.insert(node);
            selectedNodes.push_back(node);
        }
    }
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
