#pragma once

#include "platform/base/errorhandler.h"
#include "scanbuffer/waterfall/waterfallpainter_impl.h"
#include "scanbuffer/waterfall/waterfallrows.h"

#include <algorithm>
#include <stdexcept>

namespace sbs {

template <typename Y, typename YHandler>
bool WaterfallRows<Y, YHandler>::hasRunBack(const Pass &pass)
{
    const auto count = std::size_t(std::max(pass.lineCount, 0));
    if (pass.times.size() < count || pass.lines.size() < count)
        throw std::out_of_range("invalid vector<T> subscript");
    if (pass.times.empty() || pass.times.front() >= m_lastTime)
        return false;
    m_scanCounter = 0;
    m_lastTime = 0;
    return true;
}

template <typename Y, typename YHandler>
void WaterfallRows<Y, YHandler>::SetDimension(short dimension)
{
    m_dimension = dimension;
    m_skipNegative = dimension == 3 || dimension == 4;
}

template <typename Y, typename YHandler>
void WaterfallRows<Y, YHandler>::resetCurrentTimeStamp()
{
    m_lastTime = 0;
    m_scanCounter = 0;
}

template <typename Y, typename YHandler>
template <WaterfallSource<Y> Window>
void WaterfallRows<Y, YHandler>::compose(const Window &window, const Pass &pass)
{
    const int scansPerLine = window.GetWaterfallScansPerLine();
    resizeRow(pass.pixels);
    takeRules(window, pass);
    m_head.lineCnt = 0;
    m_head.times.clear();
    const std::size_t blockSize = m_row.size() * std::size_t(pass.lineCount);
    if (m_block.size() < blockSize)
        m_block.resize(blockSize);

    for (int i = pass.lineCount - 1; i >= 0; --i) {
        const KRTimeStamp time = pass.times[std::size_t(i)];
        if (time < m_lastTime)
            continue;
        const int line = pass.lines[std::size_t(i)];
        const std::vector<Y> &samples = window.WaterfallYLine(line);
        m_painter.paint(samples.data(), std::min(pass.pixels, int(samples.size())), m_row.data());
        if (time != m_lastTime) {
            if (m_scanCounter == 0)
                m_firstTime = time;
            ++m_scanCounter;
            m_lastTime = time;
        }
        if (m_scanCounter >= scansPerLine)
            finishRow(window.WaterfallChannelLineID(line));
    }
    fillMessage(pass, window.WaterfallChannelLineID(pass.lines.front()));
}

template <typename Y, typename YHandler>
template <typename Window>
void WaterfallRows<Y, YHandler>::takeRules(const Window &window, const Pass &pass)
{
    const std::pair<double, double> range = window.GetYRange(m_dimension);
    typename Painter::Rules rules;
    rules.colors = WaterfallColors(range.first, range.second,
                                   window.GetWaterfallColorResolutionSteps(), m_dimension);
    rules.dimension = m_dimension;
    rules.skipNegative = m_skipNegative;
    rules.relative = pass.relative;
    rules.thresholdActive = window.GetThresholdActive();
    const std::vector<double> &thresholds = window.GetThresholdLine();
    m_painter.setRules(rules, pass.pixels,
                       {&thresholds, window.GetThreshold(int(thresholds.size()))},
                       [&window](int pixel) { return window.GetRefLine(pixel); });
}

template <typename Y, typename YHandler>
void WaterfallRows<Y, YHandler>::resizeRow(int pixels)
{
    if (m_row.size() == std::size_t(pixels))
        return;
    m_row.assign(std::size_t(pixels), 0);
    resetCurrentTimeStamp();
}

template <typename Y, typename YHandler>
void WaterfallRows<Y, YHandler>::finishRow(std::uint64_t lineId)
{
    m_scanCounter = 0;
    ++m_head.lineCnt;
    std::copy(m_row.begin(), m_row.end(),
              m_block.end() - std::ptrdiff_t(m_row.size() * m_head.lineCnt));
    std::fill(m_row.begin(), m_row.end(), 0);
    m_head.times.push_back(m_firstTime);
    m_youngestId = lineId;
}

template <typename Y, typename YHandler>
void WaterfallRows<Y, YHandler>::fillMessage(const Pass &pass, std::uint64_t firstLineId)
{
    const bool growing = m_head.lineCnt == 0;
    if (growing) {
        m_head.lineCnt = 1;
        m_head.times.push_back(m_firstTime);
        m_youngestId = firstLineId;
    }
    std::reverse(m_head.times.begin(), m_head.times.end());
    const KRTimeStamp youngest = m_head.times.front();
    if (youngest < m_lastSentTime) {
        SPECTREE_TRACE(TraceWarnings,
                       QStringLiteral("Send WF: dif: %1").arg(m_lastSentTime - youngest));
        SPECTREE_TRACE(TraceWarnings, QStringLiteral("Send WF: last %1").arg(m_lastSentTime));
    }
    m_lastSentTime = youngest;
    m_head.width = std::uint32_t(pass.pixels);
    // Displays count on this step: in a long-running buffer they compare with the id behind.
    m_head.youngestID = m_youngestId > 1000000 ? m_youngestId + 1 : m_youngestId;
    m_head.compression = 1;
    m_head.packetId = std::uint16_t(pass.packetId);
    m_head.useForCurve = pass.useForCurve;
    const std::size_t size = m_row.size() * m_head.lineCnt;
    m_message.assign(growing ? m_row.data() : m_block.data() + (m_block.size() - size), size,
                     m_head);
}

} // namespace sbs
