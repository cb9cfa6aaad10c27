#include "scene/shownscene.h"
#include "support/testsupport.h"

#include <functional>

// Nodes that are moved by the mouse, and what happens to them meanwhile.

using Places = QList<QPointF>;
using Deed = std::function<void(FourNodes &)>;
Q_DECLARE_METATYPE(Deed)

class tst_NodegraphSceneMoving : public TestCase
{
    Q_OBJECT

private slots:
    void groupMovesAsOne();
    void onlyWhatIsPickedUpMoves_data();
    void onlyWhatIsPickedUpMoves();
    void nodeAddedMeanwhileStaysWhereItWasPut();
    void nextDragBeginsAnew_data();
    void nextDragBeginsAnew();

private:
    static void beginDrag(FourNodes &canvas, QPointF handle)
    {
        canvas.move(handle);
        canvas.press(handle);
        canvas.move(handle + QPointF(10, 10));
    }
    static Places placesOf(const std::vector<Node *> &nodes)
    {
        Places places;
        for (const Node *node : nodes)
            places << node->scenePos();
        return places;
    }
};

void tst_NodegraphSceneMoving::groupMovesAsOne()
{
    FourNodes canvas;
    const Places before = placesOf(canvas.nodes);
    for (std::size_t i : {0, 1})
        canvas[i]->setSelected(true);
    canvas.drag(bodyOf(canvas[0]), bodyOf(canvas[0]) + QPointF(12, 34));
    QCOMPARE(placesOf(canvas.nodes),
             (Places{before[0] + QPointF(12, 34), before[1] + QPointF(12, 34), before[2], before[3]}));
}

void tst_NodegraphSceneMoving::onlyWhatIsPickedUpMoves_data()
{
    QTest::addColumn<Deed>("deed");
    QTest::addColumn<bool>("partnerMoves");
    QTest::newRow("all selected") << Deed([](auto &canvas) { canvas.scene.selectAll(); }) << true;
    QTest::newRow("all deselected") << Deed([](auto &canvas) { canvas.scene.deselectAll(); }) << false;
    QTest::newRow("another one selected") << Deed([](auto &canvas) { canvas[2]->setSelected(true); }) << true;
    QTest::newRow("next one by key") << Deed([](auto &canvas) {
        QTest::keyClick(&canvas.view, Qt::Key_Down, Qt::ControlModifier);
    }) << false;
}

// All of them are far from (0, 0), which is where a node without a remembered place would begin.
void tst_NodegraphSceneMoving::onlyWhatIsPickedUpMoves()
{
    QFETCH(Deed, deed);
    QFETCH(bool, partnerMoves);
    FourNodes canvas;
    const Places before = placesOf(canvas.nodes);
    for (std::size_t i : {0, 1})
        canvas[i]->setSelected(true);
    const QPointF handle = bodyOf(canvas[0]);
    beginDrag(canvas, handle);
    deed(canvas);
    canvas.move(handle + QPointF(20, 20));
    canvas.move(handle + QPointF(30, 20));
    canvas.release(handle + QPointF(30, 20));
    const QPointF whole(30, 20);
    const QPointF first(10, 10);
    QCOMPARE(placesOf(canvas.nodes),
             (Places{before[0] + whole, before[1] + (partnerMoves ? whole : first), before[2], before[3]}));
    QVERIFY(linesAreExact(canvas.scene));
}

void tst_NodegraphSceneMoving::nodeAddedMeanwhileStaysWhereItWasPut()
{
    FourNodes canvas;
    const QPointF handle = bodyOf(canvas[0]);
    beginDrag(canvas, handle);
    canvas.scene.sl_addEventNode();
    const Node *added = canvas.scene.nodes().back();
    const QPointF put = added->scenePos();
    QVERIFY(put.x() > canvas[0]->scenePos().x());
    canvas.move(handle + QPointF(20, 30));
    canvas.release(handle + QPointF(20, 30));
    QCOMPARE(added->scenePos(), put);
    QCOMPARE(canvas[0]->scenePos(), QPointF(50, 60));
    QCOMPARE(added->prevNode(), canvas[0]);
    QVERIFY(linesAreExact(canvas.scene));
}

void tst_NodegraphSceneMoving::nextDragBeginsAnew_data()
{
    QTest::addColumn<Deed>("deed"); // which cuts the first one short
    QTest::newRow("released") << Deed([](auto &) {});
    QTest::newRow("deleted") << Deed([](auto &canvas) { canvas.scene.deleteSelectedNodes(canvas[0]); });
    QTest::newRow("cut") << Deed([](auto &canvas) { canvas.scene.cutNodes(); });
    QTest::newRow("hidden") << Deed([](auto &canvas) { canvas[0]->setVisible(false); });
}

void tst_NodegraphSceneMoving::nextDragBeginsAnew()
{
    QFETCH(Deed, deed);
    FourNodes canvas;
    const QPointF before = canvas[3]->scenePos();
    const QPointF handle = bodyOf(canvas[0]);
    beginDrag(canvas, handle);
    deed(canvas);
    canvas.move(handle + QPointF(20, 20));
    canvas.release(handle + QPointF(20, 20));
    for (int i = 1; i <= 2; ++i) {
        canvas.drag(bodyOf(canvas[3]), bodyOf(canvas[3]) + QPointF(-8, 6));
        QCOMPARE(canvas[3]->scenePos(), before + i * QPointF(-8, 6));
    }
}

QTEST_MAIN(tst_NodegraphSceneMoving)
#include "tst_nodegraphscene_moving.moc"
