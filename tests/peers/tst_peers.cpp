#include "story/storysupport.h"

#include <QProcess>
#include <QStandardPaths>

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
    void xmllintReadsXml_data();
    void xmllintReadsXml();
    void rsvgPaintsPictures();
    void graphvizReadsDot();
    void validatorTakesJson();
    void sqliteReadsCsv();

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
    const QByteArray text = said(QStringLiteral("pdftotext"), {path, QStringLiteral("-")});
    QString rest = QString::fromUtf8(text).remove(QRegularExpression(QStringLiteral("\\s")));
    for (const StoryEvent &event : careTab().events) {
        // The one is broken over lines, the numbers of pages among them; the other is turned round.
        const bool isAscii = event.title.toLatin1() == event.title.toUtf8();
        if (!isAscii || event.title.size() > 1000)
            continue;
        const QString wanted = squeezed(event.title).remove(QLatin1Char(' '));
        const qsizetype at = rest.indexOf(wanted);
        QVERIFY2(at != -1, qPrintable(event.title));
        rest = rest.mid(at + wanted.size());
    }
    const QByteArray xml = said(QStringLiteral("pdftohtml"), {QStringLiteral("-xml"), QStringLiteral("-i"),
                                                              QStringLiteral("-stdout"), path});
    const qsizetype outline = xml.indexOf("<outline>");
    QVERIFY(outline != -1);
    QCOMPARE(xml.mid(outline).count("<item "), 1 + titles().size());
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
    const QString validate =
        QStringLiteral("import json, sys, jsonschema\n"
                       "story, schema = (json.load(open(name)) for name in sys.argv[1:])\n"
                       "jsonschema.Draft7Validator.check_schema(schema)\n"
                       "jsonschema.validate(story, schema)\n"
                       "print(json.dumps([e['title'] for e in story['tabs'][0]['events']]))\n");
    if (said(QStringLiteral("python3"), {QStringLiteral("-c"), QStringLiteral("import jsonschema")}) != "")
        QSKIP("python3-jsonschema is not installed");
    const QByteArray read =
        said(QStringLiteral("python3"), {QStringLiteral("-c"), validate, exported(QStringLiteral("json")),
                                         QStringLiteral(FABLEGRID_SCHEMA)});
    QCOMPARE(QJsonDocument::fromJson(read).array(), QJsonArray::fromStringList(titles(false)));
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

QTEST_MAIN(tst_Peers)
#include "tst_peers.moc"
