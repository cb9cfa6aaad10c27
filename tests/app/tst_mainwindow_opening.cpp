#include "app/windowsupport.h"
#include "support/testsupport.h"

#include <QDir>
#include <QUndoStack>

namespace {

const QString cannotRead = QStringLiteral("Couldn't open file for reading.");

/// One tab with one event, written out by hand.
const QByteArray exampleDocument = QByteArray::fromHex("00000001"
                                                       "00000001"
                                                       "0000000A004500760065006E0074"
                                                       "000000020041"
                                                       "40240000000000004034000000000000"
                                                       "00000000"
                                                       "FFFFFFFF"
                                                       "00000001"
                                                       "00000000"
                                                       "00000000");

std::vector<Record> chainOfTwo()
{
    Record dawn{QStringLiteral("Dawn"), QPointF(100, 200.5), 0};
    dawn.important = true;
    dawn.description = QStringLiteral("It begins.");
    Record dusk{QStringLiteral("D\u00FCsk"), QPointF(-40, 0), 1, 0};
    dusk.endOfStory = true;
    dusk.description = QStringLiteral("It ends.\nReally.");
    return {dawn, dusk};
}

std::vector<Record> singleEvent(const QString &description)
{
    Record event{QStringLiteral("Alone"), QPointF(1, 2), 0};
    event.endOfStory = true;
    event.description = description;
    return {event};
}

const QByteArray &threeTabs()
{
    static const QByteArray bytes = documentBytes({chainOfTwo(), {}, singleEvent(QStringLiteral("third"))});
    return bytes;
}

} // namespace

class tst_MainWindowOpening : public HomeTest
{
    Q_OBJECT

private slots:
    void exampleFileIsWritten();
    void exampleFileIsReadAndWrittenAgain();
    void openAsksForAFile();
    void cancelledOpenChangesNothing();
    void openReplacesTheTabs();
    void openMakesAllTabsFirst();
    void openShowsTheCurrentTabsStory();
    void openedTabsAreWired();
    void openWithoutTabs_data();
    void openWithoutTabs();
    void unreadableFileKeepsTheTabs_data();
    void unreadableFileKeepsTheTabs();
    void truncatedFileLeavesWhatWasRead_data();
    void truncatedFileLeavesWhatWasRead();
    void damagedTabCountIsCutDown_data();
    void damagedTabCountIsCutDown();
    void threeTabsComeBackByteForByte();
    void openTwiceKeepsNothingOfTheFirst();

private:
    void prepare() override { QVERIFY(QDir().mkpath(path({}))); }
    QString path(const QString &name) const { return home->filePath(QStringLiteral("stories/")) + name; }
};

void tst_MainWindowOpening::exampleFileIsWritten()
{
    MainWindow window;
    addEvent(sceneOf(window, 0), QStringLiteral("A"))->setPos(10, 20);
    const QString file = path(QStringLiteral("example.scene"));
    QCOMPARE(saveAs(window, file), QString());
    QCOMPARE(exampleDocument.size(), 64);
    QCOMPARE(readFile(file).toHex(), exampleDocument.toHex());
}

void tst_MainWindowOpening::exampleFileIsReadAndWrittenAgain()
{
    const QString file = path(QStringLiteral("example.scene"));
    QVERIFY(writeFile(file, exampleDocument));
    MainWindow window;
    QCOMPARE(openFile(window, file), QString());
    const NodegraphScene *scene = sceneOf(window, 0);
    QCOMPARE(titlesOf(scene), QStringList{QStringLiteral("A")});
    QCOMPARE(scene->nodes().front()->scenePos(), QPointF(10, 20));
    QCOMPARE(scene->nodes().front()->getIndex(), 0);
    QCOMPARE(scene->endOfStoryNode(), scene->nodes().front());

    const QString copy = path(QStringLiteral("copy.scene"));
    QCOMPARE(saveAs(window, copy), QString());
    QCOMPARE(readFile(copy).toHex(), exampleDocument.toHex());
}

void tst_MainWindowOpening::openAsksForAFile()
{
    const QString file = path(QStringLiteral("story.scene"));
    QVERIFY(writeFile(file, threeTabs()));
    const MainWindow window;
    addEvent(sceneOf(window, 0), QStringLiteral("unsaved"));
    const DialogAnswers answers({chooseFile(file)}); // and no question before the tabs go
    actionOf(window, "actionOpen")->trigger();

    QCOMPARE(answers.problem(), QString());
    const SeenDialog &dialog = answers.seen().front();
    QCOMPARE(dialog.parent, &window);
    QCOMPARE(dialog.title, QStringLiteral("Load Scene"));
    QCOMPARE(dialog.nameFilters, QStringList{QStringLiteral("Scene Files (*.scene)")});
    QCOMPARE(dialog.acceptMode, QFileDialog::AcceptOpen);
    QCOMPARE(window.currentFilePath(), file);
}

void tst_MainWindowOpening::cancelledOpenChangesNothing()
{
    MainWindow window;
    const QString file = path(QStringLiteral("story.scene"));
    addEvent(sceneOf(window, 0), QStringLiteral("kept"));
    QCOMPARE(saveAs(window, file), QString());
    const std::vector<NodegraphView *> views = window.views();

    const DialogAnswers answers({pressEscape()});
    const LogCapture log;
    window.sl_loadFile();
    QCOMPARE(programLines(log), QStringList());
    QVERIFY(window.views() == views);
    QCOMPARE(titlesOf(sceneOf(window, 0)), QStringList{QStringLiteral("kept")});
    QCOMPARE(window.currentFilePath(), file);
}

void tst_MainWindowOpening::openReplacesTheTabs()
{
    const QString file = path(QStringLiteral("story.scene"));
    QVERIFY(writeFile(file, threeTabs()));
    MainWindow window;
    for (int i = 0; i < 4; ++i)
        window.addNodeGraphTab();
    const QPointer<NodegraphView> before(window.views().front());
    QCOMPARE(openFile(window, file), QString());

    QVERIFY(!before);
    QCOMPARE(tabTitles(window),
             QStringList({QStringLiteral("Story 1"), QStringLiteral("Story 2"), QStringLiteral("Story 3")}));
    QCOMPARE(window.views().size(), std::size_t(3));
    for (int i = 0; i < 3; ++i)
        QCOMPARE(tabsOf(window)->widget(i), window.views()[std::size_t(i)]);
    QCOMPARE(tabsOf(window)->currentIndex(), 0);
    QCOMPARE(titlesOf(sceneOf(window, 0)),
             QStringList({QStringLiteral("Dawn"), QStringLiteral("D\u00FCsk")}));
    QCOMPARE(titlesOf(sceneOf(window, 1)), QStringList());
    QCOMPARE(titlesOf(sceneOf(window, 2)), QStringList{QStringLiteral("Alone")});
    QCOMPARE(sceneOf(window, 0)->nodes()[1]->prevNode(), sceneOf(window, 0)->nodes()[0]);
    QCOMPARE(window.views()[0]->undoStack()->count(), 1);
}

void tst_MainWindowOpening::openMakesAllTabsFirst()
{
    const QString file = path(QStringLiteral("story.scene"));
    QVERIFY(writeFile(file, threeTabs()));
    MainWindow window;
    addEvent(sceneOf(window, 0), QStringLiteral("gone"));
    const DialogAnswers answers({chooseFile(file)});
    const LogCapture log;
    window.sl_loadFile();
    const QString adding = QStringLiteral("Adding tabs");
    const QString opening = QStringLiteral("Fileopening");
    QCOMPARE(documentLines(log),
             QStringList({QStringLiteral("Clearing tabs"), QStringLiteral("Tabs to open 3"), adding, adding,
                          adding, opening, QStringLiteral("Nodes to open 2"), opening,
                          QStringLiteral("Nodes to open 0"), opening, QStringLiteral("Nodes to open 1")}));
    // The line announces the clearing.
    const auto cleared = log.lines().indexOf(QStringLiteral("clearing scene"));
    QVERIFY(log.lines().indexOf(QStringLiteral("Clearing tabs")) < cleared);
}

// Not of the tab that was read last.
void tst_MainWindowOpening::openShowsTheCurrentTabsStory()
{
    const QString file = path(QStringLiteral("story.scene"));
    QVERIFY(writeFile(file, threeTabs()));
    MainWindow window;
    QCOMPARE(openFile(window, file), QString());
    QCOMPARE(panelTexts(window),
             QStringList({QStringLiteral("It begins."), QStringLiteral("It ends.\nReally.")}));
}

void tst_MainWindowOpening::openedTabsAreWired()
{
    const QString file = path(QStringLiteral("story.scene"));
    QVERIFY(writeFile(file, threeTabs()));
    MainWindow window;
    QCOMPARE(openFile(window, file), QString());
    tabsOf(window)->setCurrentIndex(2);
    QCOMPARE(panelTexts(window), QStringList{QStringLiteral("third")});
    typeInto(descriptionOf(window.overviewerScene()->ovNodes().front()), QStringLiteral("edited"));
    QCOMPARE(descriptionOf(sceneOf(window, 2)->nodes().front())->toPlainText(), QStringLiteral("edited"));
    typeInto(descriptionOf(sceneOf(window, 2)->nodes().front()), QStringLiteral("back"));
    QCOMPARE(panelTexts(window), QStringList{QStringLiteral("back")});
}

void tst_MainWindowOpening::openWithoutTabs_data()
{
    QTest::addColumn<QByteArray>("bytes");
    QTest::addColumn<int>("count");
    QTest::newRow("count of zero") << intBytes(0) << 0;
    QTest::newRow("count below zero") << intBytes(-2) << -2;
    QTest::newRow("empty file") << QByteArray() << 0;
    QTest::newRow("half a count") << QByteArray("\0\1", 2) << 0;
}

void tst_MainWindowOpening::openWithoutTabs()
{
    QFETCH(const QByteArray, bytes);
    QFETCH(const int, count);
    const QString file = path(QStringLiteral("story.scene"));
    QVERIFY(writeFile(file, bytes));
    MainWindow window;
    addEvent(sceneOf(window, 0), QStringLiteral("gone"), QStringLiteral("gone"));
    const LogCapture log;
    QCOMPARE(openFile(window, file), QString());

    QCOMPARE(tabsOf(window)->count(), 0);
    QCOMPARE(window.views().size(), std::size_t(0));
    QCOMPARE(window.currentFilePath(), file);
    QCOMPARE(panelTexts(window), QStringList());
    QCOMPARE(documentLines(log), QStringList({QStringLiteral("Clearing tabs"),
                                              QStringLiteral("Tabs to open ") + QString::number(count)}));
}

void tst_MainWindowOpening::unreadableFileKeepsTheTabs_data()
{
    QTest::addColumn<bool>("asFolder");
    QTest::newRow("missing file") << false;
    QTest::newRow("folder") << true;
}

// The dialog itself hands out nothing but files, so the file goes between the choice and the opening.
void tst_MainWindowOpening::unreadableFileKeepsTheTabs()
{
    QFETCH(const bool, asFolder);
    MainWindow window;
    window.addNodeGraphTab();
    addEvent(sceneOf(window, 1), QStringLiteral("kept"));
    const QString current = path(QStringLiteral("current.scene"));
    QCOMPARE(saveAs(window, current), QString());
    const std::vector<NodegraphView *> views = window.views();
    const QString file = path(QStringLiteral("story.scene"));
    QVERIFY(writeFile(file, threeTabs()));

    const DialogAnswers answers({chooseFile(file, [&file, asFolder] {
        QVERIFY(QFile::remove(file));
        if (asFolder)
            QVERIFY(QDir().mkdir(file));
    })});
    const LogCapture log;
    QTest::ignoreMessage(QtWarningMsg, qPrintable(cannotRead));
    window.sl_loadFile();

    QCOMPARE(programLines(log), QStringList{cannotRead});
    QVERIFY(window.views() == views);
    QCOMPARE(tabsOf(window)->count(), 2);
    QCOMPARE(titlesOf(sceneOf(window, 1)), QStringList{QStringLiteral("kept")});
    QCOMPARE(window.currentFilePath(), current);
}

void tst_MainWindowOpening::truncatedFileLeavesWhatWasRead_data()
{
    QTest::addColumn<int>("length");
    QTest::addColumn<QStringList>("first");
    QTest::addColumn<int>("refused");
    const int tabCount = 4;
    const int nodeCount = 4;
    const int record = int(chainOfTwo().front().bytes().size());
    QTest::newRow("after the tab count") << tabCount << QStringList() << 0;
    QTest::newRow("after the node count") << tabCount + nodeCount << QStringList({QString(), QString()}) << 2;
    QTest::newRow("after the first record")
        << tabCount + nodeCount + record << QStringList({QStringLiteral("Dawn"), QString()}) << 1;
    QTest::newRow("inside the second title")
        << tabCount + nodeCount + record + 14 + 6 << QStringList({QStringLiteral("Dawn"), QString()}) << 1;
    QTest::newRow("inside the second position")
        << tabCount + nodeCount + record + 14 + 12 + 10
        << QStringList({QStringLiteral("Dawn"), QStringLiteral("D\u00FCsk")}) << 1;
}

void tst_MainWindowOpening::truncatedFileLeavesWhatWasRead()
{
    QFETCH(const int, length);
    QFETCH(const QStringList, first);
    QFETCH(const int, refused);
    const QString file = path(QStringLiteral("story.scene"));
    QVERIFY(writeFile(file, threeTabs().left(length)));
    MainWindow window;
    // Past the end every number reads as 0, so the event seems to feed itself.
    for (int i = 0; i < refused; ++i)
        QTest::ignoreMessage(
            QtWarningMsg,
            qPrintable(QStringLiteral("Damaged scene file: \"%1\" has a connection that closes a cycle, left "
                                      "out: event 0 \"%2\" fed by event 0 \"%2\"")
                           .arg(file, first.at(0))));
    // The index is 0 as well, which another event has already.
    if (refused > 0)
        QTest::ignoreMessage(QtWarningMsg,
                             qPrintable(QStringLiteral("Damaged scene file: \"%1\" has 1 events "
                                                       "without an index of their own, given "
                                                       "new ones")
                                            .arg(file)));
    QCOMPARE(openFile(window, file), QString());

    QCOMPARE(tabTitles(window),
             QStringList({QStringLiteral("Story 1"), QStringLiteral("Story 2"), QStringLiteral("Story 3")}));
    QCOMPARE(titlesOf(sceneOf(window, 0)), first);
    QCOMPARE(titlesOf(sceneOf(window, 1)), QStringList());
    QCOMPARE(titlesOf(sceneOf(window, 2)), QStringList());
    QCOMPARE(window.currentFilePath(), file);
}

// A damaged count could ask for two thousand million tabs; the file's length bounds them, or in a long file
// what is in it.
void tst_MainWindowOpening::damagedTabCountIsCutDown_data()
{
    QTest::addColumn<int>("announced");
    QTest::addColumn<QByteArray>("tabs");
    QTest::addColumn<int>("opened");
    QTest::addColumn<QStringList>("firstTitles");
    const QByteArray two = tabBytes(chainOfTwo());
    const QStringList titles{QStringLiteral("Dawn"), QStringLiteral("D\u00FCsk")};
    ::Record longRecord = chainOfTwo().front();
    longRecord.description = QString(100000, QLatin1Char('x'));
    const QByteArray longTab = tabBytes({longRecord});
    QTest::newRow("more than a file of that length can hold")
        << 0x7FFFFFFF << two << int(4 + two.size()) / 4 + 16 << titles;
    QTest::newRow("thousands of empty ones") << 2100 << two + QByteArray(2099 * 4, '\0') << 2000 << titles;
    QTest::newRow("one bit changed in a long file") << 0x4003 << two + longTab + tabBytes({}) << 3 << titles;
}

void tst_MainWindowOpening::damagedTabCountIsCutDown()
{
    QFETCH(int, announced);
    QFETCH(QByteArray, tabs);
    QFETCH(int, opened);
    const QString file = path(QStringLiteral("story.scene"));
    QVERIFY(writeFile(file, intBytes(announced) + tabs));
    MainWindow window;
    QTest::ignoreMessage(
        QtWarningMsg, qPrintable(QStringLiteral("Damaged scene file: \"%1\" cannot hold %2 tabs, opening %3")
                                     .arg(file)
                                     .arg(announced)
                                     .arg(opened)));
    QCOMPARE(openFile(window, file), QString());
    QCOMPARE(tabsOf(window)->count(), opened);
    QTEST(titlesOf(sceneOf(window, 0)), "firstTitles");
}

void tst_MainWindowOpening::threeTabsComeBackByteForByte()
{
    const QString file = path(QStringLiteral("story.scene"));
    QVERIFY(writeFile(file, threeTabs()));
    MainWindow window;
    QCOMPARE(openFile(window, file), QString());
    window.show();
    QVERIFY(QTest::qWaitForWindowExposed(&window));
    tabsOf(window)->setCurrentIndex(2);

    const QString copy = path(QStringLiteral("copy.scene"));
    QCOMPARE(saveAs(window, copy), QString());
    QCOMPARE(readFile(copy).toHex(), threeTabs().toHex());

    QCOMPARE(openFile(window, copy), QString());
    QCOMPARE(saveAgain(window), QString());
    QCOMPARE(readFile(copy).toHex(), threeTabs().toHex());
    QCOMPARE(readFile(file).toHex(), threeTabs().toHex());
}

void tst_MainWindowOpening::openTwiceKeepsNothingOfTheFirst()
{
    const QString many = path(QStringLiteral("many.scene"));
    const QString one = path(QStringLiteral("one.scene"));
    QVERIFY(writeFile(many, threeTabs()));
    QVERIFY(writeFile(one, documentBytes({singleEvent(QStringLiteral("only"))})));
    MainWindow window;
    QCOMPARE(openFile(window, many), QString());
    QCOMPARE(openFile(window, one), QString());
    QCOMPARE(tabTitles(window), QStringList{QStringLiteral("Story 1")});
    QCOMPARE(panelTexts(window), QStringList{QStringLiteral("only")});
    QCOMPARE(window.currentFilePath(), one);
}

QTEST_MAIN(tst_MainWindowOpening)
#include "tst_mainwindow_opening.moc"
