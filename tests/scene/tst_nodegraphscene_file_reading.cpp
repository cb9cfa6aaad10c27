#include "scene/scenereading.h"

class tst_NodegraphSceneFileReading : public TestCase
{
    Q_OBJECT

private slots:
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
    void upstreamsAreKeptWhileNobodyConnects();
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
    QVERIFY(tab.scene.nodes().empty());
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
    QCOMPARE(indicesOf(tab.scene.nodes()), (QList<int>{0, 1, 2}));
    for (const Record &record : records) {
        const Node *node = tab.node(record.index);
        QCOMPARE(node->title(), record.title);
        QCOMPARE(node->scenePos(), record.pos);
        QCOMPARE(descriptionOf(node), record.description);
        QCOMPARE(node->isEndOfStory(), record.endOfStory == 1);
        QCOMPARE(node->isImportant(), record.important == 1);
    }
    QCOMPARE(connections(tab.scene), (QStringList{"1 from 0", "2 from 1"}));
    QCOMPARE(indicesOf(tab.scene.story()), (QList<int>{0, 1, 2}));
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
    QCOMPARE(tab.node(0)->title(), QStringLiteral("Title 0"));
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
    QCOMPARE(tab.node(0)->title(), QString());
    QCOMPARE(descriptionOf(tab.node(0)), QString());
    QCOMPARE(tab.node(1)->title(), QStringLiteral("Title 1"));
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
        QCOMPARE(tab.node(index)->isEndOfStory(), index == end);
    QCOMPARE(indicesOf(tab.scene.story()), QList<int>{end});
}

void tst_NodegraphSceneFileReading::lastEndMarkWins()
{
    GraphTab tab;
    load(tab, {eventRecord(0, -1, 1), eventRecord(1, -1, 1), eventRecord(2, -1, 1), eventRecord(3)});
    QCOMPARE(tab.scene.endOfStoryNode(), tab.node(2));
    QVERIFY(!tab.node(0)->isEndOfStory());
    QVERIFY(!tab.node(1)->isEndOfStory());
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
    QCOMPARE(tab.node(0)->isImportant(), important);
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
    QVERIFY(tab.scene.selectedNodes().empty());
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
    QCOMPARE(indicesOf(tab.scene.story()), (QList<int>{7, 5, 1}));
    QCOMPARE(tab.stack.count(), 2);
}

// The commands that connect may be run later, or by nobody.
void tst_NodegraphSceneFileReading::upstreamsAreKeptWhileNobodyConnects()
{
    const QByteArray bytes =
        SceneBytes::block({eventRecord(0), eventRecord(1, 0), eventRecord(2, 1, 1), eventRecord(3, 1)});
    NodegraphScene scene;
    SceneBytes::load(scene, bytes);
    for (const Node *node : scene.nodes())
        QVERIFY(!node->hasInput());
    QCOMPARE(SceneBytes::saved(scene).toHex(), bytes.toHex());
}

QTEST_MAIN(tst_NodegraphSceneFileReading)
#include "tst_nodegraphscene_file_reading.moc"
