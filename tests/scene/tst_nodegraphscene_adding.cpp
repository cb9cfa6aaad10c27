#include "scene/scenetab.h"
#include "scene/shownscene.h"
#include "support/testsupport.h"

#include <QUndoCommand>

#include <memory>

class tst_NodegraphSceneAdding : public TestCase
{
    Q_OBJECT

private slots:
    void threeAddsMakeChain();
    void addCommandDoesNothingUntilSomebodyRunsIt();
    void firstAddedEventIsCurrentAndSelected();
    void onlyAddCommandMakesFirstNodeCurrent();
    void firstEventAfterAllWereDeletedIsCurrentAgain();
    void addedEventTakesWholeNumbersBesideCurrentNode_data();
    void addedEventTakesWholeNumbersBesideCurrentNode();
    void addedEventLeavesMarkThatCurrentNodeDoesNotHave();
    void looseEventStandsExactlyAtMouse();
    void addingLogsIndexThenConnection();
    void deletedIndexIsNotUsedAgain();
    void addUndoneAfterReplacedIndexTakesItsOwnNode();
    void middleOfViewCountsUntilMouseWasThere();
    void firstEventLandsInSightOfScrolledView();
    void addedEventIsScrolledIntoSight_data();
    void addedEventIsScrolledIntoSight();
    void addedEventInSightScrollsNothing();
    void longChainStaysInSightBeyondTheCanvas();
    void framedEventsBeyondTheCanvasAreInSight();
};

void tst_NodegraphSceneAdding::threeAddsMakeChain()
{
    SceneTab tab;
    tab.scene.sl_lastMousePos(QPointF(100, 200));
    const Nodes nodes = addChain(tab.scene, 3);

    QCOMPARE(tab.scene.nodes(), nodes);
    QCOMPARE(indicesOf(nodes), (QList<int>{0, 1, 2}));
    QCOMPARE(nodes[0]->pos(), QPointF(100, 200));
    const double step = nodes[0]->boundingRect().width() + 100;
    QCOMPARE(nodes[1]->pos(), QPointF(100 + step, 200));
    QCOMPARE(nodes[2]->pos(), QPointF(100 + 2 * step, 200));
    QCOMPARE(nodes[0]->prevNode(), nullptr);
    QCOMPARE(nodes[1]->prevNode(), nodes[0]);
    QCOMPARE(nodes[2]->prevNode(), nodes[1]);
    QCOMPARE(nodes[0]->getPrevIndex(), -1);
    QCOMPARE(nodes[1]->getPrevIndex(), 0);
    QCOMPARE(nodes[2]->getPrevIndex(), 1);
    QCOMPARE(tab.scene.currentNode(), nodes[2]);
    QCOMPARE(tab.scene.selectedItems(), QList<QGraphicsItem *>{nodes[2]});
    QCOMPARE(tab.scene.endOfStoryNode(), nodes[2]);
    QVERIFY(!nodes[0]->isEndOfStory());
    QVERIFY(!nodes[1]->isEndOfStory());
    QVERIFY(nodes[2]->isEndOfStory());
    QCOMPARE(tab.scene.story(), nodes);
    QVERIFY(linesAreExact(tab.scene));
    QVERIFY(tab.scene.selectedNodes().empty());
    // The connections are part of the additions.
    QCOMPARE(tab.stack.count(), 3);
    QCOMPARE(tab.stack.undoText(), QStringLiteral("Add Node"));
}

void tst_NodegraphSceneAdding::addCommandDoesNothingUntilSomebodyRunsIt()
{
    NodegraphScene scene;
    scene.sl_lastMousePos(QPointF(12.5, 34.5));
    QSignalSpy spy(&scene, &NodegraphScene::s_UndoCommandAdded);
    QSignalSpy story(&scene, &NodegraphScene::s_updateStory);
    scene.sl_addEventNode();
    QCOMPARE(spy.size(), 1);
    const std::unique_ptr<QUndoCommand> command(spy.at(0).at(0).value<QUndoCommand *>());
    QCOMPARE(command->text(), QStringLiteral("Add Node"));
    QVERIFY(scene.nodes().empty());
    QVERIFY(story.isEmpty());

    command->redo();
    QCOMPARE(scene.nodes().size(), std::size_t(1));
    const Node *node = scene.nodes().front();
    QCOMPARE(node->pos(), QPointF(12.5, 34.5));
    QCOMPARE(node->getIndex(), 0);
    QCOMPARE(node->getType(), 0);
    QCOMPARE(node->title(), QStringLiteral("Event"));
    QVERIFY(!story.isEmpty());
}

void tst_NodegraphSceneAdding::firstAddedEventIsCurrentAndSelected()
{
    SceneTab tab;
    tab.scene.sl_addEventNode();
    Node *node = tab.scene.nodes().front();
    QCOMPARE(tab.scene.currentNode(), node);
    QVERIFY(node->isSelected());
    QVERIFY(node->isEndOfStory());
    QCOMPARE(tab.scene.endOfStoryNode(), node);
}

void tst_NodegraphSceneAdding::onlyAddCommandMakesFirstNodeCurrent()
{
    SceneTab tab;
    tab.scene.createNode(QPointF(10, 10), 0, 0, nullptr, QString());
    QCOMPARE(tab.scene.currentNode(), nullptr);
    QVERIFY(!tab.scene.nodes().front()->isSelected());
    QVERIFY(tab.scene.nodes().front()->isEndOfStory());

    tab.scene.deleteSelectedNodes(tab.scene.nodes().front());
    QVERIFY(tab.scene.nodes().empty());
    tab.stack.undo();
    QCOMPARE(tab.scene.nodes().size(), std::size_t(1));
    QCOMPARE(tab.scene.currentNode(), nullptr);
    QVERIFY(!tab.scene.nodes().front()->isSelected());
}

void tst_NodegraphSceneAdding::firstEventAfterAllWereDeletedIsCurrentAgain()
{
    SceneTab tab;
    addChain(tab.scene, 2);
    tab.scene.selectAll();
    tab.scene.deleteSelectedNodes(nullptr);
    QVERIFY(tab.scene.nodes().empty());

    const Nodes nodes = addChain(tab.scene, 1);
    QCOMPARE(nodes[0]->getIndex(), 2);
    QCOMPARE(tab.scene.currentNode(), nodes[0]);
    QCOMPARE(tab.scene.endOfStoryNode(), nodes[0]);
    QCOMPARE(tab.scene.story(), nodes);
}

void tst_NodegraphSceneAdding::addedEventTakesWholeNumbersBesideCurrentNode_data()
{
    QTest::addColumn<QPointF>("current");
    QTest::addColumn<QPointF>("shift"); // from the current node's whole place to the new node's
    QTest::newRow("whole") << QPointF(10, 20) << QPointF(10, 20);
    QTest::newRow("fractions") << QPointF(10.7, 20.9) << QPointF(10, 20);
    QTest::newRow("negative y goes up") << QPointF(0.25, -20.9) << QPointF(0, -20);
    QTest::newRow("far left") << QPointF(-900.7, -0.5) << QPointF(-900, 0);
}

void tst_NodegraphSceneAdding::addedEventTakesWholeNumbersBesideCurrentNode()
{
    QFETCH(QPointF, current);
    QFETCH(QPointF, shift);
    SceneTab tab;
    Node *node = addChain(tab.scene, 1).front();
    node->setPos(current);
    tab.scene.sl_addEventNode();
    const Node *added = tab.scene.nodes().back();
    QCOMPARE(node->boundingRect().width(), 455.0);
    QCOMPARE(added->pos(), shift + QPointF(555, 0));
    QVERIFY(linesAreExact(tab.scene));
}

void tst_NodegraphSceneAdding::addedEventLeavesMarkThatCurrentNodeDoesNotHave()
{
    SceneTab tab;
    const Nodes nodes = addChain(tab.scene, 2);
    tab.scene.sl_selectCurrentNode(nodes[0]);
    tab.scene.sl_addEventNode();
    Node *branch = tab.scene.nodes().back();
    QCOMPARE(branch->prevNode(), nodes[0]);
    QCOMPARE(tab.scene.currentNode(), branch);
    QVERIFY(branch->isSelected());
    QCOMPARE(tab.scene.endOfStoryNode(), nodes[1]);
    QVERIFY(!branch->isEndOfStory());
    QCOMPARE(tab.scene.story(), nodes);
}

void tst_NodegraphSceneAdding::looseEventStandsExactlyAtMouse()
{
    SceneTab tab;
    const Nodes nodes = addChain(tab.scene, 2);
    SceneMouse mouse{tab.scene};
    mouse.press(QPointF(5000, 5000));
    mouse.release(QPointF(5000, 5000));
    tab.scene.sl_lastMousePos(QPointF(5000.25, 4999.75));

    tab.scene.sl_addEventNode();
    const Node *loose = tab.scene.nodes().back();
    QCOMPARE(loose->pos(), QPointF(5000.25, 4999.75));
    QVERIFY(!loose->hasInput());
    QVERIFY(loose->nextNodes().empty());
    QVERIFY(!loose->isEndOfStory());
    QVERIFY(!loose->isSelected());
    QCOMPARE(tab.scene.currentNode(), nullptr);
    QCOMPARE(tab.scene.endOfStoryNode(), nodes[1]);
    QCOMPARE(tab.scene.story(), nodes);
}

void tst_NodegraphSceneAdding::addingLogsIndexThenConnection()
{
    SceneTab tab;
    LogCapture log;
    tab.scene.sl_addEventNode();
    QCOMPARE(log.lines(), QStringList()); // index 0 is what a node starts with
    tab.scene.sl_addEventNode();
    QCOMPARE(log.lines(), (QStringList{"Old node index  0  New node index  1", "Connected node  1  to  0"}));
    log.clear();
    tab.scene.sl_deselectCurrentNode();
    tab.scene.sl_addEventNode();
    QCOMPARE(log.lines(), QStringList{"Old node index  0  New node index  2"});
}

void tst_NodegraphSceneAdding::deletedIndexIsNotUsedAgain()
{
    SceneTab tab;
    const Nodes nodes = addChain(tab.scene, 3);
    tab.scene.deleteSelectedNodes(nodes[1]);
    tab.scene.sl_addEventNode();
    QCOMPARE(indicesOf(tab.scene.nodes()), (QList<int>{0, 2, 3}));
    tab.scene.clear();
    tab.scene.sl_addEventNode();
    QCOMPARE(indicesOf(tab.scene.nodes()), QList<int>{0});
}

// A scene opened from a file with a hole asks for an index that is taken; undo used to delete its owner.
void tst_NodegraphSceneAdding::addUndoneAfterReplacedIndexTakesItsOwnNode()
{
    SceneTab tab;
    tab.scene.createNode(QPointF(), 1, 0, nullptr, QStringLiteral("kept"));
    tab.scene.sl_addEventNode(); // asks for 1
    QCOMPARE(indicesOf(tab.scene.nodes()), (QList<int>{1, 2}));
    tab.stack.undo();
    QCOMPARE(tab.scene.nodes().size(), std::size_t(1));
    QCOMPARE(tab.scene.nodes().front()->title(), QStringLiteral("kept"));
}

void tst_NodegraphSceneAdding::middleOfViewCountsUntilMouseWasThere()
{
    ShownScene shown;
    const QPointF middle = shown.view.mapToScene(shown.view.viewport()->rect().center());
    Node *first = addChain(shown.scene, 1).front();
    QCOMPARE(first->pos(), middle);

    shown.scene.sl_deselectCurrentNode();
    shown.scene.sl_lastMousePos(QPointF(0, 0)); // a real place
    shown.scene.sl_addEventNode();
    QCOMPARE(shown.scene.nodes().back()->pos(), QPointF(0, 0));

    shown.scene.sl_deselectCurrentNode();
    shown.move(QPointF(321, 123));
    shown.scene.sl_addEventNode();
    QCOMPARE(shown.scene.nodes().back()->pos(), QPointF(321, 123));
}

void tst_NodegraphSceneAdding::firstEventLandsInSightOfScrolledView()
{
    ShownScene shown;
    shown.view.centerOn(40000, 60000);
    shown.view.scale(0.5, 0.5);
    const QPointF middle = shown.view.mapToScene(shown.view.viewport()->rect().center());
    const Node *node = addChain(shown.scene, 1).front();
    QCOMPARE(node->pos(), middle);
    QVERIFY(shown.inSight().contains(node->sceneBoundingRect()));
}

void tst_NodegraphSceneAdding::addedEventIsScrolledIntoSight_data()
{
    QTest::addColumn<double>("scale");
    QTest::addColumn<QPointF>("mouse"); // parts of the view
    for (const double scale : {1.0, 0.8333, 0.777, 1.2, 1.44, 0.1}) {
        const QByteArray zoom = QByteArray::number(scale);
        QTest::addRow("right edge at %s", zoom.constData()) << scale << QPointF(0.99, 0.5);
        QTest::addRow("bottom edge at %s", zoom.constData()) << scale << QPointF(0.3, 0.997);
        QTest::addRow("corner at %s", zoom.constData()) << scale << QPointF(0.991, 0.993);
        QTest::addRow("beyond left at %s", zoom.constData()) << scale << QPointF(-0.3, 0.4);
        QTest::addRow("beyond top at %s", zoom.constData()) << scale << QPointF(0.2, -0.31);
        QTest::addRow("far away at %s", zoom.constData()) << scale << QPointF(3.0, 2.0);
    }
}

void tst_NodegraphSceneAdding::addedEventIsScrolledIntoSight()
{
    QFETCH(double, scale);
    QFETCH(QPointF, mouse);
    ShownScene shown;
    addLoose(shown.scene, QPointF(50000, 50000));
    shown.view.scale(scale, scale);
    shown.view.centerOn(50000, 50000);
    const QRectF before = shown.inSight();
    const Node *node = addLoose(
        shown.scene, before.topLeft() + QPointF(mouse.x() * before.width(), mouse.y() * before.height()));
    const double around = 50 / scale; // a piece of canvas
    const QRectF rect = node->sceneBoundingRect().adjusted(-around, -around, around, around);
    const QRectF after = shown.inSight();
    QVERIFY(after.contains(node->sceneBoundingRect()));

    // Just enough: what was missing, rounded up to the next pixels.
    const auto missing = [](double low, double high, double from, double to) {
        return from < low ? from - low : to > high ? to - high : 0.0;
    };
    const QPointF shift = after.topLeft() - before.topLeft();
    const double dx = missing(before.left(), before.right(), rect.left(), rect.right());
    const double dy = missing(before.top(), before.bottom(), rect.top(), rect.bottom());
    QVERIFY(qAbs(shift.x() - dx) * scale <= 3.0);
    QVERIFY(qAbs(shift.y() - dy) * scale <= 3.0);
}

void tst_NodegraphSceneAdding::addedEventInSightScrollsNothing()
{
    ShownScene shown;
    shown.view.centerOn(50000, 50000);
    const QRectF before = shown.inSight();
    const QRectF body = addLoose(shown.scene, QPointF(50000, 50000))->boundingRect();
    QCOMPARE(shown.inSight(), before);
    const QPointF around(50, 50);
    addLoose(shown.scene, before.topLeft() + around); // just far enough from two edges
    QCOMPARE(shown.inSight(), before);
    addLoose(shown.scene, before.bottomRight() - around - body.bottomRight());
    QCOMPARE(shown.inSight(), before);
}

// From the middle of the canvas a chain reaches its right edge after ninety events.
void tst_NodegraphSceneAdding::longChainStaysInSightBeyondTheCanvas()
{
    ShownScene shown;
    const QRectF canvas = shown.scene.sceneRect();
    addLoose(shown.scene, QPointF(98000, 99700));
    shown.scene.sl_selectCurrentNode(shown.scene.nodes().back());
    for (int i = 0; i < 6; ++i) {
        const Node *added = addChain(shown.scene, 1).front();
        QVERIFY(shown.inSight().contains(added->sceneBoundingRect()));
    }
    QVERIFY(shown.scene.nodes().back()->scenePos().x() > canvas.right());
    QCOMPARE(shown.scene.sceneRect(), canvas);
}

void tst_NodegraphSceneAdding::framedEventsBeyondTheCanvasAreInSight()
{
    ShownScene shown;
    addLoose(shown.scene, QPointF(150000, 120000));
    addLoose(shown.scene, QPointF(151000, 120000));
    shown.view.centerOn(0, 0);
    shown.scene.frameSelectedNodes();
    for (const Node *node : shown.scene.nodes())
        QVERIFY(shown.inSight().contains(node->sceneBoundingRect()));
}

QTEST_MAIN(tst_NodegraphSceneAdding)
#include "tst_nodegraphscene_adding.moc"
