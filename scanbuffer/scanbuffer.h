#pragma once

#include "platform/base/instancecounter.h"
#include "platform/base/nestedreadlocker.h"
#include "platform/base/tracelimit.h"
#include "scanbuffer/averagetime.h"
#include "scanbuffer/buffersizemanagementinterface.h"
#include "scanbuffer/lines/channellinebuffer.h"
#include "scanbuffer/lines/channelrangequeue.h"
#include "scanbuffer/scanbufferaccess.h"
#include "scanbuffer/scanbufferqobject.h"
#include "scanbuffer/scanbuffervisitor.h"
#include "valueclasses/mapping/spectraldatapiece.h"

#include <atomic>
#include <memory>
#include <optional>
#include <span>

namespace sbs {

class ScanBufferSizeManager;

using values::SpectralDataPiece;

/// The store of recent scans of one spectral value: a ring of channel lines, the channel range
/// definitions that hold for them, and the scan rate.
///
/// Feeding: addTimeStamp(), addSpectralData() as often as needed, endOfScan(). A first
/// setChannelRangeDefinition() with channels makes the ring; before it stamps are only remembered,
/// and no signal goes out. A scan that is never ended goes on in a new line, with the newest time
/// stamp, when the history of its line is full (ChannelLine::isHistoryFull()).
/// Reading: accept(). The operations of ScanBufferAccess are for visit() only.
///
/// Threads: one thread feeds, at one lock a call; any thread reads, and any sets sizes and flags.
/// One read-write lock guards everything; a reader may take it again. Samples of an evicted line
/// are replaced by `Minimum` late (see ChannelLine); a reader that asks for the current line has
/// the rest of them replaced first, under a mutex of its own, since readers only share the lock.
/// Ownership: shared pointers; the last one may go on any thread.
template <typename Y, typename YHandler>
class SPECTREE_EXPORT ScanBuffer : public ScanBufferQObject,
                                   public BufferSizeManagementInterface,
                                   public ScanBufferAccess<Y, YHandler>,
                                   private Kelm::Counted<ScanBuffer<Y, YHandler>> {
public:
    static constexpr const char *kInstanceName = "sbs::ScanBuffer";
    using Line = ChannelLine<Y, YHandler>;
    using Piece = SpectralDataPiece<Y>;

    /// An empty buffer with an active size manager.
    static std::shared_ptr<ScanBuffer> create();
    ~ScanBuffer() override;
    ScanBuffer(const ScanBuffer &) = delete;
    ScanBuffer &operator=(const ScanBuffer &) = delete;

    /// Lets \a visitor read, on this thread, under the read lock. May be called from a visit.
    void accept(ScanBufferVisitor<Y, YHandler> &visitor) SPECTREE_EXCLUDES(m_lock);

    /// A scan, or a part of one, was taken at \a time, in microseconds. A stamp that does not rise
    /// clears the ring.
    void addTimeStamp(KRTimeStamp time) SPECTREE_EXCLUDES(m_lock);
    /// Copies the pieces into the current line under one lock. What would pass the end of the line
    /// is left out and traced, at most once a second. Silent when nothing was written.
    void addSpectralData(std::span<const Piece> pieces) SPECTREE_EXCLUDES(m_lock);
    void addSpectralData(const Piece &piece) { addSpectralData(std::span(&piece, 1)); }
    /// Finishes the current line; its last time stamp is \a time.
    void endOfScan(KRTimeStamp time) { finishScan(time); }
    void endOfScan() { finishScan(std::nullopt); }
    /// The channels of all later lines. With the number of channels as before, older lines stay
    /// readable, each with its own definition; otherwise the ring is rebuilt. A definition without
    /// channels is ignored.
    /// \throws KRException for a frequency that is not finite, and when three lines of that many
    /// channels take more than the maximum size in bytes, taken as 200 MB at least and 4 GB at
    /// most; std::bad_alloc. The old definition and the old ring stand then.
    void setChannelRangeDefinition(const values::ChannelRangeDefinition &definition)
        SPECTREE_EXCLUDES(m_lock);
    /// Empties the ring WITHOUT taking the lock: only while nobody reads or feeds.
    void clear() SPECTREE_NO_THREAD_SAFETY_ANALYSIS;

    unsigned int channelsPerChannelLine() const SPECTREE_EXCLUDES(m_lock);

    std::uint32_t getMinimumNumberOfLines() const override { return kMinimumLines; }
    std::uint32_t getMaximumNumberOfLines() const override { return kMaximumLines; }
    std::uint64_t getSizeInBytes() const override SPECTREE_EXCLUDES(m_lock);
    /// The ring shrinks to fit, down to its three lines; 0 leaves it just those.
    void setMaximumSizeInBytes(std::uint64_t bytes) override SPECTREE_EXCLUDES(m_lock);
    /// Without memory for more lines the ring stays as it is.
    std::uint32_t setNumberOfLines(unsigned int lines) override SPECTREE_EXCLUDES(m_lock);
    std::uint32_t getNumberOfLines() const override SPECTREE_EXCLUDES(m_lock);

    /// Lives as long as this buffer.
    ScanBufferSizeManager *getSizeManager() const { return m_sizeManager.get(); }
    void setSizeManagerActive(bool active);

    /// How readers draw this buffer; plain stores, seen by their next visit.
    void setKeepScanDataAfterEndOfScan(bool keep) { m_keepScanData = keep; }
    void setClearScanData(bool clearData) { m_clearScanData = clearData; }
    void setKeepNoOverwriteWFLines(bool keep) { m_keepNoOverwriteLines = keep; }
    void setAvoidSettingMaxValueDuringScan(bool avoid) { m_avoidMaximum = avoid; }

    // For visitors.
    const values::ChannelRangeDefinition &getChannelRangeDefinition() const override
        SPECTREE_REQUIRES_SHARED(m_lock);
    const values::ChannelRangeDefinition &
    getChannelRangeDefinition(std::uint64_t id, std::uint64_t &first,
                              std::uint64_t &last) const override SPECTREE_REQUIRES_SHARED(m_lock);
    std::pair<std::uint64_t, std::uint64_t> getChannelLineIdRange() const override
        SPECTREE_REQUIRES_SHARED(m_lock);
    const Line &getChannelLine(std::uint64_t id) const override SPECTREE_REQUIRES_SHARED(m_lock);
    std::uint64_t getLastFinishedChannelLineId() const override SPECTREE_REQUIRES_SHARED(m_lock);
    std::uint64_t getIdForTimeStamp(KRTimeStamp time) const override
        SPECTREE_REQUIRES_SHARED(m_lock);
    KRTimeStamp getTimeStampForId(std::uint64_t id) const override SPECTREE_REQUIRES_SHARED(m_lock);
    bool getKeepScanDataAfterEndOfScan() const override { return m_keepScanData; }
    bool getClearScanData() const override { return m_clearScanData; }
    bool getKeepNoOverwriteWFLines() const override { return m_keepNoOverwriteLines; }
    bool getAvoidSettingMaxValueDuringScan() const override { return m_avoidMaximum; }

private:
    using Lines = ChannelLineBuffer<Y, YHandler>;
    using Ring = typename Lines::Ring;
    static constexpr std::uint32_t kMinimumLines = 3, kMaximumLines = 500'000;
    static constexpr std::uint64_t kDefaultMaximumBytes = 200'000'000;
    static constexpr std::uint64_t kMostBytesOfThreeLines = 4'000'000'000;

    struct Written {
        std::uint64_t stored = 0, clipped = 0; // samples
    };

    ScanBuffer();

    void finishScan(std::optional<KRTimeStamp> time) SPECTREE_EXCLUDES(m_lock);
    Written writePieces(std::span<const Piece> pieces) SPECTREE_REQUIRES(m_lock);
    void finishLine() SPECTREE_REQUIRES(m_lock);
    void continueInNewLine() SPECTREE_REQUIRES(m_lock);
    bool applyDefinition(const values::ChannelRangeDefinition &definition)
        SPECTREE_EXCLUDES(m_lock);
    bool continueWith(const values::ChannelRangeDefinition &definition) SPECTREE_EXCLUDES(m_lock);
    Ring initBuffer(unsigned int channels) const SPECTREE_EXCLUDES(m_lock);
    Ring prepareRing(std::uint64_t lines) const SPECTREE_EXCLUDES(m_lock);
    std::uint32_t resize(std::uint64_t lines, Ring &prepared) SPECTREE_REQUIRES(m_lock);
    std::uint64_t linesWithin(std::uint64_t lines, std::uint64_t lineBytes) const
        SPECTREE_REQUIRES_SHARED(m_lock);
    void clearRing() SPECTREE_REQUIRES(m_lock);
    void noteRefill() SPECTREE_REQUIRES(m_lock);
    void refillCurrentLine() const SPECTREE_REQUIRES_SHARED(m_lock);
    std::uint64_t bytesPerLine() const SPECTREE_REQUIRES_SHARED(m_lock);
    std::uint64_t sizeInBytes() const SPECTREE_REQUIRES_SHARED(m_lock);

    mutable Kelm::ReadWriteLock m_lock; // read through NestedReadLocker only
    KRTimeStamp m_lastTimeStamp SPECTREE_GUARDED_BY(m_lock) = 0;
    Lines m_lines SPECTREE_GUARDED_BY(m_lock);
    ChannelRangeQueue m_definitions SPECTREE_GUARDED_BY(m_lock);
    AverageTime m_scanRate SPECTREE_GUARDED_BY(m_lock);
    std::uint32_t m_numberOfLines SPECTREE_GUARDED_BY(m_lock) = 5; // wanted
    std::uint64_t m_maximumSizeInBytes SPECTREE_GUARDED_BY(m_lock) = kDefaultMaximumBytes;
    Kelm::TraceLimit m_clippedTrace;

    // Whether the current line still has to be refilled for a reader. Set under the write lock;
    // cleared by the first reader, who holds the mutex while it fills.
    mutable std::atomic<bool> m_refillPending{false};
    mutable Kelm::Mutex m_refillMutex;

    std::atomic<bool> m_keepScanData{false}, m_clearScanData{false};
    std::atomic<bool> m_keepNoOverwriteLines{false}, m_avoidMaximum{false};

    struct Dispose {
        void operator()(ScanBufferSizeManager *manager) const;
    };
    std::unique_ptr<ScanBufferSizeManager, Dispose> m_sizeManager; // goes first: it uses the rest
};

#define SPECTREE_DECLARE(Y, Handler) extern template class SPECTREE_EXPORT ScanBuffer<Y, Handler>;
SPECTREE_FOR_EACH_SAMPLE_PAIR(SPECTREE_DECLARE)
#undef SPECTREE_DECLARE

} // namespace sbs
