#pragma once

#include "platform/base/export.h"

#include <map>
#include <string>

namespace Kelm {

/// Counts the living instances of long-lived classes in builds without NDEBUG, so that a test
/// program can end by asking whether one was left behind. Any thread.
class SPECTREE_EXPORT InstanceCounter {
public:
    static void add(const char *name, int delta);
    /// Class name to number of living instances; classes with none are left out.
    static std::map<std::string, int> alive();
};

/// Derive a class from Counted<itself>, or hold one as a member; `static constexpr const char *`
/// kInstanceName in the class gives the name.
template <typename T>
class Counted {
#if !defined(NDEBUG)
public:
    Counted() { InstanceCounter::add(T::kInstanceName, 1); }
    Counted(const Counted &) { InstanceCounter::add(T::kInstanceName, 1); }
    Counted &operator=(const Counted &) = default;

protected:
    ~Counted() { InstanceCounter::add(T::kInstanceName, -1); }
#endif
};

} // namespace Kelm
