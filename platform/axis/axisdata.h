#pragma once

#include "platform/base/export.h"

#include <cstddef>
#include <cstdint>

/// The parameters of an axis as they travel between processes, in 32 bytes; docs/axis.md tells
/// them. A plain record: whether it makes an axis is for axisDefinition to say.
struct SPECTREE_EXPORT AxisData {
    double min = 0.0;
    double max = 0.0;
    std::int16_t pixelCount = 0;
    /// Bit 0: suppressed stretches are skipped. The others are 0.
    std::uint8_t flags = 0;
    /// Identifies the zoomed and suppressed stretches, 0.0 for none: section::hash().
    double sectionHash = 0.0;

    static constexpr std::uint8_t kSkipSuppressed = 0x01;
    static constexpr std::size_t kImageSize = 32;

    /// Writes kImageSize bytes and returns the position behind them.
    char *ToBinary(char *destination) const;
    /// Reads kImageSize bytes and advances the cursor. \throws KRException when there are fewer.
    static AxisData FromBinary(const char **cursor);

    bool operator==(const AxisData &) const = default;
};
