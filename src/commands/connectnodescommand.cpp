#include "commands/connectnodescommand.h"

#include "scene/nodegraphscene.h"

#include <QObject>

ConnectNodesCommand::ConnectNodesCommand(NodegraphScene *editedScene, int downstreamIndex, int upstreamIndex)
    : scene(editedScene), nodeIndex(downstreamIndex), prevIndex(upstreamIndex)
{
    static const QString text = QObject::tr("Connect Nodes"); // a file makes as many as it has events
    setText(text);
}

void ConnectNodesCommand::redo()
{
    Node *upstream = scene->findNodeByIndex(prevIndex);
    scene->connectNodes(scene->findNodeByIndex(nodeIndex), upstream);
}

// Whatever feeds the node now is what goes: a connection that this one replaced does not come back.
void ConnectNodesCommand::undo()
{
    if (Node *downstream = scene->findNodeByIndex(nodeIndex))
        scene->disconnectNode(downstream);
}
