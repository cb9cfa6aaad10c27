#include "overviewer/ovnode.h"

#include "items/eventdata.h"
#include "items/node.h"
#include "overviewer/overviewerscene.h"
#include "overviewer/panellist.h"

#include <QBrush>
#include <QPainter>
#include <QPen>
#include <QStyleOptionGraphicsItem>

namespace {
constexpr double outlineRadius = 15.0;
constexpr double outlineWidth = 10.0;

/// How far within an edge a line has to run to stay inside of it, in the painter's units, if its width is one
/// on the screen. Any other line runs along the edge itself.
double halfOfScreenLine(const QPainter &painter)
{
    const QPen &pen = painter.pen();
    const double scale = QStyleOptionGraphicsItem::levelOfDetailFromTransform(painter.deviceTransform());
    return pen.isCosmetic() && pen.style() != Qt::NoPen && scale > 0 ? pen.widthF() / 2 / scale : 0;
}

} // namespace

OvNode::OvNode(Node *shownNode, TextMaking making)
    : node(shownNode), type(shownNode->getType()), index(shownNode->getIndex()),
      isImportant(shownNode->isImportant())
{
    if (making == TextMaking::atOnce && type == 0)
        takeContent(new EventData(nullptr, making));
    updateFromNode();
}

OvNode::OvNode(const PanelRow &row)
    : node(row.node), type(row.node->getType()), index(row.shownIndex), isImportant(row.isImportant)
{
    if (type == 0 && node->hasDescription())
        late.keep(row.text, row.outline);
    setPos(0, row.y);
}

void OvNode::takeContent(EventData *content)
{
    late.take();
    connect(content, SIGNAL(s_isChanged()), this, SLOT(sl_nodeChanged()));
    eventData_ = content;
}

void OvNode::make()
{
    if (!late.isLate() || type != 0)
        return;
    auto *event = new EventData(nullptr, TextMaking::whenNeeded);
    event->setMeasuredDescription(late.text(), late.place());
    takeContent(event);
    event->setParentItem(this);
}

EventData *OvNode::releaseContent()
{
    auto *content = dynamic_cast<EventData *>(eventData_);
    if (!content)
        return nullptr;
    late.keep(content->getDescription(), content->boundingRect());
    content->disconnect(this);
    content->setParentItem(nullptr);
    if (scene())
        scene()->removeItem(content);
    eventData_ = nullptr;
    return content;
}

void OvNode::adopt(EventData *content)
{
    const QString text = late.text();
    takeContent(content);
    content->setParentItem(this);
    if (content->getDescription() != text) // or its undo history and its cursor would be lost
        content->setDescription(text);
}

QGraphicsItem *OvNode::eventData()
{
    make();
    return eventData_;
}

OvNode::~OvNode()
{
    if (eventData_ && !eventData_->parentItem()) // never filled, so nobody's child yet
        delete eventData_;
}

void OvNode::updateFromNode()
{
    if (type != 0 || !node->hasDescription())
        return;
    if (auto *shown = dynamic_cast<EventData *>(eventData_)) {
        shown->setParentItem(this);
        shown->setDescription(node->description());
        return;
    }
    const QRectF outline = node->descriptionOutline();
    const bool isResized = outline != late.place();
    if (isResized)
        prepareGeometryChange();
    late.keep(node->description(), outline);
    if (isResized)
        layoutPanel();
}

void OvNode::sl_nodeChanged() { emit s_nodeChanged(this); }

QRectF OvNode::boundingRect() const { return late.isLate() ? late.place() : eventData_->boundingRect(); }

void OvNode::paint(QPainter *painter, const QStyleOptionGraphicsItem *, QWidget *)
{
    if (!isImportant || !node->hasDescription())
        return;
    // The node's rectangle, not the entry's own; both hold the same text and so have the same size.
    // The panel's own line lies inside wholly: the panel ends where its entries end.
    const double half = halfOfScreenLine(*painter);
    painter->drawRoundedRect(node->descriptionOutline().adjusted(half, half, -half, -half), outlineRadius,
                             outlineRadius, Qt::AbsoluteSize);

    // For whoever paints with this painter next; the outline itself is drawn with what the painter had.
    painter->setPen(QPen(QBrush(Qt::blue), outlineWidth, Qt::SolidLine, Qt::SquareCap, Qt::BevelJoin));
    painter->setBackground(QBrush(Qt::blue));
    painter->setBrush(QBrush(Qt::blue));
}

void OvNode::aboutToResize() { prepareGeometryChange(); }

void OvNode::resized() { layoutPanel(); }

void OvNode::layoutPanel()
{
    if (auto *panel = dynamic_cast<OverViewerScene *>(scene()))
        panel->layoutOvNodes();
}
