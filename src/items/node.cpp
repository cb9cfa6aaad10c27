#include "items/node.h"

#include "items/connectionline.h"
#include "items/detail.h"
#include "items/eventdata.h"
#include "items/lateevent.h"
#include "items/nodedata.h"
#include "items/noderecord.h"
#include "items/nodeshape.h"
#include "items/socket.h"
#include "items/stnodename.h"

#include <QDataStream>
#include <QDebug>
#include <QGraphicsSceneMouseEvent>
#include <QPainter>
#include <QScopedValueRollback>

#include <cmath>

namespace {
constexpr double nodeZ = 1.0;

constexpr double endMarkHeight = 5.0; // below the text, above the edge
constexpr double endMarkGap = 3.0;
constexpr double leastEndMark = 2.0; // pixels

/// A place that no graph can have would make every line and rectangle that it touches meaningless.
double finiteCoordinate(double stored, int index, const std::function<void(int index)> &told)
{
    if (std::isfinite(stored))
        return stored;
    if (told)
        told(index);
    else
        Node::tellOfCoordinate(index);
    return 0;
}

/// All but its payload.
void readHead(QDataStream &stream, NodeRecord &record)
{
    stream >> record.title >> record.position >> record.index >> record.prevIndex >> record.endOfStory >>
        record.important;
}

} // namespace

Node::Node(int nodeType, TextMaking making) : type(nodeType)
{
    setFlags(ItemIsMovable | ItemIsSelectable);
    setZValue(nodeZ);
    static const QString event = tr("Event");
    if (type == 0)
        nodeName = event;
    if (making == TextMaking::whenNeeded && type == 0) {
        late = std::make_unique<LateEvent>(nodeName);
    } else {
        parts = std::make_unique<NodeParts>(*this, type, making);
        if (type == 0)
            parts->name()->setTitle(nodeName);
    }
    updateSize();
}

Node::~Node() = default;

void Node::make()
{
    if (!late || isBeingMade)
        return;
    // Until all of it is there the node answers as before: there may be no memory for it, and what is written
    // then must be whole. Nor does it tell of a size that stays the same: lines that follow a drag would
    // jump.
    const QScopedValueRollback making(isBeingMade, true);
    auto made = std::make_unique<NodeParts>(*this, type, TextMaking::whenNeeded);
    made->name()->setTitle(late->title());
    made->data()->eventContent()->takeOver(late->description(), late->outline(), late->lastReported());
    for (const int socketType : {SocketType::input, SocketType::output})
        made->socket(socketType)->setConnectedNode(partner(socketType));
    made->show(detail.parts);
    made->layOut(rect);
    parts = std::move(made);
    late.reset();
    update();
}

/// To ask for an item makes it, which nobody can tell from its having been there before.
NodeParts &Node::inner() const
{
    const_cast<Node *>(this)->make();
    return *parts;
}

NodeData *Node::payload() const { return inner().data(); }

Socket *Node::inSocket() const { return inner().socket(SocketType::input); }

Socket *Node::outSocket() const { return inner().socket(SocketType::output); }

void Node::setNodeName(const QString &name)
{
    nodeName = name;
    takeTitle(name);
}

void Node::takeTitle(const QString &text)
{
    if (late && LateText::canWait(text))
        late->setTitle(text);
    else
        inner().name()->setTitle(text);
    update();
}

QString Node::title() const { return late ? late->title() : parts->name()->title(); }

STNodeName *Node::nameItem() const
{
    STNodeName *name = inner().name();
    name->makeWhole();
    return name;
}

void Node::setIndex(int newIndex)
{
    if (newIndex == index)
        return;
    qInfo("Old node index  %d  New node index  %d", index, newIndex); // many: a stream takes twice as long
    emit s_indexChanged(this, newIndex);
    index = newIndex;
}

void Node::removeNextNode(const Node *downstream) { std::erase(nextNodes_, downstream); }

ConnectionLine *Node::outLine() const { return nextNodes_.empty() ? nullptr : nextNodes_.back()->inLine(); }

void Node::setIsEndOfStory(bool endOfStory)
{
    isEndOfStory_ = endOfStory;
    update();
}

// Told before it is stored, and told every time: the panel keeps its own copy of the mark.
void Node::setImportant(bool important)
{
    emit s_importanceChanged(this, important);
    isImportant_ = important;
}

void Node::copyDataFrom(const NodeData *source)
{
    if (const EventData *event = source->getType() == 0 ? source->eventContent() : nullptr)
        setDescription(event->getDescription());
    takeType(source->getType());
}

void Node::copyDataFrom(const Node &source)
{
    if (source.hasDescription())
        setDescription(source.description());
    takeType(source.type);
}

/// What has been made stays as it is; only an event can do without.
void Node::takeType(int other)
{
    if (other != type)
        make();
    type = other;
    updateSize();
}

bool Node::hasDescription() const { return late || parts->data()->eventContent(); }

QString Node::description() const
{
    if (late)
        return late->description();
    const EventData *event = parts->data()->eventContent();
    return event ? event->getDescription() : QString();
}

void Node::setDescription(const QString &text)
{
    if (late && LateText::canWait(text)) {
        late->setDescription(text);
        updateSize();
    } else if (EventData *event = payload()->eventContent()) {
        event->setDescription(text);
    }
}

/// As the description's own reading does: laid out anew, then reported if it is another one.
void Node::takeLoaded(const QString &text)
{
    if (!late || !LateText::canWait(text)) {
        payload()->eventContent()->replaceDescription(text);
        return;
    }
    setDescription(text);
    if (late->report())
        emit s_changed(this);
}

QRectF Node::descriptionOutline() const { return late ? late->outline() : parts->data()->boundingRect(); }

QRectF Node::socketOutline(int socketType) const
{
    return {scenePos() + NodeShape::socketPlace(socketType, rect), Socket::size};
}

QPointF Node::socketCentre(int socketType) const
{
    return scenePos() + NodeShape::socketPlace(socketType, rect) + QRectF({}, Socket::size).center();
}

void Node::setPartner(int socketType, Node *other)
{
    partners.at(std::size_t(socketType)) = other;
    if (parts)
        parts->socket(socketType)->setConnectedNode(other);
    else
        update();
}

void Node::updateLines()
{
    if (hasInput_ && inLine_)
        inLine_->setStart(socketCentre(SocketType::input));
    const QPointF output = socketCentre(SocketType::output);
    for (const Node *downstream : nextNodes_) {
        if (ConnectionLine *line = downstream->inLine())
            line->setEnd(output);
    }
}

void Node::updateSize()
{
    if (isBeingMade || (!late && !parts)) // the payload reports its size meanwhile
        return;
    const QRectF body = NodeShape::body(descriptionOutline());
    if (body != rect) {
        prepareGeometryChange();
        rect = body;
    }
    if (parts)
        parts->layOut(rect);
    updateLines();
    update();
}

const QColor &Node::headerColor()
{
    static const QColor color(QStringLiteral("#8556E9"));
    return color;
}

QColor Node::bodyColor() const
{
    if (isSelected())
        return selectedColor;
    if (isImportant_)
        return importantColor;
    return isEndOfStory_ ? endOfStoryColor : baseColor;
}

void Node::paint(QPainter *painter, const QStyleOptionGraphicsItem *, QWidget *)
{
    if (detail.parts == NodeDetail::Parts::all)
        make(); // whoever asks the framework for a picture past the scene; its next one is whole
    Detail::fillRoundedRect(*painter, rect, NodeShape::cornerRadius, bodyColor());
    if (detail.parts != NodeDetail::Parts::all)
        paintPicture(*painter);
    paintEndMark(painter);
    if (late && detail.parts == NodeDetail::Parts::handles)
        paintSockets(*painter);
}

/// What the hidden parts look like.
void Node::paintPicture(QPainter &painter) const
{
    if (type == 0 && Detail::showsCorners(painter, NodeShape::cornerRadius))
        painter.fillPath(NodeShape::header(rect.width()), headerColor());
    else if (type == 0)
        painter.fillRect(QRectF(0, 0, rect.width(), NodeShape::headerHeight), headerColor());
    const QPointF title = NodeShape::titlePlace();
    const QPointF payload = NodeShape::payloadPlace();
    painter.translate(title);
    if (late)
        late->paintTitle(painter, NodeShape::titleRoom(rect.width()));
    else
        parts->name()->paintGreeked(painter);
    painter.translate(payload - title);
    if (late)
        late->paintDescription(painter, detail.ground);
    else if (const EventData *event = parts->data()->eventContent())
        event->paintGreeked(painter, detail.ground);
    painter.translate(-payload);
}

void Node::paintSockets(QPainter &painter) const
{
    for (const int socketType : {SocketType::input, SocketType::output})
        Socket::paintOne(painter, NodeShape::socketPlace(socketType, rect), partner(socketType) != nullptr);
}

void Node::setDetail(const NodeDetail &wanted)
{
    const NodeDetail::Parts before = detail.parts;
    detail = wanted;
    if (detail.parts == before)
        return;
    if (parts)
        parts->show(detail.parts);
    update();
}

/// The bar along the lower edge that says whatever the body's colour does not say: importance and selection
/// cover that of the end. The body is all around it, so that it has to stand out from bodies only.
void Node::paintEndMark(QPainter *painter) const
{
    if (!isEndOfStory_)
        return;
    const double scale = Detail::scaleOf(*painter);
    const double leastHeight = scale > 0 ? leastEndMark / scale : 0;
    QRectF bar(NodeShape::cornerRadius, 0, rect.width() - 2.0 * NodeShape::cornerRadius,
               qBound(endMarkHeight, leastHeight, rect.height() / 4));
    bar.moveBottom(rect.height() - endMarkGap);
    painter->fillRect(bar, endMarkColor);
}

void Node::mousePressEvent(QGraphicsSceneMouseEvent *event)
{
    emit s_selected(this);
    QGraphicsItem::mousePressEvent(event);
    if (event->button() == Qt::LeftButton)
        drag_.press();
}

// The reported places are those before this move; the lines catch up with the next one, and on release.
void Node::mouseMoveEvent(QGraphicsSceneMouseEvent *event)
{
    emit s_moving(this);
    reportSocketPlaces();
    if (!(event->buttons() & Qt::LeftButton)) {
        QGraphicsItem::mouseMoveEvent(event);
        return;
    }
    drag_.move(event->buttonDownScenePos(Qt::LeftButton), event->scenePos());
}

void Node::reportSocketPlaces()
{
    const QPointF inputCentre = socketCentre(SocketType::input);
    const QPointF outputCentre = socketCentre(SocketType::output);
    emit s_inSocketMove(inputCentre);
    emit s_outSocketMove(outputCentre);
}

void Node::sl_socketClick(int socketType, QPointF point) { emit s_socketClick(socketType, point); }

void Node::sl_socketClickDrag() { emit s_socketClickDrag(); }

void Node::sl_socketClickRelease() { emit s_socketClickRelease(); }

void Node::sl_updateSize() { updateSize(); }

void Node::sl_changed() { emit s_changed(this); }

void Node::placeAt(const QPointF &place)
{
    // The framework takes a place that is almost the present one for the same, so one that is neither comes
    // between.
    setPos(place.x() > 0 ? -1 : 1, place.y() > 0 ? -1 : 1);
    setPos(place);
}

void Node::saveToStream(QDataStream &stream)
{
    // A node in a scene stands in no other item; scenePos() would lose the sign of a zero.
    const QPointF place = parentItem() ? scenePos() : pos();
    stream << title() << place << qint32(index) << qint32(prevIndex) << qint32(isEndOfStory_ ? 1 : 0)
           << qint32(isImportant_ ? 1 : 0);
    if (late)
        EventData::writeRecord(stream, late->description());
    else
        parts->data()->save(stream);
}

void Node::tellOfCoordinate(int index)
{
    qWarning() << "Damaged node" << index << "has a coordinate that is not a finite number, read as 0";
}

void Node::openFromStream(QDataStream &stream, const std::function<void(int index)> &told)
{
    NodeRecord record;
    readHead(stream, record);
    if (late)
        EventData::readRecord(stream, [this](const QString &text) { takeLoaded(text); });
    else
        parts->data()->load(stream);

    takeTitle(record.title);
    placeAt(QPointF(finiteCoordinate(record.position.x(), record.index, told),
                    finiteCoordinate(record.position.y(), record.index, told)));
    setIndex(record.index);
    // Told once more, so that a record whose index is the node's own is announced as well.
    emit s_indexChanged(this, record.index);
    prevIndex = record.prevIndex;
    if (record.endOfStory == 1)
        isEndOfStory_ = true;
    if (record.important != 0)
        isImportant_ = true;
    update();
}

NodeRecord Node::readRecord(QDataStream &stream)
{
    NodeRecord record;
    readHead(stream, record);
    stream >> record.text;
    return record;
}
