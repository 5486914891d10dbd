#pragma once

#include "platform/base/sync.h"

namespace Kelm {

/// Holds a lock for reading that this thread may hold for reading already. A recursive lock
/// allows that too, but makes each lock for writing some three times as dear.
///
/// Lives on the stack; all that may meet on one lock are of this class.
class SPECTREE_EXPORT SPECTREE_SCOPED_CAPABILITY NestedReadLocker {
public:
    explicit NestedReadLocker(ReadWriteLock &lock)
        SPECTREE_ACQUIRE_SHARED(lock) SPECTREE_NO_THREAD_SAFETY_ANALYSIS;
    ~NestedReadLocker() SPECTREE_RELEASE_GENERIC() SPECTREE_NO_THREAD_SAFETY_ANALYSIS;
    NestedReadLocker(const NestedReadLocker &) = delete;
    NestedReadLocker &operator=(const NestedReadLocker &) = delete;

private:
    ReadWriteLock &m_lock;
    const NestedReadLocker *const m_outer; // of this thread, whatever its lock
    bool m_isFirst = true;                 // on its lock
};

} // namespace Kelm
