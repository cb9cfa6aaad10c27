#include "overviewer/overviewerscene.h"

#include "overviewer/panelobserver.h"
#include "scene/nodegraphscene.h"
#include "scene/storypublishing.h"

#include <QBrush>
#include <QDebug>
#include <QFocusEvent>
#include <QGraphicsSceneMouseEvent>

#include <algorithm>
#include <utility>

namespace {
/// The panel's rectangle while it has no entries; a null one would mean whatever was ever covered.
const QRectF emptyPanel(0, 0, 1, 1);

constexpr std::size_t firstScreen = 10; // entries that are made at once

/// Whether the node's graph is about to tell its story, for which all entries are made anew.
bool isStoryToCome(const Node &node)
{
    auto *graph = dynamic_cast<NodegraphScene *>(node.scene());
    return graph && graph->publishing().isStoryToCome();
}
} // namespace

OverViewerScene::OverViewerScene()
    : list(std::make_unique<PanelList>([this](const PanelRow &row) { return makeEntry(row); }))
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
            list->add(node);
    }
    makeFirstEntries();
    tellCount();
    layoutOvNodes();
    keyboard.resume();
}

void OverViewerScene::tellCount() const { qInfo() << "No of ovnodes now: " << rows().size(); }

/// Those that are seen first, and those that the keyboard and the mark have been waiting for.
void OverViewerScene::makeFirstEntries()
{
    for (std::size_t place = 0; place < rows().size(); ++place) {
        const Node *node = rows()[place].node;
        if (place < firstScreen)
            list->entry(place)->make();
        else if (keyboard.isAwaitedBy(node) || entryMark.isAwaitedBy(node))
            list->entry(place);
    }
}

OvNode *OverViewerScene::makeEntry(const PanelRow &row)
{
    auto *entry = new OvNode(row);
    if (keyboard.isAwaitedBy(row.node))
        keyboard.giveBackTo(entry);
    entryMark.noteEntry(entry, row.node);
    addItem(entry);
    currentOvNode = entry;
    connect(entry, &OvNode::s_nodeChanged, this, &OverViewerScene::sl_updateOvNode);
    return entry;
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
    list->clear();
    clear();
}

// The items to paint are looked up after this.
void OverViewerScene::drawBackground(QPainter *painter, const QRectF &rect)
{
    list->makeBetween(rect.top(), rect.bottom());
    QGraphicsScene::drawBackground(painter, rect);
}

// A view that was scrolled may get a press before it is painted.
bool OverViewerScene::event(QEvent *event)
{
    if (event->type() == QEvent::GraphicsSceneMousePress) {
        keyboard.giveUp();
        const double y = static_cast<QGraphicsSceneMouseEvent *>(event)->scenePos().y();
        list->makeBetween(y, y);
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
    const auto [covered, end] = list->layOut(spacing_);
    setSceneRect(covered.isNull() ? emptyPanel : covered);
    if (observer)
        observer->entriesPlaced();
    return end;
}

const QGraphicsScene *OverViewerScene::shownGraph() const { return rows().empty() ? nullptr : listedGraph; }

OvNode *OverViewerScene::findOvNode(int index)
{
    const std::size_t place = list->placeOf(index);
    if (place == rows().size())
        return nullptr;
    qInfo() << "Found ovNode";
    return list->entry(place);
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
        bool isResized = false;
        for (std::size_t place = 0; place < rows().size(); ++place) {
            if (rows()[place].currentIndex() == node->getIndex())
                isResized = list->refresh(place) || isResized;
        }
        if (isResized)
            layoutOvNodes();
    }
}

void OverViewerScene::sl_updateOvNode(OvNode *entry)
{
    emit s_nodeChanged(entry->eventData(), entry->getIndex());
}

void OverViewerScene::sl_nodeIndexChanged(Node *node, int index)
{
    const std::size_t place = list->placeOf(node->getIndex());
    if (place == rows().size())
        return;
    qInfo() << "Found ovNode";
    qInfo() << "Changing ovNode index from: " << rows()[place].currentIndex() << " to " << index;
    list->setIndex(place, index);
}

void OverViewerScene::sl_importanceChanged(Node *node, bool isImportant)
{
    OvNode *entry = findOvNode(node->getIndex());
    if (entry) {
        qInfo() << "Setting importance";
        entry->setImportant(isImportant);
    }
    // Thousands of important events may be pasted at one go.
    if (isStoryToCome(*node))
        tellCount();
    else
        rebuildOvNodes();
}

void OverViewerScene::sl_setFilter_important(bool show)
{
    qInfo() << "Setting filter";
    showImportantOnly = show;
    rebuildOvNodes();
}
