#include "apps/monitor/displayconsumer.h"

#include "apps/monitor/displaywindow.h"
#include "scanbuffer/mdatatypes.h"

#include <chrono>

namespace monitor {

double monotonicSeconds()
{
    using Clock = std::chrono::steady_clock;
    return std::chrono::duration<double>(Clock::now().time_since_epoch()).count();
}

DisplayConsumer::DisplayConsumer(Adapter_Type type, DisplayWindow &window)
    : DataConsumer(type), m_window(window)
{
}

void DisplayConsumer::handleData(const MData &message)
{
    const auto *container = dynamic_cast<const MDataContainer *>(&message);
    if (container == nullptr)
        return handleMessage(message);
    for (short index = 0; index < container->GetAdditional(); ++index)
        if (const auto part = container->getMData(index))
            handleMessage(*part);
}

void DisplayConsumer::handleAdapterReady()
{
    adapterIsReady();
    if (m_ready)
        m_ready();
}

void XAxisConsumer::handleMessage(const MData &message)
{
    if (const auto *channels = dynamic_cast<const MDataChannelRangeDefinition *>(&message))
        window().channelsTold(channels->asChannelRangeDefinition(), channels->getId());
    else if (const auto *axis = dynamic_cast<const MYData<AxisData> *>(&message))
        window().axisTold(axis->GetValue());
}

void XAxisConsumer::adapterIsReady() { window().axisAdapterReady(); }

void WaterfallConsumer::handleMessage(const MData &message)
{
    if (const auto *rows = dynamic_cast<const MDataWaterfall *>(&message)) {
        window().rowsArrived(*rows);
    } else if (const auto *axis = dynamic_cast<const MYData<AxisData> *>(&message)) {
        window().waterfallAxisTold(axis->GetValue());
    } else if (const auto *range =
                   dynamic_cast<const MXYZData<double, double, short> *>(&message)) {
        if (range->GetType() == MDT_YRange && range->ZValue() == 0)
            window().waterfallLevelsTold({range->GetValue(), range->YValue()}, monotonicSeconds());
    }
}

void WaterfallConsumer::adapterIsReady() { window().waterfallAdapterReady(); }

void CurveConsumer::handleMessage(const MData &message)
{
    const auto *curve = dynamic_cast<const MDataByteArray *>(&message);
    if (curve != nullptr && curve->GetType() == MDT_CurvePixels && curve->GetAdditional() == 0)
        window().curveArrived(curve->GetValue());
}

void StatisticsConsumer::handleMessage(const MData &message)
{
    const auto *rate = dynamic_cast<const MYData<double> *>(&message);
    if (rate != nullptr && rate->GetType() == MDT_ScansPerSecond)
        window().scansPerSecondTold(rate->GetValue());
}

} // namespace monitor
