#include "app/windowsupport.h"

#include "items/stnodename.h"
#include "scene/scenebytes.h"

using namespace Qt::StringLiterals;

// Tab goes through the window, not through the texts of the canvas.

class tst_CanvasTab : public TestCase
{
    Q_OBJECT

private slots:
    void tabWritesNothing_data();
    void tabWritesNothing();
    void tabIsWrittenByWhoWrites();
    void aTextLeftBehindStaysSo_data();
    void aTextLeftBehindStaysSo();
};

void tst_CanvasTab::tabWritesNothing_data()
{
    QTest::addColumn<Qt::KeyboardModifiers>("modifiers");
    QTest::addColumn<bool>("wroteBefore");
    QTest::newRow("Tab") << Qt::KeyboardModifiers() << false;
    QTest::newRow("Shift+Tab") << Qt::KeyboardModifiers(Qt::ShiftModifier) << false;
    QTest::newRow("Tab after writing") << Qt::KeyboardModifiers() << true;
    QTest::newRow("Shift+Tab after writing") << Qt::KeyboardModifiers(Qt::ShiftModifier) << true;
}

void tst_CanvasTab::tabWritesNothing()
{
    QFETCH(const Qt::KeyboardModifiers, modifiers);
    QFETCH(const bool, wroteBefore);
    const PrivateHome home;
    MainWindow window;
    window.show();
    QVERIFY(QTest::qWaitForWindowActive(&window));
    NodegraphScene *scene = sceneOf(window, 0);
    addChain(*scene, 3);
    NodegraphView *view = window.views().front();
    view->setFocus();
    if (wroteBefore) {
        scene->nodes().at(1)->nameItem()->setFocus();
        QTest::keyClick(window.windowHandle(), Qt::Key_Escape);
    }
    const QByteArray before = SceneBytes::saved(*scene);
    for (int i = 0; i < 12; ++i) {
        QTest::keyClick(window.windowHandle(), Qt::Key_Tab, modifiers);
        QVERIFY(!scene->focusItem());
        QTest::keyClick(window.windowHandle(), Qt::Key_Comma); // whatever has the keyboard now
    }
    QCOMPARE(SceneBytes::saved(*scene), before);
}

void tst_CanvasTab::tabIsWrittenByWhoWrites()
{
    const PrivateHome home;
    MainWindow window;
    window.show();
    QVERIFY(QTest::qWaitForWindowActive(&window));
    NodegraphScene *scene = sceneOf(window, 0);
    addChain(*scene, 1);
    window.views().front()->setFocus();
    Node *node = scene->nodes().front();
    node->nameItem()->setFocus();
    QTest::keyClick(window.windowHandle(), Qt::Key_End);
    QTest::keyClick(window.windowHandle(), Qt::Key_Tab);
    QVERIFY(node->title().endsWith(u'\t'));
}

void tst_CanvasTab::aTextLeftBehindStaysSo_data()
{
    QTest::addColumn<Qt::FocusReason>("reason");
    QTest::newRow("Tab") << Qt::TabFocusReason;
    QTest::newRow("Shift+Tab") << Qt::BacktabFocusReason;
}

// Whoever comes by Tab is on the canvas, not in the text that was written in before; nor is one who goes to
// another window from there and comes back.
void tst_CanvasTab::aTextLeftBehindStaysSo()
{
    QFETCH(const Qt::FocusReason, reason);
    const PrivateHome home;
    MainWindow window;
    QWidget other;
    window.show();
    QVERIFY(QTest::qWaitForWindowActive(&window));
    NodegraphScene *scene = sceneOf(window, 0);
    addChain(*scene, 1);
    NodegraphView *view = window.views().front();
    view->setFocus();
    scene->nodes().front()->nameItem()->setFocus();
    const QByteArray before = SceneBytes::saved(*scene);
    window.overviewerScene()->views().first()->setFocus();
    view->setFocus(reason);
    QVERIFY(view->hasFocus());
    QVERIFY(!scene->focusItem());
    other.show();
    other.activateWindow();
    QVERIFY(QTest::qWaitForWindowActive(&other));
    window.activateWindow();
    QVERIFY(QTest::qWaitForWindowActive(&window));
    QVERIFY(view->hasFocus());
    QVERIFY(!scene->focusItem());
    QTest::keyClick(window.windowHandle(), Qt::Key_Comma);
    QCOMPARE(SceneBytes::saved(*scene), before);
}

QTEST_MAIN(tst_CanvasTab)
#include "tst_canvastab.moc"
