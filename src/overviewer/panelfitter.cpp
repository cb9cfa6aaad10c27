#include "overviewer/panelfitter.h"

#include <QEvent>
#include <QGraphicsScene>
#include <QGraphicsView>

PanelFitter::PanelFitter(QGraphicsView *panelView) : QObject(panelView), view(panelView)
{
    view->setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    view->setVerticalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    view->setTransformationAnchor(QGraphicsView::NoAnchor); // a list that grows too long keeps its top
    view->installEventFilter(this);
    connect(view->scene(), &QGraphicsScene::sceneRectChanged, this, &PanelFitter::fit);
}

bool PanelFitter::eventFilter(QObject *watched, QEvent *event)
{
    const bool result = QObject::eventFilter(watched, event);
    if (event->type() == QEvent::Resize || event->type() == QEvent::Show)
        QMetaObject::invokeMethod(this, &PanelFitter::fit, Qt::QueuedConnection);
    return result;
}

void PanelFitter::fit()
{
    if (fitting || !view->scene())
        return;
    fitting = true;
    const QRectF content = view->sceneRect();
    const bool tooLong = content.height() > view->contentsRect().height();
    view->setVerticalScrollBarPolicy(tooLong ? Qt::ScrollBarAlwaysOn : Qt::ScrollBarAlwaysOff);
    const double room = view->viewport()->width();
    const double scale = content.width() > room && room > 0 ? room / content.width() : 1.0;
    // The list's corner comes on a whole pixel, or its left edge would be cut off.
    view->setTransform(QTransform::fromScale(scale, scale).translate(-content.left(), -content.top()));
    fitting = false;
}
