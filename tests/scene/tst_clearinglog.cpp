#include "commands/graphtab.h"
#include "scene/clearinglog.h"

#include <random>

// The log of a graph that goes as a whole is that of one that is emptied.

namespace {

/// Events that feed each other anyhow; some are hidden or selected, and any one or none ends the story.
void fill(GraphTab &tab, std::mt19937 &random)
{
    const int count = int(random() % 9);
    for (int i = 0; i < count; ++i)
        addLoose(tab.scene, QPointF(700.0 * i, 100));
    const auto any = [&] { return tab.scene.nodes().at(random() % tab.scene.nodes().size()); };
    for (int i = 0; i < 2 * count; ++i)
        tab.scene.connectNodes(any(), any());
    for (int i = 0; i < count && random() % 3 == 0; ++i)
        tab.scene.setEndOfStory(any());
    if (count > 0 && random() % 3 == 0)
        tab.scene.deleteNode(any());
    if (random() % 2 == 0)
        SceneMouse{tab.scene}.drag(QPointF(50, 50), QPointF(double(random() % 4000), 300));
    else if (random() % 4 == 0)
        tab.scene.selectAll();
}

} // namespace

class tst_ClearingLog : public TestCase
{
    Q_OBJECT

private slots:
    void isThatOfClearing_data();
    void isThatOfClearing();
};

void tst_ClearingLog::isThatOfClearing_data()
{
    QTest::addColumn<unsigned>("seed");
    for (unsigned seed = 1; seed <= 60; ++seed)
        QTest::addRow("seed %u", seed) << seed;
}

void tst_ClearingLog::isThatOfClearing()
{
    QFETCH(const unsigned, seed);
    std::mt19937 random(seed);
    GraphTab tab;
    fill(tab, random);
    const QByteArray document = connections(tab.scene).join(u';').toUtf8();
    LogCapture log;
    logClearing(tab.scene);
    const QStringList told = log.lines();
    QCOMPARE(connections(tab.scene).join(u';').toUtf8(), document);
    log.clear();
    tab.scene.clear();
    QCOMPARE(told, log.lines());
}

QTEST_MAIN(tst_ClearingLog)
#include "tst_clearinglog.moc"
