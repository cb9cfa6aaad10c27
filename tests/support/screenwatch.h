#pragma once

#include <QImage>
#include <QRect>
#include <QString>

class QWidget;

// Looks at the pixels that stand on the screen. Neither the state of an object nor a grabbed widget, which is
// painted for the occasion, tells what a person has before the eyes.

namespace ScreenWatch {

/// Delivers what was posted, up to and with the next frame. No timer fires, since what timers do would depend
/// on the speed of the machine, and nothing is painted that was not asked for.
void comeToRest();

/// What stands on the screen in place of the window; null if it has never been painted.
QImage onScreen(const QWidget &window);

/// Where the two pictures differ, and in how many pixels; none if nowhere.
struct Difference
{
    QRect first; // the topmost row of differing pixels, from its first to its last
    QRect all;
    int pixels = 0;
};
/// Within `area`, in pixels of the pictures, or all over if that is null.
Difference difference(const QImage &one, const QImage &other, const QRect &area = QRect());

enum class Extent {
    window,
    canvases, // its graphics views alone, which is ten times as quick
};

/// Compares the screen with a painting of the window that is made after the screen was read. Says which part
/// of the window does not show what it should, or nothing; a window that is not shown has no fault.
///
/// FABLEGRID_SCREENS names a folder that takes both pictures if they differ.
///
/// A painting tells each canvas that it has been painted, so that one which waited in vain for its repaint
/// goes on afterwards. To find such a one, leave some steps unchecked, not to heal it with each of them.
QString fault(QWidget &window, Extent extent = Extent::window);

} // namespace ScreenWatch
