#include "scene/scenerecords.h"

#include "scene/damagelog.h"
#include "scene/scenereading.h"

#include <QUndoCommand>

using namespace Qt::StringLiterals;
using Nodes = std::vector<Node *>;

namespace {

/// A graph, and records of it that are not the graph's own.
struct Shelf
{
    NodegraphScene scene;
    std::vector<TextMaking> makings;
    int handedOut = 0;
    bool isOneForAll = false; // every record is read into the first event
    SceneRecords records{scene, [this](TextMaking making) { return make(making); },
                         [this](const std::unique_ptr<QUndoCommand> &command) {
                             ++handedOut;
                             command->redo();
                         }};

    Node *make(TextMaking making)
    {
        makings.push_back(making);
        if (isOneForAll && !scene.nodes().empty())
            return scene.nodes().front();
        return scene.restoreNode({}, 100000 + int(makings.size()), 0, nullptr, QString());
    }

    QByteArray written() const
    {
        QBuffer buffer;
        buffer.open(QIODevice::WriteOnly);
        DocumentStream stream(&buffer);
        records.write(stream);
        return buffer.data();
    }

    void read(QByteArray bytes)
    {
        QBuffer buffer(&bytes);
        buffer.open(QIODevice::ReadOnly);
        DocumentStream stream(&buffer);
        DamageLog log(stream);
        records.read(stream, log);
    }

    Node *place(int index) { return scene.restoreNode({}, index, 0, nullptr, u"Title %1"_s.arg(index)); }
};

} // namespace

class tst_SceneRecords : public TestCase
{
    Q_OBJECT

private slots:
    void writesARecordForEachEvent();
    void writesInTheOrderThatReadsBack();
    void readsWhatWasWritten();
    void readsIntoTheEventItIsGiven();
    void textsOfASmallStoryAreMadeAtOnce_data();
    void textsOfASmallStoryAreMadeAtOnce();
    void connectsByCommands();
    void tellsOfAFeederThatIsNotThere();
    void givesEachEventAnIndexOfItsOwn();
    void refusesCycles();
    void stopsWhenThereIsNothingMoreToRead();
    void readsAnEmptyBlock();
};

void tst_SceneRecords::writesARecordForEachEvent()
{
    Shelf shelf;
    Node *fed = shelf.place(1);
    shelf.scene.connectNodes(fed, shelf.place(0));
    fed->setImportant(true);
    typeDescription(fed, u"What happens"_s);
    const LogCapture log;
    SceneBytes::Reader reader(shelf.written());
    const Record first{u"Title 1"_s, {}, 1, 0, 0, 1, u"What happens"_s};
    const Record second{u"Title 0"_s, {}, 0, -1, 0, 0, u"Enter description"_s};
    QCOMPARE(SceneBytes::texts(reader.block()), SceneBytes::texts({first, second}));
    QVERIFY(reader.isAtEnd() && !reader.isShort());
    QCOMPARE(log.lines(), (QStringList{u"Nodes to save 2"_s, u"Serializing node"_s, u"Saving event data"_s,
                                       u"Serializing node"_s, u"Saving event data"_s}));
}

void tst_SceneRecords::writesInTheOrderThatReadsBack()
{
    Shelf shelf;
    shelf.place(2);
    shelf.place(0);
    const Records records = SceneBytes::Reader(shelf.written()).block();
    QCOMPARE(records.size(), 2);
    QCOMPARE(records[0].index, 0);
    QCOMPARE(records[1].index, 2);
}

void tst_SceneRecords::readsWhatWasWritten()
{
    const Records records{eventRecord(5), eventRecord(3, 5, 1), eventRecord(4, -1, 0, 1)};
    Shelf shelf;
    LogCapture log;
    shelf.read(SceneBytes::block(records));
    QCOMPARE(log.lines().first(2), (QStringList{u"Fileopening"_s, u"Nodes to open 3"_s}));
    QCOMPARE(log.count(u"deserializing node"_s), 3);
    QCOMPARE(shelf.scene.endOfStoryNode(), shelf.scene.findNodeByIndex(3));
    QCOMPARE(SceneBytes::texts(SceneBytes::Reader(shelf.written()).block()), SceneBytes::texts(records));
}

void tst_SceneRecords::readsIntoTheEventItIsGiven()
{
    Shelf shelf;
    shelf.isOneForAll = true;
    shelf.read(SceneBytes::block({eventRecord(7), eventRecord(9)}));
    QCOMPARE(indicesOf(shelf.scene.nodes()), QList<int>{9});
}

void tst_SceneRecords::textsOfASmallStoryAreMadeAtOnce_data()
{
    QTest::addColumn<int>("events");
    QTest::addColumn<TextMaking>("making");
    QTest::newRow("small") << 30 << TextMaking::atOnce;
    QTest::newRow("larger") << 31 << TextMaking::whenNeeded;
}

void tst_SceneRecords::textsOfASmallStoryAreMadeAtOnce()
{
    QFETCH(const int, events);
    QFETCH(const TextMaking, making);
    const NoProgressLog quiet;
    Records records;
    for (int i = 0; i < events; ++i)
        records << eventRecord(i);
    Shelf shelf;
    shelf.read(SceneBytes::block(records));
    QCOMPARE(int(std::count(shelf.makings.begin(), shelf.makings.end(), making)), events);
}

void tst_SceneRecords::connectsByCommands()
{
    Shelf shelf;
    shelf.read(SceneBytes::block({eventRecord(0, 2), eventRecord(1, 0), eventRecord(2)}));
    QCOMPARE(shelf.handedOut, 2);
    QCOMPARE(connections(shelf.scene), (QStringList{u"0 from 2"_s, u"1 from 0"_s}));
}

void tst_SceneRecords::tellsOfAFeederThatIsNotThere()
{
    Shelf shelf;
    const LogCapture log;
    shelf.read(SceneBytes::block({eventRecord(0, 8)}));
    QCOMPARE(log.count(u"CouldntFind outNode"_s), 1);
    QCOMPARE(shelf.handedOut, 0);
    QCOMPARE(shelf.scene.nodes().front()->getPrevIndex(), -1);
}

// Saved under one index, one would be read into the other; and what none is fed by cannot be told.
void tst_SceneRecords::givesEachEventAnIndexOfItsOwn()
{
    expectNewIndices(3);
    Shelf shelf;
    shelf.read(SceneBytes::block({eventRecord(5), eventRecord(5, 7), eventRecord(7), eventRecord(-1, 5),
                                  eventRecord(10, -1), eventRecord(-1)}));
    QCOMPARE(indicesOf(shelf.scene.nodes()), (QList<int>{5, 12, 7, 13, 10, 14}));
    // The connection of the second goes to the one that keeps the index, as it is read from the file.
    QCOMPARE(connections(shelf.scene), (QStringList{u"5 from 7"_s, u"13 from 5"_s}));
    for (const Node *node : shelf.scene.nodes())
        QCOMPARE(node->getPrevIndex(), node->prevNode() ? node->prevNode()->getIndex() : -1);
}

void tst_SceneRecords::refusesCycles()
{
    Records records;
    for (int i = 0; i < 22; ++i)
        records << eventRecord(i, i);
    expectRefusals(22);
    Shelf shelf;
    shelf.read(SceneBytes::block(records));
    QCOMPARE(shelf.handedOut, 0);
    for (const Node *node : shelf.scene.nodes())
        QCOMPARE(node->getPrevIndex(), -1);
}

void tst_SceneRecords::stopsWhenThereIsNothingMoreToRead()
{
    const NoProgressLog quiet;
    QTest::ignoreMessage(QtWarningMsg, "Damaged scene file: \"\" ended after 1 of 5000 nodes, opening 1001");
    expectNewIndices(1000);
    expectRefusals(1000); // the blank ones say that they are fed by the first one
    QByteArray bytes = SceneBytes::block({eventRecord(0)});
    bytes.replace(0, 4, SceneBytes::int32(5000));
    Shelf shelf;
    shelf.read(bytes);
    QCOMPARE(int(shelf.scene.nodes().size()), 1001);
}

void tst_SceneRecords::readsAnEmptyBlock()
{
    Shelf shelf;
    const LogCapture log;
    shelf.read(SceneBytes::int32(0));
    QCOMPARE(log.lines(), (QStringList{u"Fileopening"_s, u"Nodes to open 0"_s}));
    QVERIFY(shelf.scene.nodes().empty());
}

QTEST_MAIN(tst_SceneRecords)
#include "tst_scenerecords.moc"
