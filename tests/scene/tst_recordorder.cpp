#include "scene/recordorder.h"

#include "support/testsupport.h"

#include <QRandomGenerator>

#include <algorithm>
#include <numeric>
#include <optional>
#include <set>

using Order = std::vector<std::size_t>;

namespace {

/// The reader's rules for a tab that was just made, without any scene: what each node ends up holding.
class Reader
{
public:
    /// Reads the records (positions in `indices`) in that order. The positions that are left in the nodes,
    /// one entry a node; none for a node that stayed blank.
    std::vector<std::optional<std::size_t>> read(const std::vector<int> &indices, const Order &order)
    {
        for (const std::size_t position : order) {
            const int provisional = counter++;
            makeNode(provisional);
            const auto found = std::find_if(nodes.begin(), nodes.end(), [provisional](const Entry &node) {
                return node.index == provisional;
            });
            found->record = position;
            found->index = indices[position];
        }
        std::vector<std::optional<std::size_t>> held;
        for (const Entry &node : nodes)
            held.push_back(node.record);
        return held;
    }

private:
    struct Entry
    {
        int index;
        std::optional<std::size_t> record;
    };

    bool isTaken(int index) const
    {
        return std::any_of(nodes.begin(), nodes.end(),
                           [index](const Entry &node) { return node.index == index; });
    }

    void makeNode(int wanted)
    {
        ++counter;
        int index = isTaken(wanted) ? counter : wanted;
        while (isTaken(index))
            ++index;
        nodes.push_back({index, {}});
    }

    std::vector<Entry> nodes;
    int counter = 0;
};

bool readsBackWhole(const std::vector<int> &indices, const Order &order)
{
    std::set<std::size_t> kept;
    for (const std::optional<std::size_t> &record : Reader().read(indices, order)) {
        if (record)
            kept.insert(*record);
    }
    return kept.size() == indices.size();
}

Order asGiven(std::size_t count)
{
    Order order(count);
    std::iota(order.begin(), order.end(), std::size_t(0));
    return order;
}

bool isPermutation(Order order, std::size_t count)
{
    std::sort(order.begin(), order.end());
    return order == asGiven(count);
}

/// How many pairs stand the other way round than they were given.
int disorder(const Order &order)
{
    int pairs = 0;
    for (std::size_t i = 0; i < order.size(); ++i) {
        for (std::size_t j = i + 1; j < order.size(); ++j)
            pairs += order[i] > order[j] ? 1 : 0;
    }
    return pairs;
}

int leastDisorderThatReadsBack(const std::vector<int> &indices)
{
    int least = std::numeric_limits<int>::max();
    Order order = asGiven(indices.size());
    do {
        if (disorder(order) < least && readsBackWhole(indices, order))
            least = disorder(order);
    } while (std::next_permutation(order.begin(), order.end()));
    return least;
}

/// `count` different indices below `range`, in any order.
std::vector<int> randomIndices(QRandomGenerator &random, int count, int range)
{
    std::vector<int> all(std::size_t(range), 0);
    std::iota(all.begin(), all.end(), 0);
    std::shuffle(all.begin(), all.end(), random);
    all.resize(std::size_t(count));
    return all;
}

QString asText(const std::vector<int> &indices)
{
    QStringList numbers;
    for (const int index : indices)
        numbers << QString::number(index);
    return numbers.join(QLatin1Char(' '));
}

void addSeeds()
{
    QTest::addColumn<quint32>("seed");
    for (const quint32 seed : {1U, 2U, 3U, 5U, 8U, 13U, 2024U, 77777U})
        QTest::addRow("seed %u", seed) << seed;
}

} // namespace

Q_DECLARE_METATYPE(Order)

class tst_RecordOrder : public TestCase
{
    Q_OBJECT

private slots:
    void knownOrders_data();
    void knownOrders();
    void everyOrderReadsBackWhole_data() { addSeeds(); }
    void everyOrderReadsBackWhole();
    void givenOrderStaysWhereverItReadsBack_data() { addSeeds(); }
    void givenOrderStaysWhereverItReadsBack();
    void nearestOrderIsTaken_data() { addSeeds(); }
    void nearestOrderIsTaken();
    void manyRecordsThatRiseStay();
    void repeatedIndicesDropNothing_data();
    void repeatedIndicesDropNothing();
};

void tst_RecordOrder::knownOrders_data()
{
    QTest::addColumn<std::vector<int>>("indices");
    QTest::addColumn<Order>("order");
    QTest::newRow("nothing") << std::vector<int>{} << Order{};
    QTest::newRow("one") << std::vector<int>{0} << Order{0};
    QTest::newRow("as added") << std::vector<int>{0, 1, 2, 3} << Order{0, 1, 2, 3};
    QTest::newRow("three added, two deleted, one added") << std::vector<int>{2, 3} << Order{1, 0};
    QTest::newRow("falling") << std::vector<int>{2, 1, 0} << Order{1, 0, 2};
    QTest::newRow("odd ones go anywhere") << std::vector<int>{5, 3, 1} << Order{0, 1, 2};
    QTest::newRow("twice the count is free") << std::vector<int>{6, 4, 1} << Order{0, 2, 1};
    QTest::newRow("last possible place") << std::vector<int>{4, 1, 3} << Order{1, 2, 0};
    QTest::newRow("each its own place") << std::vector<int>{4, 2, 0} << Order{2, 1, 0};
    QTest::newRow("negative") << std::vector<int>{-2, -1, -4} << Order{0, 1, 2};
    QTest::newRow("largest") << std::vector<int>{std::numeric_limits<int>::max() - 1, 1} << Order{0, 1};
}

void tst_RecordOrder::knownOrders()
{
    QFETCH(std::vector<int>, indices);
    QFETCH(Order, order);
    QCOMPARE(recordOrder(indices), order);
    QVERIFY(readsBackWhole(indices, order));
}

void tst_RecordOrder::everyOrderReadsBackWhole()
{
    QFETCH(quint32, seed);
    QRandomGenerator random(seed);
    for (int round = 0; round < 60; ++round) {
        const int count = 1 + random.bounded(40);
        const std::vector<int> indices = randomIndices(random, count, count + random.bounded(2 * count + 4));
        const Order order = recordOrder(indices);
        QVERIFY2(isPermutation(order, indices.size()), qPrintable(asText(indices)));
        QVERIFY2(readsBackWhole(indices, order), qPrintable(asText(indices)));
    }
}

void tst_RecordOrder::givenOrderStaysWhereverItReadsBack()
{
    QFETCH(quint32, seed);
    QRandomGenerator random(seed);
    int harmless = 0;
    for (int round = 0; round < 400; ++round) {
        const int count = 1 + random.bounded(6);
        const std::vector<int> indices = randomIndices(random, count, 3 * count + 2);
        const bool stays = recordOrder(indices) == asGiven(indices.size());
        QVERIFY2(stays == readsBackWhole(indices, asGiven(indices.size())), qPrintable(asText(indices)));
        harmless += stays ? 1 : 0;
    }
    QVERIFY(harmless > 0 && harmless < 400); // both kinds were met
}

void tst_RecordOrder::nearestOrderIsTaken()
{
    QFETCH(quint32, seed);
    QRandomGenerator random(seed);
    for (int round = 0; round < 40; ++round) {
        const int count = 2 + random.bounded(5);
        const std::vector<int> indices = randomIndices(random, count, 2 * count);
        QVERIFY2(disorder(recordOrder(indices)) == leastDisorderThatReadsBack(indices),
                 qPrintable(asText(indices)));
    }
}

void tst_RecordOrder::manyRecordsThatRiseStay()
{
    std::vector<int> indices(20000);
    std::iota(indices.begin(), indices.end(), 0);
    QCOMPARE(recordOrder(indices), asGiven(indices.size()));
}

void tst_RecordOrder::repeatedIndicesDropNothing_data()
{
    QTest::addColumn<std::vector<int>>("indices");
    QTest::newRow("zero") << std::vector<int>{0, 0, 0};
    QTest::newRow("last place") << std::vector<int>{4, 4, 4};
    QTest::newRow("mixed") << std::vector<int>{2, 7, 2, 4, 7};
}

void tst_RecordOrder::repeatedIndicesDropNothing()
{
    QFETCH(std::vector<int>, indices);
    QVERIFY(isPermutation(recordOrder(indices), indices.size()));
}

QTEST_MAIN(tst_RecordOrder)
#include "tst_recordorder.moc"
