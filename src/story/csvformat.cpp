#include "story/formats.h"
#include "story/readings.h"
#include "story/story.h"
#include "story/storyformat.h"

#include <QIODevice>
#include <QLocale>

namespace {

QString quoted(QString text)
{
    return QLatin1Char('"') + text.replace(QLatin1Char('"'), QLatin1String("\"\"")) + QLatin1Char('"');
}

QString shortest(double number) { return QString::number(number, 'g', QLocale::FloatingPointShortest); }

/// One event a row, by RFC 4180.
class CsvFormat : public StoryFormat
{
public:
    QString name() const override { return QStringLiteral("csv"); }
    bool tellsInOrder() const override { return false; }

    void write(const Story &story, const ExportOptions &options, QIODevice &out) const override
    {
        Telling telling(story, options);
        out.write("tab,index,place,title,description,fed_by,end,important,x,y\r\n");
        for (std::size_t i = 0; i < story.tabs.size(); ++i) {
            if (options.wants(int(i)))
                writeTab(story.tabs[i], telling, out);
        }
    }

    bool canRead() const override { return true; }
    ImportResult read(const QByteArray &text, Story &story) const override { return readCsv(text, story); }

private:
    static void writeTab(const StoryTab &tab, Telling &telling, QIODevice &out)
    {
        std::vector<int> placeInStory(tab.events.size());
        for (std::size_t i = 0; i < tab.chain.size(); ++i)
            placeInStory[tab.chain[i]] = int(i) + 1;
        for (std::size_t i = 0; i < tab.events.size(); ++i) {
            telling.next();
            const StoryEvent &event = tab.events[i];
            const QStringList fields{
                quoted(tab.name),
                QString::number(event.index),
                placeInStory[i] == 0 ? QString() : QString::number(placeInStory[i]),
                quoted(event.title),
                quoted(event.text()),
                event.feeder == -1 ? QString() : QString::number(tab.events[event.feeder].index),
                QString::number(event.isEnd ? 1 : 0),
                QString::number(event.isImportant ? 1 : 0),
                shortest(event.position.x()),
                shortest(event.position.y()),
            };
            out.write(fields.join(QLatin1Char(',')).toUtf8() + "\r\n");
        }
    }
};

} // namespace

const StoryFormat &csvFormat()
{
    static const CsvFormat format;
    return format;
}
