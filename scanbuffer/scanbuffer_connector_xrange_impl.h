#pragma once

#include "scanbuffer/messages/mdatachannelrange.h"
#include "scanbuffer/messages/mdatacontainer.h"
#include "scanbuffer/scanbuffer_connector_xrange.h"
#include "scanbuffer/window/windowadapter_impl.h"

namespace sbs {

template <typename Y, typename YHandler>
ScanBufferAdapter_XRange<Y, YHandler>::ScanBufferAdapter_XRange(WindowRelated<Y, YHandler> *window,
                                                                const QByteArray &identity)
    : WindowAdapter<Y, YHandler>(AdapterType_XAxis, window, identity)
{
}

template <typename Y, typename YHandler>
void ScanBufferAdapter_XRange<Y, YHandler>::SetParameter(const MData &parameter)
{
    WindowRelated<Y, YHandler> *const window = this->window();
    if (window == nullptr)
        return;
    const bool *const flag = valueOf<bool>(parameter);
    switch (parameter.GetType()) {
    case MDT_XAxis:
        if (const AxisData *axis = valueOf<AxisData>(parameter))
            window->SetXRange(*axis);
        break;
    case MDT_WindowVisible:
        if (flag != nullptr)
            window->SetWindowVisible(*flag);
        break;
    case MDT_WindowMinimized:
        if (flag != nullptr)
            window->SetWindowMinimized(*flag);
        break;
    case MDT_UseAxisCalculatorForWidget:
        if (flag != nullptr)
            window->SetUseAxisCalculatorForWidget(*flag);
        break;
    case MDT_Echo:
        if (const short *number = valueOf<short>(parameter))
            this->sendMassdataStateIndependent(MYData<short>(*number, MDT_Echo));
        break;
    case MDT_ChannelRangeAcknowledged:
        if (const int *id = valueOf<int>(parameter))
            m_acknowledgedId = *id;
        break;
    default:
        break;
    }
}

template <typename Y, typename YHandler>
void ScanBufferAdapter_XRange<Y, YHandler>::slotRequestFullStateUpdate()
{
    const WindowRelated<Y, YHandler> *const window = this->window();
    if (window == nullptr)
        return;
    MDataContainer state;
    state.addMData(MYData<AxisData>(window->GetXAxis().GetAxisDefinitionSet(true), MDT_XAxis));
    state.addMData(MDataChannelRangeDefinition(window->GetChannelRangeDefinition(), ++m_sentId));
    this->sendFullStateUpdate(state);
}

template <typename Y, typename YHandler>
void ScanBufferAdapter_XRange<Y, YHandler>::SendChannelRangeDefinition()
{
    if (const WindowRelated<Y, YHandler> *const window = this->window())
        this->sendIncrementalStateUpdate(
            MDataChannelRangeDefinition(window->GetChannelRangeDefinition(), ++m_sentId));
}

} // namespace sbs
