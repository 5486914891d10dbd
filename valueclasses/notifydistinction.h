#pragma once

#include "valueclasses/changecode.h"

#include <QEvent>
#include <QObject>

namespace values {

class ValueBase;

/// A notification on its way to the application thread.
class SPECTREE_EXPORT NotifyEvent : public QEvent {
public:
    static constexpr QEvent::Type kType = QEvent::Type(1010);
    NotifyEvent(TChangeCode code, IObserver *source) : QEvent(kType), m_code(code), m_source(source)
    {
    }
    TChangeCode GetCode() const { return m_code; }
    IObserver *GetSource() const { return m_source; }

private:
    TChangeCode m_code;
    IObserver *m_source;
};

/// Hands the notifications of one value over to the application thread. It lives there; any thread
/// may call NotifyObservers. What is under way when it is destroyed is dropped.
class SPECTREE_EXPORT NotifyDistinction : public QObject {
public:
    /// \a owner isn't owned and outlives this object. Any thread may make one.
    explicit NotifyDistinction(ValueBase *owner);

    /// Posts when the caller isn't on the application thread, else notifies at once.
    void NotifyObservers(TChangeCode code, IObserver *source);

    /// True on the application thread, and while none is known.
    static bool IsMainThread();
    /// True once there is an application object.
    static bool CanCreateInstance();

protected:
    void customEvent(QEvent *event) override;

private:
    ValueBase *m_owner;
};

} // namespace values
