#pragma once

#include <QByteArray>
#include <QString>

class QColor;
class QFont;
class QPainter;
class QRectF;

/// A text as it is seen where it is too small to be read: a bar for each line.
///
/// The lines are those that words of an average width would make, which nobody can tell from the real ones
/// there; laying thousands of texts out only to leave out their letters would take seconds. Owned by the item
/// that shows the text.
class GreekedText
{
public:
    /// The text has changed.
    void forget() { lengths.clear(); }
    /// Paints the bars of what is shown of `text` into `area`, the place of its letters in the painter's
    /// coordinates, a line for each height of `font` that fits.
    void paint(QPainter &painter, const QString &text, const QFont &font, const QRectF &area,
               const QColor &ink);

private:
    void measure(const QString &text, int lines, double capacity);

    QByteArray lengths; // of each line, 255 is the whole width; empty until it is painted
};
