#include "items/greekedtext.h"

#include "items/detail.h"
#include "items/latetext.h"

#include <QColor>
#include <QFont>
#include <QFontMetricsF>
#include <QHash>
#include <QPainter>

#include <algorithm>

namespace {

constexpr double barHeight = 0.45;    // of a line, about that of small letters
constexpr double inkOfLetters = 0.27; // how much of a bar they cover
constexpr double inkOfBold = 0.5;
constexpr double finestPitch = 2.0; // pixels between two lines that are still told apart
constexpr int wholeLine = 255;

struct Type
{
    double lineHeight;
    double advance; // of an average letter
    double ink;
};

const Type &typeOf(const QFont &font)
{
    static QHash<QFont, Type> types;
    const auto found = types.constFind(font);
    if (found != types.constEnd())
        return *found;
    const QFontMetricsF metrics(font);
    const QString sample = QStringLiteral("the words of an ordinary story");
    return *types.insert(font, {metrics.height(), metrics.horizontalAdvance(sample) / double(sample.size()),
                                font.bold() ? inkOfBold : inkOfLetters});
}

bool endsLine(QChar unit) { return unit == QLatin1Char('\n') || unit == QChar::LineSeparator; }

} // namespace

void GreekedText::measure(const QString &text, int lines, double capacity)
{
    const auto add = [this, capacity](qsizetype letters) {
        lengths.append(char(uchar(std::min(double(wholeLine), wholeLine * double(letters) / capacity))));
    };
    qsizetype begin = 0;
    qsizetype space = -1;
    for (qsizetype i = 0; i < text.size() && lengths.size() < lines; ++i) {
        const QChar unit = text.at(i);
        if (unit == QLatin1Char(' '))
            space = i;
        if (endsLine(unit)) {
            add(i - begin);
            begin = i + 1;
            space = -1;
        } else if (double(i - begin + 1) > capacity) {
            const qsizetype end = space > begin ? space : i;
            add(end - begin);
            begin = space > begin ? space + 1 : i;
        }
    }
    if (begin < text.size() && lengths.size() < lines)
        add(text.size() - begin);
}

void GreekedText::paint(QPainter &painter, const QString &text, const QFont &font, const QRectF &area,
                        const QColor &ink)
{
    const Type &type = typeOf(font);
    const int lines = std::max(1, qRound(area.height() / type.lineHeight));
    if (lengths.isEmpty())
        measure(LongText::shown(text), lines, std::max(1.0, area.width() / type.advance));
    QColor color = ink;
    const double pitch = area.height() / lines;
    if (pitch * Detail::scaleOf(painter) < finestPitch) {
        int written = 0;
        for (const char length : std::as_const(lengths))
            written += uchar(length);
        const double fullness = double(written) / std::max(1, wholeLine * int(lengths.size()));
        color.setAlphaF(float(barHeight * type.ink * fullness));
        painter.fillRect(QRectF(area.left(), area.top(), area.width(), pitch * double(lengths.size())),
                         color);
        return;
    }
    color.setAlphaF(float(type.ink));
    double top = area.top() + pitch * (1 - barHeight) / 2;
    for (const char length : std::as_const(lengths)) {
        painter.fillRect(
            QRectF(area.left(), top, area.width() * uchar(length) / wholeLine, pitch * barHeight), color);
        top += pitch;
    }
}
