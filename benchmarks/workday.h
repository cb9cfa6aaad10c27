#pragma once

#include "screenclock.h"
#include "walk/desktop.h"
#include "walk/editorwindow.h"
#include "walk/program.h"

#include <QMap>
#include <QStringList>

/// What a writer does in one sitting with a story of so many events, in a real window; each step is timed on
/// the screen.
class WorkDay
{
public:
    /// The desktop must outlive this object.
    WorkDay(const Desktop &desktopToUse, int eventCount);

    /// All of it from the program's start; false if something did not come out as it should.
    bool run();
    /// The steps in the order in which they were made.
    const QStringList &steps() const { return order; }
    /// Milliseconds of the longest part of each step: of a key, a move, a notch.
    const QMap<QString, double> &times() const { return longest; }
    /// Milliseconds for looking at the whole screen once.
    double costOfALook() { return clock.costOfALook(); }

    /// Writes a story of one chain in rows of varied prose, about 300 letters an event.
    static bool writeStory(const QString &path, int events);

private:
    bool open();
    bool goToTheMiddle();
    /// Makes an event that is in sight the current one and shows it at 100 % in the middle.
    bool bringAnEvent();
    bool writeInTheNode();
    bool writeInThePanel();
    bool dragANode();
    bool zoom();
    bool addAndUndo();
    bool mark();
    bool switchTabs();
    bool pasteOne();
    bool pasteTwenty();
    bool bandOverAll();
    bool save();

    void note(const QString &step, double milliseconds);
    void key(const QString &step, const QString &keys) { note(step, clock.key(keys)); }
    /// Types letters one by one.
    void type(const QString &step, const QString &letters);
    void click(const QString &step, QPoint place);
    /// Presses at one place and lets go at the other, in moves that are each timed.
    void drag(const QString &step, QPoint from, QPoint to, int moves);
    void turn(const QString &step, int notches);
    /// The event nearest to the canvas's middle, in a picture of the canvas at about 100 %.
    bool findMiddleEvent();
    /// The headers of the events that are seen whole, from far away as well.
    QList<QRect> headers() const;
    bool keep(const QString &name) const;

    const Desktop &desktop;
    int events;
    QString path;
    EditorWindow window{desktop};
    Program program;
    ScreenClock clock;
    EventBox middle;
    QStringList order;
    QMap<QString, double> longest;
};
