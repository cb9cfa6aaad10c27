#include "app/contrast.h"
#include "overviewer/panelwindow.h"

#include <QImage>

using namespace Qt::StringLiterals;

// The panel without a mouse.

namespace {

/// Presses Tab, or Shift+Tab, until the panel has the keyboard; false if it never gets it.
bool reachPanel(PanelWindow &w, Qt::KeyboardModifiers modifiers = Qt::NoModifier)
{
    for (int i = 0; i < 12 && !w.view.hasFocus(); ++i)
        w.key(modifiers ? Qt::Key_Backtab : Qt::Key_Tab, modifiers);
    return w.view.hasFocus();
}

QImage pictureOf(const PanelWindow &w) { return w.view.viewport()->grab().toImage(); }

/// Where two pictures differ; pixels of the view.
QRect difference(const QImage &a, const QImage &b)
{
    QRect all;
    for (int x = 0; x < a.width(); ++x) {
        for (int y = 0; y < a.height(); ++y) {
            if (a.pixel(x, y) != b.pixel(x, y))
                all |= QRect(x, y, 1, 1);
        }
    }
    return all;
}

QRect placeOf(const PanelWindow &w, int index)
{
    return w.view.viewportTransform().mapRect(w.entryOf(index)->sceneBoundingRect()).toAlignedRect();
}

/// A chain of events, as it stands in a file.
QByteArray chain(int events)
{
    std::vector<Record> records;
    for (int i = 0; i < events; ++i)
        records.push_back(
            {u"Event"_s, QPointF(500.0 * i, 0), i, i - 1, i == events - 1, false, u"Text %1"_s.arg(i)});
    return documentBytes({records});
}

} // namespace

class tst_PanelKeys : public ProgramTest
{
    Q_OBJECT

private slots:
    void tabComesAndGoes_data();
    void tabComesAndGoes();
    void tabLeavesTheCanvas_data() { tabComesAndGoes_data(); }
    void tabLeavesTheCanvas();
    void tabComesToTheCanvas();
    void markIsSeenWhileThePanelHasTheKeyboard();
    void markStandsOut();
    void keysGoAboutTheEntries_data();
    void keysGoAboutTheEntries();
    void beginningToWrite_data();
    void beginningToWrite();
    void escapeLeavesTheText();
    void markFollowsItsEvent_data() { addPanelCommandRows(); }
    void markFollowsItsEvent();
    void markGoesWithItsEvent();
    void keysOfATextDoNothingWithoutOne();
    void clickWritesAtOnce();
    void longListIsGoneAboutAsAnyOther();
};

void tst_PanelKeys::tabComesAndGoes_data()
{
    QTest::addColumn<Qt::KeyboardModifiers>("modifiers");
    QTest::newRow("Tab") << Qt::KeyboardModifiers(Qt::NoModifier);
    QTest::newRow("Shift+Tab") << Qt::KeyboardModifiers(Qt::ShiftModifier);
}

// It ended in the text that had the keyboard last, and each further one was written into the story.
void tst_PanelKeys::tabComesAndGoes()
{
    QFETCH(const Qt::KeyboardModifiers, modifiers);
    PanelWindow w(3);
    w.click(1);
    w.type(u"abc"_s);
    w.window.views().front()->setFocus(Qt::MouseFocusReason);
    const QByteArray before = w.document();
    QCOMPARE(QApplication::focusWidget(), w.window.views().front());
    for (int round = 0; round < 2; ++round) {
        QVERIFY(reachPanel(w, modifiers));
        QCOMPARE(w.panel.focusItem(), nullptr);
        w.key(modifiers ? Qt::Key_Backtab : Qt::Key_Tab, modifiers);
        QVERIFY(!w.view.hasFocus());
    }
    QCOMPARE(w.document(), before);
}

// The canvas kept the next one in the text that was left last.
void tst_PanelKeys::tabLeavesTheCanvas()
{
    QFETCH(const Qt::KeyboardModifiers, modifiers);
    PanelWindow w(3);
    w.key(Qt::Key_F2);
    w.type(u"abc"_s);
    w.key(Qt::Key_Escape);
    const QByteArray before = w.document();
    w.key(modifiers ? Qt::Key_Backtab : Qt::Key_Tab, modifiers);
    QVERIFY(!w.window.views().front()->hasFocus());
    QVERIFY(reachPanel(w, modifiers));
    QCOMPARE(w.scene.focusItem(), nullptr);
    QCOMPARE(w.document(), before);
}

// The text that had the keyboard when the canvas lost it got it back.
void tst_PanelKeys::tabComesToTheCanvas()
{
    PanelWindow w(3);
    w.key(Qt::Key_F2);
    w.type(u"abc"_s);
    w.click(1);
    const QByteArray before = w.document();
    w.window.views().front()->setFocus(Qt::TabFocusReason);
    QVERIFY(w.window.views().front()->hasFocus());
    QCOMPARE(w.scene.focusItem(), nullptr);
    w.window.views().front()->clearFocus();
    w.window.views().front()->setFocus(Qt::ActiveWindowFocusReason);
    QCOMPARE(w.scene.focusItem(), nullptr);
    w.type(u"def"_s);
    QCOMPARE(w.document(), before);
}

void tst_PanelKeys::markIsSeenWhileThePanelHasTheKeyboard()
{
    PanelWindow w(3);
    const QImage unmarked = pictureOf(w);
    QVERIFY(reachPanel(w));
    QVERIFY(placeOf(w, 0).contains(difference(unmarked, pictureOf(w))));
    QVERIFY(!difference(unmarked, pictureOf(w)).isEmpty());
    w.key(Qt::Key_Down);
    QVERIFY(placeOf(w, 1).contains(difference(unmarked, pictureOf(w))));
    w.key(Qt::Key_Tab);
    QVERIFY(!w.view.hasFocus());
    QCOMPARE(pictureOf(w), unmarked);
    QVERIFY(reachPanel(w, Qt::ShiftModifier)); // and where it was it is again
    QVERIFY(placeOf(w, 1).contains(difference(unmarked, pictureOf(w))));
}

void tst_PanelKeys::markStandsOut()
{
    PanelWindow w(3);
    w.node(1)->setImportant(true);
    const QImage unmarked = pictureOf(w);
    QVERIFY(reachPanel(w));
    w.key(Qt::Key_Down);
    const QImage marked = pictureOf(w);
    const QRect outline = difference(unmarked, marked);
    // Its left side, half way down, is as wide as the outline of what is important at least, and leaves that.
    const int y = outline.center().y();
    int wide = 0;
    for (int x = outline.left(); x < outline.left() + 10; ++x) {
        const QColor color = marked.pixelColor(x, y);
        wide += contrast(color, QColor(u"#EAEAEA"_s)) >= 4.5 && contrast(color, QColor(u"#F5F5F5"_s)) >= 4.5;
    }
    QVERIFY(wide >= 2);
    for (int x = 0; x < outline.left(); ++x)
        QCOMPARE(marked.pixel(x, y), unmarked.pixel(x, y));
}

void tst_PanelKeys::keysGoAboutTheEntries_data()
{
    QTest::addColumn<QList<int>>("keys");
    QTest::addColumn<int>("index");
    QTest::newRow("none") << QList<int>{} << 0;
    QTest::newRow("down") << QList<int>{Qt::Key_Down} << 1;
    QTest::newRow("down, down, up") << QList<int>{Qt::Key_Down, Qt::Key_Down, Qt::Key_Up} << 1;
    QTest::newRow("up at the top") << QList<int>{Qt::Key_Up} << 0;
    QTest::newRow("end") << QList<int>{Qt::Key_End} << 39;
    QTest::newRow("down at the end") << QList<int>{Qt::Key_End, Qt::Key_Down} << 39;
    QTest::newRow("end, up") << QList<int>{Qt::Key_End, Qt::Key_Up} << 38;
    QTest::newRow("home") << QList<int>{Qt::Key_End, Qt::Key_Home} << 0;
    QTest::newRow("a page there and back") << QList<int>{Qt::Key_PageDown, Qt::Key_PageUp} << 0;
    QTest::newRow("pages to the end") << QList<int>(20, Qt::Key_PageDown) << 39;
}

void tst_PanelKeys::keysGoAboutTheEntries()
{
    QFETCH(const QList<int>, keys);
    QFETCH(const int, index);
    PanelWindow w(40);
    QVERIFY(reachPanel(w));
    for (const int key : keys)
        w.key(Qt::Key(key));
    QVERIFY(w.view.viewport()->rect().contains(placeOf(w, index).adjusted(1, 1, -1, -1)));
    w.key(Qt::Key_Return);
    w.type(u"written"_s);
    QCOMPARE(w.description(index), u"written"_s);
    QCOMPARE(w.entryText(index), u"written"_s);
}

void tst_PanelKeys::beginningToWrite_data()
{
    QTest::addColumn<int>("key");
    QTest::newRow("F2") << int(Qt::Key_F2);
    QTest::newRow("Return") << int(Qt::Key_Return);
    QTest::newRow("Enter") << int(Qt::Key_Enter);
}

void tst_PanelKeys::beginningToWrite()
{
    QFETCH(const int, key);
    PanelWindow w(2);
    typeInto(descriptionOf(w.node(0)), u"first\nsecond"_s);
    QVERIFY(reachPanel(w));
    w.key(Qt::Key(key));
    w.type(u" line"_s);
    QCOMPARE(w.description(0), u"first\nsecond line"_s);
    w.key(Qt::Key_Escape);
    w.key(Qt::Key_Down);
    w.key(Qt::Key(key));
    QCOMPARE(w.description(1), QString()); // it asked for a description
    w.type(u"typed"_s);
    QCOMPARE(w.description(1), u"typed"_s);
}

void tst_PanelKeys::escapeLeavesTheText()
{
    PanelWindow w(3);
    w.click(1);
    w.type(u"abc"_s);
    const QImage unmarked = pictureOf(w);
    w.key(Qt::Key_Escape);
    QCOMPARE(w.panel.focusItem(), nullptr);
    QCOMPARE(QApplication::focusWidget(), &w.view);
    QVERIFY(placeOf(w, 1).contains(difference(unmarked, pictureOf(w))));
    w.type(u"lost"_s);
    QCOMPARE(w.description(1), u"abc"_s);
    w.key(Qt::Key_I, Qt::ControlModifier); // no text takes the keyboard back
    QCOMPARE(w.panel.focusItem(), nullptr);
    w.key(Qt::Key_Return);
    w.type(u"def"_s);
    QCOMPARE(w.description(1), u"abcdef"_s);
    w.key(Qt::Key_Escape);
    w.key(Qt::Key_Tab);
    QVERIFY(!w.view.hasFocus());
    QCOMPARE(w.description(1), u"abcdef"_s);
}

void tst_PanelKeys::markFollowsItsEvent()
{
    QFETCH(const int, command);
    PanelWindow w(5);
    panelCommands().at(std::size_t(command)).prepare(w);
    w.window.views().front()->setFocus();
    QVERIFY(reachPanel(w));
    w.key(Qt::Key_Home);
    for (std::size_t place = 0; w.entries().at(place)->getIndex() != 1; ++place)
        w.key(Qt::Key_Down);
    panelCommands().at(std::size_t(command)).run(w);
    QVERIFY(w.view.hasFocus());
    const QImage marked = pictureOf(w);
    w.key(Qt::Key_Return);
    w.type(u"abc"_s);
    QCOMPARE(w.description(1), u"abc"_s);
    w.key(Qt::Key_Escape);
    const QImage again = pictureOf(w);
    QVERIFY(placeOf(w, 1).contains(difference(marked, again))); // it is the words that are new
}

void tst_PanelKeys::markGoesWithItsEvent()
{
    PanelWindow w(5);
    QVERIFY(reachPanel(w));
    w.key(Qt::Key_End);
    w.command("actionUndo");
    const QImage unmarked = pictureOf(w);
    const QByteArray before = w.document();
    w.key(Qt::Key_Return);
    w.type(u"lost"_s);
    w.key(Qt::Key_Delete);
    QCOMPARE(w.document(), before);
    QCOMPARE(w.panel.focusItem(), nullptr);
    w.key(Qt::Key_Down);
    QVERIFY(placeOf(w, 0).contains(difference(unmarked, pictureOf(w))));
    w.key(Qt::Key_F2);
    w.type(u"found"_s);
    QCOMPARE(w.description(0), u"found"_s);
}

// The panel lists texts; who presses Del there does not mean an event of the canvas.
void tst_PanelKeys::keysOfATextDoNothingWithoutOne()
{
    PanelWindow w(3);
    QVERIFY(reachPanel(w));
    const QByteArray before = w.document();
    for (const Qt::Key key : {Qt::Key_Delete, Qt::Key_Backspace, Qt::Key_Space})
        w.key(key);
    for (const Qt::Key key : {Qt::Key_Z, Qt::Key_Y, Qt::Key_X, Qt::Key_C, Qt::Key_V})
        w.key(key, Qt::ControlModifier);
    QCOMPARE(w.document(), before);
    for (const Node *node : w.scene.nodes())
        QVERIFY(node->isVisible());
    w.key(Qt::Key_I, Qt::ControlModifier);
    QVERIFY(w.node(2)->isImportant());
    w.window.views().front()->setFocus(Qt::MouseFocusReason);
    w.key(Qt::Key_Delete);
    QCOMPARE(w.scene.nodes().size(), std::size_t(2));
}

void tst_PanelKeys::clickWritesAtOnce()
{
    PanelWindow w(3);
    QVERIFY(reachPanel(w));
    w.click(1);
    w.type(u"abc"_s);
    QCOMPARE(w.description(1), u"abc"_s);
    const QImage written = pictureOf(w);
    w.key(Qt::Key_Escape);
    const QRect mark = difference(written, pictureOf(w));
    QVERIFY(placeOf(w, 1).contains(mark) &&
            mark.height() > placeOf(w, 1).height() / 2); // on it, and only now
}

void tst_PanelKeys::longListIsGoneAboutAsAnyOther()
{
    PanelWindow w(0);
    const QString file = w.home.filePath(u"long.scene"_s);
    QVERIFY(writeFile(file, chain(3000)));
    w.window.loadFrom(file);
    QCOMPARE(w.entries().size(), std::size_t(3000));
    w.window.views().front()->setFocus();
    QVERIFY(reachPanel(w));
    w.key(Qt::Key_End);
    w.key(Qt::Key_Up);
    w.key(Qt::Key_F2);
    w.type(u"!"_s);
    QCOMPARE(sceneOf(w.window, 0)->findNodeByIndex(2998)->payload()->eventContent()->getDescription(),
             u"Text 2998!"_s);
    const QRect place = placeOf(w, 2998);
    QVERIFY(w.view.viewport()->rect().contains(place.adjusted(1, 1, -1, -1)));
}

QTEST_MAIN(tst_PanelKeys)
#include "tst_panelkeys.moc"
