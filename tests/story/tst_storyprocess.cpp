#include "story/pty.h"
#include "story/storyreader.h"
#include "story/storysupport.h"

#include <QElapsedTimer>
#include <QProcess>

#include <csignal>

#include <fcntl.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <unistd.h>

// The command as a process: what terminals and pipes make of it.

class tst_StoryProcess : public TestCase
{
    Q_OBJECT

private slots:
    void barIsShownOnATerminalOnly_data();
    void barIsShownOnATerminalOnly();
    void typedTextIsBesideNoBar();
    void signalEndsTheLineOfTheBar_data();
    void signalEndsTheLineOfTheBar();
    void whatIsSavedMeanwhileStays();
    void signalLeavesTheResultWhole();
    void resultOnTheTerminalIsBesideNoBar();
    void closedPipeEndsItQuietly();
    void closedOutputIsTold();
    void missingMemoryIsOneLine();
    void standardInputIsImported();
    void noDisplayIsNeeded();
    void damageIsHeardWhateverTheLogIsToHold();

private:
    static void start(QProcess &process, const QStringList &arguments)
    {
        process.start(QStringLiteral(FABLEGRID_STORY_PROGRAM), arguments);
        QVERIFY(process.waitForStarted());
    }
    StoryFolder folder;
    QString scene = folder.put(QStringLiteral("branched.scene"), sceneBytes({branchedTab()}));
};

void tst_StoryProcess::barIsShownOnATerminalOnly_data()
{
    QTest::addColumn<bool>("isOnTerminal");
    QTest::addColumn<bool>("isPaged");
    QTest::newRow("terminal") << true << false;
    QTest::newRow("file") << false << false;
    QTest::newRow("terminal that a program pages") << true << true;
}

// The text comes through a pipe that is kept waiting, so that the work takes more than a second wherever this
// runs, and nothing is told of it until then.
void tst_StoryProcess::barIsShownOnATerminalOnly()
{
    QFETCH(const bool, isOnTerminal);
    QFETCH(const bool, isPaged);
    const bool isShown = isOnTerminal && !isPaged;
    const StoryFolder place;
    const QString pipe = place.path(QStringLiteral("waits.md"));
    const QString made = place.path(QStringLiteral("made.scene"));
    QCOMPARE(mkfifo(qPrintable(pipe), 0600), 0);
    Pty terminal;
    QProcess process;
    if (!isPaged)
        process.setStandardOutputFile(made);
    if (isOnTerminal)
        process.setChildProcessModifier([&terminal] { dup2(terminal.theirs, STDERR_FILENO); });
    QElapsedTimer since;
    since.start();
    start(process, {QStringLiteral("import"), pipe, QStringLiteral("-o"), QStringLiteral("-")});
    const int writing = open(qPrintable(pipe), O_WRONLY | O_CLOEXEC); // comes back when it is read
    QVERIFY(writing != -1);
    QTRY_VERIFY_WITH_TIMEOUT((terminal.seen().contains("]   0%") || !isShown) && since.elapsed() > 1200,
                             20000);
    QCOMPARE(write(writing, "# A\n# B\n", 8), 8);
    close(writing);
    QVERIFY(process.waitForFinished());
    QCOMPARE(process.exitCode(), 0);
    QCOMPARE(process.readAllStandardError(), QByteArray());
    QCOMPARE(terminal.seen().contains("] 100%"), isShown);
    QVERIFY(terminal.seen().isEmpty() || terminal.seen().endsWith("   \r"));
    if (isPaged)
        place.put(QStringLiteral("made.scene"), process.readAllStandardOutput());
    StoryReader reader;
    QCOMPARE(reader.read(made), QString());
    QCOMPARE(reader.story().tabs[0].events.size(), std::size_t(2));
}

void tst_StoryProcess::typedTextIsBesideNoBar()
{
    Pty terminal;
    const QString made = folder.path(QStringLiteral("typed.scene"));
    QProcess process;
    process.setInputChannelMode(QProcess::ForwardedInputChannel);
    process.setChildProcessModifier([&terminal] {
        dup2(terminal.theirs, STDIN_FILENO);
        dup2(terminal.theirs, STDERR_FILENO);
    });
    process.setStandardOutputFile(made);
    QElapsedTimer since;
    since.start();
    start(process, {QStringLiteral("import"), QStringLiteral("-"), QStringLiteral("--format"),
                    QStringLiteral("md"), QStringLiteral("-o"), QStringLiteral("-")});
    QTRY_VERIFY_WITH_TIMEOUT(since.elapsed() > 1500, 20000);
    QCOMPARE(terminal.seen(), QByteArray());
    QCOMPARE(write(terminal.ours, "# A\n\x04", 5), 5); // the end of a text that is typed
    QVERIFY(process.waitForFinished());
    QCOMPARE(process.exitCode(), 0);
    QVERIFY2(terminal.seen().startsWith("# A\r\n"), terminal.seen().constData());
    QVERIFY(!terminal.seen().contains('%'));
    StoryReader reader;
    QCOMPARE(reader.read(made), QString());
    QCOMPARE(reader.story().tabs[0].events.size(), std::size_t(1));
}

void tst_StoryProcess::signalEndsTheLineOfTheBar_data()
{
    QTest::addColumn<int>("signal");
    QTest::newRow("interrupt") << SIGINT;
    QTest::newRow("terminate") << SIGTERM;
    QTest::newRow("hang up") << SIGHUP;
}

void tst_StoryProcess::signalEndsTheLineOfTheBar()
{
    QFETCH(const int, signal);
    const StoryFolder place;
    const QString pipe = place.path(QStringLiteral("waits.md"));
    QCOMPARE(mkfifo(qPrintable(pipe), 0600), 0);
    Pty terminal;
    QProcess process;
    process.setChildProcessModifier([&terminal, signal] {
        std::signal(signal, SIG_DFL); // whatever this test was started with
        dup2(terminal.theirs, STDERR_FILENO);
    });
    process.setStandardOutputFile(QProcess::nullDevice());
    start(process,
          {QStringLiteral("import"), pipe, QStringLiteral("-o"), place.path(QStringLiteral("a.scene"))});
    const int writing = open(qPrintable(pipe), O_WRONLY | O_CLOEXEC);
    QVERIFY(writing != -1);
    QTRY_VERIFY_WITH_TIMEOUT(terminal.seen().contains("]   0%"), 20000);
    QVERIFY(process.processId() > 0);
    QCOMPARE(kill(pid_t(process.processId()), signal), 0);
    QVERIFY(process.waitForFinished());
    close(writing);
    QCOMPARE(process.exitStatus(), QProcess::CrashExit); // a shell says 128 and the number of the signal
    QCOMPARE(process.exitCode(), signal);
    QVERIFY2(terminal.seen().endsWith("%\r\n"), terminal.seen().constData());
    QCOMPARE(place.names(), QStringList());
}

// The text comes through a pipe that is read after the file.
void tst_StoryProcess::whatIsSavedMeanwhileStays()
{
    const StoryFolder place;
    const QString pipe = place.path(QStringLiteral("waits.md"));
    QCOMPARE(mkfifo(qPrintable(pipe), 0600), 0);
    const QByteArray before = sceneBytes({branchedTab()});
    const QString file = place.put(QStringLiteral("novel.scene"), before);
    QProcess process;
    start(process, {QStringLiteral("import"), pipe, QStringLiteral("--into"), file});
    const int writing = open(qPrintable(pipe), O_WRONLY | O_CLOEXEC);
    QVERIFY(writing != -1);
    const QByteArray saved = sceneBytes({branchedTab(), branchedTab()});
    QVERIFY(writeFile(file, saved));
    QCOMPARE(write(writing, "# A\n", 4), 4);
    close(writing);
    QVERIFY(process.waitForFinished());
    QCOMPARE(process.exitCode(), 2);
    QCOMPARE(
        QString::fromUtf8(process.readAllStandardError()),
        QStringLiteral("fablegrid-story: %1: was changed by somebody else meanwhile, and stays as it is\n")
            .arg(file));
    QCOMPARE(readFile(file).toHex(), saved.toHex());
    QCOMPARE(place.names(), QStringList{QStringLiteral("novel.scene")});
}

// Its name leaves no room for a temporary file beside it, so that it is written in place.
void tst_StoryProcess::signalLeavesTheResultWhole()
{
    constexpr int longestName = 255;
    StoryTab tab = branchedTab();
    for (StoryEvent &event : tab.events)
        event.description = QString(8'000'000, QLatin1Char('x'));
    const QString large = folder.put(QStringLiteral("long.scene"), sceneBytes({tab}));
    const StoryFolder place;
    const QString name = QString(longestName - 4, QLatin1Char('n')) + QStringLiteral(".txt");
    const QString path = place.path(name);
    const CommandResult whole =
        runCommand({QStringLiteral("export"), large, QStringLiteral("-o"), QStringLiteral("-"),
                    QStringLiteral("--format"), QStringLiteral("txt")});
    bool isEndedBySignal = false;
    for (int attempt = 0; attempt < 10 && !isEndedBySignal; ++attempt) { // or this test was the slower one
        QProcess process;
        process.setChildProcessModifier([] { std::signal(SIGTERM, SIG_DFL); });
        start(process,
              {QStringLiteral("export"), large, QStringLiteral("-o"), path, QStringLiteral("--force")});
        while (!QFile::exists(path) && !process.waitForFinished(0)) {
        }
        process.terminate();
        QVERIFY(process.state() == QProcess::NotRunning || process.waitForFinished());
        isEndedBySignal = process.exitStatus() == QProcess::CrashExit && process.exitCode() == SIGTERM;
        QVERIFY(isEndedBySignal || process.exitCode() == 0);
        QCOMPARE(place.names(), QStringList(name));
        QCOMPARE(QFileInfo(path).size(), whole.output.size());
        QVERIFY(readFile(path) == whole.output);
        QVERIFY(QFile::remove(path));
    }
    QVERIFY(isEndedBySignal);
}

void tst_StoryProcess::resultOnTheTerminalIsBesideNoBar()
{
    Pty pty;
    const QString name = QString::fromLocal8Bit(ttyname(pty.theirs));
    QFile terminal;
    QVERIFY(terminal.open(pty.theirs, QIODevice::WriteOnly | QIODevice::Unbuffered));
    QBuffer output;
    QVERIFY(output.open(QIODevice::WriteOnly));
    int code = -1;
    {
        Console console(output, terminal, true, 0);
        code = StoryProgram::run({QStringLiteral("export"), scene, QStringLiteral("-o"), name,
                                  QStringLiteral("--format"), QStringLiteral("md")},
                                 console);
    }
    QCOMPARE(code, 0);
    // What was written comes in pieces.
    QTRY_VERIFY(pty.seen().contains("## A"));
    const QByteArray seen = pty.seen();
    const QByteArray behindBar = seen.mid(seen.lastIndexOf('%') + 1);
    QVERIFY2(behindBar.startsWith("\r     "), seen.toPercentEncoding(" []#%"));
}

// Whoever starts it may have told it to ignore the signal, so the program sets that right.
void tst_StoryProcess::closedPipeEndsItQuietly()
{
    StoryTab tab = branchedTab();
    for (StoryEvent &event : tab.events)
        event.description = QString(20000, QLatin1Char('x'));
    const QString large = folder.put(QStringLiteral("large.scene"), sceneBytes({tab}));
    QProcess process;
    int ends[2];
    QCOMPARE(pipe2(ends, O_CLOEXEC), 0);
    close(ends[0]); // nobody reads
    process.setChildProcessModifier([&ends] {
        std::signal(SIGPIPE, SIG_IGN);
        dup2(ends[1], STDOUT_FILENO);
    });
    start(process, {QStringLiteral("export"), large, QStringLiteral("-o"), QStringLiteral("-"),
                    QStringLiteral("--format"), QStringLiteral("md")});
    close(ends[1]);
    QVERIFY(process.waitForFinished());
    QCOMPARE(process.exitStatus(), QProcess::CrashExit); // by the signal, as other filters end
    QCOMPARE(process.exitCode(), SIGPIPE);
    QCOMPARE(process.readAllStandardError(), QByteArray());
}

// What the program opens first must not get the number of the stream, and with it what is written there.
void tst_StoryProcess::closedOutputIsTold()
{
    QProcess process;
    process.setChildProcessModifier([] { close(STDOUT_FILENO); });
    start(process, {QStringLiteral("show"), scene});
    QVERIFY(process.waitForFinished());
    QCOMPARE(process.readAllStandardError(),
             QByteArray("fablegrid-story: cannot write to the standard output: Bad file descriptor\n"));
    QCOMPARE(process.exitCode(), 2);
}

void tst_StoryProcess::missingMemoryIsOneLine()
{
#ifdef FABLEGRID_SANITIZED
    QSKIP("The sanitizer takes more addresses than the limit leaves.");
#endif
    constexpr qint64 gigabyte = qint64(1) << 30;
    const QString huge = folder.put(QStringLiteral("huge.md"), {});
    QVERIFY(QFile::resize(huge, 4 * gigabyte)); // without a block on the disk
    QProcess process;
    process.setChildProcessModifier([] {
        const rlimit most{2 * gigabyte, 2 * gigabyte};
        setrlimit(RLIMIT_AS, &most);
        const rlimit noCore{0, 0};
        setrlimit(RLIMIT_CORE, &noCore);
    });
    start(process, {QStringLiteral("import"), huge, QStringLiteral("-o"), QStringLiteral("-")});
    QVERIFY(process.waitForFinished());
    QCOMPARE(process.readAllStandardError(), QByteArray("fablegrid-story: the memory does not suffice\n"));
    QCOMPARE(process.exitStatus(), QProcess::NormalExit);
    QCOMPARE(process.exitCode(), 2);
}

void tst_StoryProcess::standardInputIsImported()
{
    QProcess process;
    start(process, {QStringLiteral("import"), QStringLiteral("-"), QStringLiteral("--format"),
                    QStringLiteral("md"), QStringLiteral("-o"), QStringLiteral("-")});
    process.write("# A\n# B\n");
    process.closeWriteChannel();
    QVERIFY(process.waitForFinished());
    QCOMPARE(process.readAllStandardError(), QByteArray());
    QCOMPARE(process.exitCode(), 0);
    StoryReader reader;
    QCOMPARE(reader.read(folder.put(QStringLiteral("piped.scene"), process.readAllStandardOutput())),
             QString());
    QCOMPARE(reader.story().tabs[0].events.size(), std::size_t(2));
}

void tst_StoryProcess::noDisplayIsNeeded()
{
    QProcess process;
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    environment.remove(QStringLiteral("DISPLAY"));
    environment.remove(QStringLiteral("WAYLAND_DISPLAY"));
    environment.insert(QStringLiteral("QT_QPA_PLATFORM"), QStringLiteral("xcb"));
    process.setProcessEnvironment(environment);
    start(process, {QStringLiteral("show"), scene});
    QVERIFY(process.waitForFinished());
    QCOMPARE(process.exitCode(), 0);
    QCOMPARE(process.readAllStandardError(), QByteArray());
    QVERIFY(process.readAllStandardOutput().contains("events: 10"));
}

void tst_StoryProcess::damageIsHeardWhateverTheLogIsToHold()
{
    Record unfed{QStringLiteral("unfed"), QPointF(), 0};
    unfed.upstream = 77;
    const QString damaged = folder.put(QStringLiteral("damaged.scene"), documentBytes({{unfed}}));
    QProcess process;
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    environment.insert(QStringLiteral("QT_LOGGING_RULES"), QStringLiteral("*=false"));
    process.setProcessEnvironment(environment);
    start(process, {QStringLiteral("check"), damaged});
    QVERIFY(process.waitForFinished());
    QCOMPARE(process.exitCode(), 1);
}

QTEST_MAIN(tst_StoryProcess)
#include "tst_storyprocess.moc"
