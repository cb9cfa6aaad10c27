#include "items/stlineedit.h"

#include "items/itemtest.h"
#include "items/resizeobserver.h"
#include "support/testsupport.h"

#include <QInputMethodEvent>
#include <QTextBlock>
#include <QTextDocument>
#include <QTextOption>

#include <functional>

namespace {

const QString placeholder = QStringLiteral("Enter description");
const QString longLine = QStringLiteral("It rained so long that the harbour, the road and at last the hill "
                                        "behind the church were under water, and still nobody came.");
const QColor panelColor("#F5F5F5");
const QColor inkColor("#343434");

/// A description in a window, on black.
struct TextDesk : Desk
{
    STLineEdit *text;

    TextDesk()
    {
        scene.setBackgroundBrush(Qt::black);
        text = new STLineEdit(placeholder, 400.0, nullptr);
        scene.addItem(text);
        text->setPos(100, 100);
    }

    QPointF middle() const { return text->sceneBoundingRect().center(); }
    QImage image() { return painted(scene, text->sceneBoundingRect()); }
};

/// The panel must cover the text, whatever its size.
QRectF textArea(const STLineEdit &text)
{
    const QTextDocument *document = text.document();
    return {0, 0, qMax(document->textWidth(), document->idealWidth()), document->size().height()};
}

/// A parent that writes down what it hears, with the outline of its text at that moment.
class Listener : public QGraphicsRectItem, public ResizeObserver
{
public:
    STLineEdit *text = nullptr;
    QStringList heard;

    void aboutToResize() override { note(QStringLiteral("before")); }
    void resized() override { note(QStringLiteral("after")); }

private:
    void note(const QString &when)
    {
        if (text)
            heard << QStringLiteral("%1 %2").arg(when).arg(text->boundingRect().height());
    }
};

QTextOption wholeWords()
{
    QTextOption option;
    option.setWrapMode(QTextOption::WordWrap);
    return option;
}

using Edit = std::function<void(TextDesk &)>;

} // namespace

Q_DECLARE_METATYPE(Edit)

class tst_STLineEdit : public TestCase
{
    Q_OBJECT

private slots:
    void hasNoMethodsOfItsOwn();
    void isATextToEditInPlace();
    void freshTextIsThePlaceholderInTheColourOfText();
    void freshPanelIsAsWideAsAsked();
    void panelIsPaintedFocusedOrNot_data();
    void panelIsPaintedFocusedOrNot();
    void firstClickRemovesThePlaceholder();
    void clickOnAPlaceholderThatWasTypedRemovesItToo();
    void clickLeavesOtherTextsAlone();
    void placeholderIsComparedExactly_data();
    void placeholderIsComparedExactly();
    void emptyTextStaysEmptyWhenLeft();
    void leavingClearsTheSelection();
    void setTextReplacesTheText_data();
    void setTextReplacesTheText();
    void panelCoversTheTextAtOnce_data();
    void panelCoversTheTextAtOnce();
    void listenersSeeTheNewOutline();
    void returnAndEnterBreakTheLine_data();
    void returnAndEnterBreakTheLine();
    void longLineWrapsAtTheTextWidth();
    void wordThatDoesNotFitWidensThePanel();
    void textWidthCanBeChanged();
    void panelGrowsAgainWhenTheFocusIsLost();
    void rectCanBeSetAndComesBack();
    void emptyRectGivesTheBaseOutline_data();
    void emptyRectGivesTheBaseOutline();
    void parentHearsOfANewSizeBeforeAndAfter();
    void grownPanelIsFoundWhereItIsPainted();
    void panelOfAGivenSizeIsRepaintedThere();
};

void tst_STLineEdit::hasNoMethodsOfItsOwn()
{
    QCOMPARE(ownMethods(STLineEdit::staticMetaObject), QStringList());
    QCOMPARE(STLineEdit::staticMetaObject.superClass(), &QGraphicsTextItem::staticMetaObject);
}

void tst_STLineEdit::isATextToEditInPlace()
{
    QGraphicsRectItem parent;
    const auto *text = new STLineEdit(placeholder, 400.0, &parent);
    QCOMPARE(text->parentItem(), &parent);
    QCOMPARE(int(text->textInteractionFlags()), 19);
    QCOMPARE(text->font().family(), QStringLiteral("Titillium Web"));
    QCOMPARE(text->font().pointSize(), 14);
    QCOMPARE(text->font().weight(), QFont::Normal);
    QCOMPARE(text->font().italic(), false);
    QCOMPARE(text->font().letterSpacingType(), QFont::AbsoluteSpacing);
    QVERIFY(qAbs(text->font().letterSpacing() - 1.4) < 1.0 / 64); // fonts keep it in 64ths
    QCOMPARE(text->document()->documentMargin(), 15.0);
    QCOMPARE(text->document()->textWidth(), 400.0);
}

void tst_STLineEdit::freshTextIsThePlaceholderInTheColourOfText()
{
    TextDesk desk;
    QCOMPARE(desk.text->toPlainText(), placeholder);
    QCOMPARE(desk.text->defaultTextColor(), inkColor);
    QVERIFY(hasColor(desk.image(), inkColor));
}

void tst_STLineEdit::freshPanelIsAsWideAsAsked()
{
    const STLineEdit text(placeholder, 400.0, nullptr);
    QCOMPARE(text.boundingRect().topLeft(), QPointF(0, 0));
    QCOMPARE(text.boundingRect().width(), 400.0);
    QCOMPARE(text.boundingRect(), textArea(text));
    const STLineEdit narrow(placeholder, 250.0, nullptr);
    QCOMPARE(narrow.boundingRect().width(), 250.0);
}

void tst_STLineEdit::panelIsPaintedFocusedOrNot_data()
{
    QTest::addColumn<bool>("focused");
    QTest::newRow("not focused") << false;
    QTest::newRow("focused") << true;
}

void tst_STLineEdit::panelIsPaintedFocusedOrNot()
{
    QFETCH(bool, focused);
    TextDesk desk;
    if (focused)
        desk.edit(desk.text);
    const QImage image = desk.image();
    QCOMPARE(image.pixelColor(0, 0), QColor(Qt::black)); // rounded
    QCOMPARE(image.pixelColor(399, 0), QColor(Qt::black));
    for (int x = 8; x < 392; ++x)
        QCOMPARE(image.pixelColor(x, 0), panelColor); // no frame
    for (int y = 8; y < image.height() - 8; ++y) {
        QCOMPARE(image.pixelColor(0, y), panelColor);
        QCOMPARE(image.pixelColor(399, y), panelColor);
    }
    QVERIFY(hasColor(image, inkColor));
}

void tst_STLineEdit::firstClickRemovesThePlaceholder()
{
    TextDesk desk;
    desk.click(desk.middle());
    QVERIFY(desk.text->hasFocus());
    QCOMPARE(desk.text->toPlainText(), QString());
    QCOMPARE(desk.text->defaultTextColor(), inkColor);
    desk.type(QStringLiteral("Rain"));
    QCOMPARE(desk.text->toPlainText(), QStringLiteral("Rain"));
}

void tst_STLineEdit::clickOnAPlaceholderThatWasTypedRemovesItToo()
{
    TextDesk desk;
    desk.click(desk.middle());
    desk.type(placeholder);
    QCOMPARE(desk.text->toPlainText(), placeholder);
    desk.text->clearFocus();
    desk.click(desk.middle());
    QCOMPARE(desk.text->toPlainText(), QString());
}

void tst_STLineEdit::clickLeavesOtherTextsAlone()
{
    TextDesk desk;
    desk.click(desk.middle());
    desk.type(QStringLiteral("Rain"));
    desk.text->clearFocus();
    desk.click(desk.middle());
    QCOMPARE(desk.text->toPlainText(), QStringLiteral("Rain"));
}

void tst_STLineEdit::placeholderIsComparedExactly_data()
{
    QTest::addColumn<QString>("text");
    QTest::newRow("other case") << QStringLiteral("enter description");
    QTest::newRow("more") << placeholder + QLatin1Char(' ');
    QTest::newRow("less") << QStringLiteral("Enter descriptio");
}

void tst_STLineEdit::placeholderIsComparedExactly()
{
    QFETCH(QString, text);
    TextDesk desk;
    desk.text->setText(text);
    desk.click(desk.middle());
    QCOMPARE(desk.text->toPlainText(), text);
}

void tst_STLineEdit::emptyTextStaysEmptyWhenLeft()
{
    TextDesk desk;
    desk.click(desk.middle());
    desk.text->clearFocus();
    QCOMPARE(desk.text->toPlainText(), QString());
    QVERIFY(!hasColor(desk.image(), inkColor));
    QCOMPARE(desk.text->boundingRect().width(), 400.0);
}

void tst_STLineEdit::leavingClearsTheSelection()
{
    TextDesk desk;
    desk.text->setText(QStringLiteral("Rain"));
    desk.edit(desk.text);
    desk.key(Qt::Key_A, Qt::ControlModifier);
    QCOMPARE(desk.text->textCursor().selectedText(), QStringLiteral("Rain"));
    desk.text->clearFocus();
    QCOMPARE(desk.text->textCursor().hasSelection(), false);
    QCOMPARE(desk.text->toPlainText(), QStringLiteral("Rain"));
}

void tst_STLineEdit::setTextReplacesTheText_data()
{
    QTest::addColumn<QString>("text");
    QTest::newRow("other text") << QStringLiteral("Rain");
    QTest::newRow("placeholder") << placeholder;
    QTest::newRow("empty") << QString();
    QTest::newRow("several lines") << QStringLiteral("Rain\nand\nwind");
    QTest::newRow("markup stays text") << QStringLiteral("<b>Rain</b>");
}

void tst_STLineEdit::setTextReplacesTheText()
{
    QFETCH(QString, text);
    STLineEdit item(placeholder, 400.0, nullptr);
    item.setText(text);
    QCOMPARE(item.toPlainText(), text);
    QCOMPARE(item.defaultTextColor(), inkColor);
    QCOMPARE(item.boundingRect(), textArea(item));
}

void tst_STLineEdit::panelCoversTheTextAtOnce_data()
{
    QTest::addColumn<Edit>("prepare");
    QTest::addColumn<Edit>("edit");
    const Edit nothing = [](TextDesk &) {};
    const Edit fill = [](TextDesk &desk) { desk.text->setText(longLine); };
    const Edit typeLong = [](TextDesk &desk) { desk.type(longLine); };
    const Edit typeAndUndo = [](TextDesk &desk) {
        desk.type(longLine);
        desk.key(Qt::Key_Z, Qt::ControlModifier);
    };
    QTest::newRow("set") << nothing << fill;
    QTest::newRow("set shorter") << fill << Edit([](TextDesk &desk) { desk.text->setText(placeholder); });
    QTest::newRow("typed") << nothing << typeLong;
    QTest::newRow("line break") << nothing << Edit([](TextDesk &desk) { desk.key(Qt::Key_Return); });
    QTest::newRow("undone") << typeLong
                            << Edit([](TextDesk &desk) { desk.key(Qt::Key_Z, Qt::ControlModifier); });
    QTest::newRow("redone") << typeAndUndo << Edit([](TextDesk &desk) {
        desk.key(Qt::Key_Z, Qt::ControlModifier | Qt::ShiftModifier);
    });
    QTest::newRow("undone without a key")
        << typeLong << Edit([](TextDesk &desk) { desk.text->document()->undo(); });
    QTest::newRow("deleted") << fill << Edit([](TextDesk &desk) {
        desk.key(Qt::Key_A, Qt::ControlModifier);
        desk.key(Qt::Key_Delete);
    });
    QTest::newRow("pasted") << nothing << Edit([](TextDesk &desk) { desk.paste(QString(), longLine); });
    QTest::newRow("inserted by a cursor")
        << nothing << Edit([](TextDesk &desk) { QTextCursor(desk.text->document()).insertText(longLine); });
    QTest::newRow("composed with an input method") << nothing << Edit([](TextDesk &desk) {
        QInputMethodEvent composing(longLine, {});
        QCoreApplication::sendEvent(&desk.scene, &composing);
    });
    QTest::newRow("committed by an input method") << nothing << Edit([](TextDesk &desk) {
        QInputMethodEvent committing;
        committing.setCommitString(longLine);
        QCoreApplication::sendEvent(&desk.scene, &committing);
    });
}

void tst_STLineEdit::panelCoversTheTextAtOnce()
{
    QFETCH(Edit, prepare);
    QFETCH(Edit, edit);
    TextDesk desk;
    desk.edit(desk.text);
    prepare(desk);
    desk.edit(desk.text);
    const QRectF before = desk.text->boundingRect();
    edit(desk);
    QCOMPARE(desk.text->boundingRect(), textArea(*desk.text));
    QVERIFY(desk.text->boundingRect() != before);
}

void tst_STLineEdit::listenersSeeTheNewOutline()
{
    TextDesk desk;
    QList<double> heights;
    connect(desk.text->document(), &QTextDocument::contentsChanged, &desk.scene,
            [&] { heights << desk.text->boundingRect().height() - textArea(*desk.text).height(); });
    desk.edit(desk.text);
    desk.key(Qt::Key_Return);
    desk.text->setText(longLine);
    QCOMPARE(heights, QList<double>({0, 0}));
}

void tst_STLineEdit::returnAndEnterBreakTheLine_data()
{
    QTest::addColumn<Qt::Key>("key");
    QTest::newRow("return") << Qt::Key_Return;
    QTest::newRow("enter") << Qt::Key_Enter;
}

void tst_STLineEdit::returnAndEnterBreakTheLine()
{
    QFETCH(Qt::Key, key);
    TextDesk desk;
    desk.text->setText(QStringLiteral("Rain"));
    desk.edit(desk.text);
    const double line = desk.text->boundingRect().height() - 30; // without the margins
    desk.key(key);
    QCOMPARE(desk.text->toPlainText(), QStringLiteral("Rain\n"));
    QCOMPARE(desk.text->boundingRect().height(), 30 + 2 * line);
    desk.key(key);
    QCOMPARE(desk.text->boundingRect().height(), 30 + 3 * line);
    desk.key(Qt::Key_Backspace);
    QCOMPARE(desk.text->boundingRect().height(), 30 + 2 * line);
}

void tst_STLineEdit::longLineWrapsAtTheTextWidth()
{
    TextDesk desk;
    desk.click(desk.middle());
    const double line = desk.text->boundingRect().height() - 30;
    desk.type(longLine);
    QCOMPARE(desk.text->boundingRect().width(), 400.0);
    const int lines = desk.text->document()->firstBlock().layout()->lineCount();
    QVERIFY(lines > 2);
    QCOMPARE(desk.text->boundingRect().height(), 30 + lines * line);
}

void tst_STLineEdit::wordThatDoesNotFitWidensThePanel()
{
    STLineEdit text(placeholder, 400.0, nullptr);
    text.setText(QString(60, QLatin1Char('M'))); // broken, as Qt's documents do by default
    QCOMPARE(text.boundingRect(), textArea(text));
    QVERIFY(text.document()->firstBlock().layout()->lineCount() > 1);

    text.document()->setDefaultTextOption(wholeWords());
    text.setText(QString(60, QLatin1Char('W')));
    QVERIFY(text.boundingRect().width() > 600);
    QCOMPARE(text.boundingRect().width(), text.document()->idealWidth());
    text.setText(QStringLiteral("M"));
    QCOMPARE(text.boundingRect().width(), 400.0);
}

void tst_STLineEdit::textWidthCanBeChanged()
{
    STLineEdit text(placeholder, 400.0, nullptr);
    text.setText(longLine);
    const double before = text.boundingRect().height();
    text.document()->setDocumentMargin(2.0);
    text.setTextWidth(200.0);
    QCOMPARE(text.document()->textWidth(), 200.0);
    QCOMPARE(text.document()->documentMargin(), 15.0);
    QCOMPARE(text.boundingRect().width(), 200.0);
    QCOMPARE(text.boundingRect().height(), text.document()->size().height());
    QVERIFY(text.boundingRect().height() > before);
}

void tst_STLineEdit::panelGrowsAgainWhenTheFocusIsLost()
{
    TextDesk desk;
    desk.edit(desk.text);
    desk.text->setRect(QRectF(0, 0, 20, 10));
    desk.key(Qt::Key_Left); // changes nothing in the text
    QCOMPARE(desk.text->boundingRect(), textArea(*desk.text));
    desk.text->setRect(QRectF(0, 0, 20, 10));
    desk.text->clearFocus();
    QCOMPARE(desk.text->boundingRect(), textArea(*desk.text));
}

void tst_STLineEdit::rectCanBeSetAndComesBack()
{
    STLineEdit text(placeholder, 400.0, nullptr);
    text.setRect(QRectF(1, 2, 30, 40));
    QCOMPARE(text.boundingRect(), QRectF(1, 2, 30, 40));
    text.updateRect();
    QCOMPARE(text.boundingRect(), textArea(text));
}

void tst_STLineEdit::emptyRectGivesTheBaseOutline_data()
{
    QTest::addColumn<QRectF>("rect");
    QTest::newRow("no size") << QRectF();
    QTest::newRow("no width") << QRectF(0, 0, 0, 40);
    QTest::newRow("no height") << QRectF(0, 0, 40, 0);
}

void tst_STLineEdit::emptyRectGivesTheBaseOutline()
{
    QFETCH(QRectF, rect);
    STLineEdit text(placeholder, 400.0, nullptr);
    text.setRect(rect);
    QCOMPARE(text.boundingRect(), text.QGraphicsTextItem::boundingRect());
    QVERIFY(!text.boundingRect().isEmpty());
}

void tst_STLineEdit::parentHearsOfANewSizeBeforeAndAfter()
{
    Listener parent;
    parent.text = new STLineEdit(placeholder, 400.0, &parent);
    const double before = parent.text->boundingRect().height();
    parent.heard.clear();
    parent.text->setText(QStringLiteral("Rain")); // the same size
    QCOMPARE(parent.heard, QStringList());
    parent.text->setText(QStringLiteral("Rain\nwind"));
    const double after = parent.text->boundingRect().height();
    QCOMPARE(parent.heard,
             QStringList({QStringLiteral("before %1").arg(before), QStringLiteral("after %1").arg(after)}));
}

void tst_STLineEdit::grownPanelIsFoundWhereItIsPainted()
{
    TextDesk desk;
    const QPointF below = desk.text->sceneBoundingRect().bottomLeft() + QPointF(30, 60);
    QCOMPARE(desk.scene.itemAt(below, QTransform()), nullptr);
    desk.text->setText(longLine + QLatin1Char('\n') + longLine);
    QCOMPARE(desk.scene.itemAt(below, QTransform()), desk.text);
    QCOMPARE(colorAt(desk.scene, QPointF(104, below.y())), panelColor);
    desk.text->setText(QStringLiteral("Rain"));
    QCOMPARE(desk.scene.itemAt(below, QTransform()), nullptr);
}

void tst_STLineEdit::panelOfAGivenSizeIsRepaintedThere()
{
    TextDesk desk;
    const QPointF below = desk.text->sceneBoundingRect().bottomLeft() + QPointF(30, 300);
    QVERIFY(desk.scene.items(QRectF(below, QSizeF(1, 1)), Qt::IntersectsItemBoundingRect).isEmpty());
    desk.text->setRect(QRectF(0, 0, 400, 500));
    QCOMPARE(colorAt(desk.scene, below), panelColor);
}

QTEST_MAIN(tst_STLineEdit)
#include "tst_stlineedit.moc"
