#include "scene/nodelist.h"

const std::vector<Node *> &NodeList::nodes() const
{
    if (removed.size() == 1)
        std::erase(list, *removed.cbegin());
    else if (!removed.isEmpty())
        std::erase_if(list, [this](const Node *node) { return removed.contains(node); });
    removed.clear();
    return list;
}

NodeList &NodeList::operator=(const std::vector<Node *> &others)
{
    removed.clear();
    list = others;
    return *this;
}

void NodeList::add(Node *node)
{
    nodes(); // it may be where one was that has been removed and destroyed
    list.push_back(node);
}

void NodeList::remove(const Node *node)
{
    if (!list.empty())
        removed.insert(node);
}

void NodeList::clear()
{
    list.clear();
    removed.clear();
}
