#include "scene/scenetab.h"
#include "scene/shownscene.h"
#include "support/testsupport.h"

#include "items/eventdata.h"
#include "items/nodedata.h"

#include <QPointer>

#include <algorithm>

namespace {

struct Tab : SceneTab
{
    /// Draws a rubber band over the two nodes' upper left corners.
    void selectByRubberBand(const Node *first, const Node *second)
    {
        SceneMouse mouse{scene};
        mouse.press(first->pos() - QPointF(20, 20));
        mouse.move(second->pos() + QPointF(20, 20));
        mouse.release(second->pos() + QPointF(20, 20));
    }
};

bool contains(const Nodes &nodes, const Node *node)
{
    return std::find(nodes.begin(), nodes.end(), node) != nodes.end();
}

} // namespace

class tst_NodegraphSceneDeleting : public TestCase
{
    Q_OBJECT

private slots:
    void selectionGoesAndCurrentNodeStays();
    void selectionGoesInItsOrder();
    void selectionGoesInsteadOfArgument();
    void currentNodeGoesWithoutSelection();
    void argumentGoesWithoutSelection();
    void selectedItemsAloneAreNoSelection();
    void nothingToDeleteDoesNothing();
    void deletionWithoutArgumentForgetsCurrentNodeFirst();
    void oneCommandPerNode();

    void deletingLogsItsSteps_data();
    void deletingLogsItsSteps();
    void middleOfChainLeavesBothSidesFree();
    void nodeThatFeedsThreeLeavesThemWithoutInput();
    void upstreamKeepsItsOtherNodes();
    void endOfStoryGoesWithItsNode();
    void noStoryWithDyingNodeIsPublished();
    void deletingNullDoesNothing();
    void otherIndicesStay();

    void deletedNodeIsForgottenEverywhere();
    void deletedNodeIsDestroyedSoonAfter();
    void deletedNodeReportsNothing();
    void forgottenClipboardPastesNothing();
    void deletedCurrentNodeAttractsNoNewOne();
    void deletingWhileTitleIsEditedIsQuiet();

    void undoBringsNodeBackAsItWas();
    void undoOfSelectionBringsChainBack();
};

void tst_NodegraphSceneDeleting::selectionGoesAndCurrentNodeStays()
{
    Tab tab;
    Node *first = addLoose(tab.scene, QPointF(1000, 1000));
    Node *second = addLoose(tab.scene, QPointF(1000, 1500));
    Node *third = addLoose(tab.scene, QPointF(1000, 3000));
    tab.selectByRubberBand(first, second);
    QCOMPARE(tab.scene.selectedNodes().size(), std::size_t(2));
    tab.scene.sl_selectCurrentNode(third);

    tab.scene.deleteSelectedNodes(nullptr);
    QCOMPARE(tab.scene.nodes(), Nodes{third});
    QCOMPARE(tab.scene.currentNode(), nullptr);
    QVERIFY(tab.scene.selectedNodes().empty());
}

void tst_NodegraphSceneDeleting::selectionGoesInItsOrder()
{
    Tab tab;
    for (const double y : {1000, 1500, 2000})
        addLoose(tab.scene, QPointF(1000, y));
    tab.selectByRubberBand(tab.scene.nodes()[0], tab.scene.nodes()[1]);
    LogCapture log;
    tab.scene.deleteSelectedNodes(nullptr);
    // The band lists what lies on top first; node 0 was the end of the story.
    QCOMPARE(log.lines(), (QStringList{"Del", "Deleted node  1", "Del", "Deleted node  0", "No storyNode"}));

    tab.stack.undo();
    tab.stack.undo();
    tab.scene.selectAll();
    log.clear();
    tab.scene.deleteSelectedNodes(nullptr);
    QStringList order;
    for (const QString &line : log.lines()) {
        if (line.startsWith("Deleted node"))
            order << line;
    }
    QCOMPARE(order, (QStringList{"Deleted node  2", "Deleted node  0", "Deleted node  1"}));
}

void tst_NodegraphSceneDeleting::selectionGoesInsteadOfArgument()
{
    Tab tab;
    Node *first = addLoose(tab.scene, QPointF(1000, 1000));
    Node *second = addLoose(tab.scene, QPointF(1000, 1500));
    Node *argument = addLoose(tab.scene, QPointF(1000, 3000));
    tab.selectByRubberBand(first, second);
    tab.scene.sl_selectCurrentNode(argument);
    tab.scene.deleteSelectedNodes(argument);
    QCOMPARE(tab.scene.nodes(), Nodes{argument});
    QCOMPARE(tab.scene.currentNode(), argument); // only a call without an argument forgets it
}

void tst_NodegraphSceneDeleting::currentNodeGoesWithoutSelection()
{
    Tab tab;
    const Nodes nodes = addChain(tab.scene, 3);
    tab.scene.deleteSelectedNodes(nullptr);
    QCOMPARE(tab.scene.nodes(), (Nodes{nodes[0], nodes[1]}));
    QCOMPARE(tab.scene.currentNode(), nullptr);
    tab.scene.deleteSelectedNodes(nullptr); // nothing is current any more
    QCOMPARE(tab.scene.nodes().size(), std::size_t(2));
}

void tst_NodegraphSceneDeleting::argumentGoesWithoutSelection()
{
    Tab tab;
    const Nodes nodes = addChain(tab.scene, 3);
    tab.scene.deleteSelectedNodes(nodes[0]);
    QCOMPARE(tab.scene.nodes(), (Nodes{nodes[1], nodes[2]}));
    QCOMPARE(tab.scene.currentNode(), nodes[2]);
}

void tst_NodegraphSceneDeleting::selectedItemsAloneAreNoSelection()
{
    Tab tab;
    const Nodes nodes = addChain(tab.scene, 3);
    nodes[0]->setSelected(true);
    nodes[1]->setSelected(true);
    tab.scene.deleteSelectedNodes(nullptr);
    QCOMPARE(tab.scene.nodes(), (Nodes{nodes[0], nodes[1]}));
}

void tst_NodegraphSceneDeleting::nothingToDeleteDoesNothing()
{
    Tab tab;
    addLoose(tab.scene, QPointF(10, 10));
    const int commands = tab.stack.count();
    LogCapture log;
    tab.scene.deleteSelectedNodes(nullptr);
    QCOMPARE(tab.stack.count(), commands);
    QVERIFY(log.lines().isEmpty());
    QCOMPARE(tab.scene.nodes().size(), std::size_t(1));
}

void tst_NodegraphSceneDeleting::deletionWithoutArgumentForgetsCurrentNodeFirst()
{
    Tab tab;
    addChain(tab.scene, 1);
    Node *seen = tab.scene.currentNode();
    connect(&tab.scene, &NodegraphScene::s_UndoCommandAdded, this, [&] { seen = tab.scene.currentNode(); });
    tab.scene.deleteSelectedNodes(nullptr);
    QCOMPARE(seen, nullptr);
}

void tst_NodegraphSceneDeleting::oneCommandPerNode()
{
    Tab tab;
    addChain(tab.scene, 3);
    tab.stack.clear();
    tab.scene.selectAll();
    tab.scene.deleteSelectedNodes(nullptr);
    QCOMPARE(tab.stack.count(), 3);
    for (int i = 0; i < 3; ++i)
        QCOMPARE(tab.stack.text(i), QStringLiteral("Delete Node"));
    tab.stack.undo();
    QCOMPARE(tab.scene.nodes().size(), std::size_t(1));
}

void tst_NodegraphSceneDeleting::deletingLogsItsSteps_data()
{
    QTest::addColumn<int>("index");
    QTest::addColumn<QStringList>("lines");
    QTest::newRow("first") << 0 << QStringList{"Del", "Disconnected node  1", "Deleted node  0"};
    QTest::newRow("middle") << 1
                            << QStringList{"Del", "Disconnected node  2", "Disconnected node  1",
                                           "Deleted node  1"};
    QTest::newRow("end") << 2
                         << QStringList{"Del", "No storyNode", "Disconnected node  2", "Deleted node  2",
                                        "No storyNode"};
}

void tst_NodegraphSceneDeleting::deletingLogsItsSteps()
{
    QFETCH(int, index);
    QFETCH(QStringList, lines);
    Tab tab;
    addChain(tab.scene, 3);
    LogCapture log;
    tab.scene.deleteSelectedNodes(tab.scene.findNodeByIndex(index));
    QCOMPARE(log.lines(), lines);
}

void tst_NodegraphSceneDeleting::middleOfChainLeavesBothSidesFree()
{
    Tab tab;
    const Nodes nodes = addChain(tab.scene, 3);
    QSignalSpy story(&tab.scene, &NodegraphScene::s_updateStory);
    tab.scene.deleteNode(nodes[1]);
    QVERIFY(!nodes[2]->hasInput());
    QCOMPARE(nodes[2]->prevNode(), nullptr);
    QCOMPARE(nodes[2]->getPrevIndex(), -1);
    QVERIFY(nodes[0]->nextNodes().empty());
    QVERIFY(!nodes[0]->outSocket()->getIsConnected());
    QVERIFY(!nodes[2]->inSocket()->getIsConnected());
    QCOMPARE(tab.scene.story(), Nodes{nodes[2]});
    QCOMPARE(story.last().at(0).value<Nodes>(), Nodes{nodes[2]});
    QVERIFY(linesOf(tab.scene).empty());
}

void tst_NodegraphSceneDeleting::nodeThatFeedsThreeLeavesThemWithoutInput()
{
    Tab tab;
    const Nodes nodes = addChain(tab.scene, 1);
    Nodes fed;
    for (const double y : {900, 1800, 2700}) {
        fed.push_back(addLoose(tab.scene, QPointF(800, y)));
        tab.scene.connectNodes(fed.back(), nodes[0]);
    }
    LogCapture log;
    tab.scene.deleteNode(nodes[0]);
    for (const Node *node : fed) {
        QVERIFY(!node->hasInput());
        QCOMPARE(node->prevNode(), nullptr);
        QCOMPARE(node->getPrevIndex(), -1);
        QVERIFY(!node->inSocket()->getIsConnected());
        QCOMPARE(node->inSocket()->connectedSocket(), nullptr);
    }
    QVERIFY(linesOf(tab.scene).empty());
    QStringList disconnections;
    for (const QString &line : log.lines()) {
        if (line.startsWith("Disconnected"))
            disconnections << line;
    }
    QCOMPARE(disconnections,
             (QStringList{"Disconnected node  1", "Disconnected node  2", "Disconnected node  3"}));
}

void tst_NodegraphSceneDeleting::upstreamKeepsItsOtherNodes()
{
    Tab tab;
    const Nodes nodes = addChain(tab.scene, 2);
    Node *branch = addLoose(tab.scene, QPointF(800, 900));
    tab.scene.connectNodes(branch, nodes[0]);
    tab.scene.deleteNode(nodes[1]);
    QCOMPARE(nodes[0]->nextNodes(), Nodes{branch});
    QCOMPARE(nodes[0]->outSocket()->connectedSocket(), branch->inSocket());
    QVERIFY(nodes[0]->outSocket()->getIsConnected());
    QVERIFY(linesAreExact(tab.scene));
}

void tst_NodegraphSceneDeleting::endOfStoryGoesWithItsNode()
{
    Tab tab;
    const Nodes nodes = addChain(tab.scene, 3);
    QSignalSpy story(&tab.scene, &NodegraphScene::s_updateStory);
    tab.scene.deleteNode(nodes[2]);
    QCOMPARE(tab.scene.endOfStoryNode(), nullptr);
    QVERIFY(tab.scene.story().empty());
    QVERIFY(!story.isEmpty());
    QVERIFY(story.last().at(0).value<Nodes>().empty());
    for (const Node *node : {nodes[0], nodes[1]})
        QVERIFY(!node->isEndOfStory());
}

void tst_NodegraphSceneDeleting::noStoryWithDyingNodeIsPublished()
{
    Tab tab;
    const Nodes nodes = addChain(tab.scene, 4);
    QSignalSpy story(&tab.scene, &NodegraphScene::s_updateStory);
    for (const std::size_t dying : {1, 3, 0}) {
        story.clear();
        tab.scene.deleteNode(nodes[dying]);
        QVERIFY(!story.isEmpty());
        for (const QList<QVariant> &arguments : story)
            QVERIFY(!contains(arguments.at(0).value<Nodes>(), nodes[dying]));
    }
}

void tst_NodegraphSceneDeleting::deletingNullDoesNothing()
{
    Tab tab;
    addChain(tab.scene, 1);
    QSignalSpy story(&tab.scene, &NodegraphScene::s_updateStory);
    tab.scene.deleteNode(nullptr);
    QVERIFY(story.isEmpty());
    QCOMPARE(tab.scene.nodes().size(), std::size_t(1));
}

void tst_NodegraphSceneDeleting::otherIndicesStay()
{
    Tab tab;
    const Nodes nodes = addChain(tab.scene, 3);
    QSignalSpy changes(&tab.scene, &NodegraphScene::s_nodeIndexChanged);
    tab.scene.deleteNode(nodes[0]);
    QCOMPARE(nodes[1]->getIndex(), 1);
    QCOMPARE(nodes[2]->getIndex(), 2);
    QVERIFY(changes.isEmpty());
    QCOMPARE(tab.scene.findNodeByIndex(0), nullptr);
    QCOMPARE(tab.scene.findNodeByIndex(1), nodes[1]);
}

void tst_NodegraphSceneDeleting::deletedNodeIsForgottenEverywhere()
{
    Tab tab;
    const Nodes nodes = addChain(tab.scene, 2);
    Node *dying = nodes[1];
    tab.scene.copyNodes();
    tab.scene.selectAll();
    QCOMPARE(tab.scene.currentNode(), dying);
    QCOMPARE(tab.scene.endOfStoryNode(), dying);
    emit dying->s_socketClick(SocketType::output, QPointF(0, 0));
    QVERIFY(dragLineOf(tab.scene));

    tab.scene.deleteNode(dying);
    QCOMPARE(tab.scene.nodes(), Nodes{nodes[0]});
    QCOMPARE(tab.scene.selectedNodes(), Nodes{nodes[0]});
    QVERIFY(tab.scene.story().empty());
    QCOMPARE(tab.scene.currentNode(), nullptr);
    QCOMPARE(tab.scene.endOfStoryNode(), nullptr);
    QCOMPARE(tab.scene.findNodeByIndex(1), nullptr);
    QVERIFY(linesOf(tab.scene).empty());
    flushDeferredDeletes();
    tab.scene.sl_manualNodeConnect(nodes[0]->inSocket());
    QVERIFY(!nodes[0]->hasInput());
}

void tst_NodegraphSceneDeleting::deletedNodeIsDestroyedSoonAfter()
{
    Tab tab;
    const QPointer<Node> node = addChain(tab.scene, 1).front();
    const QPointer<Socket> socket = node->outSocket();
    tab.scene.deleteNode(node);
    QVERIFY(node); // its own press or key may have led here
    QCOMPARE(node->scene(), nullptr);
    flushDeferredDeletes();
    QVERIFY(!node);
    QVERIFY(!socket);
}

void tst_NodegraphSceneDeleting::deletedNodeReportsNothing()
{
    Tab tab;
    Node *node = addChain(tab.scene, 2).front();
    tab.scene.deleteNode(node);
    QSignalSpy index(&tab.scene, &NodegraphScene::s_nodeIndexChanged);
    QSignalSpy importance(&tab.scene, &NodegraphScene::s_importanceChanged);
    node->setIndex(5);
    node->setImportant(true);
    emit node->s_selected(node);
    emit node->s_socketClick(SocketType::output, QPointF());
    QVERIFY(index.isEmpty());
    QVERIFY(importance.isEmpty());
    QVERIFY(tab.scene.currentNode() != node);
    QVERIFY(linesOf(tab.scene).empty());
    QCOMPARE(tab.scene.findNodeByIndex(5), nullptr);
}

void tst_NodegraphSceneDeleting::forgottenClipboardPastesNothing()
{
    Tab tab;
    const Nodes nodes = addChain(tab.scene, 2);
    tab.scene.copyNodes();
    tab.scene.deleteSelectedNodes(nodes[1]);
    LogCapture log;
    tab.scene.pasteNodes();
    flushDeferredDeletes();
    tab.scene.pasteNodes();
    QCOMPARE(tab.scene.nodes(), Nodes{nodes[0]});
    QVERIFY(log.lines().isEmpty());
}

void tst_NodegraphSceneDeleting::deletedCurrentNodeAttractsNoNewOne()
{
    Tab tab;
    const Nodes nodes = addChain(tab.scene, 2);
    tab.scene.deleteSelectedNodes(nodes[1]); // given, so that it stays current until it dies
    flushDeferredDeletes();
    tab.scene.sl_lastMousePos(QPointF(700, 800));
    tab.scene.sl_addEventNode();
    const Node *added = tab.scene.nodes().back();
    QCOMPARE(added->pos(), QPointF(700, 800));
    QVERIFY(!added->hasInput());
    tab.scene.setEndOfStoryNode();
    tab.scene.toggleImportance(nullptr);
    QVERIFY(!added->isImportant());
}

void tst_NodegraphSceneDeleting::deletingWhileTitleIsEditedIsQuiet()
{
    ShownScene shown;
    const Nodes nodes = addChain(shown.scene, 2);
    shown.view.ensureVisible(nodes[1]);
    const QPointF title = nodes[1]->mapToScene(QPointF(30, 17));
    shown.press(title);
    shown.release(title);
    shown.scene.deleteSelectedNodes(nodes[1]);
    flushDeferredDeletes();
    shown.move(title);
    shown.press(title);
    shown.release(title);
    QCOMPARE(shown.scene.nodes(), Nodes{nodes[0]});
    QCOMPARE(shown.scene.focusItem(), nullptr);
}

void tst_NodegraphSceneDeleting::undoBringsNodeBackAsItWas()
{
    Tab tab;
    const Nodes nodes = addChain(tab.scene, 3);
    nodes[1]->setNodeName(QStringLiteral("Storm"));
    nodes[1]->payload()->eventContent()->setDescription(QStringLiteral("The mast breaks."));
    nodes[1]->setPos(QPointF(123.5, 456.25));
    tab.scene.deleteSelectedNodes(nodes[1]);
    flushDeferredDeletes();
    tab.stack.undo();

    const Node *back = tab.scene.findNodeByIndex(1);
    QVERIFY(back);
    QCOMPARE(back->title(), QStringLiteral("Storm"));
    QCOMPARE(back->payload()->eventContent()->getDescription(), QStringLiteral("The mast breaks."));
    QCOMPARE(back->pos(), QPointF(123.5, 456.25));
    QCOMPARE(back->prevNode(), nodes[0]);
    QCOMPARE(nodes[2]->prevNode(), back);
    QVERIFY(linesAreExact(tab.scene));
}

void tst_NodegraphSceneDeleting::undoOfSelectionBringsChainBack()
{
    Tab tab;
    addChain(tab.scene, 4);
    tab.stack.clear();
    tab.scene.selectAll();
    tab.scene.deleteSelectedNodes(nullptr);
    flushDeferredDeletes();
    while (tab.stack.canUndo())
        tab.stack.undo();
    QStringList story;
    for (const Node *node : tab.scene.story())
        story << QString::number(node->getIndex());
    QCOMPARE(story, (QStringList{"0", "1", "2", "3"}));
    QVERIFY(linesAreExact(tab.scene));
}

QTEST_MAIN(tst_NodegraphSceneDeleting)
#include "tst_nodegraphscene_deleting.moc"
