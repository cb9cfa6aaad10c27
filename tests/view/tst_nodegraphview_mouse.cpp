#include "support/testsupport.h"

#include "items/node.h"
#include "scene/shownscene.h"
#include "view/viewcanvas.h"

#include <QWheelEvent>

namespace {

constexpr double oneNotch = 1.0954451150103321; // the square root of 1.2

void turnWheel(const Canvas &canvas, QPointF pos, QPoint angleDelta)
{
    QWheelEvent event(pos, canvas.view->viewport()->mapToGlobal(pos), QPoint(), angleDelta, Qt::NoButton,
                      Qt::NoModifier, Qt::NoScrollPhase, false);
    QCoreApplication::sendEvent(canvas.view->viewport(), &event);
}

/// Counts the events of one type that reach an object.
class EventCounter : public QObject
{
public:
    EventCounter(QObject *watched, QEvent::Type type) : counted(type) { watched->installEventFilter(this); }
    bool eventFilter(QObject *watched, QEvent *event) override
    {
        count += event->type() == counted ? 1 : 0;
        return QObject::eventFilter(watched, event);
    }
    int count = 0;

private:
    QEvent::Type counted;
};

} // namespace

class tst_NodegraphViewMouse : public TestCase
{
    Q_OBJECT

private slots:
    void zoomAtScalesAndShifts_data();
    void zoomAtScalesAndShifts();
    void wheelZooms_data();
    void wheelZooms();
    void wheelShiftsByThePanAnchor();
    void wheelStaysInTheView();
    void wheelZoomHasNoBound_data();
    void wheelZoomHasNoBound();
    void zoomStaysUnderARestingMouse();
    void moveReportsScenePosition_data();
    void moveReportsScenePosition();
    void sceneLearnsWhereTheMouseIs();
    void rightDragMovesTheCanvas_data();
    void rightDragMovesTheCanvas();
    void rightDragFollowsTheCursor_data();
    void rightDragFollowsTheCursor();
    void rightDragAccumulatesStepByStep();
    void secondRightPressPansToo();
    void secondRightPressTakesNothingApart_data();
    void secondRightPressTakesNothingApart();
    void otherButtonsDoNotPan_data();
    void otherButtonsDoNotPan();
    void panRoundsTowardsZero_data();
    void panRoundsTowardsZero();
    void farZoomedPanStaysWithinTheScrollBar();
    void cursorShowsThePan();
    void panAnchorIsForgottenOnRightReleaseOnly();
    void sceneSeesMouse_data();
    void sceneSeesMouse();
    void rightPressKeepsTheSelection();
    void leftPressOnTheCanvasDeselects();
    void lostReleaseEndsTheBand();
    void lostReleaseEndsTheLine_data();
    void lostReleaseEndsTheLine();
    void takenOverDragEnds_data();
    void takenOverDragEnds();
    void lostReleaseDropsTheNode();
};

void tst_NodegraphViewMouse::zoomAtScalesAndShifts_data()
{
    QTest::addColumn<double>("factor");
    QTest::addColumn<QPointF>("scenePos");
    QTest::newRow("in") << 2.0 << QPointF(10, 20);
    QTest::newRow("out") << 0.25 << QPointF(-3.5, 7);
    QTest::newRow("shift only") << 1.0 << QPointF(100, 0);
}

void tst_NodegraphViewMouse::zoomAtScalesAndShifts()
{
    QFETCH(double, factor);
    QFETCH(QPointF, scenePos);
    const Canvas canvas;
    const QTransform before = canvas.view->transform();
    canvas.view->setZoomDivisor(4.0);
    canvas.view->zoomAt(factor, scenePos);
    QCOMPARE(canvas.view->transform(), zoomed(before, factor, -scenePos));
    QCOMPARE(canvas.view->zoomDivisor(), 4.0 / factor);
}

void tst_NodegraphViewMouse::wheelZooms_data()
{
    QTest::addColumn<QPoint>("angleDelta");
    QTest::addColumn<double>("factor");
    QTest::newRow("one notch up") << QPoint(0, 120) << oneNotch;
    QTest::newRow("one notch down") << QPoint(0, -120) << 1.0 / oneNotch;
    QTest::newRow("two notches up") << QPoint(0, 240) << 1.2;
    QTest::newRow("an eighth of a notch") << QPoint(0, 15) << 1.0114602687305434;
    QTest::newRow("three eighths down") << QPoint(0, -45) << 0.9663924233596896;
    QTest::newRow("horizontal only") << QPoint(120, 0) << 1.0;
    QTest::newRow("both ways") << QPoint(-360, 240) << 1.2;
}

void tst_NodegraphViewMouse::wheelZooms()
{
    QFETCH(QPoint, angleDelta);
    QFETCH(double, factor);
    const Canvas canvas;
    const QTransform before = canvas.view->transform();
    const QPointF scenePos = canvas.view->mapToScene(QPoint(101, 50)); // rounded, and before the scaling
    turnWheel(canvas, QPointF(100.5, 50.4), angleDelta);

    const QTransform expected = zoomed(before, factor, -scenePos);
    QCOMPARE(canvas.view->transform().m11(), factor);
    QCOMPARE(canvas.view->transform().m22(), factor);
    QVERIFY2(qFuzzyCompare(canvas.view->transform(), expected), "shifted by the place of the mouse");
    QCOMPARE(canvas.view->zoomDivisor(), 1.0 / factor);

    // The reciprocal of all zooming so far, whatever it was set to in between.
    canvas.view->setZoomDivisor(1.0);
    turnWheel(canvas, QPointF(10, 10), angleDelta);
    turnWheel(canvas, QPointF(10, 10), angleDelta);
    QCOMPARE(canvas.view->zoomDivisor(), 1.0 / (factor * factor));
    QCOMPARE(canvas.view->transform().m11(), factor * factor * factor);
}

void tst_NodegraphViewMouse::wheelShiftsByThePanAnchor()
{
    const Canvas canvas;
    canvas.press(QPointF(29.5, 40.2), Qt::RightButton);
    const QTransform before = canvas.view->transform();
    const QPointF scenePos = canvas.view->mapToScene(QPoint(200, 100));
    turnWheel(canvas, QPointF(200, 100), QPoint(0, 0));
    QCOMPARE(canvas.view->transform(), zoomed(before, 1.0, QPointF(30, 40) - scenePos));
    QCOMPARE(canvas.view->zoomDivisor(), 1.0);
}

void tst_NodegraphViewMouse::wheelStaysInTheView()
{
    const Canvas canvas;
    const EventCounter wheels(canvas.scene.data(), QEvent::GraphicsSceneWheel);
    turnWheel(canvas, QPointF(100, 100), QPoint(120, 120));
    QCOMPARE(wheels.count, 0);
}

void tst_NodegraphViewMouse::wheelZoomHasNoBound_data()
{
    QTest::addColumn<int>("delta");
    QTest::addColumn<double>("scale");
    QTest::newRow("in") << 120 << 9100.438150002134;
    QTest::newRow("out") << -120 << 1.0988481911717247e-4;
}

void tst_NodegraphViewMouse::wheelZoomHasNoBound()
{
    QFETCH(int, delta);
    QFETCH(double, scale);
    const Canvas canvas;
    for (int i = 0; i < 100; ++i)
        turnWheel(canvas, QPointF(200, 150), QPoint(0, delta));
    QVERIFY(qAbs(canvas.view->transform().m11() / scale - 1.0) < 1e-9);
    QVERIFY(qAbs(canvas.view->zoomDivisor() * scale - 1.0) < 1e-9);
}

// Under a window that has just come up the mouse need not move: a zoom by key then went to the canvas's
// corner.
void tst_NodegraphViewMouse::zoomStaysUnderARestingMouse()
{
    const Canvas canvas;
    QEvent leave(QEvent::Leave);
    QCoreApplication::sendEvent(canvas.view->viewport(), &leave);
    QSignalSpy moves(canvas.view.get(), &NodegraphView::lastMousePos);
    canvas.view->horizontalScrollBar()->setValue(60000);
    canvas.view->verticalScrollBar()->setValue(70000);
    const QPointF global = canvas.view->viewport()->mapToGlobal(QPointF(200, 150));
    QEnterEvent enter(QPointF(200, 150), QPointF(200, 150), global);
    QCoreApplication::sendEvent(canvas.view.get(), &enter);
    const QPointF under = canvas.middle();
    canvas.view->scale(1.2, 1.2);
    const QPointF offBy = canvas.middle() - under;
    QVERIFY(qAbs(offBy.x()) <= 2 && qAbs(offBy.y()) <= 2);
    QVERIFY2(moves.isEmpty(), "it has not moved");
}

void tst_NodegraphViewMouse::moveReportsScenePosition_data()
{
    QTest::addColumn<Qt::MouseButtons>("buttons");
    QTest::addColumn<QPointF>("pos");
    QTest::addColumn<QPoint>("rounded");
    const QPointF somewhere(10.5, 20.4);
    QTest::newRow("no button") << Qt::MouseButtons(Qt::NoButton) << somewhere << QPoint(11, 20);
    QTest::newRow("left") << Qt::MouseButtons(Qt::LeftButton) << somewhere << QPoint(11, 20);
    QTest::newRow("middle") << Qt::MouseButtons(Qt::MiddleButton) << somewhere << QPoint(11, 20);
    QTest::newRow("right") << Qt::MouseButtons(Qt::RightButton) << somewhere << QPoint(11, 20);
    QTest::newRow("outside, half a pixel")
        << Qt::MouseButtons(Qt::LeftButton) << QPointF(-0.5, -1.5) << QPoint(-1, -2);
}

void tst_NodegraphViewMouse::moveReportsScenePosition()
{
    QFETCH(Qt::MouseButtons, buttons);
    QFETCH(QPointF, pos);
    QFETCH(QPoint, rounded);
    const Canvas canvas;
    canvas.view->setTransform(QTransform::fromScale(2, 2));
    QSignalSpy moves(canvas.view.get(), &NodegraphView::lastMousePos);
    const QPointF expected = canvas.view->mapToScene(rounded);
    canvas.move(pos, buttons);
    QCOMPARE(moves.count(), 1);
    QCOMPARE(moves.at(0).at(0).toPointF(), expected);
    canvas.move(pos, buttons);
    QCOMPARE(moves.count(), 2);
}

void tst_NodegraphViewMouse::sceneLearnsWhereTheMouseIs()
{
    const Canvas canvas;
    const QPointF expected = canvas.view->mapToScene(QPoint(120, 90));
    canvas.move(QPointF(120, 90), Qt::NoButton);
    canvas.scene->sl_addEventNode();
    QCOMPARE(canvas.scene->nodes().back()->scenePos(), expected);
}

void tst_NodegraphViewMouse::rightDragMovesTheCanvas_data()
{
    QTest::addColumn<double>("scale");
    QTest::addColumn<double>("zoomDivisor");
    QTest::addColumn<QPoint>("scrolled"); // by a drag of (30, -20)
    QTest::newRow("100 %") << 1.0 << 1.0 << QPoint(-30, 20);
    QTest::newRow("200 % by command moves half as far") << 2.0 << 1.0 << QPoint(-15, 10);
    QTest::newRow("50 % by command moves twice as far") << 0.5 << 1.0 << QPoint(-60, 40);
    QTest::newRow("200 % by wheel") << 2.0 << 0.5 << QPoint(-30, 20);
    QTest::newRow("divisor alone") << 1.0 << 0.1 << QPoint(-300, 200);
}

void tst_NodegraphViewMouse::rightDragMovesTheCanvas()
{
    QFETCH(double, scale);
    QFETCH(double, zoomDivisor);
    QFETCH(QPoint, scrolled);
    const Canvas canvas;
    canvas.view->scale(scale, scale);
    canvas.view->setZoomDivisor(zoomDivisor);
    const QPoint before = canvas.scroll();
    canvas.press(QPointF(100, 100), Qt::RightButton);
    QCOMPARE(canvas.scroll(), before);
    canvas.move(QPointF(130, 80), Qt::RightButton);
    QCOMPARE(canvas.scroll() - before, scrolled);
    canvas.release(QPointF(130, 80), Qt::RightButton);
    QCOMPARE(canvas.scroll() - before, scrolled);
}

void tst_NodegraphViewMouse::rightDragFollowsTheCursor_data()
{
    QTest::addColumn<int>("wheelNotches");
    QTest::newRow("unzoomed") << 0;
    QTest::newRow("zoomed in by wheel") << 8;
    QTest::newRow("zoomed out by wheel") << -8;
}

void tst_NodegraphViewMouse::rightDragFollowsTheCursor()
{
    QFETCH(int, wheelNotches);
    const Canvas canvas;
    canvas.view->centerOn(50000, 50000);
    for (int i = 0; i < qAbs(wheelNotches); ++i)
        turnWheel(canvas, QPointF(200, 150), QPoint(0, wheelNotches > 0 ? 120 : -120));
    const QPointF grabbed = canvas.view->mapToScene(QPoint(100, 100));
    canvas.press(QPointF(100, 100), Qt::RightButton);
    canvas.move(QPointF(161, 43), Qt::RightButton);
    // Scroll bars are whole, so a pixel may be cut off.
    const QPoint offBy = canvas.view->mapFromScene(grabbed) - QPoint(161, 43);
    QVERIFY(offBy.manhattanLength() <= 2);
}

void tst_NodegraphViewMouse::rightDragAccumulatesStepByStep()
{
    const Canvas canvas;
    const QPoint before = canvas.scroll();
    canvas.press(QPointF(99.5, 100.4), Qt::RightButton);
    canvas.move(QPointF(110, 100), Qt::RightButton);
    canvas.move(QPointF(120, 130), Qt::RightButton | Qt::LeftButton);
    canvas.move(QPointF(120.4, 130.4), Qt::RightButton);
    QCOMPARE(canvas.scroll() - before, QPoint(-20, -30));
}

void tst_NodegraphViewMouse::secondRightPressPansToo()
{
    const Canvas canvas;
    const QPoint before = canvas.scroll();
    canvas.pressAgain(QPointF(100, 100), Qt::RightButton);
    QCOMPARE(canvas.view->cursor().shape(), Qt::ClosedHandCursor);
    canvas.move(QPointF(110, 130), Qt::RightButton);
    QCOMPARE(canvas.scroll() - before, QPoint(-10, -30));
    canvas.release(QPointF(110, 130), Qt::RightButton);
    QCOMPARE(canvas.view->cursor().shape(), Qt::ArrowCursor);
}

void tst_NodegraphViewMouse::secondRightPressTakesNothingApart_data()
{
    QTest::addColumn<QString>("where");
    for (const char *where : {"line", "input", "output", "body", "canvas"})
        QTest::newRow(where) << QString::fromLatin1(where);
}

void tst_NodegraphViewMouse::secondRightPressTakesNothingApart()
{
    QFETCH(QString, where);
    const Canvas canvas;
    const std::vector<Node *> chain = addChain(*canvas.scene, 2);
    canvas.scene->selectAll();
    const std::vector<Node *> selected = canvas.scene->selectedNodes();
    Node *current = canvas.scene->currentNode();
    canvas.view->centerOn(inputOf(chain[1]));
    const QHash<QString, QPointF> places{{QStringLiteral("line"), nearEnd(chain[1]->inLine(), 0)},
                                         {QStringLiteral("input"), inputOf(chain[1])},
                                         {QStringLiteral("output"), outputOf(chain[0])},
                                         {QStringLiteral("body"), bodyOf(chain[0])},
                                         {QStringLiteral("canvas"), inputOf(chain[1]) - QPointF(0, 140)}};
    const QPointF pos = canvas.view->mapFromScene(places.value(where));
    canvas.pressAgain(pos, Qt::RightButton);
    canvas.release(pos, Qt::RightButton);
    QCOMPARE(chain[1]->prevNode(), chain[0]);
    QCOMPARE(dragLineOf(*canvas.scene), nullptr);
    QCOMPARE(canvas.scene->currentNode(), current);
    QCOMPARE(canvas.scene->selectedNodes(), selected);
    QVERIFY(chain[0]->isSelected() && chain[1]->isSelected());
}

void tst_NodegraphViewMouse::otherButtonsDoNotPan_data()
{
    QTest::addColumn<Qt::MouseButton>("button");
    QTest::newRow("none") << Qt::NoButton;
    QTest::newRow("left") << Qt::LeftButton;
    QTest::newRow("middle") << Qt::MiddleButton;
}

void tst_NodegraphViewMouse::otherButtonsDoNotPan()
{
    QFETCH(Qt::MouseButton, button);
    const Canvas canvas;
    const QPoint before = canvas.scroll();
    if (button != Qt::NoButton)
        canvas.press(QPointF(100, 100), button);
    canvas.move(QPointF(130, 80), button);
    QCOMPARE(canvas.scroll(), before);
    if (button != Qt::NoButton)
        canvas.release(QPointF(130, 80), button);
}

void tst_NodegraphViewMouse::panRoundsTowardsZero_data()
{
    QTest::addColumn<int>("start");
    QTest::addColumn<int>("end"); // after a drag by 31 pixels right at 200 %
    QTest::newRow("right of zero") << 1000 << 984;
    QTest::newRow("left of zero") << -1000 << -1015;
}

void tst_NodegraphViewMouse::panRoundsTowardsZero()
{
    QFETCH(int, start);
    QFETCH(int, end);
    const Canvas canvas;
    canvas.scene->setSceneRect(-5000, -5000, 10000, 10000);
    canvas.view->scale(2, 2);
    canvas.view->setZoomDivisor(1.0);
    canvas.view->horizontalScrollBar()->setValue(start);
    canvas.view->verticalScrollBar()->setValue(start);
    QCOMPARE(canvas.scroll(), QPoint(start, start));
    canvas.press(QPointF(100, 100), Qt::RightButton);
    canvas.move(QPointF(131, 131), Qt::RightButton);
    QCOMPARE(canvas.scroll(), QPoint(end, end));
}

// A pan at a tiny zoom asks for more scene units than a scroll bar can count.
void tst_NodegraphViewMouse::farZoomedPanStaysWithinTheScrollBar()
{
    const Canvas canvas;
    canvas.view->setZoomDivisor(1e-12);
    canvas.press(QPointF(100, 100), Qt::RightButton);
    canvas.move(QPointF(50, 150), Qt::RightButton);
    QCOMPARE(canvas.view->horizontalScrollBar()->value(), canvas.view->horizontalScrollBar()->maximum());
    QCOMPARE(canvas.view->verticalScrollBar()->value(), canvas.view->verticalScrollBar()->minimum());
}

void tst_NodegraphViewMouse::cursorShowsThePan()
{
    const Canvas canvas;
    QCOMPARE(canvas.view->cursor().shape(), Qt::ArrowCursor);
    canvas.press(QPointF(100, 100), Qt::LeftButton);
    QCOMPARE(canvas.view->cursor().shape(), Qt::ArrowCursor);
    canvas.release(QPointF(100, 100), Qt::LeftButton);
    canvas.press(QPointF(100, 100), Qt::RightButton);
    QCOMPARE(canvas.view->cursor().shape(), Qt::ClosedHandCursor);
    QCOMPARE(canvas.view->viewport()->cursor().shape(), Qt::ClosedHandCursor);
    canvas.release(QPointF(100, 100), Qt::LeftButton);
    QCOMPARE(canvas.view->cursor().shape(), Qt::ClosedHandCursor);
    canvas.release(QPointF(100, 100), Qt::RightButton);
    QCOMPARE(canvas.view->cursor().shape(), Qt::ArrowCursor);
    QCOMPARE(canvas.view->viewport()->cursor().shape(), Qt::ArrowCursor);
}

// The anchor shows in what a zoom shifts by.
void tst_NodegraphViewMouse::panAnchorIsForgottenOnRightReleaseOnly()
{
    const Canvas canvas;
    const auto shift = [&canvas] {
        canvas.view->resetTransform();
        canvas.view->zoomAt(1.0, QPointF());
        return QPointF(canvas.view->transform().dx(), canvas.view->transform().dy());
    };
    QCOMPARE(shift(), QPointF(0, 0));
    canvas.press(QPointF(30, 40), Qt::LeftButton);
    QCOMPARE(shift(), QPointF(0, 0));
    canvas.press(QPointF(30, 40), Qt::RightButton);
    QCOMPARE(shift(), QPointF(30, 40));
    canvas.move(QPointF(34.5, 41), Qt::RightButton);
    QCOMPARE(shift(), QPointF(35, 41));
    canvas.release(QPointF(35, 41), Qt::LeftButton);
    QCOMPARE(shift(), QPointF(35, 41));
    canvas.release(QPointF(35, 41), Qt::RightButton);
    QCOMPARE(shift(), QPointF(0, 0));
}

void tst_NodegraphViewMouse::sceneSeesMouse_data()
{
    QTest::addColumn<Qt::MouseButton>("button");
    QTest::addColumn<int>("presses");
    QTest::newRow("left") << Qt::LeftButton << 1;
    QTest::newRow("middle") << Qt::MiddleButton << 1;
    QTest::newRow("right press is kept from it") << Qt::RightButton << 0;
}

void tst_NodegraphViewMouse::sceneSeesMouse()
{
    QFETCH(Qt::MouseButton, button);
    QFETCH(int, presses);
    const Canvas canvas;
    const EventCounter pressed(canvas.scene.data(), QEvent::GraphicsSceneMousePress);
    const EventCounter moved(canvas.scene.data(), QEvent::GraphicsSceneMouseMove);
    const EventCounter released(canvas.scene.data(), QEvent::GraphicsSceneMouseRelease);
    canvas.press(QPointF(100, 100), button);
    canvas.move(QPointF(100, 100), button); // no distance: a scrolled view repeats the move
    canvas.release(QPointF(100, 100), button);
    QCOMPARE(pressed.count, presses);
    QCOMPARE(moved.count, 1);
    QCOMPARE(released.count, 1);
}

void tst_NodegraphViewMouse::rightPressKeepsTheSelection()
{
    const Canvas canvas;
    const std::vector<Node *> chain = addChain(*canvas.scene, 1);
    QVERIFY(chain[0]->isSelected());
    canvas.scene->selectAll();
    canvas.view->centerOn(chain[0]->scenePos() + QPointF(2000, 2000)); // an empty place
    canvas.press(QPointF(100, 100), Qt::RightButton);
    canvas.release(QPointF(100, 100), Qt::RightButton);
    QVERIFY(chain[0]->isSelected());
    QCOMPARE(canvas.scene->currentNode(), chain[0]);
    QCOMPARE(canvas.scene->selectedNodes(), chain);
}

void tst_NodegraphViewMouse::leftPressOnTheCanvasDeselects()
{
    const Canvas canvas;
    const std::vector<Node *> chain = addChain(*canvas.scene, 1);
    canvas.view->centerOn(chain[0]->scenePos() + QPointF(2000, 2000));
    canvas.press(QPointF(100, 100), Qt::LeftButton);
    canvas.release(QPointF(100, 100), Qt::LeftButton);
    QVERIFY(!chain[0]->isSelected());
    QCOMPARE(canvas.scene->currentNode(), nullptr);
}

// A dialog that came by key while the button was held got the release.
void tst_NodegraphViewMouse::lostReleaseEndsTheBand()
{
    const Canvas canvas;
    const std::vector<Node *> chain = addChain(*canvas.scene, 1);
    canvas.view->centerOn(chain[0]->scenePos());
    canvas.press(QPointF(20, 20), Qt::LeftButton);
    canvas.move(QPointF(60, 60), Qt::LeftButton);
    const QRectF band = rubberBandOf(*canvas.scene)->rect();
    QVERIFY(!band.isNull());
    // The mouse comes back, and then it moves.
    QEnterEvent enter(QPointF(390, 290), QPointF(390, 290), canvas.view->mapToGlobal(QPointF(390, 290)));
    QCoreApplication::sendEvent(canvas.view.get(), &enter);
    QCOMPARE(rubberBandOf(*canvas.scene)->rect(), band);
    canvas.move(QPointF(390, 290), Qt::NoButton);
    QVERIFY(rubberBandOf(*canvas.scene)->rect().isNull());
    canvas.move(QPointF(380, 280), Qt::NoButton);
    QVERIFY(rubberBandOf(*canvas.scene)->rect().isNull());
    QVERIFY(!chain[0]->isSelected());
    QVERIFY(canvas.scene->selectedNodes().empty());
}

void tst_NodegraphViewMouse::lostReleaseEndsTheLine_data()
{
    QTest::addColumn<Qt::MouseButton>("button");
    QTest::addColumn<bool>("twice");
    QTest::newRow("press") << Qt::LeftButton << false;
    QTest::newRow("second press") << Qt::LeftButton << true;
    QTest::newRow("middle") << Qt::MiddleButton << false;
    QTest::newRow("second middle") << Qt::MiddleButton << true;
    QTest::newRow("back") << Qt::BackButton << false;
}

void tst_NodegraphViewMouse::lostReleaseEndsTheLine()
{
    QFETCH(Qt::MouseButton, button);
    QFETCH(bool, twice);
    const Canvas canvas;
    const std::vector<Node *> chain = addChain(*canvas.scene, 2);
    canvas.scene->disconnectNode(chain[1]);
    canvas.view->centerOn(outputOf(chain[0]));
    const QPointF output = canvas.view->mapFromScene(outputOf(chain[0]));
    if (twice)
        canvas.pressAgain(output, button);
    else
        canvas.press(output, button);
    canvas.move(output + QPointF(0, 90), button);
    QVERIFY(dragLineOf(*canvas.scene));
    canvas.move(canvas.view->mapFromScene(inputOf(chain[1])), Qt::NoButton);
    QCOMPARE(dragLineOf(*canvas.scene), nullptr);
    QVERIFY(!chain[1]->hasInput());
}

void tst_NodegraphViewMouse::takenOverDragEnds_data()
{
    QTest::addColumn<int>("by");
    QTest::newRow("a finger") << int(QEvent::TouchBegin);
    QTest::newRow("a pen") << int(QEvent::TabletPress);
    QTest::newRow("another item") << int(QEvent::GrabMouse);
}

// Neither the mouse's release nor a move without its button comes then.
void tst_NodegraphViewMouse::takenOverDragEnds()
{
    QFETCH(int, by);
    const Canvas canvas;
    const std::vector<Node *> chain = addChain(*canvas.scene, 2);
    canvas.scene->disconnectNode(chain[1]);
    canvas.view->centerOn(outputOf(chain[0]));
    const QPointF output = canvas.view->mapFromScene(outputOf(chain[0]));
    canvas.press(output, Qt::LeftButton);
    canvas.move(output + QPointF(0, 90), Qt::LeftButton);
    QVERIFY(dragLineOf(*canvas.scene));
    if (by == QEvent::TouchBegin) {
        const std::unique_ptr<QPointingDevice> screen(QTest::createTouchDevice());
        QTest::touchEvent(canvas.view->viewport(), screen.get()).press(0, QPoint(30, 30));
        QTest::touchEvent(canvas.view->viewport(), screen.get()).release(0, QPoint(30, 30));
    } else if (by == QEvent::TabletPress) {
        const QPointF place(30, 30);
        QTabletEvent pressed(QEvent::TabletPress, QPointingDevice::primaryPointingDevice(), place,
                             canvas.view->viewport()->mapToGlobal(place), 1, 0, 0, 0, 0, 0, Qt::NoModifier,
                             Qt::LeftButton, Qt::LeftButton);
        QCoreApplication::sendEvent(canvas.view->viewport(), &pressed);
    } else {
        chain[1]->grabMouse();
        canvas.move(output + QPointF(0, 80), Qt::LeftButton);
    }
    QCOMPARE(dragLineOf(*canvas.scene), nullptr);
}

void tst_NodegraphViewMouse::lostReleaseDropsTheNode()
{
    const Canvas canvas;
    const std::vector<Node *> chain = addChain(*canvas.scene, 1);
    canvas.view->centerOn(chain[0]);
    const QPointF handle = canvas.view->mapFromScene(bodyOf(chain[0]));
    const QPointF before = chain[0]->scenePos();
    canvas.press(handle, Qt::LeftButton);
    canvas.move(handle + QPointF(10, 0), Qt::LeftButton);
    canvas.move(handle + QPointF(50, 50), Qt::NoButton);
    QCOMPARE(chain[0]->scenePos(), before + QPointF(10, 0));
    QCOMPARE(canvas.scene->mouseGrabberItem(), nullptr);
}

QTEST_MAIN(tst_NodegraphViewMouse)
#include "tst_nodegraphview_mouse.moc"
