#include "story/storylayout.h"

#include "story/story.h"

#include <algorithm>
#include <map>
#include <queue>

/// A part of a chain in one row.
struct StoryLayout::Segment
{
    std::vector<int> chain; // the whole one
    std::size_t first = 0;  // of this part
    int column = 0;
};

StoryLayout::StoryLayout(const StoryTab &laidOut, const std::vector<QSizeF> &boxes, const QRectF &canvas)
    : tab(laidOut), sizes(boxes), room(canvas.adjusted(margin, margin, -margin, -margin)),
      nextOf(laidOut.events.size(), -1), found(laidOut.events.size())
{
    for (const QSizeF &size : sizes)
        widest = std::max(widest, size.width());
    const std::vector<bool> isInStory = tab.membership();
    for (std::size_t i = 0; i < tab.events.size(); ++i) {
        if (!isInStory[i] && !tab.events[i].fed.empty())
            nextOf[i] = tab.events[i].fed.front();
    }
    for (std::size_t i = 1; i < tab.chain.size(); ++i)
        nextOf[tab.chain[i - 1]] = tab.chain[i];
}

std::vector<QPointF> StoryLayout::places()
{
    if (placeBranches() || placeRows())
        return found;
    return {};
}

/// The first events of all chains that leave no event, that of the story in front.
std::vector<int> StoryLayout::roots() const
{
    std::vector<int> all;
    if (!tab.chain.empty())
        all.push_back(tab.chain.front());
    for (std::size_t i = 0; i < tab.events.size(); ++i) {
        if (tab.events[i].feeder == -1 && (tab.chain.empty() || int(i) != tab.chain.front()))
            all.push_back(int(i));
    }
    return all;
}

std::vector<int> StoryLayout::chainFrom(int first) const
{
    std::vector<int> chain;
    for (int place = first; place != -1; place = nextOf[place])
        chain.push_back(place);
    return chain;
}

/// Boxes stand in columns. Of each column it is kept how far down it is taken, so a row is put below all
/// that is in its columns and overlaps nothing; branches from the right end of a row come first, which
/// leaves those further left free to pass below them.
bool StoryLayout::placeBranches()
{
    const double pitch = widest + columnGap;
    const int columns = int((room.width() + columnGap) / pitch);
    if (columns < 1)
        return false;
    std::vector<double> bottoms(std::size_t(columns), room.top());
    std::vector<Segment> waiting; // not calls: branches may be as deep as there are events
    const auto wait = [&](int first, int column) {
        waiting.push_back({chainFrom(first), 0, std::min(column, columns - 1)});
    };
    const std::vector<int> first = roots();
    for (std::size_t i = first.size(); i-- > 0;)
        wait(first[i], 0);
    while (!waiting.empty()) {
        Segment now = std::move(waiting.back());
        waiting.pop_back();
        const double bottom = placeSegment(now, bottoms);
        if (bottom - rowGap > room.bottom())
            return false;
        const std::size_t end =
            std::min(now.chain.size(), now.first + std::size_t(columns) - std::size_t(now.column));
        const std::size_t start = now.first;
        const int column = now.column;
        const std::vector<int> row(now.chain.begin() + std::ptrdiff_t(start),
                                   now.chain.begin() + std::ptrdiff_t(end));
        if (end < now.chain.size()) {
            now.first = end;
            now.column = 0;
            waiting.push_back(std::move(now)); // below its branches, so it waits longest
        }
        for (std::size_t i = 0; i < row.size(); ++i) {
            const std::vector<int> &fed = tab.events[row[i]].fed;
            for (std::size_t k = fed.size(); k-- > 0;) {
                if (fed[k] != nextOf[row[i]])
                    wait(fed[k], column + int(i) + 1);
            }
        }
    }
    return true;
}

/// Returns how far down the columns are taken that it has used.
double StoryLayout::placeSegment(const Segment &segment, std::vector<double> &bottoms)
{
    const std::size_t length =
        std::min(segment.chain.size() - segment.first, bottoms.size() - std::size_t(segment.column));
    const auto begin = bottoms.begin() + segment.column;
    const auto end = begin + std::ptrdiff_t(length);
    const double top = *std::max_element(begin, end);
    double bottom = top;
    for (std::size_t i = 0; i < length; ++i) {
        const int place = segment.chain[segment.first + i];
        const double x = room.left() + double(segment.column + int(i)) * (widest + columnGap);
        found[place] = QPointF(x, top);
        begin[std::ptrdiff_t(i)] = top + sizes[place].height() + rowGap;
        bottom = std::max(bottom, begin[std::ptrdiff_t(i)]);
    }
    return bottom;
}

/// One after the other, as words on a page.
bool StoryLayout::placeRows()
{
    QPointF corner = room.topLeft();
    double rowHeight = 0;
    for (const int place : inOrder()) {
        const QSizeF &size = sizes[place];
        if (corner.x() > room.left() && corner.x() + size.width() > room.right()) {
            corner = QPointF(room.left(), corner.y() + rowHeight + leastGap);
            rowHeight = 0;
        }
        if (corner.x() + size.width() > room.right() || corner.y() + size.height() > room.bottom())
            return false;
        found[place] = corner;
        corner.rx() += size.width() + leastGap;
        rowHeight = std::max(rowHeight, size.height());
    }
    return true;
}

/// The events as they are told: each branch behind the event that it leaves.
std::vector<int> StoryLayout::inOrder() const
{
    std::vector<int> waiting = roots();
    std::reverse(waiting.begin(), waiting.end());
    std::vector<int> order;
    while (!waiting.empty()) {
        const int place = waiting.back();
        waiting.pop_back();
        order.push_back(place);
        if (nextOf[place] != -1)
            waiting.push_back(nextOf[place]);
        const std::vector<int> &fed = tab.events[place].fed;
        for (std::size_t i = fed.size(); i-- > 0;) {
            if (fed[i] != nextOf[place])
                waiting.push_back(fed[i]);
        }
    }
    return order;
}

bool StoryLayout::isClear(std::vector<QRectF> boxes, const QRectF &canvas)
{
    std::sort(boxes.begin(), boxes.end(),
              [](const QRectF &one, const QRectF &other) { return one.left() < other.left(); });
    // From left to right. As long as no two touch, those that reach to where the next one begins stand one
    // above the other, and its neighbours are all there is to look at.
    std::map<double, const QRectF *> open; // by their tops
    using End = std::pair<double, const QRectF *>;
    std::priority_queue<End, std::vector<End>, std::greater<>> ends;
    for (const QRectF &box : boxes) {
        if (!canvas.contains(box))
            return false;
        for (; !ends.empty() && ends.top().first < box.left(); ends.pop())
            open.erase(ends.top().second->top());
        const auto below = open.lower_bound(box.top());
        if (below != open.end() && below->first <= box.bottom())
            return false;
        if (below != open.begin() && std::prev(below)->second->bottom() >= box.top())
            return false;
        open.emplace(box.top(), &box);
        ends.emplace(box.right(), &box);
    }
    return true;
}
