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

} // namespace TextMeasure
