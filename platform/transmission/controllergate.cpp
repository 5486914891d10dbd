#include "platform/base/errorhandler.h"
#include "platform/transmission/adapter.h"
#include "platform/transmission/controllergate_p.h"

#include <exception>

namespace sbs {
namespace {

void runGuarded(const ControllerGate::Work &work, IAdapterController &controller)
{
    try {
        work(controller);
    } catch (const std::exception &error) {
        static Kelm::TraceLimit limit; // commands come from outside
        if (const auto times = limit.due())
            SPECTREE_TRACE(TraceWarnings,
                           QStringLiteral("Adapters failed %1 times, the last one: %2")
                               .arg(times)
                               .arg(QString::fromUtf8(error.what())));
    }
}

} // namespace

bool ControllerGate::isOpen() const
{
    const Kelm::MutexLocker lock(m_mutex);
    return m_controller != nullptr;
}

bool ControllerGate::post(Work work, std::size_t bytes)
{
    const Kelm::MutexLocker lock(m_mutex);
    if (!m_controller)
        return false;
    IAdapterController *const controller = m_controller;
    m_pendingWorks.fetch_add(1);
    m_pendingBytes.fetch_add(bytes);
    Kelm::post(controller, [gate = shared_from_this(), controller, bytes, task = std::move(work)] {
        gate->m_pendingWorks.fetch_sub(1);
        gate->m_pendingBytes.fetch_sub(bytes);
        runGuarded(task, *controller);
    });
    return true;
}

void ControllerGate::countLost(std::uint64_t count)
{
    m_lost.fetch_add(count);
    if (m_reportPending.exchange(true))
        return;
    post([gate = shared_from_this()](IAdapterController &controller) {
        gate->m_reportPending.store(false);
        Q_EMIT controller.signalLostMessages(gate->m_lost.exchange(0));
    });
}

void ControllerGate::close()
{
    const Kelm::MutexLocker lock(m_mutex);
    m_controller = nullptr;
}

void ControllerGate::hold(IAdapterController &controller, std::shared_ptr<Adapter> adapter)
{
    const QByteArray identity = adapter->identity();
    controller.m_adapters[identity] = std::move(adapter);
}

std::shared_ptr<Adapter> ControllerGate::find(IAdapterController &controller,
                                              const QByteArray &identity)
{
    const auto found = controller.m_adapters.find(identity);
    return found == controller.m_adapters.end() ? nullptr : found->second;
}

void ControllerGate::release(IAdapterController &controller, const QByteArray &identity)
{
    const auto found = controller.m_adapters.find(identity);
    if (found == controller.m_adapters.end())
        return;
    const std::shared_ptr<Adapter> adapter = std::move(found->second);
    controller.m_adapters.erase(found);
    controller.unregisterAdapter(identity);
}

} // namespace sbs
