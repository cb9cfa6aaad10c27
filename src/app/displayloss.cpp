#include "app/displayloss.h"

#include <QGuiApplication>
#include <QMetaObject>
#include <QString>
#include <QThread>

#include <atomic>
#include <chrono>
#include <condition_variable>
#include <cstdlib>
#include <mutex>
#include <utility>

namespace {

constexpr std::chrono::seconds longestWork(60);

std::atomic<DisplayLoss *> present = nullptr; // until its work begins
QtMessageHandler formerHandler = nullptr;

/// Whether there is no work any more that anybody should wait for.
class Outcome
{
public:
    void set(bool now)
    {
        {
            const std::lock_guard lock(guard);
            isOver = now;
        }
        changed.notify_all();
    }
    void wait()
    {
        std::unique_lock lock(guard);
        changed.wait_for(lock, longestWork, [this] { return isOver; });
    }

private:
    std::mutex guard;
    std::condition_variable changed;
    bool isOver = false;
};

/// Made before the work is announced, and so there until it is done.
Outcome &outcome()
{
    static Outcome one;
    return one;
}

} // namespace

DisplayLoss::DisplayLoss(std::function<void()> lastWork) : work(std::move(lastWork))
{
    outcome().set(false);
    present = this;
    std::atexit(act);
    watchesTheLog = QGuiApplication::platformName().startsWith(QLatin1String("wayland"));
    if (watchesTheLog)
        formerHandler = qInstallMessageHandler(handle);
}

DisplayLoss::~DisplayLoss()
{
    if (watchesTheLog)
        qInstallMessageHandler(formerHandler);
    present = nullptr;
    outcome().set(true);
}

/// Once only, also if the work itself says something or ends the program.
void DisplayLoss::act()
{
    DisplayLoss *loss = present;
    if (!loss || loss->home != std::this_thread::get_id())
        return;
    present = nullptr;
    loss->work();
    outcome().set(true);
}

/// Where Wayland ends Qt leaves by _exit(), which calls nobody, but it says so before: in whatever thread is
/// the first to notice.
void DisplayLoss::handle(QtMsgType type, const QMessageLogContext &context, const QString &text)
{
    if (type == QtWarningMsg && text.startsWith(QLatin1String("The Wayland connection "))) {
        act();
        // Elsewhere that was nothing, or it has begun where it belongs.
        if (QThread::currentThread() != qGuiApp->thread()) {
            QMetaObject::invokeMethod(qGuiApp, &DisplayLoss::act, Qt::QueuedConnection);
            outcome().wait();
        }
    }
    formerHandler(type, context, text);
}
