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

QTEST_MAIN(tst_CanvasTab)
#include "tst_canvastab.moc"
