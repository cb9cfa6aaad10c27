#include "story/storysupport.h"

// The command line as its users meet it.

class tst_StoryProgram : public QObject
{
    Q_OBJECT

private slots:
    void init() { failOnWarnings(); }

    void wrongUseIsOneLine_data();
    void wrongUseIsOneLine();
    void helpIsForEachCommand();
    void showTellsOfEachFile();
    void showTellsOfBranches();
    void checkTellsWhatIsDamaged_data();
    void checkTellsWhatIsDamaged();
    void exportDoesNotReplaceUnlessForced();
    void exportLeavesNothingWhenItFails();
    void exportTellsDamagesBesides();
    void exportTakesTheWantedTabs();

private:
    StoryFolder folder;
    QString branched = folder.put(QStringLiteral("branched.scene"), sceneBytes({branchedTab()}));
};

void tst_StoryProgram::wrongUseIsOneLine_data()
{
    QTest::addColumn<QStringList>("arguments");
    QTest::addColumn<QString>("line");
    const auto row = [this](const QString &arguments, const QString &line) {
        QStringList all = arguments.split(u' ', Qt::SkipEmptyParts);
        all.replaceInStrings(QStringLiteral("@"), branched);
        QTest::newRow(qPrintable(arguments)) << all << QString(line).replace(QLatin1Char('@'), branched);
    };
    row({}, "what is to be done? See fablegrid-story --help");
    row("frob", "there is no command \"frob\". See fablegrid-story --help");
    row("show", "which file is to be shown?");
    row("show --frob @", "Unknown option 'frob'.");
    row("show /nowhere/x.scene", "/nowhere/x.scene: No such file or directory");
    row("show /", "/: it is no file");
    row("check", "which file is to be checked?");
    row("check /nowhere/x.scene", "/nowhere/x.scene: No such file or directory");
    row("export", "one FILE is to be exported, not 0");
    row("export @ @ -o a.md", "one FILE is to be exported, not 2");
    row("export @", "where to? -o OUT is missing");
    row("export @ -o", "Missing value after '-o'.");
    row("export @ -o a.md --tab 0", "--tab 0 is no number of a tab");
    row("export @ -o a.md --tab x", "--tab x is no number of a tab");
    row("export @ -o - --format md --tab 2", "@: has no tab 2");
    row("export @ -o - --format json --branches", "--branches is not for json, which holds every event");
    row("export @ -o a.md --paper A3", "--paper is A4 or letter, not A3");
    row("export @ -o /", "/ does not say which format; --format NAME does: FORMATS");
    row("export @ -o - --format frob", "there is no format \"frob\", only FORMATS");
    row("export @ -o / --format md", "/: is a folder");
    row("export @ -o /nowhere/a.md", "/nowhere/a.md: cannot be written");
    row("export /nowhere/x.scene -o - --format md", "/nowhere/x.scene: No such file or directory");
}

void tst_StoryProgram::wrongUseIsOneLine()
{
    QFETCH(const QStringList, arguments);
    QFETCH(const QString, line);
    const CommandResult result = runCommand(arguments);
    QCOMPARE(result.code, 2);
    QCOMPARE(result.output, QByteArray());
    QCOMPARE(result.errorLines().size(), 1);
    const QString wanted = QStringLiteral("fablegrid-story: ") + line;
    const qsizetype fixed = wanted.indexOf(QLatin1String("FORMATS"));
    QCOMPARE(result.errorLines().first().left(fixed), wanted.left(fixed));
}

void tst_StoryProgram::helpIsForEachCommand()
{
    const CommandResult all = runCommand({QStringLiteral("--help")});
    QCOMPARE(all.code, 0);
    const QStringList commands{QStringLiteral("show"), QStringLiteral("export"), QStringLiteral("check")};
    for (const QString &command : commands) {
        QVERIFY(all.output.contains("\n  " + command.toUtf8() + "  "));
        const CommandResult help = runCommand({command, QStringLiteral("--help")});
        QCOMPARE(help.code, 0);
        QCOMPARE(help.errors, QByteArray());
        QVERIFY(help.output.startsWith("Usage: fablegrid-story " + command.toUtf8() + " [options] FILE"));
        QVERIFY(help.output.contains("\nExample:\n  fablegrid-story " + command.toUtf8()));
    }
    const CommandResult version = runCommand({QStringLiteral("--version")});
    QCOMPARE(version.code, 0);
    QVERIFY(version.output.startsWith("fablegrid-story "));
}

void tst_StoryProgram::showTellsOfEachFile()
{
    const QString empty = folder.put(QStringLiteral("empty%2.scene"), intBytes(0));
    const CommandResult result = runCommand({QStringLiteral("show"), empty, QStringLiteral("/x"), empty});
    QCOMPARE(result.code, 2); // one could not be read, the others are shown all the same
    QCOMPARE(result.outputLines(),
             QStringList({empty + QStringLiteral(": tabs: 0"), empty + QStringLiteral(": tabs: 0")}));
    QCOMPARE(result.errorLines(),
             QStringList(QStringLiteral("fablegrid-story: /x: No such file or directory")));
}

void tst_StoryProgram::showTellsOfBranches()
{
    const CommandResult text = runCommand({QStringLiteral("show"), branched});
    QCOMPARE(text.code, 0);
    const QStringList expected{
        branched + QStringLiteral(": tabs: 1"),
        QStringLiteral("  Story 1: events: 10, words: 40, important: 2"),
        QStringLiteral("    the story: events: 4, words: 16"),
        QStringLiteral("    the end: 3 \"D\""),
        QStringLiteral("    outside of the story: events: 6"),
        QStringLiteral("    branches that lead nowhere: 3"),
        QStringLiteral("      from 1 \"B\" to 6 \"G\""),
        QStringLiteral("      from 1 \"B\" to 7 \"H\""),
        QStringLiteral("      from 1 \"B\" to 5 \"F\""),
    };
    QCOMPARE(text.outputLines(), expected);

    const CommandResult json = runCommand({QStringLiteral("show"), QStringLiteral("--json"), branched});
    const QJsonObject file = QJsonDocument::fromJson(json.output).array().at(0).toObject();
    QCOMPARE(file[QStringLiteral("file")].toString(), branched);
    const QJsonObject tab = file[QStringLiteral("tabs")].toArray().at(0).toObject();
    QCOMPARE(tab[QStringLiteral("events")].toInt(), 10);
    QCOMPARE(tab[QStringLiteral("storyWords")].toInt(), 16);
    QCOMPARE(tab[QStringLiteral("outside")].toInt(), 6);
    QCOMPARE(tab[QStringLiteral("end")].toObject()[QStringLiteral("title")].toString(), QStringLiteral("D"));
    QCOMPARE(tab[QStringLiteral("deadEnds")].toArray().size(), 3);
    QCOMPARE(file[QStringLiteral("damages")].toArray().size(), 0);
}

void tst_StoryProgram::checkTellsWhatIsDamaged_data()
{
    QTest::addColumn<QByteArray>("bytes");
    QTest::addColumn<QStringList>("damages");
    const QByteArray sound = sceneBytes({branchedTab()});
    QTest::newRow("sound") << sound << QStringList();
    QTest::newRow("no tabs") << intBytes(0) << QStringList();
    const QString early = QStringLiteral("the file ends early: what is missing reads as zero and as empty");
    QTest::newRow("empty") << QByteArray() << QStringList(early);
    QTest::newRow("cut") << sound.chopped(1) << QStringList(early);
    QTest::newRow("more") << sound + "abc"
                          << QStringList(QStringLiteral("bytes behind the last tab, left out: 3"));
    QTest::newRow("half a letter")
        << documentBytes({{Record{QString(), QPointF(), 0}}}).chopped(4) + intBytes(1)
        << QStringList(QStringLiteral("a text that ends in the middle of a letter reads as empty"));
    QTest::newRow("fed by nobody")
        << documentBytes({{Record{QString(), QPointF(), 0, 7}, Record{QString(), QPointF(), 1, 8}}})
        << QStringList(QStringLiteral("connections from events that are not in the file, left out: 2"));
    QTest::newRow("a circle")
        << documentBytes({{Record{QString(), QPointF(), 0, 0}}})
        << QStringList(
               QStringLiteral("Damaged scene file: \"FILE\" has a connection that closes a cycle, left "
                              "out: event 0 \"\" fed by event 0 \"\""));
    QTest::newRow("many tabs")
        << intBytes(1000)
        << QStringList(
               {QStringLiteral("Damaged scene file: \"FILE\" cannot hold 1000 tabs, opening 17"), early});
}

void tst_StoryProgram::checkTellsWhatIsDamaged()
{
    QFETCH(const QByteArray, bytes);
    QFETCH(QStringList, damages);
    const QString file = folder.put(QStringLiteral("checked.scene"), bytes);
    QStringList expected;
    for (QString &damage : damages)
        expected << file + QStringLiteral(": damaged: ") + damage.replace(QLatin1String("FILE"), file);
    if (damages.isEmpty())
        expected << file + QStringLiteral(": sound");
    const CommandResult result = runCommand({QStringLiteral("check"), file});
    QCOMPARE(result.outputLines(), expected);
    QCOMPARE(result.code, damages.isEmpty() ? 0 : 1);
    QCOMPARE(result.errors, QByteArray());
}

void tst_StoryProgram::exportDoesNotReplaceUnlessForced()
{
    const QString there = folder.put(QStringLiteral("there.md"), "mine");
    const QStringList arguments{QStringLiteral("export"), branched, QStringLiteral("-o"), there};
    const CommandResult refused = runCommand(arguments);
    QCOMPARE(refused.code, 2);
    QCOMPARE(refused.errorLines(),
             QStringList(QStringLiteral("fablegrid-story: %1: is there already; --force "
                                        "replaces it")
                             .arg(there)));
    QCOMPARE(readFile(there), QByteArray("mine"));
    QCOMPARE(runCommand(arguments + QStringList(QStringLiteral("--force"))).code, 0);
    const CommandResult standard =
        runCommand({QStringLiteral("export"), branched, QStringLiteral("-o"), QStringLiteral("-"),
                    QStringLiteral("--format"), QStringLiteral("md")});
    QVERIFY(standard.output.contains("## A\n"));
    QCOMPARE(readFile(there), standard.output);
}

void tst_StoryProgram::exportLeavesNothingWhenItFails()
{
    const QStringList before = folder.names();
    const CommandResult full =
        runCommand({QStringLiteral("export"), branched, QStringLiteral("-o"), QStringLiteral("/dev/full"),
                    QStringLiteral("--format"), QStringLiteral("md")});
    QCOMPARE(full.code, 2);
    QCOMPARE(full.errorLines(),
             QStringList(QStringLiteral("fablegrid-story: /dev/full: No space left on device")));
    const QString unread = folder.path(QStringLiteral("unread.md"));
    QCOMPARE(runCommand({QStringLiteral("export"), QStringLiteral("/x"), QStringLiteral("-o"), unread}).code,
             2);
    QCOMPARE(folder.names(), before);
}

void tst_StoryProgram::exportTellsDamagesBesides()
{
    const QString file = folder.put(QStringLiteral("more.scene"), sceneBytes({branchedTab()}) + "abc");
    const CommandResult result =
        runCommand({QStringLiteral("export"), file, QStringLiteral("-o"), QStringLiteral("-"),
                    QStringLiteral("--format"), QStringLiteral("md")});
    QCOMPARE(result.code, 0);
    QVERIFY(result.output.contains("## A\n"));
    QCOMPARE(
        result.errorLines(),
        QStringList(QStringLiteral("fablegrid-story: %1: bytes behind the last tab, left out: 3").arg(file)));
}

void tst_StoryProgram::exportTakesTheWantedTabs()
{
    const QString file =
        folder.put(QStringLiteral("tabs.scene"), sceneBytes({branchedTab(), StoryTab(), branchedTab()}));
    const QStringList arguments{QStringLiteral("export"),  file,
                                QStringLiteral("-o"),      QStringLiteral("-"),
                                QStringLiteral("--tab"),   QStringLiteral("3"),
                                QStringLiteral("--tab"),   QStringLiteral("2"),
                                QStringLiteral("--format")};
    const QByteArray text = runCommand(arguments + QStringList(QStringLiteral("md"))).output;
    QVERIFY(!text.contains("# Story 1\n"));
    QVERIFY(text.contains("# Story 2\n\n# Story 3\n\n## A\n"));
    const QByteArray json = runCommand(arguments + QStringList(QStringLiteral("json"))).output;
    const QJsonArray tabs = QJsonDocument::fromJson(json).object()[QStringLiteral("tabs")].toArray();
    QCOMPARE(tabs.size(), 2);
    QCOMPARE(tabs[0].toObject()[QStringLiteral("name")].toString(), QStringLiteral("Story 2"));
}

QTEST_MAIN(tst_StoryProgram)
#include "tst_storyprogram.moc"
