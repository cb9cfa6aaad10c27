#include "story/storydocument.h"

#include "story/outline.h"
#include "story/story.h"
#include "story/storyformat.h"

#include <QTextCursor>
#include <QTextDocument>

#include <algorithm>
#include <array>

namespace {

constexpr int firstLevel = 2; // below the tab's own heading
constexpr double textSize = 11;
constexpr std::array<double, 4> headingSizes{20, 14, 12, 11}; // the last one for all that are deeper
constexpr double spaceAbove = 14;
constexpr double spaceBelow = 4;
constexpr double indentOfLevel = 18;
constexpr int mostIndented = 6;

/// Writes blocks one behind the other.
class Writer
{
public:
    explicit Writer(QTextDocument &document) : cursor(&document) {}

    void heading(int level, const QString &title, int depth, bool isOnNewPage)
    {
        QTextBlockFormat block;
        block.setHeadingLevel(level);
        block.setTopMargin(spaceAbove);
        block.setBottomMargin(spaceBelow);
        block.setLeftMargin(std::min(depth, mostIndented) * indentOfLevel);
        if (isOnNewPage)
            block.setPageBreakPolicy(QTextFormat::PageBreak_AlwaysBefore);
        QTextCharFormat letters;
        letters.setFontWeight(QFont::Bold);
        const auto size = std::min<std::size_t>(std::size_t(level) - 1, headingSizes.size() - 1);
        letters.setFontPointSize(headingSizes[size]);
        // A line within a title stays one within the heading: the cursor begins a block at each of these.
        QString text = title;
        for (const char16_t sign : {u'\n', u'\r', u'\u2029', u'\uFDD0', u'\uFDD1'})
            text.replace(QChar(sign), QChar::LineSeparator);
        add(block, letters, text);
    }

    void paragraphs(const QString &text, int depth)
    {
        QTextBlockFormat block;
        block.setBottomMargin(spaceBelow);
        block.setLeftMargin(std::min(depth, mostIndented) * indentOfLevel);
        QTextCharFormat letters;
        letters.setFontPointSize(textSize);
        const QStringList lines = text.split(QLatin1Char('\n'));
        for (const QString &line : lines)
            add(block, letters, line);
    }

private:
    void add(const QTextBlockFormat &block, const QTextCharFormat &letters, const QString &text)
    {
        if (isFirst) {
            cursor.setBlockFormat(block);
            cursor.setBlockCharFormat(letters);
        } else {
            cursor.insertBlock(block, letters);
        }
        cursor.insertText(text, letters);
        isFirst = false;
    }

    QTextCursor cursor;
    bool isFirst = true;
};

} // namespace

std::unique_ptr<QTextDocument> documentOf(const Story &story, const ExportOptions &options)
{
    auto document = std::make_unique<QTextDocument>();
    document->setUndoRedoEnabled(false);
    document->setMetaInformation(QTextDocument::DocumentTitle, options.name);
    document->setDefaultFont(QFont(QStringLiteral("Serif"), int(textSize)));
    Writer writer(*document);
    bool isFirst = true;
    for (std::size_t i = 0; i < story.tabs.size(); ++i) {
        if (!options.wants(int(i)))
            continue;
        writer.heading(1, story.tabs[i].name, 0, !isFirst);
        isFirst = false;
        for (const OutlineEntry &entry : outlineOf(story.tabs[i], options)) {
            writer.heading(entry.depth + firstLevel, entry.heading(), entry.depth, false);
            if (const QString text = entry.event->text(); !text.isEmpty())
                writer.paragraphs(text, entry.depth);
        }
    }
    return document;
}
