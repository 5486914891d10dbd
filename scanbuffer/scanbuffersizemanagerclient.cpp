#include "scanbuffer/scanbuffersizemanagerclient.h"

#include "scanbuffer/scanbuffersizemanager.h"

namespace sbs {

// Automatic connections: direct on the manager's own thread, else queued, which Qt drops safely
// when the receiver goes.
ScanBufferSizeManagerClient::ScanBufferSizeManagerClient(ScanBufferSizeManager *manager)
    : m_uuid(QUuid::createUuid())
{
    if (!manager)
        return;
    using Self = ScanBufferSizeManagerClient;
    using Manager = ScanBufferSizeManager;
    connect(this, &Self::signalLastAccessedID, manager, &Manager::slotLastAccessedID);
    connect(this, &Self::signalResetHistory, manager, &Manager::slotResetHistory);
    connect(this, &Self::signalNotReadingBufferData, manager, &Manager::slotRemoveAdapter);
    connect(manager, &Manager::signalBufferLimitReached, this, &Self::slot_reduceReadingSpeed);
}

ScanBufferSizeManagerClient::~ScanBufferSizeManagerClient() { signal_NotReadingBufferData(); }

void ScanBufferSizeManagerClient::signal_LastAccessedID(std::uint64_t id, bool reset)
{
    if (reset)
        Q_EMIT signalResetHistory(m_uuid);
    Q_EMIT signalLastAccessedID(m_uuid, id);
}

void ScanBufferSizeManagerClient::signal_NotReadingBufferData()
{
    Q_EMIT signalNotReadingBufferData(m_uuid);
}

void ScanBufferSizeManagerClient::slot_reduceReadingSpeed() { reduceReadingSpeed(); }

} // namespace sbs
