#include "app/autosavefolder.h"
#include "app/keptcopies.h"
#include "story/storysupport.h"

// What the editor has put by, as a list, and back in the writer's hands.

class tst_Copies : public TestCase
{
    Q_OBJECT

private slots:
    void thereAreNoneAtFirst();
    void copiesAreListedNewestFirst();
    void copyIsRestored_data();
    void copyIsRestored();
    void wrongUseIsOneLine_data();
    void wrongUseIsOneLine();

private:
    /// Three copies, of which the second newest is damaged, and files that are none.
    void putCopies() const
    {
        const QString autosaves = AutosaveFolder::usualFolder();
        const QString kept = KeptCopies::usualFolder();
        QVERIFY(QDir().mkpath(autosaves) && QDir().mkpath(kept));
        put(autosaves + QStringLiteral("/Yarnsmith_20260101_100000_autosaveVersion.scene"), oldest);
        put(kept + QStringLiteral("/20260101_100000_500_close.scene"), sceneBytes({branchedTab()}) + "abc");
        put(autosaves + QStringLiteral("/Yarnsmith_20260101_100001_autosaveVersion.scene"), newest);
        put(autosaves + QStringLiteral("/mine.scene"), newest);
        put(kept + QStringLiteral("/20269999_100000_500_close.scene"), newest);
    }
    static void put(const QString &path, const QByteArray &bytes) { QVERIFY(writeFile(path, bytes)); }

    PrivateHome home;
    QByteArray oldest = sceneBytes({branchedTab(), StoryTab(), branchedTab()});
    QByteArray newest = sceneBytes({});
    StoryFolder folder;
};

void tst_Copies::thereAreNoneAtFirst()
{
    const CommandResult result = runCommand({QStringLiteral("copies")});
    QCOMPARE(result.code, 0);
    QCOMPARE(result.outputLines(),
             QStringList(QStringLiteral("no copies in %1 and %2")
                             .arg(AutosaveFolder::usualFolder(), KeptCopies::usualFolder())));
    QVERIFY(AutosaveFolder::usualFolder().startsWith(home.filePath(QString())));
}

void tst_Copies::copiesAreListedNewestFirst()
{
    putCopies();
    const CommandResult result = runCommand({QStringLiteral("copies")});
    QCOMPARE(result.code, 0);
    QCOMPARE(result.errors, QByteArray());
    QCOMPARE(result.outputLines(),
             QStringList(
                 {QStringLiteral("  1  2026-01-01 10:00:01  autosave      "
                                 "Yarnsmith_20260101_100001_autosaveVersion.scene  tabs: 0, events: 0, "
                                 "words: 0"),
                  QStringLiteral("  2  2026-01-01 10:00:00  kept (close)  20260101_100000_500_close.scene  "
                                 "tabs: 1, events: 10, words: 40, damaged"),
                  QStringLiteral("  3  2026-01-01 10:00:00  autosave      "
                                 "Yarnsmith_20260101_100000_autosaveVersion.scene  tabs: 3, events: 20, "
                                 "words: 80")}));
}

void tst_Copies::copyIsRestored_data()
{
    QTest::addColumn<QString>("which");
    QTest::newRow("by number") << QStringLiteral("3");
    QTest::newRow("by name") << QStringLiteral("Yarnsmith_20260101_100000_autosaveVersion.scene");
}

void tst_Copies::copyIsRestored()
{
    QFETCH(const QString, which);
    putCopies();
    const QString path = folder.path(QStringLiteral("back.scene"));
    QFile::remove(path);
    const QStringList arguments{QStringLiteral("copies"), QStringLiteral("--restore"), which,
                                QStringLiteral("-o"), path};
    const CommandResult result = runCommand(arguments);
    QCOMPARE(result.errors, QByteArray());
    QCOMPARE(result.code, 0);
    QCOMPARE(readFile(path).toHex(), oldest.toHex());

    put(path, "mine");
    const CommandResult refused = runCommand(arguments);
    QCOMPARE(refused.code, 2);
    QCOMPARE(
        refused.errorLines(),
        QStringList(QStringLiteral("fablegrid-story: %1: is there already; --force replaces it").arg(path)));
    QCOMPARE(readFile(path), QByteArray("mine"));
    QCOMPARE(runCommand(arguments + QStringList(QStringLiteral("--force"))).code, 0);
    QCOMPARE(readFile(path).toHex(), oldest.toHex());
}

void tst_Copies::wrongUseIsOneLine_data()
{
    QTest::addColumn<QString>("line");
    QTest::newRow("copies x") << QStringLiteral("no file is to be named but behind -o");
    QTest::newRow("copies --restore 1") << QStringLiteral("where to? -o FILE is missing");
    QTest::newRow("copies -o x") << QStringLiteral("which one? --restore N is missing");
    for (const char *which : {"0", "4", "-1", "x", "mine.scene"})
        QTest::addRow("copies --restore %s -o x", which)
            << QStringLiteral("--restore %1: there is no such copy").arg(QLatin1String(which));
}

void tst_Copies::wrongUseIsOneLine()
{
    QFETCH(const QString, line);
    putCopies();
    const CommandResult result =
        runCommand(QString::fromLatin1(QTest::currentDataTag()).split(QLatin1Char(' ')));
    QCOMPARE(result.code, 2);
    QCOMPARE(result.errorLines(), QStringList(QStringLiteral("fablegrid-story: ") + line));
}

QTEST_MAIN(tst_Copies)
#include "tst_copies.moc"
