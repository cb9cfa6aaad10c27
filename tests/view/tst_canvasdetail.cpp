#include "view/farcanvas.h"

#include "items/socket.h"

#include <QUndoStack>

using namespace Qt::StringLiterals;

// Where many events are too small to be read, they are shown by a picture, and nobody writes in them.

class tst_CanvasDetail : public TestCase
{
    Q_OBJECT

private slots:
    void textsAreBarsWhereManyAreTooSmall_data();
    void textsAreBarsWhereManyAreTooSmall();
    void onlyEventsInViewCount();
    void pressOnBarsBelongsToTheEvent();
    void writingEndsWhereBarsBegin_data();
    void writingEndsWhereBarsBegin();
    void writtenWordsAreShownAgain();
    void nobodyWritesInBars();
    void keyToEditComesClose();
    void socketsStayWhileTheyAreSeen();
    void newAndReturningEventsAreAsTheOthers();
    void pictureForSomethingElseChangesNothing();
};

void tst_CanvasDetail::textsAreBarsWhereManyAreTooSmall_data()
{
    QTest::addColumn<double>("scale");
    QTest::addColumn<int>("count");
    QTest::addColumn<bool>("bars");
    QTest::newRow("few at 1 %") << 0.01 << 200 << false;
    QTest::newRow("many at 1 %") << 0.01 << 201 << true;
    QTest::newRow("many at 2 %") << 0.02 << 201 << true;
    QTest::newRow("few at 19 %") << 0.19 << 24 << false;
    QTest::newRow("many at 100 %") << 1.0 << 250 << false;
}

void tst_CanvasDetail::textsAreBarsWhereManyAreTooSmall()
{
    QFETCH(const double, scale);
    QFETCH(const int, count);
    QFETCH(const bool, bars);
    const FarCanvas canvas(scale, count);
    for (const Node *node : canvas.nodes) {
        QCOMPARE(node->nameItem()->isVisible(), !bars);
        QCOMPARE(FarCanvas::descriptionOf(node)->isVisible(), !bars);
    }
}

// In rows that lie on top of one another 201 events are in view at any scale.
void tst_CanvasDetail::onlyEventsInViewCount()
{
    const FarCanvas canvas(0.199, 201);
    const auto barsAreShown = [&canvas] {
        canvas.frame();
        return !canvas.nodes.front()->nameItem()->isVisible();
    };
    QVERIFY(!barsAreShown());
    for (Node *node : canvas.nodes)
        node->setPos(canvas.nodes.front()->pos());
    QVERIFY(barsAreShown());
    canvas.nodes.back()->setPos(90000, 90000); // out of sight
    QVERIFY(!barsAreShown());
    canvas.nodes.back()->setPos(canvas.nodes.front()->pos());
    QVERIFY(barsAreShown());
    canvas.scene->sl_selectCurrentNode(canvas.nodes.back());
    canvas.scene->cutNodes(); // hidden
    QVERIFY(!barsAreShown());
    canvas.scene->copyNodes();
    QVERIFY(barsAreShown());
    canvas.show(0.2);
    QVERIFY(!barsAreShown());
}

void tst_CanvasDetail::pressOnBarsBelongsToTheEvent()
{
    const FarCanvas canvas(0.02, 250);
    Node *node = canvas.nodes.at(2);
    const QPoint letter = canvas.pixel(canvas.letterOf(node));
    const QPointF place = node->pos();
    QTest::mousePress(canvas.view->viewport(), Qt::LeftButton, {}, letter);
    QVERIFY(node->isSelected());
    QCOMPARE(canvas.scene->currentNode(), node);
    QVERIFY(!canvas.scene->focusItem());
    QMouseEvent drag(QEvent::MouseMove, letter + QPoint(20, 30),
                     canvas.view->viewport()->mapToGlobal(letter + QPoint(20, 30)), Qt::NoButton,
                     Qt::LeftButton, Qt::NoModifier);
    QCoreApplication::sendEvent(canvas.view->viewport(), &drag);
    QTest::mouseRelease(canvas.view->viewport(), Qt::LeftButton, {}, letter + QPoint(20, 30));
    QCOMPARE(node->pos(), place + QPointF(1000, 1500));
}

void tst_CanvasDetail::writingEndsWhereBarsBegin_data()
{
    QTest::addColumn<bool>("title");
    QTest::newRow("title") << true;
    QTest::newRow("description") << false;
}

void tst_CanvasDetail::writingEndsWhereBarsBegin()
{
    QFETCH(const bool, title);
    const FarCanvas canvas(1.0, 250);
    canvas.view->activateWindow();
    QVERIFY(QTest::qWaitForWindowActive(canvas.view.get()));
    canvas.view->setFocus();
    Node *node = canvas.nodes.front();
    QGraphicsTextItem *text = node->nameItem();
    if (!title)
        text = FarCanvas::descriptionOf(node);
    text->setPlainText(QString());
    text->setFocus();
    QTest::keyClicks(canvas.view->viewport(), u"ab"_s);
    QCOMPARE(text->toPlainText(), u"ab"_s);
    canvas.show(0.02);
    QVERIFY(!canvas.scene->focusItem());
    QTest::keyClicks(canvas.view->viewport(), u"cd"_s);
    QCOMPARE(text->toPlainText(), u"ab"_s);
    canvas.show(1.0);
    QVERIFY(!canvas.scene->focusItem());
    QTest::keyClicks(canvas.view->viewport(), u"ef"_s);
    QCOMPARE(text->toPlainText(), u"ab"_s);
}

void tst_CanvasDetail::writtenWordsAreShownAgain()
{
    const FarCanvas canvas(0.02, 250);
    Node *node = canvas.nodes.front();
    node->nameItem()->setPlainText(u"Words"_s);
    canvas.show(1.0);
    QVERIFY(node->nameItem()->isVisible());
    QCOMPARE(canvas.scene->itemAt(node->nameItem()->sceneBoundingRect().center(), QTransform()),
             node->nameItem());
    QCOMPARE(node->title(), u"Words"_s);
}

void tst_CanvasDetail::nobodyWritesInBars()
{
    const FarCanvas canvas(0.02, 250);
    canvas.view->activateWindow();
    QVERIFY(QTest::qWaitForWindowActive(canvas.view.get()));
    canvas.nodes.front()->nameItem()->setFocus();
    QVERIFY(!canvas.scene->focusItem());
    canvas.view->clearFocus();
    canvas.view->setFocus(Qt::TabFocusReason);
    QVERIFY(!canvas.scene->focusItem());
}

void tst_CanvasDetail::keyToEditComesClose()
{
    const FarCanvas canvas(0.02, 250);
    canvas.view->activateWindow();
    QVERIFY(QTest::qWaitForWindowActive(canvas.view.get()));
    canvas.view->setFocus();
    Node *node = canvas.nodes.at(120);
    canvas.scene->sl_selectCurrentNode(node);
    QTest::keyClick(canvas.view.get(), Qt::Key_F2);
    QCOMPARE(canvas.scene->focusItem(), node->nameItem());
    QCOMPARE(canvas.view->transform().m11(), 1.0);
    QCOMPARE(canvas.view->zoomDivisor(), 1.0);
    QTest::keyClicks(canvas.view->viewport(), u"Now"_s);
    QCOMPARE(node->title(), u"Now"_s);
    canvas.frame();
    QCOMPARE(canvas.scene->focusItem(), node->nameItem());
    const QRect seen = canvas.view->viewport()->rect();
    QVERIFY(seen.contains(canvas.pixel(node->nameItem()->sceneBoundingRect().center())));
}

void tst_CanvasDetail::socketsStayWhileTheyAreSeen()
{
    const FarCanvas canvas(0.15, 250);
    for (Node *node : canvas.nodes) // all in view
        node->setPos(canvas.nodes.front()->pos());
    canvas.frame();
    const Node *node = canvas.nodes.back();
    QVERIFY(!node->nameItem()->isVisible());
    QVERIFY(node->inSocket()->isVisible());
    QVERIFY(node->outSocket()->isVisible());
    QCOMPARE(canvas.scene->itemAt(node->outSocket()->sceneCentre(), QTransform()), node->outSocket());
    canvas.show(0.09);
    QVERIFY(!node->inSocket()->isVisible());
    QVERIFY(!node->outSocket()->isVisible());
    canvas.show(0.11);
    QVERIFY(node->inSocket()->isVisible());
    canvas.show(0.5);
    QVERIFY(node->outSocket()->isVisible());
}

void tst_CanvasDetail::newAndReturningEventsAreAsTheOthers()
{
    const FarCanvas canvas(0.02, 250);
    canvas.scene->sl_addEventNode();
    const Node *added = canvas.nodes.empty() ? nullptr : canvas.scene->nodes().back();
    canvas.frame();
    QVERIFY(added && !added->nameItem()->isVisible());
    canvas.view->undoStack()->undo();
    canvas.view->undoStack()->redo();
    canvas.frame();
    QVERIFY(!canvas.scene->nodes().back()->nameItem()->isVisible());
}

void tst_CanvasDetail::pictureForSomethingElseChangesNothing()
{
    const FarCanvas canvas(1.0, 250);
    canvas.nodes.front()->nameItem()->setFocus();
    for (Node *node : canvas.nodes) // all in view
        node->setPos(canvas.nodes.front()->pos());
    canvas.frame();
    canvas.view->viewport()->setUpdatesEnabled(false); // no frame comes between
    canvas.view->setTransform(QTransform::fromScale(0.02, 0.02));
    canvas.view->centerOn(canvas.nodes.front());
    QImage picture(400, 300, QImage::Format_RGB32);
    QPainter painter(&picture);
    canvas.scene->render(&painter);
    QVERIFY(canvas.nodes.front()->nameItem()->isVisible());
    QCOMPARE(canvas.scene->focusItem(), canvas.nodes.front()->nameItem());
}

QTEST_MAIN(tst_CanvasDetail)
#include "tst_canvasdetail.moc"
