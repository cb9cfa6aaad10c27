#include "scene/scenetab.h"
#include "scene/shownscene.h"
#include "support/testsupport.h"

#include "items/eventdata.h"
#include "items/nodedata.h"

#include <QBrush>
#include <QGraphicsRectItem>
#include <QMetaMethod>

class tst_NodegraphScene : public TestCase
{
    Q_OBJECT

private slots:
    void metaObjectListsMethodsInOrder();
    void metaObjectNamesArguments_data();
    void metaObjectNamesArguments();
    void storyTravelsThroughQueuedConnections();
    void freshSceneIsEmptyGreyCanvas();
    void freshSceneHoldsOnlyTheHiddenVeil();
    void createNodeTakesNameAndCopiesData();
    void createNodeWithoutNameAndDataKeepsDefaults();
    void createNodePublishesStory();
    void takenIndexIsReplacedByCounter();
    void replacedIndexIsUnique_data();
    void replacedIndexIsUnique();
    void lookupFindsFirstMatch();
    void restoreNodeAttachesToNothing();
    void everyNodeSignalReachesItsSlotOnce_data();
    void everyNodeSignalReachesItsSlotOnce();
    void selectedNodeBecomesCurrent();
    void indexAndImportanceAreRelayed();
    void movingNodeChangesNothingByItself();
    void currentNodeCanBeForgotten();
    void selectAllListsNodesInOrder();
    void deselectAllKeepsCurrentNode();
};

void tst_NodegraphScene::metaObjectListsMethodsInOrder()
{
    const QMetaObject &meta = NodegraphScene::staticMetaObject;
    const QStringList signatures{"s_UndoCommandAdded(QUndoCommand*)", "s_frameView(QRectF)",
                                 "s_updateStory(std::vector<Node*>)", "s_updateNode(Node*)",
                                 "s_nodeIndexChanged(Node*,int)",     "s_importanceChanged(Node*,bool)"};
    const QStringList slotSignatures{"sl_addEventNode()",
                                     "sl_selectCurrentNode(Node*)",
                                     "sl_deselectCurrentNode()",
                                     "sl_nodeMove(Node*)",
                                     "sl_connectionLineClicked(ConnectionLine*,int)",
                                     "sl_nodeChanged(Node*)",
                                     "sl_nodeIndexChanged(Node*,int)",
                                     "sl_ovNodeChanged(QGraphicsItem*,int)",
                                     "sl_importanceChanged(Node*,bool)",
                                     "sl_socketClick(int,QPointF)",
                                     "sl_socketClickDrag()",
                                     "sl_manualNodeConnect(Socket*)",
                                     "sl_lastMousePos(QPointF)",
                                     "saveSceneToFile(QDataStream&)",
                                     "loadSceneFromFile(QDataStream&)",
                                     "copyNodes()",
                                     "cutNodes()",
                                     "pasteNodes()",
                                     "selectAll()",
                                     "deselectAll()",
                                     "clear()",
                                     "frameSelectedNodes()"};
    QCOMPARE(ownMethods(meta), signatures + slotSignatures);
    for (int i = 0; i < signatures.size() + slotSignatures.size(); ++i) {
        const QMetaMethod method = meta.method(meta.methodOffset() + i);
        QCOMPARE(method.methodType(), i < signatures.size() ? QMetaMethod::Signal : QMetaMethod::Slot);
        QCOMPARE(method.access(), QMetaMethod::Public);
        QCOMPARE(method.returnMetaType(), QMetaType(QMetaType::Void));
    }
    QCOMPARE(meta.superClass(), &QGraphicsScene::staticMetaObject);
}

void tst_NodegraphScene::metaObjectNamesArguments_data()
{
    QTest::addColumn<QByteArray>("signature");
    QTest::addColumn<QList<QByteArray>>("names");
    using Names = QList<QByteArray>;
    QTest::newRow("command") << QByteArray("s_UndoCommandAdded(QUndoCommand*)") << Names{"undoCommand"};
    QTest::newRow("frame") << QByteArray("s_frameView(QRectF)") << Names{"bounds"};
    QTest::newRow("story") << QByteArray("s_updateStory(std::vector<Node*>)") << Names{""};
    QTest::newRow("node") << QByteArray("s_updateNode(Node*)") << Names{"node"};
    QTest::newRow("index") << QByteArray("s_nodeIndexChanged(Node*,int)") << Names{"node", "index"};
    QTest::newRow("importance") << QByteArray("s_importanceChanged(Node*,bool)")
                                << Names{"node", "isImportant"};
    QTest::newRow("line click") << QByteArray("sl_connectionLineClicked(ConnectionLine*,int)")
                                << Names{"line", "type"};
    QTest::newRow("index slot") << QByteArray("sl_nodeIndexChanged(Node*,int)") << Names{"", "index"};
    QTest::newRow("panel") << QByteArray("sl_ovNodeChanged(QGraphicsItem*,int)")
                           << Names{"nodeData", "index"};
    QTest::newRow("importance slot") << QByteArray("sl_importanceChanged(Node*,bool)")
                                     << Names{"", "isImportant"};
    QTest::newRow("socket") << QByteArray("sl_socketClick(int,QPointF)") << Names{"type", ""};
    QTest::newRow("manual") << QByteArray("sl_manualNodeConnect(Socket*)") << Names{"socket"};
    QTest::newRow("save") << QByteArray("saveSceneToFile(QDataStream&)") << Names{"stream"};
    QTest::newRow("load") << QByteArray("loadSceneFromFile(QDataStream&)") << Names{"stream"};
}

void tst_NodegraphScene::metaObjectNamesArguments()
{
    QFETCH(QByteArray, signature);
    QFETCH(QList<QByteArray>, names);
    const QMetaObject &meta = NodegraphScene::staticMetaObject;
    const int index = meta.indexOfMethod(signature);
    QVERIFY(index >= meta.methodOffset());
    QCOMPARE(meta.method(index).parameterNames(), names);
}

void tst_NodegraphScene::storyTravelsThroughQueuedConnections()
{
    SceneTab tab;
    NodegraphScene receiver;
    connect(&tab.scene, SIGNAL(s_updateStory(std::vector<Node*>)), &receiver,
                               SIGNAL(s_updateStory(std::vector<Node*>)), Qt::QueuedConnection);
    QSignalSpy spy(&receiver, &NodegraphScene::s_updateStory);
    const Nodes nodes = addChain(tab.scene, 1);
    QVERIFY(spy.isEmpty());
    QTRY_VERIFY(!spy.isEmpty());
    QCOMPARE(spy.last().at(0).value<Nodes>(), nodes);
    QVERIFY(QMetaType::fromName("std::vector<Node*>").isValid());
    QCOMPARE(QMetaType::fromName("std::vector<Node*>"), QMetaType::fromType<Nodes>());
}

void tst_NodegraphScene::freshSceneIsEmptyGreyCanvas()
{
    const NodegraphScene scene;
    QCOMPARE(scene.parent(), nullptr);
    QCOMPARE(scene.sceneRect(), QRectF(0, 0, 99999, 99999));
    QCOMPARE(scene.backgroundBrush().style(), Qt::SolidPattern);
    QCOMPARE(scene.backgroundBrush().color(), QColor(0x60, 0x60, 0x60));
    QVERIFY(scene.nodes().empty());
    QVERIFY(scene.selectedNodes().empty());
    QVERIFY(scene.story().empty());
    QCOMPARE(scene.currentNode(), nullptr);
    QCOMPARE(scene.endOfStoryNode(), nullptr);
}

void tst_NodegraphScene::freshSceneHoldsOnlyTheHiddenVeil()
{
    const NodegraphScene scene;
    QCOMPARE(scene.items().size(), 1);
    const QGraphicsRectItem *veil = rubberBandOf(scene);
    QVERIFY(veil);
    QVERIFY(veil->rect().isNull());
    QCOMPARE(veil->pen().style(), Qt::NoPen);
    QCOMPARE(veil->brush().style(), Qt::SolidPattern);
    QCOMPARE(veil->brush().color(), QColor(255, 255, 255, 28));
}

void tst_NodegraphScene::createNodeTakesNameAndCopiesData()
{
    SceneTab tab;
    auto source = std::make_unique<NodeData>(0, nullptr);
    source->eventContent()->setDescription(QStringLiteral("What happens"));
    tab.scene.createNode(QPointF(7.5, 8.5), 4, 0, source.get(), QStringLiteral("Title"));
    const Node *node = tab.scene.nodes().front();
    QVERIFY(node->payload() != source.get());
    source.reset(); // stays the caller's
    QCOMPARE(node->pos(), QPointF(7.5, 8.5));
    QCOMPARE(node->getIndex(), 4);
    QCOMPARE(node->title(), QStringLiteral("Title"));
    QCOMPARE(node->payload()->eventContent()->getDescription(), QStringLiteral("What happens"));
}

void tst_NodegraphScene::createNodeWithoutNameAndDataKeepsDefaults()
{
    SceneTab tab;
    const Node fresh(0);
    tab.scene.createNode(QPointF(), 0, 0, nullptr, QString());
    tab.scene.createNode(QPointF(), 1, 0, nullptr, QStringLiteral(""));
    for (const Node *node : tab.scene.nodes()) {
        QCOMPARE(node->title(), QStringLiteral("Event"));
        QCOMPARE(node->payload()->eventContent()->getDescription(),
                 fresh.payload()->eventContent()->getDescription());
    }
}

void tst_NodegraphScene::createNodePublishesStory()
{
    SceneTab tab;
    QSignalSpy spy(&tab.scene, &NodegraphScene::s_updateStory);
    tab.scene.createNode(QPointF(), 0, 0, nullptr, QString());
    // Once for the mark that the only node gets, once for the new node.
    QCOMPARE(spy.size(), 2);
    tab.scene.createNode(QPointF(), 1, 0, nullptr, QString());
    QCOMPARE(spy.size(), 3);
    QCOMPARE(spy.last().at(0).value<Nodes>(), Nodes{tab.scene.nodes().front()});
}

void tst_NodegraphScene::takenIndexIsReplacedByCounter()
{
    SceneTab tab;
    addChain(tab.scene, 3);
    tab.scene.createNode(QPointF(), 1, 0, nullptr, QString());
    // The counter has counted the new node already.
    QCOMPARE(tab.scene.nodes().back()->getIndex(), 4);
    tab.scene.createNode(QPointF(), 17, 0, nullptr, QString());
    QCOMPARE(tab.scene.nodes().back()->getIndex(), 17);
}

void tst_NodegraphScene::replacedIndexIsUnique_data()
{
    QTest::addColumn<QList<int>>("present");
    QTest::addColumn<int>("wanted");
    QTest::addColumn<int>("given");
    // With three nodes present the counter stands at 4 when the index is chosen.
    QTest::newRow("free") << QList<int>{0, 1, 2} << 3 << 3;
    QTest::newRow("counter is free") << QList<int>{0, 1, 2} << 0 << 4;
    QTest::newRow("counter is taken later in the list") << QList<int>{1, 4, 0} << 1 << 5;
    QTest::newRow("counter is taken earlier in the list") << QList<int>{4, 1, 0} << 1 << 5;
    QTest::newRow("and the next as well") << QList<int>{5, 4, 1} << 1 << 6;
    QTest::newRow("counter itself is wanted") << QList<int>{4, 5, 7} << 4 << 6;
    QTest::newRow("negative") << QList<int>{-1, 0, 1} << -1 << 4;
    QTest::newRow("the number every new node starts with") << QList<int>{1, 2, 3} << 0 << 0;
}

void tst_NodegraphScene::replacedIndexIsUnique()
{
    QFETCH(QList<int>, present);
    QFETCH(int, wanted);
    QFETCH(int, given);
    SceneTab tab;
    for (const int index : present)
        tab.scene.createNode(QPointF(), index, 0, nullptr, QString());
    tab.scene.createNode(QPointF(), wanted, 0, nullptr, QString());
    QCOMPARE(tab.scene.nodes().back()->getIndex(), given);
    QCOMPARE(tab.scene.findNodeByIndex(given), tab.scene.nodes().back());
}

void tst_NodegraphScene::lookupFindsFirstMatch()
{
    SceneTab tab;
    QCOMPARE(tab.scene.findNodeByIndex(0), nullptr);
    const Nodes nodes = addChain(tab.scene, 3);
    for (const Node *node : nodes)
        QCOMPARE(tab.scene.findNodeByIndex(node->getIndex()), node);
    QCOMPARE(tab.scene.findNodeByIndex(3), nullptr);
    QCOMPARE(tab.scene.findNodeByIndex(-1), nullptr);

    nodes[0]->setIndex(9);
    nodes[2]->setIndex(9);
    QCOMPARE(tab.scene.findNodeByIndex(9), nodes[0]);
    QCOMPARE(tab.scene.findNodeByIndex(0), nullptr);
    tab.scene.deleteNode(nodes[0]);
    QCOMPARE(tab.scene.findNodeByIndex(9), nodes[2]);
}

void tst_NodegraphScene::restoreNodeAttachesToNothing()
{
    SceneTab tab;
    const Nodes nodes = addChain(tab.scene, 2);
    Node *restored = tab.scene.restoreNode(QPointF(3.5, 4.5), 8, 0, nullptr, QStringLiteral("back"));
    QCOMPARE(restored->pos(), QPointF(3.5, 4.5));
    QCOMPARE(restored->getIndex(), 8);
    QVERIFY(!restored->hasInput());
    QVERIFY(!restored->isSelected());
    QCOMPARE(tab.scene.currentNode(), nodes[1]);
    QCOMPARE(tab.scene.endOfStoryNode(), nodes[1]);
}

void tst_NodegraphScene::everyNodeSignalReachesItsSlotOnce_data()
{
    QTest::addColumn<QByteArray>("signal");
    QTest::addColumn<QByteArray>("slot");
    QTest::newRow("selected") << QByteArray(SIGNAL(s_selected(Node*)))
                                            << QByteArray(SLOT(sl_selectCurrentNode(Node*)));
    QTest::newRow("moving") << QByteArray(SIGNAL(s_moving(Node*))) << QByteArray(SLOT(sl_nodeMove(Node*)));
    QTest::newRow("socket click") << QByteArray(SIGNAL(s_socketClick(int,QPointF)))
                                                << QByteArray(SLOT(sl_socketClick(int,QPointF)));
    QTest::newRow("socket drag") << QByteArray(SIGNAL(s_socketClickDrag()))
                                               << QByteArray(SLOT(sl_socketClickDrag()));
    QTest::newRow("changed") << QByteArray(SIGNAL(s_changed(Node*)))
                                           << QByteArray(SLOT(sl_nodeChanged(Node*)));
    QTest::newRow("index") << QByteArray(SIGNAL(s_indexChanged(Node*,int)))
                                         << QByteArray(SLOT(sl_nodeIndexChanged(Node*,int)));
    QTest::newRow("importance") << QByteArray(SIGNAL(s_importanceChanged(Node*,bool)))
                                              << QByteArray(SLOT(sl_importanceChanged(Node*,bool)));
}

void tst_NodegraphScene::everyNodeSignalReachesItsSlotOnce()
{
    QFETCH(QByteArray, signal);
    QFETCH(QByteArray, slot);
    SceneTab tab;
    const Node *node = addChain(tab.scene, 1).front();
    QVERIFY(QObject::disconnect(node, signal.constData(), &tab.scene, slot.constData()));
    QVERIFY(!QObject::disconnect(node, signal.constData(), &tab.scene, nullptr));
}

void tst_NodegraphScene::selectedNodeBecomesCurrent()
{
    SceneTab tab;
    const Nodes nodes = addChain(tab.scene, 2);
    emit nodes[0]->s_selected(nodes[0]);
    QCOMPARE(tab.scene.currentNode(), nodes[0]);
}

void tst_NodegraphScene::indexAndImportanceAreRelayed()
{
    SceneTab tab;
    const Nodes nodes = addChain(tab.scene, 2);
    QSignalSpy index(&tab.scene, &NodegraphScene::s_nodeIndexChanged);
    QSignalSpy importance(&tab.scene, &NodegraphScene::s_importanceChanged);
    nodes[1]->setIndex(6);
    QCOMPARE(index.size(), 1);
    QCOMPARE(index.at(0).at(0).value<Node *>(), nodes[1]);
    QCOMPARE(index.at(0).at(1).toInt(), 6);
    nodes[0]->setImportant(true);
    nodes[0]->setImportant(false);
    QCOMPARE(importance.size(), 2);
    QCOMPARE(importance.at(0).at(0).value<Node *>(), nodes[0]);
    QCOMPARE(importance.at(0).at(1).toBool(), true);
    QCOMPARE(importance.at(1).at(1).toBool(), false);
}

void tst_NodegraphScene::movingNodeChangesNothingByItself()
{
    SceneTab tab;
    const Nodes nodes = addChain(tab.scene, 2);
    QSignalSpy commands(&tab.scene, &NodegraphScene::s_UndoCommandAdded);
    QSignalSpy story(&tab.scene, &NodegraphScene::s_updateStory);
    const QPointF start = startOf(nodes[1]->inLine());
    nodes[1]->moveBy(50, 50);
    tab.scene.sl_nodeMove(nodes[1]);
    QCOMPARE(startOf(nodes[1]->inLine()), start);
    QVERIFY(commands.isEmpty());
    QVERIFY(story.isEmpty());
}

void tst_NodegraphScene::currentNodeCanBeForgotten()
{
    SceneTab tab;
    const Nodes nodes = addChain(tab.scene, 1);
    tab.scene.sl_deselectCurrentNode();
    QCOMPARE(tab.scene.currentNode(), nullptr);
    QVERIFY(nodes[0]->isSelected());
}

void tst_NodegraphScene::selectAllListsNodesInOrder()
{
    SceneTab tab;
    const Nodes nodes = addChain(tab.scene, 3);
    tab.scene.selectAll();
    QCOMPARE(tab.scene.selectedNodes(), nodes);
    QCOMPARE(tab.scene.selectedItems().size(), 3);
    tab.scene.selectAll();
    QCOMPARE(tab.scene.selectedNodes(), nodes);
    QCOMPARE(tab.scene.currentNode(), nodes[2]);
}

void tst_NodegraphScene::deselectAllKeepsCurrentNode()
{
    SceneTab tab;
    const Nodes nodes = addChain(tab.scene, 2);
    tab.scene.selectAll();
    tab.scene.deselectAll();
    QVERIFY(tab.scene.selectedNodes().empty());
    QVERIFY(tab.scene.selectedItems().isEmpty());
    QCOMPARE(tab.scene.currentNode(), nodes[1]);
    tab.scene.sl_addEventNode();
    QCOMPARE(tab.scene.nodes().back()->prevNode(), nodes[1]);
}

QTEST_MAIN(tst_NodegraphScene)
#include "tst_nodegraphscene.moc"
