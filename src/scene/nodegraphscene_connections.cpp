#include "scene/nodegraphscene.h"

#include <QDebug>

namespace {

/// Marks two sockets as each other's ends. A null partner leaves the other one unconnected.
void pairSockets(Socket *socket, Socket *partner)
{
    if (socket) {
        socket->setIsConnected(partner != nullptr);
        socket->setConnectedSocket(partner);
        socket->update();
    }
    if (partner) {
        partner->setIsConnected(socket != nullptr);
        partner->setConnectedSocket(socket);
        partner->update();
    }
}

} // namespace

// Every node has one input at most, so walking up from `upstream` meets every node that could feed it.
bool NodegraphScene::wouldCloseCycle(const Node *downstream, const Node *upstream)
{
    if (!downstream || !upstream)
        return false;
    if (downstream == upstream)
        return true;
    if (downstream->nextNodes().empty()) // feeds nothing, so nobody's story can lead back to it
        return false;
    for (const Node *node = upstream; node; node = node->prevNode()) {
        if (node == downstream)
            return true;
    }
    return false;
}

void NodegraphScene::connectNodes(Node *downstream, Node *upstream)
{
    if (!downstream || !upstream || wouldCloseCycle(downstream, upstream))
        return;
    if (downstream->hasInput())
        disconnectNode(downstream);
    downstream->setPrevNode(upstream);
    upstream->addNextNode(downstream);
    downstream->setHasInput(true);
    pairSockets(downstream->inSocket(), upstream->outSocket());

    auto *line =
        new ConnectionLine(downstream->inSocket()->sceneCentre(), upstream->outSocket()->sceneCentre());
    removal.bringIn(line);
    wireLine(line, downstream, upstream);
    downstream->setPrevIndex(upstream->getIndex());
    updateStory();
    qInfo() << "Connected node " << downstream->getIndex() << " to " << upstream->getIndex();
}

void NodegraphScene::wireLine(ConnectionLine *line, Node *downstream, Node *upstream)
{
    connect(downstream, SIGNAL(s_inSocketMove(QPointF)), line, SLOT(sl_setStart(QPointF)));
    downstream->setInLine(line);
    connect(upstream, SIGNAL(s_outSocketMove(QPointF)), line, SLOT(sl_setEnd(QPointF)));
    line->setSockets(downstream->inSocket(), upstream->outSocket());
    line->setVisible(downstream->isVisible() && upstream->isVisible()); // a cut node hides its lines too
    connect(line, SIGNAL(s_clicked(ConnectionLine*,int)), this,
                         SLOT(sl_connectionLineClicked(ConnectionLine*,int)));
}

void NodegraphScene::disconnectNode(Node *node)
{
    if (!node)
        return;
    if (node->hasInput()) {
        Node *upstream = node->prevNode();
        pairSockets(node->inSocket(), nullptr);
        pairSockets(upstream->outSocket(), nullptr);
        upstream->removeNextNode(node);
        if (!upstream->nextNodes().empty())
            pairSockets(upstream->outSocket(), upstream->nextNodes().front()->inSocket());
    }
    node->setPrevIndex(-1);
    node->setPrevNode(nullptr);
    removeInputLine(node);
    node->setHasInput(false);
    updateStory();
    qInfo() << "Disconnected node " << node->getIndex();
}

/// Takes the line out at once; it dies later, because this may be running inside the line's own press.
void NodegraphScene::removeInputLine(Node *node)
{
    ConnectionLine *line = node->inLine();
    if (!line)
        return;
    node->setInLine(nullptr);
    line->disconnect(this);
    node->disconnect(line);
    if (auto *socket = line->outputSocket()) {
        if (auto *upstream = dynamic_cast<Node *>(socket->parentItem()))
            upstream->disconnect(line);
    }
    removal.takeOut(line);
    line->deleteLater();
}
