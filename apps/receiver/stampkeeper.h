#pragma once

#include "platform/base/types.h"

#include <algorithm>
#include <cmath>

namespace receiver {

/// Makes time stamps that strictly rise, as the scan buffer needs: equal ones would clear it.
///
/// A stamp that repeats (a clock with whole seconds) is put one microsecond behind the last one. A
/// stamp that steps back (a loop, the end of summer time) moves itself and all that follow to one
/// usual interval behind the last one. A gap of more than an hour is no usual interval.
class StampKeeper {
public:
    /// \a interval in microseconds is used until the stamps tell one.
    explicit StampKeeper(double interval)
        : m_interval(interval > 0 ? KRTimeStamp(std::max(std::llround(interval), 1LL)) : 1000000)
    {
    }

    KRTimeStamp next(KRTimeStamp recorded)
    {
        if (m_last == 0) {
            m_last = std::max<KRTimeStamp>(recorded, 1);
        } else if (recorded == m_recorded) {
            m_last += 1;
        } else {
            if (recorded < m_recorded)
                m_shift = m_last + m_interval - recorded;
            else if (recorded - m_recorded <= kLongestInterval)
                m_interval = recorded - m_recorded;
            m_last = std::max(recorded + m_shift, m_last + 1);
        }
        m_recorded = recorded;
        return m_last;
    }

    /// The recording begins again: its next stamp follows the last one, even if equal to it.
    void restart() { m_recorded = ~KRTimeStamp(0); }

private:
    static constexpr KRTimeStamp kLongestInterval = 3600000000; // an hour

    KRTimeStamp m_interval;
    KRTimeStamp m_last = 0, m_recorded = 0;
    KRTimeStamp m_shift = 0; // added to recorded stamps, modulo 2^64
};

} // namespace receiver
