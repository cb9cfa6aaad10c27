#include "items/connectionline.h"

#include "items/itemtest.h"
#include "items/socket.h"
#include "support/testsupport.h"

namespace {

using Points = QList<QPointF>;

/// Start, first control point, second control point and end of a line's only curve; empty if its path is
/// anything else.
Points curveOf(const ConnectionLine &line)
{
    const QPainterPath path = line.path();
    if (path.elementCount() != 4 || !path.elementAt(0).isMoveTo() || !path.elementAt(1).isCurveTo())
        return {};
    Points points;
    for (int i = 0; i < path.elementCount(); ++i)
        points << QPointF(path.elementAt(i));
    return points;
}

struct Canvas
{
    QGraphicsScene scene{-1000, -1000, 2000, 2000};
    ConnectionLine *line;
    SceneMouse mouse{scene};

    Canvas(const QPointF &start, const QPointF &end) : line(new ConnectionLine(start, end))
    {
        scene.setBspTreeDepth(12); // fine enough to miss an item that moved unannounced
        scene.addItem(line);
    }
};

const QColor lineColor("#D9D9D9");

} // namespace

class tst_ConnectionLine : public TestCase
{
    Q_OBJECT

private slots:
    void metaObjectListsTheMethodsInOrder();
    void liesAtTheOriginBelowTheNodes();
    void strokeIsGreyAndFiveWide();
    void updatePenBringsTheStrokeBack();
    void curveHasHorizontalTangents_data();
    void curveHasHorizontalTangents();
    void movingOneEndLeavesTheOther();
    void rebuildingThePathReplacesIt();
    void paintsTheStrokeOnly();
    void isPaintedBelowANode();
    void isFoundWhereItsEndsHaveMoved();
    void pressNamesTheNearerEnd_data();
    void pressNamesTheNearerEnd();
    void distanceIsThatOfThePressToTheEnds();
    void pressReportsTheLineForEveryButton_data();
    void pressReportsTheLineForEveryButton();
    void pressBelongsToTheStrokeOnly_data();
    void pressBelongsToTheStrokeOnly();
    void pressBetweenCurveAndChordReachesWhatLiesBelow();
    void lineMayBeTakenOutInsideItsOwnPress();
    void forgetsASocketThatIsGone();
};

void tst_ConnectionLine::metaObjectListsTheMethodsInOrder()
{
    const QMetaObject &meta = ConnectionLine::staticMetaObject;
    QCOMPARE(ownMethods(meta), QStringList({"s_clicked(ConnectionLine*,int)", "sl_updatePath()",
                                            "sl_setStart(QPointF)", "sl_setEnd(QPointF)"}));
    QCOMPARE(meta.method(meta.methodOffset()).methodType(), QMetaMethod::Signal);
    QCOMPARE(meta.method(meta.methodOffset() + 1).methodType(), QMetaMethod::Slot);
    QCOMPARE(meta.superClass(), &QObject::staticMetaObject);
}

void tst_ConnectionLine::liesAtTheOriginBelowTheNodes()
{
    const ConnectionLine line(QPointF(30, 40), QPointF(300, 400));
    QCOMPARE(line.parentItem(), nullptr);
    QCOMPARE(line.parent(), nullptr);
    QCOMPARE(line.pos(), QPointF(0, 0));
    QCOMPARE(line.zValue(), -1.0);
    QCOMPARE(line.flags(), QGraphicsItem::GraphicsItemFlags());
    QCOMPARE(line.inputSocket(), nullptr);
    QCOMPARE(line.outputSocket(), nullptr);
}

void tst_ConnectionLine::strokeIsGreyAndFiveWide()
{
    const ConnectionLine line(QPointF(0, 0), QPointF(100, 50));
    const QGraphicsPathItem &item = line;
    QCOMPARE(item.pen().width(), 5);
    QCOMPARE(item.pen().color(), lineColor);
    QCOMPARE(item.pen().style(), Qt::SolidLine);
    QCOMPARE(item.brush().style(), Qt::NoBrush);
}

void tst_ConnectionLine::updatePenBringsTheStrokeBack()
{
    ConnectionLine line(QPointF(0, 0), QPointF(100, 50));
    QGraphicsPathItem &item = line;
    item.setPen(QPen(Qt::red, 1));
    line.updatePen();
    QCOMPARE(item.pen().width(), 5);
    QCOMPARE(item.pen().color(), lineColor);
}

void tst_ConnectionLine::curveHasHorizontalTangents_data()
{
    QTest::addColumn<Points>("points");
    QTest::newRow("down to the right") << Points{{0, 0}, {25, 0}, {75, 50}, {100, 50}};
    QTest::newRow("up to the left") << Points{{100, 50}, {75, 50}, {25, 0}, {0, 0}};
    QTest::newRow("straight down") << Points{{40, -10}, {40, -10}, {40, 90}, {40, 90}};
    QTest::newRow("level") << Points{{-8, 5}, {-4, 5}, {4, 5}, {8, 5}};
    QTest::newRow("one point") << Points{{7, 7}, {7, 7}, {7, 7}, {7, 7}};
}

void tst_ConnectionLine::curveHasHorizontalTangents()
{
    QFETCH(Points, points);
    const ConnectionLine line(points.first(), points.last());
    if (points.first() == points.last())
        QVERIFY(line.boundingRect().size().width() < 12); // Qt keeps no curve that goes nowhere
    else
        QCOMPARE(curveOf(line), points);

    // The same curve however the ends got there.
    ConnectionLine moved(QPointF(-500, 3), QPointF(12, 700));
    moved.sl_setStart(points.first());
    moved.sl_setEnd(points.last());
    QCOMPARE(moved.path(), line.path());
}

void tst_ConnectionLine::movingOneEndLeavesTheOther()
{
    ConnectionLine line(QPointF(0, 0), QPointF(100, 50));
    line.sl_setStart(QPointF(20, 10));
    QCOMPARE(curveOf(line), Points({{20, 10}, {40, 10}, {80, 50}, {100, 50}}));
    line.sl_setEnd(QPointF(60, 90));
    QCOMPARE(curveOf(line), Points({{20, 10}, {30, 10}, {50, 90}, {60, 90}}));
}

void tst_ConnectionLine::rebuildingThePathReplacesIt()
{
    ConnectionLine line(QPointF(0, 0), QPointF(100, 50));
    line.setPath(QPainterPath());
    line.sl_updatePath();
    QCOMPARE(curveOf(line), Points({{0, 0}, {25, 0}, {75, 50}, {100, 50}}));
    line.sl_updatePath();
    QCOMPARE(curveOf(line).size(), 4);
}

void tst_ConnectionLine::paintsTheStrokeOnly()
{
    Canvas canvas(QPointF(0, 0), QPointF(400, 400));
    QCOMPARE(colorAt(canvas.scene, QPointF(200, 200)), lineColor);
    QCOMPARE(colorAt(canvas.scene, QPointF(5, 0)), lineColor); // leaves the start level
    const QPointF onCurve = canvas.line->path().pointAtPercent(0.25);
    QCOMPARE(colorAt(canvas.scene, onCurve), lineColor);
    QCOMPARE(colorAt(canvas.scene, onCurve + QPointF(0, 12)).alpha(), 0); // the chord's side
    QCOMPARE(colorAt(canvas.scene, onCurve - QPointF(0, 12)).alpha(), 0);
}

void tst_ConnectionLine::isPaintedBelowANode()
{
    Canvas canvas(QPointF(0, 0), QPointF(400, 0));
    QGraphicsRectItem *box = canvas.scene.addRect(QRectF(100, -20, 50, 40), Qt::NoPen, Qt::blue);
    QCOMPARE(colorAt(canvas.scene, QPointF(120, 0)), QColor(Qt::blue));
    box->setZValue(-2);
    QCOMPARE(colorAt(canvas.scene, QPointF(120, 0)), lineColor);
}

void tst_ConnectionLine::isFoundWhereItsEndsHaveMoved()
{
    Canvas canvas(QPointF(0, 0), QPointF(100, 0));
    QCOMPARE(canvas.scene.itemAt(QPointF(100, 0), QTransform()), canvas.line); // the scene has its index now
    canvas.line->sl_setEnd(QPointF(-700, 600));
    QCOMPARE(canvas.scene.itemAt(QPointF(-700, 600), QTransform()), canvas.line);
    QCOMPARE(canvas.scene.itemAt(QPointF(100, 0), QTransform()), nullptr);
    canvas.line->sl_setStart(QPointF(-800, -600));
    QCOMPARE(canvas.scene.itemAt(QPointF(-800, -600), QTransform()), canvas.line);
    QCOMPARE(canvas.scene.itemAt(QPointF(0, 0), QTransform()), nullptr);
}

void tst_ConnectionLine::pressNamesTheNearerEnd_data()
{
    QTest::addColumn<QPointF>("press");
    QTest::addColumn<int>("type");
    QTest::newRow("at the start") << QPointF(100, 50) << int(SocketType::input);
    QTest::newRow("nearer the start") << QPointF(199, 50) << int(SocketType::input);
    QTest::newRow("half-way") << QPointF(200, 50) << int(SocketType::output);
    QTest::newRow("half-way, beside the middle of the stroke") << QPointF(200, 52) << int(SocketType::output);
    QTest::newRow("nearer the end") << QPointF(201, 50) << int(SocketType::output);
    QTest::newRow("at the end") << QPointF(300, 50) << int(SocketType::output);
}

void tst_ConnectionLine::pressNamesTheNearerEnd()
{
    QFETCH(QPointF, press);
    Canvas canvas(QPointF(100, 50), QPointF(300, 50));
    const QSignalSpy clicked(canvas.line, &ConnectionLine::s_clicked);
    canvas.mouse.press(press);
    QCOMPARE(clicked.count(), 1);
    QTEST(clicked.at(0).at(1).toInt(), "type");
}

// The curve leaves the start level, so a point on it may lie nearer to the end in one direction only.
void tst_ConnectionLine::distanceIsThatOfThePressToTheEnds()
{
    Canvas canvas(QPointF(0, 0), QPointF(20, 600));
    const QSignalSpy clicked(canvas.line, &ConnectionLine::s_clicked);
    const QPointF low = canvas.line->path().pointAtPercent(0.45);
    const QPointF high = canvas.line->path().pointAtPercent(0.55);
    canvas.mouse.press(low);
    canvas.mouse.press(high);
    QCOMPARE(clicked.count(), 2);
    QCOMPARE(clicked.at(0).at(1).toInt(), int(SocketType::input));
    QCOMPARE(clicked.at(1).at(1).toInt(), int(SocketType::output));
}

void tst_ConnectionLine::pressReportsTheLineForEveryButton_data()
{
    QTest::addColumn<Qt::MouseButton>("button");
    QTest::newRow("left") << Qt::LeftButton;
    QTest::newRow("right") << Qt::RightButton;
    QTest::newRow("middle") << Qt::MiddleButton;
}

void tst_ConnectionLine::pressReportsTheLineForEveryButton()
{
    QFETCH(Qt::MouseButton, button);
    Canvas canvas(QPointF(0, 0), QPointF(200, 0));
    const QSignalSpy clicked(canvas.line, &ConnectionLine::s_clicked);
    canvas.mouse.press(QPointF(20, 0), button);
    QCOMPARE(clicked.count(), 1);
    QCOMPARE(clicked.at(0).at(0).value<ConnectionLine *>(), canvas.line);
}

void tst_ConnectionLine::pressBelongsToTheStrokeOnly_data()
{
    QTest::addColumn<QPointF>("press"); // the line runs level from (0, 0) to (400, 0)
    QTest::addColumn<bool>("hits");
    QTest::newRow("on the stroke") << QPointF(200, 0) << true;
    QTest::newRow("at its border") << QPointF(200, 2) << true;
    QTest::newRow("a few units above") << QPointF(200, -5) << true;
    QTest::newRow("a few units below") << QPointF(200, 5) << true;
    QTest::newRow("above it") << QPointF(200, -8) << false;
    QTest::newRow("below it") << QPointF(200, 8) << false;
    QTest::newRow("beyond the end") << QPointF(410, 0) << false;
}

void tst_ConnectionLine::pressBelongsToTheStrokeOnly()
{
    QFETCH(QPointF, press);
    QFETCH(bool, hits);
    Canvas canvas(QPointF(0, 0), QPointF(400, 0));
    const QSignalSpy clicked(canvas.line, &ConnectionLine::s_clicked);
    canvas.mouse.press(press);
    QCOMPARE(clicked.count(), hits ? 1 : 0);
}

void tst_ConnectionLine::pressBetweenCurveAndChordReachesWhatLiesBelow()
{
    Canvas canvas(QPointF(0, 0), QPointF(800, 800));
    const QPointF onCurve = canvas.line->path().pointAtPercent(0.25);
    const QPointF between(onCurve.x(), (onCurve.y() + onCurve.x()) / 2); // the chord is the diagonal
    QVERIFY(between.y() - onCurve.y() > 15);
    const QSignalSpy clicked(canvas.line, &ConnectionLine::s_clicked);
    QCOMPARE(canvas.scene.itemAt(between, QTransform()), nullptr);
    canvas.mouse.press(between);
    QCOMPARE(clicked.count(), 0);
    canvas.mouse.press(onCurve);
    QCOMPARE(clicked.count(), 1);
}

// An ignored press would make the scene look below and take the mouse from a line that has lost it already,
// which Qt warns about.
void tst_ConnectionLine::lineMayBeTakenOutInsideItsOwnPress()
{
    Canvas canvas(QPointF(0, 0), QPointF(400, 0));
    QGraphicsRectItem *below = canvas.scene.addRect(QRectF(100, -50, 200, 100));
    below->setZValue(-5);
    below->setFlags(QGraphicsItem::ItemIsMovable | QGraphicsItem::ItemIsSelectable);
    QPointer<ConnectionLine> line = canvas.line;
    connect(canvas.line, &ConnectionLine::s_clicked, &canvas.scene, [&canvas](ConnectionLine *clicked) {
        canvas.scene.removeItem(clicked);
        clicked->deleteLater();
    });
    canvas.mouse.press(QPointF(150, 0));
    QCOMPARE(canvas.scene.mouseGrabberItem(), nullptr);
    canvas.mouse.move(QPointF(170, 30));
    canvas.mouse.release(QPointF(170, 30));
    QCOMPARE(below->pos(), QPointF(0, 0));
    QCOMPARE(below->isSelected(), false);
    flushDeferredDeletes();
    QVERIFY(line.isNull());
}

void tst_ConnectionLine::forgetsASocketThatIsGone()
{
    QGraphicsRectItem box(QRectF(0, 0, 100, 100));
    auto *input = new Socket(SocketType::input, &box);
    auto *output = new Socket(SocketType::output, &box);
    ConnectionLine line(QPointF(0, 0), QPointF(100, 50));
    line.setSockets(input, output);
    QCOMPARE(line.inputSocket(), input);
    QCOMPARE(line.outputSocket(), output);
    delete input;
    QCOMPARE(line.inputSocket(), nullptr);
    QCOMPARE(line.outputSocket(), output);
    delete output;
    QCOMPARE(line.outputSocket(), nullptr);
}

QTEST_MAIN(tst_ConnectionLine)
#include "tst_connectionline.moc"
