#pragma once

#include "scanbuffer/lines/channelline.h"

#include <boost/circular_buffer.hpp>

namespace sbs {

/// The ring of channel lines that a scan buffer keeps; its back is the line being filled.
///
/// Ids count scans. They only rise for the life of the buffer, also across clear() and recreate(),
/// so that whoever holds an id can tell that its line is gone. 0 means no line, the first is 1.
///
/// Once it exists the ring is full, holds at least kMinimumLines lines, and all have one length.
/// Threads: none of its own; the lock of the scan buffer guards it.
template <typename Y, typename YHandler>
class SPECTREE_EXPORT ChannelLineBuffer {
public:
    using Line = ChannelLine<Y, YHandler>;
    using Ring = boost::circular_buffer<Line>;
    static constexpr std::uint64_t kMinimumLines = 3;

    /// A ring with room for \a lines, \a filled of them there, fresh and of \a channels samples.
    /// \throws std::bad_alloc
    static Ring makeRing(std::uint64_t lines, std::uint64_t filled, unsigned int channels);
    /// Makes a ring of \a lines fresh lines, at least kMinimumLines, in place of the old one. When
    /// memory runs out the old one stays and std::bad_alloc passes.
    void recreate(std::uint64_t lines, unsigned int channels);
    /// The same with a full ring that is there already; \a ring then holds the old one.
    void replaceRing(Ring &ring) noexcept;
    /// Grows or shrinks the ring, at least to kMinimumLines: on shrinking the oldest lines go. When
    /// memory runs out the ring stays as it was and std::bad_alloc passes. Without a ring nothing
    /// happens.
    void setNumberOfLines(std::uint64_t lines);
    /// The same without allocating, when \a prepared has that capacity and holds just the missing
    /// lines; with any other it makes them. What is left over is in \a prepared then, to be
    /// dropped.
    void setNumberOfLines(std::uint64_t lines, Ring &prepared);
    /// Empties every line; the next one has an id above all that were seen.
    void clear();
    /// Ends the current line and makes the oldest one the current line. Moves no samples.
    /// \pre the ring holds lines
    void finishCurrentLine();

    /// False until recreate() was called.
    bool hasLines() const { return !m_lines.empty(); }
    /// \pre the ring holds lines
    Line &currentLine() { return m_lines.back(); }
    const Line &currentLine() const { return m_lines.back(); }
    /// \pre the id lies in the range of getIdRange()
    const Line &line(std::uint64_t id) const;

    /// First id and one past the last readable id; (0, 0) when no line can be read. The current
    /// line is readable as soon as it has a valid time.
    std::pair<std::uint64_t, std::uint64_t> getIdRange() const;
    std::uint64_t getCurrentChannelLineId() const { return m_currentId; }
    /// The oldest line held, readable or not.
    std::uint64_t getFirstChannelLineId() const { return m_firstId; }
    /// The current id after replaceRing().
    std::uint64_t idAfterReplacing() const;
    /// 0 when no line was finished since the last clear() or recreate().
    std::uint64_t getLastFinishedChannelLineId() const { return m_lastFinishedId; }
    /// Channels of a line; 0 without a ring.
    unsigned int channelCount() const { return m_lines.empty() ? 0 : m_lines.back().size(); }
    /// Number of lines that the ring can hold.
    std::uint64_t scanCount() const { return m_lines.capacity(); }

private:
    void startOver();

    Ring m_lines;
    std::uint64_t m_currentId = 0, m_lastFinishedId = 0, m_firstId = 0;
};

#define SPECTREE_DECLARE(Y, Handler)                                                               \
    extern template class SPECTREE_EXPORT ChannelLineBuffer<Y, Handler>;
SPECTREE_FOR_EACH_SAMPLE_PAIR(SPECTREE_DECLARE)
#undef SPECTREE_DECLARE

} // namespace sbs
