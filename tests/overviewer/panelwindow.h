#pragma once

#include "app/windowsupport.h"
#include "commands/connectnodescommand.h"
#include "scene/scenebytes.h"

#include <QGraphicsView>
#include <QScrollBar>

#include <functional>

// What the tests of the panel in its window share: keys and clicks as a user gives them, and the commands
// that make the entries anew.

/// A window that is shown, with a chain of events in its first tab. Event n is fed by event n - 1, and the
/// last one is the current one and ends the story.
struct PanelWindow
{
    explicit PanelWindow(int events)
    {
        window.show();
        QVERIFY(isReady());
        for (int i = 0; i < events; ++i)
            key(Qt::Key_A, Qt::ControlModifier | Qt::ShiftModifier);
    }
    ~PanelWindow() { flushDeferredDeletes(); }
    PanelWindow(const PanelWindow &) = delete;
    PanelWindow &operator=(const PanelWindow &) = delete;

    bool isReady() { return QTest::qWaitForWindowActive(&window); }
    const std::vector<OvNode *> &entries() const { return panel.ovNodes(); }
    Node *node(int index) const { return scene.findNodeByIndex(index); }
    /// The description of the event on the canvas.
    QString description(int index) const
    {
        return node(index) ? node(index)->payload()->eventContent()->getDescription()
                           : QStringLiteral("it is not there");
    }
    QString entryText(int index) const
    {
        return entryOf(index) ? descriptionOf(entryOf(index))->text() : QStringLiteral("it is not listed");
    }
    OvNode *entryOf(int index) const
    {
        const auto found = std::find_if(entries().begin(), entries().end(),
                                        [index](const OvNode *entry) { return entry->getIndex() == index; });
        return found == entries().end() ? nullptr : *found;
    }

    /// What has the keyboard.
    QWidget *keyboard() { return QApplication::focusWidget() ? QApplication::focusWidget() : &window; }
    void key(Qt::Key key, Qt::KeyboardModifiers modifiers = Qt::NoModifier)
    {
        QTest::keyClick(keyboard(), key, modifiers);
    }
    void type(const QString &text)
    {
        for (const QChar letter : text)
            QTest::keyClick(keyboard(), letter.toLatin1());
    }
    void command(const char *action) { actionOf(window, action)->trigger(); }
    /// Into the text of the entry, behind its last line.
    void click(int index)
    {
        OvNode *entry = entryOf(index);
        view.ensureVisible(entry->sceneBoundingRect(), 0, 0);
        const QRectF text = descriptionOf(entry)->sceneBoundingRect();
        QTest::mouseClick(view.viewport(), Qt::LeftButton, {},
                          view.mapFromScene(text.bottomRight() - QPointF(30, 25)));
    }
    void clickTab(int tab)
    {
        QTabBar *bar = tabsOf(window)->tabBar();
        QTest::mouseClick(bar, Qt::LeftButton, {}, bar->tabRect(tab).center());
    }
    /// The bytes of every tab.
    QByteArray document() const
    {
        QByteArray bytes;
        for (const NodegraphView *tab : window.views())
            bytes += SceneBytes::saved(*tab->nodegraphScene());
        return bytes;
    }

    PrivateHome home;
    MainWindow window;
    NodegraphScene &scene{*sceneOf(window, 0)};
    OverViewerScene &panel{*window.overviewerScene()};
    QGraphicsView &view{*panel.views().at(0)};
};

/// Something that makes the entries anew and leaves event 1 in the list.
struct PanelCommand
{
    const char *name;
    std::function<void(PanelWindow &)> prepare;
    std::function<void(PanelWindow &)> run;
};

inline const std::vector<PanelCommand> &panelCommands()
{
    const auto nothing = [](PanelWindow &) {};
    const auto make = [](const char *action) { return [action](PanelWindow &w) { w.command(action); }; };
    const auto addSecondTab = [](PanelWindow &w) { w.window.addNodeGraphTab(); };
    const auto first = [](PanelWindow &w) { w.scene.sl_selectCurrentNode(w.node(0)); };
    const auto deleteFirst = [first](PanelWindow &w) {
        first(w);
        w.command("actionDelete");
    };
    const auto selectTwoOthers = [](PanelWindow &w) {
        addLoose(w.scene, QPointF(100, 3000));
        addLoose(w.scene, QPointF(100, 4000));
        SceneMouse{w.scene}.drag(QPointF(50, 2900), QPointF(1000, 5000));
    };
    const auto connect = [](PanelWindow &w) {
        const Node *loose = addLoose(w.scene, QPointF(100, 3000));
        emit w.scene.s_UndoCommandAdded(new ConnectNodesCommand(&w.scene, 0, loose->getIndex()));
    };
    static const std::vector<PanelCommand> all{
        {"importance by key", nothing, [](PanelWindow &w) { w.key(Qt::Key_I, Qt::ControlModifier); }},
        {"importance of the event itself", [](PanelWindow &w) { w.scene.sl_selectCurrentNode(w.node(1)); },
         [](PanelWindow &w) { w.key(Qt::Key_I, Qt::ControlModifier); }},
        {"end of story", [](PanelWindow &w) { w.scene.sl_selectCurrentNode(w.node(2)); },
         [](PanelWindow &w) { w.key(Qt::Key_E, Qt::ControlModifier); }},
        {"add by key", nothing,
         [](PanelWindow &w) { w.key(Qt::Key_A, Qt::ControlModifier | Qt::ShiftModifier); }},
        {"add by button", nothing,
         [](PanelWindow &w) { QTest::mouseClick(buttonOf(w.window, "Add_NodeButton"), Qt::LeftButton); }},
        {"delete of another event", first, make("actionDelete")},
        {"delete of several events", selectTwoOthers, make("actionDelete")},
        {"undo of a deletion", deleteFirst, make("actionUndo")},
        {"redo of a deletion",
         [deleteFirst](PanelWindow &w) {
             deleteFirst(w);
             w.command("actionUndo");
         },
         make("actionRedo")},
        {"undo of an addition", nothing, make("actionUndo")},
        {"redo of an addition", make("actionUndo"), make("actionRedo")},
        {"filter by key", [](PanelWindow &w) { w.scene.toggleImportance(w.node(1)); },
         [](PanelWindow &w) { w.key(Qt::Key_L, Qt::ControlModifier); }},
        {"filter by mouse", [](PanelWindow &w) { w.scene.toggleImportance(w.node(1)); },
         [](PanelWindow &w) { QTest::mouseClick(buttonOf(w.window, "F1_button"), Qt::LeftButton); }},
        {"disconnecting", connect, make("actionUndo")},
        {"connecting",
         [connect](PanelWindow &w) {
             connect(w);
             w.command("actionUndo");
         },
         make("actionRedo")},
        {"another tab and back", addSecondTab,
         [](PanelWindow &w) {
             w.clickTab(1);
             w.clickTab(0);
         }},
        {"undo and redo in a row", nothing,
         [](PanelWindow &w) {
             w.command("actionUndo");
             w.command("actionRedo");
         }},
    };
    return all;
}

/// A row for each of them.
inline void addPanelCommandRows()
{
    QTest::addColumn<int>("command");
    for (std::size_t i = 0; i < panelCommands().size(); ++i)
        QTest::newRow(panelCommands().at(i).name) << int(i);
}
