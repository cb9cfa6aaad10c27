#include "app/badfiles.h"

#include <limits>

namespace {

constexpr int intMax = std::numeric_limits<int>::max();
constexpr int intMin = std::numeric_limits<int>::min();

Record numbered(int number, int index, int upstream)
{
    Record record{QStringLiteral("Event %1").arg(number), QPointF(500 * number, 10), index, upstream};
    record.description = QStringLiteral("Text %1").arg(number);
    return record;
}

/// Events with the indices and upstream indices that the functions give their numbers.
QByteArray graph(int count, const std::function<int(int)> &indexOf, const std::function<int(int)> &upstreamOf)
{
    std::vector<Record> events;
    for (int i = 0; i < count; ++i)
        events.push_back(numbered(i, indexOf(i), upstreamOf(i)));
    return documentBytes({events});
}

int same(int i) { return i; }
int before(int i) { return i - 1; }

std::size_t nodeCount(FileOpener &opener, int tab) { return sceneOf(opener.window(), tab)->nodes().size(); }

} // namespace

class tst_BadFilesGraph : public ProgramTest
{
    Q_OBJECT

private slots:
    void storedCountIsMadeUpToAThousandBlanks_data();
    void storedCountIsMadeUpToAThousandBlanks();
    void negativeCountMakesNothing_data();
    void negativeCountMakesNothing();
    void tabsAreBoundedByTheFile_data();
    void tabsAreBoundedByTheFile();
    void warningNamesTheFileAndTheCounts();
    void brokenGraph_data();
    void brokenGraph();
    void cycleIsOpenedWithoutItsLastConnection();
    void chosenOneOfManyWithOneIndexComesBack_data();
    void chosenOneOfManyWithOneIndexComesBack();
    void manyWithOneIndexAreSavedWhole_data();
    void manyWithOneIndexAreSavedWhole();
    void deepChainIsWhole();

private:
    PrivateHome home;
};

void tst_BadFilesGraph::storedCountIsMadeUpToAThousandBlanks_data()
{
    QTest::addColumn<int>("stored");
    QTest::addColumn<int>("records");
    QTest::addColumn<int>("made");
    QTest::newRow("nothing but the count") << 1 << 0 << 1;
    QTest::newRow("one too many") << 3 << 2 << 3;
    QTest::newRow("as many as are made") << 1000 << 0 << 1000;
    QTest::newRow("one more than are made") << 1001 << 0 << 1000;
    QTest::newRow("as many as are made behind records") << 1002 << 2 << 1002;
    QTest::newRow("one more behind records") << 1003 << 2 << 1002;
    QTest::newRow("two thousand million") << 2'000'000'000 << 0 << 1000;
    QTest::newRow("two thousand million behind records") << 2'000'000'000 << 2 << 1002;
    QTest::newRow("the most") << intMax << 1 << 1001;
}

void tst_BadFilesGraph::storedCountIsMadeUpToAThousandBlanks()
{
    QFETCH(const int, stored);
    QFETCH(const int, records);
    QFETCH(const int, made);
    QByteArray block = intBytes(stored);
    for (int i = 0; i < records; ++i)
        block += numbered(i, i, i - 1).bytes();
    FileOpener opener;
    QCOMPARE(opener.open(intBytes(1) + block), QString());
    QCOMPARE(nodeCount(opener, 0), std::size_t(made));
    // The tab in front of it is whole, and the one behind it has no data left.
    const QByteArray threeTabs = intBytes(3) + tabBytes({numbered(0, 0, -1)}) + block;
    QCOMPARE(opener.check(threeTabs, FileOpener::OpenAndSave), QString());
    QCOMPARE(nodeCount(opener, 1), std::size_t(made));
    QCOMPARE(nodeCount(opener, 2), std::size_t(0));
}

void tst_BadFilesGraph::negativeCountMakesNothing_data()
{
    QTest::addColumn<int>("count");
    QTest::newRow("-1") << -1;
    QTest::newRow("-2") << -2;
    QTest::newRow("the least") << intMin;
}

void tst_BadFilesGraph::negativeCountMakesNothing()
{
    QFETCH(const int, count);
    FileOpener opener;
    QCOMPARE(opener.check(intBytes(count) + tabBytes({numbered(0, 0, -1)})), QString());
    QCOMPARE(opener.open(intBytes(2) + intBytes(count) + tabBytes({numbered(0, 0, -1)})), QString());
    QCOMPARE(nodeCount(opener, 0), std::size_t(0));
    QCOMPARE(nodeCount(opener, 1), std::size_t(1));
}

void tst_BadFilesGraph::tabsAreBoundedByTheFile_data()
{
    QTest::addColumn<QByteArray>("bytes");
    QTest::addColumn<int>("tabs");
    const QByteArray oneTab = tabBytes({numbered(0, 0, -1)});
    const int bound = int(4 + oneTab.size()) / 4 + 16;
    QTest::newRow("within the bound") << intBytes(bound) + oneTab << bound;
    QTest::newRow("one beyond") << intBytes(bound + 1) + oneTab << bound;
    QTest::newRow("two thousand million") << intBytes(2'000'000'000) + oneTab << bound;
    QTest::newRow("the most") << intBytes(intMax) + oneTab << bound;
    QTest::newRow("only the count") << intBytes(intMax) << 17;
    QTest::newRow("a hundred empty tabs") << intBytes(100) + QByteArray(400, '\0') << 100;
}

void tst_BadFilesGraph::tabsAreBoundedByTheFile()
{
    QFETCH(const QByteArray, bytes);
    QFETCH(const int, tabs);
    FileOpener opener;
    QCOMPARE(opener.open(bytes), QString());
    QCOMPARE(int(opener.window().views().size()), tabs);
    QCOMPARE(opener.check(bytes), QString());
}

void tst_BadFilesGraph::warningNamesTheFileAndTheCounts()
{
    const QTemporaryDir folder;
    const QString path = folder.filePath(QStringLiteral("mine.scene"));
    QVERIFY(writeFile(path, intBytes(100) + intBytes(5000) + numbered(0, 0, -1).bytes()));
    FileOpener opener;
    opener.window().loadFrom(path);
    const QStringList lines = opener.takeWarnings();
    // The tabs, the blank events, which all claim to be fed by the first one, twenty of those, then how many
    // have its index, and how many more of the former there are.
    QCOMPARE(lines.size(), 3 + 20 + 1);
    for (const QString &line : lines)
        QVERIFY2(line.startsWith(QLatin1String("Damaged scene file:")) && line.contains(path),
                 qPrintable(line));
    const QString bound = QString::number(QFileInfo(path).size() / 4 + 16);
    QVERIFY2(lines[0].contains(QStringLiteral(" 100 ")) && lines[0].contains(bound), qPrintable(lines[0]));
    QVERIFY2(lines[1].contains(QStringLiteral(" 5000 ")) && lines[1].contains(QStringLiteral("1001")),
             qPrintable(lines[1]));
    QVERIFY2(lines[22].contains(QStringLiteral(" 1000 events without an index ")), qPrintable(lines[22]));
    QVERIFY2(lines.last().contains(QStringLiteral(" 980 more ")), qPrintable(lines.last()));
}

void tst_BadFilesGraph::brokenGraph_data()
{
    QTest::addColumn<QByteArray>("bytes");
    const auto row = [](const char *name, const QByteArray &bytes) { QTest::newRow(name) << bytes; };
    const auto none = [](int) { return -1; };
    row("fed by itself", graph(1, same, same));
    row("all fed by themselves", graph(20, same, same));
    row("cycle of two", graph(2, same, [](int i) { return 1 - i; }));
    row("cycle of fifty", graph(50, same, [](int i) { return (i + 49) % 50; }));
    row("cycle of fifty, backwards", graph(50, same, [](int i) { return (i + 1) % 50; }));
    row("two cycles", graph(10, same, [](int i) { return i / 5 * 5 + (i + 1) % 5; }));
    row("a chain that runs into a cycle", graph(10, same, [](int i) { return i == 3 ? 7 : i - 1; }));
    row("cycle with a branch", graph(10, same, [](int i) { return i == 9 ? 4 : (i + 1) % 9; }));
    row("one index, fed by nobody", graph(
                                        20, [](int) { return 7; }, none));
    row("one index, fed by that index", graph(
                                            20, [](int) { return 7; }, [](int) { return 7; }));
    row("one index zero", graph(
                              20, [](int) { return 0; }, none));
    row("one index, and a chain below", graph(
                                            20, [](int i) { return i < 10 ? 3 : i; }, before));
    row("pairs with one index in a chain",
        graph(
            20, [](int i) { return i / 2; }, [](int i) { return i / 2 - 1; }));
    row("every index over the record behind it", graph(
                                                     20, [](int i) { return 2 * i + 2; }, before));
    row("index minus one, fed by minus one", graph(
                                                 5, [](int) { return -1; }, none));
    row("negative indices", graph(
                                20, [](int i) { return -i - 2; }, [](int i) { return -i - 1; }));
    row("the largest indices",
        graph(
            20, [](int i) { return intMax - i; }, [](int i) { return i == 0 ? -1 : intMax - i + 1; }));
    row("the least indices",
        graph(
            20, [](int i) { return intMin + i; }, [](int i) { return i == 0 ? -1 : intMin + i - 1; }));
    row("all with the largest index", graph(
                                          20, [](int) { return intMax; }, [](int) { return intMax; }));
    row("all with the least index", graph(
                                        20, [](int) { return intMin; }, [](int) { return intMin; }));
    row("upstream that is not there", graph(5, same, [](int i) { return i + 100; }));
    row("the next index is taken far up", graph(
                                              40, [](int i) { return 80 + i; }, none));
    std::vector<Record> marked;
    for (int i = 0; i < 10; ++i) {
        marked.push_back(numbered(i, i, i - 1));
        marked.back().endOfStory = true;
        marked.back().important = true;
    }
    row("every event is the end", documentBytes({marked, marked}));
}

void tst_BadFilesGraph::brokenGraph()
{
    QFETCH(const QByteArray, bytes);
    FileOpener opener;
    const QString problem = opener.check(bytes);
    QVERIFY2(problem.isEmpty(), qPrintable(problem));
}

void tst_BadFilesGraph::cycleIsOpenedWithoutItsLastConnection()
{
    FileOpener opener;
    QCOMPARE(opener.open(graph(4, same, [](int i) { return (i + 3) % 4; })), QString());
    QStringList feeders;
    for (const Node *node : sceneOf(opener.window(), 0)->nodes())
        feeders << (node->prevNode() ? node->prevNode()->title() : QStringLiteral("nobody"));
    // The first record asks for the last event, which nobody feeds yet; then the chain comes back to it.
    QCOMPARE(feeders, QStringList({QStringLiteral("Event 3"), QStringLiteral("Event 0"),
                                   QStringLiteral("Event 1"), QStringLiteral("nobody")}));
}

void tst_BadFilesGraph::chosenOneOfManyWithOneIndexComesBack_data()
{
    QTest::addColumn<int>("chosen");
    for (const int chosen : {0, 1, 3})
        QTest::addRow("event %d", chosen) << chosen;
}

// A deletion that goes by the index alone takes the first event and brings back another one: its text is
// lost.
void tst_BadFilesGraph::chosenOneOfManyWithOneIndexComesBack()
{
    QFETCH(const int, chosen);
    FileOpener opener;
    QCOMPARE(opener.open(graph(
                 4, [](int) { return 7; }, [](int) { return -1; })),
             QString());
    NodegraphScene *scene = sceneOf(opener.window(), 0);
    QStringList titles = titlesOf(scene);
    scene->sl_selectCurrentNode(scene->nodes()[std::size_t(chosen)]);
    opener.window().sl_delete();
    QCOMPARE(scene->nodes().size(), std::size_t(3));
    opener.window().sl_undo();
    QStringList texts;
    for (const Node *node : scene->nodes())
        texts << descriptionOf(node)->toPlainText();
    texts.sort();
    QCOMPARE(texts, QStringList({QStringLiteral("Text 0"), QStringLiteral("Text 1"), QStringLiteral("Text 2"),
                                 QStringLiteral("Text 3")}));
    QStringList restored = titlesOf(scene);
    restored.sort();
    QCOMPARE(restored, titles);
    opener.window().sl_redo();
    QCOMPARE(scene->nodes().size(), std::size_t(3));
    opener.window().sl_undo();
    restored = titlesOf(scene);
    restored.sort();
    QCOMPARE(restored, titles);
}

void tst_BadFilesGraph::manyWithOneIndexAreSavedWhole_data()
{
    QTest::addColumn<int>("index");
    for (const int index : {0, 2, 7, 8, 9, 10, -1, intMax})
        QTest::addRow("%d", index) << index;
}

// Each round of opening and saving used to lose an event: the record at place 4 is read into whichever event
// has the index 8 by then.
void tst_BadFilesGraph::manyWithOneIndexAreSavedWhole()
{
    QFETCH(const int, index);
    FileOpener opener;
    const QByteArray bytes = graph(
        5, [index](int) { return index; }, before);
    const QString problem = opener.check(bytes, FileOpener::OpenAndSave);
    QVERIFY2(problem.isEmpty(), qPrintable(problem));
}

void tst_BadFilesGraph::deepChainIsWhole()
{
    const int depth = isExhaustive() ? 2000 : 300;
    FileOpener opener;
    const std::pair<std::function<int(int)>, std::function<int(int)>> orders[] = {
        {same, before},
        {[depth](int i) { return depth - 1 - i; }, [depth](int i) { return depth - 2 - i; }},
        {same, [depth](int i) { return i == depth - 1 ? -1 : i + 1; }},
    };
    for (const auto &[indexOf, upstreamOf] : orders) {
        const QString problem = opener.check(graph(depth, indexOf, upstreamOf));
        QVERIFY2(problem.isEmpty(), qPrintable(problem));
    }
}

QTEST_MAIN(tst_BadFilesGraph)
#include "tst_badfiles_graph.moc"
