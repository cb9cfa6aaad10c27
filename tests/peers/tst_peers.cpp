#include "peers/exportedcare.h"

// What programs that nobody here wrote find in exported data and pictures: every title and text, in order.
// Where a program is missing its test is left out, with its name.

class tst_Peers : public QObject
{
    Q_OBJECT

private slots:
    void init() { failOnWarnings(); }

    void xmllintReadsXml_data();
    void xmllintReadsXml();
    void xmllintReadsTextsOfOutlines();
    void xmllintReadsTextsOfPictures();
    void rsvgPaintsPictures();
    void graphvizReadsDot();
    void validatorTakesJson();
    void validatorRefusesOtherJson();
    void sqliteReadsCsv();
    void gitShowsWhatChanged();

private:
    ExportedCare care;
};

void tst_Peers::xmllintReadsXml_data()
{
    QTest::addColumn<QString>("suffix");
    QTest::addColumn<QString>("element");
    QTest::addColumn<int>("count");
    QTest::newRow("html") << QStringLiteral("html") << QStringLiteral("h2") << int(titles().size());
    QTest::newRow("opml") << QStringLiteral("opml") << QStringLiteral("outline") << 1 + int(titles().size());
    QTest::newRow("svg") << QStringLiteral("svg") << QStringLiteral("title") << 1;
}

void tst_Peers::xmllintReadsXml()
{
    NEEDS("xmllint");
    QFETCH(const QString, suffix);
    QFETCH(const QString, element);
    QFETCH(const int, count);
    QString path = care.folder.path(QStringLiteral("picture.svg"));
    if (suffix == QLatin1String("svg"))
        QCOMPARE(runCommand({QStringLiteral("picture"), care.scene, QStringLiteral("-o"), path}).code, 0);
    else
        path = care.exported(suffix);
    const QString counted = QStringLiteral("count(//*[local-name()='%1'])").arg(element);
    const QByteArray number =
        ExportedCare::said(QStringLiteral("xmllint"), {QStringLiteral("--xpath"), counted, path});
    QCOMPARE(number.trimmed(), QByteArray::number(count));
}

void tst_Peers::xmllintReadsTextsOfOutlines()
{
    NEEDS("xmllint");
    const QString path = care.exported(QStringLiteral("opml"));
    const std::vector<StoryEvent> events = careTab().events;
    for (std::size_t i = 0; i < events.size(); ++i) {
        for (const auto &[attribute, expected] :
             {std::pair{"text", events[i].title}, std::pair{"_note", events[i].text()}}) {
            const QString asked =
                QStringLiteral("string((//outline)[%1]/@%2)").arg(i + 2).arg(QLatin1String(attribute));
            QByteArray text =
                ExportedCare::said(QStringLiteral("xmllint"), {QStringLiteral("--xpath"), asked, path});
            text.chop(1); // the end of the line
            QCOMPARE(QString::fromUtf8(text), expected);
        }
    }
}

// A title is cut at the end of its line and of its box, and words that are read from the right stand the
// other way round.
void tst_Peers::xmllintReadsTextsOfPictures()
{
    NEEDS("xmllint");
    const QString path = care.folder.path(QStringLiteral("texts.svg"));
    QCOMPARE(runCommand({QStringLiteral("picture"), care.scene, QStringLiteral("-o"), path}).code, 0);
    const QString all = lettersOnPaper(QString::fromUtf8(ExportedCare::said(
        QStringLiteral("xmllint"),
        {QStringLiteral("--xpath"), QStringLiteral("string(/*[local-name()='svg'])"), path})));
    for (const StoryEvent &event : careTab().events) {
        const QString title = event.title.section(QLatin1Char('\n'), 0, 0).left(20);
        const QStringList words = title.split(u' ') + event.text().split(u' ');
        for (const QString &word : words)
            QVERIFY2(all.contains(lettersOnPaper(word)), qPrintable(word + QLatin1Char('|') + all));
    }
}

void tst_Peers::rsvgPaintsPictures()
{
    NEEDS("rsvg-convert");
    const QString path = care.folder.path(QStringLiteral("painted.svg"));
    QCOMPARE(runCommand({QStringLiteral("picture"), care.scene, QStringLiteral("-o"), path,
                         QStringLiteral("--scale"), QStringLiteral("0.25")})
                 .code,
             0);
    QVERIFY(readFile(path).contains(">0 events</text>")); // text as text
    const QByteArray png = ExportedCare::said(QStringLiteral("rsvg-convert"), {path});
    QVERIFY2(png.startsWith("\x89PNG"), png.left(200).constData());
}

void tst_Peers::graphvizReadsDot()
{
    NEEDS("dot");
    const QByteArray json = ExportedCare::said(
        QStringLiteral("dot"), {QStringLiteral("-Tdot_json"), care.exported(QStringLiteral("dot"))});
    const QJsonObject graph = QJsonDocument::fromJson(json).object();
    QStringList found;
    for (const auto &object : graph[QStringLiteral("objects")].toArray()) {
        if (object.toObject()[QStringLiteral("name")].toString().startsWith(QLatin1String("cluster")))
            continue;
        QString label = object.toObject()[QStringLiteral("label")].toString();
        label.replace(QLatin1String("\\n"), QLatin1String("\n"))
            .replace(QLatin1String("\\\\"), QLatin1String("\\"));
        found << label.replace(QLatin1String("&amp;"), QLatin1String("&"));
    }
    // A backslash and an n are not told apart from the end of a line here.
    QStringList expected = titles(false);
    QCOMPARE(found, expected);
    QCOMPARE(graph[QStringLiteral("edges")].toArray().size(), titles().size() - 1);
}

void tst_Peers::validatorTakesJson()
{
    NEEDS("python3");
    if (ExportedCare::said(QStringLiteral("python3"),
                           {QStringLiteral("-c"), QStringLiteral("import jsonschema")}) != "")
        QSKIP("python3-jsonschema is not installed");
    const QString validate =
        QStringLiteral("import json, sys, jsonschema\n"
                       "story, schema = (json.load(open(name)) for name in sys.argv[1:])\n"
                       "jsonschema.Draft7Validator.check_schema(schema)\n"
                       "jsonschema.validate(story, schema)\n"
                       "events = story['tabs'][0]['events']\n"
                       "print(json.dumps([[e[k] for e in events] for k in ('title', 'description')]))\n");
    const QByteArray read = ExportedCare::said(
        QStringLiteral("python3"), {QStringLiteral("-c"), validate, care.exported(QStringLiteral("json")),
                                    QStringLiteral(FABLEGRID_SCHEMA)});
    QStringList texts;
    for (const StoryEvent &event : careTab().events)
        texts << event.description;
    QCOMPARE(QJsonDocument::fromJson(read).array(),
             (QJsonArray{QJsonArray::fromStringList(titles(false)), QJsonArray::fromStringList(texts)}));
}

void tst_Peers::validatorRefusesOtherJson()
{
    NEEDS("python3");
    if (ExportedCare::said(QStringLiteral("python3"),
                           {QStringLiteral("-c"), QStringLiteral("import jsonschema")}) != "")
        QSKIP("python3-jsonschema is not installed");
    // Each change is made to the whole story, a tab or an event; all that the schema takes are printed.
    const QString validate = QStringLiteral(R"(import copy, json, sys, jsonschema
story, schema = (json.load(open(name)) for name in sys.argv[1:])
validator = jsonschema.Draft7Validator(schema)
def change(path, key, value):
    changed = copy.deepcopy(story)
    place = changed
    for step in path:
        place = place[step]
    if value is change:
        del place[key]
    else:
        place[key] = value
    if validator.is_valid(changed):
        print(path, key, value)
whole, tab, event = [], ['tabs', 0], ['tabs', 0, 'events', 1]
for path in whole, tab, event:
    change(path, 'more', 1)
    place = story
    for step in path:
        place = place[step]
    for key in place:
        change(path, key, change)
        change(path, key, True if key not in ('endOfStory', 'important') else 1)
for key in 'index', 'fedBy':
    for value in -1, 2**31, -2**31 - 1, 0.5, '1':
        change(event, key, value)
change(event, 'index', None)
for key in 'x', 'y':
    for value in '0', '-1', None:
        change(event, key, value)
for key in 'endOfStory', 'important':
    change(event, key, None)
change(whole, 'format', 'story')
change(whole, 'version', 2)
change(tab, 'story', [-1])
change(tab, 'story', [None])
change(tab, 'name', None)
change(tab, 'events', [None])
change(event, 'title', story['tabs'][0]['events'][1]['title'])
)");
    const QByteArray taken = ExportedCare::said(
        QStringLiteral("python3"), {QStringLiteral("-c"), validate, care.exported(QStringLiteral("json")),
                                    QStringLiteral(FABLEGRID_SCHEMA)});
    QCOMPARE(taken, QByteArray("['tabs', 0, 'events', 1] title 0 events\n")); // what it was before
}

void tst_Peers::sqliteReadsCsv()
{
    NEEDS("sqlite3");
    const QString path = care.exported(QStringLiteral("csv"));
    const QByteArray rows = ExportedCare::said(QStringLiteral("sqlite3"), {},
                                               ".import --csv " + path.toUtf8() +
                                                   " events\nselect json_group_array(title) from events;\n"
                                                   "select json_group_array(description) from events;\n");
    const QList<QByteArray> lists = rows.split('\n');
    QStringList texts;
    for (const StoryEvent &event : careTab().events)
        texts << event.text();
    QCOMPARE(QJsonDocument::fromJson(lists.value(0)).array(), QJsonArray::fromStringList(titles(false)));
    QCOMPARE(QJsonDocument::fromJson(lists.value(1)).array(), QJsonArray::fromStringList(texts));
}

// By the two lines of the guide.
void tst_Peers::gitShowsWhatChanged()
{
    NEEDS("git");
    const QString guide = QString::fromUtf8(readFile(QStringLiteral(FABLEGRID_GUIDE)));
    static const QRegularExpression lines(
        QStringLiteral("\n    (\\*\\.scene diff=.*)\n    (git config .*)\n"));
    const QRegularExpressionMatch found = lines.match(guide);
    QVERIFY(found.hasMatch());
    const StoryFolder place;
    place.put(QStringLiteral(".gitattributes"), found.captured(1).toUtf8() + '\n');
    StoryTab tab = branchedTab();
    place.put(QStringLiteral("a novel.scene"), sceneBytes({tab}));
    tab.events[2].title = QStringLiteral("renamed");
    tab.events[9].description = QStringLiteral("rewritten");
    const StoryFolder other;
    const QString changed = other.put(QStringLiteral("new.scene"), sceneBytes({tab}));
    const QString script =
        QStringLiteral("cd \"$1\" && export HOME=$PWD GIT_CONFIG_NOSYSTEM=1 PATH=\"$2\":$PATH &&\n"
                       "git init -q && git add . &&\n"
                       "git -c user.name=x -c user.email=x@x commit -qm x &&\n") +
        found.captured(2) + QStringLiteral(" &&\ncp \"$3\" 'a novel.scene' && git --no-pager diff -U0\n");
    const QString programs = QFileInfo(QStringLiteral(FABLEGRID_STORY_PROGRAM)).path();
    const QByteArray diff =
        ExportedCare::said(QStringLiteral("sh"), {QStringLiteral("-c"), script, QStringLiteral("sh"),
                                                  place.path({}), programs, changed});
    QVERIFY2(diff.contains("\n-C\n+renamed\n") && diff.contains("\n-    text of J\n+    rewritten\n"),
             diff.constData());
}

QTEST_MAIN(tst_Peers)
#include "tst_peers.moc"
