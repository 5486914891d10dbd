#pragma once

#include "platform/base/types.h"

#include <algorithm>
#include <cstdint>
#include <vector>

namespace sbs {

/// One row of a window's ring: a scan, folded to one sample a pixel.
///
/// Until it is finished, a pixel that its scan did not reach shows the scan before.
template <typename Y>
struct ScanDisplayLine {
    std::vector<Y> yValues;
    std::vector<std::uint32_t> channelIds;     ///< the channel that set each pixel
    std::vector<std::int32_t> overwriteCounts; ///< how often each pixel was written
    bool finished = false;                     ///< the scan of this line has ended
    KRTimeStamp timeStamp = 0;                 ///< when the scan began; 0 if it has no time
    std::uint64_t channelLineId = 0;           ///< the scan that it shows; 0 for an unused line

    ScanDisplayLine() = default;
    ScanDisplayLine(std::size_t pixels, const Y &minimum)
        : yValues(pixels, minimum), channelIds(pixels, 0), overwriteCounts(pixels, 0)
    {
    }

    std::size_t size() const { return yValues.size(); }

    /// As freshly made; takes no memory.
    void reset(const Y &minimum)
    {
        std::fill(yValues.begin(), yValues.end(), minimum);
        std::fill(channelIds.begin(), channelIds.end(), 0);
        startScan();
    }
    /// Takes over what \a previous shows, as the start of a new scan.
    void continueFrom(const ScanDisplayLine &previous)
    {
        yValues = previous.yValues;
        channelIds = previous.channelIds;
        startScan();
    }
    /// Ends the scan: what it did not reach turns to \a minimum.
    void finish(const Y &minimum)
    {
        finished = true;
        for (std::size_t pixel = 0; pixel < size(); ++pixel)
            if (overwriteCounts[pixel] == 0)
                yValues[pixel] = minimum;
    }

private:
    void startScan()
    {
        std::fill(overwriteCounts.begin(), overwriteCounts.end(), 0);
        finished = false;
        timeStamp = 0;
        channelLineId = 0;
    }
};

} // namespace sbs
