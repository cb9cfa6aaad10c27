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
    ui->AddNodeGraph_tool_button->setToolTip(tr("Add a tab for another story."));
    ui->F1_button->setToolTip(tr("List the important events of the story only."));
    ui->Nodegraph->setAccessibleName(tr("Stories"));
    panel->setAccessibleName(tr("Events of the story"));

    // Their sizes are fixed, whatever the desktop's font is.
    new TextFitter(ui->AddNodeGraph_tool_button);
    new TextFitter(ui->F1_button);

    // The menus have no letters to be opened by, so the key that opens the first one has to be there.
    auto *toMenus = new QShortcut(Qt::Key_F10, this);
    connect(toMenus, &QShortcut::activated, this, [this] {
        ui->Menubar->setFocus(Qt::MenuBarFocusReason);
        ui->Menubar->setActiveAction(ui->menuFile->menuAction());
    });
}
