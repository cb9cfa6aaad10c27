#include "app/mainwindow.h"

#include "app/textfitter.h"
#include "ui_mainwindow.h"

#include <QGraphicsView>
#include <QShortcut>

/// What the form leaves open for those who do not use a mouse, or do not see the screen.
void MainWindow::makeAccessible(QGraphicsView *panel)
{
    ui->Add_NodeButton->setAccessibleName(tr("Add Event"));
    ui->Add_NodeButton->setToolTip(ui->actionAdd_Event->toolTip());
    ui->AddNodeGraph_tool_button->setAccessibleName(tr("New Tab"));
    ui->AddNodeGraph_tool_button->setToolTip(tr("Add a tab for another story. (Ctrl+T)"));
    ui->F1_button->setToolTip(tr("List the important events of the story only. (Ctrl+L)"));
    ui->Nodegraph->setAccessibleName(tr("Stories"));
    panel->setAccessibleName(tr("Events of the story"));

    // As the tool buttons: a click leaves the keyboard where somebody writes.
    ui->F1_button->setFocusPolicy(Qt::TabFocus);

    // Their sizes are fixed, whatever the desktop's font is.
    new TextFitter(ui->AddNodeGraph_tool_button);
    new TextFitter(ui->F1_button);

    // On most keyboards the plus needs Shift, and the key without it is the equals sign. The menu shows the
    // first.
    ui->actionZoom_In->setShortcuts({ui->actionZoom_In->shortcut(), QKeySequence(Qt::CTRL | Qt::Key_Equal)});

    // What there is a button for, and no menu entry.
    auto *newTab = new QShortcut(QKeySequence(Qt::CTRL | Qt::Key_T), this);
    connect(newTab, &QShortcut::activated, this, &MainWindow::addNodeGraphTab);
    auto *endTab = new QShortcut(QKeySequence(Qt::CTRL | Qt::Key_W), this);
    connect(endTab, &QShortcut::activated, this, [this] {
        if (currentView())
            closeTab(ui->Nodegraph->currentIndex());
    });
    auto *filter = new QShortcut(QKeySequence(Qt::CTRL | Qt::Key_L), this);
    connect(filter, &QShortcut::activated, ui->F1_button, &QAbstractButton::click);

    // The menus have no letters to be opened by, so the key that opens the first one has to be there. No
    // entry is chosen yet: the first one is New, which asks nothing.
    auto *toMenus = new QShortcut(Qt::Key_F10, this);
    connect(toMenus, &QShortcut::activated, this,
            [this] { ui->Menubar->setActiveAction(ui->menuFile->menuAction()); });
}
