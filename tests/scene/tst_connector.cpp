#include "scene/connector.h"

#include "items/node.h"
#include "items/promptscene.h"
#include "scene/massremoval.h"
#include "scene/shownscene.h"
#include "support/testsupport.h"

#include <QPointer>
#include <QRandomGenerator>

using Nodes = std::vector<Node *>;

namespace {

/// Some events on a canvas that knows nothing of them.
struct Wires
{
    PromptScene canvas;
    MassRemoval lines{canvas};
    Connector connector{lines};
    Nodes nodes;

    explicit Wires(int events = 4)
    {
        for (int i = 0; i < events; ++i) {
            auto *node = new Node(0);
            canvas.addItem(node);
            node->placeAt(QPointF(500 * i, 100));
            node->setIndex(10 + i);
            nodes.push_back(node);
        }
    }
    Node *operator[](std::size_t i) const { return nodes[i]; }
};

constexpr QPointF somewhere(3000, 2000);

} // namespace

class tst_Connector : public TestCase
{
    Q_OBJECT

private slots:
    void joinedNodesKnowEachOther();
    void joinedSocketsKnowEachOther();
    void aLineIsDrawnBetweenThem();
    void theLineFollowsBoth();
    void theLineOfAHiddenNodeIsHidden();
    void partedNodesKnowNothingOfEachOther();
    void theSocketOfAFeederTurnsToTheNextOne();
    void thePartedLineGoesAtOnceAndDiesLater();
    void partingWhatNothingFeedsIsHarmless();
    void aCycleIsSeen_data();
    void aCycleIsSeen();
    void aCycleIsSeenInBranchingStories_data();
    void aCycleIsSeenInBranchingStories();
};

void tst_Connector::joinedNodesKnowEachOther()
{
    Wires wires;
    wires.connector.join(wires[1], wires[0]);
    wires.connector.join(wires[2], wires[0]);
    QCOMPARE(wires[1]->prevNode(), wires[0]);
    QVERIFY(wires[1]->hasInput());
    QCOMPARE(wires[1]->getPrevIndex(), 10);
    QCOMPARE(wires[0]->nextNodes(), (Nodes{wires[1], wires[2]}));
    QVERIFY(!wires[0]->hasInput());
}

void tst_Connector::joinedSocketsKnowEachOther()
{
    Wires wires;
    wires.connector.join(wires[1], wires[0]);
    const Socket *input = wires[1]->inSocket();
    const Socket *output = wires[0]->outSocket();
    QVERIFY(input->getIsConnected() && output->getIsConnected());
    QCOMPARE(input->connectedSocket(), output);
    QCOMPARE(output->connectedSocket(), input);
    QVERIFY(!wires[0]->inSocket()->getIsConnected());
}

void tst_Connector::aLineIsDrawnBetweenThem()
{
    Wires wires;
    const ConnectionLine *line = wires.connector.join(wires[1], wires[0]);
    QCOMPARE(wires[1]->inLine(), line);
    QCOMPARE(wires[0]->outLine(), line);
    QCOMPARE(line->scene(), &wires.canvas);
    QCOMPARE(line->inputSocket(), wires[1]->inSocket());
    QCOMPARE(line->outputSocket(), wires[0]->outSocket());
    QCOMPARE(startOf(line), inputOf(wires[1]));
    QCOMPARE(endOf(line), outputOf(wires[0]));
    QVERIFY(line->isVisible());
}

void tst_Connector::theLineFollowsBoth()
{
    Wires wires;
    const ConnectionLine *line = wires.connector.join(wires[1], wires[0]);
    emit wires[1]->s_inSocketMove(somewhere);
    QCOMPARE(startOf(line), somewhere);
    QCOMPARE(endOf(line), outputOf(wires[0]));
    emit wires[0]->s_outSocketMove(-somewhere);
    QCOMPARE(endOf(line), -somewhere);
}

void tst_Connector::theLineOfAHiddenNodeIsHidden()
{
    Wires wires;
    wires[0]->setVisible(false);
    QVERIFY(!wires.connector.join(wires[1], wires[0])->isVisible());
    wires[3]->setVisible(false);
    QVERIFY(!wires.connector.join(wires[3], wires[2])->isVisible());
}

void tst_Connector::partedNodesKnowNothingOfEachOther()
{
    Wires wires;
    wires.connector.join(wires[1], wires[0]);
    wires.connector.part(wires[1]);
    QCOMPARE(wires[1]->prevNode(), nullptr);
    QVERIFY(!wires[1]->hasInput());
    QCOMPARE(wires[1]->getPrevIndex(), -1);
    QCOMPARE(wires[0]->nextNodes(), Nodes());
    for (const Socket *socket : {wires[1]->inSocket(), wires[0]->outSocket()}) {
        QVERIFY(!socket->getIsConnected());
        QCOMPARE(socket->connectedSocket(), nullptr);
    }
}

void tst_Connector::theSocketOfAFeederTurnsToTheNextOne()
{
    Wires wires;
    for (const std::size_t i : {3, 1, 2})
        wires.connector.join(wires[i], wires[0]);
    QCOMPARE(wires[0]->outSocket()->connectedSocket(), wires[2]->inSocket());
    wires.connector.part(wires[2]);
    QCOMPARE(wires[0]->nextNodes(), (Nodes{wires[3], wires[1]}));
    QVERIFY(wires[0]->outSocket()->getIsConnected());
    QCOMPARE(wires[0]->outSocket()->connectedSocket(), wires[3]->inSocket());
    QCOMPARE(wires[3]->inSocket()->connectedSocket(), wires[0]->outSocket());
}

void tst_Connector::thePartedLineGoesAtOnceAndDiesLater()
{
    Wires wires;
    const QPointer<ConnectionLine> line = wires.connector.join(wires[1], wires[0]);
    wires.connector.part(wires[1]);
    QCOMPARE(wires[1]->inLine(), nullptr);
    QVERIFY(line);
    QCOMPARE(line->scene(), nullptr);
    emit wires[1]->s_inSocketMove(somewhere);
    emit wires[0]->s_outSocketMove(somewhere);
    QCOMPARE(startOf(line), inputOf(wires[1]));
    QCOMPARE(endOf(line), outputOf(wires[0]));
    flushDeferredDeletes();
    QVERIFY(!line);
}

void tst_Connector::partingWhatNothingFeedsIsHarmless()
{
    Wires wires;
    wires[1]->setPrevIndex(77); // as a file can say
    wires.connector.part(wires[1]);
    QCOMPARE(wires[1]->getPrevIndex(), -1);
    QCOMPARE(wires[1]->inLine(), nullptr);
}

void tst_Connector::aCycleIsSeen_data()
{
    QTest::addColumn<int>("downstream");
    QTest::addColumn<int>("upstream");
    QTest::addColumn<bool>("closes");
    QTest::newRow("itself") << 3 << 3 << true;
    QTest::newRow("what it feeds") << 0 << 1 << true;
    QTest::newRow("what it feeds over another") << 0 << 2 << true;
    QTest::newRow("what feeds it") << 2 << 0 << false;
    QTest::newRow("a stranger") << 0 << 3 << false;
    QTest::newRow("behind a stranger") << 3 << 2 << false;
}

void tst_Connector::aCycleIsSeen()
{
    QFETCH(int, downstream);
    QFETCH(int, upstream);
    Wires wires;
    wires.connector.join(wires[1], wires[0]);
    wires.connector.join(wires[2], wires[1]);
    QTEST(Connector::wouldCloseCycle(wires[std::size_t(downstream)], wires[std::size_t(upstream)]), "closes");
    QVERIFY(!Connector::wouldCloseCycle(nullptr, wires[0]));
    QVERIFY(!Connector::wouldCloseCycle(wires[0], nullptr));
}

void tst_Connector::aCycleIsSeenInBranchingStories_data()
{
    QTest::addColumn<quint32>("seed");
    QTest::addColumn<int>("choice"); // how many events before it may feed an event; with one it is a chain
    for (quint32 seed = 1; seed <= 4; ++seed) {
        for (const int choice : {1, 3, 40})
            QTest::addRow("seed %u, of the %d before", seed, choice) << seed << choice;
    }
}

void tst_Connector::aCycleIsSeenInBranchingStories()
{
    QFETCH(quint32, seed);
    QFETCH(int, choice);
    constexpr int events = 40;
    QRandomGenerator random(seed);
    Wires wires(events);
    std::vector<int> feeders(events, -1);
    for (int i = 1; i < events; ++i) {
        if (random.bounded(8) == 0)
            continue; // a story of its own begins
        feeders[std::size_t(i)] = std::max(0, i - 1 - random.bounded(choice));
        wires.connector.join(wires[std::size_t(i)], wires[std::size_t(feeders[std::size_t(i)])]);
    }
    for (int downstream = 0; downstream < events; ++downstream) {
        for (int upstream = 0; upstream < events; ++upstream) {
            int feeding = upstream;
            while (feeding >= 0 && feeding != downstream)
                feeding = feeders[std::size_t(feeding)];
            QVERIFY2(Connector::wouldCloseCycle(wires[std::size_t(downstream)],
                                                wires[std::size_t(upstream)]) == (feeding == downstream),
                     qPrintable(QStringLiteral("%1 fed by %2").arg(downstream).arg(upstream)));
        }
    }
}

QTEST_MAIN(tst_Connector)
#include "tst_connector.moc"
