#include "app/failingmemory.h"
#include "app/guardedapplication.h"
#include "app/steadylog.h"
#include "support/testsupport.h"

#ifdef FABLEGRID_CAN_FAIL_MEMORY

#include <QElapsedTimer>
#include <QProcess>
#include <QTemporaryDir>
#include <QTimer>

#include <cstdio>
#include <new>
#include <optional>
#include <thread>

#include <unistd.h>

namespace {

constexpr int patience = 60000; // milliseconds, for the slowest of machines
constexpr int linesOfTheLog = 5000;
const QByteArray begin = "Here it begins.\n"; // after what the platform may have to say
const QByteArray words = "Out of memory, the program ends.\n";

[[noreturn]] void findNoMemory() { throw std::bad_alloc(); }

/// Finds no memory where nobody catches it.
struct Teller
{
    ~Teller() { findNoMemory(); }
};

void findNoMemoryElsewhere() { std::thread(findNoMemory).detach(); }

/// What another process does: it finds no memory, does its last work, and something is wrong with that as
/// well. The sign is a file that the last work makes.
int runOut(int &argc, char **argv, const QByteArray &what, const QString &sign)
{
    std::optional<SteadyLog> log;
    if (what == "unread")
        log.emplace();
    GuardedApplication application(argc, argv);
    std::optional<FailingMemory> refusing;
    application.setLastWork([&] {
        if (what == "meanwhile") {
            findNoMemoryElsewhere();
            usleep(300000); // for the other thread, which comes to nothing whenever it comes
        }
        if (what != "unread") // there it would wait
            std::fputs("work\n", stderr);
        QFile made(sign);
        made.open(QIODevice::WriteOnly);
        if (what == "words")
            refusing.emplace(1, 0);
        if (what == "work")
            findNoMemory();
        if (what == "work, uncaught")
            const Teller teller;
    });
    if (what == "unread") {
        for (int i = 0; i < linesOfTheLog; ++i)
            qInfo().noquote() << "Line" << i << QString(20, QLatin1Char('x'));
    } else {
        std::fputs(begin.constData(), stderr);
    }
    QTimer::singleShot(0, &application, [&] {
        if (what == "thread") {
            findNoMemoryElsewhere();
            return;
        }
        findNoMemory();
    });
    return QApplication::exec();
}

} // namespace

/// The memory ends, and with it the program; then something else goes wrong. Each case is a process of its
/// own.
class tst_GuardedApplication : public TestCase
{
    Q_OBJECT

private slots:
    void workComesFirst_data();
    void workComesFirst();
    void lastWordsAreRead();

private:
    QString sign() const { return folder.filePath(QString::fromLatin1(QTest::currentTestFunction())); }
    void start(QProcess &process, const QString &what) const
    {
        process.start(QCoreApplication::applicationFilePath(), {QStringLiteral("--run-out"), what, sign()});
    }

    QTemporaryDir folder;
};

void tst_GuardedApplication::workComesFirst_data()
{
    QTest::addColumn<QByteArray>("log");
    QTest::newRow("nothing") << "work\n" + words;
    QTest::newRow("words") << QByteArray("work\n"); // for which there was no memory
    QTest::newRow("work") << "work\n" + words;
    QTest::newRow("work, uncaught") << QByteArray("work\n"); // and again, and no more of anything
    QTest::newRow("meanwhile") << "work\n" + words;
    QTest::newRow("thread") << "work\n" + words; // in its own thread
}

void tst_GuardedApplication::workComesFirst()
{
    QFETCH(const QByteArray, log);
    QProcess process;
    start(process, QString::fromLatin1(QTest::currentDataTag()));
    QVERIFY(process.waitForFinished(patience));
    const QByteArray all = process.readAllStandardError();
    QCOMPARE(all.mid(all.indexOf(begin)), begin + log);
    QCOMPARE(process.exitStatus(), QProcess::NormalExit);
    QCOMPARE(process.exitCode(), EXIT_FAILURE);
}

// What waits for a slow reader goes before the program does.
void tst_GuardedApplication::lastWordsAreRead()
{
    QProcess process;
    start(process, QStringLiteral("unread"));
    QVERIFY(process.waitForStarted(patience));
    QElapsedTimer waited;
    waited.start();
    while (!QFile::exists(sign()) && !waited.hasExpired(patience))
        usleep(1000); // no event loop, which would read
    QVERIFY(process.waitForFinished(patience));
    const QByteArray log = process.readAllStandardError();
    QCOMPARE(log.count("Line "), linesOfTheLog);
    QVERIFY2(log.endsWith(words), log.right(100).constData());
}

int main(int argc, char *argv[])
{
    if (argc == 4 && qstrcmp(argv[1], "--run-out") == 0)
        return runOut(argc, argv, argv[2], QFile::decodeName(argv[3]));
    const QCoreApplication application(argc, argv);
    tst_GuardedApplication test;
    return QTest::qExec(&test, argc, argv);
}

#include "tst_guardedapplication.moc"

#else

#include <cstdio>

int main()
{
    std::puts("Skipped: the memory cannot be refused here");
    return 77;
}

#endif
