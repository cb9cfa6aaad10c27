#include "story/formats.h"
#include "story/outline.h"
#include "story/story.h"
#include "story/storyformat.h"
#include "story/xmltext.h"

#include <QXmlStreamWriter>

#include <algorithm>

namespace {

constexpr int deepestHeading = 6;
constexpr int firstDepth = 2; // below the tab's own heading
constexpr int mostIndented = 4;

// No sign that XML escapes: browsers read what stands in a style as it is.
constexpr auto styleSheet = R"(
body { max-width: 40em; margin: 2em auto; padding: 0 1em; font: 1.1em/1.5 Georgia, serif; }
h1, h2, h3, h4, h5, h6 { font-family: Helvetica, Arial, sans-serif; line-height: 1.25; }
h2 { font-size: 1.3em; } h3, h4, h5, h6 { font-size: 1.1em; }
h1, h2, h3, h4, h5, h6, p { overflow-wrap: anywhere; white-space: pre-wrap; }
.important::after { content: ' \2605'; color: #8556e9; }
.branch::before { content: '\21B3 '; color: #8556e9; }
.in1 { margin-left: 1.5em; } .in2 { margin-left: 3em; } .in3 { margin-left: 4.5em; } .in4 { margin-left: 6em; }
hr { margin: 2em 0; }
@media print { body { margin: 0; max-width: none; } h1, h2, h3, h4, h5, h6 { break-after: avoid; } }
@media (prefers-color-scheme: dark) { body { background: #202020; color: #e0e0e0; } }
)";

/// A page that is XML as well: whatever reads either can read it.
class Page
{
public:
    explicit Page(QIODevice &out) : xml(&out) {}

    void begin(const QString &title)
    {
        xml.writeDTD(QStringLiteral("<!DOCTYPE html>"));
        xml.writeCharacters(QStringLiteral("\n"));
        xml.writeStartElement(QStringLiteral("html"));
        xml.writeDefaultNamespace(QStringLiteral("http://www.w3.org/1999/xhtml"));
        xml.writeStartElement(QStringLiteral("head"));
        xml.writeEmptyElement(QStringLiteral("meta"));
        xml.writeAttribute(QStringLiteral("charset"), QStringLiteral("utf-8"));
        xml.writeEmptyElement(QStringLiteral("meta"));
        xml.writeAttribute(QStringLiteral("name"), QStringLiteral("viewport"));
        xml.writeAttribute(QStringLiteral("content"), QStringLiteral("width=device-width, initial-scale=1"));
        xml.writeTextElement(QStringLiteral("title"), asXmlText(title));
        xml.writeTextElement(QStringLiteral("style"), QString::fromLatin1(styleSheet));
        xml.writeEndElement();
        xml.writeCharacters(QStringLiteral("\n"));
        xml.writeStartElement(QStringLiteral("body"));
    }

    void end()
    {
        xml.writeCharacters(QStringLiteral("\n"));
        xml.writeEndDocument();
    }

    void heading(int level, const QString &title, const QStringList &classes)
    {
        startBlock(QStringLiteral("h%1").arg(std::min(level, deepestHeading)), classes);
        if (level > deepestHeading)
            xml.writeAttribute(QStringLiteral("aria-level"), QString::number(level));
        text(title);
        xml.writeEndElement();
    }

    /// One for each line: so the editor shows them.
    void paragraphs(const QString &description, const QStringList &classes)
    {
        const QStringList lines = description.split(QLatin1Char('\n'));
        for (const QString &line : lines) {
            startBlock(QStringLiteral("p"), classes);
            if (line.isEmpty())
                xml.writeEmptyElement(QStringLiteral("br"));
            text(line);
            xml.writeEndElement();
        }
    }

    void rule()
    {
        xml.writeCharacters(QStringLiteral("\n"));
        xml.writeEmptyElement(QStringLiteral("hr"));
    }

private:
    void startBlock(const QString &element, const QStringList &classes)
    {
        xml.writeCharacters(QStringLiteral("\n"));
        xml.writeStartElement(element);
        // Each text decides for itself on which side it begins.
        xml.writeAttribute(QStringLiteral("dir"), QStringLiteral("auto"));
        if (!classes.isEmpty())
            xml.writeAttribute(QStringLiteral("class"), classes.join(QLatin1Char(' ')));
    }

    void text(const QString &text) { xml.writeCharacters(asXmlText(text)); }

    QXmlStreamWriter xml;
};

class HtmlFormat : public StoryFormat
{
public:
    QString name() const override { return QStringLiteral("html"); }
    QStringList suffixes() const override { return {name(), QStringLiteral("htm"), QStringLiteral("xhtml")}; }

    void write(const Story &story, const ExportOptions &options, QIODevice &out) const override
    {
        Telling telling(story, options);
        Page page(out);
        page.begin(options.name);
        for (std::size_t i = 0; i < story.tabs.size(); ++i) {
            if (options.wants(int(i)))
                writeTab(story.tabs[i], options, telling, page);
        }
        page.end();
    }

private:
    static void writeTab(const StoryTab &tab, const ExportOptions &options, Telling &telling, Page &page)
    {
        page.heading(1, tab.name, {});
        for (const OutlineEntry &entry : outlineOf(tab, options)) {
            telling.next();
            QStringList inside;
            if (entry.depth > 0)
                inside << QStringLiteral("in%1").arg(std::min(entry.depth, mostIndented));
            QStringList classes = inside;
            if (entry.step == OutlineStep::branches)
                classes << QStringLiteral("branch");
            if (entry.event->isImportant)
                classes << QStringLiteral("important");
            if (entry.step == OutlineStep::isLoose)
                page.rule();
            page.heading(entry.depth + firstDepth, entry.heading(), classes);
            if (const QString text = entry.event->text(); !text.isEmpty())
                page.paragraphs(text, inside);
        }
    }
};

} // namespace

const StoryFormat &htmlFormat()
{
    static const HtmlFormat format;
    return format;
}
