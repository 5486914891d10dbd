#include "valueclasses/notifydistinction.h"

#include "platform/base/errorhandler.h"
#include "platform/base/kelmos.h"
#include "platform/base/sync.h"
#include "valueclasses/valuebase.h"

#include <QCoreApplication>
#include <QThread>

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
    Kelm::syncRelease(this);
    QCoreApplication::postEvent(this, new NotifyEvent(code, source));
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
    m_owner->NotifyObserversDistinct(notification->GetCode(), notification->GetSource());
}

} // namespace values
