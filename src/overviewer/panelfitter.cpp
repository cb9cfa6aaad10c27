#include "overviewer/panelfitter.h"

#include <QEvent>
#include <QGraphicsScene>
#include <QGraphicsView>

PanelFitter::PanelFitter(QGraphicsView *panelView) : QObject(panelView), view(panelView)
{
    view->setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    view->setVerticalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
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
    const QSizeF content = view->sceneRect().size();
    const bool tooLong = content.height() > view->contentsRect().height();
    view->setVerticalScrollBarPolicy(tooLong ? Qt::ScrollBarAlwaysOn : Qt::ScrollBarAlwaysOff);
    const double room = view->viewport()->width();
    const double scale = content.width() > room && room > 0 ? room / content.width() : 1.0;
    view->setTransform(QTransform::fromScale(scale, scale));
    fitting = false;
}
