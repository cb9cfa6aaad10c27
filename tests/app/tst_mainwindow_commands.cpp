#include "app/commandlog.h"

class tst_MainWindowCommands : public WindowTest
{
    Q_OBJECT

private slots:
    void withoutATabOnlyTheFirstLineIsLogged_data() { addTabCommands(); }
    void withoutATabOnlyTheFirstLineIsLogged();
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

private:
    void prepare() override { makeWindow(); }
    NodegraphView *view() const { return window->views().front(); }
    NodegraphScene *scene() const { return view()->nodegraphScene(); }
    void trigger(const char *action) const { actionOf(*window, action)->trigger(); }
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
    QCOMPARE(scene()->nodes().size(), std::size_t(2));
    QCOMPARE(view()->undoStack()->index(), done);
    QCOMPARE(view()->undoStack()->count(), 3);
    QCOMPARE(scene()->endOfStoryNode(), end);
    QCOMPARE(selection(scene()), selected);
    QCOMPARE(view()->transform(), transform);
    QCOMPARE(view()->zoomDivisor(), 3.0);
    for (const Node *node : scene()->nodes()) {
        QVERIFY(!node->isImportant());
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
    const std::vector<Node *> &nodes = scene()->nodes();
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
    QCOMPARE(scene()->nodes().size(), std::size_t(1));

    log.clear();
    trigger("actionRedo");
    QCOMPARE(log.lines().value(0), QStringLiteral("Redoing"));
    QCOMPARE(log.count(QStringLiteral("Redoing")), 1);
    QCOMPARE(view()->undoStack()->index(), 2);
    QCOMPARE(scene()->nodes().size(), std::size_t(2));
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
    QVERIFY(scene()->nodes().front()->isVisible());
}

void tst_MainWindowCommands::cut()
{
    addChain(*scene(), 1);
    const LogCapture log;
    trigger("actionCut");
    QCOMPARE(log.lines(), QStringList({QStringLiteral("cut"), QStringLiteral("Copying"),
                                       QStringLiteral("Copying node  0")}));
    QVERIFY(!scene()->nodes().front()->isVisible());
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
    QVERIFY(scene()->selectedNodes() == scene()->nodes());
    trigger("actionDeselect_All");
    QCOMPARE(selection(scene()), QList<bool>({false, false, false}));
    QVERIFY(scene()->selectedNodes().empty());
    QCOMPARE(log.lines(), QStringList());
}

void tst_MainWindowCommands::deleteCurrent()
{
    const std::vector<Node *> nodes = addChain(*scene(), 2);
    const LogCapture log;
    trigger("actionDelete");
    QCOMPARE(log.lines().value(0), QStringLiteral("Del"));
    QVERIFY(scene()->nodes() == std::vector<Node *>{nodes[0]});
    QCOMPARE(view()->undoStack()->count(), 3);
}

void tst_MainWindowCommands::deleteSelection()
{
    addChain(*scene(), 3);
    trigger("actionSelect_All");
    trigger("actionDelete");
    QVERIFY(scene()->nodes().empty());
    QCOMPARE(view()->undoStack()->count(), 6);
}

void tst_MainWindowCommands::deleteLeavesACurrentEventOutsideTheSelection()
{
    addChain(*scene(), 2);
    trigger("actionSelect_All");
    Node *current = addChain(*scene(), 1).front();
    QCOMPARE(scene()->currentNode(), current);
    trigger("actionDelete");
    QVERIFY(scene()->nodes() == std::vector<Node *>{current});
    QCOMPARE(scene()->currentNode(), nullptr);
}

void tst_MainWindowCommands::deleteWithoutACurrentEvent()
{
    addChain(*scene(), 2);
    scene()->sl_deselectCurrentNode();
    const LogCapture log;
    trigger("actionDelete");
    QCOMPARE(log.lines(), QStringList());
    QCOMPARE(scene()->nodes().size(), std::size_t(2));
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

    QVERIFY(!nodes[2]->isEndOfStory());
    QVERIFY(nodes[1]->isEndOfStory());
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
    QVERIFY(nodes[1]->isEndOfStory());
    QVERIFY(!nodes[0]->isEndOfStory());
    QCOMPARE(story.count(), 0);
    QCOMPARE(log.lines(), QStringList());
}

void tst_MainWindowCommands::endOfStoryAgain()
{
    const std::vector<Node *> nodes = addChain(*scene(), 1);
    QSignalSpy story(scene(), &NodegraphScene::s_updateStory);
    trigger("actionSet_End_of_Story");
    QVERIFY(nodes[0]->isEndOfStory());
    QCOMPARE(story.count(), 1);
}

void tst_MainWindowCommands::importanceIsFlipped()
{
    const std::vector<Node *> nodes = addChain(*scene(), 2);
    QSignalSpy story(scene(), &NodegraphScene::s_updateStory);
    trigger("actionSet_as_Important");
    QVERIFY(nodes[1]->isImportant());
    QVERIFY(!nodes[0]->isImportant());
    QCOMPARE(story.count(), 1);
    trigger("actionSet_as_Important");
    QVERIFY(!nodes[1]->isImportant());
    QCOMPARE(story.count(), 2);
    QCOMPARE(view()->undoStack()->count(), 2);
}

void tst_MainWindowCommands::importanceWithoutACurrentEvent()
{
    const std::vector<Node *> nodes = addChain(*scene(), 1);
    scene()->sl_deselectCurrentNode();
    const LogCapture log;
    trigger("actionSet_as_Important");
    QVERIFY(!nodes[0]->isImportant());
    QCOMPARE(log.lines(), QStringList());
}

QTEST_MAIN(tst_MainWindowCommands)
#include "tst_mainwindow_commands.moc"
