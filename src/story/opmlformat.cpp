#include "story/formats.h"
#include "story/outline.h"
#include "story/readings.h"
#include "story/story.h"
#include "story/storyformat.h"
#include "story/xmltext.h"

#include <QXmlStreamWriter>

namespace {

/// What outliners read: an outline in an outline for each branch.
class OpmlFormat : public StoryFormat
{
public:
    QString name() const override { return QStringLiteral("opml"); }

    void write(const Story &story, const ExportOptions &options, QIODevice &out) const override
    {
        Telling telling(story, options);
        QXmlStreamWriter xml(&out);
        xml.setAutoFormatting(true);
        xml.setAutoFormattingIndent(0); // or a deep branch would be nothing but spaces
        xml.writeStartDocument();
        xml.writeStartElement(QStringLiteral("opml"));
        xml.writeAttribute(QStringLiteral("version"), QStringLiteral("2.0"));
        xml.writeStartElement(QStringLiteral("head"));
        xml.writeTextElement(QStringLiteral("title"), asXmlText(options.name));
        xml.writeEndElement();
        xml.writeStartElement(QStringLiteral("body"));
        for (std::size_t i = 0; i < story.tabs.size(); ++i) {
            if (options.wants(int(i)))
                writeTab(story.tabs[i], options, telling, xml);
        }
        xml.writeEndDocument();
    }

    bool canRead() const override { return true; }
    ImportResult read(const QByteArray &text, Story &story) const override { return readOpml(text, story); }

private:
    static void writeTab(const StoryTab &tab, const ExportOptions &options, Telling &telling,
                         QXmlStreamWriter &xml)
    {
        xml.writeStartElement(QStringLiteral("outline"));
        xml.writeAttribute(QStringLiteral("text"), asXmlText(tab.name));
        xml.writeAttribute(QStringLiteral("type"), QStringLiteral("story"));
        int open = 0; // outlines of events that are not closed yet
        for (const OutlineEntry &entry : outlineOf(tab, options)) {
            telling.next();
            for (; open > entry.depth; --open)
                xml.writeEndElement();
            // Below an event that was left out there may be one without the levels in between.
            for (; open < entry.depth; ++open)
                xml.writeStartElement(QStringLiteral("outline"));
            writeEvent(entry, xml);
            ++open;
        }
        for (; open > 0; --open)
            xml.writeEndElement();
        xml.writeEndElement();
    }

    /// Leaves the element open.
    static void writeEvent(const OutlineEntry &entry, QXmlStreamWriter &xml)
    {
        xml.writeStartElement(QStringLiteral("outline"));
        xml.writeAttribute(QStringLiteral("text"), asXmlText(entry.heading()));
        if (const QString text = entry.event->text(); !text.isEmpty())
            xml.writeAttribute(QStringLiteral("_note"), asXmlText(text));
        if (entry.event->isImportant)
            xml.writeAttribute(QStringLiteral("important"), QStringLiteral("true"));
        if (entry.event->isEnd)
            xml.writeAttribute(QStringLiteral("end"), QStringLiteral("true"));
        if (entry.step == OutlineStep::branches)
            xml.writeAttribute(QStringLiteral("branch"), QStringLiteral("true"));
        if (entry.step == OutlineStep::isLoose)
            xml.writeAttribute(QStringLiteral("loose"), QStringLiteral("true"));
    }
};

} // namespace

const StoryFormat &opmlFormat()
{
    static const OpmlFormat format;
    return format;
}
