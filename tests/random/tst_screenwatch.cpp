#include "random/storywindow.h"
#include "support/screenwatch.h"

#include <QPainter>

// The look at the screen is checked itself: it finds a canvas that stands still, and nothing else.

namespace {

/// Paints its events by itself and leaves the framework waiting for its own painting.
class SelfPaintedView : public NodegraphView
{
public:
    using NodegraphView::NodegraphView;

protected:
    void paintEvent(QPaintEvent *) override
    {
        QPainter painter(viewport());
        painter.fillRect(viewport()->rect(), Qt::darkGray);
        painter.setWorldTransform(viewportTransform());
        for (const Node *each : nodegraphScene()->nodes())
            painter.fillRect(each->sceneBoundingRect(), each->bodyColor());
    }
};

QGraphicsView *panelOf(const MainWindow &window) { return window.overviewerScene()->views().constFirst(); }

} // namespace

class tst_ScreenWatch : public ProgramTest
{
    Q_OBJECT

private slots:
    void differencesAreCountedAndPlaced();
    void whatIsShownHasNoFault_data();
    void whatIsShownHasNoFault();
    void aTextBeingEditedHasNoFault();
    void aSelfPaintedCanvasIsFoundAtAnyStep_data();
    void aSelfPaintedCanvasIsFoundAtAnyStep();
    void aPartThatStandsStillIsFound_data();
    void aPartThatStandsStillIsFound();
    void aLostRepaintIsFoundUnlessItWasHealed();

private:
    static void show(QWidget &window)
    {
        window.show();
        QVERIFY(QTest::qWaitForWindowActive(&window));
        QTRY_VERIFY(ScreenWatch::onScreen(window).size() == window.size());
    }
};

void tst_ScreenWatch::differencesAreCountedAndPlaced()
{
    QImage one(40, 30, QImage::Format_RGB32);
    one.fill(Qt::gray);
    QImage other = one;
    QCOMPARE(ScreenWatch::difference(one, other).pixels, 0);
    other.setPixelColor(7, 5, Qt::red);
    other.setPixelColor(9, 5, Qt::red);
    other.setPixelColor(30, 20, Qt::red);
    const ScreenWatch::Difference found = ScreenWatch::difference(one, other);
    QCOMPARE(found.pixels, 3);
    QCOMPARE(found.first, QRect(7, 5, 3, 1));
    QCOMPARE(found.all, QRect(QPoint(7, 5), QPoint(30, 20)));
    QCOMPARE(ScreenWatch::difference(one, other, QRect(10, 0, 30, 30)).pixels, 1);
    QCOMPARE(ScreenWatch::difference(one, other, QRect(0, 6, 30, 24)).pixels, 0);
    QVERIFY(ScreenWatch::difference(one, other.copy(0, 0, 40, 29)).pixels != 0);
}

void tst_ScreenWatch::whatIsShownHasNoFault_data()
{
    QTest::addColumn<QSize>("size");
    QTest::newRow("small") << QSize(962, 601);
    QTest::newRow("odd") << QSize(1203, 777);
    QTest::newRow("large") << QSize(1500, 950);
}

void tst_ScreenWatch::whatIsShownHasNoFault()
{
    QFETCH(const QSize, size);
    StoryWindow story;
    QCOMPARE(ScreenWatch::fault(story.window), QString()); // nothing is shown
    show(story.window);
    story.window.resize(size);
    QCOMPARE(ScreenWatch::fault(story.window), QString());
    QCOMPARE(ScreenWatch::onScreen(story.window).size(), size);
    tabsOf(story.window)->setCurrentIndex(0);
    for (const char *action : {"actionFrame", "actionSelect_All", "actionZoom_to_200", "actionDeselect_All",
                               "actionSet_as_Important", "actionDelete", "actionUndo", "actionAdd_Event"}) {
        actionOf(story.window, action)->trigger();
        QCOMPARE(ScreenWatch::fault(story.window), QString());
        QCOMPARE(ScreenWatch::fault(story.window, ScreenWatch::Extent::canvases), QString());
    }
}

void tst_ScreenWatch::aTextBeingEditedHasNoFault()
{
    StoryWindow story;
    show(story.window);
    tabsOf(story.window)->setCurrentIndex(0);
    NodegraphView *canvas = story.window.views().front();
    canvas->setFocus();
    descriptionOf(node(story.scene, 1))->setFocus();
    for (const Qt::Key key : {Qt::Key_End, Qt::Key_F, Qt::Key_O, Qt::Key_G}) {
        const QImage before = ScreenWatch::onScreen(story.window);
        QTest::keyClick(canvas, key);
        QCOMPARE(ScreenWatch::fault(story.window), QString());
        QVERIFY(ScreenWatch::onScreen(story.window) != before);
    }
    // The blinking of its cursor is a change of the screen like any other.
    const QImage withCursor = ScreenWatch::onScreen(story.window);
    QTRY_VERIFY(ScreenWatch::onScreen(story.window) != withCursor);
    QCOMPARE(ScreenWatch::fault(story.window), QString());
}

void tst_ScreenWatch::aSelfPaintedCanvasIsFoundAtAnyStep_data()
{
    QTest::addColumn<int>("unchecked"); // steps before the one that is checked
    QTest::newRow("first step") << 0;
    QTest::newRow("after steps that were not looked at") << 2;
    QTest::newRow("after more of them") << 4;
}

void tst_ScreenWatch::aSelfPaintedCanvasIsFoundAtAnyStep()
{
    QFETCH(const int, unchecked);
    QWidget window;
    auto *canvas = new SelfPaintedView(&window);
    const std::unique_ptr<NodegraphScene> scene(canvas->nodegraphScene());
    addChain(*scene, 4);
    scene->selectAll();
    window.resize(600, 400);
    canvas->resize(window.size());
    show(window);
    QCOMPARE(ScreenWatch::fault(window), QString());
    const auto step = [&scene](int number) {
        if (number % 2 == 0)
            scene->deselectAll();
        else
            scene->selectAll();
    };
    for (int i = 0; i < unchecked; ++i) {
        step(i);
        ScreenWatch::comeToRest();
    }
    // Being painted for the comparison does not set it right.
    for (int i = unchecked; i < unchecked + 4; i += 2) {
        step(i);
        const QString fault = ScreenWatch::fault(window);
        QVERIFY2(fault.startsWith(QStringLiteral("the canvas does not show what it should")),
                 qPrintable(fault));
        step(i + 1);
    }
    delete canvas;
}

void tst_ScreenWatch::aPartThatStandsStillIsFound_data()
{
    QTest::addColumn<WindowDamage>("damage");
    QTest::addColumn<QString>("part");
    const auto row = [](const char *name, const WindowDamage &damage, const char *part) {
        QTest::newRow(name) << damage << QString::fromLatin1(part);
    };
    row(
        "canvas without updates", [](auto &w) { w.views().front()->viewport()->setUpdatesEnabled(false); },
        "the canvas");
    row(
        "canvas told of none",
        [](auto &w) { w.views().front()->setViewportUpdateMode(QGraphicsView::NoViewportUpdate); },
        "the canvas");
    row(
        "panel without updates", [](auto &w) { panelOf(w)->viewport()->setUpdatesEnabled(false); },
        "the panel");
}

void tst_ScreenWatch::aPartThatStandsStillIsFound()
{
    QFETCH(const WindowDamage, damage);
    QFETCH(const QString, part);
    StoryWindow story;
    show(story.window);
    tabsOf(story.window)->setCurrentIndex(0);
    actionOf(story.window, "actionSelect_All")->trigger();
    QCOMPARE(ScreenWatch::fault(story.window), QString());
    damage(story.window);
    actionOf(story.window, "actionDelete")->trigger();
    for (const auto extent : {ScreenWatch::Extent::window, ScreenWatch::Extent::canvases}) {
        const QString fault = ScreenWatch::fault(story.window, extent);
        QVERIFY2(fault.startsWith(part + QStringLiteral(" does not show what it should")), qPrintable(fault));
    }
}

// What a canvas waits for is forgotten by painting it, so nobody who looks after every step finds it.
void tst_ScreenWatch::aLostRepaintIsFoundUnlessItWasHealed()
{
    for (const bool isHealed : {false, true}) {
        StoryWindow story;
        show(story.window);
        tabsOf(story.window)->setCurrentIndex(0);
        QCOMPARE(ScreenWatch::fault(story.window), QString());
        QWidget *viewport = story.window.views().front()->viewport();
        viewport->setAttribute(Qt::WA_UpdatesDisabled, true);
        story.scene.update();
        ScreenWatch::comeToRest();
        viewport->setAttribute(Qt::WA_UpdatesDisabled, false);
        if (isHealed)
            QCOMPARE(ScreenWatch::fault(story.window), QString());
        story.scene.selectAll();
        QCOMPARE(ScreenWatch::fault(story.window).isEmpty(), isHealed);
    }
}

QTEST_MAIN(tst_ScreenWatch)
#include "tst_screenwatch.moc"
