#pragma once

#include "platform/base/export.h"
#include "valueclasses/channels/channelrangedefinition.h"

#include <cstddef>
#include <cstdint>
#include <limits>
#include <list>
#include <utility>

namespace sbs {

/// Which channel range definition holds for which channel lines, newest first.
///
/// Threads: none of its own; the lock of the scan buffer guards it.
class SPECTREE_EXPORT ChannelRangeQueue {
public:
    using IdRange = std::pair<std::uint64_t, std::uint64_t>; ///< first id, one past the last

    /// Holds one empty definition that belongs to no line. \a limit is the number of definitions
    /// that it can hold.
    explicit ChannelRangeQueue(std::size_t limit = std::numeric_limits<std::size_t>::max());

    /// The definition of the line being filled.
    const values::ChannelRangeDefinition &current() const { return m_entries.front().definition; }
    /// The definition that holds for line \a id, with the readable ids for which it holds in
    /// \a first and \a last, inclusive; for an unreadable id the current definition, and both stay
    /// as they are.
    const values::ChannelRangeDefinition &find(std::uint64_t id, IdRange readable,
                                               std::uint64_t &first, std::uint64_t &last) const;

    /// From line \a firstId on \a definition holds, and all earlier ones are forgotten.
    void restart(std::uint64_t firstId, const values::ChannelRangeDefinition &definition);
    /// From line \a firstId on \a definition holds. Throws a KRException, and changes nothing, when
    /// the limit is reached.
    void push(std::uint64_t firstId, const values::ChannelRangeDefinition &definition);
    /// Forgets the definitions that only hold for lines below \a lowestId.
    void dropBelow(std::uint64_t lowestId);

    std::size_t size() const { return m_entries.size(); }

private:
    struct Entry {
        values::ChannelRangeDefinition definition;
        std::uint64_t lastId = 0, firstId = 0;
    };

    std::list<Entry> m_entries; // newest at the front, never empty
    std::size_t m_limit;
};

} // namespace sbs
