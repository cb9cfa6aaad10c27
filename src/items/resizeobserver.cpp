#include "items/resizeobserver.h"

#include <QGraphicsItem>

// The cast finds nothing in a parent that is being destroyed, which is exactly what it should find.
void ResizeObserver::tellAboutToResize(QGraphicsItem *parent)
{
    if (auto *observer = dynamic_cast<ResizeObserver *>(parent))
        observer->aboutToResize();
}

void ResizeObserver::tellResized(QGraphicsItem *parent)
{
    if (auto *observer = dynamic_cast<ResizeObserver *>(parent))
        observer->resized();
}
