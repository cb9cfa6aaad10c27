#include "commands/delnodecommand.h"

#include "commands/graphtab.h"

#include <QSignalSpy>

// Qt's hook for watching objects come and go, as debugging tools use it; exported, but without a public
// header.
extern Q_DECL_IMPORT quintptr qtHookData[]; // NOLINT(readability-identifier-naming)

namespace {

/// Counts the objects that were made and not destroyed while it lives.
class ObjectCount
{
public:
    ObjectCount()
    {
        alive = 0;
        qtHookData[addHook] = reinterpret_cast<quintptr>(&ObjectCount::added);
        qtHookData[removeHook] = reinterpret_cast<quintptr>(&ObjectCount::removed);
    }
    ~ObjectCount()
    {
        qtHookData[addHook] = 0;
        qtHookData[removeHook] = 0;
    }
    ObjectCount(const ObjectCount &) = delete;
    ObjectCount &operator=(const ObjectCount &) = delete;

    int value() const { return alive; }

private:
    static void added(QObject *) { ++alive; }
    static void removed(QObject *) { --alive; }

    static constexpr int addHook = 3;
    static constexpr int removeHook = 4;
    static inline int alive = 0;
};

/// Deletes the node through a command on the tab's stack.
void deleteByCommand(GraphTab &tab, const Node *node)
{
    tab.stack.push(
        new DelNodeCommand(&tab.scene, node->scenePos(), node->getIndex(), node->payload(), node->title()));
}

/// 1 is fed by 0 and feeds 2 and 3; 3 is the end of the story.
void addFork(GraphTab &tab)
{
    addChain(tab.scene, 3);
    tab.addBehind(tab.node(1));
    tab.scene.sl_deselectCurrentNode();
    tab.scene.setEndOfStory(tab.node(3));
    tab.stack.clear();
}

const QStringList forkConnections{"1 from 0", "2 from 1", "3 from 1"};

} // namespace

class tst_DelNodeCommand : public TestCase
{
    Q_OBJECT

private slots:
    void isNamedForTheUndoMenu();
    void changesNothingBeforeItRuns();
    void deletesTheNodeAndItsConnections();
    void redoDoesNothingWhenTheNodeIsGone();
    void nodeThatIsNotThereIsNotDeleted();
    void undoBringsEverythingBackTwice();
    void whoHearsOfTheIndexFindsTheDescription();
    void undoIgnoresWhichNodeIsCurrent_data();
    void undoIgnoresWhichNodeIsCurrent();
    void undoWithoutInputMakesNoInputConnection();
    void undoWithoutNeighboursThatAreGoneMeanwhile_data();
    void undoWithoutNeighboursThatAreGoneMeanwhile();
    void undoTakesTheDownstreamNodesBackFromOthers();
    void undoRestoresImportance_data();
    void undoRestoresImportance();
    void undoRestoresTheEndMarkIfItIsFree();
    void undoLeavesTheEndMarkWithWhoeverTookIt();
    void undoGivesNoEndMarkToANodeThatHadNone();
    void undoOfTheWholeCanvasEndsWithTheSameEnd();
    void undoPublishesTheWholeStory();
    void undoKeepsEmptiedTexts();
    void restoredNodeReportsToTheScene();
    void whatWasDoneAfterAnUndoSurvivesRedoAndUndo();
    void marksOfAfterAnUndoSurviveRedoAndUndo();
    void takesNoOtherNodeWhenItsIndexIsTakenMeanwhile();
    void eventWithTheIndexOfNoneIsNotTakenForUpstream();
    void payloadStaysTheNodesOwn();
    void keepsTheTextAndNoObjects();
    void commandsNeverMerge();
};

void tst_DelNodeCommand::isNamedForTheUndoMenu()
{
    GraphTab tab;
    addChain(tab.scene, 1);
    tab.scene.deleteSelectedNodes(nullptr);
    QCOMPARE(tab.stack.undoText(), QStringLiteral("Delete Node"));
}

void tst_DelNodeCommand::changesNothingBeforeItRuns()
{
    GraphTab tab;
    addFork(tab);
    QSignalSpy stories(&tab.scene, &NodegraphScene::s_updateStory);
    const Node *node = tab.node(1);
    const DelNodeCommand command(&tab.scene, node->scenePos(), 1, node->payload(), node->title());
    QCOMPARE(connections(tab.scene), forkConnections);
    QCOMPARE(tab.scene.items().count(node->payload()), 1);
    QCOMPARE(stories.count(), 0);
}

void tst_DelNodeCommand::deletesTheNodeAndItsConnections()
{
    GraphTab tab;
    addFork(tab);
    const LogCapture log;
    deleteByCommand(tab, tab.node(1));
    QCOMPARE(sortedIndices(tab.scene), (QList<int>{0, 2, 3}));
    QCOMPARE(connections(tab.scene), QStringList());
    QCOMPARE(log.lines(), (QStringList{"Disconnected node  2", "Disconnected node  3", "Disconnected node  1",
                                       "Deleted node  1"}));
}

void tst_DelNodeCommand::redoDoesNothingWhenTheNodeIsGone()
{
    GraphTab tab;
    addFork(tab);
    deleteByCommand(tab, tab.node(1));
    tab.stack.undo();
    tab.scene.deleteNode(tab.node(1));
    QSignalSpy stories(&tab.scene, &NodegraphScene::s_updateStory);
    const LogCapture log;
    tab.stack.redo();
    QCOMPARE(sortedIndices(tab.scene), (QList<int>{0, 2, 3}));
    QCOMPARE(log.lines(), QStringList());
    QCOMPARE(stories.count(), 0);
}

void tst_DelNodeCommand::nodeThatIsNotThereIsNotDeleted()
{
    GraphTab tab;
    addFork(tab);
    const NodeData data(0, nullptr);
    tab.stack.push(new DelNodeCommand(&tab.scene, QPointF(), 99, &data, QStringLiteral("Nobody")));
    QCOMPARE(indicesOf(tab.scene.nodes()), (QList<int>{0, 1, 2, 3}));
    QCOMPARE(tab.scene.endOfStoryNode(), tab.node(3));
}

void tst_DelNodeCommand::undoBringsEverythingBackTwice()
{
    GraphTab tab;
    addFork(tab);
    Node *node = tab.node(1);
    node->setPos(412.5, 77.25);
    typeTitle(node, QStringLiteral("The letter"));
    typeDescription(node, QStringLiteral("It arrives\nat midnight."));
    deleteByCommand(tab, node);
    for (int round = 0; round < 2; ++round) {
        tab.stack.undo();
        QCOMPARE(sortedIndices(tab.scene), (QList<int>{0, 1, 2, 3}));
        const Node *back = tab.node(1);
        QCOMPARE(back->scenePos(), QPointF(412.5, 77.25));
        QCOMPARE(back->title(), QStringLiteral("The letter"));
        QCOMPARE(descriptionOf(back), QStringLiteral("It arrives\nat midnight."));
        QCOMPARE(back->getType(), 0);
        QCOMPARE(connections(tab.scene), forkConnections);
        QCOMPARE(indicesOf(back->nextNodes()), (QList<int>{2, 3}));
        tab.stack.redo();
        QCOMPARE(sortedIndices(tab.scene), (QList<int>{0, 2, 3}));
        QCOMPARE(connections(tab.scene), QStringList());
    }
}

void tst_DelNodeCommand::whoHearsOfTheIndexFindsTheDescription()
{
    GraphTab tab;
    addFork(tab);
    typeDescription(tab.node(1), QStringLiteral("It arrives\nat midnight."));
    const QRectF outline = tab.node(1)->boundingRect();
    deleteByCommand(tab, tab.node(1));
    QStringList told;
    connect(&tab.scene, &NodegraphScene::s_nodeIndexChanged, this,
            [&told, outline](const Node *node, int index) {
                told << QStringLiteral("%1 %2").arg(index).arg(node->description());
                QCOMPARE(node->boundingRect(), outline);
            });
    tab.stack.undo();
    QCOMPARE(told, QStringList(QStringLiteral("1 It arrives\nat midnight.")));
}

void tst_DelNodeCommand::undoIgnoresWhichNodeIsCurrent_data()
{
    QTest::addColumn<int>("current");
    QTest::newRow("none") << -1;
    QTest::newRow("upstream") << 0;
    QTest::newRow("downstream") << 2;
    QTest::newRow("end of story") << 3;
    QTest::newRow("stranger") << 4;
}

// The rule that attaches a new node to the current one used to move and connect the node that came back.
void tst_DelNodeCommand::undoIgnoresWhichNodeIsCurrent()
{
    QFETCH(int, current);
    GraphTab tab;
    addFork(tab);
    addLoose(tab.scene, QPointF(3000, 3000));
    tab.node(1)->setPos(412, 77);
    deleteByCommand(tab, tab.node(1));
    Node *currentNode = tab.node(current);
    tab.scene.sl_selectCurrentNode(currentNode);
    tab.stack.undo();
    QCOMPARE(tab.node(1)->scenePos(), QPointF(412, 77));
    QCOMPARE(connections(tab.scene), forkConnections);
    QCOMPARE(tab.scene.currentNode(), currentNode);
    QCOMPARE(tab.scene.endOfStoryNode(), tab.node(3));
}

void tst_DelNodeCommand::undoWithoutInputMakesNoInputConnection()
{
    GraphTab tab;
    addChain(tab.scene, 2);
    deleteByCommand(tab, tab.node(0));
    tab.stack.undo();
    QVERIFY(!tab.node(0)->hasInput());
    QCOMPARE(tab.node(0)->getPrevIndex(), -1);
    QCOMPARE(connections(tab.scene), QStringList{"1 from 0"});
}

void tst_DelNodeCommand::undoWithoutNeighboursThatAreGoneMeanwhile_data()
{
    QTest::addColumn<QList<int>>("gone");
    QTest::addColumn<QStringList>("left");
    QTest::newRow("first downstream") << QList<int>{2} << QStringList{"1 from 0", "3 from 1"};
    QTest::newRow("last downstream") << QList<int>{3} << QStringList{"1 from 0", "2 from 1"};
    QTest::newRow("all downstream") << QList<int>{2, 3} << QStringList{"1 from 0"};
    QTest::newRow("upstream") << QList<int>{0} << QStringList{"2 from 1", "3 from 1"};
    QTest::newRow("everybody") << QList<int>{0, 2, 3} << QStringList();
}

void tst_DelNodeCommand::undoWithoutNeighboursThatAreGoneMeanwhile()
{
    QFETCH(QList<int>, gone);
    QFETCH(QStringList, left);
    GraphTab tab;
    addFork(tab);
    deleteByCommand(tab, tab.node(1));
    for (const int index : gone)
        tab.scene.deleteNode(tab.node(index));
    flushDeferredDeletes();
    tab.stack.undo();
    QVERIFY(tab.node(1));
    QCOMPARE(connections(tab.scene), left);
    tab.stack.redo();
    QCOMPARE(connections(tab.scene), QStringList());
}

void tst_DelNodeCommand::undoTakesTheDownstreamNodesBackFromOthers()
{
    GraphTab tab;
    addFork(tab);
    deleteByCommand(tab, tab.node(1));
    tab.scene.connectNodes(tab.node(2), tab.node(0));
    tab.stack.undo();
    QCOMPARE(connections(tab.scene), forkConnections);
}

void tst_DelNodeCommand::undoRestoresImportance_data()
{
    QTest::addColumn<bool>("important");
    QTest::newRow("important") << true;
    QTest::newRow("unimportant") << false;
}

void tst_DelNodeCommand::undoRestoresImportance()
{
    QFETCH(bool, important);
    GraphTab tab;
    addFork(tab);
    tab.node(1)->setImportant(important);
    deleteByCommand(tab, tab.node(1));
    QSignalSpy marks(&tab.scene, &NodegraphScene::s_importanceChanged);
    tab.stack.undo();
    QCOMPARE(tab.node(1)->isImportant(), important);
    QCOMPARE(marks.count(), important ? 1 : 0);
    tab.stack.redo();
    tab.stack.undo();
    QCOMPARE(tab.node(1)->isImportant(), important);
}

void tst_DelNodeCommand::undoRestoresTheEndMarkIfItIsFree()
{
    GraphTab tab;
    addFork(tab);
    QSignalSpy stories(&tab.scene, &NodegraphScene::s_updateStory);
    deleteByCommand(tab, tab.node(3));
    QCOMPARE(tab.scene.endOfStoryNode(), nullptr);
    QVERIFY(stories.last().first().value<std::vector<Node *>>().empty());
    for (int round = 0; round < 2; ++round) {
        tab.stack.undo();
        QCOMPARE(tab.scene.endOfStoryNode(), tab.node(3));
        QVERIFY(tab.node(3)->isEndOfStory());
        QCOMPARE(indicesOf(stories.last().first().value<std::vector<Node *>>()), (QList<int>{0, 1, 3}));
        tab.stack.redo();
    }
}

void tst_DelNodeCommand::undoLeavesTheEndMarkWithWhoeverTookIt()
{
    GraphTab tab;
    addFork(tab);
    deleteByCommand(tab, tab.node(3));
    tab.scene.setEndOfStory(tab.node(2));
    tab.stack.undo();
    QCOMPARE(tab.scene.endOfStoryNode(), tab.node(2));
    QVERIFY(!tab.node(3)->isEndOfStory());
    tab.stack.redo();
    tab.stack.undo();
    QCOMPARE(tab.scene.endOfStoryNode(), tab.node(2));
    QVERIFY(!tab.node(3)->isEndOfStory());
}

void tst_DelNodeCommand::undoGivesNoEndMarkToANodeThatHadNone()
{
    GraphTab tab;
    addFork(tab);
    deleteByCommand(tab, tab.node(3));
    deleteByCommand(tab, tab.node(1));
    tab.stack.undo();
    QCOMPARE(tab.scene.endOfStoryNode(), nullptr);
    QVERIFY(!tab.node(1)->isEndOfStory());
}

// The rule that makes the only node of a canvas the end of its story is for nodes that the user adds: here it
// would keep the mark from the node that had it.
void tst_DelNodeCommand::undoOfTheWholeCanvasEndsWithTheSameEnd()
{
    GraphTab tab;
    addChain(tab.scene, 3);
    tab.stack.clear();
    for (const int index : {2, 0, 1})
        deleteByCommand(tab, tab.node(index));
    QVERIFY(tab.scene.nodes().empty());
    tab.stack.setIndex(0);
    QCOMPARE(connections(tab.scene), (QStringList{"1 from 0", "2 from 1"}));
    QCOMPARE(tab.scene.endOfStoryNode(), tab.node(2));
    QVERIFY(!tab.node(0)->isEndOfStory());
    QVERIFY(!tab.node(1)->isEndOfStory());
    QCOMPARE(indicesOf(tab.scene.story()), (QList<int>{0, 1, 2}));
}

void tst_DelNodeCommand::undoPublishesTheWholeStory()
{
    GraphTab tab;
    addFork(tab);
    QSignalSpy stories(&tab.scene, &NodegraphScene::s_updateStory);
    deleteByCommand(tab, tab.node(1));
    QCOMPARE(indicesOf(stories.last().first().value<std::vector<Node *>>()), QList<int>{3});
    tab.stack.undo();
    QCOMPARE(indicesOf(stories.last().first().value<std::vector<Node *>>()), (QList<int>{0, 1, 3}));
}

// An empty title means the default one to whoever makes a node, so it came back as "Event".
void tst_DelNodeCommand::undoKeepsEmptiedTexts()
{
    GraphTab tab;
    addChain(tab.scene, 1);
    typeTitle(tab.node(0), QString());
    typeDescription(tab.node(0), QString());
    deleteByCommand(tab, tab.node(0));
    tab.stack.undo();
    QCOMPARE(tab.node(0)->title(), QString());
    QCOMPARE(descriptionOf(tab.node(0)), QString());
}

void tst_DelNodeCommand::restoredNodeReportsToTheScene()
{
    GraphTab tab;
    addFork(tab);
    deleteByCommand(tab, tab.node(1));
    tab.stack.undo();
    Node *back = tab.node(1);
    QSignalSpy changes(&tab.scene, &NodegraphScene::s_updateNode);
    typeDescription(back, QStringLiteral("Typed after the undo"));
    QCOMPARE(changes.count(), 1);
    QCOMPARE(changes.first().first().value<Node *>(), back);
    emit back->s_selected(back);
    QCOMPARE(tab.scene.currentNode(), back);
}

void tst_DelNodeCommand::whatWasDoneAfterAnUndoSurvivesRedoAndUndo()
{
    GraphTab tab;
    addFork(tab);
    deleteByCommand(tab, tab.node(1));
    tab.stack.undo();
    typeTitle(tab.node(1), QStringLiteral("Typed later"));
    typeDescription(tab.node(1), QStringLiteral("This too"));
    tab.node(1)->setPos(9, 8);
    tab.scene.disconnectNode(tab.node(2));
    tab.stack.redo();
    tab.stack.undo();
    QCOMPARE(tab.node(1)->title(), QStringLiteral("Typed later"));
    QCOMPARE(descriptionOf(tab.node(1)), QStringLiteral("This too"));
    QCOMPARE(tab.node(1)->scenePos(), QPointF(9, 8));
    QCOMPARE(connections(tab.scene), (QStringList{"1 from 0", "3 from 1"}));
}

void tst_DelNodeCommand::marksOfAfterAnUndoSurviveRedoAndUndo()
{
    GraphTab tab;
    addFork(tab);
    deleteByCommand(tab, tab.node(1));
    tab.stack.undo();
    tab.node(1)->setImportant(true);
    tab.scene.setEndOfStory(tab.node(1));
    tab.stack.redo();
    QCOMPARE(tab.scene.endOfStoryNode(), nullptr);
    tab.stack.undo();
    QVERIFY(tab.node(1)->isImportant());
    QCOMPARE(tab.scene.endOfStoryNode(), tab.node(1));
}

void tst_DelNodeCommand::takesNoOtherNodeWhenItsIndexIsTakenMeanwhile()
{
    GraphTab tab;
    addChain(tab.scene, 1);
    typeTitle(tab.node(0), QStringLiteral("Mine"));
    deleteByCommand(tab, tab.node(0));
    tab.scene.createNode(QPointF(700, 700), 0, 0, nullptr, QStringLiteral("Other"));
    Node *other = tab.node(0);
    tab.stack.undo();
    QCOMPARE(tab.scene.nodes().size(), std::size_t(2));
    QCOMPARE(tab.scene.nodes().back()->title(), QStringLiteral("Mine"));
    tab.stack.redo();
    QCOMPARE(tab.scene.nodes(), std::vector<Node *>{other});
}

// A damaged file can give an event the index that means none. Undoing a deletion then took that event for
// what had led to the deleted one, and the true connection, which would have closed a cycle, was not made.
void tst_DelNodeCommand::eventWithTheIndexOfNoneIsNotTakenForUpstream()
{
    GraphTab tab;
    addChain(tab.scene, 2);
    Node *second = tab.node(1);
    second->setIndex(-1);
    tab.scene.deselectAll();
    tab.scene.sl_selectCurrentNode(tab.node(0));
    tab.scene.deleteSelectedNodes(nullptr);
    QVERIFY(!second->hasInput());
    tab.stack.undo();
    QCOMPARE(second->prevNode(), tab.node(0));
    QVERIFY(!tab.node(0)->hasInput());
}

// The command works on a copy: neither the node nor the one that comes back gives its payload away.
void tst_DelNodeCommand::payloadStaysTheNodesOwn()
{
    GraphTab tab;
    addChain(tab.scene, 1);
    const Node *node = tab.node(0);
    {
        const DelNodeCommand dropped(&tab.scene, node->scenePos(), 0, node->payload(), node->title());
        typeDescription(node, QStringLiteral("Typed after the command was made"));
    }
    QCOMPARE(descriptionOf(node), QStringLiteral("Typed after the command was made"));
    deleteByCommand(tab, node);
    tab.stack.undo();
    QCOMPARE(tab.node(0)->payload()->parentItem(), tab.node(0));
    tab.stack.clear();
    QCOMPARE(descriptionOf(tab.node(0)), QStringLiteral("Typed after the command was made"));
}

// A payload is items, documents and controls; emptying a graph would copy one for each event.
void tst_DelNodeCommand::keepsTheTextAndNoObjects()
{
    GraphTab tab;
    addChain(tab.scene, 1);
    const Node *node = tab.node(0);
    const auto makeAndDrop = [&tab, node] {
        const DelNodeCommand command(&tab.scene, node->scenePos(), 0, node->payload(), node->title());
    };
    makeAndDrop(); // what Qt makes once for all comes now
    const ObjectCount objects;
    {
        const DelNodeCommand command(&tab.scene, node->scenePos(), 0, node->payload(), node->title());
        QCOMPARE(objects.value(), 0);
    }
    typeDescription(node, QStringLiteral("Written"));
    deleteByCommand(tab, tab.node(0));
    tab.stack.undo();
    QCOMPARE(descriptionOf(tab.node(0)), QStringLiteral("Written"));
    flushDeferredDeletes();
    QCOMPARE(objects.value(), 0); // the node that came back is as many objects as the one that went
}

void tst_DelNodeCommand::commandsNeverMerge()
{
    GraphTab tab;
    addChain(tab.scene, 2);
    tab.stack.clear();
    deleteByCommand(tab, tab.node(0));
    deleteByCommand(tab, tab.node(1));
    QCOMPARE(tab.stack.count(), 2);
    QCOMPARE(tab.stack.command(0)->id(), -1);
}

QTEST_MAIN(tst_DelNodeCommand)
#include "tst_delnodecommand.moc"
