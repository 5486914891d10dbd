#include "platform/base/errorhandler.h"
#include "platform/base/krexception.h"
#include "platform/base/sync.h"
#include "platform/transmission/consumerconnector_p.h"
#include "platform/transmission/socketcalls_p.h"

#include <algorithm>
#include <atomic>

namespace sbs {
namespace {

constexpr int kMessagesAPass = 64; // before the event loop has its turn
constexpr std::size_t kMaxWaitingCommands = 256;
constexpr std::size_t kProgressBytes = std::size_t(1) << 20; // taken in, before the server is told
constexpr std::int64_t kMaxMessageBytes = std::int64_t(256) << 20;

bool carriesMessage(const frames::FromServer &frame)
{
    return std::holds_alternative<frames::State>(frame) ||
           std::holds_alternative<frames::Massdata>(frame);
}

QByteArray toByteArray(const zmq::message_t &message)
{
    return QByteArray(message.data<char>(), int(message.size()));
}

QString toText(const std::string &text) { return QString::fromStdString(text); }

} // namespace

ConsumerConnectorPrivate::ConsumerConnectorPrivate(ConsumerConnector &connector,
                                                   const QByteArray &name,
                                                   const QByteArray &address,
                                                   std::shared_ptr<zmq::context_t> context)
    : m_q(connector), m_name(name), m_address(address), m_context(std::move(context))
{
    QObject::connect(&m_timer, &QTimer::timeout, &m_q, [this] { onTimer(); });
}

ConsumerConnectorPrivate::~ConsumerConnectorPrivate() { close(); }

QByteArray ConsumerConnectorPrivate::newNumber()
{
    static std::atomic<unsigned> next{0};
    return QByteArray::number(next.fetch_add(1));
}

std::unique_ptr<QSocketNotifier>
ConsumerConnectorPrivate::watch(zmq::socket_t &socket, bool (ConsumerConnectorPrivate::*read)())
{
    auto notifier =
        std::make_unique<QSocketNotifier>(socket.get(zmq::sockopt::fd), QSocketNotifier::Read);
    QObject::connect(notifier.get(), &QSocketNotifier::activated, &m_q, [this, read] {
        ++m_inNotifier; // a slot may run an event loop of its own
        if ((this->*read)())
            --m_inNotifier;
    });
    return notifier;
}

void ConsumerConnectorPrivate::retire(std::unique_ptr<QSocketNotifier> &notifier)
{
    if (!notifier)
        return;
    notifier->setEnabled(false);
    notifier->disconnect();
    if (m_inNotifier > 0)
        notifier.release()->deleteLater(); // it may be the one that is calling
    notifier.reset();
}

void ConsumerConnectorPrivate::open()
{
    close();
    ++m_link;
    m_phase = Phase::connecting;
    m_state = m_taken = m_stateTold = 0;
    m_untoldBytes = 0;
    m_granted = m_options.credits;
    m_lostBefore += m_lost;
    m_lost = 0;
    m_lastTrouble.clear();
    try {
        m_socket.emplace(*m_context, zmq::socket_type::dealer);
        m_socket->set(zmq::sockopt::linger, 0);
        m_socket->set(zmq::sockopt::maxmsgsize, kMaxMessageBytes);
        m_socket->set(zmq::sockopt::ipv6, m_address.contains('['));
        setKeys();
        openMonitor();
        uninterrupted([this] { m_socket->connect(m_address.constData()); });
    } catch (const zmq::error_t &error) {
        close();
        m_phase = Phase::idle;
        throw KRException(QStringLiteral("The scan buffer consumer can't connect to \"%1\": %2.")
                              .arg(QString::fromUtf8(m_address), QString::fromUtf8(error.what())),
                          __FILE__, "ConsumerConnector", "join", __LINE__);
    }
    m_notifier = watch(*m_socket, &ConsumerConnectorPrivate::readSocket);
    m_timer.setSingleShot(true);
    m_timer.start(m_retryMs);
    sendHello();
}

void ConsumerConnectorPrivate::close()
{
    m_timer.stop();
    retire(m_notifier);
    retire(m_monitorNotifier);
    if (m_phase == Phase::ready && trySend(frames::Bye{}))
        m_socket->set(zmq::sockopt::linger, 100); // so that the goodbye still leaves
    m_phase = Phase::idle;
    // First the writer of events, then their reader: without one ZeroMQ's own thread would wait
    // for ever, with the lock that closing the writer needs.
    if (m_socket)
        zmq_socket_monitor(m_socket->handle(), nullptr, 0);
    m_monitor.reset();
    m_socket.reset();
}

void ConsumerConnectorPrivate::setKeys()
{
    if (m_options.serverKey.isEmpty())
        return;
    m_socket->set(zmq::sockopt::curve_serverkey, m_options.serverKey.toStdString());
    m_socket->set(zmq::sockopt::curve_publickey, m_options.keys.publicKey.toStdString());
    m_socket->set(zmq::sockopt::curve_secretkey, m_options.keys.secretKey.toStdString());
}

void ConsumerConnectorPrivate::sendHello()
{
    frames::Hello hello;
    hello.credits = m_options.credits;
    hello.windowGuid = m_windowGuid.toStdString();
    hello.kind = m_name.toStdString();
    hello.token = m_token.toStdString();
    trySend(hello);
}

bool ConsumerConnectorPrivate::trySend(const frames::FromConsumer &frame, const QByteArray *message)
{
    if (!m_socket)
        return false;
    using zmq::send_flags;
    const std::string header = frames::encode(frame);
    const auto send = [this](zmq::const_buffer part, send_flags flags) {
        return uninterrupted([&] { return m_socket->send(part, flags); }).has_value();
    };
    bool sent = false;
    try {
        sent = send(zmq::buffer(header),
                    message ? send_flags::sndmore | send_flags::dontwait : send_flags::dontwait);
        if (sent && message)
            send(zmq::buffer(message->constData(), std::size_t(message->size())),
                 send_flags::dontwait);
    } catch (const zmq::error_t &) {
        return false;
    }
    readOnIfNeeded();
    return sent;
}

void ConsumerConnectorPrivate::readOnIfNeeded()
{
    // Using the socket may have taken in what its descriptor announced, and then the notifier stays
    // silent.
    if (m_readPosted || !m_socket || !isReadable(*m_socket))
        return;
    m_readPosted = true;
    Kelm::post(&m_q, [this] {
        m_readPosted = false;
        readSocket();
    });
}

bool ConsumerConnectorPrivate::readSocket()
{
    Parts parts;
    try {
        for (int i = 0; i < kMessagesAPass && m_socket && receiveParts(*m_socket, parts); ++i) {
            m_lastHeard = Clock::now();
            if (!handle(parts))
                return false;
        }
        if (m_phase == Phase::ready) {
            if (isProgressDue())
                sendProgress();
            flushCommands();
        }
        readOnIfNeeded();
    } catch (const zmq::error_t &error) {
        if (const auto times = m_errorTrace.due())
            SPECTREE_TRACE(TraceWarnings,
                           QStringLiteral("A consumer can't read its socket (%1 times): %2")
                               .arg(times)
                               .arg(QString::fromUtf8(error.what())));
    }
    return true;
}

bool ConsumerConnectorPrivate::handle(Parts &parts)
{
    const auto frame = frames::parseFromServer(parts[0].data<char>(), parts[0].size());
    if (!frame || parts.size() != (carriesMessage(*frame) ? 2u : 1u)) {
        if (const auto times = m_frameTrace.due())
            SPECTREE_TRACE(TraceWarnings,
                           QStringLiteral("A consumer dropped %1 malformed frames").arg(times));
        return true;
    }
    if (const auto *massdata = std::get_if<frames::Massdata>(&*frame))
        return onMassdata(*massdata, parts[1]);
    if (const auto *state = std::get_if<frames::State>(&*frame))
        return onState(*state, parts[1]);
    if (const auto *beat = std::get_if<frames::Beat>(&*frame))
        return onLost(beat->lost);
    if (const auto *ready = std::get_if<frames::Ready>(&*frame))
        return onReady(*ready);
    if (const auto *refused = std::get_if<frames::Refused>(&*frame))
        return onRefused(*refused);
    return linkFailed(toText(std::get<frames::Farewell>(*frame).reason));
}

bool ConsumerConnectorPrivate::onReady(const frames::Ready &ready)
{
    if (m_phase != Phase::connecting)
        return true;
    m_phase = Phase::ready;
    m_retryMs = m_options.retryMs;
    m_timer.setSingleShot(false);
    m_timer.start(int(std::clamp<std::uint32_t>(ready.heartbeatMs, 5, 60000)));
    flushCommands();
    const QPointer<ConsumerConnector> alive(&m_q);
    Q_EMIT m_q.signalAdapterReady();
    return !alive.isNull();
}

bool ConsumerConnectorPrivate::onRefused(const frames::Refused &refused)
{
    if (m_phase != Phase::connecting)
        return true;
    if (!refused.final) {
        m_lastTrouble = toText(refused.reason); // told when the time for the next try has come
        return true;
    }
    close();
    m_phase = Phase::refused;
    const QPointer<ConsumerConnector> alive(&m_q);
    Q_EMIT m_q.signalRefused(toText(refused.reason));
    return !alive.isNull();
}

bool ConsumerConnectorPrivate::onState(const frames::State &state, const zmq::message_t &message)
{
    if (m_phase != Phase::ready)
        return true;
    if (!state.full && state.number != m_state + 1) {
        // A change of a state that isn't known here is of no use; only a broken server sends one.
        requestFullState();
        return true;
    }
    m_state = state.number;
    const QPointer<ConsumerConnector> alive(&m_q);
    Q_EMIT m_q.signalStateUpdate(toByteArray(message));
    return !alive.isNull();
}

bool ConsumerConnectorPrivate::onMassdata(const frames::Massdata &massdata,
                                          const zmq::message_t &message)
{
    if (m_phase != Phase::ready)
        return true;
    ++m_taken;
    m_untoldBytes += message.size();
    if (!onLost(massdata.lost))
        return false;
    if (!massdata.stateIndependent && massdata.state != m_state)
        return true;
    const QPointer<ConsumerConnector> alive(&m_q);
    Q_EMIT m_q.signalMassdata(toByteArray(message));
    return !alive.isNull();
}

bool ConsumerConnectorPrivate::onLost(std::uint64_t lost)
{
    if (m_phase != Phase::ready || lost <= m_lost)
        return true;
    const std::uint64_t more = lost - m_lost;
    m_lost = lost;
    const QPointer<ConsumerConnector> alive(&m_q);
    Q_EMIT m_q.signalLostMessages(more);
    return !alive.isNull();
}

/// Rarely, since each costs a message; but the server holds back what is under way by its bytes,
/// too.
bool ConsumerConnectorPrivate::isProgressDue() const
{
    const std::uint64_t untold = m_taken + m_options.credits - m_granted;
    return m_stateTold != m_state || m_untoldBytes >= kProgressBytes ||
           untold >= std::max(1u, m_options.credits / 4);
}

void ConsumerConnectorPrivate::sendProgress()
{
    const std::uint64_t granted = m_taken + m_options.credits;
    if (trySend(frames::Progress{granted, m_state})) {
        m_granted = granted;
        m_untoldBytes = 0;
        m_stateTold = m_state;
    }
}

void ConsumerConnectorPrivate::sendCommand(const QByteArray &command)
{
    if (m_phase == Phase::ready)
        flushCommands();
    if (m_phase == Phase::ready && m_waiting.empty() && trySend(frames::Command{}, &command))
        return;
    if (m_waiting.size() >= kMaxWaitingCommands) {
        if (const auto times = m_commandTrace.due())
            SPECTREE_TRACE(TraceWarnings,
                           QStringLiteral("A consumer dropped %1 commands: %2 wait for its adapter")
                               .arg(times)
                               .arg(m_waiting.size()));
        m_waiting.pop_front();
    }
    m_waiting.push_back(command);
}

void ConsumerConnectorPrivate::flushCommands()
{
    while (!m_waiting.empty() && trySend(frames::Command{}, &m_waiting.front()))
        m_waiting.pop_front();
}

void ConsumerConnectorPrivate::requestFullState()
{
    if (m_phase == Phase::ready)
        trySend(frames::RequestState{});
}

} // namespace sbs
