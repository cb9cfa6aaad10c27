#include "story/storysupport.h"

#include <QImage>
#include <QPainter>
#include <QXmlStreamReader>

// Pictures of the canvas.

class tst_CanvasPicture : public TestCase
{
    Q_OBJECT

private slots:
    void wrongUseIsOneLine_data();
    void wrongUseIsOneLine();
    void pictureIsWhatTheSceneShows();
    void storyLeavesOutTheRest();
    void drawingHoldsTextsAsText();
    void drawingHasTheLettersOfTheCanvas();
    void posterIsCutIntoSheets_data();
    void posterIsCutIntoSheets();
    void sheetsHaveTheLettersOfTheCanvas_data();
    void sheetsHaveTheLettersOfTheCanvas();
    void limitTellsWhatFits();
    void eventsTooFarApartAreRefused();

private:
    /// What the command writes for these options; empty if it fails.
    static QByteArray painted(const QString &scene, const QString &format, const QString &options = {})
    {
        const CommandResult result =
            runCommand(QStringList{QStringLiteral("picture"), scene, QStringLiteral("-o"),
                                   QStringLiteral("-"), QStringLiteral("--format"), format} +
                       options.split(u' ', Qt::SkipEmptyParts));
        return result.code == 0 && result.errors.isEmpty() ? result.output : QByteArray();
    }

    StoryFolder folder;
    QString branched = folder.put(QStringLiteral("branched.scene"), sceneBytes({branchedTab(), StoryTab()}));
};

void tst_CanvasPicture::wrongUseIsOneLine_data()
{
    QTest::addColumn<QString>("arguments");
    QTest::addColumn<QString>("line");
    const auto row = [](const char *arguments, const char *line) {
        QTest::newRow(*arguments ? arguments : "none")
            << QString::fromLatin1(arguments) << QString::fromLatin1(line);
    };
    row("", "one FILE is to be painted, not 0");
    row("@", "where to? -o OUT is missing");
    row("@ -o x.bmp", "x.bmp does not say which format; --format NAME does: png svg pdf");
    row("@ -o x.png --format bmp", "there is no format \"bmp\", only png svg pdf");
    row("@ -o - --format png --scale 0", "--scale 0 is no number above 0");
    row("@ -o - --format png --scale inf", "--scale inf is no number above 0");
    row("@ -o - --format png --tab 3", "@: has no tab 3");
    row("@ -o - --format png --tab 2", "@: there is no event to paint");
    row("@ -o - --format png --tab 2 --story", "@: there is no story to paint");
    row("@ -o - --format png --paper A3", "--paper is for pdf only");
    row("@ -o - --format pdf --pages 2x1", "--pages needs a --paper");
    row("@ -o - --format pdf --paper A9", "--paper is A0 to A6, letter, legal or tabloid, not A9");
    row("@ -o - --format pdf --paper A3 --pages 0x1", "--pages 0x1 is not such as 2x1, from 1x1 to 99x99");
    row("@ -o - --format pdf --paper A3 --scale 2",
        "--scale and --paper do not go together: the sheets are filled");
}

void tst_CanvasPicture::wrongUseIsOneLine()
{
    QFETCH(const QString, arguments);
    QFETCH(QString, line);
    QStringList all = arguments.split(u' ', Qt::SkipEmptyParts);
    all.replaceInStrings(QStringLiteral("@"), branched);
    const CommandResult result = runCommand(QStringList(QStringLiteral("picture")) + all);
    QCOMPARE(result.code, 2);
    QCOMPARE(result.output, QByteArray());
    QCOMPARE(result.errorLines(),
             QStringList(QStringLiteral("fablegrid-story: ") + line.replace(QLatin1Char('@'), branched)));
}

void tst_CanvasPicture::pictureIsWhatTheSceneShows()
{
    MainWindow window;
    window.loadFrom(branched);
    NodegraphScene &scene = *window.views().front()->nodegraphScene();
    QRectF bounds;
    for (const Node *node : scene.nodes())
        bounds |=
            node->sceneBoundingRect() | (node->inLine() ? node->inLine()->sceneBoundingRect() : QRectF());
    bounds.adjust(-50, -50, 50, 50);
    const QImage picture =
        QImage::fromData(painted(branched, QStringLiteral("png"), QStringLiteral("--scale 0.5")));
    QVERIFY(std::abs(picture.width() - bounds.width() / 2) <= 1);
    QVERIFY(std::abs(picture.height() - bounds.height() / 2) <= 1);
    // Painted by the same items, so that not a pixel differs.
    QImage expected(picture.size(), QImage::Format_RGB32);
    expected.fill(scene.backgroundBrush().color());
    QPainter painter(&expected);
    painter.setRenderHint(QPainter::Antialiasing);
    scene.render(&painter, QRectF(QPointF(), bounds.size() / 2), bounds, Qt::IgnoreAspectRatio);
    painter.end();
    QCOMPARE(picture.convertToFormat(QImage::Format_RGB32), expected);
}

void tst_CanvasPicture::storyLeavesOutTheRest()
{
    const QByteArray all = painted(branched, QStringLiteral("svg"));
    const QByteArray story = painted(branched, QStringLiteral("svg"), QStringLiteral("--story"));
    for (const char *text : {"text of A", "text of D", "text of E", "text of I"}) {
        QVERIFY2(all.contains(text), text);
        QCOMPARE(story.contains(text), text[8] == 'A' || text[8] == 'D');
    }
}

void tst_CanvasPicture::drawingHoldsTextsAsText()
{
    StoryTab tab = branchedTab();
    tab.events[0].title = QStringLiteral("<a&b>");
    tab.events[1].description =
        QStringLiteral("c\u0001") + QChar(0xD800) + QChar(0xFFFF) + QStringLiteral("\u05D0");
    const QString odd = folder.put(QStringLiteral("a&b.scene"), sceneBytes({tab}));
    QXmlStreamReader xml(painted(odd, QStringLiteral("svg")));
    QStringList texts;
    QString title;
    while (!xml.atEnd()) {
        xml.readNext();
        if (xml.isStartElement() && xml.name() == QLatin1String("text"))
            texts << xml.readElementText();
        else if (xml.isStartElement() && xml.name() == QLatin1String("title"))
            title = xml.readElementText();
    }
    QVERIFY2(!xml.hasError(), qPrintable(xml.errorString()));
    QCOMPARE(title, QStringLiteral("a&b"));
    QVERIFY(texts.contains(QStringLiteral("<a&b>")));
    QVERIFY(texts.contains(QStringLiteral("text of C")));
}

// The letters were three quarters of their size and closer together than on the canvas.
void tst_CanvasPicture::drawingHasTheLettersOfTheCanvas()
{
    const QByteArray svg = painted(branched, QStringLiteral("svg"));
    const QByteArray description = svg.left(svg.indexOf(">text of A<"));
    const QByteArray element = description.mid(description.lastIndexOf("<text "));
    // 14 points on a screen of 96 to the inch.
    QVERIFY2(element.contains("font-size=\"18.6667\""), element.constData());
    QVERIFY2(element.contains("letter-spacing=\"1.39063\""), element.constData());
}

void tst_CanvasPicture::posterIsCutIntoSheets_data()
{
    QTest::addColumn<QString>("options");
    QTest::addColumn<int>("sheets");
    QTest::newRow("one piece") << QString() << 1;
    QTest::newRow("a sheet") << QStringLiteral("--paper letter") << 1;
    QTest::newRow("six sheets") << QStringLiteral("--paper a3 --pages 3x2") << 6;
}

void tst_CanvasPicture::posterIsCutIntoSheets()
{
    QFETCH(const QString, options);
    QFETCH(const int, sheets);
    const QByteArray pdf = painted(branched, QStringLiteral("pdf"), options);
    QVERIFY(pdf.startsWith("%PDF"));
    QVERIFY(pdf.contains("/Count " + QByteArray::number(sheets) + '\n'));
}

void tst_CanvasPicture::sheetsHaveTheLettersOfTheCanvas_data()
{
    QTest::addColumn<QString>("options");
    QTest::newRow("one piece") << QString();
    QTest::newRow("a sheet") << QStringLiteral("--paper a4");
}

// A shortened title was as large as the resolution of the sheet made it, unlike all the others.
void tst_CanvasPicture::sheetsHaveTheLettersOfTheCanvas()
{
    QFETCH(const QString, options);
    const auto sizesIn = [](const QByteArray &pdf) {
        static const QRegularExpression font(QStringLiteral("/F\\d+ (\\S+) Tf"));
        QStringList sizes;
        for (qsizetype at = pdf.indexOf("stream\n"); at != -1; at = pdf.indexOf("\nstream\n", at)) {
            at = pdf.indexOf('\n', at + 1) + 1;
            const QByteArray packed = pdf.mid(at, pdf.indexOf("endstream", at) - at);
            if (packed[0] != 'x')
                continue;
            const QByteArray lengthAsked("\0\1\0\0", 4);
            const QString content = QString::fromLatin1(qUncompress(lengthAsked + packed));
            for (auto found = font.globalMatch(content); found.hasNext();)
                sizes << found.next().captured(1);
        }
        sizes.sort();
        sizes.removeDuplicates();
        return sizes;
    };
    StoryTab tab = branchedTab();
    tab.events[0].title = QString(60, QLatin1Char('x'));
    const QString shortened = folder.put(QStringLiteral("shortened.scene"), sceneBytes({tab}));
    const QStringList sizes = sizesIn(painted(branched, QStringLiteral("pdf"), options));
    QVERIFY(!sizes.isEmpty());
    QCOMPARE(sizesIn(painted(shortened, QStringLiteral("pdf"), options)), sizes);
}

void tst_CanvasPicture::limitTellsWhatFits()
{
    StoryTab far = branchedTab();
    far.events[5].position = QPointF(99000, 99000);
    const QString scene = folder.put(QStringLiteral("far.scene"), sceneBytes({far}));
    const CommandResult refused =
        runCommand({QStringLiteral("picture"), scene, QStringLiteral("-o"), QStringLiteral("-"),
                    QStringLiteral("--format"), QStringLiteral("png")});
    QCOMPARE(refused.code, 2);
    const QString line = QString::fromUtf8(refused.errors);
    QVERIFY2(line.contains(QStringLiteral("at most 32767 on a side and 268435456 in all fit")),
             qPrintable(line));
    static const QRegularExpression scale(QStringLiteral("which --scale (0\\.\\d+) gives\n$"));
    const QString fitting = scale.match(line).captured(1);
    QVERIFY2(!fitting.isEmpty() && fitting.toDouble() > 0.1, qPrintable(line));
    // The next larger one does not fit.
    const QString larger = QString::number(fitting.toDouble() + 0.01);
    for (const auto &[tried, code] : {std::pair(larger, 2), std::pair(QStringLiteral("0.01"), 0)}) {
        QCOMPARE(
            runCommand({QStringLiteral("picture"), scene, QStringLiteral("-o"), QStringLiteral("-"),
                        QStringLiteral("--format"), QStringLiteral("png"), QStringLiteral("--scale"), tried})
                .code,
            code);
    }
}

// Their bounds had no size that a number can say, and the picture none either.
void tst_CanvasPicture::eventsTooFarApartAreRefused()
{
    StoryTab far = branchedTab();
    far.events[0].position = QPointF(-1.7e308, 0);
    far.events[5].position = QPointF(1.7e308, 1.7e308);
    const QString scene = folder.put(QStringLiteral("farthest.scene"), sceneBytes({far}));
    for (const char *format : {"png", "svg", "pdf"}) {
        const CommandResult refused =
            runCommand({QStringLiteral("picture"), scene, QStringLiteral("-o"), QStringLiteral("-"),
                        QStringLiteral("--format"), QString::fromLatin1(format)});
        QCOMPARE(refused.code, 2);
        QCOMPARE(refused.errorLines(),
                 QStringList(QStringLiteral("fablegrid-story: %1: the events are too far apart for a picture")
                                 .arg(scene)));
    }
}

QTEST_MAIN(tst_CanvasPicture)
#include "tst_canvaspicture.moc"
