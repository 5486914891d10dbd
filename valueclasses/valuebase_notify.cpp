// Observers: notification, its hand-over to the application thread, deletion by the last observer.
#include "platform/base/errorhandler.h"
#include "platform/base/kelmos.h"
#include "platform/base/kelmos_p.h"
#include "platform/base/sync.h"
#include "valueclasses/commands/valuecommands.h"
#include "valueclasses/notifydistinction.h"
#include "valueclasses/valuebase.h"
#include "valueclasses/valuebase_p.h"

namespace values {

namespace {

void traceRecursion(const ValueBase &value)
{
    SPECTREE_TRACE(TraceWarnings,
                   QStringLiteral("VTTHREADING: Recursion in deletion notify for Item : %1")
                       .arg(value.GetPathName()));
}

} // namespace

void ValueBase::HasChanged(TChangeCode code, IObserver *source)
{
    if (PostIfForeign([=, this] { ValueBase::HasChanged(code, source); }))
        return;
    if (Record())
        RecordCommand(new CommandHasChanged(this, code, source));
    if (!hasFlag(NotifyEnabled))
        setFlag(NotifyEnabled, true);
    NotifyObservers(code, source);
}

void ValueBase::NotifyObservers(TChangeCode code, IObserver *source)
{
    if (Kelm::Detail::isAcceptableThread() || Kelm::isUnloading()) [[likely]] {
        if (hasFlag(NotifyEnabled))
            notifyHere(code, source);
        return;
    }
    // Whether a transaction holds it back is only known behind the changes that wait.
    if (PostIfForeign([=, this] { ValueBase::NotifyObservers(code, source); }) ||
        !hasFlag(NotifyEnabled))
        return;
    if (!hasFlag(HandsOver))
        failWrongThread(code);
    handOver().NotifyObservers(code, source);
}

void ValueBase::NotifyObserversDistinct(TChangeCode code, IObserver *source)
{
    if (!Kelm::isAcceptableThread() && !Kelm::isUnloading()) [[unlikely]] {
        SPECTREE_TRACE(TraceWarnings,
                       QStringLiteral("VTTHREADING: Notifying in non-main thread for Item : %1")
                           .arg(GetPathName()));
        Kelm::terminate();
    }
    notifyHere(code, source);
}

inline void ValueBase::notifyHere(TChangeCode code, IObserver *source)
{
    if (m_state == VS_DELETED && IsNotifying()) [[unlikely]]
        traceRecursion(*this);
    Observable::NotifyObservers(code, source); // an observer may have deleted this value
}

void ValueBase::NotificationEnded()
{
    if (m_rare != nullptr)
        releaseCommands();
}

void ValueBase::failWrongThread(TChangeCode code) const
{
    const bool dying = code == CC_STATE && m_state == VS_DELETED;
    const QString text =
        dying ? QStringLiteral(
                    "Could not notify observers in the main thread\nwhile deleting value \"%1\" of "
                    "type \"%2\".\nMaybe QApplication::qApp is already deleted.\nObservers will be "
                    "notified in the current thread.\n")
                    .arg(m_name, GetTypeName())
              : QStringLiteral(
                    "Could not notify observers in the main thread\nThe value \"%1\" of type "
                    "\"%2\" is not able to notify its observers.\nMaybe there is no instance of "
                    "QApplication::qApp.\n")
                    .arg(m_name, GetTypeName());
    SPECTREE_TRACE(TraceWarnings, text);
    Kelm::terminate();
}

bool ValueBase::isForeignThread() const
{
    return hasFlag(HandsOver) && !Kelm::isAcceptableThread() && !Kelm::isUnloading();
}

NotifyDistinction &ValueBase::handOver()
{
    NotifyDistinction *present = m_handOver.load(std::memory_order_acquire);
    if (present != nullptr)
        return *present;
    auto made = std::make_unique<NotifyDistinction>(this);
    Kelm::syncRelease(made.get());
    if (m_handOver.compare_exchange_strong(present, made.get(), std::memory_order_acq_rel))
        return *made.release();
    made.release()->deleteLater(); // another thread was first
    return *present;
}

void ValueBase::PostChange(std::function<void()> change)
{
    handOver().PostChange(std::move(change));
}

void ValueBase::DeleteObserver(IObserver *observer)
{
    Observable::DeleteObserver(observer);
    if (IsAutoDelete() && !HasObservers())
        delete this;
}

void ValueBase::DeleteObservers()
{
    Observable::DeleteObservers();
    if (IsAutoDelete())
        delete this;
}

} // namespace values
