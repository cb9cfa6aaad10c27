#include "overviewer/listedevent.h"

#include "items/node.h"

ListedEvent::ListedEvent(const Node *listed) : graph(listed->scene()), node(listed), index(listed->getIndex())
{}

// The index counts only once the node has gone: in a damaged file several events can have the same one.
bool ListedEvent::is(const Node *candidate) const
{
    if (!graph)
        return false;
    if (node && node->scene() == graph)
        return candidate == node;
    return candidate->getIndex() == index && candidate->scene() == graph;
}
