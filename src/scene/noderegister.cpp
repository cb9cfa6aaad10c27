#include "scene/noderegister.h"

#include "items/node.h"

void NodeRegister::add(Node *node)
{
    list.add(node);
    byIndex.insert(node, node->getIndex());
    ++count;
}

void NodeRegister::remove(Node *node)
{
    list.remove(node);
    byIndex.remove(node);
}
