#include "overviewer/overviewerscene.h"

#include "overviewer/panelobserver.h"

#include <QBrush>
#include <QDebug>
#include <QFocusEvent>
#include <QGraphicsSceneMouseEvent>

#include <algorithm>
#include <utility>

namespace {
/// The panel's rectangle while it has no entries; a null one would mean whatever was ever covered.
const QRectF emptyPanel(0, 0, 1, 1);

constexpr std::size_t firstScreen = 30; // entries that are made at once
} // namespace

OverViewerScene::OverViewerScene()
{
    // Entries come and go all at once, so an index of their places would be rebuilt for every story.
    setItemIndexMethod(QGraphicsScene::NoIndex);
    setBackgroundBrush(backgroundColor);
    rebuildOvNodes();
}

// The entries go with the base, when nobody can look at the panel any more.
OverViewerScene::~OverViewerScene() { disconnect(this, &QGraphicsScene::focusItemChanged, nullptr, nullptr); }

void OverViewerScene::rebuildOvNodes()
{
    clearOvNodes();
    if (!storyNodes.empty())
        listedGraph = storyNodes.front()->scene();
    for (Node *node : storyNodes) {
        if (!showImportantOnly || node->isImportant())
            addOvNode(node);
    }
    qInfo() << "No of ovnodes now: " << ovNodes_.size();
    layoutOvNodes();
    keyboard.resume();
}

void OverViewerScene::addOvNode(Node *node)
{
    auto *entry = new OvNode(node, TextMaking::whenNeeded);
    if (keyboard.isAwaitedBy(node))
        keyboard.giveBackTo(entry);
    else if (ovNodes_.size() < firstScreen)
        entry->make();
    entryMark.noteEntry(entry, node);
    addItem(entry);
    ovNodes_.push_back(entry);
    currentOvNode = entry;
    connect(entry, &OvNode::s_nodeChanged, this, &OverViewerScene::sl_updateOvNode);
}

/// All at once, which takes a third of the time: an item that leaves alone is looked up in a list of all of
/// them. No edit of an entry changes the story, so none of their own handlers is running.
void OverViewerScene::clearOvNodes()
{
    if (observer)
        observer->aboutToPlaceEntries();
    keyboard.takeAside();
    entryMark.forgetEntries();
    takeInNewItems(); // several stories may come before the event loop runs
    currentOvNode = nullptr;
    ovNodes_.clear();
    clear();
}

/// Entries stand below one another, so those between two heights follow each other.
void OverViewerScene::makeEntriesIn(double top, double bottom)
{
    const auto endsAbove = [](const OvNode *entry, double y) {
        return entry->y() + entry->boundingRect().bottom() < y;
    };
    auto entry = std::lower_bound(ovNodes_.begin(), ovNodes_.end(), top, endsAbove);
    for (; entry != ovNodes_.end() && (*entry)->y() <= bottom; ++entry)
        (*entry)->make();
}

// The items to paint are looked up after this.
void OverViewerScene::drawBackground(QPainter *painter, const QRectF &rect)
{
    makeEntriesIn(rect.top(), rect.bottom());
    QGraphicsScene::drawBackground(painter, rect);
}

// A view that was scrolled may get a press before it is painted.
bool OverViewerScene::event(QEvent *event)
{
    if (event->type() == QEvent::GraphicsSceneMousePress) {
        keyboard.giveUp();
        const double y = static_cast<QGraphicsSceneMouseEvent *>(event)->scenePos().y();
        makeEntriesIn(y, y);
    }
    return QGraphicsScene::event(event);
}

void OverViewerScene::focusInEvent(QFocusEvent *event)
{
    QGraphicsScene::focusInEvent(event);
    keyboard.resume();
}

void OverViewerScene::focusOutEvent(QFocusEvent *event)
{
    QGraphicsScene::focusOutEvent(event);
    keyboard.panelLeft(event->reason());
}

void OverViewerScene::drawForeground(QPainter *painter, const QRectF &rect)
{
    QGraphicsScene::drawForeground(painter, rect);
    entryMark.paint(*painter);
}

OvNode *OverViewerScene::writtenEntry() const
{
    for (QGraphicsItem *item = focusItem(); item; item = item->parentItem()) {
        if (auto *entry = dynamic_cast<OvNode *>(item))
            return entry;
    }
    return nullptr;
}

void OverViewerScene::endWriting()
{
    setFocusItem(nullptr);
    keyboard.giveUp();
}

int OverViewerScene::layoutOvNodes()
{
    if (observer)
        observer->aboutToPlaceEntries();
    int y = 0;
    QRectF covered;
    for (OvNode *entry : ovNodes_) {
        entry->setPos(0, y);
        const QRectF outline = entry->boundingRect();
        covered |= outline.translated(0, y);
        y = static_cast<int>(spacing_ + outline.height() + y);
    }
    setSceneRect(covered.isNull() ? emptyPanel : covered);
    if (observer)
        observer->entriesPlaced();
    return y;
}

const QGraphicsScene *OverViewerScene::shownGraph() const { return ovNodes_.empty() ? nullptr : listedGraph; }

OvNode *OverViewerScene::findOvNode(int index)
{
    const auto found = std::find_if(ovNodes_.begin(), ovNodes_.end(),
                                    [index](const OvNode *entry) { return entry->getIndex() == index; });
    if (found == ovNodes_.end())
        return nullptr;
    qInfo() << "Found ovNode";
    return *found;
}

void OverViewerScene::forgetScene(const QGraphicsScene *graph)
{
    if (!storyNodes.empty() && storyNodes.front()->scene() == graph)
        showStory({});
}

void OverViewerScene::showStory(std::vector<Node *> nodes)
{
    storyNodes = std::move(nodes);
    clearOvNodes();
    rebuildOvNodes();
}

void OverViewerScene::sl_recieveNodes(std::vector<Node *> nodes) { showStory(std::move(nodes)); }

void OverViewerScene::sl_updatedNode(Node *node)
{
    const auto occurrences = std::count(storyNodes.begin(), storyNodes.end(), node);
    for (auto i = occurrences; i > 0; --i) {
        for (OvNode *entry : ovNodes_) {
            if (entry->getIndex() == node->getIndex())
                entry->updateFromNode();
        }
    }
}

void OverViewerScene::sl_updateOvNode(OvNode *entry)
{
    emit s_nodeChanged(entry->eventData(), entry->getIndex());
}

void OverViewerScene::sl_nodeIndexChanged(Node *node, int index)
{
    OvNode *entry = findOvNode(node->getIndex());
    if (!entry)
        return;
    qInfo() << "Changing ovNode index from: " << entry->getIndex() << " to " << index;
    entry->setIndex(index);
}

void OverViewerScene::sl_importanceChanged(Node *node, bool isImportant)
{
    if (OvNode *entry = findOvNode(node->getIndex())) {
        qInfo() << "Setting importance";
        entry->setImportant(isImportant);
    }
    rebuildOvNodes();
}

void OverViewerScene::sl_setFilter_important(bool show)
{
    qInfo() << "Setting filter";
    showImportantOnly = show;
    rebuildOvNodes();
}
