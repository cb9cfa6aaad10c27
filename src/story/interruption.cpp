#include "story/interruption.h"

#include <QtGlobal>

#ifdef Q_OS_UNIX

#include <atomic>
#include <csignal>

#include <unistd.h>

namespace {

std::atomic<bool> isBarShown{false};
std::atomic<bool> isDelayed{false};
std::atomic<int> waiting{0}; // the signal; 0 is none
static_assert(std::atomic<bool>::is_always_lock_free && std::atomic<int>::is_always_lock_free);

/// As if nobody had listened: whoever waits for the program learns which signal ended it.
void endBy(int signal)
{
    if (isBarShown.exchange(false)) {
        [[maybe_unused]] const auto written = write(STDERR_FILENO, "\n", 1);
    }
    std::signal(signal, SIG_DFL);
    std::raise(signal);
}

/// In any thread, between any two instructions.
void hear(int signal)
{
    if (isDelayed)
        waiting = signal;
    else
        endBy(signal);
}

} // namespace

void Interruption::listen()
{
    for (const int signal : {SIGINT, SIGTERM, SIGHUP}) {
        struct sigaction before
        {};
        if (sigaction(signal, nullptr, &before) != 0 || before.sa_handler == SIG_IGN)
            continue;
        struct sigaction action
        {};
        action.sa_handler = &hear;
        action.sa_flags = SA_RESTART;
        sigaction(signal, &action, nullptr);
    }
}

void Interruption::setBarShown(bool isShown) { isBarShown = isShown; }

Interruption::Delay::Delay() { isDelayed = true; }

Interruption::Delay::~Delay()
{
    isDelayed = false;
    if (const int signal = waiting.exchange(0); signal != 0)
        endBy(signal);
}

#else

void Interruption::listen() {}
void Interruption::setBarShown(bool /*isShown*/) {}
Interruption::Delay::Delay() = default;
Interruption::Delay::~Delay() = default;

#endif
