#include "apps/receiver/input.h"

#include <numeric>

namespace receiver {

std::size_t channelCount(const Grid &grid)
{
    return std::accumulate(grid.begin(), grid.end(), std::size_t(0),
                           [](std::size_t sum, const Range &range) { return sum + range.count; });
}

} // namespace receiver
