#include "app/faultyfiles.h"
#include "app/noticestrip.h"
#include "app/windowsupport.h"
#include "faults/savedocuments.h"
#include "support/testsupport.h"

#include <cerrno>

namespace {

using Call = FaultyFiles::Call;
using Fault = FaultyFiles::Fault;

const QString cannotRead = QStringLiteral("Couldn't open file for reading.");

} // namespace

Q_DECLARE_METATYPE(std::vector<FaultyFiles::Fault>)

/// A file that cannot be read to its end must cost nothing: neither the tabs, nor the file itself by the next
/// save.
class tst_MainWindowFaultsReading : public QObject
{
    Q_OBJECT

private slots:
    void init()
    {
        failOnWarningsOfTheProgram();
        home = std::make_unique<PrivateHome>();
        QVERIFY(QDir().mkpath(home->filePath(QStringLiteral("stories"))));
        QVERIFY(writeFile(path(QStringLiteral("former.scene")), smallDocument()));
        QVERIFY(writeFile(path(QStringLiteral("story.scene")), largeDocument()));
        window = std::make_unique<MainWindow>();
        window->loadFrom(path(QStringLiteral("former.scene")));
    }
    void cleanup()
    {
        window.reset();
        flushDeferredDeletes();
        home.reset();
    }

    void failedReadLeavesTabsAndPath_data();
    void failedReadLeavesTabsAndPath();
    void readsThatAreCutShortGoOn();
    void fileThatIsShorterThanItSaysIsRefused();
    void fileThatIsLongerThanItSaysIsRead();
    void fileTooLargeForTheMemoryIsRefused();
    void saveOverWhatCannotBeReadSaysSo();

private:
    QString path(const QString &name) const { return home->filePath(QStringLiteral("stories/")) + name; }
    /// What the next save writes, and where.
    void compareUntouched()
    {
        QCOMPARE(window->currentFilePath(), path(QStringLiteral("former.scene")));
        QVERIFY(QFile::remove(path(QStringLiteral("former.scene"))));
        const Warnings warnings;
        window->sl_saveFile();
        QCOMPARE(warnings.lines(), QStringList());
        QCOMPARE(readFile(path(QStringLiteral("former.scene"))), smallDocument());
        QCOMPARE(readFile(path(QStringLiteral("story.scene"))), largeDocument());
    }

    std::unique_ptr<PrivateHome> home;
    std::unique_ptr<MainWindow> window;
};

void tst_MainWindowFaultsReading::failedReadLeavesTabsAndPath_data()
{
    QTest::addColumn<std::vector<Fault>>("faults");
    QTest::newRow("once, at the start") << std::vector<Fault>{{Call::read, 1, EIO}};
    QTest::newRow("from the start on") << std::vector<Fault>{{Call::read, 1, EIO, true}};
    QTest::newRow("in the midst") << std::vector<Fault>{{Call::read, 1}, {Call::read, 2, EIO, true}};
    QTest::newRow("at the end") << std::vector<Fault>{{Call::read, 2, EIO, true}};
    QTest::newRow("a network drive that went away") << std::vector<Fault>{{Call::read, 1, ESTALE, true}};
}

void tst_MainWindowFaultsReading::failedReadLeavesTabsAndPath()
{
    QFETCH(const std::vector<Fault>, faults);
    const std::vector<NodegraphView *> views = window->views();
    const LogCapture log;
    QTest::ignoreMessage(QtWarningMsg, qPrintable(cannotRead));
    {
        const FaultyFiles faulty(home->filePath(QStringLiteral("stories")), faults);
        window->loadFrom(path(QStringLiteral("story.scene")));
        QVERIFY(faulty.hits() > 0);
    }
    QCOMPARE(programLines(log), QStringList{cannotRead});
    QVERIFY(window->views() == views);
    compareUntouched();
}

void tst_MainWindowFaultsReading::readsThatAreCutShortGoOn()
{
    const FaultyFiles faulty(home->filePath(QStringLiteral("stories")), {{Call::read, 1, 0, true}});
    const Warnings warnings;
    window->loadFrom(path(QStringLiteral("story.scene")));
    QVERIFY(faulty.hits() > 1);
    window->saveTo(path(QStringLiteral("copy.scene")));
    QCOMPARE(warnings.lines(), QStringList());
    QCOMPARE(readFile(path(QStringLiteral("copy.scene"))), largeDocument());
}

// As one that another program has just cut. Reading it to the size that it claimed never came to an end.
void tst_MainWindowFaultsReading::fileThatIsShorterThanItSaysIsRefused()
{
    const std::vector<NodegraphView *> views = window->views();
    for (const std::vector<Fault> &cut : {std::vector<Fault>{{Call::read, 1, FaultyFiles::endOfFile, true}},
                                          {{Call::read, 1}, {Call::read, 2, FaultyFiles::endOfFile, true}}}) {
        const Warnings warnings;
        const FaultyFiles faulty(home->filePath(QStringLiteral("stories")), cut);
        window->loadFrom(path(QStringLiteral("story.scene")));
        QVERIFY(faulty.hits(int(cut.size()) - 1) > 0);
        QCOMPARE(warnings.lines(), QStringList{cannotRead});
        QVERIFY(window->views() == views);
    }
    compareUntouched();
}

// As those that the system makes up while they are read; what is no story does no harm.
void tst_MainWindowFaultsReading::fileThatIsLongerThanItSaysIsRead()
{
    const QString file = QStringLiteral("/proc/self/status");
    QVERIFY(QFileInfo(file).isFile());
    QCOMPARE(QFileInfo(file).size(), 0);
    QVERIFY(!readFile(file).isEmpty());
    const Warnings ofTheDamage;
    window->loadFrom(file);
    QCOMPARE(window->currentFilePath(), file);
    QVERIFY(!ofTheDamage.lines().contains(cannotRead));
    QVERIFY(!ofTheDamage.lines().isEmpty());
}

void tst_MainWindowFaultsReading::fileTooLargeForTheMemoryIsRefused()
{
#ifdef FABLEGRID_CAN_LIMIT_MEMORY
    const QString file = path(QStringLiteral("huge.scene"));
    QVERIFY(writeFile(file, smallDocument()));
    QVERIFY(QFile::resize(file, qint64(4) << 30)); // without taking room on the disk
    QTest::ignoreMessage(QtWarningMsg, qPrintable(cannotRead));
    {
        const LittleMemory little(rlim_t(256) << 20);
        window->loadFrom(file);
    }
    QVERIFY(QFile::remove(file));
    compareUntouched();
#else
    QSKIP("the address sanitizer needs more room for addresses than the test leaves");
#endif
}

// What another program has saved there would be kept, if only it could be read.
void tst_MainWindowFaultsReading::saveOverWhatCannotBeReadSaysSo()
{
    const QString file = path(QStringLiteral("story.scene"));
    const Warnings warnings;
    {
        const FaultyFiles faulty(home->filePath(QStringLiteral("stories")), {{Call::read, 1, EIO, true}});
        QVERIFY(window->saveTo(file));
    }
    QCOMPARE(warnings.lines(), QStringList()); // it is saved
    QCOMPARE(readFile(file), smallDocument());
    const QString notice = window->findChild<NoticeStrip *>()->accessibleName();
    QVERIFY2(notice.contains(QStringLiteral("What was in the file before could not be kept")),
             qPrintable(notice));
}

QTEST_MAIN(tst_MainWindowFaultsReading)
#include "tst_mainwindow_faults_reading.moc"
