#include "scene/nodegraphscene.h"

#include "items/eventdata.h"
#include "items/nodedata.h"

#include <QDebug>

#include <algorithm>

void NodegraphScene::updateStory()
{
    story.clear();
    if (!endOfStoryNode_) {
        qInfo() << "No storyNode";
        emit s_updateStory(story);
        return;
    }
    // No connection can close a cycle, so the walk ends.
    story.push_back(endOfStoryNode_);
    while (story.back()->hasInput())
        story.push_back(story.back()->prevNode());
    std::reverse(story.begin(), story.end());
    emit s_updateStory(story);
}

void NodegraphScene::setEndOfStoryNode()
{
    if (currentNode_)
        setEndOfStory(currentNode_);
}

void NodegraphScene::setEndOfStory(Node *node)
{
    if (endOfStoryNode_)
        endOfStoryNode_->setIsEndOfStory(false);
    node->setIsEndOfStory(true);
    endOfStoryNode_ = node;
    updateStory();
}

void NodegraphScene::toggleImportance(Node *node)
{
    if (!node)
        node = currentNode_;
    if (!node)
        return;
    node->setImportant(!node->getIsImportant());
    node->update();
    updateStory();
}

void NodegraphScene::sl_nodeChanged(Node *node)
{
    // Copied: whoever hears of the change may make the story change.
    const auto occurrences = std::count(story.begin(), story.end(), node);
    for (auto i = occurrences; i > 0; --i)
        emit s_updateNode(node);
}

void NodegraphScene::sl_ovNodeChanged(QGraphicsItem *nodeData, int index)
{
    const Node *node = findNodeByIndex(index);
    if (!node || node->getType() != 0 || !nodeData || !node->getData())
        return;
    const auto *edited = dynamic_cast<EventData *>(nodeData);
    EventData *event = node->getData()->eventContent();
    if (edited && event)
        event->setDescription(edited->getDescription());
}
