#include "scene/scenereading.h"

class tst_NodegraphScene_File_Damaged : public TestCase
{
    Q_OBJECT

private slots:
    void upstreamThatNamesNoNodeIsGone_data();
    void upstreamThatNamesNoNodeIsGone();
    void connectionThatClosesACycleIsRefused_data();
    void connectionThatClosesACycleIsRefused();
    void firstOfEqualIndicesIsTheUpstream();
    void connectionThatWentElsewhereIsGone();
    void storedIndexMayMeetAProvisionalOne_data();
    void storedIndexMayMeetAProvisionalOne();
    void overwrittenNodeKeepsItsMarks();
    void overwrittenNodeIsJoinedOnceForEachRecord();
    void dataThatEndsEarlyGivesBlankNodes();
    void dataThatEndsInARecord_data();
    void dataThatEndsInARecord();
    void countWithoutDataIsLimited();
    void damagedTextCutsNothingOff();
    void placesThatAreNoNumbersAreNamedAndTheOthersCounted_data();
    void placesThatAreNoNumbersAreNamedAndTheOthersCounted();
};

void tst_NodegraphScene_File_Damaged::upstreamThatNamesNoNodeIsGone_data()
{
    QTest::addColumn<int>("upstream");
    QTest::newRow("nobody's") << 9;
    QTest::newRow("a provisional number") << 2;
    QTest::newRow("negative") << -7;
}

void tst_NodegraphScene_File_Damaged::upstreamThatNamesNoNodeIsGone()
{
    QFETCH(int, upstream);
    GraphTab tab;
    const LogCapture log;
    load(tab, {eventRecord(0), eventRecord(1, upstream)});
    QCOMPARE(log.count(QStringLiteral("CouldntFind outNode")), 1);
    QCOMPARE(connections(tab.scene), QStringList());
    QCOMPARE(tab.stack.count(), 0);
    QCOMPARE(tab.node(1)->getPrevIndex(), -1);
    QCOMPARE(savedUpstreams(tab.scene), (QList<int>{-1, -1}));
}

void tst_NodegraphScene_File_Damaged::connectionThatClosesACycleIsRefused_data()
{
    QTest::addColumn<QList<int>>("upstreams");
    QTest::addColumn<int>("refusedNode");
    QTest::addColumn<QStringList>("made");
    QTest::newRow("itself") << QList<int>{0, 0} << 0 << QStringList{"1 from 0"};
    QTest::newRow("two nodes") << QList<int>{1, 0} << 1 << QStringList{"0 from 1"};
    QTest::newRow("three nodes") << QList<int>{2, 0, 1} << 2 << QStringList{"0 from 2", "1 from 0"};
    QTest::newRow("three nodes, with a tail")
        << QList<int>{1, 2, 0, 2} << 2 << QStringList{"0 from 1", "1 from 2", "3 from 2"};
}

// A story in a circle never ends, and neither did the walk along it.
void tst_NodegraphScene_File_Damaged::connectionThatClosesACycleIsRefused()
{
    QFETCH(QList<int>, upstreams);
    QFETCH(int, refusedNode);
    QFETCH(QStringList, made);
    Records records;
    QList<int> expected = upstreams;
    for (int index = 0; index < upstreams.size(); ++index)
        records << eventRecord(index, upstreams.at(index), index == refusedNode ? 1 : 0);
    expected[refusedNode] = -1;

    GraphTab tab;
    expectRefusals(1);
    load(tab, records);
    QCOMPARE(connections(tab.scene), made);
    QCOMPARE(tab.stack.count(), made.size());
    QCOMPARE(tab.node(refusedNode)->getPrevIndex(), -1);
    QCOMPARE(savedUpstreams(tab.scene), expected);
}

void tst_NodegraphScene_File_Damaged::firstOfEqualIndicesIsTheUpstream()
{
    GraphTab tab;
    expectNewIndices(1);
    load(tab, {eventRecord(5), eventRecord(5), eventRecord(7, 5)});
    QCOMPARE(tab.scene.nodes().at(2)->prevNode(), tab.scene.nodes().at(0));
}

// The command names nodes by their index, and the first one with it answers.
void tst_NodegraphScene_File_Damaged::connectionThatWentElsewhereIsGone()
{
    GraphTab tab;
    expectNewIndices(1);
    load(tab, {eventRecord(5), eventRecord(5, 7), eventRecord(7)});
    QCOMPARE(tab.scene.nodes().at(0)->prevNode(), tab.scene.nodes().at(2));
    QVERIFY(!tab.scene.nodes().at(1)->hasInput());
    QCOMPARE(savedUpstreams(tab.scene), (QList<int>{7, -1, -1}));
}

void tst_NodegraphScene_File_Damaged::storedIndexMayMeetAProvisionalOne_data()
{
    QTest::addColumn<QList<int>>("stored");
    QTest::addColumn<QStringList>("titles");
    QTest::addColumn<QList<int>>("indices");
    QTest::newRow("second over the first")
        << QList<int>{2, 1} << QStringList{"Title 1", "Event"} << QList<int>{1, 4};
    QTest::newRow("and so on") << QList<int>{2, 1, 7} << QStringList{"Title 1", "Title 7", "Event"}
                               << QList<int>{1, 7, 6};
    QTest::newRow("third over the first")
        << QList<int>{4, 1, 3} << QStringList{"Title 3", "Title 1", "Event"} << QList<int>{3, 1, 6};
    QTest::newRow("too early by one")
        << QList<int>{1, 4, 3} << QStringList{"Title 1", "Title 3", "Event"} << QList<int>{1, 3, 6};
    QTest::newRow("just not") << QList<int>{1, 2, 4} << QStringList{"Title 1", "Title 2", "Title 4"}
                              << QList<int>{1, 2, 4};
}

// Old files are read as they always were: see recordOrder() for what keeps new ones whole.
void tst_NodegraphScene_File_Damaged::storedIndexMayMeetAProvisionalOne()
{
    QFETCH(QList<int>, stored);
    QFETCH(QStringList, titles);
    QFETCH(QList<int>, indices);
    Records records;
    for (const int index : stored)
        records << eventRecord(index);
    GraphTab tab;
    load(tab, records);
    QCOMPARE(indicesOf(tab.scene.nodes()), indices);
    for (qsizetype i = 0; i < titles.size(); ++i) {
        const Node *node = tab.scene.nodes().at(std::size_t(i));
        QCOMPARE(node->title(), titles.at(i));
        const bool isBlank = titles.at(i) == QStringLiteral("Event");
        QCOMPARE(node->scenePos(), isBlank ? QPointF(0, 0) : QPointF(10.5 * indices.at(i), 20));
    }
}

// A node that two records were read into stands in the list of the read ones twice.
void tst_NodegraphScene_File_Damaged::overwrittenNodeIsJoinedOnceForEachRecord()
{
    GraphTab tab;
    LogCapture log;
    load(tab, {eventRecord(2, 9), eventRecord(5, 9)});
    QCOMPARE(log.count(QStringLiteral("CouldntFind outNode")), 2);
    QCOMPARE(tab.node(5)->getPrevIndex(), -1);
    GraphTab circle;
    expectRefusals(2);
    load(circle, {eventRecord(2, 5), eventRecord(5, 5)});
    QVERIFY(!circle.node(5)->hasInput());
    QCOMPARE(circle.node(5)->getPrevIndex(), -1);
}

void tst_NodegraphScene_File_Damaged::overwrittenNodeKeepsItsMarks()
{
    GraphTab tab;
    load(tab, {eventRecord(2, -1, 0, 1), eventRecord(1)});
    const Node *node = tab.node(1);
    QCOMPARE(node->title(), QStringLiteral("Title 1"));
    QVERIFY(node->isImportant());
    QVERIFY(node->isEndOfStory());
}

void tst_NodegraphScene_File_Damaged::dataThatEndsEarlyGivesBlankNodes()
{
    QByteArray bytes = SceneBytes::block({eventRecord(5)});
    bytes.replace(0, 4, SceneBytes::int32(3));
    GraphTab tab;
    // What is not there reads as 0, so the blank nodes claim to be fed by the first of them.
    expectNewIndices(1);
    expectRefusals(2);
    SceneBytes::load(tab.scene, bytes);
    QCOMPARE(indicesOf(tab.scene.nodes()), (QList<int>{5, 0, 6}));
    QCOMPARE(tab.node(5)->title(), QStringLiteral("Title 5"));
    for (const std::size_t place : {1, 2}) {
        const Node *blank = tab.scene.nodes().at(place);
        QCOMPARE(blank->title(), QString());
        QCOMPARE(descriptionOf(blank), QString());
        QCOMPARE(blank->scenePos(), QPointF(0, 0));
    }
    QCOMPARE(savedUpstreams(tab.scene), (QList<int>{-1, -1, -1}));
}

void tst_NodegraphScene_File_Damaged::dataThatEndsInARecord_data()
{
    QTest::addColumn<int>("kept");
    QTest::addColumn<QString>("title");
    QTest::addColumn<int>("index");
    QTest::addColumn<bool>("namesItself");
    const QString title = QStringLiteral("Title 5");
    const int tagEnd = 4 + 14;
    const int titleEnd = tagEnd + 4 + 14;
    QTest::newRow("after the count") << 4 << QString() << 0 << true;
    QTest::newRow("in the tag") << 11 << QString() << 0 << true;
    QTest::newRow("in the title") << titleEnd - 3 << QString() << 0 << true;
    QTest::newRow("in the position") << titleEnd + 9 << title << 0 << true;
    QTest::newRow("in the index") << titleEnd + 16 + 2 << title << 0 << true;
    QTest::newRow("in the upstream index") << titleEnd + 20 + 3 << title << 5 << false;
    QTest::newRow("in the marks") << titleEnd + 24 + 5 << title << 5 << false;
    QTest::newRow("in the description") << titleEnd + 32 + 7 << title << 5 << false;
}

void tst_NodegraphScene_File_Damaged::dataThatEndsInARecord()
{
    QFETCH(int, kept);
    QFETCH(QString, title);
    QFETCH(int, index);
    QFETCH(bool, namesItself);
    GraphTab tab;
    if (namesItself)
        expectRefusals(1);
    SceneBytes::load(tab.scene, SceneBytes::block({eventRecord(5)}).left(kept));
    QCOMPARE(tab.scene.nodes().size(), std::size_t(1));
    QCOMPARE(tab.node(index)->title(), title);
    QCOMPARE(descriptionOf(tab.node(index)), QString());
    QCOMPARE(tab.node(index)->getPrevIndex(), -1);
    QCOMPARE(connections(tab.scene), QStringList());
}

// A damaged count asked for two thousand million nodes, and the program never came back.
void tst_NodegraphScene_File_Damaged::countWithoutDataIsLimited()
{
    const NoProgressLog quiet;
    GraphTab tab;
    QTest::ignoreMessage(QtWarningMsg,
                         "Damaged scene file: \"\" ended after 0 of 2147483647 nodes, opening 1000");
    expectNewIndices(999);
    expectRefusals(1000);
    SceneBytes::load(tab.scene, SceneBytes::int32(std::numeric_limits<int>::max()));
    QCOMPARE(tab.scene.nodes().size(), std::size_t(1000));
}

// The limit for blank nodes goes by the data that is left, not by an error that a text may have set long ago.
void tst_NodegraphScene_File_Damaged::damagedTextCutsNothingOff()
{
    constexpr int count = 1100;
    const NoProgressLog quiet;
    Record damaged = eventRecord(1);
    damaged.title = QString();
    QByteArray bytes =
        SceneBytes::int32(count) + SceneBytes::string(damaged.tag) + SceneBytes::nodeRecord(damaged);
    bytes.replace(4 + 14, 4, SceneBytes::int32(3)); // half a letter: Qt gives the text up and reads on behind
    Records rest;
    for (int i = 1; i < count; ++i)
        rest << eventRecord(2 * i + 1);
    bytes += SceneBytes::block(rest).mid(4);
    GraphTab tab;
    SceneBytes::load(tab.scene, bytes);
    QCOMPARE(tab.scene.nodes().size(), std::size_t(count));
    QCOMPARE(tab.scene.nodes().back()->title(), QStringLiteral("Title %1").arg(2 * count - 1));
}

void tst_NodegraphScene_File_Damaged::placesThatAreNoNumbersAreNamedAndTheOthersCounted_data()
{
    QTest::addColumn<int>("coordinates");
    QTest::addColumn<int>("others");
    QTest::newRow("one") << 1 << 0;
    QTest::newRow("twenty") << 20 << 0;
    QTest::newRow("one more") << 21 << 1;
    QTest::newRow("both of each event") << 100 << 80;
}

// A damaged file may have one in each of its events.
void tst_NodegraphScene_File_Damaged::placesThatAreNoNumbersAreNamedAndTheOthersCounted()
{
    QFETCH(const int, coordinates);
    QFETCH(const int, others);
    Records records;
    for (int i = 0; i < coordinates; i += 2) {
        records << eventRecord(i / 2);
        records.back().pos = QPointF(qQNaN(), i + 1 < coordinates ? qInf() : 0);
    }
    QStringList expected;
    for (int i = 0; i < coordinates - others; ++i)
        expected << QStringLiteral("Damaged node %1 has a coordinate that is not a finite number, read as 0")
                        .arg(i / 2);
    if (others > 0)
        expected << QStringLiteral("Damaged scene file: \"\" has %1 more coordinates that are not finite "
                                   "numbers, read as 0")
                        .arg(others);
    for (const QString &line : expected)
        QTest::ignoreMessage(QtWarningMsg, qPrintable(line));
    GraphTab tab;
    const LogCapture log;
    load(tab, records);
    QCOMPARE(log.lines().filter(QStringLiteral("Damaged")), expected);
}

QTEST_MAIN(tst_NodegraphScene_File_Damaged)
#include "tst_nodegraphscene_file_damaged.moc"
