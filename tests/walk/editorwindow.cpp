#include "walk/editorwindow.h"

#include "walk/desktop.h"
#include "walk/picture.h"
#include "walk/program.h"

#include <algorithm>
#include <cmath>

namespace {

const QColor canvasColour(QStringLiteral("#606060"));
const QColor panelColour(QStringLiteral("#EAEAEA"));
const QColor entryColour(QStringLiteral("#F5F5F5"));
const QColor headerColour(QStringLiteral("#8556E9"));
const QColor freeSocketColour(QStringLiteral("#B4A523"));
const QColor fedSocketColour(QStringLiteral("#FFFF00"));

constexpr double boxWidth = 455.0;
constexpr double socketWidth = 10.0;
constexpr double framingMargin = 50.0;
constexpr double headerHeight = 34.0;
constexpr int menuEntries[] = {5, 8, 6, 3, 1}; // of each menu, without the separators
constexpr int menuBarHeight = 24;

const QString question = QStringLiteral("Save Changes");

struct SocketSign
{
    QPoint middle;
    bool connected = false;
};

/// The first socket below the header whose middle is at that x; false if there is none.
bool findSocket(const QList<SocketSign> &sockets, const QRect &header, double x, double tolerance,
                QPoint &middle, bool &connected)
{
    for (const SocketSign &socket : sockets) {
        if (socket.middle.y() > header.bottom() && std::abs(socket.middle.x() - x) <= tolerance) {
            middle = socket.middle;
            connected = socket.connected;
            return true;
        }
    }
    return false;
}

/// Where a row of marks begins and ends again, with gaps of up to `gap` in it.
QList<std::pair<int, int>> runs(const QList<bool> &marks, int gap)
{
    QList<std::pair<int, int>> found;
    for (int i = 0; i < marks.size(); ++i) {
        if (!marks.at(i))
            continue;
        if (!found.isEmpty() && i - found.constLast().second <= gap + 1)
            found.last().second = i;
        else
            found.append({i, i});
    }
    return found;
}

/// Whether text, which is bright, may stand there.
bool isBright(QRgb pixel) { return qGray(pixel) > 130; }

QList<SocketSign> socketsIn(const QImage &picture, const QRect &area)
{
    QList<SocketSign> sockets;
    for (const bool connected : {false, true}) {
        const QList<Patch> found = patchesOf(picture, area, connected ? fedSocketColour : freeSocketColour);
        for (const Patch &patch : found) {
            if (patch.bounds.width() >= 2 && patch.bounds.height() >= 6)
                sockets.append({patch.bounds.center(), connected});
        }
    }
    std::sort(sockets.begin(), sockets.end(),
              [](const SocketSign &a, const SocketSign &b) { return a.middle.y() < b.middle.y(); });
    return sockets;
}

} // namespace

double EventBox::scale() const { return header.width() / boxWidth; }

QPoint EventBox::at(double x, double y) const
{
    return header.topLeft() + QPointF(x * scale(), y * scale()).toPoint();
}

bool EditorWindow::measure()
{
    return eventually([this] {
        window = desktop.geometry(desktop.windowWithTitle(Program::title()));
        const QImage picture = desktop.screenshot();
        canvas = largest(patchesOf(picture, window, canvasColour)).bounds;
        panel = largest(patchesOf(picture, window, panelColour)).bounds;
        return canvas.width() > 400 && canvas.height() > 400 && panel.width() > 300 && panel.height() > 300 &&
               panel.left() > canvas.right() && tabs().size() == 1;
    });
}

QList<EventBox> EditorWindow::events() const
{
    const QImage picture = desktop.screenshot();
    const QList<SocketSign> sockets = socketsIn(picture, canvas);
    QList<EventBox> boxes;
    const QList<Patch> headers = patchesOf(picture, canvas, headerColour);
    for (const Patch &patch : headers) {
        EventBox box;
        box.header = patch.bounds;
        const double half = socketWidth / 2 * box.scale();
        if (box.header.width() > 100 &&
            findSocket(sockets, box.header, box.header.left() + half, half, box.input, box.inputFed) &&
            findSocket(sockets, box.header, box.header.right() - half, half, box.output, box.outputFeeds))
            boxes.append(box);
    }
    std::sort(boxes.begin(), boxes.end(),
              [](const EventBox &a, const EventBox &b) { return a.header.left() < b.header.left(); });
    return boxes;
}

QList<EventBox> EditorWindow::shownEvents(int count) const
{
    QList<EventBox> seen;
    const bool shown = eventually([&] {
        seen = events();
        return seen.size() == count;
    });
    return shown ? seen : QList<EventBox>();
}

QList<EventBox> EditorWindow::framedEvents(int count) const
{
    QList<EventBox> seen;
    const bool framed = eventually([&] {
        seen = events();
        if (seen.size() != count)
            return false;
        const int width = seen.constLast().header.right() - seen.constFirst().header.left() + 1;
        const double framedWidth = width + 2 * framingMargin * seen.constFirst().scale();
        return std::abs(framedWidth - canvas.width()) < 10;
    });
    return framed ? seen : QList<EventBox>();
}

QList<QRect> EditorWindow::entries() const
{
    QList<QRect> found;
    const QList<Patch> all = patchesOf(desktop.screenshot(), panel, entryColour);
    for (const Patch &patch : all) {
        const QRect entry = patch.bounds;
        // The outline of an important entry is as wide, but nothing fills it.
        const bool filled = entry.height() > 20 && patch.count > entry.width() * entry.height() / 2;
        if (entry.width() > panel.width() * 3 / 4 && filled)
            found.append(entry);
    }
    return found;
}

QList<TabSign> EditorWindow::tabs() const
{
    constexpr int tabBarHeight = 36;
    const QRect bar(canvas.left(), canvas.top() - tabBarHeight, canvas.width(), tabBarHeight);
    const QImage picture = desktop.screenshot();
    const QList<Patch> bright =
        patches(picture, bar, [](QRgb pixel) { return qMax(qRed(pixel), qGreen(pixel)) > 120; });
    QList<TabSign> found;
    for (const Patch &patch : bright) {
        const QRect button = patch.bounds;
        const bool square = button.width() >= 11 && button.width() <= 18 && button.height() >= 11 &&
                            button.height() <= 18 && patch.count * 5 > button.width() * button.height() * 4;
        if (!square)
            continue;
        const QRgb edge = picture.pixel(button.left(), button.center().y());
        found.append({button, qRed(edge) > qGreen(edge) + 60});
    }
    std::sort(found.begin(), found.end(),
              [](const TabSign &a, const TabSign &b) { return a.closeButton.left() < b.closeButton.left(); });
    return found;
}

bool EditorWindow::comesToShowEntries(int count) const
{
    return eventually([=, this] { return entries().size() == count; });
}

bool EditorWindow::comesToShowTabs(int count) const
{
    return eventually([=, this] { return tabs().size() == count; });
}

bool EditorWindow::comesToShowCurrentTab(int tab) const
{
    return eventually([=, this] {
        const QList<TabSign> seen = tabs();
        return tab < seen.size() && seen.at(tab).current;
    });
}

bool EditorWindow::comesToShowCanvas(bool shown) const
{
    return eventually([=, this] {
        return (largest(patchesOf(desktop.screenshot(), canvas, canvasColour)).count > 0) == shown;
    });
}

bool EditorWindow::comesToShowScale(double scale) const
{
    return eventually([=, this] {
        const QRect header = largest(patchesOf(desktop.screenshot(), canvas, headerColour)).bounds;
        const bool cut = header.left() <= canvas.left() || header.right() >= canvas.right();
        return cut ? std::abs(header.height() - headerHeight * scale) <= 1.5
                   : std::abs(header.width() - boxWidth * scale) <= 1.5;
    });
}

bool EditorWindow::comesToShowBodyColour(const EventBox &box, const QColor &colour) const
{
    return eventually([&] { return desktop.screenshot().pixelColor(box.body()) == colour; });
}

bool EditorWindow::hasKeyboard() const { return dialogIsActive(Program::title()); }

bool EditorWindow::dialogIsActive(const QString &title) const
{
    return eventually([&] { return desktop.activeTitle() == title; });
}

bool EditorWindow::key(const QString &keys) const { return hasKeyboard() && desktop.key(keys); }

bool EditorWindow::clickEvent(int event, int count) const
{
    const QList<EventBox> seen = shownEvents(count);
    return event < seen.size() && desktop.click(seen.at(event).body());
}

bool EditorWindow::clickEmptyCanvas() const { return desktop.click(canvas.topLeft() + QPoint(20, 20)); }

bool EditorWindow::noticeHasGone() const
{
    return eventually([this] { return !isNotice(desktop.screenshot(), canvas); });
}

bool EditorWindow::isNotice(const QImage &picture, const QRect &canvas)
{
    constexpr QRgb ground = qRgb(30, 70, 50);
    return picture.pixel(canvas.bottomLeft() + QPoint(4, -4)) == ground;
}

bool EditorWindow::replaceTitle(const EventBox &box, const QString &text) const
{
    return hasKeyboard() && desktop.click(box.title()) && desktop.type(text);
}

bool EditorWindow::writeDescription(const EventBox &box, const QString &text) const
{
    return hasKeyboard() && desktop.click(box.description()) && desktop.type(text);
}

bool EditorWindow::pressTabButton() const { return desktop.click(canvas.topLeft() + QPoint(-24, -18)); }

bool EditorWindow::chooseTab(int tab) const
{
    QList<TabSign> seen;
    return eventually([&] { return tab < (seen = tabs()).size(); }) && desktop.click(seen.at(tab).label());
}

bool EditorWindow::pressCloseButton(int tab) const
{
    QList<TabSign> seen;
    return eventually([&] { return tab < (seen = tabs()).size(); }) &&
           desktop.click(seen.at(tab).closeButton.center());
}

bool EditorWindow::pressAddButton() const { return desktop.click(canvas.topLeft() + QPoint(-22, 26)); }

QList<QPoint> EditorWindow::menuTitles() const
{
    const QImage bar =
        desktop.screenshot().copy(QRect(window.topLeft(), QSize(window.width() / 2, menuBarHeight)));
    QList<bool> columns(bar.width(), false);
    for (int x = 0; x < bar.width(); ++x) {
        for (int y = 0; y < bar.height(); ++y)
            columns[x] = columns.at(x) || isBright(bar.pixel(x, y));
    }
    QList<QPoint> titles;
    constexpr int letterGap = 5;
    for (const auto &[left, right] : runs(columns, letterGap))
        titles.append(window.topLeft() + QPoint((left + right) / 2, menuBarHeight / 2));
    return titles.mid(qMax(0, titles.size() - int(std::size(menuEntries)))); // the logo is none
}

QRect EditorWindow::openedMenu() const
{
    const QList<quint32> windows = desktop.windowsOfClass(QStringLiteral("fablegrid"));
    for (const quint32 id : windows) {
        const QRect menu = desktop.geometry(id);
        const int fall = menu.top() - window.top();
        if (menu.width() < window.width() / 2 && fall > 0 && fall < 2 * menuBarHeight && menu.height() > 10)
            return menu;
    }
    return {};
}

QList<QPoint> EditorWindow::entriesOf(const QRect &menu) const
{
    constexpr int frame = 2;
    const QImage picture = desktop.screenshot().copy(menu);
    QList<bool> rows(picture.height(), false);
    for (int y = frame; y < picture.height() - frame; ++y) {
        for (int x = frame; x < picture.width() - frame; ++x)
            rows[y] = rows.at(y) || isBright(picture.pixel(x, y));
    }
    QList<QPoint> found;
    constexpr int lineGap = 2;
    constexpr int leastHeight = 5; // less is a separator
    for (const auto &[top, bottom] : runs(rows, lineGap)) {
        if (bottom - top >= leastHeight)
            found.append(menu.topLeft() + QPoint(menu.width() / 3, (top + bottom) / 2));
    }
    return found;
}

QList<QPoint> EditorWindow::openMenu(Menu menu) const
{
    QList<QPoint> titles;
    const auto showsTitles = [&] { return (titles = menuTitles()).size() == int(std::size(menuEntries)); };
    if (!hasKeyboard() || !eventually(showsTitles) || !desktop.click(titles.at(int(menu))))
        return {};
    return shownEntries(menu);
}

QList<QPoint> EditorWindow::shownEntries(Menu menu) const
{
    QList<QPoint> found;
    const bool opened = eventually([&] {
        const QRect shown = openedMenu();
        found = shown.isEmpty() ? QList<QPoint>() : entriesOf(shown);
        return found.size() == menuEntries[int(menu)];
    });
    return opened ? found : QList<QPoint>();
}

bool EditorWindow::chooseByMouse(Menu menu, int entry) const
{
    const QList<QPoint> found = openMenu(menu);
    return entry < found.size() && desktop.click(found.at(entry)) &&
           eventually([this] { return openedMenu().isEmpty(); });
}

bool EditorWindow::chooseByKeys(Menu menu, int entry) const
{
    if (openMenu(menu).isEmpty())
        return false;
    for (int i = 0; i <= entry; ++i) {
        if (!desktop.key(QStringLiteral("Down")))
            return false;
    }
    return desktop.key(QStringLiteral("Return")) && eventually([this] { return openedMenu().isEmpty(); });
}

bool EditorWindow::pressFilterButton() const { return desktop.click(window.topRight() + QPoint(-52, 58)); }

// Not by a key of the window manager: the first key of a session makes it learn the keyboard anew, and while
// it does so it misses its keys.
bool EditorWindow::askToClose() const
{
    return hasKeyboard() && desktop.click(window.topRight() + QPoint(-10, -11));
}

bool EditorWindow::answer(const QString &keys) const { return dialogIsActive(question) && desktop.key(keys); }

bool EditorWindow::giveFile(const QString &dialogTitle, const QString &path) const
{
    if (!dialogIsActive(dialogTitle) || !desktop.type(path) || !desktop.key(QStringLiteral("Return")))
        return false;
    return eventually([&] { return desktop.windowWithTitle(dialogTitle) == 0; });
}

bool EditorWindow::cancelDialog(const QString &title) const
{
    return dialogIsActive(title) && desktop.key(QStringLiteral("Escape")) &&
           eventually([&] { return desktop.windowWithTitle(title) == 0; });
}
