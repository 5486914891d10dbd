#pragma once

#include "platform/base/kelmos.h"
#include "scanbuffer/messages/mdatacontainer.h"
#include "scanbuffer/scanbuffer_connector_waterfall.h"
#include "scanbuffer/waterfall/waterfallrows_impl.h"
#include "scanbuffer/window/windowadapter_impl.h"

namespace sbs {

template <typename Y, typename YHandler>
ScanBufferAdapter_Waterfall<Y, YHandler>::ScanBufferAdapter_Waterfall(
    WindowRelated<Y, YHandler> *window, const QByteArray &identity)
    : WindowAdapter<Y, YHandler>(AdapterType_Waterfall, window, identity)
{
}

template <typename Y, typename YHandler>
void ScanBufferAdapter_Waterfall<Y, YHandler>::process(const std::vector<int> &lines,
                                                       const std::vector<KRTimeStamp> &times,
                                                       int pixels, int lineCount, bool relative,
                                                       bool useForCurve, int packetId)
{
    const typename WaterfallRows<Y, YHandler>::Pass pass{lines,    times,       pixels,  lineCount,
                                                         relative, useForCurve, packetId};
    WindowRelated<Y, YHandler> *const window = this->window();
    if (m_rows.hasRunBack(pass) || window == nullptr || !m_visible || lineCount <= 0)
        return;
    m_rows.compose(*window, pass);
    const QByteArray message = m_rows.message();
    window->AddTraffic(message.size());
    this->sendMassdata(message);
}

template <typename Y, typename YHandler>
void ScanBufferAdapter_Waterfall<Y, YHandler>::SetParameter(const MData &parameter)
{
    switch (parameter.GetType()) {
    case MDT_WindowVisible:
        takeFlag(parameter, m_visible);
        break;
    case MDT_MeasureMode:
        if (const bool *measure = valueOf<bool>(parameter); measure != nullptr && this->window())
            this->window()->SetMeasureMode(*measure);
        break;
    case MDT_TimeLine:
        if (const auto *time = valueOf<KRTimeStamp>(parameter); time != nullptr && this->window())
            this->window()->SetTimeLine(*time);
        break;
    case MDT_Dimension:
        if (short dimension = GetDimension(); takeDimension<YHandler>(parameter, dimension))
            m_rows.SetDimension(dimension);
        break;
    default:
        break;
    }
}

template <typename Y, typename YHandler>
void ScanBufferAdapter_Waterfall<Y, YHandler>::slotRequestFullStateUpdate()
{
    const WindowRelated<Y, YHandler> *const window = this->window();
    if (window == nullptr)
        return;
    const auto [start, stop] = window->GetYRange(GetDimension());
    MDataContainer state;
    state.addMData(MYData<AxisData>(window->GetXAxis().GetAxisDefinitionSet(true), MDT_XAxis));
    state.addMData(MXYZData<double, double, short>(start, stop, GetDimension(), MDT_YRange));
    this->sendFullStateUpdate(state);
}

template <typename Y, typename YHandler>
void ScanBufferAdapter_Waterfall<Y, YHandler>::StartStopRecalculated(double start, double stop,
                                                                     short dimension)
{
    this->sendIncrementalStateUpdate(
        MXYZData<double, double, short>(start, stop, dimension, MDT_YRange));
}

template <typename Y, typename YHandler>
void ScanBufferAdapter_Waterfall<Y, YHandler>::sendXAxisDefinitionSet()
{
    if (const WindowRelated<Y, YHandler> *const window = this->window())
        this->sendIncrementalStateUpdate(
            MYData<AxisData>(window->GetXAxis().GetAxisDefinitionSet(true), MDT_XAxis));
}

template <typename Y, typename YHandler>
bool ScanBufferAdapter_Waterfall<Y, YHandler>::connectionLost()
{
    constexpr std::uint64_t kSilence = 20000000;
    if (m_watchdogTick == 0)
        return false;
    const std::uint64_t now = KelmOS::Get().GetTickCount();
    if (now < m_watchdogTick) {
        m_watchdogTick = now;
        return false;
    }
    if (now - m_watchdogTick <= kSilence)
        return false;
    m_watchdogTick = 0;
    return true;
}

} // namespace sbs
