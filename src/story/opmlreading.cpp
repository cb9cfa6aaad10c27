#include "story/console.h"
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

/// Goes through the outlines from front to back: one in another is deeper.
class Reading
{
public:
    Reading(const QByteArray &text, Story &story) : xml(text), read(story) {}

    ImportResult readAll()
    {
        while (!xml.atEnd()) {
            line = xml.lineNumber(); // before the token, which may go over many
            const QXmlStreamReader::TokenType token = xml.readNext();
            if (token == QXmlStreamReader::StartElement)
                enter();
            else if (token == QXmlStreamReader::EndElement)
                leave();
            else if (token == QXmlStreamReader::Characters && !xml.text().trimmed().isEmpty())
                leftOut.add(Texts::tr("text between the outlines is left out"), lineOfText());
        }
        endTab();
        if (lineOfTitle != 0 && !isOfOurs) // else it is the name that the file had
            leftOut.add(Texts::tr("the title of the whole is left out"), lineOfTitle);
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
        const QStringView name = xml.name();
        if (name == QLatin1String("opml"))
            isOpml = true;
        else if (name == QLatin1String("head"))
            isInHead = true;
        else if (name == QLatin1String("outline"))
            enterOutline();
        else if (isInHead)
            passOverHead();
        else if (name != QLatin1String("body"))
            leaveOut(Texts::tr("the element %1 is left out"), name);
    }

    void leave()
    {
        if (xml.name() == QLatin1String("outline"))
            --depth;
        else if (xml.name() == QLatin1String("head"))
            isInHead = false;
    }

    /// Of the first sign that is no space.
    qint64 lineOfText() const
    {
        const QStringView text = xml.text();
        return line + text.first(text.indexOf(text.trimmed())).count(QLatin1Char('\n'));
    }

    /// One element of the head: of an empty one nothing is lost.
    void passOverHead()
    {
        const QString name = xml.name().toString();
        if (xml.readElementText(QXmlStreamReader::IncludeChildElements).trimmed().isEmpty())
            return;
        if (name == QLatin1String("title"))
            lineOfTitle = line;
        else
            leaveOut(Texts::tr("the element %1 is left out"), name);
    }

    void enterOutline()
    {
        const QXmlStreamAttributes attributes = xml.attributes();
        if (depth == 0 && attributes.value(QLatin1String("type")) == QLatin1String("story")) {
            endTab();
            enterTab(attributes);
        } else if (!attributes.isEmpty()) { // else it stands for a level that was left out
            addEvent(attributes);
        }
        ++depth;
    }

    void enterTab(const QXmlStreamAttributes &attributes)
    {
        isOfOurs = true;
        beginTab();
        for (const QXmlStreamAttribute &attribute : attributes) {
            if (attribute.name() == QLatin1String("text"))
                read.tabs.back().name = attribute.value().toString();
            else if (attribute.name() != QLatin1String("type"))
                leaveOut(Texts::tr("the attribute %1 is left out"), attribute.name());
        }
        leftOut.addTabName(read.tabs.back().name, line);
    }

    /// Of an element or an attribute of that name; `sentence` says so with a place for it.
    void leaveOut(const QString &sentence, QStringView name)
    {
        leftOut.addOneOf(Texts::tr("more elements and attributes are left out"),
                         sentence.arg(inOneLine(name.toString())), line);
    }

    /// What an attribute says that is there.
    bool isTrue(const QXmlStreamAttribute &attribute)
    {
        const bool isTrue = attribute.value() == QLatin1String("true");
        if (!isTrue && attribute.value() != QLatin1String("false"))
            leaveOut(Texts::tr("%1 is neither true nor false and is left out"), attribute.name());
        return isTrue;
    }

    static bool isText(QStringView attribute)
    {
        return attribute == QLatin1String("text") || attribute == QLatin1String("title") ||
               attribute == QLatin1String("_note") || attribute == QLatin1String("description");
    }

    /// Two that mean the same: the second only if the first says nothing.
    QString eitherOf(const QXmlStreamAttributes &attributes, const QString &first, const QString &second)
    {
        const QString meant = attributes.value(first).toString();
        const QString other = attributes.value(second).toString();
        if (!meant.isEmpty() && !other.isEmpty() && other != meant)
            leaveOut(Texts::tr("the attribute %1 is left out"), second);
        return meant.isEmpty() ? other : meant;
    }

    void addEvent(const QXmlStreamAttributes &attributes)
    {
        OutlineStep step = OutlineStep::goesOn;
        StoryEvent event;
        event.title = eitherOf(attributes, QStringLiteral("text"), QStringLiteral("title"));
        event.description = eitherOf(attributes, QStringLiteral("_note"), QStringLiteral("description"));
        for (const QXmlStreamAttribute &attribute : attributes) {
            const QStringView name = attribute.name();
            if (name == QLatin1String("important"))
                event.isImportant = isTrue(attribute);
            else if (name == QLatin1String("end"))
                event.isEnd = isTrue(attribute);
            else if (name == QLatin1String("branch"))
                step = isTrue(attribute) ? OutlineStep::branches : step;
            else if (name == QLatin1String("loose"))
                step = isTrue(attribute) ? OutlineStep::isLoose : step;
            else if (!isText(name))
                leaveOut(Texts::tr("the attribute %1 is left out"), name);
        }
        if (!builder)
            beginTab();
        if (event.isEnd && hasEnd)
            leftOut.add(Texts::tr("a second end of the story is left out"), line);
        StoryEvent &added = read.tabs.back().events[builder->add(event.title, depth, step)];
        added.isImportant = event.isImportant;
        added.isEnd = event.isEnd && !hasEnd;
        hasEnd = hasEnd || event.isEnd;
        if (attributes.hasAttribute(QLatin1String("_note")) ||
            attributes.hasAttribute(QLatin1String("description")))
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
    qint64 line = 1;                       // where what is being read begins
    qint64 lineOfTitle = 0;
    bool isOpml = false;
    bool isOfOurs = false; // written by this program
    bool isInHead = false;
    bool hasEnd = false; // the last tab
    int depth = 0;       // of open outlines
};

} // namespace

ImportResult readOpml(const QByteArray &text, Story &story) { return Reading(text, story).readAll(); }
