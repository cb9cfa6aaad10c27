#include "scene/nodeindexmap.h"

#include "items/node.h"
#include "support/testsupport.h"

#include <QRandomGenerator>

#include <algorithm>
#include <memory>

namespace {

/// The rule that the map stands for: a walk from the start of a list of nodes.
struct PlainList
{
    struct Entry
    {
        Node *node;
        int index;
    };

    Node *first(int index) const
    {
        const auto found = std::find_if(entries.begin(), entries.end(),
                                        [index](const Entry &entry) { return entry.index == index; });
        return found == entries.end() ? nullptr : found->node;
    }
    bool isTakenByOther(int index, const Node *node) const
    {
        return std::any_of(entries.begin(), entries.end(), [index, node](const Entry &entry) {
            return entry.index == index && entry.node != node;
        });
    }

    std::vector<Entry> entries;
};

} // namespace

class tst_NodeIndexMap : public TestCase
{
    Q_OBJECT

private slots:
    void findsNothingWhereNothingIs();
    void findsEachNodeByItsIndex_data();
    void findsEachNodeByItsIndex();
    void firstInsertedIsTheMatch();
    void reindexedNodeKeepsItsAge();
    void removedNodeLeavesItsIndexToTheNext();
    void unknownNodesAreIgnored();
    void clearForgetsAll();
    void indexIsTakenByOthersOnly();
    void aTakenIndexGivesWayToTheNextFreeOne();
    void matchesAWalkThroughTheList_data();
    void matchesAWalkThroughTheList();

private:
    Node a{0};
    Node b{0};
    Node c{0};
};

void tst_NodeIndexMap::findsNothingWhereNothingIs()
{
    NodeIndexMap map;
    QCOMPARE(map.first(0), nullptr);
    QVERIFY(!map.isTakenByOther(0, &a));
    map.insert(&a, 3);
    QCOMPARE(map.first(2), nullptr);
    QCOMPARE(map.first(4), nullptr);
}

void tst_NodeIndexMap::findsEachNodeByItsIndex_data()
{
    QTest::addColumn<int>("index");
    QTest::newRow("zero") << 0;
    QTest::newRow("positive") << 41;
    QTest::newRow("negative") << -1;
    QTest::newRow("largest") << std::numeric_limits<int>::max();
    QTest::newRow("smallest") << std::numeric_limits<int>::min();
}

void tst_NodeIndexMap::findsEachNodeByItsIndex()
{
    QFETCH(int, index);
    NodeIndexMap map;
    map.insert(&a, 7);
    map.insert(&b, index);
    QCOMPARE(map.first(7), &a);
    QCOMPARE(map.first(index), &b);
}

void tst_NodeIndexMap::firstInsertedIsTheMatch()
{
    NodeIndexMap map;
    map.insert(&b, 5);
    map.insert(&a, 5);
    map.insert(&c, 5);
    QCOMPARE(map.first(5), &b);
}

void tst_NodeIndexMap::reindexedNodeKeepsItsAge()
{
    NodeIndexMap map;
    map.insert(&a, 1);
    map.insert(&b, 2);
    map.reindex(&a, 2);
    QCOMPARE(map.first(1), nullptr);
    QCOMPARE(map.first(2), &a);
    map.reindex(&a, 9);
    QCOMPARE(map.first(2), &b);
    QCOMPARE(map.first(9), &a);
    map.reindex(&a, 9); // to where it is
    QCOMPARE(map.first(9), &a);
}

void tst_NodeIndexMap::removedNodeLeavesItsIndexToTheNext()
{
    NodeIndexMap map;
    map.insert(&a, 5);
    map.insert(&b, 5);
    map.remove(&a);
    QCOMPARE(map.first(5), &b);
    map.remove(&b);
    QCOMPARE(map.first(5), nullptr);
    map.insert(&a, 5);
    QCOMPARE(map.first(5), &a);
}

void tst_NodeIndexMap::unknownNodesAreIgnored()
{
    NodeIndexMap map;
    map.insert(&a, 5);
    map.reindex(&b, 5);
    map.remove(&c);
    QCOMPARE(map.first(5), &a);
    QVERIFY(!map.isTakenByOther(5, &a));
    map.remove(&a);
    map.reindex(&a, 6);
    QCOMPARE(map.first(6), nullptr);
}

void tst_NodeIndexMap::clearForgetsAll()
{
    NodeIndexMap map;
    map.insert(&a, 1);
    map.insert(&b, 2);
    map.clear();
    QCOMPARE(map.first(1), nullptr);
    QCOMPARE(map.first(2), nullptr);
    map.reindex(&a, 1);
    QCOMPARE(map.first(1), nullptr);
    map.insert(&b, 1);
    QCOMPARE(map.first(1), &b);
}

void tst_NodeIndexMap::indexIsTakenByOthersOnly()
{
    NodeIndexMap map;
    map.insert(&a, 5);
    QVERIFY(!map.isTakenByOther(5, &a));
    QVERIFY(map.isTakenByOther(5, &b));
    QVERIFY(map.isTakenByOther(5, nullptr));
    QVERIFY(!map.isTakenByOther(6, &b));
    map.insert(&b, 5);
    QVERIFY(map.isTakenByOther(5, &a));
    QVERIFY(map.isTakenByOther(5, &b));
    map.reindex(&b, 6);
    QVERIFY(!map.isTakenByOther(5, &a));
}

void tst_NodeIndexMap::aTakenIndexGivesWayToTheNextFreeOne()
{
    NodeIndexMap map;
    map.insert(&a, 5);
    map.insert(&b, 7);
    QCOMPARE(map.freeIndex(5, &a, 7), 5); // its own
    QCOMPARE(map.freeIndex(6, &b, 7), 6);
    QCOMPARE(map.freeIndex(5, &b, 9), 9);
    QCOMPARE(map.freeIndex(5, nullptr, 7), 8);
}

void tst_NodeIndexMap::matchesAWalkThroughTheList_data()
{
    QTest::addColumn<quint32>("seed");
    for (const quint32 seed : {1U, 2U, 3U, 17U, 404U, 90210U})
        QTest::addRow("seed %u", seed) << seed;
}

void tst_NodeIndexMap::matchesAWalkThroughTheList()
{
    QFETCH(quint32, seed);
    constexpr int indexRange = 12; // narrow, so that indices meet
    QRandomGenerator random(seed);
    std::vector<std::unique_ptr<Node>> owned;
    NodeIndexMap map;
    PlainList list;
    for (int step = 0; step < 400; ++step) {
        const int index = random.bounded(indexRange);
        const int choice = list.entries.empty() ? 0 : random.bounded(4);
        if (choice <= 1 && owned.size() < 60) {
            owned.push_back(std::make_unique<Node>(0));
            map.insert(owned.back().get(), index);
            list.entries.push_back({owned.back().get(), index});
        } else if (!list.entries.empty()) {
            const auto at = list.entries.begin() + random.bounded(int(list.entries.size()));
            if (choice == 2) {
                map.reindex(at->node, index);
                at->index = index;
            } else {
                map.remove(at->node);
                list.entries.erase(at);
            }
        }
        for (int asked = 0; asked < indexRange; ++asked) {
            const Node *probe = list.entries.empty() ? nullptr : list.entries.front().node;
            QVERIFY2(map.first(asked) == list.first(asked), qPrintable(QString::number(step)));
            QVERIFY2(map.isTakenByOther(asked, probe) == list.isTakenByOther(asked, probe),
                     qPrintable(QString::number(step)));
        }
    }
}

QTEST_MAIN(tst_NodeIndexMap)
#include "tst_nodeindexmap.moc"
