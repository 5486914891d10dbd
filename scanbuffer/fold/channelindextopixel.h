#pragma once

#include "platform/axis/axisdefinition.h"
#include "valueclasses/channels/channelrangedefinition.h"

#include <cstdint>
#include <optional>
#include <span>
#include <vector>

/// Which pixels of an axis show which channels of a scan.
namespace channelToPixel {

/// First and last pixel, inclusive.
struct PixelRange {
    std::uint16_t first, last;
    bool operator==(const PixelRange &) const = default;
};

/// Channels with neighbouring indexes and ids that all have the same pixels.
struct PixelRun {
    std::uint32_t firstChannel; ///< channel index
    std::uint32_t channelCount;
    std::uint32_t firstChannelId;
    PixelRange pixels;

    std::uint32_t endChannel() const { return firstChannel + channelCount; }
    bool operator==(const PixelRun &) const = default;
};

/// Maps a channel index to its pixels.
///
/// The pixels of a channel are those whose centre lies in its band, or, when there is none, the one
/// that holds its frequency; a channel with neither lies outside the axis. Bands are half open, as
/// pixels are, and are compared in units of pixels. A band reaches half a step to both sides of the
/// channel's frequency, so that the bands of a range tile it without gap or overlap.
///
/// A plain value. It holds no entry a channel, but one a run: about one for each pixel and range.
class SPECTREE_EXPORT ChannelIndexToPixelRangeMapper {
public:
    /// Maps nothing.
    ChannelIndexToPixelRangeMapper() = default;
    ChannelIndexToPixelRangeMapper(const values::ChannelRangeDefinition &definition,
                                   const axisDefinition &axis);

    /// Nothing for a channel outside the axis, or outside the definition.
    std::optional<PixelRange> pixels(std::uint32_t channel) const;
    std::optional<std::uint16_t> firstPixel(std::uint32_t channel) const;
    std::optional<std::uint16_t> lastPixel(std::uint32_t channel) const;

    /// Pixels of the axis; 0 for a mapper that maps nothing.
    std::size_t pixelCount() const { return m_pixelCount; }
    /// All runs, by rising channel index; channels outside the axis are in none.
    const std::vector<PixelRun> &runs() const { return m_runs; }
    /// The runs that touch the channels from \a first to \a last, inclusive.
    std::span<const PixelRun> runs(std::uint32_t first, std::uint32_t last) const;

private:
    void addRange(const values::ChannelRangeDefinition::IndexedRange &range,
                  const axisDefinition &axis);

    std::vector<PixelRun> m_runs;
    std::size_t m_pixelCount = 0;
};

} // namespace channelToPixel
