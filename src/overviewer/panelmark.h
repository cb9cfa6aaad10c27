#pragma once

#include "overviewer/listedevent.h"

#include <QRectF>

class OvNode;
class QPainter;

/// The mark on the entry that the keys of the panel are about, while no text is being written in. Stays with
/// its event, whatever becomes of the entries. Owned by the panel's scene.
class PanelMark
{
public:
    /// Puts the mark on that entry, which must be listed.
    void putOn(OvNode *entry);
    /// The entry that has the mark, seen or not; null if its event is not listed.
    OvNode *entry() const { return marked; }
    /// Whether it is to be seen.
    void setShown(bool shown);

    /// The entries are about to go.
    void forgetEntries() { marked = nullptr; }
    /// Whether it waits for that node's entry.
    bool isAwaitedBy(const Node *node) const { return !marked && event.is(node); }
    /// An entry has come.
    void noteEntry(OvNode *entry, const Node *node);

    void paint(QPainter &painter) const;

private:
    void update() const;

    ListedEvent event;
    OvNode *marked = nullptr; // not owned
    bool isShown = false;
};
