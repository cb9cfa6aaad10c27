#include "app/guardedapplication.h"

#include "app/steadylog.h"

#include <QAbstractEventDispatcher>
#include <QDebug>
#include <QThread>

#include <chrono>
#include <cstdlib>
#include <exception>
#include <new>
#include <thread>
#include <utility>

namespace {
constexpr std::chrono::seconds longestLastWork(60);

template <typename Work>
void tryTo(const Work &work)
{
    try {
        work();
    } catch (const std::bad_alloc &) {
        // Not even for that.
    }
}

} // namespace

GuardedApplication::GuardedApplication(int &argc, char **argv) : QApplication(argc, argv)
{
    std::set_terminate(endWhatNobodyCatches);
    connect(QAbstractEventDispatcher::instance(), &QAbstractEventDispatcher::awake, this, [this] {
        if (isToEnd)
            end();
    });
}

GuardedApplication::~GuardedApplication() { std::set_terminate(std::abort); }

bool GuardedApplication::notify(QObject *receiver, QEvent *event)
{
    try {
        return QApplication::notify(receiver, event);
    } catch (const std::bad_alloc &) {
        end();
    }
}

/// A destructor lets nothing through, and some tell others what has changed.
void GuardedApplication::endWhatNobodyCatches()
{
    try {
        if (const std::exception_ptr thrown = std::current_exception())
            std::rethrow_exception(thrown);
    } catch (const std::bad_alloc &) {
        if (auto *application = dynamic_cast<GuardedApplication *>(instance()))
            application->end();
    } catch (...) {
        // A fault of the program's own ends it as ever.
    }
    std::abort();
}

void GuardedApplication::end()
{
    if (QThread::currentThread() != thread())
        endElsewhere();
    static bool isEnding = false;
    if (std::exchange(isEnding, true))
        std::_Exit(EXIT_FAILURE); // the last work itself may fail where nobody catches it
    spare.release();
    // The work comes before the words, and each has a try of its own.
    if (const auto work = std::exchange(lastWork, {}))
        tryTo(work);
    leave();
}

/// Windows are for their own thread alone: it is asked to end, for which no memory is needed. It may never do
/// so, for it may be waiting for this very thread.
void GuardedApplication::endElsewhere()
{
    isToEnd = true;
    if (QAbstractEventDispatcher *loop = QAbstractEventDispatcher::instance(thread()))
        loop->wakeUp();
    std::this_thread::sleep_for(longestLastWork);
    leave();
}

void GuardedApplication::leave()
{
    tryTo([] { qCritical() << "Out of memory, the program ends."; });
    SteadyLog::waitForTheReader();
    // Whatever was being done is in no state to be taken down in order.
    std::_Exit(EXIT_FAILURE);
}
