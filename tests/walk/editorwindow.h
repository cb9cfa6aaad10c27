#pragma once

#include <QColor>
#include <QImage>
#include <QList>
#include <QPoint>
#include <QRect>
#include <QString>

class Desktop;

/// An event as it is seen on the canvas; everything in screen coordinates.
struct EventBox
{
    QRect header;
    QPoint input; // middles of the sockets
    QPoint output;
    bool inputFed = false;
    bool outputFeeds = false;

    double scale() const;
    /// A point of the box, given in its own units from its top left corner.
    QPoint at(double x, double y) const;
    QPoint title() const { return at(30, 17); }
    QPoint description() const { return at(120, 84); }
    /// Bare ground beside the description, where the box is gripped.
    QPoint body() const { return at(20, 60); }
};

/// A tab as it is seen above the canvas.
struct TabSign
{
    QRect closeButton;
    bool current = false;

    QPoint label() const { return {closeButton.left() - 25, closeButton.center().y()}; }
};

/// The menus from left to right.
enum class Menu { file, edit, view, tools, help };

/// The program's main window as a user sees it: found by its colours on the screen, used with mouse and keys.
class EditorWindow
{
public:
    /// The desktop must outlive this object.
    explicit EditorWindow(const Desktop &desktopToUse) : desktop(desktopToUse) {}

    /// Finds canvas and panel of a window that shows one empty tab; waits until it does.
    bool measure();
    /// The window's contents without the frame that the window manager adds.
    QRect outline() const { return window; }
    /// Where the canvas of the current tab is.
    QRect canvasArea() const { return canvas; }

    /// The events whose headers and sockets are in sight, from left to right.
    QList<EventBox> events() const;
    /// Waits for that many events and returns them; an empty list if they never are in sight. What has been
    /// clicked or closed just now may still cover some of them.
    QList<EventBox> shownEvents(int count) const;
    /// Waits for that many events, all in sight and filling the canvas from side to side, and returns them;
    /// an empty list if that never happens.
    QList<EventBox> framedEvents(int count) const;
    /// The panel's entries from top to bottom.
    QList<QRect> entries() const;
    QList<TabSign> tabs() const;

    /// Each waits until the window looks like that; false if it never does.
    bool comesToShowEntries(int count) const;
    bool comesToShowTabs(int count) const;
    bool comesToShowCurrentTab(int tab) const;
    bool comesToShowCanvas(bool shown) const;
    /// Measured at the only event there is, which need not be in sight as a whole.
    bool comesToShowScale(double scale) const;
    bool comesToShowBodyColour(const EventBox &box, const QColor &colour) const;
    bool hasKeyboard() const;

    /// Each returns whether it could be done.
    bool key(const QString &keys) const;
    /// Waits until so many events are in sight and clicks that one of them, counted from 0, on its body.
    bool clickEvent(int event, int count) const;
    bool clickEmptyCanvas() const;
    /// What tells of a save at the lower edge of the canvas is not shown, or not any more.
    bool noticeHasGone() const;
    /// Whether a picture with the canvas there has good news at the canvas's lower edge.
    static bool isNotice(const QImage &picture, const QRect &canvas);
    bool replaceTitle(const EventBox &box, const QString &text) const;
    bool writeDescription(const EventBox &box, const QString &text) const;
    bool pressTabButton() const;
    bool chooseTab(int tab) const;
    bool pressCloseButton(int tab) const;
    bool pressAddButton() const;
    /// Clicks the menu's title and waits until all its entries are shown; returns their middles from top to
    /// bottom, an empty list if that never happens.
    QList<QPoint> openMenu(Menu menu) const;
    /// Waits until all entries of that menu, which is open or about to open, are shown, and returns them so.
    QList<QPoint> shownEntries(Menu menu) const;
    /// Where the menu that is open is on the screen; empty if none is.
    QRect openedMenu() const;
    /// Choose the entry at that place, counted from 0 without the separators, and wait for the menu's end.
    bool chooseByMouse(Menu menu, int entry) const;
    bool chooseByKeys(Menu menu, int entry) const;
    /// Clicks the panel's button "Important events".
    bool pressFilterButton() const;
    /// Clicks the button that the window manager puts into the window's frame.
    bool askToClose() const;
    /// Answers the question that is open by a key, such as "alt+n".
    bool answer(const QString &keys) const;
    /// Types the path into the file dialog with that title and confirms it; waits for the dialog's end.
    bool giveFile(const QString &dialogTitle, const QString &path) const;
    /// Waits for that dialog and leaves it with Escape.
    bool cancelDialog(const QString &title) const;

private:
    bool dialogIsActive(const QString &title) const;
    QList<QPoint> menuTitles() const;
    QList<QPoint> entriesOf(const QRect &menu) const;

    const Desktop &desktop;
    QRect window;
    QRect canvas;
    QRect panel;
};
