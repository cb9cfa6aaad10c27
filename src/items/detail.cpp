#include "items/detail.h"

#include <QPainter>
#include <QStyleOptionGraphicsItem>

namespace {
constexpr double smallestCorner = 0.5; // pixels
}

double Detail::scaleOf(const QPainter &painter)
{
    return QStyleOptionGraphicsItem::levelOfDetailFromTransform(painter.worldTransform());
}

bool Detail::showsCorners(const QPainter &painter, double radius)
{
    return radius * scaleOf(painter) >= smallestCorner;
}

void Detail::fillRoundedRect(QPainter &painter, const QRectF &rect, double radius, const QColor &color)
{
    if (!showsCorners(painter, radius)) {
        painter.fillRect(rect, color);
        return;
    }
    painter.setPen(Qt::NoPen);
    painter.setBrush(color);
    painter.drawRoundedRect(rect, radius, radius, Qt::AbsoluteSize);
}
