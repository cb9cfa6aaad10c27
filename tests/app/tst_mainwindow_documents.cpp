#include "app/windowsupport.h"
#include "support/testsupport.h"

#include <QDir>
#include <QSignalSpy>

namespace {

const QString cannotWrite = QStringLiteral("Couldn't open file for writing.");

void compareSaveDialog(const DialogAnswers &answers, const MainWindow &window)
{
    const SeenDialog &dialog = answers.seen().front();
    QCOMPARE(dialog.parent, &window);
    QCOMPARE(dialog.title, QStringLiteral("Save Scene"));
    QCOMPARE(dialog.nameFilters, QStringList{QStringLiteral("Scene Files (*.scene)")});
    QCOMPARE(dialog.acceptMode, QFileDialog::AcceptSave);
}

} // namespace

class tst_MainWindowDocuments : public HomeTest
{
    Q_OBJECT

private slots:
    void saveAsksForAPath();
    void saveWritesToTheKnownPath();
    void cancelledSaveChangesNothing();
    void saveAsAlwaysAsks();
    void cancelledSaveAsChangesNothing_data();
    void cancelledSaveAsChangesNothing();
    void dialogsStartInTheWorkingFolder();
    void saveTellsWhatItSaves();
    void unwritablePathIsReported_data();
    void unwritablePathIsReported();
    void saveReportsAFolderInTheWay();
    void savedFileIsReplacedWhole();
    void failedWriteKeepsWhatWasThere();
    void draggedTabsAreSavedInTheOrderOfCreation();
    void newLeavesNoTabAndNoPath();
    void newAsksNothing();
    void newThenSaveWritesACountOfZero();

private:
    void prepare() override { QVERIFY(QDir().mkpath(path({}))); }
    QString path(const QString &name) const { return home->filePath(QStringLiteral("stories/")) + name; }
};

void tst_MainWindowDocuments::saveAsksForAPath()
{
    const MainWindow window;
    const QString file = path(QStringLiteral("story.scene"));
    const DialogAnswers answers({chooseFile(file)});
    actionOf(window, "actionSave")->trigger();

    QCOMPARE(answers.problem(), QString());
    compareSaveDialog(answers, window);
    QCOMPARE(window.currentFilePath(), file);
    QCOMPARE(readFile(file).toHex(), documentBytes({{}}).toHex());
}

void tst_MainWindowDocuments::saveWritesToTheKnownPath()
{
    MainWindow window;
    const QString file = path(QStringLiteral("story.scene"));
    QCOMPARE(saveAs(window, file), QString());
    window.addNodeGraphTab();

    const DialogAnswers nothing;
    actionOf(window, "actionSave")->trigger();
    QCOMPARE(readFile(file).toHex(), documentBytes({{}, {}}).toHex());
    QCOMPARE(window.currentFilePath(), file);
}

void tst_MainWindowDocuments::cancelledSaveChangesNothing()
{
    MainWindow window;
    const DialogAnswers answers({pressEscape()});
    const LogCapture log;
    window.sl_saveFile();
    QCOMPARE(window.currentFilePath(), QString());
    QCOMPARE(documentLines(log), QStringList());
    QVERIFY(QDir(path({})).isEmpty());
}

void tst_MainWindowDocuments::saveAsAlwaysAsks()
{
    MainWindow window;
    const QString first = path(QStringLiteral("first.scene"));
    const QString second = path(QStringLiteral("second.scene"));
    QCOMPARE(saveAs(window, first), QString());
    window.addNodeGraphTab();

    const DialogAnswers answers({chooseFile(second)});
    actionOf(window, "actionSave_As")->trigger();
    QCOMPARE(answers.problem(), QString());
    compareSaveDialog(answers, window);
    QCOMPARE(window.currentFilePath(), second);
    QCOMPARE(readFile(first).toHex(), documentBytes({{}}).toHex());
    QCOMPARE(readFile(second).toHex(), documentBytes({{}, {}}).toHex());
}

void tst_MainWindowDocuments::cancelledSaveAsChangesNothing_data()
{
    QTest::addColumn<bool>("titled");
    QTest::newRow("untitled") << false;
    QTest::newRow("titled") << true;
}

void tst_MainWindowDocuments::cancelledSaveAsChangesNothing()
{
    QFETCH(const bool, titled);
    MainWindow window;
    const QString file = titled ? path(QStringLiteral("story.scene")) : QString();
    if (titled)
        QCOMPARE(saveAs(window, file), QString());
    window.addNodeGraphTab();

    const LogCapture log;
    const DialogAnswers answers({closeDialog()});
    window.sl_saveAsFile();
    QCOMPARE(window.currentFilePath(), file);
    QCOMPARE(documentLines(log), QStringList());
    if (titled)
        QCOMPARE(readFile(file).toHex(), documentBytes({{}}).toHex());
}

// The program names no starting folder, so the dialogs begin in the working folder.
void tst_MainWindowDocuments::dialogsStartInTheWorkingFolder()
{
    MainWindow window;
    QCOMPARE(saveAs(window, path(QStringLiteral("story.scene"))), QString());
    const DialogAnswers answers({pressEscape(), pressEscape()});
    window.sl_saveAsFile();
    window.sl_loadFile();
    QCOMPARE(answers.problem(), QString());
    for (const SeenDialog &dialog : answers.seen())
        QCOMPARE(dialog.folder, QDir::currentPath());
}

void tst_MainWindowDocuments::saveTellsWhatItSaves()
{
    MainWindow window;
    window.addNodeGraphTab();
    window.addNodeGraphTab();
    addChain(*sceneOf(window, 1), 2);
    const DialogAnswers answers({chooseFile(path(QStringLiteral("story.scene")))});
    const LogCapture log;
    window.sl_saveFile();
    QCOMPARE(documentLines(log),
             QStringList({QStringLiteral("Tabs to save 3"), QStringLiteral("Nodes to save 0"),
                          QStringLiteral("Nodes to save 2"), QStringLiteral("Nodes to save 0")}));
}

void tst_MainWindowDocuments::unwritablePathIsReported_data()
{
    QTest::addColumn<bool>("asNew");
    QTest::newRow("Save") << false;
    QTest::newRow("Save As") << true;
}

void tst_MainWindowDocuments::unwritablePathIsReported()
{
    QFETCH(const bool, asNew);
    MainWindow window;
    addEvent(sceneOf(window, 0), QStringLiteral("kept"));
    const QString file = path(QStringLiteral("missing/story.scene"));
    const DialogAnswers answers({chooseFile(file)});
    const LogCapture log;
    QTest::ignoreMessage(QtWarningMsg, qPrintable(cannotWrite));
    if (asNew)
        window.sl_saveAsFile();
    else
        window.sl_saveFile();

    QCOMPARE(log.count(cannotWrite), 1);
    QCOMPARE(documentLines(log), QStringList());
    QVERIFY(!QFile::exists(file));
    QCOMPARE(window.currentFilePath(), file);
    QCOMPARE(titlesOf(sceneOf(window, 0)), QStringList{QStringLiteral("kept")});
}

void tst_MainWindowDocuments::saveReportsAFolderInTheWay()
{
    MainWindow window;
    const QString file = path(QStringLiteral("story.scene"));
    QCOMPARE(saveAs(window, file), QString());
    QVERIFY(QFile::remove(file));
    QVERIFY(QDir().mkdir(file));

    QTest::ignoreMessage(QtWarningMsg, qPrintable(cannotWrite));
    QCOMPARE(saveAgain(window), QString());
    QVERIFY(QFileInfo(file).isDir());
    QCOMPARE(window.currentFilePath(), file);
}

void tst_MainWindowDocuments::savedFileIsReplacedWhole()
{
    MainWindow window;
    const QString file = path(QStringLiteral("story.scene"));
    addEvent(sceneOf(window, 0), QStringLiteral("long"), QString(500, QLatin1Char('x')));
    QCOMPARE(saveAs(window, file), QString());
    sceneOf(window, 0)->clear();
    QCOMPARE(saveAgain(window), QString());
    QCOMPARE(readFile(file).toHex(), documentBytes({{}}).toHex());
    QCOMPARE(QDir(path({})).entryList(QDir::AllEntries | QDir::NoDotAndDotDot | QDir::Hidden),
             QStringList{QStringLiteral("story.scene")});
}

void tst_MainWindowDocuments::failedWriteKeepsWhatWasThere()
{
#ifdef Q_OS_UNIX
    MainWindow window;
    const QString file = path(QStringLiteral("story.scene"));
    QCOMPARE(saveAs(window, file), QString());
    const QByteArray before = readFile(file);
    addEvent(sceneOf(window, 0), QStringLiteral("new"), QString(100, QLatin1Char('x')));

    QTest::ignoreMessage(QtWarningMsg, QRegularExpression(QStringLiteral(
                                           "^Couldn't write the scene file: \".*story\\.scene\" \".+\"$")));
    {
        const FullDisk full(16);
        QCOMPARE(saveAgain(window), QString());
    }
    QCOMPARE(readFile(file).toHex(), before.toHex());
    QCOMPARE(QDir(path({})).entryList(QDir::Files | QDir::Hidden),
             QStringList{QStringLiteral("story.scene")});
#endif
}

void tst_MainWindowDocuments::draggedTabsAreSavedInTheOrderOfCreation()
{
    MainWindow window;
    window.addNodeGraphTab();
    window.addNodeGraphTab();
    for (int i = 0; i < 3; ++i)
        addEvent(sceneOf(window, i), QStringLiteral("in tab ") + QString::number(i))->setPos(i, i);
    const std::vector<NodegraphView *> created = window.views();
    tabsOf(window)->tabBar()->moveTab(0, 2);
    QCOMPARE(tabsOf(window)->widget(2), created[0]);
    QVERIFY(window.views() == created);

    const QString file = path(QStringLiteral("story.scene"));
    QCOMPARE(saveAs(window, file), QString());
    std::vector<std::vector<Record>> expected;
    for (int i = 0; i < 3; ++i) {
        Record event{QStringLiteral("in tab ") + QString::number(i), QPointF(i, i)};
        event.endOfStory = true;
        expected.push_back({event});
    }
    QCOMPARE(readFile(file).toHex(), documentBytes(expected).toHex());
}

void tst_MainWindowDocuments::newLeavesNoTabAndNoPath()
{
    MainWindow window;
    window.addNodeGraphTab();
    addChain(*sceneOf(window, 0), 2);
    QCOMPARE(saveAs(window, path(QStringLiteral("story.scene"))), QString());
    QSignalSpy scene(sceneOf(window, 0), &QObject::destroyed);
    const QPointer<NodegraphView> view(window.views().front());

    const LogCapture log;
    actionOf(window, "actionNew")->trigger();
    QCOMPARE(log.count(QStringLiteral("clearing scene")), 2); // once an event
    QCOMPARE(tabsOf(window)->count(), 0);
    QCOMPARE(window.views().size(), std::size_t(0));
    QCOMPARE(window.currentFilePath(), QString());
    QCOMPARE(panelTexts(window), QStringList());
    QVERIFY(!view);
    QCOMPARE(scene.count(), 1);
}

void tst_MainWindowDocuments::newAsksNothing()
{
    const MainWindow window;
    addEvent(sceneOf(window, 0), QStringLiteral("unsaved"));
    const DialogAnswers nothing;
    actionOf(window, "actionNew")->trigger();
    actionOf(window, "actionNew")->trigger(); // without any tab
    QCOMPARE(tabsOf(window)->count(), 0);
}

void tst_MainWindowDocuments::newThenSaveWritesACountOfZero()
{
    MainWindow window;
    QCOMPARE(saveAs(window, path(QStringLiteral("before.scene"))), QString());
    window.clearTabs();

    const QString file = path(QStringLiteral("empty.scene"));
    const DialogAnswers answers({chooseFile(file)});
    const LogCapture log;
    window.sl_saveFile();
    QCOMPARE(readFile(file).toHex(), QByteArray("00000000"));
    QCOMPARE(documentLines(log), QStringList{QStringLiteral("Tabs to save 0")});
}

QTEST_MAIN(tst_MainWindowDocuments)
#include "tst_mainwindow_documents.moc"
