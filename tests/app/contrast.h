#pragma once

#include <QColor>
#include <QImage>

#include <cmath>
#include <map>

// How well a text stands out from what is behind it.

inline constexpr double readable = 4.5; // the least contrast of ordinary text, by WCAG 2, level AA
inline constexpr double discernible = 3.0;

inline double linear(double channel)
{
    return channel <= 0.03928 ? channel / 12.92 : std::pow((channel + 0.055) / 1.055, 2.4);
}

/// The relative luminance as WCAG 2 defines it.
inline double luminance(const QColor &colour)
{
    return 0.2126 * linear(colour.redF()) + 0.7152 * linear(colour.greenF()) +
           0.0722 * linear(colour.blueF());
}

inline double contrast(const QColor &first, const QColor &second)
{
    const double a = luminance(first);
    const double b = luminance(second);
    return (qMax(a, b) + 0.05) / (qMin(a, b) + 0.05);
}

/// What a text's picture is made of.
struct Painted
{
    QColor background; // the colour of most of it
    QColor text;       // what stands out most
};

/// The colours of a picture that shows a text and the ground it stands on, and nothing else.
inline Painted painted(const QImage &picture)
{
    std::map<QRgb, int> amounts;
    for (int y = 0; y < picture.height(); ++y) {
        for (int x = 0; x < picture.width(); ++x)
            ++amounts[picture.pixel(x, y)];
    }
    Painted result;
    int most = 0;
    for (const auto &[colour, amount] : amounts) {
        if (amount > most) {
            most = amount;
            result.background = QColor(colour);
        }
    }
    result.text = result.background;
    for (const auto &[colour, amount] : amounts) {
        if (contrast(QColor(colour), result.background) > contrast(result.text, result.background))
            result.text = QColor(colour);
    }
    return result;
}
