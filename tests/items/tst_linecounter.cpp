#include "items/linecounter.h"

#include "items/randomtexts.h"
#include "support/testsupport.h"

#include <QFontDatabase>
#include <QFontMetricsF>
#include <QTextBlock>
#include <QTextDocument>
#include <QtTest>

#include <cmath>
#include <numeric>

using namespace Qt::StringLiterals;

namespace {

constexpr double lineWidth = 370;

bool isExhaustive() { return qEnvironmentVariableIntValue("FABLEGRID_EXHAUSTIVE") == 1; }

QFont spaced(const QString &family, int size, double spacing)
{
    QFont font(family, size);
    font.setLetterSpacing(QFont::AbsoluteSpacing, spacing);
    return font;
}

QFont usualFont() { return spaced(u"Titillium Web"_s, 14, 1.4); }

/// Asks the text engine itself.
class Engine
{
public:
    explicit Engine(const QFont &font, double width = lineWidth)
    {
        document.setUndoRedoEnabled(false);
        document.setDefaultFont(font);
        document.setDocumentMargin(0);
        document.setTextWidth(width);
    }
    int linesOf(const QString &text)
    {
        document.setPlainText(text);
        document.size(); // lays it out
        int lines = 0;
        for (QTextBlock block = document.begin(); block.isValid(); block = block.next())
            lines += block.layout()->lineCount();
        return lines;
    }

private:
    QTextDocument document;
};

} // namespace

class tst_LineCounter : public QObject
{
    Q_OBJECT

private slots:
    void init() { failOnWarnings(); }

    void linesAreThoseOfTheEngine_data();
    void linesAreThoseOfTheEngine();
    void linesEndWhereTheEngineEndsThem_data();
    void linesEndWhereTheEngineEndsThem();
    void signsHoldTogetherAsTheEngineHoldsThem();
    void proseIsCounted();
    void countingGoesOnWhenThereIsNoRoomForMoreLetters();
    void onlyTheEngineCanTell_data();
    void onlyTheEngineCanTell();
};

void tst_LineCounter::linesAreThoseOfTheEngine_data()
{
    QTest::addColumn<QFont>("font");
    QTest::addColumn<double>("width");
    QStringList families = QFontDatabase::families();
    families.prepend(u"Titillium Web"_s);
    for (const QString &family : families) {
        for (const int size : {9, 14, 31}) {
            QTest::addRow("%s, %d", qPrintable(family), size)
                << spaced(family, size, 1.4) << (size == 9 ? 222.5 : lineWidth);
        }
    }
    QFont slanted = usualFont();
    slanted.setItalic(true);
    QTest::newRow("slanted") << slanted << lineWidth;
    QTest::newRow("narrower") << spaced(u"DejaVu Serif"_s, 14, -0.7) << lineWidth;
}

void tst_LineCounter::linesAreThoseOfTheEngine()
{
    QFETCH(QFont, font);
    QFETCH(double, width);
    LineCounter counter(font, width);
    Engine engine(font, width);
    const QString family = font.family();
    RandomTexts random(std::accumulate(family.begin(), family.end(), quint32(font.pointSize()),
                                       [](quint32 sum, QChar sign) { return 31 * sum + sign.unicode(); }));
    const int rounds = isExhaustive() ? 3000 : 60;
    for (int i = 0; i < rounds; ++i) {
        for (const QString &text :
             {random.prose(), random.prose(), random.signs(u"abTAVy.,:;!?-'\"()123\u00E4\u201C\u201D\n", 60),
              random.signs(u"aV.-1 \n", 200), random.signs(u"a1(,) ", 60), random.signs(u"a1(,)3:- ", 25),
              random.signs(u"aT1,'. ", 90), random.signs(u"aT12,. ", 300), random.signs(u"bT1: ", 300),
              random.anything()}) {
            if (const std::optional<int> lines = counter.linesOf(text))
                QVERIFY2(*lines == engine.linesOf(text), qPrintable(text));
        }
    }
}

void tst_LineCounter::linesEndWhereTheEngineEndsThem_data()
{
    QTest::addColumn<QFont>("font");
    QTest::addColumn<QString>("text");
    const QString letters = u"of half a leaf if off roof fad dad off all of it VAW off fluff"_s;
    for (const char *family : {"Titillium Web", "DejaVu Serif", "Nimbus Roman", "Z003"}) {
        QFont font = spaced(QString::fromLatin1(family), 14, 1.4);
        QTest::addRow("%s", family) << font << letters;
        font.setItalic(true);
        font.setLetterSpacing(QFont::AbsoluteSpacing, 0.1);
        QTest::addRow("%s, slanted", family) << font << letters;
    }
    QTest::newRow("numbers") << usualFont() << u"In 12 of (12) 1,500 steps, 1649.5 and .5 or 3:45"_s;
    QTest::newRow("number behind a letter in parentheses") << usualFont() << u"In 12 of (a12) 1,500 steps"_s;
    QTest::newRow("number before a letter in parentheses") << usualFont() << u"In 12 of (12a) 1,500 steps"_s;
    QTest::newRow("spaces") << usualFont() << u"One  two   three    four     five      six"_s;
    QTest::newRow("spaces behind") << usualFont() << u"One two three   \nfour five six  "_s;
    QTest::newRow("signs") << usualFont()
                           << u"\u201CWho?\u201D - keeper's and/or (his) to-day \u2013 well\u2026 no!"_s;
}

void tst_LineCounter::linesEndWhereTheEngineEndsThem()
{
    QFETCH(QFont, font);
    QFETCH(QString, text);
    for (double width = 60; width < 320; width += 0.25) {
        LineCounter counter(font, width);
        if (const std::optional<int> lines = counter.linesOf(text))
            QVERIFY2(*lines == Engine(font, width).linesOf(text), qPrintable(QString::number(width)));
    }
}

// All sequences of a few signs, each at widths where a line ends before, among or behind them.
void tst_LineCounter::signsHoldTogetherAsTheEngineHoldsThem()
{
    const QString signs = u"a1\".!()-/\u2014\u2026 "_s;
    const QFont font = usualFont();
    const double letter = QFontMetricsF(font).horizontalAdvance(u'a');
    const int length = isExhaustive() ? 4 : 3;
    const int sequences = int(std::pow(signs.size(), length));
    for (const double width : {3.5 * letter, 5 * letter, 6.5 * letter}) {
        LineCounter counter(font, width);
        Engine engine(font, width);
        for (int sequence = 0; sequence < sequences; ++sequence) {
            QString text = u"aa"_s;
            for (int rest = sequence; text.size() < 2 + length; rest /= int(signs.size()))
                text += signs.at(rest % int(signs.size()));
            text += u"aa"_s;
            if (const std::optional<int> lines = counter.linesOf(text))
                QVERIFY2(*lines == engine.linesOf(text), qPrintable(text));
        }
    }
}

void tst_LineCounter::proseIsCounted()
{
    LineCounter counter(usualFont(), lineWidth);
    RandomTexts random(7);
    for (int i = 0; i < 300; ++i)
        counter.linesOf(random.plainProse());
    int counted = 0;
    for (int i = 0; i < 100; ++i)
        counted += counter.linesOf(random.plainProse()) ? 1 : 0;
    QVERIFY2(counted > 90, qPrintable(QString::number(counted)));
}

// What is known is still told.
void tst_LineCounter::countingGoesOnWhenThereIsNoRoomForMoreLetters()
{
    LineCounter counter(usualFont(), lineWidth);
    const QString text = u"The tide turns."_s;
    while (!counter.linesOf(text)) {
    }
    RandomTexts random(3);
    for (int i = 0; i < 8000; ++i)
        counter.linesOf(random.signs(u"abcdefghijklmnopqrstuvwxyzABCDEFGHIJKLMNOPQRSTUVWXYZ", 40));
    QCOMPARE(counter.linesOf(text), 1);
}

void tst_LineCounter::onlyTheEngineCanTell_data()
{
    QTest::addColumn<QString>("text");
    QTest::newRow("tab") << u"a\tb"_s;
    QTest::newRow("no letter") << u"123"_s;
    QTest::newRow("space in front") << u" a"_s;
    QTest::newRow("a line of spaces") << u"a"_s + QString(200, u' ');
    QTest::newRow("a sign behind a space") << u"a ."_s;
    QTest::newRow("no-break space") << u"a\u00A0b"_s;
    QTest::newRow("another script") << u"\u0430"_s;
    QTest::newRow("emoji") << u"a \U0001F600"_s;
    QTest::newRow("word longer than a line") << QString(200, u'm');
    QTest::newRow("paragraph that the engine splits") << u"a "_s.repeated(2500) + u"a"_s;
}

void tst_LineCounter::onlyTheEngineCanTell()
{
    QFETCH(QString, text);
    LineCounter counter(usualFont(), lineWidth);
    for (int i = 0; i < 3; ++i) // what is unknown at first may be known at last
        QVERIFY(!counter.linesOf(text));
    LineCounter unspaced(QFont(u"Titillium Web"_s, 14), lineWidth);
    for (int i = 0; i < 3; ++i)
        QVERIFY(!unspaced.linesOf(u"The tide"));
}

QTEST_MAIN(tst_LineCounter)
#include "tst_linecounter.moc"
