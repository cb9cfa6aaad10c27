#include "support/testsupport.h"

#include "items/eventdata.h"
#include "items/node.h"
#include "items/nodedata.h"
#include "items/stlineedit.h"
#include "overviewer/overviewerscene.h"
#include "scene/nodegraphscene.h"

#include <QGraphicsView>
#include <QMetaMethod>
#include <QPointer>
#include <QTextCursor>
#include <QUndoStack>

#include <memory>

using namespace Qt::StringLiterals;

namespace {

/// A graph and a panel, wired as a window wires them.
struct Story
{
    explicit Story(int events = 0)
    {
        pushCommandsOn(graph, stack);
        QObject::connect(&graph, SIGNAL(s_updateStory(std::vector<Node*>)), &panel,
                                        SLOT(sl_recieveNodes(std::vector<Node*>)));
        QObject::connect(&graph, SIGNAL(s_updateNode(Node*)), &panel, SLOT(sl_updatedNode(Node*)));
        QObject::connect(&graph, SIGNAL(s_nodeIndexChanged(Node*,int)), &panel,
                                        SLOT(sl_nodeIndexChanged(Node*,int)));
        QObject::connect(&graph, SIGNAL(s_importanceChanged(Node*,bool)), &panel,
                                        SLOT(sl_importanceChanged(Node*,bool)));
        QObject::connect(&panel, SIGNAL(s_nodeChanged(QGraphicsItem*,int)), &graph,
                                        SLOT(sl_ovNodeChanged(QGraphicsItem*,int)));
        nodes = addChain(graph, events);
    }

    NodegraphScene graph;
    QUndoStack stack;
    OverViewerScene panel;
    std::vector<Node *> nodes;
};

STLineEdit *textOf(const Node *node) { return node->getData()->eventContent()->getDescriptionItem(); }

STLineEdit *textOf(const OvNode *entry)
{
    return dynamic_cast<EventData *>(entry->getEventData())->getDescriptionItem();
}

/// Replaces the text as an edit by the user does.
void edit(STLineEdit *item, const QString &text)
{
    QTextCursor cursor(item->document());
    cursor.select(QTextCursor::Document);
    cursor.insertText(text);
}

QList<int> indices(const OverViewerScene &panel)
{
    QList<int> all;
    for (const OvNode *entry : panel.getOvNodes())
        all << entry->getIndex();
    return all;
}

QStringList texts(const OverViewerScene &panel)
{
    QStringList all;
    for (const OvNode *entry : panel.getOvNodes())
        all << textOf(entry)->toPlainText();
    return all;
}

std::vector<QPointer<OvNode>> watch(const OverViewerScene &panel)
{
    return {panel.getOvNodes().begin(), panel.getOvNodes().end()};
}

bool allGone(const std::vector<QPointer<OvNode>> &entries)
{
    return std::all_of(entries.begin(), entries.end(), [](const auto &entry) { return entry.isNull(); });
}

QRectF covered(const OverViewerScene &panel)
{
    QRectF all;
    for (const OvNode *entry : panel.getOvNodes())
        all |= entry->sceneBoundingRect();
    return all;
}

/// The entries stand below one another from y = 0 on, and nothing else belongs to the panel's area.
void verifyStacked(const OverViewerScene &panel)
{
    int y = 0;
    for (const OvNode *entry : panel.getOvNodes()) {
        QCOMPARE(entry->pos(), QPointF(0, y));
        y = static_cast<int>(5 + entry->boundingRect().height() + y);
    }
    QCOMPARE(panel.sceneRect(), covered(panel));
}

} // namespace

class tst_OverviewerScene : public QObject
{
    Q_OBJECT

private slots:
    void init() { failOnWarnings(); }
    void cleanup() { flushDeferredDeletes(); }

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

    void filterShowsImportantEventsOnly();
    void filterWithoutImportantEventsEmptiesThePanel();
    void filterStaysOnForTheNextStory();
    void importanceComesAndGoesAtTheStoryPosition();
    void importanceChangeRebuilds_data();
    void importanceChangeRebuilds();

    void updatedNodeIsRefreshed();
    void updatedNodeOutsideTheStoryIsIgnored();
    void filteredNodeIsIgnored();
    void everyEntryOfANodeIsRefreshed();
    void editedEntryIsReported();
    void panelEditReachesTheGraphOnce();
    void changedIndexIsTakenOver();
    void changedIndexOfAStrangerIsIgnored();
    void findsTheFirstEntryOfAnIndex();
    void forgetsAStoryWhoseSceneGoes();
    void keepsAStoryWhenAnotherSceneGoes();
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
    QVERIFY(panel.getOvNodes().empty());
    QVERIFY(panel.items().isEmpty());
    QCOMPARE(panel.layoutOvNodes(), 0);
}

void tst_OverviewerScene::emptyStoryLeavesThePanelEmpty()
{
    Story story(3);
    const LogCapture log;
    story.panel.sl_recieveNodes({});
    QCOMPARE(log.lines(), QStringList({u"No of ovnodes now:  0"_s}));
    QVERIFY(story.panel.getOvNodes().empty());
    QVERIFY(story.panel.items().isEmpty());
    QVERIFY2(story.panel.height() <= 1 && story.panel.width() <= 1, "no area is left of the old list");
    story.panel.sl_recieveNodes({});
    QVERIFY(story.panel.getOvNodes().empty());
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
    for (const OvNode *entry : story.panel.getOvNodes())
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
    QVERIFY(story.panel.getOvNodes().empty());
    // Nothing that comes later may look at the node that is gone.
    flushDeferredDeletes();
    story.panel.sl_setFilter_important(true);
    story.panel.sl_setFilter_important(false);
    QVERIFY(story.panel.getOvNodes().empty());
}

void tst_OverviewerScene::entriesAreStacked()
{
    Story story(3);
    textOf(story.panel.getOvNodes()[0])->setRect(QRectF(0, 0, 400, 80));
    textOf(story.panel.getOvNodes()[1])->setRect(QRectF(0, 0, 400, 120));
    textOf(story.panel.getOvNodes()[2])->setRect(QRectF(0, 0, 400, 50));
    QCOMPARE(story.panel.layoutOvNodes(), 105 + 145 + 75);
    const std::vector<OvNode *> &entries = story.panel.getOvNodes();
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
    for (const OvNode *entry : story.panel.getOvNodes())
        textOf(entry)->setRect(QRectF(0, 0, 400, 100.75));
    QCOMPARE(story.panel.getOvNodes()[1]->pos(), QPointF(0, 125));
    QCOMPARE(story.panel.getOvNodes()[2]->pos(), QPointF(0, 250));
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
    edit(textOf(story.panel.getOvNodes()[1]), QString(200, u'm'));
    QCOMPARE(story.panel.sceneRect().right(), 410.0);
    verifyStacked(story.panel);
}

void tst_OverviewerScene::entriesBelowMoveWhenThePanelIsEdited()
{
    Story story(3);
    const std::vector<OvNode *> entries = story.panel.getOvNodes();
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
    QCOMPARE(story.panel.getOvNodes(), entries);
}

void tst_OverviewerScene::entriesBelowMoveWhenANodeIsEdited()
{
    Story story(3);
    const std::vector<OvNode *> entries = story.panel.getOvNodes();
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
    const std::vector<OvNode *> entries = story.panel.getOvNodes();
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

void tst_OverviewerScene::filterShowsImportantEventsOnly()
{
    Story story(4);
    story.graph.toggleImportance(story.nodes[3]);
    story.graph.toggleImportance(story.nodes[1]);
    const auto old = watch(story.panel);
    LogCapture log;
    story.panel.sl_setFilter_important(true);
    QCOMPARE(log.lines(), QStringList({u"Setting filter"_s, u"No of ovnodes now:  2"_s}));
    QCOMPARE(indices(story.panel), QList<int>({1, 3}));
    QVERIFY(allGone(old));
    verifyStacked(story.panel);
    log.clear();
    story.panel.sl_setFilter_important(false);
    QCOMPARE(log.lines(), QStringList({u"Setting filter"_s, u"No of ovnodes now:  4"_s}));
    QCOMPARE(indices(story.panel), QList<int>({0, 1, 2, 3}));
    verifyStacked(story.panel);
}

void tst_OverviewerScene::filterWithoutImportantEventsEmptiesThePanel()
{
    Story story(3);
    const LogCapture log;
    story.panel.sl_setFilter_important(true);
    QVERIFY(story.panel.getOvNodes().empty());
    QVERIFY(story.panel.items().isEmpty());
    QVERIFY(log.contains(u"No of ovnodes now:  0"_s));
    story.panel.sl_setFilter_important(false);
    QCOMPARE(indices(story.panel), QList<int>({0, 1, 2}));
    verifyStacked(story.panel);
}

void tst_OverviewerScene::filterStaysOnForTheNextStory()
{
    Story story(3);
    story.graph.toggleImportance(story.nodes[2]);
    story.panel.sl_setFilter_important(true);
    story.panel.sl_recieveNodes(story.nodes);
    QCOMPARE(indices(story.panel), QList<int>({2}));
}

void tst_OverviewerScene::importanceComesAndGoesAtTheStoryPosition()
{
    Story story(4);
    story.panel.sl_setFilter_important(true);
    story.graph.toggleImportance(story.nodes[3]);
    QCOMPARE(indices(story.panel), QList<int>({3}));
    story.graph.toggleImportance(story.nodes[0]);
    QCOMPARE(indices(story.panel), QList<int>({0, 3}));
    story.graph.toggleImportance(story.nodes[2]);
    QCOMPARE(indices(story.panel), QList<int>({0, 2, 3}));
    verifyStacked(story.panel);
    story.graph.toggleImportance(story.nodes[0]);
    QCOMPARE(indices(story.panel), QList<int>({2, 3}));
    verifyStacked(story.panel);
}

void tst_OverviewerScene::importanceChangeRebuilds_data()
{
    QTest::addColumn<bool>("listed");
    QTest::addColumn<QStringList>("log");
    QTest::newRow("listed") << true
                            << QStringList(
                                   {u"Found ovNode"_s, u"Setting importance"_s, u"No of ovnodes now:  2"_s});
    QTest::newRow("not listed") << false << QStringList({u"No of ovnodes now:  2"_s});
}

void tst_OverviewerScene::importanceChangeRebuilds()
{
    QFETCH(bool, listed);
    QFETCH(QStringList, log);
    Story story(3);
    story.panel.sl_recieveNodes({story.nodes[0], story.nodes[1]});
    const auto old = watch(story.panel);
    const LogCapture capture;
    story.panel.sl_importanceChanged(listed ? story.nodes[1] : story.nodes[2], true);
    QCOMPARE(capture.lines(), log);
    QVERIFY(allGone(old));
    QCOMPARE(indices(story.panel), QList<int>({0, 1}));
}

void tst_OverviewerScene::updatedNodeIsRefreshed()
{
    Story story(2);
    const std::vector<OvNode *> entries = story.panel.getOvNodes();
    QSignalSpy reported(&story.panel, &OverViewerScene::s_nodeChanged);
    story.nodes[0]->getData()->eventContent()->setDescription(u"not reported yet"_s);
    edit(textOf(story.nodes[1]), u"typed in the graph"_s);
    QCOMPARE(texts(story.panel), QStringList({u"Enter description"_s, u"typed in the graph"_s}));
    QCOMPARE(story.panel.getOvNodes(), entries);
    QCOMPARE(reported.count(), 0);
}

void tst_OverviewerScene::updatedNodeOutsideTheStoryIsIgnored()
{
    Story story(2);
    story.panel.sl_recieveNodes({story.nodes[0]});
    // The same number in another graph.
    NodegraphScene other;
    QUndoStack otherStack;
    pushCommandsOn(other, otherStack);
    Node *namesake = addChain(other, 1).front();
    QCOMPARE(namesake->getIndex(), 0);
    edit(textOf(namesake), u"stranger"_s);
    story.nodes[0]->getData()->eventContent()->setDescription(u"not reported yet"_s);
    story.panel.sl_updatedNode(namesake);
    story.panel.sl_updatedNode(story.nodes[1]);
    QCOMPARE(texts(story.panel), QStringList({u"Enter description"_s}));
}

void tst_OverviewerScene::filteredNodeIsIgnored()
{
    Story story(2);
    story.graph.toggleImportance(story.nodes[0]);
    story.panel.sl_setFilter_important(true);
    edit(textOf(story.nodes[1]), u"hidden"_s);
    QCOMPARE(texts(story.panel), QStringList({u"Enter description"_s}));
    story.panel.sl_setFilter_important(false);
    QCOMPARE(texts(story.panel), QStringList({u"Enter description"_s, u"hidden"_s}));
}

void tst_OverviewerScene::everyEntryOfANodeIsRefreshed()
{
    Story story(2);
    Node *twice = story.nodes[0];
    story.panel.sl_recieveNodes({twice, story.nodes[1], twice});
    twice->getData()->eventContent()->setDescription(u"both"_s);
    story.panel.sl_updatedNode(twice);
    QCOMPARE(texts(story.panel), QStringList({u"both"_s, u"Enter description"_s, u"both"_s}));
}

void tst_OverviewerScene::editedEntryIsReported()
{
    Story story(3);
    OvNode *entry = story.panel.getOvNodes()[1];
    QSignalSpy reported(&story.panel, SIGNAL(s_nodeChanged(QGraphicsItem*,int)));
    edit(textOf(entry), u"changed"_s);
    QVERIFY(reported.count() > 0);
    QCOMPARE(reported.last().at(0).value<QGraphicsItem *>(), entry->getEventData());
    QCOMPARE(reported.last().at(1).toInt(), 1);
    reported.clear();
    entry->setIndex(12);
    story.panel.sl_updateOvNode(entry);
    QCOMPARE(reported.count(), 1);
    QCOMPARE(reported.at(0).at(0).value<QGraphicsItem *>(), entry->getEventData());
    QCOMPARE(reported.at(0).at(1).toInt(), 12);
}

void tst_OverviewerScene::panelEditReachesTheGraphOnce()
{
    Story story(3);
    const std::vector<OvNode *> entries = story.panel.getOvNodes();
    QSignalSpy updated(&story.graph, &NodegraphScene::s_updateNode);
    QSignalSpy published(&story.graph, &NodegraphScene::s_updateStory);
    QTextCursor(textOf(entries[1])->document()).insertText(u"!"_s);
    QCOMPARE(textOf(story.nodes[1])->toPlainText(), u"!Enter description"_s);
    QCOMPARE(textOf(story.nodes[0])->toPlainText(), u"Enter description"_s);
    QCOMPARE(textOf(story.nodes[2])->toPlainText(), u"Enter description"_s);
    QCOMPARE(updated.count(), 0);
    QCOMPARE(published.count(), 0);
    QCOMPARE(story.panel.getOvNodes(), entries);
}

void tst_OverviewerScene::changedIndexIsTakenOver()
{
    Story story(3);
    const std::vector<OvNode *> entries = story.panel.getOvNodes();
    const LogCapture log;
    story.nodes[1]->setIndex(7); // reported before the node stores it
    QCOMPARE(log.lines(), QStringList({u"Old node index  1  New node index  7"_s, u"Found ovNode"_s,
                                       u"Changing ovNode index from:  1  to  7"_s}));
    QCOMPARE(indices(story.panel), QList<int>({0, 7, 2}));
    QCOMPARE(story.panel.getOvNodes(), entries);
    edit(textOf(entries[1]), u"still mine"_s);
    QCOMPARE(textOf(story.nodes[1])->toPlainText(), u"still mine"_s);
}

void tst_OverviewerScene::changedIndexOfAStrangerIsIgnored()
{
    Story story(2);
    story.panel.sl_recieveNodes({story.nodes[0]});
    const auto entries = watch(story.panel);
    const LogCapture log;
    story.panel.sl_nodeIndexChanged(story.nodes[1], 9);
    QVERIFY(log.lines().isEmpty());
    QCOMPARE(indices(story.panel), QList<int>({0}));
    QVERIFY(entries[0]);
}

void tst_OverviewerScene::findsTheFirstEntryOfAnIndex()
{
    Story story(3);
    const std::vector<OvNode *> entries = story.panel.getOvNodes();
    entries[0]->setIndex(5);
    entries[2]->setIndex(5);
    LogCapture log;
    QCOMPARE(story.panel.findOvNode(5), entries[0]);
    QCOMPARE(log.lines(), QStringList({u"Found ovNode"_s}));
    log.clear();
    QCOMPARE(story.panel.findOvNode(0), nullptr);
    QVERIFY(log.lines().isEmpty());
}

void tst_OverviewerScene::forgetsAStoryWhoseSceneGoes()
{
    OverViewerScene panel;
    {
        QUndoStack stack;
        const auto graph = std::make_unique<NodegraphScene>();
        pushCommandsOn(*graph, stack);
        panel.sl_recieveNodes(addChain(*graph, 3));
        const auto entries = watch(panel);
        panel.forgetScene(graph.get());
        QVERIFY(allGone(entries));
    }
    QVERIFY(panel.getOvNodes().empty());
    panel.sl_setFilter_important(true);
    panel.sl_setFilter_important(false);
    QVERIFY(panel.getOvNodes().empty());
}

void tst_OverviewerScene::keepsAStoryWhenAnotherSceneGoes()
{
    Story story(2);
    const NodegraphScene other;
    const auto entries = watch(story.panel);
    story.panel.forgetScene(&other);
    QCOMPARE(indices(story.panel), QList<int>({0, 1}));
    QVERIFY(entries[0] && entries[1]);
    OverViewerScene empty;
    empty.forgetScene(&other);
    QVERIFY(empty.getOvNodes().empty());
}

QTEST_MAIN(tst_OverviewerScene)
#include "tst_overviewerscene.moc"
