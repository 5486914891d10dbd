#include "scanbuffer/fold/channelindextopixel.h"

#include <algorithm>
#include <cmath>

namespace channelToPixel {

namespace {

using IndexedRange = values::ChannelRangeDefinition::IndexedRange;

/// Pixels of a channel before they are cut to 16 bits. Channels below the axis have kBelow, those
/// above it the pixel count, so that the spans of a range never change their direction.
struct Span {
    int first, last;
    bool operator==(const Span &) const = default;
};
constexpr int kBelow = -1;

class RangeOnAxis {
public:
    RangeOnAxis(const IndexedRange &range, const axisDefinition &axis)
        : m_range(range), m_axis(axis), m_pixels(axis.GetPixelCnt())
    {
    }

    /// The pixels of the channel at \a offset in the range.
    Span span(std::uint32_t offset) const
    {
        const double from = edge(offset), to = edge(offset + 1.0);
        const double low = std::min(from, to), high = std::max(from, to);
        const Span centres{std::max(firstCentreFrom(low), 0),
                           std::min(firstCentreFrom(high) - 1, m_pixels - 1)};
        return centres.first <= centres.last ? centres : spanOfFrequency(offset);
    }

    /// One past the last offset whose pixels are those of \a begin.
    std::uint32_t endOfRun(std::uint32_t begin, const Span &wanted) const
    {
        std::uint32_t inside = begin, step = 1;
        while (step < m_range.channelCount - inside && span(inside + step) == wanted) {
            inside += step;
            step *= 2;
        }
        std::uint32_t outside = inside + std::min(step, m_range.channelCount - inside);
        while (outside - inside > 1) {
            const std::uint32_t middle = inside + (outside - inside) / 2;
            (span(middle) == wanted ? inside : outside) = middle;
        }
        return outside;
    }

private:
    /// The lower edge of a band, in pixels. Two neighbours ask for the same number, so that no
    /// rounding opens a gap between them.
    double edge(double offset) const
    {
        return m_axis.GetPosition(m_range.firstCenterFrequency +
                                  (offset - 0.5) * m_range.frequencyStep);
    }

    /// The first pixel whose centre is not below \a position; fmax() also takes NaN out of the way
    /// of the conversion.
    int firstCentreFrom(double position) const
    {
        return static_cast<int>(
            std::ceil(std::fmin(std::fmax(position - 0.5, double(kBelow)), double(m_pixels))));
    }

    Span spanOfFrequency(std::uint32_t offset) const
    {
        const double frequency = m_range.firstCenterFrequency + offset * m_range.frequencyStep;
        bool inside = false;
        int pixel = m_axis.ToPixel(frequency, inside);
        if (!inside)
            pixel = m_axis.GetPosition(frequency) < m_pixels ? kBelow : m_pixels;
        return {pixel, pixel};
    }

    const IndexedRange &m_range;
    const axisDefinition &m_axis;
    int m_pixels;
};

} // namespace

ChannelIndexToPixelRangeMapper::ChannelIndexToPixelRangeMapper(
    const values::ChannelRangeDefinition &definition, const axisDefinition &axis)
{
    if (!axis.valid())
        return;
    m_pixelCount = static_cast<std::size_t>(axis.GetPixelCnt());
    for (const IndexedRange &range : definition.GetIndexedRanges())
        addRange(range, axis);
}

void ChannelIndexToPixelRangeMapper::addRange(const IndexedRange &range, const axisDefinition &axis)
{
    const RangeOnAxis onAxis(range, axis);
    for (std::uint32_t begin = 0; begin < range.channelCount;) {
        const Span span = onAxis.span(begin);
        const std::uint32_t end = onAxis.endOfRun(begin, span);
        if (span.first >= 0 && span.last < axis.GetPixelCnt())
            m_runs.push_back({range.firstIndex + begin,
                              end - begin,
                              range.firstChannelId + begin,
                              {std::uint16_t(span.first), std::uint16_t(span.last)}});
        begin = end;
    }
}

std::optional<PixelRange> ChannelIndexToPixelRangeMapper::pixels(std::uint32_t channel) const
{
    const auto found = runs(channel, channel);
    if (found.empty())
        return std::nullopt;
    return found.front().pixels;
}

std::optional<std::uint16_t> ChannelIndexToPixelRangeMapper::firstPixel(std::uint32_t channel) const
{
    const auto range = pixels(channel);
    return range ? std::optional(range->first) : std::nullopt;
}

std::optional<std::uint16_t> ChannelIndexToPixelRangeMapper::lastPixel(std::uint32_t channel) const
{
    const auto range = pixels(channel);
    return range ? std::optional(range->last) : std::nullopt;
}

std::span<const PixelRun> ChannelIndexToPixelRangeMapper::runs(std::uint32_t first,
                                                               std::uint32_t last) const
{
    const auto begin = std::partition_point(m_runs.begin(), m_runs.end(), [=](const PixelRun &run) {
        return run.endChannel() <= first;
    });
    const auto end = std::partition_point(
        begin, m_runs.end(), [=](const PixelRun &run) { return run.firstChannel <= last; });
    return {begin, end};
}

} // namespace channelToPixel
