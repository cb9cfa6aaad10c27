#pragma once

#include "items/node.h"
#include "scene/nodegraphscene.h"
#include "support/testsupport.h"

#include <QUndoStack>

#include <vector>

using Nodes = std::vector<Node *>;

/// A scene and an undo history, as a tab has them, without a view.
struct SceneTab
{
    NodegraphScene scene;
    QUndoStack stack;

    SceneTab() { pushCommandsOn(scene, stack); }
};

inline QList<int> indicesOf(const Nodes &nodes)
{
    QList<int> indices;
    for (const Node *node : nodes)
        indices << node->getIndex();
    return indices;
}
