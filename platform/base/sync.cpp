#include "platform/base/sync.h"

#if defined(__SANITIZE_THREAD__)
#define SPECTREE_UNDER_TSAN 1
#elif defined(__has_feature)
#if __has_feature(thread_sanitizer)
#define SPECTREE_UNDER_TSAN 1
#endif
#endif

#if defined(SPECTREE_UNDER_TSAN)
extern "C" void __tsan_acquire(void *address);
extern "C" void __tsan_release(void *address);
#endif

namespace Kelm {

namespace {

// The locks call these directly: an exported function can't be inlined, and each scan takes three
// locks.
inline void release([[maybe_unused]] const void *address)
{
#if defined(SPECTREE_UNDER_TSAN)
    __tsan_release(const_cast<void *>(address));
#endif
}

inline void acquire([[maybe_unused]] const void *address)
{
#if defined(SPECTREE_UNDER_TSAN)
    __tsan_acquire(const_cast<void *>(address));
#endif
}

} // namespace

void syncRelease(const void *address) { release(address); }
void syncAcquire(const void *address) { acquire(address); }

#if defined(SPECTREE_UNDER_TSAN)
namespace {
std::recursive_mutex qtMutex;
}
QtGate::QtGate() { qtMutex.lock(); }
QtGate::~QtGate() { qtMutex.unlock(); }
#else
QtGate::QtGate() = default;
QtGate::~QtGate() = default;
#endif

void ReadWriteLock::lockForRead()
{
    m_lock.lockForRead();
    acquire(this);
}

void ReadWriteLock::lockForWrite()
{
    m_lock.lockForWrite();
    acquire(this);
}

bool ReadWriteLock::tryLockForWrite(int milliseconds)
{
    const bool locked = m_lock.tryLockForWrite(milliseconds);
    if (locked)
        acquire(this);
    return locked;
}

void ReadWriteLock::unlockRead()
{
    release(this);
    m_lock.unlock();
}

void ReadWriteLock::unlockWrite()
{
    release(this);
    m_lock.unlock();
}

} // namespace Kelm
