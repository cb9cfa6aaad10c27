#pragma once

#include <QColor>
#include <QGraphicsItem>
#include <QObject>

class Node;

/// The two kinds of sockets; the same values name the end of a line that was hit.
namespace SocketType {
inline constexpr int input = 0;  // left edge of a node
inline constexpr int output = 1; // right edge of a node
} // namespace SocketType

/// The handle on a node's edge from which a connection is dragged. Owned by its node, its parent item.
///
/// Turns presses, drags and releases into signals and shows by its colour whether a connection is attached.
/// It knows nothing of lines: who is connected to whom is written by the scene.
class Socket : public QObject, public QGraphicsItem
{
    Q_OBJECT
    Q_INTERFACES(QGraphicsItem)

public:
    static constexpr QSizeF size{10, 22};

    /// `type` is one of SocketType; `parent` is the node and must not be null.
    Socket(int type, QGraphicsItem *parent);

    int getType() const { return type; }
    bool getIsConnected() const { return isConnected; }
    void setIsConnected(bool connected) { isConnected = connected; }
    QColor fillColor() const { return fillColor(isConnected); }
    /// The socket at the other end, null when there is none. Not owned.
    Socket *connectedSocket() const;
    void setConnectedSocket(Socket *socket);
    /// Joins it to the other socket of that node, which is looked up when it is asked for; null parts them.
    void setConnectedNode(Node *node);

    /// The middle of the socket in scene coordinates: the point where lines end.
    QPointF sceneCentre() const;

    /// Paints one, by its place in the painter's coordinates.
    static void paintOne(QPainter &painter, const QPointF &place, bool connected);

    QRectF boundingRect() const override { return rect; }
    void paint(QPainter *painter, const QStyleOptionGraphicsItem *option, QWidget *widget) override;

signals:
    /// A mouse button went down here; the point is in scene coordinates.
    void s_clicked(int type, QPointF);
    void s_clickdrag();
    /// The button went up while the pointer was still on this socket.
    void s_clickReleasedHere();

protected:
    void mousePressEvent(QGraphicsSceneMouseEvent *event) override;
    void mouseMoveEvent(QGraphicsSceneMouseEvent *event) override;
    void mouseReleaseEvent(QGraphicsSceneMouseEvent *event) override;
    void dragEnterEvent(QGraphicsSceneDragDropEvent *event) override;

private:
    static QColor fillColor(bool connected);

    Socket *connectedSocket_ = nullptr;
    Node *connectedNode = nullptr; // whose socket is meant; not owned
    bool isConnected = false;
    int type;
    int yOffset = 0;
    QRectF rect{{}, size}; // item coordinates
};
