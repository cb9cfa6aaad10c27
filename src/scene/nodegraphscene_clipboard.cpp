#include "scene/nodegraphscene.h"

#include "commands/addnodecommand.h"
#include "items/nodedata.h"
#include "scene/textfocus.h"
#include "scene/viewroom.h"

#include <QDebug>

#include <cmath>
#include <set>

void NodegraphScene::copyNodes()
{
    qInfo() << "Copying";
    // What was cut and never pasted would otherwise stay out of sight for good.
    for (Node *remembered : clipboardNodes)
        setNodeShown(remembered, true);
    clipboardNodes.clear();
    if (currentNode_) {
        qInfo() << "Copying node " << currentNode_->getIndex();
        clipboardNodes.push_back(currentNode_);
    } else {
        clipboardNodes = selectedNodes;
    }
}

void NodegraphScene::cutNodes()
{
    copyNodes();
    cutPending = true;
    for (Node *node : clipboardNodes)
        setNodeShown(node, false);
}

/// Hides or shows a node; a line is seen while both its ends are. A hidden node is disabled as well: the
/// framework would remember whichever of its texts asks for the keyboard, and give it that once it is shown.
void NodegraphScene::setNodeShown(Node *node, bool shown)
{
    if (!shown)
        leaveTextOf(*this, *node);
    node->setVisible(shown);
    node->setEnabled(shown);
    if (ConnectionLine *line = node->getInLine())
        line->setVisible(shown && node->prevNode()->isVisible());
    for (const Node *downstream : node->nextNodes()) {
        if (ConnectionLine *line = downstream->getInLine())
            line->setVisible(shown && downstream->isVisible());
    }
}

/// Adds a node through a command; an `index` of -1 asks for the counter's value. `markFrom` is the index of
/// the node that the new one takes the end-of-story mark from, -1 for none.
void NodegraphScene::addNodeAt(QPointF pos, int type, int index, int markFrom)
{
    auto command =
        std::make_unique<AddNodeCommand>(this, pos, index == -1 ? nodeCounter : index, type, QString());
    if (markFrom != -1)
        command->willTakeMarkFrom(markFrom);
    handOut(std::move(command));
}

/// A new node with the content and the marks of `source`, at its place; null if nobody took the command.
Node *NodegraphScene::duplicateNode(Node *source, bool isEnd)
{
    const std::size_t before = nodes.size();
    addNodeAt(pointerPosition(), source->getType(), nodeCounter, isEnd ? source->getIndex() : -1);
    if (nodes.size() == before)
        return nullptr;
    Node *duplicate = nodes.back(); // not by the wanted index, which another node may have
    duplicate->copyDataFrom(source->getData());
    duplicate->setNodeName(source->getTitle());
    duplicate->setPos(source->scenePos());
    if (source->getIsImportant())
        duplicate->setImportant(true);
    return duplicate;
}

void NodegraphScene::pasteNodes()
{
    const Node *reference = clipboardNodes.empty() ? currentNode_ : clipboardNodes.front();
    if (!reference)
        return;
    const QPointF offset = pasteOffset(reference->scenePos());
    qInfo() << "Pasting";

    const std::vector<Node *> sources = clipboardNodes;
    Node *end = story.end(); // before the duplicates attach themselves and take the mark along
    Duplicates duplicates;
    for (Node *source : sources) {
        qInfo() << "Pasting node " << source->getIndex();
        Node *duplicate = duplicateNode(source, source == end);
        if (!duplicate)
            continue;
        duplicate->setPos(duplicate->pos() + offset);
        duplicate->setPos(duplicate->pos() + wayIntoReach(duplicate->sceneBoundingRect()));
        duplicate->updateLines();
        duplicates[source] = duplicate;
    }
    connectDuplicates(sources, duplicates);
    if (Node *newEnd = endAfterPaste(end, sources, duplicates); newEnd && newEnd != story.end())
        setEndOfStory(newEnd);
    deleteSources(sources);
    showPasted(sources, duplicates);
    clipboardNodes.clear();
}

/// From where the remembered nodes are to where they are pasted: the one at `reference` comes to the mouse,
/// or as near as it can if all of them are to be within reach.
QPointF NodegraphScene::pasteOffset(const QPointF &reference) const
{
    const QPointF distance = pointerPosition() - reference;
    const QPointF offset(std::trunc(distance.x()), std::trunc(distance.y()));
    QRectF outline;
    for (const Node *source : clipboardNodes)
        outline |= source->sceneBoundingRect();
    return offset + wayIntoReach(outline.translated(offset));
}

/// All of them if that is possible, the first one at any rate.
void NodegraphScene::showPasted(const std::vector<Node *> &sources, const Duplicates &duplicates) const
{
    QRectF outline;
    for (const auto &[source, duplicate] : duplicates)
        outline |= duplicate->sceneBoundingRect();
    if (duplicates.empty())
        return;
    showInViews(outline);
    if (const auto first = duplicates.find(sources.front()); first != duplicates.end())
        showInViews(first->second->sceneBoundingRect());
}

/// Joins the duplicates as their sources are joined among themselves, and in no other way.
void NodegraphScene::connectDuplicates(const std::vector<Node *> &sources, const Duplicates &duplicates)
{
    std::map<const Node *, const Node *> sourceOf;
    for (const auto &[source, duplicate] : duplicates)
        sourceOf[duplicate] = source;
    // First all of what attaching has joined goes, lest it stand in the way as a cycle.
    for (const Node *source : sources) {
        const auto found = duplicates.find(source);
        if (found == duplicates.end())
            continue;
        const auto attachedTo = sourceOf.find(found->second->prevNode());
        if (attachedTo != sourceOf.end() && attachedTo->second != source->prevNode())
            disconnectNode(found->second);
    }
    for (const Node *source : sources) {
        const auto downstream = duplicates.find(source);
        const auto upstream = duplicates.find(source->prevNode());
        if (downstream != duplicates.end() && upstream != duplicates.end())
            connectNodes(downstream->second, upstream->second);
    }
}

/// Where the mark belongs that `formerEnd` (which may be null) had: on its duplicate, or else on the last
/// duplicate behind it. If joining the duplicates has left none there, it stays, lest its story be lost.
Node *NodegraphScene::endAfterPaste(Node *formerEnd, const std::vector<Node *> &sources,
                                    const Duplicates &duplicates) const
{
    if (const auto found = duplicates.find(formerEnd); found != duplicates.end())
        return found->second;
    if (!formerEnd || formerEnd == story.end())
        return formerEnd;
    std::set<const Node *> pasted;
    for (const auto &[source, duplicate] : duplicates)
        pasted.insert(duplicate);
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

/// The first deletion takes a whole selection with it, so a source may already be gone, or may stay.
void NodegraphScene::deleteSources(const std::vector<Node *> &sources)
{
    const MassRemoval::Together together(removal);
    for (Node *source : sources) {
        if (isMember(source))
            deleteSelectedNodes(source);
    }
    for (Node *source : sources) {
        if (isMember(source))
            setNodeShown(source, true);
    }
}
