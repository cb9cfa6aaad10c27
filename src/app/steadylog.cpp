#include "app/steadylog.h"

#include <QtGlobal>

#ifdef Q_OS_UNIX
#include <QByteArray>
#include <QDeadlineTimer>
#include <QString>

#include <algorithm>
#include <cerrno>
#include <climits>
#include <memory>
#include <mutex>
#include <new>

#include <fcntl.h>
#include <poll.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <unistd.h>

namespace {

constexpr int patience = 1000; // milliseconds in all, at the end of the program

/// The standard error output, and what it has not taken yet.
class LogOutput
{
public:
    explicit LogOutput(mode_t kind);
    ~LogOutput();
    LogOutput(const LogOutput &) = delete;
    LogOutput &operator=(const LogOutput &) = delete;

    void put(const QByteArray &line);
    void lose() { ++lost; }
    void waitForTheReader();

private:
    void drain();
    ssize_t give() const;
    bool takes(int milliseconds) const;

    bool isSocket;
    std::size_t piece;  // what can be written at once, if anything can, without waiting
    int handle = -1;    // of our own, which never lets a writer wait; -1 if there can be none
    QByteArray waiting; // begins in the midst of a line if only a part of it was taken
    int lost = 0;       // lines since then
};

// A pipe that can be written to at all takes so many bytes; of a terminal no more is known than that it has
// room.
LogOutput::LogOutput(mode_t kind) : isSocket(S_ISSOCK(kind)), piece(S_ISFIFO(kind) ? PIPE_BUF : 1)
{
    // The handle that is there already is shared with other programs, which do not expect writes to fail.
    if (!isSocket)
        handle = open("/proc/self/fd/2", O_WRONLY | O_NONBLOCK | O_NOCTTY | O_CLOEXEC);
}

LogOutput::~LogOutput()
{
    if (handle >= 0)
        close(handle);
}

void LogOutput::put(const QByteArray &line)
{
    drain();
    if (lost > 0 || (!waiting.isEmpty() && waiting.size() + line.size() > SteadyLog::mostWaiting)) {
        lose();
        return;
    }
    waiting += line;
    drain();
}

void LogOutput::drain()
{
    while (!waiting.isEmpty() || lost > 0) {
        if (waiting.isEmpty()) {
            waiting = QByteArray::number(lost) + " lines of the log were lost\n";
            lost = 0;
        }
        const ssize_t count = give();
        if (count < 0 && errno == EINTR)
            continue;
        if (count < 0 && (errno == EAGAIN || errno == EWOULDBLOCK))
            return;
        if (count < 0)
            waiting.clear(); // the reader is gone
        else
            waiting.remove(0, count);
    }
}

ssize_t LogOutput::give() const
{
    const auto size = std::size_t(waiting.size());
    if (isSocket)
        return send(STDERR_FILENO, waiting.constData(), size, MSG_DONTWAIT | MSG_NOSIGNAL);
    if (handle >= 0)
        return write(handle, waiting.constData(), size);
    if (!takes(0)) {
        errno = EAGAIN;
        return -1;
    }
    return write(STDERR_FILENO, waiting.constData(), std::min(size, piece));
}

bool LogOutput::takes(int milliseconds) const
{
    pollfd log{handle >= 0 ? handle : STDERR_FILENO, POLLOUT, 0};
    return poll(&log, 1, milliseconds) > 0;
}

void LogOutput::waitForTheReader()
{
    const QDeadlineTimer end(patience);
    try {
        drain();
        while (!waiting.isEmpty() && !end.hasExpired() && takes(int(end.remainingTime())))
            drain();
    } catch (const std::bad_alloc &) {
        // What was lost stays untold.
    }
}

std::mutex lineAfterLine; // dialogs read folders in threads of their own

/// Null while nobody writes the log but Qt.
std::unique_ptr<LogOutput> &output()
{
    static std::unique_ptr<LogOutput> one;
    return one;
}

void handle(QtMsgType type, const QMessageLogContext &context, const QString &text)
{
    const std::lock_guard lock(lineAfterLine);
    if (!output())
        return;
    try {
        const QString line = qFormatLogMessage(type, context, text);
        if (line.isNull())
            return; // by the pattern in the environment
        QByteArray bytes = line.toLocal8Bit();
        bytes.truncate(qstrlen(bytes.constData())); // as Qt does
        output()->put(bytes + '\n');
    } catch (const std::bad_alloc &) {
        output()->lose();
    }
}

} // namespace

SteadyLog::SteadyLog()
{
    struct stat log = {};
    // A file on a disk takes what it gets.
    if (fstat(STDERR_FILENO, &log) != 0 || S_ISREG(log.st_mode))
        return;
    output() = std::make_unique<LogOutput>(log.st_mode);
    qInstallMessageHandler(handle);
}

SteadyLog::~SteadyLog()
{
    if (!output())
        return;
    qInstallMessageHandler(nullptr);
    const std::lock_guard lock(lineAfterLine);
    output()->waitForTheReader();
    output().reset();
}

void SteadyLog::waitForTheReader()
{
    const std::lock_guard lock(lineAfterLine);
    if (output())
        output()->waitForTheReader();
}

#else

SteadyLog::SteadyLog() = default;
SteadyLog::~SteadyLog() = default;
void SteadyLog::waitForTheReader() {}

#endif
