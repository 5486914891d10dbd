#pragma once

#include "platform/base/sync.h"
#include "platform/base/tracelimit.h"
#include "platform/transmission/adaptercontroller.h"

#include <atomic>
#include <functional>
#include <memory>

namespace sbs {

/// The server's hold on a controller that its data source may destroy at any time.
///
/// Any thread posts; nothing reaches a controller that has gone.
class ControllerGate : public std::enable_shared_from_this<ControllerGate> {
public:
    using Work = std::function<void(IAdapterController &)>;

    explicit ControllerGate(IAdapterController &controller) : m_controller(&controller) {}
    static std::shared_ptr<ControllerGate> of(const IAdapterController &controller)
    {
        return controller.m_gate;
    }

    bool isOpen() const;
    /// Runs \a work on the controller's thread, in the order of the posts; what it throws is
    /// traced, once a second at most. \a bytes is what it carries. False when the controller has
    /// gone.
    bool post(Work work, std::size_t bytes = 0);
    /// What was posted and has not run yet.
    std::size_t pendingWorks() const { return m_pendingWorks.load(); }
    std::size_t pendingBytes() const { return m_pendingBytes.load(); }
    /// Adds to what the controller's next signalLostMessages tells.
    void countLost(std::uint64_t count);
    /// The controller goes.
    void close();

    // On the controller's thread:
    static void hold(IAdapterController &controller, std::shared_ptr<Adapter> adapter);
    static std::shared_ptr<Adapter> find(IAdapterController &controller,
                                         const QByteArray &identity);
    /// Unregisters and destroys the adapter, if it is there.
    static void release(IAdapterController &controller, const QByteArray &identity);

private:
    mutable Kelm::Mutex m_mutex;
    IAdapterController *m_controller SPECTREE_GUARDED_BY(m_mutex);
    std::atomic<std::size_t> m_pendingWorks{0}, m_pendingBytes{0};
    std::atomic<std::uint64_t> m_lost{0};
    std::atomic<bool> m_reportPending{false};
};

} // namespace sbs
