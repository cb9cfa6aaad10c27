#include "scene/nodegraphscene.h"

#include "commands/addnodecommand.h"
#include "items/eventdata.h"
#include "scene/clipboard.h"
#include "scene/connectiondrag.h"
#include "scene/connector.h"
#include "scene/damage.h"
#include "scene/damagelog.h"
#include "scene/massremoval.h"
#include "scene/nodedeletion.h"
#include "scene/nodefactory.h"
#include "scene/noderegister.h"
#include "scene/nodeselection.h"
#include "scene/pointing.h"
#include "scene/rubberband.h"
#include "scene/scenerecords.h"
#include "scene/storychain.h"
#include "scene/storypublishing.h"
#include "scene/textfocus.h"
#include "scene/viewroom.h"

#include <QDebug>
#include <QGraphicsSceneMouseEvent>
#include <QMetaMethod>

#include <algorithm>
#include <optional>

namespace {

constexpr double canvasSize = 99999;
constexpr int veilAlpha = 28;

QColor backgroundColour() { return QColor::fromString(QLatin1String("#606060")); }

QColor veilColour()
{
    QColor colour = QColor::fromString(QLatin1String("#FFFFFF"));
    colour.setAlpha(veilAlpha);
    return colour;
}

} // namespace

/// None of them knows of the others but by what it is given here.
struct NodegraphScene::Parts
{
    Parts(NodegraphScene &scene, const SceneRecords::NodeMaking &makeForRecord, const HandOut &out,
          const std::function<void()> &tellStory)
        : handOut(out), selection(scene), removal(scene),
          factory(scene, all, selection, removal, scene.exposure()), publishing(tellStory), drag(scene, out),
          band(scene, veilColour()), clipboard(scene, removal), deletion(scene, removal, out),
          records(scene, makeForRecord, out)
    {}

    HandOut handOut;
    NodeRegister all;
    NodeSelection selection;
    MassRemoval removal;
    NodeFactory factory;
    Connector connector{removal};
    StoryChain story;
    StoryPublishing publishing;
    ConnectionDrag drag;
    RubberBand band;
    Clipboard clipboard;
    NodeDeletion deletion;
    SceneRecords records;
    std::optional<QPointF> mouse; // not set until it has been here
};

NodegraphScene::NodegraphScene()
{
    // Without a listener a command is dropped, for nobody would free it.
    const HandOut handOut = [this](std::unique_ptr<QUndoCommand> command) {
        static const QMetaMethod added = QMetaMethod::fromSignal(&NodegraphScene::s_UndoCommandAdded);
        if (isSignalConnected(added))
            emit s_UndoCommandAdded(command.release());
    };
    // By the provisional index, not the new node itself: see recordOrder(), which writing relies on.
    const SceneRecords::NodeMaking makeForRecord = [this](TextMaking making) {
        const int provisionalIndex = parts->all.takeNextIndex();
        const NodeFactory &factory = parts->factory;
        factory.attachToCurrent(factory.build(QPointF(0, 0), provisionalIndex, 0, QString(), making));
        updateStory();
        return findNodeByIndex(provisionalIndex);
    };
    // Whoever does not listen need not have the story known each time.
    const auto tellStory = [this] {
        static const QMetaMethod published = QMetaMethod::fromSignal(&NodegraphScene::s_updateStory);
        if (isSignalConnected(published))
            emit s_updateStory(story());
    };
    parts = std::make_unique<Parts>(*this, makeForRecord, handOut, tellStory);
    qRegisterMetaType<std::vector<Node *>>("std::vector<Node*>");
    setBackgroundBrush(backgroundColour());
    setSceneRect(QRectF(0, 0, canvasSize, canvasSize));
}

NodegraphScene::~NodegraphScene()
{
    // The base would take the items out from the front.
    std::vector<QGraphicsItem *> items;
    for (Node *node : parts->all.nodes()) {
        items.push_back(node);
        if (ConnectionLine *line = node->inLine())
            items.push_back(line);
    }
    {
        const MassRemoval::Together together(parts->removal);
        for (QGraphicsItem *item : items)
            parts->removal.takeOut(item);
    }
    qDeleteAll(items);
}

const std::vector<Node *> &NodegraphScene::nodes() const { return parts->all.nodes(); }

const std::vector<Node *> &NodegraphScene::selectedNodes() const { return parts->selection.collected(); }

Node *NodegraphScene::currentNode() const { return parts->selection.current(); }

const std::vector<Node *> &NodegraphScene::story() const { return parts->story.nodes(); }

Node *NodegraphScene::endOfStoryNode() const { return parts->story.end(); }

bool NodegraphScene::isMember(const Node *node) const { return parts->all.contains(node); }

Node *NodegraphScene::findNodeByIndex(int index) const { return parts->all.find(index); }

// Making nodes

void NodegraphScene::sl_addEventNode() { addEvent(); }

void NodegraphScene::addEvent()
{
    const bool wasEmpty = nodes().empty();
    Node *added = addNodeAt(placeOfPointer(*this, parts->mouse), 0, -1);
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
    const std::size_t before = nodes().size();
    const int wanted = index == -1 ? parts->all.nextIndex() : index;
    auto command = std::make_unique<AddNodeCommand>(this, pos, wanted, type, QString());
    if (markFrom != -1)
        command->willTakeMarkFrom(markFrom);
    parts->handOut(std::move(command));
    return nodes().size() == before ? nullptr : nodes().back(); // it may have got another index
}

void NodegraphScene::createNode(QPointF pos, int index, int type, const NodeData *data, const QString &name)
{
    leaveTextsBut(*this, nullptr); // the keys that follow are not meant for what was written before
    const auto fill = [data](Node &node) {
        if (data)
            node.copyDataFrom(data);
    };
    const NodeFactory &factory = parts->factory;
    factory.attachToCurrent(factory.build(pos, index, type, name, TextMaking::atOnce, fill));
    updateStory();
}

Node *NodegraphScene::restoreNode(QPointF pos, int index, int type, const QString *description,
                                  const QString &name, TextMaking making)
{
    Node *node = parts->factory.build(pos, index, type, name, making, [description](Node &built) {
        if (description)
            built.setDescription(*description);
    });
    updateStory();
    return node;
}

// Connecting

void NodegraphScene::connectNodes(Node *downstream, Node *upstream)
{
    if (!downstream || !upstream || Connector::wouldCloseCycle(downstream, upstream))
        return;
    if (downstream->hasInput())
        disconnectNode(downstream);
    connect(parts->connector.join(downstream, upstream),
            SIGNAL(s_clicked(ConnectionLine*,int)), this,
                   SLOT(sl_connectionLineClicked(ConnectionLine*,int)));
    updateStory();
    qInfo("Connected node  %d  to  %d", downstream->getIndex(), upstream->getIndex());
}

void NodegraphScene::disconnectNode(Node *node)
{
    if (!node)
        return;
    if (ConnectionLine *line = node->inLine())
        line->disconnect(this);
    parts->connector.part(node);
    updateStory();
    qInfo("Disconnected node  %d", node->getIndex());
}

void NodegraphScene::sl_socketClick(int type, QPointF pos)
{
    if (const auto *node = qobject_cast<Node *>(sender()))
        parts->drag.pressSocket(*node, type, pos);
}

void NodegraphScene::sl_connectionLineClicked(ConnectionLine *line, int type)
{
    if (line)
        parts->drag.grabLine(*line, type, parts->mouse.value_or(QPointF()));
}

void NodegraphScene::sl_socketClickDrag() { parts->drag.moveTo(parts->mouse.value_or(QPointF())); }

void NodegraphScene::sl_manualNodeConnect(Socket *socket) { parts->drag.dropOn(socket); }

// Deleting

void NodegraphScene::deleteSelectedNodes(Node *node)
{
    const StoryPublishing::Step step(parts->publishing);
    parts->deletion.deleteSelected(node);
}

void NodegraphScene::deleteNode(Node *node)
{
    if (!node)
        return;
    parts->story.forget(node); // before the neighbours go, so that no story with this node is published
    const std::vector<Node *> downstream = node->nextNodes();
    for (Node *next : downstream)
        disconnectNode(next);
    if (node->hasInput())
        disconnectNode(node);
    qInfo("Deleted node  %d", node->getIndex());
    // Here, and nowhere else, a dying node leaves everything that the scene remembers.
    parts->all.remove(node);
    parts->selection.forget(node);
    parts->clipboard.forget(node);
    parts->story.forget(node);
    parts->drag.forget(node);
    node->disconnect(this);
    parts->removal.takeOut(node);
    node->deleteLater(); // its own press or key may have led here
    updateStory();
}

void NodegraphScene::clear()
{
    const StoryPublishing::Step step(parts->publishing);
    parts->deletion.deleteAll();
    parts->selection.clear();
    parts->band.end();
    parts->drag.end();
    parts->all.restart();
    setCurrentNode(nullptr);
    forgetDetail();
    QGraphicsScene::clear();
    parts->band.renew();
}

// The story

bool NodegraphScene::canPasteNodes() const { return parts->clipboard.fits(); }

void NodegraphScene::updateStory()
{
    parts->story.change();
    if (!endOfStoryNode())
        qInfo("No storyNode");
    parts->publishing.storyChanged();
}

StoryPublishing &NodegraphScene::publishing() { return parts->publishing; }

void NodegraphScene::setEndOfStoryNode()
{
    if (currentNode())
        setEndOfStory(currentNode());
}

void NodegraphScene::setEndOfStory(Node *node)
{
    parts->story.setEnd(node);
    updateStory();
}

void NodegraphScene::toggleImportance(Node *node)
{
    if (!node)
        node = currentNode();
    if (!node)
        return;
    node->setImportant(!node->isImportant());
    node->update();
    updateStory();
}

void NodegraphScene::sl_nodeChanged(Node *node)
{
    // Copied: whoever hears of the change may make the story change.
    const auto occurrences = std::count(story().begin(), story().end(), node);
    for (auto i = occurrences; i > 0; --i)
        emit s_updateNode(node);
}

// Comes before the node stores its new index, so nothing finds it under a number that it no longer has.
void NodegraphScene::sl_nodeIndexChanged(Node *node, int index)
{
    parts->all.reindex(node, index);
    emit s_nodeIndexChanged(node, index);
}

void NodegraphScene::sl_importanceChanged(Node *node, bool isImportant)
{
    emit s_importanceChanged(node, isImportant);
}

void NodegraphScene::sl_ovNodeChanged(QGraphicsItem *nodeData, int index)
{
    Node *node = findNodeByIndex(index);
    const auto *edited = dynamic_cast<EventData *>(nodeData);
    if (node && node->getType() == 0 && edited)
        node->setDescription(edited->getDescription());
}

// Clipboard and file

void NodegraphScene::copyNodes() { parts->clipboard.copy(); }

void NodegraphScene::cutNodes() { parts->clipboard.cut(); }

void NodegraphScene::pasteNodes()
{
    const StoryPublishing::Step step(parts->publishing);
    parts->clipboard.paste(placeOfPointer(*this, parts->mouse));
}

void NodegraphScene::saveSceneToFile(QDataStream &stream) { parts->records.write(stream); }

void NodegraphScene::loadSceneFromFile(QDataStream &stream)
{
    DamageLog log(stream);
    load(stream, log);
}

Damage NodegraphScene::load(QDataStream &stream, DamageLog &log)
{
    const StoryPublishing::Step step(parts->publishing);
    const Damage damage = parts->records.read(stream, log);
    frameSelectedNodes();
    return damage;
}

// Current and selected nodes

void NodegraphScene::sl_selectCurrentNode(Node *node) { setCurrentNode(node); }

void NodegraphScene::sl_deselectCurrentNode() { setCurrentNode(nullptr); }

void NodegraphScene::setCurrentNode(Node *node) { parts->selection.setCurrent(node); }

void NodegraphScene::selectAll() { parts->selection.selectAll(nodes()); }

void NodegraphScene::deselectAll() { parts->selection.deselectAll(nodes()); }

void NodegraphScene::frameSelectedNodes()
{
    emit s_frameView(parts->selection.bounds(nodes()));
    qInfo() << "Calculating bounds";
}

// The mouse

void NodegraphScene::sl_lastMousePos(QPointF pos) { parts->mouse = pos; }

// Lines follow a dragged node through its socket signals; there is nothing else to do.
void NodegraphScene::sl_nodeMove(Node *) {}

void NodegraphScene::mousePressEvent(QGraphicsSceneMouseEvent *event)
{
    parts->drag.end(); // a second button during a drag leaves nothing of the first behind
    setCurrentNode(nullptr);
    if (event->button() == Qt::LeftButton) {
        if (itemUnder(*this, *event)) {
            parts->band.stop();
        } else {
            parts->selection.clear();
            parts->band.begin(event->scenePos());
        }
    }
    QGraphicsScene::mousePressEvent(event);
}

void NodegraphScene::mouseMoveEvent(QGraphicsSceneMouseEvent *event)
{
    if (parts->drag.isTakenOverBy(mouseGrabberItem()))
        parts->drag.end();
    if (parts->drag.isByLine())
        parts->drag.moveTo(parts->mouse.value_or(QPointF()));
    if (parts->band.isActive()) {
        parts->band.stretchTo(event->scenePos());
        std::vector<Node *> caught = selectedNodes();
        parts->band.catchFrom(nodes(), caught);
        parts->selection.collect(caught);
    }
    // The framework repaints for a band or line only where it is and was in the view, and reckons that in
    // whole numbers: at the scale of a damaged file's places it reckons wrongly.
    if (parts->band.isActive() || parts->drag.hasLine())
        update();
    for (Node *node : selectedNodes())
        node->reportSocketPlaces();
    QGraphicsScene::mouseMoveEvent(event);
}

void NodegraphScene::mouseReleaseEvent(QGraphicsSceneMouseEvent *event)
{
    parts->drag.removeLine(); // first, so that it cannot be what lies under the mouse
    if (auto *socket = dynamic_cast<Socket *>(itemUnder(*this, *event)))
        parts->drag.dropOn(socket);
    parts->drag.end();
    parts->band.end();
    update(); // after a scroll or a zoom in its midst, the framework does not know where the band was painted
    // While nodes are dragged their lines are one step behind; when they are dropped every line must be
    // exact. That goes for all nodes: what is dragged may have been cut, deselected or joined by new events
    // since the press.
    for (Node *node : nodes())
        node->updateLines();
    QGraphicsScene::mouseReleaseEvent(event);
}
