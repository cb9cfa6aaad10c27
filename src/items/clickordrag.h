#pragma once

class QGraphicsSceneMouseEvent;

/// Tells a drag with the left button from a click: a hand that shakes between press and release drags
/// nothing.
class ClickOrDrag
{
public:
    /// What follows is a click until the mouse has moved far enough.
    void begin() { isDrag = false; }
    /// Whether that move is a part of a drag. Once the mouse was as far from the press as the platform asks
    /// for, it remains one wherever it goes.
    bool isDragged(const QGraphicsSceneMouseEvent &move);

private:
    bool isDrag = false;
};
