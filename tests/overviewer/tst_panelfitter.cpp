#include "support/testsupport.h"

#include "items/eventdata.h"
#include "items/node.h"
#include "items/stlineedit.h"
#include "overviewer/overviewerscene.h"
#include "overviewer/panelfitter.h"
#include "scene/nodegraphscene.h"

#include <QGraphicsView>
#include <QScrollBar>
#include <QUndoStack>

using namespace Qt::StringLiterals;

namespace {

/// A panel that shows a story of that many events in a viewport of 420 by `height`.
struct Panel
{
    explicit Panel(int events, int height = 600)
    {
        pushCommandsOn(graph, stack);
        nodes = addChain(graph, events);
        scene.sl_recieveNodes(nodes);
        view.setScene(&scene);
        view.setAlignment(Qt::AlignLeft | Qt::AlignTop);
        resize(height);
        new PanelFitter(&view);
        view.show();
        QVERIFY(QTest::qWaitForWindowExposed(&view));
        QCoreApplication::processEvents();
    }

    void resize(int height)
    {
        view.resize(420 + 2 * view.frameWidth(), height + 2 * view.frameWidth());
        QCoreApplication::processEvents();
    }
    bool scrolls() const { return view.verticalScrollBar()->isVisible(); }
    /// Nothing can be moved sideways, and the whole width of the entries is in sight.
    void verifyNoSidewaysScrolling() const
    {
        QVERIFY(!view.horizontalScrollBar()->isVisible());
        QCOMPARE(view.horizontalScrollBar()->minimum(), view.horizontalScrollBar()->maximum());
        QCOMPARE(view.mapFromScene(QPointF(-10, 0)).x(), 0);
        QVERIFY(view.mapFromScene(QPointF(410, 0)).x() <= view.viewport()->width());
    }
    STLineEdit *text(int entry) const
    {
        return dynamic_cast<EventData *>(scene.ovNodes().at(std::size_t(entry))->eventData())
            ->descriptionItem();
    }
    /// Makes the one entry so tall that the list is as high as told.
    void setListHeight(double height) const { text(0)->setRect(QRectF(0, 0, 400, height - 20)); }

    NodegraphScene graph;
    QUndoStack stack;
    OverViewerScene scene;
    QGraphicsView view;
    std::vector<Node *> nodes;
};

} // namespace

class tst_PanelFitter : public TestCase
{
    Q_OBJECT

private slots:
    void addsNoMethodsOfItsOwn();
    void shortStoryIsShownAtItsOwnSize();
    void longStoryScrollsVerticallyOnly();
    void emptyPanelDoesNotScroll();
    void scrollsOnlyWhenLongerThanThePanel_data();
    void scrollsOnlyWhenLongerThanThePanel();
    void scrollingFollowsTheStory();
    void scrollingFollowsTheWindow();
    void scrollingFollowsAnEdit();
    void wideWordDoesNotScrollSideways();
    void narrowPanelShowsTheWholeWidth();
    void longListStaysWhereItWasScrolled();
    void goesWithTheView();
};

void tst_PanelFitter::addsNoMethodsOfItsOwn()
{
    QVERIFY(ownMethods(PanelFitter::staticMetaObject).isEmpty());
}

void tst_PanelFitter::shortStoryIsShownAtItsOwnSize()
{
    const Panel panel(2);
    QCOMPARE(panel.view.viewport()->width(), 420);
    QVERIFY(!panel.scrolls());
    panel.verifyNoSidewaysScrolling();
    QCOMPARE(panel.view.transform().m11(), 1.0);
    QCOMPARE(panel.view.mapFromScene(QPointF(-10, -10)), QPoint(0, 0));
    QCOMPARE(panel.view.mapFromScene(QPointF(410, 0)).x(), 420);
    QCOMPARE(panel.view.verticalScrollBar()->minimum(), panel.view.verticalScrollBar()->maximum());
}

void tst_PanelFitter::longStoryScrollsVerticallyOnly()
{
    const Panel panel(30);
    QVERIFY(panel.scrolls());
    panel.verifyNoSidewaysScrolling();
    QVERIFY(panel.view.viewport()->width() < 420);
    const double scale = panel.view.viewport()->width() / 420.0;
    QCOMPARE(panel.view.transform().m11(), scale);
    QCOMPARE(panel.view.transform().m22(), scale);
    QCOMPARE(panel.view.mapFromScene(QPointF(-10, -10)), QPoint(0, 0));
    panel.view.verticalScrollBar()->setValue(panel.view.verticalScrollBar()->maximum());
    const int bottom = panel.view.mapFromScene(panel.scene.sceneRect().bottomLeft()).y();
    QVERIFY(qAbs(bottom - panel.view.viewport()->height()) <= 1);
}

void tst_PanelFitter::emptyPanelDoesNotScroll()
{
    const Panel panel(0);
    QVERIFY(!panel.scrolls());
    QVERIFY(!panel.view.horizontalScrollBar()->isVisible());
    QCOMPARE(panel.view.transform().m11(), 1.0);
    QCOMPARE(panel.view.verticalScrollBar()->minimum(), panel.view.verticalScrollBar()->maximum());
    QCOMPARE(panel.view.horizontalScrollBar()->minimum(), panel.view.horizontalScrollBar()->maximum());
}

void tst_PanelFitter::scrollsOnlyWhenLongerThanThePanel_data()
{
    QTest::addColumn<double>("height");
    QTest::addColumn<bool>("scrolls");
    QTest::newRow("shorter") << 300.0 << false;
    QTest::newRow("as long as the panel") << 600.0 << false;
    QTest::newRow("longer by one") << 601.0 << true;
    QTest::newRow("much longer") << 2000.0 << true;
}

void tst_PanelFitter::scrollsOnlyWhenLongerThanThePanel()
{
    QFETCH(double, height);
    QFETCH(bool, scrolls);
    const Panel panel(1);
    panel.setListHeight(height);
    QCOMPARE(panel.scene.height(), height);
    QCOMPARE(panel.scrolls(), scrolls);
    panel.verifyNoSidewaysScrolling();
    if (!scrolls)
        QCOMPARE(panel.view.verticalScrollBar()->minimum(), panel.view.verticalScrollBar()->maximum());
}

void tst_PanelFitter::scrollingFollowsTheStory()
{
    Panel panel(30);
    QVERIFY(panel.scrolls());
    panel.scene.sl_recieveNodes({panel.nodes[0], panel.nodes[1]});
    QVERIFY(!panel.scrolls());
    QCOMPARE(panel.view.transform().m11(), 1.0);
    panel.verifyNoSidewaysScrolling();
    QCOMPARE(panel.view.mapFromScene(QPointF(-10, -10)), QPoint(0, 0));
    panel.scene.sl_recieveNodes(panel.nodes);
    QVERIFY(panel.scrolls());
    panel.verifyNoSidewaysScrolling();
}

void tst_PanelFitter::scrollingFollowsTheWindow()
{
    Panel panel(4, 900);
    QVERIFY(!panel.scrolls());
    panel.resize(200);
    QTRY_VERIFY(panel.scrolls());
    panel.verifyNoSidewaysScrolling();
    panel.resize(900);
    QTRY_VERIFY(!panel.scrolls());
    QTRY_COMPARE(panel.view.transform().m11(), 1.0);
    panel.verifyNoSidewaysScrolling();
}

void tst_PanelFitter::scrollingFollowsAnEdit()
{
    const Panel panel(2);
    QVERIFY(!panel.scrolls());
    panel.text(0)->setText(QString(40, u'\n'));
    QVERIFY(panel.scrolls());
    panel.verifyNoSidewaysScrolling();
    panel.text(0)->setText(u"short"_s);
    QVERIFY(!panel.scrolls());
    QCOMPARE(panel.view.transform().m11(), 1.0);
}

void tst_PanelFitter::wideWordDoesNotScrollSideways()
{
    const Panel panel(2);
    panel.text(1)->setText(QString(150, u'm'));
    panel.verifyNoSidewaysScrolling();
    QCOMPARE(panel.view.transform().m11(), 1.0);
}

void tst_PanelFitter::narrowPanelShowsTheWholeWidth()
{
    Panel panel(2);
    panel.view.resize(210 + 2 * panel.view.frameWidth(), 600);
    QTRY_COMPARE(panel.view.transform().m11(), 0.5);
    panel.verifyNoSidewaysScrolling();
    panel.view.resize(800, 600);
    QTRY_COMPARE(panel.view.transform().m11(), 1.0);
    panel.verifyNoSidewaysScrolling();
}

void tst_PanelFitter::longListStaysWhereItWasScrolled()
{
    const Panel panel(30);
    QScrollBar *bar = panel.view.verticalScrollBar();
    bar->setValue(500);
    panel.text(29)->setText(u"two\nlines"_s);
    QCOMPARE(bar->value(), 500);
    panel.text(29)->setText(u"one"_s);
    QCOMPARE(bar->value(), 500);
}

void tst_PanelFitter::goesWithTheView()
{
    OverViewerScene scene;
    QPointer<PanelFitter> fitter;
    {
        QGraphicsView view(&scene);
        fitter = new PanelFitter(&view);
        QCOMPARE(fitter->parent(), &view);
    }
    QVERIFY(!fitter);
    scene.sl_setFilter_important(true);
}

QTEST_MAIN(tst_PanelFitter)
#include "tst_panelfitter.moc"
