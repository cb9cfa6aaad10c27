#include "app/autosavefolder.h"
#include "app/faultstest.h"
#include "app/noticestrip.h"
#include "app/storystage.h"
#include "app/windowsupport.h"

using Call = FaultyFiles::Call;
using Fault = FaultyFiles::Fault;

/// What somebody else has put into the file that a save is about to replace.
class tst_MainWindowFaultsOthers : public FaultsTest
{
    Q_OBJECT

private slots:
    void fileIsReadOnlyIfSomebodyHasChangedIt_data();
    void fileIsReadOnlyIfSomebodyHasChangedIt();
    void nothingIsKeptIfTheSaveCannotBegin();
    void whatCannotBeKeptInItsFolderStaysBesideTheFile();
    void whatCannotBeKeptAtAllIsNotReplaced();
    void whoSavesInBetweenLosesNothing_data();
    void whoSavesInBetweenLosesNothing();
    void whoWritesBehindASaveLosesNothing();
    void whoWritesBeforeASaveInPlaceLosesNothing_data();
    void whoWritesBeforeASaveInPlaceLosesNothing();
    void saveInPlaceThatIsOvertakenAgainFails();
    void saveWithoutAnExchangeOfNamesLeavesNothing_data();
    void saveWithoutAnExchangeOfNamesLeavesNothing();
    void whoTakesTheNameOfAnAutosaveCopyLosesNothing_data();
    void whoTakesTheNameOfAnAutosaveCopyLosesNothing();
    void freeNameIsFoundOnEveryDisk_data();
    void freeNameIsFoundOnEveryDisk();
    void nameThatWasHeldIsGivenBack();

private:
    void prepare() override
    {
        QVERIFY(QDir().mkpath(folder()));
        QVERIFY(writeFile(story(), smallDocument()));
        makeWindow();
        window->loadFrom(story());
    }
    QString folder() const { return home->filePath(QStringLiteral("stories")); }
    QString story() const { return folder() + QStringLiteral("/story.scene"); }
    QString kept() const { return home->filePath(QStringLiteral("Documents/Fablegrid/Kept")); }
    QString notice() const { return window->findChild<NoticeStrip *>()->accessibleName(); }
    void letNothingBeKept() const
    {
        QVERIFY(writeFile(home->filePath(QStringLiteral("Documents")), "no folder"));
    }

    QString autosaves() const { return home->filePath(QStringLiteral("Documents/Fablegrid/Autosavedir/")); }
    static QString copyOf(int second)
    {
        return QStringLiteral("Yarnsmith_20241027_02300%1_autosaveVersion.scene").arg(second);
    }

    const QDateTime second{QDate(2024, 10, 27), QTime(2, 30, 0)};
    const QByteArray others = documentBytes({{}, {}, {}});
};

void tst_MainWindowFaultsOthers::fileIsReadOnlyIfSomebodyHasChangedIt_data()
{
    QTest::addColumn<bool>("saved");
    QTest::addColumn<bool>("changed");
    for (const bool saved : {false, true}) {
        QTest::addRow("%s", saved ? "saved" : "opened") << saved << false;
        QTest::addRow("%s, then changed", saved ? "saved" : "opened") << saved << true;
    }
}

void tst_MainWindowFaultsOthers::fileIsReadOnlyIfSomebodyHasChangedIt()
{
    QFETCH(const bool, saved);
    QFETCH(const bool, changed);
    if (saved)
        QVERIFY(window->saveTo(story()));
    if (changed)
        QVERIFY(writeFile(story(), others));
    const FaultyFiles counting(folder(), {});
    QVERIFY(window->saveTo(story()));
    QCOMPARE(counting.calls(Call::read) > 0, changed);
    QCOMPARE(filesBelow(kept()).size(), changed ? 1 : 0);
}

void tst_MainWindowFaultsOthers::nothingIsKeptIfTheSaveCannotBegin()
{
    QVERIFY(writeFile(story(), others));
    QTest::ignoreMessage(QtWarningMsg, "Couldn't open file for writing.");
    {
        const FaultyFiles faulty(folder(), {{Call::createUnnamed, 1, EACCES, true},
                                            {Call::create, 1, EACCES, true},
                                            {Call::openForWriting, 1, EACCES, true}});
        QVERIFY(!window->saveTo(story()));
    }
    QCOMPARE(filesBelow(kept()), QStringList());
    QCOMPARE(readFile(story()), others);
}

void tst_MainWindowFaultsOthers::whatCannotBeKeptInItsFolderStaysBesideTheFile()
{
    letNothingBeKept();
    QVERIFY(writeFile(story(), others));
    const Warnings warnings;
    QVERIFY(window->saveTo(story()));
    QCOMPARE(warnings.lines().size(), 1);
    QVERIFY(warnings.lines().front().startsWith(QStringLiteral("Failed to keep a copy:")));
    QCOMPARE(readFile(story()), smallDocument());
    QStringList files = filesBelow(folder());
    files.removeAll(QStringLiteral("story.scene"));
    QCOMPARE(files.size(), 1);
    QCOMPARE(readFile(folder() + QLatin1Char('/') + files.front()), others);
    QVERIFY2(notice().contains(files.front()), qPrintable(notice()));
}

void tst_MainWindowFaultsOthers::whatCannotBeKeptAtAllIsNotReplaced()
{
    letNothingBeKept();
    QVERIFY(writeFile(story(), others));
    const Warnings warnings;
    {
        // The first is that of the save itself.
        const FaultyFiles faulty(folder(),
                                 {{Call::createUnnamed, 2, ENOSPC, true}, {Call::create, 1, ENOSPC, true}});
        QVERIFY(!window->saveTo(story()));
    }
    QCOMPARE(warnings.lines().size(), 2);
    const QString why = QStringLiteral("what is in the file is not from this window and could not be kept: "
                                       "Not a directory");
    QCOMPARE(warnings.lines().back(),
             QStringLiteral("Couldn't write the scene file: \"%1\" \"%2\"").arg(story(), why));
    QCOMPARE(readFile(story()), others);
    QCOMPARE(filesBelow(folder()), QStringList{QStringLiteral("story.scene")});
    QVERIFY2(notice().contains(why), qPrintable(notice()));
    // Another place takes the work all the same.
    QVERIFY(window->saveTo(folder() + QStringLiteral("/mine.scene")));
    QCOMPARE(readFile(folder() + QStringLiteral("/mine.scene")), smallDocument());
}

void tst_MainWindowFaultsOthers::whoSavesInBetweenLosesNothing_data()
{
    QTest::addColumn<bool>("isNew"); // for this window; the other one makes it
    QTest::newRow("the document's own file") << false;
    QTest::newRow("a file that was not there") << true;
}

// Between the look at what stands there and the moment at which it is replaced.
void tst_MainWindowFaultsOthers::whoSavesInBetweenLosesNothing()
{
    QFETCH(const bool, isNew);
    const QString file = isNew ? folder() + QStringLiteral("/new.scene") : story();
    {
        const auto save = [&] {
            QFile::remove(file); // as by a rename over it
            QVERIFY(writeFile(file, others));
        };
        const FaultyFiles faulty(folder(),
                                 {{isNew ? Call::rename : Call::exchange, isNew ? 2 : 1, 0, false, save}});
        QVERIFY(window->saveTo(file));
        QCOMPARE(faulty.hits(), 1);
    }
    QCOMPARE(readFile(file), smallDocument());
    const QStringList putBy = filesBelow(folder()).filter(QStringLiteral("_other.scene"));
    QCOMPARE(putBy.size(), 1);
    QCOMPARE(readFile(folder() + QLatin1Char('/') + putBy.front()), others);
    QCOMPARE(filesBelow(folder()).size(), isNew ? 3 : 2);
    QVERIFY2(notice().contains(putBy.front()), qPrintable(notice()));
    // That was the last that is known of the file.
    QVERIFY(window->saveTo(file));
    QCOMPARE(filesBelow(folder()).size(), isNew ? 3 : 2);
}

// The new file is in its place, and the folder is being synced.
void tst_MainWindowFaultsOthers::whoWritesBehindASaveLosesNothing()
{
    {
        Fault moment{Call::sync, 2};
        moment.meanwhile = [this] { QVERIFY(writeFile(story(), others)); };
        const FaultyFiles faulty(folder(), {moment});
        QVERIFY(window->saveTo(story()));
        QCOMPARE(faulty.hits(), 1);
    }
    QCOMPARE(readFile(story()).toHex(), others.toHex());
    QVERIFY(window->saveTo(story()));
    const QStringList copies = filesBelow(kept());
    QCOMPARE(copies.size(), 1);
    QCOMPARE(readFile(kept() + QLatin1Char('/') + copies.front()).toHex(), others.toHex());
}

void tst_MainWindowFaultsOthers::whoWritesBeforeASaveInPlaceLosesNothing_data()
{
    QTest::addColumn<std::vector<Fault>>("faults");
    QTest::addColumn<QByteArray>("theirs");
    const std::vector<Fault> noRoom{{Call::createUnnamed, 1, EACCES, true}};
    const std::vector<Fault> mounted{{Call::exchange, 1, EBUSY, true}, {Call::rename, 2, EBUSY, true}};
    const QByteArray asLong(smallDocument().size(), 'o');
    QTest::newRow("no room beside it") << noRoom << others;
    QTest::newRow("no room beside it, as long as before") << noRoom << asLong;
    QTest::newRow("mounted by itself") << mounted << others;
    QTest::newRow("mounted by itself, as long as before") << mounted << asLong;
}

// What is to be written over is read first, in case that it has to be brought back.
void tst_MainWindowFaultsOthers::whoWritesBeforeASaveInPlaceLosesNothing()
{
    QFETCH(std::vector<Fault>, faults);
    QFETCH(const QByteArray, theirs);
    faults.push_back({Call::read, 1, 0, false, [&] { QVERIFY(writeFile(story(), theirs)); }});
    {
        const FaultyFiles faulty(folder(), faults);
        QVERIFY(window->saveTo(story()));
        QCOMPARE(faulty.hits(int(faults.size()) - 1), 1);
    }
    QCOMPARE(readFile(story()), smallDocument());
    QCOMPARE(filesBelow(folder()), QStringList{QStringLiteral("story.scene")});
    const QStringList copies = filesBelow(kept());
    QCOMPARE(copies.size(), 1);
    QCOMPARE(readFile(kept() + QLatin1Char('/') + copies.front()), theirs);
    QVERIFY2(notice().contains(copies.front()), qPrintable(notice()));
}

void tst_MainWindowFaultsOthers::saveInPlaceThatIsOvertakenAgainFails()
{
    int times = 0;
    const auto write = [&] { QVERIFY(writeFile(story(), QByteArray(++times, 'o'))); };
    const Warnings warnings;
    {
        // It is opened to be written only when it is known that it cannot be replaced.
        const FaultyFiles faulty(folder(), {{Call::exchange, 1, EBUSY, true},
                                            {Call::rename, 2, EBUSY, true},
                                            {Call::openForWriting, 1, 0, true, write}});
        QVERIFY(!window->saveTo(story()));
    }
    const QString why = QStringLiteral("another program has written to the file meanwhile");
    QCOMPARE(warnings.lines(),
             QStringList{QStringLiteral("Couldn't write the scene file: \"%1\" \"%2\"").arg(story(), why)});
    QCOMPARE(times, 2);
    QCOMPARE(readFile(story()), QByteArray("oo"));
    QCOMPARE(filesBelow(folder()), QStringList{QStringLiteral("story.scene")});
    QVERIFY2(notice().contains(why), qPrintable(notice()));
    QVERIFY(window->saveTo(story()));
    QCOMPARE(readFile(story()), smallDocument());
}

void tst_MainWindowFaultsOthers::saveWithoutAnExchangeOfNamesLeavesNothing_data()
{
    QTest::addColumn<int>("error");
    QTest::newRow("unknown to the disk") << EINVAL;
    QTest::newRow("unknown to the system") << ENOSYS;
    QTest::newRow("forbidden") << EPERM;
    QTest::newRow("not supported") << EOPNOTSUPP;
}

// Nor does anything else, for who has nothing to fear.
void tst_MainWindowFaultsOthers::saveWithoutAnExchangeOfNamesLeavesNothing()
{
    QFETCH(const int, error);
    const FaultyFiles faulty(folder(),
                             {{Call::exchange, 1, error, true}, {Call::moveToFree, 1, error, true}});
    for (const QString &name : {QStringLiteral("/story.scene"), QStringLiteral("/new.scene")})
        QVERIFY(window->saveTo(folder() + name));
    QVERIFY(faulty.hits() > 0);
    QCOMPARE(filesBelow(folder()).size(), 2);
    QCOMPARE(readFile(folder() + QStringLiteral("/new.scene")), smallDocument());
}

void tst_MainWindowFaultsOthers::whoTakesTheNameOfAnAutosaveCopyLosesNothing_data()
{
    QTest::addColumn<std::vector<Fault>>("faults");
    QTest::addColumn<Fault>("moment");
    QTest::newRow("as it is replaced") << std::vector<Fault>() << Fault{Call::rename, 2};
    QTest::newRow("as it is opened to be written over")
        << std::vector<Fault>{{Call::createUnnamed, 1, EACCES}} << Fault{Call::openForWriting, 1};
}

// This window has written it in the same second, and would replace it.
void tst_MainWindowFaultsOthers::whoTakesTheNameOfAnAutosaveCopyLosesNothing()
{
    QFETCH(std::vector<Fault>, faults);
    QFETCH(Fault, moment);
    StoryStage stage;
    AutosaveFolder autosaves;
    const QString copy = autosaves.keepAt(second, stage.document).path;
    stage.tabs.add();
    moment.meanwhile = [&] {
        QVERIFY(QFile::rename(copy, folder() + QStringLiteral("/away"))); // lest its inode be taken again
        QVERIFY(writeFile(copy, "theirs"));
    };
    faults.push_back(moment);
    {
        const FaultyFiles faulty(QFileInfo(copy).path(), faults);
        QCOMPARE(autosaves.keepAt(second, stage.document).trouble, QString());
        QCOMPARE(faulty.hits(int(faults.size()) - 1), 1);
    }
    QList<QByteArray> contents;
    for (const QString &file : filesBelow(QFileInfo(copy).path())) {
        QVERIFY2(file.endsWith(QStringLiteral("_autosaveVersion.scene")), qPrintable(file));
        contents << readFile(QFileInfo(copy).path() + QLatin1Char('/') + file);
    }
    QCOMPARE(contents.size(), 2);
    QVERIFY(contents.contains("theirs"));
    QVERIFY(contents.contains(stage.document.bytes()));
}

void tst_MainWindowFaultsOthers::freeNameIsFoundOnEveryDisk_data()
{
    QTest::addColumn<std::vector<Fault>>("faults");
    QTest::addColumn<bool>("isTaken");
    for (const bool taken : {false, true}) {
        const char *name = taken ? "taken" : "free";
        for (const auto &[why, error] :
             {std::pair("unknown to the disk", EINVAL), std::pair("unknown to the system", ENOSYS),
              std::pair("forbidden by a container", EPERM)})
            QTest::addRow("%s, no move to a free name: %s", name, why)
                << std::vector<Fault>{{Call::moveToFree, 1, error, true}} << taken;
        for (const auto &[why, error] : {std::pair("forbidden", EPERM), std::pair("unknown", ENOSYS),
                                         std::pair("not supported", EOPNOTSUPP)})
            QTest::addRow("%s, nor second names: %s", name, why)
                << std::vector<Fault>{{Call::moveToFree, 1, EINVAL, true}, {Call::secondName, 1, error, true}}
                << taken;
    }
}

void tst_MainWindowFaultsOthers::freeNameIsFoundOnEveryDisk()
{
    QFETCH(const std::vector<Fault>, faults);
    QFETCH(const bool, isTaken);
    const StoryStage stage;
    QVERIFY(QDir().mkpath(autosaves()));
    QStringList expected{copyOf(0)};
    if (isTaken) {
        QVERIFY(writeFile(autosaves() + copyOf(0), "theirs"));
        expected << copyOf(1);
    }
    {
        const FaultyFiles faulty(autosaves().chopped(1), faults);
        const AutosaveFolder::Copy copy = AutosaveFolder().keepAt(second, stage.document);
        QCOMPARE(copy.trouble, QString());
        QCOMPARE(copy.path, autosaves() + expected.back());
        for (int i = 0; i < int(faults.size()); ++i)
            QCOMPARE(faulty.hits(i), isTaken ? 2 : 1);
    }
    QCOMPARE(filesBelow(autosaves()), expected);
    QCOMPARE(readFile(autosaves() + expected.back()), stage.document.bytes());
    if (isTaken)
        QCOMPARE(readFile(autosaves() + copyOf(0)), QByteArray("theirs"));
}

// An empty file holds it until the copy has it.
void tst_MainWindowFaultsOthers::nameThatWasHeldIsGivenBack()
{
    const StoryStage stage;
    QVERIFY(QDir().mkpath(autosaves()));
    const Warnings warnings;
    const FaultyFiles faulty(autosaves().chopped(1), {{Call::moveToFree, 1, EINVAL, true},
                                                      {Call::secondName, 1, EPERM, true},
                                                      {Call::rename, 2, EIO}}); // the first names the copy
    QCOMPARE(AutosaveFolder().keepAt(second, stage.document).trouble, QStringLiteral("Input/output error"));
    QCOMPARE(faulty.hits(2), 1);
    QCOMPARE(warnings.lines().size(), 1);
    QCOMPARE(filesBelow(autosaves()), QStringList());
}

QTEST_MAIN(tst_MainWindowFaultsOthers)
#include "tst_mainwindow_faults_others.moc"
