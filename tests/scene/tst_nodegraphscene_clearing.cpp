#include "scene/scenetab.h"
#include "scene/shownscene.h"
#include "support/testsupport.h"

#include <QGraphicsRectItem>
#include <QUndoCommand>

#include <memory>

class tst_NodegraphSceneClearing : public TestCase
{
    Q_OBJECT

private slots:
    void clearDeletesEveryNodeByCommand();
    void clearDeletesSelectionOnce();
    void clearResetsCounterAndCurrentNode();
    void clearEndsDragAndRubberBand();
    void clearKeepsRubberBandUsable();
    void clearWithoutUndoStackLeavesNothingBehind();
    void clearCanBeUndone();
};

void tst_NodegraphSceneClearing::clearDeletesEveryNodeByCommand()
{
    SceneTab tab;
    addChain(tab.scene, 2);
    const int commands = tab.stack.count();
    QSignalSpy story(&tab.scene, &NodegraphScene::s_updateStory);
    LogCapture log;
    tab.scene.clear();
    QCOMPARE(log.lines(), (QStringList{"clearing scene", "Del", "Disconnected node  1", "Deleted node  0",
                                       "clearing scene", "Del", "Deleted node  1", "No storyNode"}));
    QCOMPARE(tab.stack.count(), commands + 2);
    QCOMPARE(tab.stack.undoText(), QStringLiteral("Delete Node"));
    QVERIFY(tab.scene.nodes().empty());
    QVERIFY(tab.scene.story().empty());
    QCOMPARE(tab.scene.endOfStoryNode(), nullptr);
    QVERIFY(story.last().at(0).value<Nodes>().empty());
    QCOMPARE(tab.scene.items().size(), 1); // the rubber band's rectangle
    QCOMPARE(tab.scene.findNodeByIndex(0), nullptr);
}

void tst_NodegraphSceneClearing::clearDeletesSelectionOnce()
{
    SceneTab tab;
    addChain(tab.scene, 3);
    addLoose(tab.scene, QPointF(0, 900));
    const int commands = tab.stack.count();
    tab.scene.selectAll();
    LogCapture log;
    tab.scene.clear();
    QCOMPARE(tab.stack.count(), commands + 4);
    QCOMPARE(log.count("clearing scene"), 1); // the first deletion took the whole selection with it
    QCOMPARE(log.count("Del"), 4);
    QVERIFY(tab.scene.selectedNodes().empty());
    QVERIFY(tab.scene.nodes().empty());
}

void tst_NodegraphSceneClearing::clearResetsCounterAndCurrentNode()
{
    SceneTab tab;
    addChain(tab.scene, 3);
    tab.scene.clear();
    QCOMPARE(tab.scene.currentNode(), nullptr);
    QCOMPARE(indicesOf(addChain(tab.scene, 2)), (QList<int>{0, 1}));
}

void tst_NodegraphSceneClearing::clearEndsDragAndRubberBand()
{
    SceneTab tab;
    const Nodes nodes = addChain(tab.scene, 1);
    SceneMouse mouse{tab.scene};
    mouse.press(outputOf(nodes[0]));
    QVERIFY(dragLineOf(tab.scene));
    tab.scene.clear();
    QVERIFY(linesOf(tab.scene).empty());
    mouse.move(QPointF(900, 900));
    mouse.release(QPointF(900, 900));

    mouse.press(QPointF(4000, 4000));
    mouse.move(QPointF(4100, 4100));
    tab.scene.clear();
    const QGraphicsRectItem *band = rubberBandOf(tab.scene);
    QVERIFY(band);
    QVERIFY(band->rect().isNull());
    mouse.move(QPointF(4200, 4200));
    QVERIFY(band->rect().isNull());
    mouse.release(QPointF(4200, 4200));
}

void tst_NodegraphSceneClearing::clearKeepsRubberBandUsable()
{
    SceneTab tab;
    addChain(tab.scene, 2);
    tab.scene.clear();
    flushDeferredDeletes();
    Node *node = addLoose(tab.scene, QPointF(1000, 1000));
    SceneMouse mouse{tab.scene};
    mouse.press(QPointF(900, 900));
    mouse.move(QPointF(1100, 1100));
    const QGraphicsRectItem *band = rubberBandOf(tab.scene);
    QVERIFY(band);
    QCOMPARE(band->rect(), QRectF(900, 900, 200, 200));
    QCOMPARE(band->zValue(), 100.0);
    QCOMPARE(band->pen().style(), Qt::NoPen);
    QCOMPARE(band->brush().color(), QColor(255, 255, 255, 28));
    QCOMPARE(tab.scene.selectedNodes(), Nodes{node});
    mouse.release(QPointF(1100, 1100));
}

void tst_NodegraphSceneClearing::clearWithoutUndoStackLeavesNothingBehind()
{
    NodegraphScene scene;
    for (int i = 0; i < 3; ++i)
        scene.createNode(QPointF(0, 400.0 * i), i, 0, nullptr, QString());
    scene.connectNodes(scene.nodes()[1], scene.nodes()[0]);
    scene.sl_selectCurrentNode(scene.nodes()[1]);
    scene.copyNodes();
    QSignalSpy story(&scene, &NodegraphScene::s_updateStory);
    std::vector<std::unique_ptr<QUndoCommand>> unused;
    connect(&scene, &NodegraphScene::s_UndoCommandAdded, &scene,
            [&unused](QUndoCommand *command) { unused.emplace_back(command); });
    scene.clear();
    QVERIFY(scene.nodes().empty());
    QVERIFY(scene.story().empty());
    QCOMPARE(scene.endOfStoryNode(), nullptr);
    QCOMPARE(scene.items().size(), 1);
    QVERIFY(!story.isEmpty());
    QVERIFY(story.last().at(0).value<Nodes>().empty());
    scene.updateStory();
    scene.pasteNodes();
    QVERIFY(scene.nodes().empty());
}

void tst_NodegraphSceneClearing::clearCanBeUndone()
{
    SceneTab tab;
    addChain(tab.scene, 3);
    const int before = tab.stack.count();
    tab.scene.clear();
    while (tab.stack.index() > before)
        tab.stack.undo();
    QCOMPARE(tab.scene.nodes().size(), std::size_t(3));
    QCOMPARE(indicesOf(tab.scene.story()), (QList<int>{0, 1, 2}));
    QVERIFY(linesAreExact(tab.scene));
}

QTEST_MAIN(tst_NodegraphSceneClearing)
#include "tst_nodegraphscene_clearing.moc"
