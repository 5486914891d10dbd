#pragma once

#include "apps/receiver/input.h"
#include "apps/receiver/options.h"

#include <QByteArray>

#include <functional>
#include <memory>

namespace receiver {

/// Where scans go: a fast value map of one sample type whose scan buffer is served to windows.
/// Made, used and destroyed on the application thread; destroying it ends the service.
class ScanSink {
public:
    virtual ~ScanSink() = default;

    /// Serves samples of \a type. The configuration key "ScanBufferServerEndpoint" tells where.
    /// \throws KRException when that can't be listened on
    static std::unique_ptr<ScanSink> create(SampleType type, const Grid &grid);

    /// Stores one scan with a time above that of the last one.
    virtual void store(const Scan &scan, KRTimeStamp time) = 0;
    /// What windows connect to.
    virtual QByteArray endpoint() const = 0;
    /// Calls \a seen, on threads of the service, each time that a window asks for data of another
    /// kind. \a seen must stay callable until the sink is gone.
    virtual void onWindow(std::function<void()> seen) = 0;
};

} // namespace receiver
