#include "items/connectionline.h"
#include "items/eventdata.h"
#include "items/itemtest.h"
#include "items/node.h"
#include "items/nodedata.h"
#include "items/socket.h"
#include "items/stlineedit.h"
#include "items/stnodename.h"
#include "support/testsupport.h"

#include <QDataStream>
#include <QGraphicsPathItem>
#include <QTextDocument>
#include <QTextOption>

namespace {

const QString longTitle =
    QStringLiteral("The morning on which nobody at all came down to the harbour, not even "
                   "the harbour master");

STLineEdit *descriptionOf(const Node *node) { return node->payload()->eventContent()->descriptionItem(); }

QGraphicsPathItem *headerOf(const Node *node)
{
    const QList<QGraphicsItem *> children = node->childItems();
    for (QGraphicsItem *child : children) {
        if (auto *path = dynamic_cast<QGraphicsPathItem *>(child))
            return path;
    }
    return nullptr;
}

QPointF startOf(const ConnectionLine *line) { return line->path().elementAt(0); }
QPointF endOf(const ConnectionLine *line) { return line->path().currentPosition(); }

/// A node in a window, fed by one node and feeding two others; the lines are not placed yet.
struct GraphDesk : Desk
{
    Node *node = new Node(0);
    Node upstream{0};
    Node first{0};
    Node second{0};
    ConnectionLine *in = new ConnectionLine(QPointF(1, 1), QPointF(2, 2));
    ConnectionLine *firstOut = new ConnectionLine(QPointF(3, 3), QPointF(4, 4));
    ConnectionLine *secondOut = new ConnectionLine(QPointF(5, 5), QPointF(6, 6));

    GraphDesk()
    {
        scene.addItem(node);
        node->setPos(100, 50);
        for (ConnectionLine *line : {in, firstOut, secondOut})
            scene.addItem(line);
        node->setPrevNode(&upstream);
        node->setInLine(in);
        node->setHasInput(true);
        first.setInLine(firstOut);
        second.setInLine(secondOut);
        node->addNextNode(&first);
        node->addNextNode(&second);
    }
};

/// Compares with what the node's size must be for the text it shows.
void compareLayout(const Node *node)
{
    const QSizeF text = descriptionOf(node)->document()->size();
    const double panelWidth = qMax(400.0, descriptionOf(node)->document()->idealWidth());
    const int width = int(10 + 10 + (panelWidth + 20) + 15);
    const int height = int(34 + (text.height() + 20) + 15);
    QCOMPARE(node->boundingRect(), QRectF(0, 0, width, height));
    QCOMPARE(node->inSocket()->pos(), QPointF(0, height / 2));           // NOLINT(bugprone-integer-division)
    QCOMPARE(node->outSocket()->pos(), QPointF(width - 10, height / 2)); // NOLINT(bugprone-integer-division)
    const QRectF panel = node->mapRectFromItem(descriptionOf(node), descriptionOf(node)->boundingRect());
    QVERIFY(node->boundingRect().contains(panel));
    QCOMPARE(panel.size(), QSizeF(panelWidth, text.height()));
}

void loadDescription(Node *node, const QString &text)
{
    QByteArray bytes;
    QDataStream out(&bytes, QIODevice::WriteOnly);
    out << QStringLiteral("Event") << node->pos() << qint32(0) << qint32(-1) << qint32(0) << qint32(0)
        << text;
    QDataStream in(bytes);
    node->openFromStream(in);
}

} // namespace

class tst_Node_Layout : public TestCase
{
    Q_OBJECT

private slots:
    void freshEventFitsItsPayload();
    void partsLieAboveOneAnother();
    void headerCoversTheTopWithRoundedCorners();
    void headerOfAnotherTypeIsEmpty();
    void headerAndTitleFollowTheWidth();
    void sizesAreTruncatedOnce();
    void everythingFollowsTheTextAtOnce_data();
    void everythingFollowsTheTextAtOnce();
    void wideWordWidensTheNode();
    void lineEndsLieOnTheSockets();
    void lineStaysWithoutAnInput();
    void downstreamNodeWithoutALineIsPassedOver();
    void updatingTwiceChangesNothing();
    void grownNodeIsFoundWhereItIsPainted();
    void bodyColourTellsTheState_data();
    void bodyColourTellsTheState();
    void bodyHasRoundedCornersAndNoOutline();
    void headerIsPaintedOverTheBody();
    void endOfStoryIsRepainted();
    void longTitleStaysInTheHeader();
};

void tst_Node_Layout::freshEventFitsItsPayload()
{
    const Node node(0);
    QCOMPARE(node.boundingRect().width(), 455.0);
    QCOMPARE(node.payload()->pos(), QPointF(25, 49));
    QCOMPARE(node.inSocket()->x(), 0.0);
    QCOMPARE(node.outSocket()->x(), 445.0);
    QCOMPARE(node.nameItem()->pos(), QPointF(15, 3));
    compareLayout(&node);
}

void tst_Node_Layout::partsLieAboveOneAnother()
{
    const Node node(0);
    QCOMPARE(node.zValue(), 1.0);
    QCOMPARE(headerOf(&node)->zValue(), 2.0);
    QCOMPARE(node.payload()->zValue(), 2.0);
    QCOMPARE(node.nameItem()->zValue(), 3.0);
    QCOMPARE(node.inSocket()->zValue(), 3.0);
    QCOMPARE(node.outSocket()->zValue(), 3.0);
    QCOMPARE(node.childItems().size(), 5);
}

void tst_Node_Layout::headerCoversTheTopWithRoundedCorners()
{
    const Node node(0);
    const QGraphicsPathItem *header = headerOf(&node);
    QPainterPath expected(QPointF(0, 34));
    expected.lineTo(0, 10);
    expected.quadTo(0, 0, 10, 0);
    expected.lineTo(445, 0);
    expected.quadTo(455, 0, 455, 10);
    expected.lineTo(455, 34);
    expected.closeSubpath();
    QCOMPARE(header->path(), expected);
    QCOMPARE(header->pos(), QPointF(0, 0));
    QCOMPARE(header->pen().style(), Qt::NoPen);
    QCOMPARE(header->brush(), QBrush(QColor("#8556E9")));
}

void tst_Node_Layout::headerOfAnotherTypeIsEmpty()
{
    const Node node(5);
    QCOMPARE(headerOf(&node)->brush().style(), Qt::NoBrush);
    QCOMPARE(headerOf(&node)->pen().style(), Qt::NoPen);
}

void tst_Node_Layout::headerAndTitleFollowTheWidth()
{
    Node node(0);
    descriptionOf(&node)->setTextWidth(500);
    QCOMPARE(node.boundingRect().width(), 555.0);
    QCOMPARE(headerOf(&node)->path().boundingRect(), QRectF(0, 0, 555, 34));
    node.setNodeName(QString(200, QLatin1Char('m')));
    QCOMPARE(node.nameItem()->boundingRect().width(), 525.0); // a margin of 15 on both sides
}

void tst_Node_Layout::sizesAreTruncatedOnce()
{
    Node node(0);
    descriptionOf(&node)->setRect(QRectF(0, 0, 400.9, 31.9)); // as if a font gave these
    QCOMPARE(node.boundingRect(), QRectF(0, 0, 455, 100));
    QCOMPARE(node.outSocket()->pos(), QPointF(445, 50));
    descriptionOf(&node)->setRect(QRectF(0, 0, 401, 32.99));
    QCOMPARE(node.boundingRect(), QRectF(0, 0, 456, 101));
    QCOMPARE(node.outSocket()->pos(), QPointF(446, 50)); // half of an odd height, truncated
}

void tst_Node_Layout::everythingFollowsTheTextAtOnce_data()
{
    QTest::addColumn<QString>("way");
    for (const char *way :
         {"set", "set on the item", "typed", "undone", "redone", "loaded", "copied", "deleted"})
        QTest::newRow(way) << QString::fromLatin1(way);
}

void tst_Node_Layout::everythingFollowsTheTextAtOnce()
{
    QFETCH(QString, way);
    const QString tall = QStringLiteral("One\ntwo\nthree\nfour");
    GraphDesk desk;
    STLineEdit *text = descriptionOf(desk.node);
    desk.edit(text);
    if (way == QLatin1String("undone") || way == QLatin1String("redone"))
        desk.key(Qt::Key_Return);
    if (way == QLatin1String("redone"))
        text->document()->undo();
    if (way == QLatin1String("deleted")) {
        text->setText(tall);
        desk.edit(text);
    }
    const QRectF before = desk.node->boundingRect();

    if (way == QLatin1String("set")) {
        desk.node->payload()->eventContent()->setDescription(tall);
    } else if (way == QLatin1String("set on the item")) {
        text->setText(tall);
    } else if (way == QLatin1String("typed")) {
        desk.key(Qt::Key_Return);
    } else if (way == QLatin1String("undone")) {
        desk.key(Qt::Key_Z, Qt::ControlModifier);
    } else if (way == QLatin1String("redone")) {
        desk.key(Qt::Key_Z, Qt::ControlModifier | Qt::ShiftModifier);
    } else if (way == QLatin1String("loaded")) {
        loadDescription(desk.node, tall);
    } else if (way == QLatin1String("copied")) {
        desk.upstream.payload()->eventContent()->setDescription(tall);
        desk.node->copyDataFrom(desk.upstream.payload());
    } else {
        desk.key(Qt::Key_A, Qt::ControlModifier);
        desk.key(Qt::Key_Backspace);
    }

    QVERIFY(desk.node->boundingRect() != before);
    compareLayout(desk.node);
    QCOMPARE(startOf(desk.in), desk.node->inSocket()->sceneCentre());
    QCOMPARE(endOf(desk.in), QPointF(2, 2));
    QCOMPARE(endOf(desk.firstOut), desk.node->outSocket()->sceneCentre());
    QCOMPARE(endOf(desk.secondOut), desk.node->outSocket()->sceneCentre());
    QCOMPARE(startOf(desk.firstOut), QPointF(3, 3));
}

void tst_Node_Layout::wideWordWidensTheNode()
{
    GraphDesk desk;
    QTextOption wholeWords;
    wholeWords.setWrapMode(QTextOption::WordWrap);
    descriptionOf(desk.node)->document()->setDefaultTextOption(wholeWords);
    const double before = desk.node->outSocket()->x();
    desk.node->payload()->eventContent()->setDescription(QString(60, QLatin1Char('W')));
    QVERIFY(desk.node->outSocket()->x() > before + 100);
    compareLayout(desk.node);
    QCOMPARE(endOf(desk.firstOut), desk.node->outSocket()->sceneCentre());
}

void tst_Node_Layout::lineEndsLieOnTheSockets()
{
    GraphDesk desk;
    desk.node->setPos(-40, 300);
    desk.node->updateLines();
    const double middle = desk.node->inSocket()->y() + 11;
    QCOMPARE(startOf(desk.in), QPointF(-40 + 5, 300 + middle));
    QCOMPARE(endOf(desk.firstOut), QPointF(-40 + 450, 300 + middle));
    QCOMPARE(endOf(desk.secondOut), QPointF(-40 + 450, 300 + middle));
}

void tst_Node_Layout::lineStaysWithoutAnInput()
{
    GraphDesk desk;
    desk.node->setHasInput(false);
    desk.node->sl_updateSize();
    QCOMPARE(startOf(desk.in), QPointF(1, 1));
    QCOMPARE(endOf(desk.firstOut), desk.node->outSocket()->sceneCentre());
}

void tst_Node_Layout::downstreamNodeWithoutALineIsPassedOver()
{
    GraphDesk desk;
    desk.first.setInLine(nullptr);
    desk.node->sl_updateSize();
    QCOMPARE(endOf(desk.firstOut), QPointF(4, 4));
    QCOMPARE(endOf(desk.secondOut), desk.node->outSocket()->sceneCentre());
}

void tst_Node_Layout::updatingTwiceChangesNothing()
{
    Node node(0);
    const QRectF body = node.boundingRect();
    node.sl_updateSize();
    QCOMPARE(node.boundingRect(), body);
    QCOMPARE(node.payload()->pos(), QPointF(25, 49));
}

void tst_Node_Layout::grownNodeIsFoundWhereItIsPainted()
{
    GraphDesk desk;
    const QPointF below = desk.node->sceneBoundingRect().bottomLeft() + QPointF(4, 40);
    QCOMPARE(desk.scene.itemAt(below, QTransform()), nullptr); // the scene has its index now
    descriptionOf(desk.node)->setText(QStringLiteral("One\ntwo\nthree\nfour\nfive"));
    QCOMPARE(desk.scene.itemAt(below, QTransform()), desk.node);
    QCOMPARE(colorAt(desk.scene, below), QColor("#D9D9D9"));
    descriptionOf(desk.node)->setText(QString());
    QCOMPARE(desk.scene.itemAt(below, QTransform()), nullptr);
}

void tst_Node_Layout::bodyColourTellsTheState_data()
{
    QTest::addColumn<bool>("selected");
    QTest::addColumn<bool>("important");
    QTest::addColumn<bool>("endOfStory");
    QTest::addColumn<QColor>("color");
    QTest::newRow("none") << false << false << false << QColor("#D9D9D9");
    QTest::newRow("end of story") << false << false << true << QColor("#D6B4FC");
    QTest::newRow("important") << false << true << false << QColor("#ADD8E6");
    QTest::newRow("important end of story") << false << true << true << QColor("#ADD8E6");
    QTest::newRow("selected") << true << false << false << QColor("#EBF400");
    QTest::newRow("selected end of story") << true << false << true << QColor("#EBF400");
    QTest::newRow("selected and important") << true << true << false << QColor("#EBF400");
    QTest::newRow("everything") << true << true << true << QColor("#EBF400");
}

void tst_Node_Layout::bodyColourTellsTheState()
{
    QFETCH(bool, selected);
    QFETCH(bool, important);
    QFETCH(bool, endOfStory);
    GraphDesk desk;
    desk.node->setSelected(selected);
    desk.node->setImportant(important);
    desk.node->setIsEndOfStory(endOfStory);
    QTEST(colorAt(desk.scene, desk.node->scenePos() + QPointF(12, 60)), "color");
}

void tst_Node_Layout::bodyHasRoundedCornersAndNoOutline()
{
    GraphDesk desk;
    desk.node->setSelected(true); // Qt's own selection frame is not wanted either
    desk.in->hide();
    desk.firstOut->hide();
    desk.secondOut->hide();
    const QImage image = painted(desk.scene, desk.node->sceneBoundingRect());
    const int right = image.width() - 1;
    const int bottom = image.height() - 1;
    for (const QPoint &corner : {QPoint(0, 0), QPoint(right, 0), QPoint(0, bottom), QPoint(right, bottom)})
        QCOMPARE(image.pixelColor(corner).alpha(), 0);
    for (int x = 12; x < right - 12; ++x)
        QCOMPARE(image.pixelColor(x, bottom), QColor("#EBF400"));
    for (int y = 36; y < image.height() / 2 - 2; ++y)
        QCOMPARE(image.pixelColor(0, y), QColor("#EBF400"));
}

void tst_Node_Layout::headerIsPaintedOverTheBody()
{
    GraphDesk desk;
    desk.node->setSelected(true);
    const QPointF left = desk.node->scenePos() + QPointF(3, 0);
    QCOMPARE(colorAt(desk.scene, left + QPointF(0, 20)), QColor("#8556E9"));
    QCOMPARE(colorAt(desk.scene, left + QPointF(0, 33)), QColor("#8556E9"));
    QCOMPARE(colorAt(desk.scene, left + QPointF(0, 34)), QColor("#EBF400"));
    QCOMPARE(colorAt(desk.scene, left + QPointF(448, 33)), QColor("#8556E9"));
}

void tst_Node_Layout::endOfStoryIsRepainted()
{
    GraphDesk desk;
    QSignalSpy changed(&desk.scene, &QGraphicsScene::changed);
    desk.node->update(); // what was still to be painted is told with it
    QTRY_VERIFY(!changed.isEmpty());
    changed.clear();
    desk.node->setIsEndOfStory(true);
    QTRY_VERIFY(!changed.isEmpty());
}

// Longer than the header, it would run over the canvas beside its node.
void tst_Node_Layout::longTitleStaysInTheHeader()
{
    GraphDesk desk;
    const QRectF beside(desk.node->scenePos() + QPointF(455, 0), QSizeF(300, 34));
    const QImage canvas = painted(desk.scene, beside);
    desk.node->setNodeName(longTitle);
    QCOMPARE(painted(desk.scene, beside), canvas);
    QCOMPARE(desk.node->nameItem()->boundingRect().width(), 425.0);
    QVERIFY(desk.node->nameItem()->boundingRect().height() + 3 <= 34);
    QCOMPARE(desk.node->nameItem()->toolTip(), longTitle);
    desk.edit(desk.node->nameItem());
    QVERIFY(painted(desk.scene, beside) != canvas);
    desk.node->nameItem()->clearFocus();
    QCOMPARE(painted(desk.scene, beside), canvas);
    QCOMPARE(desk.node->title(), longTitle);
}

QTEST_MAIN(tst_Node_Layout)
#include "tst_node_layout.moc"
