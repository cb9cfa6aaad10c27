#include "scene/rubberband.h"

#include "items/node.h"
#include "support/testsupport.h"

#include <QGraphicsRectItem>
#include <QGraphicsScene>

namespace {

using Nodes = std::vector<Node *>;

/// Three events in a row, the last one on top, on a canvas that knows nothing of them.
struct Canvas
{
    QGraphicsScene canvas;
    RubberBand band{canvas, QColor(255, 255, 255, 28)};
    Nodes nodes;
    Nodes caught;

    Canvas()
    {
        for (int i = 0; i < 3; ++i) {
            auto *node = new Node(0);
            canvas.addItem(node);
            node->placeAt(QPointF(1000 * i, 100));
            nodes.push_back(node);
        }
    }
    Node *operator[](std::size_t i) const { return nodes[i]; }

    QList<QGraphicsRectItem *> rectangles() const
    {
        QList<QGraphicsRectItem *> found;
        const QList<QGraphicsItem *> all = canvas.items();
        for (QGraphicsItem *item : all) {
            if (auto *rectangle = qgraphicsitem_cast<QGraphicsRectItem *>(item))
                found << rectangle;
        }
        return found;
    }
    QRectF shown() const { return rectangles().constFirst()->rect(); }

    void stretchTo(const QPointF &corner)
    {
        band.stretchTo(corner);
        band.catchFrom(nodes, caught);
    }
};

} // namespace

class tst_RubberBand : public TestCase
{
    Q_OBJECT

private slots:
    void showsNothingAtFirst();
    void stretchesFromItsOrigin_data();
    void stretchesFromItsOrigin();
    void liesAboveAllNodesAndTakesNoPress();
    void catchesWhatItTouchesFromTheTop();
    void whatIsCaughtStaysCaught();
    void whatWasThereStaysInFront();
    void anEdgeCounts();
    void hiddenOnesSlipThrough();
    void endsEmpty();
    void whenStoppedItStaysToBeSeen();
    void isNewAfterTheCanvasWasCleared();
};

void tst_RubberBand::showsNothingAtFirst()
{
    const Canvas canvas;
    QCOMPARE(canvas.rectangles().size(), 1);
    const QGraphicsRectItem *rectangle = canvas.rectangles().constFirst();
    QCOMPARE(rectangle->rect(), QRectF());
    QCOMPARE(rectangle->pen(), QPen(Qt::NoPen));
    QCOMPARE(rectangle->brush(), QBrush(QColor(255, 255, 255, 28)));
    QVERIFY(!canvas.band.isActive());
}

void tst_RubberBand::stretchesFromItsOrigin_data()
{
    QTest::addColumn<QPointF>("corner");
    QTest::addColumn<QRectF>("shown");
    QTest::newRow("to the lower right") << QPointF(5080, 5030) << QRectF(5000, 5000, 80, 30);
    QTest::newRow("to the upper left") << QPointF(4900, 4950) << QRectF(4900, 4950, 100, 50);
    QTest::newRow("straight down") << QPointF(5000, 5060) << QRectF(5000, 5000, 0, 60);
}

void tst_RubberBand::stretchesFromItsOrigin()
{
    QFETCH(QPointF, corner);
    Canvas canvas;
    canvas.band.begin(QPointF(5000, 5000));
    QVERIFY(canvas.band.isActive());
    QCOMPARE(canvas.shown(), QRectF());
    canvas.stretchTo(QPointF(6000, 6000));
    canvas.stretchTo(corner);
    QTEST(canvas.shown(), "shown");
    QCOMPARE(canvas.caught, Nodes());
}

void tst_RubberBand::liesAboveAllNodesAndTakesNoPress()
{
    Canvas canvas;
    canvas.band.begin(QPointF(0, 0));
    canvas.stretchTo(QPointF(3000, 3000));
    const QGraphicsRectItem *rectangle = canvas.rectangles().constFirst();
    QCOMPARE(rectangle->zValue(), 100.0);
    QCOMPARE(rectangle->acceptedMouseButtons(), Qt::NoButton);
}

void tst_RubberBand::catchesWhatItTouchesFromTheTop()
{
    Canvas canvas;
    canvas.band.begin(QPointF(-10, 0));
    canvas.stretchTo(QPointF(1010, 110));
    QCOMPARE(canvas.caught, (Nodes{canvas[1], canvas[0]}));
    QVERIFY(canvas[0]->isSelected());
    QVERIFY(canvas[1]->isSelected());
    QVERIFY(!canvas[2]->isSelected());
}

void tst_RubberBand::whatIsCaughtStaysCaught()
{
    Canvas canvas;
    canvas.band.begin(QPointF(-10, 0));
    canvas.stretchTo(QPointF(1010, 110));
    canvas.stretchTo(QPointF(10, 110));
    QCOMPARE(canvas.caught, (Nodes{canvas[1], canvas[0]}));
}

void tst_RubberBand::whatWasThereStaysInFront()
{
    Canvas canvas;
    canvas.caught = {canvas[0]};
    canvas.band.begin(QPointF(-10, 0));
    canvas.stretchTo(QPointF(2010, 110));
    QCOMPARE(canvas.caught, (Nodes{canvas[0], canvas[2], canvas[1]}));
}

void tst_RubberBand::anEdgeCounts()
{
    Canvas canvas;
    const QRectF outline = canvas[0]->sceneBoundingRect();
    canvas.band.begin(outline.bottomLeft() + QPointF(20, 40));
    canvas.stretchTo(outline.bottomLeft() + QPointF(20, 2));
    QCOMPARE(canvas.caught, Nodes());
    canvas.stretchTo(outline.bottomLeft() + QPointF(20, -1)); // as thin as a line
    QCOMPARE(canvas.caught, Nodes{canvas[0]});
}

void tst_RubberBand::hiddenOnesSlipThrough()
{
    Canvas canvas;
    canvas[1]->setVisible(false);
    canvas.band.begin(QPointF(-10, 0));
    canvas.stretchTo(QPointF(2010, 110));
    QCOMPARE(canvas.caught, (Nodes{canvas[2], canvas[0]}));
    QVERIFY(!canvas[1]->isSelected());
}

void tst_RubberBand::endsEmpty()
{
    Canvas canvas;
    canvas.band.begin(QPointF(-10, 0));
    canvas.stretchTo(QPointF(10, 110));
    canvas.band.end();
    QVERIFY(!canvas.band.isActive());
    QCOMPARE(canvas.shown(), QRectF());
}

void tst_RubberBand::whenStoppedItStaysToBeSeen()
{
    Canvas canvas;
    canvas.band.begin(QPointF(-10, 0));
    canvas.stretchTo(QPointF(10, 110));
    canvas.band.stop();
    QVERIFY(!canvas.band.isActive());
    QCOMPARE(canvas.shown(), QRectF(-10, 0, 20, 110));
}

void tst_RubberBand::isNewAfterTheCanvasWasCleared()
{
    Canvas canvas;
    canvas.canvas.clear();
    QVERIFY(canvas.rectangles().isEmpty());
    canvas.band.renew();
    QCOMPARE(canvas.rectangles().size(), 1);
    canvas.band.begin(QPointF(5, 5));
    canvas.band.stretchTo(QPointF(25, 35));
    QCOMPARE(canvas.shown(), QRectF(5, 5, 20, 30));
}

QTEST_MAIN(tst_RubberBand)
#include "tst_rubberband.moc"
