#pragma once

#include <QRectF>
#include <QString>

#include <functional>
#include <vector>

class Node;
class OvNode;

/// What the panel knows of an event that it lists, as the event was when it was listed.
struct PanelRow
{
    explicit PanelRow(Node *listed);

    int currentIndex() const; // the entry has the last word, here and in what follows
    QRectF currentOutline() const;
    /// Scene coordinate of the upper edge that was laid out last.
    double top() const { return y + outline.top(); }

    Node *node; // not owned; the panel removes the row before the node goes
    QString text;
    QRectF outline; // of the entry, in its own coordinates
    int index;
    int shownIndex; // of the entry, which is told whenever some event changes its index
    bool isImportant;
    double y = 0;            // of the entry, scene coordinate
    OvNode *entry = nullptr; // while there is none it has not been in sight
};

/// The rows of the panel, top first: known and measured, and made when somebody looks. Owned by the panel,
/// which owns the entries as well.
class PanelList
{
public:
    /// `making` gives a row its entry, complete and at its place.
    explicit PanelList(std::function<OvNode *(const PanelRow &row)> making) : make(std::move(making)) {}

    const std::vector<PanelRow> &rows() const { return all; }
    void add(Node *node) { all.emplace_back(node); }
    /// The entries are about to go.
    void clear();

    /// The entry of that row, which is made if there is none yet.
    OvNode *entry(std::size_t place);
    /// All of them.
    const std::vector<OvNode *> &entries();
    /// Makes those between two heights (scene coordinates), contents and all.
    void makeBetween(double top, double bottom);

    /// The place of the first row with that index, that of no row if there is none.
    std::size_t placeOf(int index) const;
    void setIndex(std::size_t place, int index);
    /// Takes text and outline from the node again. Whether the outline has changed.
    bool refresh(std::size_t place);
    /// Stacks the rows with that gap, the first one at 0; returns what they cover, and the y after the last
    /// one.
    std::pair<QRectF, int> layOut(int spacing);

private:
    std::function<OvNode *(const PanelRow &)> make;
    std::vector<PanelRow> all;
    std::vector<OvNode *> made; // all of them, or some
};
