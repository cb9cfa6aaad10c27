#include "items/socket.h"

#include "items/detail.h"
#include "items/node.h"

#include <QGraphicsSceneDragDropEvent>
#include <QGraphicsSceneMouseEvent>
#include <QPainter>

namespace {
constexpr double cornerRadius = 4;
}

Socket::Socket(int socketType, QGraphicsItem *parent) : type(socketType)
{
    setAcceptHoverEvents(true);
    setAcceptDrops(true);
    setParentItem(parent);

    const QRectF body = parent->boundingRect();
    yOffset = static_cast<int>(body.height() * 0.5);
    moveBy(0, yOffset);
    if (type == SocketType::output)
        moveBy(body.width() - size.width(), 0);
    setAcceptedMouseButtons(Qt::AllButtons);
}

Socket *Socket::connectedSocket() const
{
    if (!connectedNode)
        return connectedSocket_;
    return type == SocketType::input ? connectedNode->outSocket() : connectedNode->inSocket();
}

void Socket::setConnectedSocket(Socket *socket)
{
    connectedNode = nullptr;
    connectedSocket_ = socket;
}

void Socket::setConnectedNode(Node *node)
{
    connectedNode = node;
    connectedSocket_ = nullptr;
    isConnected = node != nullptr;
    update();
}

QPointF Socket::sceneCentre() const { return scenePos() + boundingRect().center(); }

QColor Socket::fillColor(bool connected)
{
    static const QColor color(QStringLiteral("#B4A523"));
    static const QColor connectedColor(Qt::yellow);
    return connected ? connectedColor : color;
}

void Socket::paintOne(QPainter &painter, const QPointF &place, bool connected)
{
    Detail::fillRoundedRect(painter, QRectF(place, size), cornerRadius, fillColor(connected));
}

void Socket::paint(QPainter *painter, const QStyleOptionGraphicsItem *, QWidget *)
{
    paintOne(*painter, QPointF(), isConnected);
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
