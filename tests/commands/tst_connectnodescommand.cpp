#include "commands/connectnodescommand.h"

#include "commands/graphtab.h"

#include <QSignalSpy>

namespace {

/// Three events that are not connected; 0 is the end of the story.
void addThreeLoose(GraphTab &tab)
{
    for (int i = 0; i < 3; ++i)
        addLoose(tab.scene, QPointF(100, 100 + 600 * i));
    tab.stack.clear();
}

} // namespace

class tst_ConnectNodesCommand : public TestCase
{
    Q_OBJECT

private slots:
    void isNamedForTheUndoMenu();
    void changesNothingBeforeItRuns();
    void connectsAndDisconnectsAgainAndAgain();
    void publishesTheStory();
    void replacedConnectionDoesNotComeBack();
    void undoDisconnectsWhateverFeedsTheNodeThen();
    void redoWithANodeThatIsGoneDoesNothing_data();
    void redoWithANodeThatIsGoneDoesNothing();
    void undoWithTheNodeGoneDoesNothing();
    void findsNodesThatWereMadeAnew();
    void refusesACycle_data();
    void refusesACycle();
    void commandsNeverMerge();
};

void tst_ConnectNodesCommand::isNamedForTheUndoMenu()
{
    GraphTab tab;
    addThreeLoose(tab);
    tab.stack.push(new ConnectNodesCommand(&tab.scene, 1, 0));
    QCOMPARE(tab.stack.undoText(), QStringLiteral("Connect Nodes"));
}

void tst_ConnectNodesCommand::changesNothingBeforeItRuns()
{
    GraphTab tab;
    addThreeLoose(tab);
    const ConnectNodesCommand command(&tab.scene, 1, 0);
    QCOMPARE(connections(tab.scene), QStringList());
}

void tst_ConnectNodesCommand::connectsAndDisconnectsAgainAndAgain()
{
    GraphTab tab;
    addThreeLoose(tab);
    LogCapture log;
    tab.stack.push(new ConnectNodesCommand(&tab.scene, 2, 1));
    for (int round = 0; round < 2; ++round) {
        QCOMPARE(connections(tab.scene), QStringList{"2 from 1"});
        QCOMPARE(log.lines(), (QStringList{"Connected node  2  to  1"}));
        log.clear();
        tab.stack.undo();
        QCOMPARE(connections(tab.scene), QStringList());
        QCOMPARE(log.lines(), (QStringList{"Disconnected node  2"}));
        log.clear();
        tab.stack.redo();
    }
}

void tst_ConnectNodesCommand::publishesTheStory()
{
    GraphTab tab;
    addThreeLoose(tab);
    QSignalSpy stories(&tab.scene, &NodegraphScene::s_updateStory);
    tab.stack.push(new ConnectNodesCommand(&tab.scene, 0, 2));
    QCOMPARE(indicesOf(stories.last().first().value<std::vector<Node *>>()), (QList<int>{2, 0}));
    tab.stack.undo();
    QCOMPARE(indicesOf(stories.last().first().value<std::vector<Node *>>()), QList<int>{0});
}

void tst_ConnectNodesCommand::replacedConnectionDoesNotComeBack()
{
    GraphTab tab;
    addThreeLoose(tab);
    tab.stack.push(new ConnectNodesCommand(&tab.scene, 1, 0));
    tab.stack.push(new ConnectNodesCommand(&tab.scene, 1, 2));
    QCOMPARE(connections(tab.scene), QStringList{"1 from 2"});
    QVERIFY(!tab.node(0)->outSocket()->getIsConnected());
    tab.stack.undo();
    QCOMPARE(connections(tab.scene), QStringList());
}

void tst_ConnectNodesCommand::undoDisconnectsWhateverFeedsTheNodeThen()
{
    GraphTab tab;
    addThreeLoose(tab);
    tab.stack.push(new ConnectNodesCommand(&tab.scene, 1, 0));
    tab.scene.connectNodes(tab.node(1), tab.node(2));
    QCOMPARE(connections(tab.scene), QStringList{"1 from 2"});
    tab.stack.undo();
    QCOMPARE(connections(tab.scene), QStringList());
}

void tst_ConnectNodesCommand::redoWithANodeThatIsGoneDoesNothing_data()
{
    QTest::addColumn<int>("downstream");
    QTest::addColumn<int>("upstream");
    QTest::newRow("downstream gone") << 77 << 0;
    QTest::newRow("upstream gone") << 0 << 77;
    QTest::newRow("both gone") << 77 << 78;
}

void tst_ConnectNodesCommand::redoWithANodeThatIsGoneDoesNothing()
{
    QFETCH(int, downstream);
    QFETCH(int, upstream);
    GraphTab tab;
    addThreeLoose(tab);
    const LogCapture log;
    tab.stack.push(new ConnectNodesCommand(&tab.scene, downstream, upstream));
    QCOMPARE(connections(tab.scene), QStringList());
    QCOMPARE(log.lines(), QStringList());
}

void tst_ConnectNodesCommand::undoWithTheNodeGoneDoesNothing()
{
    GraphTab tab;
    addThreeLoose(tab);
    tab.stack.push(new ConnectNodesCommand(&tab.scene, 1, 0));
    tab.scene.deleteNode(tab.node(1));
    const LogCapture log;
    tab.stack.undo();
    QCOMPARE(log.lines(), QStringList());
    QCOMPARE(sortedIndices(tab.scene), (QList<int>{0, 2}));
}

// Both nodes die and come back between the command's runs; it must not remember where they were.
void tst_ConnectNodesCommand::findsNodesThatWereMadeAnew()
{
    GraphTab tab;
    addThreeLoose(tab);
    tab.stack.clear();
    tab.scene.sl_lastMousePos(QPointF(2000, 100));
    tab.scene.sl_addEventNode();
    tab.scene.sl_deselectCurrentNode();
    tab.stack.push(new ConnectNodesCommand(&tab.scene, 3, 2));
    tab.stack.setIndex(0);
    flushDeferredDeletes();
    QCOMPARE(sortedIndices(tab.scene), (QList<int>{0, 1, 2}));
    tab.stack.setIndex(2);
    QCOMPARE(connections(tab.scene), QStringList{"3 from 2"});
    tab.stack.undo();
    QCOMPARE(connections(tab.scene), QStringList());
}

void tst_ConnectNodesCommand::refusesACycle_data()
{
    QTest::addColumn<int>("downstream");
    QTest::addColumn<int>("upstream");
    QTest::newRow("itself") << 0 << 0;
    QTest::newRow("two nodes") << 0 << 1;
    QTest::newRow("three nodes") << 0 << 2;
}

void tst_ConnectNodesCommand::refusesACycle()
{
    QFETCH(int, downstream);
    QFETCH(int, upstream);
    GraphTab tab;
    addChain(tab.scene, 3);
    const LogCapture log;
    tab.stack.push(new ConnectNodesCommand(&tab.scene, downstream, upstream));
    QCOMPARE(connections(tab.scene), (QStringList{"1 from 0", "2 from 1"}));
    QCOMPARE(log.lines(), QStringList());
}

void tst_ConnectNodesCommand::commandsNeverMerge()
{
    GraphTab tab;
    addThreeLoose(tab);
    tab.stack.push(new ConnectNodesCommand(&tab.scene, 1, 0));
    tab.stack.push(new ConnectNodesCommand(&tab.scene, 1, 0));
    QCOMPARE(tab.stack.count(), 2);
    QCOMPARE(tab.stack.command(0)->id(), -1);
}

QTEST_MAIN(tst_ConnectNodesCommand)
#include "tst_connectnodescommand.moc"
