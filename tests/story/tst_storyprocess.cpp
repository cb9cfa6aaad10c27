#include "story/storyreader.h"
#include "story/storysupport.h"

#include <QElapsedTimer>
#include <QProcess>

#include <csignal>

#include <fcntl.h>
#include <pty.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <unistd.h>

// The command as a process: what terminals and pipes make of it.

class tst_StoryProcess : public QObject
{
    Q_OBJECT

private slots:
    void init() { failOnWarnings(); }

    void barIsShownOnATerminalOnly_data();
    void barIsShownOnATerminalOnly();
    void resultOnTheTerminalIsBesideNoBar();
    void closedPipeEndsItQuietly();
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
    QTest::newRow("terminal") << true;
    QTest::newRow("file") << false;
}

// The text comes through a pipe that is kept waiting, so that the work takes more than a second wherever this
// runs, and nothing is told of it until then.
void tst_StoryProcess::barIsShownOnATerminalOnly()
{
    QFETCH(const bool, isOnTerminal);
    const QString pipe = folder.path(isOnTerminal ? QStringLiteral("seen.md") : QStringLiteral("unseen.md"));
    QCOMPARE(mkfifo(qPrintable(pipe), 0600), 0);
    int ours = -1;
    int theirs = -1;
    QCOMPARE(openpty(&ours, &theirs, nullptr, nullptr, nullptr), 0);
    QCOMPARE(fcntl(ours, F_SETFL, O_NONBLOCK), 0);
    QProcess process;
    if (isOnTerminal)
        process.setChildProcessModifier([theirs] { dup2(theirs, STDERR_FILENO); });
    QElapsedTimer since;
    since.start();
    start(process, {QStringLiteral("import"), pipe, QStringLiteral("-o"), QStringLiteral("-")});
    const int writing = open(qPrintable(pipe), O_WRONLY | O_CLOEXEC); // comes back when it is read
    QVERIFY(writing != -1);
    QByteArray seen;
    const auto look = [ours, &seen] {
        QByteArray some(4096, '\0');
        const auto count = read(ours, some.data(), std::size_t(some.size()));
        seen += some.first(count < 0 ? 0 : count);
    };
    QTRY_VERIFY_WITH_TIMEOUT((look(), seen.contains("]   0%") || !isOnTerminal) && since.elapsed() > 1200,
                             20000);
    QCOMPARE(write(writing, "# A\n# B\n", 8), 8);
    close(writing);
    QVERIFY(process.waitForFinished());
    QCOMPARE(process.exitCode(), 0);
    look();
    close(theirs);
    close(ours);
    QCOMPARE(process.readAllStandardError(), QByteArray());
    QCOMPARE(seen.contains("] 100%"), isOnTerminal);
    QVERIFY(seen.isEmpty() || seen.endsWith("   \r"));
    StoryReader reader;
    QCOMPARE(reader.read(folder.put(QStringLiteral("made.scene"), process.readAllStandardOutput())),
             QString());
    QCOMPARE(reader.story().tabs[0].events.size(), std::size_t(2));
}

void tst_StoryProcess::resultOnTheTerminalIsBesideNoBar()
{
    int ours = -1;
    int theirs = -1;
    QCOMPARE(openpty(&ours, &theirs, nullptr, nullptr, nullptr), 0);
    const QString name = QString::fromLocal8Bit(ttyname(theirs));
    QFile terminal;
    QVERIFY(terminal.open(theirs, QIODevice::WriteOnly | QIODevice::Unbuffered));
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
    QCOMPARE(fcntl(ours, F_SETFL, O_NONBLOCK), 0);
    QByteArray seen;
    const auto look = [ours, &seen] {
        QByteArray some(4096, '\0');
        const auto count = read(ours, some.data(), std::size_t(some.size()));
        seen += some.first(count < 0 ? 0 : count);
    };
    QTRY_VERIFY((look(), seen.contains("## A")));
    close(theirs);
    close(ours);
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
