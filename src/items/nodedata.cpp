#include "items/nodedata.h"

#include "items/eventdata.h"

#include <QDataStream>

NodeData::NodeData(int dataType, QGraphicsItem *parent, TextMaking making) : type(dataType)
{
    setFlag(ItemHasNoContents);
    setParentItem(parent);
    if (type != 0)
        return;
    auto *event = new EventData(this, making);
    connect(this, &NodeData::s_saveToFile, event, &EventData::sl_saveToFile);
    connect(this, &NodeData::s_openFromFile, event, &EventData::sl_openFromFile);
    connect(event, &EventData::s_isChanged, this, &NodeData::sl_dataChanged);
    content_ = event;
}

NodeData *NodeData::clone() const
{
    auto *copy = new NodeData(type, nullptr, TextMaking::whenNeeded);
    if (const EventData *event = eventContent()) {
        // A second content that is wired to nothing: a kept copy never reports or saves by itself.
        auto *kept = new EventData(copy, TextMaking::whenNeeded);
        kept->setMeasuredDescription(event->getDescription(), event->boundingRect());
        copy->content_ = kept;
    }
    return copy;
}

void NodeData::copyTo(NodeData *target) const
{
    const EventData *from = eventContent();
    EventData *to = target ? target->eventContent() : nullptr;
    if (type == 0 && from && to)
        to->setDescription(from->getDescription());
}

EventData *NodeData::eventContent() const { return dynamic_cast<EventData *>(content_); }

QRectF NodeData::boundingRect() const { return content_ ? content_->boundingRect() : QRectF(); }

void NodeData::paint(QPainter *, const QStyleOptionGraphicsItem *, QWidget *) {}

void NodeData::aboutToResize()
{
    ResizeObserver::tellAboutToResize(parentItem());
    prepareGeometryChange();
}

void NodeData::resized() { ResizeObserver::tellResized(parentItem()); }

void NodeData::sl_dataChanged() { emit s_dataChanged(); }

void NodeData::save(QDataStream &stream) { emit s_saveToFile(stream); }

void NodeData::load(QDataStream &stream) { emit s_openFromFile(stream); }

void NodeData::sl_saveToFile(QDataStream &stream) { save(stream); }

void NodeData::sl_openFromFile(QDataStream &stream) { load(stream); }
