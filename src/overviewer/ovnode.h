#pragma once

#include "items/latetext.h"
#include "items/resizeobserver.h"
#include "overviewer/listedevent.h"

#include <QGraphicsItem>
#include <QObject>

class EventData;
class Node;
struct PanelRow;

/// One entry of the panel: an editable copy of a story event's description. Owned by the panel's scene.
class OvNode : public QObject, public QGraphicsItem, public ResizeObserver
{
    Q_OBJECT
    Q_INTERFACES(QGraphicsItem)

public:
    /// `node` is not owned; the panel removes the entry before the node goes.
    explicit OvNode(Node *node, TextMaking making = TextMaking::atOnce);
    /// The entry of a row: it shows what the row tells, and stands where the row does.
    explicit OvNode(const PanelRow &row);
    ~OvNode() override;

    /// Makes the entry's content if it is still missing. An entry that somebody asked for need not be in
    /// sight: it is a text and the size of the node's own.
    void make();
    /// Takes the content out, to be adopted by another entry: of the caller's then, and in no scene. Null if
    /// it was never made.
    EventData *releaseContent();
    /// Takes over a content that was another entry's, instead of making one. Its text becomes the node's, in
    /// case it is not. Only while this entry is in no scene.
    void adopt(EventData *content);
    /// Takes the description from the node again, without reporting a change.
    void updateFromNode();

    /// The event that is shown. Only while the entry is listed, for the node may go after that.
    ListedEvent shownEvent() const { return ListedEvent(node); }
    int getIndex() const { return index; }
    /// Scene coordinate of the upper edge.
    double top() const { return y() + boundingRect().top(); }
    void setIndex(int newIndex) { index = newIndex; }
    void setImportant(bool important) { isImportant = important; }
    /// The entry's own content, an EventData; owned by the entry. Null for a node that is no event.
    QGraphicsItem *eventData();

    QRectF boundingRect() const override;
    void paint(QPainter *painter, const QStyleOptionGraphicsItem *option, QWidget *widget) override;

    void aboutToResize() override;
    void resized() override;

signals:
    void s_nodeChanged(OvNode *node);

public slots:
    void sl_nodeChanged();

private:
    void layoutPanel();
    void takeContent(EventData *content);

    Node *node;
    QGraphicsItem *eventData_ = nullptr;
    LateText late; // the description while there is no content
    int type;
    int index;
    bool isImportant;
};
