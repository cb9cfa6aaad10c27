#include "app/commandlog.h"

#include <QDesktopServices>
#include <QUrl>
#include <QWheelEvent>

namespace {

/// Takes the place of the web browser.
class Browser : public QObject
{
    Q_OBJECT

public:
    explicit Browser(const LogCapture &capture) : log(capture)
    {
        QDesktopServices::setUrlHandler(QStringLiteral("https"), this, "open");
    }
    ~Browser() override { QDesktopServices::unsetUrlHandler(QStringLiteral("https")); }

    QList<QUrl> pages;
    QStringList linesBefore; // what was logged when the last page was opened

public slots:
    void open(const QUrl &page)
    {
        pages << page;
        linesBefore = log.lines();
    }

private:
    const LogCapture &log;
};

void turnWheel(NodegraphView *view, int delta)
{
    const QPointF middle = QRectF(view->viewport()->rect()).center();
    QWheelEvent event(middle, view->viewport()->mapToGlobal(middle), QPoint(), QPoint(0, delta), Qt::NoButton,
                      Qt::NoModifier, Qt::NoScrollPhase, false);
    QCoreApplication::sendEvent(view->viewport(), &event);
}

} // namespace

class tst_MainWindow_Commands_View : public WindowTest
{
    Q_OBJECT

private slots:
    void foreignPageIsLeftAlone_data() { addTabCommands(); }
    void foreignPageIsLeftAlone();

    void frame();
    void zoomInCompounds();
    void zoomOutCompounds();
    void zoomIsAbsolute_data();
    void zoomIsAbsolute();
    void zoomAndFrameResetTheDivisor_data();
    void zoomAndFrameResetTheDivisor();
    void help_data();
    void help();

    void unwiredActionsDoNothing_data();
    void unwiredActionsDoNothing();
    void shortcutsReachTheirActions_data();
    void shortcutsReachTheirActions();

private:
    void prepare() override { makeWindow(); }
    NodegraphView *view() const { return window->views().front(); }
    NodegraphScene *scene() const { return view()->nodegraphScene(); }
    void trigger(const char *action) const { actionOf(*window, action)->trigger(); }
};

void tst_MainWindow_Commands_View::foreignPageIsLeftAlone()
{
    QFETCH(const QStringList, lines);
    addChain(*scene(), 2);
    auto *page = new QWidget;
    tabsOf(*window)->addTab(page, QStringLiteral("Not a story"));
    tabsOf(*window)->setCurrentWidget(page);
    const int done = view()->undoStack()->index();
    const LogCapture log;
    trigger(QTest::currentDataTag());
    QCOMPARE(log.lines(), lines);
    QCOMPARE(scene()->nodes().size(), std::size_t(2));
    QCOMPARE(view()->undoStack()->index(), done);
}

void tst_MainWindow_Commands_View::frame()
{
    window->show();
    QVERIFY(QTest::qWaitForWindowExposed(window.get()));
    const std::vector<Node *> nodes = addChain(*scene(), 2);
    nodes[1]->setPos(30000, 40000);
    view()->setZoomDivisor(3.0);
    QSignalSpy framed(scene(), &NodegraphScene::s_frameView);
    trigger("actionFrame");

    QCOMPARE(framed.count(), 1);
    QCOMPARE(framed.front().front().toRectF(), nodes[1]->sceneBoundingRect().adjusted(-50, -50, 50, 50));
    QCOMPARE(view()->zoomDivisor(), 1.0);
    const QRectF shown = view()->mapToScene(view()->viewport()->rect()).boundingRect();
    QVERIFY(shown.contains(nodes[1]->sceneBoundingRect()));
}

void tst_MainWindow_Commands_View::zoomInCompounds()
{
    const LogCapture log;
    trigger("actionZoom_In");
    QCOMPARE(view()->transform(), QTransform::fromScale(1.2, 1.2));
    trigger("actionZoom_In");
    QCOMPARE(view()->transform(), QTransform::fromScale(1.2 * 1.2, 1.2 * 1.2));
    QCOMPARE(log.lines(), QStringList({QStringLiteral("ZoomingIn"), QStringLiteral("ZoomingIn")}));

    trigger("actionZoom_to_100");
    QVERIFY(view()->transform().isIdentity());
}

void tst_MainWindow_Commands_View::zoomOutCompounds()
{
    const LogCapture log;
    trigger("actionZoom_Out");
    QCOMPARE(view()->transform(), QTransform::fromScale(0.8, 0.8));
    trigger("actionZoom_Out");
    QCOMPARE(view()->transform(), QTransform::fromScale(0.8 * 0.8, 0.8 * 0.8));
    QCOMPARE(log.lines(), QStringList());
}

void tst_MainWindow_Commands_View::zoomIsAbsolute_data()
{
    QTest::addColumn<double>("scale");
    QTest::newRow("actionZoom_to_50") << 0.5;
    QTest::newRow("actionZoom_to_100") << 1.0;
    QTest::newRow("actionZoom_to_200") << 2.0;
}

void tst_MainWindow_Commands_View::zoomIsAbsolute()
{
    QFETCH(const double, scale);
    turnWheel(view(), 360);
    view()->rotate(30);
    view()->translate(11, 12);
    QVERIFY(view()->zoomDivisor() != 1.0);
    const LogCapture log;
    for (int i = 0; i < 2; ++i) {
        trigger(QTest::currentDataTag());
        const QTransform transform = view()->transform();
        QVERIFY(transform == QTransform::fromScale(scale, scale)); // exactly, not nearly
        QVERIFY(view()->zoomDivisor() == 1.0);
    }
    QCOMPARE(log.lines(), QStringList());
}

void tst_MainWindow_Commands_View::zoomAndFrameResetTheDivisor_data()
{
    QTest::addColumn<QByteArray>("action");
    for (const char *action : {"actionFrame", "actionZoom_In", "actionZoom_Out", "actionZoom_to_50",
                               "actionZoom_to_100", "actionZoom_to_200"})
        QTest::newRow(action) << QByteArray(action);
}

void tst_MainWindow_Commands_View::zoomAndFrameResetTheDivisor()
{
    QFETCH(const QByteArray, action);
    turnWheel(view(), 120);
    QVERIFY(view()->zoomDivisor() != 1.0);
    trigger(action);
    QCOMPARE(view()->zoomDivisor(), 1.0);
}

void tst_MainWindow_Commands_View::help_data()
{
    QTest::addColumn<bool>("withTab");
    QTest::newRow("with a tab") << true;
    QTest::newRow("without a tab") << false;
}

void tst_MainWindow_Commands_View::help()
{
    QFETCH(const bool, withTab);
    if (!withTab)
        window->clearTabs();
    const LogCapture log;
    const Browser browser(log);
    trigger("actionHelp_and_Support");

    QCOMPARE(browser.pages.size(), 1);
    const QUrl page = browser.pages.front();
    QVERIFY(page.isValid());
    QCOMPARE(page.scheme(), QStringLiteral("https"));
    QVERIFY(!page.host().isEmpty());
    QCOMPARE(page.path(), QStringLiteral("/documentation"));
    QCOMPARE(page.toString(), QStringLiteral("https://%1/documentation").arg(page.host()));
    QCOMPARE(browser.linesBefore, QStringList());
    QCOMPARE(log.lines(), QStringList{QStringLiteral("Opening Support page")});
}

void tst_MainWindow_Commands_View::unwiredActionsDoNothing_data()
{
    QTest::addColumn<QByteArray>("action");
    QTest::newRow("Close/Exit") << QByteArrayLiteral("actionClose");
    QTest::newRow("Shortcuts") << QByteArrayLiteral("actionShortcuts");
}

void tst_MainWindow_Commands_View::unwiredActionsDoNothing()
{
    QFETCH(const QByteArray, action);
    window->show();
    addChain(*scene(), 1);
    const DialogAnswers nothing;
    const LogCapture log;
    trigger(action);
    QCoreApplication::processEvents();
    QCOMPARE(log.lines(), QStringList());
    QVERIFY(window->isVisible());
    QCOMPARE(tabsOf(*window)->count(), 1);
}

void tst_MainWindow_Commands_View::shortcutsReachTheirActions_data()
{
    QTest::addColumn<int>("dialogs");
    for (const char *action :
         {"actionNew", "actionUndo", "actionRedo", "actionCut", "actionCopy", "actionPaste",
          "actionSelect_All", "actionDelete", "actionZoom_In", "actionZoom_Out", "actionFrame",
          "actionSet_End_of_Story", "actionSet_as_Important", "actionAdd_Event"})
        QTest::newRow(action) << 0;
    QTest::newRow("actionOpen") << 1;
    QTest::newRow("actionSave") << 1;
}

// The keys are pressed where the user's are: in the canvas.
void tst_MainWindow_Commands_View::shortcutsReachTheirActions()
{
    QFETCH(const int, dialogs);
    window->show();
    window->activateWindow();
    QVERIFY(QTest::qWaitForWindowActive(window.get()));
    addChain(*scene(), 1);
    view()->setFocus();
    const QAction *action = actionOf(*window, QTest::currentDataTag());
    QSignalSpy triggered(action, &QAction::triggered);
    const DialogAnswers answers(std::vector<DialogAnswers::Answer>(std::size_t(dialogs), pressEscape()));
    const QKeyCombination keys = action->shortcut()[0];
    QTest::keyClick(view(), keys.key(), keys.keyboardModifiers());
    QCOMPARE(triggered.count(), 1);
}

QTEST_MAIN(tst_MainWindow_Commands_View)
#include "tst_mainwindow_commands_view.moc"
