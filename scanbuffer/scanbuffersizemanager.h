#pragma once

#include "platform/base/export.h"
#include "platform/base/instancecounter.h"
#include "platform/base/sync.h"
#include "scanbuffer/buffersizemanagementinterface.h"

#include <QObject>
#include <QTimer>
#include <QUuid>

#include <atomic>
#include <cstdint>
#include <map>

namespace sbs {

/// Keeps as many lines in a scan buffer as its slowest active reader lags behind, with a margin.
///
/// It watches how far each reader moves between two of its ticks, every 500 ms, and grows or
/// shrinks the ring. Ticks without an end of scan count for nothing.
///
/// Threads: it lives on the application thread, since its timer needs an event loop and the thread
/// that feeds a buffer may have none; before there is an application object it lives where it was
/// made. Ticks come there; every other operation may be called from any thread. The ring is changed
/// from the tick, under the buffer's own lock and with none of the manager's that a reader takes.
/// Ownership: the scan buffer makes it, and ends it with dispose().
class SPECTREE_EXPORT ScanBufferSizeManager : public QObject,
                                              private Kelm::Counted<ScanBufferSizeManager> {
    Q_OBJECT

public:
    static constexpr const char *kInstanceName = "sbs::ScanBufferSizeManager";

    /// \a buffer must live until dispose().
    explicit ScanBufferSizeManager(BufferSizeManagementInterface &buffer);
    ~ScanBufferSizeManager() override;

    /// Lets go of the buffer, waiting for a tick that uses it, and deletes the manager: at once on
    /// its own thread, from that thread's event loop otherwise.
    void dispose();

    /// Starts or stops the ticks.
    void setActive(bool active);
    bool isActive() const { return m_active.load(std::memory_order_relaxed); }

    /// A scan ended; costs the feeding thread one store.
    void endOfScanReceived() { m_endOfScanSeen.store(true, std::memory_order_relaxed); }
    /// What the readers did so far no longer counts: the channels have changed.
    void resetFirstAccess();

public Q_SLOTS:
    /// Reader \a client has come to line \a id.
    void slotLastAccessedID(QUuid client, std::uint64_t id);
    /// What \a client did in this tick is not to count: it had paused, for example.
    void slotResetHistory(QUuid client);
    /// \a client no longer holds the ring open.
    void slotRemoveAdapter(QUuid client);
    void slotTimerEvent();

Q_SIGNALS:
    /// The buffer could not give the lines asked for: readers should slow down. Goes out on the
    /// manager's thread, with no lock held.
    void signalBufferLimitReached();

private:
    struct Client {
        std::uint64_t lastId = 0;
        std::uint64_t lastTouch = 0, firstAccess = 0; // values of m_timeCounter
        std::uint64_t step = 0;                       // largest advance in one tick
    };

    void applyActive();
    std::uint64_t linesNeeded() const;
    std::int64_t calcDelta(std::uint64_t needed) const SPECTREE_REQUIRES(m_bufferMutex);
    bool adaptEntriesToSize();

    QTimer m_timer;
    std::atomic<bool> m_active{false};
    std::atomic<bool> m_endOfScanSeen{false};

    mutable Kelm::Mutex m_clientMutex;
    std::map<QUuid, Client> m_clients SPECTREE_GUARDED_BY(m_clientMutex);
    std::uint64_t m_timeCounter SPECTREE_GUARDED_BY(m_clientMutex) = 0; // ticks with a scan

    Kelm::Mutex m_bufferMutex; // held while the buffer is used, so that dispose() can wait for it
    BufferSizeManagementInterface *m_buffer SPECTREE_GUARDED_BY(m_bufferMutex);
    std::uint32_t m_currentLines SPECTREE_GUARDED_BY(m_bufferMutex) = 0; // the lines last asked for
    std::uint32_t m_margin SPECTREE_GUARDED_BY(m_bufferMutex) = 0;       // slack before a shrink
};

} // namespace sbs
