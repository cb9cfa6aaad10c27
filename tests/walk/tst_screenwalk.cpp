#include "walk/picture.h"
#include "walk/walk.h"

#include <algorithm>

// A story that is so long that it is seen from far away. Each step is seen on the screen: neither a saved
// file nor a log tells whether a canvas stands still.

namespace {

const QColor headerColour(QStringLiteral("#8556E9"));
const QColor selectedColour(QStringLiteral("#EBF400"));
const QColor endColour(QStringLiteral("#D6B4FC"));
const QColor importantColour(QStringLiteral("#ADD8E6"));

constexpr int columns = 12;
constexpr int events = 2 * columns;
constexpr double columnStep = 555.0;
constexpr double rowStep = 900.0;
constexpr double boxWidth = 455.0;

/// A chain that runs in two rows from left to right; its last event is the end.
SavedScene longStory()
{
    SavedScene scene;
    QList<SavedEvent> tab;
    for (int i = 0; i < events; ++i) {
        SavedEvent event;
        event.tag = QStringLiteral("Event");
        event.title = QStringLiteral("Part %1").arg(i);
        event.x = columnStep * (i % columns);
        event.y = i < columns ? 0 : rowStep;
        event.index = i;
        event.upstream = i - 1;
        event.endOfStory = i == events - 1 ? 1 : 0;
        event.description = QStringLiteral("What happens in part %1.").arg(i);
        tab.append(event);
    }
    scene.tabs.append(tab);
    return scene;
}

/// The piece of the canvas that an event with this header takes, with the rim of its body.
QRect boxBelow(const QRect &header)
{
    const int height = header.width() / 4;
    return {header.left(), header.top(), header.width(), height};
}

} // namespace

class tst_ScreenWalk : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase() { QVERIFY2(walk.desktop.start(), qPrintable(walk.desktop.problem())); }
    void init() { failOnWarnings(); }
    void cleanup() { walk.tidyUp(); }

    void everyStepIsSeenFromFarAway();

private:
    void openLongStory();
    void selectAndDeselect();
    void dragAnEvent();
    void deleteAndUndo();
    void drawABand();
    void panAndZoom();
    void addAndMark();
    void switchTabs();

    QImage canvas() const { return desktop.screenshot().copy(window.canvasArea()); }
    QList<QRect> headers() const;
    int boxesWith(const QColor &colour) const;
    bool comesToShow(int count, const QColor &colour) const;
    bool comesToShowEvents(int count) const;
    bool comesToShowHeaders(const QList<QRect> &expected) const;
    double scale() const;
    QPoint onScreen(QPoint place) const { return window.canvasArea().topLeft() + place; }
    void press(const QString &keys) const;

    Walk walk;
    const Desktop &desktop = walk.desktop;
    const EditorWindow &window = walk.window;
};

/// In the canvas's coordinates, row by row and from left to right.
QList<QRect> tst_ScreenWalk::headers() const
{
    const QImage picture = canvas();
    QList<QRect> found;
    const QList<Patch> all = patchesOf(picture, picture.rect(), headerColour);
    for (const Patch &patch : all) {
        if (patch.bounds.width() >= 10)
            found.append(patch.bounds);
    }
    std::sort(found.begin(), found.end(), [](const QRect &a, const QRect &b) {
        return qAbs(a.top() - b.top()) > 1 ? a.top() < b.top() : a.left() < b.left();
    });
    return found;
}

/// How many events show that colour.
int tst_ScreenWalk::boxesWith(const QColor &colour) const
{
    const QImage picture = canvas();
    const QList<QRect> all = headers();
    return int(std::count_if(all.begin(), all.end(), [&](const QRect &header) {
        return !patchesOf(picture, boxBelow(header), colour).isEmpty();
    }));
}

bool tst_ScreenWalk::comesToShow(int count, const QColor &colour) const
{
    return eventually([&] { return boxesWith(colour) == count; });
}

bool tst_ScreenWalk::comesToShowEvents(int count) const
{
    return eventually([&] { return headers().size() == count; });
}

/// Whether the events come to be seen there, in any order, and no others.
bool tst_ScreenWalk::comesToShowHeaders(const QList<QRect> &expected) const
{
    return eventually([&] {
        const QList<QRect> seen = headers();
        return seen.size() == expected.size() &&
               std::all_of(expected.begin(), expected.end(), [&](const QRect &each) {
                   return std::any_of(seen.begin(), seen.end(), [&](const QRect &header) {
                       return (header.topLeft() - each.topLeft()).manhattanLength() <= 2;
                   });
               });
    });
}

double tst_ScreenWalk::scale() const
{
    const QList<QRect> all = headers();
    return all.isEmpty() ? 0 : all.constFirst().width() / boxWidth;
}

void tst_ScreenWalk::press(const QString &keys) const { QVERIFY(window.key(keys)); }

void tst_ScreenWalk::everyStepIsSeenFromFarAway()
{
    STEP(openLongStory());
    STEP(selectAndDeselect());
    STEP(dragAnEvent());
    STEP(deleteAndUndo());
    STEP(drawABand());
    STEP(panAndZoom());
    STEP(addAndMark());
    STEP(switchTabs());
    STEP(walk.end());
}

void tst_ScreenWalk::openLongStory()
{
    const QString path = desktop.homePath(QStringLiteral("long.scene"));
    QFile file(path);
    const QByteArray bytes = encodeScene(longStory());
    QVERIFY(file.open(QIODevice::WriteOnly) && file.write(bytes) == bytes.size());
    file.close();
    STEP(walk.start(QStringLiteral("far-away")));
    STEP(press(QStringLiteral("ctrl+o")));
    QVERIFY(window.giveFile(QStringLiteral("Load Scene"), path));
    QVERIFY(comesToShowEvents(events));
    QVERIFY2(scale() > 0.1 && scale() < 0.16, qPrintable(QString::number(scale())));
    QVERIFY(comesToShow(1, endColour));
    STEP(walk.checkScreen());
    QVERIFY(desktop.keepScreenshot(QStringLiteral("far-away.png"), window.outline()));
}

void tst_ScreenWalk::selectAndDeselect()
{
    const QImage opened = canvas();
    STEP(press(QStringLiteral("ctrl+a")));
    QVERIFY2(comesToShow(events, selectedColour), "the canvas does not show what was selected");
    STEP(walk.checkScreen());
    constexpr int deselectAll = 6; // of the Edit menu
    QVERIFY(window.chooseByKeys(Menu::edit, deselectAll));
    QVERIFY2(comesToShow(0, selectedColour), "the canvas does not show what was deselected");
    QVERIFY(eventually([&] { return canvas() == opened; }));
    STEP(walk.checkScreen());
}

void tst_ScreenWalk::dragAnEvent()
{
    const QList<QRect> before = headers();
    const QPoint way(20, 60);
    const QPoint grip = onScreen(before.at(5).center());
    QVERIFY(desktop.press(grip));
    QVERIFY(desktop.moveTo(grip + way / 2));
    // It goes along under the mouse, not only when it is let go.
    QVERIFY(eventually([&] { return !headers().contains(before.at(5)) && headers().size() == events; }));
    QVERIFY(desktop.moveTo(grip + way));
    QVERIFY(desktop.release());
    QList<QRect> expected = before;
    expected[5].translate(way);
    QVERIFY(comesToShowHeaders(expected));
    QVERIFY(window.clickEmptyCanvas());
    QVERIFY(comesToShow(0, selectedColour));
    STEP(walk.checkScreen());
}

void tst_ScreenWalk::deleteAndUndo()
{
    STEP(press(QStringLiteral("ctrl+a")));
    QVERIFY(comesToShow(events, selectedColour));
    STEP(press(QStringLiteral("Delete")));
    QVERIFY2(comesToShowEvents(0), "the canvas does not show that all are gone");
    STEP(walk.checkScreen());
    for (int count = 1; count <= events; ++count) {
        STEP(press(QStringLiteral("ctrl+z")));
        QVERIFY2(comesToShowEvents(count), qPrintable(QStringLiteral("event %1 is not seen").arg(count)));
    }
    STEP(walk.checkScreen());
}

void tst_ScreenWalk::drawABand()
{
    QVERIFY(window.clickEmptyCanvas());
    QVERIFY(comesToShow(0, selectedColour));
    const QList<QRect> all = headers();
    const QImage without = canvas();
    const QPoint corner = onScreen(all.constFirst().topLeft() - QPoint(10, 10));
    QVERIFY(desktop.press(corner));
    QVERIFY(desktop.moveTo(onScreen(all.at(2).center())));
    // In the midst of it the band is seen, and what it has caught.
    QVERIFY(comesToShow(3, selectedColour));
    const QPoint inBand = all.constFirst().topLeft() - QPoint(5, 5);
    QVERIFY(eventually([&] { return canvas().pixel(inBand) != without.pixel(inBand); }));
    QVERIFY(desktop.keepScreenshot(QStringLiteral("far-away-band.png"), window.outline()));
    QVERIFY(desktop.release());
    QVERIFY(eventually([&] { return canvas().pixel(inBand) == without.pixel(inBand); }));
    QVERIFY(comesToShow(3, selectedColour));
    STEP(walk.checkScreen());
    QVERIFY(window.clickEmptyCanvas());
    QVERIFY(eventually([&] { return canvas() == without; }));
    STEP(walk.checkScreen());
}

void tst_ScreenWalk::panAndZoom()
{
    const QRect first = headers().constFirst();
    const QPoint start = window.canvasArea().center();
    QVERIFY(desktop.press(start, 3));
    QVERIFY(desktop.moveTo(start + QPoint(30, -40)));
    QVERIFY(eventually([&] { return headers().value(0).topLeft() != first.topLeft(); }));
    QVERIFY(desktop.release(3));
    STEP(walk.checkScreen());
    STEP(press(QStringLiteral("ctrl+f")));
    QVERIFY(comesToShowEvents(events));

    // Out to a scale at which an event is a speck, and back.
    const double framed = scale();
    QVERIFY(desktop.scroll(start, -8));
    QVERIFY(eventually([&] { return headers().size() == events && qAbs(scale() * 2.07 - framed) < 0.01; }));
    STEP(walk.checkScreen());
    STEP(press(QStringLiteral("ctrl+a")));
    QVERIFY(comesToShow(events, selectedColour));
    STEP(walk.checkScreen());
    QVERIFY(window.clickEmptyCanvas());
    QVERIFY(comesToShow(0, selectedColour));
    QVERIFY(desktop.scroll(onScreen(headers().constFirst().center()), 8));
    QVERIFY(eventually([&] { return qAbs(scale() - framed) < 0.01; }));
    STEP(walk.checkScreen());
    STEP(press(QStringLiteral("ctrl+f")));
    QVERIFY(comesToShowEvents(events));
    STEP(walk.checkScreen());
}

void tst_ScreenWalk::addAndMark()
{
    // The new one follows the last and has to be brought into sight.
    QVERIFY(desktop.click(onScreen(headers().constLast().center())));
    QVERIFY(comesToShow(1, selectedColour));
    const QImage before = canvas();
    STEP(press(QStringLiteral("ctrl+shift+a")));
    QVERIFY(eventually([&] { return canvas() != before; }));
    QVERIFY(window.clickEmptyCanvas());
    STEP(press(QStringLiteral("ctrl+f")));
    QVERIFY(comesToShowEvents(events + 1));
    QVERIFY(comesToShow(1, endColour));
    STEP(walk.checkScreen());

    const QList<QRect> all = headers();
    QVERIFY(desktop.click(onScreen(all.at(1).center())));
    STEP(press(QStringLiteral("ctrl+i")));
    QVERIFY(window.clickEmptyCanvas());
    QVERIFY2(comesToShow(1, importantColour), "the canvas does not show what is important");
    STEP(walk.checkScreen());
    QVERIFY(desktop.click(onScreen(all.at(3).center())));
    STEP(press(QStringLiteral("ctrl+e")));
    QVERIFY(window.clickEmptyCanvas());
    QVERIFY2(eventually([&] {
                 return !patchesOf(canvas(), boxBelow(all.at(3)), endColour).isEmpty() &&
                        boxesWith(endColour) == 1;
             }),
             "the canvas does not show the end");
    STEP(walk.checkScreen());
}

void tst_ScreenWalk::switchTabs()
{
    const QList<QRect> first = headers();
    QVERIFY(window.pressTabButton());
    QVERIFY(window.comesToShowTabs(2));
    QVERIFY(window.chooseTab(1));
    QVERIFY(window.comesToShowCurrentTab(1));
    QVERIFY(comesToShowEvents(0));
    STEP(walk.checkScreen());
    QVERIFY(window.chooseTab(0));
    QVERIFY(window.comesToShowCurrentTab(0));
    QVERIFY(comesToShowHeaders(first));
    STEP(walk.checkScreen());
    STEP(press(QStringLiteral("ctrl+a")));
    QVERIFY(comesToShow(events + 1, selectedColour));
    STEP(walk.checkScreen());
}

QTEST_GUILESS_MAIN(tst_ScreenWalk)
#include "tst_screenwalk.moc"
