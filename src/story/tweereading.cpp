#include "items/eventdata.h"
#include "story/leftout.h"
#include "story/readings.h"
#include "story/story.h"
#include "story/storyformat.h"
#include "story/tweepassages.h"
#include "story/wiring.h"

#include <QCoreApplication>
#include <QHash>
#include <QJsonDocument>

#include <cmath>
#include <deque>
#include <optional>

namespace {

struct Texts
{
    Q_DECLARE_TR_FUNCTIONS(TweeReading)
};

bool readPosition(const TweePassage &passage, QPointF &position)
{
    const QStringList numbers =
        passage.metadata[QStringLiteral("position")].toString().split(QLatin1Char(','));
    bool isX = false;
    bool isY = false;
    position = QPointF(numbers.value(0).toDouble(&isX), numbers.value(1).toDouble(&isY));
    return isX && isY && numbers.size() == 2 && std::isfinite(position.x()) && std::isfinite(position.y());
}

/// Passages become events, and their links connections.
class Reading
{
public:
    /// `text` is `bytes` as UTF-8.
    Reading(const QString &text, const QByteArray &bytes, Story &story)
        : read(story), passages(tweePassages(text, lineOfLoose))
    {
        leftOut.addBrokenLetters(bytes);
    }

    ImportResult readAll()
    {
        ImportResult result;
        if (passages.empty()) {
            result.trouble = Texts::tr("has no passage: no line begins with ::");
            return result;
        }
        if (lineOfLoose != 0)
            leftOut.add(Texts::tr("what stands before the first passage is left out"), lineOfLoose);
        for (TweePassage &passage : passages)
            readPassage(passage);
        if (start.isEmpty() &&
            places.contains(QStringLiteral("Start"))) // where players begin if nothing is said
            start = QStringLiteral("Start");
        connect();
        if (lineOfTitle != 0 && !isOfOurs) // else it is the name that the file had
            leftOut.add(Texts::tr("the title of the whole is left out"), lineOfTitle);
        if (lineOfPlaced != 0 && !arePlaced)
            leftOut.add(Texts::tr("places are not said of every passage and are left out"), lineOfPlaced);
        result.notes = leftOut.notes() + notes;
        result.places = arePlaced ? ImportResult::Places::wished : ImportResult::Places::none;
        return result;
    }

private:
    struct Place
    {
        std::size_t tab;
        int event;
    };
    struct Way
    {
        Place from;
        TweePassage::Link link;
    };

    void readPassage(TweePassage &passage)
    {
        if (passage.name == QLatin1String("StoryTitle")) {
            lineOfTitle = passage.line;
            return;
        }
        if (passage.name == QLatin1String("StoryData")) {
            readData(passage);
            return;
        }
        if (passage.tags.contains(QLatin1String("script")) ||
            passage.tags.contains(QLatin1String("stylesheet"))) {
            leftOut.add(Texts::tr("scripts and style sheets are left out"), passage.line);
            return;
        }
        addEvent(passage);
    }

    void readData(const TweePassage &passage)
    {
        const QJsonDocument document = QJsonDocument::fromJson(passage.text.toUtf8());
        if (!document.isObject())
            leaveOutBroken(passage);
        const QJsonObject data = document.object();
        start = data[QStringLiteral("start")].toString();
        isOfOurs = data.contains(QStringLiteral("ifid"));
        for (auto entry = data.begin(); entry != data.end(); ++entry) {
            if (entry.key() == QLatin1String("ifid") || entry.key() == QLatin1String("start"))
                continue;
            isOfOurs = false;
            leaveOut(entry.key(), passage.line);
        }
    }

    /// What is said of the whole, or of a passage, under that key.
    void leaveOut(const QString &key, qint64 line)
    {
        leftOut.addOneOf(Texts::tr("more data is left out"),
                         Texts::tr("the data %1 is left out").arg(quotedTitle(key)), line);
    }

    void leaveOutBroken(const TweePassage &passage)
    {
        leftOut.add(Texts::tr("data that is no JSON object is left out"), passage.line);
    }

    void readMetadata(const TweePassage &passage, StoryEvent &event)
    {
        if (passage.hasBrokenMetadata)
            leaveOutBroken(passage);
        event.title = passage.metadata[QStringLiteral("title")].toString(passage.name);
        const bool isPlaced = readPosition(passage, event.position);
        if (!isPlaced && passage.metadata.contains(QStringLiteral("position")))
            leaveOut(QStringLiteral("position"), passage.line);
        lineOfPlaced = isPlaced && lineOfPlaced == 0 ? passage.line : lineOfPlaced;
        arePlaced = arePlaced && isPlaced;
        for (auto entry = passage.metadata.begin(); entry != passage.metadata.end(); ++entry) {
            if (entry.key() != QLatin1String("title") && entry.key() != QLatin1String("position"))
                leaveOut(entry.key(), passage.line);
        }
    }

    void addEvent(TweePassage &passage)
    {
        StoryEvent event;
        std::optional<int> asked; // by the last of the tags
        for (const QString &tag : std::as_const(passage.tags)) {
            bool isTab = tag.startsWith(QLatin1String("tab-"));
            const int number = isTab ? QStringView(tag).mid(4).toInt(&isTab) : 0;
            if (tag == QLatin1String("important"))
                event.isImportant = true;
            else if (tag == QLatin1String("end-of-story"))
                event.isEnd = true;
            else if (isTab)
                asked = number;
            else
                leftOut.addOneOf(Texts::tr("more tags are left out"),
                                 Texts::tr("the tag %1 is left out").arg(quotedTitle(tag)), passage.line);
        }
        const std::size_t tab = asked ? tabNumbered(*asked) : 0;
        if (read.tabs.empty())
            read.tabs.emplace_back();
        StoryTab &into = read.tabs[tab];
        const Place place{tab, int(into.events.size())};
        for (const TweePassage::Link &link : passage.takeLinks()) {
            ways.push_back({place, link});
            if (link.setsSomething)
                leftOut.add(Texts::tr("what a link sets is left out"), link.line);
        }
        event.index = place.event;
        readMetadata(passage, event);
        const QString text = withoutEntities(passage.text);
        event.description = text.isEmpty() ? EventData::tr("Enter description") : text;
        if (event.isEnd && endsOfTabs.contains(tab)) {
            event.isEnd = false;
            leftOut.add(Texts::tr("a second end of the story is left out"), passage.line);
        } else if (event.isEnd) {
            endsOfTabs.insert(tab, place.event);
        }
        if (places.contains(passage.name))
            leftOut.add(Texts::tr("links to a second passage of the same name lead to the first"),
                        passage.line);
        else
            places.insert(passage.name, place);
        into.events.push_back(event);
    }

    /// Tabs come in the order in which they are met.
    std::size_t tabNumbered(int number)
    {
        const auto found = tabs.constFind(number);
        if (found != tabs.constEnd())
            return *found;
        const std::size_t tab = tabs.isEmpty() ? 0 : read.tabs.size();
        if (read.tabs.size() <= tab)
            read.tabs.emplace_back();
        return *tabs.insert(number, tab);
    }

    void connect()
    {
        std::deque<Wiring> wirings;
        for (StoryTab &tab : read.tabs)
            wirings.emplace_back(tab, notes);
        const auto isToStart = [this](const Way &way) { return way.link.target == start; };
        for (const Way &way : ways) {
            if (!isToStart(way))
                lead(way, wirings);
        }
        // Last of all: a way back to the start is what closes a circle, not the way that left it.
        for (const Way &way : ways) {
            if (isToStart(way))
                lead(way, wirings);
        }
        for (Wiring &wiring : wirings)
            wiring.finish();
        for (std::size_t i = 0; i < read.tabs.size(); ++i) {
            if (!endsOfTabs.contains(i) && !read.tabs[i].events.empty())
                markEnd(read.tabs[i], i);
        }
    }

    void lead(const Way &way, std::deque<Wiring> &wirings)
    {
        const auto target = places.constFind(way.link.target);
        if (target == places.constEnd())
            leftOut.add(Texts::tr("a link to %1, which is no passage here, is left out")
                            .arg(quotedTitle(way.link.target)),
                        way.link.line);
        else if (target->tab != way.from.tab)
            leftOut.add(Texts::tr("a link to another tab is left out"), way.link.line);
        else
            wirings[target->tab].lead(way.from.event, target->event, way.link.line);
    }

    /// Without a word about it the story is what the first links from the start lead to.
    void markEnd(StoryTab &tab, std::size_t number)
    {
        const Place first = places.value(start, Place{number, 0});
        int place = first.tab == number ? first.event : 0;
        while (!tab.events[place].fed.empty())
            place = tab.events[place].fed.front();
        tab.events[place].isEnd = true;
        tab.findChain();
    }

    Story &read;
    qint64 lineOfLoose = 0;
    std::vector<TweePassage> passages;
    LeftOut leftOut;
    QStringList notes;
    QString start; // the name of a passage
    QHash<QString, Place> places;
    QHash<int, std::size_t> tabs; // by the numbers of the tags
    QHash<std::size_t, int> endsOfTabs;
    std::vector<Way> ways;
    qint64 lineOfTitle = 0;
    qint64 lineOfPlaced = 0; // of the first passage that says where it stands
    bool isOfOurs = false;   // written by this program
    bool arePlaced = true;
};

} // namespace

ImportResult readTwee(const QByteArray &text, Story &story)
{
    QString all = QString::fromUtf8(text);
    if (all.startsWith(QChar(QChar::ByteOrderMark)))
        all.remove(0, 1);
    return Reading(all, text, story).readAll();
}
