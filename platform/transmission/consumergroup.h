#pragma once

#include "platform/base/export.h"
#include "platform/transmission/curvekeys.h"

#include <QByteArray>
#include <QString>

#include <cstdint>
#include <memory>

namespace zmq {
class context_t;
}

namespace sbs {

/// How the connectors of a group meet their server.
struct SPECTREE_EXPORT ConsumerOptions {
    QByteArray serverKey;       ///< the server's public key as Z85; empty: no encryption
    CurveKeys keys;             ///< the client's own pair; needed with a server key
    std::uint32_t credits = 64; ///< mass data messages that may be under way, 1 to 1 024
    int retryMs = 500;          ///< first wait for an answer; doubled up to ten times this
    int silentMs = 5000;        ///< a server unheard for this long is lost

    /// From the configuration: "ScanBufferServerPublicKey" and "ScanBufferClientSecretKey", Z85 or
    /// hexadecimal. \throws KRException for a key that is none, and for one without the other
    static ConsumerOptions fromConfiguration();
};

/// What the consumers of one display window share: address, window GUID, token, keys, context.
/// A plain value; connectors copy what they need.
class SPECTREE_EXPORT ConsumerGroup {
public:
    /// \a address as the server tells it; \a windowGuid names the display window.
    ConsumerGroup(const QByteArray &address, const QString &windowGuid,
                  const ConsumerOptions &options = ConsumerOptions::fromConfiguration(),
                  std::shared_ptr<zmq::context_t> context = sharedContext());

    const QByteArray &getAddress() const { return m_address; }
    const QString &getWindowGuid() const { return m_windowGuid; }
    /// Random; tells this group from every other.
    const QByteArray &getToken() const { return m_token; }
    const ConsumerOptions &getOptions() const { return m_options; }
    std::shared_ptr<zmq::context_t> getContext() const { return m_context; }

    /// The one context of the process for consumers: made on first use, destroyed after the last
    /// user, made again when needed again. Any thread. \throws KRException when ZeroMQ gives none
    static std::shared_ptr<zmq::context_t> sharedContext();

private:
    QByteArray m_address;
    QString m_windowGuid;
    QByteArray m_token;
    ConsumerOptions m_options;
    std::shared_ptr<zmq::context_t> m_context;
};

} // namespace sbs
