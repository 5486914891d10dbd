#pragma once

#include "platform/base/instancecounter.h"
#include "platform/transmission/adapter.h"
#include "platform/transmission/server.h"

#include <QByteArray>

#include <atomic>
#include <chrono>
#include <cstdint>
#include <deque>
#include <memory>
#include <optional>
#include <string>

namespace sbs {

class ControllerGate;
using Clock = std::chrono::steady_clock;

/// What is on its way to one consumer: numbers states, holds mass data back while there is no
/// credit, drops the oldest beyond the bounds. Not thread-safe.
class OutgoingFlow {
public:
    struct Waiting {
        bool stateIndependent;
        QByteArray message;
    };

    explicit OutgoingFlow(const ServerOptions &options, std::uint64_t credits);

    /// Counts a state that goes out now and gives its number; mass data that belong to the state
    /// before it are dropped unsent.
    std::uint64_t nextState(std::size_t bytes);
    /// Puts mass data in line. Returns how many older messages were dropped to make room.
    std::uint64_t push(bool stateIndependent, const QByteArray &message);
    /// The next mass data that the credits and the bytes under way let through. However long it is,
    /// one goes out when nothing is under way.
    std::optional<Waiting> pop();
    /// The consumer's progress. False when it claims a state that was never sent, takes a grant
    /// back, or grants more than its credits beyond what was sent.
    bool progress(std::uint64_t granted, std::uint64_t stateSeen);

    std::uint64_t stateNumber() const { return m_state; }
    std::uint64_t lost() const { return m_lost; }
    /// True when the consumer takes in no more state.
    bool isStuck() const;

private:
    bool mayGo() const;
    void dropOldest();

    const std::uint64_t m_credits; // that may be under way at once
    const std::size_t m_maxWaiting, m_maxWaitingBytes, m_maxUnseen, m_maxUnseenBytes;
    std::deque<Waiting> m_waiting;
    std::size_t m_waitingBytes = 0;
    std::deque<std::size_t> m_underWay; // sizes of the mass data that the consumer has not taken
    std::size_t m_underWayBytes = 0;
    std::deque<std::size_t> m_unseen; // sizes of the states that the consumer has not taken in
    std::size_t m_unseenBytes = 0;
    std::uint64_t m_state = 0;
    std::uint64_t m_sent = 0, m_granted;
    std::uint64_t m_lost = 0;
};

/// One consumer at one server. All members but the atomics and the constants are guarded by the
/// mutex of its server.
struct ServerSession : private Kelm::Counted<ServerSession> {
    static constexpr const char *kInstanceName = "sbs::ServerSession";
    enum class Phase { starting, ready, closed };

    ServerSession(const ServerOptions &options, std::uint64_t credits) : flow(options, credits) {}

    std::string route; // ZeroMQ's name of the connection
    QString windowGuid;
    QByteArray kind, identity;
    std::shared_ptr<ControllerGate> gate;

    Phase phase = Phase::starting;
    OutgoingFlow flow;
    Clock::time_point lastHeard, lastSent;
    std::atomic<bool> stateRequestPending{false};
};

} // namespace sbs
