#include "scene/shownscene.h"
#include "support/testsupport.h"

#include <QPointer>

namespace {

using Nodes = std::vector<Node *>;

} // namespace

class tst_NodegraphSceneDragging : public TestCase
{
    Q_OBJECT

private slots:
    void dragConnectsEitherWay_data();
    void dragConnectsEitherWay();
    void dragOntoWrongSocketConnectsNothing_data();
    void dragOntoWrongSocketConnectsNothing();
    void dragThatWouldCloseCycleMakesNoCommand_data();
    void dragThatWouldCloseCycleMakesNoCommand();
    void dragIntoFedInputReplacesInOneStep();
    void pressOnFreeSocketStartsLineFromTheOther_data();
    void pressOnFreeSocketStartsLineFromTheOther();
    void pressOnFedInputDisconnectsAtOnce();
    void fedInputIsReroutedToAnotherOutput();
    void fedInputPutBackOnItsOutput();
    void dragLineFollowsMouse_data();
    void dragLineFollowsMouse();
    void dragLineTakesNoPressAndLiesBelow();
    void everyButtonDrags();
    void releaseForgetsDragSource_data();
    void releaseForgetsDragSource();
    void socketsNeedDragSource();
    void secondPressLeavesNoFirstLine();
    void secondSocketClickLeavesNoFirstLine();
    void dragMoveWithoutLineDoesNothing();
    void socketClickFromStrangerIsIgnored();
    void nodeDeletedDuringItsDragEndsIt_data();
    void nodeDeletedDuringItsDragEndsIt();
    void undoDuringDragKeepsGraphWhole();
    void stepsAreUndoneInOrder();
};

void tst_NodegraphSceneDragging::dragConnectsEitherWay_data()
{
    QTest::addColumn<bool>("fromOutput");
    QTest::newRow("output to input") << true;
    QTest::newRow("input to output") << false;
}

void tst_NodegraphSceneDragging::dragConnectsEitherWay()
{
    QFETCH(bool, fromOutput);
    FourNodes canvas;
    Node *upstream = canvas[0];
    Node *downstream = canvas[3];
    if (fromOutput)
        canvas.drag(outputOf(upstream), inputOf(downstream));
    else
        canvas.drag(inputOf(downstream), outputOf(upstream));

    QCOMPARE(downstream->prevNode(), upstream);
    QCOMPARE(downstream->getPrevIndex(), upstream->getIndex());
    QVERIFY(!upstream->hasInput());
    QVERIFY(linesAreExact(canvas.scene));
    QCOMPARE(canvas.stack.count(), 1);
    QCOMPARE(canvas.stack.undoText(), QStringLiteral("Connect Nodes"));
    canvas.stack.undo();
    QVERIFY(!downstream->hasInput());
    QVERIFY(linesAreExact(canvas.scene));
    canvas.stack.redo();
    QCOMPARE(downstream->prevNode(), upstream);
}

void tst_NodegraphSceneDragging::dragOntoWrongSocketConnectsNothing_data()
{
    QTest::addColumn<bool>("fromOutput");
    QTest::addColumn<int>("target");
    QTest::addColumn<bool>("toOutput");
    QTest::newRow("own input") << true << 0 << false;
    QTest::newRow("own output") << false << 0 << true;
    QTest::newRow("output on output") << true << 3 << true;
    QTest::newRow("input on input") << false << 3 << false;
    QTest::newRow("back where it came from, output") << true << 0 << true;
    QTest::newRow("back where it came from, input") << false << 0 << false;
}

void tst_NodegraphSceneDragging::dragOntoWrongSocketConnectsNothing()
{
    QFETCH(bool, fromOutput);
    QFETCH(int, target);
    QFETCH(bool, toOutput);
    FourNodes canvas;
    LogCapture log;
    canvas.drag(fromOutput ? outputOf(canvas[0]) : inputOf(canvas[0]),
                toOutput ? outputOf(canvas.nodes[target]) : inputOf(canvas.nodes[target]));
    QCOMPARE(canvas.stack.count(), 0);
    QVERIFY(linesOf(canvas.scene).empty());
    QVERIFY(log.lines().isEmpty());
}

void tst_NodegraphSceneDragging::dragThatWouldCloseCycleMakesNoCommand_data()
{
    QTest::addColumn<bool>("fromOutput");
    QTest::addColumn<int>("end");
    QTest::newRow("two nodes, from the output") << true << 1;
    QTest::newRow("two nodes, from the input") << false << 1;
    QTest::newRow("three nodes, from the output") << true << 2;
    QTest::newRow("three nodes, from the input") << false << 2;
}

void tst_NodegraphSceneDragging::dragThatWouldCloseCycleMakesNoCommand()
{
    QFETCH(bool, fromOutput);
    QFETCH(int, end);
    FourNodes canvas;
    canvas.scene.connectNodes(canvas[1], canvas[0]);
    canvas.scene.connectNodes(canvas[2], canvas[1]);
    QSignalSpy commands(&canvas.scene, &NodegraphScene::s_UndoCommandAdded);
    const QPointF output = outputOf(canvas.nodes[end]);
    const QPointF input = inputOf(canvas[0]);
    canvas.drag(fromOutput ? output : input, fromOutput ? input : output);
    QVERIFY(commands.isEmpty());
    QVERIFY(!canvas[0]->hasInput());
    QVERIFY(linesAreExact(canvas.scene));
}

void tst_NodegraphSceneDragging::dragIntoFedInputReplacesInOneStep()
{
    FourNodes canvas;
    canvas.scene.connectNodes(canvas[3], canvas[0]);
    canvas.drag(outputOf(canvas[2]), inputOf(canvas[3]));
    QCOMPARE(canvas[3]->prevNode(), canvas[2]);
    QVERIFY(!canvas[0]->outSocket()->getIsConnected());
    QCOMPARE(canvas.stack.count(), 1);
    canvas.stack.undo(); // what was replaced does not come back
    QVERIFY(!canvas[3]->hasInput());
    QVERIFY(linesAreExact(canvas.scene));
}

void tst_NodegraphSceneDragging::pressOnFreeSocketStartsLineFromTheOther_data()
{
    QTest::addColumn<bool>("isOutput");
    QTest::newRow("output") << true;
    QTest::newRow("unfed input") << false;
}

void tst_NodegraphSceneDragging::pressOnFreeSocketStartsLineFromTheOther()
{
    QFETCH(const bool, isOutput);
    FourNodes canvas;
    const QPointF press =
        isOutput ? outputOf(canvas[0]) + QPointF(2, -3) : inputOf(canvas[0]) + QPointF(-2, 3);
    canvas.press(press);
    const ConnectionLine *line = dragLineOf(canvas.scene);
    QVERIFY(line);
    QCOMPARE(startOf(line), isOutput ? inputOf(canvas[0]) : outputOf(canvas[0]));
    QCOMPARE(endOf(line), press);
    QCOMPARE(canvas.stack.count(), 0);
    canvas.release(press);
    QVERIFY(linesOf(canvas.scene).empty());
}

void tst_NodegraphSceneDragging::pressOnFedInputDisconnectsAtOnce()
{
    FourNodes canvas;
    canvas.scene.connectNodes(canvas[3], canvas[0]);
    canvas.press(inputOf(canvas[3]));
    QVERIFY(!canvas[3]->hasInput());
    QCOMPARE(canvas.stack.count(), 1);
    QCOMPARE(canvas.stack.undoText(), QStringLiteral("Disonnect Node"));
    QVERIFY(dragLineOf(canvas.scene));
    QCOMPARE(linesOf(canvas.scene).size(), std::size_t(1));
    canvas.move(emptySpace);
    canvas.release(emptySpace);
    QCOMPARE(canvas.stack.count(), 1);
    QVERIFY(linesOf(canvas.scene).empty());
    canvas.stack.undo();
    QCOMPARE(canvas[3]->prevNode(), canvas[0]);
    QVERIFY(linesAreExact(canvas.scene));
}

void tst_NodegraphSceneDragging::fedInputIsReroutedToAnotherOutput()
{
    FourNodes canvas;
    canvas.scene.connectNodes(canvas[3], canvas[0]);
    canvas.drag(inputOf(canvas[3]), outputOf(canvas[2]));
    QCOMPARE(canvas[3]->prevNode(), canvas[2]);
    QCOMPARE(canvas.stack.count(), 2);
    QVERIFY(linesAreExact(canvas.scene));
    canvas.stack.undo();
    canvas.stack.undo();
    QCOMPARE(canvas[3]->prevNode(), canvas[0]);
    QVERIFY(linesAreExact(canvas.scene));
}

void tst_NodegraphSceneDragging::fedInputPutBackOnItsOutput()
{
    FourNodes canvas;
    canvas.scene.connectNodes(canvas[3], canvas[0]);
    canvas.drag(inputOf(canvas[3]), outputOf(canvas[0]));
    QCOMPARE(canvas[3]->prevNode(), canvas[0]);
    QCOMPARE(canvas.stack.count(), 2);
    QVERIFY(linesAreExact(canvas.scene));
}

void tst_NodegraphSceneDragging::dragLineFollowsMouse_data()
{
    QTest::addColumn<QString>("grab");
    QTest::newRow("from an output") << "output";
    QTest::newRow("from an input") << "input";
    QTest::newRow("from a fed input") << "fed input";
    QTest::newRow("line near its start") << "line start";
    QTest::newRow("line near its end") << "line end";
}

void tst_NodegraphSceneDragging::dragLineFollowsMouse()
{
    QFETCH(QString, grab);
    FourNodes canvas;
    canvas.scene.connectNodes(canvas[3], canvas[0]);
    const ConnectionLine *line = canvas[3]->inLine();
    QPointF from = nearEnd(line, SocketType::output);
    QPointF fixed = inputOf(canvas[3]);
    if (grab == "output")
        from = fixed = outputOf(canvas[1]);
    else if (grab == "input")
        from = fixed = inputOf(canvas[1]);
    else if (grab == "fed input")
        from = fixed = inputOf(canvas[3]);
    else if (grab == "line start") {
        from = nearEnd(line, SocketType::input);
        fixed = outputOf(canvas[0]);
    }

    canvas.move(from);
    canvas.press(from);
    for (const QPointF to : {QPointF(500, 400), QPointF(333, 222), emptySpace}) {
        canvas.move(to);
        const ConnectionLine *dragLine = dragLineOf(canvas.scene);
        QVERIFY(dragLine);
        QCOMPARE(startOf(dragLine), to);
        QCOMPARE(endOf(dragLine), fixed);
        QVERIFY(rubberBandOf(canvas.scene)->rect().isNull());
    }
    canvas.release(emptySpace);
    QCOMPARE(dragLineOf(canvas.scene), nullptr);
    canvas.move(QPointF(200, 300));
    QCOMPARE(dragLineOf(canvas.scene), nullptr);
}

void tst_NodegraphSceneDragging::dragLineTakesNoPressAndLiesBelow()
{
    FourNodes canvas;
    canvas.move(outputOf(canvas[0]));
    canvas.press(outputOf(canvas[0]));
    canvas.move(inputOf(canvas[3]));
    const ConnectionLine *line = dragLineOf(canvas.scene);
    QVERIFY(line);
    QVERIFY(line->zValue() < canvas[0]->zValue());
    QCOMPARE(line->acceptedMouseButtons(), Qt::MouseButtons(Qt::NoButton));
    QSignalSpy clicks(line, &ConnectionLine::s_clicked);
    canvas.press(line->path().pointAtPercent(0.5), Qt::MiddleButton);
    QVERIFY(clicks.isEmpty());
    canvas.release(emptySpace, Qt::MiddleButton);
    canvas.release(emptySpace);
    QCOMPARE(canvas.stack.count(), 0);
}

void tst_NodegraphSceneDragging::everyButtonDrags()
{
    FourNodes canvas;
    canvas.move(outputOf(canvas[0]));
    canvas.press(outputOf(canvas[0]), Qt::MiddleButton);
    canvas.move(inputOf(canvas[3]));
    canvas.release(inputOf(canvas[3]), Qt::MiddleButton);
    QCOMPARE(canvas[3]->prevNode(), canvas[0]);
    QVERIFY(linesAreExact(canvas.scene));
}

void tst_NodegraphSceneDragging::releaseForgetsDragSource_data()
{
    QTest::addColumn<QPointF>("end");
    QTest::newRow("empty space") << emptySpace;
    QTest::newRow("a node's body") << QPointF(60, 545);
    QTest::newRow("its own socket") << QPointF();
}

// A rubber band, or any other press, that ended on a socket used to connect it with the old source.
void tst_NodegraphSceneDragging::releaseForgetsDragSource()
{
    QFETCH(QPointF, end);
    FourNodes canvas;
    canvas.drag(outputOf(canvas[0]), end.isNull() ? outputOf(canvas[0]) : end);
    // The view keeps a right press to itself, so the canvas sees a release alone.
    canvas.press(inputOf(canvas[3]), Qt::RightButton);
    canvas.release(inputOf(canvas[3]), Qt::RightButton);
    QCOMPARE(canvas.stack.count(), 0);
    canvas.drag(emptySpace, inputOf(canvas[3]));
    QCOMPARE(canvas.stack.count(), 0);

    canvas.press(emptySpace, Qt::MiddleButton);
    canvas.move(inputOf(canvas[3]));
    canvas.release(inputOf(canvas[3]), Qt::MiddleButton);
    QCOMPARE(canvas.stack.count(), 0);
    canvas.scene.sl_manualNodeConnect(canvas[3]->inSocket());
    QCOMPARE(canvas.stack.count(), 0);
    QVERIFY(linesOf(canvas.scene).empty());
}

void tst_NodegraphSceneDragging::socketsNeedDragSource()
{
    FourNodes canvas;
    canvas.scene.sl_manualNodeConnect(canvas[3]->inSocket());
    canvas.scene.sl_manualNodeConnect(nullptr);
    QCOMPARE(canvas.stack.count(), 0);

    // A socket without a node ends the drag as well.
    canvas.press(outputOf(canvas[0]));
    QGraphicsRectItem noNode;
    Socket loose(SocketType::input, &noNode);
    canvas.scene.sl_manualNodeConnect(&loose);
    canvas.scene.sl_manualNodeConnect(canvas[3]->inSocket());
    QCOMPARE(canvas.stack.count(), 0);
    canvas.release(emptySpace);
    QVERIFY(linesOf(canvas.scene).empty());
}

void tst_NodegraphSceneDragging::secondPressLeavesNoFirstLine()
{
    FourNodes canvas;
    SceneMouse mouse{canvas.scene};
    mouse.press(outputOf(canvas[0]));
    const QPointer<ConnectionLine> first = dragLineOf(canvas.scene);
    QVERIFY(first);
    // The release went elsewhere; the socket still holds the mouse.
    mouse.press(emptySpace);
    flushDeferredDeletes();
    QVERIFY(!first);
    QCOMPARE(linesOf(canvas.scene).size(), std::size_t(1));
    mouse.release(emptySpace);
    QVERIFY(linesOf(canvas.scene).empty());
    mouse.press(emptySpace);
    mouse.release(inputOf(canvas[3]));
    QCOMPARE(canvas.stack.count(), 0);
}

void tst_NodegraphSceneDragging::secondSocketClickLeavesNoFirstLine()
{
    FourNodes canvas;
    emit canvas[0]->s_socketClick(SocketType::output, QPointF(1, 1));
    const QPointer<ConnectionLine> first = dragLineOf(canvas.scene);
    emit canvas[1]->s_socketClick(SocketType::input, QPointF(2, 2));
    flushDeferredDeletes();
    QVERIFY(!first);
    const ConnectionLine *second = dragLineOf(canvas.scene);
    QVERIFY(second);
    QCOMPARE(endOf(second), QPointF(2, 2));
    canvas.scene.sl_manualNodeConnect(canvas[3]->outSocket());
    QCOMPARE(canvas[1]->prevNode(), canvas[3]);
    SceneMouse{canvas.scene}.release(emptySpace);
    QVERIFY(linesAreExact(canvas.scene));
}

void tst_NodegraphSceneDragging::dragMoveWithoutLineDoesNothing()
{
    FourNodes canvas;
    canvas.scene.connectNodes(canvas[3], canvas[0]);
    canvas.scene.sl_lastMousePos(QPointF(5, 5));
    emit canvas[0]->s_socketClickDrag();
    canvas.scene.sl_socketClickDrag();
    QVERIFY(linesAreExact(canvas.scene));
}

void tst_NodegraphSceneDragging::socketClickFromStrangerIsIgnored()
{
    FourNodes canvas;
    Socket *socket = canvas[0]->outSocket();
    canvas.scene.sl_socketClick(SocketType::output, QPointF(1, 1));
    QVERIFY(linesOf(canvas.scene).empty());
    connect(socket, SIGNAL(s_clicked(int,QPointF)), &canvas.scene, SLOT(sl_socketClick(int,QPointF)));
    QObject::disconnect(socket, nullptr, canvas[0], nullptr); // so that only the socket itself reports
    emit socket->s_clicked(SocketType::output, QPointF(1, 1));
    QVERIFY(linesOf(canvas.scene).empty());
    QCOMPARE(canvas.stack.count(), 0);
}

void tst_NodegraphSceneDragging::nodeDeletedDuringItsDragEndsIt_data()
{
    QTest::addColumn<int>("deleted");
    QTest::addColumn<bool>("byLine");
    QTest::addColumn<bool>("connects");
    QTest::newRow("source of a socket drag") << 0 << false << false;
    QTest::newRow("another node") << 2 << false << true;
    QTest::newRow("source of a line drag") << 0 << true << false;
    QTest::newRow("the node that was fed") << 3 << true << true;
}

void tst_NodegraphSceneDragging::nodeDeletedDuringItsDragEndsIt()
{
    QFETCH(int, deleted);
    QFETCH(bool, byLine);
    QFETCH(bool, connects);
    FourNodes canvas;
    canvas.scene.connectNodes(canvas[3], canvas[0]);
    const QPointF grab = byLine ? nearEnd(canvas[3]->inLine(), SocketType::input) : outputOf(canvas[0]);
    canvas.move(grab);
    canvas.press(grab);
    canvas.move(QPointF(500, 400));
    QVERIFY(dragLineOf(canvas.scene));
    canvas.scene.deleteSelectedNodes(canvas.nodes[deleted]);
    flushDeferredDeletes();
    QCOMPARE(dragLineOf(canvas.scene) != nullptr, connects);
    canvas.move(QPointF(600, 300));
    canvas.move(inputOf(canvas[1]));
    canvas.release(inputOf(canvas[1]));
    QCOMPARE(canvas[1]->hasInput(), connects);
    QVERIFY(linesAreExact(canvas.scene));
}

void tst_NodegraphSceneDragging::undoDuringDragKeepsGraphWhole()
{
    FourNodes canvas;
    canvas.scene.connectNodes(canvas[3], canvas[0]);
    canvas.move(inputOf(canvas[3]));
    canvas.press(inputOf(canvas[3]));
    canvas.move(QPointF(500, 400));
    canvas.stack.undo(); // the old connection is back while the new one is being dragged
    QCOMPARE(canvas[3]->prevNode(), canvas[0]);
    canvas.move(outputOf(canvas[2]));
    canvas.release(outputOf(canvas[2]));
    QCOMPARE(canvas[3]->prevNode(), canvas[2]);
    QVERIFY(linesAreExact(canvas.scene));
}

void tst_NodegraphSceneDragging::stepsAreUndoneInOrder()
{
    FourNodes canvas;
    canvas.drag(outputOf(canvas[0]), inputOf(canvas[1]));
    canvas.drag(outputOf(canvas[1]), inputOf(canvas[2]));
    canvas.drag(inputOf(canvas[3]), outputOf(canvas[2]));
    canvas.scene.setEndOfStory(canvas[3]);
    QCOMPARE(canvas.scene.story(), canvas.nodes);
    QCOMPARE(canvas.stack.count(), 3);
    canvas.stack.undo();
    QCOMPARE(canvas.scene.story(), Nodes{canvas[3]});
    canvas.stack.undo();
    canvas.stack.redo();
    canvas.stack.redo();
    QCOMPARE(canvas.scene.story(), canvas.nodes);
    QVERIFY(linesAreExact(canvas.scene));
}

QTEST_MAIN(tst_NodegraphSceneDragging)
#include "tst_nodegraphscene_dragging.moc"
