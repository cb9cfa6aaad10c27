#include "story/storydiff.h"

#include "story/story.h"

#include <QHash>

#include <algorithm>

namespace {

/// For each event of `after` its place in the earlier tab, -1 for none.
class Matching
{
public:
    Matching(const StoryTab &before, const StoryTab &after)
        : places(after.events.size(), -1), isTaken(before.events.size())
    {
        match(before, after, [](const StoryEvent &event) { return event.index; });
        match(before, after, [](const StoryEvent &event) { return event.title; });
    }

    int before(std::size_t place) const { return places[place]; }
    bool isGone(std::size_t placeBefore) const { return !isTaken[placeBefore]; }

private:
    /// Of several that are called the same the first belong together, then the second, and so on.
    template <typename Name>
    void match(const StoryTab &before, const StoryTab &after, Name nameOf)
    {
        using Key = decltype(nameOf(before.events.front()));
        QHash<Key, std::vector<int>> free; // the first one last
        for (std::size_t i = before.events.size(); i-- > 0;) {
            if (!isTaken[i])
                free[nameOf(before.events[i])].push_back(int(i));
        }
        for (std::size_t i = 0; i < after.events.size(); ++i) {
            const auto found = places[i] == -1 ? free.find(nameOf(after.events[i])) : free.end();
            if (found == free.end() || found->empty())
                continue;
            places[i] = found->back();
            isTaken[std::size_t(found->back())] = true;
            found->pop_back();
        }
    }

    std::vector<int> places;
    std::vector<bool> isTaken;
};

} // namespace

std::vector<EventChange> changesOf(const StoryTab &before, const StoryTab &after)
{
    const Matching matching(before, after);
    std::vector<EventChange> changes;
    for (std::size_t i = 0; i < before.events.size(); ++i) {
        if (matching.isGone(i))
            changes.push_back({EventChange::removed, int(i), -1});
    }
    for (std::size_t i = 0; i < after.events.size(); ++i) {
        const StoryEvent &now = after.events[i];
        const int place = matching.before(i);
        const auto add = [&](EventChange::Kind kind) { changes.push_back({kind, place, int(i)}); };
        // What came is connected and marked, too, and nothing of that is a change of its own.
        if (place == -1) {
            add(EventChange::added);
            continue;
        }
        const StoryEvent &then = before.events[std::size_t(place)];
        if (then.title != now.title)
            add(EventChange::renamed);
        if (then.text() != now.text())
            add(EventChange::rewritten);
        if (then.position != now.position)
            add(EventChange::moved);
        const int feeder = now.feeder == -1 ? -1 : matching.before(std::size_t(now.feeder));
        if (feeder != then.feeder || (now.feeder != -1 && feeder == -1))
            add(EventChange::reconnected);
        if (then.isEnd != now.isEnd || then.isImportant != now.isImportant)
            add(EventChange::remarked);
    }
    return changes;
}
