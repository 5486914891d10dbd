#include "apps/monitor/spectrumdisplay.h"

#include <algorithm>
#include <cmath>
#include <limits>

namespace monitor {
namespace {

constexpr float kNothing = std::numeric_limits<float>::quiet_NaN();
/// Samples that are no levels may be large; their power must stay a number.
constexpr float kLargestLevel = 1000.0F;

double powerOf(float level)
{
    return std::pow(10.0, 0.1 * double(std::clamp(level, -kLargestLevel, kLargestLevel)));
}

} // namespace

void SpectrumDisplay::setAxis(double startHz, double stopHz, std::size_t pixels)
{
    if (startHz == m_startHz && stopHz == m_stopHz && pixels == m_pixels)
        return;
    m_startHz = startHz;
    m_stopHz = stopHz;
    m_pixels = pixels;
    dropLevels();
}

void SpectrumDisplay::dropLevels()
{
    m_powerSum.assign(m_pixels, 0.0);
    m_powerCount.assign(m_pixels, 0);
    m_highest.assign(m_pixels, kNothing);
    m_latest.assign(m_pixels, kNothing);
    m_growing.clear();
    m_history.clear();
}

bool SpectrumDisplay::addRow(KRTimeStamp time, std::span<const float> levels)
{
    if (m_pixels == 0 || levels.size() != m_pixels)
        return false;
    if (m_growing.empty() || time != m_growingTime) {
        finishRow();
        ++m_rowCount;
    }
    m_growingTime = time;
    m_growing.assign(levels.begin(), levels.end());
    return true;
}

bool SpectrumDisplay::setLatest(std::span<const float> levels)
{
    if (levels.size() != m_pixels)
        return false;
    m_latest.assign(levels.begin(), levels.end());
    return true;
}

void SpectrumDisplay::finishRow()
{
    if (m_growing.empty())
        return;
    for (std::size_t i = 0; i < m_pixels; ++i) {
        if (!std::isfinite(m_growing[i]))
            continue;
        m_powerSum[i] += powerOf(m_growing[i]);
        ++m_powerCount[i];
        m_highest[i] = std::fmax(m_highest[i], m_growing[i]);
    }
    m_history.add(m_growingTime, m_growing);
    m_growing.clear();
}

std::vector<float> SpectrumDisplay::mean() const
{
    std::vector<float> mean(m_pixels, kNothing);
    for (std::size_t i = 0; i < m_pixels; ++i)
        if (m_powerCount[i] != 0)
            mean[i] = float(10.0 * std::log10(m_powerSum[i] / m_powerCount[i]));
    return mean;
}

} // namespace monitor
