#include "scene/nodeindexmap.h"

void NodeIndexMap::insert(Node *node, int index)
{
    const Key key(index, nextAge++);
    nodesByKey.emplace(key, node);
    keys.insert(node, key);
}

void NodeIndexMap::reindex(Node *node, int index)
{
    const auto found = keys.find(node);
    if (found == keys.end())
        return;
    nodesByKey.erase(*found);
    found->first = index;
    nodesByKey.emplace(*found, node);
}

void NodeIndexMap::remove(Node *node)
{
    const auto found = keys.constFind(node);
    if (found == keys.constEnd())
        return;
    nodesByKey.erase(*found);
    keys.erase(found);
}

void NodeIndexMap::clear()
{
    nodesByKey.clear();
    keys.clear();
}

Node *NodeIndexMap::first(int index) const
{
    const auto found = nodesByKey.lower_bound(Key(index, 0));
    return found != nodesByKey.end() && found->first.first == index ? found->second : nullptr;
}

bool NodeIndexMap::isTakenByOther(int index, const Node *node) const
{
    for (auto it = nodesByKey.lower_bound(Key(index, 0)); it != nodesByKey.end() && it->first.first == index;
         ++it) {
        if (it->second != node)
            return true;
    }
    return false;
}

int NodeIndexMap::freeIndex(int wanted, const Node *node, int counter) const
{
    if (!isTakenByOther(wanted, node))
        return wanted;
    int candidate = counter;
    while (isTakenByOther(candidate, node))
        ++candidate;
    return candidate;
}
