#include "scene/clipboard.h"

#include "items/latetext.h"
#include "scene/massremoval.h"
#include "scene/nodegraphscene.h"
#include "scene/textfocus.h"
#include "scene/viewroom.h"

#include <QDebug>

#include <cmath>
#include <map>
#include <new>
#include <set>

namespace {

/// Hides or shows a node; a line is seen while both its ends are. A hidden node is disabled as well: the
/// framework would remember whichever of its texts asks for the keyboard, and give it that once it is shown.
void setNodeShown(QGraphicsScene &canvas, Node *node, bool shown)
{
    if (!shown)
        leaveTextOf(canvas, *node);
    node->setVisible(shown);
    node->setEnabled(shown);
    if (ConnectionLine *line = node->inLine())
        line->setVisible(shown && node->prevNode()->isVisible());
    for (const Node *downstream : node->nextNodes()) {
        if (ConnectionLine *line = downstream->inLine())
            line->setVisible(shown && downstream->isVisible());
    }
}

/// From where the sources are to where they are pasted: the first one comes to `target`, or as near as it can
/// if all of them are to be within reach.
QPointF pasteOffset(const std::vector<Node *> &sources, const QPointF &target)
{
    if (sources.empty())
        return {};
    const QPointF distance = target - sources.front()->scenePos();
    const QPointF offset(std::trunc(distance.x()), std::trunc(distance.y()));
    QRectF outline;
    for (const Node *source : sources)
        outline |= source->sceneBoundingRect();
    return offset + wayIntoReach(outline.translated(offset));
}

/// One paste: the sources, and the duplicate of each for whose command there was a taker.
class Paste
{
public:
    Paste(NodegraphScene &graph, const std::vector<Node *> &originals) : scene(graph), sources(originals) {}

    void duplicateAll(const QPointF &target);
    void join() const;
    Node *heir() const;
    void show() const;

private:
    Node *duplicate(Node *source, const QPointF &target, bool isEnd) const;

    NodegraphScene &scene;
    const std::vector<Node *> &sources;
    Node *formerEnd = scene.endOfStoryNode(); // before the duplicates attach themselves and take it along
    std::map<const Node *, Node *> duplicates;
};

void Paste::duplicateAll(const QPointF &target)
{
    const QPointF offset = pasteOffset(sources, target);
    for (Node *source : sources) {
        qInfo() << "Pasting node " << source->getIndex();
        Node *made = duplicate(source, target, source == formerEnd);
        if (!made)
            continue;
        made->setPos(made->pos() + offset);
        made->setPos(made->pos() + wayIntoReach(made->sceneBoundingRect()));
        made->updateLines();
        duplicates[source] = made;
    }
}

/// A new node with the content and the marks of `source`, at its place; null if nobody took the command.
Node *Paste::duplicate(Node *source, const QPointF &target, bool isEnd) const
{
    Node *made = scene.addNodeAt(target, source->getType(), -1, isEnd ? source->getIndex() : -1);
    if (!made)
        return nullptr;
    made->copyDataFrom(*source);
    made->setNodeName(source->title());
    made->setPos(source->scenePos());
    if (source->isImportant())
        made->setImportant(true);
    return made;
}

/// Joins the duplicates as their sources are joined among themselves, and in no other way.
void Paste::join() const
{
    std::map<const Node *, const Node *> sourceOf;
    for (const auto &[source, made] : duplicates)
        sourceOf[made] = source;
    // First all of what attaching has joined goes, lest it stand in the way as a cycle.
    for (const Node *source : sources) {
        const auto found = duplicates.find(source);
        if (found == duplicates.end())
            continue;
        const auto attachedTo = sourceOf.find(found->second->prevNode());
        if (attachedTo != sourceOf.end() && attachedTo->second != source->prevNode())
            scene.disconnectNode(found->second);
    }
    for (const Node *source : sources) {
        const auto downstream = duplicates.find(source);
        const auto upstream = duplicates.find(source->prevNode());
        if (downstream != duplicates.end() && upstream != duplicates.end())
            scene.connectNodes(downstream->second, upstream->second);
    }
}

/// Where the mark belongs that `formerEnd` (which may be null) had: on its duplicate, or else on the last
/// duplicate behind it. If joining the duplicates has left none there, it stays, lest its story be lost.
Node *Paste::heir() const
{
    if (const auto found = duplicates.find(formerEnd); found != duplicates.end())
        return found->second;
    if (!formerEnd || formerEnd == scene.endOfStoryNode())
        return formerEnd;
    std::set<const Node *> pasted;
    for (const auto &[source, made] : duplicates)
        pasted.insert(made);
    std::set<const Node *> behind;
    std::vector<const Node *> open{formerEnd};
    while (!open.empty()) {
        const Node *node = open.back();
        open.pop_back();
        for (const Node *next : node->nextNodes()) {
            if (pasted.count(next) > 0 && behind.insert(next).second)
                open.push_back(next);
        }
    }
    for (std::size_t i = sources.size(); i-- > 0;) {
        const auto found = duplicates.find(sources[i]);
        if (found != duplicates.end() && behind.count(found->second) > 0)
            return found->second;
    }
    return formerEnd;
}

/// All of them if that is possible, the first one at any rate.
void Paste::show() const
{
    QRectF outline;
    for (const auto &[source, made] : duplicates)
        outline |= made->sceneBoundingRect();
    if (duplicates.empty())
        return;
    bringIntoSight(scene, outline);
    if (const auto first = duplicates.find(sources.front()); first != duplicates.end())
        bringIntoSight(scene, first->second->sceneBoundingRect());
}

} // namespace

Clipboard::Clipboard(NodegraphScene &graph, MassRemoval &sourceRemoval) : scene(graph), removal(sourceRemoval)
{}

void Clipboard::copy()
{
    qInfo() << "Copying";
    // What was cut and never pasted would otherwise stay out of sight for good.
    for (Node *source : remembered())
        setNodeShown(scene, source, true);
    sources.clear();
    if (Node *current = scene.currentNode()) {
        qInfo() << "Copying node " << current->getIndex();
        sources.add(current);
    } else {
        sources = scene.selectedNodes();
    }
}

void Clipboard::cut()
{
    copy();
    cutPending = true;
    for (Node *source : remembered())
        setNodeShown(scene, source, false);
}

bool Clipboard::fits() const
{
    // With outlines, lines, undo steps and entries of the panel, and texts that are laid out.
    constexpr std::size_t bytesOfAnEvent = std::size_t(32) * 1024;
    constexpr std::size_t bytesOfALetter = 64;
    std::size_t size = 0;
    for (const Node *source : remembered()) {
        size += bytesOfAnEvent + std::size_t(LongText::shown(source->description()).size()) * bytesOfALetter;
    }
    // Called as functions, for a compiler may leave out what is made by `new` and not used.
    void *tried = ::operator new(size, std::nothrow);
    ::operator delete(tried);
    return tried != nullptr;
}

void Clipboard::paste(const QPointF &target)
{
    if (sources.isEmpty() && !scene.currentNode())
        return;
    qInfo() << "Pasting";
    const std::vector<Node *> originals = remembered(); // they are forgotten one by one as they are deleted
    Paste paste(scene, originals);
    paste.duplicateAll(target);
    paste.join();
    if (Node *heir = paste.heir(); heir && heir != scene.endOfStoryNode())
        scene.setEndOfStory(heir);
    deleteOriginals(originals);
    paste.show();
    sources.clear();
}

/// The first deletion takes a whole selection with it, so an original may already be gone, or may stay.
void Clipboard::deleteOriginals(const std::vector<Node *> &originals)
{
    const MassRemoval::Together together(removal);
    for (Node *source : originals) {
        if (scene.isMember(source))
            scene.deleteSelectedNodes(source);
    }
    for (Node *source : originals) {
        if (scene.isMember(source))
            setNodeShown(scene, source, true);
    }
}
