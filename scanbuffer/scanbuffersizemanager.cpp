#include "scanbuffer/scanbuffersizemanager.h"

#include <QCoreApplication>
#include <QThread>

#include <algorithm>
#include <limits>

namespace sbs {
namespace {

constexpr int kTickMilliseconds = 500;

std::uint32_t marginOf(std::uint32_t lines, std::uint32_t divisor)
{
    return std::max(lines / divisor, 1u);
}

} // namespace

ScanBufferSizeManager::ScanBufferSizeManager(BufferSizeManagementInterface &buffer)
    : m_timer(this), m_buffer(&buffer)
{
    qRegisterMetaType<std::uint64_t>("std::uint64_t");
    m_timer.setInterval(kTickMilliseconds);
    connect(&m_timer, &QTimer::timeout, this, &ScanBufferSizeManager::slotTimerEvent);
    if (const QCoreApplication *application = QCoreApplication::instance())
        moveToThread(application->thread());
}

ScanBufferSizeManager::~ScanBufferSizeManager() { Kelm::syncAcquire(this); }

void ScanBufferSizeManager::dispose()
{
    {
        const Kelm::MutexLocker lock(m_bufferMutex);
        m_buffer = nullptr;
    }
    Kelm::syncRelease(this);
    if (thread() == QThread::currentThread() || QCoreApplication::instance() == nullptr)
        delete this;
    else
        deleteLater();
}

void ScanBufferSizeManager::setActive(bool active)
{
    if (m_active.exchange(active) == active)
        return;
    if (thread() == QThread::currentThread())
        applyActive();
    else
        Kelm::post(this, [this] { applyActive(); });
}

/// Reads the wish anew, so that of two calls in a hurry the later one holds.
void ScanBufferSizeManager::applyActive()
{
    if (isActive())
        m_timer.start();
    else
        m_timer.stop();
}

void ScanBufferSizeManager::resetFirstAccess()
{
    const Kelm::MutexLocker lock(m_clientMutex);
    for (auto &[uuid, client] : m_clients)
        client.firstAccess = m_timeCounter;
}

void ScanBufferSizeManager::slotLastAccessedID(QUuid uuid, std::uint64_t id)
{
    const Kelm::MutexLocker lock(m_clientMutex);
    const auto [position, isNew] = m_clients.try_emplace(uuid);
    Client &client = position->second;
    if (isNew) {
        client.firstAccess = m_timeCounter;
    } else {
        // A reader that fell back, to an older line, has not advanced.
        const std::uint64_t advance = id > client.lastId ? id - client.lastId : 0;
        client.step = client.lastTouch != m_timeCounter ? advance : std::max(client.step, advance);
    }
    client.lastId = id;
    client.lastTouch = m_timeCounter;
}

void ScanBufferSizeManager::slotResetHistory(QUuid uuid)
{
    const Kelm::MutexLocker lock(m_clientMutex);
    if (const auto client = m_clients.find(uuid); client != m_clients.end())
        client->second.firstAccess = m_timeCounter;
}

void ScanBufferSizeManager::slotRemoveAdapter(QUuid uuid)
{
    const Kelm::MutexLocker lock(m_clientMutex);
    m_clients.erase(uuid);
}

void ScanBufferSizeManager::slotTimerEvent()
{
    // Cleared first: a scan that ends during the tick belongs to the next one.
    if (!m_endOfScanSeen.exchange(false))
        return;
    const bool limitReached = adaptEntriesToSize();
    {
        const Kelm::MutexLocker lock(m_clientMutex);
        ++m_timeCounter;
    }
    if (limitReached)
        Q_EMIT signalBufferLimitReached();
}

std::uint64_t ScanBufferSizeManager::linesNeeded() const
{
    const Kelm::MutexLocker lock(m_clientMutex);
    std::uint64_t step = 0;
    for (const auto &[uuid, client] : m_clients)
        if (client.firstAccess < m_timeCounter && client.lastTouch + 1 >= m_timeCounter)
            step = std::max(step, client.step);
    return step == 0 ? 0 : step + 1;
}

/// The lines to add, or to give back when negative.
std::int64_t ScanBufferSizeManager::calcDelta(std::uint64_t needed) const
{
    const auto reserve = [](std::int64_t lines) { return std::max<std::int64_t>(lines / 9, 1); };
    const auto current = static_cast<std::int64_t>(m_currentLines);
    const auto wanted = static_cast<std::int64_t>(needed);
    if (current < wanted)
        return reserve(wanted) + wanted - current;
    const std::int64_t withoutMargin = current - m_margin;
    if (withoutMargin <= wanted)
        return 0;
    const std::int64_t smaller = withoutMargin - (withoutMargin + 99) / 100;
    return reserve(smaller) + smaller - current;
}

/// True when the buffer gave fewer lines than asked for.
bool ScanBufferSizeManager::adaptEntriesToSize()
{
    // An id that jumped must not overflow the count of lines; no buffer gives as many.
    constexpr std::uint64_t kMostLines = std::numeric_limits<std::uint32_t>::max() / 2;
    const std::uint64_t needed = std::min(linesNeeded(), kMostLines);
    const Kelm::MutexLocker lock(m_bufferMutex);
    if (!m_buffer)
        return false;
    const std::uint32_t lines = m_buffer->getNumberOfLines();
    if (lines != m_currentLines) {
        m_currentLines = lines;
        m_margin = marginOf(lines, 10);
    }
    const std::int64_t delta = calcDelta(needed);
    if (delta == 0)
        return false;
    const auto asked = static_cast<std::uint32_t>(m_currentLines + delta);
    m_currentLines = asked;
    m_margin = marginOf(asked, 9);
    return m_buffer->setNumberOfLines(asked) < asked;
}

} // namespace sbs
