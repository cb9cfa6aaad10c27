#pragma once

#include <vector>

struct StoryTab;

/// One thing that a writer did to an event between two states of a tab.
struct EventChange
{
    enum Kind {
        removed,
        added,
        renamed,
        rewritten,
        moved,
        reconnected, // another event leads here, or none
        remarked,    // as the end or as important
    };
    Kind kind;
    int before; // the place in the earlier tab, -1 for what was added
    int after;  // and in the later one, -1 for what was removed
};

/// Events are the same that have one number; what is then left over, that have one title. First comes what
/// was removed, in the order of the earlier tab, then all else in that of the later one.
std::vector<EventChange> changesOf(const StoryTab &before, const StoryTab &after);
