#include "valueclasses/notifydistinction.h"

#include "platform/base/errorhandler.h"
#include "platform/base/kelmos.h"
#include "valueclasses/valuebase.h"

#include <QCoreApplication>
#include <QPointer>
#include <QThread>

#include <algorithm>
#include <chrono>

namespace values {

NotifyDistinction::NotifyDistinction(ValueBase *owner) : m_owner(owner)
{
    if (CanCreateInstance())
        moveToThread(QCoreApplication::instance()->thread());
}

void NotifyDistinction::NotifyObservers(TChangeCode code, IObserver *source)
{
    if (IsMainThread()) {
        m_owner->NotifyObserversDistinct(code, source);
        return;
    }
    if (!notePosted(code, source))
        return; // the one that waits will show what this one is about
    Kelm::syncRelease(this);
    QCoreApplication::postEvent(this, new NotifyEvent(code, source));
}

std::vector<NotifyDistinction::Posted>::iterator NotifyDistinction::find(TChangeCode code,
                                                                         IObserver *source)
{
    return std::find_if(m_posted.begin(), m_posted.end(), [=](const Posted &posted) {
        return posted.code == code && posted.source == source;
    });
}

bool NotifyDistinction::notePosted(TChangeCode code, IObserver *source)
{
    const Kelm::MutexLocker lock(m_mutex);
    const auto same = find(code, source);
    if (same == m_posted.end())
        m_posted.push_back({code, source, 1});
    else if (m_countPosted >= kMaxWaiting)
        return false;
    else
        ++same->count;
    ++m_countPosted;
    return true;
}

void NotifyDistinction::noteDelivered(TChangeCode code, IObserver *source)
{
    const Kelm::MutexLocker lock(m_mutex);
    const auto same = find(code, source);
    if (same == m_posted.end())
        return; // posted by somebody else
    --m_countPosted;
    if (--same->count == 0)
        m_posted.erase(same);
}

void NotifyDistinction::PostChange(std::function<void()> change)
{
    bool first = false;
    {
        const Kelm::MutexLocker lock(m_mutex);
        // Never dropped: a lost end of a transaction would mute the value. But whoever floods an
        // application thread that doesn't run slows down.
        const auto limit = std::chrono::steady_clock::now() + std::chrono::seconds(1);
        while (m_waiting >= kMaxWaiting &&
               m_less.wait_until(m_mutex, limit) == std::cv_status::no_timeout) {
        }
        ++m_waiting;
        updatePosted();
        first = !std::exchange(m_traced, true);
    }
    if (first)
        SPECTREE_TRACE(TraceWarnings,
                       QStringLiteral("VTTHREADING: Changes of a recorded value in non-main thread "
                                      "are posted. ValueName: %1")
                           .arg(m_owner->GetName()));
    Kelm::post(this, [this, change = std::move(change)] { runChange(change); });
}

void NotifyDistinction::runChange(const std::function<void()> &change)
{
    const QPointer<NotifyDistinction> alive(this);
    // There is no caller left who could be told, and nothing may pass through the event loop.
    try {
        change();
    } catch (const std::exception &error) {
        SPECTREE_TRACE(
            TraceWarnings,
            QStringLiteral("A posted change was refused: %1").arg(QString::fromUtf8(error.what())));
    }
    if (alive.isNull())
        return; // the change told an observer, who deleted the value
    const Kelm::MutexLocker lock(m_mutex);
    --m_waiting;
    updatePosted();
    m_less.notify_one();
}

void NotifyDistinction::updatePosted()
{
    m_owner->setFlag(ValueBase::ChangesPosted, m_waiting > 0 || m_holds > 0);
}

NotifyDistinction::Hold::Hold(NotifyDistinction &of) : m_of(&of)
{
    const Kelm::MutexLocker lock(of.m_mutex);
    ++of.m_holds;
    of.updatePosted();
}

NotifyDistinction::Hold::~Hold()
{
    if (IsMainThread())
        release(m_of);
    else if (auto *const application = QCoreApplication::instance())
        Kelm::post(application, [of = m_of] { release(of); });
}

void NotifyDistinction::release(NotifyDistinction *of)
{
    if (of == nullptr)
        return;
    const Kelm::MutexLocker lock(of->m_mutex);
    --of->m_holds;
    of->updatePosted();
}

bool NotifyDistinction::IsMainThread() { return Kelm::isAcceptableThread(); }
bool NotifyDistinction::CanCreateInstance() { return QCoreApplication::instance() != nullptr; }

void NotifyDistinction::customEvent(QEvent *event)
{
    _Q_assert(KelmOS::Get().IsAppThread(), "KelmOS::Get().IsAppThread()", __FILE__, __LINE__);
    if (event->type() != NotifyEvent::kType)
        return;
    auto *notification = dynamic_cast<NotifyEvent *>(event);
    _Q_assert(notification != nullptr, "dynamic_cast<NotifyEvent*>(pEvent)", __FILE__, __LINE__);
    if (notification == nullptr)
        return;
    Kelm::syncAcquire(this);
    // First, so that a change from now on posts again.
    noteDelivered(notification->GetCode(), notification->GetSource());
    // Nothing may pass through the event loop. An observer may have deleted the value.
    try {
        m_owner->NotifyObserversDistinct(notification->GetCode(), notification->GetSource());
    } catch (const std::exception &error) {
        SPECTREE_TRACE(TraceWarnings, QStringLiteral("A posted notification broke off: %1")
                                          .arg(QString::fromUtf8(error.what())));
    }
}

} // namespace values
