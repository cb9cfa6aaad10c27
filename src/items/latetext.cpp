#include "items/latetext.h"

#include "items/textmeasure.h"

#include <utility>

namespace {

constexpr qsizetype longest = 50000; // UTF-16 units that are shown whole; some thirty pages
constexpr qsizetype mostShown = 5000;
constexpr qsizetype mostTurns = 4000; // of the writing direction within a word; time goes with their square

bool turnsTooOften(const QString &text)
{
    if (text.size() <= mostShown)
        return false;
    qsizetype turns = 0;
    bool isRightToLeft = false;
    for (const QChar unit : text) {
        const QChar::Direction direction = unit.direction();
        const bool isOther =
            isRightToLeft ? direction == QChar::DirL : direction == QChar::DirR || direction == QChar::DirAL;
        isRightToLeft = isRightToLeft != isOther;
        turns = unit.isSpace() ? 0 : turns + (isOther ? 1 : 0);
        if (turns > mostTurns)
            return true;
    }
    return false;
}

} // namespace

bool LongText::isLong(const QString &text) { return text.size() > longest || turnsTooOften(text); }

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
