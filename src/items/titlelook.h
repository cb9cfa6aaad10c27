#pragma once

#include <QColor>
#include <QRectF>
#include <QString>

class GreekedText;
class QFont;
class QPainter;

/// What is seen of a title that nobody edits, in a header that leaves it a certain width: all of it, or its
/// beginning and an ellipsis. All in the units of the item that shows it.
struct TitleLook
{
    static constexpr double margin = 4.0; // around the letters; what a document has by itself

    static constexpr QColor ink{0xf5, 0xf5, 0xf5};

    static const QFont &font();
    /// What a document of the whole title takes.
    static QSizeF sizeOf(const QString &title);
    /// One line over all the width that there is.
    static QRectF headerPlace(double width);

    TitleLook() = default;
    /// Of a title whose document takes that size; a `width` of 0 is no limit.
    TitleLook(const QString &title, const QSizeF &size, double width);

    bool operator==(const TitleLook &other) const;
    bool isShortened() const { return !shortText.isNull(); }
    /// Its place, if the whole title takes `whole`.
    QRectF place(const QRectF &whole, double width) const;
    /// Paints what it looks like where it is too small to be read.
    void paintGreeked(QPainter &painter, GreekedText &bars, const QString &title, const QRectF &place) const;

    QString shortText;    // what fits of a title that is too long; null when all of it fits
    bool isBlank = false; // no letter is seen of it
};
