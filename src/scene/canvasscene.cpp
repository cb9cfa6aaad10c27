#include "scene/canvasscene.h"

#include <QGraphicsView>
#include <QPainter>

// The texts are nobody's stops on the way through the window: a Tab would land in the one that was written in
// last, whatever has become of its event, or in any, and each further one would be written there.
bool CanvasScene::focusNextPrevChild(bool) { return false; }

// The framework looks for whoever is under the mouse after this.
bool CanvasScene::event(QEvent *event)
{
    exposure_.aboutToHandle(*event);
    return PromptScene::event(event);
}

// The view looks up the items to paint after this; what is painted for something else, a picture, has looked
// up the events already, and paints what they get here along with them. Only the frames of the view count for
// the detail: a picture changes nothing on the screen.
void CanvasScene::drawBackground(QPainter *painter, const QRectF &rect)
{
    const QList<QGraphicsView *> shown = views();
    if (!shown.isEmpty() && painter->device() == shown.first()->viewport())
        adaptDetail();
    if (detail.isWhole())
        exposure_.aboutToPaint(rect);
    QGraphicsScene::drawBackground(painter, rect);
}

void CanvasScene::adaptDetail()
{
    const QList<QGraphicsView *> shown = views();
    if (!shown.isEmpty())
        detail.apply(*shown.first(), nodes());
}
