#pragma once

#include "scanbuffer/scanbuffer_connector_statistics.h"
#include "scanbuffer/window/windowadapter_impl.h"

namespace sbs {

template <typename Y, typename YHandler>
ScanBufferAdapter_Statistics<Y, YHandler>::ScanBufferAdapter_Statistics(
    WindowRelated<Y, YHandler> *window, const QByteArray &identity)
    : WindowAdapter<Y, YHandler>(AdapterType_Statistics, window, identity)
{
}

template <typename Y, typename YHandler>
void ScanBufferAdapter_Statistics<Y, YHandler>::process()
{
    WindowRelated<Y, YHandler> *const window = this->window();
    if (window == nullptr)
        return;
    const auto scansPerLine = std::uint16_t(window->GetWaterfallScansPerLine());
    this->sendMassdataStateIndependent(
        MYData<double>(this->GetScansPerSecond(), MDT_ScansPerSecond));
    this->sendMassdataStateIndependent(
        MYData<unsigned short>(scansPerLine, MDT_WaterfallScansPerLine));
    this->sendMassdataStateIndependent(MYData<double>(window->GetAndResetTraffic(), MDT_Traffic));
}

} // namespace sbs
