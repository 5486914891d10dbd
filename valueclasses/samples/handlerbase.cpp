#include "valueclasses/samples/handlerbase.h"

#include "platform/base/krexception.h"
#include "platform/base/sync.h"

namespace values {
namespace {

struct SharedUnit {
    Kelm::Mutex mutex;
    QString unit SPECTREE_GUARDED_BY(mutex);
};

SharedUnit &sharedUnit()
{
    // Never destroyed: a thread that still runs at exit may come here.
    static auto *const shared = new SharedUnit;
    return *shared;
}

} // namespace

std::atomic<char> HandlerBase::s_mode{DataRaw};

bool HandlerBase::SetDataCompressMode(char mode)
{
    s_mode.store(mode, std::memory_order_relaxed);
    return true;
}

QString HandlerBase::GetLevelUnit()
{
    SharedUnit &shared = sharedUnit();
    const Kelm::MutexLocker lock(shared.mutex);
    return shared.unit;
}

void HandlerBase::SetLevelUnit(const QString &unit)
{
    SharedUnit &shared = sharedUnit();
    const Kelm::MutexLocker lock(shared.mutex);
    shared.unit = unit;
}

void HandlerBase::throwDimension(const char *message, const char *className,
                                 const char *functionName)
{
    throw KRException(QString::fromLatin1(message), __FILE__, className, functionName, __LINE__);
}

} // namespace values
