#pragma once

// Birth, adapters and settings of a window; the pass and the visit stand beside it.
#include "platform/base/errorhandler.h"
#include "platform/base/tracelimit.h"
#include "scanbuffer/scanbuffer_connector_scanline.h"
#include "scanbuffer/scanbuffer_connector_statistics.h"
#include "scanbuffer/scanbuffer_connector_waterfall.h"
#include "scanbuffer/scanbuffer_connector_xrange.h"
#include "scanbuffer/scanbuffer_connector_yrange.h"
#include "scanbuffer/window/scanspersecondrouter.h"
#include "scanbuffer/window/windowadapter_impl.h"
#include "scanbuffer/windowrelated.h"

#include <type_traits>

namespace sbs {

template <typename Y, typename YHandler>
WindowRelated<Y, YHandler>::WindowRelated(std::shared_ptr<ScanBuffer<Y, YHandler>> scanBuffer,
                                          const QString &winGUID,
                                          ScanBufferSizeManager *sizeManager)
    : WindowRelatedQObject(winGUID, sizeManager), m_scanBuffer(std::move(scanBuffer))
{
    m_xAxis.init(1e7, 1.1e7, m_requestedPixels);
    // The buffer that this window holds keeps its manager alive.
    if (sizeManager != nullptr && sizeManager == m_scanBuffer->getSizeManager())
        this->reportDirectlyTo(*sizeManager);
    SPECTREE_TRACE(TraceLifecycle, QStringLiteral("WRel: %1 created").arg(winGUID));
}

template <typename Y, typename YHandler>
WindowRelated<Y, YHandler>::~WindowRelated()
{
    BLOCK_TRACE(
        QStringLiteral("WindowRelated<Y, YHandler>::~WindowRelated(): winGUID %1").arg(WinGUID()));
    this->stopListening();
    this->dropAdapters();
    this->tellAdaptersDeleted();
    SetWindowVisible(false);
}

template <typename Y, typename YHandler>
template <typename Kind>
std::shared_ptr<Kind> WindowRelated<Y, YHandler>::adopt(const std::shared_ptr<Adapter> &adapter)
{
    static_assert(std::is_final_v<Kind>, "a kind is told by its exact class");
    auto kind = std::dynamic_pointer_cast<Kind>(adapter);
    if (kind)
        kind->SetWindow(this);
    return kind;
}

template <typename Y, typename YHandler>
void WindowRelated<Y, YHandler>::registerAdapter(std::weak_ptr<Adapter> weakAdapter)
{
    const std::shared_ptr<Adapter> adapter = weakAdapter.lock();
    if (!adapter)
        return;
    this->noteAdapter(adapter->identity());
    if (const auto xRange = adopt<XRange>(adapter)) {
        m_xRangeAdapter = xRange;
        Q_EMIT signalAdapterCreated(xRange.get());
    } else if (const auto scanLine = adopt<ScanLine>(adapter)) {
        m_scanLineAdapter = scanLine;
    } else if (const auto waterfall = adopt<Waterfall>(adapter)) {
        QObject::connect(this, &WindowRelatedQObject::signalStartStopRecalculated, waterfall.get(),
                         &ScanBufferAdapterBase_Waterfall::slotStartStopRecalculated);
        m_waterfallAdapter = waterfall;
        Q_EMIT signalAdapterCreated(waterfall.get());
    } else if (const auto yRange = adopt<YRange>(adapter)) {
        QObject::connect(this, &WindowRelatedQObject::signalStartStopRecalculated, yRange.get(),
                         &ScanBufferAdapterBase_YRange::slotStartStopRecalculated);
    } else if (const auto statistics = adopt<Statistics>(adapter)) {
        new ScansPerSecondRouter(*this, *statistics, statistics.get()); // goes with its parent
        m_statisticsAdapter = statistics;
    } else {
        registerTimedAdapter(std::dynamic_pointer_cast<IDataSourceAdapter>(adapter));
    }
}

/// Those that only run on a timer need nothing of the window but their tick.
template <typename Y, typename YHandler>
void WindowRelated<Y, YHandler>::registerTimedAdapter(
    const std::shared_ptr<IDataSourceAdapter> &adapter)
{
    if (adapter && adapter->GetType() == AdapterType_Compression)
        m_compressionAdapter = adapter;
    else if (adapter && adapter->GetType() == AdapterType_XMarker)
        m_xMarkerAdapters.push_back(adapter);
}

template <typename Y, typename YHandler>
void WindowRelated<Y, YHandler>::SetWindowVisible(bool visible)
{
    if (m_visible == visible)
        return;
    m_visible = visible;
    if (!visible)
        m_resetPending = true;
    Q_EMIT signalVisibilityChanged(visible);
    raiseSettingsVersion();
}

template <typename Y, typename YHandler>
void WindowRelated<Y, YHandler>::SetWindowMinimized(bool minimized)
{
    if (m_minimized == minimized)
        return;
    m_minimized = minimized;
    if (minimized)
        m_resetPending = true;
}

template <typename Y, typename YHandler>
void WindowRelated<Y, YHandler>::SetXRange(const AxisData &range)
{
    if (!m_xRangeChanged && range == m_xAxis.GetAxisDefinitionSet(true))
        return;
    axisDefinition wanted;
    if (!wanted.ApplyAxisDefinitionSet(range)) {
        SPECTREE_TRACE_LIMITED(
            TraceWarnings,
            QStringLiteral("Window %1 keeps its x-axis: %2 to %3 over %4 pixels is none")
                .arg(WinGUID())
                .arg(range.min)
                .arg(range.max)
                .arg(range.pixelCount));
        return;
    }
    m_pendingXRange = range;
    m_xRangeChanged = true;
    m_pendingReinitialization = 6;
    m_needsInitialization = true;
    readNewData();
}

template <typename Y, typename YHandler>
void WindowRelated<Y, YHandler>::InitBuffer()
{
    if (m_definition.empty())
        return;
    applyPendingXRange();
    cutToFrequencyResolution();
    m_mapper = channelToPixel::ChannelIndexToPixelRangeMapper(m_definition, m_xAxis);
    m_segmentsDone = m_segmentLineId = m_finishedLineId = 0;
    const auto pixels = static_cast<std::size_t>(pixelCount());
    m_ring.init(pixels);
    m_levels.init(pixels);
    raiseSettingsVersion();
}

template <typename Y, typename YHandler>
void WindowRelated<Y, YHandler>::applyPendingXRange()
{
    if (!m_xRangeChanged || !m_pendingXRange)
        return;
    m_xAxis.ApplyAxisDefinitionSet(*m_pendingXRange);
    m_requestedPixels = static_cast<short>(pixelCount());
    m_xRangeChanged = false;
    m_pendingReinitialization = 6;
}

template <typename Y, typename YHandler>
void WindowRelated<Y, YHandler>::cutToFrequencyResolution()
{
    const short resolution = details() ? details()->GetFrequencyResolution() : short(0);
    if (resolution == 0)
        return;
    const int wanted = std::min(resolution, m_requestedPixels);
    if (wanted == pixelCount())
        return;
    m_xAxis.SetPixelCnt(wanted);
    m_pendingReinitialization = 7;
}

template <typename Y, typename YHandler>
int WindowRelated<Y, YHandler>::GetProcessSpeed() const
{
    int speed = details() ? details()->GetProcessSpeed() : 20;
    const unsigned int channels = m_definition.GetChannelCount();
    if (channels > 500'000)
        speed = 500;
    else if (channels > 250'000)
        speed = std::max(speed, 200);
    if (speed != 0)
        return std::max(speed, 20);
    const auto statistics = m_statisticsAdapter.lock();
    if (!statistics)
        return 20;
    const double milliseconds =
        1000.0 / statistics->GetScansPerSecond() * GetWaterfallScansPerLine();
    if (!(milliseconds < 501.0))
        return 500;
    return milliseconds < 1.0 ? 100 : std::max(static_cast<int>(milliseconds), 20);
}

template <typename Y, typename YHandler>
void WindowRelated<Y, YHandler>::NewData()
{
    if (m_visible)
        readNewData();
}

template <typename Y, typename YHandler>
void WindowRelated<Y, YHandler>::NewChannelRangeDefinition()
{
    m_needsInitialization = true;
    readNewData();
}

template <typename Y, typename YHandler>
void WindowRelated<Y, YHandler>::NewKFactor()
{
    m_kFactorChanged = true;
    m_needsInitialization = true;
    readNewData();
}

template <typename Y, typename YHandler>
void WindowRelated<Y, YHandler>::SetTimeLine(KRTimeStamp time)
{
    m_timeLine = time;
    processXRuler();
}

} // namespace sbs
