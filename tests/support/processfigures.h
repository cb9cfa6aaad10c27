#pragma once

#include <QByteArray>
#include <QFile>

#include <sys/resource.h>

// What this process has used so far, as the system counts it.

inline double processorSeconds()
{
    rusage usage{};
    getrusage(RUSAGE_SELF, &usage);
    const auto seconds = [](const timeval &time) { return double(time.tv_sec) + double(time.tv_usec) / 1e6; };
    return seconds(usage.ru_utime) + seconds(usage.ru_stime);
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

/// From now on the peak, "VmHWM:", counts anew.
inline void forgetPeakMemory()
{
    QFile refs(QStringLiteral("/proc/self/clear_refs"));
    if (refs.open(QIODevice::WriteOnly))
        refs.write("5");
}
