#include "story/eventrows.h"

#include "story/leftout.h"
#include "story/wiring.h"

#include <QHash>
#include <QSet>

void EventRows::fill(StoryTab &tab)
{
    number();
    leaveOneEnd();
    QHash<int, int> places;
    for (std::size_t i = 0; i < rows.size(); ++i)
        places.insert(*rows[i].index, int(i));
    for (const EventRow &row : rows) {
        tab.events.push_back(row.event);
        tab.events.back().index = *row.index;
    }
    Wiring wiring(tab, noted);
    for (std::size_t i = 0; i < rows.size(); ++i) {
        if (!rows[i].fedBy)
            continue;
        if (const int feeder = places.value(*rows[i].fedBy, -1); feeder != -1)
            wiring.lead(feeder, int(i), rows[i].line);
        else
            noted << noteOfLine(rows[i].line,
                                tr("%1 is fed by event %2, which is not there; that is left out")
                                    .arg(quotedTitle(rows[i].event.title), QString::number(*rows[i].fedBy)));
    }
    wiring.finish();
}

/// A row without a number of its own gets the next free one; the others mean the first of that number.
void EventRows::number()
{
    QHash<int, std::size_t> taken;
    std::vector<std::size_t> unnumbered;
    for (std::size_t i = 0; i < rows.size(); ++i) {
        if (rows[i].index && !taken.contains(*rows[i].index))
            taken.insert(*rows[i].index, i);
        else
            unnumbered.push_back(i);
    }
    QSet<int> meant; // a number that somebody is fed by stays what it is, even if nobody has it
    for (const EventRow &row : rows) {
        if (row.fedBy)
            meant.insert(*row.fedBy);
    }
    int free = 0;
    for (const std::size_t i : unnumbered) {
        while (taken.contains(free) || meant.contains(free))
            ++free;
        taken.insert(free, i);
        rows[i].index = free;
        noted << noteOfLine(rows[i].line, tr("%1 has no number of its own and becomes event %2")
                                              .arg(quotedTitle(rows[i].event.title), QString::number(free)));
    }
}

void EventRows::leaveOneEnd()
{
    bool isMarked = false;
    for (EventRow &row : rows) {
        if (row.event.isEnd && isMarked) {
            row.event.isEnd = false;
            noted << noteOfLine(
                row.line, tr("a second end of the story, %1, is left out").arg(quotedTitle(row.event.title)));
        }
        isMarked = isMarked || row.event.isEnd;
    }
}
