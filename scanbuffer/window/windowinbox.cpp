#include "scanbuffer/window/windowinbox.h"

#include <QCoreApplication>

#include <algorithm>
#include <new>
#include <utility>

namespace sbs {

namespace {

/// Keeps the memory of notes that were delivered for those to come. Any thread.
class NotePool {
public:
    /// All blocks have one size.
    void *take(std::size_t size)
    {
        const Kelm::MutexLocker locker(m_mutex);
        if (m_free == nullptr)
            return ::operator new(std::max(size, sizeof(Block)));
        return std::exchange(m_free, m_free->next);
    }
    /// The list stands in the blocks themselves: a delete can't wait for memory.
    void giveBack(void *memory) noexcept
    {
        const Kelm::MutexLocker locker(m_mutex);
        m_free = new (memory) Block{m_free};
    }

private:
    struct Block {
        Block *next;
    };

    Kelm::Mutex m_mutex;
    Block *m_free SPECTREE_GUARDED_BY(m_mutex) = nullptr;
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
    static void operator delete(void *block) noexcept { notePool().giveBack(block); }
};

} // namespace

WindowInbox::WindowInbox(QObject *window) : m_window(window) {}

QEvent::Type WindowInbox::noteType()
{
    static const auto type = static_cast<QEvent::Type>(QEvent::registerEventType());
    return type;
}

void WindowInbox::postNote() noexcept
{
    if (m_pending.exchange(true, std::memory_order_acq_rel))
        return;
    const Kelm::MutexLocker locker(m_mutex);
    if (m_window == nullptr)
        return;
    try {
        auto *const note = new NoteEvent;
        Kelm::syncRelease(this);
        QCoreApplication::postEvent(m_window, note);
    } catch (const std::bad_alloc &) {
        // The read timer finds the data too. Left pending, no note would ever be posted again.
        m_pending.store(false, std::memory_order_release);
    }
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
