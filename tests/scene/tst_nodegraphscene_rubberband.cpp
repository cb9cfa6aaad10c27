#include "scene/mousescene.h"

class tst_NodegraphScene_RubberBand : public TestCase
{
    Q_OBJECT

private slots:
    void pressOnNodeStartsNoRubberBand();
    void pressOnNodeEndsRubberBandWithoutRelease();
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
};

void tst_NodegraphScene_RubberBand::pressOnNodeStartsNoRubberBand()
{
    ShownScene shown;
    Node *node = addLoose(shown.scene, QPointF(100, 100));
    Node *other = addLoose(shown.scene, QPointF(100, 500));

    shown.press(bodyOf(node));
    shown.move(bodyOf(node) + QPointF(300, 300));
    QVERIFY(rubberBandOf(shown.scene)->rect().isNull());
    QVERIFY(!other->isSelected());
    QVERIFY(shown.scene.selectedNodes().empty());
    shown.release(bodyOf(node));
}

void tst_NodegraphScene_RubberBand::pressOnNodeEndsRubberBandWithoutRelease()
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

// The area between the curve and its chord used to count as the line, and a click there cut a connection.
void tst_NodegraphScene_RubberBand::pressBesideLineStartsRubberBand()
{
    ShownScene shown;
    Node *upstream = addLoose(shown.scene, QPointF(20, 20));
    Node *downstream = addLoose(shown.scene, QPointF(700, 500));
    shown.scene.connectNodes(downstream, upstream);
    const ConnectionLine *line = downstream->inLine();
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

void tst_NodegraphScene_RubberBand::pressOnStrokeStartsNoRubberBand()
{
    ShownScene shown;
    Node *upstream = addLoose(shown.scene, QPointF(20, 20));
    Node *downstream = addLoose(shown.scene, QPointF(700, 500));
    Node *third = addLoose(shown.scene, QPointF(20, 500));
    shown.scene.connectNodes(downstream, upstream);
    shown.scene.selectAll();
    const QPointF onStroke = strokeOf(downstream->inLine(), 0.4);

    shown.press(onStroke);
    shown.move(QPointF(10, 860));
    QVERIFY(rubberBandOf(shown.scene)->rect().isNull());
    QVERIFY(!downstream->hasInput());
    QCOMPARE(shown.scene.selectedNodes(), (std::vector<Node *>{upstream, downstream, third}));
    shown.release(QPointF(10, 860));
}

void tst_NodegraphScene_RubberBand::rubberBandSpansFromPressToMouse_data()
{
    QTest::addColumn<QPointF>("to");
    QTest::addColumn<QRectF>("rect");
    QTest::newRow("down right") << QPointF(1040, 1030) << QRectF(1000, 1000, 40, 30);
    QTest::newRow("down left") << QPointF(960, 1030) << QRectF(960, 1000, 40, 30);
    QTest::newRow("up right") << QPointF(1040, 970) << QRectF(1000, 970, 40, 30);
    QTest::newRow("up left") << QPointF(960.5, 970.25) << QRectF(960.5, 970.25, 39.5, 29.75);
}

void tst_NodegraphScene_RubberBand::rubberBandSpansFromPressToMouse()
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

void tst_NodegraphScene_RubberBand::rubberBandIsOneFaintVeil()
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

void tst_NodegraphScene_RubberBand::rubberBandIsPaintedOverNodes()
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

void tst_NodegraphScene_RubberBand::rubberBandSelectsWhatItTouches()
{
    Canvas canvas;
    Node *touched = addLoose(canvas.scene, QPointF(1000, 1000));
    Node *missed = addLoose(canvas.scene, QPointF(1000, 2000));
    canvas.scene.deselectAll();

    canvas.mouse.press(QPointF(900, 900));
    canvas.mouse.move(QPointF(999, 999));
    QVERIFY(canvas.scene.selectedNodes().empty());
    canvas.mouse.move(QPointF(1020, 1020)); // a corner is enough
    QCOMPARE(canvas.scene.selectedNodes(), std::vector<Node *>{touched});
    QVERIFY(touched->isSelected());
    QVERIFY(!missed->isSelected());
    QCOMPARE(canvas.scene.currentNode(), nullptr);
    canvas.mouse.release(QPointF(1020, 1020));
    QCOMPARE(canvas.scene.selectedNodes(), std::vector<Node *>{touched});
    QVERIFY(touched->isSelected());
}

void tst_NodegraphScene_RubberBand::rubberBandKeepsNodesItLeft()
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
    QCOMPARE(canvas.scene.selectedNodes(), (std::vector<Node *>{first, second}));
    QVERIFY(first->isSelected());
    QVERIFY(second->isSelected());
    canvas.mouse.release(QPointF(910, 910));
    QCOMPARE(canvas.scene.selectedNodes(), (std::vector<Node *>{first, second}));
}

void tst_NodegraphScene_RubberBand::rubberBandListsTopmostFirst()
{
    Canvas canvas;
    Node *bottom = addLoose(canvas.scene, QPointF(1000, 1000));
    Node *top = addLoose(canvas.scene, QPointF(1000, 2000));

    canvas.mouse.press(QPointF(900, 900));
    canvas.mouse.move(QPointF(1100, 2100));
    QCOMPARE(canvas.scene.selectedNodes(), (std::vector<Node *>{top, bottom}));
    canvas.mouse.release(QPointF(1100, 2100));
}

void tst_NodegraphScene_RubberBand::releaseEndsRubberBand()
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
    QVERIFY(canvas.scene.selectedNodes().empty());
}

void tst_NodegraphScene_RubberBand::moveWithoutRubberBandSelectsNothing()
{
    Canvas canvas;
    Node *node = addLoose(canvas.scene, QPointF(1000, 1000));
    canvas.scene.deselectAll();

    canvas.mouse.move(QPointF(900, 900), Qt::NoButton);
    canvas.mouse.move(QPointF(1100, 1100), Qt::NoButton);
    QVERIFY(!node->isSelected());
    QVERIFY(rubberBandOf(canvas.scene)->rect().isNull());
}

QTEST_MAIN(tst_NodegraphScene_RubberBand)
#include "tst_nodegraphscene_rubberband.moc"
