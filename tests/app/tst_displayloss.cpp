#include "app/displayloss.h"
#include "app/endtest.h"

#include <QStandardPaths>

#include <cstdio>
#include <thread>

#include <sys/prctl.h>

namespace {

QByteArray storyThatIs(bool changed)
{
    std::vector<Record> records = chainOfRecords(3, 20);
    if (changed)
        records.front().pos = QPointF(7, 8);
    return documentBytes({records});
}

/// What another process does: it opens that file, moves an event, and ends or waits to be ended.
int edit(const QString &file, const QByteArray &how)
{
    MainWindow window;
    window.loadFrom(file);
    sceneOf(window, 0)->nodes().front()->setPos(7, 8);
    window.show();
    const DisplayLoss loss([&window] { window.keepWithoutWords(); });
    QTimer::singleShot(0, &window, [&window, &how] {
        std::puts("ready");
        std::fflush(stdout);
        if (how == "autosaved")
            window.autosave(); // what that makes of static objects goes before the last work
        if (how == "exits" || how == "autosaved")
            std::exit(1);
        if (how == "thread")
            std::thread([] { std::exit(1); }).join();
        if (how == "ends")
            QCoreApplication::exit(1);
    });
    return QApplication::exec();
}

/// A process that ends with this one, whatever becomes of it.
void tie(QProcess &process)
{
    process.setChildProcessModifier([] { prctl(PR_SET_PDEATHSIG, SIGKILL); });
}

} // namespace

/// The display is gone, and with it the program. Each case is a process of its own.
class tst_DisplayLoss : public EndTest
{
    Q_OBJECT

private slots:
    void workIsKeptWhenTheDisplayEnds_data();
    void workIsKeptWhenTheDisplayEnds();
    void onlyAnExitAmidTheWorkKeepsIt_data();
    void onlyAnExitAmidTheWorkKeepsIt();
    void copyGoesWhereTheUserHasHisDocuments();

private:
    void prepare() override { QVERIFY(writeFile(story(), storyThatIs(false))); }
    void start(QProcess &process, const QProcessEnvironment &environment, const QString &how) const
    {
        tie(process);
        process.setProcessEnvironment(environment);
        startAgain(process, {QStringLiteral("--edit"), story(), how});
    }
    void checkOnlyKept(int copies) const
    {
        QVERIFY(readFile(story()) == storyThatIs(false));
        checkKept(copies, storyThatIs(true));
    }
};

void tst_DisplayLoss::workIsKeptWhenTheDisplayEnds_data()
{
    QTest::addColumn<QString>("server");
    QTest::addColumn<QStringList>("arguments");
    QTest::addColumn<QString>("platform");
    QTest::newRow("X") << QStringLiteral("Xvfb")
                       << QStringList{QStringLiteral("-displayfd"), QStringLiteral("1"),
                                      QStringLiteral("-nolisten"), QStringLiteral("tcp")}
                       << QStringLiteral("xcb");
    QTest::newRow("Wayland") << QStringLiteral("weston")
                             << QStringList{QStringLiteral("--backend=headless-backend.so"),
                                            QStringLiteral("--socket=story"), QStringLiteral("--idle-time=0"),
                                            QStringLiteral("--no-config")}
                             << QStringLiteral("wayland");
}

// Qt ends the program from within the event loop, by exit() or _exit(), and nobody is asked.
void tst_DisplayLoss::workIsKeptWhenTheDisplayEnds()
{
    QFETCH(const QString, server);
    QFETCH(const QStringList, arguments);
    QFETCH(const QString, platform);
    if (QStandardPaths::findExecutable(server).isEmpty())
        QSKIP(qPrintable(server + QStringLiteral(" is not installed")));
    const QString runtime = path(QStringLiteral("runtime"));
    QVERIFY(QDir().mkpath(runtime));
    QVERIFY(QFile::setPermissions(runtime, QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner));
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    environment.insert(QStringLiteral("XDG_RUNTIME_DIR"), runtime);
    environment.insert(QStringLiteral("QT_QPA_PLATFORM"), platform);
    QProcess display;
    tie(display);
    display.setProcessEnvironment(environment);
    display.setStandardErrorFile(QProcess::nullDevice());
    display.start(server, arguments);
    if (platform == QStringLiteral("xcb")) {
        QVERIFY(QTest::qWaitFor([&display] { return display.canReadLine(); }, patience));
        const QString number = QString::fromLatin1(display.readLine()).trimmed();
        environment.insert(QStringLiteral("DISPLAY"), QLatin1Char(':') + number);
    } else {
        environment.insert(QStringLiteral("WAYLAND_DISPLAY"), QStringLiteral("story"));
        const QString socket = runtime + QStringLiteral("/story");
        QVERIFY(QTest::qWaitFor([&socket] { return QFile::exists(socket); }, patience));
    }
    QProcess process;
    start(process, environment, QStringLiteral("waits"));
    if (QTest::currentTestFailed())
        return;
    display.kill();
    QVERIFY(hasEnded(process));
    QCOMPARE(process.exitStatus(), QProcess::NormalExit);
    QVERIFY(process.exitCode() != 0);
    checkOnlyKept(1);
    display.waitForFinished();
}

void tst_DisplayLoss::onlyAnExitAmidTheWorkKeepsIt_data()
{
    QTest::addColumn<QString>("how");
    QTest::addColumn<int>("copies");
    QTest::newRow("an exit from the event loop") << QStringLiteral("exits") << 1;
    QTest::newRow("an exit in another thread") << QStringLiteral("thread") << 0;
    QTest::newRow("the end of the program") << QStringLiteral("ends") << 0;
}

void tst_DisplayLoss::onlyAnExitAmidTheWorkKeepsIt()
{
    QFETCH(const QString, how);
    QFETCH(const int, copies);
    QProcess process;
    start(process, QProcessEnvironment::systemEnvironment(), how);
    QVERIFY(hasEnded(process));
    checkOnlyKept(copies);
}

// Where that is stands in a file, and an older copy is looked at: nothing may be needed for that which is
// gone by then.
void tst_DisplayLoss::copyGoesWhereTheUserHasHisDocuments()
{
    QVERIFY(QDir().mkpath(path(QStringLiteral("config"))));
    QVERIFY(writeFile(path(QStringLiteral("config/user-dirs.dirs")), "XDG_DOCUMENTS_DIR=\"$HOME/Papers\"\n"));
    const QString folder = path(QStringLiteral("Papers/Fablegrid/Kept"));
    QVERIFY(QDir().mkpath(folder));
    const QString same = folder + QStringLiteral("/20200101_120000_000_tab.scene");
    const QStringList others{QStringLiteral("20200102_120000_000_tab.scene"), QStringLiteral("mine.scene")};
    QVERIFY(writeFile(same, storyThatIs(true)));
    for (const QString &name : others)
        QVERIFY(writeFile(folder + QLatin1Char('/') + name, storyThatIs(false)));
    QProcess process;
    start(process, QProcessEnvironment::systemEnvironment(), QStringLiteral("autosaved"));
    QVERIFY(hasEnded(process));
    QCOMPARE(process.exitStatus(), QProcess::NormalExit);
    QVERIFY(!QFile::exists(same)); // it has the newest name now
    QStringList files = filesBelow(folder);
    for (const QString &name : others)
        QVERIFY(files.removeOne(name));
    QCOMPARE(files.size(), 1);
    QVERIFY2(files.front().endsWith(QStringLiteral("_end.scene")), qPrintable(files.front()));
    QVERIFY(readFile(folder + QLatin1Char('/') + files.front()) == storyThatIs(true));
}

int main(int argc, char *argv[])
{
    const QApplication application(argc, argv);
    if (argc == 4 && qstrcmp(argv[1], "--edit") == 0)
        return edit(QFile::decodeName(argv[2]), argv[3]);
    tst_DisplayLoss test;
    return QTest::qExec(&test, argc, argv);
}

#include "tst_displayloss.moc"
