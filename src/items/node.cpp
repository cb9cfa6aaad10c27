#include "items/node.h"

#include "items/connectionline.h"
#include "items/detail.h"
#include "items/eventdata.h"
#include "items/nodedata.h"
#include "items/socket.h"
#include "items/stnodename.h"

#include <QBrush>
#include <QDataStream>
#include <QDebug>
#include <QGraphicsPathItem>
#include <QGraphicsScene>
#include <QGraphicsSceneMouseEvent>
#include <QPainter>
#include <QPainterPath>
#include <QPen>

#include <cmath>

namespace {
constexpr double nodeZ = 1.0;
constexpr double headerZ = 2.0;
constexpr double dataZ = 2.0;
constexpr double nameZ = 3.0;
constexpr double socketZ = 3.0;

constexpr double endMarkHeight = 5.0; // below the text, above the edge
constexpr double endMarkGap = 3.0;
constexpr double leastEndMark = 2.0; // pixels

/// A place that no graph can have would make every line and rectangle that it touches meaningless.
double finiteCoordinate(double stored, int index)
{
    if (std::isfinite(stored))
        return stored;
    qWarning() << "Damaged node" << index << "has a coordinate that is not a finite number, read as 0";
    return 0;
}

} // namespace

Node::Node(int nodeType, TextMaking making) : type(nodeType)
{
    setFlags(ItemIsMovable | ItemIsSelectable);
    setZValue(nodeZ);
    createHeader();
    createName(making);
    createSockets();
    createData(making);
    updateSize();
}

void Node::createHeader()
{
    headerItem = new QGraphicsPathItem(this);
    headerItem->setZValue(headerZ);
    headerItem->setPen(Qt::NoPen);
    if (type == 0)
        headerItem->setBrush(headerColor);
    updateHeaderPath();
}

void Node::createName(TextMaking making)
{
    nameItem_ = new STNodeName(this, making);
    nameItem_->setZValue(nameZ);
    if (type == 0)
        setNodeName(tr("Event"));
    nameItem_->setPos(margin, headerHeight / 10); // NOLINT(bugprone-integer-division): whole units
}

void Node::createSockets()
{
    inSocket_ = new Socket(SocketType::input, this);
    outSocket_ = new Socket(SocketType::output, this);
    for (Socket *socket : {inSocket_, outSocket_}) {
        socket->setZValue(socketZ);
        connectSocket(socket);
    }
}

void Node::connectSocket(Socket *socket)
{
    connect(socket, SIGNAL(s_clicked(int,QPointF)), this, SLOT(sl_socketClick(int,QPointF)));
    connect(socket, SIGNAL(s_clickdrag()), this, SLOT(sl_socketClickDrag()));
    connect(socket, SIGNAL(s_clickReleasedHere()), this, SLOT(sl_socketClickRelease()));
}

void Node::createData(TextMaking making)
{
    data = new NodeData(type, this, making);
    data->setZValue(dataZ);
    data->moveBy(margin + static_cast<int>(inSocket_->boundingRect().width()), headerHeight + margin);
    // Resize before reporting: whoever hears s_changed already sees the new outline.
    connect(data, SIGNAL(s_dataChanged()), this, SLOT(sl_updateSize()));
    connect(data, SIGNAL(s_dataChanged()), this, SLOT(sl_changed()));
}

void Node::setNodeName(const QString &name)
{
    nodeName = name;
    nameItem_->setTitle(name);
}

QString Node::title() const { return nameItem_->title(); }

STNodeName *Node::nameItem() const
{
    nameItem_->makeWhole();
    return nameItem_;
}

void Node::setIndex(int newIndex)
{
    if (newIndex == index)
        return;
    qInfo() << "Old node index " << index << " New node index " << newIndex;
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
    source->copyTo(data);
    type = source->getType();
    updateSize();
}

void Node::updateLines()
{
    if (hasInput_ && inLine_)
        inLine_->setStart(inSocket_->sceneCentre());
    for (const Node *downstream : nextNodes_) {
        if (ConnectionLine *line = downstream->inLine())
            line->setEnd(outSocket_->sceneCentre());
    }
}

void Node::updateSize()
{
    if (!data) // the payload reports its size while it is being made
        return;
    const QRectF payload = data->boundingRect();
    const QRectF input = inSocket_->boundingRect();
    const QRectF output = outSocket_->boundingRect();
    const int width = static_cast<int>(input.width() + output.width() + payload.width() + margin);
    const int height = static_cast<int>(headerHeight + payload.height() + margin);
    const QRectF body(0, 0, width, height);
    if (body != rect) {
        prepareGeometryChange();
        rect = body;
    }
    inSocket_->setPos(0, height / 2);                       // NOLINT(bugprone-integer-division): whole units
    outSocket_->setPos(width - output.width(), height / 2); // NOLINT(bugprone-integer-division)
    updateLines();
    updateHeaderPath();
    nameItem_->setAvailableWidth(width - 2 * margin);
    update();
}

void Node::updateHeaderPath()
{
    const double right = rect.width();
    QPainterPath strip(QPointF(0, headerHeight));
    strip.lineTo(0, cornerRadius);
    strip.quadTo(0, 0, cornerRadius, 0);
    strip.lineTo(right - cornerRadius, 0);
    strip.quadTo(right, 0, right, cornerRadius);
    strip.lineTo(right, headerHeight);
    strip.closeSubpath();
    headerItem->setPath(strip);
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
    Detail::fillRoundedRect(*painter, rect, cornerRadius, bodyColor());
    if (detail.parts != NodeDetail::Parts::all)
        paintPicture(*painter);
    paintEndMark(painter);
}

/// What the hidden parts look like.
void Node::paintPicture(QPainter &painter) const
{
    if (Detail::showsCorners(painter, cornerRadius))
        painter.fillPath(headerItem->path(), headerItem->brush());
    else
        painter.fillRect(headerItem->path().controlPointRect(), headerItem->brush());
    painter.translate(nameItem_->pos());
    nameItem_->paintGreeked(painter);
    painter.translate(data->pos() - nameItem_->pos());
    if (const EventData *event = data->eventContent())
        event->paintGreeked(painter, detail.ground);
    painter.translate(-data->pos());
}

void Node::setDetail(const NodeDetail &wanted)
{
    const NodeDetail::Parts before = detail.parts;
    detail = wanted;
    if (detail.parts == before)
        return;
    for (QGraphicsItem *part : std::initializer_list<QGraphicsItem *>{headerItem, nameItem_, data})
        part->setVisible(detail.parts == NodeDetail::Parts::all);
    for (Socket *socket : {inSocket_, outSocket_})
        socket->setVisible(detail.parts != NodeDetail::Parts::none);
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
    QRectF bar(cornerRadius, 0, rect.width() - 2.0 * cornerRadius,
               qBound(endMarkHeight, leastHeight, rect.height() / 4));
    bar.moveBottom(rect.height() - endMarkGap);
    painter->fillRect(bar, endMarkColor);
}

void Node::mousePressEvent(QGraphicsSceneMouseEvent *event)
{
    emit s_selected(this);
    QGraphicsItem::mousePressEvent(event);
    isPressed = isPressed || event->button() == Qt::LeftButton;
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
    const QPointF press = event->buttonDownScenePos(Qt::LeftButton);
    if (isPressed || dragNumber == 0 || press != pressOfDrag)
        pickUp();
    isPressed = false;
    pressOfDrag = press;
    drag(event->scenePos() - press);
}

void Node::reportSocketPlaces()
{
    const QPointF inputCentre = inSocket_->sceneCentre();
    const QPointF outputCentre = outSocket_->sceneCentre();
    emit s_inSocketMove(inputCentre);
    emit s_outSocketMove(outputCentre);
}

std::vector<Node *> Node::selectedNodesAndThis()
{
    std::vector<Node *> all;
    const QList<QGraphicsItem *> selected = scene() ? scene()->selectedItems() : QList<QGraphicsItem *>();
    for (QGraphicsItem *item : selected) {
        if (auto *node = dynamic_cast<Node *>(item); node && node != this)
            all.push_back(node);
    }
    all.push_back(this);
    return all;
}

/// The first move of a drag: all that is selected now goes with this node.
void Node::pickUp()
{
    static quint64 drags = 0;
    ++drags;
    for (Node *node : selectedNodesAndThis()) {
        node->dragNumber = drags;
        node->placeBeforeDrag = node->pos();
    }
}

/// Moves what was picked up and is still selected. The framework's own handler moves what is selected at each
/// moment: a node that was selected in the midst of the drag would start from (0, 0), and after a drag that
/// was cut short, because its node went, the next one would as well.
void Node::drag(QPointF way)
{
    for (Node *node : selectedNodesAndThis()) {
        if (node->dragNumber == dragNumber)
            node->setPos(node->placeBeforeDrag + way);
    }
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
    data->save(stream);
}

void Node::openFromStream(QDataStream &stream)
{
    QString title;
    QPointF position;
    qint32 storedIndex = 0;
    qint32 storedPrevIndex = 0;
    qint32 endOfStory = 0;
    qint32 important = 0;
    stream >> title >> position >> storedIndex >> storedPrevIndex >> endOfStory >> important;
    data->load(stream);

    nameItem_->setTitle(title);
    placeAt(
        QPointF(finiteCoordinate(position.x(), storedIndex), finiteCoordinate(position.y(), storedIndex)));
    setIndex(storedIndex);
    // Told once more, so that a record whose index is the node's own is announced as well.
    emit s_indexChanged(this, storedIndex);
    prevIndex = storedPrevIndex;
    if (endOfStory == 1)
        isEndOfStory_ = true;
    if (important != 0)
        isImportant_ = true;
    update();
}
