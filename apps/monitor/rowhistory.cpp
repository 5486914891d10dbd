#include "apps/monitor/rowhistory.h"

#include <algorithm>
#include <cmath>

namespace monitor {
namespace {

/// std::fmax: a NaN on one side yields to the level on the other.
void mergeInto(RowHistory::Row &row, std::span<const float> levels, KRTimeStamp last)
{
    std::transform(levels.begin(), levels.end(), row.levels.begin(), row.levels.begin(),
                   [](float a, float b) { return std::fmax(a, b); });
    row.last = last;
}

} // namespace

RowHistory::RowHistory(std::size_t capacity) : m_capacity(std::max<std::size_t>(capacity, 2)) {}

void RowHistory::clear()
{
    m_rows.clear();
    m_scansPerRow = 1;
    m_scansInNewest = 0;
}

void RowHistory::add(KRTimeStamp time, std::span<const float> levels)
{
    if (!m_rows.empty() &&
        (m_rows.back().levels.size() != levels.size() || time < m_rows.back().last))
        clear();
    if (!m_rows.empty() && m_scansInNewest < m_scansPerRow) {
        mergeInto(m_rows.back(), levels, time);
        ++m_scansInNewest;
        return;
    }
    if (m_rows.size() == m_capacity)
        halve();
    m_rows.push_back({time, time, {levels.begin(), levels.end()}});
    m_scansInNewest = 1;
}

void RowHistory::halve()
{
    std::size_t kept = 0;
    for (std::size_t i = 0; i < m_rows.size(); i += 2, ++kept) {
        if (i + 1 < m_rows.size())
            mergeInto(m_rows[i], m_rows[i + 1].levels, m_rows[i + 1].last);
        if (kept != i)
            m_rows[kept] = std::move(m_rows[i]);
    }
    m_rows.resize(kept);
    m_scansPerRow *= 2;
}

} // namespace monitor
