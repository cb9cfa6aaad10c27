#include "app/storystage.h"

using namespace Qt::StringLiterals;

class tst_StoryTabs : public ProgramTest
{
    Q_OBJECT

private slots:
    void tabsAreNumberedByHowManyThereAre();
    void viewsKeepTheOrderOfTheirCreation();
    void closedTabIsTakenAwayByItsView();
    void closingTheOneInFrontShowsTheNextStory();
    void closingAllEmptiesBarAndPanel();
    void closingAllTellsOfEachEvent();
    void panelsEditsReachEveryTab();
};

void tst_StoryTabs::tabsAreNumberedByHowManyThereAre()
{
    StoryStage stage;
    QVERIFY(!stage.tabs.current());
    QVERIFY(!stage.tabs.at(0));
    stage.tabs.add(3);
    QCOMPARE(stage.bar->tabText(2), QStringLiteral("Story 3"));
    QCOMPARE(stage.bar->currentIndex(), 0);
    QCOMPARE(stage.tabs.current(), stage.tabs.views().front());
    stage.tabs.close(stage.tabs.at(0));
    stage.tabs.add();
    QCOMPARE(stage.bar->tabText(1), QStringLiteral("Story 3"));
    QCOMPARE(stage.bar->tabText(2), QStringLiteral("Story 3"));
    QVERIFY(stage.bar->tabsClosable());
}

void tst_StoryTabs::viewsKeepTheOrderOfTheirCreation()
{
    StoryStage stage;
    stage.tabs.add(3);
    const std::vector<NodegraphView *> made = stage.tabs.views();
    stage.bar->tabBar()->moveTab(0, 2);
    QCOMPARE(stage.tabs.views(), made);
    QCOMPARE(stage.tabs.at(2), made.at(0));
    QCOMPARE(stage.tabs.at(0), made.at(1));
}

void tst_StoryTabs::closedTabIsTakenAwayByItsView()
{
    StoryStage stage;
    stage.tabs.add(3);
    stage.bar->tabBar()->moveTab(0, 2);
    const QPointer<NodegraphView> closed = stage.tabs.at(2);
    const QPointer<NodegraphScene> itsScene = closed->nodegraphScene();
    stage.tabs.close(closed);
    QCOMPARE(stage.tabs.views().size(), std::size_t(2));
    QCOMPARE(stage.bar->indexOf(closed), -1);
    QVERIFY(closed); // its own button may have been pressed
    flushDeferredDeletes();
    QVERIFY(!closed);
    QVERIFY(!itsScene);
}

void tst_StoryTabs::closingTheOneInFrontShowsTheNextStory()
{
    StoryStage stage;
    stage.tabs.add(2);
    addChain(stage.scene(0), 1);
    addChain(stage.scene(1), 3);
    stage.scene(0).updateStory();
    QCOMPARE(stage.panel.ovNodes().size(), std::size_t(1));
    stage.tabs.close(stage.tabs.current());
    QCOMPARE(stage.panel.ovNodes().size(), std::size_t(3));
}

void tst_StoryTabs::closingAllEmptiesBarAndPanel()
{
    StoryStage stage;
    stage.tabs.add(2);
    addChain(stage.scene(1), 3);
    QCOMPARE(stage.panel.ovNodes().size(), std::size_t(3));
    const QPointer<NodegraphView> view = stage.tabs.views().back();
    stage.tabs.closeAll();
    QVERIFY(stage.tabs.views().empty());
    QCOMPARE(stage.bar->count(), 0);
    QVERIFY(stage.panel.ovNodes().empty());
    QVERIFY(!view);
    QVERIFY(!stage.tabs.current());
}

// They go as a whole, but who reads a log later looks for each of them.
void tst_StoryTabs::closingAllTellsOfEachEvent()
{
    StoryStage stage;
    stage.tabs.add(2);
    for (const int tab : {0, 1})
        addChain(stage.scene(tab), 3);
    LogCapture log;
    for (const int tab : {0, 1})
        stage.scene(tab).clear();
    const QStringList emptied = log.lines().filter(QRegularExpression(u"^(?!No of ovnodes)"_s));
    for (const int tab : {0, 1})
        addChain(stage.scene(tab), 3);
    log.clear();
    stage.tabs.closeAll();
    QCOMPARE(log.lines().filter(QRegularExpression(u"^(?!No of ovnodes)"_s)), emptied);
    QCOMPARE(log.count(u"No of ovnodes now:  0"_s), 1);
}

// By the number of the event, whichever tab is in front.
void tst_StoryTabs::panelsEditsReachEveryTab()
{
    StoryStage stage;
    stage.tabs.add(2);
    const std::vector<Node *> first = addChain(stage.scene(0), 1);
    const std::vector<Node *> second = addChain(stage.scene(1), 1);
    auto *entry = dynamic_cast<EventData *>(stage.panel.ovNodes().front()->eventData());
    entry->setDescription(QStringLiteral("Low water"));
    emit stage.panel.s_nodeChanged(entry, 0);
    QCOMPARE(first.front()->payload()->eventContent()->getDescription(), QStringLiteral("Low water"));
    QCOMPARE(second.front()->payload()->eventContent()->getDescription(), QStringLiteral("Low water"));
}

QTEST_MAIN(tst_StoryTabs)
#include "tst_storytabs.moc"
