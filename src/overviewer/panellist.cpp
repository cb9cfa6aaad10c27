#include "overviewer/panellist.h"

#include "items/node.h"
#include "overviewer/ovnode.h"

#include <algorithm>

PanelRow::PanelRow(Node *listed)
    : node(listed), text(listed->description()), outline(listed->descriptionOutline()),
      index(listed->getIndex()), shownIndex(index), isImportant(listed->isImportant())
{}

int PanelRow::currentIndex() const { return entry ? entry->getIndex() : shownIndex; }

QRectF PanelRow::currentOutline() const { return entry ? entry->boundingRect() : outline; }

void PanelList::clear()
{
    all.clear();
    made.clear();
}

OvNode *PanelList::entry(std::size_t place)
{
    PanelRow &row = all[place];
    if (!row.entry)
        row.entry = make(row);
    return row.entry;
}

const std::vector<OvNode *> &PanelList::entries()
{
    if (made.size() != all.size()) {
        made.clear();
        for (std::size_t place = 0; place < all.size(); ++place)
            made.push_back(entry(place));
    }
    return made;
}

void PanelList::makeBetween(double top, double bottom)
{
    const auto endsAbove = [](const PanelRow &row, double y) { return row.y + row.outline.bottom() < y; };
    auto row = std::lower_bound(all.begin(), all.end(), top, endsAbove);
    for (; row != all.end() && row->y <= bottom; ++row)
        entry(static_cast<std::size_t>(row - all.begin()))->make();
}

std::size_t PanelList::placeOf(int index) const
{
    const auto found = std::find_if(all.begin(), all.end(),
                                    [index](const PanelRow &row) { return row.currentIndex() == index; });
    return static_cast<std::size_t>(found - all.begin());
}

void PanelList::setIndex(std::size_t place, int index)
{
    all[place].shownIndex = index;
    if (OvNode *shown = all[place].entry)
        shown->setIndex(index);
}

bool PanelList::refresh(std::size_t place)
{
    PanelRow &row = all[place];
    if (row.entry) {
        row.entry->updateFromNode();
        return false; // it tells of its size itself
    }
    const PanelRow present(row.node);
    row.text = present.text;
    const bool isResized = present.outline != row.outline;
    row.outline = present.outline;
    return isResized;
}

std::pair<QRectF, int> PanelList::layOut(int spacing)
{
    int y = 0;
    QRectF covered;
    for (PanelRow &row : all) {
        row.y = y;
        row.outline = row.currentOutline();
        if (row.entry)
            row.entry->setPos(0, y);
        covered |= row.outline.translated(0, y);
        y = static_cast<int>(spacing + row.outline.height() + y);
    }
    return {covered, y};
}
