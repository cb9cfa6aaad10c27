#include "scene/shownscene.h"
#include "support/testsupport.h"

namespace {

constexpr double piece = 40; // pixels of canvas that are at least seen around an event

/// The part of the view's pixels that an event and a piece of canvas around it take.
QRectF withPiece(const ShownScene &shown, const QRectF &area)
{
    const double unit = piece / shown.view.transform().m11();
    return area.adjusted(-unit, -unit, unit, unit);
}

/// Whether the user can bring that into sight with the right mouse button, from wherever the view is.
bool canBePannedTo(ShownScene &shown, const QRectF &area)
{
    const auto bars = {shown.view.horizontalScrollBar(), shown.view.verticalScrollBar()};
    for (QScrollBar *bar : bars)
        bar->setValue(bar->minimum());
    QRectF reach = shown.inSight();
    for (QScrollBar *bar : bars)
        bar->setValue(bar->maximum());
    reach |= shown.inSight();
    return reach.contains(area);
}

QRectF outlineOf(const std::vector<Node *> &nodes)
{
    QRectF outline;
    for (const Node *node : nodes)
        outline |= node->sceneBoundingRect();
    return outline;
}

} // namespace

/// Where an event lands that is pasted or added, and whether it is seen there.
class tst_NodegraphScenePasting : public TestCase
{
    Q_OBJECT

private slots:
    void pastedEventIsInSight_data();
    void pastedEventIsInSight();
    void pastedEventInSightScrollsNothing();
    void pastedGroupIsInSight();
    void groupThatDoesNotFitShowsItsBeginning();
    void pastedEventIsWithinReach_data();
    void pastedEventIsWithinReach();
    void wholeGroupIsWithinReach();
    void farGroupKeepsItsShape();
    void addedEventHasCanvasAroundIt_data() { pastedEventIsInSight_data(); }
    void addedEventHasCanvasAroundIt();
    void eventThatJustFitsIsSeenWhole();
};

void tst_NodegraphScenePasting::pastedEventIsInSight_data()
{
    QTest::addColumn<double>("scale");
    QTest::addColumn<QPointF>("mouse"); // parts of the view
    for (const double scale : {1.0, 0.777, 1.2, 0.1}) {
        const QByteArray zoom = QByteArray::number(scale);
        QTest::addRow("right edge at %s", zoom.constData()) << scale << QPointF(0.99, 0.5);
        QTest::addRow("bottom edge at %s", zoom.constData()) << scale << QPointF(0.3, 0.997);
        QTest::addRow("just inside at %s", zoom.constData()) << scale << QPointF(0.005, 0.005);
        QTest::addRow("beyond left at %s", zoom.constData()) << scale << QPointF(-0.3, 0.4);
        QTest::addRow("far away at %s", zoom.constData()) << scale << QPointF(3.0, 2.0);
    }
}

void tst_NodegraphScenePasting::pastedEventIsInSight()
{
    QFETCH(double, scale);
    QFETCH(QPointF, mouse);
    ShownScene shown;
    Node *source = addLoose(shown.scene, QPointF(50000, 50000));
    shown.view.scale(scale, scale);
    shown.view.centerOn(50000, 50000);
    const QRectF before = shown.inSight();
    shown.scene.sl_selectCurrentNode(source);
    shown.scene.copyNodes();
    shown.scene.sl_deselectCurrentNode();
    const QPointF pos = before.topLeft() + QPointF(mouse.x() * before.width(), mouse.y() * before.height());
    shown.scene.sl_lastMousePos(pos);
    shown.scene.pasteNodes();
    const Node *pasted = shown.scene.nodes().back();
    QVERIFY((pasted->pos() - pos).manhattanLength() < 2); // by whole units
    QVERIFY(shown.inSight().contains(withPiece(shown, pasted->sceneBoundingRect())));
}

void tst_NodegraphScenePasting::pastedEventInSightScrollsNothing()
{
    ShownScene shown;
    Node *source = addLoose(shown.scene, QPointF(50000, 50000));
    shown.view.centerOn(50000, 50000);
    const QRectF before = shown.inSight();
    shown.scene.sl_selectCurrentNode(source);
    shown.scene.cutNodes();
    shown.scene.sl_deselectCurrentNode();
    shown.scene.sl_lastMousePos(before.topLeft() + QPointF(60, 60));
    shown.scene.pasteNodes();
    QCOMPARE(shown.inSight(), before);
}

void tst_NodegraphScenePasting::pastedGroupIsInSight()
{
    ShownScene shown;
    addLoose(shown.scene, QPointF(50000, 50000));
    addLoose(shown.scene, QPointF(50400, 50400));
    shown.view.centerOn(50000, 50000);
    shown.scene.selectAll();
    shown.scene.copyNodes();
    shown.scene.sl_lastMousePos(shown.inSight().bottomRight());
    shown.scene.pasteNodes();
    QCOMPARE(shown.scene.nodes().size(), std::size_t(2));
    QVERIFY(shown.inSight().contains(withPiece(shown, outlineOf(shown.scene.nodes()))));
}

void tst_NodegraphScenePasting::groupThatDoesNotFitShowsItsBeginning()
{
    ShownScene shown;
    addLoose(shown.scene, QPointF(50000, 50000));
    addLoose(shown.scene, QPointF(53000, 52000));
    shown.scene.selectAll();
    shown.scene.copyNodes();
    shown.scene.sl_lastMousePos(QPointF(70000, 70000));
    shown.scene.pasteNodes();
    QVERIFY(shown.inSight().contains(shown.scene.nodes().front()->sceneBoundingRect()));
}

void tst_NodegraphScenePasting::pastedEventIsWithinReach_data()
{
    QTest::addColumn<QPointF>("mouse");
    QTest::newRow("left of the canvas") << QPointF(-3000, 500);
    QTest::newRow("above the canvas") << QPointF(500, -2000);
    QTest::newRow("right of the canvas") << QPointF(120000, 500);
    QTest::newRow("below the canvas") << QPointF(500, 99990);
    QTest::newRow("farther than scroll bars count") << QPointF(3e9, -4e9);
    QTest::newRow("at the end of what they count") << QPointF(-1e7, 1e7);
}

void tst_NodegraphScenePasting::pastedEventIsWithinReach()
{
    QFETCH(QPointF, mouse);
    ShownScene shown;
    Node *source = addLoose(shown.scene, QPointF(500, 500));
    shown.scene.sl_selectCurrentNode(source);
    shown.scene.copyNodes();
    shown.scene.sl_deselectCurrentNode();
    shown.scene.sl_lastMousePos(mouse);
    shown.scene.pasteNodes();
    QCOMPARE(shown.scene.nodes().size(), std::size_t(1));
    const QRectF body = shown.scene.nodes().front()->sceneBoundingRect();
    QVERIFY(shown.inSight().contains(withPiece(shown, body)));
    QVERIFY(canBePannedTo(shown, withPiece(shown, body)));
}

void tst_NodegraphScenePasting::wholeGroupIsWithinReach()
{
    ShownScene shown;
    addLoose(shown.scene, QPointF(50000, 500));
    addLoose(shown.scene, QPointF(500, 500)); // far to the left of the one that lands at the mouse
    shown.scene.selectAll();
    shown.scene.copyNodes();
    shown.scene.sl_lastMousePos(QPointF(500, 500));
    shown.scene.pasteNodes();
    const std::vector<Node *> &nodes = shown.scene.nodes();
    QCOMPARE(nodes[1]->pos(), QPointF(-49000, 500));
    QVERIFY(canBePannedTo(shown, outlineOf(nodes)));
}

void tst_NodegraphScenePasting::farGroupKeepsItsShape()
{
    ShownScene shown;
    addLoose(shown.scene, QPointF(50000, 500));
    addLoose(shown.scene, QPointF(500, 900));
    shown.scene.selectAll();
    shown.scene.copyNodes();
    shown.scene.sl_lastMousePos(QPointF(-9999000, 500));
    shown.scene.pasteNodes();
    const std::vector<Node *> &nodes = shown.scene.nodes();
    QCOMPARE(nodes[0]->pos() - nodes[1]->pos(), QPointF(49500, -400));
    QVERIFY(canBePannedTo(shown, outlineOf(nodes)));
}

void tst_NodegraphScenePasting::addedEventHasCanvasAroundIt()
{
    QFETCH(double, scale);
    QFETCH(QPointF, mouse);
    ShownScene shown;
    addLoose(shown.scene, QPointF(50000, 50000));
    shown.view.scale(scale, scale);
    shown.view.centerOn(50000, 50000);
    const QRectF before = shown.inSight();
    const Node *added = addLoose(
        shown.scene, before.topLeft() + QPointF(mouse.x() * before.width(), mouse.y() * before.height()));
    QVERIFY(shown.inSight().contains(withPiece(shown, added->sceneBoundingRect())));
}

// Where there is no room for the margin on both sides, it must not push the event out on one of them.
void tst_NodegraphScenePasting::eventThatJustFitsIsSeenWhole()
{
    ShownScene shown;
    const double width = addLoose(shown.scene, QPointF(50000, 50000))->boundingRect().width();
    shown.view.resize(int(width) + 30, 600);
    shown.view.centerOn(20000, 50000);
    const Node *added = addLoose(shown.scene, QPointF(52000, 50000));
    QVERIFY(shown.inSight().contains(added->sceneBoundingRect()));
}

QTEST_MAIN(tst_NodegraphScenePasting)
#include "tst_nodegraphscene_pasting.moc"
