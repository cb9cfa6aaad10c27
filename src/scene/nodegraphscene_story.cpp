#include "scene/nodegraphscene.h"

#include "items/eventdata.h"
#include "items/nodedata.h"

#include <QDebug>
#include <QMetaMethod>

#include <algorithm>

void NodegraphScene::updateStory()
{
    story.change();
    if (!story.end())
        qInfo() << "No storyNode";
    // Emptying a graph changes its story with every event; if nobody listens it need not be known each time.
    static const QMetaMethod published = QMetaMethod::fromSignal(&NodegraphScene::s_updateStory);
    if (isSignalConnected(published))
        emit s_updateStory(getStory());
}

void NodegraphScene::setEndOfStoryNode()
{
    if (currentNode_)
        setEndOfStory(currentNode_);
}

void NodegraphScene::setEndOfStory(Node *node)
{
    story.setEnd(node);
    updateStory();
}

void NodegraphScene::toggleImportance(Node *node)
{
    if (!node)
        node = currentNode_;
    if (!node)
        return;
    node->setImportant(!node->isImportant());
    node->update();
    updateStory();
}

void NodegraphScene::sl_nodeChanged(Node *node)
{
    // Copied: whoever hears of the change may make the story change.
    const auto occurrences = std::count(getStory().begin(), getStory().end(), node);
    for (auto i = occurrences; i > 0; --i)
        emit s_updateNode(node);
}

void NodegraphScene::sl_ovNodeChanged(QGraphicsItem *nodeData, int index)
{
    const Node *node = findNodeByIndex(index);
    if (!node || node->getType() != 0 || !nodeData || !node->payload())
        return;
    const auto *edited = dynamic_cast<EventData *>(nodeData);
    EventData *event = node->payload()->eventContent();
    if (edited && event)
        event->setDescription(edited->getDescription());
}
