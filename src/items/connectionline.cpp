#include "items/connectionline.h"

#include "items/detail.h"
#include "items/node.h"
#include "items/socket.h"

#include <QGraphicsSceneMouseEvent>
#include <QLineF>
#include <QPainter>
#include <QPainterPath>
#include <QPainterPathStroker>

#include <cmath>

namespace {

constexpr double visibleBend = 1.0; // pixels that a curve differs from its chord by

/// Exactly; two points that are almost the same are equal to QPointF.
bool isSamePlace(const QPointF &a, const QPointF &b) { return a.x() == b.x() && a.y() == b.y(); }

} // namespace

ConnectionLine::ConnectionLine(const QPointF &startPoint, const QPointF &endPoint)
    : start(startPoint), end(endPoint)
{
    static const QPen usual(penColor, penWidth); // shared by all of them
    pen = usual;
    setPen(pen);
    setZValue(-1.0);
    updatePath();
}

void ConnectionLine::updatePen()
{
    pen.setWidth(penWidth);
    pen.setColor(penColor);
    setPen(pen);
}

Socket *ConnectionLine::inputSocket() const { return firstNode ? firstNode->inSocket() : firstSocket.data(); }

Socket *ConnectionLine::outputSocket() const
{
    return secondNode ? secondNode->outSocket() : secondSocket.data();
}

void ConnectionLine::setSockets(Socket *input, Socket *output)
{
    firstSocket = input;
    secondSocket = output;
    firstNode = nullptr;
    secondNode = nullptr;
}

void ConnectionLine::setNodes(Node *fed, Node *feeding)
{
    setSockets(nullptr, nullptr);
    firstNode = fed;
    secondNode = feeding;
}

Node *ConnectionLine::feedingNode() const { return secondNode; }

// The default shape also contains the area between the curve and its chord, where a press belongs to the
// canvas.
QPainterPath ConnectionLine::shape() const
{
    QPainterPathStroker stroker;
    stroker.setWidth(penWidth + 2 * pressGrace);
    stroker.setCapStyle(pen.capStyle());
    stroker.setJoinStyle(pen.joinStyle());
    return stroker.createStroke(path());
}

// However far away, a line is a pixel wide, or it could not be seen.
void ConnectionLine::paint(QPainter *painter, const QStyleOptionGraphicsItem *option, QWidget *widget)
{
    const double scale = Detail::scaleOf(*painter);
    if (penWidth * scale >= 1.0) {
        QGraphicsPathItem::paint(painter, option, widget);
        return;
    }
    QPen thin(penColor, 1.0);
    thin.setCosmetic(true);
    painter->setPen(thin);
    painter->setBrush(Qt::NoBrush);
    if (std::abs(end.y() - start.y()) * scale < visibleBend)
        painter->drawLine(start, end);
    else
        painter->drawPath(path());
}

void ConnectionLine::updatePath()
{
    QPainterPath curve(start);
    curve.cubicTo(QPointF((3 * start.x() + end.x()) / 4, start.y()),
                  QPointF((3 * end.x() + start.x()) / 4, end.y()), end);
    setPath(curve);
}

void ConnectionLine::setStart(QPointF point)
{
    if (isSamePlace(point, start))
        return;
    start = point;
    updatePath();
}

void ConnectionLine::setEnd(QPointF point)
{
    if (isSamePlace(point, end))
        return;
    end = point;
    updatePath();
}

void ConnectionLine::sl_updatePath() { updatePath(); }

void ConnectionLine::sl_setStart(QPointF point) { setStart(point); }

void ConnectionLine::sl_setEnd(QPointF point) { setEnd(point); }

void ConnectionLine::mousePressEvent(QGraphicsSceneMouseEvent *event)
{
    const QPointF press = event->scenePos();
    const double toStart = QLineF(start, press).length();
    const double toEnd = QLineF(end, press).length();
    emit s_clicked(this, toEnd > toStart ? SocketType::input : SocketType::output);
    QGraphicsItem::mousePressEvent(event);
    // The click has taken this line out of its scene. An ignored press would make the scene look for the next
    // item below and take the mouse away from one that no longer holds it.
    event->accept();
}
