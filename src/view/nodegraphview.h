#pragma once

#include "view/canvasactivity.h"

#include <QGraphicsView>
#include <QRectF>

class NodegraphScene;
class QGestureEvent;
class QUndoCommand;
class QUndoStack;

Q_MOC_INCLUDE(<QUndoCommand>)

/// One tab: shows its own scene, navigates it, and keeps the tab's undo history.
class NodegraphView : public QGraphicsView
{
    Q_OBJECT

public:
    explicit NodegraphView(QWidget *parent);

    /// The scene shown. Made by the constructor, but not owned: it outlives this view unless somebody else
    /// deletes it.
    NodegraphScene *nodegraphScene() const { return nodegraphScene_; }
    void setNodegraphScene(NodegraphScene *scene);
    /// The undo history; the one made by the constructor is owned by this view.
    QUndoStack *undoStack() const { return undoStack_; }
    void setUndoStack(QUndoStack *stack) { undoStack_ = stack; }

    double zoomDivisor() const { return zoomDivisor_; }
    void setZoomDivisor(double divisor) { zoomDivisor_ = divisor; }
    /// Scales by `factor` and shifts by what separates the pan anchor from `scenePos`.
    void zoomAt(double factor, const QPointF &scenePos);

signals:
    /// The mouse moved; scene coordinates.
    void lastMousePos(QPointF pos);

public slots:
    /// Takes over the command and runs it.
    void sl_undoCommandAdded(QUndoCommand *undoCommand);
    /// Shows `bounds` (scene coordinates) as large as they fit.
    void sl_frameOnSelectedNodes(QRectF bounds);

protected:
    bool event(QEvent *event) override;
    bool viewportEvent(QEvent *event) override;
    void mousePressEvent(QMouseEvent *event) override;
    void mouseReleaseEvent(QMouseEvent *event) override;
    void mouseMoveEvent(QMouseEvent *event) override;
    void mouseDoubleClickEvent(QMouseEvent *event) override;
    void wheelEvent(QWheelEvent *event) override;
    void contextMenuEvent(QContextMenuEvent *event) override;

private:
    bool handleGesture(QGestureEvent *event);
    void pan(const QPoint &position);
    void keepUnder(const QPoint &position);
    void frame(const QRectF &wanted);
    void frameAgain();
    void noteRestingMouse(const QPointF &globalPos);
    void notePress(const QMouseEvent &press);
    void watchHeldButtons(const QMouseEvent &move);
    void release(Qt::MouseButtons buttons);
    void watchRightButton(Qt::MouseButtons pressed);
    void endPan();

    CanvasActivity activity{*this};
    double zoomDivisor_ = 1.0; // reciprocal of the zoom by wheel and pinch since it was last set
    QPointF panAnchor;         // viewport coordinates, (0, 0) while nobody pans
    int panSpeed = 1;
    NodegraphScene *nodegraphScene_ = nullptr;
    QUndoStack *undoStack_ = nullptr;

    bool isPanning = false; // since the right button went down
    Qt::MouseButtons held;  // all but the right one
    QPointF heldAt;         // viewport coordinates: where the mouse was last with all of them held

    QPointF zoomedPlace;       // scene coordinates: what the wheel has kept under the mouse so far
    QRectF earlyFrame;         // what was to be framed before this view had its size
    bool frameIsEarly = false; // earlyFrame holds something
    bool sizeIsKnown = false;  // has been shown and laid out
};
