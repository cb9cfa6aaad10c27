#include "app/windowsupport.h"
#include "support/testsupport.h"

#include <QAccessible>
#include <QFontMetricsF>
#include <QGraphicsView>
#include <QMenu>
#include <QMenuBar>
#include <QSignalSpy>
#include <QToolButton>

// The window without a mouse, without sight, and with letters that are larger than usual.

class tst_MainWindowAccess : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase() { ordinary = QApplication::font(); }
    void init()
    {
        // What the offscreen platform says of itself when a menu comes up is not the program's.
        QTest::failOnWarning(QRegularExpression(QStringLiteral("^(?!This plugin does not support )")));
        window = std::make_unique<MainWindow>();
        window->show();
        QVERIFY(QTest::qWaitForWindowActive(window.get()));
    }
    void cleanup()
    {
        window.reset();
        QApplication::setFont(ordinary);
        flushDeferredDeletes();
    }

    void everyButtonHasANameAndATip();
    void panelAndCanvasHaveNames();
    void canvasHasTheKeyboardAtTheStart();
    void canvasHasTheKeyboardAgain_data();
    void canvasHasTheKeyboardAgain();
    void otherTabsLeaveTheKeyboardWhereItIs();
    void menuKeyOpensTheFirstMenu();
    void menuKeyWorksWhileATextIsEdited();
    void everyMenuIsReachedByArrows();
    void tabsAreSwitchedByKey();
    void tabsComeAndGoByKey();
    void filterIsSwitchedByKey();
    void plusKeyZoomsInWithAndWithoutShift_data();
    void plusKeyZoomsInWithAndWithoutShift();
    void fixedButtonsShowTheirWholeText_data();
    void fixedButtonsShowTheirWholeText();
    void fontThatBecomesSmallerAgainIsTaken();

private:
    /// As the desktop's settings do; the windows hear of it by events.
    static void setApplicationFont(const QFont &font)
    {
        QApplication::setFont(font);
        QCoreApplication::processEvents();
    }
    static QString nameOf(QWidget *widget)
    {
        return QAccessible::queryAccessibleInterface(widget)->text(QAccessible::Name);
    }

    PrivateHome home;
    QFont ordinary;
    std::unique_ptr<MainWindow> window;
};

void tst_MainWindowAccess::everyButtonHasANameAndATip()
{
    for (const char *name : {"Add_NodeButton", "AddNodeGraph_tool_button", "F1_button"}) {
        QAbstractButton *button = buttonOf(*window, name);
        QVERIFY(!nameOf(button).isEmpty());
        QVERIFY(!button->toolTip().isEmpty());
    }
    QCOMPARE(nameOf(buttonOf(*window, "Add_NodeButton")), QStringLiteral("Add Event"));
    QCOMPARE(nameOf(buttonOf(*window, "AddNodeGraph_tool_button")), QStringLiteral("New Tab"));
    QCOMPARE(nameOf(buttonOf(*window, "F1_button")), QStringLiteral("Important events"));
    QCOMPARE(buttonOf(*window, "Add_NodeButton")->toolTip(), actionOf(*window, "actionAdd_Event")->toolTip());
    // The tab's close button is Qt's own.
    const QWidget *close = tabsOf(*window)->tabBar()->tabButton(0, QTabBar::RightSide);
    QVERIFY(close && !close->toolTip().isEmpty());
}

void tst_MainWindowAccess::panelAndCanvasHaveNames()
{
    QCOMPARE(nameOf(window->overviewerScene()->views().at(0)), QStringLiteral("Events of the story"));
    QCOMPARE(nameOf(tabsOf(*window)), QStringLiteral("Stories"));
    window->addNodeGraphTab();
    for (NodegraphView *view : window->views())
        QCOMPARE(nameOf(view), QStringLiteral("Graph of events"));
}

void tst_MainWindowAccess::canvasHasTheKeyboardAtTheStart()
{
    QCOMPARE(QApplication::focusWidget(), window->views().front());
}

void tst_MainWindowAccess::canvasHasTheKeyboardAgain_data()
{
    QTest::addColumn<QString>("after");
    for (const char *after : {"New and a new tab", "the current tab closed", "Open"})
        QTest::newRow(after) << QString::fromLatin1(after);
}

void tst_MainWindowAccess::canvasHasTheKeyboardAgain()
{
    QFETCH(QString, after);
    if (after.startsWith(QLatin1String("New"))) {
        QTest::keyClick(window.get(), Qt::Key_N, Qt::ControlModifier);
        QTest::keyClick(window.get(), Qt::Key_T, Qt::ControlModifier);
    } else if (after == QLatin1String("Open")) {
        const QString file = home.filePath(QStringLiteral("two.scene"));
        QVERIFY(writeFile(file, documentBytes({{}, {}})));
        QCOMPARE(openFile(*window, file), QString());
    } else {
        QTest::keyClick(window.get(), Qt::Key_T, Qt::ControlModifier);
        const DialogAnswers answers({press(QMessageBox::No)});
        QTest::keyClick(window.get(), Qt::Key_W, Qt::ControlModifier);
    }
    window->activateWindow(); // which a window manager does after a dialog
    QVERIFY(QTest::qWaitForWindowActive(window.get()));
    QCOMPARE(QApplication::focusWidget(), tabsOf(*window)->currentWidget());
    QVERIFY(QApplication::focusWidget());
    QTest::keyClick(QApplication::focusWidget(), Qt::Key_A, Qt::ControlModifier | Qt::ShiftModifier);
    QTest::keyClick(QApplication::focusWidget(), Qt::Key_F2);
    QTest::keyClicks(QApplication::focusWidget(), QStringLiteral("!"));
    const auto *view = static_cast<NodegraphView *>(tabsOf(*window)->currentWidget());
    QCOMPARE(titlesOf(view->nodegraphScene()), QStringList(QStringLiteral("!")));
}

void tst_MainWindowAccess::otherTabsLeaveTheKeyboardWhereItIs()
{
    QGraphicsView *panel = window->overviewerScene()->views().at(0);
    panel->setFocus();
    window->addNodeGraphTab();
    QCOMPARE(QApplication::focusWidget(), panel);
    const DialogAnswers answers({press(QMessageBox::No)});
    emit tabsOf(*window)->tabCloseRequested(1);
    window->activateWindow(); // which a window manager does after a dialog
    QVERIFY(QTest::qWaitForWindowActive(window.get()));
    QCOMPARE(QApplication::focusWidget(), panel);
}

void tst_MainWindowAccess::menuKeyOpensTheFirstMenu()
{
    auto *file = window->findChild<QMenu *>(QStringLiteral("menuFile"));
    QTest::keyClick(window.get(), Qt::Key_F10);
    QTRY_VERIFY(file->isVisible());
    QCOMPARE(window->menuBar()->activeAction(), file->menuAction());
    QCOMPARE(file->activeAction(), nullptr); // a second key by mistake must not discard everything
    file->close();
}

void tst_MainWindowAccess::menuKeyWorksWhileATextIsEdited()
{
    NodegraphScene *scene = sceneOf(*window, 0);
    Node *node = addEvent(scene, QStringLiteral("A"), QStringLiteral("text"));
    window->views().front()->setFocus();
    descriptionOf(node)->setFocus();
    QTest::keyClick(window->views().front(), Qt::Key_F10);
    auto *file = window->findChild<QMenu *>(QStringLiteral("menuFile"));
    QTRY_VERIFY(file->isVisible());
    file->close();
    QCOMPARE(descriptionOf(node)->toPlainText(), QStringLiteral("text"));
}

void tst_MainWindowAccess::everyMenuIsReachedByArrows()
{
    QTest::keyClick(window.get(), Qt::Key_F10);
    QStringList reached;
    for (int i = 0; i < 5; ++i) {
        auto *menu = qobject_cast<QMenu *>(QApplication::activePopupWidget());
        QVERIFY(menu);
        reached << menu->title();
        QTest::keyClick(menu, Qt::Key_Right);
    }
    QCOMPARE(reached.join(u' '), QStringLiteral("File Edit View Tools Help"));
    while (QWidget *popup = QApplication::activePopupWidget())
        popup->close();
}

void tst_MainWindowAccess::tabsAreSwitchedByKey()
{
    window->addNodeGraphTab();
    tabsOf(*window)->setFocus();
    QTest::keyClick(tabsOf(*window), Qt::Key_Tab, Qt::ControlModifier);
    QCOMPARE(tabsOf(*window)->currentIndex(), 1);
    QTest::keyClick(tabsOf(*window), Qt::Key_Tab, Qt::ControlModifier);
    QCOMPARE(tabsOf(*window)->currentIndex(), 0);
}

void tst_MainWindowAccess::tabsComeAndGoByKey()
{
    QTest::keyClick(window.get(), Qt::Key_T, Qt::ControlModifier);
    QCOMPARE(tabsOf(*window)->count(), 2);
    tabsOf(*window)->setCurrentIndex(1);
    const DialogAnswers answers({press(QMessageBox::No)});
    QTest::keyClick(window.get(), Qt::Key_W, Qt::ControlModifier);
    QCOMPARE(answers.problem(), QString());
    QCOMPARE(tabTitles(*window), QStringList(QStringLiteral("Story 1")));
    // Neither the last one nor one that is not there.
    QTest::keyClick(window.get(), Qt::Key_W, Qt::ControlModifier);
    QCOMPARE(tabsOf(*window)->count(), 1);
    window->clearTabs();
    QTest::keyClick(window.get(), Qt::Key_W, Qt::ControlModifier);
    QCOMPARE(tabsOf(*window)->count(), 0);
    QCOMPARE(answers.seen().size(), std::size_t(1));
}

void tst_MainWindowAccess::filterIsSwitchedByKey()
{
    NodegraphScene *scene = sceneOf(*window, 0);
    scene->setEndOfStory(addEvent(scene, QStringLiteral("A"), QStringLiteral("plain")));
    QCOMPARE(panelTexts(*window).size(), 1);
    QTest::keyClick(window.get(), Qt::Key_L, Qt::ControlModifier);
    QVERIFY(buttonOf(*window, "F1_button")->isChecked());
    QCOMPARE(panelTexts(*window), QStringList());
    QTest::keyClick(window.get(), Qt::Key_L, Qt::ControlModifier);
    QCOMPARE(panelTexts(*window).size(), 1);
}

void tst_MainWindowAccess::plusKeyZoomsInWithAndWithoutShift_data()
{
    QTest::addColumn<Qt::Key>("key");
    QTest::addColumn<Qt::KeyboardModifiers>("modifiers");
    QTest::newRow("plus") << Qt::Key_Plus << Qt::KeyboardModifiers(Qt::ControlModifier);
    QTest::newRow("the same key without Shift")
        << Qt::Key_Equal << Qt::KeyboardModifiers(Qt::ControlModifier);
    QTest::newRow("plus of the number pad") << Qt::Key_Plus << (Qt::ControlModifier | Qt::KeypadModifier);
}

void tst_MainWindowAccess::plusKeyZoomsInWithAndWithoutShift()
{
    QFETCH(const Qt::Key, key);
    QFETCH(const Qt::KeyboardModifiers, modifiers);
    NodegraphView *view = window->views().front();
    const double before = view->transform().m11();
    QSignalSpy zooms(actionOf(*window, "actionZoom_In"), &QAction::triggered);
    QTest::keyClick(view, key, modifiers);
    QCOMPARE(zooms.count(), 1);
    QVERIFY(view->transform().m11() > before);
    QCOMPARE(actionOf(*window, "actionZoom_In")->shortcut(), QKeySequence(QStringLiteral("Ctrl++")));
}

void tst_MainWindowAccess::fixedButtonsShowTheirWholeText_data()
{
    QTest::addColumn<double>("points");
    for (const double points : {7.0, 9.0, 12.0, 18.0, 24.0})
        QTest::addRow("%g points", points) << points;
}

void tst_MainWindowAccess::fixedButtonsShowTheirWholeText()
{
    QFETCH(const double, points);
    QFont font = ordinary;
    font.setPointSizeF(points);
    setApplicationFont(font);
    for (const char *name : {"AddNodeGraph_tool_button", "F1_button"}) {
        const QAbstractButton *button = buttonOf(*window, name);
        const QFontMetricsF metrics(button->font(), button);
        QVERIFY(metrics.horizontalAdvance(button->text()) <= button->width());
        QVERIFY(metrics.height() <= button->height());
        QVERIFY(button->font().pointSizeF() <= points);
        // No smaller than it has to be.
        QFont larger = button->font();
        larger.setPointSizeF(larger.pointSizeF() + 1.5);
        if (larger.pointSizeF() <= points)
            QVERIFY(QFontMetricsF(larger, button).horizontalAdvance(button->text()) > button->width() - 8);
    }
    QCOMPARE(buttonOf(*window, "AddNodeGraph_tool_button")->font().weight(), QFont::Bold);
}

void tst_MainWindowAccess::fontThatBecomesSmallerAgainIsTaken()
{
    const double before = buttonOf(*window, "F1_button")->font().pointSizeF();
    QFont font = ordinary;
    font.setPointSizeF(30);
    setApplicationFont(font);
    QVERIFY(buttonOf(*window, "F1_button")->font().pointSizeF() < 15);
    font.setPointSizeF(6);
    setApplicationFont(font);
    QCOMPARE(buttonOf(*window, "F1_button")->font().pointSizeF(), 6.0);
    setApplicationFont(ordinary);
    QCOMPARE(buttonOf(*window, "F1_button")->font().pointSizeF(), before);
}

QTEST_MAIN(tst_MainWindowAccess)
#include "tst_mainwindow_access.moc"
