#pragma once

#include "platform/base/instancecounter.h"
#include "platform/base/tracelimit.h"
#include "platform/transmission/consumerconnector.h"
#include "platform/transmission/consumergroup.h"
#include "platform/transmission/frames_p.h"

#include <QPointer>
#include <QSocketNotifier>
#include <QTimer>
#include <zmq.hpp>

#include <chrono>
#include <deque>
#include <optional>
#include <string>
#include <vector>

namespace sbs {

/// The socket of a connector and what it knows of its link. Everything on the connector's thread.
///
/// Each try to reach the server has a fresh socket, so that nothing of an old link can arrive on a
/// new one. ZeroMQ's monitor tells why a try fails and when a link breaks.
class ConsumerConnectorPrivate : private Kelm::Counted<ConsumerConnectorPrivate> {
public:
    static constexpr const char *kInstanceName = "sbs::ConsumerConnector";
    enum class Phase { idle, connecting, ready, refused };

    ConsumerConnectorPrivate(ConsumerConnector &connector, const QByteArray &name,
                             const QByteArray &address, std::shared_ptr<zmq::context_t> context);
    ~ConsumerConnectorPrivate();

    void join(const ConsumerGroup &group);
    void sendCommand(const QByteArray &command);
    void requestFullState();

    Phase phase() const { return m_phase; }
    std::uint64_t lost() const { return m_lostBefore + m_lost; }

private:
    using Clock = std::chrono::steady_clock;
    using Parts = std::vector<zmq::message_t>;

    // Each of these may end in a slot that deletes the connector; false says so.
    bool readSocket();
    bool readMonitor();
    bool handle(Parts &parts);
    bool onReady(const frames::Ready &ready);
    bool onRefused(const frames::Refused &refused);
    bool onState(const frames::State &state, const zmq::message_t &message);
    bool onMassdata(const frames::Massdata &massdata, const zmq::message_t &message);
    bool onLost(std::uint64_t lost);
    bool linkFailed(const QString &reason);

    void open();
    void close();
    void openMonitor();
    void setKeys();
    std::unique_ptr<QSocketNotifier> watch(zmq::socket_t &socket,
                                           bool (ConsumerConnectorPrivate::*read)());
    void retire(std::unique_ptr<QSocketNotifier> &notifier);
    static QByteArray newNumber();
    void sendHello();
    bool isProgressDue() const;
    void sendProgress();
    bool trySend(const frames::FromConsumer &frame, const QByteArray *message = nullptr);
    void flushCommands();
    void onTimer();
    void keepAlive();
    void readOnIfNeeded();

    ConsumerConnector &m_q;
    const QByteArray m_name, m_address;
    const std::shared_ptr<zmq::context_t> m_context;
    QString m_windowGuid;
    QByteArray m_token;
    ConsumerOptions m_options;

    std::optional<zmq::socket_t> m_socket, m_monitor;
    std::unique_ptr<QSocketNotifier> m_notifier, m_monitorNotifier;
    QTimer m_timer;
    bool m_readPosted = false;
    int m_inNotifier = 0;
    unsigned m_link = 0; // rises with each attempt

    Phase m_phase = Phase::idle;
    int m_retryMs = 0;
    QString m_lastTrouble; // what the monitor told last of the present try
    Clock::time_point m_lastHeard;
    std::uint64_t m_state = 0;
    std::uint64_t m_taken = 0;     // mass data of this link
    std::uint64_t m_granted = 0;   // what the server was told last
    std::size_t m_untoldBytes = 0; // of mass data taken since then
    std::uint64_t m_stateTold = 0;
    std::uint64_t m_lost = 0, m_lostBefore = 0; // on this link, on earlier ones
    std::deque<QByteArray> m_waiting;           // commands for an adapter that isn't there yet
    Kelm::TraceLimit m_errorTrace, m_frameTrace, m_commandTrace;
};

} // namespace sbs
