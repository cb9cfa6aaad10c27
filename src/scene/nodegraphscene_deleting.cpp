#include "scene/nodegraphscene.h"

#include "commands/delnodecommand.h"

#include <QDebug>
#include <QPointer>

#include <algorithm>

void NodegraphScene::deleteSelectedNodes(Node *node)
{
    if (!node) {
        node = currentNode_;
        if (!node && selectedNodes.empty())
            return;
        currentNode_ = nullptr;
    }
    if (selectedNodes.empty()) {
        pushDelNodeCommand(node);
        return;
    }
    const std::vector<QPointer<Node>> selection(selectedNodes.begin(), selectedNodes.end());
    for (const QPointer<Node> &selected : selection) {
        if (selected && selected->scene() == this)
            pushDelNodeCommand(selected);
    }
}

void NodegraphScene::pushDelNodeCommand(Node *node)
{
    qInfo() << "Del";
    emit s_UndoCommandAdded(
        new DelNodeCommand(this, node->scenePos(), node->getIndex(), node->getData(), node->getTitle()));
}

void NodegraphScene::deleteNode(Node *node)
{
    if (!node)
        return;
    if (node == endOfStoryNode_)
        endOfStoryNode_ = nullptr; // before the neighbours go, so that no story with this node is published
    const std::vector<Node *> downstream = node->nextNodes();
    for (Node *next : downstream)
        disconnectNode(next);
    if (node->hasInput())
        disconnectNode(node);
    qInfo() << "Deleted node " << node->getIndex();
    forgetNode(node);
    node->disconnect(this);
    removeItem(node);
    node->deleteLater(); // its own press or key may have led here
    updateStory();
}

/// The one place where a dying node leaves everything that the scene remembers.
void NodegraphScene::forgetNode(Node *node)
{
    for (std::vector<Node *> *list : {&nodes, &story, &selectedNodes, &clipboardNodes}) {
        const auto found = std::find(list->begin(), list->end(), node);
        if (found != list->end())
            list->erase(found);
    }
    nodesByIndex.remove(node);
    if (currentNode_ == node)
        currentNode_ = nullptr;
    if (endOfStoryNode_ == node)
        endOfStoryNode_ = nullptr;
    if (dragSocket && dragSocket->parentItem() == node)
        endDrag();
}
