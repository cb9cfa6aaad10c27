#pragma once

#include <QByteArray>
#include <QFile>
#include <QString>

#ifdef Q_OS_UNIX
#include <sys/resource.h>
#endif

// What this process has used so far, as the system counts it; nothing where it does not tell.

inline double processorSeconds()
{
#ifdef Q_OS_UNIX
    rusage usage{};
    getrusage(RUSAGE_SELF, &usage);
    const auto seconds = [](const timeval &time) { return double(time.tv_sec) + double(time.tv_usec) / 1e6; };
    return seconds(usage.ru_utime) + seconds(usage.ru_stime);
#else
    return 0;
#endif
}

/// A line of the process's own status, such as "VmRSS:", in megabytes.
inline double statusMegabytes(const QByteArray &name)
{
    QFile status(QStringLiteral("/proc/self/status"));
    if (!status.open(QIODevice::ReadOnly))
        return 0;
    const QList<QByteArray> lines = status.readAll().split('\n');
    for (const QByteArray &line : lines) {
        if (line.startsWith(name))
            return line.mid(name.size()).trimmed().split(' ').front().toDouble() / 1024;
    }
    return 0;
}

/// From now on the peak, "VmHWM:", counts anew; false where the system does not let us.
inline bool forgetPeakMemory()
{
    QFile refs(QStringLiteral("/proc/self/clear_refs"));
    return refs.open(QIODevice::WriteOnly | QIODevice::Unbuffered) && refs.write("5") == 1;
}

/// What something took: the processor's time, so that a busy machine is no fault, and the most memory at
/// once.
struct Cost
{
    double seconds = 0;
    double megabytes = 0; // beyond what there was before
};

template <typename Action>
Cost costOf(const Action &action)
{
    // An older peak would count as well; then what is left in the end has to do.
    const char *most = forgetPeakMemory() ? "VmHWM:" : "VmRSS:";
    const double before = statusMegabytes("VmRSS:");
    const double start = processorSeconds();
    action();
    return {processorSeconds() - start, statusMegabytes(most) - before};
}

/// What any file may take to be opened. Says what is wrong with that cost, or nothing.
inline QString faultOfOpening(const Cost &cost)
{
    constexpr double mostSeconds = 5.0;
    constexpr double mostMegabytes = 500.0;
    if (cost.seconds <= mostSeconds && cost.megabytes <= mostMegabytes)
        return {};
    return QStringLiteral("opening takes %1 s and %2 MB").arg(cost.seconds).arg(cost.megabytes);
}
