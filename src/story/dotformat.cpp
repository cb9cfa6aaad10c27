#include "story/formats.h"
#include "story/story.h"
#include "story/storyformat.h"

#include <QIODevice>

namespace {

/// What stands between quotes: backslashes and references to signs would be taken for more than they are.
QString quoted(const QString &text)
{
    QString escaped;
    escaped.reserve(text.size() + 2);
    for (const QChar sign : text) {
        if (sign == QLatin1Char('"') || sign == QLatin1Char('\\'))
            escaped += QLatin1Char('\\');
        if (sign == QLatin1Char('&'))
            escaped += QLatin1String("&amp;");
        else if (sign == QLatin1Char('\n'))
            escaped += QLatin1String("\\n");
        else if (sign.unicode() == 0)
            escaped += QChar(QChar::ReplacementCharacter); // the text would end here
        else
            escaped += sign;
    }
    return QLatin1Char('"') + escaped + QLatin1Char('"');
}

/// The graph, for programs that lay graphs out: the story bold, marks as in the editor.
class DotFormat : public StoryFormat
{
public:
    QString name() const override { return QStringLiteral("dot"); }
    QStringList suffixes() const override { return {name(), QStringLiteral("gv")}; }
    bool tellsInOrder() const override { return false; }

    void write(const Story &story, const ExportOptions &options, QIODevice &out) const override
    {
        Telling telling(story, options);
        out.write(QStringLiteral("digraph %1 {\nrankdir=LR\nnode [shape=box style=\"rounded,filled\" "
                                 "fillcolor=\"#D9D9D9\"]\n")
                      .arg(quoted(options.name))
                      .toUtf8());
        for (std::size_t i = 0; i < story.tabs.size(); ++i) {
            if (options.wants(int(i)))
                writeTab(story.tabs[i], int(i), telling, out);
        }
        out.write("}\n");
    }

private:
    static void writeTab(const StoryTab &tab, int number, Telling &telling, QIODevice &out)
    {
        const auto nameOf = [number](int place) {
            return QStringLiteral("t%1e%2").arg(number + 1).arg(place);
        };
        out.write(QStringLiteral("subgraph cluster_%1 {\nlabel=%2\n")
                      .arg(number + 1)
                      .arg(quoted(tab.name))
                      .toUtf8());
        const std::vector<bool> isInStory = tab.membership();
        for (std::size_t i = 0; i < tab.events.size(); ++i) {
            telling.next();
            const StoryEvent &event = tab.events[i];
            QString attributes = QStringLiteral("label=") + quoted(event.title);
            if (event.isImportant)
                attributes += QStringLiteral(" fillcolor=\"#ADD8E6\" class=\"important\"");
            if (event.isEnd)
                attributes += QStringLiteral(" peripheries=2 color=\"#6A1FD0\"");
            out.write(QStringLiteral("%1 [").arg(nameOf(int(i))).toUtf8() + attributes.toUtf8() + "]\n");
        }
        for (std::size_t i = 0; i < tab.events.size(); ++i) {
            const int feeder = tab.events[i].feeder;
            if (feeder == -1)
                continue;
            const bool isOfStory = isInStory[i] && isInStory[feeder];
            out.write(QStringLiteral("%1 -> %2%3\n")
                          .arg(nameOf(feeder), nameOf(int(i)),
                               isOfStory ? QStringLiteral(" [penwidth=3]") : QString())
                          .toUtf8());
        }
        out.write("}\n");
    }
};

} // namespace

const StoryFormat &dotFormat()
{
    static const DotFormat format;
    return format;
}
