#include "scene/nodefactory.h"

#include "items/eventdata.h"
#include "items/node.h"
#include "scene/exposure.h"
#include "scene/massremoval.h"
#include "scene/nodegraphscene.h"
#include "scene/noderegister.h"
#include "scene/nodeselection.h"
#include "support/testsupport.h"

namespace {

/// A scene, and a factory with a register and a selection that are not the scene's own.
struct Workshop
{
    NodegraphScene scene;
    NodeRegister entered;
    NodeSelection selected{scene};
    MassRemoval items{scene};
    Exposure watch{scene};
    NodeFactory factory{scene, entered, selected, items, watch};

    Workshop()
    {
        QObject::connect(&scene, &NodegraphScene::s_nodeIndexChanged,
                         [this](Node *node, int index) { entered.reindex(node, index); });
    }
    Node *build(int index, const NodeFactory::Filling &fill = {})
    {
        return factory.build(QPointF(700.6, 300), index, 0, QStringLiteral("Landing"), TextMaking::atOnce,
                             fill);
    }
};

} // namespace

class tst_NodeFactory : public TestCase
{
    Q_OBJECT

private slots:
    void aNodeIsOnTheCanvasAsItWasTold();
    void withoutANameItHasThatOfANewOne();
    void itIsEnteredUnderAFreeIndex();
    void theSceneHearsOfItsIndexWhenItIsFilled();
    void theSceneHearsOfItsPress();
    void itContinuesTheCurrentOne();
    void itTakesTheMarkOfTheEnd();
    void theOnlyOneIsTheEnd();
};

void tst_NodeFactory::aNodeIsOnTheCanvasAsItWasTold()
{
    Workshop workshop;
    const Node *made = workshop.build(4);
    QCOMPARE(made->scene(), &workshop.scene);
    QCOMPARE(made->scenePos(), QPointF(700.6, 300));
    QCOMPARE(made->title(), QStringLiteral("Landing"));
    QCOMPARE(made->getIndex(), 4);
    QCOMPARE(made->getType(), 0);
}

void tst_NodeFactory::withoutANameItHasThatOfANewOne()
{
    Workshop workshop;
    const Node fresh(0);
    const Node *made = workshop.factory.build(QPointF(), 0, 0, QString(), TextMaking::atOnce);
    QCOMPARE(made->title(), fresh.title());
}

void tst_NodeFactory::itIsEnteredUnderAFreeIndex()
{
    Workshop workshop;
    Node *first = workshop.build(4);
    Node *second = workshop.build(4);
    QVERIFY(second->getIndex() != 4);
    QCOMPARE(workshop.entered.nodes(), (std::vector<Node *>{first, second}));
    QCOMPARE(workshop.entered.find(4), first);
}

// Whoever hears of a new index may ask the node what it holds.
void tst_NodeFactory::theSceneHearsOfItsIndexWhenItIsFilled()
{
    Workshop workshop;
    QString heard;
    QObject::connect(&workshop.scene, &NodegraphScene::s_nodeIndexChanged,
                     [&heard](const Node *node, int) { heard = node->description(); });
    workshop.build(4, [](Node &node) { node.setDescription(QStringLiteral("The boat lands.")); });
    QCOMPARE(heard, QStringLiteral("The boat lands."));
}

void tst_NodeFactory::theSceneHearsOfItsPress()
{
    Workshop workshop;
    Node *made = workshop.build(4);
    emit made->s_selected(made);
    QCOMPARE(workshop.scene.currentNode(), made);
    workshop.scene.sl_deselectCurrentNode();
}

void tst_NodeFactory::itContinuesTheCurrentOne()
{
    Workshop workshop;
    Node *first = workshop.build(0);
    workshop.selected.setCurrent(first);
    Node *second = workshop.build(1);
    workshop.factory.attachToCurrent(second);
    QCOMPARE(second->prevNode(), first);
    QCOMPARE(second->scenePos(), QPointF(int(700.6 + first->boundingRect().width() + 100), 300));
    QCOMPARE(workshop.selected.current(), second);
    QVERIFY(!workshop.scene.endOfStoryNode());

    Node *apart = workshop.build(2);
    workshop.selected.setCurrent(nullptr);
    workshop.factory.attachToCurrent(apart);
    QVERIFY(!apart->hasInput());
    QCOMPARE(apart->scenePos(), QPointF(700.6, 300));
}

void tst_NodeFactory::itTakesTheMarkOfTheEnd()
{
    Workshop workshop;
    Node *first = workshop.build(0);
    workshop.selected.setCurrent(first);
    workshop.scene.setEndOfStory(first);
    Node *second = workshop.build(1);
    workshop.factory.attachToCurrent(second);
    QCOMPARE(workshop.scene.endOfStoryNode(), second);
}

void tst_NodeFactory::theOnlyOneIsTheEnd()
{
    Workshop workshop;
    Node *only = workshop.build(0);
    workshop.factory.attachToCurrent(only);
    QCOMPARE(workshop.scene.endOfStoryNode(), only);
    Node *another = workshop.build(1);
    workshop.factory.attachToCurrent(another);
    QCOMPARE(workshop.scene.endOfStoryNode(), only);
}

QTEST_MAIN(tst_NodeFactory)
#include "tst_nodefactory.moc"
