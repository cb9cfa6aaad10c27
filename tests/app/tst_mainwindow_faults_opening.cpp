#include "app/faultstest.h"
#include "app/windowsupport.h"

namespace {

using Call = FaultyFiles::Call;
using Fault = FaultyFiles::Fault;

const QString storyName = QStringLiteral("story.scene");
const QString autosaves = QStringLiteral("Fablegrid/Autosavedir");
const QString kept = QStringLiteral("Fablegrid/Kept");
const QByteArray oldBytes = documentBytes({{}, {}});
QByteArray longerBytes() { return smallDocument() + smallDocument(); }
const QString cannotWrite = QStringLiteral("Couldn't open file for writing.");

/// No file can be made in any folder, on a disk that knows unnamed files and on one that does not.
std::vector<Fault> noNewFile(bool unnamed, int error)
{
    if (unnamed)
        return {{Call::createUnnamed, 1, error, true}};
    return {{Call::createUnnamed, 1, EOPNOTSUPP, true}, {Call::create, 1, error, true}};
}

} // namespace

/// What becomes of a document that cannot be opened for writing, or not in the usual way.
class tst_MainWindowFaultsOpening : public FaultsTest
{
    Q_OBJECT

private slots:
    void deniedFolderIsWrittenDirectly_data();
    void deniedFolderIsWrittenDirectly();
    void directWriteThatFailsIsReported_data();
    void directWriteThatFailsIsReported();
    void fileThatCannotBeBroughtBackIsTold();
    void failedOpeningChangesNothing_data();
    void failedOpeningChangesNothing();
    void failedOpeningOfAnAutosaveLeavesNothing_data();
    void failedOpeningOfAnAutosaveLeavesNothing();
    void unusablePathIsReported_data();
    void unusablePathIsReported();
    void impossibleNameIsReported_data();
    void impossibleNameIsReported();
    void longNameCanBeSavedAgain_data();
    void longNameCanBeSavedAgain();
    void newFileOfALongNameThatFailsLeavesNothing();

private:
    void prepare() override
    {
        QVERIFY(QDir().mkpath(path(autosaves)));
        // What is going to stand in the file is kept already, so that the calls of a save are the file's
        // alone.
        QVERIFY(QDir().mkpath(path(kept)));
        QVERIFY(writeFile(path(kept) + QStringLiteral("/20200101_120000_000_other.scene"), oldBytes));
        QVERIFY(writeFile(path(kept) + QStringLiteral("/20200101_120000_001_other.scene"), longerBytes()));
        QVERIFY(writeFile(path(storyName), smallDocument()));
        makeWindow();
        window->loadFrom(path(storyName));
        QVERIFY(writeFile(path(storyName), oldBytes));
    }
    QString path(const QString &name) const { return home->filePath(QStringLiteral("Documents/")) + name; }
    QStringList files() const
    {
        QStringList names = filesBelow(path({}));
        names.removeIf([](const QString &name) { return name.startsWith(kept); });
        return names;
    }
    QStringList saveAgain(const std::vector<Fault> &faults)
    {
        return warningsOf(path({}), faults, [this] { window->sl_saveFile(); });
    }
    QStringList autosave(const std::vector<Fault> &faults)
    {
        return warningsOf(path({}), faults, [this] { window->autosave(); });
    }
};

void tst_MainWindowFaultsOpening::deniedFolderIsWrittenDirectly_data()
{
    QTest::addColumn<bool>("unnamed");
    QTest::addColumn<int>("error");
    QTest::newRow("unnamed") << true << EACCES;
    QTest::newRow("named") << false << EACCES;
    QTest::newRow("mounted by itself in a read-only folder") << true << EROFS;
}

// A file that may be written in a folder that may not.
void tst_MainWindowFaultsOpening::deniedFolderIsWrittenDirectly()
{
    QFETCH(const bool, unnamed);
    QFETCH(const int, error);
    for (const QByteArray &former : {oldBytes, longerBytes()}) {
        QVERIFY(writeFile(path(storyName), former));
        QCOMPARE(saveAgain(noNewFile(unnamed, error)), QStringList());
        QCOMPARE(readFile(path(storyName)), smallDocument());
        QCOMPARE(files(), QStringList{storyName});
    }
}

void tst_MainWindowFaultsOpening::directWriteThatFailsIsReported_data()
{
    QTest::addColumn<std::vector<Fault>>("faults");
    QTest::addColumn<QString>("reason");
    const QString broken = QStringLiteral("Input/output error");
    QTest::newRow("write") << std::vector<Fault>{{Call::write, 1, EIO, true}} << broken;
    QTest::newRow("disk full in the midst")
        << std::vector<Fault>{{Call::write, 1}, {Call::write, 2, ENOSPC}, {Call::write, 3, ENOSPC}}
        << QStringLiteral("No space left on device");
    QTest::newRow("sync") << std::vector<Fault>{{Call::sync, 1, EIO, true}} << broken;
    QTest::newRow("close") << std::vector<Fault>{{Call::close, 1, EIO, true}} << broken;
}

void tst_MainWindowFaultsOpening::directWriteThatFailsIsReported()
{
    QFETCH(std::vector<Fault>, faults);
    QFETCH(const QString, reason);
    faults.push_back({Call::createUnnamed, 1, EACCES, true});
    QCOMPARE(
        saveAgain(faults),
        QStringList{
            QStringLiteral("Couldn't write the scene file: \"%1\" \"%2\"").arg(path(storyName), reason)});
    QCOMPARE(readFile(path(storyName)), oldBytes);
    QCOMPARE(files(), QStringList{storyName});
    QCOMPARE(saveAgain({}), QStringList());
    QCOMPARE(readFile(path(storyName)), smallDocument());
}

void tst_MainWindowFaultsOpening::fileThatCannotBeBroughtBackIsTold()
{
    const std::vector<Fault> broken{
        {Call::createUnnamed, 1, EACCES, true}, {Call::write, 1}, {Call::write, 2, EIO, true}};
    const QString reason =
        QStringLiteral("Input/output error; what was in the file before could not be brought back");
    QCOMPARE(
        saveAgain(broken),
        QStringList{
            QStringLiteral("Couldn't write the scene file: \"%1\" \"%2\"").arg(path(storyName), reason)});
    QVERIFY(readFile(path(storyName)) != oldBytes);
    // What was read from it once is not in it any more.
    window->clearTabs();
    const QStringList copies = filesBelow(path(kept)).filter(QStringLiteral("_new.scene"));
    QCOMPARE(copies.size(), 1);
    QCOMPARE(readFile(path(kept) + QLatin1Char('/') + copies.front()), smallDocument());
}

void tst_MainWindowFaultsOpening::failedOpeningChangesNothing_data()
{
    QTest::addColumn<std::vector<Fault>>("faults");
    for (const bool unnamed : {true, false}) {
        for (const auto &[name, error] :
             {std::pair("I/O error", EIO), std::pair("disk full", ENOSPC), std::pair("quota used up", EDQUOT),
              std::pair("too many open files", EMFILE)})
            QTest::addRow("%s, %s", unnamed ? "unnamed" : "named", name) << noNewFile(unnamed, error);
        for (const auto &[name, error] :
             {std::pair("denied in every way", EACCES), std::pair("read-only disk", EROFS)}) {
            std::vector<Fault> denied = noNewFile(unnamed, error);
            denied.push_back({Call::openForWriting, 1, error, true});
            QTest::addRow("%s, %s", unnamed ? "unnamed" : "named", name) << denied;
        }
    }
}

void tst_MainWindowFaultsOpening::failedOpeningChangesNothing()
{
    QFETCH(const std::vector<Fault>, faults);
    QCOMPARE(saveAgain(faults), QStringList{cannotWrite});
    QCOMPARE(readFile(path(storyName)), oldBytes);
    QCOMPARE(files(), QStringList{storyName});
    QCOMPARE(window->currentFilePath(), path(storyName));

    QCOMPARE(saveAgain({}), QStringList());
    QCOMPARE(readFile(path(storyName)), smallDocument());
    QCOMPARE(files(), QStringList{storyName});
}

// It has a new name each time, so there is nothing that could be written in place.
void tst_MainWindowFaultsOpening::failedOpeningOfAnAutosaveLeavesNothing_data()
{
    QTest::addColumn<std::vector<Fault>>("faults");
    for (const bool unnamed : {true, false}) {
        for (const auto &[name, error] :
             {std::pair("I/O error", EIO), std::pair("disk full", ENOSPC), std::pair("quota used up", EDQUOT),
              std::pair("read-only disk", EROFS), std::pair("too many open files", EMFILE),
              std::pair("denied", EACCES)})
            QTest::addRow("%s, %s", unnamed ? "unnamed" : "named", name) << noNewFile(unnamed, error);
    }
}

void tst_MainWindowFaultsOpening::failedOpeningOfAnAutosaveLeavesNothing()
{
    QFETCH(const std::vector<Fault>, faults);
    const QStringList warnings = autosave(faults);
    QCOMPARE(warnings.size(), 1);
    const QRegularExpression line(
        QStringLiteral("^Failed to open autosave file for writing: \"%1/Yarnsmith_\\d{8}_\\d{6}_"
                       "autosaveVersion\\.scene\"$")
            .arg(QRegularExpression::escape(path(autosaves))));
    QVERIFY2(line.match(warnings.front()).hasMatch(), qPrintable(warnings.front()));
    QCOMPARE(files(), QStringList{storyName});
    QCOMPARE(readFile(path(storyName)), oldBytes);

    QCOMPARE(autosave({}), QStringList());
    QCOMPARE(files().size(), 2);
    QCOMPARE(readFile(path(files().front())), smallDocument());
    QCOMPARE(window->currentFilePath(), path(storyName));
}

void tst_MainWindowFaultsOpening::unusablePathIsReported_data()
{
    QTest::addColumn<QString>("name"); // in the folder
    QTest::newRow("folder") << autosaves;
    QTest::newRow("folder, named as such") << autosaves + QLatin1Char('/');
    QTest::newRow("missing folder") << QStringLiteral("missing/new.scene");
    QTest::newRow("file as a folder") << storyName + QStringLiteral("/new.scene");
}

void tst_MainWindowFaultsOpening::unusablePathIsReported()
{
    QFETCH(const QString, name);
    QCOMPARE(warningsOf(path({}), {}, [&] { window->saveTo(path(name)); }), QStringList{cannotWrite});
    QCOMPARE(files(), QStringList{storyName});
    QCOMPARE(readFile(path(storyName)), oldBytes);
    QVERIFY(QFileInfo(path(autosaves)).isDir());
    QCOMPARE(saveAgain({}), QStringList());
    QCOMPARE(readFile(path(storyName)), smallDocument());
}

void tst_MainWindowFaultsOpening::impossibleNameIsReported_data()
{
    QTest::addColumn<QString>("name");
    QTest::addColumn<QString>("warning");
    // The disk hears the name only when the document is whole.
    QTest::newRow("none") << QString()
                          << QStringLiteral(
                                 "Couldn't write the scene file: \"\" \"No such file or directory\"");
    QTest::newRow("too long") << QString(256, QLatin1Char('x')) << cannotWrite;
}

void tst_MainWindowFaultsOpening::impossibleNameIsReported()
{
    QFETCH(const QString, name);
    QFETCH(const QString, warning);
    const QString file = name.isEmpty() ? name : path(name);
    QCOMPARE(warningsOf(path({}), {}, [&] { window->saveTo(file); }), QStringList{warning});
    QCOMPARE(files(), QStringList{storyName});
    QCOMPARE(readFile(path(storyName)), oldBytes);
    QCOMPARE(saveAgain({}), QStringList());
    QCOMPARE(readFile(path(storyName)), smallDocument());
}

void tst_MainWindowFaultsOpening::longNameCanBeSavedAgain_data()
{
    QTest::addColumn<int>("length");
    QTest::newRow("temporary name fits") << 248;
    QTest::newRow("temporary name does not") << 249;
    QTest::newRow("longest") << 255;
}

// The temporary name beside a file is longer than the file's own.
void tst_MainWindowFaultsOpening::longNameCanBeSavedAgain()
{
    QFETCH(const int, length);
    const QString name(length, QLatin1Char('x'));
    QCOMPARE(warningsOf(path({}), {}, [&] { window->saveTo(path(name)); }), QStringList());
    QVERIFY(writeFile(path(name), oldBytes));
    QCOMPARE(warningsOf(path({}), {}, [&] { window->saveTo(path(name)); }), QStringList());
    QCOMPARE(readFile(path(name)), smallDocument());
    QCOMPARE(files(), QStringList({storyName, name}));
}

void tst_MainWindowFaultsOpening::newFileOfALongNameThatFailsLeavesNothing()
{
    const QString name(249, QLatin1Char('x'));
    const std::vector<Fault> full{{Call::write, 1}, {Call::write, 2, ENOSPC}, {Call::write, 3, ENOSPC}};
    QCOMPARE(warningsOf(path({}), full, [&] { window->saveTo(path(name)); }),
             QStringList{QStringLiteral("Couldn't write the scene file: \"%1\" \"No space left on device\"")
                             .arg(path(name))});
    QCOMPARE(files(), QStringList{storyName});
    QCOMPARE(warningsOf(path({}), {}, [&] { window->saveTo(path(name)); }), QStringList());
    QCOMPARE(readFile(path(name)), smallDocument());
}

QTEST_MAIN(tst_MainWindowFaultsOpening)
#include "tst_mainwindow_faults_opening.moc"
