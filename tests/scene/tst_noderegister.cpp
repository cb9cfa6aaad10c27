#include "scene/noderegister.h"

#include "items/node.h"
#include "support/testsupport.h"

#include <memory>
#include <vector>

namespace {
using Nodes = std::vector<Node *>;
}

class tst_NodeRegister : public TestCase
{
    Q_OBJECT

private slots:
    void nodesStandInTheOrderInWhichTheyCame();
    void nodeIsFoundUnderItsIndex();
    void whoeverGoesIsNoLongerThere();
    void nextIndexCountsAllThatEverCame();
    void takenIndexIsReplacedByAFreeOne();

private:
    /// An event of that index, which is on no canvas.
    Node &withIndex(int index)
    {
        events.push_back(std::make_unique<Node>(0));
        events.back()->setIndex(index);
        return *events.back();
    }

    std::vector<std::unique_ptr<Node>> events;
};

void tst_NodeRegister::nodesStandInTheOrderInWhichTheyCame()
{
    NodeRegister all;
    QCOMPARE(all.nodes(), Nodes());
    Node &second = withIndex(2);
    Node &first = withIndex(1);
    all.add(&second);
    all.add(&first);
    QCOMPARE(all.nodes(), (Nodes{&second, &first}));
}

void tst_NodeRegister::nodeIsFoundUnderItsIndex()
{
    NodeRegister all;
    Node &node = withIndex(5);
    all.add(&node);
    QCOMPARE(all.find(5), &node);
    QCOMPARE(all.find(6), nullptr);
    all.reindex(&node, 6);
    QCOMPARE(all.find(5), nullptr);
    QCOMPARE(all.find(6), &node);
}

void tst_NodeRegister::whoeverGoesIsNoLongerThere()
{
    NodeRegister all;
    Node &node = withIndex(5);
    Node &other = withIndex(6);
    all.add(&node);
    all.add(&other);
    QVERIFY(all.contains(&node));
    all.remove(&node);
    QVERIFY(!all.contains(&node));
    QCOMPARE(all.find(5), nullptr);
    QCOMPARE(all.nodes(), Nodes{&other});
    all.remove(&node); // nothing
    QCOMPARE(all.nodes(), Nodes{&other});
}

void tst_NodeRegister::nextIndexCountsAllThatEverCame()
{
    NodeRegister all;
    QCOMPARE(all.nextIndex(), 0);
    Node &node = withIndex(0);
    all.add(&node);
    QCOMPARE(all.nextIndex(), 1);
    all.remove(&node);
    QCOMPARE(all.nextIndex(), 1);
    QCOMPARE(all.takeNextIndex(), 1);
    QCOMPARE(all.nextIndex(), 2);
    all.restart();
    QCOMPARE(all.nextIndex(), 0);
}

void tst_NodeRegister::takenIndexIsReplacedByAFreeOne()
{
    NodeRegister all;
    Node &node = withIndex(7);
    all.add(&node);
    const Node &next = withIndex(0);
    QCOMPARE(all.freeIndex(3, &next), 3);
    QCOMPARE(all.freeIndex(7, &node), 7);
    QCOMPARE(all.freeIndex(7, &next), 1); // from the next index on
}

QTEST_MAIN(tst_NodeRegister)
#include "tst_noderegister.moc"
