#include "story/formats.h"
#include "story/storydocument.h"
#include "story/storyformat.h"
#include "story/xmltext.h"
#include "story/zipwriter.h"

#include <QTextBlock>
#include <QTextDocument>
#include <QXmlStreamWriter>

#include <algorithm>
#include <map>
#include <tuple>

namespace {

constexpr int deepestOutline = 10; // that the format knows
constexpr auto mimeType = "application/vnd.oasis.opendocument.text";

constexpr QLatin1String officeSpace("urn:oasis:names:tc:opendocument:xmlns:office:1.0");
constexpr QLatin1String styleSpace("urn:oasis:names:tc:opendocument:xmlns:style:1.0");
constexpr QLatin1String textSpace("urn:oasis:names:tc:opendocument:xmlns:text:1.0");
constexpr QLatin1String foSpace("urn:oasis:names:tc:opendocument:xmlns:xsl-fo-compatible:1.0");
constexpr QLatin1String metaSpace("urn:oasis:names:tc:opendocument:xmlns:meta:1.0");
constexpr QLatin1String dcSpace("http://purl.org/dc/elements/1.1/");

QString points(double length) { return QString::number(length) + QStringLiteral("pt"); }

/// One of the files in the archive, which a root element makes.
class Part
{
public:
    explicit Part(const QString &root) : xml(&bytes)
    {
        xml.writeStartDocument();
        xml.writeNamespace(officeSpace, QStringLiteral("office"));
        xml.writeNamespace(styleSpace, QStringLiteral("style"));
        xml.writeNamespace(textSpace, QStringLiteral("text"));
        xml.writeNamespace(foSpace, QStringLiteral("fo"));
        xml.writeNamespace(metaSpace, QStringLiteral("meta"));
        xml.writeNamespace(dcSpace, QStringLiteral("dc"));
        xml.writeStartElement(officeSpace, root);
        xml.writeAttribute(officeSpace, QStringLiteral("version"), QStringLiteral("1.2"));
    }
    QXmlStreamWriter &writer() { return xml; }
    QByteArray finished()
    {
        xml.writeEndDocument();
        return bytes;
    }

private:
    QByteArray bytes;
    QXmlStreamWriter xml;
};

/// How a block looks: blocks of one look share a style.
struct Look
{
    int level; // of a heading, 0 for text
    double indent;
    bool isOnNewPage;

    explicit Look(const QTextBlockFormat &format)
        : level(std::min(format.headingLevel(), deepestOutline)), indent(format.leftMargin()),
          isOnNewPage(format.pageBreakPolicy().testFlag(QTextFormat::PageBreak_AlwaysBefore))
    {}
    bool operator<(const Look &other) const
    {
        return std::tie(level, indent, isOnNewPage) < std::tie(other.level, other.indent, other.isOnNewPage);
    }
    /// The style that every reader knows by its name.
    QString common() const
    {
        return level == 0 ? QStringLiteral("Text_20_body") : QStringLiteral("Heading_20_%1").arg(level);
    }
};

using Styles = std::map<Look, QString>;

Styles stylesOf(const QTextDocument &document)
{
    Styles styles;
    for (QTextBlock block = document.begin(); block.isValid(); block = block.next())
        styles.try_emplace(Look(block.blockFormat()), QStringLiteral("P%1").arg(styles.size() + 1));
    return styles;
}

void writeStyle(QXmlStreamWriter &xml, const Look &look, const QString &name)
{
    xml.writeStartElement(styleSpace, QStringLiteral("style"));
    xml.writeAttribute(styleSpace, QStringLiteral("name"), name);
    xml.writeAttribute(styleSpace, QStringLiteral("family"), QStringLiteral("paragraph"));
    xml.writeAttribute(styleSpace, QStringLiteral("parent-style-name"), look.common());
    xml.writeEmptyElement(styleSpace, QStringLiteral("paragraph-properties"));
    xml.writeAttribute(foSpace, QStringLiteral("margin-left"), points(look.indent));
    if (look.isOnNewPage)
        xml.writeAttribute(foSpace, QStringLiteral("break-before"), QStringLiteral("page"));
    xml.writeEndElement();
}

/// White space counts only where the format has elements for it.
void writeText(QXmlStreamWriter &xml, const QString &text)
{
    QString plain;
    const auto writePlain = [&] {
        xml.writeCharacters(asXmlText(plain));
        plain.clear();
    };
    for (qsizetype i = 0; i < text.size(); ++i) {
        const bool isSpace = text[i] == QLatin1Char(' ');
        const bool isFurtherSpace = isSpace && (i == 0 || text[i - 1].isSpace());
        const bool isLastSpace = isSpace && i == text.size() - 1;
        if (isFurtherSpace || isLastSpace) {
            writePlain();
            xml.writeEmptyElement(textSpace, QStringLiteral("s"));
        } else if (text[i] == QLatin1Char('\t')) {
            writePlain();
            xml.writeEmptyElement(textSpace, QStringLiteral("tab"));
        } else if (text[i] == QChar::LineSeparator) {
            writePlain();
            xml.writeEmptyElement(textSpace, QStringLiteral("line-break"));
        } else {
            plain += text[i];
        }
    }
    writePlain();
}

QByteArray contentPart(const QTextDocument &document)
{
    Part part(QStringLiteral("document-content"));
    QXmlStreamWriter &xml = part.writer();
    const Styles styles = stylesOf(document);
    xml.writeStartElement(officeSpace, QStringLiteral("automatic-styles"));
    for (const auto &[look, name] : styles)
        writeStyle(xml, look, name);
    xml.writeEndElement();
    xml.writeStartElement(officeSpace, QStringLiteral("body"));
    xml.writeStartElement(officeSpace, QStringLiteral("text"));
    for (QTextBlock block = document.begin(); block.isValid(); block = block.next()) {
        const Look look(block.blockFormat());
        xml.writeStartElement(textSpace, look.level > 0 ? QStringLiteral("h") : QStringLiteral("p"));
        xml.writeAttribute(textSpace, QStringLiteral("style-name"), styles.at(look));
        if (look.level > 0)
            xml.writeAttribute(textSpace, QStringLiteral("outline-level"), QString::number(look.level));
        writeText(xml, block.text());
        xml.writeEndElement();
    }
    return part.finished();
}

void writeCommonStyle(QXmlStreamWriter &xml, const QString &name, int level, double size)
{
    QString shown = name;
    xml.writeStartElement(styleSpace, QStringLiteral("style"));
    xml.writeAttribute(styleSpace, QStringLiteral("name"), name);
    xml.writeAttribute(styleSpace, QStringLiteral("display-name"),
                       shown.replace(QLatin1String("_20_"), QLatin1String(" ")));
    xml.writeAttribute(styleSpace, QStringLiteral("family"), QStringLiteral("paragraph"));
    xml.writeAttribute(styleSpace, QStringLiteral("class"), QStringLiteral("text"));
    if (level > 0)
        xml.writeAttribute(styleSpace, QStringLiteral("default-outline-level"), QString::number(level));
    xml.writeEmptyElement(styleSpace, QStringLiteral("paragraph-properties"));
    xml.writeAttribute(foSpace, QStringLiteral("margin-top"), points(level > 0 ? 14 : 0));
    xml.writeAttribute(foSpace, QStringLiteral("margin-bottom"), points(4));
    xml.writeAttribute(foSpace, QStringLiteral("keep-with-next"),
                       level > 0 ? QStringLiteral("always") : QStringLiteral("auto"));
    xml.writeEmptyElement(styleSpace, QStringLiteral("text-properties"));
    xml.writeAttribute(foSpace, QStringLiteral("font-size"), points(size));
    xml.writeAttribute(foSpace, QStringLiteral("font-weight"),
                       level > 0 ? QStringLiteral("bold") : QStringLiteral("normal"));
    xml.writeEndElement();
}

void writePage(QXmlStreamWriter &xml, const QPageSize &paper)
{
    const QString margin = QStringLiteral("20mm");
    const QSizeF size = paper.size(QPageSize::Point);
    xml.writeStartElement(styleSpace, QStringLiteral("page-layout"));
    xml.writeAttribute(styleSpace, QStringLiteral("name"), QStringLiteral("page"));
    xml.writeStartElement(styleSpace, QStringLiteral("page-layout-properties"));
    xml.writeAttribute(foSpace, QStringLiteral("page-width"), points(size.width()));
    xml.writeAttribute(foSpace, QStringLiteral("page-height"), points(size.height()));
    for (const char *side : {"margin-top", "margin-bottom", "margin-left", "margin-right"})
        xml.writeAttribute(foSpace, QLatin1String(side), margin);
    xml.writeEndElement();
    xml.writeStartElement(styleSpace, QStringLiteral("footer-style"));
    xml.writeEmptyElement(styleSpace, QStringLiteral("header-footer-properties"));
    xml.writeAttribute(foSpace, QStringLiteral("margin-top"), points(8));
    xml.writeEndElement();
    xml.writeEndElement();
}

QByteArray stylesPart(const QTextDocument &document, const QPageSize &paper)
{
    Part part(QStringLiteral("document-styles"));
    QXmlStreamWriter &xml = part.writer();
    xml.writeStartElement(officeSpace, QStringLiteral("styles"));
    writeCommonStyle(xml, QStringLiteral("Standard"), 0, document.defaultFont().pointSizeF());
    writeCommonStyle(xml, QStringLiteral("Text_20_body"), 0, document.defaultFont().pointSizeF());
    std::map<int, double> sizes; // of the headings that there are
    for (QTextBlock block = document.begin(); block.isValid(); block = block.next()) {
        if (const int level = Look(block.blockFormat()).level; level > 0)
            sizes.try_emplace(level, block.charFormat().fontPointSize());
    }
    for (const auto &[level, size] : sizes)
        writeCommonStyle(xml, QStringLiteral("Heading_20_%1").arg(level), level, size);
    xml.writeEndElement();
    xml.writeStartElement(officeSpace, QStringLiteral("automatic-styles"));
    writePage(xml, paper);
    xml.writeStartElement(styleSpace, QStringLiteral("style"));
    xml.writeAttribute(styleSpace, QStringLiteral("name"), QStringLiteral("footer"));
    xml.writeAttribute(styleSpace, QStringLiteral("family"), QStringLiteral("paragraph"));
    xml.writeEmptyElement(styleSpace, QStringLiteral("paragraph-properties"));
    xml.writeAttribute(foSpace, QStringLiteral("text-align"), QStringLiteral("center"));
    xml.writeEndElement();
    xml.writeEndElement();
    xml.writeStartElement(officeSpace, QStringLiteral("master-styles"));
    xml.writeStartElement(styleSpace, QStringLiteral("master-page"));
    xml.writeAttribute(styleSpace, QStringLiteral("name"), QStringLiteral("Standard"));
    xml.writeAttribute(styleSpace, QStringLiteral("page-layout-name"), QStringLiteral("page"));
    xml.writeStartElement(styleSpace, QStringLiteral("footer"));
    xml.writeStartElement(textSpace, QStringLiteral("p"));
    xml.writeAttribute(textSpace, QStringLiteral("style-name"), QStringLiteral("footer"));
    xml.writeTextElement(textSpace, QStringLiteral("page-number"), QStringLiteral("1"));
    return part.finished();
}

QByteArray metaPart(const QTextDocument &document)
{
    Part part(QStringLiteral("document-meta"));
    QXmlStreamWriter &xml = part.writer();
    xml.writeStartElement(officeSpace, QStringLiteral("meta"));
    xml.writeTextElement(metaSpace, QStringLiteral("generator"), QStringLiteral("fablegrid-story"));
    xml.writeTextElement(dcSpace, QStringLiteral("title"),
                         asXmlText(document.metaInformation(QTextDocument::DocumentTitle)));
    return part.finished();
}

QByteArray manifest()
{
    const QString space = QStringLiteral("urn:oasis:names:tc:opendocument:xmlns:manifest:1.0");
    QByteArray bytes;
    QXmlStreamWriter xml(&bytes);
    xml.writeStartDocument();
    xml.writeNamespace(space, QStringLiteral("manifest"));
    xml.writeStartElement(space, QStringLiteral("manifest"));
    xml.writeAttribute(space, QStringLiteral("version"), QStringLiteral("1.2"));
    const auto writeEntry = [&](const char *path, const char *type) {
        xml.writeEmptyElement(space, QStringLiteral("file-entry"));
        xml.writeAttribute(space, QStringLiteral("full-path"), QLatin1String(path));
        xml.writeAttribute(space, QStringLiteral("media-type"), QLatin1String(type));
    };
    writeEntry("/", mimeType);
    for (const char *part : {"content.xml", "styles.xml", "meta.xml"})
        writeEntry(part, "text/xml");
    xml.writeEndDocument();
    return bytes;
}

/// Written here and not by Qt's own writer, which knows neither headings nor the styles and the page that
/// other programs ask for.
class OdtFormat : public StoryFormat
{
public:
    QString name() const override { return QStringLiteral("odt"); }
    bool hasPages() const override { return true; }

    void write(const Story &story, const ExportOptions &options, QIODevice &out) const override
    {
        const auto document = documentOf(story, options);
        ZipWriter zip(out);
        // Before all others and as it is, so that the kind of file can be told by its first bytes.
        zip.add("mimetype", mimeType, ZipWriter::Packing::stored);
        zip.add("META-INF/manifest.xml", manifest(), ZipWriter::Packing::deflated);
        zip.add("content.xml", contentPart(*document), ZipWriter::Packing::deflated);
        zip.add("styles.xml", stylesPart(*document, QPageSize(options.paper)), ZipWriter::Packing::deflated);
        zip.add("meta.xml", metaPart(*document), ZipWriter::Packing::deflated);
        zip.finish();
    }
};

} // namespace

const StoryFormat &odtFormat()
{
    static const OdtFormat format;
    return format;
}
