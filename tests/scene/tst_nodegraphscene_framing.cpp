#include "commands/graphtab.h"

#include <QSignalSpy>

namespace {

/// The one rectangle that a call asks the view to show.
QRectF framed(GraphTab &tab)
{
    QSignalSpy frames(&tab.scene, &NodegraphScene::s_frameView);
    tab.scene.frameSelectedNodes();
    return frames.count() == 1 ? frames.first().first().toRectF() : QRectF(-1, -1, -1, -1);
}

/// The body at its place with the margin of 50 around it.
QRectF withMargin(const Node *node)
{
    return {node->scenePos() - QPointF(50, 50), node->boundingRect().size() + QSizeF(100, 100)};
}

/// Drags a rubber band with the mouse.
void selectByRubberBand(GraphTab &tab, QPointF from, QPointF to) { SceneMouse{tab.scene}.drag(from, to); }

} // namespace

class tst_NodegraphSceneFraming : public TestCase
{
    Q_OBJECT

private slots:
    void singleNodeWithItsMargin();
    void currentNodeAloneCounts_data();
    void currentNodeAloneCounts();
    void allNodesWithoutCurrentAndSelection();
    void selectionWithoutCurrent();
    void scaledNodeIsMappedToTheScene_data();
    void scaledNodeIsMappedToTheScene();
    void emptySceneFramesAnEmptyRectangle();
    void sceneThatWasEmptiedFramesAnEmptyRectangle();
    void tellsTheViewBeforeTheLog();
    void canBeInvokedByName();
    void changesNothing();
};

void tst_NodegraphSceneFraming::singleNodeWithItsMargin()
{
    GraphTab tab;
    const Node *node = addLoose(tab.scene, QPointF(1000, 500));
    const QSizeF size = node->boundingRect().size();
    QCOMPARE(framed(tab), QRectF(950, 450, size.width() + 100, size.height() + 100));
}

void tst_NodegraphSceneFraming::currentNodeAloneCounts_data()
{
    QTest::addColumn<bool>("everythingSelected");
    QTest::newRow("nothing selected") << false;
    QTest::newRow("everything selected") << true;
}

void tst_NodegraphSceneFraming::currentNodeAloneCounts()
{
    QFETCH(bool, everythingSelected);
    GraphTab tab;
    addLoose(tab.scene, QPointF(100, 100));
    Node *current = addLoose(tab.scene, QPointF(3000, 2000));
    addLoose(tab.scene, QPointF(100, 5000));
    if (everythingSelected)
        tab.scene.selectAll();
    tab.scene.sl_selectCurrentNode(current);
    QCOMPARE(framed(tab), withMargin(current));
}

void tst_NodegraphSceneFraming::allNodesWithoutCurrentAndSelection()
{
    GraphTab tab;
    addLoose(tab.scene, QPointF(3000, 700));
    Node *left = addLoose(tab.scene, QPointF(400, 2500));
    Node *right = addLoose(tab.scene, QPointF(6000, 900));
    const double rightEdge = 6000 + right->boundingRect().width();
    const double bottom = 2500 + left->boundingRect().height();
    QCOMPARE(framed(tab), QRectF(QPointF(350, 650), QPointF(rightEdge + 50, bottom + 50)));
}

void tst_NodegraphSceneFraming::selectionWithoutCurrent()
{
    GraphTab tab;
    addLoose(tab.scene, QPointF(100, 5000));
    Node *first = addLoose(tab.scene, QPointF(1000, 1000));
    Node *second = addLoose(tab.scene, QPointF(2000, 1500));
    selectByRubberBand(tab, QPointF(900, 900), QPointF(2100, 1600));
    QCOMPARE(tab.scene.selectedNodes().size(), std::size_t(2));
    QCOMPARE(framed(tab), withMargin(first) | withMargin(second));

    selectByRubberBand(tab, QPointF(1900, 1400), QPointF(2100, 1600));
    QCOMPARE(framed(tab), withMargin(second));
}

void tst_NodegraphSceneFraming::scaledNodeIsMappedToTheScene_data()
{
    QTest::addColumn<bool>("current");
    QTest::newRow("as current") << true;
    QTest::newRow("as one of all") << false;
}

void tst_NodegraphSceneFraming::scaledNodeIsMappedToTheScene()
{
    QFETCH(bool, current);
    GraphTab tab;
    Node *node = addLoose(tab.scene, QPointF(1000, 500));
    node->setScale(2);
    if (current)
        tab.scene.sl_selectCurrentNode(node);
    const QSizeF size = node->boundingRect().size() * 2;
    QCOMPARE(framed(tab), QRectF(950, 450, size.width() + 100, size.height() + 100));
}

void tst_NodegraphSceneFraming::emptySceneFramesAnEmptyRectangle()
{
    GraphTab tab;
    QSignalSpy frames(&tab.scene, &NodegraphScene::s_frameView);
    tab.scene.frameSelectedNodes();
    QCOMPARE(frames.count(), 1);
    QCOMPARE(frames.first().first().toRectF(), QRectF());
}

void tst_NodegraphSceneFraming::sceneThatWasEmptiedFramesAnEmptyRectangle()
{
    GraphTab tab;
    addChain(tab.scene, 2);
    tab.scene.selectAll();
    tab.scene.deleteSelectedNodes(nullptr);
    QCOMPARE(framed(tab), QRectF());
}

void tst_NodegraphSceneFraming::tellsTheViewBeforeTheLog()
{
    GraphTab tab;
    addLoose(tab.scene, QPointF(100, 100));
    LogCapture log;
    connect(&tab.scene, &NodegraphScene::s_frameView, this, [] { qInfo() << "view was told"; });
    tab.scene.frameSelectedNodes();
    QCOMPARE(log.lines(), (QStringList{"view was told", "Calculating bounds"}));
}

void tst_NodegraphSceneFraming::canBeInvokedByName()
{
    GraphTab tab;
    const Node *node = addLoose(tab.scene, QPointF(100, 100));
    QSignalSpy frames(&tab.scene, &NodegraphScene::s_frameView);
    QVERIFY(QMetaObject::invokeMethod(&tab.scene, "frameSelectedNodes"));
    QCOMPARE(frames.count(), 1);
    QCOMPARE(frames.first().first().toRectF(), withMargin(node));
}

void tst_NodegraphSceneFraming::changesNothing()
{
    GraphTab tab;
    addChain(tab.scene, 2);
    tab.scene.selectAll();
    const Node *current = tab.scene.currentNode();
    const std::vector<Node *> selected = tab.scene.selectedNodes();
    const int commands = tab.stack.count();
    tab.scene.frameSelectedNodes();
    QCOMPARE(tab.scene.currentNode(), current);
    QCOMPARE(tab.scene.selectedNodes(), selected);
    QCOMPARE(tab.stack.count(), commands);
}

QTEST_MAIN(tst_NodegraphSceneFraming)
#include "tst_nodegraphscene_framing.moc"
