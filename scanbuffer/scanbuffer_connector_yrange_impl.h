#pragma once

#include "platform/base/tracelimit.h"
#include "scanbuffer/scanbuffer_connector_yrange.h"
#include "scanbuffer/window/windowadapter_impl.h"

#include <cmath>

namespace sbs {

template <typename Y, typename YHandler>
ScanBufferAdapter_YRange<Y, YHandler>::ScanBufferAdapter_YRange(WindowRelated<Y, YHandler> *window,
                                                                const QByteArray &identity)
    : WindowAdapter<Y, YHandler>(AdapterType_YRange, window, identity)
{
}

template <typename Y, typename YHandler>
void ScanBufferAdapter_YRange<Y, YHandler>::SetParameter(const MData &parameter)
{
    switch (parameter.GetType()) {
    case MDT_Dimension:
        takeDimension<YHandler>(parameter, m_dimension);
        break;
    case MDT_YRange:
        setYRange(parameter);
        break;
    case MDT_RecalculateYRange:
        if (this->window() != nullptr)
            this->window()->OptimizeMinMax(m_dimension);
        break;
    default:
        break;
    }
}

template <typename Y, typename YHandler>
void ScanBufferAdapter_YRange<Y, YHandler>::setYRange(const MData &parameter)
{
    const auto *range = dynamic_cast<const MXYZData<double, double, short> *>(&parameter);
    if (range == nullptr || this->window() == nullptr)
        return;
    if (std::isfinite(range->GetValue()) && std::isfinite(range->YValue()))
        this->window()->SetYRange(range->GetValue(), range->YValue(), range->ZValue());
    else
        SPECTREE_TRACE_LIMITED(TraceWarnings,
                               QStringLiteral("A y range that isn't finite was dropped"));
}

template <typename Y, typename YHandler>
void ScanBufferAdapter_YRange<Y, YHandler>::StartStopRecalculated(double start, double stop,
                                                                  short dimension)
{
    if (dimension == m_dimension)
        this->sendMassdataStateIndependent(
            MXYZData<double, double, short>(start, stop, dimension, MDT_YRange));
}

} // namespace sbs
