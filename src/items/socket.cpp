#include "items/socket.h"

#include "items/detail.h"

#include <QGraphicsSceneDragDropEvent>
#include <QGraphicsSceneMouseEvent>
#include <QPainter>

Socket::Socket(int socketType, QGraphicsItem *parent) : type(socketType)
{
    setAcceptHoverEvents(true);
    setAcceptDrops(true);
    setParentItem(parent);

    const QRectF body = parent->boundingRect();
    yOffset = static_cast<int>(body.height() * 0.5);
    rect = QRectF(0, 0, width, height);
    moveBy(0, yOffset);
    if (type == SocketType::output)
        moveBy(body.width() - width, 0);
    setAcceptedMouseButtons(Qt::AllButtons);
}

QPointF Socket::sceneCentre() const { return scenePos() + boundingRect().center(); }

void Socket::paint(QPainter *painter, const QStyleOptionGraphicsItem *, QWidget *)
{
    Detail::fillRoundedRect(*painter, rect, cornerRadius, fillColor());
}

// The press stays accepted, so this socket holds the mouse and the node below neither moves nor is selected.
void Socket::mousePressEvent(QGraphicsSceneMouseEvent *event) { emit s_clicked(type, event->scenePos()); }

void Socket::mouseMoveEvent(QGraphicsSceneMouseEvent *event)
{
    emit s_clickdrag();
    QGraphicsItem::mouseMoveEvent(event);
}

void Socket::mouseReleaseEvent(QGraphicsSceneMouseEvent *event)
{
    if (contains(event->pos()))
        emit s_clickReleasedHere();
    QGraphicsItem::mouseReleaseEvent(event);
}

// By default a drop is taken, and whoever dragged a text here would delete it over there.
void Socket::dragEnterEvent(QGraphicsSceneDragDropEvent *event) { event->ignore(); }
