#include "story/leftout.h"
#include "story/markdownblocks.h"
#include "story/outlinebuilder.h"
#include "story/plaintext.h"
#include "story/readings.h"
#include "story/story.h"
#include "story/storyformat.h"

#include <QCoreApplication>
#include <QRegularExpression>

#include <cmark.h>

#include <memory>
#include <optional>
#include <vector>

namespace {

struct Texts
{
    Q_DECLARE_TR_FUNCTIONS(MarkdownReading)
};

struct NodeFree
{
    void operator()(cmark_node *node) const { cmark_node_free(node); }
};
using Document = std::unique_ptr<cmark_node, NodeFree>;

/// What other programs write before a text, between two lines of dashes, becomes empty lines: to Markdown it
/// would be a heading.
QByteArray withoutFrontMatter(const QByteArray &text, bool &had)
{
    had = false;
    if (!text.startsWith("---") && !text.startsWith("\xEF\xBB\xBF---"))
        return text;
    QByteArray lines;
    qsizetype at = 0;
    for (bool isFirst = true; at < text.size(); isFirst = false) {
        const qsizetype end = text.indexOf('\n', at);
        const QByteArray line = text.mid(at, end == -1 ? -1 : end - at).trimmed();
        at = end == -1 ? text.size() : end + 1;
        lines += '\n';
        had = !isFirst && (line == "---" || line == "...");
        if (had)
            return lines + text.mid(at);
    }
    return text;
}

/// Goes through a document's blocks from front to back.
class Reading
{
public:
    /// `text` is what the document was read from.
    Reading(cmark_node *document, const QByteArray &text, Story &story) : root(document), read(story)
    {
        blocks.leftOut().addBrokenLetters(text);
    }

    ImportResult readAll()
    {
        cmark_node *first = cmark_node_first_child(root);
        isOfOurs = first && cmark_node_get_type(first) == CMARK_NODE_HTML_BLOCK &&
                   QByteArray(cmark_node_get_literal(first)).startsWith("<!-- fablegrid-story:");
        const bool hasHeadings = has(CMARK_NODE_HEADING);
        if (!hasHeadings && !isOfOurs && !has(CMARK_NODE_LIST))
            return {Texts::tr("has neither headings nor a list"), {}};
        for (cmark_node *block = first; block; block = cmark_node_next(block)) {
            if (!hasHeadings && cmark_node_get_type(block) == CMARK_NODE_LIST)
                addItems(block);
            else
                addBlock(block);
        }
        endTab();
        return {{}, blocks.leftOut().notes()};
    }

private:
    bool has(cmark_node_type type) const
    {
        cmark_node *block = cmark_node_first_child(root);
        while (block && cmark_node_get_type(block) != type)
            block = cmark_node_next(block);
        return block != nullptr;
    }

    void addBlock(cmark_node *block)
    {
        switch (cmark_node_get_type(block)) {
        case CMARK_NODE_HEADING:
            addHeading(block);
            break;
        case CMARK_NODE_HTML_BLOCK:
            addHtml(block);
            break;
        default:
            addText(block);
            break;
        }
    }

    void addHeading(cmark_node *heading)
    {
        const int written = cmark_node_get_heading_level(heading);
        if (isOfOurs && written == 1) {
            endTab();
            beginTab();
            read.tabs.back().name = blocks.textOfLine(heading);
            blocks.leftOut().addTabName(read.tabs.back().name, cmark_node_get_start_line(heading));
            return;
        }
        addEvent(blocks.textOfLine(heading), level.value_or(written), step);
        level.reset();
        step = OutlineStep::goesOn;
    }

    void addEvent(const QString &title, int atLevel, OutlineStep by)
    {
        if (!builder)
            beginTab();
        place = builder->add(title, atLevel, by);
        texts.emplace_back();
    }

    /// Comments of this program say what headings cannot.
    void addHtml(cmark_node *block)
    {
        static const QRegularExpression deeper(QStringLiteral("^<!-- level (\\d{1,9}) -->$"));
        const QString html = QString::fromUtf8(cmark_node_get_literal(block)).trimmed();
        const QRegularExpressionMatch found = deeper.match(html);
        if (isOfOurs && html == QLatin1String("<!-- branch -->"))
            step = OutlineStep::branches;
        else if (isOfOurs && html == QLatin1String("<!-- loose -->"))
            step = OutlineStep::isLoose;
        else if (isOfOurs && found.hasMatch())
            level = found.captured(1).toInt();
        else if (place != -1 && html == QLatin1String("<br>"))
            texts[place].addEmptyLine();
        else if (!isOfOurs || !html.startsWith(QLatin1String("<!-- fablegrid-story:")))
            blocks.leftOut().add(Texts::tr("HTML is left out"), cmark_node_get_start_line(block));
    }

    void addText(cmark_node *block)
    {
        const bool isParagraph = cmark_node_get_type(block) == CMARK_NODE_PARAGRAPH;
        if (place == -1)
            blocks.leftOut().add(Texts::tr("what stands before the first event is left out"),
                                 cmark_node_get_start_line(block));
        else
            texts[place].addParagraph(isParagraph ? blocks.textOfLine(block) : blocks.textOfBlock(block));
    }

    /// An item's first paragraph is the title of its event, what else is in it the text, and lists in it
    /// are branches.
    void addItems(cmark_node *list)
    {
        int depth = 0;
        std::vector<int> items; // the places of those that are open
        cmark_node *block = list;
        while (block) {
            const cmark_node_type type = cmark_node_get_type(block);
            cmark_node *inside = nullptr;
            if (type == CMARK_NODE_LIST) {
                ++depth;
                inside = cmark_node_first_child(block);
            } else if (type == CMARK_NODE_ITEM) {
                inside = cmark_node_first_child(block);
                const bool hasTitle = inside && cmark_node_get_type(inside) == CMARK_NODE_PARAGRAPH;
                addEvent(hasTitle ? blocks.textOfLine(inside) : QString(), depth, OutlineStep::goesOn);
                if (inside)
                    items.push_back(place);
            } else if (type != CMARK_NODE_PARAGRAPH || cmark_node_previous(block)) {
                place = items.back();
                addBlock(block);
            }
            if (inside) {
                block = inside;
                continue;
            }
            while (block != list && !cmark_node_next(block)) {
                block = cmark_node_parent(block);
                if (cmark_node_get_type(block) == CMARK_NODE_LIST)
                    --depth;
                else
                    items.pop_back();
            }
            block = block == list ? nullptr : cmark_node_next(block);
        }
    }

    void beginTab()
    {
        read.tabs.emplace_back();
        builder.emplace(read.tabs.back());
    }

    void endTab()
    {
        if (!builder)
            return;
        for (std::size_t i = 0; i < texts.size(); ++i) {
            if (!texts[i].isNone())
                read.tabs.back().events[i].description = texts[i].text();
        }
        builder->finish();
        builder.reset();
        texts.clear();
        place = -1;
    }

    cmark_node *root;
    Story &read;
    bool isOfOurs = false; // written by this program
    MarkdownBlocks blocks;
    std::optional<OutlineBuilder> builder; // of the last tab
    int place = -1;                        // of the event whose text is being read
    std::vector<PlainText> texts;          // of the last tab's events
    std::optional<int> level;              // of the next heading, where it is too deep for one
    OutlineStep step = OutlineStep::goesOn;
};

} // namespace

ImportResult readMarkdown(const QByteArray &text, Story &story)
{
    bool hadFrontMatter = false;
    const QByteArray content = withoutFrontMatter(text, hadFrontMatter);
    const Document document(
        cmark_parse_document(content.constData(), std::size_t(content.size()), CMARK_OPT_VALIDATE_UTF8));
    ImportResult result = Reading(document.get(), content, story).readAll();
    if (hadFrontMatter)
        result.notes.prepend(noteOfLine(1, Texts::tr("the front matter is left out")));
    return result;
}
