#pragma once

// How a window reads the buffer. All of it runs under the buffer's read lock.
#include "scanbuffer/window/windowrelated_impl.h"

#include <algorithm>

namespace sbs {

template <typename Y, typename YHandler>
void WindowRelated<Y, YHandler>::visit(const Access &access)
{
    m_newData = false;
    if (m_needsInitialization)
        visitForInitialization(access, m_lastLineId);
    if (m_reload.requested) {
        visitReload(access);
        return;
    }
    const auto [first, end] = access.getChannelLineIdRange();
    if (first == end && !m_emptyBufferSeen) {
        visitForInitialization(access, 0);
        m_emptyBufferSeen = true;
    }
    m_lastLineId = std::max(m_lastLineId, first);
    if (m_lastLineId >= end)
        return;
    m_emptyBufferSeen = false;
    std::uint64_t firstOfDefinition = first, lastOfDefinition = end - 1;
    if (access.getChannelRangeDefinition(m_lastLineId, firstOfDefinition, lastOfDefinition) !=
        m_definition)
        visitForInitialization(access, m_lastLineId);
    visitNewData(access, m_lastLineId, lastOfDefinition);
}

template <typename Y, typename YHandler>
void WindowRelated<Y, YHandler>::visitForInitialization(const Access &access, std::uint64_t id)
{
    const auto [first, end] = access.getChannelLineIdRange();
    std::uint64_t wanted = id == 0 ? end : std::max(id, first), unusedFirst = 0, unusedLast = 0;
    const values::ChannelRangeDefinition &definition =
        first == end ? access.getChannelRangeDefinition()
                     : access.getChannelRangeDefinition(wanted, unusedFirst, unusedLast);
    if (definition != m_definition) {
        m_definition = definition;
        slotResetCompression();
        ++m_pendingReinitialization;
        setIntervals(); // the number of channels slows the read timer
    }
    InitBuffer();
    if (m_pendingReinitialization != 0)
        tellAdaptersNewAxis();
    m_pendingReinitialization = 0;
    m_needsInitialization = false;
}

template <typename Y, typename YHandler>
void WindowRelated<Y, YHandler>::tellAdaptersNewAxis()
{
    if (const auto waterfall = m_waterfallAdapter.lock())
        waterfall->slotRequestFullStateUpdate();
    if (const auto scanLine = m_scanLineAdapter.lock())
        scanLine->slotRequestFullStateUpdate();
    if (const auto xRange = m_xRangeAdapter.lock())
        xRange->SendChannelRangeDefinition();
}

template <typename Y, typename YHandler>
void WindowRelated<Y, YHandler>::copyBufferSettings(const Access &access)
{
    m_keepDataAfterEndOfScan = access.getKeepScanDataAfterEndOfScan();
    m_foldRules.keepOverwriteCounts = access.getKeepNoOverwriteWFLines();
    m_foldRules.lastSampleWins = access.getAvoidSettingMaxValueDuringScan();
    m_foldRules.holdDimension = m_maxHoldDimension;
    if (access.getClearScanData())
        m_ring.clearValues();
}

/// Oldest first, so that a line continues the one before it; the lists are handed on newest first.
template <typename Y, typename YHandler>
void WindowRelated<Y, YHandler>::visitNewData(const Access &access, std::uint64_t from,
                                              std::uint64_t to)
{
    if (m_definition.GetChannelCount() == 0 || m_ring.empty())
        return;
    copyBufferSettings(access);
    m_timesToDraw.clear();
    m_linesToDraw.clear();
    // One line more would take the place of the first in the same pass.
    to = std::min(to, from - 1 + static_cast<std::uint64_t>(m_ring.size()));
    bool finishedWithoutData = false;
    for (std::uint64_t id = from; id <= to; ++id)
        foldLine(access.getChannelLine(id), id, finishedWithoutData);
    std::reverse(m_timesToDraw.begin(), m_timesToDraw.end());
    std::reverse(m_linesToDraw.begin(), m_linesToDraw.end());

    m_segmentsDone = access.getChannelLine(to).getHistory().size();
    m_segmentLineId = m_lastLineId = to;
    const std::uint64_t last = access.getChannelLineIdRange().second - 1;
    if (finishedWithoutData && last > m_lastLineId)
        ++m_lastLineId;
    m_unread = last > to;
    m_lastTime = access.getTimeStampForId(m_lastLineId);
}

template <typename Y, typename YHandler>
void WindowRelated<Y, YHandler>::foldLine(const ChannelLine<Y, YHandler> &line, std::uint64_t id,
                                          bool &finishedWithoutData)
{
    const auto &segments = line.getHistory();
    if (segments.empty() && line.getFirstTimeStamp() == 0) {
        finishedWithoutData |= line.isFinished();
        return; // the end of a scan that never began: a row for it would be blank
    }
    ScanDisplayLine<Y> &row = rowToDraw(line, id);
    const std::size_t done = id == m_segmentLineId ? m_segmentsDone : 0;
    for (std::size_t segment = done; segment < segments.size(); ++segment) {
        const auto [first, count] = segments[segment];
        DoScanTransition(line.spectralData(), row, first, first + count - 1);
        m_newData = true;
    }
    if (!line.isFinished())
        return;
    if (done >= segments.size()) {
        finishedWithoutData = true;
        m_newData |= id != m_finishedLineId;
    }
    m_finishedLineId = id;
    if (m_keepDataAfterEndOfScan || row.finished)
        return;
    if (m_foldRules.keepOverwriteCounts)
        row.finished = true; // without counts nobody can tell what the scan didn't reach
    else
        row.finish(YHandler::Minimum());
}

/// The row of a scan in the ring, noted for the adapters.
template <typename Y, typename YHandler>
ScanDisplayLine<Y> &WindowRelated<Y, YHandler>::rowToDraw(const ChannelLine<Y, YHandler> &line,
                                                          std::uint64_t id)
{
    const KRTimeStamp time = line.getFirstTimeStamp();
    const int index = m_ring.GetOrCreateLineIndex4Time(time, id);
    m_timesToDraw.push_back(time);
    m_linesToDraw.push_back(index);
    return m_ring.line(index);
}

template <typename Y, typename YHandler>
bool WindowRelated<Y, YHandler>::DoScanTransition(const std::vector<Y> &samples,
                                                  ScanDisplayLine<Y> &line, std::uint32_t first,
                                                  std::uint32_t last)
{
    return fold<Y, YHandler>(samples, m_mapper, line, first, last, m_foldRules);
}

} // namespace sbs
