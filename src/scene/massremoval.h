#pragma once

#include "scene/nodegraphscene.h"

/// While one of these lives, nodes and lines that go stay in the scene's items; they are taken out together
/// at the end, those that came last first.
///
/// The framework numbers all its items anew for each one that leaves before others: emptying a canvas of
/// 10,000 events from the front took 2 s.
class NodegraphScene::MassRemoval
{
public:
    explicit MassRemoval(NodegraphScene &emptied) : scene(emptied) { ++scene.massRemovals; }
    ~MassRemoval()
    {
        if (--scene.massRemovals == 0)
            scene.takeOutLeaving();
    }
    MassRemoval(const MassRemoval &) = delete;
    MassRemoval &operator=(const MassRemoval &) = delete;

private:
    NodegraphScene &scene;
};
