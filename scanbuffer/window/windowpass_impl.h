#pragma once

// What a window does on its timers and when the buffer has news.
#include "scanbuffer/window/windowrelated_impl.h"

#include <cmath>
#include <limits>

namespace sbs {

namespace Detail {

/// Sets a flag for the length of a scope.
class FlagScope {
public:
    explicit FlagScope(bool &flag) : m_flag(flag) { flag = true; }
    ~FlagScope() { m_flag = false; }
    FlagScope(const FlagScope &) = delete;
    FlagScope &operator=(const FlagScope &) = delete;

private:
    bool &m_flag;
};

} // namespace Detail

/// A pass can ask for another one, by way of the compression's timers for example; it goes on
/// itself then.
template <typename Y, typename YHandler>
void WindowRelated<Y, YHandler>::readNewData()
{
    if (m_reading)
        return;
    const Detail::FlagScope reading(m_reading);
    const bool passed = this->guarded("A pass", [this] {
        takeScanRates();
        if (!isReading()) {
            m_resetPending = true;
            return;
        }
        m_unread = false;
        m_scanBuffer->accept(*this);
        if (std::exchange(m_newData, false))
            runAdapters();
    });
    if (!passed)
        m_needsInitialization = true; // the next pass begins afresh
    if (m_unread)
        postPass();
}

template <typename Y, typename YHandler>
void WindowRelated<Y, YHandler>::runAdapters()
{
    const auto scanLine = m_scanLineAdapter.lock();
    const auto waterfall = m_waterfallAdapter.lock();
    if (waterfall && waterfall->connectionLost()) {
        Q_EMIT signalRemoveWindowData(WinGUID());
        return;
    }
    const bool waterfallSends = waterfall && waterfall->IsVisible();
    if (waterfallSends && scanLine)
        m_drawScanLineByWaterfall = isCurveDrawnByWaterfall(*waterfall, *scanLine);
    const int pixels = pixelCount();
    if (pixels == 0 || m_linesToDraw.empty())
        return;
    this->signal_LastAccessedID(m_lastLineId, std::exchange(m_resetPending, false));
    optimizeYRange();
    if (waterfall)
        waterfall->process(m_linesToDraw, m_timesToDraw, pixels,
                           static_cast<int>(m_linesToDraw.size()), m_applyRefLine,
                           m_drawScanLineByWaterfall, 0);
    // A waterfall that has gone or is hidden draws no curve.
    if (scanLine && !(waterfallSends && m_drawScanLineByWaterfall))
        scanLine->process(m_linesToDraw, pixels, m_applyRefLine);
}

template <typename Y, typename YHandler>
bool WindowRelated<Y, YHandler>::isCurveDrawnByWaterfall(const Waterfall &waterfall,
                                                         const ScanLine &scanLine) const
{
    return waterfall.GetDimension() == scanLine.GetDimension() && !scanLine.Get2ndCurveVisible() &&
           GetThresholdActive(scanLine.GetDimension());
}

/// A flat scan leaves the wish for the next pass.
template <typename Y, typename YHandler>
void WindowRelated<Y, YHandler>::optimizeYRange()
{
    if (!m_optimizeY.front())
        return;
    std::optional<WindowLevels::Range> range;
    widenByLinesToDraw(range);
    if (!range)
        return;
    applyOptimizedRange(*range);
    m_optimizeY.front() = false;
}

/// Flat lines say nothing of a range.
template <typename Y, typename YHandler>
void WindowRelated<Y, YHandler>::widenByLinesToDraw(std::optional<WindowLevels::Range> &range) const
{
    double low = 0.0, high = 0.0;
    getYMinMax(m_linesToDraw, 0, pixelCount(), low, high);
    if (low != high)
        range = range ? std::pair(std::min(range->first, low), std::max(range->second, high))
                      : std::pair(low, high);
}

template <typename Y, typename YHandler>
void WindowRelated<Y, YHandler>::applyOptimizedRange(WindowLevels::Range range)
{
    using Limits = std::numeric_limits<double>;
    // Divided first: the distance of two doubles may be more than a double holds.
    const double margin = range.second / 10.0 - range.first / 10.0;
    const double low = std::max(range.first - margin, Limits::lowest());
    const double high = std::min(range.second + margin, Limits::max());
    SetYRange(low, high, 0);
    Q_EMIT signalStartStopRecalculated(low, high, 0);
}

template <typename Y, typename YHandler>
void WindowRelated<Y, YHandler>::getYMinMax(const std::vector<int> &indexes, short dimension,
                                            int pixels, double &low, double &high) const
{
    if (pixels <= 0 || indexes.empty())
        return;
    const double start = YHandler::GetDimension(dimension, YHandler::Minimum());
    low = high = start;
    for (const int index : indexes) {
        const std::vector<Y> &line = WaterfallYLine(index);
        const std::size_t count = std::min(line.size(), static_cast<std::size_t>(pixels));
        for (std::size_t pixel = 0; pixel < count; ++pixel) {
            const double y = YHandler::GetDimension(dimension, line[pixel]);
            if (!std::isfinite(y))
                continue; // once NaN or infinite, a limit would stay so
            if (low == start || (y < low && y > start))
                low = y;
            if (y > high)
                high = y;
        }
    }
}

template <typename Y, typename YHandler>
bool WindowRelated<Y, YHandler>::takeNewestTime(KRTimeStamp &seen) const
{
    if (!m_visible || m_measureMode || m_minimized || m_timesToDraw.empty() ||
        m_timesToDraw.front() == seen)
        return false;
    seen = m_timesToDraw.front();
    return true;
}

template <typename Y, typename YHandler>
void WindowRelated<Y, YHandler>::processXRuler()
{
    if (!takeNewestTime(m_lastXRulerTime))
        return;
    std::erase_if(m_xMarkerAdapters, [](const auto &marker) { return marker.expired(); });
    for (const std::weak_ptr<IDataSourceAdapter> &marker : m_xMarkerAdapters)
        if (const auto adapter = marker.lock())
            adapter->process();
}

template <typename Y, typename YHandler>
void WindowRelated<Y, YHandler>::processSystemInfo()
{
    if (!takeNewestTime(m_lastSystemInfoTime))
        return;
    if (const auto statistics = m_statisticsAdapter.lock())
        statistics->process();
}

template <typename Y, typename YHandler>
void WindowRelated<Y, YHandler>::processCompression()
{
    if (const auto compression = m_compressionAdapter.lock())
        compression->process();
}

} // namespace sbs
