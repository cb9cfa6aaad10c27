#include "app/endtest.h"
#include "app/failingmemory.h"
#include "app/programend.h"
#include "app/steadylog.h"

#include <QSessionManager>

#include <array>
#include <cerrno>
#include <csignal>
#include <cstdio>
#include <optional>

#include <fcntl.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

extern char **environ;

namespace {

QByteArray storyThatIs(bool changed)
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

constexpr int linesOfTheLog = 5000;

/// More than a pipe takes, and then a save and an autosave.
int talk(const QString &file, int letters, bool goesOn)
{
    for (int i = 0; i < linesOfTheLog; ++i)
        qInfo().noquote() << "Line" << i << QString(letters, QLatin1Char('x'));
    MainWindow window;
    window.autosave();
    if (!window.saveTo(file))
        return 1;
    while (goesOn) {
        qInfo() << "Still here";
        usleep(10000);
    }
    return 0;
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

/// Fills the pipe of the log, and waits for the end.
int talkAndWait(const QString &sign)
{
    const ProgramEnd end([&sign] { writeFile(sign, {}); });
    for (int i = 0; i < linesOfTheLog; ++i)
        qInfo().noquote() << "Line" << i << QString(20, QLatin1Char('x'));
    return QApplication::exec();
}

#ifdef FABLEGRID_CAN_FAIL_MEMORY
int forgetALine()
{
    const QString line(1 << 20, QLatin1Char('x'));
    {
        const FailingMemory none(1 << 20, 0);
        qt_message_output(QtInfoMsg, QMessageLogContext(), line);
    }
    qInfo() << "Still here";
    return 0;
}
#endif

} // namespace

/// How the program is ended from outside, and what does not end it. Each case is a process of its own.
class tst_ProgramEnd : public EndTest
{
    Q_OBJECT

private slots:
    void signalKeepsTheWorkAndEnds_data();
    void signalKeepsTheWorkAndEnds();
    void twoSignalsInARowAreOneRequest();
    void secondSignalEndsAtOnce();
    void ignoredSignalStaysIgnored();
    void endOfTheSessionKeepsTheWorkAndAsksNothing_data();
    void endOfTheSessionKeepsTheWorkAndAsksNothing();
    void logWhoseReaderIsGoneEndsNothing();
    void logThatNobodyReadsHaltsNothing_data();
    void logThatNobodyReadsHaltsNothing();
    void lineWithoutMemoryIsTheOnlyOneLost();
    void signalLetsTheLogBeRead();
    void slowReaderDelaysTheEndOnceOnly();
    void terminalOfAnotherProgramStopsNothing();
    void fileThatMayNotGrowEndsNothing();

private:
    void prepare() override { QVERIFY(writeFile(story(), storyThatIs(false))); }
    void start(QProcess &process, const QString &what) const { startAgain(process, {what, story()}); }
    static void send(const QProcess &process, int number)
    {
        // 0 would be everybody.
        if (const qint64 id = process.processId(); id > 0)
            ::kill(pid_t(id), number);
    }
    /// The signal that has ended it, 0 for none.
    static int endOf(QProcess &process)
    {
        return hasEnded(process) && process.exitStatus() == QProcess::CrashExit ? process.exitCode() : 0;
    }
    int endBy(const std::vector<int> &numbers, const QString &what) const
    {
        QProcess process;
        start(process, what);
        for (const int number : numbers)
            send(process, number);
        return endOf(process);
    }
    /// Starts a process that talks into a pipe, whose end for reading is returned, and then makes that file.
    int startTalking(pid_t &process, QByteArray what) const;
    QString sign() const { return path(QStringLiteral("sign")); }
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
    QCOMPARE(endBy({number}, QStringLiteral("--edit")), number);
    checkKept(1, storyThatIs(true));
    QVERIFY(readFile(story()) == storyThatIs(false));
}

void tst_ProgramEnd::twoSignalsInARowAreOneRequest()
{
    const int ended = endBy({SIGTERM, SIGHUP}, QStringLiteral("--edit"));
    QVERIFY2(ended == SIGTERM || ended == SIGHUP, qPrintable(QString::number(ended)));
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
    QCOMPARE(endOf(process), SIGINT);
}

void tst_ProgramEnd::ignoredSignalStaysIgnored()
{
    QCOMPARE(endBy({SIGHUP, SIGTERM}, QStringLiteral("--without-terminal")), SIGTERM);
}

void tst_ProgramEnd::endOfTheSessionKeepsTheWorkAndAsksNothing_data()
{
    QTest::addColumn<int>("questions"); // that are open by then
    QTest::newRow("nothing is open") << 0;
    QTest::newRow("a tab asks whether to save") << 1;
}

void tst_ProgramEnd::endOfTheSessionKeepsTheWorkAndAsksNothing()
{
    QFETCH(const int, questions);
    makeWindow();
    window->addNodeGraphTab();
    window->show();
    addEvent(sceneOf(*window, 0), QStringLiteral("Dawn"));
    const ProgramEnd end([this] { window->keepForTheEnd(); });
    const auto endSession = [] {
        // Nobody but the application can make a session manager, and nobody looks at this one.
        QObject manager;
        QMetaObject::invokeMethod(qGuiApp, "commitDataRequest",
                                  Q_ARG(QSessionManager &, reinterpret_cast<QSessionManager &>(manager)));
        QEvent quit(QEvent::Quit);
        QCoreApplication::sendEvent(qGuiApp, &quit);
    };
    int asked = 0;
    QPointer<QWidget> known;
    QTimer looking;
    connect(&looking, &QTimer::timeout, this, [&] {
        QWidget *question = QApplication::activeModalWidget();
        if (!question || question == known)
            return;
        known = question;
        if (++asked == questions)
            endSession();
        else
            question->close();
    });
    looking.start(5);
    QTimer::singleShot(0, window.get(), [&] { questions > 0 ? window->closeTab(1) : endSession(); });
    QCOMPARE(QApplication::exec(), 0);
    looking.stop();
    QCOMPARE(asked, questions);
    QVERIFY(window->isVisible());
    QCOMPARE(tabsOf(*window)->count(), 2);
    checkKept(1);
}

int tst_ProgramEnd::startTalking(pid_t &process, QByteArray what) const
{
    std::array<int, 2> ends{-1, -1};
    if (pipe2(ends.data(), O_CLOEXEC) != 0)
        return -1;
    posix_spawn_file_actions_t actions;
    posix_spawn_file_actions_init(&actions);
    posix_spawn_file_actions_adddup2(&actions, ends[1], STDERR_FILENO);
    QByteArray program = QFile::encodeName(QCoreApplication::applicationFilePath());
    QByteArray file = QFile::encodeName(sign());
    const std::array<char *, 4> arguments{program.data(), what.data(), file.data(), nullptr};
    const int error =
        posix_spawn(&process, program.constData(), &actions, nullptr, arguments.data(), environ);
    posix_spawn_file_actions_destroy(&actions);
    close(ends[1]);
    return error == 0 ? ends[0] : -1;
}

void tst_ProgramEnd::logWhoseReaderIsGoneEndsNothing()
{
    pid_t process = 0;
    close(startTalking(process, "--talk"));
    int status = -1;
    while (waitpid(process, &status, 0) < 0 && errno == EINTR) // by the end of the child itself
        continue;
    QVERIFY(WIFEXITED(status));
    QCOMPARE(WEXITSTATUS(status), 0);
    QVERIFY(QFile::exists(sign()));
}

void tst_ProgramEnd::logThatNobodyReadsHaltsNothing_data()
{
    QTest::addColumn<QByteArray>("what");
    QTest::addColumn<bool>("allIsKept");
    QTest::newRow("what fits into the memory") << QByteArray("--talk-on") << true;
    QTest::newRow("more than that") << QByteArray("--shout-on") << false;
}

void tst_ProgramEnd::logThatNobodyReadsHaltsNothing()
{
    QFETCH(const QByteArray, what);
    QFETCH(const bool, allIsKept);
    pid_t process = 0;
    const int unread = startTalking(process, what);
    const bool isSaved = QTest::qWaitFor([this] { return QFile::exists(sign()); }, patience);
    FILE *log = fdopen(unread, "r");
    std::vector<char> buffer(10000);
    int lines = 0;
    int lost = 0;
    bool inOrder = true;
    while (isSaved && std::fgets(buffer.data(), int(buffer.size()), log)) {
        const QByteArray line = QByteArray(buffer.data()).trimmed();
        const QByteArrayList words = line.split(' ');
        if (line == "Still here")
            break; // somebody reads again
        if (line.startsWith("Line "))
            inOrder = inOrder && words.value(1).toInt() == lines++ && lost == 0;
        else if (line.endsWith(" lines of the log were lost"))
            lost = words.front().toInt();
    }
    ::kill(process, SIGKILL);
    waitpid(process, nullptr, 0);
    std::fclose(log);
    QVERIFY(isSaved);
    QVERIFY(inOrder);
    QCOMPARE(filesBelow(path(QStringLiteral("Documents/Fablegrid/Autosavedir"))).size(), 1);
    if (allIsKept) {
        QCOMPARE(lines, linesOfTheLog);
        QCOMPARE(lost, 0);
    } else {
        QVERIFY(lines > 0 && lines < linesOfTheLog);
        QVERIFY2(lines + lost >= linesOfTheLog, qPrintable(QString::number(lost)));
    }
}

void tst_ProgramEnd::fileThatMayNotGrowEndsNothing()
{
    QProcess process;
    process.start(QCoreApplication::applicationFilePath(), {QStringLiteral("--limited"), story()});
    checkCode(process, 0);
    QVERIFY(readFile(story()) == storyThatIs(false));
}

void tst_ProgramEnd::lineWithoutMemoryIsTheOnlyOneLost()
{
#ifdef FABLEGRID_CAN_FAIL_MEMORY
    QProcess process;
    process.start(QCoreApplication::applicationFilePath(), {QStringLiteral("--forget"), sign()});
    QVERIFY(hasEnded(process));
    const QByteArray log = process.readAllStandardError();
    QVERIFY2(log.endsWith("1 lines of the log were lost\nStill here\n"), log.constData());
#else
    QSKIP("Memory cannot be refused here");
#endif
}

void tst_ProgramEnd::signalLetsTheLogBeRead()
{
    pid_t process = 0;
    const int unread = startTalking(process, "--talk-and-wait");
    FILE *log = fdopen(unread, "r");
    std::vector<char> buffer(1000);
    int lines = 0;
    while (std::fgets(buffer.data(), int(buffer.size()), log)) {
        if (qstrncmp(buffer.data(), "Line ", 5) != 0 || lines++ > 0)
            continue;
        ::kill(process, SIGTERM); // by now it listens to signals
        QVERIFY(QTest::qWaitFor([this] { return QFile::exists(sign()); }, patience));
    }
    std::fclose(log);
    int status = -1;
    waitpid(process, &status, 0);
    QVERIFY(WIFSIGNALED(status));
    QCOMPARE(WTERMSIG(status), SIGTERM);
    QCOMPARE(lines, linesOfTheLog);
}

// A reader that takes a little now and then could otherwise hold up the end for minutes.
void tst_ProgramEnd::slowReaderDelaysTheEndOnceOnly()
{
    pid_t process = 0;
    const int unread = startTalking(process, "--shout");
    QVERIFY(QTest::qWaitFor([this] { return QFile::exists(sign()); }, patience));
    std::array<char, 4096> some{};
    qint64 taken = 0;
    int status = -1;
    while (waitpid(process, &status, WNOHANG) == 0 && taken < SteadyLog::mostWaiting / 4) {
        usleep(10000);
        taken += read(unread, some.data(), some.size());
    }
    close(unread);
    if (status == -1)
        waitpid(process, &status, 0);
    QVERIFY(WIFEXITED(status));
    QVERIFY2(taken < SteadyLog::mostWaiting / 4, "it has waited until everything was read");
}

// One of a shell's other jobs, when the terminal lets only the one in front write.
void tst_ProgramEnd::terminalOfAnotherProgramStopsNothing()
{
    QProcess process;
    process.start(QCoreApplication::applicationFilePath(), {QStringLiteral("--background"), sign()});
    QVERIFY(hasEnded(process));
    QCOMPARE(process.exitCode(), 0);
}

int main(int argc, char *argv[])
{
    const bool isOneToBeEnded = argc == 3 && qstrncmp(argv[1], "--", 2) == 0;
    std::optional<SteadyLog> log;
    if (isOneToBeEnded) {
        ProgramEnd::outliveFailedWrites();
        log.emplace();
    }
    const QApplication application(argc, argv);
    if (isOneToBeEnded) {
        const QByteArray what = argv[1];
        const QString file = QFile::decodeName(argv[2]);
        if (what == "--talk")
            return talk(file, 20, false);
        if (what == "--talk-on")
            return talk(file, 20, true);
        if (what == "--shout-on")
            return talk(file, 5000, true);
        if (what == "--shout")
            return talk(file, 5000, false);
        if (what == "--talk-and-wait")
            return talkAndWait(file);
        if (what == "--background")
            return std::signal(SIGTTOU, SIG_DFL) == SIG_IGN ? 0 : 1;
#ifdef FABLEGRID_CAN_FAIL_MEMORY
        if (what == "--forget")
            return forgetALine();
#endif
        if (what == "--limited")
            return saveIntoALimitedFile(file);
        return editAndWait(file, what == "--stuck", what == "--without-terminal");
    }
    tst_ProgramEnd test;
    return QTest::qExec(&test, argc, argv);
}

#include "tst_programend.moc"
