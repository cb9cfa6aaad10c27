#include "scene/scenetab.h"
#include "scene/shownscene.h"
#include "support/testsupport.h"

#include "items/eventdata.h"
#include "items/nodedata.h"
#include "items/stlineedit.h"

namespace {

struct Tab : SceneTab
{
    Nodes nodes;
    QSignalSpy story{&scene, &NodegraphScene::s_updateStory};

    /// A chain whose last node is the end of the story.
    explicit Tab(int count)
    {
        nodes = addChain(scene, count);
        story.clear();
    }
    Node *operator[](std::size_t i) const { return nodes[i]; }
    Nodes published() const { return story.last().at(0).value<Nodes>(); }
};

EventData *eventOf(const Node *node) { return node->payload()->eventContent(); }

/// As if the user had typed into the node's description.
void typeInto(const Node *node, const QString &text) { eventOf(node)->descriptionItem()->setPlainText(text); }

class PaintCounter : public QObject
{
public:
    int count = 0;

protected:
    bool eventFilter(QObject *, QEvent *event) override
    {
        count += event->type() == QEvent::Paint ? 1 : 0;
        return false;
    }
};

} // namespace

class tst_NodegraphSceneStory : public TestCase
{
    Q_OBJECT

private slots:
    void storyRunsFromFirstEventToEnd();
    void storyEndsAtItsEnd();
    void branchesAreNotInStory();
    void noEndOfStoryIsAnEmptyStory();
    void everyEditPublishesStory();
    void publishedStoryIsACopy();
    void cutStoryBeginsAfterTheCut();
    void longStoryIsComplete();

    void endOfStoryMovesToCurrentNode();
    void endOfStoryNeedsCurrentNode();
    void endOfStoryMayStayWhereItIs();
    void endOfStoryIsPaintedAtOnce();

    void importanceIsFlippedAndRelayed();
    void importanceOfGivenNode();
    void importanceAsksForRepaint();
    void importanceNeedsSomeNode();
    void importanceIsToldBeforeStory();

    void changeInStoryIsReported();
    void changeOutsideStoryIsNotReported();

    void panelEditReachesNodeSilently();
    void panelEditGoesToFirstNodeWithIndex();
    void strangePanelEditsChangeNothing_data();
    void strangePanelEditsChangeNothing();
};

void tst_NodegraphSceneStory::storyRunsFromFirstEventToEnd()
{
    Tab tab(3);
    LogCapture log;
    tab.scene.updateStory();
    QCOMPARE(tab.story.size(), 1);
    QCOMPARE(tab.published(), tab.nodes);
    QCOMPARE(tab.scene.story(), tab.nodes);
    QVERIFY(log.lines().isEmpty());
}

void tst_NodegraphSceneStory::storyEndsAtItsEnd()
{
    Tab tab(3);
    tab.scene.sl_selectCurrentNode(tab[1]);
    tab.scene.setEndOfStoryNode();
    QCOMPARE(tab.published(), (Nodes{tab[0], tab[1]}));
    tab.scene.sl_selectCurrentNode(tab[0]);
    tab.scene.setEndOfStoryNode();
    QCOMPARE(tab.published(), Nodes{tab[0]});
    tab.scene.sl_selectCurrentNode(tab[2]);
    tab.scene.setEndOfStoryNode();
    QCOMPARE(tab.published(), tab.nodes);
}

void tst_NodegraphSceneStory::branchesAreNotInStory()
{
    Tab tab(3);
    for (const std::size_t from : {0, 1, 2}) { // the last one is fed by the end itself
        Node *branch = addLoose(tab.scene, QPointF(900, 900));
        tab.scene.connectNodes(branch, tab[from]);
    }
    QCOMPARE(tab.published(), tab.nodes);
}

void tst_NodegraphSceneStory::noEndOfStoryIsAnEmptyStory()
{
    NodegraphScene scene;
    QSignalSpy story(&scene, &NodegraphScene::s_updateStory);
    LogCapture log;
    scene.updateStory();
    QCOMPARE(log.lines(), QStringList{"No storyNode"});
    QCOMPARE(story.size(), 1);
    QVERIFY(story.at(0).at(0).value<Nodes>().empty());

    Tab tab(2);
    tab.scene.deleteNode(tab[1]);
    QVERIFY(tab.published().empty());
    log.clear();
    tab.scene.updateStory();
    QCOMPARE(log.lines(), QStringList{"No storyNode"});
    tab.scene.sl_selectCurrentNode(tab[0]);
    log.clear();
    tab.scene.setEndOfStoryNode();
    QVERIFY(log.lines().isEmpty());
    QCOMPARE(tab.published(), Nodes{tab[0]});
}

void tst_NodegraphSceneStory::everyEditPublishesStory()
{
    Tab tab(3);
    const auto publishes = [&tab](auto edit) {
        tab.story.clear();
        edit();
        return tab.story.size();
    };
    QCOMPARE(publishes([&] { tab.scene.disconnectNode(tab[1]); }), 1);
    QCOMPARE(publishes([&] { tab.scene.connectNodes(tab[1], tab[0]); }), 1);
    QCOMPARE(publishes([&] { tab.scene.connectNodes(tab[1], tab[0]); }), 2); // replaced by itself
    QCOMPARE(publishes([&] { tab.scene.setEndOfStory(tab[1]); }), 1);
    QCOMPARE(publishes([&] { tab.scene.toggleImportance(tab[0]); }), 1);
    QCOMPARE(publishes([&] { tab.scene.deleteNode(tab[2]); }), 2); // its connection, then itself
    tab.scene.sl_deselectCurrentNode();
    QCOMPARE(publishes([&] { tab.scene.createNode(QPointF(), 7, 0, nullptr, QString()); }), 1);
    tab.scene.sl_selectCurrentNode(tab[1]);
    // The connection, the mark that moves along, the node itself.
    QCOMPARE(publishes([&] { tab.scene.createNode(QPointF(), 8, 0, nullptr, QString()); }), 3);
}

void tst_NodegraphSceneStory::publishedStoryIsACopy()
{
    Tab tab(3);
    Nodes received;
    connect(&tab.scene, &NodegraphScene::s_updateStory, this, [&](Nodes story) {
        story.clear();
        received = tab.scene.story();
    });
    tab.scene.updateStory();
    QCOMPARE(received, tab.nodes);
    QCOMPARE(tab.scene.story(), tab.nodes);
}

void tst_NodegraphSceneStory::cutStoryBeginsAfterTheCut()
{
    Tab tab(3);
    tab.scene.disconnectNode(tab[1]);
    QCOMPARE(tab.published(), (Nodes{tab[1], tab[2]}));
}

void tst_NodegraphSceneStory::longStoryIsComplete()
{
    Tab tab(200);
    tab.scene.updateStory();
    QCOMPARE(tab.published(), tab.nodes);
}

void tst_NodegraphSceneStory::endOfStoryMovesToCurrentNode()
{
    Tab tab(3);
    tab.scene.sl_selectCurrentNode(tab[1]);
    tab.scene.setEndOfStoryNode();
    QCOMPARE(tab.scene.endOfStoryNode(), tab[1]);
    QVERIFY(tab[1]->isEndOfStory());
    QVERIFY(!tab[2]->isEndOfStory());
    QCOMPARE(tab.story.size(), 1);
    QCOMPARE(tab.scene.currentNode(), tab[1]);
    QCOMPARE(tab.stack.count(), 3); // no step to be undone
}

void tst_NodegraphSceneStory::endOfStoryNeedsCurrentNode()
{
    Tab tab(3);
    tab.scene.sl_deselectCurrentNode();
    tab.scene.setEndOfStoryNode();
    QCOMPARE(tab.scene.endOfStoryNode(), tab[2]);
    QVERIFY(tab.story.isEmpty());
}

void tst_NodegraphSceneStory::endOfStoryMayStayWhereItIs()
{
    Tab tab(2);
    tab.scene.setEndOfStoryNode();
    QVERIFY(tab[1]->isEndOfStory());
    QCOMPARE(tab.scene.endOfStoryNode(), tab[1]);
    QCOMPARE(tab.published(), tab.nodes);
}

void tst_NodegraphSceneStory::endOfStoryIsPaintedAtOnce()
{
    ShownScene shown;
    Node *first = addLoose(shown.scene, QPointF(20, 20));
    Node *second = addLoose(shown.scene, QPointF(20, 500));
    shown.scene.deselectAll();
    const auto bodyColour = [&shown](const Node *node) {
        return shown.view.viewport()->grab().toImage().pixelColor(shown.at(bodyOf(node)));
    };
    QCOMPARE(bodyColour(first), QColor("#D6B4FC"));
    QCOMPARE(bodyColour(second), QColor("#D9D9D9"));
    shown.scene.sl_selectCurrentNode(second);
    shown.scene.setEndOfStoryNode();
    QCOMPARE(bodyColour(first), QColor("#D9D9D9"));
    QCOMPARE(bodyColour(second), QColor("#D6B4FC"));
    shown.scene.toggleImportance(nullptr);
    QCOMPARE(bodyColour(second), QColor("#ADD8E6"));
    shown.scene.toggleImportance(nullptr);
    QCOMPARE(bodyColour(second), QColor("#D6B4FC"));
}

void tst_NodegraphSceneStory::importanceIsFlippedAndRelayed()
{
    Tab tab(2);
    QSignalSpy importance(&tab.scene, &NodegraphScene::s_importanceChanged);
    tab.scene.toggleImportance(nullptr);
    QVERIFY(tab[1]->isImportant());
    tab.scene.toggleImportance(nullptr);
    QVERIFY(!tab[1]->isImportant());
    QCOMPARE(importance.size(), 2);
    for (int i = 0; i < 2; ++i) {
        QCOMPARE(importance.at(i).at(0).value<Node *>(), tab[1]);
        QCOMPARE(importance.at(i).at(1).toBool(), i == 0);
    }
    QCOMPARE(tab.story.size(), 2);
    QCOMPARE(tab.published(), tab.nodes);
    QCOMPARE(tab.stack.count(), 2); // no step to be undone
}

void tst_NodegraphSceneStory::importanceOfGivenNode()
{
    Tab tab(2);
    tab.scene.toggleImportance(tab[0]);
    QVERIFY(tab[0]->isImportant());
    QVERIFY(!tab[1]->isImportant()); // the current one
    QCOMPARE(tab.story.size(), 1);
}

void tst_NodegraphSceneStory::importanceAsksForRepaint()
{
    ShownScene shown;
    Node *node = addChain(shown.scene, 1).front();
    QCoreApplication::processEvents();
    PaintCounter paints;
    shown.view.viewport()->installEventFilter(&paints);
    QCoreApplication::processEvents();
    QCOMPARE(paints.count, 0); // nothing else is waiting
    shown.scene.toggleImportance(node);
    QTRY_VERIFY(paints.count > 0);
}

void tst_NodegraphSceneStory::importanceNeedsSomeNode()
{
    Tab tab(2);
    tab.scene.sl_deselectCurrentNode();
    QSignalSpy importance(&tab.scene, &NodegraphScene::s_importanceChanged);
    tab.scene.toggleImportance(nullptr);
    QVERIFY(importance.isEmpty());
    QVERIFY(tab.story.isEmpty());
}

void tst_NodegraphSceneStory::importanceIsToldBeforeStory()
{
    Tab tab(1);
    QStringList told;
    connect(&tab.scene, &NodegraphScene::s_importanceChanged, this, [&] { told << "importance"; });
    connect(&tab.scene, &NodegraphScene::s_updateStory, this,
            [&] { told << (tab[0]->isImportant() ? "story with it" : "story without it"); });
    tab.scene.toggleImportance(nullptr);
    QCOMPARE(told, (QStringList{"importance", "story with it"}));
}

void tst_NodegraphSceneStory::changeInStoryIsReported()
{
    Tab tab(3);
    QSignalSpy changed(&tab.scene, &NodegraphScene::s_updateNode);
    typeInto(tab[1], QStringLiteral("Something happens."));
    QCOMPARE(changed.size(), 1);
    QCOMPARE(changed.at(0).at(0).value<Node *>(), tab[1]);
    emit tab[0]->s_changed(tab[0]);
    QCOMPARE(changed.size(), 2);
    QCOMPARE(changed.at(1).at(0).value<Node *>(), tab[0]);
    QVERIFY(tab.story.isEmpty());
}

void tst_NodegraphSceneStory::changeOutsideStoryIsNotReported()
{
    Tab tab(3);
    tab.scene.setEndOfStory(tab[1]);
    QSignalSpy changed(&tab.scene, &NodegraphScene::s_updateNode);
    typeInto(tab[2], QStringLiteral("Nobody reads this."));
    tab.scene.sl_nodeChanged(tab[2]);
    tab.scene.sl_nodeChanged(nullptr);
    QVERIFY(changed.isEmpty());
    tab.scene.setEndOfStory(tab[2]);
    tab.scene.sl_nodeChanged(tab[2]);
    QCOMPARE(changed.size(), 1);
}

void tst_NodegraphSceneStory::panelEditReachesNodeSilently()
{
    Tab tab(3);
    QSignalSpy changed(&tab.scene, &NodegraphScene::s_updateNode);
    QSignalSpy nodeChanged(tab[1], &Node::s_changed);
    EventData edited(nullptr);
    edited.setDescription(QStringLiteral("From the panel"));
    tab.scene.sl_ovNodeChanged(&edited, 1);
    QCOMPARE(eventOf(tab[1])->getDescription(), QStringLiteral("From the panel"));
    QVERIFY(changed.isEmpty());
    QVERIFY(nodeChanged.isEmpty());
    QVERIFY(tab.story.isEmpty());
    QVERIFY(eventOf(tab[0])->getDescription() != QStringLiteral("From the panel"));
    QVERIFY(eventOf(tab[2])->getDescription() != QStringLiteral("From the panel"));
}

void tst_NodegraphSceneStory::panelEditGoesToFirstNodeWithIndex()
{
    Tab tab(2);
    tab[1]->setIndex(0); // as a damaged file may have it
    EventData edited(nullptr);
    edited.setDescription(QStringLiteral("From the panel"));
    tab.scene.sl_ovNodeChanged(&edited, 0);
    QCOMPARE(eventOf(tab[0])->getDescription(), QStringLiteral("From the panel"));
    QVERIFY(eventOf(tab[1])->getDescription() != QStringLiteral("From the panel"));
}

void tst_NodegraphSceneStory::strangePanelEditsChangeNothing_data()
{
    QTest::addColumn<QString>("edit");
    QTest::newRow("index that no node has") << "no such index";
    QTest::newRow("no data") << "null";
    QTest::newRow("data of another kind") << "rectangle";
    QTest::newRow("node without event data") << "other type";
    QTest::newRow("node that is no event any more") << "changed type";
}

void tst_NodegraphSceneStory::strangePanelEditsChangeNothing()
{
    QFETCH(QString, edit);
    Tab tab(2);
    tab.scene.createNode(QPointF(), 5, 1, nullptr, QString()); // a type that has no content
    const QString before = eventOf(tab[1])->getDescription();
    QSignalSpy changed(&tab.scene, &NodegraphScene::s_updateNode);
    EventData event(nullptr);
    event.setDescription(QStringLiteral("From the panel"));
    QGraphicsRectItem rectangle;
    if (edit == "no such index")
        tab.scene.sl_ovNodeChanged(&event, 77);
    else if (edit == "null")
        tab.scene.sl_ovNodeChanged(nullptr, 1);
    else if (edit == "rectangle")
        tab.scene.sl_ovNodeChanged(&rectangle, 1);
    else if (edit == "other type")
        tab.scene.sl_ovNodeChanged(&event, 5);
    else {
        const NodeData other(1, nullptr);
        tab[1]->copyDataFrom(&other);
        tab.scene.sl_ovNodeChanged(&event, 1);
    }
    QCOMPARE(eventOf(tab[1])->getDescription(), before);
    QVERIFY(changed.isEmpty());
}

QTEST_MAIN(tst_NodegraphSceneStory)
#include "tst_nodegraphscene_story.moc"
