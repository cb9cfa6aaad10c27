#include "view/overview.h"

#include "items/connectionline.h"
#include "items/eventdata.h"
#include "items/node.h"
#include "items/nodedata.h"
#include "items/socket.h"
#include "scene/nodegraphscene.h"

#include <QGraphicsRectItem>
#include <QPainter>

#include <algorithm>

namespace {

constexpr double lowestLetters = 10.0; // scene units: a small letter of a description
constexpr double legibleFrom = 2.0;    // pixels
constexpr double widthOfState = 6.0;   // pixels of the node's colour left and right of its panel
constexpr double bend = 1.0;           // pixels that a curve may differ from the straight line in its place

/// A part that is smaller than a pixel is not told apart.
bool isVisible(double size, double scale) { return size * scale >= 1.0; }

void paintLine(QPainter &painter, const ConnectionLine &line, const QRectF &exposed, double scale)
{
    const QPainterPath path = line.path();
    const QRectF covered = path.controlPointRect();
    QPen pen = line.QGraphicsPathItem::pen();
    const double half = std::max(pen.widthF(), 1.0 / scale) / 2;
    pen.setCosmetic(true);
    pen.setWidthF(std::max(pen.widthF() * scale, 1.0)); // however far away, a pixel
    if (!covered.adjusted(-half, -half, half, half).intersects(exposed))
        return;
    painter.setPen(pen);
    if (covered.height() * scale < bend)
        painter.drawLine(path.elementAt(0), path.currentPosition());
    else
        painter.drawPath(path);
}

void paintNode(QPainter &painter, const Node &node, double scale)
{
    const QPointF place = node.scenePos();
    painter.fillRect(node.boundingRect().translated(place), node.bodyColor());
    if (isVisible(node.headerRect().height(), scale))
        painter.fillRect(node.headerRect().translated(place), node.getHeaderColor());
    const EventData *event = node.getData() ? node.getData()->eventContent() : nullptr;
    // From further away the panel would leave too little of the colour that tells the node's state.
    if (event && (node.boundingRect().width() - event->panelRect().width()) * scale >= widthOfState)
        painter.fillRect(event->panelRect().translated(place + node.getData()->pos()), event->panelColor());
    for (const Socket *socket : {node.getInSocket(), node.getOutSocket()}) {
        if (isVisible(socket->boundingRect().width(), scale))
            painter.fillRect(socket->boundingRect().translated(place + socket->pos()), socket->fillColor());
    }
}

} // namespace

bool Overview::isMeantFor(double scale) { return scale * lowestLetters < legibleFrom; }

void Overview::paint(QPainter &painter, const NodegraphScene &scene, const QRectF &exposed, double scale)
{
    const std::vector<Node *> &nodes = scene.getNodes();
    painter.setBrush(Qt::NoBrush);
    for (const Node *node : nodes) {
        const ConnectionLine *line = node->getInLine();
        if (line && line->isVisible())
            paintLine(painter, *line, exposed, scale);
    }
    if (const ConnectionLine *dragged = scene.getDragLine())
        paintLine(painter, *dragged, exposed, scale);

    painter.setRenderHint(QPainter::Antialiasing, false);
    for (const Node *node : nodes) {
        if (node->isVisible() && node->boundingRect().translated(node->scenePos()).intersects(exposed))
            paintNode(painter, *node, scale);
    }
    const QGraphicsRectItem &band = scene.getSelectionRect();
    if (!band.rect().isEmpty())
        painter.fillRect(band.rect(), band.brush());
}
