#include "story/importsupport.h"

// Where the events of an imported story stand.

class tst_StoryLayout : public TestCase
{
    Q_OBJECT

private slots:
    void nothingOverlaps_data();
    void nothingOverlaps();
    void branchesAreBelowAndToTheRight();
    void tooMuchIsRefused();
    void overlapsAreFound_data();
    void overlapsAreFound();
};

namespace {

constexpr QRectF canvas(0, 0, 99999, 99999);

/// An event fed by each of these places, -1 for none; the end is at `end`.
StoryTab tabOf(const std::vector<int> &feeders, int end)
{
    StoryTab tab;
    tab.events.resize(feeders.size());
    for (std::size_t i = 0; i < feeders.size(); ++i)
        tab.events[i].feeder = feeders[i];
    if (end != -1)
        tab.events[std::size_t(end)].isEnd = true;
    tab.joinFed();
    tab.findChain();
    return tab;
}

std::vector<int> chainOf(int count)
{
    std::vector<int> feeders;
    for (int i = 0; i < count; ++i)
        feeders.push_back(i - 1);
    return feeders;
}

std::vector<QRectF> boxesOf(const std::vector<QPointF> &places, const std::vector<QSizeF> &sizes)
{
    std::vector<QRectF> boxes;
    for (std::size_t i = 0; i < places.size(); ++i)
        boxes.emplace_back(places[i], sizes[i]);
    return boxes;
}

} // namespace

void tst_StoryLayout::nothingOverlaps_data()
{
    QTest::addColumn<std::vector<int>>("feeders");
    QTest::addColumn<int>("end");
    QTest::newRow("none") << std::vector<int>() << -1;
    QTest::newRow("one") << std::vector<int>{-1} << 0;
    QTest::newRow("a long chain") << chainOf(10000) << 9999;
    QTest::newRow("one branch in another") << chainOf(10000) << 0;
    QTest::newRow("all loose") << std::vector<int>(10000, -1) << 0;
    QTest::newRow("all from one") << [] {
        std::vector<int> feeders(10000, 0);
        feeders[0] = -1;
        return feeders;
    }() << 0;
    for (const unsigned seed : {1U, 2U, 3U}) {
        QRandomGenerator random(seed);
        std::vector<int> feeders;
        for (int i = 0; i < 3000; ++i)
            feeders.push_back(i == 0 ? -1 : random.bounded(std::max(-1, i - 20 * int(seed)), i));
        QTest::addRow("random %u", seed) << feeders << 2999;
    }
}

void tst_StoryLayout::nothingOverlaps()
{
    QFETCH(const std::vector<int>, feeders);
    QFETCH(const int, end);
    const StoryTab tab = tabOf(feeders, end);
    std::vector<QSizeF> sizes;
    for (std::size_t i = 0; i < feeders.size(); ++i)
        sizes.emplace_back(480, 150 + double(i % 7) * 40);
    const std::vector<QPointF> places = StoryLayout(tab, sizes, canvas).places();
    QCOMPARE(places.size(), feeders.size());
    QVERIFY(StoryLayout::isClear(boxesOf(places, sizes), canvas));
    // In a row or further down, never back up.
    for (const int place : tab.chain) {
        if (const int feeder = tab.events[std::size_t(place)].feeder; feeder != -1) {
            const QPointF from = places[std::size_t(feeder)];
            const QPointF to = places[std::size_t(place)];
            QVERIFY(to.y() > from.y() || (to.y() == from.y() && to.x() > from.x()));
        }
    }
}

void tst_StoryLayout::branchesAreBelowAndToTheRight()
{
    const StoryTab tab = branchedTab();
    const std::vector<QSizeF> sizes(tab.events.size(), QSizeF(480, 200));
    const std::vector<QPointF> at = StoryLayout(tab, sizes, canvas).places();
    for (int i = 1; i < 4; ++i) {
        QCOMPARE(at[std::size_t(i)].y(), at[0].y());
        QVERIFY(at[std::size_t(i)].x() > at[std::size_t(i) - 1].x() + 480);
    }
    for (const auto &[from, to] : {std::pair(1, 4), std::pair(1, 5), std::pair(4, 7)}) {
        QCOMPARE(at[std::size_t(to)].x(), at[std::size_t(from)].x() + 480 + StoryLayout::columnGap);
        QVERIFY(at[std::size_t(to)].y() > at[std::size_t(from)].y() + 200);
    }
    QCOMPARE(at[6].y(), at[4].y()); // goes on
    QCOMPARE(at[8].x(), at[0].x()); // loose
}

void tst_StoryLayout::tooMuchIsRefused()
{
    const StoryTab tab = tabOf(chainOf(3), 2);
    const std::vector<QSizeF> high(3, QSizeF(60000, 60000));
    QVERIFY(StoryLayout(tab, high, canvas).places().empty());
    const std::vector<QSizeF> wide(3, QSizeF(100000, 10));
    QVERIFY(StoryLayout(tab, wide, canvas).places().empty());
}

void tst_StoryLayout::overlapsAreFound_data()
{
    QTest::addColumn<std::vector<QRectF>>("boxes");
    QTest::addColumn<bool>("isClear");
    const QRectF middle(100, 100, 50, 50);
    QTest::newRow("none") << std::vector<QRectF>() << true;
    QTest::newRow("itself twice") << std::vector<QRectF>{middle, middle} << false;
    QTest::newRow("off the canvas") << std::vector<QRectF>{QRectF(-1, 0, 5, 5)} << false;
    for (const QPointF &step : {QPointF(60, 0), QPointF(0, 60), QPointF(-60, 60), QPointF(60, 60)}) {
        QTest::addRow("beside %g %g", step.x(), step.y())
            << std::vector<QRectF>{middle, middle.translated(step)} << true;
        QTest::addRow("over %g %g", step.x() / 2, step.y() / 2)
            << std::vector<QRectF>{middle, middle.translated(step / 2)} << false;
    }
    QTest::newRow("in a column that has ended")
        << std::vector<QRectF>{middle, middle.translated(60, 10), middle.translated(120, 0)} << true;
    QTest::newRow("one within") << std::vector<QRectF>{QRectF(0, 0, 900, 900), middle} << false;
}

void tst_StoryLayout::overlapsAreFound()
{
    QFETCH(const std::vector<QRectF>, boxes);
    QFETCH(const bool, isClear);
    QCOMPARE(StoryLayout::isClear(boxes, canvas), isClear);
}

QTEST_MAIN(tst_StoryLayout)
#include "tst_storylayout.moc"
