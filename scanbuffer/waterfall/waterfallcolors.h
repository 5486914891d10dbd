#pragma once

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <utility>

namespace sbs {

/// From a value to the colour byte of a waterfall: 0 at the start of the y range, 255 at its stop.
///
/// Azimuths (dimension 3) run from 0 to 360 whatever the y range is. With steps, the colours fall
/// on that many levels, so that they pack better.
class WaterfallColors {
public:
    /// \a steps counts modulo 256; 0 means none. \a yStart above \a yStop turns the scale.
    WaterfallColors(double yStart, double yStop, int steps, short dimension)
        : m_yStart(dimension == kAzimuth ? 0.0 : yStart),
          m_yStop(dimension == kAzimuth ? 360.0 : yStop), m_steps(std::uint8_t(steps)),
          m_dimension(dimension)
    {
    }
    WaterfallColors() : WaterfallColors(0, 0, 0, 0) {}

    std::uint8_t ValueToChar(double value) const
    {
        if (m_dimension == kAzimuth)
            value = value < 0 ? value + 360 : value > 359.99999 ? value - 360 : value;
        if (m_yStart == m_yStop)
            return 0;
        const auto [lower, higher] = std::minmax(m_yStart, m_yStop);
        double r = (value - lower) / (higher - lower);
        if (m_yStart > m_yStop)
            r = 1 - r;
        if (m_steps != 0)
            r = std::trunc(r * m_steps) / m_steps;
        const double p = r * 255 + 0.5;
        // Asked this way round, NaN gives 0 and never reaches a conversion.
        if (!(p > 0))
            return 0;
        return p > 254 ? 255 : std::uint8_t(p);
    }

    bool operator==(const WaterfallColors &) const = default;

private:
    static constexpr short kAzimuth = 3;
    double m_yStart, m_yStop;
    std::uint8_t m_steps;
    short m_dimension;
};

} // namespace sbs
