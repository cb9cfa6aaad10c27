#include "overviewer/panelwindow.h"

#include <QWheelEvent>

#include <utility>

using namespace Qt::StringLiterals;

// The entry at the top of the panel's view stays there while the list is made anew.

namespace {

constexpr int events = 60;

using Top = std::pair<int, int>; // the index of the event, and where its entry begins, in pixels

Top topOf(const PanelWindow &w)
{
    for (const OvNode *entry : w.entries()) {
        const QRectF place = w.view.viewportTransform().mapRect(entry->sceneBoundingRect());
        if (place.bottom() > 0)
            return {entry->getIndex(), qRound(place.top())};
    }
    return {-1, 0};
}

/// Puts the entry above the upper edge by so many pixels.
void scrollTo(PanelWindow &w, int index, int above)
{
    const double y =
        w.view.viewportTransform().map(QPointF(0, w.entryOf(index)->sceneBoundingRect().top())).y();
    QScrollBar *bar = w.view.verticalScrollBar();
    bar->setValue(bar->value() + qRound(y) + above);
}

bool isAtTheEnd(const PanelWindow &w)
{
    return w.view.verticalScrollBar()->value() == w.view.verticalScrollBar()->maximum();
}

} // namespace

class tst_PanelPlace : public ProgramTest
{
    Q_OBJECT

private slots:
    void topEntryStays_data() { addPanelCommandRows(); }
    void topEntryStays();
    void shorterListShowsWhatItCan();
    void nextEntryTakesThePlaceOfOneThatIsGone();
    void formerEntryTakesItIfNoneIsBehind();
    void filteredListBeginsWithTheNextEntry();
    void whoScrollsHasAnotherPlace();
    void everyTabHasItsOwn();
    void entryAboveMayGrow();
    void listMayBecomeLongerAtItsBeginning();
};

void tst_PanelPlace::topEntryStays()
{
    QFETCH(const int, command);
    PanelWindow w(events);
    for (int i = 0; i < events; i += 2) // for the filter
        w.node(i)->setImportant(true);
    panelCommands().at(std::size_t(command)).prepare(w);
    scrollTo(w, 20, 7);
    QCOMPARE(topOf(w), Top(20, -7));
    const QPointer<OvNode> before = w.entryOf(20);
    panelCommands().at(std::size_t(command)).run(w);
    QVERIFY(before.isNull());
    const bool isCutShort = QByteArray(QTest::currentDataTag()) == "end of story"; // at event 2
    if (isCutShort)
        QVERIFY(isAtTheEnd(w));
    else
        QCOMPARE(topOf(w), Top(20, -7));
}

// The list was empty for a moment, and that moment went to the top.
void tst_PanelPlace::shorterListShowsWhatItCan()
{
    PanelWindow w(events);
    w.view.verticalScrollBar()->setValue(w.view.verticalScrollBar()->maximum());
    const Top last = topOf(w);
    w.command("actionUndo");
    w.command("actionUndo");
    QVERIFY(isAtTheEnd(w));
    QVERIFY(topOf(w).first < last.first);
    w.command("actionRedo");
    QVERIFY(isAtTheEnd(w));
    w.command("actionRedo");
    QCOMPARE(topOf(w), last);
}

void tst_PanelPlace::nextEntryTakesThePlaceOfOneThatIsGone()
{
    PanelWindow w(events);
    scrollTo(w, 20, 7);
    w.scene.sl_selectCurrentNode(w.node(20));
    w.command("actionDelete");
    QCOMPARE(w.entryOf(20), nullptr);
    QCOMPARE(topOf(w), Top(21, -7));
    w.command("actionUndo");
    QCOMPARE(topOf(w), Top(20, -7));
}

void tst_PanelPlace::formerEntryTakesItIfNoneIsBehind()
{
    PanelWindow w(events);
    scrollTo(w, 40, 7);
    w.scene.setEndOfStory(w.node(30));
    QVERIFY(isAtTheEnd(w));
    w.scene.setEndOfStory(w.node(events - 1));
    QCOMPARE(topOf(w), Top(40, -7));
}

void tst_PanelPlace::filteredListBeginsWithTheNextEntry()
{
    PanelWindow w(events);
    for (int i = 0; i < events; i += 2)
        w.node(i)->setImportant(true);
    scrollTo(w, 21, 7);
    w.key(Qt::Key_L, Qt::ControlModifier);
    QCOMPARE(w.entries().size(), std::size_t(events / 2));
    QCOMPARE(topOf(w), Top(22, -7));
    w.key(Qt::Key_L, Qt::ControlModifier);
    QCOMPARE(topOf(w), Top(21, -7));
}

void tst_PanelPlace::whoScrollsHasAnotherPlace()
{
    PanelWindow w(events);
    for (int i = 0; i < events; i += 2)
        w.node(i)->setImportant(true);
    scrollTo(w, 21, 7);
    w.key(Qt::Key_L, Qt::ControlModifier);
    const QPointF middle = w.view.viewport()->rect().center();
    QWheelEvent turn(middle, w.view.viewport()->mapToGlobal(middle), QPoint(), QPoint(0, -240), Qt::NoButton,
                     Qt::NoModifier, Qt::NoScrollPhase, false);
    QCoreApplication::sendEvent(w.view.viewport(), &turn);
    const Top scrolled = topOf(w);
    QVERIFY(scrolled.first >= 22 && scrolled != Top(22, -7));
    w.key(Qt::Key_L, Qt::ControlModifier);
    QCOMPARE(topOf(w), scrolled);
}

void tst_PanelPlace::everyTabHasItsOwn()
{
    PanelWindow w(events);
    w.window.addNodeGraphTab();
    scrollTo(w, 20, 7);
    w.clickTab(1);
    for (int i = 0; i < 30; ++i)
        w.key(Qt::Key_A, Qt::ControlModifier | Qt::ShiftModifier);
    QCOMPARE(topOf(w), Top(0, 0));
    scrollTo(w, 10, 3);
    w.clickTab(0);
    QCOMPARE(topOf(w), Top(20, -7));
    w.clickTab(1);
    QCOMPARE(topOf(w), Top(10, -3));
}

void tst_PanelPlace::entryAboveMayGrow()
{
    PanelWindow w(events);
    scrollTo(w, 20, 7);
    for (const int above : {3, 19}) {
        const double height = w.entryOf(above)->boundingRect().height();
        typeInto(descriptionOf(w.node(above)), u"a\nb\nc"_s);
        QVERIFY(w.entryOf(above)->boundingRect().height() > height);
        QCOMPARE(topOf(w), Top(20, -7));
    }
}

void tst_PanelPlace::listMayBecomeLongerAtItsBeginning()
{
    PanelWindow w(events);
    QCOMPARE(topOf(w), Top(0, 0));
    const Node *loose = addLoose(w.scene, QPointF(100, 3000));
    emit w.scene.s_UndoCommandAdded(new ConnectNodesCommand(&w.scene, 0, loose->getIndex()));
    QCOMPARE(w.entries().front()->getIndex(), loose->getIndex());
    QCOMPARE(topOf(w), Top(0, 0));
}

QTEST_MAIN(tst_PanelPlace)
#include "tst_panelplace.moc"
