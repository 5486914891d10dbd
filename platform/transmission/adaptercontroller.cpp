#include "platform/transmission/adaptercontroller.h"

#include "platform/transmission/adapter.h"
#include "platform/transmission/controllergate_p.h"

namespace sbs {

IAdapterController::IAdapterController(QObject *parent)
    : QObject(parent), m_gate(std::make_shared<ControllerGate>(*this))
{
}

IAdapterController::~IAdapterController()
{
    m_gate->close();
    dropAdapters();
}

void IAdapterController::unregisterAdapter(const QByteArray &) {}

void IAdapterController::dropAdapters()
{
    // An adapter may ask its controller something while it goes, so the map is empty by then.
    const auto going = std::move(m_adapters);
    m_adapters.clear();
}

} // namespace sbs
