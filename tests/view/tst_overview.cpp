#include "view/viewcanvas.h"

#include "items/connectionline.h"
#include "items/eventdata.h"
#include "items/node.h"
#include "items/nodedata.h"
#include "items/socket.h"
#include "view/overview.h"

#include <QImage>
#include <QtMath>

using namespace Qt::StringLiterals;

// The canvas from far away: what the framework would paint without the texts, as far as it can be seen.

namespace {

/// A canvas with two joined events, shown at that scale with the first one's corner in the middle.
struct FarCanvas : Canvas
{
    explicit FarCanvas(double scale)
    {
        scene->sl_lastMousePos(QPointF(50000, 50000));
        nodes = addChain(*scene, 2);
        scene->deselectAll();
        scene->sl_deselectCurrentNode();
        scene->setEndOfStory(nodes.at(1));
        view->setTransform(QTransform::fromScale(scale, scale));
        view->centerOn(nodes.at(0)->scenePos());
    }

    QImage shown() const { return view->viewport()->grab().toImage(); }
    /// The colour at a place of the canvas.
    QColor at(QPointF scenePos) const { return shown().pixelColor(pixel(scenePos)); }
    /// The pixel that holds the place; the view's own answer is the nearest corner of pixels.
    QPoint pixel(QPointF scenePos) const
    {
        const QPointF place = view->viewportTransform().map(scenePos);
        return {qFloor(place.x()), qFloor(place.y())};
    }
    QPointF bodyOf(const Node *node) const // below the header, left of the panel and above the socket
    {
        return node->scenePos() + QPointF(12, 45);
    }

    std::vector<Node *> nodes;
};

const QColor canvasColor(0x60, 0x60, 0x60);
const QColor lineColor(0xD9, 0xD9, 0xD9);

} // namespace

class tst_Overview : public QObject
{
    Q_OBJECT

private slots:
    void init() { failOnWarnings(); }
    void cleanup() { flushDeferredDeletes(); }

    void beginsWhereSmallLettersAreTwoPixels();
    void bodyShowsItsState_data();
    void bodyShowsItsState();
    void partsAreToldApart();
    void textsAreLeftOut();
    void lineStaysVisible_data();
    void lineStaysVisible();
    void steepLineIsDrawnAsItsCurve();
    void hiddenEventsAreNotPainted();
    void laterEventsLieOnTop();
    void draggedLineAndRubberBandAreShown();
    void changeIsShown();
    void emptyCanvasIsItsBackground();
};

void tst_Overview::beginsWhereSmallLettersAreTwoPixels()
{
    QVERIFY(!Overview::isMeantFor(1.0));
    QVERIFY(!Overview::isMeantFor(0.2));
    QVERIFY(Overview::isMeantFor(0.199));
    QVERIFY(Overview::isMeantFor(0.001));
}

void tst_Overview::bodyShowsItsState_data()
{
    QTest::addColumn<double>("scale");
    QTest::addColumn<QString>("state");
    QTest::addColumn<QColor>("color");
    for (const double scale : {0.19, 0.05, 0.02}) {
        const auto row = [scale](const char *state, const char *color) {
            QTest::addRow("%s at %g", state, scale) << scale << QString::fromLatin1(state) << QColor(color);
        };
        row("plain", "#D9D9D9");
        row("end of story", "#D6B4FC");
        row("important", "#ADD8E6");
        row("important end of story", "#ADD8E6");
        row("selected", "#EBF400");
        row("selected and important", "#EBF400");
    }
}

void tst_Overview::bodyShowsItsState()
{
    QFETCH(const double, scale);
    QFETCH(const QString, state);
    QFETCH(const QColor, color);
    const FarCanvas canvas(scale);
    Node *node = canvas.nodes.at(0);
    if (state.contains(u"end of story"_s))
        canvas.scene->setEndOfStory(node);
    node->setImportant(state.contains(u"important"_s));
    node->setSelected(state.contains(u"selected"_s));
    const QImage image = canvas.shown();
    const QRect body(canvas.pixel(node->scenePos()), canvas.pixel(node->sceneBoundingRect().bottomRight()));
    int pixels = 0;
    for (int x = body.left(); x <= body.right(); ++x) {
        for (int y = body.top(); y <= body.bottom(); ++y)
            pixels += image.pixelColor(x, y) == color ? 1 : 0;
    }
    // A hem of a pixel would not tell it.
    const int all = body.width() * body.height();
    QVERIFY2(pixels >= qMin(all / 2, 4 * body.height()), qPrintable(QString::number(pixels)));
}

void tst_Overview::partsAreToldApart()
{
    const FarCanvas canvas(0.19);
    const Node *node = canvas.nodes.at(0);
    const QRectF box = node->sceneBoundingRect();
    QCOMPARE(canvas.at(canvas.bodyOf(node)), QColor(0xD9, 0xD9, 0xD9));
    QCOMPARE(canvas.at(box.topLeft() + QPointF(200, 16)), QColor(0x85, 0x56, 0xE9));
    QCOMPARE(canvas.at(box.center()), QColor(0xF5, 0xF5, 0xF5));
    QCOMPARE(canvas.at(node->getInSocket()->sceneCentre()), QColor(0xB4, 0xA5, 0x23));
    QCOMPARE(canvas.at(node->getOutSocket()->sceneCentre()), QColor(Qt::yellow));
    QCOMPARE(canvas.at(box.topLeft() - QPointF(20, 20)), canvasColor);
}

void tst_Overview::textsAreLeftOut()
{
    const FarCanvas canvas(0.19);
    canvas.nodes.at(0)->getData()->eventContent()->setDescription(QString(300, u'W'));
    const QRectF box = canvas.nodes.at(0)->sceneBoundingRect();
    const QImage image = canvas.shown();
    for (double x = box.left() + 60; x < box.right() - 60; x += 10)
        QCOMPARE(image.pixelColor(canvas.pixel(QPointF(x, box.top() + 90))), QColor(0xF5, 0xF5, 0xF5));
}

void tst_Overview::lineStaysVisible_data()
{
    QTest::addColumn<double>("scale");
    for (const double scale : {0.19, 0.05, 0.02})
        QTest::addRow("%g", scale) << scale;
}

void tst_Overview::lineStaysVisible()
{
    QFETCH(const double, scale);
    const FarCanvas canvas(scale);
    Node *second = canvas.nodes.at(1);
    second->moveBy(2000, 0);
    second->updateLines();
    const QPointF half = canvas.nodes.at(0)->getOutSocket()->sceneCentre() + QPointF(1000, 0);
    canvas.view->centerOn(half);
    const QPoint middle = canvas.pixel(half);
    const QImage image = canvas.shown();
    int brightest = 0;
    for (int y = middle.y() - 2; y <= middle.y() + 2; ++y)
        brightest = qMax(brightest, image.pixelColor(middle.x(), y).red());
    // A line of one pixel may lie between two of them and share its brightness.
    QVERIFY2(brightest >= (lineColor.red() + canvasColor.red()) / 2, qPrintable(QString::number(brightest)));
}

void tst_Overview::steepLineIsDrawnAsItsCurve()
{
    const FarCanvas canvas(0.19);
    Node *second = canvas.nodes.at(1);
    second->moveBy(0, 900);
    second->updateLines();
    const ConnectionLine *line = second->getInLine();
    canvas.view->centerOn(line->path().pointAtPercent(0.5));
    const QPointF onCurve = line->path().pointAtPercent(0.1);
    const QPointF onChord = line->path().pointAtPercent(0) * 0.9 + line->path().pointAtPercent(1) * 0.1;
    const QImage image = canvas.shown();
    QVERIFY(image.pixelColor(canvas.pixel(onCurve)) != canvasColor);
    QVERIFY(QLineF(onCurve, onChord).length() * 0.19 > 5);
}

void tst_Overview::hiddenEventsAreNotPainted()
{
    const FarCanvas canvas(0.1);
    const QPointF place = canvas.bodyOf(canvas.nodes.at(0));
    QVERIFY(canvas.at(place) != canvasColor);
    canvas.scene->sl_selectCurrentNode(canvas.nodes.at(0));
    canvas.scene->cutNodes();
    QCOMPARE(canvas.at(place), canvasColor);
    QCOMPARE(canvas.at(canvas.nodes.at(0)->getOutSocket()->sceneCentre() + QPointF(20, 0)), canvasColor);
}

void tst_Overview::laterEventsLieOnTop()
{
    const FarCanvas canvas(0.1);
    canvas.nodes.at(1)->setPos(canvas.nodes.at(0)->scenePos() + QPointF(100, 60));
    QCOMPARE(canvas.at(canvas.nodes.at(1)->scenePos() + QPointF(200, 17)), QColor(0x85, 0x56, 0xE9));
}

void tst_Overview::draggedLineAndRubberBandAreShown()
{
    const FarCanvas canvas(0.1);
    const QPointF socket = canvas.nodes.at(1)->getOutSocket()->sceneCentre();
    SceneMouse mouse{*canvas.scene};
    mouse.press(socket);
    canvas.scene->sl_lastMousePos(socket + QPointF(800, 0));
    mouse.move(socket + QPointF(800, 0));
    QVERIFY(canvas.at(socket + QPointF(400, 0)) != canvasColor);
    mouse.release(socket + QPointF(800, 0));
    QCOMPARE(canvas.at(socket + QPointF(400, 0)), canvasColor);

    const QPointF corner = canvas.nodes.at(0)->scenePos() + QPointF(-500, -500);
    mouse.press(corner);
    mouse.move(corner + QPointF(400, 400));
    QVERIFY(canvas.at(corner + QPointF(200, 200)) != canvasColor);
    mouse.release(corner + QPointF(400, 400));
    QCOMPARE(canvas.at(corner + QPointF(200, 200)), canvasColor);
}

void tst_Overview::changeIsShown()
{
    const FarCanvas canvas(0.1);
    Node *node = canvas.nodes.at(0);
    const auto yellow = [&canvas, node] {
        return canvas.at(canvas.bodyOf(node)) == QColor(0xEB, 0xF4, 0x00);
    };
    QVERIFY(!yellow());
    node->setSelected(true);
    QVERIFY(yellow());
    node->moveBy(0, 2000);
    QCOMPARE(canvas.at(canvas.bodyOf(node) - QPointF(0, 2000)), canvasColor);
}

void tst_Overview::emptyCanvasIsItsBackground()
{
    const Canvas canvas;
    canvas.view->setTransform(QTransform::fromScale(0.05, 0.05));
    const QImage image = canvas.view->viewport()->grab().toImage();
    QCOMPARE(image.pixelColor(200, 150), canvasColor);
    QCOMPARE(image.pixelColor(5, 5), canvasColor);
}

QTEST_MAIN(tst_Overview)
#include "tst_overview.moc"
