#include "app/worststage.h"

#include <functional>

using Deed = std::function<void(WorstStage &)>;
Q_DECLARE_METATYPE(Deed)

namespace {

void click(WorstStage &stage, QPointF pos)
{
    stage.press(pos);
    stage.release(pos);
}

QPointF middleOf(const QGraphicsItem *item) { return item->mapToScene(item->boundingRect().center()); }

void write(const WorstStage &stage, const QString &letters)
{
    for (const QChar letter : letters)
        stage.key(Qt::Key(letter.unicode()));
}

/// Everything that is written on the canvas.
QStringList textsOf(const NodegraphScene *scene)
{
    QStringList texts;
    for (const Node *node : scene->nodes())
        texts << node->title() << descriptionOf(node)->toPlainText();
    return texts;
}

} // namespace

/// Which event the keys go to: the one that is the current one, and never one that is out of sight.
class tst_CurrentEvent : public ProgramTest
{
    Q_OBJECT

private slots:
    void newCurrentEventTakesTheKeyboardAway_data();
    void newCurrentEventTakesTheKeyboardAway();
    void looseEventTakesTheKeyboardAway();
    void textThatWasPressedIsGoneOnWith();
    void textOfTheCurrentEventKeepsTheKeyboard();
    void keyboardDoesNotReturnToAFormerEvent_data();
    void keyboardDoesNotReturnToAFormerEvent();
    void keyboardReturnsToTheTextThatWasLeft();
    void tabLandsInNoText();
    void cutEventIsNotWrittenInto();
    void cutEndsTheWriting_data();
    void cutEndsTheWriting();
};

void tst_CurrentEvent::newCurrentEventTakesTheKeyboardAway_data()
{
    QTest::addColumn<Deed>("deed");
    QTest::newRow("added by key") << Deed(
        [](auto &stage) { stage.key(Qt::Key_A, Qt::ControlModifier | Qt::ShiftModifier); });
    QTest::newRow("added by button") << Deed([](auto &stage) {
        QTest::mouseClick(buttonOf(*stage.window, "Add_NodeButton"), Qt::LeftButton);
        stage.view()->setFocus();
    });
    QTest::newRow("pasted") << Deed([](auto &stage) { stage.trigger("actionPaste"); });
    QTest::newRow("clicked") << Deed([](auto &stage) { click(stage, bodyOf(stage.night)); });
    QTest::newRow("told by another") << Deed(
        [](auto &stage) { stage.scene()->sl_selectCurrentNode(stage.night); });
}

// F2 went on with the text that had the keyboard, and so did the keys after it, over a former event.
void tst_CurrentEvent::newCurrentEventTakesTheKeyboardAway()
{
    QFETCH(Deed, deed);
    WorstStage stage;
    click(stage, bodyOf(stage.dusk));
    stage.trigger("actionCopy");
    click(stage, bodyOf(stage.dawn));
    stage.key(Qt::Key_F2);
    stage.key(Qt::Key_F2);
    write(stage, QStringLiteral("X"));
    QCOMPARE(stage.editedText(), descriptionOf(stage.dawn));
    const QString former = descriptionOf(stage.dawn)->toPlainText();

    deed(stage);
    QCOMPARE(stage.editedText(), nullptr);
    QVERIFY(stage.view()->hasFocus());
    const Node *current = stage.scene()->currentNode();
    QVERIFY(current && current != stage.dawn);
    stage.key(Qt::Key_F2);
    QCOMPARE(stage.editedText(), current->nameItem());
    write(stage, QStringLiteral("STORM"));
    QCOMPARE(current->title(), QStringLiteral("storm"));
    QCOMPARE(stage.dawn->title(), QStringLiteral("Dawn"));
    QCOMPARE(descriptionOf(stage.dawn)->toPlainText(), former);
}

// A press into a text leaves no event current, so the next one is attached to none and is not current either.
void tst_CurrentEvent::looseEventTakesTheKeyboardAway()
{
    WorstStage stage;
    stage.edit(stage.dawn->nameItem());
    QCOMPARE(stage.scene()->currentNode(), nullptr);
    stage.key(Qt::Key_A, Qt::ControlModifier | Qt::ShiftModifier);
    QCOMPARE(stage.editedText(), nullptr);
    const QStringList texts = textsOf(stage.scene());
    stage.key(Qt::Key_F2);
    write(stage, QStringLiteral("X"));
    QCOMPARE(textsOf(stage.scene()), texts);
}

void tst_CurrentEvent::textThatWasPressedIsGoneOnWith()
{
    WorstStage stage;
    stage.edit(stage.dawn->nameItem());
    stage.key(Qt::Key_F2);
    QCOMPARE(stage.editedText(), descriptionOf(stage.dawn));
    stage.key(Qt::Key_F2);
    QCOMPARE(stage.editedText(), stage.dawn->nameItem());
}

void tst_CurrentEvent::textOfTheCurrentEventKeepsTheKeyboard()
{
    WorstStage stage;
    stage.edit(stage.dawn->nameItem());
    stage.scene()->sl_selectCurrentNode(stage.dawn);
    QCOMPARE(stage.editedText(), stage.dawn->nameItem());
}

void tst_CurrentEvent::keyboardDoesNotReturnToAFormerEvent_data()
{
    QTest::addColumn<bool>("isPressed");
    QTest::newRow("behind the current one") << false;
    QTest::newRow("loose") << true;
}

// While the panel has the focus the canvas still knows which of its texts it will give the keyboard back to.
void tst_CurrentEvent::keyboardDoesNotReturnToAFormerEvent()
{
    QFETCH(bool, isPressed);
    WorstStage stage;
    if (isPressed) {
        stage.edit(stage.dawn->nameItem());
    } else {
        click(stage, bodyOf(stage.dawn));
        stage.key(Qt::Key_F2);
    }
    stage.panel()->views().constFirst()->setFocus();
    QCOMPARE(stage.editedText(), nullptr);
    stage.trigger("actionAdd_Event");
    stage.view()->setFocus();
    QCOMPARE(stage.editedText(), nullptr);
}

void tst_CurrentEvent::keyboardReturnsToTheTextThatWasLeft()
{
    WorstStage stage;
    click(stage, bodyOf(stage.dawn));
    stage.key(Qt::Key_F2);
    stage.panel()->views().constFirst()->setFocus();
    stage.trigger("actionSet_as_Important");
    stage.view()->setFocus();
    QCOMPARE(stage.editedText(), stage.dawn->nameItem());
}

// The framework would go back to the text that was edited last, however long ago.
void tst_CurrentEvent::tabLandsInNoText()
{
    WorstStage stage;
    click(stage, bodyOf(stage.dawn));
    stage.key(Qt::Key_F2);
    stage.key(Qt::Key_Escape);
    click(stage, bodyOf(stage.night));
    for (const Qt::FocusReason reason : {Qt::TabFocusReason, Qt::BacktabFocusReason}) {
        stage.panel()->views().constFirst()->setFocus();
        stage.view()->setFocus(reason);
        QCOMPARE(stage.editedText(), nullptr);
        QVERIFY(stage.view()->hasFocus());
    }
    stage.edit(stage.dawn->nameItem());
    stage.panel()->views().constFirst()->setFocus();
    stage.view()->setFocus(Qt::TabFocusReason);
    QCOMPARE(stage.editedText(), nullptr); // the next Tab would be written into it
}

// A hidden title was given the keyboard as soon as it was shown again, with all of it selected.
void tst_CurrentEvent::cutEventIsNotWrittenInto()
{
    WorstStage stage;
    click(stage, QPointF(520, 20)); // ends the selection
    click(stage, bodyOf(stage.dawn));
    stage.key(Qt::Key_X, Qt::ControlModifier);
    QVERIFY(!stage.dawn->isVisible());
    const QStringList texts = textsOf(stage.scene());
    stage.key(Qt::Key_F2);
    write(stage, QStringLiteral("X"));
    QCOMPARE(stage.editedText(), nullptr);
    QCOMPARE(textsOf(stage.scene()), texts);

    click(stage, bodyOf(stage.dusk));
    stage.key(Qt::Key_C, Qt::ControlModifier);
    QVERIFY(stage.dawn->isVisible());
    QCOMPARE(stage.editedText(), nullptr);
    stage.key(Qt::Key_Delete);
    QCOMPARE(stage.dawn->title(), QStringLiteral("Dawn"));
    QVERIFY(titlesOf(stage.scene()).contains(QStringLiteral("Dawn")));
    QVERIFY(!titlesOf(stage.scene()).contains(QStringLiteral("Dusk")));
}

void tst_CurrentEvent::cutEndsTheWriting_data()
{
    QTest::addColumn<bool>("isAway");
    QTest::newRow("from the canvas") << false;
    QTest::newRow("while the panel has the focus") << true;
}

void tst_CurrentEvent::cutEndsTheWriting()
{
    QFETCH(bool, isAway);
    WorstStage stage;
    click(stage, bodyOf(stage.dawn));
    stage.key(Qt::Key_F2);
    QCOMPARE(stage.editedText(), stage.dawn->nameItem());
    if (isAway)
        stage.panel()->views().constFirst()->setFocus();
    const QStringList texts = textsOf(stage.scene());
    stage.trigger("actionCut");
    stage.view()->setFocus();
    QCOMPARE(stage.editedText(), nullptr);
    write(stage, QStringLiteral("X"));
    stage.trigger("actionCopy"); // shows it again
    QVERIFY(stage.dawn->isVisible());
    QCOMPARE(stage.editedText(), nullptr);
    write(stage, QStringLiteral("X"));
    QCOMPARE(textsOf(stage.scene()), texts);
    // It is no worse for having been away.
    stage.key(Qt::Key_F2);
    QCOMPARE(stage.editedText(), stage.dawn->nameItem());
    click(stage, middleOf(descriptionOf(stage.dawn)));
    QCOMPARE(stage.editedText(), descriptionOf(stage.dawn));
}

QTEST_MAIN(tst_CurrentEvent)
#include "tst_currentevent.moc"
