#include "scanbuffer/window/windowlevels.h"

#include <algorithm>
#include <cmath>

namespace sbs {

namespace {

double valueAt(const std::vector<double> &line, int pixel, double beyond)
{
    const auto index = static_cast<std::size_t>(pixel);
    return pixel >= 0 && index < line.size() ? line[index] : beyond;
}

} // namespace

WindowLevels::WindowLevels()
    : m_yRanges{{0, {-30.0, 130.0}}, {3, {0.0, 360.0}}, {4, {0.0, 90.0}}, {5, {0.0, 100.0}}}
{
}

WindowLevels::Range WindowLevels::GetYRange(short dimension) const
{
    const auto found = m_yRanges.find(dimension);
    return found != m_yRanges.end() ? found->second : Range(0.0, 255.0);
}

bool WindowLevels::SetYRange(Range range, short dimension)
{
    const auto [entry, isNew] = m_yRanges.try_emplace(dimension, range);
    if (!isNew && entry->second == range)
        return false;
    entry->second = range;
    return true;
}

void WindowLevels::init(std::size_t pixels)
{
    m_thresholdLine.assign(pixels, m_threshold);
    m_referenceLine.assign(pixels, 0.0);
}

void WindowLevels::SetThreshold(double threshold)
{
    m_threshold = threshold;
    if (m_thresholdActive)
        std::fill(m_thresholdLine.begin(), m_thresholdLine.end(), threshold);
}

void WindowLevels::SetThresholdActive(bool active)
{
    m_thresholdActive = active;
    std::fill(m_thresholdLine.begin(), m_thresholdLine.end(),
              active ? m_threshold : std::numeric_limits<double>::lowest());
}

double WindowLevels::GetThreshold(int /*pixel*/) const { return m_threshold; }

double WindowLevels::GetRefLine(int pixel) const { return valueAt(m_referenceLine, pixel, 0.0); }

bool WindowLevels::filteredByThreshold(double value, int pixel, bool useReference) const
{
    if (!m_thresholdActive)
        return false;
    const double compared = useReference ? std::abs(value - GetRefLine(pixel)) : value;
    return GetThreshold(pixel) >= compared;
}

} // namespace sbs
