#include "commands/disconnectnodecommand.h"

#include "scene/nodegraphscene.h"

#include <QObject>

DisconnectNodeCommand::DisconnectNodeCommand(NodegraphScene *editedScene, int downstreamIndex,
                                             int upstreamIndex)
    : scene(editedScene), nodeIndex(downstreamIndex), prevIndex(upstreamIndex)
{
    setText(QObject::tr("Disonnect Node"));
}

void DisconnectNodeCommand::redo() { scene->disconnectNode(scene->findNodeByIndex(nodeIndex)); }

void DisconnectNodeCommand::undo()
{
    scene->connectNodes(scene->findNodeByIndex(nodeIndex), scene->findNodeByIndex(prevIndex));
}
