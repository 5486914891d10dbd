#include "platform/transmission/server.h"

#include "platform/base/krexception.h"
#include "platform/startup/cfgcenter.h"
#include "platform/transmission/endpoint_p.h"
#include "platform/transmission/iothread_p.h"
#include "platform/transmission/servercore_p.h"

#include <QRegularExpression>
#include <QStringList>

namespace sbs {

ServerOptions ServerOptions::fromConfiguration()
{
    const ICfg &cfg = CfgCenter::GetAppCfg();
    ServerOptions options;
    options.endpoint =
        cfg.GetString(QStringLiteral("ScanBufferServerEndpoint"), QStringLiteral("tcp://*:*"))
            .toUtf8();
    const QString secret = cfg.GetString(QStringLiteral("ScanBufferServerSecretKey"), QString());
    const QStringList clients =
        cfg.GetString(QStringLiteral("ScanBufferServerClientKeys"), QString())
            .split(QRegularExpression(QStringLiteral("\\s+")), Qt::SkipEmptyParts);
    if (secret.isEmpty() != clients.isEmpty())
        throw KRException(QStringLiteral("ScanBufferServerSecretKey and ScanBufferServerClientKeys "
                                         "go together: set both, or none."),
                          __FILE__, "ServerOptions", "fromConfiguration", __LINE__);
    if (secret.isEmpty())
        return options;
    options.keys = CurveKeys::fromSecret(secret);
    for (const QString &client : clients)
        options.clientKeys.append(
            CurveKeys::parse(client, QStringLiteral("An entry of ScanBufferServerClientKeys")));
    return options;
}

class Server::Inside {
public:
    std::shared_ptr<IoThread> io;
    std::shared_ptr<ServerCore> core;
};

Server::Server(std::unique_ptr<IAdapterFactory const> adapters,
               std::unique_ptr<IAdapterControllerFactory const> controllers,
               const ServerOptions &options)
    : m_d(std::make_unique<Inside>())
{
    m_d->io = IoThread::shared();
    m_d->core = std::make_shared<ServerCore>(std::move(adapters), std::move(controllers), options,
                                             *m_d->io);
    m_d->io->add(m_d->core);
}

Server::~Server() { m_d->io->remove(m_d->core); }

QByteArray Server::getEndpoint() const { return m_d->core->endpoint(); }
Server::Statistics Server::statistics() const { return m_d->core->statistics(); }
bool Server::isLoopback(const QByteArray &endpoint) { return endpoint::isLoopback(endpoint); }

} // namespace sbs
