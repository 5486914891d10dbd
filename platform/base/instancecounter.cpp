#include "platform/base/instancecounter.h"

#include <mutex>

namespace Kelm {
namespace {

struct Register {
    std::mutex mutex;
    std::map<std::string, int> counts; // guarded by mutex
};

Register &instances()
{
    // Never destroyed: objects with static storage may count down after everything else is gone.
    static auto *const all = new Register;
    return *all;
}

} // namespace

void InstanceCounter::add(const char *name, int delta)
{
    Register &all = instances();
    const std::lock_guard lock(all.mutex);
    all.counts[name] += delta;
}

std::map<std::string, int> InstanceCounter::alive()
{
    Register &all = instances();
    const std::lock_guard lock(all.mutex);
    std::map<std::string, int> left;
    for (const auto &[name, count] : all.counts)
        if (count != 0)
            left.emplace(name, count);
    return left;
}

} // namespace Kelm
