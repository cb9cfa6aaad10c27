#include "overviewer/ovnode.h"

#include "items/eventdata.h"
#include "items/node.h"
#include "items/nodedata.h"
#include "overviewer/overviewerscene.h"

#include <QBrush>
#include <QPainter>
#include <QPen>

namespace {
constexpr double outlineRadius = 15.0;
constexpr double outlineWidth = 10.0;
} // namespace

OvNode::OvNode(Node *shownNode)
    : node(shownNode), type(shownNode->getType()), index(shownNode->getIndex()),
      isImportant(shownNode->getIsImportant())
{
    if (type == 0) {
        auto *event = new EventData(nullptr);
        connect(event, SIGNAL(s_isChanged()), this, SLOT(sl_nodeChanged()));
        eventData = event;
    }
    updateFromNode();
}

OvNode::~OvNode()
{
    if (eventData && !eventData->parentItem()) // never filled, so nobody's child yet
        delete eventData;
}

EventData *OvNode::nodeContent() const { return node->getData() ? node->getData()->eventContent() : nullptr; }

void OvNode::updateFromNode()
{
    if (type != 0)
        return;
    auto *shown = dynamic_cast<EventData *>(eventData);
    const EventData *content = nodeContent();
    if (!shown || !content)
        return;
    shown->setParentItem(this);
    shown->setDescription(content->getDescription());
}

void OvNode::sl_nodeChanged() { emit s_nodeChanged(this); }

QRectF OvNode::boundingRect() const { return eventData ? eventData->boundingRect() : QRectF(); }

void OvNode::paint(QPainter *painter, const QStyleOptionGraphicsItem *, QWidget *)
{
    const EventData *content = nodeContent();
    if (!isImportant || !content)
        return;
    // The node's rectangle, not the entry's own; both hold the same text and so have the same size.
    painter->drawRoundedRect(content->boundingRect(), outlineRadius, outlineRadius, Qt::AbsoluteSize);

    // For whoever paints with this painter next; the outline itself is drawn with what the painter had.
    painter->setPen(QPen(QBrush(Qt::blue), outlineWidth, Qt::SolidLine, Qt::SquareCap, Qt::BevelJoin));
    painter->setBackground(QBrush(Qt::blue));
    painter->setBrush(QBrush(Qt::blue));
}

void OvNode::aboutToResize() { prepareGeometryChange(); }

void OvNode::resized()
{
    if (auto *panel = dynamic_cast<OverViewerScene *>(scene()))
        panel->layoutOvNodes();
}
