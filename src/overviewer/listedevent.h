#pragma once

#include <QGraphicsScene>
#include <QPointer>

class Node;

/// Which event an entry of the panel stands for, for whoever has to find it again: all entries are made anew
/// with every story, and an event that was deleted comes back as another node with the same index.
///
/// Other tabs have events of the same indices; they are never taken for this one.
class ListedEvent
{
public:
    /// No event.
    ListedEvent() = default;
    explicit ListedEvent(const Node *listed);

    /// Whether that node, which must be in its scene, is the event.
    bool is(const Node *candidate) const;

private:
    QPointer<const QGraphicsScene> graph;
    QPointer<const Node> node;
    int index = -1;
};
