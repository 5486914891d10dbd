#pragma once

#include "platform/base/export.h"

#include <memory>

namespace Kelm {

/// Somebody whom a timer calls.
class SPECTREE_EXPORT IHasTimerCallback {
public:
    virtual ~IHasTimerCallback() = default;
    virtual void OnTimer(int id) = 0;
};

/// Repeating timers on the event loop of the thread that started them. Destroying it ends them.
class SPECTREE_EXPORT ObjectTimer {
public:
    /// \a target is not owned and must outlive the timer.
    static std::unique_ptr<ObjectTimer> create(IHasTimerCallback *target);
    virtual ~ObjectTimer() = default;
    /// Starts one more timer of \a milliseconds; returns its id, 0 when the thread has no loop.
    virtual int StartTimer(int milliseconds) = 0;
    virtual void KillTimers() = 0;
};

} // namespace Kelm
