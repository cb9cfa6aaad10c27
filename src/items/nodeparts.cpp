#include "items/nodeparts.h"

#include "items/node.h"
#include "items/nodedata.h"
#include "items/nodeshape.h"
#include "items/socket.h"
#include "items/stnodename.h"

#include <QBrush>
#include <QGraphicsPathItem>
#include <QPen>

namespace {

constexpr double headerZ = 2.0;
constexpr double dataZ = 2.0;
constexpr double nameZ = 3.0;
constexpr double socketZ = 3.0;

void wire(Socket *socket, Node *node)
{
    QObject::connect(socket, SIGNAL(s_clicked(int,QPointF)), node, SLOT(sl_socketClick(int,QPointF)));
    QObject::connect(socket, SIGNAL(s_clickdrag()), node, SLOT(sl_socketClickDrag()));
    QObject::connect(socket, SIGNAL(s_clickReleasedHere()), node, SLOT(sl_socketClickRelease()));
}

} // namespace

// In the order in which they stand among the node's children.
NodeParts::NodeParts(Node &node, int type, TextMaking making)
    : header(new QGraphicsPathItem(&node)), name_(new STNodeName(&node, making)),
      inSocket(new Socket(SocketType::input, &node)), outSocket(new Socket(SocketType::output, &node)),
      data_(new NodeData(type, &node, making))
{
    header->setZValue(headerZ);
    header->setPen(Qt::NoPen);
    if (type == 0)
        header->setBrush(Node::headerColor());
    name_->setZValue(nameZ);
    name_->setPos(NodeShape::titlePlace());
    for (Socket *socket : {inSocket, outSocket}) {
        socket->setZValue(socketZ);
        wire(socket, &node);
    }
    data_->setZValue(dataZ);
    const QPointF place = NodeShape::payloadPlace();
    data_->moveBy(place.x(), place.y());
    // Resize before reporting: whoever hears s_changed already sees the new outline.
    QObject::connect(data_, SIGNAL(s_dataChanged()), &node, SLOT(sl_updateSize()));
    QObject::connect(data_, SIGNAL(s_dataChanged()), &node, SLOT(sl_changed()));
}

Socket *NodeParts::socket(int type) const { return type == SocketType::input ? inSocket : outSocket; }

void NodeParts::layOut(const QRectF &body)
{
    for (Socket *socket : {inSocket, outSocket})
        socket->setPos(NodeShape::socketPlace(socket->getType(), body));
    header->setPath(NodeShape::header(body.width()));
    name_->setAvailableWidth(NodeShape::titleRoom(body.width()));
}

void NodeParts::show(NodeDetail::Parts shown)
{
    for (QGraphicsItem *part : std::initializer_list<QGraphicsItem *>{header, name_, data_})
        part->setVisible(shown == NodeDetail::Parts::all);
    for (Socket *socket : {inSocket, outSocket})
        socket->setVisible(shown != NodeDetail::Parts::none);
}
