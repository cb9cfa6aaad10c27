#pragma once

#include "items/latetext.h"
#include "items/nodedetail.h"
#include "items/nodedrag.h"
#include "items/nodeparts.h"
#include "items/resizeobserver.h"

#include <QColor>
#include <QGraphicsItem>
#include <QObject>

#include <array>
#include <functional>
#include <memory>
#include <vector>

class ConnectionLine;
class LateEvent;
class NodeData;
class QDataStream;
class STNodeName;
class Socket;
struct NodeRecord;

/// The box that stands for one event of a story. Owned by its scene; owns its header, texts and sockets.
///
/// It can do without those inner items until somebody comes near enough to see them or asks for one: until
/// then it answers by itself for its texts, its outline and the places of its sockets, and has a picture of
/// them for who is far away.
///
/// The links to other nodes and lines are observers that the scene writes; the node only moves line ends.
class Node : public QObject, public QGraphicsItem, public ResizeObserver
{
    Q_OBJECT
    Q_INTERFACES(QGraphicsItem)

public:
    /// `type` 0 is the event, the only type that the program makes.
    explicit Node(int type, TextMaking making = TextMaking::atOnce);
    ~Node() override;

    /// Whether its inner items have not been made yet.
    bool isLate() const { return late != nullptr; }
    /// Makes them. So does whoever asks for one of them.
    void make();

    void setNodeName(const QString &name);
    /// The plain text of the title item, which the user edits directly.
    QString title() const;

    int getType() const { return type; }
    /// The payload, with the description; owned by this node.
    NodeData *payload() const;
    Socket *inSocket() const;
    Socket *outSocket() const;
    /// The place of that socket (SocketType) in scene coordinates.
    QRectF socketOutline(int socketType) const;
    /// The middle of that socket (SocketType) in scene coordinates, where lines end.
    QPointF socketCentre(int socketType) const;
    /// The node whose socket is joined to that socket of this one, null when there is none. Not owned.
    Node *partner(int socketType) const { return partners.at(std::size_t(socketType)); }
    void setPartner(int socketType, Node *other);
    /// The title item, whole; owned by this node.
    STNodeName *nameItem() const;

    /// The node's number in its scene.
    int getIndex() const { return index; }
    void setIndex(int newIndex);
    /// The index of the node that feeds the input, -1 when none does.
    int getPrevIndex() const { return prevIndex; }
    void setPrevIndex(int upstreamIndex) { prevIndex = upstreamIndex; }

    bool hasInput() const { return hasInput_; }
    void setHasInput(bool connected) { hasInput_ = connected; }
    /// The node that feeds the input, null when none does. Not owned.
    Node *prevNode() const { return prevNode_; }
    void setPrevNode(Node *upstream) { prevNode_ = upstream; }
    /// The nodes that the output feeds, in the order of connecting. Not owned.
    const std::vector<Node *> &nextNodes() const { return nextNodes_; }
    void addNextNode(Node *downstream) { nextNodes_.push_back(downstream); }
    /// Removes every occurrence.
    void removeNextNode(const Node *downstream);
    /// The line at the input, null when there is none. Owned by the scene.
    ConnectionLine *inLine() const { return inLine_; }
    void setInLine(ConnectionLine *line) { inLine_ = line; }
    /// The line of the newest connection made from the output, null when there is none. Owned by the scene.
    ConnectionLine *outLine() const;

    static const QColor &headerColor();
    /// What the body is filled with, by the marks and the selection.
    QColor bodyColor() const;

    bool isEndOfStory() const { return isEndOfStory_; }
    void setIsEndOfStory(bool endOfStory);
    bool isImportant() const { return isImportant_; }
    void setImportant(bool important);

    /// Shows as much as that. The parts that are left out are hidden: they take no press, and none of their
    /// texts has the keyboard.
    void setDetail(const NodeDetail &wanted);
    NodeDetail::Parts shownParts() const { return detail.parts; }

    /// Whether it has a description, as every event does.
    bool hasDescription() const;
    /// Empty if it has none.
    QString description() const;
    /// Reports no change; ignored if it has none.
    void setDescription(const QString &text);
    /// What the description takes in the payload's coordinates, margins included; empty if it has none.
    QRectF descriptionOutline() const;

    /// Takes over the description and the type of `source`, which stays the caller's. Reports no change.
    void copyDataFrom(const NodeData *source);
    void copyDataFrom(const Node &source);
    /// Lays the node out around its payload.
    void updateSize();
    /// Tells where the middles of its sockets are, that of the input first.
    void reportSocketPlaces();
    /// Puts the ends of all attached lines on the sockets' middles.
    void updateLines();

    /// What the mouse does with it, by itself or along with others that are selected.
    NodeDrag &drag() { return drag_; }
    /// Moves the node to exactly that place, in scene coordinates.
    void placeAt(const QPointF &place);

    /// Write and read the node's record: title, position, index, upstream index, marks, payload.
    void saveToStream(QDataStream &stream);
    /// `told` is called for each coordinate that is no finite number, with the record's index; without it the
    /// log is told.
    void openFromStream(QDataStream &stream, const std::function<void(int index)> &told = {});
    static void tellOfCoordinate(int index);
    /// Reads as much of the stream as openFromStream() would, as it stands there.
    static NodeRecord readRecord(QDataStream &stream);

    QRectF boundingRect() const override { return rect; }
    void paint(QPainter *painter, const QStyleOptionGraphicsItem *option, QWidget *widget) override;

    void aboutToResize() override {} // updateSize() announces the change itself
    void resized() override { updateSize(); }

signals:
    void s_selected(Node *node);
    void s_moving(Node *node);
    void s_inSocketMove(QPointF);
    void s_outSocketMove(QPointF);
    void s_socketClick(int type, QPointF);
    void s_socketClickDrag();
    void s_socketClickRelease();
    void s_changed(Node *node);
    void s_indexChanged(Node *node, int index);
    void s_importanceChanged(Node *node, bool isImportant);

public slots:
    void sl_socketClick(int type, QPointF);
    void sl_socketClickDrag();
    void sl_socketClickRelease();
    void sl_updateSize();
    void sl_changed();

protected:
    void mousePressEvent(QGraphicsSceneMouseEvent *event) override;
    void mouseMoveEvent(QGraphicsSceneMouseEvent *event) override;

private:
    static constexpr QColor baseColor{0xd9, 0xd9, 0xd9};
    static constexpr QColor selectedColor{0xeb, 0xf4, 0x00};
    static constexpr QColor endOfStoryColor{0xd6, 0xb4, 0xfc};
    static constexpr QColor importantColor{0xad, 0xd8, 0xe6};
    static constexpr QColor endMarkColor{0x6a, 0x1f, 0xd0};

    NodeParts &inner() const;
    void takeTitle(const QString &text);
    void takeType(int other);
    void takeLoaded(const QString &text);
    void paintPicture(QPainter &painter) const;
    void paintSockets(QPainter &painter) const;
    void paintEndMark(QPainter *painter) const;

    QString nodeName;
    QRectF rect{0, 0, 231.0, 196.0}; // item coordinates
    int type;
    std::unique_ptr<LateEvent> late;  // either this
    std::unique_ptr<NodeParts> parts; // or those
    bool isBeingMade = false;         // the ones from the other
    Node *prevNode_ = nullptr;
    std::vector<Node *> nextNodes_;
    std::array<Node *, 2> partners{}; // by SocketType
    ConnectionLine *inLine_ = nullptr;
    bool hasInput_ = false;
    bool isEndOfStory_ = false;
    bool isImportant_ = false;
    int index = 0;
    int prevIndex = -1;
    NodeDetail detail;
    NodeDrag drag_{*this};
};
