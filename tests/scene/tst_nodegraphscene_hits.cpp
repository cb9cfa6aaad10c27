#include "scene/shownscene.h"
#include "support/testsupport.h"

#include <cmath>

namespace {

/// Two joined events far apart, seen at some scale, and presses on single pixels.
struct PixelScene : ShownScene
{
    Node *upstream = nullptr;
    Node *downstream = nullptr;

    explicit PixelScene(double scale)
    {
        upstream = addLoose(scene, QPointF(40000, 40000));
        downstream = addLoose(scene, QPointF(44000, 43000));
        scene.connectNodes(downstream, upstream);
        scene.deselectAll();
        view.scale(scale, scale);
    }

    /// The pixels of a row or a column around that place of the scene, which comes into the middle.
    QList<QPoint> pixelsAcross(QPointF middle, bool isColumn, int count)
    {
        view.centerOn(middle);
        const QPoint centre = at(middle);
        QList<QPoint> pixels;
        for (int i = -count; i <= count; ++i)
            pixels << centre + (isColumn ? QPoint(0, i) : QPoint(i, 0));
        return pixels;
    }
    /// The one in which that place of the scene is; at() rounds to the nearest one's corner.
    QPoint pixelOf(QPointF place) const
    {
        const QPointF exact = view.viewportTransform().map(place);
        return {int(std::floor(exact.x())), int(std::floor(exact.y()))};
    }
    void pressPixel(QPoint pixel)
    {
        QTest::mouseMove(view.windowHandle(), inView(pixel));
        QTest::mousePress(view.windowHandle(), Qt::LeftButton, {}, inView(pixel));
    }
    void movePixel(QPoint pixel) { QTest::mouseMove(view.windowHandle(), inView(pixel)); }
    void releasePixel(QPoint pixel)
    {
        QTest::mouseRelease(view.windowHandle(), Qt::LeftButton, {}, inView(pixel));
    }
    bool hasBand() const { return !rubberBandOf(scene)->rect().isNull(); }

private:
    QPoint inView(QPoint pixel) const { return view.viewport()->mapTo(&view, pixel); }
};

void addScales()
{
    QTest::addColumn<double>("scale");
    QTest::addColumn<bool>("isColumn");
    for (const double scale : {0.05, 0.2, 1.0, 3.0}) {
        for (const bool isColumn : {false, true})
            QTest::addRow("%s at %g", isColumn ? "column" : "row", scale) << scale << isColumn;
    }
}

} // namespace

/// What a press takes, and what it leaves to the canvas, pixel by pixel.
class tst_NodegraphSceneHits : public TestCase
{
    Q_OBJECT

private slots:
    void pressTakesTheLineOrBeginsABand_data() { addScales(); }
    void pressTakesTheLineOrBeginsABand();
    void pressTakesTheEventOrBeginsABand_data() { addScales(); }
    void pressTakesTheEventOrBeginsABand();
    void releaseFindsTheSocketThatAPressFinds_data() { addScales(); }
    void releaseFindsTheSocketThatAPressFinds();
};

// The framework hits with a whole pixel, the band was begun by a point: at the rim of a line a press did
// both.
void tst_NodegraphSceneHits::pressTakesTheLineOrBeginsABand()
{
    QFETCH(double, scale);
    QFETCH(bool, isColumn);
    PixelScene pixels(scale);
    const QPointF middle = pixels.downstream->inLine()->path().pointAtPercent(0.5);
    int taken = 0;
    int bands = 0;
    const QList<QPoint> across = pixels.pixelsAcross(middle, isColumn, 6 + int(12 * scale));
    for (const QPoint &pixel : across) {
        pixels.pressPixel(pixel);
        pixels.movePixel(pixel + QPoint(20, 20));
        const bool isTaken = !pixels.downstream->hasInput();
        QCOMPARE(dragLineOf(pixels.scene) != nullptr, isTaken);
        QVERIFY2(isTaken != pixels.hasBand(),
                 qPrintable(QStringLiteral("%1 %2").arg(pixel.x()).arg(isTaken)));
        ++(isTaken ? taken : bands);
        pixels.releasePixel(pixel + QPoint(20, 20));
        if (isTaken)
            pixels.stack.undo();
        QVERIFY(pixels.downstream->hasInput() && !pixels.hasBand());
    }
    QVERIFY(taken > 0 && bands >= 4);
}

void tst_NodegraphSceneHits::pressTakesTheEventOrBeginsABand()
{
    QFETCH(double, scale);
    QFETCH(bool, isColumn);
    PixelScene pixels(scale);
    const QRectF body = pixels.downstream->sceneBoundingRect();
    const QPointF rim = isColumn ? QPointF(body.left() + 100, body.bottom()) // where the line is not
                                 : QPointF(body.right(), body.top() + 60);
    int events = 0;
    int bands = 0;
    const QList<QPoint> across = pixels.pixelsAcross(rim, isColumn, 4);
    for (const QPoint &pixel : across) {
        pixels.pressPixel(pixel);
        pixels.movePixel(pixel + QPoint(isColumn ? 0 : 4, isColumn ? 4 : 0));
        const bool isTaken = pixels.scene.mouseGrabberItem() != nullptr; // by the event, or by a part of it
        QVERIFY(isTaken != pixels.hasBand());
        ++(isTaken ? events : bands);
        pixels.releasePixel(pixel);
        pixels.downstream->setPos(44000, 43000);
    }
    QVERIFY(events > 0 && bands > 0);
}

void tst_NodegraphSceneHits::releaseFindsTheSocketThatAPressFinds()
{
    QFETCH(double, scale);
    QFETCH(bool, isColumn);
    PixelScene pixels(scale);
    pixels.scene.disconnectNode(pixels.downstream);
    // Far enough from the input for any pixel of it, and in view.
    const QPointF away(pixels.upstream->boundingRect().width() + 150 / scale, 0);
    Node *other = addLoose(pixels.scene, pixels.downstream->pos() - away);
    pixels.scene.deselectAll();
    const int count = 3 + int(14 * scale);
    const QList<QPoint> across = pixels.pixelsAcross(inputOf(pixels.downstream), isColumn, count);
    const QPoint output = pixels.pixelOf(outputOf(other));
    int sockets = 0;
    for (const QPoint &pixel : across) {
        pixels.pressPixel(pixel);
        const bool isPressed = dragLineOf(pixels.scene) != nullptr;
        pixels.releasePixel(pixel);

        pixels.pressPixel(output);
        pixels.movePixel(pixel);
        pixels.releasePixel(pixel);
        QCOMPARE(pixels.downstream->hasInput(), isPressed);
        pixels.scene.disconnectNode(pixels.downstream);
        sockets += isPressed ? 1 : 0;
    }
    QVERIFY(sockets > 0 && sockets < across.size());
}

QTEST_MAIN(tst_NodegraphSceneHits)
#include "tst_nodegraphscene_hits.moc"
