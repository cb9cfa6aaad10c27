#include "app/programend.h"

#include "app/steadylog.h"

#include <QEvent>
#include <QGuiApplication>
#include <QSocketNotifier>

#include <array>
#include <atomic>
#include <utility>

#ifdef Q_OS_UNIX
#include <cerrno>
#include <csignal>
#include <cstdint>
#include <ctime>

#include <fcntl.h>
#include <unistd.h>

namespace {

// All that a signal's handler can reach.
struct
{
    std::array<int, 3> numbers{SIGTERM, SIGINT, SIGHUP};
    std::array<bool, 3> isCaught{};
    // Milliseconds; 0 for none. A second signal may be handled by another thread, while the first one still
    // is.
    std::atomic<std::int64_t> notedAt = 0;
    static_assert(std::atomic<std::int64_t>::is_always_lock_free);
    int readEnd = -1; // of a pipe through which the event loop hears of it
    int writeEnd = -1;
} ending;

/// A terminal that closes and the end of a login send two signals in a row, which are one request.
constexpr std::int64_t oneRequest = 250; // milliseconds

/// Since the machine was started, and never 0.
std::int64_t milliseconds()
{
    timespec now{};
    clock_gettime(CLOCK_MONOTONIC, &now);
    return 1 + std::int64_t(now.tv_sec) * 1000 + now.tv_nsec / 1000000;
}

void endAsUsual()
{
    for (std::size_t i = 0; i < ending.numbers.size(); ++i) {
        if (ending.isCaught[i])
            std::signal(ending.numbers[i], SIG_DFL);
    }
}

extern "C" void noteSignal(int number)
{
    const int before = errno;
    const std::int64_t now = milliseconds();
    std::int64_t first = 0;
    if (ending.notedAt.compare_exchange_strong(first, now)) {
        const char byte = static_cast<char>(number);
        [[maybe_unused]] const ssize_t written = write(ending.writeEnd, &byte, 1);
    } else if (now - first > oneRequest) {
        // Whoever asks twice does not want to wait.
        std::signal(number, SIG_DFL);
        std::raise(number); // comes when this function is left
    }
    errno = before;
}

} // namespace

void ProgramEnd::listen()
{
    std::array<int, 2> ends{-1, -1};
    if (pipe(ends.data()) != 0)
        return;
    for (const int each : ends)
        fcntl(each, F_SETFD, FD_CLOEXEC);
    ending.readEnd = ends[0];
    ending.writeEnd = ends[1];
    ending.notedAt = 0;
    notifier = new QSocketNotifier(ending.readEnd, QSocketNotifier::Read, this);
    connect(notifier, &QSocketNotifier::activated, this, [this] { end(); });
    for (std::size_t i = 0; i < ending.numbers.size(); ++i) {
        struct sigaction former = {};
        sigaction(ending.numbers[i], nullptr, &former);
        ending.isCaught[i] = former.sa_handler == SIG_DFL;
        if (!ending.isCaught[i])
            continue;
        struct sigaction caught = {};
        caught.sa_handler = noteSignal;
        caught.sa_flags = SA_RESTART;
        sigemptyset(&caught.sa_mask);
        for (const int other : ending.numbers)
            sigaddset(&caught.sa_mask, other);
        sigaction(ending.numbers[i], &caught, nullptr);
    }
}

void ProgramEnd::end()
{
    char number = 0;
    if (read(ending.readEnd, &number, 1) != 1)
        return;
    notifier->setEnabled(false);
    work();
    endAsUsual();
    SteadyLog::waitForTheReader();
    std::raise(number);
}

ProgramEnd::~ProgramEnd()
{
    endAsUsual();
    delete notifier;
    close(ending.readEnd);
    close(ending.writeEnd);
}

void ProgramEnd::outliveFailedWrites()
{
    std::signal(SIGPIPE, SIG_IGN);
    std::signal(SIGXFSZ, SIG_IGN);
    std::signal(SIGTTOU, SIG_IGN);
}

#else

void ProgramEnd::listen() {}
void ProgramEnd::end() {}
ProgramEnd::~ProgramEnd() = default;
void ProgramEnd::outliveFailedWrites() {}

#endif

ProgramEnd::ProgramEnd(std::function<void()> lastWork) : work(std::move(lastWork))
{
    connect(
        qGuiApp, &QGuiApplication::commitDataRequest, this,
        [this] {
            sessionEnds = true;
            work();
        },
        Qt::DirectConnection);
    qGuiApp->installEventFilter(this);
    listen();
}

/// The system tells the application to quit, and that would close the windows one by one, with a question.
bool ProgramEnd::eventFilter(QObject *watched, QEvent *event)
{
    if (!sessionEnds || watched != qGuiApp || event->type() != QEvent::Quit)
        return QObject::eventFilter(watched, event);
    work(); // something may have changed since
    QCoreApplication::exit();
    return true;
}
