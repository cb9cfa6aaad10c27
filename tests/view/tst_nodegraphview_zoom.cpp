#include "support/testsupport.h"

#include "app/mainwindow.h"
#include "items/eventdata.h"
#include "items/node.h"
#include "items/nodedata.h"
#include "items/stlineedit.h"
#include "view/viewcanvas.h"

#include <QAction>
#include <QApplication>
#include <QCursor>
#include <QGestureEvent>
#include <QPinchGesture>
#include <QPointingDevice>
#include <QWheelEvent>

// Wheel, touch and the hand that pans, in a window with a mouse that really is where it is said to be.

namespace {

/// One turn of a wheel, or one step of two fingers on a touchpad.
struct Turn
{
    QPoint angleDelta;
    QPoint pixelDelta{};
    Qt::ScrollPhase phase = Qt::NoScrollPhase;
};

void turnWheel(const QGraphicsView *view, QPointF pos, const Turn &turn)
{
    QWheelEvent event(pos, view->viewport()->mapToGlobal(pos), turn.pixelDelta, turn.angleDelta, Qt::NoButton,
                      Qt::NoModifier, turn.phase, false);
    QCoreApplication::sendEvent(view->viewport(), &event);
}

/// The main window with one empty tab, at the middle of its canvas.
struct Program
{
    Program()
    {
        window.show();
        window.activateWindow();
        QVERIFY(QTest::qWaitForWindowActive(&window));
        view->centerOn(50000, 50000);
    }
    ~Program() { QTest::mouseRelease(window.windowHandle(), Qt::RightButton, {}, QPoint(1, 1)); }
    Program(const Program &) = delete;
    Program &operator=(const Program &) = delete;

    void trigger(const char *action) const
    {
        window.findChild<QAction *>(QString::fromLatin1(action))->trigger();
    }
    /// Moves the mouse pointer. The offscreen platform forgets its windows' frames when it tells of the move,
    /// so the move is told again.
    void pointAt(QPoint inViewport) const
    {
        QCursor::setPos(view->viewport()->mapToGlobal(inViewport));
        QCoreApplication::processEvents();
        QTest::mouseMove(window.windowHandle(), inWindow(inViewport));
    }
    QPoint inWindow(QPoint inViewport) const { return view->viewport()->mapTo(&window, inViewport); }
    QPointF offBy(QPointF scenePos, QPoint inViewport) const
    {
        return view->viewportTransform().map(scenePos) - QPointF(inViewport);
    }

    MainWindow window;
    NodegraphView *view = window.views().front();
};

/// What a view is told of a pinch. Where it begins and how often its end is told is Qt's affair.
class PinchListener : public QObject
{
public:
    explicit PinchListener(QObject *view) { view->installEventFilter(this); }
    bool eventFilter(QObject *watched, QEvent *event) override
    {
        if (event->type() == QEvent::Gesture) {
            if (const auto *pinch = static_cast<QPinchGesture *>(
                    static_cast<QGestureEvent *>(event)->gesture(Qt::PinchGesture))) {
                ++steps;
                product *= pinch->scaleFactor();
            }
        }
        return QObject::eventFilter(watched, event);
    }
    int steps = 0;
    double product = 1.0;
};

bool within(QPointF distance, double pixels)
{
    return qAbs(distance.x()) <= pixels && qAbs(distance.y()) <= pixels;
}

} // namespace

class tst_NodegraphViewZoom : public TestCase
{
    Q_OBJECT

private slots:
    void wheelZoomsByItsAngleAlone_data();
    void wheelZoomsByItsAngleAlone();
    void smallStepsMakeANotch_data();
    void smallStepsMakeANotch();
    void zoomStaysUnderTheMouse_data();
    void zoomStaysUnderTheMouse();
    void zoomStaysUnderTheMouseForAWholeTurn_data();
    void zoomStaysUnderTheMouseForAWholeTurn();
    void panFollowsTheHandAtFullSize_data();
    void panFollowsTheHandAtFullSize();
    void panAfterAZoomCommandKeepsItsPace();
    void pinchOfTwoFingersScales_data();
    void pinchOfTwoFingersScales();
    void hoursOfZoomingLoseNothing();
};

void tst_NodegraphViewZoom::wheelZoomsByItsAngleAlone_data()
{
    QTest::addColumn<QPoint>("angleDelta");
    QTest::addColumn<QPoint>("pixelDelta");
    QTest::addColumn<Qt::ScrollPhase>("phase");
    QTest::addColumn<double>("factor");
    QTest::newRow("finest step") << QPoint(0, 1) << QPoint() << Qt::NoScrollPhase << 1.0007599617780403;
    QTest::newRow("finest step down") << QPoint(0, -1) << QPoint() << Qt::NoScrollPhase << 0.9992406153252873;
    QTest::newRow("an eighth of a notch")
        << QPoint(0, 15) << QPoint() << Qt::NoScrollPhase << 1.0114602687305434;
    QTest::newRow("odd step") << QPoint(0, 37) << QPoint() << Qt::NoScrollPhase << 1.0285066611651008;
    QTest::newRow("odd step down") << QPoint(0, -37) << QPoint() << Qt::NoScrollPhase << 0.9722834452692721;
    QTest::newRow("touchpad") << QPoint(0, 37) << QPoint(0, 5) << Qt::ScrollUpdate << 1.0285066611651008;
    QTest::newRow("touchpad, aslant")
        << QPoint(-80, 37) << QPoint(-11, 5) << Qt::ScrollUpdate << 1.0285066611651008;
    QTest::newRow("touchpad, running on")
        << QPoint(0, 15) << QPoint(0, 2) << Qt::ScrollMomentum << 1.0114602687305434;
    QTest::newRow("pixels the other way")
        << QPoint(0, 120) << QPoint(0, -300) << Qt::ScrollUpdate << 1.0954451150103321;
    QTest::newRow("pixels alone") << QPoint() << QPoint(0, 40) << Qt::ScrollUpdate << 1.0;
    QTest::newRow("begin of a gesture") << QPoint() << QPoint() << Qt::ScrollBegin << 1.0;
    QTest::newRow("end of a gesture") << QPoint() << QPoint() << Qt::ScrollEnd << 1.0;
}

void tst_NodegraphViewZoom::wheelZoomsByItsAngleAlone()
{
    QFETCH(QPoint, angleDelta);
    QFETCH(QPoint, pixelDelta);
    QFETCH(Qt::ScrollPhase, phase);
    QFETCH(double, factor);
    const Canvas canvas;
    const QTransform before = canvas.view->transform();
    const QPointF scenePos = canvas.view->mapToScene(QPoint(200, 150));
    turnWheel(canvas.view.get(), QPointF(200, 150), {angleDelta, pixelDelta, phase});
    QVERIFY(qFuzzyCompare(canvas.view->transform(), zoomed(before, factor, -scenePos)));
    QCOMPARE(canvas.view->transform().m11(), factor);
    QCOMPARE(canvas.view->zoomDivisor(), 1.0 / factor);
    QVERIFY(within(canvas.middle() - scenePos, 1.0));
}

void tst_NodegraphViewZoom::smallStepsMakeANotch_data()
{
    QTest::addColumn<int>("step");
    QTest::newRow("120 of the finest") << 1;
    QTest::newRow("8 eighths") << 15;
    QTest::newRow("5 downwards") << -24;
}

void tst_NodegraphViewZoom::smallStepsMakeANotch()
{
    QFETCH(int, step);
    const Canvas canvas;
    for (int i = 0; i < 120 / qAbs(step); ++i)
        turnWheel(canvas.view.get(), QPointF(200, 150), {QPoint(0, step)});
    const double notch = step > 0 ? 1.0954451150103321 : 1.0 / 1.0954451150103321;
    QCOMPARE(canvas.view->transform().m11(), notch);
    QCOMPARE(canvas.view->zoomDivisor(), 1.0 / notch);
}

void tst_NodegraphViewZoom::zoomStaysUnderTheMouse_data()
{
    QTest::addColumn<QByteArray>("start");
    QTest::addColumn<int>("notches");
    QTest::addColumn<QPoint>("place");
    QTest::addColumn<int>("delta");
    const std::pair<const char *, int> zooms[] = {{"actionZoom_to_100", 0}, {"actionZoom_to_50", 0},
                                                  {"actionZoom_to_200", 0}, {"actionZoom_In", 0},
                                                  {"actionZoom_to_100", 9}, {"actionZoom_to_100", -9}};
    for (const auto &[start, notches] : zooms) {
        for (const QPoint place : {QPoint(50, 40), QPoint(401, 303), QPoint(12, 480)}) {
            for (const int delta : {120, -120, 15, -37, 1, 720}) {
                QTest::addRow("%s and %d notches, at %d,%d, by %d", start, notches, place.x(), place.y(),
                              delta)
                    << QByteArray(start) << notches << place << delta;
            }
        }
    }
}

void tst_NodegraphViewZoom::zoomStaysUnderTheMouse()
{
    QFETCH(QByteArray, start);
    QFETCH(int, notches);
    QFETCH(QPoint, place);
    QFETCH(int, delta);
    Program program;
    program.pointAt(QPoint(300, 200));
    program.trigger(start);
    for (int i = 0; i < qAbs(notches); ++i)
        turnWheel(program.view, QPointF(300, 200), {QPoint(0, notches > 0 ? 120 : -120)});

    program.pointAt(place);
    const QPointF under = program.view->mapToScene(place);
    turnWheel(program.view, place, {QPoint(0, delta)});
    const QPointF offBy = program.offBy(under, place);
    QVERIFY2(within(offBy, 1.0), qPrintable(QStringLiteral("%1 %2").arg(offBy.x()).arg(offBy.y())));
}

void tst_NodegraphViewZoom::zoomStaysUnderTheMouseForAWholeTurn_data()
{
    QTest::addColumn<int>("delta");
    QTest::addColumn<int>("times");
    QTest::newRow("notches in") << 120 << 12;
    QTest::newRow("notches out") << -120 << 12;
    QTest::newRow("touchpad in") << 15 << 96;
    QTest::newRow("touchpad out") << -15 << 96;
}

// The base anchors each step with a pixel or two to spare, always to the same side: a touchpad's many small
// steps carried the canvas away by a fifth of the window.
void tst_NodegraphViewZoom::zoomStaysUnderTheMouseForAWholeTurn()
{
    QFETCH(int, delta);
    QFETCH(int, times);
    Program program;
    const QPoint place(220, 170);
    program.pointAt(place);
    const QPointF under = program.view->mapToScene(place);
    for (int i = 0; i < times; ++i)
        turnWheel(program.view, place, {QPoint(0, delta)});
    const QPointF offBy = program.offBy(under, place);
    QVERIFY2(within(offBy, 1.0), qPrintable(QStringLiteral("%1 %2").arg(offBy.x()).arg(offBy.y())));
}

void tst_NodegraphViewZoom::panFollowsTheHandAtFullSize_data()
{
    QTest::addColumn<QByteArray>("over");
    QTest::newRow("canvas") << QByteArray("canvas");
    QTest::newRow("event") << QByteArray("event");
    QTest::newRow("text") << QByteArray("text");
    QTest::newRow("text that is edited") << QByteArray("edited");
}

void tst_NodegraphViewZoom::panFollowsTheHandAtFullSize()
{
    QFETCH(QByteArray, over);
    Program program;
    NodegraphScene *scene = program.view->nodegraphScene();
    scene->sl_addEventNode();
    Node *node = scene->nodes().front();
    node->setPos(program.view->mapToScene(QPoint(100, 100)));
    program.trigger("actionZoom_In");
    program.trigger("actionZoom_to_100");
    STLineEdit *text = node->payload()->eventContent()->descriptionItem();
    text->setText(QStringLiteral("Rain"));
    if (over == "edited")
        text->setFocus();

    QPointF grabbed = node->mapToScene(QPointF(-40, -40));
    if (over == "event")
        grabbed = node->mapToScene(QPointF(18, 55));
    else if (over != "canvas")
        grabbed = text->mapToScene(text->boundingRect().center());
    const QPointF place = node->pos();
    QPoint hand = program.view->mapFromScene(grabbed);
    const QPointF held = program.view->mapToScene(hand);
    QTest::mousePress(program.window.windowHandle(), Qt::RightButton, {}, program.inWindow(hand));
    for (const QPoint step : {QPoint(1, 0), QPoint(60, 33), QPoint(-7, 90), QPoint(-50, -200)}) {
        hand += step;
        QTest::mouseMove(program.window.windowHandle(), program.inWindow(hand));
        QCOMPARE(program.view->mapToScene(hand), held);
    }
    QCOMPARE(QApplication::activePopupWidget(), nullptr); // no text's menu has come up
    QCOMPARE(program.view->cursor().shape(), Qt::ClosedHandCursor);
    QTest::mouseRelease(program.window.windowHandle(), Qt::RightButton, {}, program.inWindow(hand));
    QCOMPARE(program.view->mapToScene(hand), held);
    QCOMPARE(program.view->cursor().shape(), Qt::ArrowCursor);

    QCOMPARE(node->pos(), place);
    QCOMPARE(text->hasFocus(), over == "edited");
    QCOMPARE(text->toPlainText(), QStringLiteral("Rain"));
    QTest::mouseMove(program.window.windowHandle(), program.inWindow(hand + QPoint(20, 20)));
    QCOMPARE(program.view->mapToScene(hand), held); // let go
}

void tst_NodegraphViewZoom::panAfterAZoomCommandKeepsItsPace()
{
    Program program;
    program.trigger("actionZoom_to_200");
    const QPoint before(program.view->horizontalScrollBar()->value(),
                        program.view->verticalScrollBar()->value());
    const QPoint hand(200, 200);
    QTest::mousePress(program.window.windowHandle(), Qt::RightButton, {}, program.inWindow(hand));
    QTest::mouseMove(program.window.windowHandle(), program.inWindow(hand + QPoint(40, -60)));
    QCOMPARE(
        QPoint(program.view->horizontalScrollBar()->value(), program.view->verticalScrollBar()->value()) -
            before,
        QPoint(-20, 30));
    QTest::mouseRelease(program.window.windowHandle(), Qt::RightButton, {},
                        program.inWindow(hand + QPoint(40, -60)));
}

void tst_NodegraphViewZoom::pinchOfTwoFingersScales_data()
{
    QTest::addColumn<int>("start"); // each finger's distance from the middle
    QTest::addColumn<int>("end");
    QTest::newRow("apart") << 50 << 100;
    QTest::newRow("together") << 120 << 40;
}

void tst_NodegraphViewZoom::pinchOfTwoFingersScales()
{
    QFETCH(int, start);
    QFETCH(int, end);
    static QPointingDevice *const screen = QTest::createTouchDevice();
    Program program;
    const QPoint middle(300, 250);
    const auto finger = [&](int side, int distance) {
        return program.inWindow(middle + QPoint(side * distance, 0));
    };
    PinchListener pinch(program.view);
    const LogCapture log;
    QWindow *window = program.window.windowHandle();
    QTest::touchEvent(window, screen).press(0, finger(-1, start), window).press(1, finger(1, start), window);
    const int steps = 10;
    for (int i = 1; i <= steps; ++i) {
        const int distance = start + (end - start) * i / steps;
        QTest::touchEvent(window, screen)
            .move(0, finger(-1, distance), window)
            .move(1, finger(1, distance), window);
    }
    QTest::touchEvent(window, screen).release(0, finger(-1, end), window).release(1, finger(1, end), window);
    QVERIFY(pinch.steps > 0);
    QCOMPARE(log.count(QStringLiteral("Handling pinch gesture")), pinch.steps);
    const double scale = program.view->transform().m11();
    QCOMPARE(scale, pinch.product);
    QVERIFY(end > start ? scale > 1.5 : scale < 0.5);
    QCOMPARE(program.view->zoomDivisor(), 1.0 / scale);
}

// Every step shifts the canvas by the place that it keeps; what was shifted in an hour did not fit into the
// scroll bars any more.
void tst_NodegraphViewZoom::hoursOfZoomingLoseNothing()
{
    const Canvas canvas;
    canvas.view->centerOn(90000, 90000);
    for (int i = 0; i < 40; ++i)
        turnWheel(canvas.view.get(), QPointF(200, 150), {QPoint(0, 120)});
    const QPointF place = canvas.middle();
    QVERIFY(within(place - QPointF(90000, 90000), 1.0));
    for (int i = 0; i < 1000; ++i) {
        turnWheel(canvas.view.get(), QPointF(200, 150), {QPoint(0, i % 2 == 0 ? 120 : -120)});
        QVERIFY2(within(canvas.middle() - place, 0.2), qPrintable(QString::number(i)));
    }
    for (int i = 0; i < 40; ++i)
        turnWheel(canvas.view.get(), QPointF(200, 150), {QPoint(0, -120)});
    QVERIFY(within(canvas.middle() - place, 1.0));
    QVERIFY(qFuzzyCompare(canvas.view->transform().m11(), 1.0));
    const QPoint before = canvas.scroll();
    canvas.press(QPointF(100, 100), Qt::RightButton);
    canvas.move(QPointF(110, 130), Qt::RightButton);
    QVERIFY(canvas.scroll() != before);
}

QTEST_MAIN(tst_NodegraphViewZoom)
#include "tst_nodegraphview_zoom.moc"
