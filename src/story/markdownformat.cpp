#include "story/formats.h"
#include "story/outline.h"
#include "story/readings.h"
#include "story/story.h"
#include "story/storyformat.h"

#include <QIODevice>

#include <algorithm>

namespace {

constexpr int deepestHeading = 6;
constexpr int firstDepth = 2; // below the tab's own heading

/// What a reader of Markdown would take for markup anywhere in a line.
constexpr QLatin1String markup("\\`*_[]<>&$~^|#");
/// And at the beginning of one.
constexpr QLatin1String markupInFront("-+=:%@");

QString asEntity(QChar sign) { return QStringLiteral("&#%1;").arg(sign.unicode()); }

bool needsEntity(QChar sign)
{
    return sign.category() == QChar::Other_Control || sign == QChar::LineSeparator ||
           sign == QChar::ParagraphSeparator;
}

/// Where "12." or "12)" at the beginning of a line ends, which would be the item of a list; -1 if there is
/// none.
qsizetype endOfListNumber(const QString &line)
{
    qsizetype digits = 0;
    while (digits < line.size() && line[digits].isDigit())
        ++digits;
    const bool isNumber = digits > 0 && digits < line.size() &&
                          (line[digits] == QLatin1Char('.') || line[digits] == QLatin1Char(')'));
    return isNumber ? digits : -1;
}

enum class Standing { inHeading, inFront };

/// One line of text, such that every reader finds the same signs in it.
QString escapedLine(const QString &line, Standing standing)
{
    const bool isInFront = standing == Standing::inFront;
    const qsizetype listNumber = isInFront ? endOfListNumber(line) : -1;
    QString escaped;
    escaped.reserve(line.size() + 8);
    for (qsizetype i = 0; i < line.size(); ++i) {
        const QChar sign = line[i];
        const bool isOuterSpace = sign == QLatin1Char(' ') && (i == 0 || i == line.size() - 1);
        if (isOuterSpace || needsEntity(sign)) {
            escaped += asEntity(sign);
            continue;
        }
        if (markup.contains(sign) || (i == 0 && isInFront && markupInFront.contains(sign)) || i == listNumber)
            escaped += QLatin1Char('\\');
        escaped += sign;
    }
    return escaped;
}

/// A text as paragraphs, with every line and every empty line where it was.
QString paragraphs(const QString &text)
{
    if (text.isEmpty())
        return {};
    QString all;
    bool isInParagraph = false;
    int emptyLines = 0;
    const QStringList lines = text.split(QLatin1Char('\n'));
    for (const QString &line : lines) {
        if (line.isEmpty()) {
            // Between two paragraphs one is understood.
            if (++emptyLines > 1 || !isInParagraph)
                all += QStringLiteral("\n\n<br>");
            continue;
        }
        if (isInParagraph && emptyLines == 0)
            all += QLatin1String("\\\n");
        else
            all += QLatin1String("\n\n");
        all += escapedLine(line, Standing::inFront);
        isInParagraph = true;
        emptyLines = 0;
    }
    if (isInParagraph && emptyLines > 0)
        all += QStringLiteral("\n\n<br>");
    return all;
}

QString heading(int level, const QString &title)
{
    const QString marks(std::min(level, deepestHeading), QLatin1Char('#'));
    return title.isEmpty() ? marks : marks + QLatin1Char(' ') + escapedLine(title, Standing::inHeading);
}

/// Comments say what headings cannot: that the next one is deeper than they go, begins another branch, or
/// hangs on nothing.
QString remark(const OutlineEntry &entry, bool isFurtherBranch)
{
    QString remarks;
    if (entry.step == OutlineStep::isLoose)
        remarks += QStringLiteral("\n\n<!-- loose -->");
    else if (isFurtherBranch)
        remarks += QStringLiteral("\n\n<!-- branch -->");
    if (entry.depth + firstDepth > deepestHeading)
        remarks += QStringLiteral("\n\n<!-- level %1 -->").arg(entry.depth + firstDepth);
    return remarks;
}

class MarkdownFormat : public StoryFormat
{
public:
    QString name() const override { return QStringLiteral("md"); }
    QStringList suffixes() const override { return {name(), QStringLiteral("markdown")}; }

    void write(const Story &story, const ExportOptions &options, QIODevice &out) const override
    {
        Telling telling(story, options);
        out.write("<!-- fablegrid-story: the headings of the first level are tabs -->\n");
        for (std::size_t i = 0; i < story.tabs.size(); ++i) {
            if (options.wants(int(i)))
                writeTab(story.tabs[i], options, telling, out);
        }
    }

    bool canRead() const override { return true; }
    ImportResult read(const QByteArray &text, Story &story) const override
    {
        return readMarkdown(text, story);
    }

private:
    static void writeTab(const StoryTab &tab, const ExportOptions &options, Telling &telling, QIODevice &out)
    {
        out.write(QStringLiteral("\n%1\n").arg(heading(1, tab.name)).toUtf8());
        int depthBefore = 0;
        for (const OutlineEntry &entry : outlineOf(tab, options)) {
            telling.next();
            // The first branch of an event needs no word: its heading is the first one that is deeper.
            const bool isFurtherBranch = entry.step == OutlineStep::branches && depthBefore >= entry.depth;
            const QString text = remark(entry, isFurtherBranch) + QLatin1String("\n\n") +
                                 heading(entry.depth + firstDepth, entry.heading()) +
                                 paragraphs(entry.event->text());
            out.write(text.mid(1).toUtf8() + '\n');
            depthBefore = entry.depth;
        }
    }
};

} // namespace

const StoryFormat &markdownFormat()
{
    static const MarkdownFormat format;
    return format;
}
