#include "scene/shownscene.h"
#include "support/testsupport.h"

#include <QGraphicsRectItem>
#include <QImage>

namespace {

struct Canvas
{
    NodegraphScene scene;
    QUndoStack stack;
    SceneMouse mouse{scene};

    Canvas() { pushCommandsOn(scene, stack); }
};

/// The middle of a line's stroke lies on it whatever its shape.
QPointF strokeOf(const ConnectionLine *line, double percent) { return line->path().pointAtPercent(percent); }

} // namespace

class tst_NodegraphSceneMouse : public QObject
{
    Q_OBJECT

private slots:
    void init() { failOnWarnings(); }
    void cleanup() { flushDeferredDeletes(); }

    void everyPressForgetsCurrentNode_data();
    void everyPressForgetsCurrentNode();
    void leftPressOnEmptySpaceEmptiesSelectionList();
    void otherPressOnEmptySpaceKeepsSelectionList_data();
    void otherPressOnEmptySpaceKeepsSelectionList();
    void pressOnNodeMakesItCurrentAndKeepsSelectionList();
    void pressOnNodeStartsNoRubberBand();
    void pressOnNodeEndsRubberBandWithoutRelease();
    void pressOnSocketLeavesNothingCurrent();
    void pressBesideLineStartsRubberBand();
    void pressOnStrokeStartsNoRubberBand();

    void rubberBandSpansFromPressToMouse_data();
    void rubberBandSpansFromPressToMouse();
    void rubberBandIsOneFaintVeil();
    void rubberBandIsPaintedOverNodes();
    void rubberBandSelectsWhatItTouches();
    void rubberBandKeepsNodesItLeft();
    void rubberBandListsTopmostFirst();
    void releaseEndsRubberBand();
    void moveWithoutRubberBandSelectsNothing();

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
    QVERIFY(canvas.scene.getSelectedNodes().empty());
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
    QCOMPARE(canvas.scene.getSelectedNodes(), canvas.scene.getNodes());
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
    QCOMPARE(canvas.scene.getSelectedNodes(), nodes);
    canvas.mouse.release(bodyOf(nodes[0]));
    QCOMPARE(canvas.scene.currentNode(), nodes[0]);
    QCOMPARE(canvas.scene.getSelectedNodes(), nodes);
}

void tst_NodegraphSceneMouse::pressOnNodeStartsNoRubberBand()
{
    ShownScene shown;
    Node *node = addLoose(shown.scene, QPointF(100, 100));
    Node *other = addLoose(shown.scene, QPointF(100, 500));

    shown.press(bodyOf(node));
    shown.move(bodyOf(node) + QPointF(300, 300));
    QVERIFY(rubberBandOf(shown.scene)->rect().isNull());
    QVERIFY(!other->isSelected());
    QVERIFY(shown.scene.getSelectedNodes().empty());
    shown.release(bodyOf(node));
}

void tst_NodegraphSceneMouse::pressOnNodeEndsRubberBandWithoutRelease()
{
    Canvas canvas;
    Node *node = addLoose(canvas.scene, QPointF(100, 100));
    Node *other = addLoose(canvas.scene, QPointF(100, 500));
    other->setSelected(false);

    // The release of the first press went to another window.
    canvas.mouse.press(QPointF(3000, 3000));
    canvas.mouse.press(bodyOf(node));
    canvas.mouse.move(QPointF(50, 550), Qt::NoButton);
    QVERIFY(rubberBandOf(canvas.scene)->rect().isNull());
    QVERIFY(!other->isSelected());
    canvas.mouse.release(QPointF(50, 550));
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

// The area between the curve and its chord used to count as the line, and a click there cut a connection.
void tst_NodegraphSceneMouse::pressBesideLineStartsRubberBand()
{
    ShownScene shown;
    Node *upstream = addLoose(shown.scene, QPointF(20, 20));
    Node *downstream = addLoose(shown.scene, QPointF(700, 500));
    shown.scene.connectNodes(downstream, upstream);
    const ConnectionLine *line = downstream->getInLine();
    const QPointF onStroke = strokeOf(line, 0.25);
    const QPointF onChord = startOf(line) + (endOf(line) - startOf(line)) / 4;
    const QPointF beside = (onStroke + onChord) / 2;
    QVERIFY(QLineF(onStroke, onChord).length() > 30);

    shown.press(beside);
    shown.move(beside + QPointF(5, 5));
    QVERIFY(!rubberBandOf(shown.scene)->rect().isNull());
    shown.release(beside + QPointF(5, 5));
    QCOMPARE(downstream->prevNode(), upstream);
    QCOMPARE(linesOf(shown.scene).size(), std::size_t(1));
}

void tst_NodegraphSceneMouse::pressOnStrokeStartsNoRubberBand()
{
    ShownScene shown;
    Node *upstream = addLoose(shown.scene, QPointF(20, 20));
    Node *downstream = addLoose(shown.scene, QPointF(700, 500));
    Node *third = addLoose(shown.scene, QPointF(20, 500));
    shown.scene.connectNodes(downstream, upstream);
    shown.scene.selectAll();
    const QPointF onStroke = strokeOf(downstream->getInLine(), 0.4);

    shown.press(onStroke);
    shown.move(QPointF(10, 890));
    QVERIFY(rubberBandOf(shown.scene)->rect().isNull());
    QVERIFY(!downstream->hasInput());
    QCOMPARE(shown.scene.getSelectedNodes(), (std::vector<Node *>{upstream, downstream, third}));
    shown.release(QPointF(10, 890));
}

void tst_NodegraphSceneMouse::rubberBandSpansFromPressToMouse_data()
{
    QTest::addColumn<QPointF>("to");
    QTest::addColumn<QRectF>("rect");
    QTest::newRow("down right") << QPointF(1040, 1030) << QRectF(1000, 1000, 40, 30);
    QTest::newRow("down left") << QPointF(960, 1030) << QRectF(960, 1000, 40, 30);
    QTest::newRow("up right") << QPointF(1040, 970) << QRectF(1000, 970, 40, 30);
    QTest::newRow("up left") << QPointF(960.5, 970.25) << QRectF(960.5, 970.25, 39.5, 29.75);
}

void tst_NodegraphSceneMouse::rubberBandSpansFromPressToMouse()
{
    QFETCH(QPointF, to);
    QFETCH(QRectF, rect);
    Canvas canvas;
    canvas.mouse.press(QPointF(1000, 1000));
    canvas.mouse.move(QPointF(500, 2000));
    canvas.mouse.move(to);
    QCOMPARE(rubberBandOf(canvas.scene)->rect(), rect);
    canvas.mouse.release(to);
}

void tst_NodegraphSceneMouse::rubberBandIsOneFaintVeil()
{
    Canvas canvas;
    canvas.mouse.press(QPointF(1000, 1000));
    canvas.mouse.move(QPointF(1100, 1100));
    const QGraphicsRectItem *band = rubberBandOf(canvas.scene);
    QVERIFY(band);
    QVERIFY(band->isVisible());
    QCOMPARE(band->zValue(), 100.0);
    QCOMPARE(band->pen().style(), Qt::NoPen);
    QCOMPARE(band->brush().style(), Qt::SolidPattern);
    QCOMPARE(band->brush().color(), QColor(255, 255, 255, 28));
    canvas.mouse.release(QPointF(1100, 1100));
}

void tst_NodegraphSceneMouse::rubberBandIsPaintedOverNodes()
{
    ShownScene shown;
    const Node *node = addLoose(shown.scene, QPointF(100, 100));
    const QPoint onCanvas(90, 90);
    const QPoint onHeader = shown.at(node->mapToScene(300, 30));
    const QImage before = shown.view.viewport()->grab().toImage();
    QCOMPARE(before.pixelColor(onCanvas), QColor("#606060"));
    QCOMPARE(before.pixelColor(onHeader), QColor("#8556E9"));

    shown.press(QPointF(50, 50));
    shown.move(QPointF(1000, 800));
    const QImage during = shown.view.viewport()->grab().toImage();
    // 28 parts of 255 of the way to white.
    QCOMPARE(during.pixelColor(onCanvas), QColor(113, 113, 113));
    QVERIFY(during.pixelColor(onHeader).green() > before.pixelColor(onHeader).green());
    shown.release(QPointF(1000, 800));
    QCOMPARE(shown.view.viewport()->grab().toImage().pixelColor(onCanvas), QColor("#606060"));
}

void tst_NodegraphSceneMouse::rubberBandSelectsWhatItTouches()
{
    Canvas canvas;
    Node *touched = addLoose(canvas.scene, QPointF(1000, 1000));
    Node *missed = addLoose(canvas.scene, QPointF(1000, 2000));
    canvas.scene.deselectAll();

    canvas.mouse.press(QPointF(900, 900));
    canvas.mouse.move(QPointF(999, 999));
    QVERIFY(canvas.scene.getSelectedNodes().empty());
    canvas.mouse.move(QPointF(1020, 1020)); // a corner is enough
    QCOMPARE(canvas.scene.getSelectedNodes(), std::vector<Node *>{touched});
    QVERIFY(touched->isSelected());
    QVERIFY(!missed->isSelected());
    QCOMPARE(canvas.scene.currentNode(), nullptr);
    canvas.mouse.release(QPointF(1020, 1020));
    QCOMPARE(canvas.scene.getSelectedNodes(), std::vector<Node *>{touched});
    QVERIFY(touched->isSelected());
}

void tst_NodegraphSceneMouse::rubberBandKeepsNodesItLeft()
{
    Canvas canvas;
    Node *first = addLoose(canvas.scene, QPointF(1000, 1000));
    Node *second = addLoose(canvas.scene, QPointF(1000, 2000));
    canvas.scene.deselectAll();

    canvas.mouse.press(QPointF(900, 900));
    canvas.mouse.move(QPointF(1100, 1100));
    canvas.mouse.move(QPointF(1100, 2100));
    canvas.mouse.move(QPointF(1100, 2100)); // listed once, however often the band covers it
    canvas.mouse.move(QPointF(910, 910));
    QCOMPARE(canvas.scene.getSelectedNodes(), (std::vector<Node *>{first, second}));
    QVERIFY(first->isSelected());
    QVERIFY(second->isSelected());
    canvas.mouse.release(QPointF(910, 910));
    QCOMPARE(canvas.scene.getSelectedNodes(), (std::vector<Node *>{first, second}));
}

void tst_NodegraphSceneMouse::rubberBandListsTopmostFirst()
{
    Canvas canvas;
    Node *bottom = addLoose(canvas.scene, QPointF(1000, 1000));
    Node *top = addLoose(canvas.scene, QPointF(1000, 2000));

    canvas.mouse.press(QPointF(900, 900));
    canvas.mouse.move(QPointF(1100, 2100));
    QCOMPARE(canvas.scene.getSelectedNodes(), (std::vector<Node *>{top, bottom}));
    canvas.mouse.release(QPointF(1100, 2100));
}

void tst_NodegraphSceneMouse::releaseEndsRubberBand()
{
    Canvas canvas;
    Node *node = addLoose(canvas.scene, QPointF(1000, 1000));
    canvas.scene.deselectAll();

    canvas.mouse.press(QPointF(800, 800));
    canvas.mouse.move(QPointF(900, 900));
    canvas.mouse.release(QPointF(900, 900));
    QVERIFY(rubberBandOf(canvas.scene)->rect().isNull());
    canvas.mouse.move(QPointF(1100, 1100), Qt::NoButton);
    QVERIFY(rubberBandOf(canvas.scene)->rect().isNull());
    QVERIFY(!node->isSelected());
    QVERIFY(canvas.scene.getSelectedNodes().empty());
}

void tst_NodegraphSceneMouse::moveWithoutRubberBandSelectsNothing()
{
    Canvas canvas;
    Node *node = addLoose(canvas.scene, QPointF(1000, 1000));
    canvas.scene.deselectAll();

    canvas.mouse.move(QPointF(900, 900), Qt::NoButton);
    canvas.mouse.move(QPointF(1100, 1100), Qt::NoButton);
    QVERIFY(!node->isSelected());
    QVERIFY(rubberBandOf(canvas.scene)->rect().isNull());
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
        QCOMPARE(input.at(0).at(0).toPointF(), node->getInSocket()->scenePos() + QPointF(5, 11));
        QCOMPARE(output.size(), 1);
        QCOMPARE(output.at(0).at(0).toPointF(), node->getOutSocket()->scenePos() + QPointF(5, 11));
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
    shown.press(QPointF(10, 890)); // from below the companion to the grabbed node
    shown.move(bodyOf(grabbed));
    shown.release(bodyOf(grabbed));
    QCOMPARE(shown.scene.getSelectedNodes().size(), std::size_t(2));

    const QPointF from = bodyOf(grabbed);
    shown.press(from);
    shown.move(from + QPointF(40, 0));
    const QPointF afterFirst = inputOf(companion);
    shown.move(from + QPointF(100, 0));
    QCOMPARE(inputOf(companion), afterFirst + QPointF(60, 0));
    QCOMPARE(startOf(companion->getInLine()), afterFirst);
    QCOMPARE(endOf(companion->getInLine()), outputOf(outside));
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
    shown.press(QPointF(10, 890));
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
    QCOMPARE(shown.scene.getSelectedNodes(), nodes);
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
    QVERIFY(shown.scene.getSelectedNodes().empty());
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
    QCOMPARE(shown.scene.getNodes().size(), std::size_t(1));
}

QTEST_MAIN(tst_NodegraphSceneMouse)
#include "tst_nodegraphscene_mouse.moc"
