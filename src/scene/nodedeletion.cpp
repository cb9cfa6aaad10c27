#include "scene/nodedeletion.h"

#include "commands/delnodecommand.h"
#include "scene/massremoval.h"
#include "scene/nodegraphscene.h"

#include <QDebug>

NodeDeletion::NodeDeletion(NodegraphScene &graph, MassRemoval &together, HandOut out)
    : scene(graph), removal(together), handOut(std::move(out))
{}

void NodeDeletion::deleteSelected(Node *node)
{
    if (!node) {
        node = scene.currentNode();
        if (!node && scene.selectedNodes().empty())
            return;
        scene.setCurrentNode(nullptr);
    }
    if (scene.selectedNodes().empty()) {
        if (node)
            deleteByCommand(node);
        return;
    }
    const MassRemoval::Together together(removal);
    const std::vector<Node *> selection = scene.selectedNodes();
    for (Node *selected : selection) {
        if (scene.isMember(selected))
            deleteByCommand(selected);
    }
}

void NodeDeletion::deleteAll()
{
    const MassRemoval::Together together(removal);
    const std::vector<Node *> all = scene.nodes();
    for (Node *node : all) {
        if (!scene.isMember(node)) // the first deletion takes the whole selection with it
            continue;
        qInfo("clearing scene");
        deleteSelected(node);
    }
    while (!scene.nodes().empty()) // nobody took the commands
        scene.deleteNode(scene.nodes().back());
}

void NodeDeletion::deleteByCommand(Node *node)
{
    qInfo("Del");
    handOut(std::make_unique<DelNodeCommand>(&scene, *node));
}
