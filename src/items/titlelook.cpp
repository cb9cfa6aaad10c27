#include "items/titlelook.h"

#include "items/greekedtext.h"
#include "items/latetext.h"
#include "items/textmeasure.h"

#include <QFont>
#include <QFontMetricsF>

#include <algorithm>

namespace {
constexpr double unlimited = -1.0; // a title is not wrapped
}

const QFont &TitleLook::font()
{
    static const QFont font = [] {
        QFont bold(QStringLiteral("Inria Sans"), 13, QFont::Bold);
        bold.setItalic(false);
        return bold;
    }();
    return font;
}

QSizeF TitleLook::sizeOf(const QString &title)
{
    return TextMeasure::documentSize(LongText::shown(title), font(), unlimited, margin);
}

QRectF TitleLook::headerPlace(double width)
{
    return {0, 0, width, QFontMetricsF(font()).height() + 2 * margin};
}

TitleLook::TitleLook(const QString &title, const QSizeF &size, double width)
{
    const QString text = LongText::shown(title);
    const double room = width - 2 * margin;
    if (room <= 0)
        return;
    const auto endsLine = [](QChar unit) {
        return unit == QLatin1Char('\n') || unit == QChar::LineSeparator;
    };
    const QString firstLine(text.cbegin(),
                            std::find_if(text.cbegin(), text.cend(), endsLine) - text.cbegin());
    const QFontMetricsF metrics(font());
    if (firstLine.size() < text.size())
        shortText = metrics.elidedText(firstLine + QChar(0x2026), Qt::ElideRight, room);
    else if (size.width() > width)
        shortText = metrics.elidedText(text, Qt::ElideRight, room);
    isBlank = shortText.isNull() && text.trimmed().isEmpty();
}

bool TitleLook::operator==(const TitleLook &other) const
{
    return shortText == other.shortText && shortText.isNull() == other.shortText.isNull() &&
           isBlank == other.isBlank;
}

QRectF TitleLook::place(const QRectF &whole, double width) const
{
    if (isShortened())
        return headerPlace(width);
    return isBlank ? whole | headerPlace(width) : whole;
}

void TitleLook::paintGreeked(QPainter &painter, GreekedText &bars, const QString &title,
                             const QRectF &place) const
{
    bars.paint(painter, isShortened() ? shortText : title, font(),
               place.adjusted(margin, margin, -margin, -margin), ink);
}
