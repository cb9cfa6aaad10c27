#pragma once

#include "app/scenedocument.h"
#include "app/storytabs.h"
#include "app/windowsupport.h"

#include <memory>

/// Tabs and a panel without a window around them.
struct StoryStage
{
    StoryStage() = default;
    ~StoryStage()
    {
        bar.reset(); // the tabs go before the panel
        flushDeferredDeletes();
    }
    StoryStage(const StoryStage &) = delete;
    StoryStage &operator=(const StoryStage &) = delete;

    NodegraphScene &scene(std::size_t i) const { return *tabs.views().at(i)->nodegraphScene(); }

    OverViewerScene panel;
    std::unique_ptr<QTabWidget> bar = std::make_unique<QTabWidget>();
    StoryTabs tabs{bar.get(), &panel};
    SceneDocument document{tabs};
};
