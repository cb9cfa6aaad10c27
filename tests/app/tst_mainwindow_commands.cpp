#include "app/windowsupport.h"
#include "support/testsupport.h"

#include <QDesktopServices>
#include <QSignalSpy>
#include <QUndoStack>
#include <QUrl>
#include <QWheelEvent>

namespace {

struct CommandRow
{
    const char *action;
    const char *firstLine; // written even when there is no tab; null if there is none
};

constexpr CommandRow tabCommands[] = {
    {"actionUndo", nullptr},
    {"actionRedo", nullptr},
    {"actionCopy", "Copy"},
    {"actionCut", "cut"},
    {"actionPaste", "paste"},
    {"actionSelect_All", nullptr},
    {"actionDeselect_All", nullptr},
    {"actionDelete", nullptr},
    {"actionSet_End_of_Story", nullptr},
    {"actionSet_as_Important", nullptr},
    {"actionAdd_Event", nullptr},
    {"actionFrame", nullptr},
    {"actionZoom_In", "ZoomingIn"},
    {"actionZoom_Out", nullptr},
    {"actionZoom_to_50", nullptr},
    {"actionZoom_to_100", nullptr},
    {"actionZoom_to_200", nullptr},
};

void addTabCommands()
{
    QTest::addColumn<QStringList>("lines");
    for (const CommandRow &row : tabCommands) {
        QStringList lines;
        if (row.firstLine)
            lines << QString::fromLatin1(row.firstLine);
        QTest::newRow(row.action) << lines;
    }
}

/// Takes the place of the web browser.
class Browser : public QObject
{
    Q_OBJECT

public:
    explicit Browser(const LogCapture &capture) : log(capture)
    {
        QDesktopServices::setUrlHandler(QStringLiteral("https"), this, "open");
    }
    ~Browser() override { QDesktopServices::unsetUrlHandler(QStringLiteral("https")); }

    QList<QUrl> pages;
    QStringList linesBefore; // what was logged when the last page was opened

public slots:
    void open(const QUrl &page)
    {
        pages << page;
        linesBefore = log.lines();
    }

private:
    const LogCapture &log;
};

void turnWheel(NodegraphView *view, int delta)
{
    const QPointF middle = QRectF(view->viewport()->rect()).center();
    QWheelEvent event(middle, view->viewport()->mapToGlobal(middle), QPoint(), QPoint(0, delta), Qt::NoButton,
                      Qt::NoModifier, Qt::NoScrollPhase, false);
    QCoreApplication::sendEvent(view->viewport(), &event);
}

QList<bool> selection(const NodegraphScene *scene)
{
    QList<bool> selected;
    for (const Node *node : scene->getNodes())
        selected << node->isSelected();
    return selected;
}

} // namespace

class tst_MainWindowCommands : public QObject
{
    Q_OBJECT

private slots:
    void init()
    {
        failOnWarningsOfTheProgram();
        window = std::make_unique<MainWindow>();
    }
    void cleanup()
    {
        window.reset();
        flushDeferredDeletes();
    }

    void withoutATabOnlyTheFirstLineIsLogged_data() { addTabCommands(); }
    void withoutATabOnlyTheFirstLineIsLogged();
    void foreignPageIsLeftAlone_data() { addTabCommands(); }
    void foreignPageIsLeftAlone();
    void onlyTheCurrentTabIsTouched_data() { addTabCommands(); }
    void onlyTheCurrentTabIsTouched();

    void addEvent_data();
    void addEvent();
    void undoAndRedo();
    void undoAndRedoOfNothing();
    void copy();
    void cut();
    void paste();
    void selectAllAndDeselectAll();
    void deleteCurrent();
    void deleteSelection();
    void deleteLeavesACurrentEventOutsideTheSelection();
    void deleteWithoutACurrentEvent();
    void endOfStoryMoves();
    void endOfStoryWithoutACurrentEvent();
    void endOfStoryAgain();
    void importanceIsFlipped();
    void importanceWithoutACurrentEvent();
    void frame();
    void zoomInCompounds();
    void zoomOutCompounds();
    void zoomIsAbsolute_data();
    void zoomIsAbsolute();
    void zoomAndFrameResetTheDivisor_data();
    void zoomAndFrameResetTheDivisor();
    void help_data();
    void help();

    void unwiredActionsDoNothing_data();
    void unwiredActionsDoNothing();
    void shortcutsReachTheirActions_data();
    void shortcutsReachTheirActions();

private:
    NodegraphView *view() const { return window->getViews().front(); }
    NodegraphScene *scene() const { return view()->nodegraphScene(); }
    void trigger(const char *action) const { actionOf(*window, action)->trigger(); }

    PrivateHome home;
    std::unique_ptr<MainWindow> window;
};

void tst_MainWindowCommands::withoutATabOnlyTheFirstLineIsLogged()
{
    QFETCH(const QStringList, lines);
    addChain(*scene(), 2);
    window->clearTabs();
    const LogCapture log;
    trigger(QTest::currentDataTag());
    QCOMPARE(log.lines(), lines);
    QCOMPARE(tabsOf(*window)->count(), 0);
}

void tst_MainWindowCommands::foreignPageIsLeftAlone()
{
    QFETCH(const QStringList, lines);
    addChain(*scene(), 2);
    auto *page = new QWidget;
    tabsOf(*window)->addTab(page, QStringLiteral("Not a story"));
    tabsOf(*window)->setCurrentWidget(page);
    const int done = view()->undoStack()->index();
    const LogCapture log;
    trigger(QTest::currentDataTag());
    QCOMPARE(log.lines(), lines);
    QCOMPARE(scene()->getNodes().size(), std::size_t(2));
    QCOMPARE(view()->undoStack()->index(), done);
}

void tst_MainWindowCommands::onlyTheCurrentTabIsTouched()
{
    addChain(*scene(), 3);
    view()->undoStack()->undo();
    view()->setZoomDivisor(3.0);
    const QTransform transform = view()->transform();
    const int done = view()->undoStack()->index();
    const Node *end = scene()->endOfStoryNode();
    const QList<bool> selected = selection(scene());
    window->addNodeGraphTab();
    tabsOf(*window)->setCurrentIndex(1);
    addChain(*sceneOf(*window, 1), 2);

    trigger(QTest::currentDataTag());
    QCOMPARE(scene()->getNodes().size(), std::size_t(2));
    QCOMPARE(view()->undoStack()->index(), done);
    QCOMPARE(view()->undoStack()->count(), 3);
    QCOMPARE(scene()->endOfStoryNode(), end);
    QCOMPARE(selection(scene()), selected);
    QCOMPARE(view()->transform(), transform);
    QCOMPARE(view()->getZoomDivisor(), 3.0);
    for (const Node *node : scene()->getNodes()) {
        QVERIFY(!node->getIsImportant());
        QVERIFY(node->isVisible());
    }
}

void tst_MainWindowCommands::addEvent_data()
{
    QTest::addColumn<bool>("byButton");
    QTest::newRow("action") << false;
    QTest::newRow("button") << true;
}

void tst_MainWindowCommands::addEvent()
{
    QFETCH(const bool, byButton);
    const LogCapture log;
    for (int i = 0; i < 3; ++i) {
        if (byButton)
            QTest::mouseClick(buttonOf(*window, "Add_NodeButton"), Qt::LeftButton);
        else
            trigger("actionAdd_Event");
    }
    QCOMPARE(log.lines().value(0), QStringLiteral("Undoing"));
    QCOMPARE(log.count(QStringLiteral("Undoing")), 3);
    QCOMPARE(view()->undoStack()->count(), 3);
    const std::vector<Node *> &nodes = scene()->getNodes();
    QCOMPARE(nodes.size(), std::size_t(3));
    QCOMPARE(nodes[1]->prevNode(), nodes[0]);
    QCOMPARE(nodes[2]->prevNode(), nodes[1]);
}

void tst_MainWindowCommands::undoAndRedo()
{
    addChain(*scene(), 2);
    LogCapture log;
    trigger("actionUndo");
    QCOMPARE(log.lines().value(0), QStringLiteral("Undoing"));
    QCOMPARE(log.count(QStringLiteral("Undoing")), 1);
    QCOMPARE(view()->undoStack()->index(), 1);
    QCOMPARE(scene()->getNodes().size(), std::size_t(1));

    log.clear();
    trigger("actionRedo");
    QCOMPARE(log.lines().value(0), QStringLiteral("Redoing"));
    QCOMPARE(log.count(QStringLiteral("Redoing")), 1);
    QCOMPARE(view()->undoStack()->index(), 2);
    QCOMPARE(scene()->getNodes().size(), std::size_t(2));
}

void tst_MainWindowCommands::undoAndRedoOfNothing()
{
    const LogCapture log;
    trigger("actionUndo");
    trigger("actionRedo");
    QCOMPARE(log.lines(), QStringList({QStringLiteral("Undoing"), QStringLiteral("Redoing")}));
    QCOMPARE(view()->undoStack()->count(), 0);
}

void tst_MainWindowCommands::copy()
{
    addChain(*scene(), 1);
    const LogCapture log;
    trigger("actionCopy");
    QCOMPARE(log.lines(), QStringList({QStringLiteral("Copy"), QStringLiteral("Copying"),
                                       QStringLiteral("Copying node  0")}));
    QVERIFY(scene()->getNodes().front()->isVisible());
}

void tst_MainWindowCommands::cut()
{
    addChain(*scene(), 1);
    const LogCapture log;
    trigger("actionCut");
    QCOMPARE(log.lines(), QStringList({QStringLiteral("cut"), QStringLiteral("Copying"),
                                       QStringLiteral("Copying node  0")}));
    QVERIFY(!scene()->getNodes().front()->isVisible());
}

void tst_MainWindowCommands::paste()
{
    addChain(*scene(), 1);
    trigger("actionCopy");
    const LogCapture log;
    trigger("actionPaste");
    QCOMPARE(log.lines().mid(0, 3), QStringList({QStringLiteral("paste"), QStringLiteral("Pasting"),
                                                 QStringLiteral("Pasting node  0")}));
    QVERIFY(view()->undoStack()->count() > 1);
}

void tst_MainWindowCommands::selectAllAndDeselectAll()
{
    addChain(*scene(), 3);
    const LogCapture log;
    trigger("actionSelect_All");
    QCOMPARE(selection(scene()), QList<bool>({true, true, true}));
    QVERIFY(scene()->getSelectedNodes() == scene()->getNodes());
    trigger("actionDeselect_All");
    QCOMPARE(selection(scene()), QList<bool>({false, false, false}));
    QVERIFY(scene()->getSelectedNodes().empty());
    QCOMPARE(log.lines(), QStringList());
}

void tst_MainWindowCommands::deleteCurrent()
{
    const std::vector<Node *> nodes = addChain(*scene(), 2);
    const LogCapture log;
    trigger("actionDelete");
    QCOMPARE(log.lines().value(0), QStringLiteral("Del"));
    QVERIFY(scene()->getNodes() == std::vector<Node *>{nodes[0]});
    QCOMPARE(view()->undoStack()->count(), 3);
}

void tst_MainWindowCommands::deleteSelection()
{
    addChain(*scene(), 3);
    trigger("actionSelect_All");
    trigger("actionDelete");
    QVERIFY(scene()->getNodes().empty());
    QCOMPARE(view()->undoStack()->count(), 6);
}

void tst_MainWindowCommands::deleteLeavesACurrentEventOutsideTheSelection()
{
    addChain(*scene(), 2);
    trigger("actionSelect_All");
    Node *current = addChain(*scene(), 1).front();
    QCOMPARE(scene()->currentNode(), current);
    trigger("actionDelete");
    QVERIFY(scene()->getNodes() == std::vector<Node *>{current});
    QCOMPARE(scene()->currentNode(), nullptr);
}

void tst_MainWindowCommands::deleteWithoutACurrentEvent()
{
    addChain(*scene(), 2);
    scene()->sl_deselectCurrentNode();
    const LogCapture log;
    trigger("actionDelete");
    QCOMPARE(log.lines(), QStringList());
    QCOMPARE(scene()->getNodes().size(), std::size_t(2));
}

void tst_MainWindowCommands::endOfStoryMoves()
{
    const std::vector<Node *> nodes = addChain(*scene(), 3);
    typeInto(descriptionOf(nodes[0]), QStringLiteral("one"));
    typeInto(descriptionOf(nodes[1]), QStringLiteral("two"));
    typeInto(descriptionOf(nodes[2]), QStringLiteral("three"));
    QCOMPARE(scene()->endOfStoryNode(), nodes[2]);
    scene()->sl_selectCurrentNode(nodes[1]);
    QSignalSpy story(scene(), &NodegraphScene::s_updateStory);
    trigger("actionSet_End_of_Story");

    QVERIFY(!nodes[2]->getIsEndOfStory());
    QVERIFY(nodes[1]->getIsEndOfStory());
    QCOMPARE(scene()->endOfStoryNode(), nodes[1]);
    QCOMPARE(story.count(), 1);
    QCOMPARE(panelTexts(*window), QStringList({QStringLiteral("one"), QStringLiteral("two")}));
    QCOMPARE(view()->undoStack()->count(), 3);
}

void tst_MainWindowCommands::endOfStoryWithoutACurrentEvent()
{
    const std::vector<Node *> nodes = addChain(*scene(), 2);
    scene()->sl_deselectCurrentNode();
    QSignalSpy story(scene(), &NodegraphScene::s_updateStory);
    const LogCapture log;
    trigger("actionSet_End_of_Story");
    QCOMPARE(scene()->endOfStoryNode(), nodes[1]);
    QVERIFY(nodes[1]->getIsEndOfStory());
    QVERIFY(!nodes[0]->getIsEndOfStory());
    QCOMPARE(story.count(), 0);
    QCOMPARE(log.lines(), QStringList());
}

void tst_MainWindowCommands::endOfStoryAgain()
{
    const std::vector<Node *> nodes = addChain(*scene(), 1);
    QSignalSpy story(scene(), &NodegraphScene::s_updateStory);
    trigger("actionSet_End_of_Story");
    QVERIFY(nodes[0]->getIsEndOfStory());
    QCOMPARE(story.count(), 1);
}

void tst_MainWindowCommands::importanceIsFlipped()
{
    const std::vector<Node *> nodes = addChain(*scene(), 2);
    QSignalSpy story(scene(), &NodegraphScene::s_updateStory);
    trigger("actionSet_as_Important");
    QVERIFY(nodes[1]->getIsImportant());
    QVERIFY(!nodes[0]->getIsImportant());
    QCOMPARE(story.count(), 1);
    trigger("actionSet_as_Important");
    QVERIFY(!nodes[1]->getIsImportant());
    QCOMPARE(story.count(), 2);
    QCOMPARE(view()->undoStack()->count(), 2);
}

void tst_MainWindowCommands::importanceWithoutACurrentEvent()
{
    const std::vector<Node *> nodes = addChain(*scene(), 1);
    scene()->sl_deselectCurrentNode();
    const LogCapture log;
    trigger("actionSet_as_Important");
    QVERIFY(!nodes[0]->getIsImportant());
    QCOMPARE(log.lines(), QStringList());
}

void tst_MainWindowCommands::frame()
{
    window->show();
    QVERIFY(QTest::qWaitForWindowExposed(window.get()));
    const std::vector<Node *> nodes = addChain(*scene(), 2);
    nodes[1]->setPos(30000, 40000);
    view()->setZoomDivisor(3.0);
    QSignalSpy framed(scene(), &NodegraphScene::s_frameView);
    trigger("actionFrame");

    QCOMPARE(framed.count(), 1);
    QCOMPARE(framed.front().front().toRectF(), nodes[1]->sceneBoundingRect().adjusted(-50, -50, 50, 50));
    QCOMPARE(view()->getZoomDivisor(), 1.0);
    const QRectF shown = view()->mapToScene(view()->viewport()->rect()).boundingRect();
    QVERIFY(shown.contains(nodes[1]->sceneBoundingRect()));
}

void tst_MainWindowCommands::zoomInCompounds()
{
    const LogCapture log;
    trigger("actionZoom_In");
    QCOMPARE(view()->transform(), QTransform::fromScale(1.2, 1.2));
    trigger("actionZoom_In");
    QCOMPARE(view()->transform(), QTransform::fromScale(1.2 * 1.2, 1.2 * 1.2));
    QCOMPARE(log.lines(), QStringList({QStringLiteral("ZoomingIn"), QStringLiteral("ZoomingIn")}));

    trigger("actionZoom_to_100");
    QVERIFY(view()->transform().isIdentity());
}

void tst_MainWindowCommands::zoomOutCompounds()
{
    const LogCapture log;
    trigger("actionZoom_Out");
    QCOMPARE(view()->transform(), QTransform::fromScale(0.8, 0.8));
    trigger("actionZoom_Out");
    QCOMPARE(view()->transform(), QTransform::fromScale(0.8 * 0.8, 0.8 * 0.8));
    QCOMPARE(log.lines(), QStringList());
}

void tst_MainWindowCommands::zoomIsAbsolute_data()
{
    QTest::addColumn<double>("scale");
    QTest::newRow("actionZoom_to_50") << 0.5;
    QTest::newRow("actionZoom_to_100") << 1.0;
    QTest::newRow("actionZoom_to_200") << 2.0;
}

void tst_MainWindowCommands::zoomIsAbsolute()
{
    QFETCH(const double, scale);
    turnWheel(view(), 360);
    view()->rotate(30);
    view()->translate(11, 12);
    QVERIFY(view()->getZoomDivisor() != 1.0);
    const LogCapture log;
    for (int i = 0; i < 2; ++i) {
        trigger(QTest::currentDataTag());
        const QTransform transform = view()->transform();
        QVERIFY(transform == QTransform::fromScale(scale, scale)); // exactly, not nearly
        QVERIFY(view()->getZoomDivisor() == 1.0);
    }
    QCOMPARE(log.lines(), QStringList());
}

void tst_MainWindowCommands::zoomAndFrameResetTheDivisor_data()
{
    QTest::addColumn<QByteArray>("action");
    for (const char *action : {"actionFrame", "actionZoom_In", "actionZoom_Out", "actionZoom_to_50",
                               "actionZoom_to_100", "actionZoom_to_200"})
        QTest::newRow(action) << QByteArray(action);
}

void tst_MainWindowCommands::zoomAndFrameResetTheDivisor()
{
    QFETCH(const QByteArray, action);
    turnWheel(view(), 120);
    QVERIFY(view()->getZoomDivisor() != 1.0);
    trigger(action);
    QCOMPARE(view()->getZoomDivisor(), 1.0);
}

void tst_MainWindowCommands::help_data()
{
    QTest::addColumn<bool>("withTab");
    QTest::newRow("with a tab") << true;
    QTest::newRow("without a tab") << false;
}

void tst_MainWindowCommands::help()
{
    QFETCH(const bool, withTab);
    if (!withTab)
        window->clearTabs();
    const LogCapture log;
    const Browser browser(log);
    trigger("actionHelp_and_Support");

    QCOMPARE(browser.pages.size(), 1);
    const QUrl page = browser.pages.front();
    QVERIFY(page.isValid());
    QCOMPARE(page.scheme(), QStringLiteral("https"));
    QVERIFY(!page.host().isEmpty());
    QCOMPARE(page.path(), QStringLiteral("/documentation"));
    QCOMPARE(page.toString(), QStringLiteral("https://%1/documentation").arg(page.host()));
    QCOMPARE(browser.linesBefore, QStringList());
    QCOMPARE(log.lines(), QStringList{QStringLiteral("Opening Support page")});
}

void tst_MainWindowCommands::unwiredActionsDoNothing_data()
{
    QTest::addColumn<QByteArray>("action");
    QTest::newRow("Close/Exit") << QByteArrayLiteral("actionClose");
    QTest::newRow("Shortcuts") << QByteArrayLiteral("actionShortcuts");
}

void tst_MainWindowCommands::unwiredActionsDoNothing()
{
    QFETCH(const QByteArray, action);
    window->show();
    addChain(*scene(), 1);
    const DialogAnswers nothing;
    const LogCapture log;
    trigger(action);
    QCoreApplication::processEvents();
    QCOMPARE(nothing.problem(), QString());
    QCOMPARE(log.lines(), QStringList());
    QVERIFY(window->isVisible());
    QCOMPARE(tabsOf(*window)->count(), 1);
}

void tst_MainWindowCommands::shortcutsReachTheirActions_data()
{
    QTest::addColumn<int>("dialogs");
    for (const char *action :
         {"actionNew", "actionUndo", "actionRedo", "actionCut", "actionCopy", "actionPaste",
          "actionSelect_All", "actionDelete", "actionZoom_In", "actionZoom_Out", "actionFrame",
          "actionSet_End_of_Story", "actionSet_as_Important", "actionAdd_Event"})
        QTest::newRow(action) << 0;
    QTest::newRow("actionOpen") << 1;
    QTest::newRow("actionSave") << 1;
}

// The keys are pressed where the user's are: in the canvas.
void tst_MainWindowCommands::shortcutsReachTheirActions()
{
    QFETCH(const int, dialogs);
    window->show();
    window->activateWindow();
    QVERIFY(QTest::qWaitForWindowActive(window.get()));
    addChain(*scene(), 1);
    view()->setFocus();
    const QAction *action = actionOf(*window, QTest::currentDataTag());
    QSignalSpy triggered(action, &QAction::triggered);
    const DialogAnswers answers(std::vector<DialogAnswers::Answer>(std::size_t(dialogs), pressEscape()));
    const QKeyCombination keys = action->shortcut()[0];
    QTest::keyClick(view(), keys.key(), keys.keyboardModifiers());
    QCOMPARE(answers.problem(), QString());
    QCOMPARE(triggered.count(), 1);
}

QTEST_MAIN(tst_MainWindowCommands)
#include "tst_mainwindow_commands.moc"
