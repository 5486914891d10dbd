#pragma once

#include "platform/base/sync.h"
#include "valueclasses/changecode.h"

#include <QEvent>
#include <QObject>
#include <QPointer>

#include <condition_variable>
#include <functional>
#include <vector>

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

/// Hands the notifications and the changes of one value over to the application thread. It lives
/// there; any thread may call NotifyObservers. What is under way when it is destroyed is dropped.
class SPECTREE_EXPORT NotifyDistinction : public QObject {
public:
    /// \a owner isn't owned and outlives this object. Any thread may make one.
    explicit NotifyDistinction(ValueBase *owner);

    /// Posts when the caller isn't on the application thread, else notifies at once. Behind 10 000
    /// that wait, one with the code and source of a waiting one isn't posted again.
    void NotifyObservers(TChangeCode code, IObserver *source);
    /// Posts \a change, as ValueBase::PostChange tells. Not on the application thread.
    void PostChange(std::function<void()> change);

    /// While one lives, changes of other threads are posted. Owned by a posted change; any thread
    /// may drop it, the application thread ends it.
    class SPECTREE_EXPORT Hold {
    public:
        explicit Hold(NotifyDistinction &of);
        ~Hold();
        Hold(const Hold &) = delete;
        Hold &operator=(const Hold &) = delete;

    private:
        QPointer<NotifyDistinction> m_of; // read on the application thread only
    };

    /// True on the application thread, and while none is known.
    static bool IsMainThread();
    /// True once there is an application object.
    static bool CanCreateInstance();

protected:
    void customEvent(QEvent *event) override;

private:
    static constexpr int kMaxWaiting = 10000;

    /// Notifications of one code and source that are posted and not delivered.
    struct Posted {
        TChangeCode code;
        IObserver *source;
        int count;
    };

    std::vector<Posted>::iterator find(TChangeCode code, IObserver *source)
        SPECTREE_REQUIRES(m_mutex);
    bool notePosted(TChangeCode code, IObserver *source);
    void noteDelivered(TChangeCode code, IObserver *source);
    void runChange(const std::function<void()> &change);
    void updatePosted() SPECTREE_REQUIRES(m_mutex);
    static void release(NotifyDistinction *of);

    ValueBase *m_owner;
    Kelm::Mutex m_mutex;
    std::condition_variable_any m_less;             // fewer changes wait than did
    int m_waiting SPECTREE_GUARDED_BY(m_mutex) = 0; // changes
    int m_holds SPECTREE_GUARDED_BY(m_mutex) = 0;
    int m_countPosted SPECTREE_GUARDED_BY(m_mutex) = 0;
    std::vector<Posted> m_posted SPECTREE_GUARDED_BY(m_mutex); // few, and none of a count of 0
    bool m_traced SPECTREE_GUARDED_BY(m_mutex) = false;
};

} // namespace values
