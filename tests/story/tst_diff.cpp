#include "story/storysupport.h"
#include "story/worddiff.h"

#include <QRandomGenerator>

#include <functional>

// What a writer is told of the differences between two files.

class tst_Diff : public TestCase
{
    Q_OBJECT

private slots:
    void changesAreTold_data();
    void changesAreTold();
    void changesAreData();
    void longTitlesAreComparedByTheirWords();
    void troubleIsNoDifference();
    void wordsAreCompared_data();
    void wordsAreCompared();
    void runsMakeBothTexts();

private:
    CommandResult diff(const QByteArray &before, const QByteArray &after, const QStringList &options = {})
    {
        return runCommand(QStringList({QStringLiteral("diff"), folder.put(QStringLiteral("a.scene"), before),
                                       folder.put(QStringLiteral("b.scene"), after)}) +
                          options);
    }

    StoryFolder folder;
};

using Edit = std::function<void(StoryTab &)>;
Q_DECLARE_METATYPE(Edit)

void tst_Diff::changesAreTold_data()
{
    QTest::addColumn<Edit>("edit");
    QTest::addColumn<QStringList>("lines");
    const auto row = [](const char *name, const Edit &edit, const QStringList &lines) {
        QTest::newRow(name) << edit << lines;
    };
    row("nothing", [](StoryTab &) {}, {});
    row("the prompt for nothing", [](StoryTab &tab) { tab.events[9].description.clear(); },
        {QStringLiteral("  rewritten: 9 \"J\": [-text of J-]")});
    row("renamed", [](StoryTab &tab) { tab.events[1].title = QStringLiteral("New\nname"); },
        {QStringLiteral("  renamed: 1 \"B\" to \"New name\"")});
    row("rewritten", [](StoryTab &tab) { tab.events[1].description = QStringLiteral("text\nfor a B!"); },
        {QStringLiteral("  rewritten: 1 \"B\": text{+ for+} [-of-]{+a+} B{+!+}")});
    const QString longText(5000, QLatin1Char('w'));
    row("rewritten at length", [longText](StoryTab &tab) { tab.events[1].description = longText; },
        {QStringLiteral("  rewritten: 1 \"B\": [-text of B-]{+%1+}").arg(longText)});
    row("moved", [](StoryTab &tab) { tab.events[2].position += QPointF(0.5, -7); },
        {QStringLiteral("  moved: 2 \"C\" from 1000, 100 to 1000.5, 93")});
    row("reconnected", [](StoryTab &tab) { tab.events[5].feeder = 4; },
        {QStringLiteral("  reconnected: 5 \"F\" is fed by 4 \"E\", before by 1 \"B\"")});
    row("disconnected", [](StoryTab &tab) { tab.events[5].feeder = -1; },
        {QStringLiteral("  reconnected: 5 \"F\" is fed by nothing, before by 1 \"B\"")});
    row("remarked",
        [](StoryTab &tab) {
            tab.events[3].isEnd = false;
            tab.events[6].isEnd = true;
            tab.events[6].isImportant = true;
            tab.events[1].isImportant = false;
        },
        {QStringLiteral("  remarked: 1 \"B\": no longer important"),
         QStringLiteral("  remarked: 3 \"D\": no longer the end"),
         QStringLiteral("  remarked: 6 \"G\": important, the end")});
    row("removed", [](StoryTab &tab) { tab.events.pop_back(); }, {QStringLiteral("  removed: 9 \"J\"")});
    row("added",
        [](StoryTab &tab) {
            StoryEvent event;
            event.index = 20;
            event.title = QStringLiteral("U");
            event.feeder = 9;
            event.isImportant = true;
            tab.events.push_back(event);
        },
        {QStringLiteral("  added: 20 \"U\"")});
    row("another number for the same title", [](StoryTab &tab) { tab.events[4].index = 44; }, {});
    row("another order", [](StoryTab &tab) { std::swap(tab.events[7], tab.events[6]); }, {});
    row("another event of the same number",
        [](StoryTab &tab) {
            tab.events[9].title = QStringLiteral("other");
            tab.events[9].feeder = -1;
        },
        {QStringLiteral("  renamed: 9 \"J\" to \"other\""),
         QStringLiteral("  reconnected: 9 \"other\" is fed by nothing, before by 8 \"I\"")});
}

void tst_Diff::changesAreTold()
{
    QFETCH(const Edit, edit);
    QFETCH(QStringList, lines);
    StoryTab edited = branchedTab();
    edit(edited);
    const CommandResult result =
        diff(sceneBytes({StoryTab(), branchedTab()}), sceneBytes({StoryTab(), edited}));
    if (!lines.isEmpty())
        lines.prepend(QStringLiteral("Story 2:"));
    QCOMPARE(result.outputLines(), lines);
    QCOMPARE(result.code, lines.isEmpty() ? 0 : 1);
    QCOMPARE(result.errors, QByteArray());
}

void tst_Diff::changesAreData()
{
    StoryTab edited = branchedTab();
    edited.events[1].title = QStringLiteral("X");
    edited.events[1].description = QStringLiteral("text by B");
    edited.events[1].position = QPointF(1, 2);
    edited.events[1].feeder = -1;
    edited.events[1].isImportant = false;
    edited.events.pop_back();
    const CommandResult result =
        diff(sceneBytes({branchedTab(), StoryTab()}), sceneBytes({edited}), {QStringLiteral("--json")});
    QCOMPARE(result.code, 1);
    const QByteArray wanted = R"([
        {"tab": 1, "changes": [
            {"change": "removed", "index": 9, "title": "J"},
            {"change": "renamed", "index": 1, "title": "X", "from": "B", "to": "X"},
            {"change": "rewritten", "index": 1, "title": "X", "words": [
                {"same": "text "}, {"removed": "of"}, {"added": "by"}, {"same": " B"}]},
            {"change": "moved", "index": 1, "title": "X", "from": {"x": 500, "y": 100}, "to": {"x": 1, "y": 2}},
            {"change": "reconnected", "index": 1, "title": "X", "from": 0, "to": null},
            {"change": "remarked", "index": 1, "title": "X",
             "from": {"important": true, "endOfStory": false}, "to": {"important": false, "endOfStory": false}}
        ]},
        {"tab": 2, "change": "removed", "changes": []}
    ])";
    QCOMPARE(QJsonDocument::fromJson(result.output).toJson(), QJsonDocument::fromJson(wanted).toJson());

    const CommandResult added = diff(sceneBytes({}), sceneBytes({StoryTab()}));
    QCOMPARE(added.code, 1);
    QCOMPARE(added.outputLines(), QStringList(QStringLiteral("Story 1: added")));
}

void tst_Diff::longTitlesAreComparedByTheirWords()
{
    const QString begin = QString(70, QLatin1Char('x'));
    StoryTab before = branchedTab();
    StoryTab after = branchedTab();
    before.events[1].title = begin + QStringLiteral(" old");
    after.events[1].title = begin + QStringLiteral(" new");
    QCOMPARE(diff(sceneBytes({before}), sceneBytes({after})).outputLines(),
             (QStringList{QStringLiteral("Story 1:"),
                          QStringLiteral("  renamed: 1 \"%1\u2026\": \u2026%2 [-old-]{+new+}")
                              .arg(begin.left(59), begin.left(24))}));
}

void tst_Diff::troubleIsNoDifference()
{
    const CommandResult one = runCommand({QStringLiteral("diff"), QStringLiteral("a.scene")});
    QCOMPARE(one.code, 2);
    QCOMPARE(one.errorLines(),
             QStringList(QStringLiteral("fablegrid-story: two files are to be compared, not 1")));
    const QString there = folder.put(QStringLiteral("there.scene"), sceneBytes({}));
    const CommandResult none = runCommand({QStringLiteral("diff"), there, QStringLiteral("/nowhere/x")});
    QCOMPARE(none.code, 2);
    QCOMPARE(none.errorLines().size(), 1);
    QVERIFY(none.errorLines().first().startsWith(QLatin1String("fablegrid-story: /nowhere/x: ")));
    const CommandResult damaged = diff(sceneBytes({branchedTab()}) + "abc", sceneBytes({branchedTab()}));
    QCOMPARE(damaged.code, 0); // no writer has put it there
    QCOMPARE(damaged.errorLines().size(), 1);
}

void tst_Diff::wordsAreCompared_data()
{
    QTest::addColumn<QString>("before");
    QTest::addColumn<QString>("after");
    QTest::addColumn<QString>("runs");
    const auto row = [](const QString &before, const QString &after, const QString &runs) {
        QTest::newRow(qPrintable(runs)) << before << after << runs;
    };
    row({}, {}, {});
    row(QStringLiteral("a b"), QStringLiteral("a b"), QStringLiteral("a b"));
    row({}, QStringLiteral("a b"), QStringLiteral("+a b+"));
    row(QStringLiteral("a b"), {}, QStringLiteral("-a b-"));
    row(QStringLiteral("a c"), QStringLiteral("a b c"), QStringLiteral("a +b +c"));
    row(QStringLiteral("a b c d"), QStringLiteral("a x c y d"), QStringLiteral("a -b-+x+ c+ y+ d"));
    row(QStringLiteral("one two"), QStringLiteral("two one"), QStringLiteral("-one -two+ one+"));
    row(QStringLiteral("\u5c71\u5ddd"), QStringLiteral("\u5c71\u6d77"),
        QStringLiteral("\u5c71-\u5ddd-+\u6d77+"));
}

void tst_Diff::wordsAreCompared()
{
    QFETCH(const QString, before);
    QFETCH(const QString, after);
    QFETCH(const QString, runs);
    QString told;
    for (const WordRun &run : wordsChanged(before, after)) {
        const QString sign = run.kind == WordRun::same      ? QString()
                             : run.kind == WordRun::removed ? QStringLiteral("-")
                                                            : QStringLiteral("+");
        told += sign + run.text + sign;
    }
    QCOMPARE(told, runs);
}

// Of the last one no word is left, and there are more of them than it is worth to look into.
void tst_Diff::runsMakeBothTexts()
{
    QRandomGenerator random(7);
    const auto text = [&random](int words, int kinds) {
        QString all;
        for (int i = 0; i < words; ++i)
            all += QStringLiteral("w%1 ").arg(random.bounded(kinds));
        return all;
    };
    for (int i = 0; i < 60; ++i) {
        const bool isHuge = i == 59;
        const QString before = text(isHuge ? 5000 : random.bounded(40), isHuge ? 100000 : 6);
        const QString after = text(isHuge ? 5000 : random.bounded(40), isHuge ? 100000 : 6);
        QString withRemoved;
        QString withAdded;
        for (const WordRun &run : wordsChanged(before, after)) {
            withRemoved += run.kind == WordRun::added ? QString() : run.text;
            withAdded += run.kind == WordRun::removed ? QString() : run.text;
        }
        QCOMPARE(withRemoved, before);
        QCOMPARE(withAdded, after);
    }
}

QTEST_MAIN(tst_Diff)
#include "tst_diff.moc"
