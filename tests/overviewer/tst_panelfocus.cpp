#include "overviewer/panelwindow.h"

#include <QMenuBar>

using namespace Qt::StringLiterals;

// All entries of the panel are made anew with every story. The keyboard stays where the writer is, and never
// goes to where nobody looks.

namespace {

constexpr int written = 1; // the event whose entry is written in

} // namespace

class tst_PanelFocus : public QObject
{
    Q_OBJECT

private slots:
    void init()
    {
        // What the offscreen platform says of itself when a menu comes up is not the program's.
        QTest::failOnWarning(QRegularExpression(u"^(?!This plugin does not support )"_s));
    }

    void keysStayInTheEntry_data() { addPanelCommandRows(); }
    void keysStayInTheEntry();
    void selectionStays_data() { addPanelCommandRows(); }
    void selectionStays();
    void historyOfTheTextStays_data() { addPanelCommandRows(); }
    void historyOfTheTextStays();
    void entryFarDownKeepsTheKeyboard();
    void commandOfAMenuLeavesTheKeyboard();
    void windowInTheBackgroundKeepsTheKeyboard();
    void keysChangeNothingOnceTheEventIsGone_data();
    void keysChangeNothingOnceTheEventIsGone();
    void keyboardComesBackWithTheEvent_data();
    void keyboardComesBackWithTheEvent();
    void otherTabHasOtherEvents();
    void keyboardThatWentElsewhereStaysThere_data();
    void keyboardThatWentElsewhereStaysThere();
    void textThatChangedMeanwhileIsShown();
    void clickOnAnotherEntryGoesThere();
    void windowMayGoWhileATextIsWritten();

private:
    static void runRow(PanelWindow &window)
    {
        QFETCH(int, command);
        panelCommands().at(std::size_t(command)).run(window);
    }
    static void prepareRow(PanelWindow &window)
    {
        QFETCH(int, command);
        panelCommands().at(std::size_t(command)).prepare(window);
    }
};

// Each story deleted the text that had the keyboard: the next letters were lost, and Del was the window's.
void tst_PanelFocus::keysStayInTheEntry()
{
    PanelWindow w(5);
    prepareRow(w);
    w.click(written);
    w.type(u"abcxy"_s);
    w.key(Qt::Key_Left);
    w.key(Qt::Key_Left);
    const QPointer<OvNode> before = w.entryOf(written);
    runRow(w);
    QVERIFY(before.isNull()); // or nothing was made anew
    const std::size_t events = w.scene.nodes().size();
    w.type(u"def"_s);
    w.key(Qt::Key_Delete);
    QCOMPARE(w.entryText(written), u"abcdefy"_s);
    QCOMPARE(w.description(written), u"abcdefy"_s);
    QCOMPARE(w.scene.nodes().size(), events);
    QVERIFY(descriptionOf(w.entryOf(written))->hasFocus());
    QCOMPARE(QApplication::focusWidget(), &w.view);
}

void tst_PanelFocus::selectionStays()
{
    PanelWindow w(5);
    prepareRow(w);
    w.click(written);
    w.type(u"one two three"_s);
    for (int i = 0; i < 6; ++i)
        w.key(Qt::Key_Left);
    for (int i = 0; i < 3; ++i)
        w.key(Qt::Key_Left, Qt::ShiftModifier);
    runRow(w);
    QVERIFY(w.entryOf(written));
    const QTextCursor cursor = descriptionOf(w.entryOf(written))->textCursor();
    QCOMPARE(cursor.selectedText(), u"two"_s);
    QVERIFY(cursor.position() < cursor.anchor());
    w.type(u"2"_s);
    QCOMPARE(w.description(written), u"one 2 three"_s);
}

void tst_PanelFocus::historyOfTheTextStays()
{
    PanelWindow w(5);
    prepareRow(w);
    w.click(written);
    w.type(u"abc"_s);
    w.key(Qt::Key_Left);
    w.key(Qt::Key_Backspace);
    QCOMPARE(w.description(written), u"ac"_s);
    runRow(w);
    const std::size_t events = w.scene.nodes().size();
    w.key(Qt::Key_Z, Qt::ControlModifier);
    QCOMPARE(w.entryText(written), u"abc"_s);
    QCOMPARE(w.description(written), u"abc"_s);
    w.key(Qt::Key_Y, Qt::ControlModifier);
    QCOMPARE(w.entryText(written), u"ac"_s);
    QCOMPARE(w.scene.nodes().size(), events);
}

// Entries beyond the first screen are made when they are needed, and this one is.
void tst_PanelFocus::entryFarDownKeepsTheKeyboard()
{
    PanelWindow w(60);
    w.click(50);
    w.type(u"abc"_s);
    w.key(Qt::Key_I, Qt::ControlModifier);
    w.type(u"def"_s);
    QCOMPARE(w.description(50), u"abcdef"_s);
    QCOMPARE(w.scene.nodes().size(), std::size_t(60));
}

// A menu takes the keyboard while it is open.
void tst_PanelFocus::commandOfAMenuLeavesTheKeyboard()
{
    PanelWindow w(5);
    w.click(written);
    w.type(u"abc"_s);
    w.key(Qt::Key_F10);
    const QAction *importance = actionOf(w.window, "actionSet_as_Important");
    const auto openMenu = [] { return qobject_cast<QMenu *>(QApplication::activePopupWidget()); };
    QTRY_VERIFY(openMenu());
    while (!openMenu()->actions().contains(importance))
        QTest::keyClick(openMenu(), Qt::Key_Right);
    while (openMenu()->activeAction() != importance)
        QTest::keyClick(openMenu(), Qt::Key_Down);
    QTest::keyClick(openMenu(), Qt::Key_Return);
    QVERIFY(w.node(4)->isImportant());
    w.type(u"def"_s);
    w.key(Qt::Key_Delete);
    QCOMPARE(w.description(written), u"abcdef"_s);
    QCOMPARE(w.scene.nodes().size(), std::size_t(5));
}

void tst_PanelFocus::windowInTheBackgroundKeepsTheKeyboard()
{
    PanelWindow w(5);
    w.click(written);
    w.type(u"abc"_s);
    QWidget other;
    other.show();
    other.activateWindow();
    QVERIFY(QTest::qWaitForWindowActive(&other));
    w.command("actionUndo");
    w.window.activateWindow();
    QVERIFY(w.isReady());
    w.type(u"def"_s);
    QCOMPARE(w.description(written), u"abcdef"_s);
}

void tst_PanelFocus::keysChangeNothingOnceTheEventIsGone_data()
{
    QTest::addColumn<QString>("reason");
    for (const char *reason : {"deleted", "not important", "behind the end", "other tab", "taken back"})
        QTest::newRow(reason) << QString::fromLatin1(reason);
}

// With nothing in the panel to take them, these keys were the window's: they took events off the canvas.
void tst_PanelFocus::keysChangeNothingOnceTheEventIsGone()
{
    QFETCH(const QString, reason);
    PanelWindow w(5);
    w.window.addNodeGraphTab();
    const int last = 4;
    w.click(last);
    w.type(u"abc"_s);
    if (reason == u"deleted"_s)
        w.command("actionDelete");
    else if (reason == u"not important"_s)
        w.key(Qt::Key_L, Qt::ControlModifier);
    else if (reason == u"behind the end"_s)
        w.scene.setEndOfStory(w.node(2));
    else if (reason == u"other tab"_s)
        w.clickTab(1);
    else
        w.command("actionUndo");
    QCOMPARE(w.entryOf(last), nullptr);
    QCOMPARE(w.panel.focusItem(), nullptr);
    QCOMPARE(QApplication::focusWidget(), &w.view);

    const QByteArray before = w.document();
    const QStringList listed = panelTexts(w.window);
    w.type(u"xyz"_s);
    for (const Qt::Key key : {Qt::Key_Delete, Qt::Key_Backspace, Qt::Key_Space})
        w.key(key);
    for (const Qt::Key key : {Qt::Key_Z, Qt::Key_Y, Qt::Key_C, Qt::Key_X, Qt::Key_V, Qt::Key_A})
        w.key(key, Qt::ControlModifier);
    w.key(Qt::Key_Delete);
    QCOMPARE(w.document(), before);
    QCOMPARE(panelTexts(w.window), listed);
    for (const Node *node : w.scene.nodes())
        QVERIFY(node->isVisible());

    // The other commands are for the window as ever.
    NodegraphScene *current =
        static_cast<NodegraphView *>(tabsOf(w.window)->currentWidget())->nodegraphScene();
    const std::size_t events = current->nodes().size();
    w.key(Qt::Key_A, Qt::ControlModifier | Qt::ShiftModifier);
    QCOMPARE(current->nodes().size(), events + 1);
}

void tst_PanelFocus::keyboardComesBackWithTheEvent_data()
{
    QTest::addColumn<QString>("way");
    for (const char *way : {"delete and undo", "filter", "end of story", "tabs"})
        QTest::newRow(way) << QString::fromLatin1(way);
}

void tst_PanelFocus::keyboardComesBackWithTheEvent()
{
    QFETCH(const QString, way);
    PanelWindow w(5);
    w.window.addNodeGraphTab();
    w.click(written);
    w.type(u"abc"_s);
    w.key(Qt::Key_Left);
    const auto leaveAndReturn = [&](const std::function<void()> &leave, const std::function<void()> &back) {
        leave();
        flushDeferredDeletes(); // a node that is gone is really gone
        QCOMPARE(w.panel.focusItem(), nullptr);
        w.type(u"lost"_s);
        back();
    };
    if (way == u"delete and undo"_s) {
        w.scene.sl_selectCurrentNode(w.node(written));
        leaveAndReturn([&] { w.command("actionDelete"); }, [&] { w.command("actionUndo"); });
    } else if (way == u"filter"_s) {
        const auto filter = [&] { w.key(Qt::Key_L, Qt::ControlModifier); };
        leaveAndReturn(filter, filter);
    } else if (way == u"end of story"_s) {
        leaveAndReturn([&] { w.scene.setEndOfStory(w.node(0)); }, [&] { w.scene.setEndOfStory(w.node(3)); });
    } else {
        leaveAndReturn([&] { w.clickTab(1); }, [&] { w.clickTab(0); });
    }
    w.type(u"def"_s);
    QCOMPARE(w.entryText(written), u"abdefc"_s);
    QCOMPARE(w.description(written), u"abdefc"_s);
}

// Every tab counts its events from 0.
void tst_PanelFocus::otherTabHasOtherEvents()
{
    PanelWindow w(3);
    w.window.addNodeGraphTab();
    NodegraphScene *second = sceneOf(w.window, 1);
    for (int i = 0; i < 3; ++i)
        second->sl_addEventNode();
    w.clickTab(0);
    w.window.currentTabChanged(0);
    w.click(written);
    w.type(u"abc"_s);
    w.clickTab(1);
    QVERIFY(w.entryOf(written));
    QCOMPARE(w.panel.focusItem(), nullptr);
    const QByteArray before = w.document();
    w.type(u"def"_s);
    w.key(Qt::Key_Delete);
    QCOMPARE(w.document(), before);
    w.clickTab(0);
    w.type(u"ghi"_s);
    QCOMPARE(w.description(written), u"abcghi"_s);
}

void tst_PanelFocus::keyboardThatWentElsewhereStaysThere_data()
{
    QTest::addColumn<QString>("place");
    for (const char *place : {"the canvas", "the free part of the panel", "another entry"})
        QTest::newRow(place) << QString::fromLatin1(place);
}

void tst_PanelFocus::keyboardThatWentElsewhereStaysThere()
{
    QFETCH(const QString, place);
    PanelWindow w(3);
    w.click(2);
    w.type(u"abc"_s);
    w.scene.setEndOfStory(w.node(1));
    QCOMPARE(w.entryOf(2), nullptr);
    if (place == u"the canvas"_s)
        w.window.views().front()->setFocus(Qt::MouseFocusReason);
    else if (place == u"another entry"_s)
        w.click(0);
    else
        QTest::mouseClick(w.view.viewport(), Qt::LeftButton, {},
                          w.view.viewport()->rect().bottomLeft() + QPoint(20, -20));
    const QWidget *keyboard = QApplication::focusWidget();
    w.scene.setEndOfStory(w.node(2));
    QVERIFY(w.entryOf(2));
    QCOMPARE(QApplication::focusWidget(), keyboard);
    w.type(u"def"_s);
    QCOMPARE(w.description(2), u"abc"_s);
    if (place == u"another entry"_s)
        QCOMPARE(w.description(0), u"def"_s);
    else
        QCOMPARE(w.panel.focusItem(), nullptr);
}

void tst_PanelFocus::textThatChangedMeanwhileIsShown()
{
    PanelWindow w(3);
    w.click(written);
    w.type(u"a long text"_s);
    w.key(Qt::Key_L, Qt::ControlModifier);
    QCOMPARE(w.entries().size(), std::size_t(0));
    typeInto(descriptionOf(w.node(written)), u"short"_s);
    w.key(Qt::Key_L, Qt::ControlModifier);
    QCOMPARE(w.entryText(written), u"short"_s);
    w.type(u"er"_s);
    QCOMPARE(w.entryText(written), u"shorter"_s);
    QCOMPARE(w.description(written), u"shorter"_s);
}

void tst_PanelFocus::clickOnAnotherEntryGoesThere()
{
    PanelWindow w(3);
    w.click(written);
    w.type(u"abc"_s);
    w.click(2);
    w.key(Qt::Key_I, Qt::ControlModifier);
    w.type(u"def"_s);
    QCOMPARE(w.description(written), u"abc"_s);
    QCOMPARE(w.description(2), u"def"_s);
}

// The entries go after the panel, and the keyboard with them.
void tst_PanelFocus::windowMayGoWhileATextIsWritten()
{
    QPointer<STLineEdit> text;
    {
        PanelWindow w(3);
        w.click(written);
        w.type(u"abc"_s);
        text = descriptionOf(w.entryOf(written));
        QVERIFY(text->hasFocus());
    }
    QVERIFY(text.isNull());
    {
        PanelWindow w(3);
        w.click(written);
        text = descriptionOf(w.entryOf(written));
        w.key(Qt::Key_L, Qt::ControlModifier); // it waits, and nobody comes for it
        QVERIFY(!text.isNull());
    }
    QVERIFY(text.isNull());
}

QTEST_MAIN(tst_PanelFocus)
#include "tst_panelfocus.moc"
