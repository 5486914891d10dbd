#pragma once

#include "platform/base/export.h"
#include "platform/base/types.h"

/// The platform services: which thread is which, and what time it is.
///
/// The application thread is the one that made the QCoreApplication. Before there is one, and after
/// it is gone, every thread is acceptable. Any thread may ask; a thread check is one compare.
class SPECTREE_EXPORT IKelmOS {
public:
    virtual ~IKelmOS() = default;
    /// True on the application thread; false when no application thread is known.
    virtual bool IsAppThread() const = 0;
    /// True where values may be touched: on the application thread, or while none is known.
    virtual bool IsAcceptableThread() const = 0;
    /// True once an application thread has been determined.
    virtual bool IsAppThreadKnown() const = 0;
    /// Microseconds since 1970 UTC.
    virtual KRTimeStamp GetCurrentTime() const = 0;
    /// Milliseconds of a clock that never runs back.
    virtual std::uint64_t GetTickCount() const = 0;
};

class SPECTREE_EXPORT KelmOS {
public:
    static const IKelmOS &Get();
};

namespace Kelm {

/// IKelmOS::IsAcceptableThread without the object, for checks on hot paths.
SPECTREE_EXPORT bool isAcceptableThread();
/// True from the moment the library begins to unload; thread checks are waived then.
SPECTREE_EXPORT bool isUnloading();
/// For tests and for the unload itself.
SPECTREE_EXPORT void setUnloading(bool unloading);
/// Where a rule of this library ends the process; std::terminate() behind one name.
[[noreturn]] SPECTREE_EXPORT void terminate();

} // namespace Kelm
