#include "story/storydocument.h"

#include "story/outline.h"
#include "story/story.h"
#include "story/storyformat.h"

#include <QTextCursor>
#include <QTextDocument>

#include <algorithm>
#include <array>
#include <limits>

namespace {

constexpr int firstLevel = 2; // below the tab's own heading
constexpr double textSize = 11;
constexpr std::array<double, 4> headingSizes{20, 14, 12, 11}; // the last one for all that are deeper
constexpr double spaceAbove = 14;
constexpr double spaceBelow = 4;
constexpr double indentOfLevel = 18;
constexpr int mostIndented = 6;
constexpr qint64 linesOfPage = 60;   // at least as many as fit
constexpr qint64 lettersOfLine = 30; // no more than fit
constexpr qint64 linesOfPart = 150'000;

using PartTaken = std::function<void(std::unique_ptr<QTextDocument>)>;

/// Writes blocks one behind the other, into documents of about so many lines.
class Writer
{
public:
    Writer(const QString &title, qint64 linesOfOne, const PartTaken &taken)
        : name(title), mostLines(linesOfOne), take(taken)
    {
        begin();
    }

    /// Hands over what has not been yet.
    void finish() { take(std::move(document)); }

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
        const QStringList all = text.split(QLatin1Char('\n'));
        for (const QString &line : all)
            add(block, letters, line);
    }

private:
    void begin()
    {
        document = std::make_unique<QTextDocument>();
        document->setUndoRedoEnabled(false);
        document->setMetaInformation(QTextDocument::DocumentTitle, name);
        document->setDefaultFont(QFont(QStringLiteral("Serif"), int(textSize)));
        cursor = QTextCursor(document.get());
        lines = 0;
    }

    void add(const QTextBlockFormat &block, const QTextCharFormat &letters, const QString &text)
    {
        if (lines >= mostLines) {
            finish();
            begin();
        }
        if (lines == 0) {
            QTextBlockFormat first = block;
            first.setPageBreakPolicy(QTextFormat::PageBreak_Auto); // it begins a page anyway
            cursor.setBlockFormat(first);
            cursor.setBlockCharFormat(letters);
        } else {
            cursor.insertBlock(block, letters);
        }
        cursor.insertText(text, letters);
        const bool isOnNewPage = block.pageBreakPolicy() == QTextFormat::PageBreak_AlwaysBefore;
        lines +=
            (isOnNewPage ? linesOfPage : 1) + text.count(QChar::LineSeparator) + text.size() / lettersOfLine;
    }

    QString name;
    qint64 mostLines;
    const PartTaken &take;
    std::unique_ptr<QTextDocument> document;
    QTextCursor cursor; // of the document
    qint64 lines = 0;   // in the document, about
};

void writeAll(const Story &story, const ExportOptions &options, Writer &writer)
{
    Telling telling(story, options);
    bool isFirst = true;
    for (std::size_t i = 0; i < story.tabs.size(); ++i) {
        if (!options.wants(int(i)))
            continue;
        writer.heading(1, story.tabs[i].name, 0, !isFirst);
        isFirst = false;
        for (const OutlineEntry &entry : outlineOf(story.tabs[i], options)) {
            telling.next();
            writer.heading(entry.depth + firstLevel, entry.heading(), entry.depth, false);
            if (const QString text = entry.event->text(); !text.isEmpty())
                writer.paragraphs(text, entry.depth);
        }
    }
    writer.finish();
}

} // namespace

std::unique_ptr<QTextDocument> documentOf(const Story &story, const ExportOptions &options)
{
    std::unique_ptr<QTextDocument> whole;
    const PartTaken take = [&whole](std::unique_ptr<QTextDocument> document) { whole = std::move(document); };
    Writer writer(options.name, std::numeric_limits<qint64>::max(), take);
    writeAll(story, options, writer);
    return whole;
}

void makeDocuments(const Story &story, const ExportOptions &options, const PartTaken &take)
{
    Writer writer(options.name, linesOfPart, take);
    writeAll(story, options, writer);
}
