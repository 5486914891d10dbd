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
    if (m_sent < m_granted)
        return 0; // it goes out at once
    const std::uint64_t lostBefore = m_lost;
    while (m_waiting.size() > m_maxWaiting || m_waitingBytes > m_maxWaitingBytes)
        dropOldest();
    return m_lost - lostBefore;
}

void OutgoingFlow::dropOldest()
{
    m_waitingBytes -= std::size_t(m_waiting.front().message.size());
    m_waiting.pop_front();
    ++m_lost;
}

std::optional<OutgoingFlow::Waiting> OutgoingFlow::pop()
{
    if (m_waiting.empty() || m_sent >= m_granted)
        return std::nullopt;
    ++m_sent;
    Waiting next = std::move(m_waiting.front());
    m_waiting.pop_front();
    m_waitingBytes -= std::size_t(next.message.size());
    return next;
}

bool OutgoingFlow::progress(std::uint64_t granted, std::uint64_t stateSeen)
{
    if (stateSeen > m_state || granted < m_granted || granted - m_sent > m_credits)
        return false;
    m_granted = granted;
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
