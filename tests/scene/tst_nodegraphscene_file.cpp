#include "commands/graphtab.h"
#include "scene/scenebytes.h"

#include <QRandomGenerator>
#include <QSignalSpy>

using SceneBytes::Record;
using SceneBytes::Records;

namespace {

/// The documented file: one tab with one node.
QByteArray exampleFile()
{
    return QByteArray::fromHex("00 00 00 01"
                               "00 00 00 01"
                               "00 00 00 0A 00 45 00 76 00 65 00 6E 00 74"
                               "00 00 00 02 00 41"
                               "40 24 00 00 00 00 00 00 40 34 00 00 00 00 00 00"
                               "00 00 00 00"
                               "FF FF FF FF"
                               "00 00 00 01"
                               "00 00 00 00"
                               "00 00 00 00");
}

QList<int> savedIndices(NodegraphScene &scene)
{
    QList<int> indices;
    for (const Record &record : SceneBytes::savedRecords(scene))
        indices << record.index;
    return indices;
}

void deleteByCommand(GraphTab &tab, int index)
{
    tab.scene.sl_selectCurrentNode(tab.node(index));
    tab.scene.deleteSelectedNodes(nullptr);
}

/// What a user might do: adding, deleting, connecting, typing, marking, and steps back and forth.
void editAtRandom(GraphTab &tab, QRandomGenerator &random, int steps)
{
    int typed = 0;
    for (int step = 0; step < steps; ++step) {
        const std::vector<Node *> &nodes = tab.scene.nodes();
        const auto any = [&] { return nodes.at(random.bounded(quint32(nodes.size()))); };
        const int choice = nodes.size() < 2 ? 0 : random.bounded(8);
        if (choice <= 1)
            addLoose(tab.scene, QPointF(random.bounded(5000), random.bounded(5000)));
        else if (choice == 2)
            deleteByCommand(tab, any()->getIndex());
        else if (choice == 3)
            tab.addBehind(any());
        else if (choice == 4)
            tab.scene.connectNodes(any(), any());
        else if (choice == 5)
            tab.stack.undo();
        else if (choice == 6)
            tab.stack.redo();
        else
            tab.scene.toggleImportance(any());
        if (!nodes.empty()) {
            typeTitle(nodes.back(), QStringLiteral("Title %1").arg(typed));
            typeDescription(nodes.back(), QStringLiteral("Text %1").arg(typed++));
        }
    }
    if (tab.scene.nodes().empty())
        addLoose(tab.scene, QPointF(1, 1));
    if (!tab.scene.endOfStoryNode())
        tab.scene.setEndOfStory(tab.scene.nodes().front());
}

} // namespace

class tst_NodegraphSceneFile : public TestCase
{
    Q_OBJECT

private slots:
    void streamIsPinned();
    void emptySceneWritesACountOfZero();
    void exampleIsWrittenByteForByte();
    void exampleIsReadAndWrittenByteForByte();
    void recordsHoldWhatIsShown();
    void textsAreWrittenWhole_data();
    void textsAreWrittenWhole();
    void untouchedTextsAreWrittenAsShown();
    void positionsAreWrittenExactly_data();
    void positionsAreWrittenExactly();
    void upstreamIndexFollowsTheConnections();
    void selectionAndHistoryAreNotStored();
    void nodeOfAnotherTypeHasNoTag();
    void recordsStandInAnOrderThatReadsBack_data();
    void recordsStandInAnOrderThatReadsBack();
    void threeAddedTwoDeletedOneAddedAllComeBack();
    void everythingComesBackAfterRandomEdits_data();
    void everythingComesBackAfterRandomEdits();
    void threeTabsStandBackToBack();
    void savingIsLogged();
    void nodeWritesItsOwnRecord();
    void nodeReadsItsOwnRecord();
    void nodeTellsItsReadIndex_data();
    void nodeTellsItsReadIndex();
    void readingClearsNoMark();
};

void tst_NodegraphSceneFile::streamIsPinned()
{
    QBuffer buffer;
    const DocumentStream stream(&buffer);
    QCOMPARE(stream.version(), int(QDataStream::Qt_6_4));
    QCOMPARE(stream.byteOrder(), QDataStream::BigEndian);
    QCOMPARE(stream.floatingPointPrecision(), QDataStream::DoublePrecision);
}

void tst_NodegraphSceneFile::emptySceneWritesACountOfZero()
{
    GraphTab tab;
    QCOMPARE(SceneBytes::saved(tab.scene), QByteArray(4, '\0'));
}

void tst_NodegraphSceneFile::exampleIsWrittenByteForByte()
{
    QCOMPARE(exampleFile().size(), 64);
    GraphTab tab;
    const Node *node = addLoose(tab.scene, QPointF(10, 20));
    typeTitle(node, QStringLiteral("A"));
    typeDescription(node, QString());
    QCOMPARE((SceneBytes::int32(1) + SceneBytes::saved(tab.scene)).toHex(' '), exampleFile().toHex(' '));
}

void tst_NodegraphSceneFile::exampleIsReadAndWrittenByteForByte()
{
    GraphTab tab;
    SceneBytes::load(tab.scene, exampleFile().mid(4));
    QCOMPARE(tab.scene.nodes().size(), std::size_t(1));
    const Node *node = tab.node(0);
    QCOMPARE(node->title(), QStringLiteral("A"));
    QCOMPARE(node->scenePos(), QPointF(10, 20));
    QCOMPARE(descriptionOf(node), QString());
    QVERIFY(node->isEndOfStory());
    QVERIFY(!node->isImportant());
    QCOMPARE(tab.stack.count(), 0);
    QCOMPARE(SceneBytes::saved(tab.scene).toHex(' '), exampleFile().mid(4).toHex(' '));
}

void tst_NodegraphSceneFile::recordsHoldWhatIsShown()
{
    GraphTab tab;
    addLoose(tab.scene, QPointF(100, 50));
    tab.addBehind(tab.node(0));
    tab.addBehind(tab.node(0));
    tab.node(1)->setPos(700.5, -3.25);
    tab.node(2)->setPos(800, 900);
    typeTitle(tab.node(0), QStringLiteral("The letter"));
    typeDescription(tab.node(0), QStringLiteral("It arrives\nat midnight."));
    tab.node(2)->setImportant(true);
    tab.scene.setEndOfStory(tab.node(1));

    const Records expected{
        {QStringLiteral("The letter"), {100, 50}, 0, -1, 0, 0, QStringLiteral("It arrives\nat midnight.")},
        {QStringLiteral("Event"), {700.5, -3.25}, 1, 0, 1, 0, QStringLiteral("Enter description")},
        {QStringLiteral("Event"), {800, 900}, 2, 0, 0, 1, QStringLiteral("Enter description")},
    };
    QCOMPARE(SceneBytes::texts(SceneBytes::savedRecords(tab.scene)), SceneBytes::texts(expected));
    QCOMPARE(SceneBytes::saved(tab.scene).toHex(), SceneBytes::block(expected).toHex());
}

void tst_NodegraphSceneFile::textsAreWrittenWhole_data()
{
    QTest::addColumn<QString>("text");
    QTest::newRow("empty") << QStringLiteral("");
    QTest::newRow("one letter") << QStringLiteral("x");
    QTest::newRow("umlauts") << QStringLiteral("Größe über Öl");
    QTest::newRow("two units a character") << QStringLiteral("\U0001F409 und \U0001F40E");
    QTest::newRow("right to left") << QStringLiteral("שלום");
    QTest::newRow("lines") << QStringLiteral("one\n\nthree\n");
    QTest::newRow("looks like markup") << QStringLiteral("<b>&amp;</b>");
    QTest::newRow("long") << QString(3000, QLatin1Char('w'));
}

void tst_NodegraphSceneFile::textsAreWrittenWhole()
{
    QFETCH(QString, text);
    GraphTab tab;
    const Node *node = addLoose(tab.scene, QPointF(1, 2));
    typeTitle(node, text);
    typeDescription(node, text);
    const QByteArray bytes = SceneBytes::saved(tab.scene);
    QCOMPARE(bytes, SceneBytes::block({{text, {1, 2}, 0, -1, 1, 0, text}}));

    GraphTab opened;
    SceneBytes::load(opened.scene, bytes);
    QCOMPARE(opened.node(0)->title(), text);
    QCOMPARE(descriptionOf(opened.node(0)), text);
}

void tst_NodegraphSceneFile::untouchedTextsAreWrittenAsShown()
{
    GraphTab tab;
    addLoose(tab.scene, QPointF(1, 2));
    QCOMPARE(SceneBytes::savedRecords(tab.scene).first().title, QStringLiteral("Event"));
    QCOMPARE(SceneBytes::savedRecords(tab.scene).first().description, QStringLiteral("Enter description"));
}

void tst_NodegraphSceneFile::positionsAreWrittenExactly_data()
{
    QTest::addColumn<QPointF>("pos");
    QTest::newRow("origin") << QPointF(0, 0);
    QTest::newRow("thirds") << QPointF(1.0 / 3.0, 200000.0 / 3.0);
    QTest::newRow("negative") << QPointF(-12.5, -0.1);
    QTest::newRow("far away") << QPointF(1e15, 99998.999999999);
}

void tst_NodegraphSceneFile::positionsAreWrittenExactly()
{
    QFETCH(QPointF, pos);
    GraphTab tab;
    addLoose(tab.scene, QPointF(5, 5))->setPos(pos);
    const QByteArray bytes = SceneBytes::saved(tab.scene);
    const QByteArray expected = SceneBytes::real(pos.x()) + SceneBytes::real(pos.y());
    QCOMPARE(bytes.mid(4 + 14 + 14, 16).toHex(' '), expected.toHex(' '));
    GraphTab opened;
    SceneBytes::load(opened.scene, bytes);
    QVERIFY(opened.node(0)->scenePos().x() == pos.x() && opened.node(0)->scenePos().y() == pos.y());
}

void tst_NodegraphSceneFile::upstreamIndexFollowsTheConnections()
{
    GraphTab tab;
    addChain(tab.scene, 3);
    const auto upstreamOfTwo = [&tab] { return SceneBytes::savedRecords(tab.scene).at(2).prevIndex; };
    QCOMPARE(upstreamOfTwo(), 1);
    tab.scene.connectNodes(tab.node(2), tab.node(0));
    QCOMPARE(upstreamOfTwo(), 0);
    tab.scene.disconnectNode(tab.node(2));
    QCOMPARE(upstreamOfTwo(), -1);
    tab.scene.connectNodes(tab.node(2), tab.node(0));
    deleteByCommand(tab, 0);
    QCOMPARE(SceneBytes::savedRecords(tab.scene).last().index, 2);
    QCOMPARE(SceneBytes::savedRecords(tab.scene).last().prevIndex, -1);
}

void tst_NodegraphSceneFile::selectionAndHistoryAreNotStored()
{
    GraphTab tab;
    addChain(tab.scene, 3);
    const QByteArray before = SceneBytes::saved(tab.scene);
    tab.scene.selectAll();
    tab.scene.sl_selectCurrentNode(tab.node(0));
    tab.scene.copyNodes();
    QCOMPARE(SceneBytes::saved(tab.scene), before);
    tab.scene.deselectAll();
    tab.scene.sl_deselectCurrentNode();
    tab.stack.clear();
    QCOMPARE(SceneBytes::saved(tab.scene), before);
    QCOMPARE(SceneBytes::saved(tab.scene), before);
}

// No such node can be made by the user; the file says so by the missing tag and would not read back.
void tst_NodegraphSceneFile::nodeOfAnotherTypeHasNoTag()
{
    GraphTab tab;
    tab.scene.createNode(QPointF(3, 4), 0, 1, nullptr, QStringLiteral("X"));
    QCOMPARE(SceneBytes::saved(tab.scene).toHex(' '),
             (SceneBytes::int32(1) + SceneBytes::string(QStringLiteral("X")) + SceneBytes::real(3) +
              SceneBytes::real(4) + SceneBytes::int32(0) + SceneBytes::int32(-1) + SceneBytes::int32(1) +
              SceneBytes::int32(0))
                 .toHex(' '));
}

void tst_NodegraphSceneFile::recordsStandInAnOrderThatReadsBack_data()
{
    QTest::addColumn<int>("added");
    QTest::addColumn<QList<int>>("deleted");
    QTest::addColumn<int>("undone");
    QTest::addColumn<int>("addedLater");
    QTest::addColumn<QList<int>>("order");
    QTest::newRow("as added") << 4 << QList<int>{} << 0 << 0 << QList<int>{0, 1, 2, 3};
    QTest::newRow("first deleted") << 3 << QList<int>{0} << 0 << 0 << QList<int>{1, 2};
    QTest::newRow("first two deleted") << 3 << QList<int>{0, 1} << 0 << 0 << QList<int>{2};
    QTest::newRow("first two deleted, one added") << 3 << QList<int>{0, 1} << 0 << 1 << QList<int>{3, 2};
    QTest::newRow("first three deleted, two added")
        << 5 << QList<int>{0, 1, 2} << 0 << 2 << QList<int>{3, 5, 4, 6};
    QTest::newRow("first came back") << 3 << QList<int>{0} << 1 << 0 << QList<int>{1, 2, 0};
    QTest::newRow("first two came back") << 4 << QList<int>{0, 1} << 2 << 0 << QList<int>{3, 2, 1, 0};
}

void tst_NodegraphSceneFile::recordsStandInAnOrderThatReadsBack()
{
    QFETCH(int, added);
    QFETCH(QList<int>, deleted);
    QFETCH(int, undone);
    QFETCH(int, addedLater);
    QFETCH(QList<int>, order);
    GraphTab tab;
    addChain(tab.scene, added);
    for (const int index : deleted)
        deleteByCommand(tab, index);
    for (int i = 0; i < undone; ++i)
        tab.stack.undo();
    for (int i = 0; i < addedLater; ++i)
        addLoose(tab.scene, QPointF(0, 1000 * i));
    QCOMPARE(savedIndices(tab.scene), order);
}

// The reader's provisional numbers meet stored ones as soon as early events are gone: a record was read over
// another, and one event of two was lost.
void tst_NodegraphSceneFile::threeAddedTwoDeletedOneAddedAllComeBack()
{
    GraphTab tab;
    addChain(tab.scene, 3);
    typeTitle(tab.node(2), QStringLiteral("Third"));
    deleteByCommand(tab, 0);
    deleteByCommand(tab, 1);
    typeTitle(addLoose(tab.scene, QPointF(70, 80)), QStringLiteral("Fourth"));

    GraphTab opened;
    SceneBytes::load(opened.scene, SceneBytes::saved(tab.scene));
    QCOMPARE(sortedIndices(opened.scene), (QList<int>{2, 3}));
    QCOMPARE(opened.node(2)->title(), QStringLiteral("Third"));
    QCOMPARE(opened.node(3)->title(), QStringLiteral("Fourth"));
    QCOMPARE(opened.node(3)->scenePos(), QPointF(70, 80));
    QCOMPARE(opened.scene.endOfStoryNode(), opened.node(2));
}

void tst_NodegraphSceneFile::everythingComesBackAfterRandomEdits_data()
{
    QTest::addColumn<quint32>("seed");
    for (const quint32 seed : {1U, 2U, 3U, 4U, 5U, 42U, 1234U, 65537U})
        QTest::addRow("seed %u", seed) << seed;
}

void tst_NodegraphSceneFile::everythingComesBackAfterRandomEdits()
{
    QFETCH(quint32, seed);
    QRandomGenerator random(seed);
    GraphTab tab;
    editAtRandom(tab, random, 40);
    const QByteArray bytes = SceneBytes::saved(tab.scene);
    const Records records = SceneBytes::savedRecords(tab.scene);
    QCOMPARE(records.size(), qsizetype(tab.scene.nodes().size()));

    GraphTab opened;
    SceneBytes::load(opened.scene, bytes);
    QCOMPARE(sortedIndices(opened.scene), sortedIndices(tab.scene));
    QCOMPARE(connections(opened.scene), connections(tab.scene));
    QCOMPARE(indicesOf(opened.scene.story()), indicesOf(tab.scene.story()));
    QCOMPARE(SceneBytes::texts(SceneBytes::savedRecords(opened.scene)), SceneBytes::texts(records));
    QCOMPARE(SceneBytes::saved(opened.scene), bytes);
}

void tst_NodegraphSceneFile::threeTabsStandBackToBack()
{
    GraphTab first;
    GraphTab second;
    GraphTab third;
    typeTitle(addLoose(first.scene, QPointF(1, 1)), QStringLiteral("First"));
    addChain(third.scene, 2);
    QBuffer buffer;
    buffer.open(QIODevice::ReadWrite);
    DocumentStream stream(&buffer);
    for (GraphTab *tab : {&first, &second, &third})
        tab->scene.saveSceneToFile(stream);
    QCOMPARE(buffer.data(),
             SceneBytes::saved(first.scene) + QByteArray(4, '\0') + SceneBytes::saved(third.scene));

    buffer.seek(0);
    GraphTab opened[3];
    for (GraphTab &tab : opened)
        tab.scene.loadSceneFromFile(stream);
    QCOMPARE(opened[0].node(0)->title(), QStringLiteral("First"));
    QVERIFY(opened[1].scene.nodes().empty());
    QCOMPARE(connections(opened[2].scene), QStringList{"1 from 0"});
    QVERIFY(stream.atEnd());
}

void tst_NodegraphSceneFile::savingIsLogged()
{
    GraphTab tab;
    addChain(tab.scene, 2);
    const LogCapture log;
    SceneBytes::saved(tab.scene);
    QCOMPARE(log.lines(), (QStringList{"Nodes to save 2", "Serializing node", "Saving event data",
                                       "Serializing node", "Saving event data"}));
}

void tst_NodegraphSceneFile::nodeWritesItsOwnRecord()
{
    Node node(0);
    node.setPos(10, 20);
    node.setIndex(7);
    node.setPrevIndex(3);
    node.setIsEndOfStory(true);
    node.setImportant(true);
    typeTitle(&node, QStringLiteral("Typed"));
    QBuffer buffer;
    buffer.open(QIODevice::WriteOnly);
    DocumentStream stream(&buffer);
    node.saveToStream(stream);
    const QByteArray expected = SceneBytes::nodeRecord(
        {QStringLiteral("Typed"), {10, 20}, 7, 3, 1, 1, QStringLiteral("Enter description")});
    QCOMPARE(buffer.data().toHex(' '), expected.toHex(' '));
}

void tst_NodegraphSceneFile::nodeReadsItsOwnRecord()
{
    QByteArray bytes = SceneBytes::nodeRecord(
        {QStringLiteral("Read"), {-5, 0.5}, 12, 4, 1, 1, QStringLiteral("A text\nof two lines")});
    QBuffer buffer(&bytes);
    buffer.open(QIODevice::ReadOnly);
    DocumentStream stream(&buffer);
    Node node(0);
    QSignalSpy marks(&node, &Node::s_importanceChanged);
    QSignalSpy changes(&node, &Node::s_changed);
    const LogCapture log;
    node.openFromStream(stream);
    QVERIFY(stream.atEnd());
    QCOMPARE(node.title(), QStringLiteral("Read"));
    QCOMPARE(node.pos(), QPointF(-5, 0.5));
    QCOMPARE(node.getIndex(), 12);
    QCOMPARE(node.getPrevIndex(), 4);
    QVERIFY(node.isEndOfStory());
    QVERIFY(node.isImportant());
    QCOMPARE(descriptionOf(&node), QStringLiteral("A text\nof two lines"));
    QCOMPARE(marks.count(), 0);
    QCOMPARE(changes.count(), 1);
    QCOMPARE(log.lines(),
             (QStringList{"Opening event data", "SetEventData", "Old node index  0  New node index  12"}));
}

void tst_NodegraphSceneFile::nodeTellsItsReadIndex_data()
{
    QTest::addColumn<int>("before");
    QTest::addColumn<int>("stored");
    QTest::addColumn<int>("times");
    QTest::newRow("changed") << 4 << 9 << 2;
    QTest::newRow("unchanged") << 4 << 4 << 1;
}

void tst_NodegraphSceneFile::nodeTellsItsReadIndex()
{
    QFETCH(int, before);
    QFETCH(int, stored);
    QFETCH(int, times);
    Record record;
    record.index = stored;
    QByteArray bytes = SceneBytes::nodeRecord(record);
    QBuffer buffer(&bytes);
    buffer.open(QIODevice::ReadOnly);
    DocumentStream stream(&buffer);
    Node node(0);
    node.setIndex(before);
    QSignalSpy told(&node, &Node::s_indexChanged);
    node.openFromStream(stream);
    QCOMPARE(told.count(), times);
    for (const QList<QVariant> &arguments : told) {
        QCOMPARE(arguments.at(0).value<Node *>(), &node);
        QCOMPARE(arguments.at(1).toInt(), stored);
    }
}

void tst_NodegraphSceneFile::readingClearsNoMark()
{
    QByteArray bytes = SceneBytes::nodeRecord({});
    QBuffer buffer(&bytes);
    buffer.open(QIODevice::ReadOnly);
    DocumentStream stream(&buffer);
    Node node(0);
    node.setIsEndOfStory(true);
    node.setImportant(true);
    node.openFromStream(stream);
    QVERIFY(node.isEndOfStory());
    QVERIFY(node.isImportant());
}

QTEST_MAIN(tst_NodegraphSceneFile)
#include "tst_nodegraphscene_file.moc"
