#include "view/viewcanvas.h"

#include <QGraphicsRectItem>

namespace {

/// Counts what an item of the canvas is told of its window.
class Listener : public QGraphicsRectItem
{
public:
    int activated = 0;
    int deactivated = 0;

protected:
    bool sceneEvent(QEvent *event) override
    {
        activated += int(event->type() == QEvent::WindowActivate);
        deactivated += int(event->type() == QEvent::WindowDeactivate);
        return QGraphicsRectItem::sceneEvent(event);
    }
};

/// A canvas that a window shows or hides, and a window beside it.
struct Windows
{
    Windows()
    {
        scene->addItem(listener);
        toTheFront(own);
    }
    ~Windows() { delete scene; }
    Windows(const Windows &) = delete;
    Windows &operator=(const Windows &) = delete;

    static void toTheFront(QWidget &window)
    {
        window.show();
        window.activateWindow();
        QVERIFY(QTest::qWaitForWindowActive(&window));
    }

    QWidget other;
    QWidget own;
    NodegraphView *view = new NodegraphView(&own);
    NodegraphScene *scene = view->nodegraphScene();
    Listener *listener = new Listener;
};

} // namespace

class tst_CanvasActivity : public TestCase
{
    Q_OBJECT

private slots:
    void aShownCanvasIsActive();
    void aHiddenCanvasStaysAsItWas();
    void aCanvasFollowsItsWindow();
    void aCanvasHearsWhatHasChangedWhileItWasHidden();
    void aWindowMayComeAndGoWhileACanvasIsHidden();
    void anotherCanvasIsActiveInstead_data();
    void anotherCanvasIsActiveInstead();
    void noCanvasIsHarmless();
};

void tst_CanvasActivity::aShownCanvasIsActive()
{
    const Windows windows;
    QVERIFY(windows.scene->isActive());
    QCOMPARE(windows.listener->activated, 1);
    QCOMPARE(windows.listener->deactivated, 0);
}

void tst_CanvasActivity::aHiddenCanvasStaysAsItWas()
{
    Windows windows;
    for (int i = 0; i < 3; ++i) {
        windows.view->hide();
        QVERIFY(!windows.view->isVisible());
        windows.view->show();
        QVERIFY(windows.scene->isActive());
    }
    QCOMPARE(windows.listener->activated, 1);
    QCOMPARE(windows.listener->deactivated, 0);
}

void tst_CanvasActivity::aCanvasFollowsItsWindow()
{
    Windows windows;
    windows.view->hide();
    windows.view->show();
    for (int times = 1; times <= 3; ++times) {
        Windows::toTheFront(windows.other);
        QVERIFY(!windows.scene->isActive());
        QCOMPARE(windows.listener->deactivated, times);
        Windows::toTheFront(windows.own);
        QVERIFY(windows.scene->isActive());
        QCOMPARE(windows.listener->activated, times + 1);
    }
}

void tst_CanvasActivity::aCanvasHearsWhatHasChangedWhileItWasHidden()
{
    Windows windows;
    windows.view->hide();
    Windows::toTheFront(windows.other);
    windows.view->show();
    QVERIFY(!windows.scene->isActive());
    QCOMPARE(windows.listener->deactivated, 1);
    windows.view->hide();
    Windows::toTheFront(windows.own);
    windows.view->show();
    QVERIFY(windows.scene->isActive());
    QCOMPARE(windows.listener->activated, 2);
    Windows::toTheFront(windows.other);
    QVERIFY(!windows.scene->isActive());
}

void tst_CanvasActivity::aWindowMayComeAndGoWhileACanvasIsHidden()
{
    Windows windows;
    windows.view->hide();
    Windows::toTheFront(windows.other);
    Windows::toTheFront(windows.own);
    windows.view->show();
    QVERIFY(windows.scene->isActive());
    QCOMPARE(windows.listener->activated, 1);
    Windows::toTheFront(windows.other);
    QVERIFY(!windows.scene->isActive());
    QCOMPARE(windows.listener->deactivated, 1);
}

void tst_CanvasActivity::anotherCanvasIsActiveInstead_data()
{
    QTest::addColumn<bool>("isHidden");
    QTest::newRow("in sight") << false;
    QTest::newRow("hidden") << true;
}

void tst_CanvasActivity::anotherCanvasIsActiveInstead()
{
    QFETCH(const bool, isHidden);
    NodegraphScene second;
    Windows windows;
    if (isHidden)
        windows.view->hide();
    windows.view->setNodegraphScene(&second);
    QVERIFY(!windows.scene->isActive());
    QCOMPARE(second.isActive(), !isHidden);
    windows.view->show();
    QVERIFY(second.isActive());
    Windows::toTheFront(windows.other);
    QVERIFY(!second.isActive());
    QCOMPARE(windows.listener->activated, 1);
    QCOMPARE(windows.listener->deactivated, 1);
}

void tst_CanvasActivity::noCanvasIsHarmless()
{
    Windows windows;
    windows.view->setNodegraphScene(nullptr);
    QVERIFY(!windows.scene->isActive());
    windows.view->hide();
    windows.view->show();
    Windows::toTheFront(windows.other);
    windows.view->setNodegraphScene(windows.scene);
    QVERIFY(!windows.scene->isActive());
    Windows::toTheFront(windows.own);
    QVERIFY(windows.scene->isActive());
}

QTEST_MAIN(tst_CanvasActivity)
#include "tst_canvasactivity.moc"
