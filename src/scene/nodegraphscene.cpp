#include "scene/nodegraphscene.h"

#include "commands/addnodecommand.h"
#include "items/nodedata.h"
#include "scene/textfocus.h"
#include "scene/viewroom.h"

#include <QDebug>
#include <QFocusEvent>
#include <QGraphicsView>
#include <QMetaMethod>
#include <QPainter>

#include <cmath>

namespace {

constexpr double canvasSize = 99999;
constexpr double attachGap = 100.0;
constexpr double framingMargin = 50.0;

QColor backgroundColour() { return QColor::fromString(QLatin1String("#606060")); }

QColor veilColour()
{
    QColor colour = QColor::fromString(QLatin1String("#FFFFFF"));
    colour.setAlpha(28);
    return colour;
}

} // namespace

NodegraphScene::NodegraphScene()
    : handOut([this](std::unique_ptr<QUndoCommand> command) { emitCommand(std::move(command)); }),
      band(*this, veilColour()),
      records(
          *this, [this](TextMaking making) { return makeForRecord(making); }, handOut)
{
    qRegisterMetaType<std::vector<Node *>>("std::vector<Node*>");
    setBackgroundBrush(backgroundColour());
    setSceneRect(QRectF(0, 0, canvasSize, canvasSize));
}

NodegraphScene::~NodegraphScene()
{
    // The base would take the items out from the front.
    std::vector<QGraphicsItem *> all;
    for (Node *node : nodes) {
        all.push_back(node);
        if (ConnectionLine *line = node->inLine())
            all.push_back(line);
    }
    {
        const MassRemoval::Together together(removal);
        for (QGraphicsItem *item : all)
            removal.takeOut(item);
    }
    qDeleteAll(all);
}

// The items are painted after this. Only the frames of the view count: a picture that is painted for
// something else changes nothing on the screen.
void NodegraphScene::drawBackground(QPainter *painter, const QRectF &rect)
{
    const QList<QGraphicsView *> all = views();
    if (!all.isEmpty() && painter->device() == all.first()->viewport())
        adaptDetail();
    QGraphicsScene::drawBackground(painter, rect);
}

// The texts are nobody's stops on the way through the window: a Tab would land in the one that was written in
// last, or in any, and each further one would be written there.
bool NodegraphScene::focusNextPrevChild(bool) { return false; }

void NodegraphScene::adaptDetail()
{
    const QList<QGraphicsView *> all = views();
    if (!all.isEmpty())
        detail.apply(*all.first(), nodes);
}

void NodegraphScene::sl_addEventNode()
{
    const bool wasEmpty = nodes.empty();
    Node *added = addNodeAt(pointerPosition(), 0, -1);
    if (!added)
        return;
    // The first event of a canvas has nothing to attach to; as the current node it starts the chain.
    if (wasEmpty) {
        setCurrentNode(added);
        added->setSelected(true);
    }
    bringIntoSight(*this, added->sceneBoundingRect());
}

Node *NodegraphScene::addNodeAt(QPointF pos, int type, int index, int markFrom)
{
    const std::size_t before = nodes.size();
    auto command =
        std::make_unique<AddNodeCommand>(this, pos, index == -1 ? nodeCounter : index, type, QString());
    if (markFrom != -1)
        command->willTakeMarkFrom(markFrom);
    handOut(std::move(command));
    return nodes.size() == before ? nullptr : nodes.back(); // it may have got another index
}

/// Where the user points: the mouse, or the middle of what is shown until the mouse has been here.
QPointF NodegraphScene::pointerPosition() const
{
    if (mouseSeen || views().isEmpty())
        return lastMousePos;
    const QGraphicsView *view = views().constFirst();
    return view->mapToScene(view->viewport()->rect().center());
}

void NodegraphScene::createNode(QPointF pos, int index, int type, const NodeData *data, const QString &name)
{
    leaveTextsBut(*this, nullptr); // the keys that follow are not meant for what was written before
    attachToCurrentNode(buildNode(pos, index, type, data, name));
    updateStory();
}

Node *NodegraphScene::restoreNode(QPointF pos, int index, int type, const NodeData *data, const QString &name)
{
    Node *node = buildNode(pos, index, type, data, name);
    updateStory();
    return node;
}

Node *NodegraphScene::buildNode(QPointF pos, int index, int type, const NodeData *data, const QString &name,
                                TextMaking making)
{
    auto *node = new Node(type, making);
    removal.bringIn(node);
    wireNode(node);
    node->placeAt(pos);
    if (!name.isEmpty())
        node->setNodeName(name);
    if (data)
        node->copyDataFrom(data);
    node->setIndex(freeIndex(index, node));
    return node;
}

Node *NodegraphScene::makeForRecord(TextMaking making)
{
    const int provisionalIndex = nodeCounter++;
    attachToCurrentNode(buildNode(QPointF(0, 0), provisionalIndex, 0, nullptr, QString(), making));
    updateStory();
    // By the provisional index, not the new node itself: see recordOrder(), which writing relies on.
    return findNodeByIndex(provisionalIndex);
}

void NodegraphScene::wireNode(Node *node)
{
    connect(node, SIGNAL(s_selected(Node*)), this, SLOT(sl_selectCurrentNode(Node*)));
    connect(node, SIGNAL(s_moving(Node*)), this, SLOT(sl_nodeMove(Node*)));
    connect(node, SIGNAL(s_socketClick(int,QPointF)), this, SLOT(sl_socketClick(int,QPointF)));
    connect(node, SIGNAL(s_socketClickDrag()), this, SLOT(sl_socketClickDrag()));
    connect(node, SIGNAL(s_changed(Node*)), this, SLOT(sl_nodeChanged(Node*)));
    connect(node, SIGNAL(s_indexChanged(Node*,int)), this, SLOT(sl_nodeIndexChanged(Node*,int)));
    connect(node, SIGNAL(s_importanceChanged(Node*,bool)), this, SLOT(sl_importanceChanged(Node*,bool)));
    nodes.push_back(node);
    nodesByIndex.insert(node, node->getIndex());
    ++nodeCounter;
}

/// The wanted index if no other node has it, else the counter's value or the first free number above it.
int NodegraphScene::freeIndex(int wanted, const Node *node) const
{
    if (!nodesByIndex.isTakenByOther(wanted, node))
        return wanted;
    int candidate = nodeCounter;
    while (nodesByIndex.isTakenByOther(candidate, node))
        ++candidate;
    return candidate;
}

void NodegraphScene::attachToCurrentNode(Node *newNode)
{
    if (Node *current = currentNode_; current && newNode) {
        const double x = current->scenePos().x() + current->boundingRect().width() + attachGap;
        newNode->setPos(std::trunc(x), std::trunc(current->scenePos().y()));
        connectNodes(newNode, current);
        if (current == story.end())
            setEndOfStory(newNode);
        current->setSelected(false);
        setCurrentNode(newNode);
        newNode->setSelected(true);
    }
    Node *only = newNode ? newNode : currentNode_;
    if (nodes.size() == 1 && only)
        setEndOfStory(only);
}

Node *NodegraphScene::findNodeByIndex(int index) const { return nodesByIndex.first(index); }

/// The only one to say which node is current. None is current as soon as the mouse is pressed, and the press
/// itself decides about the keyboard.
void NodegraphScene::setCurrentNode(Node *node)
{
    currentNode_ = node;
    if (node)
        leaveTextsBut(*this, node);
}

void NodegraphScene::sl_selectCurrentNode(Node *node) { setCurrentNode(node); }

void NodegraphScene::sl_deselectCurrentNode() { setCurrentNode(nullptr); }

// By Tab the framework would go back to the text that was edited last, whatever has become of its event, and
// the next Tab would be written into it.
void NodegraphScene::focusInEvent(QFocusEvent *event)
{
    const bool isByTab = event->reason() == Qt::TabFocusReason || event->reason() == Qt::BacktabFocusReason;
    QFocusEvent entered(event->type(), isByTab ? Qt::OtherFocusReason : event->reason());
    QGraphicsScene::focusInEvent(&entered);
    if (isByTab)
        setFocusItem(nullptr);
}

void NodegraphScene::selectAll()
{
    selectedNodes.clear();
    for (Node *node : nodes)
        node->setSelected(true);
    selectedNodes = nodes;
}

void NodegraphScene::deselectAll()
{
    selectedNodes.clear();
    for (Node *node : nodes)
        node->setSelected(false);
}

// Lines follow a dragged node through its socket signals; there is nothing else to do.
void NodegraphScene::sl_nodeMove(Node *) {}

void NodegraphScene::sl_lastMousePos(QPointF pos)
{
    lastMousePos = pos;
    mouseSeen = true;
}

// Comes before the node stores its new index, so nothing finds it under a number that it no longer has.
void NodegraphScene::sl_nodeIndexChanged(Node *node, int index)
{
    nodesByIndex.reindex(node, index);
    emit s_nodeIndexChanged(node, index);
}

void NodegraphScene::sl_importanceChanged(Node *node, bool isImportant)
{
    emit s_importanceChanged(node, isImportant);
}

/// Passes an edit on to whoever runs it; without a listener it is dropped, for nobody would free it.
void NodegraphScene::emitCommand(std::unique_ptr<QUndoCommand> command)
{
    static const QMetaMethod added = QMetaMethod::fromSignal(&NodegraphScene::s_UndoCommandAdded);
    if (isSignalConnected(added))
        emit s_UndoCommandAdded(command.release());
}

void NodegraphScene::removeAllNodes()
{
    const MassRemoval::Together together(removal);
    const std::vector<Node *> all = nodes;
    for (Node *node : all) {
        if (!isMember(node)) // the first deletion takes the whole selection with it
            continue;
        qInfo() << "clearing scene";
        deleteSelectedNodes(node);
    }
    while (!nodes.empty()) // nobody took the commands
        deleteNode(nodes.back());
}

void NodegraphScene::clear()
{
    removeAllNodes();
    selectedNodes.clear();
    band.end();
    drag.end();
    nodeCounter = 0;
    setCurrentNode(nullptr);
    QGraphicsScene::clear();
    band.renew();
}

void NodegraphScene::copyNodes() { clipboard.copy(); }

void NodegraphScene::cutNodes() { clipboard.cut(); }

void NodegraphScene::pasteNodes() { clipboard.paste(pointerPosition()); }

void NodegraphScene::saveSceneToFile(QDataStream &stream) { records.write(stream); }

void NodegraphScene::loadSceneFromFile(QDataStream &stream)
{
    records.read(stream);
    frameSelectedNodes();
}

void NodegraphScene::frameSelectedNodes()
{
    const auto sceneRectOf = [](const Node *node) { return node->mapRectToScene(node->boundingRect()); };
    QRectF bounds;
    if (currentNode_) {
        bounds = sceneRectOf(currentNode_);
    } else {
        const std::vector<Node *> &framed = selectedNodes.empty() ? nodes : selectedNodes;
        for (const Node *node : framed)
            bounds |= sceneRectOf(node);
    }
    if (!bounds.isNull())
        bounds.adjust(-framingMargin, -framingMargin, framingMargin, framingMargin);
    emit s_frameView(bounds);
    qInfo() << "Calculating bounds";
}
