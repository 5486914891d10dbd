#pragma once

#include "platform/base/export.h"

#include <QByteArray>
#include <QObject>
#include <QString>

#include <cstdint>
#include <memory>

namespace zmq {
class context_t;
}

namespace sbs {

class ConsumerGroup;
class ConsumerConnectorPrivate;

/// One consumer's line to its adapter.
///
/// Threads: belongs to the thread that makes it, which needs an event loop; all signals are emitted
///          there. It reads only when that loop runs, so a busy thread slows the server's mass data
///          down, not its state.
/// Link:    join() connects. A lost server is looked for until it is back; then the adapter is
///          a new one, signalAdapterReady() comes again, and the whole state follows.
/// A slot may delete the connector.
class SPECTREE_EXPORT ConsumerConnector : public QObject {
    Q_OBJECT

public:
    /// A connector to an adapter of the kind \a name at the server at \a address.
    ConsumerConnector(QObject *owner, const QByteArray &name, const QByteArray &address,
                      std::shared_ptr<zmq::context_t> context);
    ~ConsumerConnector() override;

    /// Connects as a member of \a group: with its window, token and keys. Call once, after the
    /// signals are connected. \throws KRException for an address or a key that is none
    void join(const ConsumerGroup &group);

    /// Sends \a command to the adapter's slotCommand. Commands that the link doesn't take yet wait,
    /// at most 256 (the oldest go), and are sent in their order; those from before the adapter was
    /// ready, before signalAdapterReady().
    void sendCommand(const QByteArray &command);
    /// Asks the adapter for its whole state.
    void requestFullState();

    bool isReady() const;
    /// Mass data that the server dropped because this consumer was slow, over all links.
    std::uint64_t lostMessages() const;

Q_SIGNALS:
    void signalMassdata(QByteArray message);
    void signalStateUpdate(QByteArray message);
    /// The adapter is there. Its state comes after this.
    void signalAdapterReady();
    /// The server said no, for example because it has no such kind. No further try is made.
    void signalRefused(QString reason);
    /// The link was up and is lost; the connector looks for the server again.
    void signalLinkLost(QString reason);
    /// A try to connect had no success; the next follows by itself.
    void signalUnreachable(QString reason);
    /// The server dropped \a count more mass data messages for this consumer.
    void signalLostMessages(std::uint64_t count);

private:
    friend class ConsumerConnectorPrivate;
    std::unique_ptr<ConsumerConnectorPrivate> m_d;
};

} // namespace sbs
