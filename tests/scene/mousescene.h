#pragma once

#include "scene/shownscene.h"
#include "support/testsupport.h"

#include <QGraphicsRectItem>
#include <QImage>

// What the tests of mouse and rubber band share.

struct Canvas
{
    NodegraphScene scene;
    QUndoStack stack;
    SceneMouse mouse{scene};

    Canvas() { pushCommandsOn(scene, stack); }
};

/// The middle of a line's stroke lies on it whatever its shape.
inline QPointF strokeOf(const ConnectionLine *line, double percent)
{
    return line->path().pointAtPercent(percent);
}
