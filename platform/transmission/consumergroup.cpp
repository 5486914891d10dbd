#include "platform/transmission/consumergroup.h"

#include "platform/base/krexception.h"
#include "platform/base/sync.h"
#include "platform/startup/cfgcenter.h"

#include <QUuid>
#include <zmq.hpp>

namespace sbs {

ConsumerOptions ConsumerOptions::fromConfiguration()
{
    const ICfg &cfg = CfgCenter::GetAppCfg();
    const QString server = cfg.GetString(QStringLiteral("ScanBufferServerPublicKey"), QString());
    const QString client = cfg.GetString(QStringLiteral("ScanBufferClientSecretKey"), QString());
    if (server.isEmpty() != client.isEmpty())
        throw KRException(QStringLiteral("ScanBufferServerPublicKey and ScanBufferClientSecretKey "
                                         "go together: set both, or none."),
                          __FILE__, "ConsumerOptions", "fromConfiguration", __LINE__);
    ConsumerOptions options;
    if (server.isEmpty())
        return options;
    options.serverKey = CurveKeys::parse(server, QStringLiteral("ScanBufferServerPublicKey"));
    options.keys = CurveKeys::fromSecret(client);
    return options;
}

ConsumerGroup::ConsumerGroup(const QByteArray &address, const QString &windowGuid,
                             const ConsumerOptions &options,
                             std::shared_ptr<zmq::context_t> context)
    : m_address(address), m_windowGuid(windowGuid),
      m_token(QUuid::createUuid().toRfc4122().toHex()), m_options(options),
      m_context(std::move(context))
{
}

std::shared_ptr<zmq::context_t> ConsumerGroup::sharedContext()
{
    static Kelm::Mutex mutex;
    // Never destroyed: a thread that still runs at exit may come here.
    static auto &shared = *new std::weak_ptr<zmq::context_t>; // guarded by mutex
    const Kelm::MutexLocker lock(mutex);
    std::shared_ptr<zmq::context_t> context = shared.lock();
    if (context)
        return context;
    try {
        context = std::make_shared<zmq::context_t>();
    } catch (const zmq::error_t &error) {
        throw KRException(QStringLiteral("ZeroMQ gives no context: %1").arg(error.what()), __FILE__,
                          "ConsumerGroup", "sharedContext", __LINE__);
    }
    shared = context;
    return context;
}

} // namespace sbs
