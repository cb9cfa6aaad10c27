#include "scene/nodefactory.h"

#include "scene/exposure.h"
#include "scene/massremoval.h"
#include "scene/nodegraphscene.h"
#include "scene/noderegister.h"
#include "scene/nodeselection.h"

#include <cmath>

namespace {

constexpr double attachGap = 100.0; // scene units

} // namespace

NodeFactory::NodeFactory(NodegraphScene &graph, NodeRegister &entered, NodeSelection &selected,
                         MassRemoval &canvasItems, Exposure &watch)
    : scene(graph), all(entered), selection(selected), items(canvasItems), exposure(watch)
{}

Node *NodeFactory::build(QPointF pos, int index, int type, const QString &name, TextMaking making,
                         const Filling &fill) const
{
    auto *node = new Node(type, making);
    items.bringIn(node);
    QObject::connect(node, SIGNAL(s_selected(Node*)), &scene, SLOT(sl_selectCurrentNode(Node*)));
    QObject::connect(node, SIGNAL(s_moving(Node*)), &scene, SLOT(sl_nodeMove(Node*)));
    QObject::connect(node, SIGNAL(s_socketClick(int,QPointF)), &scene, SLOT(sl_socketClick(int,QPointF)));
    QObject::connect(node, SIGNAL(s_socketClickDrag()), &scene, SLOT(sl_socketClickDrag()));
    QObject::connect(node, SIGNAL(s_changed(Node*)), &scene, SLOT(sl_nodeChanged(Node*)));
    QObject::connect(node, SIGNAL(s_indexChanged(Node*,int)), &scene, SLOT(sl_nodeIndexChanged(Node*,int)));
    QObject::connect(node, SIGNAL(s_importanceChanged(Node*,bool)), &scene,
                                  SLOT(sl_importanceChanged(Node*,bool)));
    all.add(node);
    node->placeAt(pos);
    if (!name.isEmpty())
        node->setNodeName(name);
    if (fill)
        fill(*node);
    node->setIndex(all.freeIndex(index, node));
    exposure.noteNew(*node);
    return node;
}

void NodeFactory::attachToCurrent(Node *made) const
{
    if (Node *current = selection.current()) {
        const double x = current->scenePos().x() + current->boundingRect().width() + attachGap;
        made->setPos(std::trunc(x), std::trunc(current->scenePos().y()));
        scene.connectNodes(made, current);
        if (current == scene.endOfStoryNode())
            scene.setEndOfStory(made);
        selection.moveCurrentTo(made);
    }
    if (all.nodes().size() == 1)
        scene.setEndOfStory(made);
}
