#include "items/nodedrag.h"

#include "items/node.h"

#include <QGraphicsScene>

void NodeDrag::move(const QPointF &press, const QPointF &place)
{
    if (isPressed || number == 0 || press != pressPlace)
        pickUp();
    isPressed = false;
    pressPlace = press;
    carry(place - press);
}

std::vector<Node *> NodeDrag::selectedNodesAndThis() const
{
    std::vector<Node *> all;
    const QGraphicsScene *scene = node.scene();
    const QList<QGraphicsItem *> selected = scene ? scene->selectedItems() : QList<QGraphicsItem *>();
    for (QGraphicsItem *item : selected) {
        if (auto *other = dynamic_cast<Node *>(item); other && other != &node)
            all.push_back(other);
    }
    all.push_back(&node);
    return all;
}

/// The first move of a drag: all that is selected now goes with this node.
void NodeDrag::pickUp()
{
    static quint64 drags = 0;
    ++drags;
    for (Node *each : selectedNodesAndThis()) {
        each->drag().number = drags;
        each->drag().placeBefore = each->pos();
    }
}

/// Moves what was picked up and is still selected. The framework's own handler moves what is selected at each
/// moment: a node that was selected in the midst of the drag would start from (0, 0), and after a drag that
/// was cut short, because its node went, the next one would as well.
void NodeDrag::carry(const QPointF &way) const
{
    for (Node *each : selectedNodesAndThis()) {
        if (each->drag().number == number)
            each->setPos(each->drag().placeBefore + way);
    }
}
