#include "items/nodeshape.h"

#include "items/socket.h"

QRectF NodeShape::body(const QRectF &payload)
{
    const double socketWidth = Socket::size.width();
    return {0, 0, double(static_cast<int>(socketWidth + socketWidth + payload.width() + margin)),
            double(static_cast<int>(headerHeight + payload.height() + margin))};
}

QPainterPath NodeShape::header(double width)
{
    QPainterPath strip(QPointF(0, headerHeight));
    strip.lineTo(0, cornerRadius);
    strip.quadTo(0, 0, cornerRadius, 0);
    strip.lineTo(width - cornerRadius, 0);
    strip.quadTo(width, 0, width, cornerRadius);
    strip.lineTo(width, headerHeight);
    strip.closeSubpath();
    return strip;
}

QPointF NodeShape::titlePlace()
{
    return {margin, headerHeight / 10}; // NOLINT(bugprone-integer-division): whole units
}

double NodeShape::titleRoom(double width) { return width - 2 * margin; }

QPointF NodeShape::payloadPlace() { return {margin + Socket::size.width(), double(headerHeight + margin)}; }

QPointF NodeShape::socketPlace(int type, const QRectF &body)
{
    const int middle = static_cast<int>(body.height()) / 2;
    return {type == SocketType::input ? 0 : body.width() - Socket::size.width(), double(middle)};
}
