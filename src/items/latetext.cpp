#include "items/latetext.h"

#include "items/textmeasure.h"

#include <utility>

bool LateText::canKeep(const QString &text) const { return late && TextMeasure::isHeldUnchanged(text); }

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
