#pragma once

#include "items/promptscene.h"
#include "scene/canvasdetail.h"
#include "scene/exposure.h"

#include <vector>

class Node;

/// How a canvas of nodes meets its view: before each frame and each event its events show as much of
/// themselves as can be seen or touched, and the keyboard gets into one of their texts by a click only.
///
/// The base of the scene, which says which nodes there are; it knows nothing of their story.
class CanvasScene : public PromptScene
{
public:
    CanvasScene() = default;

    /// All nodes in the order of their creation; owned by this scene.
    virtual const std::vector<Node *> &nodes() const = 0;

    /// Shows as much of the events as suits its view now, which else happens with the next frame.
    void adaptDetail();

protected:
    bool event(QEvent *event) override;
    void drawBackground(QPainter *painter, const QRectF &rect) override;
    bool focusNextPrevChild(bool next) override;

    /// For whoever makes nodes: it has to know of each new one.
    Exposure &exposure() { return exposure_; }
    /// After the nodes have gone: the next ones come with all their parts.
    void forgetDetail() { detail = {}; }

private:
    CanvasDetail detail;
    Exposure exposure_{*this};
};
