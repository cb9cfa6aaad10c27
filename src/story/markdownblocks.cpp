#include "story/markdownblocks.h"

#include <QStringDecoder>

#include <cmark.h>

#include <algorithm>
#include <memory>
#include <vector>

namespace {

/// Deeper lists and quotes are written as if they were as deep as that: a prefix before every line would
/// grow with the depth.
constexpr std::size_t deepest = 16;

struct IteratorFree
{
    void operator()(cmark_iter *iterator) const { cmark_iter_free(iterator); }
};
using Iterator = std::unique_ptr<cmark_iter, IteratorFree>;

/// A text may begin with the sign that would say at the beginning of a file how it is encoded.
QString fromC(const char *text)
{
    QStringDecoder decoder(QStringDecoder::Utf8, QStringDecoder::Flag::ConvertInitialBom);
    return decoder(text);
}

/// Of what stands in a block; that of the block if the library does not know it.
int lineOf(cmark_node *node, cmark_node *block)
{
    const int line = cmark_node_get_start_line(node);
    return line > 0 ? line : cmark_node_get_start_line(block);
}

bool isBreak(const QString &html)
{
    const QString tag = html.trimmed().toLower();
    return tag == QLatin1String("<br>") || tag == QLatin1String("<br/>") || tag == QLatin1String("<br />");
}

/// What stands before the lines of what is nested in lists and quotes.
class Prefixes
{
public:
    void enter(cmark_node *node)
    {
        if (cmark_node_get_type(node) == CMARK_NODE_BLOCK_QUOTE) {
            open.push_back({QStringLiteral("> "), QStringLiteral("> ")});
            return;
        }
        cmark_node *list = cmark_node_parent(node);
        if (cmark_node_get_list_type(list) == CMARK_ORDERED_LIST) {
            int &number = numbers.back();
            open.push_back({QStringLiteral("%1. ").arg(number++), QStringLiteral("   ")});
        } else {
            open.push_back({QStringLiteral("- "), QStringLiteral("  ")});
        }
    }
    void enterList(cmark_node *list) { numbers.push_back(cmark_node_get_list_start(list)); }
    void leave() { open.pop_back(); }
    void leaveList() { numbers.pop_back(); }

    QString before(const QString &lines)
    {
        QString first;
        QString others;
        for (std::size_t i = 0; i < std::min(open.size(), deepest); ++i) {
            first += open[i].first;
            others += open[i].others;
            open[i].first = open[i].others; // a bullet stands once
        }
        return first + QString(lines).replace(QLatin1Char('\n'), QLatin1Char('\n') + others);
    }

private:
    struct Prefix
    {
        QString first;
        QString others;
    };
    std::vector<Prefix> open;
    std::vector<int> numbers;
};

} // namespace

QString MarkdownBlocks::textOfLine(cmark_node *block)
{
    QString text;
    std::vector<qsizetype> links; // where the texts of the open ones begin
    const Iterator iterator(cmark_iter_new(block));
    while (cmark_iter_next(iterator.get()) != CMARK_EVENT_DONE) {
        const bool isEntered = cmark_iter_get_event_type(iterator.get()) == CMARK_EVENT_ENTER;
        cmark_node *node = cmark_iter_get_node(iterator.get());
        switch (cmark_node_get_type(node)) {
        case CMARK_NODE_TEXT:
        case CMARK_NODE_CODE:
            text += fromC(cmark_node_get_literal(node));
            break;
        case CMARK_NODE_SOFTBREAK:
            text += QLatin1Char(' ');
            break;
        case CMARK_NODE_LINEBREAK:
            text += QLatin1Char('\n');
            break;
        case CMARK_NODE_HTML_INLINE:
            if (isBreak(fromC(cmark_node_get_literal(node))))
                text += QLatin1Char('\n');
            else
                left.add(tr("HTML is left out"), lineOf(node, block));
            break;
        case CMARK_NODE_EMPH:
        case CMARK_NODE_STRONG:
            if (isEntered)
                left.add(tr("emphasis is left out, its words are kept"), lineOf(node, block));
            break;
        case CMARK_NODE_LINK:
        case CMARK_NODE_IMAGE:
            if (isEntered) {
                links.push_back(text.size());
            } else {
                const QString url = fromC(cmark_node_get_url(node));
                if (*cmark_node_get_title(node) != '\0')
                    left.add(tr("the title of a link is left out"), lineOf(node, block));
                if (!url.isEmpty() && QStringView(text).mid(links.back()) != url)
                    text += QStringLiteral(" (%1)").arg(url);
                links.pop_back();
            }
            break;
        default:
            break;
        }
    }
    return text;
}

QString MarkdownBlocks::textOfBlock(cmark_node *block)
{
    QStringList lines;
    Prefixes prefixes;
    const Iterator iterator(cmark_iter_new(block));
    while (cmark_iter_next(iterator.get()) != CMARK_EVENT_DONE) {
        const bool isEntered = cmark_iter_get_event_type(iterator.get()) == CMARK_EVENT_ENTER;
        cmark_node *node = cmark_iter_get_node(iterator.get());
        switch (cmark_node_get_type(node)) {
        case CMARK_NODE_LIST:
            isEntered ? prefixes.enterList(node) : prefixes.leaveList();
            break;
        case CMARK_NODE_ITEM:
        case CMARK_NODE_BLOCK_QUOTE:
            isEntered ? prefixes.enter(node) : prefixes.leave();
            break;
        case CMARK_NODE_PARAGRAPH:
        case CMARK_NODE_HEADING:
            if (isEntered)
                lines << prefixes.before(textOfLine(node));
            break;
        case CMARK_NODE_CODE_BLOCK: {
            if (*cmark_node_get_fence_info(node) != '\0')
                left.add(tr("the language of code is left out"), cmark_node_get_start_line(node));
            const QString code = fromC(cmark_node_get_literal(node));
            lines << prefixes.before(code.endsWith(QLatin1Char('\n')) ? code.chopped(1) : code);
            break;
        }
        case CMARK_NODE_THEMATIC_BREAK:
            lines << prefixes.before(QStringLiteral("* * *"));
            break;
        case CMARK_NODE_HTML_BLOCK:
            left.add(tr("HTML is left out"), cmark_node_get_start_line(node));
            break;
        default:
            break;
        }
    }
    return lines.join(QLatin1Char('\n'));
}
