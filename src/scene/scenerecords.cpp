#include "scene/scenerecords.h"

#include "commands/connectnodescommand.h"
#include "items/noderecord.h"
#include "scene/connector.h"
#include "scene/damagelog.h"
#include "scene/nodegraphscene.h"
#include "scene/recordorder.h"

#include <QDataStream>
#include <QDebug>
#include <QHash>

namespace {

constexpr int smallStory = 30;       // events, whose texts are then made while they are read
constexpr int mostBlankNodes = 1000; // made for records that a damaged file announces but does not hold
constexpr int noIndex = -1;          // of what feeds an event: nothing does

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

Damage SceneRecords::read(QDataStream &stream, DamageLog &log) const
{
    qInfo() << "Fileopening";
    qint32 count = 0;
    stream >> count;
    qInfo() << "Nodes to open" << count;
    Damage damage;
    if (count >= 1)
        connectAll(readEvents(stream, count, damage, log), damage, log);
    return damage;
}

int SceneRecords::skip(QDataStream &stream, const RecordTold &tell)
{
    qint32 count = 0;
    stream >> count;
    int records = 0;
    for (; records < count && !stream.atEnd(); ++records) {
        QString typeTag;
        stream >> typeTag;
        const NodeRecord record = Node::readRecord(stream);
        if (tell)
            tell(typeTag, record);
    }
    return records;
}

SceneRecords::Loaded SceneRecords::readEvents(QDataStream &stream, int count, Damage &damage,
                                              DamageLog &log) const
{
    const TextMaking making = count <= smallStory ? TextMaking::atOnce : TextMaking::whenNeeded;
    Loaded loaded;
    int blankNodes = 0;
    for (int i = 0; i < count; ++i) {
        // Not for any bad status: one damaged text must not cut off the records behind it.
        const bool pastEnd = stream.status() == QDataStream::ReadPastEnd || stream.atEnd();
        if (pastEnd && ++blankNodes > mostBlankNodes) {
            qWarning() << "Damaged scene file:" << log.fileName() << "ended after" << i - mostBlankNodes
                       << "of" << count << "nodes, opening" << i;
            damage.incompleteEvents += count - i;
            break;
        }
        qInfo("deserializing node");
        const QDataStream::Status before = stream.status();
        QString typeTag; // every node is an event, whatever the tag says
        stream >> typeTag;
        Node *node = makeNode(making);
        node->openFromStream(stream, [&log](int index) { log.misplaced(index); });
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
int SceneRecords::numberAnew(int firstFree) const
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
    return count;
}

void SceneRecords::connectAll(const Loaded &loaded, Damage &damage, DamageLog &log) const
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
    log.numberedAnew(numberAnew(2 * int(loaded.nodes.size()))); // behind the provisional ones

    std::vector<Node *> unfed; // not reset at once: a node that two records were read into is listed twice
    for (const auto &[record, downstream, upstream, isWhole] : joins) {
        const bool isRefused = upstream && Connector::wouldCloseCycle(downstream, upstream);
        if (!upstream || isRefused || downstream != record)
            unfed.push_back(record);
        if (isWhole && (!upstream || isRefused))
            ++damage.lostConnections;
        if (isRefused)
            log.refused(downstream, upstream);
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
