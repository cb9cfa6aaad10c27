#include "commands/addnodecommand.h"

#include "commands/delnodecommand.h"
#include "items/node.h"
#include "scene/nodegraphscene.h"
#include "scene/storypublishing.h"

#include <QObject>

AddNodeCommand::AddNodeCommand(NodegraphScene *editedScene, const QPointF &position, int wantedIndex,
                               int nodeType, const QString &title)
    : scene(editedScene), index(wantedIndex), pos(position), type(nodeType), name(title)
{
    setText(QObject::tr("Add Node"));
}

AddNodeCommand::~AddNodeCommand() = default;

void AddNodeCommand::redo()
{
    const StoryPublishing::Step step(scene->publishing());
    if (removal)
        bringBack();
    else
        addFirst();
}

void AddNodeCommand::addFirst()
{
    const Node *formerEnd = scene->endOfStoryNode();
    scene->createNode(pos, index, type, nullptr, name);
    const Node *node = scene->nodes().back();
    index = node->getIndex();
    rememberFormerEnd(formerEnd, node);
}

void AddNodeCommand::bringBack()
{
    const Node *formerEnd = scene->endOfStoryNode();
    removal->undo();
    index = removal->nodeIndex();
    Node *node = scene->findNodeByIndex(index);
    if (node && hadEndMark && node != scene->endOfStoryNode())
        scene->setEndOfStory(node);
    formerEndIndex.reset();
    rememberFormerEnd(formerEnd, node);
}

/// Keeps the index of the node that had the mark before, if the new node has it now.
void AddNodeCommand::rememberFormerEnd(const Node *former, const Node *node)
{
    if (former && node && former != node && scene->endOfStoryNode() == node)
        formerEndIndex = former->getIndex();
}

void AddNodeCommand::undo()
{
    const StoryPublishing::Step step(scene->publishing());
    Node *node = scene->findNodeByIndex(index);
    if (!node)
        return;
    hadEndMark = node->isEndOfStory();
    removal = std::make_unique<DelNodeCommand>(scene, *node);
    scene->deleteNode(node);
    Node *formerEnd = hadEndMark && formerEndIndex ? scene->findNodeByIndex(*formerEndIndex) : nullptr;
    if (formerEnd)
        scene->setEndOfStory(formerEnd);
}
