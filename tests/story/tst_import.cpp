#include "story/importsupport.h"

// What becomes of texts of other programs, as the editor shows it after opening the file that was made.

class tst_Import : public TestCase
{
    Q_OBJECT

private slots:
    void textBecomesAStory_data();
    void textBecomesAStory();
    void textWithoutAStoryIsRefused_data();
    void textWithoutAStoryIsRefused();
    void jsonGivesTheSameBytes_data();
    void jsonGivesTheSameBytes();
    void missingTextIsWrittenAsAnEmptyOne();
    void markdownGivesBackWhatWasTold();
    void wrongUseIsOneLine_data();
    void wrongUseIsOneLine();
    void tabsAreAddedToAStory();
    void damagedStoryIsNotWrittenAnew();
    void nothingIsReplacedUnlessForced();

private:
    StoryFolder folder;
};

void tst_Import::textBecomesAStory_data()
{
    const ImportedRows row;
    const QString md = QStringLiteral("md");
    row("headings", md, "# A\none\ntwo\n\nthree\n# B\n## C\n## D\n### E\n# F\n",
        {QStringLiteral("0A=one two\n\nthree 0B 1/C 1D 1E 0F.")});
    row("underlined headings", md, "A\n=\nB\n-\nC\n=\n", {QStringLiteral("0A 1/B 0C.")});
    row("levels that are left out", md, "### A\n# B\n#### C\n## D\n## E",
        {QStringLiteral("0A 0B. 1/C 1D 1E")});
    row("lists", md, "- A\n\n  one\n  - B\n    1. C\n  - D\n\n  two\n- E\n\n1. F\n",
        {QStringLiteral("0A=one\n\ntwo 1/B 2/C 1D 0E 0F.")});
    row("lists below headings", md, "# A\n- one\n  - two\n\n    > three\n1. four\n2. five\n",
        {QStringLiteral("0A=- one\n  - two\n    > three\n\n1. four\n2. five.")});
    row("names of tabs and other signs", md,
        "<!-- fablegrid-story: x -->\n# Story 3\n## A\n```cpp\none\n```\n# Prologue\n## B [c](d \"e\")\n",
        {QStringLiteral("0A=one."), QStringLiteral("0B c (d).")},
        {QStringLiteral("line 4: the language of code is left out"),
         QStringLiteral("line 7: the name of the tab \"Prologue\" is left out, for tabs have numbers only"),
         QStringLiteral("line 8: the title of a link is left out")});
    row("other blocks", md, "# A\n```\none\n two\n```\n***\n> three\n\n<br>\n\nfour\n",
        {QStringLiteral("0A=one\n two\n\n* * *\n\n> three\n\n\nfour.")});
    row("text within lines", md, "# *A* [b](u) `c`\none<br>two \\* &amp; ![p](q) <http://r>\\\nthree **s**\n",
        {QStringLiteral("0A b (u) c=one\ntwo * & p (q) http://r\nthree s.")},
        {QStringLiteral("line 1: emphasis is left out, its words are kept; so in 2 places")});
    row("lines within a paragraph", md, "# A\none\ntwo *x*\n[three](u\n\"t\") <i>\n\n> four\n> <b>\n",
        {QStringLiteral("0A=one two x three (u) \n\n> four .")},
        {QStringLiteral("line 4: HTML is left out; so in 2 places"),
         QStringLiteral("line 3: emphasis is left out, its words are kept"),
         QStringLiteral("line 4: the title of a link is left out")});
    row("what no event can hold", md, "zero\n\n# A\n<div>\n\n<!-- branch -->\n# B\n<i>x</i>\n",
        {QStringLiteral("0A 0B=x.")},
        {QStringLiteral("line 4: HTML is left out; so in 4 places"),
         QStringLiteral("line 1: what stands before the first event is left out")});
    const QString json = QStringLiteral("json");
    const auto story = [](const QByteArray &tabs) {
        return "{\"format\": \"fablegrid-story\", \"version\": 1, \"tabs\": [\n" + tabs + "]}";
    };
    const QByteArray texts = "\"description\": \"\", \"x\": 0, \"y\": ";
    row("objects of the number that means none", json,
        story("{\"events\": [{\"title\": \"A\", \"index\": -1, " + texts +
              "0, \"endOfStory\": true},\n{\"title\": \"B\", \"index\": -2, \"fedBy\": -1, " + texts +
              "500}]}"),
        {QStringLiteral("0A. 0~B")},
        {QStringLiteral("line 2: \"A\" has no number of its own and becomes event 0"),
         QStringLiteral("line 3: \"B\" is fed by event -1, which is not there; that is left out")});
    row("data without places", json,
        "{\"format\": \"fablegrid-story\", \"version\": 1, \"tabs\": [{\"name\": \"Story 2\", \"events\": [\n"
        "{\"title\": \"A\", \"description\": \"\", \"index\": 0},\n"
        "{\"title\": \"B\", \"description\": \"\", \"index\": 1, \"fedBy\": 0},\n"
        "{\"title\": \"C\", \"description\": \"\", \"index\": 2, \"fedBy\": 0, \"endOfStory\": true}]}]}",
        {QStringLiteral("0A 1/B 0C.")});
    row("what is no object", json,
        story("7, [], null,\n{\"events\": [7,\n{\"title\": \"A\", \"index\": 3, \"endOfStory\": 1, "
              "\"important\": null, " +
              texts + "0}]}, {\"events\": {}}"),
        {QStringLiteral("0A."), QString()},
        {QStringLiteral("line 4: a tab without a list of its events is left empty"),
         QStringLiteral("line 4: endOfStory is neither true nor false and is left out"),
         QStringLiteral("line 4: important is neither true nor false and is left out"),
         QStringLiteral("line 3: what is no object among the events is left out"),
         QStringLiteral("line 2: what is no object among the tabs is left out; so in 3 places")});
    const QByteArray place = "\"x\": 0, \"y\": 0";
    const QByteArray bare = "\"description\": \"\", " + place;
    row("objects beside the events", json,
        story("{\"notes\": [{}, {\"a\":\n{}}],\n\"\\u0065vents\": [{\"title\": 7, " + bare +
              "}],\n"
              "\"more\": {\"a\": [[{}]]}},\n{\"events\": [{\"title\": 8, " +
              bare + "}]}"),
        {QStringLiteral("0."), QStringLiteral("0.")},
        {QStringLiteral("line 5: the key \"more\" is left out"),
         QStringLiteral("line 2: the key \"notes\" is left out"),
         QStringLiteral("line 4: title is no text and is left out; so in 2 places"),
         QStringLiteral("line 4: \"\" has no number of its own and becomes event 0"),
         QStringLiteral("line 6: \"\" has no number of its own and becomes event 0")});
    const QByteArray event = "{\"title\": \"A\", \"index\": 5, \"endOfStory\": true, " + bare;
    row("stories that the events tell otherwise", json,
        story("{\"story\": [5], \"events\": [" + event + "}]},\n{\"events\": [" + event +
              "}],\n\"story\": [5, 6]},\n{\"events\": [" + event + "}],\n\"story\": null}"),
        {QStringLiteral("0A."), QStringLiteral("0A."), QStringLiteral("0A.")},
        {QStringLiteral("line 4: the story is not what the connections and the end say, and is left out; "
                        "so in 2 places")});
    row("names of tabs", json,
        story("{\"name\": \"Story 12\", \"events\": []},\n{\"name\": \"Story 0\", \"events\": []},\n"
              "{\"events\": [],\n\"name\": \"The 1\"},\n{\"events\": [], \"name\": null}"),
        {QString(), QString(), QString(), QString()},
        {QStringLiteral("line 3: the name of the tab \"Story 0\" is left out, for tabs have numbers only"),
         QStringLiteral("line 5: the name of the tab \"The 1\" is left out, for tabs have numbers only")});
    QByteArray keys;
    for (char key = 'a'; key < 'n'; ++key)
        keys += QByteArray(",\n\"") + key + "\": 1";
    QStringList notesOfKeys(QStringLiteral("line 13: more keys are left out; so in 3 places"));
    for (int i = 0; i < 10; ++i)
        notesOfKeys << QStringLiteral("line %1: the key \"%2\" is left out%3")
                           .arg(i == 1 ? 1 : i + 3)
                           .arg(QChar(u'a' + i))
                           .arg(i == 1 ? QStringLiteral("; so in 2 places") : QString());
    row("many keys", json, "{\"b\": 1, " + story("{\"events\": [" + event + keys + "}]}").mid(1),
        {QStringLiteral("0A.")}, notesOfKeys);
    row("names that are said twice", json,
        story("{\"events\": [\n{}\n],\n\"events\": [\n{\"title\": 7, \"title\":\n8, \"index\": 0, " + bare +
              "}]}"),
        {QStringLiteral("0.")}, {QStringLiteral("line 7: title is no text and is left out")});
    row("texts that look like objects", json,
        "\xEF\xBB\xBF" + story("{\"events\": [{\"title\": \"\\\"[{\\\\\", \"index\": 0, " + bare +
                               "},\r\n{\"title\": \"]\\\n}\", \"index\": 1,\r\n\"x\": 0, \"y\": 900"
                               ",\r\n\"description\":\r\n7}]}"),
        {QStringLiteral("0\"[{\\. 0~]\n}")},
        {QStringLiteral("line 7: description is no text and is left out")});
    row("front matter", md, "---\ntitle: x\n---\n# A\n<div>\n", {QStringLiteral("0A.")},
        {QStringLiteral("line 1: the front matter is left out"), QStringLiteral("line 5: HTML is left out")});
    row("letters", md, "\xEF\xBB\xBF# \xF0\x9F\x98\x80 \xD7\xA9\n\xFFz\n",
        {QStringLiteral("0\U0001F600 \u05E9=\uFFFDz.")},
        {QStringLiteral("line 2: letters that are no UTF-8 are left out")});
}

void tst_Import::textBecomesAStory() { checkImported(folder); }

void tst_Import::textWithoutAStoryIsRefused_data()
{
    const RefusedRows row;
    row("no.md", "words", QStringLiteral("has neither headings nor a list"));
    row("no.json", "{\n\"a\": 1,\n}", QStringLiteral("line 3: object is missing after a comma"));
    row("no.json", "[]",
        QStringLiteral("is no story: \"format\" is not \"fablegrid-story\", or there are no \"tabs\""));
    row("no.json", "{\"format\": \"fablegrid-story\", \"tabs\": [], \"version\": 2}",
        QStringLiteral("has the version 2; only 1 can be read"));
}

void tst_Import::textWithoutAStoryIsRefused() { checkRefused(folder); }

void tst_Import::jsonGivesTheSameBytes_data()
{
    QTest::addColumn<QByteArray>("bytes");
    const QDir corpus(QStringLiteral(FABLEGRID_CORPUS "/document"));
    const QStringList names = corpus.entryList(QDir::Files);
    for (const QString &name : names)
        QTest::newRow(qPrintable(name)) << readFile(corpus.filePath(name));
    QTest::newRow("branches") << sceneBytes({branchedTab(), StoryTab(), branchedTab()});
    const QString odd = QStringLiteral("\r\na\u2028\u2029\t \U0001F600\uFFFE") + QChar(0xD800) + QChar(u'\0');
    QTest::newRow("texts") << documentBytes({{Record{odd, QPointF(-0.0, 1e-300), -5, -1, true, true, odd}}});
    const QString marked = QStringLiteral("\uFEFF\uFEFFa\uFEFF");
    QTest::newRow("marks of an encoding")
        << documentBytes({{Record{marked, QPointF(), 0, -1, true, true, marked}}});
    QTest::newRow("null texts")
        << QByteArray(documentBytes({{Record{}}})).replace(22, 4, QByteArray(4, '\xFF'));
    StoryTab many = branchedTab();
    many.events.resize(300, many.events[9]);
    for (int i = 10; i < 300; ++i)
        many.events[i].index = 1000 - i;
    QTest::newRow("late texts") << sceneBytes({many});
}

// Else the editor would change the file as soon as it is saved, and check would call it damaged.
void tst_Import::missingTextIsWrittenAsAnEmptyOne()
{
    const QString text = folder.put(QStringLiteral("bare.md"), "- <!-- mark -->x\n  What\x9F happens.\n");
    const QString made = folder.path(QStringLiteral("bare.scene"));
    QCOMPARE(runCommand({QStringLiteral("import"), text, QStringLiteral("-o"), made}).code, 0);
    StoryReader reader;
    QCOMPARE(reader.read(made), QString());
    QCOMPARE(reader.damage().lines(), QStringList());
    QCOMPARE(reader.bytes().toHex(), readFile(made).toHex());
}

void tst_Import::jsonGivesTheSameBytes()
{
    QFETCH(const QByteArray, bytes);
    const QString scene = folder.put(QStringLiteral("in.scene"), bytes);
    StoryReader reader;
    QCOMPARE(reader.read(scene), QString());
    const QByteArray saved = reader.bytes();
    const CommandResult json =
        runCommand({QStringLiteral("export"), scene, QStringLiteral("-o"), QStringLiteral("-"),
                    QStringLiteral("--format"), QStringLiteral("json")});
    const QString text = folder.put(QStringLiteral("between.json"), json.output);
    const CommandResult made =
        runCommand({QStringLiteral("import"), text, QStringLiteral("-o"), QStringLiteral("-")});
    QCOMPARE(made.errors, QByteArray());
    QCOMPARE(made.code, 0);
    QCOMPARE(made.output.toHex(), saved.toHex());
}

void tst_Import::markdownGivesBackWhatWasTold()
{
    StoryTab tab = branchedTab();
    const QString odd = QStringLiteral("# *a* <b> `c` [d](e) &amp; 1. f\\ \U0001F600 \u05E9\u2028g");
    const QStringList texts{QStringLiteral("\n\na\n\n\nb\n c \n- d\n\n"),
                            odd,
                            QStringLiteral("1. x\n> y\n    z\n---"),
                            QStringLiteral("\n"),
                            QString(),
                            QStringLiteral("\uFEFFa\u0001b\u001F\u007F\u2028\u0085\rc\u2029d\r\ne")};
    for (int i = 0; i < texts.size(); ++i) {
        tab.events[i].description = texts[i];
        tab.events[i].title = texts[i];
    }
    tab.events[6].description = QStringLiteral("Enter description");
    StoryTab deep;
    for (int i = 0; i < 20; ++i) {
        StoryEvent event;
        event.index = i;
        event.title = QString::number(i);
        event.feeder = i < 2 ? i - 1 : i - (i % 2 == 0 ? 2 : 1);
        event.isEnd = i == 1;
        deep.events.push_back(event);
    }
    const QString scene =
        folder.put(QStringLiteral("told.scene"), sceneBytes({tab, StoryTab(), branchedTab(), deep}));
    const QString text = folder.path(QStringLiteral("told.md"));
    QCOMPARE(runCommand(
                 {QStringLiteral("export"), scene, QStringLiteral("-o"), text, QStringLiteral("--branches")})
                 .code,
             0);
    StoryReader reader;
    reader.read(scene);
    Story before = reader.story();
    const Imported made = imported(folder, QStringLiteral("again.md"), readFile(text));
    QCOMPARE(made.notes, QStringList());
    QCOMPARE(made.tabs.size(), qsizetype(before.tabs.size()));
    for (std::size_t i = 0; i < before.tabs.size(); ++i) {
        for (StoryEvent &event : before.tabs[i].events)
            event.isImportant = false; // no heading can say so
        QCOMPARE(made.tabs[qsizetype(i)], told(before.tabs[i]));
    }
    QVERIFY(made.isClear);
}

void tst_Import::wrongUseIsOneLine_data()
{
    QTest::addColumn<QStringList>("arguments");
    QTest::addColumn<QString>("line");
    const auto row = [](const QString &arguments, const QString &line) {
        QTest::newRow(qPrintable(arguments)) << arguments.split(u' ', Qt::SkipEmptyParts) << line;
    };
    row("import", "one IN is to be imported, not 0");
    row("import a.md", "where to? -o FILE or --into FILE is missing");
    row("import /nowhere/a.md -o b.scene", "/nowhere/a.md: No such file or directory");
    row("import /nowhere/a.md --into /nowhere/b.scene", "/nowhere/b.scene: No such file or directory");
    row("import / -o b.scene --format md", "/: is a folder");
    row("import a.md -o /", "/: is a folder");
    row("import a -o b.scene", "a does not say which format; --format NAME does: ");
    row("import a.md -o b.scene --format pdf", "the format \"pdf\" cannot be imported, only ");
}

void tst_Import::wrongUseIsOneLine()
{
    QFETCH(const QStringList, arguments);
    QFETCH(const QString, line);
    const CommandResult result = runCommand(arguments);
    QCOMPARE(result.code, 2);
    QCOMPARE(result.errorLines().size(), 1);
    QCOMPARE(result.errorLines().first().left(17 + line.size()), QStringLiteral("fablegrid-story: ") + line);
}

void tst_Import::tabsAreAddedToAStory()
{
    const QString text = folder.put(QStringLiteral("more.md"), "# X\n");
    const QString into = folder.put(QStringLiteral("into.scene"), sceneBytes({branchedTab()}));
    const QString other = folder.path(QStringLiteral("other.scene"));
    const QStringList arguments{QStringLiteral("import"), text, QStringLiteral("--into"), into};
    QCOMPARE(runCommand(arguments + QStringList({QStringLiteral("-o"), other})).code, 0);
    QCOMPARE(readFile(into), sceneBytes({branchedTab()}));
    const CommandResult added = runCommand(arguments);
    QCOMPARE(added.code, 0);
    QCOMPARE(added.errors, QByteArray());
    QCOMPARE(readFile(into).toHex(), readFile(other).toHex());
    StoryReader reader;
    QCOMPARE(reader.read(into), QString());
    const Story story = reader.story();
    QCOMPARE(story.tabs.size(), std::size_t(2));
    QCOMPARE(told(story.tabs[0]), told(branchedTab()));
    QCOMPARE(told(story.tabs[1]), QStringLiteral("0X."));
}

void tst_Import::damagedStoryIsNotWrittenAnew()
{
    const QString text = folder.put(QStringLiteral("more.md"), "# X\n");
    const QByteArray damaged = sceneBytes({branchedTab()}) + "abc";
    const QString into = folder.put(QStringLiteral("damaged.scene"), damaged);
    const QStringList arguments{QStringLiteral("import"), text, QStringLiteral("--into"), into};
    const QStringList line(QStringLiteral("fablegrid-story: %1: is damaged, as fablegrid-story check tells; "
                                          "with -o to another file it stays as it is")
                               .arg(into));
    const QString force = QStringLiteral("--force");
    const QString output = QStringLiteral("-o");
    for (const QStringList &more : {QStringList(), QStringList(force), QStringList({output, into, force})}) {
        const CommandResult refused = runCommand(arguments + more);
        QCOMPARE(refused.code, 2);
        QCOMPARE(refused.errorLines(), line);
        QCOMPARE(readFile(into), damaged);
    }

    const QString other = folder.path(QStringLiteral("rescued.scene"));
    const CommandResult added = runCommand(arguments + QStringList({output, other}));
    QCOMPARE(added.code, 0);
    QCOMPARE(
        added.errorLines(),
        QStringList(QStringLiteral("fablegrid-story: %1: damaged: bytes behind the last tab, left out: 3")
                        .arg(into)));
    QCOMPARE(readFile(into), damaged);
    StoryReader reader;
    QCOMPARE(reader.read(other), QString());
    QVERIFY(reader.damage().isNone());
    QCOMPARE(reader.story().tabs.size(), std::size_t(2));
}

void tst_Import::nothingIsReplacedUnlessForced()
{
    const QString text = folder.put(QStringLiteral("new.md"), "# X\n");
    const QString there = folder.put(QStringLiteral("there.scene"), "mine");
    const CommandResult result = runCommand({QStringLiteral("import"), text, QStringLiteral("-o"), there});
    QCOMPARE(result.code, 2);
    QCOMPARE(
        result.errorLines(),
        QStringList(QStringLiteral("fablegrid-story: %1: is there already; --force replaces it").arg(there)));
    QCOMPARE(readFile(there), QByteArray("mine"));
}

QTEST_MAIN(tst_Import)
#include "tst_import.moc"
