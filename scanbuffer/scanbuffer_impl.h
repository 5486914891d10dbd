#pragma once

#include "platform/base/errorhandler.h"
#include "platform/base/krexception.h"
#include "scanbuffer/scanbuffer.h"
#include "scanbuffer/scanbuffersizemanager.h"

#include <algorithm>
#include <new>

namespace sbs {

template <typename Y, typename YHandler>
std::shared_ptr<ScanBuffer<Y, YHandler>> ScanBuffer<Y, YHandler>::create()
{
    return std::shared_ptr<ScanBuffer>(new ScanBuffer);
}

template <typename Y, typename YHandler>
ScanBuffer<Y, YHandler>::ScanBuffer() : m_sizeManager(new ScanBufferSizeManager(*this))
{
    m_sizeManager->setActive(true);
}

template <typename Y, typename YHandler>
ScanBuffer<Y, YHandler>::~ScanBuffer()
{
    // Before any member goes: a tick may be using the ring on another thread.
    m_sizeManager.reset();
}

template <typename Y, typename YHandler>
void ScanBuffer<Y, YHandler>::Dispose::operator()(ScanBufferSizeManager *manager) const
{
    manager->dispose();
}

template <typename Y, typename YHandler>
void ScanBuffer<Y, YHandler>::setSizeManagerActive(bool active)
{
    m_sizeManager->setActive(active);
}

// Reading ----------------------------------------------------------------------------------------

template <typename Y, typename YHandler>
void ScanBuffer<Y, YHandler>::accept(ScanBufferVisitor<Y, YHandler> &visitor)
{
    const Kelm::NestedReadLocker lock(m_lock);
    visitor.visit(*this);
}

template <typename Y, typename YHandler>
const values::ChannelRangeDefinition &ScanBuffer<Y, YHandler>::getChannelRangeDefinition() const
{
    return m_definitions.current();
}

template <typename Y, typename YHandler>
const values::ChannelRangeDefinition &
ScanBuffer<Y, YHandler>::getChannelRangeDefinition(std::uint64_t id, std::uint64_t &first,
                                                   std::uint64_t &last) const
{
    return m_definitions.find(id, m_lines.getIdRange(), first, last);
}

template <typename Y, typename YHandler>
std::pair<std::uint64_t, std::uint64_t> ScanBuffer<Y, YHandler>::getChannelLineIdRange() const
{
    return m_lines.getIdRange();
}

template <typename Y, typename YHandler>
auto ScanBuffer<Y, YHandler>::getChannelLine(std::uint64_t id) const -> const Line &
{
    const auto [first, end] = m_lines.getIdRange();
    if (id < first || id >= end)
        throw KRException(QStringLiteral("channel line %1 can't be read").arg(id), __FILE__,
                          "ScanBuffer", "getChannelLine", __LINE__);
    if (id == m_lines.getCurrentChannelLineId())
        refillCurrentLine();
    return m_lines.line(id);
}

template <typename Y, typename YHandler>
void ScanBuffer<Y, YHandler>::refillCurrentLine() const
{
    if (!m_refillPending.load(std::memory_order_acquire))
        return;
    const Kelm::MutexLocker lock(m_refillMutex);
    m_lines.currentLine().refill();
    m_refillPending.store(false, std::memory_order_release);
}

template <typename Y, typename YHandler>
std::uint64_t ScanBuffer<Y, YHandler>::getLastFinishedChannelLineId() const
{
    return m_lines.getLastFinishedChannelLineId();
}

template <typename Y, typename YHandler>
std::uint64_t ScanBuffer<Y, YHandler>::getIdForTimeStamp(KRTimeStamp time) const
{
    const auto [first, end] = m_lines.getIdRange();
    for (std::uint64_t id = end; id > first; --id)
        if (const KRTimeStamp began = m_lines.line(id - 1).getFirstTimeStamp();
            began != 0 && began <= time)
            return id - 1;
    return 0;
}

template <typename Y, typename YHandler>
KRTimeStamp ScanBuffer<Y, YHandler>::getTimeStampForId(std::uint64_t id) const
{
    const auto [first, end] = m_lines.getIdRange();
    return id >= first && id < end ? m_lines.line(id).getFirstTimeStamp() : 0;
}

// Feeding ----------------------------------------------------------------------------------------

template <typename Y, typename YHandler>
void ScanBuffer<Y, YHandler>::addTimeStamp(KRTimeStamp time)
{
    {
        const Kelm::WriteLocker lock(m_lock);
        if (m_lastTimeStamp >= time)
            clearRing();
        m_lastTimeStamp = time;
        if (!m_lines.hasLines() || m_lines.currentLine().hasValidTime())
            return;
        m_lines.currentLine().setFirstTimeStamp(time);
    }
    const Kelm::QtGate gate;
    Q_EMIT signalTimeStampAdded(time);
}

template <typename Y, typename YHandler>
void ScanBuffer<Y, YHandler>::addSpectralData(std::span<const Piece> pieces)
{
    Written written;
    {
        const Kelm::WriteLocker lock(m_lock);
        written = writePieces(pieces);
    }
    if (written.clipped != 0)
        if (const auto times = m_clippedTrace.due())
            SPECTREE_TRACE(TraceWarnings,
                           QStringLiteral("ScanBuffer: %1 samples lie past the end of the line "
                                          "(%2 times since this was told last)")
                               .arg(written.clipped)
                               .arg(times));
    const Kelm::QtGate gate;
    if (written.stored != 0)
        Q_EMIT signalSpectralDataAdded();
}

template <typename Y, typename YHandler>
auto ScanBuffer<Y, YHandler>::writePieces(std::span<const Piece> pieces) -> Written
{
    Written written;
    if (!m_lines.hasLines())
        return written;
    for (const Piece &piece : pieces) {
        if (m_lines.currentLine().isHistoryFull())
            continueInNewLine();
        const std::uint32_t stored =
            m_lines.currentLine().setSamples(piece.firstIndex, piece.count, piece.samples);
        written.stored += stored;
        written.clipped += piece.count - stored;
    }
    noteRefill();
    return written;
}

template <typename Y, typename YHandler>
void ScanBuffer<Y, YHandler>::finishLine()
{
    m_lines.finishCurrentLine();
    noteRefill();
    m_definitions.dropBelow(m_lines.getFirstChannelLineId());
}

template <typename Y, typename YHandler>
void ScanBuffer<Y, YHandler>::continueInNewLine()
{
    const bool timed = m_lines.currentLine().getFirstTimeStamp() != 0;
    finishLine();
    if (timed)
        m_lines.currentLine().setFirstTimeStamp(m_lastTimeStamp);
}

template <typename Y, typename YHandler>
void ScanBuffer<Y, YHandler>::finishScan(std::optional<KRTimeStamp> time)
{
    double scansPerSecond = 0.0;
    {
        const Kelm::WriteLocker lock(m_lock);
        if (!m_lines.hasLines())
            return;
        Line &line = m_lines.currentLine();
        if (time)
            line.setLastTimeStamp(*time);
        m_scanRate.addTimeStamp(line.getFirstTimeStamp());
        finishLine();
        scansPerSecond = m_scanRate.averageEventsPerSecond();
    }
    const Kelm::QtGate gate;
    Q_EMIT signalEndOfScan();
    Q_EMIT signalScansPerSecond(scansPerSecond);
    m_sizeManager->endOfScanReceived();
}

template <typename Y, typename YHandler>
void ScanBuffer<Y, YHandler>::clear()
{
    clearRing();
}

template <typename Y, typename YHandler>
void ScanBuffer<Y, YHandler>::clearRing()
{
    m_lines.clear();
    noteRefill();
}

template <typename Y, typename YHandler>
void ScanBuffer<Y, YHandler>::noteRefill()
{
    m_refillPending.store(m_lines.hasLines() && m_lines.currentLine().needsRefill(),
                          std::memory_order_relaxed);
}

// Channels and size ------------------------------------------------------------------------------

template <typename Y, typename YHandler>
void ScanBuffer<Y, YHandler>::setChannelRangeDefinition(
    const values::ChannelRangeDefinition &definition)
{
    const bool changed = applyDefinition(definition);
    const Kelm::QtGate gate;
    if (changed)
        Q_EMIT signalChannelRangeDefinitionChanged();
    m_sizeManager->resetFirstAccess();
}

/// True when the definition has changed.
template <typename Y, typename YHandler>
bool ScanBuffer<Y, YHandler>::applyDefinition(const values::ChannelRangeDefinition &definition)
{
    const unsigned int channels = definition.GetChannelCount();
    if (channels == 0)
        return false;
    // A window would take a definition with NaN for another one in each pass, and begin anew.
    if (!definition.IsFinite())
        throw KRException(QStringLiteral("A channel range has a frequency that is not finite"),
                          __FILE__, "ScanBuffer", "setChannelRangeDefinition", __LINE__);
    if (continueWith(definition))
        return true;
    Ring ring = initBuffer(channels); // holds the old ring later, which goes after the lock
    Ring none;
    const Kelm::WriteLocker lock(m_lock);
    m_definitions.restart(m_lines.idAfterReplacing(), definition);
    m_lines.replaceRing(ring);
    noteRefill();
    // The limit may have changed meanwhile.
    const std::uint64_t affordable = m_maximumSizeInBytes / bytesPerLine();
    if (m_lines.scanCount() > std::max(affordable, std::uint64_t(kMinimumLines)))
        resize(affordable, none);
    return true;
}

/// As many channels as before: the ring stays, and only later lines have the definition.
template <typename Y, typename YHandler>
bool ScanBuffer<Y, YHandler>::continueWith(const values::ChannelRangeDefinition &definition)
{
    const Kelm::WriteLocker lock(m_lock);
    if (definition.GetChannelCount() != m_lines.channelCount())
        return false;
    if (!m_lines.currentLine().isEmpty())
        finishLine();
    m_definitions.push(m_lines.getCurrentChannelLineId(), definition);
    m_definitions.dropBelow(m_lines.getFirstChannelLineId());
    return true;
}

/// A ring that is not yet in its place: to fill it takes long, and nobody is to wait for that.
template <typename Y, typename YHandler>
auto ScanBuffer<Y, YHandler>::initBuffer(unsigned int channels) const -> Ring
{
    SPECTREE_TRACE(TraceLifecycle, QStringLiteral("ScanBuffer<Y, YHandler>::initBuffer"));
    const std::uint64_t lineBytes = std::uint64_t(channels) * values::imageSize<Y>;
    std::uint64_t lines = 0, most = 0;
    {
        const Kelm::NestedReadLocker lock(m_lock);
        lines = m_numberOfLines;
        // As many bytes as before: what the readers needed in time they need again.
        if (const std::uint64_t bytes = sizeInBytes(); m_sizeManager->isActive() && bytes != 0)
            lines = bytes / lineBytes;
        // The byte limit too: many lines of few channels must not become as many of a million.
        lines = std::max(linesWithin(lines, lineBytes), std::uint64_t(kMinimumLines));
        most = std::clamp(m_maximumSizeInBytes, kDefaultMaximumBytes, kMostBytesOfThreeLines);
    }
    if (kMinimumLines * lineBytes > most)
        throw KRException(QStringLiteral("A scan of %1 channels is too long for the scan buffer, "
                                         "which holds scans of up to %2")
                              .arg(channels)
                              .arg(most / (kMinimumLines * values::imageSize<Y>)),
                          __FILE__, "ScanBuffer", "setChannelRangeDefinition", __LINE__);
    return Lines::makeRing(lines, lines, channels);
}

template <typename Y, typename YHandler>
std::uint64_t ScanBuffer<Y, YHandler>::bytesPerLine() const
{
    return std::uint64_t(m_definitions.current().GetChannelCount()) * values::imageSize<Y>;
}

template <typename Y, typename YHandler>
std::uint64_t ScanBuffer<Y, YHandler>::sizeInBytes() const
{
    return m_lines.scanCount() * bytesPerLine();
}

template <typename Y, typename YHandler>
std::uint64_t ScanBuffer<Y, YHandler>::getSizeInBytes() const
{
    const Kelm::NestedReadLocker lock(m_lock);
    return sizeInBytes();
}

template <typename Y, typename YHandler>
void ScanBuffer<Y, YHandler>::setMaximumSizeInBytes(std::uint64_t bytes)
{
    Ring none;
    const Kelm::WriteLocker lock(m_lock);
    m_maximumSizeInBytes = bytes;
    if (sizeInBytes() > bytes)
        resize(bytes / bytesPerLine(), none);
}

template <typename Y, typename YHandler>
std::uint32_t ScanBuffer<Y, YHandler>::setNumberOfLines(unsigned int lines)
{
    Ring ring = prepareRing(lines); // holds what is left over later, which goes after the lock
    const Kelm::WriteLocker lock(m_lock);
    return resize(lines, ring);
}

/// The lines that the ring is short of. Without memory none: resize() finds out, and tells.
template <typename Y, typename YHandler>
auto ScanBuffer<Y, YHandler>::prepareRing(std::uint64_t lines) const -> Ring
{
    unsigned int channels = 0;
    std::uint64_t present = 0;
    {
        const Kelm::NestedReadLocker lock(m_lock);
        channels = m_lines.channelCount();
        if (channels == 0)
            return Ring();
        present = m_lines.scanCount();
        lines = std::max(linesWithin(std::max(lines, std::uint64_t(kMinimumLines)), bytesPerLine()),
                         std::uint64_t(kMinimumLines));
    }
    try {
        return Lines::makeRing(lines, lines - std::min(lines, present), channels);
    } catch (const std::bad_alloc &) {
        return Ring();
    }
}

template <typename Y, typename YHandler>
std::uint64_t ScanBuffer<Y, YHandler>::linesWithin(std::uint64_t lines,
                                                   std::uint64_t lineBytes) const
{
    return std::min({lines, m_maximumSizeInBytes / lineBytes, std::uint64_t(kMaximumLines)});
}

/// \a prepared as prepareRing() made it; any other is made anew under the lock.
template <typename Y, typename YHandler>
std::uint32_t ScanBuffer<Y, YHandler>::resize(std::uint64_t lines, Ring &prepared)
{
    const std::uint64_t lineBytes = bytesPerLine();
    if (lineBytes == 0)
        return 0;
    // May come below the minimum again; the ring's own floor is the last guard.
    lines = linesWithin(std::max(lines, std::uint64_t(kMinimumLines)), lineBytes);
    m_numberOfLines = static_cast<std::uint32_t>(lines);
    try {
        if (lines != m_lines.scanCount())
            m_lines.setNumberOfLines(lines, prepared);
    } catch (const std::bad_alloc &) {
        SPECTREE_TRACE(TraceWarnings,
                       QStringLiteral("ScanBuffer: no memory for %1 lines").arg(lines));
    }
    return static_cast<std::uint32_t>(m_lines.scanCount());
}

template <typename Y, typename YHandler>
std::uint32_t ScanBuffer<Y, YHandler>::getNumberOfLines() const
{
    const Kelm::NestedReadLocker lock(m_lock);
    return static_cast<std::uint32_t>(m_lines.scanCount());
}

template <typename Y, typename YHandler>
unsigned int ScanBuffer<Y, YHandler>::channelsPerChannelLine() const
{
    const Kelm::NestedReadLocker lock(m_lock);
    return m_lines.channelCount();
}

} // namespace sbs
