#pragma once

class QGraphicsItem;
class QGraphicsScene;

// Which text of a canvas has the keyboard, or gets it back as soon as the canvas has the focus again.

/// Takes it from the text that has it, unless that is a part of `kept`, which may be null.
void leaveTextsBut(QGraphicsScene &canvas, const QGraphicsItem *kept);
/// Takes it from the text that has it if that is a part of `owner`.
void leaveTextOf(QGraphicsScene &canvas, const QGraphicsItem &owner);
