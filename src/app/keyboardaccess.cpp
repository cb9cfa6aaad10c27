#include "app/keyboardaccess.h"

#include "app/mainwindow.h"
#include "app/textfitter.h"
#include "ui_mainwindow.h"

#include <QGraphicsView>
#include <QShortcut>

KeyboardAccess::KeyboardAccess(MainWindow *window, const Ui::MainWindow &windowForm, QGraphicsView *panel)
    : QObject(window), form(windowForm)
{
    nameParts(panel);
    addKeys(window);
}

void KeyboardAccess::nameParts(QGraphicsView *panel) const
{
    form.Add_NodeButton->setAccessibleName(MainWindow::tr("Add Event"));
    form.Add_NodeButton->setToolTip(form.actionAdd_Event->toolTip());
    form.AddNodeGraph_tool_button->setAccessibleName(MainWindow::tr("New Tab"));
    form.AddNodeGraph_tool_button->setToolTip(MainWindow::tr("Add a tab for another story. (Ctrl+T)"));
    form.F1_button->setToolTip(MainWindow::tr("List the important events of the story only. (Ctrl+L)"));
    form.Nodegraph->setAccessibleName(MainWindow::tr("Stories"));
    panel->setAccessibleName(MainWindow::tr("Events of the story"));

    // As the tool buttons: a click leaves the keyboard where somebody writes.
    form.F1_button->setFocusPolicy(Qt::TabFocus);

    // Their sizes are fixed, whatever the desktop's font is.
    new TextFitter(form.AddNodeGraph_tool_button);
    new TextFitter(form.F1_button);
}

void KeyboardAccess::addKeys(MainWindow *window) const
{
    // On most keyboards the plus needs Shift, and the key without it is the equals sign. The menu shows the
    // first.
    form.actionZoom_In->setShortcuts(
        {form.actionZoom_In->shortcut(), QKeySequence(Qt::CTRL | Qt::Key_Equal)});

    // What there is a button for, and no menu entry.
    auto *newTab = new QShortcut(QKeySequence(Qt::CTRL | Qt::Key_T), window);
    connect(newTab, &QShortcut::activated, window, &MainWindow::addNodeGraphTab);
    auto *endTab = new QShortcut(QKeySequence(Qt::CTRL | Qt::Key_W), window);
    connect(endTab, &QShortcut::activated, window, [window, tabs = form.Nodegraph] {
        if (tabs->count() > 0)
            window->closeTab(tabs->currentIndex());
    });
    auto *filter = new QShortcut(QKeySequence(Qt::CTRL | Qt::Key_L), window);
    connect(filter, &QShortcut::activated, form.F1_button, &QAbstractButton::click);

    // The menus have no letters to be opened by, so the key that opens the first one has to be there. No
    // entry is chosen yet: the first one is New, which asks nothing.
    auto *toMenus = new QShortcut(Qt::Key_F10, window);
    connect(toMenus, &QShortcut::activated, window,
            [bar = form.Menubar, first = form.menuFile] { bar->setActiveAction(first->menuAction()); });
}
