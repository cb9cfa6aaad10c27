#include "scene/scenerecords.h"

#include "commands/connectnodescommand.h"
#include "scene/connector.h"
#include "scene/nodegraphscene.h"
#include "scene/recordorder.h"

#include <QDataStream>
#include <QDebug>
#include <QFileDevice>
#include <QHash>

namespace {

constexpr int firstScreen = 100;     // events whose texts are made while they are read
constexpr int mostBlankNodes = 1000; // made for records that a damaged file announces but does not hold
constexpr int mostNamedRefusals = 20;
constexpr int noIndex = -1; // of what feeds an event: nothing does

/// The name of the file that is being read, empty if it is none. One that was read before, as a whole, has
/// left its name to the device.
QString fileNameOf(const QDataStream &stream)
{
    const QIODevice *device = stream.device();
    const auto *file = qobject_cast<const QFileDevice *>(device);
    return file ? file->fileName() : device ? device->objectName() : QString();
}

/// How an event is called in the log.
QString shortTitle(const Node *node)
{
    constexpr qsizetype most = 40;
    const QString title = node->title();
    return title.size() <= most ? title : title.first(most - 1) + QChar(u'\u2026');
}

/// Tells of the connections of a file that would close a cycle: of each one, and when there are many of the
/// others by their number.
class Refusals
{
public:
    explicit Refusals(const QString &file) : fileName(file) {}
    ~Refusals()
    {
        if (count > mostNamedRefusals)
            qWarning() << "Damaged scene file:" << fileName << "has" << count - mostNamedRefusals
                       << "more connections that close a cycle, left out";
    }
    Refusals(const Refusals &) = delete;
    Refusals &operator=(const Refusals &) = delete;

    void tell(const Node *downstream, const Node *upstream)
    {
        if (++count > mostNamedRefusals)
            return;
        qWarning() << "Damaged scene file:" << fileName << "has a connection that closes a cycle, left out:"
                   << "event" << downstream->getIndex() << shortTitle(downstream) << "fed by event"
                   << upstream->getIndex() << shortTitle(upstream);
    }

private:
    QString fileName;
    int count = 0;
};

} // namespace

SceneRecords::SceneRecords(NodegraphScene &graph, NodeMaking making, HandOut out)
    : scene(graph), makeNode(std::move(making)), handOut(std::move(out))
{}

void SceneRecords::write(QDataStream &stream) const
{
    const std::vector<Node *> &nodes = scene.nodes();
    qInfo() << "Nodes to save" << nodes.size();
    stream << qint32(nodes.size());
    std::vector<int> indices;
    indices.reserve(nodes.size());
    for (const Node *node : nodes)
        indices.push_back(node->getIndex());
    for (const std::size_t position : recordOrder(indices)) {
        Node *node = nodes[position];
        if (node->getType() == 0)
            stream << QStringLiteral("Event");
        qInfo("Serializing node");
        node->saveToStream(stream);
    }
}

Damage SceneRecords::read(QDataStream &stream) const
{
    qInfo() << "Fileopening";
    qint32 count = 0;
    stream >> count;
    qInfo() << "Nodes to open" << count;
    Damage damage;
    if (count >= 1)
        connectAll(readEvents(stream, count, damage), fileNameOf(stream), damage);
    return damage;
}

SceneRecords::Loaded SceneRecords::readEvents(QDataStream &stream, int count, Damage &damage) const
{
    Loaded loaded;
    int blankNodes = 0;
    for (int i = 0; i < count; ++i) {
        // Not for any bad status: one damaged text must not cut off the records behind it.
        const bool pastEnd = stream.status() == QDataStream::ReadPastEnd || stream.atEnd();
        if (pastEnd && ++blankNodes > mostBlankNodes) {
            qWarning() << "Damaged scene file:" << fileNameOf(stream) << "ended after" << i - mostBlankNodes
                       << "of" << count << "nodes, opening" << i;
            damage.incompleteEvents += count - i;
            break;
        }
        qInfo("deserializing node");
        const QDataStream::Status before = stream.status();
        QString typeTag; // every node is an event, whatever the tag says
        stream >> typeTag;
        Node *node = makeNode(i < firstScreen ? TextMaking::atOnce : TextMaking::whenNeeded);
        node->openFromStream(stream);
        // A damaged text stays noted in the stream while the records behind it are read well.
        if (stream.status() == QDataStream::ReadPastEnd || stream.status() != before)
            ++damage.incompleteEvents;
        if (node->isEndOfStory())
            scene.setEndOfStory(node);
        loaded.nodes.push_back(node);
        if (stream.status() != QDataStream::ReadPastEnd)
            ++loaded.whole;
    }
    return loaded;
}

/// Gives those events an index that have none of their own: no two may be saved under one, or the next
/// reading would put one into the other. No event can be fed by one with the index that stands for none.
void SceneRecords::numberAnew(int firstFree, const QString &fileName) const
{
    int count = 0;
    for (Node *node : scene.nodes()) {
        if (node->getIndex() != noIndex && scene.findNodeByIndex(node->getIndex()) == node)
            continue;
        while (scene.findNodeByIndex(firstFree))
            ++firstFree;
        node->setIndex(firstFree);
        ++count;
    }
    if (count > 0)
        qWarning() << "Damaged scene file:" << fileName << "has" << count
                   << "events without an index of their own, given new ones";
}

void SceneRecords::connectAll(const Loaded &loaded, const QString &fileName, Damage &damage) const
{
    QHash<int, Node *> firstWithIndex;
    for (Node *node : loaded.nodes) {
        if (!firstWithIndex.contains(node->getIndex()))
            firstWithIndex.insert(node->getIndex(), node);
    }
    // Who feeds whom is what the file says with its own indices.
    struct Join
    {
        Node *record; // not fed itself if an earlier one has its index
        Node *downstream;
        Node *upstream; // null if there is none with that index
        bool isWhole;
    };
    std::vector<Join> joins;
    std::size_t position = 0;
    for (Node *node : loaded.nodes) {
        const bool isWhole = position++ < loaded.whole;
        const int upstreamIndex = node->getPrevIndex();
        if (upstreamIndex == noIndex)
            continue;
        Node *upstream =
            firstWithIndex.contains(upstreamIndex) ? scene.findNodeByIndex(upstreamIndex) : nullptr;
        joins.push_back({node, scene.findNodeByIndex(node->getIndex()), upstream, isWhole});
    }
    numberAnew(2 * int(loaded.nodes.size()), fileName); // behind the provisional ones

    Refusals refusals(fileName);
    std::vector<Node *> unfed; // not reset at once: a node that two records were read into is listed twice
    for (const auto &[record, downstream, upstream, isWhole] : joins) {
        const bool isRefused = upstream && Connector::wouldCloseCycle(downstream, upstream);
        if (!upstream || isRefused || downstream != record)
            unfed.push_back(record);
        if (isWhole && (!upstream || isRefused))
            ++damage.lostConnections;
        if (isRefused)
            refusals.tell(downstream, upstream);
        else if (upstream)
            handOut(
                std::make_unique<ConnectNodesCommand>(&scene, downstream->getIndex(), upstream->getIndex()));
        else
            qInfo() << "CouldntFind outNode";
    }
    // What is saved later is what is shown then.
    for (Node *node : unfed) {
        if (!node->hasInput())
            node->setPrevIndex(noIndex);
    }
}
