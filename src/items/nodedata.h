#pragma once

#include "items/latetext.h"
#include "items/resizeobserver.h"

#include <QGraphicsItem>
#include <QObject>

class EventData;
class QDataStream;

/// The type-neutral shell around a node's content. Owned by its node, its parent item.
///
/// Passes save and load requests to the content and changes of the content upwards.
class NodeData : public QObject, public QGraphicsItem, public ResizeObserver
{
    Q_OBJECT
    Q_INTERFACES(QGraphicsItem)

public:
    /// `type` 0 makes an event's content, any other type none. With a null `parent` the caller owns the
    /// object.
    NodeData(int type, QGraphicsItem *parent, TextMaking making = TextMaking::atOnce);

    /// A copy with the same type and description, for keeping. Its content is not wired for saving or for
    /// reporting changes. No parent: the caller owns it.
    NodeData *clone() const;
    /// Sets the description of `target` to this one's; nothing happens unless both are events.
    void copyTo(NodeData *target) const;

    int getType() const { return type; }
    /// The content item, null for a type that has none. Owned by this object.
    QGraphicsItem *content() const { return content_; }
    /// The content as an event's, null if it is none.
    EventData *eventContent() const;

    /// Tell the content to write or read its record, which it has done on return.
    void save(QDataStream &stream);
    void load(QDataStream &stream);

    /// That of the content, empty where there is none.
    QRectF boundingRect() const override;
    void paint(QPainter *painter, const QStyleOptionGraphicsItem *option, QWidget *widget) override;

    void aboutToResize() override;
    void resized() override;

signals:
    void s_dataChanged();
    void s_saveToFile(QDataStream &stream);
    void s_openFromFile(QDataStream &stream);

public slots:
    void sl_dataChanged();
    void sl_saveToFile(QDataStream &stream);
    void sl_openFromFile(QDataStream &stream);

private:
    QGraphicsItem *content_ = nullptr;
    int type;
};
