#pragma once

class NodegraphScene;
class QPainter;
class QRectF;

/// The canvas from so far away that no small letter is larger than two pixels.
///
/// The framework would still paint every text, header and socket of every node, which takes 134 ms for a
/// thousand nodes in view; their rectangles and the lines take a few.
namespace Overview {

/// Whether a canvas at that scale (pixels for a scene unit) is shown as an overview.
bool isMeantFor(double scale);

/// Paints what lies in `exposed`, in scene coordinates, with a painter that maps them to pixels by `scale`.
/// The background is the caller's.
void paint(QPainter &painter, const NodegraphScene &scene, const QRectF &exposed, double scale);

} // namespace Overview
