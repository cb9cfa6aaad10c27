#include "scene/nodegraphscene.h"

#include "commands/delnodecommand.h"

#include <QDebug>

#include <algorithm>

void NodegraphScene::deleteSelectedNodes(Node *node)
{
    if (!node) {
        node = currentNode_;
        if (!node && selectedNodes.empty())
            return;
        setCurrentNode(nullptr);
    }
    if (selectedNodes.empty()) {
        pushDelNodeCommand(node);
        return;
    }
    const MassRemoval::Together together(removal);
    const std::vector<Node *> selection = selectedNodes;
    for (Node *selected : selection) {
        if (isMember(selected))
            pushDelNodeCommand(selected);
    }
}

void NodegraphScene::pushDelNodeCommand(Node *node)
{
    qInfo() << "Del";
    handOut(std::make_unique<DelNodeCommand>(this, node->pos(), node->getIndex(), node->payload(),
                                             node->title()));
}

void NodegraphScene::deleteNode(Node *node)
{
    if (!node)
        return;
    story.forget(node); // before the neighbours go, so that no story with this node is published
    const std::vector<Node *> downstream = node->nextNodes();
    for (Node *next : downstream)
        disconnectNode(next);
    if (node->hasInput())
        disconnectNode(node);
    qInfo() << "Deleted node " << node->getIndex();
    forgetNode(node);
    node->disconnect(this);
    removal.takeOut(node);
    node->deleteLater(); // its own press or key may have led here
    updateStory();
}

/// The one place where a dying node leaves everything that the scene remembers.
void NodegraphScene::forgetNode(Node *node)
{
    for (std::vector<Node *> *list : {&nodes, &selectedNodes}) {
        const auto found = std::find(list->begin(), list->end(), node);
        if (found != list->end())
            list->erase(found);
    }
    nodesByIndex.remove(node);
    clipboard.forget(node);
    if (currentNode_ == node)
        setCurrentNode(nullptr);
    story.forget(node);
    drag.forget(node);
}
