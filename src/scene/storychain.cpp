#include "scene/storychain.h"

#include "items/node.h"

#include <algorithm>

void StoryChain::setEnd(Node *node)
{
    if (end_)
        end_->setIsEndOfStory(false);
    node->setIsEndOfStory(true);
    end_ = node;
    change();
}

void StoryChain::forget(const Node *node)
{
    change();
    if (end_ == node)
        end_ = nullptr;
}

const std::vector<Node *> &StoryChain::nodes() const
{
    if (isKnown)
        return chain;
    isKnown = true;
    chain.clear();
    // No connection can close a cycle, so the walk ends.
    for (Node *node = end_; node; node = node->hasInput() ? node->prevNode() : nullptr)
        chain.push_back(node);
    std::reverse(chain.begin(), chain.end());
    return chain;
}
