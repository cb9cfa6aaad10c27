#include "support/testsupport.h"

#include "items/node.h"
#include "view/viewcanvas.h"

#include <QGestureEvent>
#include <QMetaMethod>
#include <QPanGesture>
#include <QPinchGesture>
#include <QSwipeGesture>
#include <QTabWidget>
#include <QUndoStack>

using namespace Qt::StringLiterals;

namespace {

/// The scale at which a rectangle is framed: two pixels stay free on every side.
double framedScale(const QGraphicsView &view, QSizeF bounds)
{
    return qMin((view.viewport()->width() - 4) / bounds.width(),
                (view.viewport()->height() - 4) / bounds.height());
}

class CountingCommand : public QUndoCommand
{
public:
    explicit CountingCommand(int *runs) : QUndoCommand(u"Count"_s), done(runs) {}
    void redo() override { ++*done; }
    void undo() override { --*done; }

private:
    int *done;
};

} // namespace

class tst_NodegraphView : public TestCase
{
    Q_OBJECT

private slots:
    void hasExactlyItsMethods();
    void startsAsACanvas();
    void dyingViewKeepsItsSceneAndTakesItsHistory();
    void showsAnotherScene();
    void commandRunsWhenAdded();
    void sceneCommandsReachTheHistory();
    void replacedHistoryTakesTheNextCommand();
    void panGestureOnlyLogs();
    void pinchGestureZooms_data();
    void pinchGestureZooms();
    void bothGesturesAreHandledInOrder();
    void gestureEventIsAlwaysHandled();
    void otherEventsGoToTheBase();
    void framesBounds_data();
    void framesBounds();
    void framesWhatTheSceneAsksFor();
    void emptyBoundsKeepTheScale();
    void hiddenTabIsFramedAgainWhenShown();
    void onlyTheFirstShowFramesAgain();
    void unframedTabKeepsItsTransform();
};

void tst_NodegraphView::hasExactlyItsMethods()
{
    const QMetaObject &meta = NodegraphView::staticMetaObject;
    QCOMPARE(ownMethods(meta),
             QStringList({u"lastMousePos(QPointF)"_s, u"sl_undoCommandAdded(QUndoCommand*)"_s,
                          u"sl_frameOnSelectedNodes(QRectF)"_s}));
    const QList<QByteArrayList> names{{"pos"}, {"undoCommand"}, {"bounds"}};
    for (int i = 0; i < 3; ++i) {
        const QMetaMethod method = meta.method(meta.methodOffset() + i);
        QCOMPARE(method.parameterNames(), names.at(i));
        QCOMPARE(method.methodType(), i == 0 ? QMetaMethod::Signal : QMetaMethod::Slot);
        QCOMPARE(method.access(), QMetaMethod::Public);
    }
    QCOMPARE(meta.superClass(), &QGraphicsView::staticMetaObject);
}

void tst_NodegraphView::startsAsACanvas()
{
    QWidget parent;
    auto *view = new NodegraphView(&parent);
    const std::unique_ptr<NodegraphScene> scene(view->nodegraphScene());

    QCOMPARE(view->parentWidget(), &parent);
    QCOMPARE(view->renderHints() & (QPainter::Antialiasing | QPainter::TextAntialiasing),
             QPainter::Antialiasing | QPainter::TextAntialiasing);
    QCOMPARE(view->viewportUpdateMode(), QGraphicsView::FullViewportUpdate);
    QCOMPARE(view->transformationAnchor(), QGraphicsView::AnchorUnderMouse);
    QCOMPARE(view->horizontalScrollBarPolicy(), Qt::ScrollBarAlwaysOff);
    QCOMPARE(view->verticalScrollBarPolicy(), Qt::ScrollBarAlwaysOff);
    QVERIFY(view->hasMouseTracking());
    QVERIFY(view->testAttribute(Qt::WA_MouseTracking));
    QCOMPARE(view->dragMode(), QGraphicsView::NoDrag);
    QCOMPARE(view->backgroundBrush().style(), Qt::NoBrush);
    QCOMPARE(view->transform(), QTransform());
    QCOMPARE(view->zoomDivisor(), 1.0);

    QVERIFY(scene);
    QCOMPARE(view->scene(), scene.get());
    QCOMPARE(scene->parent(), nullptr);
    QCOMPARE(view->sceneRect(), scene->sceneRect());
    QVERIFY(view->undoStack());
    QCOMPARE(view->undoStack()->parent(), view);
    QCOMPARE(view->undoStack()->count(), 0);
    delete view;
}

void tst_NodegraphView::dyingViewKeepsItsSceneAndTakesItsHistory()
{
    auto view = std::make_unique<NodegraphView>(nullptr);
    const QPointer<NodegraphScene> scene = view->nodegraphScene();
    const QPointer<QUndoStack> history = view->undoStack();
    view.reset();
    flushDeferredDeletes();
    QVERIFY(scene);
    QVERIFY(!history);
    delete scene;
}

void tst_NodegraphView::showsAnotherScene()
{
    const std::unique_ptr<NodegraphView> view = std::make_unique<NodegraphView>(nullptr);
    const std::unique_ptr<NodegraphScene> first(view->nodegraphScene());
    NodegraphScene second;
    view->setNodegraphScene(&second);
    QCOMPARE(view->nodegraphScene(), &second);
    QCOMPARE(view->scene(), &second);
    QVERIFY(first->views().isEmpty());
}

void tst_NodegraphView::commandRunsWhenAdded()
{
    const Canvas canvas;
    int runs = 0;
    canvas.view->sl_undoCommandAdded(new CountingCommand(&runs));
    QCOMPARE(runs, 1);
    QCOMPARE(canvas.view->undoStack()->count(), 1);
    QCOMPARE(canvas.view->undoStack()->undoText(), u"Count"_s);
    canvas.view->undoStack()->undo();
    QCOMPARE(runs, 0);
}

void tst_NodegraphView::sceneCommandsReachTheHistory()
{
    const Canvas canvas;
    canvas.scene->sl_addEventNode();
    QCOMPARE(canvas.scene->nodes().size(), std::size_t(1));
    QCOMPARE(canvas.view->undoStack()->count(), 1);
    canvas.view->undoStack()->undo();
    QVERIFY(canvas.scene->nodes().empty());
}

void tst_NodegraphView::replacedHistoryTakesTheNextCommand()
{
    const Canvas canvas;
    const QPointer<QUndoStack> old = canvas.view->undoStack();
    QUndoStack other;
    canvas.view->setUndoStack(&other);
    QCOMPARE(canvas.view->undoStack(), &other);
    canvas.scene->sl_addEventNode();
    QCOMPARE(other.count(), 1);
    QVERIFY(old);
    QCOMPARE(old->count(), 0);
    other.clear();
}

void tst_NodegraphView::panGestureOnlyLogs()
{
    const Canvas canvas;
    const QTransform before = canvas.view->transform();
    const QPoint scrolled = canvas.scroll();
    QPanGesture pan;
    pan.setOffset(QPointF(50, 50));
    QGestureEvent event({&pan});
    const LogCapture log;
    QVERIFY(QCoreApplication::sendEvent(canvas.view.get(), &event));
    QCOMPARE(log.lines(), QStringList({u"Handling pan gesture"_s}));
    QCOMPARE(canvas.view->transform(), before);
    QCOMPARE(canvas.scroll(), scrolled);
    QCOMPARE(canvas.view->zoomDivisor(), 1.0);
}

void tst_NodegraphView::pinchGestureZooms_data()
{
    QTest::addColumn<double>("factor");
    QTest::addColumn<QPointF>("centre");
    QTest::newRow("in") << 1.5 << QPointF(120.25, 80.5);
    QTest::newRow("out") << 0.5 << QPointF(300, 200);
    QTest::newRow("held") << 1.0 << QPointF(7, 9);
}

void tst_NodegraphView::pinchGestureZooms()
{
    QFETCH(double, factor);
    QFETCH(QPointF, centre);
    const Canvas canvas;
    const QTransform before = canvas.view->transform();
    QPinchGesture pinch;
    pinch.setScaleFactor(factor);
    pinch.setTotalScaleFactor(9.0);
    pinch.setCenterPoint(centre);
    QGestureEvent event({&pinch});
    const LogCapture log;
    QVERIFY(QCoreApplication::sendEvent(canvas.view.get(), &event));
    QCOMPARE(log.lines(), QStringList({u"Handling pinch gesture"_s}));
    QCOMPARE(canvas.view->transform(), zoomed(before, factor, -centre)); // the centre as reported, not mapped
    QCOMPARE(canvas.view->zoomDivisor(), 1.0 / factor);

    canvas.press(QPointF(30, 40), Qt::RightButton);
    const QTransform second = canvas.view->transform();
    QGestureEvent again({&pinch});
    QCoreApplication::sendEvent(canvas.view.get(), &again);
    QCOMPARE(canvas.view->transform(), zoomed(second, factor, QPointF(30, 40) - centre));
    QCOMPARE(canvas.view->zoomDivisor(), 1.0 / factor / factor);
}

void tst_NodegraphView::bothGesturesAreHandledInOrder()
{
    const Canvas canvas;
    QPinchGesture pinch;
    pinch.setScaleFactor(2.0);
    QPanGesture pan;
    QGestureEvent event({&pinch, &pan});
    const LogCapture log;
    QVERIFY(canvas.view->event(&event));
    QCOMPARE(log.lines(), QStringList({u"Handling pan gesture"_s, u"Handling pinch gesture"_s}));
    QCOMPARE(canvas.view->transform().m11(), 2.0);
}

void tst_NodegraphView::gestureEventIsAlwaysHandled()
{
    const Canvas canvas;
    const QTransform before = canvas.view->transform();
    const LogCapture log;
    QGestureEvent none({});
    QVERIFY(canvas.view->event(&none));
    QSwipeGesture swipe;
    QGestureEvent other({&swipe});
    QVERIFY(canvas.view->event(&other));
    QCOMPARE(canvas.view->transform(), before);
    QVERIFY(log.lines().isEmpty());
}

void tst_NodegraphView::otherEventsGoToTheBase()
{
    const Canvas canvas;
    QEvent unknown(QEvent::None);
    QVERIFY(!canvas.view->event(&unknown));
    QEvent tracking(QEvent::MouseTrackingChange);
    canvas.view->viewport()->setMouseTracking(false);
    canvas.view->event(&tracking);
    QVERIFY(canvas.view->viewport()->hasMouseTracking());
}

void tst_NodegraphView::framesBounds_data()
{
    QTest::addColumn<QRectF>("bounds");
    QTest::newRow("wide") << QRectF(5000, 5000, 1000, 100);
    QTest::newRow("tall") << QRectF(5000, 5000, 100, 1000);
    QTest::newRow("larger than the view") << QRectF(20000, 10000, 40000, 30000);
}

void tst_NodegraphView::framesBounds()
{
    QFETCH(QRectF, bounds);
    const Canvas canvas;
    canvas.view->setZoomDivisor(3.0);
    const LogCapture log;
    canvas.view->sl_frameOnSelectedNodes(bounds);
    QCOMPARE(log.lines(), QStringList({u"Setting bounds"_s}));
    const double scale = framedScale(*canvas.view, bounds.size());
    QCOMPARE(canvas.view->transform().m11(), scale);
    QCOMPARE(canvas.view->transform().m22(), scale);
    const QPointF offBy = (canvas.middle() - bounds.center()) * scale;
    QVERIFY(qAbs(offBy.x()) <= 1 && qAbs(offBy.y()) <= 1);
    QCOMPARE(canvas.view->zoomDivisor(), 3.0);
}

void tst_NodegraphView::framesWhatTheSceneAsksFor()
{
    const Canvas canvas;
    const Node *node = addLoose(*canvas.scene, QPointF(7000, 6000));
    const QRectF bounds = node->mapRectToScene(node->boundingRect()).adjusted(-50, -50, 50, 50);
    const LogCapture log;
    canvas.scene->frameSelectedNodes();
    QCOMPARE(log.count(u"Setting bounds"_s), 1);
    QCOMPARE(canvas.view->transform().m11(), framedScale(*canvas.view, bounds.size()));
    const QPointF offBy = canvas.middle() - bounds.center();
    QVERIFY(qAbs(offBy.x()) <= 2 && qAbs(offBy.y()) <= 2);
}

void tst_NodegraphView::emptyBoundsKeepTheScale()
{
    const Canvas canvas;
    canvas.view->scale(2, 2);
    const LogCapture log;
    canvas.scene->frameSelectedNodes();
    QCOMPARE(log.count(u"Setting bounds"_s), 1);
    QCOMPARE(canvas.view->transform(), QTransform::fromScale(2, 2));

    canvas.view->sl_frameOnSelectedNodes(QRectF(30000, 20000, 0, 0));
    QCOMPARE(canvas.view->transform(), QTransform::fromScale(2, 2));
    const QPointF offBy = canvas.middle() - QPointF(30000, 20000);
    QVERIFY(qAbs(offBy.x()) <= 1 && qAbs(offBy.y()) <= 1);
}

// An opened file frames all its tabs at once, before any but the first has been given its size.
void tst_NodegraphView::hiddenTabIsFramedAgainWhenShown()
{
    QTabWidget tabs;
    auto *shown = new NodegraphView(nullptr);
    auto *hidden = new NodegraphView(nullptr);
    const std::unique_ptr<NodegraphScene> firstScene(shown->nodegraphScene());
    const std::unique_ptr<NodegraphScene> secondScene(hidden->nodegraphScene());
    tabs.addTab(shown, u"Story 1"_s);
    tabs.addTab(hidden, u"Story 2"_s);
    tabs.resize(900, 700);
    tabs.show();
    QVERIFY(QTest::qWaitForWindowExposed(&tabs));

    hidden->sl_frameOnSelectedNodes(QRectF(100, 100, 50, 50));
    const QRectF bounds(20000, 10000, 1000, 200); // the one that was asked for last counts
    hidden->sl_frameOnSelectedNodes(bounds);
    QVERIFY(hidden->viewport()->width() < 700);
    const LogCapture log;
    tabs.setCurrentWidget(hidden);
    QTRY_VERIFY(hidden->viewport()->width() > 700);
    QTRY_COMPARE(hidden->transform().m11(), framedScale(*hidden, bounds.size()));
    const QPointF offBy = hidden->mapToScene(hidden->viewport()->rect().center()) - bounds.center();
    QVERIFY(qAbs(offBy.x()) <= 2 && qAbs(offBy.y()) <= 2);
    QVERIFY2(!log.contains(u"Setting bounds"_s), "nobody asked again");
    delete shown;
    delete hidden;
}

void tst_NodegraphView::onlyTheFirstShowFramesAgain()
{
    const std::unique_ptr<NodegraphView> view = std::make_unique<NodegraphView>(nullptr);
    const std::unique_ptr<NodegraphScene> scene(view->nodegraphScene());
    const struct Guard
    {
        NodegraphView &view;
        ~Guard() { view.setScene(nullptr); }
    } guard{*view};
    const QRectF bounds(20000, 10000, 1000, 200);
    view->sl_frameOnSelectedNodes(bounds);
    view->resize(500, 400);
    view->show();
    QVERIFY(QTest::qWaitForWindowExposed(view.get()));
    QTRY_COMPARE(view->transform().m11(), framedScale(*view, bounds.size()));
    QCoreApplication::processEvents();

    // What the user does from here on stays.
    view->resetTransform();
    view->resize(600, 500);
    QCoreApplication::processEvents();
    QCOMPARE(view->transform(), QTransform());
    view->hide();
    view->show();
    QVERIFY(QTest::qWaitForWindowExposed(view.get()));
    QCoreApplication::processEvents();
    QCOMPARE(view->transform(), QTransform());

    view->sl_frameOnSelectedNodes(bounds);
    view->resetTransform();
    view->resize(500, 400);
    QCoreApplication::processEvents();
    QCOMPARE(view->transform(), QTransform());
}

void tst_NodegraphView::unframedTabKeepsItsTransform()
{
    const Canvas canvas;
    QCOMPARE(canvas.view->transform(), QTransform());
    canvas.view->resize(700, 600);
    QCoreApplication::processEvents();
    QCOMPARE(canvas.view->transform(), QTransform());
}

QTEST_MAIN(tst_NodegraphView)
#include "tst_nodegraphview.moc"
