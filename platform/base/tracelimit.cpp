#include "platform/base/tracelimit.h"

#include <chrono>

namespace Kelm {

std::uint64_t TraceLimit::due()
{
    using namespace std::chrono;
    constexpr std::int64_t kIntervalMs = 1000;
    m_count.fetch_add(1, std::memory_order_relaxed);
    const std::int64_t now =
        duration_cast<milliseconds>(steady_clock::now().time_since_epoch()).count();
    std::int64_t next = m_nextMs.load(std::memory_order_relaxed);
    if (now < next || !m_nextMs.compare_exchange_strong(next, now + kIntervalMs))
        return 0;
    return m_count.exchange(0, std::memory_order_relaxed);
}

QString withTimes(const QString &text, std::uint64_t times)
{
    return times > 1 ? QStringLiteral("%1 (%2 times)").arg(text).arg(times) : text;
}

} // namespace Kelm
