#include "platform/startup/terminationtarget.h"

#include "platform/base/kelmos.h"
#include "platform/base/sync.h"

#include <QCoreApplication>

#include <algorithm>
#include <vector>

namespace {

struct Targets {
    Kelm::Mutex mutex;
    std::vector<IAbstractTerminationTarget *> living SPECTREE_GUARDED_BY(mutex);
};

// Never destroyed: targets of static storage leave after everything else.
Targets &targets()
{
    static auto *const all = new Targets;
    return *all;
}

IAbstractTerminationTarget *takeNewest()
{
    Kelm::MutexLocker locker(targets().mutex);
    auto &living = targets().living;
    if (living.empty())
        return nullptr;
    IAbstractTerminationTarget *newest = living.back();
    living.pop_back();
    return newest;
}

void terminateAll()
{
    while (IAbstractTerminationTarget *target = takeNewest())
        target->aboutToTerminate();
    Kelm::setUnloading(true);
}

void watchApplication() { qAddPostRoutine(terminateAll); }
Q_COREAPP_STARTUP_FUNCTION(watchApplication)

} // namespace

IAbstractTerminationTarget::IAbstractTerminationTarget()
{
    Kelm::MutexLocker locker(targets().mutex);
    targets().living.push_back(this);
}

IAbstractTerminationTarget::~IAbstractTerminationTarget()
{
    Kelm::MutexLocker locker(targets().mutex);
    auto &living = targets().living;
    living.erase(std::remove(living.begin(), living.end(), this), living.end());
}
