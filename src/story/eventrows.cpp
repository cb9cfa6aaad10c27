#include "story/eventrows.h"

#include "story/leftout.h"
#include "story/wiring.h"

#include <QHash>
#include <QSet>

namespace {

constexpr int noIndex = -1; // in the editor's files it says that nothing leads to an event

} // namespace

void EventRows::fill(StoryTab &tab)
{
    number();
    leaveOneEnd();
    for (const EventRow &row : rows) {
        tab.events.push_back(row.event);
        tab.events.back().index = *row.index;
    }
    Wiring wiring(tab, noted);
    join(wiring);
    wiring.finish();
}

void EventRows::join(Wiring &wiring) const
{
    QHash<int, int> numbered;
    QHash<QString, int> named;         // the first of each name
    QHash<QString, qint64> namedAgain; // the line of the second
    for (std::size_t i = 0; i < rows.size(); ++i) {
        numbered.insert(*rows[i].index, int(i));
        const QString &name = rows[i].name;
        if (named.contains(name) && !namedAgain.contains(name))
            namedAgain.insert(name, rows[i].line);
        else if (!name.isEmpty() && !named.contains(name))
            named.insert(name, int(i));
    }
    for (std::size_t i = 0; i < rows.size(); ++i) {
        const EventRow &row = rows[i];
        if (!row.fedByRow && !row.fedBy && row.fedByName.isEmpty())
            continue;
        const int feeder = row.fedByRow ? int(*row.fedByRow)
                           : row.fedBy  ? numbered.value(*row.fedBy, -1)
                                        : named.value(row.fedByName, -1);
        if (const qint64 line = namedAgain.take(row.fedByName); line != 0)
            noted << noteOfLine(line, tr("connections from a second event called %1 lead from the first")
                                          .arg(quotedTitle(row.fedByName)));
        const QString called = row.fedBy ? QString::number(*row.fedBy) : quotedTitle(row.fedByName);
        if (feeder != -1)
            wiring.lead(feeder, int(i), row.line);
        else
            noted << noteOfLine(row.line, tr("%1 is fed by event %2, which is not there; that is left out")
                                              .arg(quotedTitle(row.event.title), called));
    }
}

/// A row without a number of its own gets the next free one; the others mean the first of that number.
void EventRows::number()
{
    QHash<int, std::size_t> taken;
    std::vector<std::size_t> unnumbered;
    for (std::size_t i = 0; i < rows.size(); ++i) {
        if (rows[i].index && rows[i].index != noIndex && !taken.contains(*rows[i].index))
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
        if (rows[i].name.isEmpty()) // else whoever reads the names tells of all at once
            noted << noteOfLine(rows[i].line,
                                tr("%1 has no number of its own and becomes event %2")
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
