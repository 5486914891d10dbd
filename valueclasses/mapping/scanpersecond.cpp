#include "valueclasses/mapping/scanpersecond.h"

namespace values {

namespace {
constexpr int kEntries = 50;
int next(int index) { return (index + 1) % kEntries; }
} // namespace

ScanPerSecond::ScanPerSecond(unsigned char /*unused*/) : m_times(kEntries) {}

double ScanPerSecond::Recalc(std::int64_t time)
{
    if (time < 0)
        return -22.0;
    const int newest = m_writeIndex;
    m_lastTime = time;
    m_times[std::size_t(newest)] = time;
    m_writeIndex = next(m_writeIndex);
    if (m_writeIndex == m_oldestIndex) // the next scan takes the oldest entry's place
        m_oldestIndex = next(m_oldestIndex);
    if (!dropOlderThan(time - m_windowMicroseconds, newest))
        return -11.0;
    const int scans = (newest - m_oldestIndex + kEntries) % kEntries;
    const std::int64_t span = time - m_times[std::size_t(m_oldestIndex)];
    if (span == 0)
        return -21.0;
    if (span < 0)
        return -22.0;
    if (span <= scans)
        return -1.0; // more than one scan a microsecond
    return double(scans) / double(span) * 1'000'000.0;
}

bool ScanPerSecond::dropOlderThan(std::int64_t limit, int newest)
{
    while (m_times[std::size_t(m_oldestIndex)] < limit) {
        if (m_oldestIndex == newest)
            return false;
        m_oldestIndex = next(m_oldestIndex);
    }
    return true;
}

} // namespace values
