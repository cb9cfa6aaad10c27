#pragma once

#include <QByteArray>
#include <QString>
#include <QStringList>
#include <QtEndian>

#include <algorithm>
#include <bit>
#include <cmath>
#include <map>
#include <set>
#include <vector>

/// What any bytes mean as a scene document, found out without the program's or Qt's own streaming.
///
/// Read by the rules of the format: the stored counts hold, what the data do not hold is zero or empty, every
/// number that bounds memory is bounded. Whatever the program makes of a file must be this.
namespace DocumentModel {

struct Event
{
    QString title;
    double x = 0;
    double y = 0;
    qint32 index = 0;
    qint32 upstream = -1;
    bool endOfStory = false;
    bool important = false;
    QString description;
    int feeder = -1; // position of the event that feeds this one
};

struct Tab
{
    std::vector<Event> events;
    qint32 storedCount = 0;
    bool cutOff = false; // fewer events than stored, since the data ended long before
    int refused = 0;     // connections that would close a cycle
    int notFinite = 0;   // coordinates
    int renumbered = 0;  // events that had no index of their own
};

struct Document
{
    std::vector<Tab> tabs;
    qint32 storedCount = 0;
    bool cutOff = false; // fewer tabs than stored
};

constexpr int mostBlankEvents = 1000;
constexpr qint64 spareTabs = 16;
inline qint64 mostTabs(qint64 fileSize) { return fileSize / 4 + spareTabs; }
constexpr qint64 believedTabs = 1000;

/// Takes bytes from front to back; past the end there are zeros and empty texts.
class Bytes
{
public:
    explicit Bytes(const QByteArray &source) : bytes(source) {}

    bool atEnd() const { return at >= bytes.size(); }

    template <typename Unsigned>
    Unsigned number()
    {
        const qsizetype from = at;
        at = std::min(bytes.size(), at + qsizetype(sizeof(Unsigned)));
        return at - from < qsizetype(sizeof(Unsigned)) ? 0 : qFromBigEndian<Unsigned>(bytes.data() + from);
    }
    qint32 whole() { return qint32(number<quint32>()); }
    double real() { return std::bit_cast<double>(number<quint64>()); }

    /// Half a letter is no text, and neither is more than there is; the latter leaves nothing behind it.
    QString text()
    {
        const quint32 length = number<quint32>();
        if (length == 0xFFFFFFFF || length % 2 != 0)
            return {};
        if (length > quint64(bytes.size() - at)) {
            at = bytes.size();
            return {};
        }
        QString units;
        for (quint32 i = 0; i < length / 2; ++i)
            units += QChar(number<quint16>());
        return units;
    }

private:
    QByteArray bytes;
    qsizetype at = 0;
};

/// The events of one tab while they are read, with the indices that the program gives them on the way.
class TabReader
{
public:
    explicit TabReader(Bytes &source) : bytes(source) {}

    Tab read()
    {
        tab.storedCount = bytes.whole();
        std::vector<int> loaded;
        int blanks = 0;
        for (qint32 i = 0; i < tab.storedCount; ++i) {
            if (bytes.atEnd() && ++blanks > mostBlankEvents) {
                tab.cutOff = true;
                break;
            }
            loaded.push_back(readRecord());
        }
        connectAll(loaded);
        return std::move(tab);
    }

private:
    int first(qint32 index) const
    {
        const auto found = byIndex.find(index);
        return found == byIndex.end() || found->second.empty() ? -1 : *found->second.begin();
    }

    void setIndex(int position, qint32 index)
    {
        byIndex[tab.events[position].index].erase(position);
        byIndex[index].insert(position);
        tab.events[position].index = index;
    }

    /// Adds a blank event and fills the one that has the provisional index, which may be an earlier one.
    int readRecord()
    {
        bytes.text(); // the tag; every record is an event
        const int provisional = counter++;
        tab.events.emplace_back();
        const int added = int(tab.events.size()) - 1;
        byIndex[0].insert(added);
        ++counter;
        qint32 index = provisional;
        const auto isTaken = [&](qint32 wanted) {
            const auto found = byIndex.find(wanted);
            return found != byIndex.end() && !found->second.empty() && found->second != std::set{added};
        };
        if (isTaken(index)) {
            for (index = counter; isTaken(index);)
                ++index;
        }
        setIndex(added, index);
        tab.events[added].title = QStringLiteral("Event");
        tab.events[added].description = QStringLiteral("Enter description");
        if (added == 0)
            markEnd(0);

        const int filled = first(provisional);
        Event &event = tab.events[filled];
        event.title = bytes.text();
        event.x = finite(bytes.real());
        event.y = finite(bytes.real());
        const qint32 storedIndex = bytes.whole();
        event.upstream = bytes.whole();
        const bool isEnd = bytes.whole() == 1;
        event.important = bytes.whole() != 0 || event.important;
        event.description = bytes.text();
        setIndex(filled, storedIndex);
        if (isEnd || event.endOfStory)
            markEnd(filled);
        return filled;
    }

    double finite(double stored)
    {
        if (std::isfinite(stored))
            return stored;
        ++tab.notFinite;
        return 0;
    }

    void markEnd(int position)
    {
        for (Event &event : tab.events)
            event.endOfStory = false;
        tab.events[position].endOfStory = true;
    }

    void connectAll(const std::vector<int> &loaded)
    {
        std::map<qint32, int> firstLoaded;
        for (const int position : loaded)
            firstLoaded.emplace(tab.events[position].index, position);
        for (const int position : loaded) {
            const qint32 upstreamIndex = tab.events[position].upstream;
            if (upstreamIndex == -1 || !firstLoaded.contains(upstreamIndex))
                continue;
            const int downstream = first(tab.events[position].index);
            const int upstream = first(upstreamIndex);
            if (leadsBack(upstream, downstream)) {
                ++tab.refused;
                continue;
            }
            tab.events[downstream].feeder = upstream;
        }
        numberAnew(2 * qint32(loaded.size()));
        for (Event &event : tab.events)
            event.upstream = event.feeder < 0 ? -1 : tab.events[event.feeder].index;
    }

    void numberAnew(qint32 free)
    {
        for (int position = 0; position < int(tab.events.size()); ++position) {
            const qint32 index = tab.events[position].index;
            if (index != -1 && first(index) == position)
                continue;
            while (first(free) >= 0)
                ++free;
            setIndex(position, free);
            ++tab.renumbered;
        }
    }

    bool leadsBack(int from, int to) const
    {
        for (int position = from; position >= 0; position = tab.events[position].feeder) {
            if (position == to)
                return true;
        }
        return false;
    }

    Bytes &bytes;
    Tab tab;
    int counter = 0;
    std::map<qint32, std::set<int>> byIndex; // positions, oldest first
};

inline Document read(const QByteArray &source)
{
    Bytes bytes(source);
    Document document;
    document.storedCount = bytes.whole();
    const qint64 tabs = std::min<qint64>(document.storedCount, mostTabs(source.size()));
    for (qint64 i = 0; i < tabs && (tabs <= believedTabs || !bytes.atEnd()); ++i)
        document.tabs.push_back(TabReader(bytes).read());
    // Where more are announced than begin, empty ones behind the last event may be no tabs at all.
    while (tabs > believedTabs && qint64(document.tabs.size()) < document.storedCount &&
           qint64(document.tabs.size()) > believedTabs && document.tabs.back().events.empty())
        document.tabs.pop_back();
    document.cutOff = qint64(document.tabs.size()) < document.storedCount;
    return document;
}

/// As a text item gives back what it was given: it knows one kind of paragraph end.
inline QString asTextItem(QString text)
{
    text.replace(QLatin1String("\r\n"), QLatin1String("\n"));
    for (const char16_t lineEnd : {u'\r', u'\u2029', u'\uFDD0', u'\uFDD1'})
        text.replace(QChar(lineEnd), QLatin1Char('\n'));
    return text;
}

/// What an event holds by itself, for comparing; coordinates bit by bit.
inline QString contentLine(const Event &event)
{
    return QStringLiteral("at %1 %2%3%4, \"%5\": \"%6\"")
        .arg(std::bit_cast<quint64>(event.x), 16, 16, QLatin1Char('0'))
        .arg(std::bit_cast<quint64>(event.y), 16, 16, QLatin1Char('0'))
        .arg(event.endOfStory ? QStringLiteral(" end") : QString(),
             event.important ? QStringLiteral(" important") : QString(), asTextItem(event.title),
             asTextItem(event.description));
}

/// All that is saved of an event.
inline QString line(const Event &event)
{
    return QStringLiteral("%1 fed by %2, ").arg(event.index, 11).arg(event.upstream) + contentLine(event);
}

/// The lines of a tab's events, ordered by index.
inline QStringList lines(const Tab &tab)
{
    QStringList all;
    for (const Event &event : tab.events)
        all << line(event);
    all.sort();
    return all;
}

/// The tabs of bytes that the program has written itself: read as they stand, without any repair. Empty if
/// they are not one whole document.
inline std::vector<Tab> readSaved(const QByteArray &source)
{
    Bytes bytes(source);
    std::vector<Tab> tabs;
    const qint32 tabCount = bytes.whole();
    for (qint32 i = 0; i < tabCount && !bytes.atEnd(); ++i) {
        Tab tab;
        const qint32 count = bytes.whole();
        for (qint32 k = 0; k < count && !bytes.atEnd(); ++k) {
            Event event;
            if (bytes.text() != QLatin1String("Event"))
                return {};
            event.title = bytes.text();
            event.x = bytes.real();
            event.y = bytes.real();
            event.index = bytes.whole();
            event.upstream = bytes.whole();
            const qint32 end = bytes.whole();
            const qint32 important = bytes.whole();
            if (((end | important) & ~1) != 0)
                return {};
            event.endOfStory = end == 1;
            event.important = important == 1;
            event.description = bytes.text();
            tab.events.push_back(event);
        }
        if (qint32(tab.events.size()) != count)
            return {};
        tabs.push_back(tab);
    }
    return bytes.atEnd() && qint32(tabs.size()) == tabCount ? tabs : std::vector<Tab>();
}

} // namespace DocumentModel
