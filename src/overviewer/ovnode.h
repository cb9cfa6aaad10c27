#pragma once

#include "items/resizeobserver.h"

#include <QGraphicsItem>
#include <QObject>

class EventData;
class Node;

/// One entry of the panel: an editable copy of a story event's description. Owned by the panel's scene.
class OvNode : public QObject, public QGraphicsItem, public ResizeObserver
{
    Q_OBJECT
    Q_INTERFACES(QGraphicsItem)

public:
    /// `node` is not owned; the panel removes the entry before the node goes.
    explicit OvNode(Node *node);
    ~OvNode() override;

    /// Takes the description from the node again, without reporting a change.
    void updateFromNode();

    int getIndex() const { return index; }
    void setIndex(int newIndex) { index = newIndex; }
    void setImportant(bool important) { isImportant = important; }
    /// The entry's own content, an EventData; owned by the entry. Null for a node that is no event.
    QGraphicsItem *getEventData() const { return eventData; }

    QRectF boundingRect() const override;
    void paint(QPainter *painter, const QStyleOptionGraphicsItem *option, QWidget *widget) override;

    void aboutToResize() override;
    void resized() override;

signals:
    void s_nodeChanged(OvNode *node);

public slots:
    void sl_nodeChanged();

private:
    EventData *nodeContent() const;

    Node *node;
    QGraphicsItem *eventData = nullptr;
    int type;
    int index;
    bool isImportant;
};
