#pragma once

#include "platform/base/export.h"
#include "platform/transmission/adaptercontroller.h"

#include <QUuid>

#include <cstdint>

namespace sbs {

class ScanBufferSizeManager;

/// A reader of a scan buffer that tells the buffer's size manager how far it has come, so that the
/// ring stays as long as the reader needs it.
///
/// Threads: any; the manager's slots run on the manager's thread, and slot_reduceReadingSpeed() on
/// this object's. Either of the two may be destroyed first, and while signals are under way: those
/// are dropped. A client that is destroyed no longer holds the ring open.
class SPECTREE_EXPORT ScanBufferSizeManagerClient : public IAdapterController {
    Q_OBJECT

public:
    /// \a manager must live during the construction; null for a reader that nobody waits for.
    explicit ScanBufferSizeManagerClient(ScanBufferSizeManager *manager);
    ~ScanBufferSizeManagerClient() override;

    /// Tells that this reader has come to line \a id; with \a reset, what it did before in this
    /// tick of the manager is not to count.
    void signal_LastAccessedID(std::uint64_t id, bool reset);
    /// Tells that this reader has stopped. The next signal_LastAccessedID() makes it known again.
    void signal_NotReadingBufferData();

public Q_SLOTS:
    void slot_reduceReadingSpeed();

Q_SIGNALS:
    void signalLastAccessedID(QUuid client, std::uint64_t id);
    void signalResetHistory(QUuid client);
    void signalNotReadingBufferData(QUuid client);

protected:
    /// The ring can't grow as far as the readers lag behind: read more often, or read less.
    virtual void reduceReadingSpeed() {}

private:
    const QUuid m_uuid;
};

} // namespace sbs
