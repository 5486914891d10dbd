#include "platform/transmission/serversession_p.h"

namespace sbs {

OutgoingFlow::OutgoingFlow(const ServerOptions &options, std::uint64_t credits)
    : m_credits(credits), m_maxWaiting(options.maxQueuedMassdata),
      m_maxWaitingBytes(options.maxQueuedMassdataBytes), m_maxUnseen(options.maxUnseenStates),
      m_maxUnseenBytes(options.maxUnseenStateBytes), m_granted(credits)
{
}

std::uint64_t OutgoingFlow::nextState(std::size_t bytes)
{
    std::erase_if(m_waiting, [this](const Waiting &waiting) {
        if (!waiting.stateIndependent)
            m_waitingBytes -= std::size_t(waiting.message.size());
        return !waiting.stateIndependent;
    });
    m_unseen.push_back(bytes);
    m_unseenBytes += bytes;
    return ++m_state;
}

std::uint64_t OutgoingFlow::push(bool stateIndependent, const QByteArray &message)
{
    m_waiting.push_back({stateIndependent, message});
    m_waitingBytes += std::size_t(message.size());
    if (mayGo())
        return 0; // the next one goes out at once
    const std::uint64_t lostBefore = m_lost;
    while (m_waiting.size() > m_maxWaiting ||
           (m_waiting.size() > 1 && m_waitingBytes > m_maxWaitingBytes))
        dropOldest();
    return m_lost - lostBefore;
}

/// A consumer may grant many messages and take in none: they would all stay in its socket's queue.
bool OutgoingFlow::mayGo() const
{
    if (m_waiting.empty() || m_sent >= m_granted)
        return false;
    const auto next = std::size_t(m_waiting.front().message.size());
    return m_underWay.empty() || m_underWayBytes + next <= m_maxWaitingBytes;
}

void OutgoingFlow::dropOldest()
{
    m_waitingBytes -= std::size_t(m_waiting.front().message.size());
    m_waiting.pop_front();
    ++m_lost;
}

std::optional<OutgoingFlow::Waiting> OutgoingFlow::pop()
{
    if (!mayGo())
        return std::nullopt;
    ++m_sent;
    Waiting next = std::move(m_waiting.front());
    m_waiting.pop_front();
    const auto bytes = std::size_t(next.message.size());
    m_waitingBytes -= bytes;
    m_underWay.push_back(bytes);
    m_underWayBytes += bytes;
    return next;
}

bool OutgoingFlow::progress(std::uint64_t granted, std::uint64_t stateSeen)
{
    if (stateSeen > m_state || granted < m_granted || granted - m_sent > m_credits)
        return false;
    m_granted = granted;
    const std::uint64_t taken = granted - m_credits;
    while (m_sent - m_underWay.size() < taken) {
        m_underWayBytes -= m_underWay.front();
        m_underWay.pop_front();
    }
    while (m_state - m_unseen.size() < stateSeen) {
        m_unseenBytes -= m_unseen.front();
        m_unseen.pop_front();
    }
    return true;
}

bool OutgoingFlow::isStuck() const
{
    return m_unseen.size() > m_maxUnseen || m_unseenBytes > m_maxUnseenBytes;
}

} // namespace sbs
