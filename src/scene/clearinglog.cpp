#include "scene/clearinglog.h"

#include "scene/nodegraphscene.h"

#include <QSet>

namespace {

/// A graph whose events leave one after the other, in the log only.
class Departure
{
public:
    explicit Departure(const NodegraphScene &graph) : end(graph.endOfStoryNode()) {}

    bool hasLeft(const Node *node) const { return gone.contains(node); }
    void leave(const Node &node);
    void leaveByCommand(const Node &node);

private:
    void tellStory() const;
    void part(const Node *node) const;

    const Node *end;
    QSet<const Node *> gone;
};

void Departure::tellStory() const
{
    if (!end)
        qInfo("No storyNode");
}

void Departure::part(const Node *node) const
{
    tellStory();
    qInfo("Disconnected node  %d", node->getIndex());
}

void Departure::leave(const Node &node)
{
    if (&node == end)
        end = nullptr;
    for (const Node *next : node.nextNodes()) {
        if (!hasLeft(next))
            part(next);
    }
    if (node.hasInput() && !hasLeft(node.prevNode()))
        part(&node);
    qInfo("Deleted node  %d", node.getIndex());
    gone.insert(&node);
    tellStory();
}

void Departure::leaveByCommand(const Node &node)
{
    qInfo("Del");
    leave(node);
}

} // namespace

void logClearing(const NodegraphScene &graph)
{
    Departure departure(graph);
    bool isSelectionLeft = !graph.selectedNodes().empty();
    for (const Node *node : graph.nodes()) {
        if (departure.hasLeft(node))
            continue;
        qInfo("clearing scene");
        if (!isSelectionLeft) {
            departure.leaveByCommand(*node);
            continue;
        }
        isSelectionLeft = false; // it goes with the first one, and instead of it
        for (const Node *selected : graph.selectedNodes())
            departure.leaveByCommand(*selected);
    }
    const std::vector<const Node *> backwards(graph.nodes().rbegin(), graph.nodes().rend());
    for (const Node *node : backwards) {
        if (!departure.hasLeft(node))
            departure.leave(*node);
    }
}
