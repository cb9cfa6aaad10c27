#include "items/stnodename.h"
#include "scene/shownscene.h"
#include "support/testsupport.h"

#include <QApplication>
#include <QMouseEvent>
#include <QTextBlock>
#include <QTextCursor>
#include <QTextDocument>
#include <QTextLayout>

namespace {

const QString stormTitle = QStringLiteral("The storm at sea");

/// An event in a window with that title, and a hand that is not quite still.
struct TitleHand : ShownScene
{
    Node *node = nullptr;
    STNodeName *title = nullptr;

    TitleHand()
    {
        view.activateWindow();
        QVERIFY(QTest::qWaitForWindowActive(&view));
        node = addLoose(scene, QPointF(100, 100));
        node->setNodeName(stormTitle);
        title = node->nameItem();
    }

    /// Where that letter of the title begins, on the screen's pixels.
    QPointF letter(int position) const
    {
        QTextCursor cursor(title->document());
        cursor.setPosition(position);
        const QTextBlock block = cursor.block();
        const double x = block.layout()->lineForTextPosition(position).cursorToX(position);
        return title->mapToScene(QPointF(4 + x, title->boundingRect().height() / 2));
    }
    QString selected() const { return title->textCursor().selectedText(); }
    void click(QPointF pos, Qt::KeyboardModifiers modifiers = Qt::NoModifier)
    {
        press(pos, Qt::LeftButton, modifiers);
        release(pos, Qt::LeftButton, modifiers);
    }
    void type(const QString &text) { QTest::keyClicks(&view, text); }
    /// The second press of two quick ones, which comes as a double click.
    void pressAgain(QPointF pos)
    {
        const QPoint place = at(pos);
        QMouseEvent event(QEvent::MouseButtonDblClick, place, view.viewport()->mapToGlobal(place),
                          Qt::LeftButton, Qt::LeftButton, Qt::NoModifier);
        QCoreApplication::sendEvent(view.viewport(), &event);
    }
};

} // namespace

class tst_TitleClicks : public TestCase
{
    Q_OBJECT

private slots:
    void shakingHandSelectsAll_data();
    void shakingHandSelectsAll();
    void dragSelectsFromThePress_data();
    void dragSelectsFromThePress();
    void dragThatComesBackIsStillADrag();
    void everyPressBeginsAnew();
    void secondPressSelectsTheWord();
    void clickIntoTheSelectionPlacesTheCursor();
    void dragWithShiftGoesOnWithTheSelection();
};

void tst_TitleClicks::shakingHandSelectsAll_data()
{
    const int most = QApplication::startDragDistance() - 1;
    QTest::addColumn<QList<QPoint>>("moves");
    QTest::newRow("still") << QList<QPoint>{};
    QTest::newRow("a pixel to the right") << QList<QPoint>{{1, 0}};
    QTest::newRow("a pixel to the left and back") << QList<QPoint>{{-1, 0}, {0, 0}};
    QTest::newRow("as far as it may to the left") << QList<QPoint>{{-most, 0}};
    QTest::newRow("as far as it may to all sides")
        << QList<QPoint>{{most, 0}, {-most, 0}, {0, most}, {0, -most}, {most - 4, 4}};
}

// One pixel between press and release made "Storment" of "Event".
void tst_TitleClicks::shakingHandSelectsAll()
{
    QFETCH(QList<QPoint>, moves);
    TitleHand hand;
    const QPointF pos = hand.letter(6);
    hand.press(pos);
    for (const QPoint &away : moves) {
        hand.move(pos + away);
        QCOMPARE(hand.selected(), stormTitle);
    }
    hand.release(pos + (moves.isEmpty() ? QPoint() : moves.constLast()));
    QCOMPARE(hand.selected(), stormTitle);
    hand.type(QStringLiteral("Storm"));
    QCOMPARE(hand.title->toPlainText(), QStringLiteral("Storm"));
}

void tst_TitleClicks::dragSelectsFromThePress_data()
{
    QTest::addColumn<int>("from");
    QTest::addColumn<int>("to");
    QTest::newRow("to the right") << 4 << 9;
    QTest::newRow("to the left") << 9 << 4;
    QTest::newRow("to the end") << 10 << 16;
}

void tst_TitleClicks::dragSelectsFromThePress()
{
    QFETCH(int, from);
    QFETCH(int, to);
    TitleHand hand;
    hand.press(hand.letter(from));
    hand.move((hand.letter(from) + hand.letter(to)) / 2);
    hand.move(hand.letter(to));
    QCOMPARE(hand.title->textCursor().anchor(), from);
    QCOMPARE(hand.title->textCursor().position(), to);
    hand.release(hand.letter(to));
    QCOMPARE(hand.selected(), stormTitle.mid(qMin(from, to), qAbs(to - from)));
}

void tst_TitleClicks::dragThatComesBackIsStillADrag()
{
    TitleHand hand;
    const QPointF pos = hand.letter(4);
    hand.press(pos);
    hand.move(hand.letter(9));
    hand.move(pos + QPointF(1, 0));
    QCOMPARE(hand.selected(), QString());
    hand.release(pos);
    hand.type(QStringLiteral("s"));
    QCOMPARE(hand.title->toPlainText(), QStringLiteral("The sstorm at sea"));
}

void tst_TitleClicks::everyPressBeginsAnew()
{
    TitleHand hand;
    hand.press(hand.letter(4));
    hand.move(hand.letter(9));
    hand.release(hand.letter(9));
    hand.press(hand.letter(14));
    hand.move(hand.letter(14) + QPointF(2, 0));
    QCOMPARE(hand.selected(), stormTitle);
    hand.release(hand.letter(14));
}

void tst_TitleClicks::secondPressSelectsTheWord()
{
    TitleHand hand;
    const QPointF pos = hand.letter(6);
    hand.click(pos);
    hand.pressAgain(pos);
    QCOMPARE(hand.selected(), QStringLiteral("storm"));
    hand.move(pos + QPointF(2, 0));
    hand.move(pos + QPointF(-2, 0));
    hand.release(pos);
    QCOMPARE(hand.selected(), QStringLiteral("storm"));
}

void tst_TitleClicks::clickIntoTheSelectionPlacesTheCursor()
{
    TitleHand hand;
    const QPointF pos = hand.letter(6);
    hand.click(pos);
    hand.press(pos);
    hand.move(pos + QPointF(1, 0));
    hand.release(pos + QPointF(1, 0));
    QCOMPARE(hand.selected(), QString());
    QCOMPARE(hand.title->textCursor().position(), 6);
}

void tst_TitleClicks::dragWithShiftGoesOnWithTheSelection()
{
    TitleHand hand;
    hand.press(hand.letter(4));
    hand.move(hand.letter(9));
    hand.release(hand.letter(9));
    QCOMPARE(hand.selected(), QStringLiteral("storm"));
    hand.press(hand.letter(12), Qt::LeftButton, Qt::ShiftModifier);
    QCOMPARE(hand.selected(), stormTitle); // as after every press
    hand.move(hand.letter(16));
    hand.release(hand.letter(16), Qt::LeftButton, Qt::ShiftModifier);
    QCOMPARE(hand.selected(), QStringLiteral("storm at sea"));
}

QTEST_MAIN(tst_TitleClicks)
#include "tst_titleclicks.moc"
