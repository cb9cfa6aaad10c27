#include "items/socket.h"

#include "items/itemtest.h"
#include "support/testsupport.h"

namespace {

/// A movable box with a socket of each kind, as a node has them.
struct Box
{
    QGraphicsScene scene{0, 0, 1000, 800};
    QGraphicsRectItem *body = scene.addRect(QRectF(0, 0, 231, 196), Qt::NoPen);
    Socket *input = new Socket(SocketType::input, body);
    Socket *output = new Socket(SocketType::output, body);
    SceneMouse mouse{scene};

    Box()
    {
        body->setFlags(QGraphicsItem::ItemIsMovable | QGraphicsItem::ItemIsSelectable);
        body->setPos(100, 50);
    }
};

/// Writes down the signals of a socket in the order of their arrival.
struct SignalLog
{
    QStringList lines;
    QPointF pressPoint;
    explicit SignalLog(Socket *socket)
    {
        QObject::connect(socket, &Socket::s_clicked, socket, [this](int type, QPointF point) {
            lines << QStringLiteral("clicked %1").arg(type);
            pressPoint = point;
        });
        QObject::connect(socket, &Socket::s_clickdrag, socket, [this] { lines << QStringLiteral("drag"); });
        QObject::connect(socket, &Socket::s_clickReleasedHere, socket,
                         [this] { lines << QStringLiteral("released"); });
    }
};

} // namespace

class tst_Socket : public TestCase
{
    Q_OBJECT

private slots:
    void metaObjectListsTheSignalsInOrder();
    void startsUnconnected();
    void acceptsHoverAndDrops();
    void isPlacedOnTheEdgeOfItsParent_data();
    void isPlacedOnTheEdgeOfItsParent();
    void knowsItsMiddleInTheScene();
    void keepsTheSocketAtTheOtherEnd();
    void colourTellsWhetherAConnectionIsAttached_data();
    void colourTellsWhetherAConnectionIsAttached();
    void paintsRoundedCornersAndNoOutline();
    void pressAndReleaseReportTheClickThenTheRelease();
    void everyMoveWhilePressedReportsADrag();
    void moveWithoutAPressReportsNothing();
    void releaseCountsOnlyInsideTheSocket_data();
    void releaseCountsOnlyInsideTheSocket();
    void everyMouseButtonStartsAPress_data();
    void everyMouseButtonStartsAPress();
    void pressReportsTheTypeAndTheScenePosition_data();
    void pressReportsTheTypeAndTheScenePosition();
    void pressNeitherSelectsNorMovesTheParent();
};

void tst_Socket::metaObjectListsTheSignalsInOrder()
{
    const QMetaObject &meta = Socket::staticMetaObject;
    QCOMPARE(ownMethods(meta),
             QStringList({"s_clicked(int,QPointF)", "s_clickdrag()", "s_clickReleasedHere()"}));
    for (int i = meta.methodOffset(); i < meta.methodCount(); ++i)
        QCOMPARE(meta.method(i).methodType(), QMetaMethod::Signal);
    QCOMPARE(meta.superClass(), &QObject::staticMetaObject);
}

void tst_Socket::startsUnconnected()
{
    const Box box;
    QCOMPARE(box.input->getType(), 0);
    QCOMPARE(box.output->getType(), 1);
    QCOMPARE(box.input->parentItem(), box.body);
    QCOMPARE(box.input->parent(), nullptr);
    QCOMPARE(box.input->getIsConnected(), false);
    QCOMPARE(box.input->connectedSocket(), nullptr);
    QCOMPARE(box.input->boundingRect(), QRectF(0, 0, 10, 22));
}

void tst_Socket::acceptsHoverAndDrops()
{
    const Box box;
    QVERIFY(box.input->acceptHoverEvents());
    QVERIFY(box.input->acceptDrops());
}

void tst_Socket::isPlacedOnTheEdgeOfItsParent_data()
{
    QTest::addColumn<QSizeF>("body");
    QTest::addColumn<QPointF>("input");
    QTest::addColumn<QPointF>("output");
    QTest::newRow("first size of a node") << QSizeF(231, 196) << QPointF(0, 98) << QPointF(221, 98);
    QTest::newRow("odd height is truncated") << QSizeF(231, 197) << QPointF(0, 98) << QPointF(221, 98);
    QTest::newRow("fractions") << QSizeF(230.5, 31.9) << QPointF(0, 15) << QPointF(220.5, 15);
}

void tst_Socket::isPlacedOnTheEdgeOfItsParent()
{
    QFETCH(QSizeF, body);
    QGraphicsRectItem parent(QRectF(QPointF(), body));
    parent.setPen(Qt::NoPen);
    const Socket *input = new Socket(SocketType::input, &parent);
    const Socket *output = new Socket(SocketType::output, &parent);
    QTEST(input->pos(), "input");
    QTEST(output->pos(), "output");
}

void tst_Socket::knowsItsMiddleInTheScene()
{
    const Box box;
    QCOMPARE(box.input->sceneCentre(), QPointF(105, 159));
    QCOMPARE(box.output->sceneCentre(), QPointF(326, 159));
    box.body->moveBy(-30, 7);
    QCOMPARE(box.input->sceneCentre(), QPointF(75, 166));
}

void tst_Socket::keepsTheSocketAtTheOtherEnd()
{
    const Box box;
    box.input->setConnectedSocket(box.output);
    QCOMPARE(box.input->connectedSocket(), box.output);
    QCOMPARE(box.input->getIsConnected(), false);
    box.input->setConnectedSocket(nullptr);
    QCOMPARE(box.input->connectedSocket(), nullptr);
}

void tst_Socket::colourTellsWhetherAConnectionIsAttached_data()
{
    QTest::addColumn<int>("type");
    QTest::newRow("input") << int(SocketType::input);
    QTest::newRow("output") << int(SocketType::output);
}

void tst_Socket::colourTellsWhetherAConnectionIsAttached()
{
    QFETCH(int, type);
    Box box;
    Socket *socket = type == SocketType::input ? box.input : box.output;
    const QPointF middle = socket->sceneCentre();
    QCOMPARE(colorAt(box.scene, middle), QColor("#B4A523"));
    socket->setIsConnected(true);
    QCOMPARE(socket->getIsConnected(), true);
    QCOMPARE(colorAt(box.scene, middle), QColor(Qt::yellow));
    socket->setIsConnected(false);
    QCOMPARE(colorAt(box.scene, middle), QColor("#B4A523"));
}

void tst_Socket::paintsRoundedCornersAndNoOutline()
{
    Box box;
    const QImage image = painted(box.scene, box.input->sceneBoundingRect().adjusted(-2, -2, 2, 2));
    const QColor fill("#B4A523");
    QCOMPARE(image.pixelColor(2, 13), fill); // the left edge, in the middle
    QCOMPARE(image.pixelColor(11, 13), fill);
    QCOMPARE(image.pixelColor(7, 2), fill);
    QCOMPARE(image.pixelColor(7, 23), fill);
    for (const QPoint &corner : {QPoint(2, 2), QPoint(11, 2), QPoint(2, 23), QPoint(11, 23)})
        QCOMPARE(image.pixelColor(corner).alpha(), 0);
    QCOMPARE(image.pixelColor(1, 13).alpha(), 0);
    QCOMPARE(image.pixelColor(12, 13).alpha(), 0);
    QCOMPARE(image.pixelColor(7, 24).alpha(), 0);
}

void tst_Socket::pressAndReleaseReportTheClickThenTheRelease()
{
    Box box;
    const SignalLog log(box.output);
    box.mouse.press(box.output->sceneCentre());
    QCOMPARE(log.lines, QStringList({"clicked 1"}));
    box.mouse.release(box.output->sceneCentre());
    QCOMPARE(log.lines, QStringList({"clicked 1", "released"}));
}

void tst_Socket::everyMoveWhilePressedReportsADrag()
{
    Box box;
    const SignalLog log(box.input);
    const QPointF middle = box.input->sceneCentre();
    box.mouse.press(middle);
    box.mouse.move(middle + QPointF(1, 1));
    box.mouse.move(middle + QPointF(300, 1));
    box.mouse.move(middle);
    box.mouse.release(middle);
    QCOMPARE(log.lines, QStringList({"clicked 0", "drag", "drag", "drag", "released"}));
}

void tst_Socket::moveWithoutAPressReportsNothing()
{
    Box box;
    const SignalLog log(box.input);
    box.mouse.move(box.input->sceneCentre(), Qt::NoButton);
    QCOMPARE(log.lines, QStringList());
}

void tst_Socket::releaseCountsOnlyInsideTheSocket_data()
{
    QTest::addColumn<QPointF>("offset"); // from the socket's top left corner
    QTest::addColumn<bool>("counts");
    QTest::newRow("middle") << QPointF(5, 11) << true;
    QTest::newRow("near the edge") << QPointF(9, 21) << true;
    QTest::newRow("right of it") << QPointF(11, 11) << false;
    QTest::newRow("below it") << QPointF(5, 23) << false;
    QTest::newRow("far away") << QPointF(400, 300) << false;
}

void tst_Socket::releaseCountsOnlyInsideTheSocket()
{
    QFETCH(QPointF, offset);
    QFETCH(bool, counts);
    Box box;
    const QSignalSpy released(box.input, &Socket::s_clickReleasedHere);
    box.mouse.press(box.input->sceneCentre());
    box.mouse.release(box.input->scenePos() + offset);
    QCOMPARE(released.count(), counts ? 1 : 0);
}

void tst_Socket::everyMouseButtonStartsAPress_data()
{
    QTest::addColumn<Qt::MouseButton>("button");
    QTest::newRow("left") << Qt::LeftButton;
    QTest::newRow("right") << Qt::RightButton;
    QTest::newRow("middle") << Qt::MiddleButton;
    QTest::newRow("back") << Qt::BackButton;
}

void tst_Socket::everyMouseButtonStartsAPress()
{
    QFETCH(Qt::MouseButton, button);
    Box box;
    const SignalLog log(box.input);
    box.mouse.press(box.input->sceneCentre(), button);
    box.mouse.release(box.input->sceneCentre(), button);
    QCOMPARE(log.lines, QStringList({"clicked 0", "released"}));
}

void tst_Socket::pressReportsTheTypeAndTheScenePosition_data()
{
    QTest::addColumn<int>("type");
    QTest::newRow("input") << int(SocketType::input);
    QTest::newRow("output") << int(SocketType::output);
}

void tst_Socket::pressReportsTheTypeAndTheScenePosition()
{
    QFETCH(int, type);
    Box box;
    Socket *socket = type == SocketType::input ? box.input : box.output;
    const QSignalSpy clicked(socket, &Socket::s_clicked);
    const QPointF point = socket->scenePos() + QPointF(2, 3);
    box.mouse.press(point);
    QCOMPARE(clicked.count(), 1);
    QCOMPARE(clicked.at(0).at(0).toInt(), type);
    QCOMPARE(clicked.at(0).at(1).toPointF(), point);
    box.mouse.release(point);
}

void tst_Socket::pressNeitherSelectsNorMovesTheParent()
{
    Box box;
    const QPointF socketPlace = box.output->pos();
    box.mouse.press(box.output->sceneCentre());
    QCOMPARE(box.scene.mouseGrabberItem(), box.output);
    box.mouse.move(QPointF(600, 400));
    box.mouse.release(QPointF(600, 400));
    QCOMPARE(box.body->pos(), QPointF(100, 50));
    QCOMPARE(box.body->isSelected(), false);
    QCOMPARE(box.output->pos(), socketPlace);
    QCOMPARE(box.scene.mouseGrabberItem(), nullptr);
}

QTEST_MAIN(tst_Socket)
#include "tst_socket.moc"
