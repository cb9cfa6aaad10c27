#pragma once

#include "items/connectionline.h"
#include "items/eventdata.h"
#include "items/node.h"
#include "items/nodedata.h"
#include "items/socket.h"
#include "items/stlineedit.h"
#include "items/stnodename.h"
#include "scene/scenetab.h"
#include "support/testsupport.h"

#include <algorithm>

/// A SceneTab with short ways to its events.
struct GraphTab : SceneTab
{
    Node *node(int index) const { return scene.findNodeByIndex(index); }

    /// Adds an event with the add command, behind `upstream`.
    Node *addBehind(Node *upstream)
    {
        scene.sl_selectCurrentNode(upstream);
        scene.sl_addEventNode();
        return scene.nodes().back();
    }
};

/// What the keyboard does: the texts change in the items themselves.
inline void typeTitle(const Node *node, const QString &text) { node->nameItem()->setPlainText(text); }
inline void typeDescription(const Node *node, const QString &text)
{
    node->payload()->eventContent()->descriptionItem()->setPlainText(text);
}
inline QString descriptionOf(const Node *node) { return node->payload()->eventContent()->getDescription(); }

inline QList<int> sortedIndices(const NodegraphScene &scene)
{
    QList<int> indices = indicesOf(scene.nodes());
    std::sort(indices.begin(), indices.end());
    return indices;
}

inline int lineCount(const NodegraphScene &scene)
{
    const QList<QGraphicsItem *> items = scene.items();
    return int(std::count_if(items.begin(), items.end(),
                             [](QGraphicsItem *item) { return dynamic_cast<ConnectionLine *>(item); }));
}

/// Whether both nodes, their sockets and the line between them agree that `upstream` feeds `node`.
inline bool isWhole(const NodegraphScene &scene, const Node *node, const Node *upstream)
{
    const ConnectionLine *line = node->inLine();
    return upstream && upstream->getIndex() == node->getPrevIndex() &&
           std::count(upstream->nextNodes().begin(), upstream->nextNodes().end(), node) == 1 &&
           node->inSocket()->connectedSocket() == upstream->outSocket() &&
           upstream->outSocket()->getIsConnected() && line && line->scene() == &scene &&
           line->inputSocket() == node->inSocket() && line->outputSocket() == upstream->outSocket();
}

/// All connections as "1 from 0", by the fed node's index; whatever is only half there is named too.
inline QStringList connections(const NodegraphScene &scene)
{
    std::vector<Node *> byIndex = scene.nodes();
    std::sort(byIndex.begin(), byIndex.end(),
              [](const Node *a, const Node *b) { return a->getIndex() < b->getIndex(); });
    QStringList found;
    int whole = 0;
    for (const Node *node : byIndex) {
        const bool isFree = !node->prevNode() && node->getPrevIndex() == -1 && !node->inLine() &&
                            !node->inSocket()->getIsConnected();
        if (!node->hasInput() && isFree)
            continue;
        if (node->hasInput() && isWhole(scene, node, node->prevNode())) {
            found << QStringLiteral("%1 from %2").arg(node->getIndex()).arg(node->getPrevIndex());
            ++whole;
        } else {
            found << QStringLiteral("%1 from half a connection").arg(node->getIndex());
        }
    }
    if (lineCount(scene) != whole)
        found << QStringLiteral("%1 lines").arg(lineCount(scene));
    return found;
}
