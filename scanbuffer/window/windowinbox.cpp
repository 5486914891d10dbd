#include "scanbuffer/window/windowinbox.h"

#include <QCoreApplication>

#include <new>
#include <utility>
#include <vector>

namespace sbs {

namespace {

/// Keeps the memory of notes that were delivered for those to come. Any thread.
class NotePool {
public:
    void *take(std::size_t size)
    {
        const Kelm::MutexLocker locker(m_mutex);
        if (m_free.empty())
            return ::operator new(size);
        void *const block = m_free.back();
        m_free.pop_back();
        return block;
    }
    void giveBack(void *block)
    {
        const Kelm::MutexLocker locker(m_mutex);
        m_free.push_back(block);
    }

private:
    Kelm::Mutex m_mutex;
    std::vector<void *> m_free SPECTREE_GUARDED_BY(m_mutex);
};

// Never destroyed: the thread of a window that outlives main() still gives its last note back.
NotePool &notePool()
{
    static auto *const pool = new NotePool;
    return *pool;
}

/// Qt deletes an event after delivery, one for each note: the pool takes the memory back.
class NoteEvent : public QEvent {
public:
    NoteEvent() : QEvent(WindowInbox::noteType()) {}
    static void *operator new(std::size_t size) { return notePool().take(size); }
    static void operator delete(void *block) { notePool().giveBack(block); }
};

} // namespace

WindowInbox::WindowInbox(QObject *window) : m_window(window) {}

QEvent::Type WindowInbox::noteType()
{
    static const auto type = static_cast<QEvent::Type>(QEvent::registerEventType());
    return type;
}

void WindowInbox::postNote()
{
    if (m_pending.exchange(true, std::memory_order_acq_rel))
        return;
    const Kelm::MutexLocker locker(m_mutex);
    if (m_window == nullptr)
        return;
    auto *const note = new NoteEvent;
    Kelm::syncRelease(this);
    QCoreApplication::postEvent(m_window, note);
}

void WindowInbox::takeNote()
{
    Kelm::syncAcquire(this);
    m_pending.exchange(false, std::memory_order_acq_rel);
}

void WindowInbox::close()
{
    const Kelm::MutexLocker locker(m_mutex);
    m_window = nullptr;
}

void WindowInbox::addScanRate(double scansPerSecond)
{
    const Kelm::MutexLocker locker(m_mutex);
    m_scanRates.sum += scansPerSecond;
    ++m_scanRates.count;
}

WindowInbox::ScanRates WindowInbox::takeScanRates()
{
    const Kelm::MutexLocker locker(m_mutex);
    return std::exchange(m_scanRates, {});
}

} // namespace sbs
