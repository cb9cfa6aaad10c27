#pragma once

#include <vector>

struct StoryTab;

/// What there is to say about one tab in numbers. Events are named by their places in the tab.
struct TabSummary
{
    int events = 0;
    int words = 0;       // of all titles and texts
    int storyEvents = 0; // from the first event to the end
    int storyWords = 0;
    int important = 0;

    /// Where something leaves the story that does not come back: the last event of it, and the event of the
    /// story that it comes from.
    struct DeadEnd
    {
        int last;
        int leaves;
    };
    std::vector<DeadEnd> deadEnds;

    int outside() const { return events - storyEvents; }
};

TabSummary summaryOf(const StoryTab &tab);
