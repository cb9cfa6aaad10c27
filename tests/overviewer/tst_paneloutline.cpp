#include "app/windowsupport.h"
#include "support/testsupport.h"

#include <QGraphicsView>
#include <QScrollBar>

// The outline of important entries as it stands on the screen. Run at two device pixel ratios.

namespace {

constexpr int width = 3; // logical pixels
const QColor outline(0, 0, 192);

} // namespace

class tst_PanelOutline : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase() { QApplication::setStyle(QStringLiteral("Fusion")); }
    void init()
    {
        failOnWarningsOfTheProgram();
        window = std::make_unique<MainWindow>();
        window->show();
        QVERIFY(QTest::qWaitForWindowActive(window.get()));
        panel = window->overviewerScene()->views().front();
    }
    void cleanup()
    {
        window.reset();
        flushDeferredDeletes();
    }

    void lineIsWholeOnEachSide_data();
    void lineIsWholeOnEachSide();
    void lineIsWholeAtTheEndOfTheList();
    void unimportantEntryHasNone();

private:
    void showStory(int events);
    QImage shown() const { return panel->viewport()->grab().toImage().convertToFormat(QImage::Format_RGB32); }
    /// How many pixels from there on are of the outline's colour.
    static int run(const QImage &image, QPoint from, QPoint step)
    {
        int count = 0;
        for (QPoint at = from; image.rect().contains(at) && image.pixelColor(at) == outline; at += step)
            ++count;
        return count;
    }
    /// The entry's place in the picture, in its pixels.
    QRect placeOf(const OvNode *entry) const
    {
        const QPolygonF place = panel->viewportTransform().map(entry->sceneBoundingRect());
        const QRectF logical = place.boundingRect();
        const double ratio = panel->viewport()->devicePixelRatio();
        return QRectF(logical.topLeft() * ratio, logical.size() * ratio).toRect();
    }
    void compareSides(const QImage &image, const QRect &place, bool topIsSharp);

    PrivateHome home;
    std::unique_ptr<MainWindow> window;
    QGraphicsView *panel = nullptr;
};

/// A chain of that many events, all important.
void tst_PanelOutline::showStory(int events)
{
    std::vector<Record> records;
    for (int i = 0; i < events; ++i) {
        Record record{QStringLiteral("Event"), QPointF(500 * i, 0), i, i - 1, i == events - 1, true};
        record.description = QStringLiteral("What happens then");
        records.push_back(record);
    }
    const QTemporaryDir folder;
    const QString file = folder.filePath(QStringLiteral("story.scene"));
    QVERIFY(writeFile(file, documentBytes({records})));
    window->loadFrom(file);
    QCoreApplication::processEvents();
}

/// Three pixels of the outline's colour from each edge inwards; where an edge falls between two pixels, two
/// and parts of others.
void tst_PanelOutline::compareSides(const QImage &image, const QRect &place, bool topIsSharp)
{
    const int wanted = qRound(width * image.devicePixelRatio());
    const QPoint middle = place.center();
    QCOMPARE(run(image, QPoint(place.left(), middle.y()), QPoint(1, 0)), wanted);
    QCOMPARE(run(image, QPoint(place.right(), middle.y()), QPoint(-1, 0)), wanted);
    if (topIsSharp) {
        QCOMPARE(run(image, QPoint(middle.x(), place.top()), QPoint(0, 1)), wanted);
        QCOMPARE(run(image, QPoint(middle.x(), place.bottom()), QPoint(0, -1)), wanted);
        return;
    }
    int ink = 0;
    for (int y = place.bottom() - 2 * wanted; y <= qMin(place.bottom() + 1, image.height() - 1); ++y)
        ink += image.pixelColor(middle.x(), y) == outline ? 1 : 0;
    QVERIFY2(ink >= wanted - 1, qPrintable(QString::number(ink)));
}

void tst_PanelOutline::lineIsWholeOnEachSide_data()
{
    QTest::addColumn<int>("events");
    QTest::addColumn<bool>("scrolls");
    QTest::newRow("short list") << 2 << false;
    QTest::newRow("with a scroll bar") << 30 << true;
}

// It was one pixel wide, and half of that was cut off by the panel's edge.
void tst_PanelOutline::lineIsWholeOnEachSide()
{
    QFETCH(const int, events);
    QFETCH(const bool, scrolls);
    showStory(events);
    QTRY_COMPARE(panel->verticalScrollBar()->isVisible(), scrolls);
    const QImage image = shown();
    const QRect place = placeOf(window->overviewerScene()->ovNodes().front());
    QVERIFY2(image.rect().contains(place), "the entry reaches beyond the panel");
    compareSides(image, place, !scrolls);
}

void tst_PanelOutline::lineIsWholeAtTheEndOfTheList()
{
    showStory(30);
    QTRY_VERIFY(panel->verticalScrollBar()->isVisible());
    panel->verticalScrollBar()->setValue(panel->verticalScrollBar()->maximum());
    compareSides(shown(), placeOf(window->overviewerScene()->ovNodes().back()), false);
}

void tst_PanelOutline::unimportantEntryHasNone()
{
    showStory(1);
    QVERIFY(run(shown(), QPoint(0, 40), QPoint(1, 0)) > 0);
    NodegraphScene *scene = sceneOf(*window, 0);
    scene->toggleImportance(scene->nodes().front());
    QCOMPARE(run(shown(), QPoint(0, 40), QPoint(1, 0)), 0);
}

QTEST_MAIN(tst_PanelOutline)
#include "tst_paneloutline.moc"
