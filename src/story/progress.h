#pragma once

#include <QElapsedTimer>

#include <condition_variable>
#include <functional>
#include <mutex>
#include <thread>

class QIODevice;

/// Told what part of some work is done, from 0 to 1.
using PartTold = std::function<void(double part)>;

/// A bar on the terminal for work that takes more than a second. It is there then even if nothing is heard of
/// the work, as while a library lays out a long text or packs a picture; it only stands still. Where nobody
/// sits before the errors there is none.
class Progress
{
public:
    static constexpr qint64 usualPatience = 1000; // milliseconds

    /// The work begins now, and `errors` must outlive this object.
    Progress(QIODevice &errors, bool isSeen, qint64 patience = usualPatience);
    ~Progress();
    Progress(const Progress &) = delete;
    Progress &operator=(const Progress &) = delete;

    /// So much of everything is done, from 0 to 1.
    void reached(double part);
    /// For work that is only a part of everything, from here to there. This object must outlive it.
    PartTold between(double from, double to);
    /// Takes the bar away, so that something else can be written there, until more is reached. From now on
    /// nothing comes of itself: nobody writes while whoever called this does.
    void hide();
    /// The work begins only now: until here somebody was waited for. After hide().
    void beginAnew();

private:
    void show(int percent);
    void showUnasked();

    QIODevice &device;
    bool isSeen;
    qint64 patience;
    QElapsedTimer since;
    std::thread waiting; // for the end of the patience; none if nobody sees the bar
    std::condition_variable woken;
    std::mutex mutex; // while somebody waits: held by whoever writes, and for all below
    bool isOver = false;
    int heardPercent = 0;
    int shownPercent = -1; // -1 while there is no bar
};
