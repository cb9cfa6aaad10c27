#include "support/testsupport.h"

#include "items/eventdata.h"
#include "items/node.h"
#include "items/nodedata.h"
#include "items/stlineedit.h"
#include "items/stnodename.h"
#include "scene/nodegraphscene.h"

#include <QBuffer>
#include <QDataStream>
#include <QGraphicsScene>
#include <QImage>
#include <QPainter>
#include <QSignalSpy>
#include <QTextDocument>

#include <random>

using namespace Qt::StringLiterals;

// Texts that get their document when they are needed: nobody but the clock can tell them from the others.

namespace {

/// The text item as it is, without asking for a whole one.
STLineEdit *textIn(const EventData &event) { return dynamic_cast<STLineEdit *>(event.childItems().first()); }

/// Its control is the one child that a text item has.
bool isMade(const STLineEdit *text) { return !text->children().isEmpty(); }

QString randomText(std::mt19937 &random)
{
    static const QStringList pieces = {u"a"_s,      u"event"_s, u" "_s,  u" "_s,   u"\n"_s, u"."_s,  u"-"_s,
                                       u"Wörter"_s, u"\t"_s,    u"长"_s, u"קטן"_s, u","_s,  u"WWW"_s};
    QString text;
    const auto length = random() % 120;
    for (unsigned i = 0; i < length; ++i)
        text += pieces.at(qsizetype(random() % unsigned(pieces.size())));
    return text;
}

/// A scene with one event whose text is made when needed, and whoever listens to it.
struct LateDescription
{
    LateDescription() { scene.addItem(event); }

    QGraphicsScene scene;
    EventData *event = new EventData(nullptr, TextMaking::whenNeeded);
    STLineEdit *text = textIn(*event);
    QSignalSpy changes{event, &EventData::s_isChanged};
};

} // namespace

class tst_LateTexts : public TestCase
{
    Q_OBJECT

private slots:
    void sizeAndTextAreThoseOfAMadeText_data();
    void sizeAndTextAreThoseOfAMadeText();
    void sizeOfRandomTexts();
    void measuredTextKeepsItsPlaceWhenItIsMade();
    void whoeverReachesForItGetsItWhole_data();
    void whoeverReachesForItGetsItWhole();
    void windowThatComesToTheFrontMakesNothing();
    void changesAreReportedAlike();
    void loadedTextIsReportedOnceAndSavedAgain();
    void keyGoesIntoTheText();
    void firstPressRemovesThePlaceholder();
    void presenceIsThatOfAMadeText();
    void textThatADocumentWouldChangeIsMadeAtOnce();
    void titleIsThatOfAMadeOne_data();
    void titleIsThatOfAMadeOne();
    void titleIsWholeForWhoeverReachesForIt();
    void nodeHasItsSizeBeforeItsTextIsMade();
    void copyOfAPayloadHasTheText();
};

void tst_LateTexts::sizeAndTextAreThoseOfAMadeText_data()
{
    QTest::addColumn<QString>("text");
    QTest::newRow("empty") << u""_s;
    QTest::newRow("null") << QString();
    QTest::newRow("placeholder") << u"Enter description"_s;
    QTest::newRow("one line") << u"She reads the letter."_s;
    QTest::newRow("wrapped")
        << u"The keeper's daughter reads the letter that was never meant for her. "_s.repeated(6);
    QTest::newRow("line breaks") << u"one\ntwo\n\nfour\n"_s;
    QTest::newRow("wider than the panel") << QString(90, u'W');
    QTest::newRow("tabs") << u"a\tb\tc"_s;
    QTest::newRow("accents") << u"Dörfer, größer, naïve, Łódź"_s;
    QTest::newRow("Chinese") << u"灯塔看守人的女儿读了那封信"_s.repeated(5);
    QTest::newRow("Hebrew") << u"שומר המגדלור"_s;
    QTest::newRow("emoji") << u"a \U0001F469\u200D\U0001F680 b"_s;
    QTest::newRow("no-break space") << u"a\u00A0b"_s;
    QTest::newRow("line separator") << u"a\u2028b"_s;
    QTest::newRow("carriage return") << u"a\r\nb\rc"_s;
}

void tst_LateTexts::sizeAndTextAreThoseOfAMadeText()
{
    QFETCH(const QString, text);
    EventData atOnce(nullptr);
    EventData late(nullptr, TextMaking::whenNeeded);
    QCOMPARE(late.boundingRect(), atOnce.boundingRect());
    atOnce.setDescription(text);
    late.setDescription(text);
    QCOMPARE(late.boundingRect(), atOnce.boundingRect());
    QCOMPARE(late.getDescription(), atOnce.getDescription());
    QCOMPARE(late.descriptionItem()->toPlainText(), atOnce.descriptionItem()->toPlainText());
    QCOMPARE(late.boundingRect(), atOnce.boundingRect());
    QCOMPARE(late.descriptionItem()->defaultTextColor(), atOnce.descriptionItem()->defaultTextColor());
}

void tst_LateTexts::sizeOfRandomTexts()
{
    std::mt19937 random(20);
    EventData atOnce(nullptr);
    for (int i = 0; i < 300; ++i) {
        const QString text = randomText(random);
        EventData late(nullptr, TextMaking::whenNeeded);
        atOnce.setDescription(text);
        late.setDescription(text);
        QVERIFY2(late.boundingRect() == atOnce.boundingRect(), qPrintable(text));
    }
}

void tst_LateTexts::measuredTextKeepsItsPlaceWhenItIsMade()
{
    EventData source(nullptr);
    source.setDescription(u"A text that needs more than one line in a panel of this width, surely."_s);
    EventData late(nullptr, TextMaking::whenNeeded);
    late.setMeasuredDescription(source.getDescription(), source.boundingRect());
    QVERIFY(!isMade(textIn(late)));
    QCOMPARE(late.boundingRect(), source.boundingRect());
    late.descriptionItem();
    QCOMPARE(late.boundingRect(), source.boundingRect());
    QCOMPARE(late.getDescription(), source.getDescription());
}

void tst_LateTexts::whoeverReachesForItGetsItWhole_data()
{
    QTest::addColumn<QString>("way");
    for (const char *way : {"asked for", "painted", "focused", "pressed", "new width"})
        QTest::newRow(way) << QString::fromLatin1(way);
}

void tst_LateTexts::whoeverReachesForItGetsItWhole()
{
    QFETCH(const QString, way);
    LateDescription late;
    late.event->setDescription(u"Dawn"_s);
    QVERIFY(!isMade(late.text));
    if (way == u"asked for") {
        QCOMPARE(late.event->descriptionItem(), late.text);
    } else if (way == u"painted") {
        QImage image(100, 100, QImage::Format_RGB32);
        QPainter painter(&image);
        late.scene.render(&painter);
    } else if (way == u"focused") {
        QEvent activate(QEvent::WindowActivate);
        QCoreApplication::sendEvent(&late.scene, &activate);
        late.text->setFocus();
    } else if (way == u"pressed") {
        SceneMouse{late.scene}.press(QPointF(20, 20));
    } else {
        late.text->setTextWidth(200);
        QCOMPARE(late.text->boundingRect().width(), 200.0);
    }
    QVERIFY(isMade(late.text));
    QCOMPARE(late.text->toPlainText(), u"Dawn"_s);
    QCOMPARE(late.changes.count(), 0);
}

// Every item of a scene hears of it, so that one click on the window made ten thousand texts.
void tst_LateTexts::windowThatComesToTheFrontMakesNothing()
{
    LateDescription late;
    for (const QEvent::Type type : {QEvent::WindowActivate, QEvent::WindowDeactivate}) {
        QEvent event(type);
        QCoreApplication::sendEvent(&late.scene, &event);
        late.scene.sendEvent(late.text, &event);
    }
    QVERIFY(!isMade(late.text));
}

void tst_LateTexts::changesAreReportedAlike()
{
    LateDescription late;
    late.text->setText(u"Dawn"_s);
    QCOMPARE(late.changes.count(), 1);
    late.text->setText(u"Dawn"_s);
    QCOMPARE(late.changes.count(), 1);
    late.event->setDescription(u"Dusk"_s);
    QCOMPARE(late.changes.count(), 1);
    late.text->setText(u"Dawn"_s); // what was reported last
    QCOMPARE(late.changes.count(), 1);
    late.text->setText(u"Noon"_s);
    QCOMPARE(late.changes.count(), 2);
    QVERIFY(!isMade(late.text));
}

void tst_LateTexts::loadedTextIsReportedOnceAndSavedAgain()
{
    QByteArray bytes;
    QDataStream written(&bytes, QIODevice::WriteOnly);
    written << u"A loaded text"_s;
    LateDescription late;
    QDataStream in(bytes);
    late.event->sl_openFromFile(in);
    QCOMPARE(late.changes.count(), 1);
    QByteArray saved;
    QDataStream out(&saved, QIODevice::WriteOnly);
    late.event->sl_saveToFile(out);
    QCOMPARE(saved, bytes);
    QVERIFY(!isMade(late.text));
}

void tst_LateTexts::keyGoesIntoTheText()
{
    LateDescription late;
    late.event->setDescription(u"awn"_s);
    QEvent activate(QEvent::WindowActivate);
    QCoreApplication::sendEvent(&late.scene, &activate);
    late.text->setFocus();
    QKeyEvent key(QEvent::KeyPress, Qt::Key_D, Qt::NoModifier, u"D"_s);
    QCoreApplication::sendEvent(&late.scene, &key);
    QCOMPARE(late.event->getDescription(), u"Dawn"_s);
    QCOMPARE(late.changes.count(), 1);
}

void tst_LateTexts::firstPressRemovesThePlaceholder()
{
    LateDescription late;
    SceneMouse{late.scene}.press(QPointF(20, 20));
    QCOMPARE(late.event->getDescription(), QString());
}

void tst_LateTexts::presenceIsThatOfAMadeText()
{
    LateDescription late;
    const QPainterPath before = late.text->shape();
    const auto contains = [&late](double x, double y) { return late.text->contains(QPointF(x, y)); };
    QVERIFY(contains(399, 1));
    QVERIFY(!contains(401, 1));
    QCOMPARE(late.scene.itemAt(QPointF(20, 20), QTransform()), late.text);
    late.event->descriptionItem();
    QCOMPARE(late.text->shape().boundingRect(), before.boundingRect());
    QVERIFY(contains(399, 1));
    QVERIFY(!contains(401, 1));
    QCOMPARE(late.scene.itemAt(QPointF(20, 20), QTransform()), late.text);
}

void tst_LateTexts::textThatADocumentWouldChangeIsMadeAtOnce()
{
    LateDescription late;
    late.event->setDescription(u"a\r\nb"_s);
    QVERIFY(isMade(late.text));
    QCOMPARE(late.event->getDescription(), late.text->toPlainText());
}

void tst_LateTexts::titleIsThatOfAMadeOne_data()
{
    QTest::addColumn<QString>("title");
    QTest::newRow("default") << u"Event"_s;
    QTest::newRow("empty") << QString();
    QTest::newRow("accents") << u"Dörfer am Meer"_s;
    QTest::newRow("Chinese") << u"灯塔看守人"_s;
    QTest::newRow("longer than the header") << u"The keeper's daughter reads the letter "_s.repeated(4);
    QTest::newRow("of two lines") << u"First\nSecond"_s;
    QTest::newRow("no-break space") << u"a\u00A0b"_s;
    std::mt19937 random(7);
    for (int i = 0; i < 100; ++i)
        QTest::addRow("random %d", i) << randomText(random).left(int(random() % 60));
}

void tst_LateTexts::titleIsThatOfAMadeOne()
{
    QFETCH(const QString, title);
    STNodeName atOnce(nullptr);
    STNodeName late(nullptr, TextMaking::whenNeeded);
    for (STNodeName *name : {&atOnce, &late}) {
        name->setTitle(title);
        name->setAvailableWidth(425);
    }
    const auto compare = [&atOnce, &late] {
        QCOMPARE(late.title(), atOnce.title());
        QCOMPARE(late.boundingRect(), atOnce.boundingRect());
        QCOMPARE(late.shape().boundingRect(), atOnce.shape().boundingRect());
        QCOMPARE(late.toolTip(), atOnce.toolTip());
    };
    compare();
    late.make();
    compare();
    QCOMPARE(late.toPlainText(), atOnce.toPlainText());
    QCOMPARE(late.font(), atOnce.font());
    QCOMPARE(late.defaultTextColor(), atOnce.defaultTextColor());
    QCOMPARE(late.flags(), atOnce.flags());
    QCOMPARE(late.textInteractionFlags(), atOnce.textInteractionFlags());
}

void tst_LateTexts::titleIsWholeForWhoeverReachesForIt()
{
    NodegraphScene scene;
    Node *node = scene.restoreNode({}, 0, 0, nullptr, u"Dawn"_s, TextMaking::whenNeeded);
    QEvent activate(QEvent::WindowActivate);
    QCoreApplication::sendEvent(&scene, &activate);
    SceneMouse{scene}.press(QPointF(25, 15)); // selects it all
    QKeyEvent key(QEvent::KeyPress, Qt::Key_D, Qt::NoModifier, u"D"_s);
    QCoreApplication::sendEvent(&scene, &key);
    QCOMPARE(node->title(), u"D"_s);
    QCOMPARE(node->nameItem()->toPlainText(), u"D"_s);
}

void tst_LateTexts::nodeHasItsSizeBeforeItsTextIsMade()
{
    const QString text = u"Words that fill some lines of the panel. "_s.repeated(9);
    Node atOnce(0);
    Node late(0, TextMaking::whenNeeded);
    atOnce.payload()->eventContent()->setDescription(text);
    late.payload()->eventContent()->setDescription(text);
    QCOMPARE(late.boundingRect(), atOnce.boundingRect());
    QCOMPARE(late.title(), atOnce.title());
    late.payload()->eventContent()->descriptionItem();
    QCOMPARE(late.boundingRect(), atOnce.boundingRect());
}

void tst_LateTexts::copyOfAPayloadHasTheText()
{
    NodeData data(0, nullptr);
    data.eventContent()->setDescription(u"Kept"_s);
    const std::unique_ptr<NodeData> copy(data.clone());
    QCOMPARE(copy->eventContent()->getDescription(), u"Kept"_s);
    QCOMPARE(copy->boundingRect(), data.boundingRect());
    QCOMPARE(copy->eventContent()->descriptionItem()->toPlainText(), u"Kept"_s);
}

QTEST_MAIN(tst_LateTexts)
#include "tst_latetexts.moc"
