#include "scanbuffer/datasourceadapter.h"

#include "platform/base/errorhandler.h"
#include "platform/base/tracelimit.h"
#include "scanbuffer/mdatatypes.h"
#include "scanbuffer/window/windowrelatedqobject.h"

DataSourceAdapter::DataSourceAdapter(Adapter_Type type, sbs::WindowRelatedQObject *window,
                                     const QByteArray &identity)
    : sbs::Adapter(identity), m_type(type), m_window(window)
{
}

void DataSourceAdapter::slotCommand(QByteArray command)
{
    try {
        if (const auto message = MData::FromBinary(command.constData(), command.size()))
            SetParameter(*message);
    } catch (const std::exception &error) {
        SPECTREE_TRACE_LIMITED(TraceWarnings,
                               QStringLiteral("An adapter dropped a command of %1 bytes: %2")
                                   .arg(command.size())
                                   .arg(QString::fromUtf8(error.what())));
    }
}

void DataSourceAdapter::sendAxisAsFullState()
{
    if (m_window != nullptr)
        sendFullStateUpdate(
            MYData<AxisData>(m_window->GetXAxis().GetAxisDefinitionSet(true), MDT_XAxis));
}
