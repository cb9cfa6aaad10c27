#pragma once

#include "app/windowsupport.h"

#include <QFileInfo>

#include <cstddef>

#if defined(FABLEGRID_SANITIZED)
// The compiler brings the function, but not everywhere the header that declares it.
extern "C" std::size_t __sanitizer_get_current_allocated_bytes();
#elif defined(__GLIBC__)
#include <malloc.h>
#include <unistd.h>
#endif

// What tests of many windows and many rounds share.

/// Also lets pass what the offscreen platform says of itself whenever a menu comes up.
inline void failOnWarningsButOfMenus()
{
    QTest::failOnWarning(QRegularExpression(
        QStringLiteral("^(?!%1$|This plugin does not support (raise|grabbing the keyboard))")
            .arg(QRegularExpression::escape(platformLine))));
}

/// To be called before the program's start: saves wait for the disk, but not for one in memory.
inline void keepFilesInMemory()
{
    if (QFileInfo(QStringLiteral("/dev/shm")).isWritable() && !qEnvironmentVariableIsSet("TMPDIR"))
        qputenv("TMPDIR", "/dev/shm");
}

/// The bytes that are allocated now, 0 where nobody counts them.
inline qint64 allocatedBytes()
{
#if defined(FABLEGRID_SANITIZED)
    return qint64(__sanitizer_get_current_allocated_bytes());
#elif defined(__GLIBC__)
    const struct mallinfo2 info = mallinfo2();
    return qint64(info.uordblks + info.hblkhd);
#else
    return 0;
#endif
}

/// To be called first of all: the allocator keeps some of what is freed for later, ever more in the first
/// thousands of rounds, and counts it as allocated. That can only be turned off before a program starts, so
/// it starts again.
inline void countAllocationsExactly([[maybe_unused]] char *arguments[])
{
#if defined(__GLIBC__) && !defined(FABLEGRID_SANITIZED)
    constexpr char restarted[] = "FABLEGRID_TEST_RESTARTED";
    if (qEnvironmentVariableIsSet(restarted))
        return;
    qputenv(restarted, "1");
    qputenv("GLIBC_TUNABLES", "glibc.malloc.tcache_count=0");
    execv("/proc/self/exe", arguments);
#endif
}
