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
void WindowRelated<Y, YHandler>::reload(double /*x1*/, double /*x2*/, KRTimeStamp /*time*/,
                                        std::int32_t count, std::int32_t /*second*/)
{
    m_reload.lineCount = count;
    m_reload.requested = true;
    if (m_reading)
        return; // the pass that is running takes it, or the next one
    const Detail::FlagScope reading(m_reading);
    this->guarded("A reload", [this] { m_scanBuffer->accept(*this); });
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
    // A row that stood in the ring already would be overwritten while its batch still counts on it.
    m_ring.init(static_cast<std::size_t>(pixelCount()));
    m_segmentsDone = m_segmentLineId = m_finishedLineId = 0; // nor does it hold the live scan now
    sendBatches(access, first, last, *waterfall);
}

/// Lines of an older definition are mapped by that one.
template <typename Y, typename YHandler>
auto WindowRelated<Y, YHandler>::mapperAt(const Access &access, std::uint64_t id,
                                          std::uint64_t &lastOfDefinition) const -> Mapper
{
    std::uint64_t first = id;
    lastOfDefinition = id;
    const values::ChannelRangeDefinition &definition =
        access.getChannelRangeDefinition(id, first, lastOfDefinition);
    return definition == m_definition ? m_mapper : Mapper(definition, m_xAxis);
}

template <typename Y, typename YHandler>
void WindowRelated<Y, YHandler>::sendBatches(const Access &access, std::uint64_t first,
                                             std::uint64_t last, Waterfall &waterfall)
{
    const auto batch = static_cast<std::size_t>(
        std::min({m_ring.size(), int(Detail::kMaximumBatch), int(m_reload.lineCount)}));
    int mark = 0;
    std::optional<WindowLevels::Range> range;
    Mapper mapper;
    std::uint64_t lastOfDefinition = 0;
    m_timesToDraw.clear();
    m_linesToDraw.clear();
    for (std::uint64_t id = first; id <= last; ++id) {
        if (id > lastOfDefinition)
            mapper = mapperAt(access, id, lastOfDefinition);
        const ChannelLine<Y, YHandler> &line = access.getChannelLine(id);
        fold<Y, YHandler>(line.spectralData(), mapper, rowToDraw(line, id), 0, line.size() - 1,
                          m_foldRules);
        if (m_linesToDraw.size() < batch && id != last)
            continue;
        if (id == last)
            mark = mark == 0 ? Detail::kOnlyBatch : Detail::kLastBatch;
        else
            mark = std::min(mark + 1, Detail::kLastBatch - 1);
        if (m_optimizeY.front())
            widenByLinesToDraw(range);
        sendBatch(waterfall, mark);
    }
    if (range)
        applyOptimizedRange(*range);
    m_optimizeY.front() = false;
}

template <typename Y, typename YHandler>
void WindowRelated<Y, YHandler>::sendBatch(Waterfall &waterfall, int mark)
{
    std::reverse(m_timesToDraw.begin(), m_timesToDraw.end());
    std::reverse(m_linesToDraw.begin(), m_linesToDraw.end());
    waterfall.process(m_linesToDraw, m_timesToDraw, pixelCount(),
                      static_cast<int>(m_linesToDraw.size()), m_applyRefLine, false, mark);
    m_timesToDraw.clear();
    m_linesToDraw.clear();
}

} // namespace sbs
