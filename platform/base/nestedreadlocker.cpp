#include "platform/base/nestedreadlocker.h"

namespace Kelm {
namespace {

thread_local const NestedReadLocker *t_innermost = nullptr;

} // namespace

NestedReadLocker::NestedReadLocker(ReadWriteLock &lock) : m_lock(lock), m_outer(t_innermost)
{
    for (const NestedReadLocker *outer = m_outer; outer && m_isFirst; outer = outer->m_outer)
        m_isFirst = &outer->m_lock != &lock;
    if (m_isFirst)
        m_lock.lockForRead();
    t_innermost = this;
}

NestedReadLocker::~NestedReadLocker()
{
    t_innermost = m_outer;
    if (m_isFirst)
        m_lock.unlockRead();
}

} // namespace Kelm
