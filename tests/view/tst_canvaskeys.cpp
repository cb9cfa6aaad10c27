#include "items/eventdata.h"
#include "items/node.h"
#include "items/nodedata.h"
#include "items/stlineedit.h"
#include "items/stnodename.h"
#include "view/viewcanvas.h"

#include <QUndoStack>

// Events in a cross around one in the middle, and one far to the right.
struct KeyCanvas : Canvas
{
    KeyCanvas()
    {
        middle = addLoose(*scene, QPointF(5000, 5000));
        left = addLoose(*scene, QPointF(4000, 5100));
        right = addLoose(*scene, QPointF(6000, 4900));
        above = addLoose(*scene, QPointF(5100, 4400));
        below = addLoose(*scene, QPointF(4900, 5600));
        far = addLoose(*scene, QPointF(8000, 5000));
        scene->sl_deselectCurrentNode();
        scene->deselectAll();
        view->activateWindow();
        view->setFocus();
        QVERIFY(QTest::qWaitForWindowActive(view.get()));
    }
    void press(int key, Qt::KeyboardModifiers modifiers = Qt::NoModifier) const
    {
        QTest::keyClick(view.get(), Qt::Key(key), modifiers);
    }
    void makeCurrent(Node *node) const
    {
        scene->deselectAll();
        scene->sl_selectCurrentNode(node);
        node->setSelected(true);
    }

    Node *middle = nullptr;
    Node *left = nullptr;
    Node *right = nullptr;
    Node *above = nullptr;
    Node *below = nullptr;
    Node *far = nullptr;
};

class tst_CanvasKeys : public TestCase
{
    Q_OBJECT

private slots:
    void arrowsGoToTheNextEvent();
    void arrowWithNothingThereStays();
    void arrowWithoutACurrentEventTakesTheEnd();
    void arrowOnAnEmptyCanvasDoesNothing();
    void hiddenEventsAreLeftOut();
    void hiddenEndIsLeftOut();
    void newCurrentEventIsInSight();
    void eventBeyondTheCanvasIsInSight();
    void plainArrowsScroll();
    void keyEditsTitleThenDescription();
    void keyWithoutACurrentEventDoesNothing();
    void escapeLeavesTheText();
    void keysBelongToTheTextWhileItIsEdited();
};

void tst_CanvasKeys::arrowsGoToTheNextEvent()
{
    const KeyCanvas canvas;
    struct Row
    {
        int key;
        const Node *expected;
    };
    for (const Row &row : {Row{Qt::Key_Left, canvas.left}, Row{Qt::Key_Right, canvas.right},
                           Row{Qt::Key_Up, canvas.above}, Row{Qt::Key_Down, canvas.below}}) {
        canvas.makeCurrent(canvas.middle);
        canvas.press(row.key, Qt::ControlModifier);
        QCOMPARE(canvas.scene->currentNode(), row.expected);
        QVERIFY(row.expected->isSelected());
        QVERIFY(!canvas.middle->isSelected());
    }
    QVERIFY(!canvas.view->undoStack()->canRedo());
    QCOMPARE(canvas.view->undoStack()->count(), 6); // going about is no edit
}

void tst_CanvasKeys::arrowWithNothingThereStays()
{
    const KeyCanvas canvas;
    canvas.makeCurrent(canvas.far);
    canvas.press(Qt::Key_Right, Qt::ControlModifier);
    QCOMPARE(canvas.scene->currentNode(), canvas.far);
    QVERIFY(canvas.far->isSelected());
}

void tst_CanvasKeys::arrowWithoutACurrentEventTakesTheEnd()
{
    const KeyCanvas canvas;
    canvas.scene->setEndOfStory(canvas.below);
    canvas.press(Qt::Key_Left, Qt::ControlModifier);
    QCOMPARE(canvas.scene->currentNode(), canvas.below);
}

void tst_CanvasKeys::arrowOnAnEmptyCanvasDoesNothing()
{
    const Canvas canvas;
    QTest::keyClick(canvas.view.get(), Qt::Key_Left, Qt::ControlModifier);
    QCOMPARE(canvas.scene->currentNode(), nullptr);
}

void tst_CanvasKeys::hiddenEventsAreLeftOut()
{
    const KeyCanvas canvas;
    canvas.right->setVisible(false);
    canvas.makeCurrent(canvas.middle);
    canvas.press(Qt::Key_Right, Qt::ControlModifier);
    QCOMPARE(canvas.scene->currentNode(), canvas.above); // off to the side, but so much nearer
}

void tst_CanvasKeys::hiddenEndIsLeftOut()
{
    const KeyCanvas canvas;
    canvas.scene->setEndOfStory(canvas.below);
    canvas.below->setVisible(false);
    canvas.press(Qt::Key_Left, Qt::ControlModifier);
    QVERIFY(canvas.scene->currentNode() && canvas.scene->currentNode() != canvas.below);
}

void tst_CanvasKeys::eventBeyondTheCanvasIsInSight()
{
    const KeyCanvas canvas;
    canvas.left->setPos(-3000, canvas.middle->y());
    canvas.scene->setEndOfStory(canvas.left);
    canvas.press(Qt::Key_Left, Qt::ControlModifier);
    QCOMPARE(canvas.scene->currentNode(), canvas.left);
    const QRectF shown = canvas.view->mapToScene(canvas.view->viewport()->rect()).boundingRect();
    QVERIFY(shown.contains(canvas.left->sceneBoundingRect().center()));
}

void tst_CanvasKeys::newCurrentEventIsInSight()
{
    const KeyCanvas canvas;
    canvas.makeCurrent(canvas.right);
    canvas.press(Qt::Key_Right, Qt::ControlModifier);
    const QRectF shown = canvas.view->mapToScene(canvas.view->viewport()->rect()).boundingRect();
    QVERIFY(shown.contains(canvas.far->sceneBoundingRect().center()));
}

void tst_CanvasKeys::plainArrowsScroll()
{
    const KeyCanvas canvas;
    canvas.makeCurrent(canvas.middle);
    const QPoint before = canvas.scroll();
    canvas.press(Qt::Key_Right);
    QVERIFY(canvas.scroll().x() > before.x());
    QCOMPARE(canvas.scene->currentNode(), canvas.middle);
}

void tst_CanvasKeys::keyEditsTitleThenDescription()
{
    const KeyCanvas canvas;
    canvas.makeCurrent(canvas.middle);
    canvas.press(Qt::Key_F2);
    QVERIFY(canvas.middle->nameItem()->hasFocus());
    QTest::keyClicks(canvas.view.get(), QStringLiteral("Rain"));
    canvas.press(Qt::Key_F2);
    STLineEdit *description = canvas.middle->payload()->eventContent()->descriptionItem();
    QVERIFY(description->hasFocus());
    QTest::keyClicks(canvas.view.get(), QStringLiteral("?"));
    canvas.press(Qt::Key_F2);
    QVERIFY(canvas.middle->nameItem()->hasFocus());
    canvas.press(Qt::Key_F2);
    QTest::keyClicks(canvas.view.get(), QStringLiteral("!"));
    QCOMPARE(canvas.middle->title(), QStringLiteral("Rain"));
    QCOMPARE(description->toPlainText(), QStringLiteral("?!")); // what asks for a description has gone
}

void tst_CanvasKeys::keyWithoutACurrentEventDoesNothing()
{
    const KeyCanvas canvas;
    canvas.press(Qt::Key_F2);
    QCOMPARE(canvas.scene->focusItem(), nullptr);
}

void tst_CanvasKeys::escapeLeavesTheText()
{
    const KeyCanvas canvas;
    canvas.makeCurrent(canvas.middle);
    canvas.press(Qt::Key_F2);
    canvas.press(Qt::Key_Escape);
    QCOMPARE(canvas.scene->focusItem(), nullptr);
    QCOMPARE(canvas.scene->currentNode(), canvas.middle);
    QVERIFY(canvas.view->hasFocus());
    canvas.press(Qt::Key_Left, Qt::ControlModifier);
    QCOMPARE(canvas.scene->currentNode(), canvas.left);
}

void tst_CanvasKeys::keysBelongToTheTextWhileItIsEdited()
{
    const KeyCanvas canvas;
    canvas.makeCurrent(canvas.middle);
    canvas.press(Qt::Key_F2);
    canvas.press(Qt::Key_Left); // before what was selected
    QTest::keyClicks(canvas.view.get(), QStringLiteral("The last "));
    canvas.press(Qt::Key_Left, Qt::ControlModifier); // a word back
    QTest::keyClicks(canvas.view.get(), QStringLiteral("very "));
    QCOMPARE(canvas.middle->title(), QStringLiteral("The very last Event"));
    QVERIFY(canvas.middle->nameItem()->hasFocus());
}

QTEST_MAIN(tst_CanvasKeys)
#include "tst_canvaskeys.moc"
