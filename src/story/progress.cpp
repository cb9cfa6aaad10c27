#include "story/progress.h"

#include "story/console.h"

#include <QIODevice>

#include <algorithm>

namespace {

constexpr qint64 patience = 1000; // milliseconds
constexpr int width = 40;

} // namespace

Progress::Progress(Console &console) : shown(console) { since.start(); }

Progress::~Progress()
{
    if (lastPercent != -1)
        shown.errors().write('\r' + QByteArray(width + 7, ' ') + '\r');
}

void Progress::reached(double part)
{
    const int percent = std::clamp(int(part * 100), 0, 100);
    if (!shown.errorsAreSeen() || since.elapsed() < patience || percent == lastPercent)
        return;
    lastPercent = percent;
    const int filled = percent * width / 100;
    shown.errors().write("\r[" + QByteArray(filled, '#') + QByteArray(width - filled, ' ') + "] " +
                         QByteArray::number(percent).rightJustified(3) + '%');
}
