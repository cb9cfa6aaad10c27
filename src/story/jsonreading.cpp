#include "story/eventrows.h"
#include "story/jsonlines.h"
#include "story/jsontext.h"
#include "story/leftout.h"
#include "story/readings.h"
#include "story/story.h"
#include "story/storyformat.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>

#include <algorithm>
#include <cmath>
#include <initializer_list>
#include <limits>

namespace {

struct Texts
{
    Q_DECLARE_TR_FUNCTIONS(JsonReading)
};

QByteArray withoutBareMarks(QByteArray json)
{
    if (json.startsWith("\xEF\xBB\xBF")) // that of the whole text
        json.remove(0, 3);
    return JsonText::spelledOut(std::move(json));
}

/// A number is written as a text where JSON has no other way to keep it.
std::optional<double> coordinateOf(const QJsonValue &value)
{
    bool isNumber = value.isDouble();
    const double coordinate = value.isString() ? value.toString().toDouble(&isNumber) : value.toDouble();
    return isNumber && std::isfinite(coordinate) ? std::optional(coordinate) : std::nullopt;
}

std::optional<int> wholeNumberOf(const QJsonValue &value)
{
    const double number = value.toDouble(std::numeric_limits<double>::quiet_NaN());
    const bool isWhole = number == std::floor(number) && number >= std::numeric_limits<int>::min() &&
                         number <= std::numeric_limits<int>::max();
    return isWhole ? std::optional(int(number)) : std::nullopt;
}

/// Whether any event says where it stands. A text written by hand may leave that to the layout.
bool hasPlaces(const QJsonArray &tabs)
{
    for (const auto &tab : tabs) {
        const QJsonArray events = tab.toObject()[QStringLiteral("events")].toArray();
        for (const auto &event : events) {
            const QJsonObject object = event.toObject();
            if (object.contains(QStringLiteral("x")) || object.contains(QStringLiteral("y")))
                return true;
        }
    }
    return false;
}

/// Reads what docs/story.schema.json describes. What does not keep to it is left out with a note.
class Reading
{
public:
    Reading(const QByteArray &json, Story &story) : lines(json), read(story) {}

    ImportResult readAll(const QJsonObject &document)
    {
        leaveOut(document, {"format", "version", "tabs"}, lines.document());
        const QJsonArray tabs = document[QStringLiteral("tabs")].toArray();
        arePlaced = hasPlaces(tabs);
        bool hasEvents = false;
        const std::vector<JsonPlace> places = lines.items(placeOf(QStringLiteral("tabs"), lines.document()));
        for (qsizetype i = 0; i < tabs.size(); ++i) {
            const JsonPlace place = itemOf(places, i, lines.document());
            if (!tabs[i].isObject()) {
                leftOut.add(Texts::tr("what is no object among the tabs is left out"), place.line);
                continue;
            }
            read.tabs.emplace_back();
            readTab(tabs[i].toObject(), place, read.tabs.back());
            hasEvents = hasEvents || !read.tabs.back().events.empty();
        }
        ImportResult result;
        result.notes = leftOut.notes() + notes;
        // Without any event there is nothing to lay out, and such a story is one.
        result.places = arePlaced || !hasEvents ? ImportResult::Places::exact : ImportResult::Places::none;
        return result;
    }

private:
    /// Of a member of an object; of the object itself if it has none of that name.
    JsonPlace placeOf(const QString &name, const JsonPlace &object) const
    {
        return lines.members(object).value(name, object);
    }

    /// Of an item of a list; of the list itself should the parser see more of them.
    static JsonPlace itemOf(const std::vector<JsonPlace> &places, qsizetype item, const JsonPlace &list)
    {
        return item < qsizetype(places.size()) ? places[std::size_t(item)] : list;
    }

    /// What else an object has than these.
    void leaveOut(const QJsonObject &object, std::initializer_list<const char *> known,
                  const JsonPlace &place)
    {
        QStringList unknown;
        for (auto member = object.begin(); member != object.end(); ++member) {
            const auto isIt = [&member](const char *name) { return member.key() == QLatin1String(name); };
            if (std::none_of(known.begin(), known.end(), isIt))
                unknown << member.key();
        }
        if (unknown.isEmpty())
            return;
        const QHash<QString, JsonPlace> places = lines.members(place);
        for (const QString &key : std::as_const(unknown))
            leftOut.addOneOf(Texts::tr("more keys are left out"),
                             Texts::tr("the key %1 is left out").arg(quotedTitle(key)),
                             places.value(key, place).line);
    }

    void readTab(const QJsonObject &object, const JsonPlace &place, StoryTab &tab)
    {
        leaveOut(object, {"name", "story", "events"}, place);
        if (object.contains(QStringLiteral("name"))) {
            tab.name = textOf(object, QStringLiteral("name"), place);
            leftOut.addTabName(tab.name, placeOf(QStringLiteral("name"), place).line);
        }
        EventRows rows(notes);
        const JsonPlace listPlace = placeOf(QStringLiteral("events"), place);
        const QJsonValue list = object[QStringLiteral("events")];
        if (!list.isArray())
            leftOut.add(Texts::tr("a tab without a list of its events is left empty"), listPlace.line);
        const QJsonArray events = list.toArray();
        const std::vector<JsonPlace> places = lines.items(listPlace);
        for (qsizetype i = 0; i < events.size(); ++i) {
            const JsonPlace eventPlace = itemOf(places, i, listPlace);
            if (events[i].isObject())
                rows.add(rowOf(events[i].toObject(), eventPlace));
            else
                leftOut.add(Texts::tr("what is no object among the events is left out"), eventPlace.line);
        }
        rows.fill(tab);
        compareStory(object, place, tab);
    }

    /// The chain of a tab stands in the text for whoever reads it; the connections and the end say it, too.
    void compareStory(const QJsonObject &object, const JsonPlace &place, const StoryTab &tab)
    {
        const QJsonValue told = object[QStringLiteral("story")];
        QJsonArray chain;
        for (const int at : tab.chain)
            chain.append(tab.events[at].index);
        if (!told.isUndefined() && told != chain)
            leftOut.add(Texts::tr("the story is not what the connections and the end say, and is left out"),
                        placeOf(QStringLiteral("story"), place).line);
    }

    EventRow rowOf(const QJsonObject &object, const JsonPlace &place)
    {
        leaveOut(object, {"index", "title", "description", "x", "y", "fedBy", "endOfStory", "important"},
                 place);
        EventRow row;
        row.line = place.line;
        row.event.title = textOf(object, QStringLiteral("title"), place);
        row.event.description = textOf(object, QStringLiteral("description"), place);
        const std::optional<double> x = coordinateOf(object[QStringLiteral("x")]);
        const std::optional<double> y = coordinateOf(object[QStringLiteral("y")]);
        if (x && y)
            row.event.position = QPointF(*x, *y);
        else if (arePlaced)
            leftOut.add(Texts::tr("x and y are not both numbers; the event stands at 0, 0"),
                        placeOf(x ? QStringLiteral("y") : QStringLiteral("x"), place).line);
        row.event.isEnd = isMarked(object, QStringLiteral("endOfStory"), place);
        row.event.isImportant = isMarked(object, QStringLiteral("important"), place);
        row.index = wholeNumberOf(object[QStringLiteral("index")]);
        const QJsonValue feeder = object[QStringLiteral("fedBy")];
        row.fedBy = wholeNumberOf(feeder);
        if (!row.fedBy && !feeder.isNull() && !feeder.isUndefined())
            leftOut.add(Texts::tr("fedBy is no whole number and is left out"),
                        placeOf(QStringLiteral("fedBy"), place).line);
        return row;
    }

    /// What does not stand there at all is no fault of a text written by hand.
    bool isMarked(const QJsonObject &object, const QString &name, const JsonPlace &event)
    {
        const QJsonValue value = object[name];
        if (!value.isBool() && !value.isUndefined())
            leftOut.add(Texts::tr("%1 is neither true nor false and is left out").arg(name),
                        placeOf(name, event).line);
        return value.toBool();
    }

    /// A text of the editor's may be null, which is not the same in its files as an empty one.
    QString textOf(const QJsonObject &object, const QString &name, const JsonPlace &event)
    {
        const QJsonValue value = object[name];
        if (!value.isString() && !value.isNull())
            leftOut.add(Texts::tr("%1 is no text and is left out").arg(name), placeOf(name, event).line);
        const QString text = value.toString();
        return value.isString() && text.isNull() ? QStringLiteral("") : text;
    }

    JsonLines lines;
    Story &read;
    LeftOut leftOut;
    QStringList notes;
    bool arePlaced = true;
};

} // namespace

ImportResult readJson(const QByteArray &text, Story &story)
{
    const QByteArray json = withoutBareMarks(text);
    ImportResult result;
    QJsonParseError error{};
    const QJsonDocument document = QJsonDocument::fromJson(json, &error);
    const QJsonObject object = document.object();
    const QJsonValue tabs = object[QStringLiteral("tabs")];
    const int version = object[QStringLiteral("version")].toInt();
    if (error.error != QJsonParseError::NoError)
        result.trouble = noteOfLine(json.left(error.offset).count('\n') + 1, error.errorString());
    else if (object[QStringLiteral("format")].toString() != QLatin1String("fablegrid-story") ||
             !tabs.isArray())
        result.trouble =
            Texts::tr("is no story: \"format\" is not \"fablegrid-story\", or there are no \"tabs\"");
    else if (version != 1)
        result.trouble = Texts::tr("has the version %1; only 1 can be read").arg(version);
    else
        result = Reading(json, story).readAll(object);
    return result;
}
