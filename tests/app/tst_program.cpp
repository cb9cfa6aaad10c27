#include "app/endtest.h"

#include <array>
#include <csignal>

#include <fcntl.h>
#include <pty.h>
#include <sys/ioctl.h>
#include <sys/resource.h>
#include <termios.h>
#include <unistd.h>

namespace {

/// A pipe that the program is to write its log to.
class LogPipe
{
public:
    LogPipe()
    {
        if (pipe2(ends.data(), O_CLOEXEC) != 0)
            ends = {-1, -1};
    }
    ~LogPipe()
    {
        closeReader();
        close(ends[1]);
    }
    LogPipe(const LogPipe &) = delete;
    LogPipe &operator=(const LogPipe &) = delete;

    int writer() const { return ends[1]; }
    void closeReader()
    {
        if (ends[0] >= 0)
            close(ends[0]);
        ends[0] = -1;
    }

private:
    std::array<int, 2> ends{-1, -1};
};

/// A terminal that lets nobody write to it but the job in its foreground.
class Terminal
{
public:
    Terminal()
    {
        if (openpty(&outer, &inner, nullptr, nullptr, nullptr) != 0)
            return;
        for (const int end : {outer, inner})
            fcntl(end, F_SETFD, FD_CLOEXEC);
        termios settings{};
        tcgetattr(inner, &settings);
        settings.c_lflag |= TOSTOP;
        tcsetattr(inner, TCSANOW, &settings);
    }
    ~Terminal()
    {
        close(outer);
        close(inner);
    }
    Terminal(const Terminal &) = delete;
    Terminal &operator=(const Terminal &) = delete;

    bool isOpen() const { return outer >= 0; }
    bool hasOutput() const
    {
        int bytes = 0;
        return ioctl(outer, FIONREAD, &bytes) == 0 && bytes > 0;
    }
    /// Makes it the terminal of this process and of what it starts, and what their log goes to.
    void control() const
    {
        setsid();
        ioctl(inner, TIOCSCTTY, 0);
        dup2(inner, STDERR_FILENO);
    }

private:
    int outer = -1;
    int inner = -1;
};

} // namespace

/// What the program's main function ties together: each case starts the program itself, with an event that is
/// not saved, and sees what only one of these objects gives.
class tst_Program : public EndTest
{
    Q_OBJECT

private slots:
    void initTestCase()
    {
        // The program inherits what this test was started with.
        for (const int number : {SIGTERM, SIGPIPE, SIGTTOU, SIGXFSZ})
            std::signal(number, SIG_DFL);
    }

    void signalKeepsTheWork();
    void exitFromWithinKeepsTheWork();
    void lackOfMemoryKeepsTheWork();
    void usualEndKeepsNothing();
    void logWhoseReaderIsGoneEndsNothing();
    void logThatNobodyReadsHaltsNothing();
    void fileThatMayNotGrowEndsNothing();
    void endOfTheSessionKeepsTheWorkAndAsksNothing();
    void terminalOfAnotherProgramStopsNothing();

private:
    /// Starts it, and waits until it has done what it is told. What the new process does first comes then; it
    /// has four kilobytes for its calls, which is little for a sanitized one. `through` is a command that
    /// starts what follows it.
    void start(QProcess &process, const QString &what, const std::function<void()> &first = {},
               const QStringList &through = {}) const
    {
        QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
        environment.insert(QStringLiteral("QT_PLUGIN_PATH"), QStringLiteral(FABLEGRID_HANDS));
        environment.insert(QStringLiteral("QT_QPA_GENERIC_PLUGINS"), QStringLiteral("hand:") + what);
        if (what == QLatin1String("exit")) // what stays where it was left then is no leak
            environment.insert(QStringLiteral("ASAN_OPTIONS"), QStringLiteral("detect_leaks=0"));
        process.setProcessEnvironment(environment);
        if (first)
            process.setChildProcessModifier(first);
        // Ends with this test, however that does.
        const QStringList bound{QStringLiteral("setpriv"), QStringLiteral("--pdeathsig"),
                                QStringLiteral("KILL")};
        process.start(bound.front(), bound.mid(1) + through + (through.isEmpty() ? QStringList() : bound) +
                                         QStringList{QStringLiteral(FABLEGRID_PROGRAM)});
        QCOMPARE(line(process), QStringLiteral("ready"));
    }
    void checkEndsByTheSignal(QProcess &process, int copies) const
    {
        process.terminate();
        QVERIFY(hasEnded(process));
        QCOMPARE(process.exitStatus(), QProcess::CrashExit);
        QCOMPARE(process.exitCode(), SIGTERM);
        checkKept(copies);
    }
};

void tst_Program::signalKeepsTheWork()
{
    QProcess process;
    start(process, QStringLiteral("wait"));
    if (!QTest::currentTestFailed())
        checkEndsByTheSignal(process, 1);
}

// As Qt does when there is no display any more.
void tst_Program::exitFromWithinKeepsTheWork()
{
    QProcess process;
    start(process, QStringLiteral("exit"));
    checkCode(process, 3);
    checkKept(1);
}

void tst_Program::lackOfMemoryKeepsTheWork()
{
    QProcess process;
    start(process, QStringLiteral("memory"));
    checkCode(process, EXIT_FAILURE);
    QVERIFY(process.readAllStandardError().endsWith("Out of memory, the program ends.\n"));
    checkKept(1);
}

// What is to be kept then has been, as the window was closed.
void tst_Program::usualEndKeepsNothing()
{
    QProcess process;
    start(process, QStringLiteral("quit"));
    checkCode(process, 0);
    checkKept(0);
}

void tst_Program::logWhoseReaderIsGoneEndsNothing()
{
    LogPipe log;
    log.closeReader();
    QProcess process;
    start(process, QStringLiteral("wait"), [&log] { dup2(log.writer(), STDERR_FILENO); });
    if (!QTest::currentTestFailed())
        checkEndsByTheSignal(process, 1);
}

void tst_Program::logThatNobodyReadsHaltsNothing()
{
    const LogPipe log;
    QProcess process;
    start(process, QStringLiteral("talk"), [&log] { dup2(log.writer(), STDERR_FILENO); });
    if (!QTest::currentTestFailed())
        checkEndsByTheSignal(process, 1);
}

void tst_Program::fileThatMayNotGrowEndsNothing()
{
    QProcess process;
    start(process, QStringLiteral("wait"), [] {
        constexpr rlimit none{16, 16};
        setrlimit(RLIMIT_FSIZE, &none);
    });
    if (!QTest::currentTestFailed())
        checkEndsByTheSignal(process, 0);
}

// No session manager is asked for: that Qt hears of one is its own affair.
void tst_Program::endOfTheSessionKeepsTheWorkAndAsksNothing()
{
    QProcess process;
    start(process, QStringLiteral("session"));
    checkCode(process, 0);
    checkKept(1);
}

// A terminal may forbid its background jobs to write to it, and stops those that do.
void tst_Program::terminalOfAnotherProgramStopsNothing()
{
    const Terminal terminal;
    QVERIFY(terminal.isOpen());
    QProcess process;
    const QString job = QStringLiteral("set -m; \"$@\" & read line; kill -TERM $!; wait $!");
    start(process, QStringLiteral("wait"), [&terminal] { terminal.control(); },
          {QStringLiteral("sh"), QStringLiteral("-c"), job, QStringLiteral("sh")});
    if (QTest::currentTestFailed())
        return;
    process.write("\n");
    QVERIFY(hasEnded(process));
    QVERIFY(terminal.hasOutput());
    QCOMPARE(process.exitStatus(), QProcess::NormalExit);
    QCOMPARE(process.exitCode(), 128 + SIGTERM); // as a shell tells it
    checkKept(1);
}

QTEST_GUILESS_MAIN(tst_Program)
#include "tst_program.moc"
