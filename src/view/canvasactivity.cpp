#include "view/canvasactivity.h"

#include <QCoreApplication>
#include <QEvent>
#include <QGraphicsScene>
#include <QGraphicsView>

void CanvasActivity::show(QGraphicsScene *canvas)
{
    if (!view.isVisible())
        tell(false); // a visible view tells both by itself
    view.setScene(canvas);
    active = view.isVisible() && view.isActiveWindow() ? canvas : nullptr;
}

bool CanvasActivity::takes(const QEvent &event)
{
    switch (event.type()) {
    case QEvent::Show:
        tell(view.isActiveWindow());
        return true;
    case QEvent::WindowActivate:
        tell(true);
        return true;
    case QEvent::WindowDeactivate:
        tell(false);
        return true;
    case QEvent::Hide:
        return true;
    default:
        return false;
    }
}

void CanvasActivity::tell(bool isActive)
{
    if (!view.scene() || isActive == (active == view.scene()))
        return;
    active = isActive ? view.scene() : nullptr;
    QEvent change(isActive ? QEvent::WindowActivate : QEvent::WindowDeactivate);
    QCoreApplication::sendEvent(view.scene(), &change);
}
