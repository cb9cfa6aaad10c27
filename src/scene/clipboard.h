#pragma once

#include "scene/nodelist.h"

#include <vector>

class MassRemoval;
class Node;
class NodegraphScene;
class QPointF;

/// The events that were copied or cut on one canvas, and how they are pasted: they move to the new place, as
/// new events that are marked and joined as they were. Owned by the scene, whose commands it makes; it
/// remembers live events and owns none.
class Clipboard
{
public:
    /// Both must outlive every call; `sourceRemoval` is the one that `graph` takes its items out with.
    Clipboard(NodegraphScene &graph, MassRemoval &sourceRemoval);

    /// Remembers the current event, or else the selected ones. What was cut before is shown again.
    void copy();
    /// Copies and hides.
    void cut();
    /// The first one that is remembered comes to `target` (scene coordinates), the others keep their distance
    /// from it; the sources are deleted and forgotten. With nothing remembered there is nothing to see.
    void paste(const QPointF &target);

    /// Whether there is memory for a paste; without it a paste would come to an end half-way.
    bool fits() const;

    const std::vector<Node *> &remembered() const { return sources.nodes(); }
    /// Whether anything has ever been cut; a paste does not ask.
    bool isCutPending() const { return cutPending; }
    /// The node is dying.
    void forget(const Node *node) { sources.remove(node); }

private:
    void deleteOriginals(const std::vector<Node *> &originals);

    NodegraphScene &scene;
    MassRemoval &removal;
    NodeList sources;
    bool cutPending = false;
};
