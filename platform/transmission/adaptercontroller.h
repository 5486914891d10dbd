#pragma once

#include "platform/base/export.h"

#include <QByteArray>
#include <QObject>

#include <cstdint>
#include <map>
#include <memory>

namespace sbs {

class Adapter;
class ControllerGate;

/// Owns the adapters of one display window and drives them.
///
/// Threads:   lives on a worker thread that its data source made; the server hands it work through
///            that thread's event loop. May be destroyed at any time on its own thread, or, once
///            that thread has ended, on another.
/// Ownership: belongs to its data source. Adapters go with their consumer, or with the controller;
///            a subclass whose adapters refer to it calls dropAdapters() first in its destructor.
class SPECTREE_EXPORT IAdapterController : public QObject {
    Q_OBJECT

public:
    explicit IAdapterController(QObject *parent = nullptr);
    ~IAdapterController() override;

    /// A new adapter is there. It is attached already, so it may send.
    virtual void registerAdapter(std::weak_ptr<sbs::Adapter> adapter) = 0;
    /// The consumer of the adapter with this identity has gone; the adapter is destroyed when this
    /// returns.
    virtual void unregisterAdapter(const QByteArray &identity);

Q_SIGNALS:
    /// Mass data were dropped for slow consumers: \a count messages since the last signal. Emitted
    /// on the controller's thread, at most once a pass of its event loop.
    void signalLostMessages(std::uint64_t count);

protected:
    /// Destroys all adapters, on the calling thread, without unregisterAdapter.
    void dropAdapters();

private:
    friend class ControllerGate;
    std::shared_ptr<ControllerGate> m_gate;
    std::map<QByteArray, std::shared_ptr<Adapter>> m_adapters; // by identity
};

} // namespace sbs
