#include "scene/recordorder.h"

#include <functional>
#include <queue>

namespace {

/// The first place at which a record with this index may stand among `count` records.
std::size_t earliestPlace(int index, std::size_t count)
{
    const bool isProvisional = index >= 0 && index % 2 == 0 && static_cast<std::size_t>(index) < 2 * count;
    return isProvisional ? static_cast<std::size_t>(index) / 2 : 0;
}

} // namespace

std::vector<std::size_t> recordOrder(const std::vector<int> &indices)
{
    const std::size_t count = indices.size();
    std::vector<std::vector<std::size_t>> released(count); // by the place from which on they may stand
    for (std::size_t position = 0; position < count; ++position)
        released[earliestPlace(indices[position], count)].push_back(position);

    std::priority_queue<std::size_t, std::vector<std::size_t>, std::greater<>> waiting;
    std::vector<std::size_t> order;
    order.reserve(count);
    std::size_t nextRelease = 0;
    for (std::size_t place = 0; place < count; ++place) {
        while (nextRelease < count && (nextRelease <= place || waiting.empty())) {
            for (const std::size_t position : released[nextRelease])
                waiting.push(position);
            ++nextRelease;
        }
        order.push_back(waiting.top());
        waiting.pop();
    }
    return order;
}
