#include "scene/massremoval.h"

#include "items/promptscene.h"

#include <algorithm>

MassRemoval::Together::Together(MassRemoval &delayed) : removal(delayed) { ++removal.depth; }

MassRemoval::Together::~Together()
{
    if (--removal.depth == 0)
        removal.takeOutLeaving();
}

void MassRemoval::bringIn(QGraphicsItem *item)
{
    canvas.addItem(item);
    arrivals.insert(item, nextArrival++);
}

void MassRemoval::takeOut(QGraphicsItem *item)
{
    if (depth > 0)
        leaving.push_back(item);
    else
        takeOutNow(item);
}

void MassRemoval::takeOutNow(QGraphicsItem *item)
{
    arrivals.remove(item);
    canvas.removeItem(item);
}

void MassRemoval::takeOutLeaving()
{
    canvas.takeInNewItems();
    std::sort(leaving.begin(), leaving.end(), [this](const QGraphicsItem *a, const QGraphicsItem *b) {
        return arrivals.value(a) > arrivals.value(b);
    });
    for (QGraphicsItem *item : leaving)
        takeOutNow(item);
    leaving.clear();
}
