#pragma once

#include "ui_mainwindow.h"

#include <QImage>
#include <QMainWindow>
#include <QRegularExpression>
#include <QTest>

#include <memory>

// What the tests of the form share.

inline const QString logoPath = QStringLiteral(":/Logo/Assets/Logo/logo - Fill Clipped 4.png");

inline constexpr QSize iconProbe(24, 24);

struct ActionRow
{
    const char *name;
    const char *text;
    const char *shortcut = "";
    const char *toolTip = "";
};

inline constexpr ActionRow actionRows[] = {
    {"actionNew", "New", "Ctrl+N"},
    {"actionOpen", "Open", "Ctrl+O"},
    {"actionSave", "Save", "Ctrl+S"},
    {"actionSave_As", "Save As"},
    {"actionClose", "Close/Exit"},
    {"actionUndo", "Undo", "Ctrl+Z"},
    {"actionRedo", "Redo", "Ctrl+Y"},
    {"actionCut", "Cut", "Ctrl+X"},
    {"actionCopy", "Copy", "Ctrl+C"},
    {"actionPaste", "Paste", "Ctrl+V"},
    {"actionSelect_All", "Select All", "Ctrl+A"},
    {"actionDeselect_All", "Deselect All"},
    {"actionDelete", "Delete", "Del"},
    {"actionZoom_In", "Zoom In", "Ctrl++"},
    {"actionZoom_Out", "Zoom Out", "Ctrl+-"},
    {"actionZoom_to_50", "Zoom to 50%"},
    {"actionZoom_to_100", "Zoom to 100%"},
    {"actionZoom_to_200", "Zoom to 200%"},
    {"actionShortcuts", "Shortcuts", "Ctrl+/", "Shortcuts page (Under development)"},
    {"actionHelp_and_Support", "Help and Support", "",
     "Check the documentation to figure things out and how to utilize it to the fullest to Tell a story."},
    {"actionFrame", "Frame", "Ctrl+F",
     "Set the point of view to selected node(s). Set it to all of the nodes if none are selected."},
    {"actionSet_End_of_Story", "Set End of Story", "Ctrl+E",
     "This will set the current end of the story. Story will be acculumated upstream of this"},
    {"actionSet_as_Important", "Set as Important", "Ctrl+I",
     "Mark as an Important event in the story. Useful for summarizing later."},
    {"actionAdd_Event", "Add Event", "Ctrl+Shift+A", "Add Event Node in your Story."},
};

inline QImage image(const QIcon &icon, QSize size = iconProbe, QIcon::Mode mode = QIcon::Normal)
{
    return icon.pixmap(size, mode, QIcon::Off).toImage();
}

inline QStringList actionNames(const QWidget *widget)
{
    QStringList names;
    for (const QAction *action : widget->actions())
        names.append(action->isSeparator() ? QStringLiteral("separator") : action->objectName());
    return names;
}

// The macro declares a function, so it has to be used outside every namespace and class.
inline void initFormResources() { Q_INIT_RESOURCE(fablegrid); }

/// A test of the form in a window that has nothing else.
class FormTest : public QObject
{
    Q_OBJECT

protected:
    std::unique_ptr<QMainWindow> window;
    Ui::MainWindow form;

private slots:
    void initTestCase() { initFormResources(); }
    void init()
    {
        // The offscreen platform says this whenever a dock starts to float; every other warning is a fault.
        QTest::failOnWarning(
            QRegularExpression(QStringLiteral("^(?!This plugin does not support raise\\(\\)$)")));
        window = std::make_unique<QMainWindow>();
        form.setupUi(window.get());
    }
    void cleanup() { window.reset(); }
};
