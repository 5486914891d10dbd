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
    const Kelm::ReadLocker lock(m_lock);
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
        if (m_lines.line(id - 1).getFirstTimeStamp() <= time)
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
    bool written = false;
    {
        const Kelm::WriteLocker lock(m_lock);
        written = writePieces(pieces);
    }
    const Kelm::QtGate gate;
    if (written)
        Q_EMIT signalSpectralDataAdded();
}

template <typename Y, typename YHandler>
bool ScanBuffer<Y, YHandler>::writePieces(std::span<const Piece> pieces)
{
    if (!m_lines.hasLines())
        return false;
    bool written = false;
    for (const Piece &piece : pieces) {
        const std::uint32_t stored =
            m_lines.currentLine().setSamples(piece.firstIndex, piece.count, piece.samples);
        written |= stored != 0;
        if (stored != piece.count)
            SPECTREE_TRACE(TraceWarnings,
                           QStringLiteral("ScanBuffer: of %1 samples from channel index %2 on, %3 "
                                          "lie past the %4 channels of the line")
                               .arg(piece.count)
                               .arg(piece.firstIndex)
                               .arg(piece.count - stored)
                               .arg(m_lines.channelCount()));
    }
    noteRefill();
    return written;
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
        m_lines.finishCurrentLine();
        noteRefill();
        scansPerSecond = m_scanRate.averageEventsPerSecond();
        m_definitions.dropBelow(m_lines.getIdRange().first);
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
    const Kelm::WriteLocker lock(m_lock);
    if (channels == m_lines.channelCount()) {
        if (!m_lines.currentLine().isEmpty())
            m_lines.finishCurrentLine();
        noteRefill();
        m_definitions.push(m_lines.getCurrentChannelLineId(), definition);
        return true;
    }
    std::uint64_t lines = m_numberOfLines;
    // As many bytes as before: what the readers needed in time they need again.
    if (const std::uint64_t bytes = sizeInBytes(); m_sizeManager->isActive() && bytes != 0)
        lines = bytes / (values::imageSize<Y> * channels);
    m_definitions.restart(m_lines.getCurrentChannelLineId(), definition);
    initBuffer(lines);
    return true;
}

template <typename Y, typename YHandler>
void ScanBuffer<Y, YHandler>::initBuffer(std::uint64_t lines)
{
    SPECTREE_TRACE(TraceLifecycle, QStringLiteral("ScanBuffer<Y, YHandler>::initBuffer"));
    // The byte limit too: many lines of few channels must not become as many of a million.
    const std::uint64_t affordable = m_maximumSizeInBytes / bytesPerLine();
    lines = std::min({lines, affordable, std::uint64_t(kMaximumLines)});
    m_lines.recreate(std::max(lines, std::uint64_t(kMinimumLines)),
                     m_definitions.current().GetChannelCount());
    noteRefill();
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
    const Kelm::ReadLocker lock(m_lock);
    return sizeInBytes();
}

template <typename Y, typename YHandler>
void ScanBuffer<Y, YHandler>::setMaximumSizeInBytes(std::uint64_t bytes)
{
    if (bytes == 0)
        return;
    const Kelm::WriteLocker lock(m_lock);
    m_maximumSizeInBytes = bytes;
    if (sizeInBytes() > bytes)
        resize(bytes / bytesPerLine());
}

template <typename Y, typename YHandler>
std::uint32_t ScanBuffer<Y, YHandler>::setNumberOfLines(unsigned int lines)
{
    const Kelm::WriteLocker lock(m_lock);
    return resize(lines);
}

template <typename Y, typename YHandler>
std::uint32_t ScanBuffer<Y, YHandler>::resize(std::uint64_t lines)
{
    const std::uint64_t lineBytes = bytesPerLine();
    if (lineBytes == 0)
        return 0;
    lines = std::clamp(lines, std::uint64_t(kMinimumLines), std::uint64_t(kMaximumLines));
    // May come below the minimum; the ring's own floor is the last guard.
    lines = std::min(lines, m_maximumSizeInBytes / lineBytes);
    m_numberOfLines = static_cast<std::uint32_t>(lines);
    try {
        if (lines != m_lines.scanCount())
            m_lines.setNumberOfLines(lines);
    } catch (const std::bad_alloc &) {
        SPECTREE_TRACE(TraceWarnings,
                       QStringLiteral("ScanBuffer: no memory for %1 lines").arg(lines));
    }
    return static_cast<std::uint32_t>(m_lines.scanCount());
}

template <typename Y, typename YHandler>
std::uint32_t ScanBuffer<Y, YHandler>::getNumberOfLines() const
{
    const Kelm::ReadLocker lock(m_lock);
    return static_cast<std::uint32_t>(m_lines.scanCount());
}

template <typename Y, typename YHandler>
unsigned int ScanBuffer<Y, YHandler>::channelsPerChannelLine() const
{
    const Kelm::ReadLocker lock(m_lock);
    return m_lines.channelCount();
}

} // namespace sbs
