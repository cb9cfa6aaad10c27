#pragma once

#include <QRectF>
#include <QSizeF>

#include <vector>

struct StoryTab;

/// Finds places for the boxes of a tab: the story from left to right, what leaves it below, so that no two
/// boxes overlap. What is too long for the canvas goes on in a row further down.
class StoryLayout
{
public:
    static constexpr double margin = 200; // between the boxes and the edges of the canvas
    static constexpr double columnGap = 100;
    static constexpr double rowGap = 60;
    static constexpr double leastGap = 30; // where a canvas is too full for the others

    /// `sizes` has one for each event of `tab`; both must outlive this object.
    StoryLayout(const StoryTab &tab, const std::vector<QSizeF> &sizes, const QRectF &canvas);

    /// The top left corners, in the order of the events; empty if the canvas is too small for the boxes.
    std::vector<QPointF> places();

    /// Whether all boxes are on the canvas and none touches another.
    static bool isClear(std::vector<QRectF> boxes, const QRectF &canvas);

private:
    struct Segment;

    bool placeBranches();
    bool placeRows();
    double placeSegment(const Segment &segment, std::vector<double> &bottoms);
    std::vector<int> roots() const;
    std::vector<int> chainFrom(int first) const;
    std::vector<int> inOrder() const;

    const StoryTab &tab;
    const std::vector<QSizeF> &sizes;
    QRectF room;
    double widest = 0;
    std::vector<int> nextOf; // of each event the one that goes on its chain, -1 if it ends there
    std::vector<QPointF> found;
};
