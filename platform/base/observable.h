#pragma once

#include "platform/base/export.h"

#include <cstddef>
#include <vector>

class Observable;

/// What changed; the numbers and their names stand in valueclasses/changecode.h.
enum TChangeCode : int;

/// Somebody who wants to know of changes. Not owned by what it observes.
class SPECTREE_EXPORT IObserver {
public:
    virtual ~IObserver() = default;
    /// Called on the thread of the observed object. May add, remove and delete observers, itself
    /// and \a subject included.
    virtual void Update(Observable *subject, TChangeCode code) = 0;
    /// Whom this observer stands for: as a source of a change it is skipped under both names.
    virtual const IObserver *KnownAs() const { return this; }
};

/// Something whose changes can be observed. One thread at a time.
class SPECTREE_EXPORT Observable {
public:
    Observable() = default;
    Observable(const Observable &) {}                           // observers are not copied
    Observable &operator=(const Observable &) { return *this; } // nor replaced
    virtual ~Observable();

    /// Adds an observer at the end; one that is there already changes nothing.
    virtual void AddObserver(IObserver *observer);
    virtual void DeleteObserver(IObserver *observer);
    virtual void DeleteObservers();
    /// Moves an observer to the front; during a notification from its end on.
    void MakeFirstObserver(IObserver *observer);
    /// The observers in the order in which they are called.
    std::vector<IObserver *> GetObservers() const;
    bool HasObservers() const { return m_count != 0; }

    /// Calls every observer but \a source, in order, without allocating. One that is removed during
    /// the call is not called any more, one that is added is not called yet; this object may be
    /// destroyed by an observer, which ends the call.
    virtual void NotifyObservers(TChangeCode code, IObserver *source);
    /// The source of the innermost call that runs, for an observer that forwards it; else null.
    IObserver *GetNotificationSource() const;

protected:
    /// True while a call of NotifyObservers runs.
    bool IsNotifying() const { return m_running != nullptr; }
    /// Called when the outermost NotifyObservers ends, unless this object was destroyed by then.
    virtual void NotificationEnded() {}

private:
    struct Call;
    void endCall(Call &call);
    void disturbCalls();
    template <typename IsSource>
    void callObservers(Call &call, TChangeCode code, IsSource isSource);
    void moveToFront(IObserver *observer);

    std::vector<IObserver *> m_observers; // null: removed while a call was running
    std::size_t m_count = 0;              // entries that are not null
    Call *m_running = nullptr;            // innermost running call
};
