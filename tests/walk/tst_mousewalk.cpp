#include "walk/walk.h"

#include <cmath>

namespace {

const QColor selectedColour(QStringLiteral("#EBF400"));
const QColor plainColour(QStringLiteral("#D9D9D9"));
const QColor endColour(QStringLiteral("#D6B4FC"));
const QColor lineColour(QStringLiteral("#D9D9D9"));

constexpr int zoomTo50 = 2; // entries of the View menu
constexpr int zoomTo100 = 3;
constexpr double boxWidth = 455.0;
constexpr double socketWidth = 10.0;

bool isNear(QPoint a, QPoint b, int distance)
{
    return qAbs(a.x() - b.x()) <= distance && qAbs(a.y() - b.y()) <= distance;
}

/// Whether a line is to be seen in that column, not further than a stroke's width from the point.
bool lineIsAt(const QImage &picture, QPoint point)
{
    constexpr int reach = 5;
    constexpr int blur = 10;
    for (int y = point.y() - reach; y <= point.y() + reach; ++y) {
        const QRgb pixel = picture.pixel(point.x(), y);
        if (qAbs(qRed(pixel) - lineColour.red()) <= blur && qAbs(qBlue(pixel) - lineColour.blue()) <= blur)
            return true;
    }
    return false;
}

/// A point of the curve between two sockets, from 0 at `from` to 1 at `to`.
QPoint curvePoint(QPoint from, QPoint to, double t)
{
    const double s = 1 - t;
    const double x = 3 * t * s * s / 4 + 9 * t * t * s / 4 + t * t * t;
    const double y = 3 * t * t * s + t * t * t;
    return from + QPointF(x * (to.x() - from.x()), y * (to.y() - from.y())).toPoint();
}

} // namespace

class tst_MouseWalk : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase() { QVERIFY2(walk.desktop.start(), qPrintable(walk.desktop.problem())); }
    void init() { failOnWarnings(); }
    void cleanup() { walk.tidyUp(); }

    void wheelZoomsAroundTheMouse();
    void rightButtonMovesTheCanvas_data();
    void rightButtonMovesTheCanvas();
    void bandSelectsAndAGroupMovesWithItsLines();
    void onlyAClickOnTheLineItselfTakesItOff();

private:
    void startWithOneEvent(const QString &name, int zoomEntry, double scale);
    void turnWheel(double x, double y, int notches);
    bool comesToShowEvent(QPoint corner, int distance) const;
    bool comesToShowLine(const EventBox &upstream, const EventBox &downstream) const;

    Walk walk;
    const Desktop &desktop = walk.desktop;
    const EditorWindow &window = walk.window;
};

void tst_MouseWalk::startWithOneEvent(const QString &name, int zoomEntry, double scale)
{
    STEP(walk.start(name));
    STEP(walk.addChain(1));
    QVERIFY(window.chooseByKeys(Menu::view, zoomEntry));
    QVERIFY(window.comesToShowScale(scale));
    QCOMPARE(window.shownEvents(1).size(), 1);
}

/// Turns the wheel over a place of the event, given in its own units: the place must stay where it is.
void tst_MouseWalk::turnWheel(double x, double y, int notches)
{
    const QList<EventBox> boxes = window.shownEvents(1);
    QCOMPARE(boxes.size(), 1);
    const EventBox box = boxes.at(0);
    const QPoint mouse = box.at(x, y);
    QVERIFY(desktop.scroll(mouse, notches));
    const double width = box.header.width() * std::pow(1.2, notches / 2.0);
    EventBox seen;
    QVERIFY(eventually([&] {
        seen = window.events().value(0);
        return qAbs(seen.header.width() - width) <= 2;
    }));
    const QPoint place = seen.at(x, y);
    QVERIFY2(isNear(place, mouse, 2), qPrintable(QStringLiteral("%1,%2 instead of %3,%4")
                                                     .arg(place.x())
                                                     .arg(place.y())
                                                     .arg(mouse.x())
                                                     .arg(mouse.y())));
}

void tst_MouseWalk::wheelZoomsAroundTheMouse()
{
    STEP(startWithOneEvent(QStringLiteral("wheel"), zoomTo100, 1.0));
    STEP(turnWheel(0, 0, 1));
    STEP(turnWheel(0, 0, 1));
    QVERIFY(window.comesToShowScale(1.2));
    STEP(turnWheel(boxWidth - 1, 0, -3));
    STEP(turnWheel(120, 84, -2)); // over the description
    STEP(turnWheel(0, 0, 4));
    STEP(turnWheel(120, 84, -1));
    QVERIFY(window.comesToShowScale(1.0));
    STEP(walk.checkScreen());
    STEP(walk.end());
}

void tst_MouseWalk::rightButtonMovesTheCanvas_data()
{
    QTest::addColumn<QPointF>("from");
    QTest::addColumn<int>("zoomEntry");
    QTest::addColumn<double>("scale");
    QTest::addColumn<double>("ratio"); // of the canvas's way to the hand's
    QTest::newRow("canvas") << QPointF(100, -60) << zoomTo100 << 1.0 << 1.0;
    QTest::newRow("body") << QPointF(20, 60) << zoomTo100 << 1.0 << 1.0;
    QTest::newRow("title") << QPointF(30, 17) << zoomTo100 << 1.0 << 1.0;
    QTest::newRow("description") << QPointF(120, 84) << zoomTo100 << 1.0 << 1.0;
    // A command's zoom does not count for the pan: the way is taken in units of the story.
    QTest::newRow("half size") << QPointF(120, 84) << zoomTo50 << 0.5 << 2.0;
}

void tst_MouseWalk::rightButtonMovesTheCanvas()
{
    QFETCH(const QPointF, from);
    QFETCH(const int, zoomEntry);
    QFETCH(const double, scale);
    QFETCH(const double, ratio);
    STEP(startWithOneEvent(
        QStringLiteral("pan-") +
            QString::fromLatin1(QTest::currentDataTag()).replace(QLatin1Char(' '), QLatin1Char('-')),
        zoomEntry, scale));
    const QList<EventBox> boxes = window.shownEvents(1);
    QCOMPARE(boxes.size(), 1);
    const EventBox box = boxes.at(0);
    const QPoint corner = box.header.topLeft();
    const QPoint start = box.at(from.x(), from.y());
    const qsizetype windows = desktop.windowsOfClass(QStringLiteral("fablegrid")).size();

    QVERIFY(desktop.press(start, 3));
    for (const QPoint &way : {QPoint(60, 40), QPoint(100, -50), QPoint(-80, 30)}) {
        QVERIFY(desktop.moveTo(start + way));
        QVERIFY(comesToShowEvent(corner + way * ratio, 3));
    }
    const QList<EventBox> panned = window.shownEvents(1);
    QCOMPARE(panned.size(), 1);
    const QPoint left = panned.at(0).header.topLeft();
    QVERIFY(desktop.release(3));
    QVERIFY(desktop.moveTo(start + QPoint(40, 40))); // with no button it moves nothing
    QVERIFY(comesToShowEvent(left, 0));
    QCOMPARE(desktop.windowsOfClass(QStringLiteral("fablegrid")).size(), windows); // no menu came up
    QVERIFY(window.comesToShowBodyColour(panned.at(0), endColour));
    STEP(walk.checkScreen());
    STEP(walk.end());
}

bool tst_MouseWalk::comesToShowEvent(QPoint corner, int distance) const
{
    return eventually([&] {
        const QList<EventBox> seen = window.events();
        return seen.size() == 1 && isNear(seen.at(0).header.topLeft(), corner, distance);
    });
}

/// A line ends on the sockets if it is seen beside them, just outside the two boxes.
bool tst_MouseWalk::comesToShowLine(const EventBox &upstream, const EventBox &downstream) const
{
    const int aside = qRound(socketWidth / 2 * upstream.scale()) + 2;
    return eventually([&] {
        const QImage picture = desktop.screenshot();
        return lineIsAt(picture, upstream.output + QPoint(aside, 0)) &&
               lineIsAt(picture, downstream.input - QPoint(aside, 0));
    });
}

void tst_MouseWalk::bandSelectsAndAGroupMovesWithItsLines()
{
    STEP(walk.start(QStringLiteral("band")));
    STEP(walk.addChain(3));
    const QList<EventBox> boxes = window.shownEvents(3);
    QCOMPARE(boxes.size(), 3);
    QVERIFY(desktop.drag(boxes.at(0).at(-30, -60), boxes.at(1).at(200, 70)));
    QVERIFY(window.comesToShowBodyColour(boxes.at(0), selectedColour));
    QVERIFY(window.comesToShowBodyColour(boxes.at(1), selectedColour));
    QVERIFY(window.comesToShowBodyColour(boxes.at(2), endColour));

    const QPoint way(-10, 110);
    QVERIFY(desktop.press(boxes.at(1).body()));
    QVERIFY(desktop.moveTo(boxes.at(1).body() + way / 2));
    QVERIFY(desktop.moveTo(boxes.at(1).body() + way));
    QVERIFY(desktop.release());
    QList<EventBox> moved;
    QVERIFY(eventually([&] {
        moved = window.events();
        return moved.size() == 3 &&
               isNear(moved.at(0).header.topLeft(), boxes.at(0).header.topLeft() + way, 2) &&
               isNear(moved.at(1).header.topLeft(), boxes.at(1).header.topLeft() + way, 2);
    }));
    QCOMPARE(moved.at(2).header, boxes.at(2).header);
    QVERIFY(comesToShowLine(moved.at(0), moved.at(1)));
    QVERIFY(comesToShowLine(moved.at(1), moved.at(2)));
    QVERIFY(desktop.keepScreenshot(QStringLiteral("group-moved.png"), window.outline()));
    QVERIFY(window.comesToShowBodyColour(moved.at(0), selectedColour));
    QVERIFY(window.comesToShowBodyColour(moved.at(1), selectedColour));

    QVERIFY(window.clickEmptyCanvas());
    QVERIFY(window.comesToShowBodyColour(moved.at(0), plainColour));
    QVERIFY(window.comesToShowBodyColour(moved.at(1), plainColour));
    STEP(walk.checkScreen());
    STEP(walk.end());
}

void tst_MouseWalk::onlyAClickOnTheLineItselfTakesItOff()
{
    STEP(walk.start(QStringLiteral("line")));
    STEP(walk.addChain(2));
    QVERIFY(window.chooseByKeys(Menu::view, zoomTo50));
    EventBox before;
    QVERIFY(eventually([&] {
        const QList<EventBox> now = window.events();
        if (now.size() != 2 || qAbs(now.at(0).scale() - 0.5) >= 0.01)
            return false;
        const bool atRest = now.at(1).header == before.header;
        before = now.at(1);
        return atRest;
    }));
    QVERIFY(desktop.drag(before.body(), before.body() + QPoint(100, 150)));
    QVERIFY(window.clickEmptyCanvas());
    QList<EventBox> boxes;
    const QPoint goal = before.header.topLeft() + QPoint(100, 150);
    QVERIFY2(eventually([&] {
                 boxes = window.events();
                 return boxes.size() == 2 && isNear(boxes.at(1).header.topLeft(), goal, 2);
             }),
             qPrintable(QStringLiteral("%1 events, the last at %2, %3 instead of %4, %5")
                            .arg(boxes.size())
                            .arg(boxes.isEmpty() ? 0 : boxes.last().header.x())
                            .arg(boxes.isEmpty() ? 0 : boxes.last().header.y())
                            .arg(goal.x())
                            .arg(goal.y())));
    const QPoint from = boxes.at(0).output;
    const QPoint to = boxes.at(1).input;
    const QPoint onLine = curvePoint(from, to, 0.25);
    QVERIFY(comesToShowLine(boxes.at(0), boxes.at(1)));
    QVERIFY(lineIsAt(desktop.screenshot(), onLine));

    // Between the curve and the straight way, and on the other side of the curve.
    const double share = double(onLine.x() - from.x()) / (to.x() - from.x());
    const QPoint onChord(onLine.x(), qRound(from.y() + share * (to.y() - from.y())));
    QVERIFY(onChord.y() - onLine.y() >= 8);
    int clicks = 0;
    for (const QPoint &beside : {onChord, onLine - QPoint(0, 12)}) {
        QVERIFY(desktop.click(beside));
        // With nothing selected this only writes its line, which tells that the click has been taken.
        QVERIFY(window.key(QStringLiteral("ctrl+c")));
        ++clicks;
        QVERIFY(eventually([&] { return walk.logged({QStringLiteral("Copy")}) == clicks; }));
        QCOMPARE(walk.logged({QStringLiteral("Disconnected node  1")}), 0);
        QVERIFY(window.comesToShowEntries(2));
        QVERIFY(window.shownEvents(2).value(1).inputFed);
    }

    QVERIFY(desktop.click(onLine));
    QVERIFY(window.comesToShowEntries(1));
    QVERIFY(eventually([this] {
        const QList<EventBox> seen = window.events();
        return seen.size() == 2 && !seen.at(0).outputFeeds && !seen.at(1).inputFed;
    }));
    QVERIFY(!lineIsAt(desktop.screenshot(), onLine));
    STEP(walk.checkScreen());
    QCOMPARE(walk.logged({QStringLiteral("Disconnected node  1")}), 1);
    QVERIFY(window.key(QStringLiteral("ctrl+z")));
    QVERIFY(window.comesToShowEntries(2));
    QVERIFY(comesToShowLine(boxes.at(0), boxes.at(1)));
    STEP(walk.checkScreen());
    STEP(walk.end());
}

QTEST_GUILESS_MAIN(tst_MouseWalk)
#include "tst_mousewalk.moc"
