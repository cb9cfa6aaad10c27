#pragma once

#include "items/nodedetail.h"

#include <vector>

class Node;
class QGraphicsView;

/// How much of a canvas's events is shown: all their parts, unless their texts are too small to be read and
/// so many of them are in view that letters would take longer than a frame.
///
/// The framework asks each item for each frame, and an event has eight; a hidden one it passes over. Owned by
/// the scene, which lets it look before each frame of its view.
class CanvasDetail
{
public:
    /// Gives `nodes` the detail that suits what `view` shows of them.
    void apply(const QGraphicsView &view, const std::vector<Node *> &nodes);
    /// Whether no part of any event is left out.
    bool isWhole() const { return detail.parts == NodeDetail::Parts::all; }

private:
    NodeDetail detail; // of all nodes that were there last time
};
