#pragma once

#include "story/progress.h"
#include "story/story.h"

#include <QRectF>
#include <QSizeF>

#include <memory>
#include <vector>

class NodegraphScene;

/// A tab as the editor's own graph, without a view: so that a file of it is written by the editor's code, and
/// its events are as large as the window shows them.
class StoryGraph
{
public:
    /// Makes the events where `tab` has them, unconnected. A number that another event has is replaced.
    explicit StoryGraph(const StoryTab &tab, const PartTold &tell = {});
    ~StoryGraph();
    StoryGraph(StoryGraph &&) noexcept;
    StoryGraph &operator=(StoryGraph &&) noexcept;
    StoryGraph(const StoryGraph &) = delete;
    StoryGraph &operator=(const StoryGraph &) = delete;

    NodegraphScene &scene() const { return *graph; }
    /// Where events can stand, in scene coordinates.
    QRectF canvas() const;
    /// Of the boxes, in the order of the events.
    std::vector<QSizeF> sizes() const;
    /// Puts the boxes' top left corners there. `places` has one for each event.
    void place(const std::vector<QPointF> &places);
    /// Connects the events and marks the end as the tab says that this was made of.
    void connect(const StoryTab &tab);

private:
    std::unique_ptr<NodegraphScene> graph;
};
