#pragma once

// Folding stored scans anew for the waterfall, under the buffer's read lock.
#include "scanbuffer/waterfall/waterfallrows_impl.h"
#include "scanbuffer/window/windowpass_impl.h"

#include <algorithm>

namespace sbs {

namespace Detail {

/// The marks of a reload's batches: rising from 1, and these for the end.
constexpr int kLastBatch = 999, kOnlyBatch = 1000;
constexpr std::int32_t kMaximumBatch = 1000;

} // namespace Detail

template <typename Y, typename YHandler>
void WindowRelated<Y, YHandler>::reload(double x1, double x2, KRTimeStamp time, std::int32_t count,
                                        std::int32_t second)
{
    m_reload.start = x1;
    m_reload.stop = x2;
    m_reload.time = time;
    m_reload.lineCount = count;
    m_reload.secondCount = second;
    m_reload.requested = true;
    if (m_reading)
        return; // the pass that is running takes it, or the next one
    const Detail::FlagScope reading(m_reading);
    try {
        m_scanBuffer->accept(*this);
    } catch (const std::exception &error) {
        SPECTREE_TRACE(TraceWarnings, QStringLiteral("A reload of window %1 failed: %2")
                                          .arg(WinGUID(), QString::fromUtf8(error.what())));
    }
}

template <typename Y, typename YHandler>
void WindowRelated<Y, YHandler>::visitReload(const Access &access)
{
    if (m_reload.running)
        return;
    const Detail::FlagScope running(m_reload.running);
    m_reload.requested = false;
    const auto waterfall = m_waterfallAdapter.lock();
    const auto [first, end] = access.getChannelLineIdRange();
    if (m_definition.GetChannelCount() == 0 || m_ring.empty() || !waterfall ||
        m_reload.lineCount <= 0 || first == end)
        return;
    std::uint64_t last = first - 1 + static_cast<std::uint64_t>(m_reload.lineCount);
    if (last >= end) {
        SPECTREE_TRACE(TraceLifecycle,
                       QStringLiteral("not all reloaded scan lines could be processed"));
        last = end - 1;
    }
    waterfall->resetCurrentTimeStamp();
    sendBatches(access, first, last, *waterfall);
}

template <typename Y, typename YHandler>
void WindowRelated<Y, YHandler>::sendBatches(const Access &access, std::uint64_t first,
                                             std::uint64_t last, Waterfall &waterfall)
{
    const auto batch = static_cast<std::size_t>(
        std::min({m_ring.size(), int(Detail::kMaximumBatch), int(m_reload.lineCount)}));
    int mark = 0;
    double low = 0.0, high = 0.0;
    m_timesToDraw.clear();
    m_linesToDraw.clear();
    for (std::uint64_t id = first; id <= last; ++id) {
        foldWholeLine(access.getChannelLine(id), id);
        widenByLines(low, high);
        if (m_linesToDraw.size() < batch && id != last)
            continue;
        if (id == last)
            mark = mark == 0 ? Detail::kOnlyBatch : Detail::kLastBatch;
        else
            mark = std::min(mark + 1, Detail::kLastBatch - 1);
        std::reverse(m_timesToDraw.begin(), m_timesToDraw.end());
        std::reverse(m_linesToDraw.begin(), m_linesToDraw.end());
        waterfall.process(m_linesToDraw, m_timesToDraw, pixelCount(),
                          static_cast<int>(m_linesToDraw.size()), m_applyRefLine, false, mark);
        m_timesToDraw.clear();
        m_linesToDraw.clear();
    }
    if (m_optimizeY.front() && low != high)
        applyOptimizedRange(low, high);
    m_optimizeY.front() = false;
}

template <typename Y, typename YHandler>
void WindowRelated<Y, YHandler>::foldWholeLine(const ChannelLine<Y, YHandler> &line,
                                               std::uint64_t id)
{
    const KRTimeStamp time = line.getFirstTimeStamp();
    const int index = m_ring.GetOrCreateLineIndex4Time(time);
    m_ring.line(index).channelLineId = id;
    m_timesToDraw.push_back(time);
    m_linesToDraw.push_back(index);
    DoScanTransition(line.spectralData(), m_ring.line(index), 0, line.size() - 1);
}

/// Flat lines say nothing of a range.
template <typename Y, typename YHandler>
void WindowRelated<Y, YHandler>::widenByLines(double &low, double &high) const
{
    if (!m_optimizeY.front())
        return;
    double lineLow = 0.0, lineHigh = 0.0;
    getYMinMax({m_linesToDraw.back()}, 0, pixelCount(), lineLow, lineHigh);
    if (lineLow == lineHigh)
        return;
    const bool isFirst = low == high;
    low = isFirst ? lineLow : std::min(low, lineLow);
    high = isFirst ? lineHigh : std::max(high, lineHigh);
}

} // namespace sbs
