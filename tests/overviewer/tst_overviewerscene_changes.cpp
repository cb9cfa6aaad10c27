#include "overviewer/panelstory.h"

class tst_OverViewerScene_Changes : public TestCase
{
    Q_OBJECT

private slots:
    void filterShowsImportantEventsOnly();
    void filterWithoutImportantEventsEmptiesThePanel();
    void filterStaysOnForTheNextStory();
    void importanceComesAndGoesAtTheStoryPosition();
    void importanceChangeRebuilds_data();
    void importanceChangeRebuilds();
    void importanceOfPastedEventsWaitsForTheirStory();

    void updatedNodeIsRefreshed();
    void updatedNodeOutsideTheStoryIsIgnored();
    void filteredNodeIsIgnored();
    void everyEntryOfANodeIsRefreshed();
    void editedEntryIsReported();
    void panelEditReachesTheGraphOnce();
    void changedIndexIsTakenOver();
    void changedIndexOfAStrangerIsIgnored();
    void findsTheFirstEntryOfAnIndex();
    void forgetsAStoryWhoseSceneGoes();
    void keepsAStoryWhenAnotherSceneGoes();
};

void tst_OverViewerScene_Changes::filterShowsImportantEventsOnly()
{
    Story story(4);
    story.graph.toggleImportance(story.nodes[3]);
    story.graph.toggleImportance(story.nodes[1]);
    const auto old = watch(story.panel);
    LogCapture log;
    story.panel.sl_setFilter_important(true);
    QCOMPARE(log.lines(), QStringList({u"Setting filter"_s, u"No of ovnodes now:  2"_s}));
    QCOMPARE(indices(story.panel), QList<int>({1, 3}));
    QVERIFY(allGone(old));
    verifyStacked(story.panel);
    log.clear();
    story.panel.sl_setFilter_important(false);
    QCOMPARE(log.lines(), QStringList({u"Setting filter"_s, u"No of ovnodes now:  4"_s}));
    QCOMPARE(indices(story.panel), QList<int>({0, 1, 2, 3}));
    verifyStacked(story.panel);
}

void tst_OverViewerScene_Changes::filterWithoutImportantEventsEmptiesThePanel()
{
    Story story(3);
    const LogCapture log;
    story.panel.sl_setFilter_important(true);
    QVERIFY(story.panel.ovNodes().empty());
    QVERIFY(story.panel.items().isEmpty());
    QVERIFY(log.contains(u"No of ovnodes now:  0"_s));
    story.panel.sl_setFilter_important(false);
    QCOMPARE(indices(story.panel), QList<int>({0, 1, 2}));
    verifyStacked(story.panel);
}

void tst_OverViewerScene_Changes::filterStaysOnForTheNextStory()
{
    Story story(3);
    story.graph.toggleImportance(story.nodes[2]);
    story.panel.sl_setFilter_important(true);
    story.panel.sl_recieveNodes(story.nodes);
    QCOMPARE(indices(story.panel), QList<int>({2}));
}

void tst_OverViewerScene_Changes::importanceComesAndGoesAtTheStoryPosition()
{
    Story story(4);
    story.panel.sl_setFilter_important(true);
    story.graph.toggleImportance(story.nodes[3]);
    QCOMPARE(indices(story.panel), QList<int>({3}));
    story.graph.toggleImportance(story.nodes[0]);
    QCOMPARE(indices(story.panel), QList<int>({0, 3}));
    story.graph.toggleImportance(story.nodes[2]);
    QCOMPARE(indices(story.panel), QList<int>({0, 2, 3}));
    verifyStacked(story.panel);
    story.graph.toggleImportance(story.nodes[0]);
    QCOMPARE(indices(story.panel), QList<int>({2, 3}));
    verifyStacked(story.panel);
}

void tst_OverViewerScene_Changes::importanceChangeRebuilds_data()
{
    QTest::addColumn<bool>("listed");
    QTest::addColumn<QStringList>("log");
    QTest::newRow("listed") << true
                            << QStringList(
                                   {u"Found ovNode"_s, u"Setting importance"_s, u"No of ovnodes now:  2"_s});
    QTest::newRow("not listed") << false << QStringList({u"No of ovnodes now:  2"_s});
}

void tst_OverViewerScene_Changes::importanceChangeRebuilds()
{
    QFETCH(bool, listed);
    QFETCH(QStringList, log);
    Story story(3);
    story.panel.sl_recieveNodes({story.nodes[0], story.nodes[1]});
    const auto old = watch(story.panel);
    const LogCapture capture;
    story.panel.sl_importanceChanged(listed ? story.nodes[1] : story.nodes[2], true);
    QCOMPARE(capture.lines(), log);
    QVERIFY(allGone(old));
    QCOMPARE(indices(story.panel), QList<int>({0, 1}));
}

// With each of them the whole panel was made anew, so that pasting took time by the square of their number.
void tst_OverViewerScene_Changes::importanceOfPastedEventsWaitsForTheirStory()
{
    Story story(3);
    for (Node *node : story.nodes)
        story.graph.toggleImportance(node);
    story.graph.sl_deselectCurrentNode();
    story.graph.selectAll();
    story.graph.copyNodes();
    const auto old = watch(story.panel);
    QVector<bool> gone;
    connect(&story.graph, &NodegraphScene::s_importanceChanged, this, [&] { gone << !old[0]; });
    const LogCapture log;
    story.graph.pasteNodes();
    QCOMPARE(gone, QVector<bool>(3, false));
    QCOMPARE(log.lines().filter(u"No of ovnodes now:"_s), QStringList(4, u"No of ovnodes now:  3"_s));
    QVERIFY(allGone(old));
    QCOMPARE(indices(story.panel), QList<int>({3, 4, 5}));
}

void tst_OverViewerScene_Changes::updatedNodeIsRefreshed()
{
    Story story(2);
    const std::vector<OvNode *> entries = story.panel.ovNodes();
    QSignalSpy reported(&story.panel, &OverViewerScene::s_nodeChanged);
    story.nodes[0]->payload()->eventContent()->setDescription(u"not reported yet"_s);
    edit(textOf(story.nodes[1]), u"typed in the graph"_s);
    QCOMPARE(texts(story.panel), QStringList({u"Enter description"_s, u"typed in the graph"_s}));
    QCOMPARE(story.panel.ovNodes(), entries);
    QCOMPARE(reported.count(), 0);
}

void tst_OverViewerScene_Changes::updatedNodeOutsideTheStoryIsIgnored()
{
    Story story(2);
    story.panel.sl_recieveNodes({story.nodes[0]});
    // The same number in another graph.
    NodegraphScene other;
    QUndoStack otherStack;
    pushCommandsOn(other, otherStack);
    Node *namesake = addChain(other, 1).front();
    QCOMPARE(namesake->getIndex(), 0);
    edit(textOf(namesake), u"stranger"_s);
    story.nodes[0]->payload()->eventContent()->setDescription(u"not reported yet"_s);
    story.panel.sl_updatedNode(namesake);
    story.panel.sl_updatedNode(story.nodes[1]);
    QCOMPARE(texts(story.panel), QStringList({u"Enter description"_s}));
}

void tst_OverViewerScene_Changes::filteredNodeIsIgnored()
{
    Story story(2);
    story.graph.toggleImportance(story.nodes[0]);
    story.panel.sl_setFilter_important(true);
    edit(textOf(story.nodes[1]), u"hidden"_s);
    QCOMPARE(texts(story.panel), QStringList({u"Enter description"_s}));
    story.panel.sl_setFilter_important(false);
    QCOMPARE(texts(story.panel), QStringList({u"Enter description"_s, u"hidden"_s}));
}

void tst_OverViewerScene_Changes::everyEntryOfANodeIsRefreshed()
{
    Story story(2);
    Node *twice = story.nodes[0];
    story.panel.sl_recieveNodes({twice, story.nodes[1], twice});
    twice->payload()->eventContent()->setDescription(u"both"_s);
    story.panel.sl_updatedNode(twice);
    QCOMPARE(texts(story.panel), QStringList({u"both"_s, u"Enter description"_s, u"both"_s}));
}

void tst_OverViewerScene_Changes::editedEntryIsReported()
{
    Story story(3);
    OvNode *entry = story.panel.ovNodes()[1];
    QSignalSpy reported(&story.panel, SIGNAL(s_nodeChanged(QGraphicsItem*,int)));
    edit(textOf(entry), u"changed"_s);
    QVERIFY(reported.count() > 0);
    QCOMPARE(reported.last().at(0).value<QGraphicsItem *>(), entry->eventData());
    QCOMPARE(reported.last().at(1).toInt(), 1);
    reported.clear();
    entry->setIndex(12);
    story.panel.sl_updateOvNode(entry);
    QCOMPARE(reported.count(), 1);
    QCOMPARE(reported.at(0).at(0).value<QGraphicsItem *>(), entry->eventData());
    QCOMPARE(reported.at(0).at(1).toInt(), 12);
}

void tst_OverViewerScene_Changes::panelEditReachesTheGraphOnce()
{
    Story story(3);
    const std::vector<OvNode *> entries = story.panel.ovNodes();
    QSignalSpy updated(&story.graph, &NodegraphScene::s_updateNode);
    QSignalSpy published(&story.graph, &NodegraphScene::s_updateStory);
    QTextCursor(textOf(entries[1])->document()).insertText(u"!"_s);
    QCOMPARE(textOf(story.nodes[1])->toPlainText(), u"!Enter description"_s);
    QCOMPARE(textOf(story.nodes[0])->toPlainText(), u"Enter description"_s);
    QCOMPARE(textOf(story.nodes[2])->toPlainText(), u"Enter description"_s);
    QCOMPARE(updated.count(), 0);
    QCOMPARE(published.count(), 0);
    QCOMPARE(story.panel.ovNodes(), entries);
}

void tst_OverViewerScene_Changes::changedIndexIsTakenOver()
{
    Story story(3);
    const std::vector<OvNode *> entries = story.panel.ovNodes();
    const LogCapture log;
    story.nodes[1]->setIndex(7); // reported before the node stores it
    QCOMPARE(log.lines(), QStringList({u"Old node index  1  New node index  7"_s, u"Found ovNode"_s,
                                       u"Changing ovNode index from:  1  to  7"_s}));
    QCOMPARE(indices(story.panel), QList<int>({0, 7, 2}));
    QCOMPARE(story.panel.ovNodes(), entries);
    edit(textOf(entries[1]), u"still mine"_s);
    QCOMPARE(textOf(story.nodes[1])->toPlainText(), u"still mine"_s);
}

void tst_OverViewerScene_Changes::changedIndexOfAStrangerIsIgnored()
{
    Story story(2);
    story.panel.sl_recieveNodes({story.nodes[0]});
    const auto entries = watch(story.panel);
    const LogCapture log;
    story.panel.sl_nodeIndexChanged(story.nodes[1], 9);
    QVERIFY(log.lines().isEmpty());
    QCOMPARE(indices(story.panel), QList<int>({0}));
    QVERIFY(entries[0]);
}

void tst_OverViewerScene_Changes::findsTheFirstEntryOfAnIndex()
{
    Story story(3);
    const std::vector<OvNode *> entries = story.panel.ovNodes();
    entries[0]->setIndex(5);
    entries[2]->setIndex(5);
    LogCapture log;
    QCOMPARE(story.panel.findOvNode(5), entries[0]);
    QCOMPARE(log.lines(), QStringList({u"Found ovNode"_s}));
    log.clear();
    QCOMPARE(story.panel.findOvNode(0), nullptr);
    QVERIFY(log.lines().isEmpty());
}

void tst_OverViewerScene_Changes::forgetsAStoryWhoseSceneGoes()
{
    OverViewerScene panel;
    {
        QUndoStack stack;
        const auto graph = std::make_unique<NodegraphScene>();
        pushCommandsOn(*graph, stack);
        panel.sl_recieveNodes(addChain(*graph, 3));
        const auto entries = watch(panel);
        panel.forgetScene(graph.get());
        QVERIFY(allGone(entries));
    }
    QVERIFY(panel.ovNodes().empty());
    panel.sl_setFilter_important(true);
    panel.sl_setFilter_important(false);
    QVERIFY(panel.ovNodes().empty());
}

void tst_OverViewerScene_Changes::keepsAStoryWhenAnotherSceneGoes()
{
    Story story(2);
    const NodegraphScene other;
    const auto entries = watch(story.panel);
    story.panel.forgetScene(&other);
    QCOMPARE(indices(story.panel), QList<int>({0, 1}));
    QVERIFY(entries[0] && entries[1]);
    OverViewerScene empty;
    empty.forgetScene(&other);
    QVERIFY(empty.ovNodes().empty());
}

QTEST_MAIN(tst_OverViewerScene_Changes)
#include "tst_overviewerscene_changes.moc"
