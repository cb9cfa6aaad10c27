#include "story/pdfoutline.h"
#include "story/storydocument.h"
#include "story/storyformat.h"
#include "story/storyformats.h"
#include "story/storysupport.h"

#include <QTextBlock>
#include <QTextDocument>
#include <QXmlStreamReader>

// What stands in the files that stories are exported to. Whether other programs read them so, tests/peers
// asks.

namespace {

/// Three events of the story, a branch of the first one, one that hangs on nothing; texts that each format
/// has to write in its own way.
StoryTab oddTab()
{
    const auto event = [](int index, const QString &title, const QString &description, int feeder) {
        StoryEvent made;
        made.index = index;
        made.title = title;
        made.description = description;
        made.position = QPointF(0.5 * index, 7);
        made.feeder = feeder;
        return made;
    };
    StoryTab tab;
    tab.name = QStringLiteral("Story 1");
    tab.events = {
        event(0, QStringLiteral("A <b> & \"c\" \\"), QStringLiteral("- one\n\n\n[[x]] *y* "), -1),
        event(4, QStringLiteral("\u05D0\U0001F600"), QStringLiteral("Enter description"), 0),
        event(8, QStringLiteral("two\nlines"), QStringLiteral("::a,\"b\"\tc"), 1),
        event(9, QStringLiteral("two\nlines"), QStringLiteral(" d"), 0),
        event(10, QString(), QStringLiteral("e\u2028f"), -1),
    };
    tab.events[2].isEnd = true;
    tab.events[1].isImportant = true;
    tab.joinFed();
    tab.findChain();
    return tab;
}

QString exported(const QString &format, const std::vector<StoryTab> &tabs, bool withBranches = true)
{
    Story story;
    story.tabs = tabs;
    ExportOptions options;
    options.withBranches = withBranches;
    options.name = QStringLiteral("odd");
    QByteArray bytes;
    QBuffer buffer(&bytes);
    buffer.open(QIODevice::WriteOnly);
    StoryFormats::named(format)->write(story, options, buffer);
    return QString::fromUtf8(bytes);
}

} // namespace

class tst_StoryFormats : public TestCase
{
    Q_OBJECT

private slots:
    void formatsAreFoundByName_data();
    void formatsAreFoundByName();
    void textIsWritten_data();
    void textIsWritten();
    void pageIsXmlThatSaysTheSame();
    void styleOfThePageStandsAsItIs();
    void headingIsOneBlock();
    void passagesOfOneTitleAreNumbered();
    void jsonLosesNothing();
    void emptyStoriesAreWritten_data();
    void emptyStoriesAreWritten();
    void bookmarksAreNested();
    void bookmarksOfALongPdfLeadToTheirPages();
};

void tst_StoryFormats::formatsAreFoundByName_data()
{
    QTest::addColumn<QString>("path");
    QTest::addColumn<QString>("name");
    for (const char *name : {"md", "txt", "html", "odt", "pdf", "opml", "json", "csv", "dot", "twee"})
        QTest::newRow(name) << QStringLiteral("a/b.c.") + QLatin1String(name).toString().toUpper()
                            << QString::fromLatin1(name);
    QTest::newRow("markdown") << QStringLiteral("a.markdown") << QStringLiteral("md");
    QTest::newRow("htm") << QStringLiteral("a.htm") << QStringLiteral("html");
    QTest::newRow("gv") << QStringLiteral("a.gv") << QStringLiteral("dot");
    QTest::newRow("tw") << QStringLiteral("a.tw") << QStringLiteral("twee");
    QTest::newRow("none") << QStringLiteral("md") << QString();
    QTest::newRow("another") << QStringLiteral("a.scene") << QString();
}

void tst_StoryFormats::formatsAreFoundByName()
{
    QFETCH(const QString, path);
    QFETCH(const QString, name);
    const StoryFormat *format = StoryFormats::forFile(path);
    QCOMPARE(format ? format->name() : QString(), name);
    QCOMPARE(StoryFormats::named(name), format);
}

void tst_StoryFormats::textIsWritten_data()
{
    QTest::addColumn<QString>("format");
    QTest::addColumn<QString>("expected");
    const auto row = [](const char *format, const QString &expected) {
        QTest::newRow(format) << QString::fromLatin1(format) << expected;
    };
    row("md", QStringLiteral(R"(<!-- fablegrid-story: the headings of the first level are tabs -->

# Story 1

## A \<b\> \& "c" \\

\- one

<br>

\[\[x\]\] \*y\*&#32;

### two&#10;lines

&#32;d

## )") + QStringLiteral("\u05D0\U0001F600") +
                  QStringLiteral(R"(

## two&#10;lines

\::a,"b"&#9;c

<!-- loose -->

##

e&#8232;f
)"));
    row("txt", QStringLiteral(R"(Story 1
=======

A <b> & "c" \

    - one


    [[x]] *y* 

  two lines

       d

)") + QStringLiteral("\u05D0\U0001F600") +
                   QStringLiteral(R"(

two lines

    ::a,"b")") + QStringLiteral("\tc\n\n* * *\n\n\n\n    e\u2028f\n"));
    row("csv",
        QStringLiteral("tab,index,place,title,description,fed_by,end,important,x,y\r\n"
                       "\"Story 1\",0,1,\"A <b> & \"\"c\"\" \\\",\"- one\n\n\n[[x]] *y* \",,0,0,0,7\r\n"
                       "\"Story 1\",4,2,\"\u05D0\U0001F600\",\"\",0,0,1,2,7\r\n"
                       "\"Story 1\",8,3,\"two\nlines\",\"::a,\"\"b\"\"\tc\",4,1,0,4,7\r\n"
                       "\"Story 1\",9,,\"two\nlines\",\" d\",0,0,0,4.5,7\r\n"
                       "\"Story 1\",10,,\"\",\"e\u2028f\",,0,0,5,7\r\n"));
    row("dot", QStringLiteral(R"(digraph "odd" {
rankdir=LR
node [shape=box style="rounded,filled" fillcolor="#D9D9D9"]
subgraph cluster_1 {
label="Story 1"
t1e0 [label="A <b> &amp; \"c\" \\"]
t1e1 [label=")") + QStringLiteral("\u05D0\U0001F600") +
                   QStringLiteral(R"(" fillcolor="#ADD8E6" class="important"]
t1e2 [label="two\nlines" peripheries=2 color="#6A1FD0"]
t1e3 [label="two\nlines"]
t1e4 [label=""]
t1e0 -> t1e1 [penwidth=3]
t1e1 -> t1e2 [penwidth=3]
t1e0 -> t1e3
}
}
)"));
    row("twee", QStringLiteral(R"(:: StoryTitle
odd

:: StoryData
{
    "ifid": "@",
    "start": "A <b> & \"c\" \\"
}

:: A <b> & "c" \\ {"position":"0,7"}
- one


[&#91;x]] *y* 

[[)") + QStringLiteral("\u05D0\U0001F600") +
                    QStringLiteral(R"(]]
[[two lines (2)]]

:: )") + QStringLiteral("\u05D0\U0001F600") +
                    QStringLiteral(R"( [important] {"position":"2,7"}
[[two lines]]

:: two lines [end-of-story] {"position":"4,7","title":"two\nlines"}
&#58;:a,"b")") + QStringLiteral("\tc") +
                    QStringLiteral(R"(

:: two lines (2) {"position":"4.5,7","title":"two\nlines"}
 d

:: Event {"position":"5,7","title":""}
)") + QStringLiteral("e\u2028f\n"));
}

void tst_StoryFormats::textIsWritten()
{
    QFETCH(const QString, format);
    QFETCH(const QString, expected);
    static const QRegularExpression ifid(QStringLiteral("[0-9A-F]{8}(-[0-9A-F]{4}){3}-[0-9A-F]{12}"));
    const QString text = exported(format, {oddTab()});
    QCOMPARE(QString(text).replace(ifid, QStringLiteral("@")), expected);
    QCOMPARE(exported(format, {oddTab()}), text); // the number of a story is its own
}

// Both are read as XML; what the elements and attributes are for, the expected lines say.
void tst_StoryFormats::pageIsXmlThatSaysTheSame()
{
    const auto linesOf = [](const QString &text) {
        QStringList lines;
        QXmlStreamReader xml(text);
        int depth = 0;
        while (!xml.atEnd()) {
            xml.readNext();
            if (xml.isStartElement() && xml.name() == QLatin1String("outline")) {
                QString line = QString(depth++, QLatin1Char('-'));
                for (const QXmlStreamAttribute &attribute : xml.attributes())
                    line += attribute.name().toString() + QLatin1Char('=') + attribute.value().toString() +
                            QLatin1Char('|');
                lines << line;
            } else if (xml.isEndElement() && xml.name() == QLatin1String("outline")) {
                --depth;
            } else if (xml.isStartElement() &&
                       (xml.name().startsWith(u'h') || xml.name() == QLatin1String("p")) &&
                       xml.name() != QLatin1String("html") && xml.name() != QLatin1String("head")) {
                const QString name = xml.name().toString() + QLatin1Char('.') +
                                     xml.attributes().value(QLatin1String("class")).toString();
                lines << name + QLatin1Char(':') +
                             xml.readElementText(QXmlStreamReader::IncludeChildElements);
            }
        }
        return xml.hasError() ? QStringList(xml.errorString()) : lines;
    };
    const QStringList page{
        QStringLiteral("h1.:Story 1"),
        QStringLiteral("h2.:A <b> & \"c\" \\"),
        QStringLiteral("p.:- one"),
        QStringLiteral("p.:"),
        QStringLiteral("p.:"),
        QStringLiteral("p.:[[x]] *y* "),
        QStringLiteral("h3.in1 branch:two\nlines"),
        QStringLiteral("p.in1: d"),
        QStringLiteral("h2.important:\u05D0\U0001F600"),
        QStringLiteral("h2.:two\nlines"),
        QStringLiteral("p.:::a,\"b\"\tc"),
        QStringLiteral("hr.:"),
        QStringLiteral("h2.:"),
        QStringLiteral("p.:e\u2028f"),
    };
    QCOMPARE(linesOf(exported(QStringLiteral("html"), {oddTab()})), page);
    const QStringList outline{
        QStringLiteral("text=Story 1|type=story|"),
        QStringLiteral("-text=A <b> & \"c\" \\|_note=- one\n\n\n[[x]] *y* |"),
        QStringLiteral("--text=two\nlines|_note= d|branch=true|"),
        QStringLiteral("-text=\u05D0\U0001F600|important=true|"),
        QStringLiteral("-text=two\nlines|_note=::a,\"b\"\tc|end=true|"),
        QStringLiteral("-text=|_note=e\u2028f|loose=true|"),
    };
    QCOMPARE(linesOf(exported(QStringLiteral("opml"), {oddTab()})), outline);

    StoryTab broken = oddTab();
    broken.events[0].title = QStringLiteral("a\u0001") + QChar(0xD800) + QChar(0xFFFF) + QChar(u'\0');
    const QString replaced = QStringLiteral("a") + QString(4, QChar(QChar::ReplacementCharacter));
    QCOMPARE(linesOf(exported(QStringLiteral("html"), {broken})).value(1), QStringLiteral("h2.:") + replaced);
    QCOMPARE(linesOf(exported(QStringLiteral("opml"), {broken})).value(1).section(QLatin1Char('|'), 0, 0),
             QStringLiteral("-text=") + replaced);
}

// Its quotation marks were written as entities, which browsers do not read there: the stars and arrows were
// missing.
void tst_StoryFormats::styleOfThePageStandsAsItIs()
{
    const QString page = exported(QStringLiteral("html"), {oddTab()});
    const QString style = page.section(QLatin1String("<style>"), 1).section(QLatin1String("</style>"), 0, 0);
    QVERIFY2(style.contains(QLatin1String(".important::after { content: ' \\2605';")), qPrintable(style));
    QVERIFY2(!style.contains(QLatin1Char('&')), qPrintable(style));
}

// Whatever begins a block in a document ended the heading, and the rest became text.
void tst_StoryFormats::headingIsOneBlock()
{
    StoryTab tab = branchedTab();
    tab.events[0].title = QStringLiteral("a\nb\rc\u2029d") + QChar(0xFDD0) + QLatin1Char('e') + QChar(0xFDD1);
    Story story;
    story.tabs = {tab};
    const auto document = documentOf(story, ExportOptions());
    QCOMPARE(document->findBlockByNumber(1).text(), QStringLiteral("a\u2028b\u2028c\u2028d\u2028e\u2028"));
    QCOMPARE(document->findBlockByNumber(2).text(), QStringLiteral("text of A"));
}

void tst_StoryFormats::passagesOfOneTitleAreNumbered()
{
    StoryTab tab = branchedTab();
    for (int i = 0; i < 3; ++i)
        tab.events[std::size_t(i)].title = QStringLiteral("%1");
    const QString text = exported(QStringLiteral("twee"), {tab});
    for (const char *header : {"\n:: %1 {", "\n:: %1 (2) [", "\n:: %1 (3) {"})
        QVERIFY2(text.contains(QLatin1String(header)), header);
}

void tst_StoryFormats::jsonLosesNothing()
{
    StoryTab tab = oddTab();
    const QString halves = QString(QChar(0xD800)) + QLatin1Char('x') + QChar(0xDC00) + QChar(u'\0');
    const QString marked = QStringLiteral("\uFEFF\uFEFFa\uFEFF"); // readers may drop the first one of a text
    tab.events[0].title = halves;
    tab.events[3].title = marked;
    tab.events[0].position = QPointF(-0.0, 5e-324);
    tab.events[1].position = QPointF(0.1 + 0.2, -1.7e308);
    tab.events[4].title = QString();
    tab.events[4].description = QLatin1String("");
    const QJsonObject document =
        QJsonDocument::fromJson(exported(QStringLiteral("json"), {tab}, false).toUtf8()).object();
    QCOMPARE(document[QStringLiteral("format")].toString(), QStringLiteral("fablegrid-story"));
    const QJsonArray events =
        document[QStringLiteral("tabs")].toArray().at(0).toObject()[QStringLiteral("events")].toArray();
    QCOMPARE(events.size(), 5);
    const auto value = [&events](int place, const char *name) -> QJsonValue {
        return events.at(place).toObject()[QLatin1String(name)];
    };
    QCOMPARE(value(0, "title").toString(), halves);
    QCOMPARE(value(3, "title").toString(), marked);
    QCOMPARE(value(0, "x"), QJsonValue(QStringLiteral("-0")));
    QCOMPARE(value(0, "y").toDouble(), 5e-324);
    QCOMPARE(value(1, "x").toDouble(), 0.1 + 0.2);
    QCOMPARE(value(1, "description").toString(), QStringLiteral("Enter description"));
    QCOMPARE(value(2, "fedBy").toInt(), 4);
    QVERIFY(value(4, "title").isNull());
    QVERIFY(value(4, "description").isString());
}

void tst_StoryFormats::emptyStoriesAreWritten_data()
{
    QTest::addColumn<QString>("format");
    const QStringList names = StoryFormats::names();
    for (const QString &name : names)
        QTest::newRow(qPrintable(name)) << name;
}

void tst_StoryFormats::emptyStoriesAreWritten()
{
    QFETCH(const QString, format);
    const QString none = exported(format, {});
    QVERIFY(!none.isEmpty() || format == QLatin1String("txt")); // where no tab is no line
    QVERIFY(!exported(format, {StoryTab()}).isEmpty());
}

// A PDF of Qt's writer has none by itself.
void tst_StoryFormats::bookmarksAreNested()
{
    const QString pdf = exported(QStringLiteral("pdf"), {oddTab(), branchedTab()});
    QCOMPARE(pdf.count(QLatin1String("/Title <FEFF")), 2 + 5 + 10);
    QCOMPARE(pdf.count(QLatin1String("/Type /Outlines")), 1);
    QVERIFY(pdf.contains(QLatin1String("/Title <FEFF00530074006F0072007900200031>"))); // Story 1
    QVERIFY(pdf.contains(QLatin1String("/Count -5\n")));                               // below the first tab
    QVERIFY(pdf.contains(QLatin1String("/Count -10\n")));
    const QByteArray foreign("%PDF-1.4\nno such thing");
    QCOMPARE(withBookmarks(foreign, {{QStringLiteral("x"), 1, 0, 0}}, 800), foreign);
}

// The layout of a document counts in 25 bits before the point, which 11,000 pages of A4 fill. A longer one
// had a single page.
void tst_StoryFormats::bookmarksOfALongPdfLeadToTheirPages()
{
    constexpr int count = 12000;
    const QString pdf = exported(QStringLiteral("pdf"), std::vector<StoryTab>(count));
    static const QRegularExpression page(QStringLiteral("^(\\d+) 0 obj\\n<<\\n/Type /Page\\n"),
                                         QRegularExpression::MultilineOption);
    static const QRegularExpression target(QStringLiteral("/Dest \\[(\\d+) 0 R /XYZ"));
    const auto numbers = [&pdf](const QRegularExpression &pattern) {
        QStringList all;
        for (auto found = pattern.globalMatch(pdf); found.hasNext();)
            all << found.next().captured(1);
        return all;
    };
    const QStringList pages = numbers(page);
    QCOMPARE(pages.size(), count);
    QCOMPARE(numbers(target), pages);
}

QTEST_MAIN(tst_StoryFormats)
#include "tst_storyformats.moc"
