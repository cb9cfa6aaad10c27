#include "story/formats.h"
#include "story/outline.h"
#include "story/story.h"
#include "story/storyformat.h"

#include <QIODevice>

#include <algorithm>

namespace {

constexpr int mostIndented = 8; // levels; deeper ones would only run out of the page
constexpr int indentOfLevel = 2;
constexpr int indentOfText = 4;

QString oneLine(QString title) { return title.replace(QLatin1Char('\n'), QLatin1Char(' ')); }

QString entryText(const OutlineEntry &entry)
{
    const QString indent(qsizetype(std::min(entry.depth, mostIndented)) * indentOfLevel, QLatin1Char(' '));
    QString text = entry.step == OutlineStep::isLoose ? QStringLiteral("\n* * *\n\n") : QStringLiteral("\n");
    text += indent + oneLine(entry.heading()) + QLatin1Char('\n');
    const QString description = entry.event->text();
    if (description.isEmpty())
        return text;
    text += QLatin1Char('\n');
    const QStringList lines = description.split(QLatin1Char('\n'));
    for (const QString &line : lines) {
        if (!line.isEmpty())
            text += indent + QString(indentOfText, QLatin1Char(' ')) + line;
        text += QLatin1Char('\n');
    }
    return text;
}

/// For reading and pasting: titles, and the texts a little further in.
class TextFormat : public StoryFormat
{
public:
    QString name() const override { return QStringLiteral("txt"); }

    void write(const Story &story, const ExportOptions &options, QIODevice &out) const override
    {
        Telling telling(story, options);
        bool isFirst = true;
        for (std::size_t i = 0; i < story.tabs.size(); ++i) {
            if (!options.wants(int(i)))
                continue;
            const StoryTab &tab = story.tabs[i];
            const QString line(tab.name.size(), QLatin1Char('='));
            out.write(QStringLiteral("%1%2\n%3\n")
                          .arg(isFirst ? QString() : QStringLiteral("\n\n"), tab.name, line)
                          .toUtf8());
            for (const OutlineEntry &entry : outlineOf(tab, options)) {
                telling.next();
                out.write(entryText(entry).toUtf8());
            }
            isFirst = false;
        }
    }
};

} // namespace

const StoryFormat &textFormat()
{
    static const TextFormat format;
    return format;
}
