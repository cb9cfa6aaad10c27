#include "app/windowsupport.h"
#include "support/testsupport.h"

#include <QDateTime>
#include <QDir>

namespace {

const QRegularExpression namePattern(QStringLiteral("^Yarnsmith_(\\d{8}_\\d{6})_autosaveVersion\\.scene$"));
const QString stampFormat = QStringLiteral("yyyyMMdd_hhmmss");

QTimer *timerOf(const MainWindow &window)
{
    return window.findChild<QTimer *>(QString(), Qt::FindDirectChildrenOnly);
}

} // namespace

class tst_MainWindowAutosave : public HomeTest
{
    Q_OBJECT

private slots:
    void timerRunsEveryMinute();
    void timerSaves();
    void timerIsLeftAloneBySaving();
    void timerFiresDuringAQuestion();

    void fileStandsInItsFolder();
    void folderOfTheUsersChoiceIsUsed();
    void existingFolderIsUsed();
    void pathIsLogged();
    void fileHoldsEveryTab();
    void fileCanBeOpened();
    void windowWithoutTabsIsSavedToo();
    void cutEventsAreSaved();
    void secondRunInTheSameSecondReplacesTheFirst();
    void earlierFilesStay();
    void documentsPathStays();
    void nothingIsAsked();
    void missingFolderIsReported_data();
    void missingFolderIsReported();
    void failedWriteIsReported();

private:
    void prepare() override { documents = path(QStringLiteral("Documents")); }
    QString folder() const { return documents + QStringLiteral("/Fablegrid/Autosavedir"); }
    QStringList files() const { return QDir(folder()).entryList(QDir::Files | QDir::Hidden, QDir::Name); }
    QString onlyFile() const
    {
        return files().size() == 1 ? folder() + QLatin1Char('/') + files().front() : QString();
    }

    QString documents;
};

void tst_MainWindowAutosave::timerRunsEveryMinute()
{
    const MainWindow window;
    QCOMPARE(window.findChildren<QTimer *>(QString(), Qt::FindDirectChildrenOnly).size(), 1);
    QCOMPARE(timerOf(window)->interval(), 60000);
    QVERIFY(timerOf(window)->isActive());
    QVERIFY(!timerOf(window)->isSingleShot());
    QVERIFY(files().isEmpty());
}

void tst_MainWindowAutosave::timerSaves()
{
    const MainWindow window;
    timerOf(window)->setInterval(1);
    QTRY_VERIFY(!files().isEmpty());
    timerOf(window)->stop();
    QCOMPARE(readFile(folder() + QLatin1Char('/') + files().front()).toHex(), documentBytes({{}}).toHex());
}

void tst_MainWindowAutosave::timerIsLeftAloneBySaving()
{
    MainWindow window;
    const int id = timerOf(window)->timerId();
    const DialogAnswers answers({chooseFile(path(QStringLiteral("story.scene")))});
    window.sl_saveFile();
    window.autosave();
    window.clearTabs();
    QCOMPARE(timerOf(window)->timerId(), id); // a restart would take a new one
    QVERIFY(timerOf(window)->isActive());
}

void tst_MainWindowAutosave::timerFiresDuringAQuestion()
{
    MainWindow window;
    window.addNodeGraphTab();
    bool savedMeanwhile = false;
    const DialogAnswers answers({[&](QDialog *dialog) {
        timerOf(window)->setInterval(1);
        savedMeanwhile = QTest::qWaitFor([this] { return !files().isEmpty(); });
        timerOf(window)->stop();
        press(QMessageBox::No)(dialog);
    }});
    window.closeTab(1);
    QVERIFY(savedMeanwhile);
    QCOMPARE(readFile(folder() + QLatin1Char('/') + files().front()).toHex(),
             documentBytes({{}, {}}).toHex());
}

void tst_MainWindowAutosave::fileStandsInItsFolder()
{
    MainWindow window;
    QVERIFY(!QFileInfo::exists(documents));
    const QString before = QDateTime::currentDateTime().toString(stampFormat);
    window.autosave();
    const QString after = QDateTime::currentDateTime().toString(stampFormat);

    QCOMPARE(files().size(), 1);
    const QRegularExpressionMatch name = namePattern.match(files().front());
    QVERIFY2(name.hasMatch(), qPrintable(files().front()));
    QVERIFY(before <= name.captured(1) && name.captured(1) <= after);
}

void tst_MainWindowAutosave::folderOfTheUsersChoiceIsUsed()
{
    documents = path(QStringLiteral("My Papers"));
    QVERIFY(QDir().mkpath(path(QStringLiteral("config"))));
    QVERIFY(
        writeFile(path(QStringLiteral("config/user-dirs.dirs")), "XDG_DOCUMENTS_DIR=\"$HOME/My Papers\"\n"));
    MainWindow window;
    window.autosave();
    QCOMPARE(files().size(), 1);
}

void tst_MainWindowAutosave::existingFolderIsUsed()
{
    QVERIFY(QDir().mkpath(folder()));
    const QString other = folder() + QStringLiteral("/other.scene");
    QVERIFY(writeFile(other, "kept"));
    MainWindow window;
    window.autosave();
    QCOMPARE(files().size(), 2);
    QCOMPARE(readFile(other), QByteArray("kept"));
}

void tst_MainWindowAutosave::pathIsLogged()
{
    MainWindow window;
    const LogCapture log;
    window.autosave();
    const QString expected = QStringLiteral("Autosaved scene to: \"%1\"").arg(onlyFile());
    QCOMPARE(log.lines().last(), expected);
    QCOMPARE(log.count(expected), 1);
    QVERIFY(!log.contains(QStringLiteral("Tabs to save 1")));
}

void tst_MainWindowAutosave::fileHoldsEveryTab()
{
    MainWindow window;
    window.addNodeGraphTab();
    addEvent(sceneOf(window, 0), QStringLiteral("Dawn"), QStringLiteral("It begins."))->setPos(1, 2);
    addEvent(sceneOf(window, 1), QStringLiteral("Dusk"), QStringLiteral("It ends."))->setPos(3, 4);
    tabsOf(window)->tabBar()->moveTab(0, 1);
    window.autosave();

    Record dawn{QStringLiteral("Dawn"), QPointF(1, 2)};
    dawn.endOfStory = true;
    dawn.description = QStringLiteral("It begins.");
    Record dusk{QStringLiteral("Dusk"), QPointF(3, 4)};
    dusk.endOfStory = true;
    dusk.description = QStringLiteral("It ends.");
    QCOMPARE(readFile(onlyFile()).toHex(), documentBytes({{dawn}, {dusk}}).toHex());
}

void tst_MainWindowAutosave::fileCanBeOpened()
{
    MainWindow window;
    window.addNodeGraphTab();
    addEvent(sceneOf(window, 0), QStringLiteral("Dawn"), QStringLiteral("It begins."));
    addEvent(sceneOf(window, 1), QStringLiteral("Dusk"), QStringLiteral("It ends."));
    window.autosave();
    window.clearTabs();

    const DialogAnswers answers({chooseFile(onlyFile())});
    window.sl_loadFile();
    QCOMPARE(tabTitles(window), QStringList({QStringLiteral("Story 1"), QStringLiteral("Story 2")}));
    QCOMPARE(sceneOf(window, 0)->nodes().front()->title(), QStringLiteral("Dawn"));
    QCOMPARE(sceneOf(window, 1)->nodes().front()->title(), QStringLiteral("Dusk"));
    QCOMPARE(panelTexts(window), QStringList{QStringLiteral("It begins.")});
}

void tst_MainWindowAutosave::windowWithoutTabsIsSavedToo()
{
    MainWindow window;
    window.clearTabs();
    window.autosave();
    QCOMPARE(readFile(onlyFile()).toHex(), QByteArray("00000000"));
}

// A cut event waits hidden for its paste; if that never comes, the file still has it.
void tst_MainWindowAutosave::cutEventsAreSaved()
{
    MainWindow window;
    NodegraphScene *scene = sceneOf(window, 0);
    addEvent(scene, QStringLiteral("Dawn"), QStringLiteral("It begins."))->setPos(1, 2);
    addEvent(scene, QStringLiteral("Dusk"), QStringLiteral("It ends."))->setPos(3, 4);
    Record dawn{QStringLiteral("Dawn"), QPointF(1, 2)};
    dawn.description = QStringLiteral("It begins.");
    Record dusk{QStringLiteral("Dusk"), QPointF(3, 4), 1, 0, true};
    dusk.description = QStringLiteral("It ends.");
    scene->sl_deselectCurrentNode(); // or it alone would be cut
    actionOf(window, "actionSelect_All")->trigger();
    actionOf(window, "actionCut")->trigger();
    for (const Node *node : scene->nodes())
        QVERIFY(!node->isVisible());
    window.autosave();
    QCOMPARE(readFile(onlyFile()).toHex(), documentBytes({{dawn, dusk}}).toHex());
    for (const Node *node : scene->nodes())
        QVERIFY2(!node->isVisible(), "still cut");

    MainWindow next;
    QCOMPARE(openFile(next, onlyFile()), QString());
    QCOMPARE(titlesOf(sceneOf(next, 0)), QStringList({QStringLiteral("Dawn"), QStringLiteral("Dusk")}));
    for (const Node *node : sceneOf(next, 0)->nodes())
        QVERIFY(node->isVisible());
}

void tst_MainWindowAutosave::secondRunInTheSameSecondReplacesTheFirst()
{
    MainWindow window;
    // Both runs must fall into one second of the clock, so a pair that did not is tried again.
    for (int attempt = 0; attempt < 20; ++attempt) {
        QDir(folder()).removeRecursively();
        window.clearTabs();
        window.autosave();
        const QString first = onlyFile();
        QCOMPARE(readFile(first).toHex(), documentBytes({}).toHex());
        window.addNodeGraphTab();
        window.addNodeGraphTab();
        window.autosave();
        if (files().size() == 2)
            continue;
        QCOMPARE(onlyFile(), first);
        QCOMPARE(readFile(first).toHex(), documentBytes({{}, {}}).toHex());
        return;
    }
    QFAIL("no two runs fell into the same second");
}

void tst_MainWindowAutosave::earlierFilesStay()
{
    QVERIFY(QDir().mkpath(folder()));
    QStringList earlier;
    for (int minute = 10; minute < 40; ++minute) {
        earlier << QStringLiteral("Yarnsmith_20200101_12%100_autosaveVersion.scene").arg(minute);
        QVERIFY(writeFile(folder() + QLatin1Char('/') + earlier.last(), "old"));
    }
    MainWindow window;
    window.autosave();
    QCOMPARE(files().size(), earlier.size() + 1);
    QCOMPARE(files().mid(0, earlier.size()), earlier);
}

void tst_MainWindowAutosave::documentsPathStays()
{
    MainWindow window;
    window.autosave();
    QCOMPARE(window.currentFilePath(), QString());

    const QString file = path(QStringLiteral("story.scene"));
    const DialogAnswers answers({chooseFile(file)});
    window.sl_saveAsFile();
    window.addNodeGraphTab();
    window.autosave();
    QCOMPARE(window.currentFilePath(), file);
    QCOMPARE(readFile(file).toHex(), documentBytes({{}}).toHex());
}

void tst_MainWindowAutosave::nothingIsAsked()
{
    MainWindow window;
    const DialogAnswers nothing;
    window.autosave();
    QCoreApplication::processEvents();
    QCOMPARE(files().size(), 1);
}

void tst_MainWindowAutosave::missingFolderIsReported_data()
{
    QTest::addColumn<QString>("blocked");
    QTest::newRow("documents folder") << QStringLiteral("Documents");
    QTest::newRow("autosave folder") << QStringLiteral("Documents/Fablegrid");
}

void tst_MainWindowAutosave::missingFolderIsReported()
{
    QFETCH(const QString, blocked);
    const QString path = home->filePath(blocked);
    QVERIFY(QDir().mkpath(QFileInfo(path).path()));
    QVERIFY(writeFile(path, "a file where a folder should be"));
    MainWindow window;
    const LogCapture log;
    const QRegularExpression line(
        QStringLiteral("^Failed to open autosave file for writing: \"%1/Yarnsmith_\\d{8}_\\d{6}_"
                       "autosaveVersion\\.scene\"$")
            .arg(QRegularExpression::escape(folder())));
    QTest::ignoreMessage(QtWarningMsg, line);
    window.autosave();

    QCOMPARE(log.lines().size(), 1);
    QCOMPARE(readFile(path), QByteArray("a file where a folder should be"));
    QVERIFY(timerOf(window)->isActive()); // the next try comes by itself
}

void tst_MainWindowAutosave::failedWriteIsReported()
{
#ifdef Q_OS_UNIX
    MainWindow window;
    addEvent(sceneOf(window, 0), QStringLiteral("new"), QString(100, QLatin1Char('x')));
    QTest::ignoreMessage(QtWarningMsg,
                         QRegularExpression(QStringLiteral(
                             "^Failed to write autosave file: \".*_autosaveVersion\\.scene\" \".+\"$")));
    {
        const FullDisk full(16);
        window.autosave();
    }
    QCOMPARE(files(), QStringList());
#endif
}

QTEST_MAIN(tst_MainWindowAutosave)
#include "tst_mainwindow_autosave.moc"
