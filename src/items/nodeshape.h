#pragma once

#include <QPainterPath>
#include <QRectF>

/// Where everything lies in a node, whether it has been made or not. All in the node's coordinates.
namespace NodeShape {

inline constexpr int cornerRadius = 10;
inline constexpr int headerHeight = 34;
inline constexpr int margin = 15;

/// The body around a payload of that outline.
QRectF body(const QRectF &payload);
/// The header strip on a body of that width.
QPainterPath header(double width);

QPointF titlePlace();
/// The width that a title may take on a body of that width.
double titleRoom(double width);
QPointF payloadPlace();
/// The place of a socket (SocketType) on that body.
QPointF socketPlace(int type, const QRectF &body);

} // namespace NodeShape
