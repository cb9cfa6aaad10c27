#include "view/viewcanvas.h"

#include <QEnterEvent>
#include <QWheelEvent>

namespace {

/// What a zoom by nothing would shift the canvas by: the pan's anchor, (0, 0) while nobody pans.
QPointF anchorOf(const Canvas &canvas)
{
    const QTransform before = canvas.view->transform();
    canvas.view->setTransform(QTransform());
    canvas.view->zoomAt(1.0, QPointF());
    const QPointF shift(canvas.view->transform().dx(), canvas.view->transform().dy());
    canvas.view->setTransform(before);
    return shift;
}

} // namespace

/// A pan whose release another window got.
class tst_NodegraphViewLostPan : public TestCase
{
    Q_OBJECT

private slots:
    void moveWithoutTheButtonEndsIt_data();
    void moveWithoutTheButtonEndsIt();
    void comingBackWithoutTheButtonEndsIt();
    void heldButtonGoesOn();
    void zoomAfterItStaysUnderTheMouse();
    void nextPanIsWhole();
};

void tst_NodegraphViewLostPan::moveWithoutTheButtonEndsIt_data()
{
    QTest::addColumn<bool>("twice");
    QTest::addColumn<Qt::MouseButton>("other");
    QTest::newRow("press") << false << Qt::NoButton;
    QTest::newRow("second press") << true << Qt::NoButton;
    QTest::newRow("with the left button held") << false << Qt::LeftButton;
}

void tst_NodegraphViewLostPan::moveWithoutTheButtonEndsIt()
{
    QFETCH(bool, twice);
    QFETCH(Qt::MouseButton, other);
    const Canvas canvas;
    if (twice)
        canvas.pressAgain(QPointF(100, 100), Qt::RightButton);
    else
        canvas.press(QPointF(100, 100), Qt::RightButton);
    canvas.move(QPointF(120, 110), Qt::RightButton);
    const QPoint before = canvas.scroll();
    canvas.move(QPointF(300, 200), other);
    QCOMPARE(canvas.scroll(), before);
    QCOMPARE(canvas.view->cursor().shape(), Qt::ArrowCursor);
    QCOMPARE(canvas.view->viewport()->cursor().shape(), Qt::ArrowCursor);
    QCOMPARE(anchorOf(canvas), QPointF());
}

void tst_NodegraphViewLostPan::comingBackWithoutTheButtonEndsIt()
{
    const Canvas canvas;
    canvas.press(QPointF(100, 100), Qt::RightButton);
    QEnterEvent enter(QPointF(390, 290), QPointF(390, 290), canvas.view->mapToGlobal(QPointF(390, 290)));
    QCoreApplication::sendEvent(canvas.view.get(), &enter);
    QCOMPARE(canvas.view->cursor().shape(), Qt::ArrowCursor);
    QCOMPARE(anchorOf(canvas), QPointF());
}

void tst_NodegraphViewLostPan::heldButtonGoesOn()
{
    const Canvas canvas;
    canvas.press(QPointF(100, 100), Qt::RightButton);
    canvas.move(QPointF(120, 110), Qt::RightButton | Qt::LeftButton);
    QCOMPARE(canvas.view->cursor().shape(), Qt::ClosedHandCursor);
    QCOMPARE(anchorOf(canvas), QPointF(120, 110));
}

// The anchor that was left behind made each turn of the wheel jump.
void tst_NodegraphViewLostPan::zoomAfterItStaysUnderTheMouse()
{
    const auto shiftOfZoom = [](bool panned) {
        const Canvas canvas;
        if (panned)
            canvas.press(QPointF(100, 100), Qt::RightButton);
        canvas.move(QPointF(200, 150), Qt::NoButton);
        const QPointF centre = canvas.middle();
        canvas.view->zoomAt(2.0, centre);
        return canvas.view->transform().map(QPointF()) / 2.0;
    };
    QCOMPARE(shiftOfZoom(true), shiftOfZoom(false));
}

void tst_NodegraphViewLostPan::nextPanIsWhole()
{
    const Canvas canvas;
    canvas.press(QPointF(100, 100), Qt::RightButton);
    canvas.move(QPointF(200, 150), Qt::NoButton);
    const QPoint before = canvas.scroll();
    canvas.press(QPointF(200, 150), Qt::RightButton);
    QCOMPARE(canvas.view->cursor().shape(), Qt::ClosedHandCursor);
    canvas.move(QPointF(210, 180), Qt::RightButton);
    QCOMPARE(canvas.scroll() - before, QPoint(-10, -30));
    canvas.release(QPointF(210, 180), Qt::RightButton);
    QCOMPARE(canvas.view->cursor().shape(), Qt::ArrowCursor);
}

QTEST_MAIN(tst_NodegraphViewLostPan)
#include "tst_nodegraphview_lostpan.moc"
