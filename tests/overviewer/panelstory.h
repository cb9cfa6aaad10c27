#pragma once

#include "support/testsupport.h"

#include "items/eventdata.h"
#include "items/node.h"
#include "items/nodedata.h"
#include "items/stlineedit.h"
#include "overviewer/overviewerscene.h"
#include "scene/nodegraphscene.h"

#include <QGraphicsView>
#include <QMetaMethod>
#include <QPointer>
#include <QTextCursor>
#include <QUndoStack>

#include <memory>

using namespace Qt::StringLiterals;

// What the tests of the panel share.

/// A graph and a panel, wired as a window wires them.
struct Story
{
    explicit Story(int events = 0)
    {
        pushCommandsOn(graph, stack);
        QObject::connect(&graph, SIGNAL(s_updateStory(std::vector<Node*>)), &panel,
                                        SLOT(sl_recieveNodes(std::vector<Node*>)));
        QObject::connect(&graph, SIGNAL(s_updateNode(Node*)), &panel, SLOT(sl_updatedNode(Node*)));
        QObject::connect(&graph, SIGNAL(s_nodeIndexChanged(Node*,int)), &panel,
                                        SLOT(sl_nodeIndexChanged(Node*,int)));
        QObject::connect(&graph, SIGNAL(s_importanceChanged(Node*,bool)), &panel,
                                        SLOT(sl_importanceChanged(Node*,bool)));
        QObject::connect(&panel, SIGNAL(s_nodeChanged(QGraphicsItem*,int)), &graph,
                                        SLOT(sl_ovNodeChanged(QGraphicsItem*,int)));
        nodes = addChain(graph, events);
    }

    NodegraphScene graph;
    QUndoStack stack;
    OverViewerScene panel;
    std::vector<Node *> nodes;
};

inline STLineEdit *textOf(const Node *node) { return node->payload()->eventContent()->descriptionItem(); }

inline STLineEdit *textOf(OvNode *entry)
{
    return dynamic_cast<EventData *>(entry->eventData())->descriptionItem();
}

/// Replaces the text as an edit by the user does.
inline void edit(STLineEdit *item, const QString &text)
{
    QTextCursor cursor(item->document());
    cursor.select(QTextCursor::Document);
    cursor.insertText(text);
}

inline QList<int> indices(const OverViewerScene &panel)
{
    QList<int> all;
    for (const OvNode *entry : panel.ovNodes())
        all << entry->getIndex();
    return all;
}

inline QStringList texts(const OverViewerScene &panel)
{
    QStringList all;
    for (OvNode *entry : panel.ovNodes())
        all << textOf(entry)->toPlainText();
    return all;
}

inline std::vector<QPointer<OvNode>> watch(const OverViewerScene &panel)
{
    return {panel.ovNodes().begin(), panel.ovNodes().end()};
}

inline bool allGone(const std::vector<QPointer<OvNode>> &entries)
{
    return std::all_of(entries.begin(), entries.end(), [](const auto &entry) { return entry.isNull(); });
}

inline QRectF covered(const OverViewerScene &panel)
{
    QRectF all;
    for (const OvNode *entry : panel.ovNodes())
        all |= entry->sceneBoundingRect();
    return all;
}

/// The entries stand below one another from y = 0 on, and nothing else belongs to the panel's area.
inline void verifyStacked(const OverViewerScene &panel)
{
    int y = 0;
    for (const OvNode *entry : panel.ovNodes()) {
        QCOMPARE(entry->pos(), QPointF(0, y));
        y = static_cast<int>(5 + entry->boundingRect().height() + y);
    }
    QCOMPARE(panel.sceneRect(), covered(panel));
}
