#include "scanbuffer/datasourceadapter.h"

#include "platform/base/bytes.h"
#include "platform/base/errorhandler.h"
#include "platform/base/krexception.h"
#include "platform/base/tracelimit.h"
#include "scanbuffer/mdatatypes.h"
#include "scanbuffer/window/windowrelatedqobject.h"

namespace {

/// A container unpacks itself when it is read, to many thousand times its bytes, and no display has
/// a use for one.
void refuseContainer(const QByteArray &command)
{
    const char *position = command.constData();
    const Kelm::ReadScope scope(position, std::size_t(command.size()));
    if (Kelm::bytesLeft(position) >= sizeof(std::uint32_t) &&
        Kelm::readLittleEndian<std::uint32_t>(&position) == MDT_Container)
        throw KRException(QStringLiteral("a container is no command"), __FILE__,
                          "DataSourceAdapter", "slotCommand", __LINE__);
}

} // namespace

DataSourceAdapter::DataSourceAdapter(Adapter_Type type, sbs::WindowRelatedQObject *window,
                                     const QByteArray &identity)
    : sbs::Adapter(identity), m_type(type), m_window(window)
{
}

void DataSourceAdapter::slotCommand(QByteArray command)
{
    try {
        refuseContainer(command);
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
