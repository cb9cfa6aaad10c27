#include "scene/rubberband.h"

#include "items/node.h"

#include <QBrush>
#include <QGraphicsRectItem>
#include <QGraphicsScene>
#include <QPainterPath>
#include <QPen>
#include <QSet>

namespace {

constexpr double aboveNodes = 100.0; // z-value

bool isTouched(const Node &node, const QRectF &band)
{
    const QRectF outline = node.boundingRect().translated(node.scenePos());
    if (band.contains(outline))
        return true;
    if (!band.adjusted(-1, -1, 1, 1).intersects(outline))
        return false;
    // Edges count, and so does a band of no width.
    QPainterPath path;
    path.addRect(band.translated(-node.scenePos()));
    return node.collidesWithPath(path);
}

} // namespace

RubberBand::RubberBand(QGraphicsScene &drawnOn, const QColor &colour) : canvas(drawnOn), veil(colour)
{
    renew();
}

void RubberBand::renew()
{
    rectangle = canvas.addRect(QRectF(), Qt::NoPen, QBrush());
    rectangle->setBrush(veil);
    // A veil over the nodes that answers nothing: presses go through to what lies below.
    rectangle->setAcceptedMouseButtons(Qt::NoButton);
}

void RubberBand::begin(const QPointF &from)
{
    origin = from;
    active = true;
}

void RubberBand::stretchTo(const QPointF &corner)
{
    rectangle->setRect(QRectF(origin, corner).normalized());
    rectangle->setZValue(aboveNodes);
}

void RubberBand::end()
{
    active = false;
    rectangle->setRect(QRectF());
}

void RubberBand::catchFrom(const std::vector<Node *> &nodes, std::vector<Node *> &caught) const
{
    QSet<const Node *> listed(caught.begin(), caught.end());
    const QRectF band = rectangle->rect();
    // The framework's own search would look into each node's parts as well.
    for (std::size_t i = nodes.size(); i-- > 0;) {
        Node *node = nodes[i];
        if (!node->isVisible() || !isTouched(*node, band))
            continue;
        node->setSelected(true);
        if (!listed.contains(node)) {
            listed.insert(node);
            caught.push_back(node);
        }
    }
}
