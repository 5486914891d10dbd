#pragma once

#include "platform/base/export.h"

#include <algorithm>
#include <vector>

namespace values {

/// Somebody who shows what can be undone. It may be told in the middle of a setter, before the new
/// state is stored: it may delete values, but none that is being assigned with "=", and must not
/// change one that has the manager, nor end who tells it.
class SPECTREE_EXPORT IUndoRecordingsListener {
public:
    virtual ~IUndoRecordingsListener() = default;
    /// The set of finished stacks is another one now.
    virtual void OnUndoRecordingsChanged() = 0;
};

/// Somebody who must know that changes come from undo.
class SPECTREE_EXPORT IUndoExecutionListener {
public:
    virtual ~IUndoExecutionListener() = default;
    virtual void OnUndoExecutionStart() = 0;
    virtual void OnUndoExecutionEnd() = 0;
};

/// Listeners in the order in which they came; a call may add and remove any. Not owned.
template <typename Listener>
class UndoListenerNotifier {
public:
    void Add(Listener *listener)
    {
        if (listener != nullptr && !has(listener))
            m_listeners.push_back(listener);
    }
    void Remove(Listener *listener)
    {
        m_listeners.erase(std::remove(m_listeners.begin(), m_listeners.end(), listener),
                          m_listeners.end());
    }
    void Notify(void (Listener::*operation)()) const
    {
        const std::vector<Listener *> present = m_listeners;
        for (Listener *listener : present)
            if (has(listener)) // an earlier one may have removed it
                (listener->*operation)();
    }

private:
    bool has(const Listener *listener) const
    {
        return std::find(m_listeners.begin(), m_listeners.end(), listener) != m_listeners.end();
    }

    std::vector<Listener *> m_listeners;
};

using UndoRecordingsListenerNotifier = UndoListenerNotifier<IUndoRecordingsListener>;
using UndoExecutionListenerNotifier = UndoListenerNotifier<IUndoExecutionListener>;

} // namespace values
