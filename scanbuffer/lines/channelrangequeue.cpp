#include "scanbuffer/lines/channelrangequeue.h"

#include "platform/base/krexception.h"

#include <algorithm>
#include <iterator>

namespace sbs {
namespace {

constexpr std::uint64_t kStillCurrent = std::numeric_limits<std::uint64_t>::max();

} // namespace

ChannelRangeQueue::ChannelRangeQueue(std::size_t limit) : m_entries(1), m_limit(limit) {}

const values::ChannelRangeDefinition &ChannelRangeQueue::find(std::uint64_t id, IdRange readable,
                                                              std::uint64_t &first,
                                                              std::uint64_t &last) const
{
    if (id < readable.first || id >= readable.second)
        return current();
    for (const Entry &entry : m_entries) {
        const std::uint64_t from = std::max(readable.first, entry.firstId);
        const std::uint64_t to = std::min(entry.lastId, readable.second - 1);
        if (id < from || id > to)
            continue;
        first = from;
        last = to;
        return entry.definition;
    }
    return current();
}

void ChannelRangeQueue::restart(std::uint64_t firstId,
                                const values::ChannelRangeDefinition &definition)
{
    std::list<Entry> fresh{Entry{definition, kStillCurrent, firstId}};
    m_entries.swap(fresh);
}

void ChannelRangeQueue::push(std::uint64_t firstId,
                             const values::ChannelRangeDefinition &definition)
{
    // A definition that never held for a line is replaced: definitions that change without scans
    // would otherwise pile up.
    if (m_entries.front().firstId == firstId) {
        m_entries.front().definition = definition;
        return;
    }
    if (m_entries.size() >= m_limit)
        throw KRException("list<T> too long", __FILE__, "ChannelRangeQueue", "push", __LINE__);
    m_entries.push_front(Entry{definition, kStillCurrent, firstId});
    std::next(m_entries.begin())->lastId = firstId - 1;
}

void ChannelRangeQueue::dropBelow(std::uint64_t lowestId)
{
    const auto oldest = std::find_if(m_entries.begin(), m_entries.end(),
                                     [&](const Entry &entry) { return entry.firstId <= lowestId; });
    if (oldest != m_entries.end())
        m_entries.erase(std::next(oldest), m_entries.end());
}

} // namespace sbs
