#include "items/textmeasure.h"

#include "items/randomtexts.h"
#include "items/stlineedit.h"
#include "items/titlelook.h"
#include "support/testsupport.h"

#include <QFontDatabase>
#include <QTextDocument>
#include <QtTest>

using namespace Qt::StringLiterals;

namespace {

constexpr double margin = 15;

QSizeF sizeOfADocument(const QString &text, const QFont &font, double textWidth)
{
    QTextDocument document;
    document.setDefaultFont(font);
    document.setDocumentMargin(margin);
    document.setTextWidth(textWidth);
    document.setPlainText(text);
    return {std::max(textWidth, document.idealWidth()), document.size().height()};
}

} // namespace

class tst_TextMeasure : public QObject
{
    Q_OBJECT

private slots:
    void init() { failOnWarnings(); }

    void sizeIsThatOfADocumentOfItsOwn_data();
    void sizeIsThatOfADocumentOfItsOwn();
    void lettersOfOtherFontsCount_data();
    void lettersOfOtherFontsCount();
    void nothingIsMeasuredInAPause();
};

void tst_TextMeasure::sizeIsThatOfADocumentOfItsOwn_data()
{
    QTest::addColumn<QFont>("font");
    QTest::addColumn<double>("textWidth");
    QTest::newRow("description") << STLineEdit::textFont() << 400.0;
    QTest::newRow("description in a narrow place") << STLineEdit::textFont() << 90.0;
    QTest::newRow("place of margins only") << STLineEdit::textFont() << 30.0;
    QTest::newRow("title") << TitleLook::font() << -1.0;
    QTest::newRow("wrapped title") << TitleLook::font() << 300.0;
}

// One text after the other, so that none leaves anything behind.
void tst_TextMeasure::sizeIsThatOfADocumentOfItsOwn()
{
    QFETCH(QFont, font);
    QFETCH(double, textWidth);
    RandomTexts random(5);
    for (int i = 0; i < 60; ++i) {
        for (const QString &text :
             {random.prose(), random.plainProse(), random.signs(u"aV\n \t", 300), u""_s,
              random.signs(u"abcde", 60), random.signs(u"ffi AVT.\u00E9\u017F\u00A0\u00ADx\u007Fy\u2028", 30),
              u"One\nTwo\n"_s}) {
            const QSizeF size = TextMeasure::documentSize(text, font, textWidth, margin);
            QVERIFY2(size == sizeOfADocument(text, font, textWidth), qPrintable(text));
        }
    }
}

void tst_TextMeasure::lettersOfOtherFontsCount_data()
{
    QTest::addColumn<QString>("family");
    const QStringList families = QFontDatabase::families();
    for (const QString &family : families)
        QTest::newRow(qPrintable(family)) << family;
}

// A letter that a font has not got comes from another one, whose lines may be higher.
void tst_TextMeasure::lettersOfOtherFontsCount()
{
    QFETCH(QString, family);
    QFont font(family, 14);
    font.setLetterSpacing(QFont::AbsoluteSpacing, 1.4);
    for (char16_t letter = 0xc0; letter < 0x180; ++letter) {
        const QString text = u"From "_s + QChar(letter) + u" to "_s + QChar(letter);
        for (int i = 0; i < 2; ++i)
            for (const double textWidth : {200.0, -1.0})
                QCOMPARE(TextMeasure::documentSize(text, font, textWidth, margin),
                         sizeOfADocument(text, font, textWidth));
    }
}

void tst_TextMeasure::nothingIsMeasuredInAPause()
{
    const QSizeF size = TextMeasure::documentSize(u"Dawn"_s, STLineEdit::textFont(), 400, margin);
    QVERIFY(size.height() > 2 * margin);
    {
        const TextMeasure::Pause pause;
        QCOMPARE(TextMeasure::documentSize(u"Dawn"_s, STLineEdit::textFont(), 400, margin), QSizeF(0, 0));
    }
    QCOMPARE(TextMeasure::documentSize(u"Dawn"_s, STLineEdit::textFont(), 400, margin), size);
}

QTEST_MAIN(tst_TextMeasure)
#include "tst_textmeasure.moc"
