#include "scene/nodeselection.h"

#include "items/node.h"
#include "scene/textfocus.h"

#include <QRectF>

namespace {
constexpr double framingMargin = 50.0;
}

// None is current as soon as the mouse is pressed, and the press itself decides about the keyboard.
void NodeSelection::setCurrent(Node *node)
{
    current_ = node;
    if (node)
        leaveTextsBut(canvas, node);
}

void NodeSelection::moveCurrentTo(Node *node)
{
    if (current_)
        current_->setSelected(false);
    setCurrent(node);
    node->setSelected(true);
}

void NodeSelection::selectAll(const std::vector<Node *> &nodes)
{
    collected_.clear();
    for (Node *node : nodes)
        node->setSelected(true);
    collected_ = nodes;
}

void NodeSelection::deselectAll(const std::vector<Node *> &nodes)
{
    collected_.clear();
    for (Node *node : nodes)
        node->setSelected(false);
}

void NodeSelection::forget(Node *node)
{
    collected_.remove(node);
    if (current_ == node)
        setCurrent(nullptr);
}

QRectF NodeSelection::bounds(const std::vector<Node *> &all) const
{
    const auto sceneRectOf = [](const Node *node) { return node->mapRectToScene(node->boundingRect()); };
    QRectF covered;
    if (current_) {
        covered = sceneRectOf(current_);
    } else {
        const std::vector<Node *> &framed = collected().empty() ? all : collected();
        for (const Node *node : framed)
            covered |= sceneRectOf(node);
    }
    if (!covered.isNull())
        covered.adjust(-framingMargin, -framingMargin, framingMargin, framingMargin);
    return covered;
}
