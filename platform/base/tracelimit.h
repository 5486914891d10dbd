#pragma once

#include "platform/base/export.h"

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

} // namespace Kelm
