#include "items/clickordrag.h"

#include <QApplication>
#include <QGraphicsSceneMouseEvent>

// In pixels of the screen, at every zoom; a text that is pressed may also scroll its view to its cursor.
bool ClickOrDrag::isDragged(const QGraphicsSceneMouseEvent &move)
{
    const QPoint way = move.screenPos() - move.buttonDownScreenPos(Qt::LeftButton);
    isDrag = isDrag || way.manhattanLength() >= QApplication::startDragDistance();
    return isDrag;
}
