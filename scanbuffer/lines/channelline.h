#pragma once

#include "platform/base/export.h"
#include "platform/base/types.h"
#include "valueclasses/samples/samplepairs.h"

#include <cstdint>
#include <utility>
#include <vector>

namespace sbs {

/// One scan: a sample for each channel, its two time stamps, and which parts were written so far.
///
/// Lines are made once, at full length, and then reused: storing a scan allocates nothing but the
/// growth of the history, which keeps its capacity.
///
/// Refill: an evicted line has to read as `Minimum` wherever its next scan does not reach. Filling
/// it at once would cost as much as the scan itself, so a line remembers the one stretch that still
/// holds samples of the evicted scan. Writes cut it down, and what is left is filled when the line
/// is finished, or when somebody looks at the samples. No reader can tell.
///
/// Threads: none of its own; the lock of the scan buffer guards it. spectralData() is const and
/// may still fill, so several readers may only share a line whose refill is done (needsRefill()).
template <typename Y, typename YHandler>
class SPECTREE_EXPORT ChannelLine {
public:
    /// First channel index and number of channels of a stretch that was written.
    using Segment = std::pair<std::uint32_t, std::uint32_t>;

    /// A line of \a channels samples, all `Minimum`, in state empty.
    explicit ChannelLine(unsigned int channels);

    /// Number of channels.
    unsigned int size() const { return static_cast<unsigned int>(m_spectralData.size()); }

    bool isEmpty() const { return m_state == State::empty; }
    bool hasValidTime() const { return m_state >= State::time; }
    bool hasSpectralData() const { return m_state >= State::samples; }
    bool isFinished() const { return m_state == State::finished; }

    /// Microseconds since 1970 UTC; 0 means none.
    KRTimeStamp getFirstTimeStamp() const { return m_firstTimeStamp; }
    KRTimeStamp getLastTimeStamp() const { return m_lastTimeStamp; }
    /// Stores the stamp; the line is then in state "has a valid time", whatever it was before.
    void setFirstTimeStamp(KRTimeStamp time);
    /// Stores the stamp and leaves the state alone.
    void setLastTimeStamp(KRTimeStamp time) { m_lastTimeStamp = time; }

    /// The stretches written since the last reset, in the order of writing.
    const std::vector<Segment> &getHistory() const { return m_history; }
    /// True when the history is as long as it may get: one stretch for each channel and 1024 more.
    /// A scan that is written again and again and never ended must not take up all memory.
    bool isHistoryFull() const { return m_history.size() >= m_spectralData.size() + 1024; }
    /// One sample a channel. Fills first what is still to be refilled.
    const std::vector<Y> &spectralData() const;

    /// Copies \a count samples to the channels from \a index on and appends the stretch to the
    /// history. What would pass the end of the line is left out; returns the number stored. With
    /// nothing to store the line stays as it is.
    std::uint32_t setSamples(std::uint32_t index, std::uint32_t count, const Y *samples);

    /// No more samples follow: fills what the scan did not reach and sets the state to finished.
    void finish();
    /// Every sample to `Minimum`, now; no history, no time stamps, state empty.
    void reset();
    /// As reset(), with the samples left for a later refill.
    void resetDeferred();

    /// True while some channels still hold samples of an evicted scan.
    bool needsRefill() const { return m_staleBegin != m_staleEnd; }
    /// Fills those with `Minimum`. Const, since no reader sees a difference.
    void refill() const;

private:
    enum class State : std::int32_t { empty = 0, time = 1, samples = 2, finished = 3 };

    void fill(std::uint32_t begin, std::uint32_t end) const;
    void fillGapBefore(std::uint32_t begin, std::uint32_t end);
    void shrinkStale(std::uint32_t begin, std::uint32_t end);

    std::vector<Segment> m_history;
    mutable std::vector<Y> m_spectralData;
    KRTimeStamp m_firstTimeStamp = 0, m_lastTimeStamp = 0;
    State m_state = State::empty;
    mutable std::uint32_t m_staleBegin = 0, m_staleEnd = 0; // equal: nothing to refill
};

#define SPECTREE_DECLARE(Y, Handler) extern template class SPECTREE_EXPORT ChannelLine<Y, Handler>;
SPECTREE_FOR_EACH_SAMPLE_PAIR(SPECTREE_DECLARE)
#undef SPECTREE_DECLARE

} // namespace sbs
