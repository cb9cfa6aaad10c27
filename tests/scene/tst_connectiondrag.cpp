#include "scene/connectiondrag.h"

#include "scene/shownscene.h"
#include "support/testsupport.h"

#include <QUndoCommand>

namespace {

/// A graph, and a drag over it that is not the graph's own.
struct DragBoard
{
    NodegraphScene scene;
    int handedOut = 0;
    ConnectionDrag drag{scene, [this](const std::unique_ptr<QUndoCommand> &command) {
                            ++handedOut;
                            command->redo();
                        }};
    std::vector<Node *> nodes;

    DragBoard()
    {
        for (int i = 0; i < 3; ++i)
            nodes.push_back(scene.restoreNode(QPointF(400 * i, 100), i, 0, nullptr, QString()));
    }
    Node *operator[](std::size_t i) const { return nodes[i]; }
    ConnectionLine *line() const { return dragLineOf(scene); }
};

constexpr QPointF mouse(1500, 700);
constexpr QPointF further(1600, 900);

} // namespace

class tst_ConnectionDrag : public TestCase
{
    Q_OBJECT

private slots:
    void aPressedOutputBeginsALine();
    void aPressedInputBeginsALine();
    void aPressedInputIsTornOff();
    void theLineFollows();
    void aGrabbedLineStaysAtTheOtherEnd_data();
    void aGrabbedLineStaysAtTheOtherEnd();
    void aLooseLineIsNotGrabbed();
    void aDropJoins_data();
    void aDropJoins();
    void aDropThatFitsNothingJoinsNothing_data();
    void aDropThatFitsNothingJoinsNothing();
    void aDropWithoutADragJoinsNothing();
    void theSocketIsRememberedWithoutTheLine();
    void theNextPressDropsTheLastLine();
    void aDyingNodeEndsItsOwnDrag();
};

void tst_ConnectionDrag::aPressedOutputBeginsALine()
{
    DragBoard board;
    QVERIFY(!board.drag.hasLine());
    board.drag.pressSocket(*board[0], SocketType::output, mouse);
    QVERIFY(board.drag.hasLine());
    QVERIFY(!board.drag.isByLine());
    QVERIFY(board.line());
    QCOMPARE(startOf(board.line()), inputOf(board[0]));
    QCOMPARE(endOf(board.line()), mouse);
    QCOMPARE(board.line()->acceptedMouseButtons(), Qt::NoButton);
    QCOMPARE(board.handedOut, 0);
}

void tst_ConnectionDrag::aPressedInputBeginsALine()
{
    DragBoard board;
    board.drag.pressSocket(*board[1], SocketType::input, mouse);
    QVERIFY(board.line());
    QCOMPARE(startOf(board.line()), outputOf(board[1]));
    QCOMPARE(endOf(board.line()), mouse);
    QCOMPARE(board.handedOut, 0);
}

void tst_ConnectionDrag::aPressedInputIsTornOff()
{
    DragBoard board;
    board.scene.connectNodes(board[1], board[0]);
    board.drag.pressSocket(*board[0], SocketType::output, mouse);
    QCOMPARE(board.handedOut, 0);
    board.drag.pressSocket(*board[1], SocketType::input, mouse);
    QCOMPARE(board.handedOut, 1);
    QVERIFY(!board[1]->hasInput());
}

void tst_ConnectionDrag::theLineFollows()
{
    DragBoard board;
    board.drag.moveTo(mouse); // nothing is there to be moved
    board.drag.pressSocket(*board[0], SocketType::output, mouse);
    board.drag.moveTo(further);
    QCOMPARE(startOf(board.line()), further);
    QCOMPARE(endOf(board.line()), mouse);
}

void tst_ConnectionDrag::aGrabbedLineStaysAtTheOtherEnd_data()
{
    QTest::addColumn<int>("grabbed");
    QTest::newRow("by the input") << SocketType::input;
    QTest::newRow("by the output") << SocketType::output;
}

void tst_ConnectionDrag::aGrabbedLineStaysAtTheOtherEnd()
{
    QFETCH(int, grabbed);
    DragBoard board;
    board.scene.connectNodes(board[1], board[0]);
    board.drag.grabLine(*board[1]->inLine(), grabbed, mouse);
    QCOMPARE(board.handedOut, 1);
    QVERIFY(!board[1]->hasInput());
    QVERIFY(board.drag.isByLine());
    flushDeferredDeletes(); // of the line that was grabbed
    QVERIFY(board.line());
    QCOMPARE(startOf(board.line()), mouse);
    QCOMPARE(endOf(board.line()), grabbed == SocketType::input ? outputOf(board[0]) : inputOf(board[1]));
}

void tst_ConnectionDrag::aLooseLineIsNotGrabbed()
{
    DragBoard board;
    const ConnectionLine loose(mouse, further);
    board.drag.grabLine(loose, SocketType::input, mouse);
    QVERIFY(!board.drag.hasLine());
    QVERIFY(!board.drag.isByLine());
    QCOMPARE(board.handedOut, 0);
}

void tst_ConnectionDrag::aDropJoins_data()
{
    QTest::addColumn<int>("pressed");
    QTest::newRow("from an output to an input") << SocketType::output;
    QTest::newRow("from an input to an output") << SocketType::input;
}

void tst_ConnectionDrag::aDropJoins()
{
    QFETCH(int, pressed);
    DragBoard board;
    const bool fromOutput = pressed == SocketType::output;
    board.drag.pressSocket(*board[2], pressed, mouse);
    board.drag.dropOn(fromOutput ? board[0]->inSocket() : board[0]->outSocket());
    QCOMPARE(board.handedOut, 1);
    QCOMPARE(board[0]->prevNode(), fromOutput ? board[2] : nullptr);
    QCOMPARE(board[2]->prevNode(), fromOutput ? nullptr : board[0]);
}

void tst_ConnectionDrag::aDropThatFitsNothingJoinsNothing_data()
{
    QTest::addColumn<int>("node");
    QTest::addColumn<int>("type");
    QTest::newRow("its own input") << 0 << SocketType::input;
    QTest::newRow("an output") << 2 << SocketType::output;
    QTest::newRow("what feeds it") << 1 << SocketType::input;
}

void tst_ConnectionDrag::aDropThatFitsNothingJoinsNothing()
{
    QFETCH(int, node);
    QFETCH(int, type);
    DragBoard board;
    board.scene.connectNodes(board[0], board[1]);
    board.drag.pressSocket(*board[0], SocketType::output, mouse);
    const Node *target = board[std::size_t(node)];
    board.drag.dropOn(type == SocketType::input ? target->inSocket() : target->outSocket());
    QCOMPARE(board.handedOut, 0);
}

void tst_ConnectionDrag::aDropWithoutADragJoinsNothing()
{
    DragBoard board;
    board.drag.dropOn(board[0]->inSocket());
    board.drag.pressSocket(*board[1], SocketType::output, mouse);
    board.drag.dropOn(nullptr);
    board.drag.dropOn(board[0]->inSocket()); // a drop ends it, whatever it was on
    board.drag.pressSocket(*board[1], SocketType::output, mouse);
    board.drag.end();
    board.drag.dropOn(board[0]->inSocket());
    QCOMPARE(board.handedOut, 0);
    QVERIFY(!board.drag.hasLine());
    QCOMPARE(board.line(), nullptr);
}

void tst_ConnectionDrag::theSocketIsRememberedWithoutTheLine()
{
    DragBoard board;
    board.scene.connectNodes(board[2], board[0]);
    board.drag.grabLine(*board[2]->inLine(), SocketType::input, mouse);
    board.drag.removeLine();
    QVERIFY(!board.drag.hasLine());
    QVERIFY(!board.drag.isByLine());
    flushDeferredDeletes();
    QVERIFY(linesOf(board.scene).empty());
    board.drag.dropOn(board[1]->inSocket());
    QCOMPARE(board[1]->prevNode(), board[0]);
}

void tst_ConnectionDrag::theNextPressDropsTheLastLine()
{
    DragBoard board;
    board.drag.pressSocket(*board[0], SocketType::output, mouse);
    board.drag.pressSocket(*board[1], SocketType::output, further);
    QCOMPARE(int(linesOf(board.scene).size()), 1);
    QCOMPARE(endOf(board.line()), further);
    board.drag.dropOn(board[2]->inSocket());
    QCOMPARE(board[2]->prevNode(), board[1]);
}

void tst_ConnectionDrag::aDyingNodeEndsItsOwnDrag()
{
    DragBoard board;
    board.drag.pressSocket(*board[0], SocketType::output, mouse);
    board.drag.forget(board[1]);
    QVERIFY(board.drag.hasLine());
    board.drag.forget(board[0]);
    QVERIFY(!board.drag.hasLine());
    board.drag.dropOn(board[2]->inSocket());
    QCOMPARE(board.handedOut, 0);
}

QTEST_MAIN(tst_ConnectionDrag)
#include "tst_connectiondrag.moc"
