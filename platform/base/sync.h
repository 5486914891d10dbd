#pragma once

#include "platform/base/export.h"
#include "platform/base/threadannotations.h"

#include <QMetaObject>
#include <QObject>
#include <QReadWriteLock>

#include <mutex>
#include <type_traits>
#include <utility>

/// Locks and posts between threads. They behave like Qt's and the standard library's, and tell
/// clang's analysis and the thread sanitizer what those can't see inside an uninstrumented Qt.
namespace Kelm {

/// Tell the thread sanitizer that what this thread did before is seen by the thread that calls
/// syncAcquire with the same address afterwards. Nothing at all in other builds.
SPECTREE_EXPORT void syncRelease(const void *address);
SPECTREE_EXPORT void syncAcquire(const void *address);

/// A plain mutex with annotations.
class SPECTREE_CAPABILITY("mutex") Mutex {
public:
    void lock() SPECTREE_ACQUIRE() { m_mutex.lock(); }
    void unlock() SPECTREE_RELEASE() { m_mutex.unlock(); }
    /// For std::condition_variable only.
    std::mutex &native() { return m_mutex; }

private:
    std::mutex m_mutex;
};

class SPECTREE_SCOPED_CAPABILITY MutexLocker {
public:
    explicit MutexLocker(Mutex &mutex) SPECTREE_ACQUIRE(mutex) : m_mutex(mutex) { mutex.lock(); }
    ~MutexLocker() SPECTREE_RELEASE() { m_mutex.unlock(); }
    MutexLocker(const MutexLocker &) = delete;
    MutexLocker &operator=(const MutexLocker &) = delete;

private:
    Mutex &m_mutex;
};

/// QReadWriteLock with annotations. For reading it is taken by a NestedReadLocker.
class SPECTREE_EXPORT SPECTREE_CAPABILITY("read-write lock") ReadWriteLock {
public:
    void lockForRead() SPECTREE_ACQUIRE_SHARED();
    void lockForWrite() SPECTREE_ACQUIRE();
    bool tryLockForWrite(int milliseconds) SPECTREE_TRY_ACQUIRE(true);
    void unlockRead() SPECTREE_RELEASE_SHARED();
    void unlockWrite() SPECTREE_RELEASE();

private:
    QReadWriteLock m_lock;
};

class SPECTREE_SCOPED_CAPABILITY WriteLocker {
public:
    explicit WriteLocker(ReadWriteLock &lock) SPECTREE_ACQUIRE(lock) : m_lock(lock)
    {
        lock.lockForWrite();
    }
    ~WriteLocker() SPECTREE_RELEASE() { m_lock.unlockWrite(); }
    WriteLocker(const WriteLocker &) = delete;
    WriteLocker &operator=(const WriteLocker &) = delete;

private:
    ReadWriteLock &m_lock;
};

/// Held by both sides while something goes through Qt from one thread to another: a connection that
/// is made while another thread emits, work that is put into a queue. The thread sanitizer then
/// sees the hand-over that Qt does by itself. Recursive; nothing at all in other builds.
class SPECTREE_EXPORT QtGate {
public:
    QtGate();
    ~QtGate();
    QtGate(const QtGate &) = delete;
    QtGate &operator=(const QtGate &) = delete;
};

namespace Detail {
/// Work in the queue of another thread. It releases and acquires its own address, from where it
/// was put last, since every byte of it is handed over.
template <typename Work>
class PostedWork {
public:
    explicit PostedWork(Work work) : m_work(std::move(work)) {}
    PostedWork(PostedWork &&other) : m_work(std::move(other.m_work)) { syncRelease(this); }
    ~PostedWork() { syncAcquire(this); }
    void operator()()
    {
        {
            const QtGate gate;
        }
        syncAcquire(this);
        m_work();
    }

private:
    Work m_work;
};
} // namespace Detail

/// Runs \a work on the thread of \a receiver, later, in the order of the posts. Dropped unrun when
/// the receiver is destroyed first. Any thread may call it while the receiver lives.
template <typename Work>
void post(QObject *receiver, Work &&work)
{
    const QtGate gate;
    QMetaObject::invokeMethod(receiver,
                              Detail::PostedWork<std::decay_t<Work>>(std::forward<Work>(work)),
                              Qt::QueuedConnection);
}

} // namespace Kelm
