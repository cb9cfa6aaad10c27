#include "scene/massremoval.h"

#include "items/promptscene.h"

#include <algorithm>
#include <functional>

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
        leaving.emplace_back(arrivals.value(item), item);
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
    std::sort(leaving.begin(), leaving.end(), std::greater());
    for (const auto &[arrival, item] : leaving)
        takeOutNow(item);
    leaving.clear();
}
