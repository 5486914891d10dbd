#pragma once

#include "valueclasses/isupporttransaction.h"

namespace values {

/// Tells whether a value was destroyed since: an observer may delete the value on which an
/// operation runs, so one of several steps asks between them.
///
///     const LifeWatch watch(this);
///     SetMinMax(minimum, maximum, step, source);
///     if (!watch.IsGone())
///         SetValue(value, source);
///
/// Costs a few stores, in the watch and on the thread; nothing in the value.
/// Threads: a watch ends on the thread that made it, and sees only what is destroyed there.
class SPECTREE_EXPORT LifeWatch {
public:
    /// Watches nothing, which is gone.
    LifeWatch() = default;
    explicit LifeWatch(ISupportTransaction *subject);
    LifeWatch(LifeWatch &&other) noexcept;
    LifeWatch &operator=(LifeWatch &&other) noexcept;
    ~LifeWatch() { end(); }

    bool IsGone() const { return m_subject == nullptr; }
    /// Null when it is gone.
    ISupportTransaction *Subject() const { return m_subject; }

private:
    friend class ISupportTransaction;
    static void tellDestroyed(const ISupportTransaction *subject);
    void begin(ISupportTransaction *subject);
    void end();

    ISupportTransaction *m_subject = nullptr;
    LifeWatch *m_next = nullptr; // of this thread's watches, the newest first
    LifeWatch **m_at = nullptr;  // what points here
};

} // namespace values
