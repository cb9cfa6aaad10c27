#include "scene/connectiondrag.h"

#include "commands/connectnodescommand.h"
#include "commands/disconnectnodecommand.h"
#include "scene/connector.h"
#include "scene/nodegraphscene.h"

namespace {

/// The node a socket sits on, null if there is none.
Node *nodeOf(const Socket *socket) { return socket ? dynamic_cast<Node *>(socket->parentItem()) : nullptr; }

} // namespace

ConnectionDrag::ConnectionDrag(NodegraphScene &graph, HandOut out) : scene(graph), handOut(std::move(out)) {}

void ConnectionDrag::pressSocket(const Node &node, int type, const QPointF &pos)
{
    if (type != SocketType::input) {
        begin(node.socketCentre(SocketType::input), pos, node.outSocket());
        return;
    }
    if (node.hasInput())
        part(node);
    begin(node.socketCentre(SocketType::output), pos, node.inSocket());
}

void ConnectionDrag::grabLine(const ConnectionLine &grabbed, int type, const QPointF &mouse)
{
    Socket *input = grabbed.inputSocket();
    Socket *output = grabbed.outputSocket();
    const Node *fed = nodeOf(input);
    if (fed && fed->hasInput())
        part(*fed);
    Socket *stays = type != SocketType::input ? input : output;
    if (!stays)
        return;
    begin(mouse, stays->sceneCentre(), stays);
    byLine = true;
}

void ConnectionDrag::part(const Node &fed)
{
    handOut(std::make_unique<DisconnectNodeCommand>(&scene, fed.getIndex(), fed.getPrevIndex()));
}

void ConnectionDrag::begin(const QPointF &start, const QPointF &end, Socket *from)
{
    this->end();
    line = new ConnectionLine(start, end);
    line->setAcceptedMouseButtons(Qt::NoButton);
    scene.addItem(line);
    source = from;
}

bool ConnectionDrag::isTakenOverBy(const QGraphicsItem *grabber) const
{
    return line && grabber && grabber != source;
}

void ConnectionDrag::moveTo(const QPointF &mouse)
{
    if (line)
        line->setStart(mouse);
}

void ConnectionDrag::removeLine()
{
    if (line) {
        scene.removeItem(line);
        delete line; // it never takes a press, so no event handler of its own can be running
        line = nullptr;
    }
    byLine = false;
}

void ConnectionDrag::dropOn(const Socket *target)
{
    const Socket *from = source;
    source = nullptr;
    const Node *sourceNode = nodeOf(from);
    const Node *targetNode = nodeOf(target);
    if (!sourceNode || !targetNode || sourceNode == targetNode || from->getType() == target->getType())
        return;
    const bool fromOutput = from->getType() == SocketType::output;
    const Node *downstream = fromOutput ? targetNode : sourceNode;
    const Node *upstream = fromOutput ? sourceNode : targetNode;
    if (Connector::wouldCloseCycle(downstream, upstream))
        return;
    handOut(std::make_unique<ConnectNodesCommand>(&scene, downstream->getIndex(), upstream->getIndex()));
}

void ConnectionDrag::end()
{
    removeLine();
    source = nullptr;
}

void ConnectionDrag::forget(const Node *node)
{
    if (source && source->parentItem() == node)
        end();
}
