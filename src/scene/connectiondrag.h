#pragma once

#include "scene/handout.h"

class ConnectionLine;
class Node;
class NodegraphScene;
class QGraphicsItem;
class QPointF;
class Socket;

/// A connection that the mouse is drawing: a line that follows it, and the socket at which the line stays.
/// Owned by the scene, which tells it of presses, moves and releases; what they join or part is handed out as
/// a command. The line is its own while it lasts. All positions are scene coordinates.
class ConnectionDrag
{
public:
    /// `graph` must outlive every call but the destructor.
    ConnectionDrag(NodegraphScene &graph, HandOut out);

    /// Begins at the node's socket of that SocketType, which was pressed at `pos`; what feeds an input is
    /// torn off. Whatever was being dragged is dropped, by the next one too.
    void pressSocket(const Node &node, int type, const QPointF &pos);
    /// Takes away what the line joins, and begins at the socket that is not at the grabbed end.
    void grabLine(const ConnectionLine &grabbed, int type, const QPointF &mouse);

    bool hasLine() const { return line != nullptr; }
    /// Whether it was a line that was grabbed: a socket reports the moves itself.
    bool isByLine() const { return byLine; }
    /// Whether `grabber`, which may be null, has taken the mouse from the socket: nothing else tells of that.
    bool isTakenOverBy(const QGraphicsItem *grabber) const;
    /// Without a line nothing moves.
    void moveTo(const QPointF &mouse);

    /// The line goes; the socket is remembered for dropOn().
    void removeLine();
    /// Joins the socket and `target`, if they are an input and an output of two nodes and close no cycle.
    void dropOn(const Socket *target);
    void end();
    /// The node is dying; a drag from one of its sockets ends.
    void forget(const Node *node);

private:
    void begin(const QPointF &start, const QPointF &end, Socket *from);
    void part(const Node &fed);

    NodegraphScene &scene;
    HandOut handOut;
    ConnectionLine *line = nullptr;
    Socket *source = nullptr; // not owned
    bool byLine = false;
};
