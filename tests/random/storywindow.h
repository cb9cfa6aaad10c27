#pragma once

#include "app/windowsupport.h"

#include <functional>

// What the tests of the checks share: a small story in a window, and short ways to its parts.

using WindowDamage = std::function<void(MainWindow &)>;
Q_DECLARE_METATYPE(WindowDamage)

/// 0 feeds 1, 1 feeds 2, which ends the story; 3 is loose. A second tab is empty.
struct StoryWindow
{
    PrivateHome home;
    MainWindow window;
    NodegraphScene &scene{*sceneOf(window, 0)};

    StoryWindow()
    {
        window.addNodeGraphTab();
        addChain(scene, 3);
        addLoose(scene, QPointF(100, 2000));
    }
    ~StoryWindow() { flushDeferredDeletes(); }
    StoryWindow(const StoryWindow &) = delete;
    StoryWindow &operator=(const StoryWindow &) = delete;
};

inline Node *node(const NodegraphScene &scene, int index) { return scene.findNodeByIndex(index); }
inline Node *node(const MainWindow &window, int index) { return node(*sceneOf(window, 0), index); }
inline EventData *contentOf(const Node *node) { return node->payload()->eventContent(); }

inline OvNode *entry(const MainWindow &window, std::size_t place)
{
    return window.overviewerScene()->ovNodes().at(place);
}
inline EventData *contentOf(OvNode *entry) { return dynamic_cast<EventData *>(entry->eventData()); }
