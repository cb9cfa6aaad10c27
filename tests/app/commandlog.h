#pragma once

#include "app/windowsupport.h"
#include "support/testsupport.h"

#include <QSignalSpy>
#include <QUndoStack>

// What the tests of the commands share.

struct CommandRow
{
    const char *action;
    const char *firstLine; // written even when there is no tab; null if there is none
};

inline constexpr CommandRow tabCommands[] = {
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

inline void addTabCommands()
{
    QTest::addColumn<QStringList>("lines");
    for (const CommandRow &row : tabCommands) {
        QStringList lines;
        if (row.firstLine)
            lines << QString::fromLatin1(row.firstLine);
        QTest::newRow(row.action) << lines;
    }
}

inline QList<bool> selection(const NodegraphScene *scene)
{
    QList<bool> selected;
    for (const Node *node : scene->nodes())
        selected << node->isSelected();
    return selected;
}
