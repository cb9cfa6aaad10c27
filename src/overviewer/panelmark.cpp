#include "overviewer/panelmark.h"

#include "overviewer/ovnode.h"

#include <QColor>
#include <QPainter>
#include <QPen>

namespace {
constexpr QColor markColor(0x9a, 0x3b, 0x00); // against the panel 5.8:1, against an entry 6.4:1
constexpr double markWidth = 3.0;
constexpr double markInset = 6.5; // between the outline of what is important and the text's own panel
constexpr double markRadius = 8.0;
} // namespace

void PanelMark::putOn(OvNode *entry)
{
    update();
    marked = entry;
    event = entry->shownEvent();
    update();
}

void PanelMark::setShown(bool shown)
{
    if (shown == isShown)
        return;
    isShown = shown;
    update();
}

void PanelMark::noteEntry(OvNode *entry, const Node *node)
{
    if (isAwaitedBy(node))
        marked = entry;
}

void PanelMark::update() const
{
    if (marked && marked->scene())
        marked->scene()->update(marked->sceneBoundingRect());
}

void PanelMark::paint(QPainter &painter) const
{
    if (!isShown || !marked)
        return;
    painter.save();
    painter.setPen(QPen(markColor, markWidth));
    painter.setBrush(Qt::NoBrush);
    const QRectF outline = marked->sceneBoundingRect().adjusted(markInset, markInset, -markInset, -markInset);
    painter.drawRoundedRect(outline, markRadius, markRadius);
    painter.restore();
}
