#pragma once

#include <QString>

#include <vector>

class NodegraphView;
class OverViewerScene;
class QTabWidget;

/// The tabs of a window, each with the view of one story: they come, are joined to the panel that all share,
/// and go.
///
/// Owned by the window; the views are the tab widget's, and a story's scene goes with its view. Tab widget
/// and panel have to outlive this object's last call.
class StoryTabs
{
public:
    StoryTabs(QTabWidget *tabWidget, OverViewerScene *sharedPanel);

    /// The views in the order of their creation, which is the order in which they are saved; tabs that were
    /// dragged stand otherwise in the tab bar.
    const std::vector<NodegraphView *> &views() const { return all; }
    /// The view in front, null when there is no tab.
    NodegraphView *current() const;
    /// The view at that place of the tab bar, null if there is none.
    NodegraphView *at(int place) const;

    void add();
    /// Adds so many, with the tab widget out of sight if they are many.
    void add(int count);
    /// Takes that tab away; its view is destroyed soon after.
    void close(NodegraphView *view);
    /// Takes all tabs away with their stories, which go as they are; the log tells of each event.
    void closeAll();

private:
    QTabWidget *tabs;
    OverViewerScene *panel;
    std::vector<NodegraphView *> all;
};
