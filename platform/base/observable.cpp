#include "platform/base/observable.h"

#include <algorithm>
#include <iterator>
#include <memory>

/// One running notification; it outlives its Observable when an observer destroys that.
struct Observable::Call {
    Observable *subject;
    Call *outer;
    IObserver *source;
    // How many observers may be called without another look: 0 once the list has moved or the
    // subject is gone, so that the loop asks for all of this and its end at once.
    std::size_t limit = 0;
    // Of the outermost call: wishes that wait for its end. Few calls have any.
    std::unique_ptr<std::vector<IObserver *>> toFront;

    Call(Observable *observable, IObserver *from)
        : subject(observable), outer(observable->m_running), source(from)
    {
        observable->m_running = this;
    }
    ~Call()
    {
        if (subject == nullptr)
            return;
        subject->m_running = outer;
        if (outer != nullptr)
            return;
        if (subject->m_count != subject->m_observers.size() || toFront != nullptr) [[unlikely]]
            subject->endCall(*this);
        subject->NotificationEnded();
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
        call->limit = 0;
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
    const std::size_t count = m_observers.size();
    for (std::size_t i = 0; i < count && call.subject != nullptr;) {
        IObserver *const *const list = m_observers.data();
        call.limit = count;
        do {
            IObserver *const observer = list[i++];
            if (observer != nullptr && !isSource(observer))
                observer->Update(this, code);
        } while (i < call.limit);
    }
}

/// What the outermost call leaves to do.
void Observable::endCall(Call &call)
{
    if (m_count != m_observers.size())
        m_observers.erase(std::remove(m_observers.begin(), m_observers.end(), nullptr),
                          m_observers.end());
    if (call.toFront != nullptr)
        for (IObserver *observer : *call.toFront)
            moveToFront(observer);
}
