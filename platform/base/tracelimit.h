#pragma once

#include "platform/base/export.h"

#include <QString>

#include <atomic>
#include <cstdint>

namespace Kelm {

/// Keeps a fault that others can bring about as often as they like from flooding the trace: one
/// line a second, with the number of times.
///
///     if (const auto times = m_limit.due())
///         SPECTREE_TRACE(TraceWarnings, text.arg(times));
///
/// Any thread, at any time: it has no destructor that could come too early.
class SPECTREE_EXPORT TraceLimit {
public:
    /// The fault came once more. Returns how often it came since the last time it was told, when it
    /// is to be told now; 0 otherwise.
    std::uint64_t due();

private:
    std::atomic<std::uint64_t> m_count{0};
    std::atomic<std::int64_t> m_nextMs{0}; // steady clock
};

/// \a text, and how often when that was more than once.
SPECTREE_EXPORT QString withTimes(const QString &text, std::uint64_t times);

} // namespace Kelm

/// SPECTREE_TRACE (errorhandler.h) for such a fault: one line a second from each place.
#define SPECTREE_TRACE_LIMITED(bits, message)                                                      \
    do {                                                                                           \
        static Kelm::TraceLimit spectreeLimit;                                                     \
        if (const auto spectreeTimes = spectreeLimit.due())                                        \
            SPECTREE_TRACE(bits, Kelm::withTimes((message), spectreeTimes));                       \
    } while (false)
