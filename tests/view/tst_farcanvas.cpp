#include "support/screenwatch.h"
#include "view/farcanvas.h"

#include "items/connectionline.h"
#include "items/socket.h"

using namespace Qt::StringLiterals;

// What the canvas looks like from far away, with few events in view and with many.

namespace {

const QColor canvasColor(0x60, 0x60, 0x60);
const QColor lineColor(0xD9, 0xD9, 0xD9);

/// The average grey of a part of a picture.
double greyOf(const QImage &image, const QRect &part)
{
    double sum = 0;
    for (int x = part.left(); x <= part.right(); ++x) {
        for (int y = part.top(); y <= part.bottom(); ++y)
            sum += qGray(image.pixel(x, y));
    }
    return sum / (part.width() * part.height());
}

} // namespace

class tst_FarCanvas : public TestCase
{
    Q_OBJECT

private slots:
    void barsLookLikeTheirText_data();
    void barsLookLikeTheirText();
    void boxIsNeverEmpty_data();
    void boxIsNeverEmpty();
    void stateIsToldFromFarAway_data();
    void stateIsToldFromFarAway();
    void lineStaysVisible_data();
    void lineStaysVisible();
    void hiddenEventsAreNotPainted();
    void changeIsShown();
    void dragThatBeganOutOfTheWorldIsShown_data();
    void dragThatBeganOutOfTheWorldIsShown();
};

void tst_FarCanvas::barsLookLikeTheirText_data()
{
    QTest::addColumn<double>("scale");
    for (const double scale : {0.05, 0.03, 0.02})
        QTest::addRow("%g", scale) << scale;
}

// Nobody is to notice when the 201st event comes into view.
void tst_FarCanvas::barsLookLikeTheirText()
{
    QFETCH(const double, scale);
    FarCanvas canvas(scale, 201);
    for (Node *node : canvas.nodes) {
        node->payload()->eventContent()->setDescription(
            u"The tide turns and the keeper counts. "_s.repeated(7));
        node->setPos(canvas.nodes.front()->pos() + QPointF(2, 2));
    }
    canvas.nodes.front()->setPos(canvas.nodes.back()->pos() + QPointF(0, 700));
    canvas.nodes.back()->setPos(canvas.nodes.back()->pos() - QPointF(0, 700));
    canvas.view->centerOn(canvas.nodes.front());
    const QRect box =
        canvas.view->viewportTransform().mapRect(canvas.nodes.front()->sceneBoundingRect()).toRect();
    const QImage bars = canvas.shown();
    QVERIFY(!canvas.nodes.front()->nameItem()->isVisible());
    canvas.nodes.back()->setPos(90000, 90000);
    const QImage letters = canvas.shown();
    QVERIFY(canvas.nodes.front()->nameItem()->isVisible());
    QVERIFY2(std::abs(greyOf(bars, box) - greyOf(letters, box)) < 6,
             qPrintable(u"%1 %2"_s.arg(greyOf(bars, box)).arg(greyOf(letters, box))));
}

void tst_FarCanvas::boxIsNeverEmpty_data()
{
    QTest::addColumn<double>("scale");
    QTest::addColumn<int>("count");
    for (const double scale : {0.19, 0.1, 0.05, 0.02}) {
        QTest::addRow("few at %g", scale) << scale << 2;
        QTest::addRow("many at %g", scale) << scale << 250;
    }
}

void tst_FarCanvas::boxIsNeverEmpty()
{
    QFETCH(const double, scale);
    QFETCH(const int, count);
    const FarCanvas canvas(scale, count);
    Node *node = canvas.nodes.front();
    for (Node *other : canvas.nodes) {
        if (other != node)
            other->setPos(node->pos() + QPointF(0, -300));
    }
    const QRect words = canvas.view->viewportTransform()
                            .mapRect(FarCanvas::descriptionOf(node)->sceneBoundingRect())
                            .toRect();
    node->payload()->eventContent()->setDescription(u" "_s); // as large, without words
    const double empty = greyOf(canvas.shown(), words);
    node->payload()->eventContent()->setDescription(u"The tide turns at night now"_s);
    const double written = greyOf(canvas.shown(), words);
    QVERIFY2(written < empty - 3, qPrintable(u"%1 %2"_s.arg(written).arg(empty)));
}

void tst_FarCanvas::stateIsToldFromFarAway_data()
{
    QTest::addColumn<double>("scale");
    QTest::addColumn<int>("count");
    QTest::addColumn<int>("least");
    for (const double scale : {0.19, 0.05, 0.02}) {
        QTest::addRow("few at %g", scale) << scale << 2 << 50;
        QTest::addRow("many at %g", scale) << scale << 250 << 50;
    }
    QTest::addRow("a thousand") << 0.01 << 1000 << 75; // the light ground lets the body shine through
}

void tst_FarCanvas::stateIsToldFromFarAway()
{
    QFETCH(const double, scale);
    QFETCH(const int, count);
    QFETCH(const int, least);
    const FarCanvas canvas(scale, count);
    const QRect box =
        canvas.view->viewportTransform().mapRect(canvas.nodes.front()->sceneBoundingRect()).toAlignedRect();
    const auto yellowness = [&canvas, box] {
        const QImage image = canvas.shown();
        double sum = 0;
        for (int x = box.left(); x <= box.right(); ++x) {
            for (int y = box.top(); y <= box.bottom(); ++y)
                sum += image.pixelColor(x, y).green() - image.pixelColor(x, y).blue();
        }
        return sum / (box.width() * box.height());
    };
    const double plain = yellowness();
    canvas.nodes.front()->setSelected(true);
    const double selected = yellowness();
    QVERIFY2(selected > plain + least, qPrintable(u"%1 %2"_s.arg(plain).arg(selected)));
}

void tst_FarCanvas::lineStaysVisible_data()
{
    QTest::addColumn<double>("scale");
    QTest::addColumn<int>("count");
    for (const double scale : {0.19, 0.05, 0.02}) {
        QTest::addRow("few at %g", scale) << scale << 2;
        QTest::addRow("many at %g", scale) << scale << 250;
    }
}

void tst_FarCanvas::lineStaysVisible()
{
    QFETCH(const double, scale);
    QFETCH(const int, count);
    const FarCanvas canvas(scale, count);
    Node *last = canvas.nodes.back();
    const Node *before = last->prevNode();
    last->setPos(before->pos() + QPointF(0, 4000));
    last->moveBy(2000, 0);
    last->updateLines();
    const QPointF half = last->inLine()->path().pointAtPercent(0.5);
    canvas.view->centerOn(half);
    const QPoint middle = canvas.pixel(half);
    const QImage image = canvas.shown();
    int brightest = 0;
    for (int x = middle.x() - 2; x <= middle.x() + 2; ++x) {
        for (int y = middle.y() - 2; y <= middle.y() + 2; ++y)
            brightest = qMax(brightest, image.pixelColor(x, y).red());
    }
    // A line of one pixel may lie between two of them and share its brightness.
    QVERIFY2(brightest >= (lineColor.red() + canvasColor.red()) / 2, qPrintable(QString::number(brightest)));
}

void tst_FarCanvas::hiddenEventsAreNotPainted()
{
    const FarCanvas canvas(0.02, 250);
    Node *node = canvas.nodes.front();
    node->moveBy(0, -3000);
    QVERIFY(canvas.at(canvas.bodyOf(node)) != canvasColor);
    canvas.scene->sl_selectCurrentNode(node);
    canvas.scene->cutNodes();
    QCOMPARE(canvas.at(canvas.bodyOf(node)), canvasColor);
}

void tst_FarCanvas::changeIsShown()
{
    const FarCanvas canvas(0.1, 24);
    Node *node = canvas.nodes.at(0);
    const auto yellow = [&canvas, node] {
        return canvas.at(canvas.bodyOf(node)) == QColor(0xEB, 0xF4, 0x00);
    };
    QVERIFY(!yellow());
    node->setSelected(true);
    QVERIFY(yellow());
    node->moveBy(0, -2000);
    QCOMPARE(canvas.at(canvas.bodyOf(node) + QPointF(0, 2000)), canvasColor);
}

void tst_FarCanvas::dragThatBeganOutOfTheWorldIsShown_data()
{
    QTest::addColumn<bool>("isLine");
    QTest::newRow("rubber band") << false;
    QTest::newRow("line") << true;
}

// Zoomed in, the place where it began is further away than whole numbers of pixels reach.
void tst_FarCanvas::dragThatBeganOutOfTheWorldIsShown()
{
    QFETCH(const bool, isLine);
    const FarCanvas canvas(1.0, 1);
    Node *node = canvas.nodes.front();
    if (isLine)
        node->setPos(0, 1e300); // only a file has such places
    constexpr double worldScale = 1e-9;
    canvas.view->setTransform(QTransform::fromScale(worldScale, worldScale));
    canvas.view->centerOn(QPointF());
    canvas.frame();
    if (isLine)
        emit node->s_socketClick(SocketType::output, node->pos());
    else
        canvas.press(QPointF(20, 20), Qt::LeftButton);
    canvas.view->setTransform(QTransform());
    canvas.view->centerOn(QPointF());
    for (const int x : {100, 300, 150}) {
        canvas.move(QPointF(x, 200), Qt::LeftButton);
        ScreenWatch::comeToRest();
        QCOMPARE(ScreenWatch::fault(*canvas.view), QString());
    }
    canvas.release(QPointF(150, 200), Qt::LeftButton);
    QCOMPARE(ScreenWatch::fault(*canvas.view), QString());
}

QTEST_MAIN(tst_FarCanvas)
#include "tst_farcanvas.moc"
