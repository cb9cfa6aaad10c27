#include "app/keptcopies.h"
#include "app/windowsupport.h"
#include "faults/savedocuments.h"
#include "support/testsupport.h"

#include <QDateTime>
#include <QDir>

#include <thread>

namespace {

using Occasion = KeptCopies::Occasion;

const QString stampFormat = QStringLiteral("yyyyMMdd_HHmmss_zzz");

QString stampOf(const QString &name) { return name.left(stampFormat.size()); }

} // namespace

Q_DECLARE_METATYPE(KeptCopies::Occasion)

class tst_KeptCopies : public QObject
{
    Q_OBJECT

private slots:
    void init()
    {
        failOnWarnings();
        home = std::make_unique<QTemporaryDir>();
        folder = home->filePath(QStringLiteral("Documents/Fablegrid/Kept"));
    }

    void copyIsNamedAfterMomentAndOccasion_data();
    void copyIsNamedAfterMomentAndOccasion();
    void copyIsForTheUserAlone();
    void sameBytesAreKeptOnce();
    void newestStay();
    void othersFilesStay();
    void copiesOfTheSameMomentAllStay();
    void nameThatIsTakenIsLeftAlone_data();
    void nameThatIsTakenIsLeftAlone();
    void folderThatCannotBeMadeIsReported();
    void failedWriteIsReportedAndLeavesNothing();

private:
    QStringList files() const { return filesBelow(folder); }
    QByteArray contentOf(const QString &name) const { return readFile(folder + QLatin1Char('/') + name); }

    std::unique_ptr<QTemporaryDir> home;
    QString folder;
};

void tst_KeptCopies::copyIsNamedAfterMomentAndOccasion_data()
{
    QTest::addColumn<Occasion>("occasion");
    QTest::addColumn<QString>("ending");
    QTest::newRow("new") << Occasion::anew << QStringLiteral("_new.scene");
    QTest::newRow("open") << Occasion::open << QStringLiteral("_open.scene");
    QTest::newRow("tab") << Occasion::tab << QStringLiteral("_tab.scene");
    QTest::newRow("close") << Occasion::close << QStringLiteral("_close.scene");
    QTest::newRow("end") << Occasion::end << QStringLiteral("_end.scene");
    QTest::newRow("other") << Occasion::other << QStringLiteral("_other.scene");
}

void tst_KeptCopies::copyIsNamedAfterMomentAndOccasion()
{
    QFETCH(const Occasion, occasion);
    QFETCH(const QString, ending);
    const QString before = QDateTime::currentDateTime().toString(stampFormat);
    const KeptCopies::Kept kept = KeptCopies(folder).keep("work", occasion);
    const QString after = QDateTime::currentDateTime().toString(stampFormat);
    QCOMPARE(kept.trouble, QString());
    QCOMPARE(files().size(), 1);
    const QString name = files().front();
    QCOMPARE(kept.path, folder + QLatin1Char('/') + name);
    QCOMPARE(name, stampOf(name) + ending);
    QVERIFY2(before <= stampOf(name) && stampOf(name) <= after, qPrintable(name));
    QCOMPARE(contentOf(name), QByteArray("work"));
}

void tst_KeptCopies::copyIsForTheUserAlone()
{
    const KeptCopies::Kept kept = KeptCopies(folder).keep("work", Occasion::anew);
    constexpr QFileDevice::Permissions others =
        QFileDevice::ReadGroup | QFileDevice::WriteGroup | QFileDevice::ReadOther | QFileDevice::WriteOther;
    QVERIFY(!(QFile::permissions(kept.path) & others));
}

void tst_KeptCopies::sameBytesAreKeptOnce()
{
    const KeptCopies copies(folder);
    const QString first = copies.keep("one", Occasion::anew).path;
    const QString second = copies.keep("two", Occasion::open).path;
    QTest::qSleep(2); // names of the same thousandth of a second stand in the order of their endings
    const KeptCopies::Kept again = copies.keep("one", Occasion::close);
    QCOMPARE(again.trouble, QString());
    QVERIFY2(again.path.endsWith(QStringLiteral("_close.scene")), qPrintable(again.path));
    // It is the newest now, and not the next that goes.
    QCOMPARE(files(), QStringList({QFileInfo(second).fileName(), QFileInfo(again.path).fileName()}));
    QCOMPARE(readFile(again.path), QByteArray("one"));
    QCOMPARE(copies.keep("one", Occasion::tab).path, again.path);
    QVERIFY(!QFile::exists(first));
}

void tst_KeptCopies::newestStay()
{
    QVERIFY(QDir().mkpath(folder));
    QStringList earlier;
    for (int i = 0; i < KeptCopies::most + 5; ++i) {
        earlier << QStringLiteral("20200101_120000_%1_tab.scene").arg(i, 3, 10, QLatin1Char('0'));
        QVERIFY(writeFile(folder + QLatin1Char('/') + earlier.last(), QByteArray::number(i)));
    }
    KeptCopies(folder).keep("newest", Occasion::close);
    QCOMPARE(files().size(), 200);
    QCOMPARE(files().mid(0, 199), earlier.mid(6));
    QCOMPARE(contentOf(files().last()), QByteArray("newest"));
}

// What else is in the folder is the user's own, and a clock that was set back makes the new copy the oldest.
void tst_KeptCopies::othersFilesStay()
{
    QVERIFY(QDir().mkpath(folder));
    const QStringList own{QStringLiteral("20000101_000000_000_mine.scene"), QStringLiteral("a.scene")};
    for (const QString &name : own)
        QVERIFY(writeFile(folder + QLatin1Char('/') + name, "mine"));
    for (int i = 0; i < KeptCopies::most; ++i)
        QVERIFY(writeFile(folder + QStringLiteral("/29990101_120000_%1_tab.scene").arg(i, 3, 10, QChar(u'0')),
                          QByteArray::number(i)));
    const QString kept = KeptCopies(folder).keep("newest", Occasion::close).path;
    QVERIFY(QFile::exists(kept));
    for (const QString &name : own)
        QCOMPARE(contentOf(name), QByteArray("mine"));
}

void tst_KeptCopies::copiesOfTheSameMomentAllStay()
{
    constexpr int windows = 4;
    constexpr int each = 25;
    std::vector<std::thread> all;
    for (int window = 0; window < windows; ++window) {
        all.emplace_back([this, window] {
            for (int i = 0; i < each; ++i)
                KeptCopies(folder).keep(QByteArray::number(1000 * window + i), Occasion::close);
        });
    }
    for (std::thread &window : all)
        window.join();
    QStringList contents;
    for (const QString &name : files())
        contents << QString::fromLatin1(contentOf(name));
    QCOMPARE(contents.removeDuplicates(), 0);
    QCOMPARE(contents.size(), windows * each);
}

void tst_KeptCopies::nameThatIsTakenIsLeftAlone_data()
{
    QTest::addColumn<bool>("link");
    QTest::newRow("by a file") << false;
    QTest::newRow("by a link to nothing") << true;
}

// The names of a whole second ahead are taken, so each copy has to look for a free one.
void tst_KeptCopies::nameThatIsTakenIsLeftAlone()
{
    QFETCH(const bool, link);
    QVERIFY(QDir().mkpath(folder));
    const QDateTime now = QDateTime::currentDateTime();
    const QString elsewhere = home->filePath(QStringLiteral("elsewhere"));
    QStringList taken;
    for (int ms = 0; ms < 900; ++ms) {
        taken << now.addMSecs(ms).toString(stampFormat) + QStringLiteral("_tab.scene");
        const QString path = folder + QLatin1Char('/') + taken.last();
        QVERIFY(link ? QFile::link(elsewhere, path) : writeFile(path, "taken"));
    }
    const QString kept = KeptCopies(folder).keep("work", Occasion::tab).path;
    QCOMPARE(readFile(kept), QByteArray("work"));
    QVERIFY(!taken.contains(QFileInfo(kept).fileName()));
    QVERIFY(!QFile::exists(elsewhere));
}

void tst_KeptCopies::folderThatCannotBeMadeIsReported()
{
    QVERIFY(writeFile(home->filePath(QStringLiteral("Documents")), "a file where a folder should be"));
    QTest::ignoreMessage(
        QtWarningMsg, QRegularExpression(
                          QStringLiteral("^Failed to keep a copy: \".*_new\\.scene\" \"Not a directory\"$")));
    QVERIFY(!KeptCopies(folder).keep("work", Occasion::anew).trouble.isEmpty());
}

void tst_KeptCopies::failedWriteIsReportedAndLeavesNothing()
{
#ifdef Q_OS_UNIX
    QTest::ignoreMessage(
        QtWarningMsg,
        QRegularExpression(QStringLiteral("^Failed to keep a copy: \".*_end\\.scene\" \"File too large\"$")));
    const FullDisk full(16);
    const KeptCopies::Kept kept = KeptCopies(folder).keep(QByteArray(100, 'x'), Occasion::end);
    QCOMPARE(kept.trouble, QStringLiteral("File too large"));
    QCOMPARE(files(), QStringList());
#endif
}

QTEST_GUILESS_MAIN(tst_KeptCopies)
#include "tst_keptcopies.moc"
