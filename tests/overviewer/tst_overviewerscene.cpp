#include "overviewer/panelstory.h"

class tst_OverviewerScene : public TestCase
{
    Q_OBJECT

private slots:
    void hasExactlyItsMethods();
    void startsEmpty();
    void emptyStoryLeavesThePanelEmpty();
    void listsTheStoryTopToBottom();
    void keepsItsOwnCopyOfTheStory();
    void sameStoryAgainMakesNewEntries();
    void everyStoryChangeIsShown();

    void entriesAreStacked();
    void fractionsOfAHeightAreCutOff();
    void layoutStartsAtZeroEveryTime();
    void wideWordStaysInTheColumn();
    void entriesBelowMoveWhenThePanelIsEdited();
    void entriesBelowMoveWhenANodeIsEdited();
    void entriesBelowMoveWhenAWindowIsTypedIn();
};

void tst_OverviewerScene::hasExactlyItsMethods()
{
    const QMetaObject &meta = OverViewerScene::staticMetaObject;
    QCOMPARE(ownMethods(meta),
             QStringList({u"s_nodeChanged(QGraphicsItem*,int)"_s, u"sl_recieveNodes(std::vector<Node*>)"_s,
                          u"sl_updatedNode(Node*)"_s, u"sl_updateOvNode(OvNode*)"_s,
                          u"sl_nodeIndexChanged(Node*,int)"_s, u"sl_importanceChanged(Node*,bool)"_s,
                          u"sl_setFilter_important(bool)"_s}));
    const QList<QByteArrayList> names{
        {"nodeData", "index"},   {"nodes"}, {"node"}, {"node"}, {"node", "index"},
        {"node", "isImportant"}, {"show"}};
    for (int i = 0; i < int(names.size()); ++i) {
        const QMetaMethod method = meta.method(meta.methodOffset() + i);
        QCOMPARE(method.parameterNames(), names.at(i));
        QCOMPARE(method.methodType(), i == 0 ? QMetaMethod::Signal : QMetaMethod::Slot);
        QCOMPARE(method.access(), QMetaMethod::Public);
    }
}

void tst_OverviewerScene::startsEmpty()
{
    const LogCapture log;
    OverViewerScene panel;
    QCOMPARE(log.lines(), QStringList({u"No of ovnodes now:  0"_s}));
    QCOMPARE(panel.parent(), nullptr);
    QCOMPARE(panel.backgroundBrush(), QBrush(QColor(u"#EAEAEA"_s), Qt::SolidPattern));
    QVERIFY(panel.ovNodes().empty());
    QVERIFY(panel.items().isEmpty());
    QCOMPARE(panel.layoutOvNodes(), 0);
}

void tst_OverviewerScene::emptyStoryLeavesThePanelEmpty()
{
    Story story(3);
    const LogCapture log;
    story.panel.sl_recieveNodes({});
    QCOMPARE(log.lines(), QStringList({u"No of ovnodes now:  0"_s}));
    QVERIFY(story.panel.ovNodes().empty());
    QVERIFY(story.panel.items().isEmpty());
    QVERIFY2(story.panel.height() <= 1 && story.panel.width() <= 1, "no area is left of the old list");
    story.panel.sl_recieveNodes({});
    QVERIFY(story.panel.ovNodes().empty());
}

void tst_OverviewerScene::listsTheStoryTopToBottom()
{
    Story story(3);
    edit(textOf(story.nodes[0]), u"first"_s);
    edit(textOf(story.nodes[1]), u"second"_s);
    edit(textOf(story.nodes[2]), u"third"_s);
    const LogCapture log;
    story.panel.sl_recieveNodes({story.nodes[2], story.nodes[0], story.nodes[1]});
    QCOMPARE(log.lines(), QStringList({u"No of ovnodes now:  3"_s}));
    QCOMPARE(indices(story.panel), QList<int>({2, 0, 1}));
    QCOMPARE(texts(story.panel), QStringList({u"third"_s, u"first"_s, u"second"_s}));
    for (const OvNode *entry : story.panel.ovNodes())
        QCOMPARE(entry->scene(), &story.panel);
}

void tst_OverviewerScene::keepsItsOwnCopyOfTheStory()
{
    Story story(2);
    std::vector<Node *> given = story.nodes;
    story.panel.sl_recieveNodes(given);
    given.clear();
    story.panel.sl_setFilter_important(false);
    QCOMPARE(indices(story.panel), QList<int>({0, 1}));
}

void tst_OverviewerScene::sameStoryAgainMakesNewEntries()
{
    Story story(3);
    const QList<int> before = indices(story.panel);
    const QStringList textsBefore = texts(story.panel);
    const auto old = watch(story.panel);
    QCOMPARE(old.size(), std::size_t(3));
    story.panel.sl_recieveNodes(story.nodes);
    QVERIFY(allGone(old));
    QCOMPARE(indices(story.panel), before);
    QCOMPARE(texts(story.panel), textsBefore);
    verifyStacked(story.panel);
}

void tst_OverviewerScene::everyStoryChangeIsShown()
{
    Story story(3);
    QCOMPARE(indices(story.panel), QList<int>({0, 1, 2}));
    story.graph.disconnectNode(story.nodes[1]);
    QCOMPARE(indices(story.panel), QList<int>({1, 2}));
    story.graph.setEndOfStory(story.nodes[0]);
    QCOMPARE(indices(story.panel), QList<int>({0}));
    story.graph.deleteNode(story.nodes[0]);
    QVERIFY(story.panel.ovNodes().empty());
    // Nothing that comes later may look at the node that is gone.
    flushDeferredDeletes();
    story.panel.sl_setFilter_important(true);
    story.panel.sl_setFilter_important(false);
    QVERIFY(story.panel.ovNodes().empty());
}

void tst_OverviewerScene::entriesAreStacked()
{
    Story story(3);
    textOf(story.panel.ovNodes()[0])->setRect(QRectF(0, 0, 400, 80));
    textOf(story.panel.ovNodes()[1])->setRect(QRectF(0, 0, 400, 120));
    textOf(story.panel.ovNodes()[2])->setRect(QRectF(0, 0, 400, 50));
    QCOMPARE(story.panel.layoutOvNodes(), 105 + 145 + 75);
    const std::vector<OvNode *> &entries = story.panel.ovNodes();
    QCOMPARE(entries[0]->pos(), QPointF(0, 0));
    QCOMPARE(entries[1]->pos(), QPointF(0, 105));
    QCOMPARE(entries[2]->pos(), QPointF(0, 250));
    QCOMPARE(entries[1]->sceneBoundingRect().top(), entries[0]->sceneBoundingRect().bottom() + 5);
    QCOMPARE(entries[2]->sceneBoundingRect().top(), entries[1]->sceneBoundingRect().bottom() + 5);
    QCOMPARE(story.panel.sceneRect(), QRectF(-10, -10, 420, 320));
}

void tst_OverviewerScene::fractionsOfAHeightAreCutOff()
{
    Story story(3);
    for (OvNode *entry : story.panel.ovNodes())
        textOf(entry)->setRect(QRectF(0, 0, 400, 100.75));
    QCOMPARE(story.panel.ovNodes()[1]->pos(), QPointF(0, 125));
    QCOMPARE(story.panel.ovNodes()[2]->pos(), QPointF(0, 250));
    QCOMPARE(story.panel.layoutOvNodes(), 375);
}

// The list once crept: each layout began where the last list's area did.
void tst_OverviewerScene::layoutStartsAtZeroEveryTime()
{
    Story story(4);
    const QRectF full = story.panel.sceneRect();
    QCOMPARE(full.topLeft(), QPointF(-10, -10));
    QCOMPARE(full.right(), 410.0);
    for (int i = 0; i < 3; ++i) {
        story.panel.layoutOvNodes();
        verifyStacked(story.panel);
        story.panel.sl_recieveNodes(story.nodes);
        verifyStacked(story.panel);
        QCOMPARE(story.panel.sceneRect(), full);
    }
    story.panel.sl_recieveNodes({story.nodes[3]});
    verifyStacked(story.panel);
    QVERIFY(story.panel.height() < full.height());
    story.panel.sl_recieveNodes({});
    story.panel.sl_recieveNodes(story.nodes);
    verifyStacked(story.panel);
    QCOMPARE(story.panel.sceneRect(), full);
}

// A word that is wider than the panel made the whole list wider, and so scroll sideways.
void tst_OverviewerScene::wideWordStaysInTheColumn()
{
    Story story(2);
    edit(textOf(story.nodes[0]), QString(200, u'w'));
    QCOMPARE(texts(story.panel).at(0), QString(200, u'w'));
    QCOMPARE(story.panel.sceneRect().left(), -10.0);
    QCOMPARE(story.panel.sceneRect().right(), 410.0);
    edit(textOf(story.panel.ovNodes()[1]), QString(200, u'm'));
    QCOMPARE(story.panel.sceneRect().right(), 410.0);
    verifyStacked(story.panel);
}

void tst_OverviewerScene::entriesBelowMoveWhenThePanelIsEdited()
{
    Story story(3);
    const std::vector<OvNode *> entries = story.panel.ovNodes();
    const double secondBefore = entries[1]->y();
    const double thirdBefore = entries[2]->y();
    edit(textOf(entries[0]), u"one\ntwo\nthree\nfour"_s);
    const double grown = entries[1]->y() - secondBefore;
    QVERIFY(grown > 0);
    QCOMPARE(entries[2]->y(), thirdBefore + grown);
    verifyStacked(story.panel);
    edit(textOf(entries[0]), u"one"_s);
    QCOMPARE(entries[1]->y(), secondBefore);
    QCOMPARE(entries[2]->y(), thirdBefore);
    verifyStacked(story.panel);
    QCOMPARE(story.panel.ovNodes(), entries);
}

void tst_OverviewerScene::entriesBelowMoveWhenANodeIsEdited()
{
    Story story(3);
    const std::vector<OvNode *> entries = story.panel.ovNodes();
    const double secondBefore = entries[1]->y();
    const double thirdBefore = entries[2]->y();
    edit(textOf(story.nodes[1]), u"one\ntwo\nthree"_s);
    QCOMPARE(entries[1]->y(), secondBefore);
    QVERIFY(entries[2]->y() > thirdBefore);
    verifyStacked(story.panel);
    edit(textOf(story.nodes[1]), QString());
    QCOMPARE(entries[2]->y(), thirdBefore);
    verifyStacked(story.panel);
}

void tst_OverviewerScene::entriesBelowMoveWhenAWindowIsTypedIn()
{
    Story story(2);
    QGraphicsView view(&story.panel);
    view.setAlignment(Qt::AlignLeft | Qt::AlignTop);
    view.resize(440, 500);
    view.show();
    QVERIFY(QTest::qWaitForWindowActive(&view));
    const std::vector<OvNode *> entries = story.panel.ovNodes();
    const double before = entries[1]->y();
    QTest::mouseClick(view.viewport(), Qt::LeftButton, Qt::NoModifier, view.mapFromScene(QPointF(100, 30)));
    QCOMPARE(story.panel.focusItem(), textOf(entries[0]));
    QCOMPARE(textOf(story.nodes[0])->toPlainText(), QString());
    QTest::keyClicks(view.viewport(), u"He met"_s);
    QCOMPARE(entries[1]->y(), before);
    QTest::keyClick(view.viewport(), Qt::Key_Return);
    QVERIFY(entries[1]->y() > before);
    QTest::keyClicks(view.viewport(), u"her"_s);
    verifyStacked(story.panel);
    QCOMPARE(textOf(story.nodes[0])->toPlainText(), u"He met\nher"_s);
    QCOMPARE(textOf(story.nodes[1])->toPlainText(), u"Enter description"_s);
}

QTEST_MAIN(tst_OverviewerScene)
#include "tst_overviewerscene.moc"
