#include "scene/shownscene.h"
#include "support/testsupport.h"

#include <QPointer>

class tst_NodegraphSceneGrabbing : public TestCase
{
    Q_OBJECT

private slots:
    void pressOnLineDisconnectsAndKeepsOtherEnd_data();
    void pressOnLineDisconnectsAndKeepsOtherEnd();
    void grabbedLineIsRerouted_data();
    void grabbedLineIsRerouted();
    void grabbedLineDroppedOnEmptySpaceStaysCut();
    void grabbedLineIsDestroyedAfterItsPress();
    void doubleClickOnLineCutsItOnce();
    void lineClickedWithoutSocketsDoesNothing();
    void secondButtonOnTheWayLeavesOneLine();
};

void tst_NodegraphSceneGrabbing::pressOnLineDisconnectsAndKeepsOtherEnd_data()
{
    QTest::addColumn<int>("nearer");
    QTest::newRow("near the input") << SocketType::input;
    QTest::newRow("near the output") << SocketType::output;
}

void tst_NodegraphSceneGrabbing::pressOnLineDisconnectsAndKeepsOtherEnd()
{
    QFETCH(int, nearer);
    FourNodes canvas;
    canvas.scene.connectNodes(canvas[3], canvas[0]);
    const QPointF press = nearEnd(canvas[3]->inLine(), nearer);
    canvas.move(press);
    const QPointF mouse = canvas.view.mapToScene(canvas.at(press)); // whole pixels
    canvas.press(press);
    QVERIFY(!canvas[3]->hasInput());
    QVERIFY(!canvas[0]->outSocket()->getIsConnected());
    QCOMPARE(canvas.stack.count(), 1);
    QCOMPARE(canvas.stack.undoText(), QStringLiteral("Disonnect Node"));
    QCOMPARE(linesOf(canvas.scene).size(), std::size_t(1));
    const ConnectionLine *line = dragLineOf(canvas.scene);
    QVERIFY(line);
    QCOMPARE(startOf(line), mouse);
    // The end that was grabbed comes off; the other one stays.
    QCOMPARE(endOf(line), nearer == SocketType::input ? outputOf(canvas[0]) : inputOf(canvas[3]));
    canvas.release(press);
    QVERIFY(linesOf(canvas.scene).empty());
}

void tst_NodegraphSceneGrabbing::grabbedLineIsRerouted_data()
{
    QTest::addColumn<int>("nearer");
    QTest::addColumn<int>("onto");
    QTest::newRow("input to another node") << SocketType::input << 1;
    QTest::newRow("output to another node") << SocketType::output << 2;
    QTest::newRow("input put back") << SocketType::input << 3;
    QTest::newRow("output put back") << SocketType::output << 0;
}

void tst_NodegraphSceneGrabbing::grabbedLineIsRerouted()
{
    QFETCH(int, nearer);
    QFETCH(int, onto);
    FourNodes canvas;
    canvas.scene.connectNodes(canvas[3], canvas[0]);
    const bool movesInput = nearer == SocketType::input;
    Node *target = canvas.nodes[onto];
    canvas.drag(nearEnd(canvas[3]->inLine(), nearer), movesInput ? inputOf(target) : outputOf(target));

    Node *downstream = movesInput ? target : canvas[3];
    Node *upstream = movesInput ? canvas[0] : target;
    QCOMPARE(downstream->prevNode(), upstream);
    QCOMPARE(linesOf(canvas.scene).size(), std::size_t(1));
    QVERIFY(linesAreExact(canvas.scene));
    QCOMPARE(canvas.stack.count(), 2);
    QCOMPARE(canvas.stack.text(0), QStringLiteral("Disonnect Node"));
    QCOMPARE(canvas.stack.text(1), QStringLiteral("Connect Nodes"));
    canvas.stack.undo();
    canvas.stack.undo();
    QCOMPARE(canvas[3]->prevNode(), canvas[0]);
    QVERIFY(linesAreExact(canvas.scene));
}

void tst_NodegraphSceneGrabbing::grabbedLineDroppedOnEmptySpaceStaysCut()
{
    FourNodes canvas;
    canvas.scene.connectNodes(canvas[3], canvas[0]);
    canvas.drag(nearEnd(canvas[3]->inLine(), SocketType::input), emptySpace);
    QVERIFY(!canvas[3]->hasInput());
    QVERIFY(linesOf(canvas.scene).empty());
    QCOMPARE(canvas.stack.count(), 1);
}

// Its scene used to look below the line for another item and ungrab the mouse from one that had left it.
void tst_NodegraphSceneGrabbing::grabbedLineIsDestroyedAfterItsPress()
{
    FourNodes canvas;
    // The line runs over another one, so that there is something below it to be found.
    canvas.scene.connectNodes(canvas[3], canvas[0]);
    canvas.scene.connectNodes(canvas[2], canvas[0]);
    canvas[2]->setPos(canvas[3]->pos());
    canvas[2]->updateLines();
    const std::vector<ConnectionLine *> before = linesOf(canvas.scene);
    QCOMPARE(startOf(before[0]), startOf(before[1]));
    const QPointer<ConnectionLine> top = before[0];
    const QPointer<ConnectionLine> below = before[1];

    bool outlivesItsPress = false;
    connect(top, &ConnectionLine::s_clicked, this,
            [&] { outlivesItsPress = !top.isNull() && !top->scene(); });
    SceneMouse mouse{canvas.scene};
    mouse.press(nearEnd(top, SocketType::input));
    QVERIFY(outlivesItsPress);
    flushDeferredDeletes();
    QVERIFY(!top);
    QVERIFY(below);
    QCOMPARE(below->scene(), &canvas.scene);
    QCOMPARE(canvas.scene.mouseGrabberItem(), nullptr);
    QCOMPARE(canvas.stack.count(), 1);
    mouse.move(emptySpace);
    mouse.release(emptySpace);
    QCOMPARE(linesOf(canvas.scene).size(), std::size_t(1));
}

void tst_NodegraphSceneGrabbing::doubleClickOnLineCutsItOnce()
{
    FourNodes canvas;
    canvas.scene.connectNodes(canvas[3], canvas[0]);
    const QPointF pos = nearEnd(canvas[3]->inLine(), SocketType::input);
    canvas.move(pos);
    QTest::mouseDClick(canvas.view.windowHandle(), Qt::LeftButton, Qt::NoModifier, canvas.inWindow(pos));
    QCOMPARE(canvas.stack.count(), 1);
    QVERIFY(!canvas[3]->hasInput());
    QVERIFY(linesOf(canvas.scene).empty());
}

void tst_NodegraphSceneGrabbing::lineClickedWithoutSocketsDoesNothing()
{
    FourNodes canvas;
    ConnectionLine stray(QPointF(0, 0), QPointF(10, 10));
    canvas.scene.sl_connectionLineClicked(&stray, SocketType::input);
    QCOMPARE(canvas.stack.count(), 0);
    QVERIFY(linesOf(canvas.scene).empty());
}

void tst_NodegraphSceneGrabbing::secondButtonOnTheWayLeavesOneLine()
{
    FourNodes canvas;
    canvas.scene.connectNodes(canvas[3], canvas[0]);
    const QPointF grab = nearEnd(canvas[3]->inLine(), SocketType::input);
    canvas.move(grab);
    canvas.press(grab);
    canvas.move(QPointF(500, 400));
    canvas.press(QPointF(500, 400), Qt::MiddleButton);
    QVERIFY(linesOf(canvas.scene).empty());
    canvas.release(QPointF(500, 400), Qt::MiddleButton);
    canvas.move(inputOf(canvas[1]));
    canvas.release(inputOf(canvas[1]));
    QCOMPARE(canvas.stack.count(), 1);
    QVERIFY(linesOf(canvas.scene).empty());
}

QTEST_MAIN(tst_NodegraphSceneGrabbing)
#include "tst_nodegraphscene_grabbing.moc"
