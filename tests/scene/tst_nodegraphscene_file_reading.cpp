#include "commands/graphtab.h"
#include "scene/scenebytes.h"

#include <QLoggingCategory>
#include <QSignalSpy>

using SceneBytes::Record;
using SceneBytes::Records;

namespace {

/// A record whose title names its index.
Record eventRecord(int index, int prevIndex = -1, int endOfStory = 0, int important = 0)
{
    return {QStringLiteral("Title %1").arg(index),
            QPointF(10.5 * index, 20),
            index,
            prevIndex,
            endOfStory,
            important,
            QStringLiteral("Text %1").arg(index)};
}

void load(GraphTab &tab, const Records &records) { SceneBytes::load(tab.scene, SceneBytes::block(records)); }

QList<int> savedUpstreams(NodegraphScene &scene)
{
    QList<int> upstreams;
    for (const Record &record : SceneBytes::savedRecords(scene))
        upstreams << record.prevIndex;
    return upstreams;
}

/// Keeps the progress of a thousand nodes out of the log; warnings go on.
struct NoProgressLog
{
    NoProgressLog() { QLoggingCategory::setFilterRules(QStringLiteral("default.info=false")); }
    ~NoProgressLog() { QLoggingCategory::setFilterRules(QString()); }
    NoProgressLog(const NoProgressLog &) = delete;
    NoProgressLog &operator=(const NoProgressLog &) = delete;
};

void expectRefusals(int count)
{
    QTest::ignoreMessage(
        QtWarningMsg,
        qPrintable(QStringLiteral("Damaged scene file: \"\" has %1 connections that close a cycle, left out")
                       .arg(count)));
}

} // namespace

class tst_NodegraphSceneFileReading : public QObject
{
    Q_OBJECT

private slots:
    void init() { failOnWarnings(); }
    void cleanup() { flushDeferredDeletes(); }
    void countBelowOneReadsNothingAndFrames_data();
    void countBelowOneReadsNothingAndFrames();
    void chainComesBackWhole();
    void restoredConnectionsAreStepsOnTheUndoStack();
    void readingIsLogged();
    void typeTagIsIgnored_data();
    void typeTagIsIgnored();
    void titleMayBeStoredEmptyOrNull_data();
    void titleMayBeStoredEmptyOrNull();
    void endMarkIsReadFromExactlyOne_data();
    void endMarkIsReadFromExactlyOne();
    void lastEndMarkWins();
    void importanceIsReadFromAnyNonZero_data();
    void importanceIsReadFromAnyNonZero();
    void importanceIsNotAnnounced();
    void readNodesAreNeitherSelectedNorCurrent();
    void allReadNodesAreFramedOnce();
    void eachRecordCountsTwice();
    void eventAddedAfterwardsTakesNoIndexTwice();
    void indexIsToldWhileReading();
    void readTextOfAStoryNodeIsToldOnce_data();
    void readTextOfAStoryNodeIsToldOnce();
    void upstreamMayStandBehindItsDownstream();
    void upstreamThatNamesNoNodeIsGone_data();
    void upstreamThatNamesNoNodeIsGone();
    void connectionThatClosesACycleIsRefused_data();
    void connectionThatClosesACycleIsRefused();
    void firstOfEqualIndicesIsTheUpstream();
    void connectionThatWentElsewhereIsGone();
    void storedIndexMayMeetAProvisionalOne_data();
    void storedIndexMayMeetAProvisionalOne();
    void overwrittenNodeKeepsItsMarks();
    void dataThatEndsEarlyGivesBlankNodes();
    void dataThatEndsInARecord_data();
    void dataThatEndsInARecord();
    void countWithoutDataIsLimited();
    void damagedTextCutsNothingOff();
};

void tst_NodegraphSceneFileReading::countBelowOneReadsNothingAndFrames_data()
{
    QTest::addColumn<int>("count");
    QTest::newRow("none") << 0;
    QTest::newRow("negative") << -1;
    QTest::newRow("most negative") << std::numeric_limits<int>::min();
}

void tst_NodegraphSceneFileReading::countBelowOneReadsNothingAndFrames()
{
    QFETCH(int, count);
    GraphTab tab;
    QSignalSpy frames(&tab.scene, &NodegraphScene::s_frameView);
    const LogCapture log;
    SceneBytes::load(tab.scene, SceneBytes::int32(count));
    QVERIFY(tab.scene.getNodes().empty());
    QCOMPARE(frames.count(), 1);
    QCOMPARE(frames.first().first().toRectF(), QRectF());
    QCOMPARE(tab.stack.count(), 0);
    QCOMPARE(log.lines(), (QStringList{"Fileopening", QStringLiteral("Nodes to open %1").arg(count),
                                       "Calculating bounds"}));
}

void tst_NodegraphSceneFileReading::chainComesBackWhole()
{
    const Records records{eventRecord(0), eventRecord(1, 0, 0, 1), eventRecord(2, 1, 1)};
    GraphTab tab;
    QSignalSpy stories(&tab.scene, &NodegraphScene::s_updateStory);
    load(tab, records);
    QCOMPARE(indicesOf(tab.scene.getNodes()), (QList<int>{0, 1, 2}));
    for (const Record &record : records) {
        const Node *node = tab.node(record.index);
        QCOMPARE(node->getTitle(), record.title);
        QCOMPARE(node->scenePos(), record.pos);
        QCOMPARE(descriptionOf(node), record.description);
        QCOMPARE(node->getIsEndOfStory(), record.endOfStory == 1);
        QCOMPARE(node->getIsImportant(), record.important == 1);
    }
    QCOMPARE(connections(tab.scene), (QStringList{"1 from 0", "2 from 1"}));
    QCOMPARE(indicesOf(tab.scene.getStory()), (QList<int>{0, 1, 2}));
    QCOMPARE(indicesOf(stories.last().first().value<std::vector<Node *>>()), (QList<int>{0, 1, 2}));
    QCOMPARE(SceneBytes::saved(tab.scene).toHex(), SceneBytes::block(records).toHex());
}

void tst_NodegraphSceneFileReading::restoredConnectionsAreStepsOnTheUndoStack()
{
    GraphTab tab;
    load(tab, {eventRecord(0), eventRecord(1, 0), eventRecord(2, 1, 1)});
    QCOMPARE(tab.stack.count(), 2);
    QCOMPARE(tab.stack.text(0), QStringLiteral("Connect Nodes"));
    QCOMPARE(tab.stack.text(1), QStringLiteral("Connect Nodes"));
    tab.stack.undo();
    QCOMPARE(connections(tab.scene), QStringList{"1 from 0"});
    tab.stack.undo();
    QCOMPARE(connections(tab.scene), QStringList());
    QVERIFY(!tab.stack.canUndo());
    QCOMPARE(sortedIndices(tab.scene), (QList<int>{0, 1, 2}));
    tab.stack.setIndex(2);
    QCOMPARE(connections(tab.scene), (QStringList{"1 from 0", "2 from 1"}));
}

void tst_NodegraphSceneFileReading::readingIsLogged()
{
    GraphTab tab;
    const LogCapture log;
    load(tab, {eventRecord(0), eventRecord(1, 0)});
    QCOMPARE(log.lines(),
             (QStringList{"Fileopening", "Nodes to open 2", "deserializing node", "Opening event data",
                          "SetEventData", "deserializing node", "Old node index  0  New node index  2",
                          "Opening event data", "SetEventData", "Old node index  2  New node index  1",
                          "Connected node  1  to  0", "Calculating bounds"}));
}

void tst_NodegraphSceneFileReading::typeTagIsIgnored_data()
{
    QTest::addColumn<QString>("tag");
    QTest::newRow("usual") << QStringLiteral("Event");
    QTest::newRow("another") << QStringLiteral("Chapter of a book");
    QTest::newRow("empty") << QStringLiteral("");
    QTest::newRow("null") << QString();
}

void tst_NodegraphSceneFileReading::typeTagIsIgnored()
{
    QFETCH(QString, tag);
    Record record = eventRecord(0);
    record.tag = tag;
    GraphTab tab;
    load(tab, {record, eventRecord(1, 0)});
    QCOMPARE(tab.node(0)->getType(), 0);
    QCOMPARE(tab.node(0)->getTitle(), QStringLiteral("Title 0"));
    QCOMPARE(connections(tab.scene), QStringList{"1 from 0"});
    QCOMPARE(SceneBytes::savedRecords(tab.scene).first().tag, QStringLiteral("Event"));
}

void tst_NodegraphSceneFileReading::titleMayBeStoredEmptyOrNull_data()
{
    QTest::addColumn<QString>("title");
    QTest::newRow("empty") << QStringLiteral("");
    QTest::newRow("null") << QString();
}

void tst_NodegraphSceneFileReading::titleMayBeStoredEmptyOrNull()
{
    QFETCH(QString, title);
    Record record = eventRecord(0);
    record.title = title;
    record.description = title;
    GraphTab tab;
    load(tab, {record, eventRecord(1)});
    QCOMPARE(tab.node(0)->getTitle(), QString());
    QCOMPARE(descriptionOf(tab.node(0)), QString());
    QCOMPARE(tab.node(1)->getTitle(), QStringLiteral("Title 1"));
}

void tst_NodegraphSceneFileReading::endMarkIsReadFromExactlyOne_data()
{
    QTest::addColumn<int>("stored");
    QTest::addColumn<int>("end");
    QTest::newRow("0 everywhere, the first node has it") << 0 << 0;
    QTest::newRow("1") << 1 << 1;
    QTest::newRow("2") << 2 << 0;
    QTest::newRow("-1") << -1 << 0;
}

void tst_NodegraphSceneFileReading::endMarkIsReadFromExactlyOne()
{
    QFETCH(int, stored);
    QFETCH(int, end);
    GraphTab tab;
    load(tab, {eventRecord(0), eventRecord(1, -1, stored), eventRecord(2)});
    QCOMPARE(tab.scene.endOfStoryNode(), tab.node(end));
    for (int index = 0; index < 3; ++index)
        QCOMPARE(tab.node(index)->getIsEndOfStory(), index == end);
    QCOMPARE(indicesOf(tab.scene.getStory()), QList<int>{end});
}

void tst_NodegraphSceneFileReading::lastEndMarkWins()
{
    GraphTab tab;
    load(tab, {eventRecord(0, -1, 1), eventRecord(1, -1, 1), eventRecord(2, -1, 1), eventRecord(3)});
    QCOMPARE(tab.scene.endOfStoryNode(), tab.node(2));
    QVERIFY(!tab.node(0)->getIsEndOfStory());
    QVERIFY(!tab.node(1)->getIsEndOfStory());
}

void tst_NodegraphSceneFileReading::importanceIsReadFromAnyNonZero_data()
{
    QTest::addColumn<int>("stored");
    QTest::addColumn<bool>("important");
    QTest::newRow("0") << 0 << false;
    QTest::newRow("1") << 1 << true;
    QTest::newRow("2") << 2 << true;
    QTest::newRow("-1") << -1 << true;
}

void tst_NodegraphSceneFileReading::importanceIsReadFromAnyNonZero()
{
    QFETCH(int, stored);
    QFETCH(bool, important);
    GraphTab tab;
    load(tab, {eventRecord(0, -1, 0, stored)});
    QCOMPARE(tab.node(0)->getIsImportant(), important);
    QCOMPARE(SceneBytes::savedRecords(tab.scene).first().important, important ? 1 : 0);
}

void tst_NodegraphSceneFileReading::importanceIsNotAnnounced()
{
    GraphTab tab;
    QSignalSpy marks(&tab.scene, &NodegraphScene::s_importanceChanged);
    load(tab, {eventRecord(0, -1, 0, 1)});
    QCOMPARE(marks.count(), 0);
}

void tst_NodegraphSceneFileReading::readNodesAreNeitherSelectedNorCurrent()
{
    GraphTab tab;
    load(tab, {eventRecord(0), eventRecord(1, 0)});
    QCOMPARE(tab.scene.currentNode(), nullptr);
    QVERIFY(tab.scene.getSelectedNodes().empty());
    QVERIFY(tab.scene.selectedItems().isEmpty());
}

void tst_NodegraphSceneFileReading::allReadNodesAreFramedOnce()
{
    GraphTab tab;
    QSignalSpy frames(&tab.scene, &NodegraphScene::s_frameView);
    Record low = eventRecord(1, 0);
    low.pos = QPointF(300, 4000);
    load(tab, {eventRecord(0), low});
    QCOMPARE(frames.count(), 1);
    const double right = 300 + tab.node(1)->boundingRect().width() + 50;
    const double bottom = 4000 + tab.node(1)->boundingRect().height() + 50;
    QCOMPARE(frames.first().first().toRectF(), QRectF(QPointF(-50, -30), QPointF(right, bottom)));
}

void tst_NodegraphSceneFileReading::eachRecordCountsTwice()
{
    GraphTab tab;
    load(tab, {eventRecord(0), eventRecord(1), eventRecord(3)});
    QCOMPARE(addLoose(tab.scene, QPointF(1, 1))->getIndex(), 6);
    QCOMPARE(addLoose(tab.scene, QPointF(1, 1))->getIndex(), 7);
}

// Two records count four, and the stored index 4 is there already.
void tst_NodegraphSceneFileReading::eventAddedAfterwardsTakesNoIndexTwice()
{
    GraphTab tab;
    load(tab, {eventRecord(4), eventRecord(5)});
    Node *added = addLoose(tab.scene, QPointF(1, 1));
    QCOMPARE(added->getIndex(), 6);
    QCOMPARE(sortedIndices(tab.scene), (QList<int>{4, 5, 6}));
    tab.stack.undo();
    QCOMPARE(sortedIndices(tab.scene), (QList<int>{4, 5}));
    tab.stack.redo();
    QCOMPARE(sortedIndices(tab.scene), (QList<int>{4, 5, 6}));
}

void tst_NodegraphSceneFileReading::indexIsToldWhileReading()
{
    GraphTab tab;
    QSignalSpy told(&tab.scene, &NodegraphScene::s_nodeIndexChanged);
    load(tab, {eventRecord(0), eventRecord(1)});
    QList<int> indices;
    for (const QList<QVariant> &arguments : told)
        indices << arguments.at(1).toInt();
    // The first keeps 0; the second gets its provisional 2, then 1, which is told twice.
    QCOMPARE(indices, (QList<int>{0, 2, 1, 1}));
}

void tst_NodegraphSceneFileReading::readTextOfAStoryNodeIsToldOnce_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<int>("times");
    QTest::newRow("typed") << QStringLiteral("A text") << 1;
    QTest::newRow("untouched") << QStringLiteral("Enter description") << 0;
}

void tst_NodegraphSceneFileReading::readTextOfAStoryNodeIsToldOnce()
{
    QFETCH(QString, text);
    QFETCH(int, times);
    Record record = eventRecord(0);
    record.description = text;
    GraphTab tab;
    QSignalSpy changes(&tab.scene, &NodegraphScene::s_updateNode);
    load(tab, {record});
    QCOMPARE(changes.count(), times);
}

void tst_NodegraphSceneFileReading::upstreamMayStandBehindItsDownstream()
{
    GraphTab tab;
    load(tab, {eventRecord(5, 7), eventRecord(1, 5, 1), eventRecord(7)});
    QCOMPARE(connections(tab.scene), (QStringList{"1 from 5", "5 from 7"}));
    QCOMPARE(indicesOf(tab.scene.getStory()), (QList<int>{7, 5, 1}));
    QCOMPARE(tab.stack.count(), 2);
}

void tst_NodegraphSceneFileReading::upstreamThatNamesNoNodeIsGone_data()
{
    QTest::addColumn<int>("upstream");
    QTest::newRow("nobody's") << 9;
    QTest::newRow("a provisional number") << 2;
    QTest::newRow("negative") << -7;
}

void tst_NodegraphSceneFileReading::upstreamThatNamesNoNodeIsGone()
{
    QFETCH(int, upstream);
    GraphTab tab;
    const LogCapture log;
    load(tab, {eventRecord(0), eventRecord(1, upstream)});
    QCOMPARE(log.count(QStringLiteral("CouldntFind outNode")), 1);
    QCOMPARE(connections(tab.scene), QStringList());
    QCOMPARE(tab.stack.count(), 0);
    QCOMPARE(tab.node(1)->getPrevIndex(), -1);
    QCOMPARE(savedUpstreams(tab.scene), (QList<int>{-1, -1}));
}

void tst_NodegraphSceneFileReading::connectionThatClosesACycleIsRefused_data()
{
    QTest::addColumn<QList<int>>("upstreams");
    QTest::addColumn<int>("refusedNode");
    QTest::addColumn<QStringList>("made");
    QTest::newRow("itself") << QList<int>{0, 0} << 0 << QStringList{"1 from 0"};
    QTest::newRow("two nodes") << QList<int>{1, 0} << 1 << QStringList{"0 from 1"};
    QTest::newRow("three nodes") << QList<int>{2, 0, 1} << 2 << QStringList{"0 from 2", "1 from 0"};
    QTest::newRow("three nodes, with a tail")
        << QList<int>{1, 2, 0, 2} << 2 << QStringList{"0 from 1", "1 from 2", "3 from 2"};
}

// A story in a circle never ends, and neither did the walk along it.
void tst_NodegraphSceneFileReading::connectionThatClosesACycleIsRefused()
{
    QFETCH(QList<int>, upstreams);
    QFETCH(int, refusedNode);
    QFETCH(QStringList, made);
    Records records;
    QList<int> expected = upstreams;
    for (int index = 0; index < upstreams.size(); ++index)
        records << eventRecord(index, upstreams.at(index), index == refusedNode ? 1 : 0);
    expected[refusedNode] = -1;

    GraphTab tab;
    expectRefusals(1);
    load(tab, records);
    QCOMPARE(connections(tab.scene), made);
    QCOMPARE(tab.stack.count(), made.size());
    QCOMPARE(tab.node(refusedNode)->getPrevIndex(), -1);
    QCOMPARE(savedUpstreams(tab.scene), expected);
}

void tst_NodegraphSceneFileReading::firstOfEqualIndicesIsTheUpstream()
{
    GraphTab tab;
    load(tab, {eventRecord(5), eventRecord(5), eventRecord(7, 5)});
    QCOMPARE(tab.scene.getNodes().at(2)->prevNode(), tab.scene.getNodes().at(0));
}

// The command names nodes by their index, and the first one with it answers.
void tst_NodegraphSceneFileReading::connectionThatWentElsewhereIsGone()
{
    GraphTab tab;
    load(tab, {eventRecord(5), eventRecord(5, 7), eventRecord(7)});
    QCOMPARE(tab.scene.getNodes().at(0)->prevNode(), tab.scene.getNodes().at(2));
    QVERIFY(!tab.scene.getNodes().at(1)->hasInput());
    QCOMPARE(savedUpstreams(tab.scene), (QList<int>{7, -1, -1}));
}

void tst_NodegraphSceneFileReading::storedIndexMayMeetAProvisionalOne_data()
{
    QTest::addColumn<QList<int>>("stored");
    QTest::addColumn<QStringList>("titles");
    QTest::addColumn<QList<int>>("indices");
    QTest::newRow("second over the first")
        << QList<int>{2, 1} << QStringList{"Title 1", "Event"} << QList<int>{1, 4};
    QTest::newRow("and so on") << QList<int>{2, 1, 7} << QStringList{"Title 1", "Title 7", "Event"}
                               << QList<int>{1, 7, 6};
    QTest::newRow("third over the first")
        << QList<int>{4, 1, 3} << QStringList{"Title 3", "Title 1", "Event"} << QList<int>{3, 1, 6};
    QTest::newRow("too early by one")
        << QList<int>{1, 4, 3} << QStringList{"Title 1", "Title 3", "Event"} << QList<int>{1, 3, 6};
    QTest::newRow("just not") << QList<int>{1, 2, 4} << QStringList{"Title 1", "Title 2", "Title 4"}
                              << QList<int>{1, 2, 4};
}

// Old files are read as they always were: see recordOrder() for what keeps new ones whole.
void tst_NodegraphSceneFileReading::storedIndexMayMeetAProvisionalOne()
{
    QFETCH(QList<int>, stored);
    QFETCH(QStringList, titles);
    QFETCH(QList<int>, indices);
    Records records;
    for (const int index : stored)
        records << eventRecord(index);
    GraphTab tab;
    load(tab, records);
    QCOMPARE(indicesOf(tab.scene.getNodes()), indices);
    for (qsizetype i = 0; i < titles.size(); ++i) {
        const Node *node = tab.scene.getNodes().at(std::size_t(i));
        QCOMPARE(node->getTitle(), titles.at(i));
        const bool isBlank = titles.at(i) == QStringLiteral("Event");
        QCOMPARE(node->scenePos(), isBlank ? QPointF(0, 0) : QPointF(10.5 * indices.at(i), 20));
    }
}

void tst_NodegraphSceneFileReading::overwrittenNodeKeepsItsMarks()
{
    GraphTab tab;
    load(tab, {eventRecord(2, -1, 0, 1), eventRecord(1)});
    const Node *node = tab.node(1);
    QCOMPARE(node->getTitle(), QStringLiteral("Title 1"));
    QVERIFY(node->getIsImportant());
    QVERIFY(node->getIsEndOfStory());
}

void tst_NodegraphSceneFileReading::dataThatEndsEarlyGivesBlankNodes()
{
    QByteArray bytes = SceneBytes::block({eventRecord(5)});
    bytes.replace(0, 4, SceneBytes::int32(3));
    GraphTab tab;
    // What is not there reads as 0, so the blank nodes claim to be fed by the first of them.
    expectRefusals(2);
    SceneBytes::load(tab.scene, bytes);
    QCOMPARE(indicesOf(tab.scene.getNodes()), (QList<int>{5, 0, 0}));
    QCOMPARE(tab.node(5)->getTitle(), QStringLiteral("Title 5"));
    for (const std::size_t place : {1, 2}) {
        const Node *blank = tab.scene.getNodes().at(place);
        QCOMPARE(blank->getTitle(), QString());
        QCOMPARE(descriptionOf(blank), QString());
        QCOMPARE(blank->scenePos(), QPointF(0, 0));
    }
    QCOMPARE(savedUpstreams(tab.scene), (QList<int>{-1, -1, -1}));
}

void tst_NodegraphSceneFileReading::dataThatEndsInARecord_data()
{
    QTest::addColumn<int>("kept");
    QTest::addColumn<QString>("title");
    QTest::addColumn<int>("index");
    QTest::addColumn<bool>("namesItself");
    const QString title = QStringLiteral("Title 5");
    const int tagEnd = 4 + 14;
    const int titleEnd = tagEnd + 4 + 14;
    QTest::newRow("after the count") << 4 << QString() << 0 << true;
    QTest::newRow("in the tag") << 11 << QString() << 0 << true;
    QTest::newRow("in the title") << titleEnd - 3 << QString() << 0 << true;
    QTest::newRow("in the position") << titleEnd + 9 << title << 0 << true;
    QTest::newRow("in the index") << titleEnd + 16 + 2 << title << 0 << true;
    QTest::newRow("in the upstream index") << titleEnd + 20 + 3 << title << 5 << false;
    QTest::newRow("in the marks") << titleEnd + 24 + 5 << title << 5 << false;
    QTest::newRow("in the description") << titleEnd + 32 + 7 << title << 5 << false;
}

void tst_NodegraphSceneFileReading::dataThatEndsInARecord()
{
    QFETCH(int, kept);
    QFETCH(QString, title);
    QFETCH(int, index);
    QFETCH(bool, namesItself);
    GraphTab tab;
    if (namesItself)
        expectRefusals(1);
    SceneBytes::load(tab.scene, SceneBytes::block({eventRecord(5)}).left(kept));
    QCOMPARE(tab.scene.getNodes().size(), std::size_t(1));
    QCOMPARE(tab.node(index)->getTitle(), title);
    QCOMPARE(descriptionOf(tab.node(index)), QString());
    QCOMPARE(tab.node(index)->getPrevIndex(), -1);
    QCOMPARE(connections(tab.scene), QStringList());
}

// A damaged count asked for two thousand million nodes, and the program never came back.
void tst_NodegraphSceneFileReading::countWithoutDataIsLimited()
{
    const NoProgressLog quiet;
    GraphTab tab;
    QTest::ignoreMessage(QtWarningMsg,
                         "Damaged scene file: \"\" ended after 0 of 2147483647 nodes, opening 1000");
    expectRefusals(1000);
    SceneBytes::load(tab.scene, SceneBytes::int32(std::numeric_limits<int>::max()));
    QCOMPARE(tab.scene.getNodes().size(), std::size_t(1000));
}

// The limit for blank nodes goes by the data that is left, not by an error that a text may have set long ago.
void tst_NodegraphSceneFileReading::damagedTextCutsNothingOff()
{
    constexpr int count = 1100;
    const NoProgressLog quiet;
    Record damaged = eventRecord(1);
    damaged.title = QString();
    QByteArray bytes =
        SceneBytes::int32(count) + SceneBytes::string(damaged.tag) + SceneBytes::nodeRecord(damaged);
    bytes.replace(4 + 14, 4, SceneBytes::int32(3)); // half a letter: Qt gives the text up and reads on behind
    Records rest;
    for (int i = 1; i < count; ++i)
        rest << eventRecord(2 * i + 1);
    bytes += SceneBytes::block(rest).mid(4);
    GraphTab tab;
    SceneBytes::load(tab.scene, bytes);
    QCOMPARE(tab.scene.getNodes().size(), std::size_t(count));
    QCOMPARE(tab.scene.getNodes().back()->getTitle(), QStringLiteral("Title %1").arg(2 * count - 1));
}

QTEST_MAIN(tst_NodegraphSceneFileReading)
#include "tst_nodegraphscene_file_reading.moc"
