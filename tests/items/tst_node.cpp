#include "items/nodereports.h"

class tst_Node : public TestCase
{
    Q_OBJECT

private slots:
    void initTestCase() { qRegisterMetaType<Node *>(); }

    void metaObjectListsTheMethodsInOrder();
    void freshEventIsUnconnectedAndUnmarked();
    void otherTypesHaveNoTitleAndNoContent();
    void titleIsThatOfTheTitleItem();
    void newIndexIsLoggedAndReportedBeforeItIsStored();
    void sameIndexIsNeitherLoggedNorReported();
    void importanceIsReportedEveryTimeBeforeItIsStored();
    void nextNodesStandInTheOrderOfConnecting();
    void newestConnectionGivesTheOutLine();
    void pressIsReportedBeforeTheNodeIsSelected_data();
    void pressIsReportedBeforeTheNodeIsSelected();
    void moveReportsThePlacesBeforeTheMove();
    void everyMoveIsReported();
    void socketReportsAreRelayed_data();
    void socketReportsAreRelayed();
    void slotsRelayTheirArguments();
    void socketDragNeitherSelectsNorMovesTheNode();
    void editingIsReportedAfterTheResize();
    void newsOfThePayloadLayOutBeforeTheyAreReported();
    void settingTheDescriptionIsNotReported();
    void editingTheTitleIsNotReported();
    void copyTakesDescriptionAndTypeWithoutAReport();
    void dyingWithTheFocusInATextIsQuiet_data();
    void dyingWithTheFocusInATextIsQuiet();
};

void tst_Node::metaObjectListsTheMethodsInOrder()
{
    const QMetaObject &meta = Node::staticMetaObject;
    QCOMPARE(
        ownMethods(meta),
        QStringList({"s_selected(Node*)", "s_moving(Node*)", "s_inSocketMove(QPointF)",
                     "s_outSocketMove(QPointF)", "s_socketClick(int,QPointF)", "s_socketClickDrag()",
                     "s_socketClickRelease()", "s_changed(Node*)", "s_indexChanged(Node*,int)",
                     "s_importanceChanged(Node*,bool)", "sl_socketClick(int,QPointF)", "sl_socketClickDrag()",
                     "sl_socketClickRelease()", "sl_updateSize()", "sl_changed()"}));
    for (int i = 0; i < 15; ++i) {
        QCOMPARE(meta.method(meta.methodOffset() + i).methodType(),
                 i < 10 ? QMetaMethod::Signal : QMetaMethod::Slot);
    }
    QCOMPARE(meta.superClass(), &QObject::staticMetaObject);
}

void tst_Node::freshEventIsUnconnectedAndUnmarked()
{
    const Node node(0);
    QCOMPARE(node.title(), QStringLiteral("Event"));
    QCOMPARE(description(node), QStringLiteral("Enter description"));
    QCOMPARE(node.getType(), 0);
    QCOMPARE(node.getIndex(), 0);
    QCOMPARE(node.getPrevIndex(), -1);
    QCOMPARE(node.hasInput(), false);
    QCOMPARE(node.prevNode(), nullptr);
    QCOMPARE(node.nextNodes().size(), std::size_t(0));
    QCOMPARE(node.inLine(), nullptr);
    QCOMPARE(node.outLine(), nullptr);
    QCOMPARE(node.isEndOfStory(), false);
    QCOMPARE(node.isImportant(), false);
    QCOMPARE(node.inSocket()->getType(), 0);
    QCOMPARE(node.outSocket()->getType(), 1);
    QCOMPARE(node.parentItem(), nullptr);
    QCOMPARE(node.parent(), nullptr);
    QCOMPARE(int(node.flags()), 3);
}

void tst_Node::otherTypesHaveNoTitleAndNoContent()
{
    const Node node(5);
    QCOMPARE(node.getType(), 5);
    QCOMPARE(node.title(), QString());
    QCOMPARE(node.payload()->getType(), 5);
    QCOMPARE(node.payload()->content(), nullptr);
}

void tst_Node::titleIsThatOfTheTitleItem()
{
    Node node(0);
    node.setNodeName(QStringLiteral("Storm"));
    QCOMPARE(node.title(), QStringLiteral("Storm"));
    QCOMPARE(node.nameItem()->toPlainText(), QStringLiteral("Storm"));
    node.nameItem()->setPlainText(QStringLiteral("Calm"));
    QCOMPARE(node.title(), QStringLiteral("Calm"));
}

void tst_Node::newIndexIsLoggedAndReportedBeforeItIsStored()
{
    Node node(0);
    QList<int> seen;
    connect(&node, &Node::s_indexChanged, &node,
            [&](Node *changed, int index) { seen << changed->getIndex() << index; });
    const LogCapture log;
    node.setIndex(7);
    QCOMPARE(log.lines(), QStringList({"Old node index  0  New node index  7"}));
    QCOMPARE(seen, QList<int>({0, 7}));
    QCOMPARE(node.getIndex(), 7);
}

void tst_Node::sameIndexIsNeitherLoggedNorReported()
{
    Node node(0);
    node.setIndex(7);
    const QSignalSpy changed(&node, &Node::s_indexChanged);
    const LogCapture log;
    node.setIndex(7);
    QCOMPARE(changed.count(), 0);
    QCOMPARE(log.lines(), QStringList());
}

void tst_Node::importanceIsReportedEveryTimeBeforeItIsStored()
{
    Node node(0);
    QList<bool> seen;
    connect(&node, &Node::s_importanceChanged, &node,
            [&](Node *changed, bool important) { seen << changed->isImportant() << important; });
    node.setImportant(true);
    QCOMPARE(node.isImportant(), true);
    node.setImportant(true);
    node.setImportant(false);
    QCOMPARE(node.isImportant(), false);
    QCOMPARE(seen, QList<bool>({false, true, true, true, true, false}));
}

void tst_Node::nextNodesStandInTheOrderOfConnecting()
{
    Node node(0);
    Node first(0);
    Node second(0);
    node.addNextNode(&first);
    node.addNextNode(&second);
    node.addNextNode(&first);
    QCOMPARE(node.nextNodes(), std::vector<Node *>({&first, &second, &first}));
    node.removeNextNode(&first);
    QCOMPARE(node.nextNodes(), std::vector<Node *>({&second}));
}

void tst_Node::newestConnectionGivesTheOutLine()
{
    Node node(0);
    Node first(0);
    Node second(0);
    ConnectionLine firstLine(QPointF(), QPointF(100, 0));
    ConnectionLine secondLine(QPointF(), QPointF(100, 0));
    first.setInLine(&firstLine);
    second.setInLine(&secondLine);
    node.addNextNode(&first);
    QCOMPARE(node.outLine(), &firstLine);
    node.addNextNode(&second);
    QCOMPARE(node.outLine(), &secondLine);
    node.removeNextNode(&second);
    QCOMPARE(node.outLine(), &firstLine);
}

void tst_Node::pressIsReportedBeforeTheNodeIsSelected_data()
{
    QTest::addColumn<Qt::MouseButton>("button");
    QTest::addColumn<bool>("selects");
    QTest::newRow("left") << Qt::LeftButton << true;
    QTest::newRow("middle") << Qt::MiddleButton << false;
}

void tst_Node::pressIsReportedBeforeTheNodeIsSelected()
{
    QFETCH(Qt::MouseButton, button);
    Canvas canvas;
    QList<bool> selectedThen;
    connect(canvas.node, &Node::s_selected, canvas.node,
            [&](Node *node) { selectedThen << (node == canvas.node && node->isSelected()); });
    canvas.mouse.press(canvas.onBody(), button);
    QCOMPARE(selectedThen, QList<bool>({false}));
    QTEST(canvas.node->isSelected(), "selects");
}

void tst_Node::moveReportsThePlacesBeforeTheMove()
{
    Canvas canvas;
    QStringList order;
    QList<QPointF> points;
    connect(canvas.node, &Node::s_moving, canvas.node, [&](Node *node) {
        order << QStringLiteral("moving");
        points << node->pos();
    });
    connect(canvas.node, &Node::s_inSocketMove, canvas.node, [&](QPointF point) {
        order << QStringLiteral("in");
        points << point;
    });
    connect(canvas.node, &Node::s_outSocketMove, canvas.node, [&](QPointF point) {
        order << QStringLiteral("out");
        points << point;
    });
    const QPointF input = canvas.node->inSocket()->sceneCentre();
    const QPointF output = canvas.node->outSocket()->sceneCentre();
    canvas.mouse.press(canvas.onBody());
    canvas.mouse.move(canvas.onBody() + QPointF(30, 20));
    QCOMPARE(order, QStringList({"moving", "in", "out"}));
    QCOMPARE(points, QList<QPointF>({QPointF(100, 50), input, output}));
    QCOMPARE(canvas.node->pos(), QPointF(130, 70));
    QCOMPARE(canvas.node->inSocket()->sceneCentre(), input + QPointF(30, 20));
    canvas.mouse.release(canvas.onBody());
}

void tst_Node::everyMoveIsReported()
{
    Canvas canvas;
    const QSignalSpy moving(canvas.node, &Node::s_moving);
    const QPointF start = canvas.onBody();
    canvas.mouse.press(start);
    for (int i = 1; i <= 3; ++i)
        canvas.mouse.move(start + QPointF(20 * i, 0));
    canvas.mouse.release(start + QPointF(60, 0));
    QCOMPARE(moving.count(), 3);
    QCOMPARE(moving.at(0).at(0).value<Node *>(), canvas.node);
    QCOMPARE(canvas.node->pos(), QPointF(160, 50));
}

void tst_Node::socketReportsAreRelayed_data()
{
    QTest::addColumn<int>("type");
    QTest::newRow("input") << int(SocketType::input);
    QTest::newRow("output") << int(SocketType::output);
}

void tst_Node::socketReportsAreRelayed()
{
    QFETCH(int, type);
    Canvas canvas;
    const Socket *socket = type == SocketType::input ? canvas.node->inSocket() : canvas.node->outSocket();
    const QSignalSpy clicked(canvas.node, &Node::s_socketClick);
    const QSignalSpy dragged(canvas.node, &Node::s_socketClickDrag);
    const QSignalSpy released(canvas.node, &Node::s_socketClickRelease);
    const QPointF point = socket->sceneCentre() + QPointF(2, 1);
    canvas.mouse.press(point);
    QCOMPARE(clicked.count(), 1);
    QCOMPARE(clicked.at(0).at(0).toInt(), type);
    QCOMPARE(clicked.at(0).at(1).toPointF(), point);
    canvas.mouse.move(point + QPointF(1, 0));
    canvas.mouse.move(point);
    QCOMPARE(dragged.count(), 2);
    QCOMPARE(released.count(), 0);
    canvas.mouse.release(point);
    QCOMPARE(released.count(), 1);
    QCOMPARE(clicked.count(), 1);
}

void tst_Node::slotsRelayTheirArguments()
{
    Node node(0);
    const QSignalSpy clicked(&node, &Node::s_socketClick);
    const QSignalSpy changed(&node, &Node::s_changed);
    node.sl_socketClick(9, QPointF(3, 4));
    QCOMPARE(clicked.at(0), QVariantList({9, QPointF(3, 4)}));
    node.sl_changed();
    QCOMPARE(changed.count(), 1);
    QCOMPARE(changed.at(0).at(0).value<Node *>(), &node);
}

void tst_Node::socketDragNeitherSelectsNorMovesTheNode()
{
    Canvas canvas;
    const QSignalSpy selected(canvas.node, &Node::s_selected);
    const QSignalSpy moving(canvas.node, &Node::s_moving);
    canvas.mouse.drag(canvas.node->outSocket()->sceneCentre(), QPointF(900, 700));
    QCOMPARE(selected.count(), 0);
    QCOMPARE(moving.count(), 0);
    QCOMPARE(canvas.node->isSelected(), false);
    QCOMPARE(canvas.node->pos(), QPointF(100, 50));
}

void tst_Node::editingIsReportedAfterTheResize()
{
    Desk desk;
    auto *node = new Node(0);
    desk.scene.addItem(node);
    const double before = node->boundingRect().height();
    QList<double> heights;
    connect(node, &Node::s_changed, node,
            [&](Node *changed) { heights << changed->boundingRect().height(); });
    desk.edit(node->payload()->eventContent()->descriptionItem());
    desk.key(Qt::Key_Return);
    QCOMPARE(heights.size(), 1);
    QVERIFY(heights.first() > before);
    QCOMPARE(heights.first(), node->boundingRect().height());
    desk.type(QStringLiteral("ab"));
    QCOMPARE(heights.size(), 3);
}

void tst_Node::newsOfThePayloadLayOutBeforeTheyAreReported()
{
    Node node(0);
    const QPointF place = node.outSocket()->pos();
    node.outSocket()->setPos(1, 2);
    QList<QPointF> places;
    connect(&node, &Node::s_changed, &node, [&](Node *changed) { places << changed->outSocket()->pos(); });
    emit node.payload()->s_dataChanged();
    QCOMPARE(places, QList<QPointF>({place}));
}

void tst_Node::settingTheDescriptionIsNotReported()
{
    Node node(0);
    const QSignalSpy changed(&node, &Node::s_changed);
    node.payload()->eventContent()->setDescription(QStringLiteral("Rain"));
    QCOMPARE(changed.count(), 0);
}

void tst_Node::editingTheTitleIsNotReported()
{
    Desk desk;
    auto *node = new Node(0);
    desk.scene.addItem(node);
    const QSignalSpy changed(node, &Node::s_changed);
    desk.edit(node->nameItem());
    desk.type(QStringLiteral("s"));
    QCOMPARE(node->title(), QStringLiteral("Events"));
    QCOMPARE(changed.count(), 0);
}

void tst_Node::copyTakesDescriptionAndTypeWithoutAReport()
{
    Node source(0);
    source.setNodeName(QStringLiteral("Storm"));
    source.payload()->eventContent()->setDescription(QStringLiteral("Rain\nand\nwind"));
    Node node(0);
    const QSignalSpy changed(&node, &Node::s_changed);
    node.copyDataFrom(source.payload());
    QCOMPARE(description(node), QStringLiteral("Rain\nand\nwind"));
    QCOMPARE(node.title(), QStringLiteral("Event"));
    QCOMPARE(node.boundingRect(), source.boundingRect());
    QCOMPARE(changed.count(), 0);

    const NodeData other(6, nullptr);
    node.copyDataFrom(&other);
    QCOMPARE(node.getType(), 6);
    QCOMPARE(description(node), QStringLiteral("Rain\nand\nwind"));
}

void tst_Node::dyingWithTheFocusInATextIsQuiet_data()
{
    QTest::addColumn<bool>("inTitle");
    QTest::addColumn<bool>("removedFirst");
    QTest::newRow("title") << true << false;
    QTest::newRow("description") << false << false;
    QTest::newRow("title, out of the scene first") << true << true;
    QTest::newRow("description, out of the scene first") << false << true;
}

void tst_Node::dyingWithTheFocusInATextIsQuiet()
{
    QFETCH(bool, inTitle);
    QFETCH(bool, removedFirst);
    Desk desk;
    auto *node = new Node(0);
    desk.scene.addItem(node);
    QGraphicsTextItem *text = node->nameItem();
    if (!inTitle)
        text = node->payload()->eventContent()->descriptionItem();
    desk.edit(text);
    desk.type(QStringLiteral("and more"));
    if (removedFirst)
        desk.scene.removeItem(node);
    delete node;
    QCOMPARE(desk.scene.focusItem(), nullptr);
    desk.type(QStringLiteral("into nothing"));
    QCOMPARE(desk.scene.items().size(), 0);
}

QTEST_MAIN(tst_Node)
#include "tst_node.moc"
