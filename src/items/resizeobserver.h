#pragma once

class QGraphicsItem;

/// An item whose outline follows that of a child item.
///
/// News of a changing size travels from the text upwards, item by item, through these plain functions: the
/// graphics framework must hear of the change from every item it touches, and before the outline answers
/// differently.
class ResizeObserver
{
public:
    /// The child's bounding rectangle is about to change: announce the own change, then tell the parent.
    virtual void aboutToResize() = 0;
    /// The child's bounding rectangle has changed: lay out anew, then tell the parent.
    virtual void resized() = 0;

    /// Tells `parent` if it is one that observes; null and other items are ignored.
    static void tellAboutToResize(QGraphicsItem *parent);
    static void tellResized(QGraphicsItem *parent);

protected:
    ~ResizeObserver() = default;
};
