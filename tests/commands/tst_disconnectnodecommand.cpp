#include "commands/disconnectnodecommand.h"

#include "commands/graphtab.h"

#include <QSignalSpy>

class tst_DisconnectNodeCommand : public TestCase
{
    Q_OBJECT

private slots:
    void isNamedForTheUndoMenu();
    void changesNothingBeforeItRuns();
    void disconnectsAndConnectsAgainAndAgain();
    void leavesTheOtherNodesOfAnOutputConnected();
    void publishesTheStory();
    void disconnectsWhateverFeedsTheNodeThen();
    void undoReplacesWhateverFeedsTheNodeThen();
    void undoThatWouldCloseACycleIsRefused();
    void redoOfAFreeInputChangesNothing();
    void redoWithTheNodeGoneDoesNothing();
    void undoWithANodeThatIsGoneDoesNothing_data();
    void undoWithANodeThatIsGoneDoesNothing();
    void commandsNeverMerge();
};

void tst_DisconnectNodeCommand::isNamedForTheUndoMenu()
{
    GraphTab tab;
    addChain(tab.scene, 2);
    tab.stack.push(new DisconnectNodeCommand(&tab.scene, 1, 0));
    QCOMPARE(tab.stack.undoText(), QStringLiteral("Disonnect Node"));
}

void tst_DisconnectNodeCommand::changesNothingBeforeItRuns()
{
    GraphTab tab;
    addChain(tab.scene, 2);
    const DisconnectNodeCommand command(&tab.scene, 1, 0);
    QCOMPARE(connections(tab.scene), QStringList{"1 from 0"});
}

void tst_DisconnectNodeCommand::disconnectsAndConnectsAgainAndAgain()
{
    GraphTab tab;
    addChain(tab.scene, 3);
    LogCapture log;
    tab.stack.push(new DisconnectNodeCommand(&tab.scene, 1, 0));
    for (int round = 0; round < 2; ++round) {
        QCOMPARE(connections(tab.scene), QStringList{"2 from 1"});
        QCOMPARE(log.lines(), (QStringList{"Disconnected node  1"}));
        log.clear();
        tab.stack.undo();
        QCOMPARE(connections(tab.scene), (QStringList{"1 from 0", "2 from 1"}));
        QCOMPARE(log.lines(), (QStringList{"Connected node  1  to  0"}));
        log.clear();
        tab.stack.redo();
    }
}

void tst_DisconnectNodeCommand::leavesTheOtherNodesOfAnOutputConnected()
{
    GraphTab tab;
    addChain(tab.scene, 1);
    tab.addBehind(tab.node(0));
    tab.addBehind(tab.node(0));
    tab.stack.push(new DisconnectNodeCommand(&tab.scene, 1, 0));
    QCOMPARE(connections(tab.scene), QStringList{"2 from 0"});
    QCOMPARE(tab.node(0)->outSocket()->connectedSocket(), tab.node(2)->inSocket());
    tab.stack.undo();
    QCOMPARE(connections(tab.scene), (QStringList{"1 from 0", "2 from 0"}));
    QCOMPARE(indicesOf(tab.node(0)->nextNodes()), (QList<int>{2, 1}));
}

void tst_DisconnectNodeCommand::publishesTheStory()
{
    GraphTab tab;
    addChain(tab.scene, 3);
    QSignalSpy stories(&tab.scene, &NodegraphScene::s_updateStory);
    tab.stack.push(new DisconnectNodeCommand(&tab.scene, 1, 0));
    QCOMPARE(indicesOf(stories.last().first().value<std::vector<Node *>>()), (QList<int>{1, 2}));
    tab.stack.undo();
    QCOMPARE(indicesOf(stories.last().first().value<std::vector<Node *>>()), (QList<int>{0, 1, 2}));
}

void tst_DisconnectNodeCommand::disconnectsWhateverFeedsTheNodeThen()
{
    GraphTab tab;
    addChain(tab.scene, 2);
    addLoose(tab.scene, QPointF(100, 900));
    tab.scene.connectNodes(tab.node(1), tab.node(2));
    tab.stack.push(new DisconnectNodeCommand(&tab.scene, 1, 0));
    QCOMPARE(connections(tab.scene), QStringList());
}

void tst_DisconnectNodeCommand::undoReplacesWhateverFeedsTheNodeThen()
{
    GraphTab tab;
    addChain(tab.scene, 2);
    addLoose(tab.scene, QPointF(100, 900));
    tab.stack.push(new DisconnectNodeCommand(&tab.scene, 1, 0));
    tab.scene.connectNodes(tab.node(1), tab.node(2));
    tab.stack.undo();
    QCOMPARE(connections(tab.scene), QStringList{"1 from 0"});
}

void tst_DisconnectNodeCommand::undoThatWouldCloseACycleIsRefused()
{
    GraphTab tab;
    addChain(tab.scene, 2);
    tab.stack.push(new DisconnectNodeCommand(&tab.scene, 1, 0));
    tab.scene.connectNodes(tab.node(0), tab.node(1));
    tab.stack.undo();
    QCOMPARE(connections(tab.scene), QStringList{"0 from 1"});
}

void tst_DisconnectNodeCommand::redoOfAFreeInputChangesNothing()
{
    GraphTab tab;
    addChain(tab.scene, 2);
    const LogCapture log;
    tab.stack.push(new DisconnectNodeCommand(&tab.scene, 0, -1));
    QCOMPARE(connections(tab.scene), QStringList{"1 from 0"});
    QCOMPARE(log.lines(), (QStringList{"Disconnected node  0"}));
    tab.stack.undo();
    QCOMPARE(connections(tab.scene), QStringList{"1 from 0"});
}

void tst_DisconnectNodeCommand::redoWithTheNodeGoneDoesNothing()
{
    GraphTab tab;
    addChain(tab.scene, 2);
    const LogCapture log;
    tab.stack.push(new DisconnectNodeCommand(&tab.scene, 77, 0));
    QCOMPARE(connections(tab.scene), QStringList{"1 from 0"});
    QCOMPARE(log.lines(), QStringList());
}

void tst_DisconnectNodeCommand::undoWithANodeThatIsGoneDoesNothing_data()
{
    QTest::addColumn<QList<int>>("gone");
    QTest::newRow("downstream") << QList<int>{1};
    QTest::newRow("upstream") << QList<int>{0};
    QTest::newRow("both") << QList<int>{0, 1};
}

void tst_DisconnectNodeCommand::undoWithANodeThatIsGoneDoesNothing()
{
    QFETCH(QList<int>, gone);
    GraphTab tab;
    addChain(tab.scene, 2);
    tab.stack.push(new DisconnectNodeCommand(&tab.scene, 1, 0));
    for (const int index : gone)
        tab.scene.deleteNode(tab.node(index));
    flushDeferredDeletes();
    const LogCapture log;
    tab.stack.undo();
    QCOMPARE(connections(tab.scene), QStringList());
    QCOMPARE(log.lines(), QStringList());
}

void tst_DisconnectNodeCommand::commandsNeverMerge()
{
    GraphTab tab;
    addChain(tab.scene, 2);
    tab.stack.clear();
    tab.stack.push(new DisconnectNodeCommand(&tab.scene, 1, 0));
    tab.stack.push(new DisconnectNodeCommand(&tab.scene, 1, 0));
    QCOMPARE(tab.stack.count(), 2);
    QCOMPARE(tab.stack.command(0)->id(), -1);
}

QTEST_MAIN(tst_DisconnectNodeCommand)
#include "tst_disconnectnodecommand.moc"
