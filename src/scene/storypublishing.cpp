#include "scene/storypublishing.h"

#include <utility>

StoryPublishing::Step::Step(StoryPublishing &delayed) : publishing(delayed) { ++publishing.depth; }

StoryPublishing::Step::~Step()
{
    if (--publishing.depth == 0 && std::exchange(publishing.isUntold, false))
        publishing.tell();
}

void StoryPublishing::storyChanged()
{
    if (depth > 0)
        isUntold = true;
    else
        tell();
}
