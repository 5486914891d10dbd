#pragma once

#include "platform/axis/section.h"
#include "valueclasses/samples/structureimage.h"

#include <cstddef>
#include <cstdint>
#include <vector>

namespace values {

/// Which pixels of a display show which stretch of an axis: its limits, its width, and the
/// stretches that are drawn wider or narrower.
///
/// Its fixed image, for messages, has kImageSize bytes and room for kMaxSections of each kind; its
/// structure image (Kelm::toStandardString) grows with their number. docs/messages.md has both.
struct SPECTREE_EXPORT PixelMap {
    static constexpr std::size_t kImageSize = 1128;
    static constexpr std::size_t kMaxSections = 22;

    double axisMin = 0;
    double axisMax = 0;
    std::int16_t pixelCount = 0;
    std::uint8_t flags = 0;
    std::vector<pixSection> zoomed;     ///< drawn wider
    std::vector<pixSection> suppressed; ///< drawn narrower

    /// Writes kImageSize bytes and returns the position behind them.
    /// \throws KRException when a list is longer than kMaxSections; nothing is written then
    char *ToBinary(char *destination) const;
    /// Reads kImageSize bytes and advances the cursor. \throws KRException when there are fewer, a
    /// list is too long, or the final ";" is missing
    static PixelMap FromBinary(const char **cursor);

    bool operator==(const PixelMap &) const = default;
};

} // namespace values

namespace Kelm {

template <>
SPECTREE_EXPORT std::string toStandardString(const values::PixelMap &map);
/// \throws KRException for a truncated image, or one without its final ";"
template <>
SPECTREE_EXPORT values::PixelMap fromCharStream(const char **cursor);

} // namespace Kelm
