#include "walk/picture.h"

#include <algorithm>
#include <vector>

namespace {

/// Collects the patch that the pixel belongs to and takes it out of the map of open pixels.
Patch takePatch(std::vector<bool> &open, const QSize &size, const QPoint &seed)
{
    Patch patch;
    std::vector<QPoint> waiting{seed};
    open[static_cast<std::size_t>(seed.y() * size.width() + seed.x())] = false;
    while (!waiting.empty()) {
        const QPoint point = waiting.back();
        waiting.pop_back();
        ++patch.count;
        patch.bounds |= QRect(point, QSize(1, 1));
        for (const QPoint step : {QPoint(1, 0), QPoint(-1, 0), QPoint(0, 1), QPoint(0, -1)}) {
            const QPoint next = point + step;
            if (!QRect(QPoint(0, 0), size).contains(next))
                continue;
            const auto place = static_cast<std::size_t>(next.y() * size.width() + next.x());
            if (open[place]) {
                open[place] = false;
                waiting.push_back(next);
            }
        }
    }
    return patch;
}

} // namespace

QList<Patch> patches(const QImage &picture, const QRect &area, const std::function<bool(QRgb)> &matches)
{
    const QRect seen = area & picture.rect();
    std::vector<bool> open;
    open.reserve(static_cast<std::size_t>(seen.width()) * static_cast<std::size_t>(seen.height()));
    for (int y = seen.top(); y <= seen.bottom(); ++y) {
        const auto *line = reinterpret_cast<const QRgb *>(picture.constScanLine(y));
        for (int x = seen.left(); x <= seen.right(); ++x)
            open.push_back(matches(line[x]));
    }
    QList<Patch> found;
    for (std::size_t place = 0; place < open.size(); ++place) {
        if (!open[place])
            continue;
        const int index = static_cast<int>(place);
        Patch patch = takePatch(open, seen.size(), QPoint(index % seen.width(), index / seen.width()));
        patch.bounds.translate(seen.topLeft());
        found.append(patch);
    }
    return found;
}

QList<Patch> patchesOf(const QImage &picture, const QRect &area, const QColor &colour)
{
    const QRgb wanted = colour.rgb() & RGB_MASK;
    return patches(picture, area, [wanted](QRgb pixel) { return (pixel & RGB_MASK) == wanted; });
}

Patch largest(const QList<Patch> &all)
{
    const auto found = std::max_element(all.begin(), all.end(),
                                        [](const Patch &a, const Patch &b) { return a.count < b.count; });
    return found == all.end() ? Patch() : *found;
}
