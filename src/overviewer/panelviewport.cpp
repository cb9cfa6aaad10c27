#include "overviewer/panelviewport.h"

#include <QPainter>
#include <QPen>

namespace {
constexpr double lineWidth = 3.0; // logical pixels
} // namespace

void PanelViewport::initPainter(QPainter *painter) const
{
    QWidget::initPainter(painter);
    QPen pen(painter->pen().color(), lineWidth * devicePixelRatio());
    pen.setCosmetic(true);
    painter->setPen(pen);
}
