#include "app/programend.h"
#include "app/windowsupport.h"
#include "faults/savedocuments.h"
#include "support/testsupport.h"

#include <QDir>
#include <QProcess>
#include <QSessionManager>

#include <array>
#include <cerrno>
#include <csignal>
#include <cstdio>

#include <fcntl.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

extern char **environ;

namespace {

constexpr int endsTime = 60000; // milliseconds, for the slowest of machines

QByteArray story(bool changed)
{
    std::vector<Record> records = chainOfRecords(10000, 20);
    if (changed)
        records.front().pos = QPointF(7, 8);
    return documentBytes({records, {}});
}

// What the other processes do.

int editAndWait(const QString &file, bool stuck, bool hasNoTerminal)
{
    const Warnings quiet;
    for (const int number : {SIGTERM, SIGINT, SIGHUP})
        std::signal(number, SIG_DFL); // whatever this test itself was started with
    if (hasNoTerminal)
        std::signal(SIGHUP, SIG_IGN);
    MainWindow window;
    window.loadFrom(file);
    sceneOf(window, 0)->nodes().front()->setPos(7, 8);
    const ProgramEnd end([&] {
        if (stuck) {
            std::puts("stuck");
            std::fflush(stdout);
            sleep(600);
        }
        window.keepForTheEnd();
    });
    std::puts("ready");
    std::fflush(stdout);
    return QApplication::exec();
}

int talk(const QString &sign)
{
    for (int i = 0; i < 5000; ++i)
        qInfo() << "A line that is long enough to fill the pipe soon, number" << i;
    return writeFile(sign, "done") ? 0 : 1;
}

int saveIntoALimitedFile(const QString &file)
{
    const Warnings quiet;
    MainWindow window;
    addEvent(sceneOf(window, 0), QStringLiteral("Dawn"), QString(100, QLatin1Char('x')));
    rlimit limit{};
    getrlimit(RLIMIT_FSIZE, &limit);
    limit.rlim_cur = 16;
    setrlimit(RLIMIT_FSIZE, &limit);
    return window.saveTo(file) ? 1 : 0;
}

} // namespace

/// How the program is ended from outside, and what does not end it. Each case is a process of its own.
class tst_ProgramEnd : public QObject
{
    Q_OBJECT

private slots:
    void init()
    {
        failOnWarningsOfTheProgram();
        home = std::make_unique<PrivateHome>();
        QVERIFY(writeFile(path(QStringLiteral("story.scene")), story(false)));
    }
    void cleanup() { home.reset(); }

    void signalKeepsTheWorkAndEnds_data();
    void signalKeepsTheWorkAndEnds();
    void twoSignalsInARowAreOneRequest();
    void secondSignalEndsAtOnce();
    void ignoredSignalStaysIgnored();
    void endOfTheSessionKeepsTheWork();
    void logWhoseReaderIsGoneEndsNothing();
    void fileThatMayNotGrowEndsNothing();

private:
    QString path(const QString &name) const { return home->filePath(name); }
    QString kept() const { return path(QStringLiteral("Documents/Fablegrid/Kept")); }
    static QString line(QProcess &process)
    {
        return QTest::qWaitFor([&process] { return process.canReadLine(); }, endsTime)
                   ? QString::fromLatin1(process.readLine()).trimmed()
                   : QStringLiteral("nothing");
    }
    void start(QProcess &process, const QString &what) const
    {
        process.setStandardErrorFile(QProcess::nullDevice());
        process.start(QCoreApplication::applicationFilePath(), {what, path(QStringLiteral("story.scene"))});
        QCOMPARE(line(process), QStringLiteral("ready"));
    }
    static void send(const QProcess &process, int number)
    {
        // 0 would be everybody.
        if (const qint64 id = process.processId(); id > 0)
            ::kill(pid_t(id), number);
    }
    static bool hasEnded(QProcess &process)
    {
        return QTest::qWaitFor([&process] { return process.state() == QProcess::NotRunning; }, endsTime);
    }
    /// Starts a process that talks into a pipe, whose end for reading is returned.
    int startTalking(pid_t &process) const;

    std::unique_ptr<PrivateHome> home;
};

void tst_ProgramEnd::signalKeepsTheWorkAndEnds_data()
{
    QTest::addColumn<int>("number");
    QTest::newRow("SIGTERM") << SIGTERM;
    QTest::newRow("SIGINT") << SIGINT;
    QTest::newRow("SIGHUP") << SIGHUP;
}

void tst_ProgramEnd::signalKeepsTheWorkAndEnds()
{
    QFETCH(const int, number);
    QProcess process;
    start(process, QStringLiteral("--edit"));
    send(process, number);
    QVERIFY(hasEnded(process));
    QCOMPARE(process.exitStatus(), QProcess::CrashExit);
    QCOMPARE(process.exitCode(), number);
    const QStringList files = filesBelow(kept());
    QCOMPARE(files.size(), 1);
    QVERIFY2(files.front().endsWith(QStringLiteral("_end.scene")), qPrintable(files.front()));
    QVERIFY(readFile(kept() + QLatin1Char('/') + files.front()) == story(true));
    QVERIFY(readFile(path(QStringLiteral("story.scene"))) == story(false));
}

void tst_ProgramEnd::twoSignalsInARowAreOneRequest()
{
    QProcess process;
    start(process, QStringLiteral("--edit"));
    send(process, SIGTERM);
    send(process, SIGHUP);
    QVERIFY(hasEnded(process));
    QVERIFY(process.exitCode() == SIGTERM || process.exitCode() == SIGHUP);
    QCOMPARE(filesBelow(kept()).size(), 1);
}

void tst_ProgramEnd::secondSignalEndsAtOnce()
{
    QProcess process;
    start(process, QStringLiteral("--stuck"));
    send(process, SIGTERM);
    QCOMPARE(line(process), QStringLiteral("stuck"));
    QTest::qWait(500); // sooner it would be part of the same request
    send(process, SIGINT);
    QVERIFY(hasEnded(process));
    QCOMPARE(process.exitCode(), SIGINT);
}

void tst_ProgramEnd::ignoredSignalStaysIgnored()
{
    QProcess process;
    start(process, QStringLiteral("--without-terminal"));
    send(process, SIGHUP);
    send(process, SIGTERM);
    QVERIFY(hasEnded(process));
    QCOMPARE(process.exitCode(), SIGTERM);
}

void tst_ProgramEnd::endOfTheSessionKeepsTheWork()
{
    MainWindow window;
    addEvent(sceneOf(window, 0), QStringLiteral("Dawn"));
    {
        const ProgramEnd end([&window] { window.keepForTheEnd(); });
        // Nobody but the application can make a session manager, and nobody looks at this one.
        QObject manager;
        QMetaObject::invokeMethod(qGuiApp, "commitDataRequest",
                                  Q_ARG(QSessionManager &, reinterpret_cast<QSessionManager &>(manager)));
    }
    QCOMPARE(filesBelow(kept()).size(), 1);
    flushDeferredDeletes();
}

int tst_ProgramEnd::startTalking(pid_t &process) const
{
    std::array<int, 2> ends{-1, -1};
    if (pipe2(ends.data(), O_CLOEXEC) != 0)
        return -1;
    posix_spawn_file_actions_t actions;
    posix_spawn_file_actions_init(&actions);
    posix_spawn_file_actions_adddup2(&actions, ends[1], STDERR_FILENO);
    QByteArray program = QFile::encodeName(QCoreApplication::applicationFilePath());
    QByteArray what("--talk");
    QByteArray sign = QFile::encodeName(path(QStringLiteral("sign")));
    const std::array<char *, 4> arguments{program.data(), what.data(), sign.data(), nullptr};
    const int error =
        posix_spawn(&process, program.constData(), &actions, nullptr, arguments.data(), environ);
    posix_spawn_file_actions_destroy(&actions);
    close(ends[1]);
    return error == 0 ? ends[0] : -1;
}

void tst_ProgramEnd::logWhoseReaderIsGoneEndsNothing()
{
    pid_t process = 0;
    close(startTalking(process));
    int status = -1;
    while (waitpid(process, &status, 0) < 0 && errno == EINTR) // by the end of the child itself
        continue;
    QVERIFY(WIFEXITED(status));
    QCOMPARE(WEXITSTATUS(status), 0);
    QVERIFY(QFile::exists(path(QStringLiteral("sign"))));
}

void tst_ProgramEnd::fileThatMayNotGrowEndsNothing()
{
    QProcess process;
    process.start(QCoreApplication::applicationFilePath(),
                  {QStringLiteral("--limited"), path(QStringLiteral("story.scene"))});
    QVERIFY(hasEnded(process));
    QCOMPARE(process.exitStatus(), QProcess::NormalExit);
    QCOMPARE(process.exitCode(), 0);
    QVERIFY(readFile(path(QStringLiteral("story.scene"))) == story(false));
}

int main(int argc, char *argv[])
{
    const bool isOneToBeEnded = argc == 3 && qstrncmp(argv[1], "--", 2) == 0;
    if (isOneToBeEnded) {
        ProgramEnd::outliveFailedWrites();
    }
    const QApplication application(argc, argv);
    if (isOneToBeEnded) {
        const QByteArray what = argv[1];
        const QString file = QFile::decodeName(argv[2]);
        if (what == "--talk")
            return talk(file);
        if (what == "--limited")
            return saveIntoALimitedFile(file);
        return editAndWait(file, what == "--stuck", what == "--without-terminal");
    }
    tst_ProgramEnd test;
    return QTest::qExec(&test, argc, argv);
}

#include "tst_programend.moc"
