#pragma once

#include "items/latetext.h"

#include <QPointF>
#include <QString>

#include <functional>

class Exposure;
class MassRemoval;
class Node;
class NodegraphScene;
class NodeRegister;
class NodeSelection;

/// Makes the nodes of a scene: each is brought onto the canvas, joined to the scene's slots and entered in
/// its register. Owned by the scene, whose items the nodes are.
class NodeFactory
{
public:
    /// Puts into a new node what it holds, before its index is told.
    using Filling = std::function<void(Node &node)>;

    /// All must outlive every call.
    NodeFactory(NodegraphScene &graph, NodeRegister &entered, NodeSelection &selected,
                MassRemoval &canvasItems, Exposure &watch);

    /// A node at `pos` (scene coordinates). A taken index is replaced by a free one.
    Node *build(QPointF pos, int index, int type, const QString &name, TextMaking making,
                const Filling &fill = {}) const;
    /// Continues the current node, if there is one, with `made`, which takes over its mark of the end and
    /// becomes the current one. The only node of a graph becomes the end.
    void attachToCurrent(Node *made) const;

private:
    NodegraphScene &scene;
    NodeRegister &all;
    NodeSelection &selection;
    MassRemoval &items;
    Exposure &exposure;
};
