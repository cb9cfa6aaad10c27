#include "app/badfiles.h"

#include <QScrollBar>
#include <QSignalSpy>
#include <QWheelEvent>

#include <cmath>
#include <memory>

namespace {

const QString nearTitle = QStringLiteral("near");

/// A shown window with an event at an ordinary place, which is the end of the story, and events far away.
struct FarWindow
{
    explicit FarWindow(const std::vector<QPointF> &places, bool connected = true)
    {
        Record first{nearTitle, QPointF(300, 200), 0};
        first.endOfStory = true;
        std::vector<Record> events{first};
        for (const QPointF &place : places) {
            const int index = int(events.size());
            events.push_back({QStringLiteral("far"), place, index, connected ? index - 1 : -1});
        }
        bytes = documentBytes({events});
        window().resize(1200, 800);
        window().show();
        QVERIFY(QTest::qWaitForWindowExposed(&window()));
        settle();
        QCOMPARE(opener.open(bytes), QString());
        settle();
        drawAll();
    }

    MainWindow &window() { return opener.window(); }
    NodegraphView *view() { return window().views().front(); }
    NodegraphScene *scene() { return view()->nodegraphScene(); }
    Node *nearNode()
    {
        const std::vector<Node *> &nodes = scene()->nodes();
        const auto found = std::find_if(nodes.begin(), nodes.end(),
                                        [](const Node *node) { return node->title() == nearTitle; });
        return found == nodes.end() ? nullptr : *found;
    }
    Node *farNode() { return scene()->nodes().back(); }

    static void settle()
    {
        QCoreApplication::processEvents();
        QCoreApplication::processEvents(); // what the first round has posted
    }
    void drawAll() { QVERIFY(!window().grab().isNull()); }

    /// View > Frame with that node as the current one, or with all if there is none.
    void frame(Node *node)
    {
        if (node)
            scene()->sl_selectCurrentNode(node);
        else
            scene()->sl_deselectCurrentNode();
        actionOf(window(), "actionFrame")->trigger();
        settle();
        drawAll();
    }

    void wheel(int delta)
    {
        const QPointF middle = view()->viewport()->rect().center();
        QWheelEvent event(middle, view()->viewport()->mapToGlobal(middle), QPoint(), QPoint(0, delta),
                          Qt::NoButton, Qt::NoModifier, Qt::NoScrollPhase, false);
        QCoreApplication::sendEvent(view()->viewport(), &event);
        settle();
        drawAll();
    }

    void send(QEvent::Type type, QPointF pos, Qt::MouseButton button, Qt::MouseButtons buttons)
    {
        QMouseEvent event(type, pos, view()->viewport()->mapToGlobal(pos), button, buttons, Qt::NoModifier);
        QCoreApplication::sendEvent(view()->viewport(), &event);
    }
    void drag(QPoint from, QPoint to, Qt::MouseButton button = Qt::LeftButton)
    {
        send(QEvent::MouseMove, from, Qt::NoButton, Qt::NoButton);
        send(QEvent::MouseButtonPress, from, button, button);
        send(QEvent::MouseMove, (from + to) / 2, Qt::NoButton, button);
        drawAll();
        send(QEvent::MouseMove, to, Qt::NoButton, button);
        send(QEvent::MouseButtonRelease, to, button, Qt::NoButton);
        settle();
        drawAll();
    }

    /// A point of the node's header that a press takes the node by.
    QPoint handleOf(const Node *node)
    {
        return view()->mapFromScene(node->mapToScene(QPointF(node->boundingRect().width() - 30, 20)));
    }

    /// In pixels of the viewport, but not whole ones: those of a far event do not fit into numbers.
    QRectF shownRect(const Node *node)
    {
        return view()->viewportTransform().mapRect(node->mapRectToScene(node->boundingRect()));
    }

    bool isShownWhole(const Node *node)
    {
        const QRectF shown = shownRect(node);
        return shown.width() > 20 && QRectF(view()->viewport()->rect()).contains(shown);
    }

    /// Whether the view still shows something somewhere.
    bool isSound()
    {
        const QTransform transform = view()->transform();
        const QPointF middle = view()->mapToScene(view()->viewport()->rect().center());
        return std::isfinite(transform.m11()) && transform.m11() > 0 && std::isfinite(transform.dx()) &&
               std::isfinite(middle.x()) && std::isfinite(middle.y());
    }

    /// Whether that point of the viewport shows canvas only, with a few pixels to spare.
    bool showsCanvas(QPoint point)
    {
        const std::vector<Node *> &nodes = scene()->nodes();
        return std::none_of(nodes.begin(), nodes.end(), [&](const Node *node) {
            return shownRect(node).adjusted(-9, -9, 9, 9).contains(point);
        });
    }

    QByteArray bytes;
    FileOpener opener;
};

} // namespace

class tst_BadFilesFarEvents : public QObject
{
    Q_OBJECT

private slots:
    void init()
    {
        failOnWarningsOfTheProgram();
        QFETCH(const std::vector<QPointF>, places);
        QFETCH(const bool, connected);
        far = std::make_unique<FarWindow>(places, connected);
    }
    void cleanup()
    {
        const QStringList warnings = far->opener.takeWarnings();
        far.reset();
        flushDeferredDeletes();
        QCOMPARE(warnings, QStringList());
    }

    void windowIsShownAndSaved_data() { places(); }
    void windowIsShownAndSaved();
    void viewComesBackToTheNearEvent_data() { places(); }
    void viewComesBackToTheNearEvent();
    void farEventIsFramed_data() { places(); }
    void farEventIsFramed();
    void wheelAndZoomWork_data() { places(); }
    void wheelAndZoomWork();
    void nearEventIsDragged_data() { places(); }
    void nearEventIsDragged();
    void dragOnTheCanvasMovesNoEvent_data() { places(); }
    void dragOnTheCanvasMovesNoEvent();
    void eventIsAddedBehindTheFarOne_data() { places(); }
    void eventIsAddedBehindTheFarOne();
    void everythingElseIsTried_data() { places(); }
    void everythingElseIsTried();

private:
    static void places()
    {
        QTest::addColumn<std::vector<QPointF>>("places");
        QTest::addColumn<bool>("connected");
        const auto rows = [](const QByteArray &name, const std::vector<QPointF> &places) {
            QTest::newRow(name.constData()) << places << true;
            if (isExhaustive() || places.size() > 1)
                QTest::newRow(QByteArray(name + ", unconnected").constData()) << places << false;
        };
        for (const double far : {1e8, 1e16, 1e154, 1e300, 1.7e308, -1.7e308})
            rows("at " + QByteArray::number(far), {QPointF(far, far)});
        if (isExhaustive()) {
            for (const double far : {1e5, 1e6, 1e10, 1e12, 1e38, 1e39, 1e100, -1e300})
                rows("at " + QByteArray::number(far), {QPointF(far, far)});
        }
        rows("far right", {QPointF(1e300, 200)});
        rows("far down", {QPointF(300, 1e300)});
        rows("far apart", {QPointF(-1e300, 0), QPointF(1e300, 0)});
        rows("at opposite ends", {QPointF(-1.7e308, -1.7e308), QPointF(1.7e308, 1.7e308)});
        rows("next to nothing", {QPointF(5e-324, -5e-324)});
    }

    PrivateHome home;
    std::unique_ptr<FarWindow> far;
};

void tst_BadFilesFarEvents::windowIsShownAndSaved()
{
    QVERIFY(far->isSound());
    QCOMPARE(far->opener.bytes().toHex(), far->bytes.toHex());
}

void tst_BadFilesFarEvents::viewComesBackToTheNearEvent()
{
    far->frame(far->nearNode());
    QVERIFY(far->isSound());
    QVERIFY(far->isShownWhole(far->nearNode()));
    far->frame(nullptr); // all of them
    QVERIFY(far->isSound());
    far->frame(far->farNode());
    QVERIFY(far->isSound());
    far->frame(far->nearNode());
    QVERIFY(far->isSound());
    QVERIFY(far->isShownWhole(far->nearNode()));
    actionOf(far->window(), "actionZoom_to_100")->trigger();
    QCOMPARE(far->view()->transform().m11(), 1.0);
    QVERIFY(far->isSound());
}

// Where an event is too far for whole pixels, the view need not come there, but it stays a view.
void tst_BadFilesFarEvents::farEventIsFramed()
{
    far->frame(far->farNode());
    QVERIFY(far->isSound());
    actionOf(far->window(), "actionZoom_to_100")->trigger();
    QVERIFY(far->isSound());
    QCOMPARE(far->opener.bytes().toHex(), far->bytes.toHex());
}

void tst_BadFilesFarEvents::wheelAndZoomWork()
{
    for (Node *node : {static_cast<Node *>(nullptr), far->farNode(), far->nearNode()}) {
        far->frame(node);
        for (const int delta : {120, 120, -120, -120, -120, 120})
            far->wheel(delta);
        for (const char *action :
             {"actionZoom_In", "actionZoom_Out", "actionZoom_to_50", "actionZoom_to_200"}) {
            actionOf(far->window(), action)->trigger();
            far->settle();
            far->drawAll();
            QVERIFY(far->isSound());
        }
        QCOMPARE(far->view()->transform().m11(), 2.0);
        far->drag({400, 300}, {200, 100}, Qt::RightButton);
        QVERIFY(far->isSound());
    }
    QCOMPARE(far->opener.bytes().toHex(), far->bytes.toHex());
}

void tst_BadFilesFarEvents::nearEventIsDragged()
{
    far->frame(far->nearNode());
    actionOf(far->window(), "actionZoom_to_50")->trigger();
    far->view()->centerOn(far->nearNode());
    far->settle();
    const QPoint handle = far->handleOf(far->nearNode());
    QVERIFY(far->view()->viewport()->rect().contains(handle));
    far->drag(handle, handle + QPoint(40, 30));
    QCOMPARE(far->nearNode()->scenePos(), QPointF(380, 260));
}

// Where the view is too far out to lead back from its pixels to the scene, it must not guess.
void tst_BadFilesFarEvents::dragOnTheCanvasMovesNoEvent()
{
    QFETCH(const std::vector<QPointF>, places);
    for (Node *node : {static_cast<Node *>(nullptr), far->farNode()}) {
        far->frame(node);
        int presses = 0;
        for (int x = 20; x < far->view()->viewport()->width(); x += 60) {
            for (int y = 20; y < far->view()->viewport()->height(); y += 60) {
                if (!far->showsCanvas({x, y}))
                    continue;
                ++presses;
                far->send(QEvent::MouseButtonPress, QPoint(x, y), Qt::LeftButton, Qt::LeftButton);
                far->send(QEvent::MouseMove, QPoint(x + 15, y + 10), Qt::NoButton, Qt::LeftButton);
                far->send(QEvent::MouseButtonRelease, QPoint(x + 15, y + 10), Qt::LeftButton, Qt::NoButton);
            }
        }
        QVERIFY(presses > 0);
        QCOMPARE(far->nearNode()->scenePos(), QPointF(300, 200));
        QCOMPARE(far->farNode()->scenePos(), places.back());
    }
}

void tst_BadFilesFarEvents::eventIsAddedBehindTheFarOne()
{
    const std::size_t count = far->scene()->nodes().size();
    far->scene()->sl_selectCurrentNode(far->farNode());
    actionOf(far->window(), "actionAdd_Event")->trigger();
    far->settle();
    far->drawAll();
    QCOMPARE(far->scene()->nodes().size(), count + 1);
    const QPointF added = far->farNode()->scenePos();
    QVERIFY(std::isfinite(added.x()) && std::isfinite(added.y()));
    QVERIFY(far->isSound());
    actionOf(far->window(), "actionUndo")->trigger();
    QCOMPARE(far->opener.bytes().toHex(), far->bytes.toHex());

    // And one behind the near one, which has to be seen.
    far->frame(far->nearNode());
    actionOf(far->window(), "actionAdd_Event")->trigger();
    far->settle();
    far->drawAll();
    QCOMPARE(far->scene()->nodes().size(), count + 1);
    QVERIFY(far->isShownWhole(far->farNode())); // the newest one
}

void tst_BadFilesFarEvents::everythingElseIsTried()
{
    far->frame(nullptr);
    // A rubber band over all that is seen, from the canvas.
    far->drag({5, 5}, {700, 500});
    for (const char *action :
         {"actionDeselect_All", "actionSelect_All", "actionFrame", "actionCopy", "actionPaste", "actionUndo",
          "actionSelect_All", "actionCut", "actionPaste", "actionSelect_All", "actionDelete", "actionUndo"}) {
        actionOf(far->window(), action)->trigger();
        far->settle();
        far->drawAll();
        QVERIFY2(far->isSound(), action);
    }
    flushDeferredDeletes();
    far->opener.window().resize(900, 600);
    far->settle();
    far->drawAll();
    QCOMPARE(far->opener.check(far->opener.bytes()), QString());
}

QTEST_MAIN(tst_BadFilesFarEvents)
#include "tst_badfiles_farevents.moc"
