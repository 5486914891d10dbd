#include "platform/axis/axisdefinition.h"

#include <algorithm>
#include <cmath>
#include <limits>

namespace {

constexpr int kMaxPixels = std::numeric_limits<short>::max();
constexpr int kWholeAxis = -1;

bool makesAxis(double min, double max, int pixelCount)
{
    // The product is what GetPosition computes with; it must not overflow.
    return pixelCount > 0 && min < max && std::isfinite(min) && std::isfinite(max) &&
           std::isfinite((max - min) * pixelCount);
}

} // namespace

axisDefinition::axisDefinition(bool skipSuppressRanges) : m_skipSuppressed(skipSuppressRanges) {}

int axisDefinition::init(double min, double max, short pixelCount)
{
    if (!makesAxis(min, max, pixelCount))
        return -1;
    m_min = min;
    m_max = max;
    m_pixelCount = pixelCount;
    recalc();
    return 0;
}

bool axisDefinition::recalc()
{
    m_sections.clear();
    m_valid = makesAxis(m_min, m_max, m_pixelCount);
    if (m_valid) {
        m_sections.emplace_back(m_min, m_max, 1.0, false);
        m_sections.back().SetPixels(0, m_pixelCount - 1);
    }
    return m_valid;
}

void axisDefinition::invalidate()
{
    m_sections.clear();
    m_valid = false;
}

double axisDefinition::GetMin(int section) const
{
    if (section == kWholeAxis)
        return m_min;
    const bool exists = section >= 0 && std::size_t(section) < m_sections.size();
    return exists ? m_sections[std::size_t(section)].GetFrom()
                  : std::numeric_limits<double>::quiet_NaN();
}

double axisDefinition::GetMax(int section) const
{
    if (section == kWholeAxis)
        return m_max;
    const bool exists = section >= 0 && std::size_t(section) < m_sections.size();
    return exists ? m_sections[std::size_t(section)].GetTo()
                  : std::numeric_limits<double>::quiet_NaN();
}

void axisDefinition::SetMin(double min)
{
    m_min = min;
    recalc();
}

void axisDefinition::SetMax(double max)
{
    m_max = max;
    recalc();
}

void axisDefinition::SetPixelCnt(int count)
{
    m_pixelCount = std::clamp(count, 0, kMaxPixels);
    recalc();
}

int axisDefinition::InRange(double value) const
{
    return m_valid && value >= m_min && value <= m_max ? 0 : -1;
}

int axisDefinition::GetStartPix(int section) const
{
    if (m_sections.empty() || section >= int(m_sections.size()))
        return -1;
    return m_sections[std::size_t(std::max(section, 0))].GetStartPix();
}

int axisDefinition::GetStopPix(int section) const
{
    if (m_sections.empty() || section >= int(m_sections.size()))
        return -1;
    return section < 0 ? m_sections.back().GetStopPix()
                       : m_sections[std::size_t(section)].GetStopPix();
}

std::set<double> axisDefinition::GetBasePoints() const
{
    std::set<double> points;
    for (const pixSection &stretch : m_sections) {
        points.insert(stretch.GetFrom());
        points.insert(stretch.GetTo());
    }
    return points;
}

double axisDefinition::GetPixelStart(int pixel) const
{
    if (pixel >= m_pixelCount)
        return m_max;
    double value = m_min + (m_max - m_min) * pixel / m_pixelCount;
    // Rounding may leave the value a little below the pixel. The step is that of the axis' greatest
    // number: near 0 a step of the value's own would take for ever.
    const double greatest = std::max(std::abs(m_min), std::abs(m_max));
    const double step = std::nextafter(greatest, std::numeric_limits<double>::max()) - greatest;
    while (value < m_max && GetPosition(value) < pixel)
        value += step;
    return std::min(value, m_max);
}

double axisDefinition::GetPixelCenter(int pixel) const
{
    return m_min + (m_max - m_min) * (pixel + 0.5) / m_pixelCount;
}

int axisDefinition::ToPixel(double value, bool &inside, int section) const
{
    inside = m_valid && section <= 0 && InRange(value) >= 0;
    if (!m_valid)
        return -1;
    if (inside)
        return std::min(int(GetPosition(value)), m_pixelCount - 1);
    return value > m_max ? m_pixelCount - 1 : 0;
}

bool axisDefinition::ToPixels(double from, double to, int &fromPixel, int &toPixel) const
{
    if (!m_valid || std::isnan(from) || std::isnan(to) || std::max(from, to) < m_min ||
        std::min(from, to) > m_max)
        return false;
    bool inside = false;
    fromPixel = ToPixel(from, inside);
    toPixel = ToPixel(to, inside);
    return true;
}

bool axisDefinition::AddSuppress(double, double, double, bool) { return false; }
bool axisDefinition::SetSuppressSection(const section &stretches) { return stretches.empty(); }
bool axisDefinition::SetZoomSection(const section &stretches) { return stretches.empty(); }
void axisDefinition::SetSkipSuppressRanges(bool skip) { m_skipSuppressed = skip; }

AxisData axisDefinition::GetAxisDefinitionSet(bool withSections) const
{
    AxisData data;
    data.min = m_min;
    data.max = m_max;
    data.pixelCount = std::int16_t(m_pixelCount);
    data.flags = m_skipSuppressed ? AxisData::kSkipSuppressed : 0;
    data.sectionHash = withSections ? m_suppress.hash() + m_zoom.hash() : 0.0;
    return data;
}

bool axisDefinition::ApplyAxisDefinitionSet(const AxisData &data)
{
    if (data.sectionHash != m_suppress.hash() + m_zoom.hash() ||
        init(data.min, data.max, data.pixelCount) != 0)
        return false;
    m_skipSuppressed = (data.flags & AxisData::kSkipSuppressed) != 0;
    return true;
}

bool axisDefinition::operator==(const axisDefinition &other) const
{
    return m_min == other.m_min && m_max == other.m_max && m_pixelCount == other.m_pixelCount &&
           m_skipSuppressed == other.m_skipSuppressed && m_suppress == other.m_suppress &&
           m_zoom == other.m_zoom && m_valid == other.m_valid;
}
