#include "support/testsupport.h"

#include "items/greekedtext.h"

#include <QFont>
#include <QFontMetricsF>
#include <QImage>
#include <QPainter>

using namespace Qt::StringLiterals;

namespace {

constexpr int width = 400;
constexpr int lines = 4;

/// The bars of a text in black on white, at that many pixels for a unit.
QImage barsOf(GreekedText &bars, const QString &text, double scale = 1.0)
{
    const double height = lines * QFontMetricsF(QFont()).height();
    QImage image(qRound(width * scale), qRound(height * scale), QImage::Format_RGB32);
    image.fill(Qt::white);
    QPainter painter(&image);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.scale(scale, scale);
    bars.paint(painter, text, QFont(), QRectF(0, 0, width, height), Qt::black);
    return image;
}

QImage barsOf(const QString &text, double scale = 1.0)
{
    GreekedText bars;
    return barsOf(bars, text, scale);
}

/// How far to the right the bar of that line reaches, in pixels.
int lengthOf(const QImage &image, int line)
{
    const int y = (2 * line + 1) * image.height() / (2 * lines);
    int x = image.width();
    while (x > 0 && qGray(image.pixel(x - 1, y)) == 255)
        --x;
    return x;
}

} // namespace

class tst_GreekedText : public TestCase
{
    Q_OBJECT

private slots:
    void everyLineHasItsBar();
    void linesAreBrokenAtWords();
    void longWordGoesOverManyLines();
    void noTextHasNoBar();
    void barsAreNoMoreThanLinesFit();
    void forgottenTextIsMeasuredAgain();
    void textIsMeasuredOnce();
    void finestBarsMelt();
};

void tst_GreekedText::everyLineHasItsBar()
{
    const QImage image = barsOf(u"a long line of words\nshort\n\nmore words"_s);
    QVERIFY(lengthOf(image, 0) > 2 * lengthOf(image, 1));
    QVERIFY(lengthOf(image, 1) > 0);
    QCOMPARE(lengthOf(image, 2), 0);
    QVERIFY(lengthOf(image, 3) > lengthOf(image, 1));
    // Light between two bars.
    QCOMPARE(qGray(image.pixel(2, image.height() / lines)), 255);
}

void tst_GreekedText::linesAreBrokenAtWords()
{
    const QImage image = barsOf(u"word "_s.repeated(30));
    QVERIFY(lengthOf(image, 0) > width * 3 / 4);
    QVERIFY(lengthOf(image, 0) <= width);
    QVERIFY(lengthOf(image, 1) > width * 3 / 4);
    QVERIFY(lengthOf(image, 3) < lengthOf(image, 0));
    // A word that does not fit any more leaves the rest of the line empty.
    const QImage words = barsOf(QString(40, u'x') + u' ' + QString(40, u'x'));
    const QImage oneWord = barsOf(QString(40, u'x'));
    QCOMPARE(lengthOf(words, 0), lengthOf(oneWord, 0));
    QCOMPARE(lengthOf(words, 1), lengthOf(oneWord, 0));
}

void tst_GreekedText::longWordGoesOverManyLines()
{
    const QImage image = barsOf(QString(1000, u'x'));
    for (int line = 0; line < lines; ++line)
        QVERIFY(lengthOf(image, line) > width * 9 / 10);
}

void tst_GreekedText::noTextHasNoBar()
{
    for (const QString &text : {QString(), u""_s}) {
        for (const double scale : {1.0, 0.05}) {
            const QImage image = barsOf(text, scale);
            for (int line = 0; line < lines; ++line)
                QCOMPARE(lengthOf(image, line), 0);
        }
    }
}

void tst_GreekedText::barsAreNoMoreThanLinesFit()
{
    const QString text = u"word\n"_s.repeated(100);
    QVERIFY(lengthOf(barsOf(text), lines - 1) > 0);

    QImage below(width, qRound(lines * QFontMetricsF(QFont()).height()), QImage::Format_RGB32);
    below.fill(Qt::white);
    QPainter painter(&below);
    GreekedText().paint(painter, text, QFont(), QRectF(0, 0, width, below.height() / 2.0), Qt::black);
    painter.end();
    QVERIFY(lengthOf(below, lines / 2 - 1) > 0);
    QCOMPARE(lengthOf(below, lines / 2), 0);
}

void tst_GreekedText::forgottenTextIsMeasuredAgain()
{
    GreekedText bars;
    const int before = lengthOf(barsOf(bars, u"a word"_s), 0);
    bars.forget();
    QVERIFY(lengthOf(barsOf(bars, u"a word and many more of them"_s), 0) > 2 * before);
}

void tst_GreekedText::textIsMeasuredOnce()
{
    GreekedText bars;
    const QImage first = barsOf(bars, u"a word"_s);
    QCOMPARE(barsOf(bars, u"a word"_s), first);
}

// Lines of less than two pixels each are one grey, as light as their bars would be together.
void tst_GreekedText::finestBarsMelt()
{
    const QString text = QString(1000, u'x');
    const auto greyOf = [](const QImage &image) {
        double sum = 0;
        for (int y = 0; y < image.height(); ++y)
            sum += qGray(image.pixel(image.width() / 2, y));
        return sum / image.height();
    };
    const double bars = greyOf(barsOf(text, 1.0));
    const double melted = greyOf(barsOf(text, 0.06));
    QVERIFY(bars < 250);
    QVERIFY2(std::abs(bars - melted) < 4, qPrintable(u"%1 %2"_s.arg(bars).arg(melted)));
    const QImage fine = barsOf(text, 1.6 / QFontMetricsF(QFont()).height());
    for (int y = 1; y < fine.height() - 1; ++y)
        QCOMPARE(fine.pixel(1, y), fine.pixel(1, 1));
}

QTEST_MAIN(tst_GreekedText)
#include "tst_greekedtext.moc"
