#include "story/console.h"
#include "story/jsontext.h"
#include "story/storycommand.h"
#include "story/storydiff.h"
#include "story/storyreader.h"
#include "story/worddiff.h"

#include <QCommandLineParser>
#include <QCoreApplication>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>

namespace {

struct Texts
{
    Q_DECLARE_TR_FUNCTIONS(DiffCommand)
};

QString called(const StoryEvent &event)
{
    return QStringLiteral("%1 \"%2\"").arg(event.index).arg(inOneLine(event.title));
}

QString called(const StoryTab &tab, int place)
{
    return place == -1 ? Texts::tr("nothing") : called(tab.events[std::size_t(place)]);
}

/// One tab in its two states; either may be missing, and is empty then.
struct TabPair
{
    const StoryTab &before;
    const StoryTab &after;

    const StoryEvent &then(const EventChange &change) const
    {
        return before.events[std::size_t(change.before)];
    }
    const StoryEvent &now(const EventChange &change) const { return after.events[std::size_t(change.after)]; }
};

/// The middle of what is the same is not needed to see what is not.
QString shortened(const QString &same, bool isFirst, bool isLast)
{
    constexpr qsizetype most = 60;
    constexpr qsizetype kept = 25; // on each side where something changed
    if (same.size() <= most)
        return same;
    const QString left = isFirst ? QString() : same.left(kept);
    const QString right = isLast ? QString() : same.right(kept);
    return left + QChar(u'\u2026') + right;
}

/// "the [-old-]{+new+} words"
QString wordsInOneLine(const std::vector<WordRun> &runs)
{
    QString line;
    for (std::size_t i = 0; i < runs.size(); ++i) {
        const QString &text = runs[i].text;
        switch (runs[i].kind) {
        case WordRun::same:
            line += shortened(text, i == 0, i + 1 == runs.size());
            break;
        case WordRun::removed:
            line += QStringLiteral("[-") + text + QStringLiteral("-]");
            break;
        case WordRun::added:
            line += QStringLiteral("{+") + text + QStringLiteral("+}");
            break;
        }
    }
    return inOneLine(line, line.size()); // whoever compares wants to see every change
}

QString marksChanged(const StoryEvent &then, const StoryEvent &now)
{
    QStringList marks;
    if (then.isImportant != now.isImportant)
        marks << (now.isImportant ? Texts::tr("important") : Texts::tr("no longer important"));
    if (then.isEnd != now.isEnd)
        marks << (now.isEnd ? Texts::tr("the end") : Texts::tr("no longer the end"));
    return marks.join(QStringLiteral(", "));
}

QString placeText(const QPointF &place) { return QStringLiteral("%1, %2").arg(place.x()).arg(place.y()); }

/// Titles that differ only where a line is too short for them are told word by word.
QString renamedLine(const StoryEvent &then, const StoryEvent &now)
{
    const QString title = inOneLine(now.title);
    if (title == inOneLine(then.title))
        return Texts::tr("renamed: %1: %2")
            .arg(called(then), wordsInOneLine(wordsChanged(then.title, now.title)));
    return Texts::tr("renamed: %1 to \"%2\"").arg(called(then), title);
}

QString lineOf(const TabPair &tabs, const EventChange &change)
{
    switch (change.kind) {
    case EventChange::removed:
        return Texts::tr("removed: %1").arg(called(tabs.then(change)));
    case EventChange::added:
        return Texts::tr("added: %1").arg(called(tabs.now(change)));
    case EventChange::renamed:
        return renamedLine(tabs.then(change), tabs.now(change));
    case EventChange::rewritten:
        return Texts::tr("rewritten: %1: %2")
            .arg(called(tabs.now(change)),
                 wordsInOneLine(wordsChanged(tabs.then(change).text(), tabs.now(change).text())));
    case EventChange::moved:
        return Texts::tr("moved: %1 from %2 to %3")
            .arg(called(tabs.now(change)), placeText(tabs.then(change).position),
                 placeText(tabs.now(change).position));
    case EventChange::reconnected:
        return Texts::tr("reconnected: %1 is fed by %2, before by %3")
            .arg(called(tabs.now(change)), called(tabs.after, tabs.now(change).feeder),
                 called(tabs.before, tabs.then(change).feeder));
    case EventChange::remarked:
        return Texts::tr("remarked: %1: %2")
            .arg(called(tabs.now(change)), marksChanged(tabs.then(change), tabs.now(change)));
    }
    return {};
}

QJsonValue indexOf(const StoryTab &tab, int place)
{
    return place == -1 ? QJsonValue() : QJsonValue(tab.events[std::size_t(place)].index);
}

QJsonArray wordsArray(const std::vector<WordRun> &runs)
{
    QJsonArray words;
    for (const WordRun &run : runs) {
        const QString kind = run.kind == WordRun::same      ? QStringLiteral("same")
                             : run.kind == WordRun::removed ? QStringLiteral("removed")
                                                            : QStringLiteral("added");
        words.append(QJsonObject{{kind, run.text}});
    }
    return words;
}

QJsonObject placeObject(const QPointF &place)
{
    return {{QStringLiteral("x"), place.x()}, {QStringLiteral("y"), place.y()}};
}

QJsonObject marksObject(const StoryEvent &event)
{
    return {{QStringLiteral("endOfStory"), event.isEnd}, {QStringLiteral("important"), event.isImportant}};
}

/// What the change is called, and the values before and after.
QJsonObject objectOf(const TabPair &tabs, const EventChange &change)
{
    const StoryEvent &event = change.kind == EventChange::removed ? tabs.then(change) : tabs.now(change);
    QJsonObject object{{QStringLiteral("index"), event.index}, {QStringLiteral("title"), event.title}};
    const auto tell = [&](const char *kind, const QJsonValue &from = QJsonValue::Undefined,
                          const QJsonValue &to = QJsonValue::Undefined) {
        object[QStringLiteral("change")] = QLatin1String(kind);
        object[QStringLiteral("from")] = from; // what is undefined does not come in
        object[QStringLiteral("to")] = to;
    };
    switch (change.kind) {
    case EventChange::removed:
        tell("removed");
        break;
    case EventChange::added:
        tell("added");
        break;
    case EventChange::renamed:
        tell("renamed", tabs.then(change).title, event.title);
        break;
    case EventChange::rewritten:
        tell("rewritten");
        object[QStringLiteral("words")] = wordsArray(wordsChanged(tabs.then(change).text(), event.text()));
        break;
    case EventChange::moved:
        tell("moved", placeObject(tabs.then(change).position), placeObject(event.position));
        break;
    case EventChange::reconnected:
        tell("reconnected", indexOf(tabs.before, tabs.then(change).feeder),
             indexOf(tabs.after, event.feeder));
        break;
    case EventChange::remarked:
        tell("remarked", marksObject(tabs.then(change)), marksObject(event));
        break;
    }
    return object;
}

/// Tells what a writer did between two files.
class DiffCommand : public StoryCommand
{
public:
    QString name() const override { return QStringLiteral("diff"); }
    QString summary() const override { return Texts::tr("Tells what a writer changed between two files."); }
    QString usage() const override { return Texts::tr("A B"); }
    QString example() const override
    {
        return QStringLiteral("fablegrid-story diff yesterday.scene today.scene");
    }
    void addOptions(QCommandLineParser &parser) const override
    {
        parser.addOption({QStringLiteral("json"), Texts::tr("As JSON: a list with an object for each tab.")});
    }

    int run(const QCommandLineParser &parser, Console &console) const override
    {
        const QStringList files = parser.positionalArguments();
        if (files.size() != 2)
            return console.refuse({}, Texts::tr("two files are to be compared, not %1").arg(files.size()));
        Story before;
        Story after;
        const double half = 0.5;
        if (!read(files[0], before, console.progress().between(0, half), console) ||
            !read(files[1], after, console.progress().between(half, 1), console))
            return Trouble;
        const std::size_t count = std::max(before.tabs.size(), after.tabs.size());
        bool differ = before.tabs.size() != after.tabs.size();
        QJsonArray told;
        for (std::size_t i = 0; i < count; ++i) {
            static const StoryTab none;
            const TabPair tabs{i < before.tabs.size() ? before.tabs[i] : none,
                               i < after.tabs.size() ? after.tabs[i] : none};
            const std::vector<EventChange> changes = changesOf(tabs.before, tabs.after);
            differ = differ || !changes.empty();
            if (parser.isSet(QStringLiteral("json")))
                told.append(tabObject(tabs, i, before, after, changes));
            else
                print(tabs, i, before, after, changes, console);
        }
        if (parser.isSet(QStringLiteral("json")))
            console.write(JsonText::of(QJsonDocument(told)));
        return differ ? Differs : Done;
    }

private:
    static bool read(const QString &file, Story &story, const PartTold &tell, Console &console)
    {
        StoryReader reader;
        if (const QString trouble = reader.read(file, tell); !trouble.isEmpty()) {
            console.complain(file, trouble);
            return false;
        }
        const QStringList damages = reader.damage().lines();
        for (const QString &damage : damages)
            console.complain(file, damage);
        story = reader.story();
        return true;
    }

    static void print(const TabPair &tabs, std::size_t number, const Story &before, const Story &after,
                      const std::vector<EventChange> &changes, Console &console)
    {
        const QString name = Story::nameOfTab(int(number));
        if (number >= before.tabs.size())
            console.print(Texts::tr("%1: added").arg(name));
        else if (number >= after.tabs.size())
            console.print(Texts::tr("%1: removed").arg(name));
        else if (!changes.empty())
            console.print(name + QLatin1Char(':'));
        for (const EventChange &change : changes)
            console.print(QStringLiteral("  ") + lineOf(tabs, change));
    }

    static QJsonObject tabObject(const TabPair &tabs, std::size_t number, const Story &before,
                                 const Story &after, const std::vector<EventChange> &changes)
    {
        QJsonArray all;
        for (const EventChange &change : changes)
            all.append(objectOf(tabs, change));
        QJsonObject object{{QStringLiteral("tab"), int(number) + 1}, {QStringLiteral("changes"), all}};
        if (number >= before.tabs.size())
            object[QStringLiteral("change")] = QStringLiteral("added");
        if (number >= after.tabs.size())
            object[QStringLiteral("change")] = QStringLiteral("removed");
        return object;
    }
};

} // namespace

const StoryCommand &diffCommand()
{
    static const DiffCommand command;
    return command;
}
