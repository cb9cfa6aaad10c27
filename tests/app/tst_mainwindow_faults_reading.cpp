#include "app/faultstest.h"
#include "app/noticestrip.h"
#include "app/windowsupport.h"

namespace {

using Call = FaultyFiles::Call;
using Fault = FaultyFiles::Fault;

const QString cannotRead = QStringLiteral("Couldn't open file for reading.");

} // namespace

Q_DECLARE_METATYPE(std::vector<FaultyFiles::Fault>)

/// A file that cannot be read to its end must cost nothing: neither the tabs, nor the file itself by the next
/// save.
class tst_MainWindowFaultsReading : public FaultsTest
{
    Q_OBJECT

private slots:
    void failedReadLeavesTabsAndPath_data();
    void failedReadLeavesTabsAndPath();
    void readsThatAreCutShortGoOn();
    void fileThatIsShorterThanItSaysIsRefused();
    void fileThatIsLongerThanItSaysIsRead();
    void fileTooLargeForTheMemoryIsRefused();
    void whatCannotBeReadIsPutBy_data();
    void whatCannotBeReadIsPutBy();
    void whatCannotBeReadNorPutByIsNotReplaced_data();
    void whatCannotBeReadNorPutByIsNotReplaced();

private:
    void prepare() override
    {
        QVERIFY(QDir().mkpath(home->filePath(QStringLiteral("stories"))));
        QVERIFY(writeFile(path(QStringLiteral("former.scene")), smallDocument()));
        QVERIFY(writeFile(path(QStringLiteral("story.scene")), largeDocument()));
        makeWindow();
        window->loadFrom(path(QStringLiteral("former.scene")));
    }
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

void tst_MainWindowFaultsReading::whatCannotBeReadIsPutBy_data()
{
    QTest::addColumn<int>("exchange"); // what the system says of exchanging two names
    QTest::newRow("where names can be exchanged") << 0;
    QTest::newRow("where they cannot") << EINVAL;
}

// What another program has saved there would be copied, if only it could be read.
void tst_MainWindowFaultsReading::whatCannotBeReadIsPutBy()
{
    QFETCH(const int, exchange);
    const QString file = path(QStringLiteral("story.scene"));
    const QByteArray others = documentBytes({{}, {}, {}});
    QVERIFY(writeFile(file, others));
    const Warnings warnings;
    {
        std::vector<Fault> faults{{Call::read, 1, EIO, true}};
        if (exchange != 0)
            faults.push_back({Call::exchange, 1, exchange});
        const FaultyFiles faulty(home->filePath(QStringLiteral("stories")), faults);
        QVERIFY(window->saveTo(file));
        QVERIFY(faulty.hits(int(faults.size()) - 1) > 0);
    }
    QCOMPARE(warnings.lines(), QStringList()); // it is saved
    QCOMPARE(readFile(file), smallDocument());
    const QStringList putBy =
        filesBelow(home->filePath(QStringLiteral("stories"))).filter(QStringLiteral("_other.scene"));
    QCOMPARE(putBy.size(), 1);
    QCOMPARE(readFile(path(putBy.front())), others);
    const QString notice = window->findChild<NoticeStrip *>()->accessibleName();
    QVERIFY2(notice.contains(QStringLiteral("What was in the file before is kept as ") + putBy.front()),
             qPrintable(notice));
}

void tst_MainWindowFaultsReading::whatCannotBeReadNorPutByIsNotReplaced_data()
{
    QTest::addColumn<std::vector<FaultyFiles::Fault>>("faults");
    QTest::addColumn<QString>("why");
    QTest::newRow("no exchange and no second name")
        << std::vector<Fault>{{Call::exchange, 1, EINVAL}, {Call::rename, 2, EPERM}}
        << QStringLiteral("Operation not permitted");
    QTest::newRow("the exchange fails")
        << std::vector<Fault>{{Call::exchange, 1, EIO}} << QStringLiteral("Input/output error");
    QTest::newRow("no other name, and no place under the own one")
        << std::vector<Fault>{{Call::exchange, 1, EINVAL}, {Call::rename, 3, EIO}}
        << QStringLiteral("Input/output error");
    QTest::newRow("no file can be made there")
        << std::vector<Fault>{{Call::createUnnamed, 1, EACCES, true}, {Call::create, 1, EACCES, true}}
        << QStringLiteral("it can only be written over in place");
}

void tst_MainWindowFaultsReading::whatCannotBeReadNorPutByIsNotReplaced()
{
    QFETCH(const std::vector<FaultyFiles::Fault>, faults);
    QFETCH(const QString, why);
    const QString file = path(QStringLiteral("story.scene"));
    const QByteArray others = documentBytes({{}, {}, {}});
    QVERIFY(writeFile(file, others));
    const QStringList files = filesBelow(home->filePath(QStringLiteral("stories")));
    const Warnings warnings;
    {
        std::vector<Fault> all{{Call::read, 1, EIO, true}};
        all.insert(all.end(), faults.begin(), faults.end());
        const FaultyFiles faulty(home->filePath(QStringLiteral("stories")), all);
        QVERIFY(!window->saveTo(file));
    }
    QCOMPARE(warnings.lines(),
             QStringList{QStringLiteral("Couldn't write the scene file: \"%1\" \"what is in the file could "
                                        "not be kept: %2\"")
                             .arg(file, why)});
    QCOMPARE(readFile(file), others);
    QCOMPARE(filesBelow(home->filePath(QStringLiteral("stories"))), files);
}

QTEST_MAIN(tst_MainWindowFaultsReading)
#include "tst_mainwindow_faults_reading.moc"
