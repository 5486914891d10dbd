#include "apps/monitor/levelscale.h"

#include <algorithm>
#include <cmath>
#include <limits>

namespace monitor {
namespace {

constexpr double kHeadroomDb = 10.0;      // above the strongest level seen
constexpr double kFootroomDb = 6.0;       // below the weakest
constexpr double kSmallestSpanDb = 20.0;  // a step of less than 0.1 dB tells nothing more
constexpr double kFirstLookSeconds = 0.3; // several rows at most scan rates
constexpr double kSlowLookSeconds = 5.0;
constexpr double kClippedShareAllowed = 0.01;
constexpr double kLowestDbuv = -1000.0; // past these ends a range has run away
constexpr double kHighestDbuv = 1e6;    // samples that are no levels may be large

} // namespace

double LevelScale::levelOf(unsigned char colour) const
{
    const double share = (std::min<int>(colour, 254) + 0.5) / 255.0;
    return low + share * (high - low);
}

std::array<float, 256> LevelScale::table() const
{
    std::array<float, 256> levels{std::numeric_limits<float>::quiet_NaN()};
    for (std::size_t i = 1; i < levels.size(); ++i)
        levels[i] = float(levelOf(static_cast<unsigned char>(i)));
    return levels;
}

void LevelScaleControl::setScale(const LevelScale &scale)
{
    if (scale == m_scale)
        return;
    m_hadClippedPeaks = m_hadClippedPeaks || (m_seen.clippedHigh && scale.high > m_scale.high);
    m_shareBeforeLowering = isClippedLow() && scale.low < m_scale.low ? shareAtLowEnd() : 0.0;
    m_scale = scale;
    m_seen = {};
}

void LevelScaleControl::addRow(std::string_view colours)
{
    for (const char byte : colours) {
        const int colour = static_cast<unsigned char>(byte);
        ++m_seen.pixels;
        m_seen.atLowEnd += colour == 0;
        m_seen.clippedHigh = m_seen.clippedHigh || colour == 255;
        m_seen.highest = std::max(m_seen.highest, colour);
        if (colour != 0)
            m_seen.lowest = std::min(m_seen.lowest, colour);
    }
    if (m_shareBeforeLowering > 0.0 && m_seen.pixels > 0)
        m_zeroesAreHoles = shareAtLowEnd() > 0.5 * m_shareBeforeLowering;
}

double LevelScaleControl::shareAtLowEnd() const
{
    return m_seen.pixels == 0 ? 0.0 : double(m_seen.atLowEnd) / double(m_seen.pixels);
}

bool LevelScaleControl::isClippedLow() const
{
    // Noise that dips below the range also fills its lowest steps; holes leave them empty.
    const bool reachesLowEnd = m_seen.lowest <= 12 || m_seen.lowest > m_seen.highest;
    return !m_zeroesAreHoles && reachesLowEnd && shareAtLowEnd() > kClippedShareAllowed;
}

std::optional<LevelScale> LevelScaleControl::tightened(double largestShare) const
{
    LevelScale next;
    next.low = std::floor(m_scale.levelOf(static_cast<unsigned char>(m_seen.lowest)) - kFootroomDb);
    next.high =
        std::ceil(m_scale.levelOf(static_cast<unsigned char>(m_seen.highest)) + kHeadroomDb);
    next.high = std::max(next.high, next.low + kSmallestSpanDb);
    if (next.high - next.low >= largestShare * (m_scale.high - m_scale.low))
        return std::nullopt;
    return next;
}

std::optional<LevelScale> LevelScaleControl::proposal(double secondsInScale) const
{
    if (m_seen.pixels == 0)
        return std::nullopt;
    if (!(m_scale.high > m_scale.low))
        return LevelScale{};
    const double span = m_scale.high - m_scale.low;
    if (m_seen.clippedHigh && m_scale.high < kHighestDbuv)
        return LevelScale{m_scale.low, m_scale.high + std::max(20.0, 0.5 * span)};
    if (secondsInScale < (m_hadClippedPeaks ? kSlowLookSeconds : kFirstLookSeconds))
        return std::nullopt;
    if (isClippedLow() && m_scale.low > kLowestDbuv)
        return LevelScale{m_scale.low - std::max(100.0, span), m_scale.high};
    if (m_seen.lowest > m_seen.highest)
        return std::nullopt;
    return tightened(m_hadClippedPeaks ? 0.4 : 0.75);
}

} // namespace monitor
