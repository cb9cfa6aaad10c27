#include "view/nodegraphview.h"

#include "scene/nodegraphscene.h"
#include "scene/viewroom.h"
#include "view/canvaskeys.h"

#include <QContextMenuEvent>
#include <QDebug>
#include <QEnterEvent>
#include <QGestureEvent>
#include <QGuiApplication>
#include <QMouseEvent>
#include <QPinchGesture>
#include <QScrollBar>
#include <QTimer>
#include <QUndoStack>
#include <QWheelEvent>

#include <algorithm>
#include <cmath>

namespace {

constexpr double zoomBase = 1.2;
constexpr double deltaPerZoomStep = 240.0; // two notches of an ordinary wheel
constexpr int sameWheelPlace = 2;          // pixels within which the mouse still rests
constexpr double mostShift = 5e8;          // pixels; scroll bars count to four times as many

/// Scroll-bar values are whole; far zoomed out, a pan can ask for more than an int holds.
int scrollValue(double value)
{
    constexpr double limit = 1e9;
    if (std::isnan(value))
        return 0;
    return static_cast<int>(qBound(-limit, value, limit));
}

} // namespace

NodegraphView::NodegraphView(QWidget *parent) : QGraphicsView(parent)
{
    setRenderHints(QPainter::Antialiasing | QPainter::TextAntialiasing);
    setViewportUpdateMode(QGraphicsView::FullViewportUpdate);
    setTransformationAnchor(QGraphicsView::AnchorUnderMouse);
    setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    setVerticalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    setMouseTracking(true);
    grabGesture(Qt::PanGesture);
    grabGesture(Qt::PinchGesture);
    setNodegraphScene(new NodegraphScene);
    connect(this, SIGNAL(lastMousePos(QPointF)), nodegraphScene_, SLOT(sl_lastMousePos(QPointF)));
    connect(nodegraphScene_, SIGNAL(s_UndoCommandAdded(QUndoCommand*)), this,
                                    SLOT(sl_undoCommandAdded(QUndoCommand*)));
    connect(nodegraphScene_, SIGNAL(s_frameView(QRectF)), this, SLOT(sl_frameOnSelectedNodes(QRectF)));
    undoStack_ = new QUndoStack(this);
    new CanvasKeys(this);
}

void NodegraphView::setNodegraphScene(NodegraphScene *scene)
{
    nodegraphScene_ = scene;
    activity.show(scene);
}

void NodegraphView::sl_undoCommandAdded(QUndoCommand *undoCommand) { undoStack_->push(undoCommand); }

void NodegraphView::zoomAt(double factor, const QPointF &scenePos)
{
    scale(factor, factor);
    zoomDivisor_ /= factor;
    translate(panAnchor.x() - scenePos.x(), panAnchor.y() - scenePos.y());
    // What the canvas is shifted by adds up, and after hours of zooming the scroll bars would run out of
    // numbers. It shows nowhere: they make up for it.
    const QTransform shifted = transform();
    if (std::max(std::abs(shifted.dx()), std::abs(shifted.dy())) > mostShift)
        setTransform(QTransform::fromScale(shifted.m11(), shifted.m22()));
}

void NodegraphView::wheelEvent(QWheelEvent *event)
{
    const double factor = std::pow(zoomBase, event->angleDelta().y() / deltaPerZoomStep);
    const QPoint position = event->position().toPoint();
    // Not mapFromScene(), whose whole numbers cannot hold the place of a far event.
    const QPointF away = viewportTransform().map(zoomedPlace) - position;
    if (!(std::abs(std::round(away.x())) + std::abs(std::round(away.y())) <= sameWheelPlace))
        zoomedPlace = mapToScene(position);
    zoomAt(factor, mapToScene(position));
    keepUnder(position);
}

/// Each step of a zoom is anchored about a pixel off, always to the same side; over the many small steps of a
/// touchpad the place under the mouse would wander away.
void NodegraphView::keepUnder(const QPoint &position)
{
    const QPointF drift = viewportTransform().map(zoomedPlace) - position;
    horizontalScrollBar()->setValue(scrollValue(horizontalScrollBar()->value() + std::round(drift.x())));
    verticalScrollBar()->setValue(scrollValue(verticalScrollBar()->value() + std::round(drift.y())));
}

// The right button pans, also over a text. The text's menu, which that press would open, ends the pan; by key
// it can still be had.
void NodegraphView::contextMenuEvent(QContextMenuEvent *event)
{
    if (event->reason() != QContextMenuEvent::Mouse)
        QGraphicsView::contextMenuEvent(event);
}

void NodegraphView::mousePressEvent(QMouseEvent *event)
{
    if (event->button() == Qt::RightButton) {
        isPanning = true;
        panAnchor = event->position().toPoint();
        setCursor(Qt::ClosedHandCursor);
        return;
    }
    notePress(*event);
    QGraphicsView::mousePressEvent(event);
}

void NodegraphView::mouseMoveEvent(QMouseEvent *event)
{
    const QPoint position = event->position().toPoint();
    watchHeldButtons(*event);
    watchRightButton(event->buttons());
    emit lastMousePos(mapToScene(position));
    if (event->buttons() & Qt::RightButton)
        pan(position);
    QGraphicsView::mouseMoveEvent(event);
}

// The second of two quick presses comes as a double click. With the right button it begins a pan as any other
// does; the items would take it for a press on them, and a line would come off.
void NodegraphView::mouseDoubleClickEvent(QMouseEvent *event)
{
    if (event->button() == Qt::RightButton) {
        mousePressEvent(event);
        return;
    }
    notePress(*event);
    QGraphicsView::mouseDoubleClickEvent(event);
}

void NodegraphView::notePress(const QMouseEvent &press)
{
    held |= press.button();
    heldAt = press.position();
}

/// If a dialog or a menu that was opened by key got the release, whatever was dragged is dropped where the
/// mouse was before.
void NodegraphView::watchHeldButtons(const QMouseEvent &move)
{
    release(held & ~move.buttons());
    heldAt = move.position();
}

void NodegraphView::release(Qt::MouseButtons buttons)
{
    for (unsigned bit = Qt::LeftButton; bit <= Qt::MaxMouseButton; bit <<= 1U) {
        const auto button = static_cast<Qt::MouseButton>(bit);
        if (!buttons.testFlag(button))
            continue;
        held &= ~Qt::MouseButtons(button);
        QMouseEvent released(QEvent::MouseButtonRelease, heldAt, viewport()->mapToGlobal(heldAt), button,
                             held, QGuiApplication::keyboardModifiers());
        QGraphicsView::mouseReleaseEvent(&released);
    }
}

/// The same for the right button, whose anchor would shift every zoom from then on.
void NodegraphView::watchRightButton(Qt::MouseButtons pressed)
{
    if (isPanning && !(pressed & Qt::RightButton))
        endPan();
}

void NodegraphView::endPan()
{
    isPanning = false;
    setCursor(Qt::ArrowCursor);
    panAnchor = QPointF();
}

void NodegraphView::pan(const QPoint &position)
{
    const QPointF distance = mapToScene(position) - mapToScene(panAnchor.toPoint());
    panAnchor = position;
    horizontalScrollBar()->setValue(
        scrollValue(horizontalScrollBar()->value() - panSpeed * distance.x() / zoomDivisor_));
    verticalScrollBar()->setValue(
        scrollValue(verticalScrollBar()->value() - panSpeed * distance.y() / zoomDivisor_));
}

void NodegraphView::mouseReleaseEvent(QMouseEvent *event)
{
    if (event->button() == Qt::RightButton)
        endPan();
    held &= ~Qt::MouseButtons(event->button());
    QGraphicsView::mouseReleaseEvent(event);
}

bool NodegraphView::event(QEvent *event)
{
    if (event->type() == QEvent::Gesture)
        return handleGesture(static_cast<QGestureEvent *>(event));
    if (event->type() == QEvent::TouchBegin || event->type() == QEvent::TabletPress)
        release(held); // a finger or a pen takes over from the mouse, which may never tell of its release
    const bool handled = QGraphicsView::event(event);
    if (event->type() == QEvent::Resize && frameIsEarly && !sizeIsKnown) {
        frame(earlyFrame);
    } else if (event->type() == QEvent::Show && !sizeIsKnown) {
        // The layouts around a page that is shown for the first time settle after this event.
        QTimer::singleShot(0, this, &NodegraphView::frameAgain);
    } else if (event->type() == QEvent::Enter) {
        watchRightButton(QGuiApplication::mouseButtons());
        noteRestingMouse(static_cast<QEnterEvent *>(event)->globalPosition());
    }
    return handled;
}

bool NodegraphView::viewportEvent(QEvent *event)
{
    if (activity.takes(*event))
        return QAbstractScrollArea::viewportEvent(event); // NOLINT(bugprone-parent-virtual-call): on purpose
    return QGraphicsView::viewportEvent(event);
}

/// A zoom keeps the scene point where the base last saw the mouse move. A mouse that is here without having
/// moved, under a window or menu that came or went, would make it take a place far away.
void NodegraphView::noteRestingMouse(const QPointF &globalPos)
{
    if (held)
        return;
    QMouseEvent resting(QEvent::MouseMove, viewport()->mapFromGlobal(globalPos), globalPos, Qt::NoButton,
                        QGuiApplication::mouseButtons(), QGuiApplication::keyboardModifiers());
    QGraphicsView::mouseMoveEvent(&resting);
}

void NodegraphView::frameAgain()
{
    sizeIsKnown = true;
    if (frameIsEarly)
        frame(earlyFrame);
    frameIsEarly = false;
}

bool NodegraphView::handleGesture(QGestureEvent *event)
{
    if (event->gesture(Qt::PanGesture))
        qInfo() << "Handling pan gesture";
    if (const auto *pinch = static_cast<QPinchGesture *>(event->gesture(Qt::PinchGesture))) {
        qInfo() << "Handling pinch gesture";
        zoomAt(pinch->scaleFactor(), pinch->centerPoint());
    }
    return true;
}

void NodegraphView::sl_frameOnSelectedNodes(QRectF bounds)
{
    qInfo() << "Setting bounds";
    if (!sizeIsKnown) {
        earlyFrame = bounds;
        frameIsEarly = true;
    }
    frame(bounds);
}

void NodegraphView::frame(const QRectF &wanted)
{
    // A damaged file may hold places so far apart that Qt cannot map points at the scale that shows them all.
    constexpr double farthest = 1e12;
    const QRectF reachable(QPointF(-farthest, -farthest), QPointF(farthest, farthest));
    const QRectF bounds = reachable.intersects(wanted) ? wanted & reachable : wanted;
    if (!bounds.isNull())
        makeRoomFor(*this, bounds);
    fitInView(bounds, Qt::KeepAspectRatio);
    centerOn(bounds.center());
}
