#include "commands/delnodecommand.h"

#include "items/eventdata.h"
#include "items/node.h"
#include "items/nodedata.h"
#include "scene/nodegraphscene.h"
#include "scene/storypublishing.h"

#include <QObject>

namespace {

QString descriptionOf(const NodeData *data)
{
    const EventData *event = data->eventContent();
    return event ? event->getDescription() : QString();
}

} // namespace

DelNodeCommand::DelNodeCommand(NodegraphScene *editedScene, const QPointF &position, int nodeIndex,
                               const NodeData *data, const QString &title)
    : scene(editedScene), index(nodeIndex), pos(position), type(data->getType()),
      description(descriptionOf(data)), name(title)
{
    // In a damaged file several nodes may have that index; the payload tells which of them is meant.
    node = dynamic_cast<Node *>(data->parentItem());
    begin();
}

DelNodeCommand::DelNodeCommand(NodegraphScene *editedScene, Node &deleted)
    : scene(editedScene), index(deleted.getIndex()), pos(deleted.pos()), type(deleted.getType()),
      description(deleted.description()), name(deleted.title()), node(&deleted)
{
    begin();
}

void DelNodeCommand::begin()
{
    setText(QObject::tr("Delete Node"));
    node = meantNode();
    captureLinksAndMarks();
}

/// The known node if it is still there with the index, else whichever has it.
Node *DelNodeCommand::meantNode() const
{
    return scene->isMember(node) && node->getIndex() == index ? node.data() : scene->findNodeByIndex(index);
}

void DelNodeCommand::captureLinksAndMarks()
{
    hadInput = false;
    prevIndex = -1;
    prevNode = nullptr;
    nextNodes.clear();
    nextIndices.clear();
    if (!node)
        return;
    hadInput = node->hasInput();
    if (hadInput) {
        prevIndex = node->getPrevIndex();
        prevNode = node->prevNode();
    }
    for (Node *next : node->nextNodes()) {
        nextIndices.push_back(next->getIndex());
        nextNodes.emplace_back(next);
    }
    important = node->isImportant();
    endOfStory = node->isEndOfStory();
}

/// The user may have typed, moved or connected since the node came back; none of that may be lost.
void DelNodeCommand::captureAgain()
{
    pos = node->pos(); // scenePos() would lose the sign of a zero
    name = node->title();
    description = node->description();
    captureLinksAndMarks();
}

void DelNodeCommand::redo()
{
    const StoryPublishing::Step step(scene->publishing());
    node = meantNode();
    if (!node)
        return;
    if (undone)
        captureAgain();
    scene->deleteNode(node);
}

void DelNodeCommand::undo()
{
    const StoryPublishing::Step step(scene->publishing());
    undone = true;
    const bool endIsFree = scene->endOfStoryNode() == nullptr;
    node = scene->restoreNode(pos, index, type, &description, name);
    index = node->getIndex(); // another one if the old one was taken, so that redo() takes no other node
    if (name.isEmpty())
        node->setNodeName(name); // no title means the default one to whoever makes a node
    if (important)
        node->setImportant(true);
    restoreLinks();
    if (endOfStory && endIsFree)
        scene->setEndOfStory(node);
    else
        scene->updateStory();
}

void DelNodeCommand::restoreLinks()
{
    // Not by the index alone: in a damaged file a node can have the one that means none.
    prevNode = hadInput ? scene->findNodeByIndex(prevIndex) : nullptr;
    nextNodes.clear();
    for (const int nextIndex : nextIndices)
        nextNodes.emplace_back(scene->findNodeByIndex(nextIndex));
    if (node && prevNode)
        scene->connectNodes(node, prevNode);
    for (const QPointer<Node> &next : nextNodes)
        scene->connectNodes(next, node);
}
