#include "items/latetext.h"

#include "items/textmeasure.h"

#include <utility>

namespace {

constexpr qsizetype longest = 50000; // UTF-16 units that are shown whole; some thirty pages
constexpr qsizetype mostShown = 5000;

} // namespace

bool LongText::isLong(const QString &text) { return text.size() > longest; }

QString LongText::shown(const QString &text)
{
    if (!isLong(text))
        return text;
    qsizetype end = mostShown;
    if (text.at(end).isLowSurrogate() && text.at(end - 1).isHighSurrogate())
        --end;
    return text.first(end) + QChar(u'\u2026');
}

bool LateText::canWait(const QString &text)
{
    return LongText::isLong(text) || TextMeasure::isHeldUnchanged(text);
}

void LateText::keep(const QString &text, const QRectF &place)
{
    late = true;
    keptText = text;
    keptPlace = place;
}

QString LateText::take()
{
    late = false;
    keptPlace = QRectF();
    return std::exchange(keptText, QString());
}
