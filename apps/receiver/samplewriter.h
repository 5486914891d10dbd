#pragma once

#include "apps/receiver/input.h"
#include "valueclasses/samples/samplepairs.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <vector>

/// Puts what an input delivers into the sample type that is served. A channel without a value
/// becomes the handler's Minimum(); what is out of a field's limits is clamped to them, above
/// Minimum().
namespace receiver {

/// \a level times \a scale, rounded, between \a least and \a most; \a noValue for NaN.
template <typename Number>
Number scaledLevel(float level, float scale, float least, float most, Number noValue)
{
    const float scaled = std::clamp(level * scale, least, most);
    const auto rounded = Number(scaled < 0 ? scaled - 0.5F : scaled + 0.5F);
    return level == level ? rounded : noValue;
}

/// Levels of one plain number: tenths of a dBuV for the level handler, whole or fractional dBuV
/// for the others; per cents are dBuV cut to 0 up to 100.
template <typename YHandler, typename Y>
void writeSample(float level, const Direction *, Y &sample)
{
    if constexpr (std::is_same_v<YHandler, values::levelHandler>)
        sample = scaledLevel<short>(level, 10, -9998, 32767, YHandler::Minimum());
    else if constexpr (std::is_same_v<YHandler, values::floatPercentHandler>)
        sample = level == level ? std::clamp(level, 0.0F, 100.0F) : YHandler::Minimum();
    else if constexpr (std::is_floating_point_v<Y>)
        sample = level == level ? Y(std::clamp(level, -9998.0F, 1e6F)) : YHandler::Minimum();
    else if constexpr (std::is_same_v<Y, char>)
        sample = char(scaledLevel<signed char>(level, 1, -126, 126, YHandler::Minimum()));
    else
        sample = scaledLevel<std::int32_t>(level, 1, -9998, 32767, YHandler::Minimum());
}

inline short hundredths(float value)
{
    return scaledLevel<short>(value, 100, -32767, 32767, short(-32768));
}

inline short tenths(float value)
{
    return scaledLevel<short>(value, 10, -32767, 32767, short(-32768));
}

inline std::uint16_t azimuthOf(const Direction &direction)
{
    return std::uint16_t(std::lround(direction.azimuth * 100) % 36000);
}

template <typename YHandler>
void writeSample(float level, const Direction *direction, values::Bearing &sample)
{
    sample = {};
    sample.level = hundredths(level);
    if (direction && direction->quality > 0) {
        sample.azimuth = azimuthOf(*direction);
        sample.elevation = hundredths(direction->elevation);
        sample.quality = direction->quality;
    }
}

template <typename YHandler>
void writeSample(float level, const Direction *direction, values::BearingExtended &sample)
{
    sample = {};
    writeSample<values::BearingHandler>(level, direction, static_cast<values::Bearing &>(sample));
    sample.shortTimeLevel = sample.level;
    if (sample.quality > 0)
        sample.validity = values::BearingExtended::Validity::valid;
}

template <typename YHandler>
void writeSample(float level, const Direction *direction, values::DFSpectrumSample &sample)
{
    values::BearingExtended bearing;
    writeSample<values::BearingExtendedHandler>(level, direction, bearing);
    sample.setLevel(bearing.level);
    sample.setShortTimeLevel(bearing.shortTimeLevel);
    sample.setAzimuth(bearing.azimuth);
    sample.setElevation(bearing.elevation);
    sample.setQuality(bearing.quality);
    sample.setValidity(bearing.validity);
}

template <typename YHandler>
void writeSample(float level, const Direction *, values::MinMax &sample)
{
    sample = {tenths(level), tenths(level)};
}

/// A channel with a bearing holds a signal, which counts as one pulse.
template <typename YHandler>
void writeSample(float level, const Direction *direction, values::Pulse &sample)
{
    sample = {};
    sample.level = tenths(level);
    if (direction && direction->quality > 0) {
        sample.pulseLevelMax = sample.pulseLevelMin = sample.level;
        sample.pulseCount = 1;
        sample.pulseType = 0;
    }
}

template <typename YHandler, typename Y>
void writeSamples(const Scan &scan, std::vector<Y> &samples)
{
    const std::size_t count = scan.levels.size();
    samples.resize(count);
    const float *levels = scan.levels.data();
    Y *out = samples.data();
    if (scan.directions.empty())
        for (std::size_t i = 0; i < count; ++i)
            writeSample<YHandler>(levels[i], nullptr, out[i]);
    else
        for (std::size_t i = 0; i < count; ++i)
            writeSample<YHandler>(levels[i], &scan.directions[i], out[i]);
}

} // namespace receiver
