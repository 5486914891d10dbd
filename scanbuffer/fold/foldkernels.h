#pragma once

#include "platform/base/export.h"
#include "scanbuffer/fold/channelindextopixel.h"

#include <concepts>
#include <cstddef>
#include <cstdint>

/// Folding of samples that are one plain number, by the greatest sample of each pixel. The code is
/// chosen by processor at run time, and every choice gives the same result.
namespace sbs::foldkernels {

/// The numbers that have kernels; other instances do not link.
template <typename T>
concept Number = std::same_as<T, char> || std::same_as<T, short> || std::same_as<T, std::int32_t> ||
    std::same_as<T, float> || std::same_as<T, double>;

/// One call: which samples go to which pixels. Owns nothing.
template <Number T>
struct Job {
    const T *samples;        ///< one a channel index
    std::size_t sampleCount; ///< all of them: reads may pass the end of a run, never this one
    T minimum;               ///< the invalid sample
    T *values;               ///< one a pixel, as all that follow
    std::uint32_t *ids;
    std::int32_t *counts;
    const channelToPixel::PixelRun *runs, *endOfRuns;
    std::uint32_t first, last; ///< channels to fold, inclusive; last is below sampleCount
};

/// Returns whether a pixel was written.
template <Number T>
using Kernel = bool (*)(const Job<T> &);

enum class Instructions { plain, avx2 };

/// The kernel for these instructions; null when this processor doesn't have them.
template <Number T>
SPECTREE_EXPORT Kernel<T> kernelFor(Instructions instructions);
/// The fastest one of this processor.
template <Number T>
SPECTREE_EXPORT Kernel<T> bestKernel();

} // namespace sbs::foldkernels
