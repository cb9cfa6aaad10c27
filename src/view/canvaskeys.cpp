#include "view/canvaskeys.h"

#include "items/eventdata.h"
#include "items/node.h"
#include "items/nodedata.h"
#include "items/stlineedit.h"
#include "items/stnodename.h"
#include "scene/nodegraphscene.h"
#include "scene/viewroom.h"
#include "view/nodegraphview.h"

#include <QKeyEvent>
#include <QTextCursor>

#include <cmath>
#include <limits>

namespace {

constexpr double sidewaysCost = 2.0; // a node that is off to a side counts as so much further away

/// Null if the key is no arrow.
QPoint directionOf(int key)
{
    switch (key) {
    case Qt::Key_Left:
        return {-1, 0};
    case Qt::Key_Right:
        return {1, 0};
    case Qt::Key_Up:
        return {0, -1};
    case Qt::Key_Down:
        return {0, 1};
    default:
        return {};
    }
}

QPointF centreOf(const Node *node) { return node->scenePos() + node->boundingRect().center(); }

} // namespace

CanvasKeys::CanvasKeys(NodegraphView *keyedView) : QObject(keyedView), view(keyedView)
{
    view->installEventFilter(this);
}

bool CanvasKeys::eventFilter(QObject *watched, QEvent *event)
{
    if (event->type() == QEvent::KeyPress && press(*static_cast<QKeyEvent *>(event)))
        return true;
    return QObject::eventFilter(watched, event);
}

bool CanvasKeys::press(const QKeyEvent &event)
{
    NodegraphScene *scene = view->nodegraphScene();
    if (!scene)
        return false;
    const Qt::KeyboardModifiers modifiers = event.modifiers() & ~Qt::KeypadModifier;
    Node *edited = editedNode();
    if (event.key() == Qt::Key_F2 && modifiers == Qt::NoModifier) {
        Node *node = scene->currentNode() ? scene->currentNode() : edited; // a press on a text leaves none
        if (!node || !node->isVisible())
            return false;
        edit(node);
        return true;
    }
    if (edited) {
        if (event.key() != Qt::Key_Escape)
            return false;
        scene->setFocusItem(nullptr);
        makeCurrent(edited);
        return true;
    }
    const QPoint direction = directionOf(event.key());
    if (direction.isNull() || modifiers != Qt::ControlModifier)
        return false;
    if (Node *next = nextNode(scene->currentNode(), direction))
        makeCurrent(next);
    return true;
}

Node *CanvasKeys::editedNode() const
{
    for (QGraphicsItem *item = view->nodegraphScene()->focusItem(); item; item = item->parentItem()) {
        if (auto *node = dynamic_cast<Node *>(item))
            return node;
    }
    return nullptr;
}

Node *CanvasKeys::nextNode(const Node *from, QPoint direction) const
{
    const NodegraphScene *scene = view->nodegraphScene();
    if (Node *end = scene->endOfStoryNode(); !from && end && end->isVisible())
        return end;
    Node *nearest = nullptr;
    double least = std::numeric_limits<double>::max();
    for (Node *node : scene->nodes()) {
        if (node == from || !node->isVisible())
            continue;
        const QPointF way = from ? centreOf(node) - centreOf(from) : centreOf(node);
        const double ahead = way.x() * direction.x() + way.y() * direction.y();
        const double sideways = std::abs(way.x() * direction.y() + way.y() * direction.x());
        if (from && ahead <= 0)
            continue;
        const double distance = std::abs(ahead) + sidewaysCost * sideways;
        if (distance < least) {
            least = distance;
            nearest = node;
        }
    }
    return nearest;
}

void CanvasKeys::makeCurrent(Node *node)
{
    NodegraphScene *scene = view->nodegraphScene();
    scene->deselectAll();
    scene->setCurrentNode(node);
    node->setSelected(true);
    bringIntoSight(node);
}

void CanvasKeys::bringIntoSight(const Node *node) { ::bringIntoSight(*view, node->sceneBoundingRect()); }

/// Nobody writes in an event of which only a picture is shown.
void CanvasKeys::comeClose(const Node *node)
{
    view->resetTransform();
    view->setZoomDivisor(1.0);
    makeRoomFor(*view, node->sceneBoundingRect());
    view->centerOn(node->sceneBoundingRect().center());
    view->nodegraphScene()->adaptDetail();
}

/// First the title, then the description, and so on in turn. What is there is treated as a click does: a
/// title is selected, ready to be typed over, and what asks for a description goes.
void CanvasKeys::edit(Node *node)
{
    QGraphicsTextItem *text = node->nameItem();
    if (!text->isVisible())
        comeClose(node);
    if (text->hasFocus() && node->payload() && node->payload()->eventContent()) {
        STLineEdit *description = node->payload()->eventContent()->descriptionItem();
        description->removePlaceholder();
        text = description;
    }
    text->setFocus(Qt::ShortcutFocusReason);
    QTextCursor cursor = text->textCursor();
    if (text == node->nameItem())
        cursor.select(QTextCursor::Document);
    else
        cursor.movePosition(QTextCursor::End);
    text->setTextCursor(cursor);
    bringIntoSight(node);
}
