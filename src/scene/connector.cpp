#include "scene/connector.h"

#include "items/connectionline.h"
#include "items/node.h"
#include "items/socket.h"
#include "scene/massremoval.h"

#include <span>
#include <vector>

namespace {

/// Marks the sockets of two nodes as each other's ends.
void pairSockets(Node *downstream, Node *upstream)
{
    downstream->setPartner(SocketType::input, upstream);
    upstream->setPartner(SocketType::output, downstream);
}

/// The nodes that a node feeds, over any number of nodes, one after the other. Nothing is joined or parted
/// meanwhile.
class FedNodes
{
public:
    explicit FedNodes(const Node *node) { open(node); }

    /// Null after the last one.
    const Node *next()
    {
        if (unmet.empty())
            return nullptr;
        const Node *node = unmet.back().front();
        unmet.back() = unmet.back().subspan(1);
        if (unmet.back().empty())
            unmet.pop_back();
        open(node);
        return node;
    }

private:
    void open(const Node *node)
    {
        if (!node->nextNodes().empty())
            unmet.emplace_back(node->nextNodes());
    }

    std::vector<std::span<Node *const>> unmet; // none of them empty
};

} // namespace

// Every node has one input at most, so walking up from `upstream` meets every node that could feed it, and
// walking down from `downstream` every node that it could feed. Both are walked a step at a time, and the
// shorter way decides: a file may put many short stories behind a long one, or a long one behind many short
// ones.
bool Connector::wouldCloseCycle(const Node *downstream, const Node *upstream)
{
    if (!downstream || !upstream)
        return false;
    FedNodes fed(downstream);
    for (const Node *feeding = upstream; feeding; feeding = feeding->prevNode()) {
        if (feeding == downstream)
            return true;
        const Node *node = fed.next();
        if (!node)
            return false;
        if (node == upstream)
            return true;
    }
    return false;
}

ConnectionLine *Connector::join(Node *downstream, Node *upstream)
{
    downstream->setPrevNode(upstream);
    upstream->addNextNode(downstream);
    downstream->setHasInput(true);
    pairSockets(downstream, upstream);

    auto *line = new ConnectionLine(downstream->socketCentre(SocketType::input),
                                    upstream->socketCentre(SocketType::output));
    lines.bringIn(line);
    QObject::connect(downstream, SIGNAL(s_inSocketMove(QPointF)), line, SLOT(sl_setStart(QPointF)));
    downstream->setInLine(line);
    QObject::connect(upstream, SIGNAL(s_outSocketMove(QPointF)), line, SLOT(sl_setEnd(QPointF)));
    line->setNodes(downstream, upstream);
    line->setVisible(downstream->isVisible() && upstream->isVisible()); // a cut node hides its lines too
    downstream->setPrevIndex(upstream->getIndex());
    return line;
}

void Connector::part(Node *node)
{
    if (node->hasInput()) {
        Node *upstream = node->prevNode();
        node->setPartner(SocketType::input, nullptr);
        upstream->setPartner(SocketType::output, nullptr);
        upstream->removeNextNode(node);
        if (!upstream->nextNodes().empty())
            pairSockets(upstream->nextNodes().front(), upstream);
    }
    node->setPrevIndex(-1);
    node->setPrevNode(nullptr);
    removeInputLine(node);
    node->setHasInput(false);
}

/// Takes the line out at once; it dies later, because this may be running inside the line's own press.
void Connector::removeInputLine(Node *node)
{
    ConnectionLine *line = node->inLine();
    if (!line)
        return;
    node->setInLine(nullptr);
    node->disconnect(line);
    if (Node *upstream = line->feedingNode())
        upstream->disconnect(line);
    lines.takeOut(line);
    line->deleteLater();
}
