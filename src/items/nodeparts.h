#pragma once

#include "items/latetext.h"
#include "items/nodedetail.h"

class Node;
class NodeData;
class QGraphicsPathItem;
class QRectF;
class STNodeName;
class Socket;

/// The inner items of a node: header strip, title, sockets and payload. They are the node's children and go
/// with it; this makes them, wires them to the node and puts them where they belong.
class NodeParts
{
public:
    NodeParts(Node &node, int type, TextMaking making);

    STNodeName *name() const { return name_; }
    NodeData *data() const { return data_; }
    /// The one of that SocketType.
    Socket *socket(int type) const;

    /// Lays them out in a node of that body.
    void layOut(const QRectF &body);
    /// Hides those that the detail leaves out.
    void show(NodeDetail::Parts shown);

private:
    QGraphicsPathItem *header;
    STNodeName *name_;
    Socket *inSocket;
    Socket *outSocket;
    NodeData *data_;
};
