#pragma once

#include "scanbuffer/fold/channelindextopixel.h"
#include "scanbuffer/window/scandisplayline.h"
#include "valueclasses/samples/samplepairs.h"

#include <cstdint>
#include <span>
#include <vector>

namespace sbs {

/// How samples are folded into pixels.
struct FoldRules {
    /// The last sample of a scan wins, an invalid one too, instead of the greatest.
    bool lastSampleWins = false;
    /// Writes are not counted, so that the end of a scan blanks nothing.
    bool keepOverwriteCounts = false;
    /// The dimension that the hold vectors hold.
    short holdDimension = 0;
    /// One value a pixel, or empty: the extremes of the samples that came to a pixel; for the
    /// maximum only of those that were written.
    std::vector<double> minHold, maxHold;

    bool isPlainMaximum() const
    {
        return !lastSampleWins && !keepOverwriteCounts && minHold.empty() && maxHold.empty();
    }
};

/// Folds the channels from \a first to \a last, inclusive, of \a samples (one a channel index) into
/// \a line. Returns whether a pixel was written.
///
/// A sample is written to each of its pixels when it is above the pixel's sample, when it is valid
/// and the first of its scan there, or when the last one wins. A write stores the sample and its
/// channel's id, and is counted. Runs vector code that is chosen by processor where the sample type
/// has some; the result is that of foldPlain(), to the last count.
template <typename Y, typename YHandler>
bool fold(std::span<const Y> samples, const channelToPixel::ChannelIndexToPixelRangeMapper &mapper,
          ScanDisplayLine<Y> &line, std::uint32_t first, std::uint32_t last, FoldRules &rules);

/// The same, sample by sample.
template <typename Y, typename YHandler>
bool foldPlain(std::span<const Y> samples,
               const channelToPixel::ChannelIndexToPixelRangeMapper &mapper,
               ScanDisplayLine<Y> &line, std::uint32_t first, std::uint32_t last, FoldRules &rules);

} // namespace sbs
