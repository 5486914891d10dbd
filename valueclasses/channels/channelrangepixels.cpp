#include "platform/axis/axisdefinition.h"
#include "valueclasses/channels/channelrangedefinition.h"

#include <algorithm>
#include <cmath>
#include <limits>

namespace values {
namespace {

constexpr auto kNoPixel = ChannelRangeDefinition::kNoPixel;

struct Pixels {
    int start = kNoPixel;
    int stop = kNoPixel;
};

Pixels clipped(const axisDefinition &axis, double lower, double upper)
{
    Pixels pixels;
    axis.ToPixels(lower, upper, pixels.start, pixels.stop);
    return pixels;
}

Pixels pixelsOfBand(const axisDefinition &axis, double lower, double upper)
{
    bool lowerInside = false, upperInside = false;
    const int lowerSection = axis.InRange(lower), upperSection = axis.InRange(upper);
    Pixels pixels{axis.ToPixel(lower, lowerInside), axis.ToPixel(upper, upperInside)};
    if (lowerInside && upperInside)
        return pixels;
    if (lowerSection < 0 || upperSection < 0 || lowerSection == upperSection) {
        const bool wider = lower < axis.GetMin(-1) && upper > axis.GetMax(-1);
        return lowerInside || upperInside || wider ? clipped(axis, lower, upper) : Pixels{};
    }
    if (lowerInside)
        pixels.stop = axis.GetStopPix(lowerSection);
    else if (upperInside)
        pixels.start = axis.GetStartPix(upperSection);
    else
        pixels = {};
    return pixels;
}

/// Takes pixels that two neighbours share from the lower one.
void separateNeighbours(std::vector<unsigned short> &pixels)
{
    for (std::size_t i = 0; i + 3 < pixels.size(); i += 2) {
        const unsigned short start = pixels[i], next = pixels[i + 2];
        if (start != kNoPixel && next != kNoPixel && next <= pixels[i + 1])
            pixels[i + 1] = std::max<unsigned short>(start, next == 0 ? 0 : next - 1);
    }
}

} // namespace

int ChannelRangeDefinition::CalcIndex2Pixel(const axisDefinition &axis,
                                            std::vector<unsigned short> &pixels) const
{
    if (!axis.valid() || m_channelCount > unsigned(std::numeric_limits<int>::max()))
        return -1;
    pixels.assign(2 * std::size_t(m_channelCount), kNoPixel);
    const double axisMin = axis.GetMin(-1), axisMax = axis.GetMax(-1);
    for (const IndexedRange &range : m_indexed) {
        const double half = std::abs(range.frequencyStep) / 2.0;
        for (unsigned int i = 0; i < range.channelCount; ++i) {
            const unsigned int index = range.firstIndex + i;
            const double frequency = range.FrequencyOfIndex(index);
            if (frequency + half < axisMin || frequency - half > axisMax)
                continue;
            const Pixels band = pixelsOfBand(axis, frequency - half, frequency + half);
            pixels[2 * std::size_t(index)] = static_cast<unsigned short>(band.start);
            pixels[2 * std::size_t(index) + 1] = static_cast<unsigned short>(band.stop);
        }
    }
    separateNeighbours(pixels);
    return int(m_channelCount);
}

} // namespace values
