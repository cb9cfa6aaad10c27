#include "story/leftout.h"
#include "story/outlinebuilder.h"
#include "story/readings.h"
#include "story/story.h"
#include "story/storyformat.h"

#include <QCoreApplication>
#include <QXmlStreamReader>

#include <optional>

namespace {

struct Texts
{
    Q_DECLARE_TR_FUNCTIONS(OpmlReading)
};

bool isTrue(QStringView value) { return value == QLatin1String("true"); }

/// Goes through the outlines from front to back: one in another is deeper.
class Reading
{
public:
    Reading(const QByteArray &text, Story &story) : xml(text), read(story) {}

    ImportResult readAll()
    {
        while (!xml.atEnd()) {
            const QXmlStreamReader::TokenType token = xml.readNext();
            if (token == QXmlStreamReader::StartElement)
                enter();
            else if (token == QXmlStreamReader::EndElement && xml.name() == QLatin1String("outline"))
                --depth;
        }
        endTab();
        ImportResult result;
        if (xml.hasError())
            result.trouble = noteOfLine(xml.lineNumber(), xml.errorString());
        else if (!isOpml)
            result.trouble = Texts::tr("is no OPML");
        else
            result.notes = leftOut.notes();
        return result;
    }

private:
    void enter()
    {
        isOpml = isOpml || xml.name() == QLatin1String("opml");
        if (xml.name() != QLatin1String("outline"))
            return;
        const QXmlStreamAttributes attributes = xml.attributes();
        if (depth == 0 && attributes.value(QLatin1String("type")) == QLatin1String("story")) {
            endTab();
            beginTab();
            read.tabs.back().name = attributes.value(QLatin1String("text")).toString();
        } else if (!attributes.isEmpty()) { // else it stands for a level that was left out
            addEvent(attributes);
        }
        ++depth;
    }

    void addEvent(const QXmlStreamAttributes &attributes)
    {
        OutlineStep step = OutlineStep::goesOn;
        StoryEvent event;
        bool hasText = false;
        for (const QXmlStreamAttribute &attribute : attributes) {
            const QStringView name = attribute.name();
            if (name == QLatin1String("text") || (name == QLatin1String("title") && event.title.isEmpty()))
                event.title = attribute.value().toString();
            else if (name == QLatin1String("_note") || name == QLatin1String("description"))
                event.description = attribute.value().toString();
            else if (name == QLatin1String("important"))
                event.isImportant = isTrue(attribute.value());
            else if (name == QLatin1String("end"))
                event.isEnd = isTrue(attribute.value());
            else if (name == QLatin1String("branch") && isTrue(attribute.value()))
                step = OutlineStep::branches;
            else if (name == QLatin1String("loose") && isTrue(attribute.value()))
                step = OutlineStep::isLoose;
            else
                leftOut.add(Texts::tr("the attribute %1 is left out").arg(name), xml.lineNumber());
            hasText = hasText || name == QLatin1String("_note") || name == QLatin1String("description");
        }
        if (!builder)
            beginTab();
        if (event.isEnd && hasEnd)
            leftOut.add(Texts::tr("a second end of the story is left out"), xml.lineNumber());
        StoryEvent &added = read.tabs.back().events[builder->add(event.title, depth, step)];
        added.isImportant = event.isImportant;
        added.isEnd = event.isEnd && !hasEnd;
        hasEnd = hasEnd || event.isEnd;
        if (hasText)
            added.description = event.description;
    }

    void beginTab()
    {
        read.tabs.emplace_back();
        builder.emplace(read.tabs.back());
        hasEnd = false;
    }

    void endTab()
    {
        if (builder)
            builder->finish();
        builder.reset();
    }

    QXmlStreamReader xml;
    Story &read;
    LeftOut leftOut;
    std::optional<OutlineBuilder> builder; // of the last tab
    bool isOpml = false;
    bool hasEnd = false; // the last tab
    int depth = 0;       // of open outlines
};

} // namespace

ImportResult readOpml(const QByteArray &text, Story &story) { return Reading(text, story).readAll(); }
