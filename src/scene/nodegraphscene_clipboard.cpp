#include "scene/nodegraphscene.h"

#include "commands/addnodecommand.h"
#include "items/nodedata.h"

#include <QDebug>
#include <QPointer>

#include <cmath>
#include <map>

void NodegraphScene::copyNodes()
{
    qInfo() << "Copying";
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
        node->setVisible(false);
}

void NodegraphScene::addNodeAt(QPointF pos, int type, int index)
{
    emit s_UndoCommandAdded(
        new AddNodeCommand(this, pos, index == -1 ? nodeCounter : index, type, QString()));
}

/// A new node with the content and at the place of `source`; null if nobody took the command.
Node *NodegraphScene::duplicateNode(Node *source)
{
    const int index = nodeCounter;
    addNodeAt(pointerPosition(), source->getType(), index);
    Node *duplicate = findNodeByIndex(index);
    if (!duplicate)
        return nullptr;
    duplicate->copyDataFrom(source->getData());
    duplicate->setNodeName(source->getTitle());
    duplicate->setPos(source->scenePos());
    return duplicate;
}

void NodegraphScene::pasteNodes()
{
    const Node *reference = clipboardNodes.empty() ? currentNode_ : clipboardNodes.front();
    if (!reference)
        return;
    const QPointF distance = pointerPosition() - reference->scenePos();
    const QPointF offset(std::trunc(distance.x()), std::trunc(distance.y()));
    qInfo() << "Pasting";
    const std::vector<QPointer<Node>> sources(clipboardNodes.begin(), clipboardNodes.end());
    std::map<const Node *, Node *> duplicates;
    for (const QPointer<Node> &source : sources) {
        qInfo() << "Pasting node " << source->getIndex();
        Node *duplicate = duplicateNode(source);
        if (!duplicate)
            continue;
        duplicate->moveBy(offset.x(), offset.y());
        duplicate->updateLines();
        duplicates[source] = duplicate;
    }
    for (const QPointer<Node> &source : sources) {
        if (!source->hasInput())
            continue;
        const auto downstream = duplicates.find(source);
        const auto upstream = duplicates.find(source->prevNode());
        if (downstream != duplicates.end() && upstream != duplicates.end())
            connectNodes(downstream->second, upstream->second);
    }
    // The first deletion takes the whole selection with it, so each source may already be gone.
    for (const QPointer<Node> &source : sources) {
        if (source && source->scene() == this)
            deleteSelectedNodes(source);
    }
    clipboardNodes.clear();
}
