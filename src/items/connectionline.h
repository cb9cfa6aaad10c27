#pragma once

#include <QColor>
#include <QGraphicsPathItem>
#include <QObject>
#include <QPen>
#include <QPointer>

class Node;
class Socket;

/// The curve between two sockets. Owned by its scene; its path is in scene coordinates.
///
/// The start lies on the downstream node's input socket, the end on the upstream node's output socket.
class ConnectionLine : public QObject, public QGraphicsPathItem
{
    Q_OBJECT
    Q_INTERFACES(QGraphicsItem)

public:
    /// Both points in scene coordinates.
    ConnectionLine(const QPointF &start, const QPointF &end);

    /// Applies `penWidth` and `penColor` to the stroke again.
    void updatePen();

    /// Move an end, in scene coordinates.
    void setStart(QPointF start);
    void setEnd(QPointF end);

    /// The two sockets it joins, null for a line that is still being dragged or whose socket is gone. Not
    /// owned.
    Socket *inputSocket() const;
    Socket *outputSocket() const;
    void setSockets(Socket *input, Socket *output);
    /// As setSockets() with the sockets of two nodes, which are looked up when they are asked for.
    void setNodes(Node *fed, Node *feeding);
    /// The node at its end, null unless it joins two nodes.
    Node *feedingNode() const;

    QPainterPath shape() const override;
    void paint(QPainter *painter, const QStyleOptionGraphicsItem *option, QWidget *widget) override;

signals:
    /// A mouse button went down on the line; `type` is the SocketType of the nearer end.
    void s_clicked(ConnectionLine *line, int type);

public slots:
    void sl_updatePath();
    void sl_setStart(QPointF start);
    void sl_setEnd(QPointF);

protected:
    void mousePressEvent(QGraphicsSceneMouseEvent *event) override;

private:
    void updatePath();

    QPen pen;
    QPointF start;
    QPointF end;
    int penWidth = 5;
    QColor penColor{0xd9, 0xd9, 0xd9};
    qreal pressGrace = 3.0; // units on either side of the stroke that still count as a hit
    QPointer<Socket> firstSocket;
    QPointer<Socket> secondSocket;
    QPointer<Node> firstNode; // whose sockets are meant
    QPointer<Node> secondNode;
};
