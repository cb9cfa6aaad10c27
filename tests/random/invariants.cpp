#include "random/invariants.h"

#include "items/eventdata.h"
#include "items/nodedata.h"
#include "random/documents.h"
#include "scene/scenebytes.h"
#include "scene/shownscene.h"

#include <QGraphicsRectItem>
#include <QSet>

#include <algorithm>
#include <cmath>

namespace Invariants {

namespace {

template <typename List, typename Value>
auto timesIn(const List &list, const Value &value)
{
    return std::count(list.begin(), list.end(), value);
}

/// Everything on the canvas, by kind.
struct Canvas
{
    QSet<const Node *> nodes;
    QSet<const ConnectionLine *> lines;
    std::vector<const ConnectionLine *> loose; // of drags
    std::vector<const QGraphicsRectItem *> bands;
    bool hasStrangers = false;
};

Canvas canvasOf(const NodegraphScene &scene)
{
    Canvas canvas;
    const QList<QGraphicsItem *> items = scene.items();
    for (const QGraphicsItem *item : items) {
        if (item->parentItem())
            continue;
        if (const auto *node = dynamic_cast<const Node *>(item)) {
            canvas.nodes.insert(node);
        } else if (const auto *line = dynamic_cast<const ConnectionLine *>(item)) {
            if (line->inputSocket() || line->outputSocket())
                canvas.lines.insert(line);
            else
                canvas.loose.push_back(line);
        } else if (const auto *band = dynamic_cast<const QGraphicsRectItem *>(item)) {
            canvas.bands.push_back(band);
        } else {
            canvas.hasStrangers = true;
        }
    }
    return canvas;
}

QString faultOfCanvas(const Canvas &canvas, const std::vector<Node *> &nodes, bool held)
{
    const QSet<const Node *> listed(nodes.begin(), nodes.end());
    if (std::size_t(listed.size()) != nodes.size())
        return QStringLiteral("an event is listed twice");
    if (listed != canvas.nodes)
        return QStringLiteral("the events listed are not those on the canvas");
    if (canvas.hasStrangers)
        return QStringLiteral("something on the canvas is no event, line or rubber band");
    if (canvas.bands.size() != 1)
        return QStringLiteral("%1 rubber bands").arg(canvas.bands.size());
    if (!held && !canvas.bands.front()->rect().isNull())
        return QStringLiteral("a rubber band that nobody draws");
    if (canvas.loose.size() > (held ? 1U : 0U))
        return QStringLiteral("%1 lines that lead nowhere").arg(canvas.loose.size());
    QSet<const ConnectionLine *> lines;
    for (const Node *node : nodes) {
        if (node->inLine())
            lines.insert(node->inLine());
    }
    if (lines != canvas.lines)
        return QStringLiteral("%1 lines on the canvas, %2 of events")
            .arg(canvas.lines.size())
            .arg(lines.size());
    return {};
}

QString faultOfLinks(const Node *node, const std::vector<Node *> &nodes)
{
    const Node *upstream = node->prevNode();
    const bool isFed = node->hasInput();
    if (isFed != (upstream != nullptr) || isFed != (node->inLine() != nullptr))
        return QStringLiteral("is fed by half a connection");
    if (node->getPrevIndex() != (isFed ? upstream->getIndex() : -1))
        return QStringLiteral("has the upstream index %1").arg(node->getPrevIndex());
    if (isFed && (timesIn(nodes, upstream) != 1 || timesIn(upstream->nextNodes(), node) != 1))
        return QStringLiteral("is fed by one that does not feed it");
    for (const Node *downstream : node->nextNodes()) {
        if (timesIn(nodes, downstream) != 1 || downstream->prevNode() != node)
            return QStringLiteral("feeds one that is not fed by it");
    }
    std::size_t steps = 0;
    for (const Node *above = upstream; above; above = above->prevNode()) {
        if (++steps > nodes.size())
            return QStringLiteral("is fed by itself");
    }
    return {};
}

QString faultOfSockets(const Node *node)
{
    const Socket *input = node->inSocket();
    const Socket *output = node->outSocket();
    if (input->getIsConnected() != node->hasInput() ||
        input->connectedSocket() != (node->hasInput() ? node->prevNode()->outSocket() : nullptr))
        return QStringLiteral("has an input socket that says otherwise");
    const std::vector<Node *> &fed = node->nextNodes();
    const bool partnerIsFed = std::any_of(fed.begin(), fed.end(), [output](const Node *downstream) {
        return downstream->inSocket() == output->connectedSocket();
    });
    if (output->getIsConnected() == fed.empty() || partnerIsFed == fed.empty() ||
        (fed.empty() && output->connectedSocket()))
        return QStringLiteral("has an output socket that says otherwise");
    const QRectF body = node->boundingRect();
    if (input->pos().x() != 0 || output->pos().x() + output->boundingRect().width() != body.width())
        return QStringLiteral("has a socket that is not at its edge");
    if (!body.contains(node->mapRectFromItem(node->payload(), node->payload()->boundingRect())))
        return QStringLiteral("is smaller than its description");
    return {};
}

/// Qt's paths leave out what lies farther away.
bool canBeDrawn(QPointF point)
{
    constexpr double farthest = 1e128;
    return std::abs(point.x()) < farthest && std::abs(point.y()) < farthest;
}

QString faultOfLine(const Node *node, bool mayLag)
{
    const ConnectionLine *line = node->inLine();
    if (!line)
        return {};
    const Node *upstream = node->prevNode();
    if (line->inputSocket() != node->inSocket() || line->outputSocket() != upstream->outSocket())
        return QStringLiteral("has a line between other sockets");
    const bool isDrawn = !mayLag && canBeDrawn(inputOf(node)) && canBeDrawn(outputOf(upstream));
    if (isDrawn && startOf(line) != inputOf(node))
        return QStringLiteral("has a line that does not end on its input");
    if (isDrawn && endOf(line) != outputOf(upstream))
        return QStringLiteral("has a line that does not end on the output of %1").arg(upstream->getIndex());
    if (line->isVisible() != (node->isVisible() && upstream->isVisible()))
        return QStringLiteral("has a line that is not seen as its ends are");
    return {};
}

QString faultOfNode(const Node *node, const NodegraphScene &scene, bool held)
{
    const int index = node->getIndex();
    const auto &nodes = scene.nodes();
    if (std::count_if(nodes.begin(), nodes.end(),
                      [index](const Node *other) { return other->getIndex() == index; }) != 1)
        return QStringLiteral("shares its index");
    if (scene.findNodeByIndex(index) != node)
        return QStringLiteral("is not found by its index");
    if (node->isEndOfStory() != (scene.endOfStoryNode() == node))
        return QStringLiteral("has an end mark that the tab does not know");
    if (node->isSelected() && !node->isVisible())
        return QStringLiteral("is selected and out of sight");
    if (const QString fault = faultOfLinks(node, nodes); !fault.isEmpty())
        return fault;
    if (const QString fault = faultOfSockets(node); !fault.isEmpty())
        return fault;
    // While events are dragged the ends of their lines are one move behind: so they are meant to follow.
    return faultOfLine(node, held);
}

QString faultOfMemories(const NodegraphScene &scene)
{
    const std::vector<Node *> &nodes = scene.nodes();
    for (const Node *remembered : {scene.currentNode(), scene.endOfStoryNode()}) {
        if (remembered && timesIn(nodes, remembered) != 1)
            return QStringLiteral("an event that is gone is remembered");
    }
    const std::vector<Node *> &selected = scene.selectedNodes();
    for (const Node *node : selected) {
        if (timesIn(nodes, node) != 1 || timesIn(selected, node) != 1)
            return QStringLiteral("the selection lists one that is gone, or one twice");
    }
    std::vector<const Node *> walked;
    for (const Node *node = scene.endOfStoryNode(); node; node = node->prevNode())
        walked.insert(walked.begin(), node);
    const std::vector<Node *> &story = scene.story();
    if (!std::equal(walked.begin(), walked.end(), story.begin(), story.end()))
        return QStringLiteral("the story is not the way to its end");
    return {};
}

/// A tab that was made of these bytes.
struct Reopened
{
    explicit Reopened(const QByteArray &bytes)
    {
        QObject::connect(&scene, &NodegraphScene::s_UndoCommandAdded, &stack,
                         [this](QUndoCommand *command) { stack.push(command); });
        SceneBytes::load(scene, bytes);
    }
    QByteArray savedAgain() { return SceneBytes::saved(scene); }

    NodegraphScene scene;
    QUndoStack stack; // goes first, for its commands know the scene
};

} // namespace

QString faultOfScene(const NodegraphScene &scene, bool held)
{
    const std::vector<Node *> &nodes = scene.nodes();
    if (const QString fault = faultOfCanvas(canvasOf(scene), nodes, held); !fault.isEmpty())
        return fault;
    if (const QString fault = faultOfMemories(scene); !fault.isEmpty())
        return fault;
    for (const Node *node : nodes) {
        if (const QString fault = faultOfNode(node, scene, held); !fault.isEmpty())
            return QStringLiteral("event %1 %2").arg(QString::number(node->getIndex()), fault);
    }
    return {};
}

QString faultOfBytes(NodegraphScene &scene)
{
    SceneBytes::Reader reader(SceneBytes::saved(scene));
    const SceneBytes::Records records = reader.block();
    if (reader.isShort() || !reader.isAtEnd())
        return QStringLiteral("the saved bytes are no whole block");
    if (std::size_t(records.size()) != scene.nodes().size())
        return QStringLiteral("%1 events are saved").arg(records.size());
    for (const SceneBytes::Record &record : records) {
        const Node *node = scene.findNodeByIndex(record.index);
        if (!node)
            return QStringLiteral("an event %1 is saved that is not there").arg(record.index);
        SceneBytes::Record shown;
        shown.title = node->title();
        shown.pos = node->pos(); // scenePos() loses the sign of a zero
        shown.index = node->getIndex();
        shown.prevIndex = node->prevNode() ? node->prevNode()->getIndex() : -1;
        shown.endOfStory = node == scene.endOfStoryNode();
        shown.important = node->isImportant();
        shown.description = node->payload()->eventContent()->getDescription();
        if (SceneBytes::nodeRecord(record) != SceneBytes::nodeRecord(shown))
            return QStringLiteral("saved as %1, shown as %2").arg(record.text(), shown.text());
    }
    return {};
}

QString faultOfReload(NodegraphScene &scene)
{
    const auto asDocument = [](const QByteArray &block) { return SceneBytes::int32(1) + block; };
    const QByteArray saved = SceneBytes::saved(scene);
    Reopened first(saved);
    if (asDocument(first.savedAgain()) != asOpened(asDocument(saved)))
        return QStringLiteral("what is saved reads back as something else");
    if (Reopened(first.savedAgain()).savedAgain() != first.savedAgain())
        return QStringLiteral("the second saving gives other bytes");
    return faultOfScene(first.scene, false);
}

} // namespace Invariants
