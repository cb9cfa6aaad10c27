#include "measure.h"

#include <QElapsedTimer>
#include <QFile>
#include <QFont>
#include <QTextDocument>

#include <algorithm>

#ifdef Q_OS_LINUX
#include <malloc.h>
#include <unistd.h>
#endif

#if __has_include(<valgrind/callgrind.h>)
#include <valgrind/callgrind.h>
#define COUNTS_INSTRUCTIONS
#endif

double Measure::milliseconds(const std::function<void()> &work)
{
    QElapsedTimer timer;
    timer.start();
    work();
    return double(timer.nsecsElapsed()) / 1e6;
}

void Measure::count([[maybe_unused]] const QString &name, const std::function<void()> &step)
{
#ifdef COUNTS_INSTRUCTIONS
    if (RUNNING_ON_VALGRIND) {
        CALLGRIND_START_INSTRUMENTATION;
        CALLGRIND_ZERO_STATS;
        step();
        CALLGRIND_DUMP_STATS_AT(qPrintable(name));
        CALLGRIND_STOP_INSTRUMENTATION;
        return;
    }
#endif
    step();
}

double Measure::median(std::vector<double> values)
{
    std::sort(values.begin(), values.end());
    const std::size_t middle = values.size() / 2;
    if (values.empty())
        return 0;
    return values.size() % 2 == 1 ? values[middle] : (values[middle - 1] + values[middle]) / 2;
}

double Measure::unit()
{
    constexpr int rounds = 400;
    QFont font(QStringLiteral("Titillium Web"), 14);
    font.setLetterSpacing(QFont::AbsoluteSpacing, 1.4);
    QTextDocument document;
    document.setUndoRedoEnabled(false);
    document.setDefaultFont(font);
    document.setTextWidth(400);
    const QString words = QStringLiteral("lamp tide salt rope door ").repeated(12).trimmed();
    std::vector<double> times;
    for (int i = 0; i < rounds; ++i) {
        const QString text = words + QString::number(i);
        times.push_back(milliseconds([&document, &text] {
            document.setPlainText(text);
            document.size();
        }));
    }
    return median(times);
}

void Measure::giveMemoryBack()
{
#ifdef __GLIBC__
    malloc_trim(0);
#endif
}

double Measure::residentKiB()
{
#ifdef Q_OS_LINUX
    QFile file(QStringLiteral("/proc/self/statm"));
    if (file.open(QIODevice::ReadOnly))
        return file.readAll().split(' ').value(1).toDouble() * double(sysconf(_SC_PAGESIZE)) / 1024;
#endif
    return 0;
}
