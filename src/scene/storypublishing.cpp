#include "scene/storypublishing.h"

#include <exception>
#include <utility>

StoryPublishing::Step::Step(StoryPublishing &delayed)
    : publishing(delayed), failuresBefore(std::uncaught_exceptions())
{
    ++publishing.depth;
}

StoryPublishing::Step::~Step()
{
    // Who is told of a step that failed might fail as well, and that would end the program.
    if (--publishing.depth == 0 && std::exchange(publishing.isUntold, false) &&
        std::uncaught_exceptions() == failuresBefore)
        publishing.tell();
}

void StoryPublishing::storyChanged()
{
    if (depth > 0)
        isUntold = true;
    else
        tell();
}
