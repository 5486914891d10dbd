#pragma once

#include "platform/base/export.h"
#include "platform/base/instancecounter.h"

#include <QByteArray>

#include <memory>

namespace sbs {

/// How a message travels to the consumer.
enum class SendMode {
    fullState,               ///< the whole state; ordered, never dropped
    incrementalState,        ///< a change of the state; ordered, never dropped
    massdata,                ///< belongs to the current state; the oldest go when the consumer lags
    massdataStateIndependent ///< as massdata, but stays valid when the state changes
};

/// The way from an adapter to its consumer. The server gives one to each adapter; a test can give
/// its own and see what an adapter sends.
class SPECTREE_EXPORT AdapterLink {
public:
    virtual ~AdapterLink();
    /// Takes a message. Returns at once: a slow consumer never holds an adapter up. A message for
    /// a consumer that has gone is dropped silently.
    virtual void send(SendMode mode, const QByteArray &message) = 0;
};

/// One view of a data source, made for one consumer.
///
/// Threads:   made, called and destroyed on the thread of its controller. The send operations may
///            be called on any thread, one at a time.
/// Ownership: the controller keeps it until its consumer goes.
/// Order:     made, attached to its link, registered at its controller, InitializeClient(),
///            slotRequestFullStateUpdate(); then commands and further requests, in any order.
class SPECTREE_EXPORT Adapter : private Kelm::Counted<Adapter> {
public:
    static constexpr const char *kInstanceName = "sbs::Adapter";

    /// \a identity tells the consumer; it stays the same when that consumer comes back.
    explicit Adapter(const QByteArray &identity);
    virtual ~Adapter();
    Adapter(const Adapter &) = delete;
    Adapter &operator=(const Adapter &) = delete;

    /// A message of the consumer, as it was sent.
    virtual void slotCommand(QByteArray command);
    /// The consumer needs the whole state: answer with sendFullStateUpdate.
    virtual void slotRequestFullStateUpdate();
    /// Called once, when the consumer has been told that its adapter is ready.
    virtual void InitializeClient();

    const QByteArray &identity() const { return m_identity; }
    /// Sets where messages go; without a link they are dropped.
    void attach(std::shared_ptr<AdapterLink> link) { m_link = std::move(link); }

    void sendFullStateUpdate(const QByteArray &message);
    void sendIncrementalStateUpdate(const QByteArray &message);
    void sendMassdata(const QByteArray &message);
    void sendMassdataStateIndependent(const QByteArray &message);

private:
    void send(SendMode mode, const QByteArray &message);

    QByteArray m_identity;
    std::shared_ptr<AdapterLink> m_link;
};

} // namespace sbs
