#pragma once

#include "scene/scenetab.h"
#include "scene/shownscene.h"
#include "support/testsupport.h"

#include <QGraphicsRectItem>
#include <QImage>

// What the tests of mouse and rubber band share.

struct Canvas : SceneTab
{
    SceneMouse mouse{scene};
};

/// The middle of a line's stroke lies on it whatever its shape.
inline QPointF strokeOf(const ConnectionLine *line, double percent)
{
    return line->path().pointAtPercent(percent);
}
