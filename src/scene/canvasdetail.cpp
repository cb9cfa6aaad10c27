#include "scene/canvasdetail.h"

#include "items/node.h"

#include <QGraphicsView>

#include <algorithm>
#include <cmath>

namespace {

constexpr double smallLetters = 10.0; // scene units: the height of a description's
constexpr double legibleFrom = 2.0;   // pixels
constexpr double handleWidth = 10.0;  // scene units
constexpr double handleFrom = 1.0;    // pixels
constexpr int fewEvents = 200;        // in view: all of them are painted in full within a frame

// A ground that covers its event all but a hem of less than two pixels lets the event's colour shine through,
// little by little as more events come into view, so that nobody notices where that begins.
constexpr double hem = 27.0;       // scene units left and right of the ground
constexpr double clearHem = 2.0;   // pixels
constexpr int manyEvents = 1000;   // in view
constexpr double mostGiven = 0.65; // of the ground

/// Counts no further than to manyEvents.
int eventsInView(const QGraphicsView &view, const std::vector<Node *> &nodes)
{
    const QRectF shown = view.mapToScene(view.viewport()->rect()).boundingRect();
    int count = 0;
    for (const Node *node : nodes) {
        if (node->isVisible() && node->boundingRect().translated(node->pos()).intersects(shown) &&
            ++count == manyEvents)
            break;
    }
    return count;
}

NodeDetail detailAt(double scale, int events)
{
    NodeDetail detail;
    if (events <= fewEvents)
        return detail;
    detail.parts = scale * handleWidth < handleFrom ? NodeDetail::Parts::none : NodeDetail::Parts::handles;
    const double crowd = double(events - fewEvents) / (manyEvents - fewEvents);
    const double thinness = std::clamp(1.0 - hem * scale / clearHem, 0.0, 1.0);
    detail.ground = 1.0 - mostGiven * crowd * thinness;
    return detail;
}

} // namespace

void CanvasDetail::apply(const QGraphicsView &view, const std::vector<Node *> &nodes)
{
    const double scale = std::abs(view.transform().m11());
    const bool isLegible = scale * smallLetters >= legibleFrom;
    const NodeDetail wanted = isLegible ? NodeDetail() : detailAt(scale, eventsInView(view, nodes));
    if (wanted == NodeDetail() && detail == wanted)
        return;
    detail = wanted;
    for (Node *node : nodes)
        node->setDetail(detail);
}
