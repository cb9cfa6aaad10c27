#include "story/wiring.h"

#include "story/leftout.h"
#include "story/story.h"

void Wiring::lead(int feeder, int fed, qint64 line)
{
    waysIn.resize(events.events.size());
    StoryEvent &event = events.events[fed];
    if (event.feeder == feeder)
        return; // said twice
    const QString from = quotedTitle(events.events[feeder].title);
    if (event.feeder == -1) {
        event.feeder = feeder;
        waysIn[fed] = {line, count++};
    } else {
        noted << noteOfLine(
            line, tr("a second way into %1 is left out, that from %2").arg(quotedTitle(event.title), from));
    }
}

void Wiring::finish()
{
    std::vector<StoryEvent> &all = events.events;
    waysIn.resize(all.size());
    std::vector<int> seenBy(all.size(), -1); // from which event on it was come by
    for (std::size_t i = 0; i < all.size(); ++i) {
        int place = int(i);
        for (; place != -1 && seenBy[place] == -1; place = all[place].feeder)
            seenBy[place] = int(i);
        if (place == -1 || seenBy[place] != int(i))
            continue;
        // Back at an event of this very walk: what was said last closes the circle.
        int last = place;
        for (int other = all[place].feeder; other != place; other = all[other].feeder)
            last = waysIn[other].number > waysIn[last].number ? other : last;
        noted << noteOfLine(waysIn[last].line,
                            tr("the way from %1 to %2 closes a circle and is left out")
                                .arg(quotedTitle(all[all[last].feeder].title), quotedTitle(all[last].title)));
        all[last].feeder = -1;
    }
    events.joinFed();
    events.findChain();
}
