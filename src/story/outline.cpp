#include "story/outline.h"

#include "story/story.h"
#include "story/storyformat.h"

namespace {

/// A number of more parts than this is shortened: nobody reads it, and it would grow with the depth.
constexpr int mostParts = 8;

QString childNumber(const QString &parent, int ordinal)
{
    if (parent.isEmpty())
        return QString::number(ordinal);
    const bool isFull = parent.count(QLatin1Char('.')) + 1 >= mostParts;
    const QString shown =
        isFull ? QChar(u'\u2026') + parent.section(QLatin1Char('.'), -(mostParts - 1)) : parent;
    return shown + QLatin1Char('.') + QString::number(ordinal);
}

/// Numbers entries as they come: each by what stands above it and how many came before it on its level.
class Numbering
{
public:
    QString next(int depth)
    {
        counts.resize(std::size_t(depth) + 1);
        numbers.resize(std::size_t(depth) + 1);
        numbers[depth] = childNumber(depth == 0 ? QString() : numbers[depth - 1], ++counts[depth]);
        return numbers[depth];
    }

private:
    std::vector<int> counts;      // by depth
    std::vector<QString> numbers; // by depth
};

/// Goes through a tab's events. What waits is on a list, not in calls: branches may be as deep as there are
/// events.
class Teller
{
public:
    Teller(const StoryTab &told, const ExportOptions &wanted)
        : tab(told), options(wanted), isInStory(told.membership()), nextOfStory(told.events.size(), -1)
    {
        for (std::size_t i = 1; i < tab.chain.size(); ++i)
            nextOfStory[tab.chain[i - 1]] = tab.chain[i];
    }

    std::vector<OutlineEntry> tell()
    {
        if (!tab.chain.empty())
            tellFrom({tab.chain.front(), 0, OutlineStep::goesOn});
        for (std::size_t place = 0; options.withBranches && place < tab.events.size(); ++place) {
            if (tab.events[place].feeder == -1 && !isInStory[place])
                tellFrom({int(place), 0, OutlineStep::isLoose});
        }
        return std::move(entries);
    }

private:
    struct Waiting
    {
        int place;
        int depth;
        OutlineStep step;
    };

    void tellFrom(const Waiting &first)
    {
        std::vector<Waiting> waiting{first};
        while (!waiting.empty()) {
            const Waiting now = waiting.back();
            waiting.pop_back();
            add(now);
            const std::vector<int> &fed = tab.events[now.place].fed;
            int next = nextOfStory[now.place];
            if (!isInStory[now.place] && !fed.empty())
                next = fed.front();
            if (next != -1) // below its branches, so it waits longest
                waiting.push_back({next, now.depth, OutlineStep::goesOn});
            if (!options.withBranches)
                continue;
            const std::vector<int> lastFirst(fed.rbegin(), fed.rend());
            for (const int branch : lastFirst) {
                if (branch != next && !isInStory[branch])
                    waiting.push_back({branch, now.depth + 1, OutlineStep::branches});
            }
        }
    }

    void add(const Waiting &now)
    {
        const StoryEvent &event = tab.events[now.place];
        const QString number = options.withNumbers ? numbering.next(now.depth) : QString();
        const bool wasLeftOut = leftOut.step != OutlineStep::goesOn && leftOut.depth == now.depth;
        const OutlineStep step = wasLeftOut && now.step == OutlineStep::goesOn ? leftOut.step : now.step;
        leftOut.step = OutlineStep::goesOn;
        if (options.onlyImportant && !event.isImportant)
            leftOut = {now.place, now.depth, step};
        else
            entries.push_back({&event, now.depth, step, number});
    }

    const StoryTab &tab;
    const ExportOptions &options;
    std::vector<bool> isInStory;
    std::vector<int> nextOfStory; // for each event of the story the one behind it, else -1
    std::vector<OutlineEntry> entries;
    Numbering numbering;
    Waiting leftOut{-1, 0, OutlineStep::goesOn}; // just before, whose step the next one takes over
};

} // namespace

QString OutlineEntry::heading() const
{
    const QString title = event->title;
    return number.isEmpty() ? title : number + QStringLiteral(". ") + title;
}

std::vector<OutlineEntry> outlineOf(const StoryTab &tab, const ExportOptions &options)
{
    return Teller(tab, options).tell();
}
