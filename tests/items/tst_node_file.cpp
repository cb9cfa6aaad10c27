#include "items/nodereports.h"

class tst_Node_File : public TestCase
{
    Q_OBJECT

private slots:
    void initTestCase() { qRegisterMetaType<Node *>(); }

    void savesItsRecord_data();
    void savesItsRecord();
    void savesThePlaceInTheScene();
    void loadsItsRecord();
    void loadingReportsTheIndexOnceMore_data();
    void loadingReportsTheIndexOnceMore();
    void loadedMarks_data();
    void loadedMarks();
    void loadingClearsNoMark();
    void loadingLogsThePayload();
    void loadedRecordIsSavedAgainUnchanged();
    void shortRecordLeavesWhatTheStreamGives();
};

void tst_Node_File::savesItsRecord_data()
{
    QTest::addColumn<bool>("endOfStory");
    QTest::addColumn<bool>("important");
    QTest::newRow("unmarked") << false << false;
    QTest::newRow("end of story") << true << false;
    QTest::newRow("important") << false << true;
    QTest::newRow("both") << true << true;
}

void tst_Node_File::savesItsRecord()
{
    QFETCH(bool, endOfStory);
    QFETCH(bool, important);
    Node node(0);
    node.setNodeName(QStringLiteral("Set"));
    node.nameItem()->setPlainText(QStringLiteral("Typed")); // what the user sees counts
    node.setPos(-3.25, 1e6);
    node.setIndex(11);
    node.setPrevIndex(9);
    node.setIsEndOfStory(endOfStory);
    node.setImportant(important);
    node.payload()->eventContent()->setDescription(QStringLiteral("Rain"));
    const LogCapture log;
    const QByteArray saved = savedBy(node);
    const Record expected{QStringLiteral("Typed"), QPointF(-3.25, 1e6),   11, 9, endOfStory ? 1 : 0,
                          important ? 1 : 0,       QStringLiteral("Rain")};
    QCOMPARE(saved, expected.bytes());
    QCOMPARE(log.lines(), QStringList({"Saving event data"}));
}

void tst_Node_File::savesThePlaceInTheScene()
{
    QGraphicsRectItem group;
    group.setPos(1000, 2000);
    auto *node = new Node(0);
    node->setParentItem(&group);
    node->setPos(1, 2);
    const Record expected{
        QStringLiteral("Event"), QPointF(1001, 2002), 0, -1, 0, 0, QStringLiteral("Enter description")};
    QCOMPARE(savedBy(*node), expected.bytes());
}

void tst_Node_File::loadsItsRecord()
{
    Node node(0);
    load(node, Record());
    QCOMPARE(node.title(), QStringLiteral("Storm"));
    QCOMPARE(node.pos(), QPointF(12.5, -7));
    QCOMPARE(node.getIndex(), 4);
    QCOMPARE(node.getPrevIndex(), 2);
    QCOMPARE(description(node), QStringLiteral("Rain"));
    QCOMPARE(node.isEndOfStory(), false);
    QCOMPARE(node.isImportant(), false);
}

void tst_Node_File::loadingReportsTheIndexOnceMore_data()
{
    QTest::addColumn<int>("before");
    QTest::addColumn<int>("reports");
    QTest::newRow("other index") << 0 << 2;
    QTest::newRow("same index") << 4 << 1;
}

void tst_Node_File::loadingReportsTheIndexOnceMore()
{
    QFETCH(int, before);
    QFETCH(int, reports);
    Node node(0);
    node.setIndex(before);
    QList<int> indices;
    QStringList titles;
    connect(&node, &Node::s_indexChanged, &node, [&](Node *changed, int index) {
        indices << index;
        titles << changed->title() + QLatin1Char('/') + description(*changed);
    });
    load(node, Record());
    QCOMPARE(indices, QList<int>(reports, 4));
    QCOMPARE(titles, QStringList(reports, QStringLiteral("Storm/Rain")));
}

void tst_Node_File::loadedMarks_data()
{
    QTest::addColumn<int>("endOfStory");
    QTest::addColumn<int>("important");
    QTest::addColumn<bool>("isEnd");
    QTest::addColumn<bool>("isImportant");
    QTest::newRow("none") << 0 << 0 << false << false;
    QTest::newRow("one") << 1 << 1 << true << true;
    QTest::newRow("two") << 2 << 2 << false << true;
    QTest::newRow("negative") << -1 << -1 << false << true;
}

void tst_Node_File::loadedMarks()
{
    QFETCH(int, endOfStory);
    QFETCH(int, important);
    Node node(0);
    const QSignalSpy changed(&node, &Node::s_importanceChanged);
    Record record;
    record.endOfStory = endOfStory;
    record.important = important;
    load(node, record);
    QTEST(node.isEndOfStory(), "isEnd");
    QTEST(node.isImportant(), "isImportant");
    QCOMPARE(changed.count(), 0);
}

void tst_Node_File::loadingClearsNoMark()
{
    Node node(0);
    node.setIsEndOfStory(true);
    node.setImportant(true);
    load(node, Record());
    QCOMPARE(node.isEndOfStory(), true);
    QCOMPARE(node.isImportant(), true);
}

void tst_Node_File::loadingLogsThePayload()
{
    Node node(0);
    const QSignalSpy changed(&node, &Node::s_changed);
    const LogCapture log;
    load(node, Record());
    QCOMPARE(log.lines(),
             QStringList({"Opening event data", "SetEventData", "Old node index  0  New node index  4"}));
    QCOMPARE(changed.count(), 1); // the description differs from the placeholder
}

void tst_Node_File::loadedRecordIsSavedAgainUnchanged()
{
    Record record;
    record.endOfStory = 1;
    record.important = 1;
    record.title = QStringLiteral("\u96e8\nand wind");
    record.description = QString();
    Node node(0);
    load(node, record);
    record.description = QStringLiteral(""); // a null string is stored otherwise
    QCOMPARE(savedBy(node), record.bytes());
}

void tst_Node_File::shortRecordLeavesWhatTheStreamGives()
{
    Node node(0);
    QByteArray bytes = Record().bytes();
    bytes.truncate(4 + 10 + 16 + 4); // title, position and index are whole
    QDataStream in(bytes);
    node.openFromStream(in);
    QCOMPARE(in.status(), QDataStream::ReadPastEnd);
    QCOMPARE(node.title(), QStringLiteral("Storm"));
    QCOMPARE(node.pos(), QPointF(12.5, -7));
    QCOMPARE(node.getIndex(), 4);
    QCOMPARE(node.getPrevIndex(), 0);
    QCOMPARE(node.isEndOfStory(), false);
    QCOMPARE(node.isImportant(), false);
    QCOMPARE(description(node), QString());
}

QTEST_MAIN(tst_Node_File)
#include "tst_node_file.moc"
