#pragma once

#include <QColor>
#include <QImage>
#include <QList>
#include <QRect>

#include <functional>

/// A connected area of one kind of colour.
struct Patch
{
    QRect bounds;  // in the picture's coordinates
    int count = 0; // pixels that really have the colour
};

/// The patches within `area` whose pixels fulfil the condition, from top to bottom.
QList<Patch> patches(const QImage &picture, const QRect &area, const std::function<bool(QRgb)> &matches);
/// The same for one exact colour.
QList<Patch> patchesOf(const QImage &picture, const QRect &area, const QColor &colour);
/// The one with the most pixels; an empty one if there is none.
Patch largest(const QList<Patch> &all);
