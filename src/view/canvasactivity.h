#pragma once

#include <QPointer>

class QEvent;
class QGraphicsScene;
class QGraphicsView;

/// Tells a canvas whether its window is the active one. Owned by the view that shows it.
///
/// The framework takes each hiding of a view for a loss of the window and each showing for its return, and
/// has every item of the canvas told, in their order: among 10,000 events a switch of tabs took 10 ms longer
/// each way. So a hidden canvas stays as active as it was, and hears of a change when it is shown again.
class CanvasActivity
{
public:
    /// `shown` must outlive this.
    explicit CanvasActivity(QGraphicsView &shown) : view(shown) {}

    /// Shows another canvas; the one shown before is not active any more. Null for none.
    void show(QGraphicsScene *canvas);
    /// Whether an event of the viewport is one of those, and so is none for QGraphicsView: what there was to
    /// tell has been told.
    bool takes(const QEvent &event);

private:
    void tell(bool isActive);

    QGraphicsView &view;
    QPointer<QGraphicsScene> active; // the canvas, while it takes itself for active
};
