#include "platform/transmission/adapter.h"

namespace sbs {

AdapterLink::~AdapterLink() = default;

Adapter::Adapter(const QByteArray &identity) : m_identity(identity) {}
Adapter::~Adapter() = default;

void Adapter::slotCommand(QByteArray) {}
void Adapter::slotRequestFullStateUpdate() {}
void Adapter::InitializeClient() {}

void Adapter::sendFullStateUpdate(const QByteArray &message) { send(SendMode::fullState, message); }

void Adapter::sendIncrementalStateUpdate(const QByteArray &message)
{
    send(SendMode::incrementalState, message);
}

void Adapter::sendMassdata(const QByteArray &message) { send(SendMode::massdata, message); }

void Adapter::sendMassdataStateIndependent(const QByteArray &message)
{
    send(SendMode::massdataStateIndependent, message);
}

void Adapter::send(SendMode mode, const QByteArray &message)
{
    if (m_link)
        m_link->send(mode, message);
}

} // namespace sbs
