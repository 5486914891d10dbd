#pragma once

#include <cstdint>

namespace values {

/// A run of samples for neighbouring channels. Owns nothing.
template <typename Y>
struct SpectralDataPiece {
    std::uint32_t firstIndex = 0; ///< index of the first channel, as ChannelIdToIndex gives it
    std::uint32_t count = 0;
    const Y *samples = nullptr;
};

} // namespace values
