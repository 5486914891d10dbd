#pragma once

#include "platform/base/bytes.h"
#include "scanbuffer/messages/mdatabytearray.h"
#include "scanbuffer/scanbuffer_connector_scanline.h"
#include "scanbuffer/window/windowadapter_impl.h"

#include <limits>

namespace sbs {

template <typename Y, typename YHandler>
ScanBufferAdapter_ScanLine<Y, YHandler>::ScanBufferAdapter_ScanLine(
    WindowRelated<Y, YHandler> *window, const QByteArray &identity)
    : WindowAdapter<Y, YHandler>(AdapterType_Curve, window, identity)
{
}

template <typename Y, typename YHandler>
void ScanBufferAdapter_ScanLine<Y, YHandler>::process(const std::vector<int> &lines, int pixels,
                                                      bool relative)
{
    const WindowRelated<Y, YHandler> *const window = this->window();
    if (window == nullptr || !m_visible || lines.empty())
        return;
    const std::vector<Y> &line = window->WaterfallYLine(lines.front());
    const int count = std::min(pixels, int(line.size()));
    if (m_first.visible)
        send(m_first, 0, line, count, relative);
    if (m_second.visible)
        send(m_second, 1, line, count, relative);
}

template <typename Y, typename YHandler>
void ScanBufferAdapter_ScanLine<Y, YHandler>::send(const Curve &curve, short number,
                                                   const std::vector<Y> &line, int pixels,
                                                   bool relative)
{
    const auto &minimum = YHandler::Minimum();
    QByteArray payload(pixels * int(sizeof(double)), Qt::Uninitialized);
    char *destination = payload.data();
    for (int pixel = 0; pixel < pixels; ++pixel) {
        const Y &sample = line[std::size_t(pixel)];
        double value = std::numeric_limits<double>::quiet_NaN();
        if (sample != minimum)
            value = YHandler::GetDimension(curve.dimension, sample);
        if (relative && curve.dimension == 0)
            value -= this->window()->GetRefLine(pixel);
        destination = Kelm::putLittleEndian(destination, value);
    }
    const QByteArray message = MDataByteArray(std::move(payload), number, MDT_CurvePixels);
    this->window()->AddTraffic(message.size());
    this->sendMassdata(message);
}

template <typename Y, typename YHandler>
void ScanBufferAdapter_ScanLine<Y, YHandler>::SetParameter(const MData &parameter)
{
    switch (parameter.GetType()) {
    case MDT_WindowVisible:
        takeFlag(parameter, m_visible);
        break;
    case MDT_Dimension:
        takeDimension<YHandler>(parameter, m_first.dimension);
        break;
    case MDT_SecondDimension:
        takeDimension<YHandler>(parameter, m_second.dimension);
        break;
    case MDT_FirstCurveVisible:
        takeFlag(parameter, m_first.visible);
        break;
    case MDT_SecondCurveVisible:
        takeFlag(parameter, m_second.visible);
        break;
    default:
        break;
    }
}

} // namespace sbs
