#include "story/progress.h"

#include "story/interruption.h"

#include <QIODevice>

#include <algorithm>
#include <chrono>
#include <new>
#include <system_error>

namespace {

constexpr int width = 40;

} // namespace

Progress::Progress(QIODevice &errors, bool errorsAreSeen, qint64 milliseconds)
    : device(errors), isSeen(errorsAreSeen), patience(milliseconds)
{
    beginAnew();
}

Progress::~Progress() { hide(); }

void Progress::beginAnew()
{
    since.start();
    if (!isSeen)
        return;
    isOver = false;
    try {
        waiting = std::thread([this] { showUnasked(); });
    } catch (const std::system_error &) {
        // There can be no more threads: the bar comes when something is heard.
    }
}

void Progress::reached(double part)
{
    if (!isSeen)
        return;
    const int percent = std::clamp(int(part * 100), 0, 100);
    const std::scoped_lock lock(mutex);
    heardPercent = percent;
    if (percent != shownPercent && since.elapsed() >= patience)
        show(percent);
}

PartTold Progress::between(double from, double to)
{
    return [this, from, to](double part) { reached(from + part * (to - from)); };
}

void Progress::hide()
{
    if (waiting.joinable()) {
        {
            const std::scoped_lock lock(mutex);
            isOver = true;
        }
        woken.notify_one();
        waiting.join();
    }
    if (shownPercent != -1)
        device.write('\r' + QByteArray(width + 7, ' ') + '\r');
    shownPercent = -1;
    Interruption::setBarShown(false);
}

void Progress::show(int percent)
{
    shownPercent = percent;
    const int filled = percent * width / 100;
    device.write("\r[" + QByteArray(filled, '#') + QByteArray(width - filled, ' ') + "] " +
                 QByteArray::number(percent).rightJustified(3) + '%');
    Interruption::setBarShown(true);
}

/// Once only: when the patience is over, whatever is reached is shown at once.
void Progress::showUnasked()
{
    std::unique_lock lock(mutex);
    const bool hasEnded =
        woken.wait_for(lock, std::chrono::milliseconds(patience), [this] { return isOver; });
    try {
        if (!hasEnded && shownPercent == -1)
            show(heardPercent);
    } catch (const std::bad_alloc &) {
        // Then there is no bar: an exception must not leave a thread.
    }
}
