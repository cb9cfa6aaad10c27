#include "scene/mousescene.h"

class tst_NodegraphSceneMouse : public TestCase
{
    Q_OBJECT

private slots:
    void everyPressForgetsCurrentNode_data();
    void everyPressForgetsCurrentNode();
    void leftPressOnEmptySpaceEmptiesSelectionList();
    void otherPressOnEmptySpaceKeepsSelectionList_data();
    void otherPressOnEmptySpaceKeepsSelectionList();
    void pressOnNodeMakesItCurrentAndKeepsSelectionList();
    void pressOnSocketLeavesNothingCurrent();

    void listedNodesReportTheirSocketsOnEveryMove();
    void draggedGroupsLinesFollowOneStepBehind();
    void releasePutsLinesOfDraggedNodeOnSockets_data();
    void releasePutsLinesOfDraggedNodeOnSockets();
    void releasePutsLinesOfGroupOnSockets_data();
    void releasePutsLinesOfGroupOnSockets();
    void releasePutsLinesOfSelectAllGroupOnSockets();
    void rightPressInViewChangesNothing();
    void leftPressInViewDeselects();
    void nodeThatIsUndoneWhileItIsDraggedIsLetGo();
};

void tst_NodegraphSceneMouse::everyPressForgetsCurrentNode_data()
{
    QTest::addColumn<Qt::MouseButton>("button");
    QTest::newRow("left") << Qt::LeftButton;
    QTest::newRow("middle") << Qt::MiddleButton;
    QTest::newRow("right") << Qt::RightButton;
    QTest::newRow("back") << Qt::BackButton;
}

void tst_NodegraphSceneMouse::everyPressForgetsCurrentNode()
{
    QFETCH(Qt::MouseButton, button);
    Canvas canvas;
    addChain(canvas.scene, 1);
    QVERIFY(canvas.scene.currentNode());

    canvas.mouse.press(QPointF(3000, 3000), button);
    QCOMPARE(canvas.scene.currentNode(), nullptr);
    canvas.mouse.release(QPointF(3000, 3000), button);
}

void tst_NodegraphSceneMouse::leftPressOnEmptySpaceEmptiesSelectionList()
{
    Canvas canvas;
    addChain(canvas.scene, 2);
    canvas.scene.selectAll();

    canvas.mouse.press(QPointF(3000, 3000));
    QVERIFY(canvas.scene.selectedNodes().empty());
    QVERIFY(canvas.scene.selectedItems().isEmpty());
    canvas.mouse.release(QPointF(3000, 3000));
}

void tst_NodegraphSceneMouse::otherPressOnEmptySpaceKeepsSelectionList_data()
{
    QTest::addColumn<Qt::MouseButton>("button");
    QTest::newRow("middle") << Qt::MiddleButton;
    QTest::newRow("right") << Qt::RightButton;
}

void tst_NodegraphSceneMouse::otherPressOnEmptySpaceKeepsSelectionList()
{
    QFETCH(Qt::MouseButton, button);
    Canvas canvas;
    addChain(canvas.scene, 2);
    canvas.scene.selectAll();

    canvas.mouse.press(QPointF(3000, 3000), button);
    canvas.mouse.move(QPointF(3100, 3100), button);
    QCOMPARE(canvas.scene.selectedNodes(), canvas.scene.nodes());
    QVERIFY(rubberBandOf(canvas.scene)->rect().isNull());
    canvas.mouse.release(QPointF(3100, 3100), button);
}

void tst_NodegraphSceneMouse::pressOnNodeMakesItCurrentAndKeepsSelectionList()
{
    Canvas canvas;
    const std::vector<Node *> nodes = addChain(canvas.scene, 3);
    canvas.scene.selectAll();

    canvas.mouse.press(bodyOf(nodes[0]));
    QCOMPARE(canvas.scene.currentNode(), nodes[0]);
    QCOMPARE(canvas.scene.selectedNodes(), nodes);
    canvas.mouse.release(bodyOf(nodes[0]));
    QCOMPARE(canvas.scene.currentNode(), nodes[0]);
    QCOMPARE(canvas.scene.selectedNodes(), nodes);
}

void tst_NodegraphSceneMouse::pressOnSocketLeavesNothingCurrent()
{
    Canvas canvas;
    const std::vector<Node *> nodes = addChain(canvas.scene, 2);
    QVERIFY(nodes[1]->isSelected());

    canvas.mouse.press(outputOf(nodes[0]));
    QCOMPARE(canvas.scene.currentNode(), nullptr);
    QVERIFY(!nodes[0]->isSelected());
    QVERIFY(nodes[1]->isSelected());
    canvas.mouse.release(outputOf(nodes[0]));
}

void tst_NodegraphSceneMouse::listedNodesReportTheirSocketsOnEveryMove()
{
    Canvas canvas;
    const std::vector<Node *> nodes = addChain(canvas.scene, 2);
    canvas.scene.deselectAll();
    QSignalSpy unlistedInput(nodes[0], &Node::s_inSocketMove);
    canvas.mouse.move(QPointF(3000, 3000), Qt::NoButton);
    QVERIFY(unlistedInput.isEmpty());

    canvas.scene.selectAll();
    for (const Node *node : nodes) {
        QSignalSpy input(node, &Node::s_inSocketMove);
        QSignalSpy output(node, &Node::s_outSocketMove);
        canvas.mouse.move(QPointF(3000, 3000), Qt::NoButton);
        QCOMPARE(input.size(), 1);
        QCOMPARE(input.at(0).at(0).toPointF(), node->inSocket()->scenePos() + QPointF(5, 11));
        QCOMPARE(output.size(), 1);
        QCOMPARE(output.at(0).at(0).toPointF(), node->outSocket()->scenePos() + QPointF(5, 11));
    }
}

void tst_NodegraphSceneMouse::draggedGroupsLinesFollowOneStepBehind()
{
    ShownScene shown;
    Node *outside = addLoose(shown.scene, QPointF(20, 20));
    Node *grabbed = addLoose(shown.scene, QPointF(500, 300));
    Node *companion = addLoose(shown.scene, QPointF(20, 600));
    shown.scene.connectNodes(companion, outside);
    shown.scene.deselectAll();
    shown.press(QPointF(10, 860)); // from below the companion to the grabbed node
    shown.move(bodyOf(grabbed));
    shown.release(bodyOf(grabbed));
    QCOMPARE(shown.scene.selectedNodes().size(), std::size_t(2));

    const QPointF from = bodyOf(grabbed);
    shown.press(from);
    shown.move(from + QPointF(40, 0));
    const QPointF afterFirst = inputOf(companion);
    shown.move(from + QPointF(100, 0));
    QCOMPARE(inputOf(companion), afterFirst + QPointF(60, 0));
    QCOMPARE(startOf(companion->inLine()), afterFirst);
    QCOMPARE(endOf(companion->inLine()), outputOf(outside));
    shown.release(from + QPointF(100, 0));
    QVERIFY(linesAreExact(shown.scene));
}

void tst_NodegraphSceneMouse::releasePutsLinesOfDraggedNodeOnSockets_data()
{
    QTest::addColumn<bool>("deselected");
    QTest::newRow("selected by its press") << false;
    QTest::newRow("deselected on the way, as by a shortcut") << true;
}

void tst_NodegraphSceneMouse::releasePutsLinesOfDraggedNodeOnSockets()
{
    QFETCH(bool, deselected);
    ShownScene shown;
    Node *before = addLoose(shown.scene, QPointF(20, 20));
    Node *dragged = addLoose(shown.scene, QPointF(520, 20));
    Node *after = addLoose(shown.scene, QPointF(20, 500));
    shown.scene.connectNodes(dragged, before);
    shown.scene.connectNodes(after, dragged);

    const QPointF from = bodyOf(dragged);
    shown.press(from);
    shown.move(from + QPointF(30, 70));
    shown.move(from + QPointF(111, 222));
    QVERIFY(!linesAreExact(shown.scene));
    if (deselected)
        shown.scene.deselectAll();
    shown.release(from + QPointF(111, 222));
    QCOMPARE(dragged->pos(), QPointF(631, 242));
    QVERIFY(linesAreExact(shown.scene));
}

void tst_NodegraphSceneMouse::releasePutsLinesOfGroupOnSockets_data()
{
    QTest::addColumn<QPointF>("distance");
    QTest::addColumn<Qt::KeyboardModifiers>("modifiers");
    QTest::newRow("elsewhere") << QPointF(111, 122) << Qt::KeyboardModifiers();
    // Qt takes a release at the place of the press for a click and leaves only the clicked node selected.
    QTest::newRow("back to the start") << QPointF() << Qt::KeyboardModifiers();
    QTest::newRow("with Ctrl") << QPointF(111, 122) << Qt::KeyboardModifiers(Qt::ControlModifier);
    QTest::newRow("back to the start with Ctrl") << QPointF() << Qt::KeyboardModifiers(Qt::ControlModifier);
}

void tst_NodegraphSceneMouse::releasePutsLinesOfGroupOnSockets()
{
    QFETCH(QPointF, distance);
    QFETCH(Qt::KeyboardModifiers, modifiers);
    ShownScene shown;
    Node *outside = addLoose(shown.scene, QPointF(20, 20));
    Node *grabbed = addLoose(shown.scene, QPointF(500, 300));
    Node *companion = addLoose(shown.scene, QPointF(20, 600));
    shown.scene.connectNodes(companion, outside);
    shown.scene.connectNodes(grabbed, companion);
    shown.scene.deselectAll();
    shown.press(QPointF(10, 860));
    shown.move(bodyOf(grabbed));
    shown.release(bodyOf(grabbed));
    QVERIFY(grabbed->isSelected() && companion->isSelected() && !outside->isSelected());

    const QPointF from = bodyOf(grabbed);
    const QPointF companionFrom = companion->pos();
    shown.press(from, Qt::LeftButton, modifiers);
    shown.move(from + QPointF(50, 30));
    shown.move(from + QPointF(77, 66));
    shown.move(from + distance);
    QCOMPARE(companion->pos(), companionFrom + distance);
    shown.release(from + distance, Qt::LeftButton, modifiers);
    QCOMPARE(companion->pos(), companionFrom + distance);
    QVERIFY(linesAreExact(shown.scene));
}

void tst_NodegraphSceneMouse::releasePutsLinesOfSelectAllGroupOnSockets()
{
    ShownScene shown;
    Node *first = addLoose(shown.scene, QPointF(20, 20));
    Node *second = addLoose(shown.scene, QPointF(500, 300));
    Node *third = addLoose(shown.scene, QPointF(20, 600));
    shown.scene.connectNodes(second, first);
    shown.scene.connectNodes(third, first);
    shown.scene.selectAll();

    const QPointF from = bodyOf(second);
    shown.press(from);
    shown.move(from + QPointF(20, 10));
    shown.move(from + QPointF(55, 66));
    shown.release(from + QPointF(55, 66));
    QCOMPARE(first->pos(), QPointF(75, 86));
    QCOMPARE(third->pos(), QPointF(75, 666));
    QVERIFY(linesAreExact(shown.scene));
}

void tst_NodegraphSceneMouse::rightPressInViewChangesNothing()
{
    ShownScene shown;
    const std::vector<Node *> nodes = addChain(shown.scene, 2);
    shown.scene.selectAll();

    shown.press(QPointF(600, 850), Qt::RightButton);
    shown.release(QPointF(600, 850), Qt::RightButton);
    QCOMPARE(shown.scene.currentNode(), nodes[1]);
    QCOMPARE(shown.scene.selectedNodes(), nodes);
    QVERIFY(nodes[0]->isSelected());
}

void tst_NodegraphSceneMouse::leftPressInViewDeselects()
{
    ShownScene shown;
    Node *node = addLoose(shown.scene, QPointF(20, 20));
    shown.scene.selectAll();
    shown.scene.sl_selectCurrentNode(node);

    shown.press(QPointF(600, 850));
    QCOMPARE(shown.scene.currentNode(), nullptr);
    QVERIFY(!node->isSelected());
    QVERIFY(shown.scene.selectedNodes().empty());
    shown.release(QPointF(600, 850));
}

void tst_NodegraphSceneMouse::nodeThatIsUndoneWhileItIsDraggedIsLetGo()
{
    ShownScene shown;
    addLoose(shown.scene, QPointF(20, 20));
    Node *dragged = addLoose(shown.scene, QPointF(500, 300));
    const QPointF from = bodyOf(dragged);

    shown.press(from);
    shown.move(from + QPointF(50, 50));
    QCOMPARE(shown.scene.currentNode(), dragged);
    shown.stack.undo();
    QCOMPARE(shown.scene.currentNode(), nullptr);
    flushDeferredDeletes();
    shown.move(from + QPointF(100, 100));
    shown.release(from + QPointF(100, 100));
    QCOMPARE(shown.scene.nodes().size(), std::size_t(1));
}

QTEST_MAIN(tst_NodegraphSceneMouse)
#include "tst_nodegraphscene_mouse.moc"
