#include "story/outlinebuilder.h"

#include "items/eventdata.h"
#include "story/story.h"

#include <algorithm>
#include <utility>

int OutlineBuilder::add(const QString &title, int level, OutlineStep step)
{
    int before = -1; // on the same level, or what comes nearest to it
    while (!open.empty() && open.back().level >= level) {
        before = open.back().place;
        open.pop_back();
    }
    const int place = int(built.events.size());
    StoryEvent event;
    event.title = title;
    event.description = EventData::tr("Enter description");
    if (step == OutlineStep::isLoose)
        open.clear();
    else if (step == OutlineStep::goesOn && before != -1)
        event.feeder = before;
    else if (!open.empty())
        event.feeder = open.back().place;
    built.events.push_back(event);
    goesOn.push_back(event.feeder == before);

    if (open.empty()) {
        isInStory = isInStory && step != OutlineStep::isLoose && event.feeder == before;
        if (isInStory)
            end = place;
    }
    open.push_back({level, place});
    return place;
}

void OutlineBuilder::finish()
{
    const bool isMarked = std::any_of(built.events.begin(), built.events.end(),
                                      [](const StoryEvent &event) { return event.isEnd; });
    if (end != -1 && !isMarked)
        built.events[end].isEnd = true;
    built.joinFed();

    const std::vector<int> order = chainsFirst();
    std::vector<int> newPlaces(order.size());
    for (std::size_t i = 0; i < order.size(); ++i)
        newPlaces[order[i]] = int(i);
    std::vector<StoryEvent> sorted;
    sorted.reserve(order.size());
    for (const int place : order) {
        StoryEvent &event = sorted.emplace_back(std::move(built.events[place]));
        event.index = int(sorted.size()) - 1;
        if (event.feeder != -1)
            event.feeder = newPlaces[event.feeder];
    }
    built.events = std::move(sorted);
    built.joinFed();
    built.findChain();
}

std::vector<int> OutlineBuilder::chainsFirst() const
{
    std::vector<int> starts;
    for (std::size_t i = 0; i < built.events.size(); ++i) {
        if (built.events[i].feeder == -1)
            starts.push_back(int(i));
    }
    std::vector<int> order;
    for (std::size_t i = 0; i < starts.size(); ++i) {
        for (int place = starts[i], next = -1; place != -1; place = std::exchange(next, -1)) {
            order.push_back(place);
            for (const int fed : built.events[place].fed) {
                if (goesOn[fed])
                    next = fed;
                else
                    starts.push_back(fed);
            }
        }
    }
    return order;
}
