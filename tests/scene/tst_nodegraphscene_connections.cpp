#include "scene/connector.h"
#include "scene/scenetab.h"
#include "scene/shownscene.h"
#include "support/testsupport.h"

#include <QPointer>

namespace {

/// Loose nodes, ready to be connected, and the undo history of their tab.
struct Tab : SceneTab
{
    Nodes nodes;

    explicit Tab(int count)
    {
        for (int i = 0; i < count; ++i)
            nodes.push_back(addLoose(scene, QPointF(100.0 * i, 500.0 * i)));
    }
    Node *operator[](std::size_t i) const { return nodes[i]; }
    /// Connects each node behind the one before it.
    void chain()
    {
        for (std::size_t i = 1; i < nodes.size(); ++i)
            scene.connectNodes(nodes[i], nodes[i - 1]);
    }
};

bool arePartners(const Node *downstream, const Node *upstream)
{
    const Socket *input = downstream->inSocket();
    const Socket *output = upstream->outSocket();
    return input->getIsConnected() && output->getIsConnected() && input->connectedSocket() == output &&
           output->connectedSocket() == input;
}

bool isFree(const Socket *socket) { return !socket->getIsConnected() && !socket->connectedSocket(); }

} // namespace

class tst_NodegraphSceneConnections : public TestCase
{
    Q_OBJECT

private slots:
    void connectingLinksBothNodes();
    void connectingLogsAndPublishesStory();
    void newLineRunsFromInputToOutput();
    void newLineFollowsBothNodes();
    void lineFollowsItsOwnNodesOnly();
    void clickOnNewLineReachesScene();
    void outputFeedsManyNodesInOrder();
    void connectingIntoFedInputReplaces();
    void replacedUpstreamKeepsItsOtherNodes();
    void connectingTheSameAgainKeepsOneLine();
    void nullNodesConnectNothing_data();
    void nullNodesConnectNothing();

    void cycleIsRefused_data();
    void cycleIsRefused();
    void otherWaysRoundAreNoCycle();

    void disconnectingFreesBothNodes();
    void disconnectingLogsAndPublishesStory();
    void disconnectingKeepsOutputOfFirstRemaining();
    void disconnectingUnfedNodeOnlyReports();
    void disconnectingNullDoesNothing();
    void disconnectedLineIsDestroyedSoonAfter();
    void disconnectedLineHearsAndTellsNothing();
    void upstreamThatIsDestroyedFirstLeavesNoLine();
    void socketsArePaintedByTheirState();
    void undoRedoLeavesNoLineBehind();
};

void tst_NodegraphSceneConnections::connectingLinksBothNodes()
{
    Tab tab(2);
    tab.scene.connectNodes(tab[1], tab[0]);
    QVERIFY(tab[1]->hasInput());
    QCOMPARE(tab[1]->prevNode(), tab[0]);
    QCOMPARE(tab[1]->getPrevIndex(), 0);
    QCOMPARE(tab[0]->nextNodes(), Nodes{tab[1]});
    QVERIFY(arePartners(tab[1], tab[0]));
    QVERIFY(isFree(tab[0]->inSocket()));
    QVERIFY(isFree(tab[1]->outSocket()));
    QVERIFY(!tab[0]->hasInput());
    QCOMPARE(tab.stack.count(), 2); // no command of its own
}

void tst_NodegraphSceneConnections::connectingLogsAndPublishesStory()
{
    Tab tab(2);
    tab.scene.setEndOfStory(tab[1]);
    QSignalSpy story(&tab.scene, &NodegraphScene::s_updateStory);
    LogCapture log;
    tab.scene.connectNodes(tab[1], tab[0]);
    QCOMPARE(log.lines(), QStringList{"Connected node  1  to  0"});
    QCOMPARE(story.size(), 1);
    QCOMPARE(story.at(0).at(0).value<Nodes>(), tab.nodes);
}

void tst_NodegraphSceneConnections::newLineRunsFromInputToOutput()
{
    Tab tab(2);
    tab.scene.connectNodes(tab[1], tab[0]);
    ConnectionLine *line = tab[1]->inLine();
    QVERIFY(line);
    QCOMPARE(linesOf(tab.scene), std::vector<ConnectionLine *>{line});
    QCOMPARE(line->inputSocket(), tab[1]->inSocket());
    QCOMPARE(line->outputSocket(), tab[0]->outSocket());
    QCOMPARE(startOf(line), tab[1]->inSocket()->scenePos() + QPointF(5, 11));
    QCOMPARE(endOf(line), tab[0]->outSocket()->scenePos() + QPointF(5, 11));
    QCOMPARE(tab[0]->outLine(), line);
    QCOMPARE(tab[0]->inLine(), nullptr);
}

void tst_NodegraphSceneConnections::newLineFollowsBothNodes()
{
    Tab tab(2);
    tab.scene.connectNodes(tab[1], tab[0]);
    const ConnectionLine *line = tab[1]->inLine();
    const QPointF end = endOf(line);
    emit tab[1]->s_inSocketMove(QPointF(1, 2));
    QCOMPARE(startOf(line), QPointF(1, 2));
    QCOMPARE(endOf(line), end);
    emit tab[0]->s_outSocketMove(QPointF(3, 4));
    QCOMPARE(startOf(line), QPointF(1, 2));
    QCOMPARE(endOf(line), QPointF(3, 4));
}

void tst_NodegraphSceneConnections::lineFollowsItsOwnNodesOnly()
{
    Tab tab(3);
    tab.chain();
    const ConnectionLine *first = tab[1]->inLine();
    const ConnectionLine *second = tab[2]->inLine();
    const QPointF firstStart = startOf(first);
    emit tab[1]->s_outSocketMove(QPointF(1, 2));
    QCOMPARE(endOf(second), QPointF(1, 2));
    QCOMPARE(startOf(first), firstStart);
    QCOMPARE(endOf(first), outputOf(tab[0]));
    emit tab[0]->s_inSocketMove(QPointF(7, 7));
    emit tab[2]->s_outSocketMove(QPointF(7, 7));
    QCOMPARE(startOf(first), firstStart);
    QCOMPARE(startOf(second), inputOf(tab[2]));
}

void tst_NodegraphSceneConnections::clickOnNewLineReachesScene()
{
    Tab tab(2);
    tab.scene.connectNodes(tab[1], tab[0]);
    QSignalSpy commands(&tab.scene, &NodegraphScene::s_UndoCommandAdded);
    emit tab[1]->inLine()->s_clicked(tab[1]->inLine(), SocketType::input);
    QCOMPARE(commands.size(), 1);
    QVERIFY(!tab[1]->hasInput());
}

void tst_NodegraphSceneConnections::outputFeedsManyNodesInOrder()
{
    Tab tab(4);
    tab.scene.connectNodes(tab[3], tab[0]);
    tab.scene.connectNodes(tab[1], tab[0]);
    tab.scene.connectNodes(tab[2], tab[0]);
    QCOMPARE(tab[0]->nextNodes(), (Nodes{tab[3], tab[1], tab[2]}));
    QVERIFY(arePartners(tab[2], tab[0])); // the newest
    QCOMPARE(tab[0]->outLine(), tab[2]->inLine());
    for (const Node *fed : {tab[1], tab[2], tab[3]}) {
        QVERIFY(fed->inSocket()->getIsConnected());
        QCOMPARE(fed->inSocket()->connectedSocket(), tab[0]->outSocket());
    }
    QVERIFY(linesAreExact(tab.scene));
    emit tab[0]->s_outSocketMove(QPointF(1, 2));
    for (const ConnectionLine *line : linesOf(tab.scene))
        QCOMPARE(endOf(line), QPointF(1, 2));
}

void tst_NodegraphSceneConnections::connectingIntoFedInputReplaces()
{
    Tab tab(3);
    tab.scene.connectNodes(tab[1], tab[0]);
    LogCapture log;
    tab.scene.connectNodes(tab[1], tab[2]);
    QCOMPARE(log.lines(), (QStringList{"Disconnected node  1", "Connected node  1  to  2"}));
    QCOMPARE(tab[1]->prevNode(), tab[2]);
    QCOMPARE(tab[1]->getPrevIndex(), 2);
    QVERIFY(tab[1]->hasInput());
    QVERIFY(tab[0]->nextNodes().empty());
    QVERIFY(isFree(tab[0]->outSocket()));
    QVERIFY(arePartners(tab[1], tab[2]));
    QVERIFY(linesAreExact(tab.scene));
}

void tst_NodegraphSceneConnections::replacedUpstreamKeepsItsOtherNodes()
{
    Tab tab(5);
    for (const std::size_t fed : {1, 2, 3})
        tab.scene.connectNodes(tab[fed], tab[0]);
    tab.scene.connectNodes(tab[1], tab[4]);
    QCOMPARE(tab[0]->nextNodes(), (Nodes{tab[2], tab[3]}));
    QVERIFY(arePartners(tab[2], tab[0]));
    QVERIFY(arePartners(tab[1], tab[4]));
}

void tst_NodegraphSceneConnections::connectingTheSameAgainKeepsOneLine()
{
    Tab tab(2);
    tab.scene.connectNodes(tab[1], tab[0]);
    tab.scene.connectNodes(tab[1], tab[0]);
    QCOMPARE(tab[0]->nextNodes(), Nodes{tab[1]});
    QVERIFY(arePartners(tab[1], tab[0]));
    QVERIFY(linesAreExact(tab.scene));
}

void tst_NodegraphSceneConnections::nullNodesConnectNothing_data()
{
    QTest::addColumn<int>("downstream");
    QTest::addColumn<int>("upstream");
    QTest::newRow("no downstream") << -1 << 0;
    QTest::newRow("no upstream") << 1 << -1;
    QTest::newRow("neither") << -1 << -1;
}

void tst_NodegraphSceneConnections::nullNodesConnectNothing()
{
    QFETCH(int, downstream);
    QFETCH(int, upstream);
    Tab tab(3);
    tab.scene.connectNodes(tab[1], tab[2]);
    LogCapture log;
    tab.scene.connectNodes(tab.scene.findNodeByIndex(downstream), tab.scene.findNodeByIndex(upstream));
    QVERIFY(log.lines().isEmpty());
    QCOMPARE(tab[1]->prevNode(), tab[2]);
    QVERIFY(linesAreExact(tab.scene));
}

void tst_NodegraphSceneConnections::cycleIsRefused_data()
{
    QTest::addColumn<int>("downstream");
    QTest::addColumn<int>("upstream");
    QTest::newRow("first onto itself") << 0 << 0;
    QTest::newRow("fed node onto itself") << 1 << 1;
    QTest::newRow("end onto itself") << 3 << 3;
    QTest::newRow("two nodes") << 0 << 1;
    QTest::newRow("two nodes inside") << 1 << 2;
    QTest::newRow("the whole chain") << 0 << 3;
    QTest::newRow("part of the chain") << 1 << 3;
}

void tst_NodegraphSceneConnections::cycleIsRefused()
{
    QFETCH(int, downstream);
    QFETCH(int, upstream);
    Tab tab(4);
    tab.chain();
    tab.scene.setEndOfStory(tab[3]);
    QSignalSpy story(&tab.scene, &NodegraphScene::s_updateStory);
    LogCapture log;
    QVERIFY(Connector::wouldCloseCycle(tab.nodes[downstream], tab.nodes[upstream]));
    tab.scene.connectNodes(tab.nodes[downstream], tab.nodes[upstream]);
    QVERIFY(log.lines().isEmpty());
    QVERIFY(story.isEmpty());
    QVERIFY(!tab[0]->hasInput());
    for (std::size_t i = 1; i < 4; ++i) // what fed the node before still does
        QCOMPARE(tab[i]->prevNode(), tab[i - 1]);
    QVERIFY(linesAreExact(tab.scene));
    tab.scene.updateStory();
    QCOMPARE(tab.scene.story(), tab.nodes);
}

void tst_NodegraphSceneConnections::otherWaysRoundAreNoCycle()
{
    Tab tab(4);
    tab.chain();
    // A branch, a shortcut and a node moved to another place of the chain.
    tab.scene.connectNodes(tab[3], tab[0]);
    QCOMPARE(tab[3]->prevNode(), tab[0]);
    tab.scene.connectNodes(tab[1], tab[3]);
    QCOMPARE(tab[1]->prevNode(), tab[3]);
    QCOMPARE(tab[2]->prevNode(), tab[1]);
    // Once the chain is cut it may be closed the other way.
    tab.scene.disconnectNode(tab[3]);
    tab.scene.connectNodes(tab[0], tab[2]);
    QCOMPARE(tab[0]->prevNode(), tab[2]);
    tab.scene.setEndOfStory(tab[0]);
    QCOMPARE(tab.scene.story(), (Nodes{tab[3], tab[1], tab[2], tab[0]}));
    QVERIFY(linesAreExact(tab.scene));
}

void tst_NodegraphSceneConnections::disconnectingFreesBothNodes()
{
    Tab tab(3);
    tab.chain();
    tab.scene.disconnectNode(tab[1]);
    QVERIFY(!tab[1]->hasInput());
    QCOMPARE(tab[1]->prevNode(), nullptr);
    QCOMPARE(tab[1]->getPrevIndex(), -1);
    QCOMPARE(tab[1]->inLine(), nullptr);
    QVERIFY(tab[0]->nextNodes().empty());
    QCOMPARE(tab[0]->outLine(), nullptr);
    QVERIFY(isFree(tab[0]->outSocket()));
    QVERIFY(isFree(tab[1]->inSocket()));
    QVERIFY(arePartners(tab[2], tab[1]));
    QVERIFY(linesAreExact(tab.scene));
}

void tst_NodegraphSceneConnections::disconnectingLogsAndPublishesStory()
{
    Tab tab(3);
    tab.chain();
    tab.scene.setEndOfStory(tab[2]);
    QSignalSpy story(&tab.scene, &NodegraphScene::s_updateStory);
    LogCapture log;
    tab.scene.disconnectNode(tab[1]);
    QCOMPARE(log.lines(), QStringList{"Disconnected node  1"});
    QCOMPARE(story.size(), 1);
    QCOMPARE(story.at(0).at(0).value<Nodes>(), (Nodes{tab[1], tab[2]}));
}

void tst_NodegraphSceneConnections::disconnectingKeepsOutputOfFirstRemaining()
{
    Tab tab(4);
    for (const std::size_t fed : {1, 2, 3})
        tab.scene.connectNodes(tab[fed], tab[0]);
    tab.scene.disconnectNode(tab[3]);
    QVERIFY(arePartners(tab[1], tab[0]));
    QVERIFY(tab[2]->inSocket()->getIsConnected());
    tab.scene.disconnectNode(tab[1]);
    QVERIFY(arePartners(tab[2], tab[0]));
    tab.scene.disconnectNode(tab[2]);
    QVERIFY(isFree(tab[0]->outSocket()));
    QVERIFY(linesOf(tab.scene).empty());
}

void tst_NodegraphSceneConnections::disconnectingUnfedNodeOnlyReports()
{
    Tab tab(2);
    tab.scene.connectNodes(tab[1], tab[0]);
    tab[0]->setPrevIndex(17); // as a file may say
    QSignalSpy story(&tab.scene, &NodegraphScene::s_updateStory);
    LogCapture log;
    tab.scene.disconnectNode(tab[0]);
    QCOMPARE(log.lines(), QStringList{"Disconnected node  0"});
    QCOMPARE(story.size(), 1);
    QCOMPARE(tab[0]->getPrevIndex(), -1);
    QVERIFY(arePartners(tab[1], tab[0]));
    QVERIFY(linesAreExact(tab.scene));
}

void tst_NodegraphSceneConnections::disconnectingNullDoesNothing()
{
    Tab tab(2);
    tab.chain();
    QSignalSpy story(&tab.scene, &NodegraphScene::s_updateStory);
    LogCapture log;
    tab.scene.disconnectNode(nullptr);
    QVERIFY(log.lines().isEmpty());
    QVERIFY(story.isEmpty());
}

void tst_NodegraphSceneConnections::disconnectedLineIsDestroyedSoonAfter()
{
    Tab tab(2);
    tab.chain();
    const QPointer<ConnectionLine> line = tab[1]->inLine();
    tab.scene.disconnectNode(tab[1]);
    QVERIFY(line); // its own press may still be running
    QCOMPARE(line->scene(), nullptr);
    flushDeferredDeletes();
    QVERIFY(!line);
}

void tst_NodegraphSceneConnections::disconnectedLineHearsAndTellsNothing()
{
    Tab tab(2);
    tab.chain();
    ConnectionLine *line = tab[1]->inLine();
    const QPainterPath path = line->path();
    tab.scene.disconnectNode(tab[1]);

    emit tab[1]->s_inSocketMove(QPointF(1, 2));
    emit tab[0]->s_outSocketMove(QPointF(3, 4));
    QCOMPARE(line->path(), path);
    QSignalSpy commands(&tab.scene, &NodegraphScene::s_UndoCommandAdded);
    tab.scene.connectNodes(tab[1], tab[0]);
    emit line->s_clicked(line, SocketType::input);
    QVERIFY(commands.isEmpty());
    QCOMPARE(dragLineOf(tab.scene), nullptr);
    QVERIFY(tab[1]->hasInput());
}

void tst_NodegraphSceneConnections::upstreamThatIsDestroyedFirstLeavesNoLine()
{
    Tab tab(2);
    tab.chain();
    const QPointer<ConnectionLine> line = tab[1]->inLine();
    tab.scene.deleteNode(tab[0]);
    flushDeferredDeletes();
    QVERIFY(!line);
    QVERIFY(linesAreExact(tab.scene));
    emit tab[1]->s_inSocketMove(QPointF(1, 2));
}

void tst_NodegraphSceneConnections::socketsArePaintedByTheirState()
{
    ShownScene shown;
    Node *upstream = addLoose(shown.scene, QPointF(20, 20));
    Node *downstream = addLoose(shown.scene, QPointF(600, 20));
    const auto colourAt = [&shown](QPointF pos) {
        return shown.view.viewport()->grab().toImage().pixelColor(shown.at(pos));
    };
    QCOMPARE(colourAt(outputOf(upstream)), QColor("#B4A523"));
    QCOMPARE(colourAt(inputOf(downstream)), QColor("#B4A523"));
    shown.scene.connectNodes(downstream, upstream);
    QCOMPARE(colourAt(outputOf(upstream)), QColor(Qt::yellow));
    QCOMPARE(colourAt(inputOf(downstream)), QColor(Qt::yellow));
    QCOMPARE(colourAt(downstream->inLine()->path().pointAtPercent(0.5)), QColor("#D9D9D9"));
    shown.scene.disconnectNode(downstream);
    QCOMPARE(colourAt(outputOf(upstream)), QColor("#B4A523"));
    QCOMPARE(colourAt(inputOf(downstream)), QColor("#B4A523"));
}

void tst_NodegraphSceneConnections::undoRedoLeavesNoLineBehind()
{
    NodegraphScene scene;
    QUndoStack stack;
    pushCommandsOn(scene, stack);
    addChain(scene, 4);
    scene.deleteSelectedNodes(scene.findNodeByIndex(1));
    scene.selectAll();
    scene.deleteSelectedNodes(nullptr);
    for (int round = 0; round < 2; ++round) {
        while (stack.canUndo()) {
            stack.undo();
            QVERIFY(linesAreExact(scene));
        }
        QCOMPARE(scene.items().size(), 1);
        while (stack.canRedo()) {
            stack.redo();
            QVERIFY(linesAreExact(scene));
        }
        QCOMPARE(scene.items().size(), 1);
    }
}

QTEST_MAIN(tst_NodegraphSceneConnections)
#include "tst_nodegraphscene_connections.moc"
