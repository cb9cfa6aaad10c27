#include "items/latetext.h"

#include "support/testsupport.h"

#include <QtTest>

using namespace Qt::StringLiterals;

class tst_LateText : public TestCase
{
    Q_OBJECT

private slots:
    void nothingIsKeptAtFirst();
    void keptTextAndPlaceAreToldUntilTheTextIsTaken();
    void textIsKeptAsItIs_data();
    void textIsKeptAsItIs();
    void onlyWhatADocumentHoldsUnchangedCanBeKept_data();
    void onlyWhatADocumentHoldsUnchangedCanBeKept();
    void takenTextMakesRoomForNoOther();
    void textThatIsKeptAgainIsLateAgain();
};

void tst_LateText::nothingIsKeptAtFirst()
{
    LateText late;
    QVERIFY(late.isLate());
    QVERIFY(late.text().isNull());
    QVERIFY(late.place().isNull());
    QVERIFY(late.take().isNull());
    QVERIFY(!late.isLate());
}

void tst_LateText::keptTextAndPlaceAreToldUntilTheTextIsTaken()
{
    LateText late;
    late.keep(u"Dawn"_s, QRectF(0, 0, 400, 51));
    QVERIFY(late.isLate());
    QCOMPARE(late.text(), u"Dawn"_s);
    QCOMPARE(late.place(), QRectF(0, 0, 400, 51));
    QCOMPARE(late.take(), u"Dawn"_s);
    QVERIFY(!late.isLate());
    QVERIFY(late.text().isNull());
    QVERIFY(late.place().isNull());
    QVERIFY(late.take().isNull());
}

void tst_LateText::textIsKeptAsItIs_data()
{
    QTest::addColumn<QString>("text");
    QTest::newRow("null") << QString();
    QTest::newRow("empty") << u""_s;
    QTest::newRow("what a document would change") << u"a\r\nb\u00A0c"_s;
}

// A file tells a null title from an empty one.
void tst_LateText::textIsKeptAsItIs()
{
    QFETCH(const QString, text);
    LateText late;
    late.keep(text, QRectF());
    QCOMPARE(late.text(), text);
    QCOMPARE(late.text().isNull(), text.isNull());
    const QString taken = late.take();
    QCOMPARE(taken, text);
    QCOMPARE(taken.isNull(), text.isNull());
}

void tst_LateText::onlyWhatADocumentHoldsUnchangedCanBeKept_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<bool>("can");
    QTest::newRow("null") << QString() << true;
    QTest::newRow("words") << u"She reads the letter."_s << true;
    QTest::newRow("lines") << u"one\n\ttwo"_s << true;
    QTest::newRow("carriage return") << u"one\r\ntwo"_s << false;
    QTest::newRow("no-break space") << u"one\u00A0two"_s << false;
    QTest::newRow("surrogates") << u"\U0001F469"_s << false;
}

void tst_LateText::onlyWhatADocumentHoldsUnchangedCanBeKept()
{
    QFETCH(const QString, text);
    QFETCH(const bool, can);
    QCOMPARE(LateText().canKeep(text), can);
}

// Whoever has a document gives the next text to that.
void tst_LateText::takenTextMakesRoomForNoOther()
{
    LateText late;
    late.take();
    QVERIFY(!late.canKeep(u"Dawn"_s));
}

void tst_LateText::textThatIsKeptAgainIsLateAgain()
{
    LateText late;
    late.keep(u"Dawn"_s, QRectF(0, 0, 1, 1));
    late.take();
    late.keep(u"Dusk"_s, QRectF(0, 0, 2, 2));
    QVERIFY(late.isLate());
    QVERIFY(late.canKeep(u"Noon"_s));
    QCOMPARE(late.text(), u"Dusk"_s);
    QCOMPARE(late.place(), QRectF(0, 0, 2, 2));
}

QTEST_GUILESS_MAIN(tst_LateText)
#include "tst_latetext.moc"
