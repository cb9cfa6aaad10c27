#pragma once

#include <QColor>
#include <QGraphicsItem>
#include <QObject>

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
    /// `type` is one of SocketType; `parent` is the node and must not be null.
    Socket(int type, QGraphicsItem *parent);

    int getType() const { return type; }
    bool getIsConnected() const { return isConnected; }
    void setIsConnected(bool connected) { isConnected = connected; }
    QColor fillColor() const { return isConnected ? connectedColor : color; }
    /// The socket at the other end, null when there is none. Not owned.
    Socket *connectedSocket() const { return connectedSocket_; }
    void setConnectedSocket(Socket *socket) { connectedSocket_ = socket; }

    /// The middle of the socket in scene coordinates: the point where lines end.
    QPointF sceneCentre() const;

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
    Socket *connectedSocket_ = nullptr;
    bool isConnected = false;
    int type;
    QColor color{QStringLiteral("#B4A523")};
    QColor connectedColor{Qt::yellow};
    int width = 10;
    int height = 22;
    int yOffset = 0;
    QRectF rect{0, 0, 10, 22}; // item coordinates
    int cornerRadius = 4;
};
