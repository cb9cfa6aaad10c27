#pragma once

#include <QHash>

#include <utility>
#include <vector>

class QGraphicsItem;
class PromptScene;

/// Lets nodes and lines onto a canvas and off it again, and remembers in which order they came. Owned by the
/// scene; whoever takes several away at once holds a Together meanwhile.
///
/// The framework numbers all its items anew for each one that leaves before others: emptying a canvas of
/// 10,000 events from the front took 2 s. So what goes together leaves in the reverse of that order.
class MassRemoval
{
public:
    /// While one of these lives, what is taken out stays in the canvas's items; all of it leaves when the
    /// outermost one ends, those that came last first.
    class Together
    {
    public:
        explicit Together(MassRemoval &delayed);
        ~Together();
        Together(const Together &) = delete;
        Together &operator=(const Together &) = delete;

    private:
        MassRemoval &removal;
    };

    /// `emptied` must outlive every call.
    explicit MassRemoval(PromptScene &emptied) : canvas(emptied) {}

    void bringIn(QGraphicsItem *item);
    /// Once taken out the item is the caller's, who must not destroy it while a Together lives.
    void takeOut(QGraphicsItem *item);

private:
    void takeOutNow(QGraphicsItem *item);
    void takeOutLeaving();

    PromptScene &canvas;
    QHash<const QGraphicsItem *, quint64> arrivals; // when they came
    quint64 nextArrival = 0;
    std::vector<std::pair<quint64, QGraphicsItem *>> leaving; // with their arrivals
    int depth = 0;                                            // of Togethers in each other
};
