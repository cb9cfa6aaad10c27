#include "story/summary.h"

#include "story/story.h"

namespace {

/// All ends of what leaves the story at one of its events, in the order of the branches.
void findDeadEnds(const StoryTab &tab, const std::vector<bool> &isInStory, int leaves,
                  std::vector<TabSummary::DeadEnd> &found)
{
    std::vector<int> waiting{leaves};
    while (!waiting.empty()) {
        const int place = waiting.back();
        waiting.pop_back();
        const std::vector<int> &fed = tab.events[place].fed;
        if (fed.empty() && !isInStory[place])
            found.push_back({place, leaves});
        const std::vector<int> lastFirst(fed.rbegin(), fed.rend());
        for (const int next : lastFirst) {
            if (!isInStory[next])
                waiting.push_back(next);
        }
    }
}

} // namespace

TabSummary summaryOf(const StoryTab &tab)
{
    const std::vector<bool> isInStory = tab.membership();
    TabSummary summary;
    summary.events = int(tab.events.size());
    summary.storyEvents = int(tab.chain.size());
    for (int place = 0; place < summary.events; ++place) {
        const StoryEvent &event = tab.events[place];
        const int words = event.words();
        summary.words += words;
        summary.storyWords += isInStory[place] ? words : 0;
        summary.important += event.isImportant ? 1 : 0;
    }
    for (const int place : tab.chain)
        findDeadEnds(tab, isInStory, place, summary.deadEnds);
    return summary;
}
