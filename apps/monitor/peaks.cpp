#include "apps/monitor/peaks.h"

#include <algorithm>
#include <cmath>
#include <limits>

namespace monitor {
namespace {

/// Calls \a found with the middle pixel of each local maximum of one run of pixels with data.
template <typename Found>
void scanRun(std::span<const float> levels, std::size_t begin, std::size_t end, Found found)
{
    std::size_t top = begin;
    while (top < end) {
        std::size_t behind = top + 1;
        while (behind < end && levels[behind] == levels[top])
            ++behind;
        const bool rises = top == begin || levels[top - 1] < levels[top];
        const bool falls = behind == end || levels[behind] < levels[top];
        const bool wholeRun = top == begin && behind == end;
        // A lone pixel between holes is a channel of its own, not a run without slope.
        if (rises && falls && (!wholeRun || end - begin == 1))
            found(top + (behind - top - 1) / 2);
        top = behind;
    }
}

bool isStronger(const Peak &left, const Peak &right)
{
    if (left.levelDbuv != right.levelDbuv)
        return left.levelDbuv > right.levelDbuv;
    return left.pixel < right.pixel;
}

} // namespace

std::vector<Peak> strongestPeaks(std::span<const float> levels, double startHz, double stopHz,
                                 std::size_t count)
{
    std::vector<Peak> peaks;
    const double width = levels.empty() ? 0.0 : (stopHz - startHz) / double(levels.size());
    const auto found = [&](std::size_t pixel) {
        peaks.push_back({pixel, startHz + (double(pixel) + 0.5) * width, levels[pixel]});
    };
    for (std::size_t begin = 0; begin < levels.size(); ++begin) {
        std::size_t end = begin;
        while (end < levels.size() && std::isfinite(levels[end]))
            ++end;
        scanRun(levels, begin, end, found);
        begin = end;
    }
    const auto kept = std::min(count, peaks.size());
    std::partial_sort(peaks.begin(), peaks.begin() + std::ptrdiff_t(kept), peaks.end(), isStronger);
    peaks.resize(kept);
    return peaks;
}

std::vector<Peak> labelledPeaks(std::span<const Peak> peaks, double floorDbuv, double prominenceDb,
                                std::size_t separation, std::size_t count)
{
    std::vector<Peak> labelled;
    for (const Peak &peak : peaks) {
        if (labelled.size() == count || !(peak.levelDbuv >= floorDbuv + prominenceDb))
            break;
        const bool crowded = std::any_of(labelled.begin(), labelled.end(), [&](const Peak &other) {
            const auto [left, right] = std::minmax(peak.pixel, other.pixel);
            return right - left < separation;
        });
        if (!crowded)
            labelled.push_back(peak);
    }
    return labelled;
}

double levelQuantile(std::span<const float> levels, double share)
{
    std::vector<float> known;
    known.reserve(levels.size());
    std::copy_if(levels.begin(), levels.end(), std::back_inserter(known),
                 [](float level) { return std::isfinite(level); });
    if (known.empty())
        return std::numeric_limits<double>::quiet_NaN();
    const auto rank =
        std::ptrdiff_t(std::lround(std::clamp(share, 0.0, 1.0) * double(known.size() - 1)));
    std::nth_element(known.begin(), known.begin() + rank, known.end());
    return known[std::size_t(rank)];
}

} // namespace monitor
