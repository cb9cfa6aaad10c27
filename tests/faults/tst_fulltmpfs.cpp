#include "faults/savedocuments.h"
#include "support/testsupport.h"

#include <sys/vfs.h>

#include <linux/magic.h>

namespace {

const QString storyName = QStringLiteral("story.scene");
const QString fillerName = QStringLiteral("filler");
const QString kept = QStringLiteral("Fablegrid/Kept");
const QByteArray oldBytes = documentBytes({{}, {}});
const QString noRoom = QStringLiteral("No space left on device");

/// Takes all the room that the disk has but that many kilobytes.
bool fill(const QString &path, int kilobytes)
{
    struct statfs disk = {};
    if (statfs(qPrintable(QDir::tempPath()), &disk) != 0)
        return false;
    const qint64 room = qint64(disk.f_bavail) * disk.f_bsize - 1024 * kilobytes;
    return room >= 0 && writeFile(path, QByteArray(room, 'x'));
}

/// Takes all the names that the disk has, as files of no size.
bool fillNames(const QString &prefix)
{
    for (int i = 0; i < 10000; ++i) {
        QFile file(prefix + QString::number(i));
        if (!file.open(QIODevice::WriteOnly))
            return i > 0;
    }
    return false;
}

} // namespace

/// Saves on a small disk with less and less room. The folder for temporary files must be on such a disk:
/// start this program through full-tmpfs.sh.
class tst_FullTmpfs : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase()
    {
        struct statfs disk = {};
        QCOMPARE(statfs(qPrintable(QDir::tempPath()), &disk), 0);
        QVERIFY2(disk.f_type == TMPFS_MAGIC && disk.f_blocks * disk.f_bsize <= 1024 * 1024,
                 "This is no small disk; start the test through full-tmpfs.sh");
    }
    void init()
    {
        failOnWarningsOfTheProgram();
        home = std::make_unique<PrivateHome>();
        QVERIFY(QDir().mkpath(path(QStringLiteral("Fablegrid/Autosavedir"))));
        // What is going to stand in the file is kept already, so that a save needs room for the file alone.
        QVERIFY(QDir().mkpath(path(kept)));
        QVERIFY(writeFile(path(kept) + QStringLiteral("/20200101_120000_000_other.scene"), oldBytes));
    }
    void cleanup()
    {
        flushDeferredDeletes();
        home.reset();
    }

    void saveIsAllOrNothing_data();
    void saveIsAllOrNothing();
    void noRoomForAFileAtAll_data();
    void noRoomForAFileAtAll();

private:
    QString path(const QString &name) const { return home->filePath(QStringLiteral("Documents/")) + name; }
    /// Those that the program has to do with.
    QStringList files() const
    {
        QStringList names = filesBelow(path({}));
        names.removeIf([](const QString &name) { return name.startsWith(kept); });
        return names;
    }
    void open(MainWindow &window, const QByteArray &document) const;
    QStringList save(MainWindow &window, bool automatic) const;
    /// What an autosave made, or what a save had to replace.
    QByteArray saved(bool automatic) const;
    void tidyUp() const;

    std::unique_ptr<PrivateHome> home;
};

void tst_FullTmpfs::open(MainWindow &window, const QByteArray &document) const
{
    const Warnings none;
    QVERIFY(writeFile(path(storyName), document));
    window.loadFrom(path(storyName));
    QCOMPARE(none.lines(), QStringList());
}

QStringList tst_FullTmpfs::save(MainWindow &window, bool automatic) const
{
    const Warnings warnings;
    automatic ? window.autosave() : window.sl_saveFile();
    return warnings.lines();
}

QByteArray tst_FullTmpfs::saved(bool automatic) const
{
    QStringList names = files();
    if (automatic)
        names.removeAll(storyName);
    names.removeAll(fillerName);
    return names.size() == 1 ? readFile(path(names.front())) : names.join(QLatin1Char(' ')).toUtf8();
}

void tst_FullTmpfs::tidyUp() const
{
    const QStringList names = files();
    for (const QString &name : names)
        QFile::remove(path(name));
}

void tst_FullTmpfs::saveIsAllOrNothing_data()
{
    QTest::addColumn<bool>("automatic");
    QTest::addColumn<QByteArray>("document");
    QTest::newRow("save, small") << false << smallDocument();
    QTest::newRow("save, large") << false << largeDocument();
    QTest::newRow("autosave, small") << true << smallDocument();
    QTest::newRow("autosave, large") << true << largeDocument();
}

void tst_FullTmpfs::saveIsAllOrNothing()
{
    QFETCH(const bool, automatic);
    QFETCH(const QByteArray, document);
    MainWindow window;
    open(window, document);
    int failures = 0;
    bool clean = false;
    for (int kilobytes = 0; !clean && kilobytes < 500; ++kilobytes) {
        tidyUp();
        QVERIFY(writeFile(path(storyName), oldBytes));
        QVERIFY(fill(path(fillerName), kilobytes));
        const QStringList warnings = save(window, automatic);
        if (warnings.isEmpty()) {
            QCOMPARE(saved(automatic), document);
            clean = true;
            continue;
        }
        ++failures;
        QCOMPARE(warnings.size(), 1);
        QVERIFY2(warnings.front().contains(automatic ? QStringLiteral("Failed to write autosave file:")
                                                     : QStringLiteral("Couldn't write the scene file:")),
                 qPrintable(warnings.front()));
        QVERIFY2(warnings.front().contains(noRoom), qPrintable(warnings.front()));
        QCOMPARE(readFile(path(storyName)), oldBytes);
        QCOMPARE(files(), QStringList({fillerName, storyName}));

        QVERIFY(QFile::remove(path(fillerName)));
        QCOMPARE(save(window, automatic), QStringList());
        QCOMPARE(saved(automatic), document);
    }
    QVERIFY(clean);
    // The disk gives its room away in blocks, so the exact number is its own matter.
    QVERIFY2(failures >= qMax(qint64(1), document.size() / 1024 - 8), qPrintable(QString::number(failures)));
    QVERIFY2(failures < document.size() / 1024 + 8, qPrintable(QString::number(failures)));
}

void tst_FullTmpfs::noRoomForAFileAtAll_data()
{
    QTest::addColumn<bool>("automatic");
    QTest::newRow("save") << false;
    QTest::newRow("autosave") << true;
}

void tst_FullTmpfs::noRoomForAFileAtAll()
{
    QFETCH(const bool, automatic);
    MainWindow window;
    open(window, smallDocument());
    QVERIFY(writeFile(path(storyName), oldBytes));
    QVERIFY(fillNames(home->filePath(fillerName)));
    const QStringList before = files();
    const QStringList warnings = save(window, automatic);
    QCOMPARE(warnings.size(), 1);
    QVERIFY2(warnings.front().contains(automatic ? QStringLiteral("Failed to open autosave file for writing:")
                                                 : QStringLiteral("Couldn't open file for writing.")),
             qPrintable(warnings.front()));
    QCOMPARE(readFile(path(storyName)), oldBytes);
    QCOMPARE(files(), before);

    QVERIFY(QFile::remove(home->filePath(fillerName + QLatin1Char('0'))));
    QCOMPARE(save(window, automatic), QStringList());
    QCOMPARE(saved(automatic), smallDocument());
}

QTEST_MAIN(tst_FullTmpfs)
#include "tst_fulltmpfs.moc"
