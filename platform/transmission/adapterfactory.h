#pragma once

#include "platform/base/export.h"

#include <QByteArray>
#include <QString>

#include <memory>

namespace sbs {

class Adapter;
class IAdapterController;

/// Makes the adapters of one server. Called on the threads of the controllers, several at a time.
class SPECTREE_EXPORT IAdapterFactory {
public:
    virtual ~IAdapterFactory();
    /// A new adapter of the kind \a name; null when there is no such kind, and the consumer is
    /// refused. What it throws refuses the consumer with that reason.
    virtual std::shared_ptr<Adapter> create(const QByteArray &name,
                                            const QByteArray &identity) const = 0;
};

/// Gives the controllers of one server. Called on the server's I/O thread, which serves every
/// consumer of the process: be quick, and never wait for the server.
class SPECTREE_EXPORT IAdapterControllerFactory {
public:
    virtual ~IAdapterControllerFactory();
    /// The controller of a display window, made if need be; null refuses the consumer. It belongs
    /// to the data source and runs on its own thread when this returns.
    virtual IAdapterController *create(const QString &windowGuid) const = 0;
    /// The window has had no consumer for the grace time: the data source may destroy its
    /// controller. A consumer that comes later asks create() again.
    virtual void release(const QString &windowGuid) const = 0;
};

} // namespace sbs
