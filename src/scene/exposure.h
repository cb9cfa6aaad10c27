#pragma once

class Node;
class QEvent;
class QGraphicsScene;
class QRectF;

/// Has the inner items of events made just before somebody can see or touch one of them. Owned by the scene,
/// which lets it look before each frame and each event.
class Exposure
{
public:
    /// `watched` must outlive every call.
    explicit Exposure(const QGraphicsScene &watched) : canvas(watched) {}

    /// Until there is one without inner items, nothing is looked for.
    void noteNew(const Node &node);
    /// Makes those of the events that are shown whole and touch `area` (scene coordinates), which is about to
    /// be painted.
    void aboutToPaint(const QRectF &area) const;
    /// Makes those that an event of the mouse or of a drag could be meant for; any other event makes none.
    void aboutToHandle(const QEvent &event) const;

private:
    const QGraphicsScene &canvas;
    bool hasSeenLate = false;
};
