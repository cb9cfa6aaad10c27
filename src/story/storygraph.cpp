#include "story/storygraph.h"

#include "items/node.h"
#include "scene/nodegraphscene.h"

namespace {

/// No text is an empty one to whoever reads the file: written as such it stays as it is.
QString written(const QString &text) { return text.isNull() ? QStringLiteral("") : text; }

} // namespace

StoryGraph::StoryGraph(const StoryTab &tab, const PartTold &tell) : graph(std::make_unique<NodegraphScene>())
{
    for (const StoryEvent &event : tab.events) {
        const QString title = written(event.title);
        const QString description = written(event.description);
        Node *node =
            graph->restoreNode(event.position, event.index, 0, &description, title, TextMaking::whenNeeded);
        node->setNodeName(title); // an empty one, too, instead of what a new event is called
        node->setImportant(event.isImportant);
        if (tell)
            tell(double(graph->nodes().size()) / double(tab.events.size()));
    }
}

StoryGraph::~StoryGraph() = default;
StoryGraph::StoryGraph(StoryGraph &&) noexcept = default;
StoryGraph &StoryGraph::operator=(StoryGraph &&) noexcept = default;

QRectF StoryGraph::canvas() const { return graph->sceneRect(); }

std::vector<QSizeF> StoryGraph::sizes() const
{
    std::vector<QSizeF> all;
    for (const Node *node : graph->nodes())
        all.push_back(node->boundingRect().size());
    return all;
}

void StoryGraph::place(const std::vector<QPointF> &places)
{
    for (std::size_t i = 0; i < places.size(); ++i)
        graph->nodes()[i]->placeAt(places[i]);
}

void StoryGraph::connect(const StoryTab &tab)
{
    // From the first events on: a search for circles ends at once at an event that leads nowhere yet.
    const std::vector<Node *> &nodes = graph->nodes();
    std::vector<int> waiting;
    for (std::size_t i = 0; i < nodes.size(); ++i) {
        if (tab.events[i].feeder == -1)
            waiting.push_back(int(i));
    }
    while (!waiting.empty()) {
        const int place = waiting.back();
        waiting.pop_back();
        for (const int next : tab.events[place].fed) {
            graph->connectNodes(nodes[next], nodes[place]);
            waiting.push_back(next);
        }
        if (tab.events[place].isEnd)
            graph->setEndOfStory(nodes[place]);
    }
}
