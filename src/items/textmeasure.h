#pragma once

#include <QSizeF>

class QFont;
class QString;

/// What a text document would answer, without a document for each text.
namespace TextMeasure {

/// Whether a document that is given this text holds it unchanged.
bool isHeldUnchanged(const QString &text);

/// The place that a document of that text width takes: its text width, or more where a word does not fit, by
/// its height. All in the units of the item that shows it.
QSizeF documentSize(const QString &text, const QFont &font, double textWidth, double margin);

/// While one lives, documentSize() answers at once that a text takes no place. For graphs that are read for
/// what they say and never shown: measuring is most of the time that reading takes.
class Pause
{
public:
    Pause();
    ~Pause();
    Pause(const Pause &) = delete;
    Pause &operator=(const Pause &) = delete;
};

} // namespace TextMeasure
