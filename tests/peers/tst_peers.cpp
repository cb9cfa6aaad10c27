#include "story/storysupport.h"

#include <QProcess>
#include <QStandardPaths>
#include <QXmlStreamReader>

#include <algorithm>

// What programs that nobody here wrote find in the exported files: every title and text, in order. Where a
// program is missing its test is left out, with its name.

namespace {

/// Titles and texts that one format or the other has to take care of.
StoryTab careTab()
{
    const std::vector<std::pair<QString, QString>> texts{
        {QStringLiteral("Start & <b>go</b>"),
         QStringLiteral(
             "It *begins* with _markup_ & \"quotes\" \\ #x\n- no list\n1. nor this\n    nor code\n> nor "
             "quote")},
        {QStringLiteral("0 events"), QStringLiteral("Emoji \U0001F600 \U0001F9D9\u200D\u2640\uFE0F")},
        {QStringLiteral("[[link->x|y]] {t} ::"),
         QStringLiteral("::no passage\n[[nor a link]]\n<script>alert(1)</script>\n&amp; &lt;")},
        {QStringLiteral("\u05E9\u05DC\u05D5\u05DD"), QStringLiteral("\u0645\u0631\u062D\u0628\u0627 a")},
        {QString(10000, QLatin1Char('x')), QStringLiteral("a\u2028b\tc")},
        {QStringLiteral("C:\\N \\G $math$ ~~s~~ ^u^ @cite `code` a_b_c"),
         QStringLiteral("+ plus\n~~~\n```\n: def\n| t | x |\n% p\n=set\n---\n***\n\n\nafter")},
        {QStringLiteral("# no heading #"), QStringLiteral("Enter description")},
        {QStringLiteral("two\nlines"), QStringLiteral("the end")},
    };
    StoryTab tab;
    for (const auto &[title, text] : texts) {
        StoryEvent event;
        event.index = int(tab.events.size());
        event.feeder = event.index - 1;
        event.title = title;
        event.description = text;
        event.position = QPointF(300.0 * event.index, 100);
        tab.events.push_back(event);
    }
    tab.events.back().isEnd = true;
    tab.events[2].isImportant = true;
    tab.joinFed();
    tab.findChain();
    return tab;
}

/// Readers of documents do not tell how white a space was.
QString squeezed(QString text) { return text.replace(QLatin1Char('\n'), QLatin1Char(' ')).simplified(); }

QStringList titles(bool isSqueezed = true)
{
    QStringList all;
    for (const StoryEvent &event : careTab().events)
        all << (isSqueezed ? squeezed(event.title) : event.title);
    return all;
}

/// What a sheet of paper still tells of a text: letters, without how they are joined, white space and what
/// the fonts at hand may not have.
QString lettersOnPaper(const QString &text)
{
    static const QRegularExpression gone(QStringLiteral("[\\s\\x{202A}-\\x{202E}\\x{200D}\\x{FE0F}]"),
                                         QRegularExpression::UseUnicodePropertiesOption);
    QString letters = text.normalized(QString::NormalizationForm_KC).remove(gone);
    letters.removeIf([](QChar unit) { return unit.isSurrogate(); });
    return letters;
}

/// Headings and, below each, its text, as pandoc's own description of a document tells them.
class PandocText
{
public:
    static QStringList of(const QByteArray &json)
    {
        QStringList lines;
        for (const auto &block : QJsonDocument::fromJson(json).object()[QStringLiteral("blocks")].toArray()) {
            const QString type = block.toObject()[QStringLiteral("t")].toString();
            const QString text = inlines(block.toObject()[QStringLiteral("c")]);
            if (type == QLatin1String("Header"))
                lines << text << QString();
            else if (!lines.isEmpty() && type != QLatin1String("RawBlock"))
                lines.last() += QLatin1Char(' ') + text;
        }
        for (QString &line : lines)
            line = squeezed(line);
        return lines;
    }

private:
    static QString inlines(const QJsonValue &value)
    {
        if (value.isArray()) {
            QString all;
            for (const auto &part : value.toArray())
                all += inlines(part);
            return all;
        }
        if (!value.isObject())
            return {};
        const QJsonObject part = value.toObject();
        const QJsonValue content = part.value(QStringLiteral("c"));
        if (part.value(QStringLiteral("t")).toString() == QLatin1String("Str"))
            return content.toString();
        return content.isUndefined() ? QStringLiteral(" ") : inlines(content); // of a space nothing is told
    }
};

} // namespace

class tst_Peers : public QObject
{
    Q_OBJECT

private slots:
    void init() { failOnWarnings(); }

    void pandocReadsDocuments_data();
    void pandocReadsDocuments();
    void pandocReadsTitlesOfOutlines();
    void popplerReadsPdf();
    void popplerFindsHeadingsWhereTheirBookmarksLead();
    void popplerFindsNumbersOfPages_data();
    void popplerFindsNumbersOfPages();
    void pythonFindsSheetsOfDocuments_data();
    void pythonFindsSheetsOfDocuments();
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
    QString exported(const QString &suffix)
    {
        const QString path = folder.path(QStringLiteral("care.") + suffix);
        const CommandResult result = runCommand(
            {QStringLiteral("export"), scene, QStringLiteral("-o"), path, QStringLiteral("--force")});
        return result.code == 0 ? path : QString::fromUtf8(result.errors);
    }

    /// What the program prints; what it complains of if it fails.
    static QByteArray said(const QString &program, const QStringList &arguments, const QByteArray &input = {})
    {
        QProcess process;
        process.start(program, arguments);
        process.write(input);
        process.closeWriteChannel();
        constexpr int patience = 100000; // milliseconds
        if (!process.waitForFinished(patience) || process.exitCode() != 0)
            return "FAILED: " + process.readAllStandardError();
        return process.readAllStandardOutput();
    }

    static StoryTab tabOfManyPages();

    StoryFolder folder;
    QString scene = folder.put(QStringLiteral("care.scene"), sceneBytes({careTab()}));
};

#define NEEDS(program)                                                                                       \
    if (QStandardPaths::findExecutable(QStringLiteral(program)).isEmpty())                                   \
    QSKIP(program " is not installed")

void tst_Peers::pandocReadsDocuments_data()
{
    QTest::addColumn<QString>("suffix");
    QTest::addColumn<QString>("reader");
    QTest::newRow("md") << QStringLiteral("md") << QStringLiteral("commonmark");
    QTest::newRow("html") << QStringLiteral("html") << QStringLiteral("html");
    QTest::newRow("odt") << QStringLiteral("odt") << QStringLiteral("odt");
}

void tst_Peers::pandocReadsDocuments()
{
    NEEDS("pandoc");
    QFETCH(const QString, suffix);
    QFETCH(const QString, reader);
    QStringList expected{QStringLiteral("Story 1"), QString()};
    for (const StoryEvent &event : careTab().events)
        expected << squeezed(event.title) << squeezed(event.text());
    const QByteArray json =
        said(QStringLiteral("pandoc"),
             {QStringLiteral("-f"), reader, QStringLiteral("-t"), QStringLiteral("json"), exported(suffix)});
    QCOMPARE(PandocText::of(json), expected);
}

// It takes titles of outlines for HTML, which the format leaves open.
void tst_Peers::pandocReadsTitlesOfOutlines()
{
    NEEDS("pandoc");
    static const QRegularExpression markup(QStringLiteral("[<$~^`\\\\#]"));
    QStringList found;
    const QStringList lines = PandocText::of(
        said(QStringLiteral("pandoc"), {QStringLiteral("-f"), QStringLiteral("opml"), QStringLiteral("-t"),
                                        QStringLiteral("json"), exported(QStringLiteral("opml"))}));
    for (qsizetype i = 0; i < lines.size(); i += 2)
        found << lines[i];
    QStringList expected{QStringLiteral("Story 1")};
    for (const QString &title : titles()) {
        if (!title.contains(markup))
            expected << title;
    }
    for (const QString &title : expected) {
        const qsizetype at = found.indexOf(title);
        QVERIFY2(at != -1, qPrintable(title.left(100)));
        found = found.mid(at + 1);
    }
}

void tst_Peers::popplerReadsPdf()
{
    NEEDS("pdftotext");
    const QString path = exported(QStringLiteral("pdf"));
    const QByteArray info = said(QStringLiteral("pdfinfo"), {path});
    QVERIFY2(info.contains("care\n") && info.contains("(A4)"), info.constData());
    const QByteArray text = said(QStringLiteral("pdftotext"),
                                 {QStringLiteral("-raw"), path, QStringLiteral("-")}); // keeps hyphens
    static const QRegularExpression pageEnd(QStringLiteral("\n\\d+\\s*\f"));
    QString rest = lettersOnPaper(QString::fromUtf8(text).remove(pageEnd));
    const auto takeNext = [&rest](const QString &wanted) {
        const QString letters = lettersOnPaper(wanted);
        const QString next = rest.left(letters.size());
        rest = rest.mid(letters.size());
        if (!wanted.isRightToLeft())
            return next == letters;
        const QStringList words = wanted.split(u' '); // their order is that of the paper
        return std::all_of(words.begin(), words.end(),
                           [&next](const QString &word) { return next.contains(lettersOnPaper(word)); });
    };
    QVERIFY(takeNext(QStringLiteral("Story 1")));
    for (const StoryEvent &event : careTab().events) {
        QVERIFY2(takeNext(event.title), qPrintable(event.title.left(100)));
        QVERIFY2(takeNext(event.text()), qPrintable(event.text() + QLatin1Char('|') + rest.left(100)));
    }
    QCOMPARE(rest, QString());
    const QByteArray xml = said(QStringLiteral("pdftohtml"), {QStringLiteral("-xml"), QStringLiteral("-i"),
                                                              QStringLiteral("-stdout"), path});
    QStringList bookmarks;
    QXmlStreamReader items(xml.mid(xml.indexOf("<outline>")));
    while (!items.atEnd()) {
        if (items.readNextStartElement() && items.name() == QLatin1String("item"))
            bookmarks << items.readElementText();
    }
    QCOMPARE(bookmarks, QStringList(QStringLiteral("Story 1")) + titles());
}

// Texts of every length before them, so that some headings just miss the end of a page.
StoryTab tst_Peers::tabOfManyPages()
{
    StoryTab tab;
    for (int i = 0; i < 150; ++i) {
        StoryEvent event;
        event.title = QStringLiteral("Heading %1 of many").arg(i);
        event.description =
            QStringLiteral("The tide turns and the keeper counts. ").repeated(1 + i * 37 % 90);
        event.index = i;
        event.position = QPointF(500.0 * i, 0);
        if (i > 0)
            event.feeder = i - 1;
        event.isEnd = i == 149;
        tab.events.push_back(event);
    }
    return tab;
}

void tst_Peers::popplerFindsHeadingsWhereTheirBookmarksLead()
{
    NEEDS("pdftohtml");
    const QString headings = folder.put(QStringLiteral("headings.scene"), sceneBytes({tabOfManyPages()}));
    const QString pdf = folder.path(QStringLiteral("headings.pdf"));
    QCOMPARE(runCommand({QStringLiteral("export"), headings, QStringLiteral("-o"), pdf}).code, 0);
    const QString xml =
        QString::fromUtf8(said(QStringLiteral("pdftohtml"), {QStringLiteral("-xml"), QStringLiteral("-i"),
                                                             QStringLiteral("-stdout"), pdf}));
    static const QRegularExpression item(
        QStringLiteral("<item page=\"(\\d+)\">(Heading \\d+ of many)</item>"));
    int found = 0;
    for (auto items = item.globalMatch(xml); items.hasNext(); ++found) {
        const QRegularExpressionMatch one = items.next();
        const qsizetype page = xml.indexOf(QStringLiteral("<page number=\"%1\"").arg(one.captured(1)));
        const qsizetype heading = xml.indexOf(one.captured(2), page);
        QVERIFY2(page != -1 && heading != -1 && heading < xml.indexOf(QStringLiteral("</page>"), page),
                 qPrintable(one.captured()));
    }
    QCOMPARE(found, 150);
}

void tst_Peers::popplerFindsNumbersOfPages_data()
{
    QTest::addColumn<QString>("paper");
    QTest::addColumn<QByteArray>("size");
    QTest::newRow("A4") << QStringLiteral("A4") << QByteArray("595 x 842 pts (A4)");
    QTest::newRow("letter") << QStringLiteral("letter") << QByteArray("612 x 792 pts (letter)");
}

void tst_Peers::popplerFindsNumbersOfPages()
{
    NEEDS("pdftotext");
    QFETCH(const QString, paper);
    QFETCH(const QByteArray, size);
    const QString pages = folder.put(QStringLiteral("pages.scene"), sceneBytes({tabOfManyPages()}));
    const QString pdf = folder.path(QStringLiteral("pages-%1.pdf").arg(paper));
    QCOMPARE(runCommand({QStringLiteral("export"), pages, QStringLiteral("-o"), pdf,
                         QStringLiteral("--paper"), paper})
                 .code,
             0);
    const QByteArray info = said(QStringLiteral("pdfinfo"), {pdf});
    QVERIFY2(info.contains(size), info.constData());
    const QByteArray text =
        said(QStringLiteral("pdftotext"), {QStringLiteral("-layout"), pdf, QStringLiteral("-")});
    QStringList last;
    for (const QByteArray &page : text.split('\f'))
        last << QString::fromUtf8(page.trimmed().split('\n').last().trimmed());
    QCOMPARE(last.takeLast(), QString()); // behind the end of the last page
    QVERIFY(last.size() > 10);
    QStringList numbers;
    for (int i = 1; i <= last.size(); ++i)
        numbers << QString::number(i);
    QCOMPARE(last, numbers);
    QVERIFY(info.contains("Pages:") && info.contains(' ' + QByteArray::number(last.size()) + '\n'));
}

void tst_Peers::pythonFindsSheetsOfDocuments_data()
{
    QTest::addColumn<QString>("paper");
    QTest::addColumn<QByteArray>("size");
    QTest::newRow("A4") << QStringLiteral("A4") << QByteArray("595pt 842pt 1\n");
    QTest::newRow("letter") << QStringLiteral("letter") << QByteArray("612pt 792pt 1\n");
}

// The last number says how often a page shows its own.
void tst_Peers::pythonFindsSheetsOfDocuments()
{
    NEEDS("python3");
    QFETCH(const QString, paper);
    QFETCH(const QByteArray, size);
    const QString odt = folder.path(QStringLiteral("sheet-%1.odt").arg(paper));
    QCOMPARE(runCommand({QStringLiteral("export"), scene, QStringLiteral("-o"), odt,
                         QStringLiteral("--paper"), paper})
                 .code,
             0);
    const QString look = QStringLiteral(
        "import sys, zipfile, xml.etree.ElementTree as tree\n"
        "name = '{urn:oasis:names:tc:opendocument:xmlns:%s:1.0}%s'\n"
        "styles = tree.fromstring(zipfile.ZipFile(sys.argv[1]).read('styles.xml'))\n"
        "sheet = next(styles.iter(name % ('style', 'page-layout-properties')))\n"
        "numbers = list(styles.iter(name % ('text', 'page-number')))\n"
        "fo = 'xsl-fo-compatible'\n"
        "print(sheet.get(name % (fo, 'page-width')), sheet.get(name % (fo, 'page-height')), len(numbers))\n");
    QCOMPARE(said(QStringLiteral("python3"), {QStringLiteral("-c"), look, odt}), size);
}

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
    QString path = folder.path(QStringLiteral("picture.svg"));
    if (suffix == QLatin1String("svg"))
        QCOMPARE(runCommand({QStringLiteral("picture"), scene, QStringLiteral("-o"), path}).code, 0);
    else
        path = exported(suffix);
    const QString counted = QStringLiteral("count(//*[local-name()='%1'])").arg(element);
    const QByteArray number = said(QStringLiteral("xmllint"), {QStringLiteral("--xpath"), counted, path});
    QCOMPARE(number.trimmed(), QByteArray::number(count));
}

void tst_Peers::xmllintReadsTextsOfOutlines()
{
    NEEDS("xmllint");
    const QString path = exported(QStringLiteral("opml"));
    const std::vector<StoryEvent> events = careTab().events;
    for (std::size_t i = 0; i < events.size(); ++i) {
        for (const auto &[attribute, expected] :
             {std::pair{"text", events[i].title}, std::pair{"_note", events[i].text()}}) {
            const QString asked =
                QStringLiteral("string((//outline)[%1]/@%2)").arg(i + 2).arg(QLatin1String(attribute));
            QByteArray text = said(QStringLiteral("xmllint"), {QStringLiteral("--xpath"), asked, path});
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
    const QString path = folder.path(QStringLiteral("texts.svg"));
    QCOMPARE(runCommand({QStringLiteral("picture"), scene, QStringLiteral("-o"), path}).code, 0);
    const QString all = lettersOnPaper(QString::fromUtf8(
        said(QStringLiteral("xmllint"),
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
    const QString path = folder.path(QStringLiteral("painted.svg"));
    QCOMPARE(runCommand({QStringLiteral("picture"), scene, QStringLiteral("-o"), path,
                         QStringLiteral("--scale"), QStringLiteral("0.25")})
                 .code,
             0);
    QVERIFY(readFile(path).contains(">0 events</text>")); // text as text
    const QByteArray png = said(QStringLiteral("rsvg-convert"), {path});
    QVERIFY2(png.startsWith("\x89PNG"), png.left(200).constData());
}

void tst_Peers::graphvizReadsDot()
{
    NEEDS("dot");
    const QByteArray json =
        said(QStringLiteral("dot"), {QStringLiteral("-Tdot_json"), exported(QStringLiteral("dot"))});
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
    if (said(QStringLiteral("python3"), {QStringLiteral("-c"), QStringLiteral("import jsonschema")}) != "")
        QSKIP("python3-jsonschema is not installed");
    const QString validate =
        QStringLiteral("import json, sys, jsonschema\n"
                       "story, schema = (json.load(open(name)) for name in sys.argv[1:])\n"
                       "jsonschema.Draft7Validator.check_schema(schema)\n"
                       "jsonschema.validate(story, schema)\n"
                       "events = story['tabs'][0]['events']\n"
                       "print(json.dumps([[e[k] for e in events] for k in ('title', 'description')]))\n");
    const QByteArray read =
        said(QStringLiteral("python3"), {QStringLiteral("-c"), validate, exported(QStringLiteral("json")),
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
    if (said(QStringLiteral("python3"), {QStringLiteral("-c"), QStringLiteral("import jsonschema")}) != "")
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
    const QByteArray taken =
        said(QStringLiteral("python3"), {QStringLiteral("-c"), validate, exported(QStringLiteral("json")),
                                         QStringLiteral(FABLEGRID_SCHEMA)});
    QCOMPARE(taken, QByteArray("['tabs', 0, 'events', 1] title 0 events\n")); // what it was before
}

void tst_Peers::sqliteReadsCsv()
{
    NEEDS("sqlite3");
    const QString path = exported(QStringLiteral("csv"));
    const QByteArray rows = said(QStringLiteral("sqlite3"), {},
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
    const QByteArray diff = said(QStringLiteral("sh"), {QStringLiteral("-c"), script, QStringLiteral("sh"),
                                                        place.path({}), programs, changed});
    QVERIFY2(diff.contains("\n-C\n+renamed\n") && diff.contains("\n-    text of J\n+    rewritten\n"),
             diff.constData());
}

QTEST_MAIN(tst_Peers)
#include "tst_peers.moc"
