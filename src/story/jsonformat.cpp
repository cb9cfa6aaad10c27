#include "story/formats.h"
#include "story/jsontext.h"
#include "story/readings.h"
#include "story/story.h"
#include "story/storyformat.h"

#include <QIODevice>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>

#include <cmath>

namespace {

/// A text without any bytes of its own in the file is not the same there as an empty one.
QJsonValue textValue(const QString &text) { return text.isNull() ? QJsonValue() : QJsonValue(text); }

/// Qt's writer drops the sign of a zero.
QJsonValue coordinateValue(double coordinate)
{
    const bool isMinusZero = coordinate == 0 && std::signbit(coordinate);
    return isMinusZero ? QJsonValue(QStringLiteral("-0")) : QJsonValue(coordinate);
}

QJsonObject eventObject(const StoryTab &tab, const StoryEvent &event)
{
    return {
        {QStringLiteral("index"), event.index},
        {QStringLiteral("title"), textValue(event.title)},
        {QStringLiteral("description"), textValue(event.description)},
        {QStringLiteral("x"), coordinateValue(event.position.x())},
        {QStringLiteral("y"), coordinateValue(event.position.y())},
        {QStringLiteral("fedBy"),
         event.feeder == -1 ? QJsonValue() : QJsonValue(tab.events[event.feeder].index)},
        {QStringLiteral("endOfStory"), event.isEnd},
        {QStringLiteral("important"), event.isImportant},
    };
}

QJsonObject tabObject(const StoryTab &tab, Telling &telling)
{
    QJsonArray events;
    for (const StoryEvent &event : tab.events) {
        telling.next();
        events.append(eventObject(tab, event));
    }
    QJsonArray chain;
    for (const int place : tab.chain)
        chain.append(tab.events[place].index);
    return {
        {QStringLiteral("name"), tab.name},
        {QStringLiteral("story"), chain},
        {QStringLiteral("events"), events},
    };
}

/// All that a file holds, by docs/story.schema.json.
class JsonFormat : public StoryFormat
{
public:
    QString name() const override { return QStringLiteral("json"); }
    bool tellsInOrder() const override { return false; }

    void write(const Story &story, const ExportOptions &options, QIODevice &out) const override
    {
        Telling telling(story, options);
        QJsonArray tabs;
        for (std::size_t i = 0; i < story.tabs.size(); ++i) {
            if (options.wants(int(i)))
                tabs.append(tabObject(story.tabs[i], telling));
        }
        const QJsonObject document{
            {QStringLiteral("format"), QStringLiteral("fablegrid-story")},
            {QStringLiteral("version"), 1},
            {QStringLiteral("tabs"), tabs},
        };
        out.write(JsonText::of(QJsonDocument(document)));
    }

    bool canRead() const override { return true; }
    ImportResult read(const QByteArray &text, Story &story) const override { return readJson(text, story); }
};

} // namespace

const StoryFormat &jsonFormat()
{
    static const JsonFormat format;
    return format;
}
