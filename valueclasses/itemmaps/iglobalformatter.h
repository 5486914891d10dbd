#pragma once

#include "platform/base/export.h"

#include <QString>

namespace values {

/// How an application words what stands in the columns of its lists. Adapters of items ask the one
/// that is set; what they can't word without one stays empty.
///
/// Ownership: the application's; it sets null before its formatter goes. Threads: the application
/// thread.
class SPECTREE_EXPORT IGlobalFormatter {
public:
    virtual ~IGlobalFormatter() = default;
    virtual QString GetFrequencyText(double hertz) const = 0;
    virtual QString GetBandwidthText(double hertz) const = 0;
    /// Degrees, east and north positive.
    virtual QString GetPositionText(double longitude, double latitude) const = 0;

    /// Null at first.
    static const IGlobalFormatter *Get();
    static void Set(const IGlobalFormatter *formatter);
};

} // namespace values
