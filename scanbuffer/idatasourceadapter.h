#pragma once

#include "platform/base/export.h"
#include "scanbuffer/adaptertype.h"

class MData;

namespace sbs {

/// What the rest of the data source sees of an adapter. On the thread of its window.
class SPECTREE_EXPORT IDataSourceAdapter {
public:
    virtual ~IDataSourceAdapter();
    /// A command of the display. A type that the adapter doesn't know changes nothing.
    virtual void SetParameter(const MData &parameter);
    virtual Adapter_Type GetType() const = 0;
    virtual void SetType(Adapter_Type type) = 0;
    /// The tick of the window's timer, for the adapters that run on it.
    virtual void process();
};

/// Somebody who wants to know how many scans arrive in a second.
class SPECTREE_EXPORT IScansPerSecondReceiver {
public:
    virtual ~IScansPerSecondReceiver();
    virtual void SetScansPerSecond(double scansPerSecond) = 0;
};

} // namespace sbs
