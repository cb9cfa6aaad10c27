#pragma once

class QColor;
class QPainter;
class QRectF;

/// What can be left out of a picture because nobody could see it at the scale it is painted in.
namespace Detail {

/// Pixels for a unit of that painter.
double scaleOf(const QPainter &painter);
/// Whether corners of that radius, in the painter's units, can be told from sharp ones.
bool showsCorners(const QPainter &painter, double radius);
/// Fills a rectangle with rounded corners, or with sharp ones where nobody sees the difference, which takes a
/// tenth of the time.
void fillRoundedRect(QPainter &painter, const QRectF &rect, double radius, const QColor &color);

} // namespace Detail
