#include "commands/graphtab.h"
#include "scene/scenebytes.h"

#include <QSignalSpy>

using namespace Qt::StringLiterals;
using SceneBytes::Record;
using SceneBytes::Records;

// What is done to many events at once, and to files of many events: nothing but the time may tell.

namespace {

constexpr int many = 150; // more than what is made at once

Records chainOf(int count)
{
    Records records;
    for (int i = 0; i < count; ++i) {
        Record record;
        record.title = u"Event %1"_s.arg(i);
        record.pos = QPointF(600 * (i % 10), 400 * (i / 10)); // NOLINT(bugprone-integer-division)
        record.index = i;
        record.prevIndex = i - 1;
        record.endOfStory = i == count - 1 ? 1 : 0;
        record.description = u"Some words of what happens here. "_s.repeated(1 + i % 12);
        records << record;
    }
    return records;
}

bool hasItems(const NodegraphScene &scene)
{
    const QList<QGraphicsItem *> all = scene.items();
    return std::any_of(all.begin(), all.end(), [](QGraphicsItem *item) {
        return dynamic_cast<Node *>(item) || dynamic_cast<ConnectionLine *>(item);
    });
}

bool isStory(const std::vector<Node *> &nodes, const NodegraphScene &scene)
{
    for (std::size_t i = 0; i < nodes.size(); ++i) {
        const std::vector<Node *> &alive = scene.nodes();
        if (std::find(alive.begin(), alive.end(), nodes[i]) == alive.end())
            return false;
        if (nodes[i]->prevNode() != (i == 0 ? nullptr : nodes[i - 1]))
            return false;
    }
    return true;
}

} // namespace

class tst_NodegraphSceneMany : public TestCase
{
    Q_OBJECT

private slots:
    void longFileIsReadAndSavedByteForByte();
    void lateEventsOfAFileHaveTheirSizes();
    void lateEventsOfAFileCanBeEdited();
    void deletingAllLeavesNoItems();
    void deletedManyComeBackWithTheirLines();
    void deletingManyPublishesOnlyWhatIsThere();
    void clearingWithoutListenersLeavesNoItems();
    void storyIsKnownToWhoeverAsksWithoutListening();
    void sceneWithManyEventsGoesAtOnce();
};

void tst_NodegraphSceneMany::longFileIsReadAndSavedByteForByte()
{
    GraphTab tab;
    const QByteArray bytes = SceneBytes::block(chainOf(many));
    SceneBytes::load(tab.scene, bytes);
    QCOMPARE(SceneBytes::saved(tab.scene), bytes);
}

void tst_NodegraphSceneMany::lateEventsOfAFileHaveTheirSizes()
{
    GraphTab tab;
    SceneBytes::load(tab.scene, SceneBytes::block(chainOf(many)));
    for (const Node *node : tab.scene.nodes()) {
        Node whole(0);
        whole.payload()->eventContent()->setDescription(descriptionOf(node));
        QCOMPARE(node->boundingRect(), whole.boundingRect());
        const QRectF before = node->boundingRect();
        node->payload()->eventContent()->descriptionItem();
        QCOMPARE(node->boundingRect(), before);
        QCOMPARE(node->nameItem()->toPlainText(), node->title());
        const ConnectionLine *line = node->inLine();
        QCOMPARE(line != nullptr, node->getIndex() > 0);
        if (line)
            QCOMPARE(line->path().elementAt(0),
                     QPainterPath::Element(QPainterPath(node->inSocket()->sceneCentre()).elementAt(0)));
    }
}

void tst_NodegraphSceneMany::lateEventsOfAFileCanBeEdited()
{
    GraphTab tab;
    SceneBytes::load(tab.scene, SceneBytes::block(chainOf(many)));
    const QSignalSpy updated(&tab.scene, &NodegraphScene::s_updateNode);
    const Node *late = tab.node(many - 2);
    typeDescription(late, u"line\n"_s.repeated(20));
    typeTitle(late, u"Typed"_s);
    QCOMPARE(updated.count(), 1);
    QCOMPARE(late->title(), u"Typed"_s);
    QCOMPARE(descriptionOf(late), u"line\n"_s.repeated(20));
    QVERIFY(late->boundingRect().height() > 400);
}

void tst_NodegraphSceneMany::deletingAllLeavesNoItems()
{
    GraphTab tab;
    SceneBytes::load(tab.scene, SceneBytes::block(chainOf(many)));
    tab.scene.selectAll();
    tab.scene.deleteSelectedNodes(nullptr);
    QVERIFY(tab.scene.nodes().empty());
    QVERIFY(!hasItems(tab.scene));
    QVERIFY(tab.scene.story().empty());
}

void tst_NodegraphSceneMany::deletedManyComeBackWithTheirLines()
{
    GraphTab tab;
    SceneBytes::load(tab.scene, SceneBytes::block(chainOf(many)));
    const int steps = tab.stack.index();
    tab.scene.selectAll();
    tab.scene.deleteSelectedNodes(nullptr);
    tab.stack.setIndex(steps);
    QCOMPARE(sortedIndices(tab.scene).size(), many);
    QCOMPARE(lineCount(tab.scene), many - 1);
    QCOMPARE(int(tab.scene.story().size()), many);
    QVERIFY(isStory(tab.scene.story(), tab.scene));
    tab.stack.setIndex(tab.stack.count());
    QVERIFY(!hasItems(tab.scene));
}

void tst_NodegraphSceneMany::deletingManyPublishesOnlyWhatIsThere()
{
    GraphTab tab;
    SceneBytes::load(tab.scene, SceneBytes::block(chainOf(12)));
    int published = 0;
    bool allWell = true;
    QObject::connect(&tab.scene, &NodegraphScene::s_updateStory, &tab.scene,
                     [&](const std::vector<Node *> &story) {
                         ++published;
                         allWell = allWell && story == tab.scene.story() && isStory(story, tab.scene);
                     });
    tab.scene.selectAll();
    tab.scene.deleteSelectedNodes(nullptr);
    QVERIFY(allWell);
    QCOMPARE(published, 1);
}

void tst_NodegraphSceneMany::clearingWithoutListenersLeavesNoItems()
{
    NodegraphScene scene; // nobody takes its commands
    SceneBytes::load(scene, SceneBytes::block(chainOf(40)));
    scene.clear();
    QVERIFY(scene.nodes().empty());
    QVERIFY(!hasItems(scene));
}

void tst_NodegraphSceneMany::storyIsKnownToWhoeverAsksWithoutListening()
{
    GraphTab tab;
    SceneBytes::load(tab.scene, SceneBytes::block(chainOf(5)));
    QCOMPARE(indicesOf(tab.scene.story()), QList<int>({0, 1, 2, 3, 4}));
    tab.scene.disconnectNode(tab.node(2));
    QCOMPARE(indicesOf(tab.scene.story()), QList<int>({2, 3, 4}));
    tab.scene.deleteNode(tab.node(3));
    QCOMPARE(indicesOf(tab.scene.story()), QList<int>({4}));
    tab.scene.deleteNode(tab.node(4));
    QCOMPARE(indicesOf(tab.scene.story()), QList<int>());
}

void tst_NodegraphSceneMany::sceneWithManyEventsGoesAtOnce()
{
    auto tab = std::make_unique<GraphTab>();
    SceneBytes::load(tab->scene, SceneBytes::block(chainOf(many)));
    const QPointer<Node> node = tab->node(20);
    const QPointer<ConnectionLine> line = node->inLine();
    tab.reset();
    QVERIFY(!node);
    QVERIFY(!line);
}

QTEST_MAIN(tst_NodegraphSceneMany)
#include "tst_nodegraphscene_many.moc"
