#include "commands/addnodecommand.h"

#include "commands/graphtab.h"

#include <QSignalSpy>

class tst_AddNodeCommand : public TestCase
{
    Q_OBJECT

private slots:
    void isNamedForTheUndoMenu();
    void changesNothingBeforeItRuns();
    void makesTheNodeThatItWasToldOf_data();
    void makesTheNodeThatItWasToldOf();
    void firstRunAttachesBehindTheCurrentNode();
    void undoTakesTheNodeAway();
    void undoDoesNothingWhenTheNodeIsGone();
    void undoTakesItsOwnNodeWhenItsIndexWasTaken();
    void undoTakesItsOwnNodeInASceneWithAHole();
    void redoLeavesOtherNodesAloneWhenItsIndexIsTakenMeanwhile();
    void undoGivesTheEndMarkBack();
    void undoGivesNoMarkBackToANodeThatIsGone();
    void undoLeavesAMarkThatTheUserMovedAway();
    void undoTakesNoMarkThatTheNodeWasNotGivenByAdding();
    void redoTakesTheEndMarkAgain();
    void redoTakesTheEndMarkFromWhoeverHasItNow();
    void markMovedAfterARedoStaysWhereItIs();
    void redoOfTheOnlyNodeMakesItTheEndAgain();
    void redoBringsTheNodeBackAsItStood();
    void redoKeepsEmptiedTexts();
    void redoAttachesToNoCurrentNode();
    void redoBringsNoConnectionThatWasTakenAway();
    void textsTypedAfterARedoSurviveTheNextRound();
    void threeAdditionsGoAndComeBack();
    void commandsNeverMerge();
};

void tst_AddNodeCommand::isNamedForTheUndoMenu()
{
    GraphTab tab;
    addChain(tab.scene, 1);
    QCOMPARE(tab.stack.undoText(), QStringLiteral("Add Node"));
}

void tst_AddNodeCommand::changesNothingBeforeItRuns()
{
    GraphTab tab;
    QSignalSpy stories(&tab.scene, &NodegraphScene::s_updateStory);
    const AddNodeCommand command(&tab.scene, QPointF(1, 2), 0, 0, QString());
    QVERIFY(tab.scene.nodes().empty());
    QCOMPARE(stories.count(), 0);
}

void tst_AddNodeCommand::makesTheNodeThatItWasToldOf_data()
{
    QTest::addColumn<QString>("name");
    QTest::addColumn<QString>("title");
    QTest::newRow("named") << QStringLiteral("The letter") << QStringLiteral("The letter");
    QTest::newRow("empty name") << QStringLiteral("") << QStringLiteral("Event");
    QTest::newRow("null name") << QString() << QStringLiteral("Event");
}

void tst_AddNodeCommand::makesTheNodeThatItWasToldOf()
{
    QFETCH(QString, name);
    QFETCH(QString, title);
    GraphTab tab;
    tab.stack.push(new AddNodeCommand(&tab.scene, QPointF(120.5, 80.25), 7, 0, name));
    QCOMPARE(tab.scene.nodes().size(), std::size_t(1));
    const Node *node = tab.node(7);
    QVERIFY(node);
    QCOMPARE(node->scenePos(), QPointF(120.5, 80.25));
    QCOMPARE(node->getType(), 0);
    QCOMPARE(node->title(), title);
    QCOMPARE(descriptionOf(node), QStringLiteral("Enter description"));
    QVERIFY(!node->isImportant());
    QCOMPARE(connections(tab.scene), QStringList());
}

void tst_AddNodeCommand::firstRunAttachesBehindTheCurrentNode()
{
    GraphTab tab;
    Node *first = addLoose(tab.scene, QPointF(100.75, 200.5));
    tab.scene.sl_selectCurrentNode(first);
    const LogCapture log;
    tab.stack.push(new AddNodeCommand(&tab.scene, QPointF(5000, 5000), 1, 0, QString()));
    Node *second = tab.node(1);
    const int expectedX = int(100.75 + first->boundingRect().width() + 100.0);
    QCOMPARE(second->scenePos(), QPointF(expectedX, 200));
    QCOMPARE(connections(tab.scene), QStringList{QStringLiteral("1 from 0")});
    QCOMPARE(tab.scene.currentNode(), second);
    QVERIFY(second->isSelected());
    QVERIFY(!first->isSelected());
    QCOMPARE(tab.scene.endOfStoryNode(), second);
    QCOMPARE(log.count(QStringLiteral("Connected node  1  to  0")), 1);
}

void tst_AddNodeCommand::undoTakesTheNodeAway()
{
    GraphTab tab;
    addChain(tab.scene, 2);
    const LogCapture log;
    tab.stack.undo();
    QCOMPARE(sortedIndices(tab.scene), QList<int>{0});
    QCOMPARE(connections(tab.scene), QStringList());
    QCOMPARE(tab.scene.currentNode(), nullptr);
    QCOMPARE(log.count(QStringLiteral("Deleted node  1")), 1);
    QCOMPARE(log.count(QStringLiteral("Disconnected node  1")), 1);
}

void tst_AddNodeCommand::undoDoesNothingWhenTheNodeIsGone()
{
    GraphTab tab;
    addChain(tab.scene, 2);
    tab.scene.deleteNode(tab.node(1));
    QSignalSpy stories(&tab.scene, &NodegraphScene::s_updateStory);
    const LogCapture log;
    tab.stack.undo();
    QCOMPARE(sortedIndices(tab.scene), QList<int>{0});
    QCOMPARE(log.lines(), QStringList());
    QCOMPARE(stories.count(), 0);
}

// The command used to look for the index that it had asked for, and so undid somebody else's node.
void tst_AddNodeCommand::undoTakesItsOwnNodeWhenItsIndexWasTaken()
{
    GraphTab tab;
    Node *holder = addLoose(tab.scene, QPointF(10, 10));
    tab.stack.push(new AddNodeCommand(&tab.scene, QPointF(900, 10), 0, 0, QStringLiteral("Second")));
    QCOMPARE(sortedIndices(tab.scene), (QList<int>{0, 2}));
    QCOMPARE(tab.node(2)->title(), QStringLiteral("Second"));

    tab.stack.undo();
    QCOMPARE(tab.scene.nodes(), std::vector<Node *>{holder});
    tab.stack.redo();
    QCOMPARE(sortedIndices(tab.scene), (QList<int>{0, 2}));
    QCOMPARE(tab.node(2)->title(), QStringLiteral("Second"));
    tab.stack.undo();
    QCOMPARE(tab.scene.nodes(), std::vector<Node *>{holder});
}

// A scene of two events with the indices 0 and 2 counts 2: the next event asks for an index that is taken.
void tst_AddNodeCommand::undoTakesItsOwnNodeInASceneWithAHole()
{
    GraphTab tab;
    addLoose(tab.scene, QPointF(10, 10));
    Node *moved = addLoose(tab.scene, QPointF(10, 900));
    moved->setIndex(2);
    Node *added = addLoose(tab.scene, QPointF(10, 1800));
    QCOMPARE(added->getIndex(), 3);
    QCOMPARE(sortedIndices(tab.scene), (QList<int>{0, 2, 3}));
    tab.stack.undo();
    QCOMPARE(sortedIndices(tab.scene), (QList<int>{0, 2}));
    QCOMPARE(tab.node(2), moved);
}

void tst_AddNodeCommand::redoLeavesOtherNodesAloneWhenItsIndexIsTakenMeanwhile()
{
    GraphTab tab;
    addChain(tab.scene, 1);
    typeTitle(tab.node(0), QStringLiteral("Mine"));
    tab.stack.undo();
    tab.scene.createNode(QPointF(700, 700), 0, 0, nullptr, QStringLiteral("Other"));
    Node *other = tab.node(0);

    tab.stack.redo();
    QCOMPARE(tab.scene.nodes().size(), std::size_t(2));
    const Node *mine = tab.scene.nodes().back();
    QCOMPARE(mine->title(), QStringLiteral("Mine"));
    QVERIFY(mine->isEndOfStory());
    QVERIFY(!other->isEndOfStory());
    tab.stack.undo();
    QCOMPARE(tab.scene.nodes(), std::vector<Node *>{other});
    QCOMPARE(tab.scene.endOfStoryNode(), other);
}

void tst_AddNodeCommand::undoGivesTheEndMarkBack()
{
    GraphTab tab;
    addChain(tab.scene, 3);
    QSignalSpy stories(&tab.scene, &NodegraphScene::s_updateStory);
    tab.stack.undo();
    QCOMPARE(tab.scene.endOfStoryNode(), tab.node(1));
    QVERIFY(tab.node(1)->isEndOfStory());
    QCOMPARE(indicesOf(tab.scene.story()), (QList<int>{0, 1}));
    QCOMPARE(indicesOf(stories.last().first().value<std::vector<Node *>>()), (QList<int>{0, 1}));
    tab.stack.undo();
    QCOMPARE(tab.scene.endOfStoryNode(), tab.node(0));
    tab.stack.undo();
    QCOMPARE(tab.scene.endOfStoryNode(), nullptr);
    QVERIFY(stories.last().first().value<std::vector<Node *>>().empty());
}

void tst_AddNodeCommand::undoGivesNoMarkBackToANodeThatIsGone()
{
    GraphTab tab;
    addLoose(tab.scene, QPointF(10, 900));
    tab.addBehind(tab.node(0));
    tab.scene.deleteNode(tab.node(0));
    tab.stack.undo();
    QVERIFY(tab.scene.nodes().empty());
    QCOMPARE(tab.scene.endOfStoryNode(), nullptr);
}

void tst_AddNodeCommand::undoLeavesAMarkThatTheUserMovedAway()
{
    GraphTab tab;
    Node *aside = addLoose(tab.scene, QPointF(10, 2000));
    addLoose(tab.scene, QPointF(10, 10));
    tab.scene.setEndOfStory(tab.node(1));
    tab.addBehind(tab.node(1));
    QCOMPARE(tab.scene.endOfStoryNode(), tab.node(2));
    tab.scene.setEndOfStory(aside);
    tab.stack.undo();
    QCOMPARE(tab.scene.endOfStoryNode(), aside);
    QVERIFY(!tab.node(1)->isEndOfStory());
    tab.stack.redo();
    QCOMPARE(tab.scene.endOfStoryNode(), aside);
    QVERIFY(!tab.node(2)->isEndOfStory());
}

void tst_AddNodeCommand::undoTakesNoMarkThatTheNodeWasNotGivenByAdding()
{
    GraphTab tab;
    Node *end = addLoose(tab.scene, QPointF(10, 10));
    addLoose(tab.scene, QPointF(10, 900));
    QCOMPARE(tab.scene.endOfStoryNode(), end);
    tab.stack.undo();
    QCOMPARE(tab.scene.endOfStoryNode(), end);
    tab.stack.redo();
    QCOMPARE(tab.scene.endOfStoryNode(), end);
    QVERIFY(!tab.node(1)->isEndOfStory());
}

void tst_AddNodeCommand::redoTakesTheEndMarkAgain()
{
    GraphTab tab;
    addChain(tab.scene, 2);
    tab.stack.undo();
    QSignalSpy stories(&tab.scene, &NodegraphScene::s_updateStory);
    tab.stack.redo();
    QCOMPARE(tab.scene.endOfStoryNode(), tab.node(1));
    QVERIFY(!tab.node(0)->isEndOfStory());
    QCOMPARE(indicesOf(stories.last().first().value<std::vector<Node *>>()), (QList<int>{0, 1}));
    tab.stack.undo();
    QCOMPARE(tab.scene.endOfStoryNode(), tab.node(0));
}

void tst_AddNodeCommand::redoTakesTheEndMarkFromWhoeverHasItNow()
{
    GraphTab tab;
    Node *aside = addLoose(tab.scene, QPointF(10, 2000));
    Node *first = addLoose(tab.scene, QPointF(10, 10));
    tab.scene.setEndOfStory(first);
    tab.addBehind(first);
    tab.stack.undo();
    QCOMPARE(tab.scene.endOfStoryNode(), first);
    tab.scene.setEndOfStory(aside);
    tab.stack.redo();
    QCOMPARE(tab.scene.endOfStoryNode(), tab.node(2));
    QVERIFY(!aside->isEndOfStory());
    tab.stack.undo();
    QCOMPARE(tab.scene.endOfStoryNode(), aside);
    QVERIFY(!first->isEndOfStory());
}

void tst_AddNodeCommand::markMovedAfterARedoStaysWhereItIs()
{
    GraphTab tab;
    Node *aside = addLoose(tab.scene, QPointF(10, 2000));
    addLoose(tab.scene, QPointF(10, 10));
    tab.scene.setEndOfStory(tab.node(1));
    tab.addBehind(tab.node(1));
    tab.stack.undo();
    tab.stack.redo();
    QCOMPARE(tab.scene.endOfStoryNode(), tab.node(2));
    tab.scene.setEndOfStory(aside);
    for (int i = 0; i < 2; ++i) {
        tab.stack.undo();
        QCOMPARE(tab.scene.endOfStoryNode(), aside);
        tab.stack.redo();
        QCOMPARE(tab.scene.endOfStoryNode(), aside);
    }
    QVERIFY(!tab.node(2)->isEndOfStory());
}

void tst_AddNodeCommand::redoOfTheOnlyNodeMakesItTheEndAgain()
{
    GraphTab tab;
    addChain(tab.scene, 1);
    tab.stack.undo();
    tab.stack.redo();
    QVERIFY(tab.node(0)->isEndOfStory());
    QCOMPARE(tab.scene.endOfStoryNode(), tab.node(0));
    QCOMPARE(indicesOf(tab.scene.story()), QList<int>{0});
}

void tst_AddNodeCommand::redoBringsTheNodeBackAsItStood()
{
    GraphTab tab;
    addChain(tab.scene, 2);
    Node *added = tab.node(1);
    added->setPos(333.5, 44.25);
    typeTitle(added, QStringLiteral("The letter"));
    typeDescription(added, QStringLiteral("It arrives\nat midnight."));
    added->setImportant(true);
    tab.stack.undo();
    QSignalSpy marks(&tab.scene, &NodegraphScene::s_importanceChanged);
    tab.stack.redo();

    Node *back = tab.node(1);
    QVERIFY(back);
    QCOMPARE(back->scenePos(), QPointF(333.5, 44.25));
    QCOMPARE(back->title(), QStringLiteral("The letter"));
    QCOMPARE(descriptionOf(back), QStringLiteral("It arrives\nat midnight."));
    QVERIFY(back->isImportant());
    QVERIFY(back->isEndOfStory());
    QCOMPARE(connections(tab.scene), QStringList{QStringLiteral("1 from 0")});
    QCOMPARE(marks.count(), 1);
    QCOMPARE(marks.first().at(0).value<Node *>(), back);
    QCOMPARE(marks.first().at(1).toBool(), true);
}

// An empty title means the default one to whoever makes a node, so it came back as "Event".
void tst_AddNodeCommand::redoKeepsEmptiedTexts()
{
    GraphTab tab;
    addChain(tab.scene, 1);
    typeTitle(tab.node(0), QString());
    typeDescription(tab.node(0), QString());
    tab.stack.undo();
    tab.stack.redo();
    QCOMPARE(tab.node(0)->title(), QString());
    QCOMPARE(descriptionOf(tab.node(0)), QString());
}

void tst_AddNodeCommand::redoAttachesToNoCurrentNode()
{
    GraphTab tab;
    Node *other = addLoose(tab.scene, QPointF(10, 10));
    addLoose(tab.scene, QPointF(70, 900));
    tab.stack.undo();
    tab.scene.sl_selectCurrentNode(other);
    tab.stack.redo();
    QCOMPARE(tab.node(1)->scenePos(), QPointF(70, 900));
    QCOMPARE(connections(tab.scene), QStringList());
    QCOMPARE(tab.scene.currentNode(), other);
    QCOMPARE(tab.scene.endOfStoryNode(), other);
}

// The connection of the attach rule has no command of its own, so only the node can tell that it was cut.
void tst_AddNodeCommand::redoBringsNoConnectionThatWasTakenAway()
{
    GraphTab tab;
    addChain(tab.scene, 2);
    tab.scene.disconnectNode(tab.node(1));
    tab.stack.undo();
    tab.stack.redo();
    QCOMPARE(connections(tab.scene), QStringList());
}

void tst_AddNodeCommand::textsTypedAfterARedoSurviveTheNextRound()
{
    GraphTab tab;
    addChain(tab.scene, 1);
    typeTitle(tab.node(0), QStringLiteral("One"));
    tab.stack.undo();
    tab.stack.redo();
    typeTitle(tab.node(0), QStringLiteral("Two"));
    typeDescription(tab.node(0), QStringLiteral("Later"));
    tab.node(0)->setPos(5, 6);
    tab.stack.undo();
    tab.stack.redo();
    QCOMPARE(tab.node(0)->title(), QStringLiteral("Two"));
    QCOMPARE(descriptionOf(tab.node(0)), QStringLiteral("Later"));
    QCOMPARE(tab.node(0)->scenePos(), QPointF(5, 6));
}

void tst_AddNodeCommand::threeAdditionsGoAndComeBack()
{
    GraphTab tab;
    const std::vector<Node *> chain = addChain(tab.scene, 3);
    QList<QPointF> places;
    for (const Node *node : chain) {
        typeTitle(node, QStringLiteral("Event %1").arg(node->getIndex()));
        places << node->scenePos();
    }
    for (int round = 0; round < 2; ++round) {
        tab.stack.setIndex(0);
        QVERIFY(tab.scene.nodes().empty());
        QCOMPARE(lineCount(tab.scene), 0);
        tab.stack.setIndex(3);
        QCOMPARE(indicesOf(tab.scene.nodes()), (QList<int>{0, 1, 2}));
        QCOMPARE(connections(tab.scene), (QStringList{"1 from 0", "2 from 1"}));
        QCOMPARE(indicesOf(tab.scene.story()), (QList<int>{0, 1, 2}));
        for (int index = 0; index < 3; ++index) {
            QCOMPARE(tab.node(index)->title(), QStringLiteral("Event %1").arg(index));
            QCOMPARE(tab.node(index)->scenePos(), places.at(index));
        }
    }
}

void tst_AddNodeCommand::commandsNeverMerge()
{
    GraphTab tab;
    addChain(tab.scene, 2);
    QCOMPARE(tab.stack.count(), 2);
    QCOMPARE(tab.stack.command(0)->id(), -1);
}

QTEST_MAIN(tst_AddNodeCommand)
#include "tst_addnodecommand.moc"
