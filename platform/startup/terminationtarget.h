#pragma once

#include "platform/base/export.h"

/// Something that must stop before the application object goes. Application thread.
///
/// A target registers itself by living; aboutToTerminate is called once, at the latest when the
/// QCoreApplication is destroyed, the newest target first. Targets may go away during the call.
/// Behind the last of them Kelm::isUnloading() is true, until there is an application object again.
class SPECTREE_EXPORT IAbstractTerminationTarget {
public:
    IAbstractTerminationTarget();
    virtual ~IAbstractTerminationTarget();
    IAbstractTerminationTarget(const IAbstractTerminationTarget &) = delete;
    IAbstractTerminationTarget &operator=(const IAbstractTerminationTarget &) = delete;

    virtual void aboutToTerminate() = 0;
};
