#include "story/console.h"
#include "story/jsontext.h"
#include "story/storycommand.h"
#include "story/storyreader.h"
#include "story/summary.h"

#include <QCommandLineParser>
#include <QCoreApplication>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>

namespace {

QJsonObject eventObject(const StoryEvent &event)
{
    return {{QStringLiteral("index"), event.index}, {QStringLiteral("title"), event.title}};
}

QJsonObject tabObject(const StoryTab &tab, const TabSummary &summary)
{
    QJsonArray deadEnds;
    for (const TabSummary::DeadEnd &deadEnd : summary.deadEnds) {
        deadEnds.append(QJsonObject{{QStringLiteral("last"), eventObject(tab.events[deadEnd.last])},
                                    {QStringLiteral("leaves"), eventObject(tab.events[deadEnd.leaves])}});
    }
    return {
        {QStringLiteral("name"), tab.name},
        {QStringLiteral("events"), summary.events},
        {QStringLiteral("words"), summary.words},
        {QStringLiteral("storyEvents"), summary.storyEvents},
        {QStringLiteral("storyWords"), summary.storyWords},
        {QStringLiteral("important"), summary.important},
        {QStringLiteral("outside"), summary.outside()},
        {QStringLiteral("end"), tab.end() == -1 ? QJsonValue() : eventObject(tab.events[tab.end()])},
        {QStringLiteral("deadEnds"), deadEnds},
    };
}

class ShowCommand : public StoryCommand
{
    Q_DECLARE_TR_FUNCTIONS(ShowCommand)

public:
    QString name() const override { return QStringLiteral("show"); }
    QString summary() const override
    {
        return tr("Tells what is in files: tabs, events, words, story, branches, marks.");
    }
    QString usage() const override { return tr("FILE..."); }
    QString example() const override { return QStringLiteral("fablegrid-story show novel.scene"); }
    void addOptions(QCommandLineParser &parser) const override
    {
        parser.addOption({QStringLiteral("json"), tr("As JSON: a list with an object for each file.")});
    }

    int run(const QCommandLineParser &parser, Console &console) const override
    {
        const QStringList files = parser.positionalArguments();
        if (files.isEmpty())
            return console.refuse({}, tr("which file is to be shown?"));
        const bool isJson = parser.isSet(QStringLiteral("json"));
        int code = Done;
        QJsonArray shown;
        const double part = 1.0 / double(files.size());
        for (qsizetype i = 0; i < files.size(); ++i) {
            const QString &file = files[i];
            StoryReader reader;
            const PartTold tell = console.progress().between(double(i) * part, double(i + 1) * part);
            if (const QString trouble = reader.read(file, tell); !trouble.isEmpty()) {
                console.complain(file, trouble);
                code = Trouble;
            } else if (isJson) {
                shown.append(object(file, reader));
            } else {
                print(file, reader, console);
            }
        }
        if (isJson)
            console.write(JsonText::of(QJsonDocument(shown)));
        return code;
    }

private:
    static QJsonObject object(const QString &file, const StoryReader &reader)
    {
        QJsonArray tabs;
        const Story story = reader.story();
        for (const StoryTab &tab : story.tabs)
            tabs.append(tabObject(tab, summaryOf(tab)));
        return {{QStringLiteral("file"), file},
                {QStringLiteral("tabs"), tabs},
                {QStringLiteral("damages"), QJsonArray::fromStringList(reader.damage().lines())}};
    }

    static void print(const QString &file, const StoryReader &reader, Console &console)
    {
        const Story story = reader.story();
        console.print(tr("%1: tabs: %2").arg(inOneLine(file, 200), QString::number(story.tabs.size())));
        for (const StoryTab &tab : story.tabs)
            printTab(tab, summaryOf(tab), console);
        const QStringList damages = reader.damage().lines();
        for (const QString &damage : damages)
            console.print(tr("  damaged: %1").arg(damage));
    }

    static void printTab(const StoryTab &tab, const TabSummary &summary, Console &console)
    {
        console.print(tr("  %1: events: %2, words: %3, important: %4")
                          .arg(tab.name)
                          .arg(summary.events)
                          .arg(summary.words)
                          .arg(summary.important));
        console.print(
            tr("    the story: events: %1, words: %2").arg(summary.storyEvents).arg(summary.storyWords));
        console.print(tab.end() == -1 ? tr("    the end: none")
                                      : tr("    the end: %1").arg(called(tab.events[tab.end()])));
        console.print(tr("    outside of the story: events: %1").arg(summary.outside()));
        console.print(tr("    branches that lead nowhere: %1").arg(summary.deadEnds.size()));
        for (const TabSummary::DeadEnd &deadEnd : summary.deadEnds) {
            console.print(tr("      from %1 to %2")
                              .arg(called(tab.events[deadEnd.leaves]), called(tab.events[deadEnd.last])));
        }
    }

    static QString called(const StoryEvent &event)
    {
        return QStringLiteral("%1 \"%2\"").arg(event.index).arg(inOneLine(event.title));
    }
};

} // namespace

const StoryCommand &showCommand()
{
    static const ShowCommand command;
    return command;
}
