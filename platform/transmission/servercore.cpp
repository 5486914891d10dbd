#include "platform/base/krexception.h"
#include "platform/transmission/controllergate_p.h"
#include "platform/transmission/endpoint_p.h"
#include "platform/transmission/iothread_p.h"
#include "platform/transmission/servercore_p.h"
#include "platform/transmission/socketcalls_p.h"

#include <algorithm>
#include <atomic>
#include <chrono>
#include <thread>

namespace sbs {
namespace {

constexpr int kBatch = 64;           // messages read under one lock
constexpr int kBatchesAPass = 16;    // before other servers have their turn
constexpr int kCopiedPayload = 8192; // up to here a copy is cheaper than handing memory over
constexpr auto kPortLinger = std::chrono::milliseconds(400);

using Parts = std::vector<zmq::message_t>;

void freePayload(void *, void *hint)
{
    Kelm::syncAcquire(hint);
    delete static_cast<QByteArray *>(hint);
}

zmq::message_t toMessage(const QByteArray &payload)
{
    if (payload.size() <= kCopiedPayload)
        return zmq::message_t(payload.constData(), std::size_t(payload.size()));
    auto *const owner = new QByteArray(payload);
    Kelm::syncRelease(owner);
    return zmq::message_t(const_cast<char *>(owner->constData()), std::size_t(owner->size()),
                          freePayload, owner);
}

std::string newDomain()
{
    static std::atomic<unsigned> next{0};
    return "spectree-" + std::to_string(next.fetch_add(1));
}

[[noreturn]] void failToListen(const QByteArray &endpoint, const QString &why)
{
    throw KRException(QStringLiteral("The scan buffer server can't listen on \"%1\": %2. Choose "
                                     "another endpoint (ScanBufferServerEndpoint), or end the "
                                     "program that uses this one.")
                          .arg(QString::fromUtf8(endpoint), why),
                      __FILE__, "Server", "Server", __LINE__);
}

/// Binds. A port that a server of this process has just left may stay busy for a moment.
void bindPatiently(zmq::socket_t &socket, const QByteArray &endpoint)
{
    for (const auto end = Clock::now() + kPortLinger;;) {
        try {
            return uninterrupted([&] { socket.bind(endpoint.constData()); });
        } catch (const zmq::error_t &error) {
            if (error.num() != EADDRINUSE || Clock::now() >= end)
                failToListen(endpoint, QString::fromUtf8(error.what()));
        }
        std::this_thread::sleep_for(std::chrono::milliseconds(20));
    }
}

} // namespace

ServerCore::ServerCore(std::unique_ptr<IAdapterFactory const> adapters,
                       std::unique_ptr<IAdapterControllerFactory const> controllers,
                       const ServerOptions &options, IoThread &io)
    : m_options(options), m_io(io), m_adapters(std::move(adapters)),
      m_controllers(std::move(controllers)), m_domain(newDomain()),
      m_socket(io.context(), zmq::socket_type::router)
{
    const Kelm::MutexLocker lock(m_mutex);
    setKeys(options);
    bind(options);
    m_descriptor = m_socket.get(zmq::sockopt::fd);
}

void ServerCore::setKeys(const ServerOptions &options)
{
    if (options.keys.isEmpty()) {
        if (!options.clientKeys.isEmpty())
            failToListen(options.endpoint, QStringLiteral("client keys need a server key"));
        return;
    }
    for (const QByteArray &key : options.clientKeys) {
        std::uint8_t raw[32];
        const QByteArray text =
            CurveKeys::parse(QString::fromLatin1(key), QStringLiteral("A client key"));
        zmq_z85_decode(raw, text.constData());
        m_allowedKeys.emplace_back(reinterpret_cast<const char *>(raw), sizeof raw);
    }
    const QByteArray secret = CurveKeys::parse(QString::fromLatin1(options.keys.secretKey),
                                               QStringLiteral("The server's secret key"));
    m_socket.set(zmq::sockopt::zap_domain, m_domain);
    m_socket.set(zmq::sockopt::curve_server, true);
    m_socket.set(zmq::sockopt::curve_secretkey, secret.toStdString());
}

void ServerCore::bind(const ServerOptions &options)
{
    if (!options.endpoint.startsWith("tcp://") && !options.endpoint.startsWith("ipc://"))
        failToListen(options.endpoint, QStringLiteral("an endpoint is tcp://address:port or "
                                                      "ipc://path"));
    m_socket.set(zmq::sockopt::linger, 100); // so that a farewell still leaves
    m_socket.set(zmq::sockopt::router_mandatory, true);
    m_socket.set(zmq::sockopt::sndhwm, int(options.maxUnseenStates + frames::kMaxCredits + 256));
    m_socket.set(zmq::sockopt::maxmsgsize, std::int64_t(options.maxCommandBytes));
    m_socket.set(zmq::sockopt::handshake_ivl, 5000);
    m_socket.set(zmq::sockopt::ipv6, options.endpoint.contains('['));
    bindPatiently(m_socket, options.endpoint);
    m_endpoint =
        endpoint::reachable(QByteArray::fromStdString(m_socket.get(zmq::sockopt::last_endpoint)));
}

Server::Statistics ServerCore::statistics() const
{
    const Kelm::MutexLocker lock(m_mutex);
    return m_counts;
}

bool ServerCore::allows(const std::string &clientKey)
{
    if (std::ranges::find(m_allowedKeys, clientKey) != m_allowedKeys.end())
        return true;
    const Kelm::MutexLocker lock(m_mutex);
    ++m_counts.refusedKeys;
    return false;
}

int ServerCore::tickInterval() const
{
    if (m_sessions.empty() && m_windows.empty())
        return -1;
    const auto shortest =
        std::min({m_options.heartbeat, m_options.silentAfter, m_options.windowGrace});
    return int(std::clamp<std::int64_t>(shortest.count() / 2, 5, 500));
}

bool ServerCore::service()
{
    // Before reading: while a window is made, what consumers say waits, and counts as heard.
    const auto now = Clock::now();
    std::vector<Parts> batch;
    bool more = true;
    for (int pass = 0; more && pass < kBatchesAPass; ++pass) {
        more = receiveBatch(batch);
        for (Parts &parts : batch)
            handle(parts);
    }
    lookAfterSessions(now);
    releaseWindows(now);
    // The answers sent meanwhile may have taken in what the descriptor announced.
    const Kelm::MutexLocker lock(m_mutex);
    return more || isReadable(m_socket);
}

bool ServerCore::receiveBatch(std::vector<Parts> &batch)
{
    batch.clear();
    const Kelm::MutexLocker lock(m_mutex);
    try {
        Parts parts;
        while (batch.size() < kBatch && receiveParts(m_socket, parts))
            batch.push_back(std::move(parts));
        return isReadable(m_socket);
    } catch (const zmq::error_t &) {
        return false; // no memory for a message, say: the next tick reads on
    }
}

void ServerCore::send(ServerSession &session, SendMode mode, const QByteArray &message)
{
    const Kelm::MutexLocker lock(m_mutex);
    if (!m_open || session.phase != ServerSession::Phase::ready)
        return;
    if (mode == SendMode::fullState || mode == SendMode::incrementalState) {
        sendState(session, mode == SendMode::fullState, message);
    } else {
        const auto lost = session.flow.push(mode == SendMode::massdataStateIndependent, message);
        if (lost != 0) {
            m_counts.lostMessages += lost;
            session.gate->countLost(lost);
        }
        sendWaiting(session);
    }
    wakeIfReadable();
}

void ServerCore::sendState(ServerSession &session, bool full, const QByteArray &message)
{
    const auto header =
        frames::encode(frames::State{full, session.flow.nextState(std::size_t(message.size()))});
    transmit(session, header.data(), header.size(), &message);
    if (session.flow.isStuck())
        m_io.wake(); // the I/O thread ends it
}

void ServerCore::sendWaiting(ServerSession &session)
{
    while (const auto next = session.flow.pop()) {
        const auto header = frames::encode(frames::Massdata{
            next->stateIndependent, session.flow.stateNumber(), session.flow.lost()});
        if (!transmit(session, header.data(), header.size(), &next->message))
            return;
    }
}

bool ServerCore::transmit(ServerSession &session, const char *header, std::size_t size,
                          const QByteArray *payload)
{
    if (session.phase == ServerSession::Phase::closed)
        return false;
    if (transmitTo(session.route, header, size, payload)) {
        session.lastSent = Clock::now();
        return true;
    }
    session.phase =
        ServerSession::Phase::closed; // the connection is gone; the I/O thread tidies up
    m_io.wake();
    return false;
}

bool ServerCore::transmitTo(const std::string &route, const char *header, std::size_t size,
                            const QByteArray *payload)
{
    using zmq::send_flags;
    constexpr send_flags kMore = send_flags::sndmore | send_flags::dontwait;
    try {
        if (!sendPart(m_socket, zmq::buffer(route), kMore))
            return false;
        sendPart(m_socket, zmq::buffer(header, size), payload ? kMore : send_flags::dontwait);
        if (payload)
            sendPart(m_socket, toMessage(*payload), send_flags::dontwait);
        return true;
    } catch (const zmq::error_t &) {
        return false;
    }
}

void ServerCore::wakeIfReadable()
{
    // Sending may have taken in what the descriptor announced, so the I/O thread would not notice.
    if (isReadable(m_socket))
        m_io.wake();
}

void ServerCore::shutDown()
{
    while (!m_sessions.empty())
        closeSession(m_sessions.begin()->second, Tell::consumer, "The server ends");
    m_windows.clear();
    m_controllers.reset();
    const Kelm::MutexLocker lock(m_mutex);
    m_open = false;
    m_socket.close();
}

} // namespace sbs
