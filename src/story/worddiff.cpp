#include "story/worddiff.h"

#include <QTextBoundaryFinder>

#include <algorithm>
#include <optional>

namespace {

/// Words that went or came, beyond which two texts are taken for different as a whole: what is kept for the
/// way back grows with the square of it.
constexpr int mostChanges = 1500;

using Words = std::vector<QString>;

Words wordsOf(const QString &text)
{
    Words words;
    QTextBoundaryFinder finder(QTextBoundaryFinder::Word, text);
    for (qsizetype from = 0, to = finder.toNextBoundary(); to != -1; to = finder.toNextBoundary()) {
        words.push_back(text.mid(from, to - from));
        from = to;
    }
    return words;
}

/// The shortest way from one list of words to another, as Myers has it: how far along both it is possible to
/// come with so many changes, for each difference of the two places.
class ShortestWay
{
public:
    ShortestWay(const Words &before, const Words &after) : from(before), to(after) {}

    /// The kind of each step in order, none if there are too many changes.
    std::optional<std::vector<WordRun::Kind>> find()
    {
        for (int changes = 0; changes <= mostChanges; ++changes) {
            reached.emplace_back(2 * std::size_t(changes) + 1);
            for (int lead = -changes; lead <= changes; lead += 2) {
                const int x = slide(startOf(changes, lead), lead);
                at(changes, lead) = x;
                if (x == int(from.size()) && x - lead == int(to.size()))
                    return wayBack(changes);
            }
        }
        return std::nullopt;
    }

private:
    int &at(int changes, int lead)
    {
        const int place = lead + changes; // never negative
        return reached[std::size_t(changes)][std::size_t(place)];
    }

    bool comesByAdding(int changes, int lead)
    {
        return lead == -changes || (lead != changes && at(changes - 1, lead - 1) < at(changes - 1, lead + 1));
    }

    int startOf(int changes, int lead)
    {
        if (changes == 0)
            return 0;
        return comesByAdding(changes, lead) ? at(changes - 1, lead + 1) : at(changes - 1, lead - 1) + 1;
    }

    /// Past all words that are the same.
    int slide(int x, int lead) const
    {
        while (x < int(from.size()) && x - lead < int(to.size()) &&
               from[std::size_t(x)] == to[std::size_t(x - lead)])
            ++x;
        return x;
    }

    std::vector<WordRun::Kind> wayBack(int changes)
    {
        std::vector<WordRun::Kind> steps;
        int x = int(from.size());
        int lead = x - int(to.size());
        for (; changes > 0; --changes) {
            const int start = startOf(changes, lead);
            steps.insert(steps.end(), std::size_t(x - start), WordRun::same);
            const bool isAdded = comesByAdding(changes, lead);
            steps.push_back(isAdded ? WordRun::added : WordRun::removed);
            x = isAdded ? start : start - 1;
            lead += isAdded ? 1 : -1;
        }
        steps.insert(steps.end(), std::size_t(x), WordRun::same);
        std::reverse(steps.begin(), steps.end());
        return steps;
    }

    const Words &from;
    const Words &to;
    std::vector<std::vector<int>> reached; // by the number of changes
};

/// Puts runs together of single words.
class Runs
{
public:
    void add(WordRun::Kind kind, const QString &text)
    {
        if (kind == WordRun::same) {
            flush();
            if (runs.empty() || runs.back().kind != WordRun::same)
                runs.push_back({kind, {}});
            runs.back().text += text;
        } else {
            (kind == WordRun::removed ? gone : come) += text;
        }
    }
    std::vector<WordRun> take()
    {
        flush();
        return std::move(runs);
    }

private:
    void flush()
    {
        if (!gone.isEmpty())
            runs.push_back({WordRun::removed, gone});
        if (!come.isEmpty())
            runs.push_back({WordRun::added, come});
        gone.clear();
        come.clear();
    }

    std::vector<WordRun> runs;
    QString gone; // since the last word that is the same
    QString come;
};

} // namespace

std::vector<WordRun> wordsChanged(const QString &before, const QString &after)
{
    Words from = wordsOf(before);
    Words to = wordsOf(after);
    Runs runs;
    const auto [fromMiddle, toMiddle] = std::mismatch(from.begin(), from.end(), to.begin(), to.end());
    for (auto word = from.begin(); word != fromMiddle; ++word)
        runs.add(WordRun::same, *word);
    from.erase(from.begin(), fromMiddle);
    to.erase(to.begin(), toMiddle);
    const auto [fromEnd, toEnd] = std::mismatch(from.rbegin(), from.rend(), to.rbegin(), to.rend());
    const Words tail(fromEnd.base(), from.end());
    from.erase(fromEnd.base(), from.end());
    to.erase(toEnd.base(), to.end());

    if (const auto steps = ShortestWay(from, to).find()) {
        auto gone = from.begin();
        auto come = to.begin();
        for (const WordRun::Kind step : *steps) {
            runs.add(step, step == WordRun::added ? *come : *gone);
            gone += step == WordRun::added ? 0 : 1;
            come += step == WordRun::removed ? 0 : 1;
        }
    } else {
        for (const QString &word : from)
            runs.add(WordRun::removed, word);
        for (const QString &word : to)
            runs.add(WordRun::added, word);
    }
    for (const QString &word : tail)
        runs.add(WordRun::same, word);
    return runs.take();
}
