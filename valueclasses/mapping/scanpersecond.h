#pragma once

#include "platform/base/export.h"

#include <cstdint>
#include <vector>

namespace values {

/// The scan rate over the last 30 seconds, of faster scans over the last 49. A plain value.
class SPECTREE_EXPORT ScanPerSecond {
public:
    /// The argument has no effect.
    explicit ScanPerSecond(unsigned char = 0);

    /// Notes a scan at \a time in microseconds. Returns scans per second, or a negative code: -1
    /// for times that can't be microseconds, -11 without a scan in the window, -21 for no time
    /// between first and last, -22 for time that runs back.
    double Recalc(std::int64_t time);
    std::int64_t GetLastTime() const { return m_lastTime; }

private:
    bool dropOlderThan(std::int64_t limit, int newest);

    std::vector<std::int64_t> m_times; // a ring
    int m_writeIndex = 0;
    int m_oldestIndex = 0;
    std::int64_t m_windowMicroseconds = 30'000'000;
    std::int64_t m_lastTime = 0;
};

} // namespace values
