#include "peers/exportedcare.h"

#include <QXmlStreamReader>

#include <algorithm>

// What programs that nobody here wrote find in exported documents: every title and text, in order. Where a
// program is missing its test is left out, with its name.

namespace {

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

class tst_PeerDocuments : public QObject
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

private:
    static StoryTab tabOfManyPages();

    ExportedCare care;
};

void tst_PeerDocuments::pandocReadsDocuments_data()
{
    QTest::addColumn<QString>("suffix");
    QTest::addColumn<QString>("reader");
    QTest::newRow("md") << QStringLiteral("md") << QStringLiteral("commonmark");
    QTest::newRow("html") << QStringLiteral("html") << QStringLiteral("html");
    QTest::newRow("odt") << QStringLiteral("odt") << QStringLiteral("odt");
}

void tst_PeerDocuments::pandocReadsDocuments()
{
    NEEDS("pandoc");
    QFETCH(const QString, suffix);
    QFETCH(const QString, reader);
    QStringList expected{QStringLiteral("Story 1"), QString()};
    for (const StoryEvent &event : careTab().events)
        expected << squeezed(event.title) << squeezed(event.text());
    const QByteArray json =
        ExportedCare::said(QStringLiteral("pandoc"), {QStringLiteral("-f"), reader, QStringLiteral("-t"),
                                                      QStringLiteral("json"), care.exported(suffix)});
    QCOMPARE(PandocText::of(json), expected);
}

// It takes titles of outlines for HTML, which the format leaves open.
void tst_PeerDocuments::pandocReadsTitlesOfOutlines()
{
    NEEDS("pandoc");
    static const QRegularExpression markup(QStringLiteral("[<$~^`\\\\#]"));
    QStringList found;
    const QStringList lines = PandocText::of(ExportedCare::said(
        QStringLiteral("pandoc"), {QStringLiteral("-f"), QStringLiteral("opml"), QStringLiteral("-t"),
                                   QStringLiteral("json"), care.exported(QStringLiteral("opml"))}));
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

void tst_PeerDocuments::popplerReadsPdf()
{
    NEEDS("pdftotext");
    const QString path = care.exported(QStringLiteral("pdf"));
    const QByteArray info = ExportedCare::said(QStringLiteral("pdfinfo"), {path});
    QVERIFY2(info.contains("care\n") && info.contains("(A4)"), info.constData());
    const QByteArray text = ExportedCare::said(
        QStringLiteral("pdftotext"), {QStringLiteral("-raw"), path, QStringLiteral("-")}); // keeps hyphens
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
    const QByteArray xml =
        ExportedCare::said(QStringLiteral("pdftohtml"),
                           {QStringLiteral("-xml"), QStringLiteral("-i"), QStringLiteral("-stdout"), path});
    QStringList bookmarks;
    QXmlStreamReader items(xml.mid(xml.indexOf("<outline>")));
    while (!items.atEnd()) {
        if (items.readNextStartElement() && items.name() == QLatin1String("item"))
            bookmarks << items.readElementText();
    }
    QCOMPARE(bookmarks, QStringList(QStringLiteral("Story 1")) + titles());
}

// Texts of every length before them, so that some headings just miss the end of a page.
StoryTab tst_PeerDocuments::tabOfManyPages()
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

void tst_PeerDocuments::popplerFindsHeadingsWhereTheirBookmarksLead()
{
    NEEDS("pdftohtml");
    const QString headings =
        care.folder.put(QStringLiteral("headings.scene"), sceneBytes({tabOfManyPages()}));
    const QString pdf = care.folder.path(QStringLiteral("headings.pdf"));
    QCOMPARE(runCommand({QStringLiteral("export"), headings, QStringLiteral("-o"), pdf}).code, 0);
    const QString xml = QString::fromUtf8(
        ExportedCare::said(QStringLiteral("pdftohtml"),
                           {QStringLiteral("-xml"), QStringLiteral("-i"), QStringLiteral("-stdout"), pdf}));
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

void tst_PeerDocuments::popplerFindsNumbersOfPages_data()
{
    QTest::addColumn<QString>("paper");
    QTest::addColumn<QByteArray>("size");
    QTest::newRow("A4") << QStringLiteral("A4") << QByteArray("595 x 842 pts (A4)");
    QTest::newRow("letter") << QStringLiteral("letter") << QByteArray("612 x 792 pts (letter)");
}

void tst_PeerDocuments::popplerFindsNumbersOfPages()
{
    NEEDS("pdftotext");
    QFETCH(const QString, paper);
    QFETCH(const QByteArray, size);
    const QString pages = care.folder.put(QStringLiteral("pages.scene"), sceneBytes({tabOfManyPages()}));
    const QString pdf = care.folder.path(QStringLiteral("pages-%1.pdf").arg(paper));
    QCOMPARE(runCommand({QStringLiteral("export"), pages, QStringLiteral("-o"), pdf,
                         QStringLiteral("--paper"), paper})
                 .code,
             0);
    const QByteArray info = ExportedCare::said(QStringLiteral("pdfinfo"), {pdf});
    QVERIFY2(info.contains(size), info.constData());
    const QByteArray text = ExportedCare::said(QStringLiteral("pdftotext"),
                                               {QStringLiteral("-layout"), pdf, QStringLiteral("-")});
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

void tst_PeerDocuments::pythonFindsSheetsOfDocuments_data()
{
    QTest::addColumn<QString>("paper");
    QTest::addColumn<QByteArray>("size");
    QTest::newRow("A4") << QStringLiteral("A4") << QByteArray("595pt 842pt 1\n");
    QTest::newRow("letter") << QStringLiteral("letter") << QByteArray("612pt 792pt 1\n");
}

// The last number says how often a page shows its own.
void tst_PeerDocuments::pythonFindsSheetsOfDocuments()
{
    NEEDS("python3");
    QFETCH(const QString, paper);
    QFETCH(const QByteArray, size);
    const QString odt = care.folder.path(QStringLiteral("sheet-%1.odt").arg(paper));
    QCOMPARE(runCommand({QStringLiteral("export"), care.scene, QStringLiteral("-o"), odt,
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
    QCOMPARE(ExportedCare::said(QStringLiteral("python3"), {QStringLiteral("-c"), look, odt}), size);
}

QTEST_MAIN(tst_PeerDocuments)
#include "tst_peerdocuments.moc"
