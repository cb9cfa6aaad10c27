#include "workday.h"

#include "walk/need.h"
#include "walk/picture.h"
#include "walk/scenefile.h"

#include <QFile>

#include <algorithm>
#include <cmath>
#include <random>

namespace {

const QColor headerColour(QStringLiteral("#8556E9"));
const QColor selectedColour(QStringLiteral("#EBF400"));

constexpr double columnStep = 600;
constexpr double rowStep = 500;
constexpr double headerWidth = 455;
constexpr double laneShare = 0.8; // of the way to the next row or column
constexpr int bandColumns = 5;
constexpr int bandRows = 4;
constexpr int zoomTo100 = 3;   // of the View menu
constexpr int deselectAll = 6; // of the Edit menu
constexpr int notchesTo2 = 43;
constexpr int notchesTo200 = 51;     // from 2 %
constexpr int doubleClickReach = 40; // pixels beyond which two clicks are two
constexpr int seenAt20 = 60;         // events that a canvas holds at 20 %, roughly
constexpr int notchesTo20 = 18;      // from 100 %

QString prose(std::mt19937 &chance, int letters)
{
    static const QStringList words =
        QStringLiteral(
            "the a of and to in her his that was with he she not for had as at on but by from it they "
            "into harbour keeper lamp tide rope gull lantern captain widow letter storm chapel sister "
            "cellar market bridge winter promise stranger window kitchen orchard carriage whisper "
            "shoulder morning candle returns remembers follows breaks opens hides answers laughs "
            "waits believes forgets promises crosses old grey broken silent narrow unopened honest "
            "slowly never again before without beneath towards almost because although quietly "
            "Margarethe Tobias Eleanor lighthouse-keeper half-forgotten midnight candlelight")
            .split(QLatin1Char(' '));
    QString text;
    int inSentence = 0;
    while (text.size() < letters) {
        QString word = words.at(qsizetype(chance() % quint32(words.size())));
        if (inSentence == 0)
            word[0] = word.at(0).toUpper();
        ++inSentence;
        const bool ends = inSentence > 5 && chance() % 8 == 0;
        text += word + (ends                 ? QStringLiteral(". ")
                        : chance() % 11 == 0 ? QStringLiteral(", ")
                                             : QStringLiteral(" "));
        inSentence = ends ? 0 : inSentence;
    }
    return text.trimmed() + QLatin1Char('.');
}

/// The places of a row or a column, of values that lie closer together than that one each.
QList<int> lanes(QList<int> values, double apart)
{
    std::sort(values.begin(), values.end());
    QList<int> found;
    for (const int value : std::as_const(values)) {
        if (found.isEmpty() || value - found.constLast() > apart)
            found << value;
    }
    return found;
}

} // namespace

bool WorkDay::writeStory(const QString &path, int events)
{
    constexpr int usualLength = 300;
    std::mt19937 chance(1); // the same story each time
    const int columns = std::max(bandColumns, int(std::ceil(std::sqrt(events))));
    QList<SavedEvent> tab;
    for (int i = 0; i < events; ++i) {
        SavedEvent event;
        event.tag = QStringLiteral("Event");
        event.title = QStringLiteral("%1 %2").arg(i).arg(prose(chance, 12).chopped(1));
        event.x = columnStep * (i % columns);
        event.y = rowStep * (i / columns); // NOLINT(bugprone-integer-division)
        event.index = i;
        event.upstream = i - 1;
        event.endOfStory = i == events - 1 ? 1 : 0;
        event.important = i % 7 == 3 ? 1 : 0;
        event.description = prose(chance, usualLength - 60 + int(chance() % 120));
        tab.append(event);
    }
    SavedScene scene;
    scene.tabs.append(tab);
    QFile file(path);
    const QByteArray bytes = encodeScene(scene);
    return file.open(QIODevice::WriteOnly) && file.write(bytes) == bytes.size();
}

WorkDay::WorkDay(const Desktop &desktopToUse, int eventCount)
    : desktop(desktopToUse), events(eventCount),
      path(desktop.homePath(QStringLiteral("story-%1.scene").arg(eventCount))),
      program(desktop, QString::number(eventCount)),
      clock(desktop.environment().value(QStringLiteral("DISPLAY")))
{}

bool WorkDay::run()
{
    NEED(clock.isReady());
    NEED(writeStory(path, events));
    NEED(program.start());
    NEED(window.measure());
    clock.watch(desktop.windowWithTitle(Program::title()));
    NEED(open());
    NEED(goToTheMiddle());
    NEED(writeInTheNode());
    NEED(writeInThePanel());
    NEED(dragANode());
    NEED(zoom());
    NEED(addAndUndo());
    NEED(mark());
    NEED(switchTabs());
    NEED(pasteTwenty());
    NEED(pasteOne());
    NEED(bandOverAll());
    NEED(save());
    NEED(program.isRunning());
    return true;
}

bool WorkDay::open()
{
    NEED(window.key(QStringLiteral("ctrl+o")));
    NEED(eventually([this] { return desktop.activeTitle() == QStringLiteral("Load Scene"); }));
    NEED(desktop.type(path));
    clock.rest();
    key(QStringLiteral("open"), QStringLiteral("Return"));
    NEED(window.hasKeyboard());
    return keep(QStringLiteral("opened"));
}

bool WorkDay::goToTheMiddle()
{
    NEED(window.chooseByKeys(Menu::view, zoomTo100));
    clock.rest();
    return bringAnEvent() && keep(QStringLiteral("middle"));
}

// What a command adds is brought into sight, and what it takes back leaves the view where it is.
bool WorkDay::bringAnEvent()
{
    constexpr int beside = 20; // from the header's right end, where no title is
    const QRect header = largest(patchesOf(desktop.screenshot(), window.canvasArea(), headerColour)).bounds;
    NEED(header.width() > 2 * beside);
    click(QStringLiteral("click on an event"), QPoint(header.right() - beside, header.center().y()));
    key(QStringLiteral("frame the current event"), QStringLiteral("ctrl+f"));
    NEED(window.chooseByKeys(Menu::view, zoomTo100));
    clock.rest();
    return findMiddleEvent();
}

bool WorkDay::findMiddleEvent()
{
    QList<EventBox> boxes = window.events();
    NEED(!boxes.isEmpty());
    const QPoint centre = window.canvasArea().center();
    middle = *std::min_element(boxes.begin(), boxes.end(), [&](const EventBox &a, const EventBox &b) {
        return (a.body() - centre).manhattanLength() < (b.body() - centre).manhattanLength();
    });
    return true;
}

bool WorkDay::writeInTheNode()
{
    click(QStringLiteral("click on a title"), middle.title());
    type(QStringLiteral("a letter of a title"), QStringLiteral("the lamp goes out"));
    click(QStringLiteral("click on a description"), middle.description());
    type(QStringLiteral("a letter of a description"), QStringLiteral("nobody saw who came up the stairs "));
    NEED(keep(QStringLiteral("written")));
    key(QStringLiteral("leave a text"), QStringLiteral("Escape"));
    return true;
}

bool WorkDay::writeInThePanel()
{
    const QList<QRect> entries = window.entries();
    NEED(entries.size() > 1);
    click(QStringLiteral("click on an entry"), entries.at(1).center());
    type(QStringLiteral("a letter of an entry"), QStringLiteral("and the tide had turned "));
    NEED(keep(QStringLiteral("panel")));
    key(QStringLiteral("leave a text"), QStringLiteral("Escape"));
    return true;
}

bool WorkDay::dragANode()
{
    constexpr int moves = 12;
    drag(QStringLiteral("drag of a node, a move"), middle.body(), middle.body() + QPoint(36, 24), moves);
    NEED(keep(QStringLiteral("dragged")));
    return findMiddleEvent();
}

bool WorkDay::zoom()
{
    clock.moveTo(middle.body());
    turn(QStringLiteral("zoom out to 2 %, a notch"), -notchesTo2);
    NEED(keep(QStringLiteral("zoom-2")));
    // A story smaller than the canvas has moved to its corner. The event is the yellow spot.
    const QList<Patch> spots = patches(desktop.screenshot(), window.canvasArea(), [](QRgb pixel) {
        return qRed(pixel) > 150 && qGreen(pixel) > 150 && qBlue(pixel) < 100;
    });
    NEED(!spots.isEmpty());
    clock.moveTo(largest(spots).bounds.center());
    turn(QStringLiteral("zoom in to 200 %, a notch"), notchesTo200);
    NEED(keep(QStringLiteral("zoom-200")));
    turn(QStringLiteral("zoom back, a notch"), notchesTo2 - notchesTo200);
    NEED(keep(QStringLiteral("zoom-100")));
    return bringAnEvent();
}

bool WorkDay::addAndUndo()
{
    click(QStringLiteral("click on an event"), middle.body());
    key(QStringLiteral("add"), QStringLiteral("ctrl+shift+a"));
    NEED(keep(QStringLiteral("added")));
    key(QStringLiteral("undo of add"), QStringLiteral("ctrl+z"));
    key(QStringLiteral("redo of add"), QStringLiteral("ctrl+y"));
    key(QStringLiteral("undo of add"), QStringLiteral("ctrl+z"));
    NEED(keep(QStringLiteral("add-undone")));
    return bringAnEvent();
}

bool WorkDay::mark()
{
    click(QStringLiteral("click on an event"), middle.body());
    // Yellow, it would not show the mark.
    NEED(window.chooseByKeys(Menu::edit, deselectAll));
    clock.rest();
    key(QStringLiteral("importance"), QStringLiteral("ctrl+i"));
    NEED(keep(QStringLiteral("important")));
    key(QStringLiteral("importance"), QStringLiteral("ctrl+i"));
    key(QStringLiteral("filter on"), QStringLiteral("ctrl+l"));
    NEED(keep(QStringLiteral("filtered")));
    key(QStringLiteral("filter off"), QStringLiteral("ctrl+l"));
    return true;
}

bool WorkDay::switchTabs()
{
    key(QStringLiteral("add a tab"), QStringLiteral("ctrl+t"));
    NEED(window.comesToShowTabs(2));
    key(QStringLiteral("switch tabs"), QStringLiteral("ctrl+Tab"));
    NEED(window.comesToShowCurrentTab(1));
    NEED(keep(QStringLiteral("other-tab")));
    key(QStringLiteral("switch tabs back"), QStringLiteral("ctrl+shift+Tab"));
    NEED(window.comesToShowCurrentTab(0));
    return bringAnEvent();
}

bool WorkDay::pasteOne()
{
    NEED(bringAnEvent());
    const QPoint place = middle.at(40, -60);
    click(QStringLiteral("click on an event"), middle.body());
    clock.key(QStringLiteral("ctrl+c"));
    clock.moveTo(place);
    key(QStringLiteral("paste a copied one"), QStringLiteral("ctrl+v"));
    NEED(keep(QStringLiteral("pasted-copy")));
    key(QStringLiteral("undo of that paste"), QStringLiteral("ctrl+z"));
    NEED(bringAnEvent());
    key(QStringLiteral("cut one"), QStringLiteral("ctrl+x"));
    NEED(keep(QStringLiteral("cut")));
    clock.moveTo(place);
    key(QStringLiteral("paste a cut one"), QStringLiteral("ctrl+v"));
    NEED(keep(QStringLiteral("pasted-cut")));
    key(QStringLiteral("undo of that paste"), QStringLiteral("ctrl+z"));
    return keep(QStringLiteral("pasted-undone"));
}

bool WorkDay::pasteTwenty()
{
    clock.moveTo(window.canvasArea().center());
    turn(QStringLiteral("zoom out to 20 %, a notch"), -notchesTo20);
    if (events < seenAt20) {
        // The few may be out of sight in part; without a current event all are framed.
        click(QStringLiteral("click on the ground"), window.canvasArea().topRight() + QPoint(-6, 6));
        clock.key(QStringLiteral("ctrl+f"));
    }
    const QList<QRect> all = headers();
    NEED(all.size() >= bandColumns * bandRows);
    const double scale = all.constFirst().width() / headerWidth;
    QList<int> lefts;
    QList<int> tops;
    for (const QRect &header : all) {
        lefts << header.left();
        tops << header.top();
    }
    // What was pasted stands between two rows, and is in none.
    lefts = lanes(lefts, columnStep * scale * laneShare);
    tops = lanes(tops, rowStep * scale * laneShare);
    NEED(lefts.size() >= bandColumns && tops.size() >= bandRows);
    // Beside the header no line passes, neither to the next event nor to the next row.
    const QPoint gap(int(70 * scale), 0);
    const QPoint inHeader(0, int(10 * scale));
    const QPoint from = QPoint(lefts.constFirst(), tops.constFirst()) - gap + inHeader;
    const QPoint to = QPoint(lefts.at(bandColumns - 1), tops.at(bandRows - 1)) + gap + inHeader;
    // Not where the band begins, which would be a double click.
    click(QStringLiteral("click on the ground"), from + QPoint(0, int(rowStep * scale)));
    constexpr int moves = 8;
    drag(QStringLiteral("rubber band over 20, a move"), from, to, moves);
    NEED(keep(QStringLiteral("band-20")));
    const QList<Patch> yellow = patchesOf(desktop.screenshot(), window.canvasArea(), selectedColour);
    NEED(yellow.size() >= bandColumns * (bandRows - 1)); // some are covered
    key(QStringLiteral("cut 20"), QStringLiteral("ctrl+x"));
    NEED(keep(QStringLiteral("cut-20")));
    clock.moveTo(window.canvasArea().center());
    key(QStringLiteral("paste 20"), QStringLiteral("ctrl+v"));
    NEED(keep(QStringLiteral("pasted-20")));
    for (int i = 0; i < bandColumns * bandRows; ++i)
        key(QStringLiteral("undo of the 20, one"), QStringLiteral("ctrl+z"));
    return keep(QStringLiteral("pasted-20-undone"));
}

bool WorkDay::bandOverAll()
{
    // At the right the graph, which is higher than the canvas is wide, leaves ground free.
    const QPoint corner = window.canvasArea().topRight() + QPoint(-6, 6);
    clock.rest();
    NEED(window.chooseByKeys(Menu::edit, deselectAll));
    clock.moveTo(window.canvasArea().center());
    turn(QStringLiteral("zoom out to 20 %, a notch"), -notchesTo20);
    clock.rest();
    click(QStringLiteral("click on the ground"), corner + QPoint(0, doubleClickReach));
    key(QStringLiteral("frame all"), QStringLiteral("ctrl+f"));
    NEED(keep(QStringLiteral("framed")));
    // One event alone would be framed if the click had met it.
    NEED(largest(patchesOf(desktop.screenshot(), window.canvasArea(), headerColour)).bounds.width() <
         headerWidth);
    constexpr int moves = 8;
    drag(QStringLiteral("rubber band over all, a move"), corner,
         window.canvasArea().bottomLeft() + QPoint(6, -6), moves);
    NEED(keep(QStringLiteral("band-all")));
    click(QStringLiteral("end of that selection"), corner);
    return keep(QStringLiteral("band-ended"));
}

bool WorkDay::save()
{
    NEED(window.noticeHasGone());
    QFile::remove(path);
    clock.rest();
    key(QStringLiteral("save"), QStringLiteral("ctrl+s"));
    NEED(keep(QStringLiteral("saved")));
    return QFile::exists(path);
}

void WorkDay::note(const QString &step, double milliseconds)
{
    if (!order.contains(step))
        order << step;
    longest[step] = std::max(longest.value(step), milliseconds);
}

void WorkDay::type(const QString &step, const QString &letters)
{
    for (const QChar letter : letters)
        key(step, letter);
}

void WorkDay::click(const QString &step, QPoint place)
{
    clock.moveTo(place);
    note(step, clock.press());
    note(step, clock.release());
}

void WorkDay::drag(const QString &step, QPoint from, QPoint to, int moves)
{
    clock.moveTo(from);
    note(step, clock.press());
    for (int i = 1; i <= moves; ++i)
        note(step, clock.moveTo(from + (to - from) * i / moves));
    note(step, clock.release());
}

void WorkDay::turn(const QString &step, int notches)
{
    for (int i = 0; i < std::abs(notches); ++i)
        note(step, clock.turnWheel(notches > 0));
}

QList<QRect> WorkDay::headers() const
{
    const QRect canvas = window.canvasArea();
    QList<QRect> found;
    const QList<Patch> all = patchesOf(desktop.screenshot(), canvas, headerColour);
    int widest = 0;
    for (const Patch &patch : all)
        widest = std::max(widest, patch.bounds.width());
    for (const Patch &patch : all) {
        if (patch.bounds.width() > widest * 9 / 10 && canvas.adjusted(4, 4, -4, -4).contains(patch.bounds))
            found << patch.bounds;
    }
    return found;
}

bool WorkDay::keep(const QString &name) const
{
    return desktop.keepScreenshot(QStringLiteral("%1-%2.png").arg(events).arg(name), window.outline());
}
