#include "platform/base/observable.h"

#include <algorithm>
#include <iterator>
#include <memory>

/// One running notification; it outlives its Observable when an observer destroys that.
struct Observable::Call {
    Observable *subject;
    Call *outer;
    IObserver *source;
    bool disturbed = false; // the list has moved, or the subject is gone
    // Of the outermost call: wishes that wait for its end. Few calls have any.
    std::unique_ptr<std::vector<IObserver *>> toFront;

    Call(Observable *observable, IObserver *from)
        : subject(observable), outer(observable->m_running), source(from)
    {
        observable->m_running = this;
    }
    ~Call()
    {
        if (subject != nullptr)
            subject->endCall(*this);
    }
};

Observable::~Observable()
{
    disturbCalls();
    for (Call *call = m_running; call != nullptr; call = call->outer)
        call->subject = nullptr;
}

void Observable::disturbCalls()
{
    for (Call *call = m_running; call != nullptr; call = call->outer)
        call->disturbed = true;
}

void Observable::AddObserver(IObserver *observer)
{
    if (observer == nullptr ||
        std::find(m_observers.begin(), m_observers.end(), observer) != m_observers.end())
        return;
    m_observers.push_back(observer);
    ++m_count;
    disturbCalls();
}

void Observable::DeleteObserver(IObserver *observer)
{
    const auto found = std::find(m_observers.begin(), m_observers.end(), observer);
    if (observer == nullptr || found == m_observers.end())
        return;
    --m_count;
    if (m_running != nullptr)
        *found = nullptr;
    else
        m_observers.erase(found);
}

void Observable::DeleteObservers()
{
    m_count = 0;
    if (m_running != nullptr)
        std::fill(m_observers.begin(), m_observers.end(), nullptr);
    else
        m_observers.clear();
}

void Observable::MakeFirstObserver(IObserver *observer)
{
    Call *outermost = m_running;
    while (outermost != nullptr && outermost->outer != nullptr)
        outermost = outermost->outer;
    if (outermost == nullptr)
        return moveToFront(observer);
    if (outermost->toFront == nullptr)
        outermost->toFront = std::make_unique<std::vector<IObserver *>>();
    outermost->toFront->push_back(observer);
}

void Observable::moveToFront(IObserver *observer)
{
    const auto found = std::find(m_observers.begin(), m_observers.end(), observer);
    if (observer != nullptr && found != m_observers.end())
        std::rotate(m_observers.begin(), found, found + 1);
}

std::vector<IObserver *> Observable::GetObservers() const
{
    std::vector<IObserver *> present;
    present.reserve(m_count);
    std::copy_if(m_observers.begin(), m_observers.end(), std::back_inserter(present),
                 [](const IObserver *observer) { return observer != nullptr; });
    return present;
}

IObserver *Observable::GetNotificationSource() const
{
    return m_running != nullptr ? m_running->source : nullptr;
}

void Observable::NotifyObservers(TChangeCode code, IObserver *source)
{
    Call call(this, source);
    if (source == nullptr)
        callObservers(call, code, [](const IObserver *) { return false; });
    else // which may be gone by now, so it is compared and never asked
        callObservers(call, code, [source](const IObserver *observer) {
            return observer == source || observer->KnownAs() == source;
        });
}

template <typename IsSource>
inline void Observable::callObservers(Call &call, TChangeCode code, IsSource isSource)
{
    IObserver *const *list = m_observers.data();
    const std::size_t count = m_observers.size();
    for (std::size_t i = 0; i < count; ++i) {
        IObserver *const observer = list[i];
        if (observer == nullptr || isSource(observer))
            continue;
        observer->Update(this, code);
        if (!call.disturbed) [[likely]]
            continue;
        if (call.subject == nullptr)
            return;
        call.disturbed = false;
        list = m_observers.data();
    }
}

void Observable::endCall(Call &call)
{
    m_running = call.outer;
    if (m_running != nullptr)
        return;
    if (m_count != m_observers.size())
        m_observers.erase(std::remove(m_observers.begin(), m_observers.end(), nullptr),
                          m_observers.end());
    if (call.toFront != nullptr)
        for (IObserver *observer : *call.toFront)
            moveToFront(observer);
    NotificationEnded();
}
