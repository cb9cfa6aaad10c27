#include "story/storysupport.h"

#include <QSemaphore>

// The command line as its users meet it.

namespace {

/// A terminal that says when something has been written on it.
class Screen : public QIODevice
{
public:
    Screen() { open(QIODevice::WriteOnly | QIODevice::Unbuffered); }

    QByteArray bytes;
    QSemaphore writings;

protected:
    qint64 readData(char *, qint64) override { return -1; }
    qint64 writeData(const char *data, qint64 size) override
    {
        bytes.append(data, size);
        writings.release();
        return size;
    }
};

} // namespace

class tst_StoryProgram : public TestCase
{
    Q_OBJECT

private slots:
    void wrongUseIsOneLine_data();
    void wrongUseIsOneLine();
    void helpIsForEachCommand_data();
    void helpIsForEachCommand();
    void versionIsTold();
    void showTellsOfEachFile();
    void showTellsOfBranches();
    void checkTellsWhatIsDamaged_data();
    void checkTellsWhatIsDamaged();
    void exportDoesNotReplaceUnlessForced();
    void whatIsReadIsNotReplaced_data();
    void whatIsReadIsNotReplaced();
    void exportLeavesNothingWhenItFails();
    void fullStandardOutputIsOneLine_data();
    void fullStandardOutputIsOneLine();
    void exportTellsDamagesBesides();
    void exportTakesTheWantedTabs();
    void barIsShownToWhoeverWatches_data();
    void barIsShownToWhoeverWatches();
    void barIsThereWhileNothingIsHeard();
    void barDoesNotComeBackOfItself();
    void barLeavesNothingOfShortWork();

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
    row("export @ -o a.pdf --paper A3", "--paper is A4 or letter, not A3");
    row("export @ -o a.md --paper letter", "--paper is not for md, which has no pages");
    row("export @ -o /", "/ does not say which format; --format NAME does: FORMATS");
    row("export @ -o - --format frob", "there is no format \"frob\", only FORMATS");
    row("export @ -o / --format md", "/: is a folder");
    row("export @ -o /nowhere/a.md", "/nowhere/a.md: cannot be written: No such file or directory");
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

void tst_StoryProgram::helpIsForEachCommand_data()
{
    QTest::addColumn<QString>("command");
    QTest::addColumn<QString>("arguments");
    QTest::addColumn<QString>("example");
    const auto row = [](const char *command, const char *arguments, const char *example) {
        QTest::newRow(command) << QString::fromLatin1(command) << QString::fromLatin1(arguments)
                               << QString::fromLatin1(example);
    };
    row("show", "FILE...", "novel.scene");
    row("export", "FILE -o OUT", "novel.scene -o novel.odt --branches");
    row("picture", "FILE -o OUT", "novel.scene -o poster.pdf --paper A3 --pages 2x1");
    row("check", "FILE...", "*.scene");
    row("import", "IN -o FILE", "outline.md -o novel.scene");
    row("diff", "A B", "yesterday.scene today.scene");
    row("copies", "[--restore N -o FILE]", "--restore 1 -o novel.scene");
}

void tst_StoryProgram::helpIsForEachCommand()
{
    QFETCH(const QString, command);
    QFETCH(const QString, arguments);
    QFETCH(const QString, example);
    const CommandResult all = runCommand({QStringLiteral("--help")});
    QCOMPARE(all.code, 0);
    const QByteArray name = command.toUtf8();
    QVERIFY(all.output.contains("\n  " + name.leftJustified(8) + "  "));
    const CommandResult help = runCommand({command, QStringLiteral("--help")});
    QCOMPARE(help.code, 0);
    QCOMPARE(help.errors, QByteArray());
    const QByteArray usage = "Usage: fablegrid-story " + name + " [options] " + arguments.toUtf8() + '\n';
    QCOMPARE(help.output.left(usage.size()), usage);
    const QByteArray end = "\nExample:\n  fablegrid-story " + name + ' ' + example.toUtf8() + '\n';
    QCOMPARE(help.output.right(end.size()), end);
}

void tst_StoryProgram::versionIsTold()
{
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

void tst_StoryProgram::whatIsReadIsNotReplaced_data()
{
    QTest::addColumn<QString>("arguments");
    QTest::newRow("export") << QStringLiteral("export FILE -o LINK --format md --force");
    QTest::newRow("picture") << QStringLiteral("picture FILE -o LINK --format png --force");
    QTest::newRow("import") << QStringLiteral("import FILE -o LINK --format json --force");
    QTest::newRow("the other way round") << QStringLiteral("export LINK -o FILE --format md --force");
}

void tst_StoryProgram::whatIsReadIsNotReplaced()
{
    QFETCH(const QString, arguments);
    QStringList all = arguments.split(u' ');
    const QString link = folder.path(QStringLiteral("link.scene"));
    if (!QFile::exists(link))
        QVERIFY(QFile::link(branched, link));
    const QByteArray before = readFile(branched);
    all.replaceInStrings(QStringLiteral("FILE"), branched).replaceInStrings(QStringLiteral("LINK"), link);
    const CommandResult result = runCommand(all);
    QCOMPARE(result.code, 2);
    QCOMPARE(
        result.errorLines(),
        QStringList(QStringLiteral("fablegrid-story: %1: is what is read, and would be lost").arg(all[3])));
    QCOMPARE(readFile(branched), before);
}

void tst_StoryProgram::exportLeavesNothingWhenItFails()
{
    const QStringList before = folder.names();
    const CommandResult full =
        runCommand({QStringLiteral("export"), branched, QStringLiteral("-o"), QStringLiteral("/dev/full"),
                    QStringLiteral("--format"), QStringLiteral("md")});
    QCOMPARE(full.code, 2);
    QCOMPARE(full.errorLines(),
             QStringList(
                 QStringLiteral("fablegrid-story: /dev/full: cannot be written: No space left on device")));
    const QString unread = folder.path(QStringLiteral("unread.md"));
    QCOMPARE(runCommand({QStringLiteral("export"), QStringLiteral("/x"), QStringLiteral("-o"), unread}).code,
             2);
    QCOMPARE(folder.names(), before);
}

void tst_StoryProgram::fullStandardOutputIsOneLine_data()
{
    QTest::addColumn<QString>("arguments");
    for (const char *arguments :
         {"show @", "export @ -o - --format md", "picture @ -o - --format svg", "import @.md -o -"})
        QTest::newRow(arguments) << QString::fromLatin1(arguments).replace(QLatin1Char('@'), branched);
    folder.put(QStringLiteral("branched.scene.md"), "# A\n");
}

void tst_StoryProgram::fullStandardOutputIsOneLine()
{
    QFETCH(const QString, arguments);
    QFile full(QStringLiteral("/dev/full"));
    QVERIFY(full.open(QIODevice::WriteOnly));
    CommandResult result;
    QBuffer errors(&result.errors);
    errors.open(QIODevice::WriteOnly);
    Console console(full, errors);
    QCOMPARE(StoryProgram::run(arguments.split(QLatin1Char(' ')), console), 2);
    QCOMPARE(result.errorLines(), QStringList(QStringLiteral("fablegrid-story: cannot write to the standard "
                                                             "output: No space left on device")));
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

void tst_StoryProgram::barIsShownToWhoeverWatches_data()
{
    QTest::addColumn<QStringList>("arguments");
    QTest::addColumn<int>("steps");
    const auto row = [this](const QString &arguments, int steps) {
        QStringList all = arguments.split(u' ');
        all.replaceInStrings(QStringLiteral("@"), branched);
        QTest::newRow(qPrintable(arguments)) << all << steps;
    };
    // The story has ten events, four of them in the story itself; reading it takes many steps.
    row(QStringLiteral("show @ @"), 50);
    row(QStringLiteral("check @ @"), 50);
    row(QStringLiteral("diff @ @"), 50);
    for (const char *format : {"json", "csv", "dot", "twee"})
        row(QStringLiteral("export @ -o - --format ") + QLatin1String(format), 40 + 10);
    for (const char *format : {"md", "txt", "html", "odt", "pdf", "opml"})
        row(QStringLiteral("export @ -o - --branches --format ") + QLatin1String(format), 40 + 10);
    row(QStringLiteral("picture @ -o - --format pdf --paper A4 --pages 4x4"), 40 + 16);
    for (const char *format : {"png", "svg", "pdf"})
        row(QStringLiteral("picture @ -o - --format ") + QLatin1String(format), 40 + 1);
    row(QStringLiteral("import @.json -o -"), 10);
    row(QStringLiteral("import @.json --into @ -o -"), 20 + 10);
}

void tst_StoryProgram::barIsShownToWhoeverWatches()
{
    QFETCH(const QStringList, arguments);
    QFETCH(const int, steps);
    if (const QString json = branched + QStringLiteral(".json"); !QFile::exists(json))
        QCOMPARE(runCommand({QStringLiteral("export"), branched, QStringLiteral("-o"), json}).code, 0);
    const CommandResult unseen = runCommand(arguments);
    QCOMPARE(unseen.errors, QByteArray());
    const CommandResult seen = runCommand(arguments, true);
    QCOMPARE(seen.code, 0);
    if (!arguments.contains(QLatin1String("pdf"))) // which says when it was made
        QCOMPARE(seen.output, unseen.output);
    static const QRegularExpression bar(QStringLiteral("\\r\\[(#*)( *)\\] +(\\d+)%"));
    int count = 0;
    int last = -1;
    for (auto found = bar.globalMatch(QString::fromUtf8(seen.errors)); found.hasNext(); ++count) {
        const QRegularExpressionMatch match = found.next();
        QCOMPARE(match.capturedLength(1) + match.capturedLength(2), 40);
        QVERIFY(match.captured(3).toInt() > last);
        last = match.captured(3).toInt();
    }
    QVERIFY2(count >= steps, qPrintable(QString::number(count)));
    QVERIFY(last > 90);
    QVERIFY(seen.errors.endsWith('\r' + QByteArray(47, ' ') + '\r')); // and is gone at the end
}

void tst_StoryProgram::barIsThereWhileNothingIsHeard()
{
    Screen screen;
    {
        Progress progress(screen, true, 0);
        constexpr int patience = 10000; // milliseconds
        QVERIFY(screen.writings.tryAcquire(1, patience));
        QCOMPARE(screen.bytes, "\r[" + QByteArray(40, ' ') + "]   0%");
    }
    QVERIFY(screen.bytes.endsWith('\r' + QByteArray(47, ' ') + '\r'));
}

// Or it would stand in the middle of what is written meanwhile.
void tst_StoryProgram::barDoesNotComeBackOfItself()
{
    Screen screen;
    Progress progress(screen, true, 20);
    progress.hide();
    QVERIFY(!screen.writings.tryAcquire(screen.writings.available() + 1, 200));
    progress.reached(0.5);
    QVERIFY(screen.bytes.endsWith("]  50%"));
}

void tst_StoryProgram::barLeavesNothingOfShortWork()
{
    Screen screen;
    {
        Progress progress(screen, true);
        progress.reached(0.5);
    }
    QCOMPARE(screen.bytes, QByteArray());
}

QTEST_MAIN(tst_StoryProgram)
#include "tst_storyprogram.moc"
