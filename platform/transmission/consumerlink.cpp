// The outer face of a connector, and how it notices that its link is lost and finds the server
// again.
#include "platform/base/krexception.h"
#include "platform/transmission/consumerconnector_p.h"
#include "platform/transmission/socketcalls_p.h"

#include <algorithm>
#include <cstring>

namespace sbs {
namespace {

constexpr int kSlowestRetry = 10; // times the first wait
constexpr int kLastPasses = 32;   // over a broken link

/// What a monitor event says of a try to connect; empty when it says no trouble.
QString troubleOf(int event)
{
    switch (event) {
    case ZMQ_EVENT_HANDSHAKE_FAILED_AUTH:
        return QStringLiteral("the server does not accept this client's key");
    case ZMQ_EVENT_HANDSHAKE_FAILED_NO_DETAIL:
    case ZMQ_EVENT_HANDSHAKE_FAILED_PROTOCOL:
        return QStringLiteral("the keys of server and client don't fit");
    default:
        return QString();
    }
}

int eventOf(const zmq::message_t &part)
{
    std::uint16_t event = 0; // in the order of the machine, since it never leaves the process
    if (part.size() >= sizeof event)
        std::memcpy(&event, part.data(), sizeof event);
    return event;
}

void requireName(const QByteArray &name, std::size_t limit, const char *what)
{
    if (name.isEmpty() || std::size_t(name.size()) > limit)
        throw KRException(QStringLiteral("%1 of a scan buffer consumer has 1 to %2 bytes, not %3.")
                              .arg(QString::fromLatin1(what))
                              .arg(limit)
                              .arg(name.size()),
                          __FILE__, "ConsumerConnector", "join", __LINE__);
}

} // namespace

ConsumerConnector::ConsumerConnector(QObject *owner, const QByteArray &name,
                                     const QByteArray &address,
                                     std::shared_ptr<zmq::context_t> context)
    : QObject(owner),
      m_d(std::make_unique<ConsumerConnectorPrivate>(*this, name, address, std::move(context)))
{
}

ConsumerConnector::~ConsumerConnector() = default;

void ConsumerConnector::join(const ConsumerGroup &group) { m_d->join(group); }
void ConsumerConnector::sendCommand(const QByteArray &command) { m_d->sendCommand(command); }
void ConsumerConnector::requestFullState() { m_d->requestFullState(); }

bool ConsumerConnector::isReady() const
{
    return m_d->phase() == ConsumerConnectorPrivate::Phase::ready;
}

std::uint64_t ConsumerConnector::lostMessages() const { return m_d->lost(); }

void ConsumerConnectorPrivate::join(const ConsumerGroup &group)
{
    requireName(m_name, frames::kMaxKind, "The adapter kind");
    requireName(group.getWindowGuid().toUtf8(), frames::kMaxGuid, "The window GUID");
    m_windowGuid = group.getWindowGuid();
    m_token = group.getToken() + '-' + newNumber();
    m_options = group.getOptions();
    m_options.credits = std::clamp(m_options.credits, 1u, frames::kMaxCredits);
    m_retryMs = m_options.retryMs;
    open();
}

void ConsumerConnectorPrivate::openMonitor()
{
    const std::string name = "inproc://connector-" + newNumber().toStdString();
    constexpr int kEvents = ZMQ_EVENT_CONNECT_RETRIED | ZMQ_EVENT_DISCONNECTED |
                            ZMQ_EVENT_HANDSHAKE_FAILED_NO_DETAIL |
                            ZMQ_EVENT_HANDSHAKE_FAILED_PROTOCOL | ZMQ_EVENT_HANDSHAKE_FAILED_AUTH;
    if (zmq_socket_monitor(m_socket->handle(), name.c_str(), kEvents) != 0)
        throw zmq::error_t();
    m_monitor.emplace(*m_context, zmq::socket_type::pair);
    m_monitor->set(zmq::sockopt::linger, 0);
    m_monitor->set(zmq::sockopt::rcvhwm, 0); // the writer waits for a reader that is full, too
    uninterrupted([&] { m_monitor->connect(name); });
    m_monitorNotifier = watch(*m_monitor, &ConsumerConnectorPrivate::readMonitor);
}

bool ConsumerConnectorPrivate::readMonitor()
{
    Parts parts;
    try {
        while (m_monitor && receiveParts(*m_monitor, parts)) {
            const int event = eventOf(parts[0]);
            if (event == ZMQ_EVENT_DISCONNECTED && m_phase == Phase::ready) {
                // What had come before the break is still there to be read. A slot may have made
                // the link anew meanwhile.
                const auto isBroken = [this, link = m_link] {
                    return m_phase == Phase::ready && m_socket && m_link == link;
                };
                for (int pass = 0; pass < kLastPasses && isBroken() && isReadable(*m_socket);
                     ++pass)
                    if (!readSocket())
                        return false;
                return !isBroken() || linkFailed(QStringLiteral("the connection is broken"));
            }
            if (const QString trouble = troubleOf(event); !trouble.isEmpty())
                m_lastTrouble = trouble;
            else if (event == ZMQ_EVENT_CONNECT_RETRIED && m_lastTrouble.isEmpty())
                m_lastTrouble = QStringLiteral("no server answers there");
        }
    } catch (const zmq::error_t &) {
        // The timer looks after the link as well.
    }
    return true;
}

bool ConsumerConnectorPrivate::linkFailed(const QString &reason)
{
    const bool wasUp = m_phase == Phase::ready;
    close();
    m_phase = Phase::connecting;
    // A server that says goodbye again and again is not to be asked in a tight loop.
    m_timer.setSingleShot(true);
    m_timer.start(wasUp ? m_options.retryMs / 4 : m_retryMs);
    const QPointer<ConsumerConnector> alive(&m_q);
    if (wasUp)
        Q_EMIT m_q.signalLinkLost(reason);
    else
        Q_EMIT m_q.signalUnreachable(reason);
    return !alive.isNull();
}

void ConsumerConnectorPrivate::onTimer()
{
    // The monitor's descriptor tells an arrival only once, and connecting may have taken that in.
    if (!readMonitor())
        return;
    if (m_phase == Phase::ready)
        return keepAlive();
    if (m_phase != Phase::connecting)
        return;
    const bool tried = m_socket.has_value();
    const QString trouble =
        m_lastTrouble.isEmpty() ? QStringLiteral("the server gives no answer") : m_lastTrouble;
    try {
        if (tried)
            m_retryMs = std::min(2 * m_retryMs, kSlowestRetry * m_options.retryMs);
        open();
    } catch (const KRException &error) {
        linkFailed(error.GetReason());
        return;
    }
    if (tried)
        Q_EMIT m_q.signalUnreachable(
            QStringLiteral("%1: %2").arg(QString::fromUtf8(m_address), trouble));
}

void ConsumerConnectorPrivate::keepAlive()
{
    // This thread may have been busy for long: what has come meanwhile counts as heard.
    if (!readSocket() || m_phase != Phase::ready)
        return;
    if (Clock::now() - m_lastHeard > std::chrono::milliseconds(m_options.silentMs))
        linkFailed(QStringLiteral("the server is silent"));
    else if (m_taken + m_options.credits != m_granted)
        sendProgress(); // a server with a low limit of bytes may wait for just this
    else
        trySend(frames::Heartbeat{});
}

} // namespace sbs
