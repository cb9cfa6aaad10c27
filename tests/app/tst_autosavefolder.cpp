#include "app/autosavefolder.h"
#include "app/storystage.h"
#include "app/windowsupport.h"
#include "faults/savedocuments.h"
#include "support/testsupport.h"

#include <QDateTime>

#ifdef Q_OS_UNIX
#include <sys/stat.h>
#endif

/// The names of autosave copies: nobody's copy is ever written over, but a window's own of the same second.
class tst_AutosaveFolder : public QObject
{
    Q_OBJECT

private slots:
    void init()
    {
        failOnWarnings();
        home = std::make_unique<PrivateHome>();
        stage = std::make_unique<StoryStage>();
    }
    void cleanup()
    {
        stage.reset();
        home.reset();
    }

    void instancesOfTheSameSecondKeepACopyEach();
    void ownCopyOfTheSameSecondIsReplaced();
    void clockThatWasSetBackOverwritesNothing();
    void nextFreeSecondIsTaken();
    void nameThatIsALinkIsLeftAlone();
    void ownCopyThatBecameALinkIsLeftAlone();
    void ownCopyThatIsSomebodyElsesNowIsLeftAlone_data();
    void ownCopyThatIsSomebodyElsesNowIsLeftAlone();
    void copyHasThePermissionsOfNewFiles();

private:
    static QString nameOf(int second)
    {
        return QStringLiteral("Yarnsmith_20241027_0230%1_autosaveVersion.scene")
            .arg(second, 2, 10, QLatin1Char('0'));
    }
    QString folder() const { return home->filePath(QStringLiteral("Documents/Fablegrid/Autosavedir")); }
    QString path(int second) const { return folder() + QLatin1Char('/') + nameOf(second); }
    /// The bytes of a copy that was made while the document had so many tabs.
    static QByteArray withTabs(int count)
    {
        return documentBytes(std::vector<std::vector<Record>>(std::size_t(count)));
    }

    const QDateTime moment{QDate(2024, 10, 27), QTime(2, 30, 0)};
    std::unique_ptr<PrivateHome> home;
    std::unique_ptr<StoryStage> stage;
};

void tst_AutosaveFolder::instancesOfTheSameSecondKeepACopyEach()
{
    AutosaveFolder first;
    AutosaveFolder second;
    AutosaveFolder third;
    QCOMPARE(first.keepAt(moment, stage->document).path, path(0));
    stage->tabs.add();
    QCOMPARE(second.keepAt(moment, stage->document).path, path(1));
    stage->tabs.add();
    QCOMPARE(third.keepAt(moment, stage->document).path, path(2));
    for (int i = 0; i < 3; ++i)
        QCOMPARE(readFile(path(i)), withTabs(i));
    QCOMPARE(filesBelow(folder()).size(), 3);
}

void tst_AutosaveFolder::ownCopyOfTheSameSecondIsReplaced()
{
    AutosaveFolder autosaves;
    autosaves.keepAt(moment, stage->document);
    stage->tabs.add();
    QCOMPARE(autosaves.keepAt(moment, stage->document).path, path(0));
    QCOMPARE(readFile(path(0)), withTabs(1));
    QCOMPARE(filesBelow(folder()), QStringList{nameOf(0)});
}

void tst_AutosaveFolder::clockThatWasSetBackOverwritesNothing()
{
    AutosaveFolder autosaves;
    for (int i = 0; i < 3; ++i) {
        autosaves.keepAt(moment.addSecs(i), stage->document);
        stage->tabs.add();
    }
    QCOMPARE(autosaves.keepAt(moment, stage->document).path, path(3));
    for (int i = 0; i < 4; ++i)
        QCOMPARE(readFile(path(i)), withTabs(i));
}

// Another program has the name of this second and that of the next one.
void tst_AutosaveFolder::nextFreeSecondIsTaken()
{
    QVERIFY(QDir().mkpath(folder()));
    for (const int second : {0, 1, 3})
        QVERIFY(writeFile(path(second), "another program's"));
    AutosaveFolder autosaves;
    QCOMPARE(autosaves.keepAt(moment, stage->document).path, path(2));
    QCOMPARE(autosaves.keepAt(moment.addSecs(1), stage->document).path, path(4));
    for (const int second : {0, 1, 3})
        QCOMPARE(readFile(path(second)), QByteArray("another program's"));
    for (const int second : {2, 4})
        QCOMPARE(readFile(path(second)), withTabs(0));
    QCOMPARE(filesBelow(folder()).size(), 5);
}

void tst_AutosaveFolder::nameThatIsALinkIsLeftAlone()
{
    const QString elsewhere = home->filePath(QStringLiteral("elsewhere"));
    QVERIFY(QDir().mkpath(folder()));
    QVERIFY(writeFile(elsewhere, "mine"));
    QVERIFY(QFile::link(elsewhere, path(0)));
    QVERIFY(QFile::link(home->filePath(QStringLiteral("nothing")), path(1)));
    QCOMPARE(AutosaveFolder().keepAt(moment, stage->document).path, path(2));
    QCOMPARE(readFile(elsewhere), QByteArray("mine"));
    QVERIFY(!QFile::exists(home->filePath(QStringLiteral("nothing"))));
}

void tst_AutosaveFolder::ownCopyThatBecameALinkIsLeftAlone()
{
    const QString elsewhere = home->filePath(QStringLiteral("elsewhere"));
    QVERIFY(writeFile(elsewhere, "mine"));
    AutosaveFolder autosaves;
    autosaves.keepAt(moment, stage->document);
    QVERIFY(QFile::remove(path(0)));
    QVERIFY(QFile::link(elsewhere, path(0)));
    QCOMPARE(autosaves.keepAt(moment, stage->document).path, path(1));
    QCOMPARE(readFile(elsewhere), QByteArray("mine"));
}

void tst_AutosaveFolder::ownCopyThatIsSomebodyElsesNowIsLeftAlone_data()
{
    QTest::addColumn<bool>("sameFile");
    QTest::newRow("another file of that name") << false;
    QTest::newRow("written to by another program") << true;
}

void tst_AutosaveFolder::ownCopyThatIsSomebodyElsesNowIsLeftAlone()
{
    QFETCH(const bool, sameFile);
    AutosaveFolder autosaves;
    autosaves.keepAt(moment, stage->document);
    if (!sameFile)
        QVERIFY(QFile::rename(path(0), path(0) + QStringLiteral(".old"))); // lest its inode be taken again
    QVERIFY(writeFile(path(0), "mine"));
    QCOMPARE(autosaves.keepAt(moment, stage->document).path, path(1));
    QCOMPARE(readFile(path(0)), QByteArray("mine"));
    QCOMPARE(readFile(path(1)), withTabs(0));
}

void tst_AutosaveFolder::copyHasThePermissionsOfNewFiles()
{
#ifdef Q_OS_UNIX
    const mode_t former = umask(027);
    AutosaveFolder().keepAt(moment, stage->document);
    umask(former);
    struct stat status = {};
    QCOMPARE(stat(qPrintable(path(0)), &status), 0);
    QCOMPARE(int(status.st_mode & 07777U), 0640);
#endif
}

QTEST_MAIN(tst_AutosaveFolder)
#include "tst_autosavefolder.moc"
