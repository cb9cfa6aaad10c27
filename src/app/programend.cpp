#include "app/programend.h"

#include <QGuiApplication>
#include <QSocketNotifier>

#include <array>
#include <utility>

#ifdef Q_OS_UNIX
#include <cerrno>
#include <csignal>
#include <fcntl.h>
#include <unistd.h>

namespace {

// All that a signal's handler can reach.
struct
{
    std::array<int, 3> numbers{SIGTERM, SIGINT, SIGHUP};
    std::array<bool, 3> isCaught{};
    int readEnd = -1; // of a pipe through which the event loop hears of it
    int writeEnd = -1;
} ending;

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
    endAsUsual(); // whoever asks twice does not want to wait
    const char byte = static_cast<char>(number);
    [[maybe_unused]] const ssize_t written = write(ending.writeEnd, &byte, 1);
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
        qGuiApp, &QGuiApplication::commitDataRequest, this, [this] { work(); }, Qt::DirectConnection);
    listen();
}
