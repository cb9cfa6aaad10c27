#include "app/windowsupport.h"
#include "support/testsupport.h"

#include <QGraphicsView>
#include <QMetaMethod>
#include <QSignalSpy>
#include <QUndoStack>
#include <QVBoxLayout>

namespace {

const QString panelCountLine = QStringLiteral("No of ovnodes now: ");

int panelRebuilds(const LogCapture &log)
{
    int count = 0;
    for (const QString &line : log.lines())
        count += line.startsWith(panelCountLine) ? 1 : 0;
    return count;
}

void pressTabButton(const MainWindow &window)
{
    QTest::mouseClick(buttonOf(window, "AddNodeGraph_tool_button"), Qt::LeftButton);
}

} // namespace

class tst_MainWindow : public ProgramTest
{
    Q_OBJECT

private slots:
    void methodsStandInOrder();
    void startsWithOneTab();
    void panelIsSetUp();
    void panelIsEmptyUntilAStoryIsTold();

    void tabButtonAppendsATab();
    void tabNamesFollowTheNumberOfTabs();
    void everyNewTabMakesTheTabsClosable();
    void tabButtonWorksAfterNew();

    void panelFollowsTheGraphOfEveryTab_data();
    void panelFollowsTheGraphOfEveryTab();
    void panelShowsTheCurrentTab();
    void changeOfTabsIsLogged();
    void panelShowsTheStoryToldLast();
    void tabsAreWiredOnce();
    void panelEditReachesEveryTab();
    void filterButtonFiltersThePanel();

    void newForgetsThePanelsStory();
    void panelIsMadeOnceWhenManyEventsGo();
    void sceneGoesWithItsView();
    void panelLetsGoOfAViewThatDies();
    void everythingGoesWithTheWindow();
    void windowCanGoInTheMiddleOfWork();

private:
    PrivateHome home;
};

void tst_MainWindow::methodsStandInOrder()
{
    const QStringList expected{
        QStringLiteral("addEventNode()"),
        QStringLiteral("currentTabChanged(int)"),
        QStringLiteral("sl_saveFile()"),
        QStringLiteral("sl_loadFile()"),
        QStringLiteral("sl_saveAsFile()"),
        QStringLiteral("clearTabs()"),
        QStringLiteral("sl_undo()"),
        QStringLiteral("sl_redo()"),
        QStringLiteral("sl_copy()"),
        QStringLiteral("sl_paste()"),
        QStringLiteral("sl_cut()"),
        QStringLiteral("sl_selectAll()"),
        QStringLiteral("sl_deselectAll()"),
        QStringLiteral("sl_setEndOfStory()"),
        QStringLiteral("sl_setAsImportant()"),
        QStringLiteral("sl_delete()"),
        QStringLiteral("sl_frame()"),
        QStringLiteral("zoomIn()"),
        QStringLiteral("zoomOut()"),
        QStringLiteral("zoom_50()"),
        QStringLiteral("zoom_100()"),
        QStringLiteral("zoom_200()"),
        QStringLiteral("helpSupport()"),
        QStringLiteral("autosave()"),
    };
    const QMetaObject &metaObject = MainWindow::staticMetaObject;
    QCOMPARE(ownMethods(metaObject), expected);
    for (int i = metaObject.methodOffset(); i < metaObject.methodCount(); ++i)
        QCOMPARE(metaObject.method(i).methodType(), QMetaMethod::Slot);
}

void tst_MainWindow::startsWithOneTab()
{
    const LogCapture log;
    const MainWindow window;

    QCOMPARE(tabTitles(window), QStringList{QStringLiteral("Story 1")});
    QCOMPARE(window.views().size(), std::size_t(1));
    QCOMPARE(tabsOf(window)->currentWidget(), window.views().front());
    QCOMPARE(window.currentFilePath(), QString());
    QVERIFY(tabsOf(window)->tabsClosable());
    QVERIFY(tabsOf(window)->isMovable());
    // The first tab is made before anybody listens for a change of tabs.
    QVERIFY(!log.contains(QStringLiteral("Undoing")));
}

void tst_MainWindow::panelIsSetUp()
{
    const MainWindow window;
    const auto *layout = window.findChild<QVBoxLayout *>(QStringLiteral("OverviewerLayout"));
    QVERIFY(layout);
    QCOMPARE(layout->count(), 1);
    QCOMPARE(layout->stretch(0), 0);
    QCOMPARE(layout->itemAt(0)->alignment(), Qt::Alignment());
    const auto *panel = qobject_cast<QGraphicsView *>(layout->itemAt(0)->widget());
    QVERIFY(panel);
    QCOMPARE(panel->metaObject()->className(), "QGraphicsView");
    QCOMPARE(panel->scene(), window.overviewerScene());
    QCOMPARE(window.overviewerScene()->parent(), nullptr);
    QCOMPARE(panel->alignment(), Qt::AlignLeft | Qt::AlignTop);
    QVERIFY(panel->renderHints().testFlag(QPainter::Antialiasing));
    QVERIFY(panel->renderHints().testFlag(QPainter::TextAntialiasing));
}

void tst_MainWindow::panelIsEmptyUntilAStoryIsTold()
{
    const MainWindow window;
    QCOMPARE(panelTexts(window), QStringList());
    addEvent(sceneOf(window, 0), QStringLiteral("Dawn"), QStringLiteral("It begins."));
    QCOMPARE(panelTexts(window), QStringList{QStringLiteral("It begins.")});
}

void tst_MainWindow::tabButtonAppendsATab()
{
    const MainWindow window;
    pressTabButton(window);

    QCOMPARE(tabTitles(window), QStringList({QStringLiteral("Story 1"), QStringLiteral("Story 2")}));
    QCOMPARE(window.views().size(), std::size_t(2));
    QCOMPARE(tabsOf(window)->widget(1), window.views().back());
    QCOMPARE(tabsOf(window)->currentIndex(), 0);
    QVERIFY(sceneOf(window, 0) != sceneOf(window, 1));
    QVERIFY(window.views()[0]->undoStack() != window.views()[1]->undoStack());
}

void tst_MainWindow::tabNamesFollowTheNumberOfTabs()
{
    MainWindow window;
    pressTabButton(window);
    pressTabButton(window);
    const DialogAnswers answers({press(QMessageBox::No)});
    window.closeTab(0);
    pressTabButton(window);

    QCOMPARE(tabTitles(window),
             QStringList({QStringLiteral("Story 2"), QStringLiteral("Story 3"), QStringLiteral("Story 3")}));
}

void tst_MainWindow::everyNewTabMakesTheTabsClosable()
{
    const MainWindow window;
    tabsOf(window)->setTabsClosable(false);
    pressTabButton(window);
    QVERIFY(tabsOf(window)->tabsClosable());
}

void tst_MainWindow::tabButtonWorksAfterNew()
{
    MainWindow window;
    pressTabButton(window);
    actionOf(window, "actionNew")->trigger();
    QCOMPARE(tabsOf(window)->count(), 0);
    QCOMPARE(window.views().size(), std::size_t(0));

    pressTabButton(window);
    QCOMPARE(tabTitles(window), QStringList{QStringLiteral("Story 1")});
    QCOMPARE(tabsOf(window)->currentWidget(), window.views().front());
    addEvent(sceneOf(window, 0), QStringLiteral("Again"), QStringLiteral("Once more."));
    QCOMPARE(panelTexts(window), QStringList{QStringLiteral("Once more.")});
}

void tst_MainWindow::panelFollowsTheGraphOfEveryTab_data()
{
    QTest::addColumn<int>("place");
    QTest::newRow("first tab") << 0;
    QTest::newRow("added tab") << 1;
}

void tst_MainWindow::panelFollowsTheGraphOfEveryTab()
{
    QFETCH(const int, place);
    const MainWindow window;
    pressTabButton(window);
    tabsOf(window)->setCurrentIndex(place);
    NodegraphScene *scene = sceneOf(window, place);
    const OverViewerScene *panel = window.overviewerScene();

    Node *first = addEvent(scene, QStringLiteral("Dawn"), QStringLiteral("one"));
    Node *second = addEvent(scene, QStringLiteral("Dusk"), QStringLiteral("two"));
    QCOMPARE(panelTexts(window), QStringList({QStringLiteral("one"), QStringLiteral("two")}));

    typeInto(descriptionOf(first), QStringLiteral("uno"));
    QCOMPARE(panelTexts(window), QStringList({QStringLiteral("uno"), QStringLiteral("two")}));

    typeInto(descriptionOf(panel->ovNodes().back()), QStringLiteral("due"));
    QCOMPARE(descriptionOf(second)->toPlainText(), QStringLiteral("due"));

    second->setIndex(41);
    QCOMPARE(panel->ovNodes().back()->getIndex(), 41);

    // The mark reaches the panel with its own signal, before the story is told again.
    LogCapture log;
    second->setImportant(true);
    QVERIFY(log.contains(QStringLiteral("Setting importance")));
}

void tst_MainWindow::panelShowsTheCurrentTab()
{
    const MainWindow window;
    pressTabButton(window);
    addEvent(sceneOf(window, 0), QStringLiteral("A"), QStringLiteral("in the first"));
    addEvent(sceneOf(window, 1), QStringLiteral("B"), QStringLiteral("in the second"));
    QCOMPARE(panelTexts(window), QStringList{QStringLiteral("in the second")});

    tabsOf(window)->setCurrentIndex(1);
    QCOMPARE(panelTexts(window), QStringList{QStringLiteral("in the second")});
    tabsOf(window)->setCurrentIndex(0);
    QCOMPARE(panelTexts(window), QStringList{QStringLiteral("in the first")});

    pressTabButton(window);
    tabsOf(window)->setCurrentIndex(2);
    QCOMPARE(panelTexts(window), QStringList());
}

void tst_MainWindow::changeOfTabsIsLogged()
{
    const MainWindow window;
    pressTabButton(window);
    const LogCapture log;
    tabsOf(window)->setCurrentIndex(1);
    QCOMPARE(log.lines().value(0), QStringLiteral("Undoing"));
    QCOMPARE(log.count(QStringLiteral("Undoing")), 1);
}

// Which tab the panel shows depends on who told a story last, not on which tab is in front.
void tst_MainWindow::panelShowsTheStoryToldLast()
{
    const MainWindow window;
    pressTabButton(window);
    addEvent(sceneOf(window, 0), QStringLiteral("A"), QStringLiteral("in the first"));
    addEvent(sceneOf(window, 1), QStringLiteral("B"), QStringLiteral("in the second"));
    tabsOf(window)->setCurrentIndex(1);

    sceneOf(window, 0)->updateStory();
    QCOMPARE(panelTexts(window), QStringList{QStringLiteral("in the first")});
}

void tst_MainWindow::tabsAreWiredOnce()
{
    const MainWindow window;
    pressTabButton(window);
    addEvent(sceneOf(window, 0), QStringLiteral("A"));
    for (const int index : {1, 0, 1, 0})
        tabsOf(window)->setCurrentIndex(index);

    const LogCapture log;
    sceneOf(window, 0)->updateStory();
    QCOMPARE(panelRebuilds(log), 1);
    sceneOf(window, 1)->updateStory();
    QCOMPARE(panelRebuilds(log), 2);
}

void tst_MainWindow::panelEditReachesEveryTab()
{
    const MainWindow window;
    pressTabButton(window);
    pressTabButton(window);
    const Node *hidden = addEvent(sceneOf(window, 1), QStringLiteral("B"), QStringLiteral("second"));
    addEvent(sceneOf(window, 2), QStringLiteral("C"), QStringLiteral("third"));
    sceneOf(window, 2)->nodes().front()->setIndex(5);
    const Node *shown = addEvent(sceneOf(window, 0), QStringLiteral("A"), QStringLiteral("first"));
    QCOMPARE(shown->getIndex(), hidden->getIndex());

    typeInto(descriptionOf(window.overviewerScene()->ovNodes().front()), QStringLiteral("both"));
    QCOMPARE(descriptionOf(shown)->toPlainText(), QStringLiteral("both"));
    QCOMPARE(descriptionOf(hidden)->toPlainText(), QStringLiteral("both"));
    QCOMPARE(descriptionOf(sceneOf(window, 2)->nodes().front())->toPlainText(), QStringLiteral("third"));
}

void tst_MainWindow::filterButtonFiltersThePanel()
{
    const MainWindow window;
    addEvent(sceneOf(window, 0), QStringLiteral("A"), QStringLiteral("plain"));
    Node *important = addEvent(sceneOf(window, 0), QStringLiteral("B"), QStringLiteral("important"));
    sceneOf(window, 0)->toggleImportance(important);
    QCOMPARE(panelTexts(window), QStringList({QStringLiteral("plain"), QStringLiteral("important")}));

    QTest::mouseClick(buttonOf(window, "F1_button"), Qt::LeftButton);
    QCOMPARE(panelTexts(window), QStringList{QStringLiteral("important")});
    QTest::mouseClick(buttonOf(window, "F1_button"), Qt::LeftButton);
    QCOMPARE(panelTexts(window), QStringList({QStringLiteral("plain"), QStringLiteral("important")}));
}

void tst_MainWindow::newForgetsThePanelsStory()
{
    MainWindow window;
    pressTabButton(window);
    addEvent(sceneOf(window, 1), QStringLiteral("B"), QStringLiteral("second"));
    addEvent(sceneOf(window, 0), QStringLiteral("A"), QStringLiteral("first"));
    const QPointer<Node> node(sceneOf(window, 0)->nodes().front());
    window.clearTabs();
    flushDeferredDeletes();

    QVERIFY(!node);
    QCOMPARE(panelTexts(window), QStringList());
    QTest::mouseClick(buttonOf(window, "F1_button"), Qt::LeftButton); // lists the story anew
    QCOMPARE(panelTexts(window), QStringList());
}

// Made anew for each event that goes, the panel took eighteen seconds for three hundred of them.
void tst_MainWindow::panelIsMadeOnceWhenManyEventsGo()
{
    MainWindow window;
    NodegraphScene *scene = sceneOf(window, 0);
    addChain(*scene, 4);
    QCOMPARE(panelTexts(window).size(), 4);
    window.sl_selectAll();
    {
        const LogCapture log;
        window.sl_delete();
        QCOMPARE(panelRebuilds(log), 1);
    }
    QCOMPARE(panelTexts(window), QStringList());
    for (int i = 0; i < 4; ++i)
        window.sl_undo();
    QCOMPARE(panelTexts(window).size(), 4);
    scene->deselectAll();
    scene->sl_selectCurrentNode(scene->endOfStoryNode());
    window.addEventNode(); // still listed
    QCOMPARE(panelTexts(window).size(), 5);
    {
        const LogCapture log;
        window.clearTabs();
        QCOMPARE(panelRebuilds(log), 1);
    }
    QCOMPARE(panelTexts(window), QStringList());
}

void tst_MainWindow::sceneGoesWithItsView()
{
    MainWindow window;
    pressTabButton(window);
    const std::vector<NodegraphView *> views = window.views();
    const QPointer<NodegraphView> firstView(views[0]);
    const QPointer<NodegraphView> secondView(views[1]);
    QSignalSpy firstScene(sceneOf(window, 0), &QObject::destroyed);
    QSignalSpy secondScene(sceneOf(window, 1), &QObject::destroyed);
    const QPointer<QUndoStack> stack(views[0]->undoStack());

    window.clearTabs();
    QVERIFY(!firstView);
    QVERIFY(!secondView);
    QVERIFY(!stack);
    QCOMPARE(firstScene.count(), 1);
    QCOMPARE(secondScene.count(), 1);
}

// Whatever destroys a view: the panel must not keep nodes that went with its scene. The current tab stays
// what it is here, so nobody else tells the panel a new story.
void tst_MainWindow::panelLetsGoOfAViewThatDies()
{
    MainWindow window;
    pressTabButton(window);
    addEvent(sceneOf(window, 1), QStringLiteral("B"), QStringLiteral("second"));
    QCOMPARE(panelTexts(window), QStringList{QStringLiteral("second")});
    const QPointer<NodegraphScene> scene(sceneOf(window, 1));

    delete window.views().back();
    QVERIFY(!scene);
    QCOMPARE(panelTexts(window), QStringList());
    QTest::mouseClick(buttonOf(window, "F1_button"), Qt::LeftButton); // lists the story anew
    QCOMPARE(panelTexts(window), QStringList());
}

void tst_MainWindow::everythingGoesWithTheWindow()
{
    auto window = std::make_unique<MainWindow>();
    pressTabButton(*window);
    window->show();
    QVERIFY(QTest::qWaitForWindowExposed(window.get()));
    QSignalSpy panel(window->overviewerScene(), &QObject::destroyed);
    QSignalSpy firstScene(sceneOf(*window, 0), &QObject::destroyed);
    QSignalSpy secondScene(sceneOf(*window, 1), &QObject::destroyed);
    const QPointer<NodegraphView> firstView(window->views()[0]);
    const QPointer<NodegraphView> secondView(window->views()[1]);

    const LogCapture log;
    window.reset();
    QCOMPARE(panel.count(), 1);
    QCOMPARE(firstScene.count(), 1);
    QCOMPARE(secondScene.count(), 1);
    QVERIFY(!firstView);
    QVERIFY(!secondView);
    QVERIFY(!log.contains(QStringLiteral("Undoing")));
}

void tst_MainWindow::windowCanGoInTheMiddleOfWork()
{
    auto window = std::make_unique<MainWindow>();
    window->show();
    QVERIFY(QTest::qWaitForWindowExposed(window.get()));
    pressTabButton(*window);
    pressTabButton(*window);
    addChain(*sceneOf(*window, 0), 3);
    addChain(*sceneOf(*window, 1), 2);
    window->sl_undo();
    window->sl_redo();
    window->sl_undo();
    window->sl_delete();
    const DialogAnswers answers({press(QMessageBox::No)});
    window->closeTab(1); // its view waits to be destroyed while the window goes
    tabsOf(*window)->setCurrentIndex(1);
    addChain(*sceneOf(*window, 1), 2);
    sceneOf(*window, 0)->updateStory();

    const QPointer<OverViewerScene> panel(window->overviewerScene());
    const QPointer<NodegraphScene> scene(sceneOf(*window, 0));
    window.reset();
    QVERIFY(!panel);
    QVERIFY(!scene);
}

QTEST_MAIN(tst_MainWindow)
#include "tst_mainwindow.moc"
