#pragma once

#include "platform/base/export.h"
#include "platform/base/instancecounter.h"
#include "platform/transmission/adapterfactory.h"
#include "platform/transmission/curvekeys.h"

#include <QByteArray>
#include <QList>

#include <chrono>
#include <cstddef>
#include <cstdint>
#include <memory>

namespace sbs {

/// What a server listens on, whom it lets in, and its limits.
struct SPECTREE_EXPORT ServerOptions {
    /// tcp://address:port (`*` for any), or ipc://path.
    QByteArray endpoint = QByteArrayLiteral("tcp://*:*");
    /// With a secret key the server speaks CURVE only, and only with clients in clientKeys.
    CurveKeys keys;
    QList<QByteArray> clientKeys; ///< public keys as Z85

    std::chrono::milliseconds heartbeat{1000};   ///< told to consumers, kept by both sides
    std::chrono::milliseconds silentAfter{5000}; ///< a peer unheard for this long has gone
    std::chrono::milliseconds windowGrace{5000}; ///< life of a window without consumers

    std::size_t maxConsumers = 256;
    std::size_t maxCommandBytes = std::size_t(16) << 20; ///< largest frame from a consumer
    std::size_t maxPendingCommands = 4096;               ///< a window's, before its thread ran
    std::size_t maxPendingCommandBytes = std::size_t(64) << 20;
    std::size_t maxQueuedMassdata = 64; ///< a consumer's, beyond its credits
    /// A consumer's: of those, and again of those that it has not taken in.
    std::size_t maxQueuedMassdataBytes = std::size_t(64) << 20;
    std::size_t maxUnseenStates = 4096; ///< a consumer that takes in no more is disconnected
    std::size_t maxUnseenStateBytes = std::size_t(256) << 20;

    /// From the configuration: "ScanBufferServerEndpoint" (default tcp://*:*),
    /// "ScanBufferServerSecretKey", "ScanBufferServerClientKeys" (public keys, apart by spaces).
    /// Keys are Z85 or hexadecimal. \throws KRException for a key that is none, and for one of the
    /// two key entries without the other
    static ServerOptions fromConfiguration();
};

/// Serves adapters to consumers over ZeroMQ. See docs/transmission.md for the wire.
///
/// Threads:   made and destroyed on one thread, any. One I/O thread serves all servers of the
///            process; adapters send on their own threads.
/// Ownership: owns its factories. Destroying it waits for a running call of the controller factory
///            to return, tells the consumers, and posts the end of each adapter to its controller.
class SPECTREE_EXPORT Server : private Kelm::Counted<Server> {
public:
    static constexpr const char *kInstanceName = "sbs::Server";

    /// What has been counted since the start.
    struct Statistics {
        std::uint64_t rejectedFrames = 0; ///< malformed, or from nobody who said hello
        std::uint64_t lostMessages = 0;   ///< mass data dropped for slow consumers
        std::uint64_t refusedKeys = 0;    ///< clients whose key isn't in the list
        std::size_t consumers = 0;        ///< now
    };

    /// Binds and listens. \throws KRException that says what and where, when the endpoint is busy
    /// or none
    Server(std::unique_ptr<IAdapterFactory const> adapters,
           std::unique_ptr<IAdapterControllerFactory const> controllers,
           const ServerOptions &options = ServerOptions::fromConfiguration());
    ~Server();
    Server(const Server &) = delete;
    Server &operator=(const Server &) = delete;

    /// The bound endpoint with its real port. An address that means "any" has become one of this
    /// machine that others can reach; loopback stays.
    QByteArray getEndpoint() const;
    Statistics statistics() const;

    /// True when only this machine can reach \a endpoint.
    static bool isLoopback(const QByteArray &endpoint);

private:
    class Inside;
    std::unique_ptr<Inside> m_d;
};

} // namespace sbs
