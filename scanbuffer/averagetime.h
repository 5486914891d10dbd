#pragma once

#include "platform/base/export.h"
#include "platform/base/types.h"

namespace sbs {

/// Running mean of the interval between events: each new interval counts for a tenth.
///
/// A stamp that runs back, a first stamp, 0 for no stamp, or a gap of more than ten minutes starts
/// over.
/// Threads: none of its own.
class SPECTREE_EXPORT AverageTime {
public:
    /// \a time in microseconds.
    void addTimeStamp(KRTimeStamp time);
    /// Events per second; 0 while no interval is known.
    double averageEventsPerSecond() const;

private:
    KRTimeStamp m_last = 0;
    double m_meanSeconds = 0.0;
};

} // namespace sbs
