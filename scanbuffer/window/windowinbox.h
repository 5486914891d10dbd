#pragma once

#include "platform/base/export.h"
#include "platform/base/sync.h"
#include "platform/base/types.h"

#include <QEvent>

#include <atomic>

namespace sbs {

/// Where the news of a scan buffer wait for a window: one pending note about data, the newest time
/// stamp, and the sum of the scan rates. However fast scans come, a busy window gets one event.
///
/// Threads: the feeding thread brings news, the window's thread takes them. It outlives the window
/// for as long as the feeding thread is in a call: hold it shared.
/// Memory: none is taken for a note once two were under way. Without memory a note is left out.
class SPECTREE_EXPORT WindowInbox {
public:
    /// Notes go to \a window as events of noteType(), until close().
    explicit WindowInbox(QObject *window);
    static QEvent::Type noteType();

    /// Posts a note unless one is on its way. Any thread.
    void postNote() noexcept;
    /// A note has arrived: from now on the next one is posted. To be called before the buffer is
    /// read, so that nothing is missed.
    void takeNote();
    /// From now on nothing is posted. A call that is under way is waited for.
    void close();

    /// 0 before the first one. Any thread.
    void setLatestTime(KRTimeStamp time) { m_latestTime.store(time, std::memory_order_relaxed); }
    KRTimeStamp latestTime() const { return m_latestTime.load(std::memory_order_relaxed); }

    struct ScanRates {
        double sum = 0.0;
        std::uint64_t count = 0;
    };
    void addScanRate(double scansPerSecond);
    /// What was added since the last call.
    ScanRates takeScanRates();

private:
    std::atomic<bool> m_pending{false};
    std::atomic<KRTimeStamp> m_latestTime{0};
    Kelm::Mutex m_mutex;
    QObject *m_window SPECTREE_GUARDED_BY(m_mutex);
    ScanRates m_scanRates SPECTREE_GUARDED_BY(m_mutex);
};

} // namespace sbs
