#include "apps/receiver/serverconfig.h"

#include "apps/common/keyfiles.h"
#include "platform/startup/cfgcenter.h"

namespace receiver {

void configureServer(const Options &options)
{
    ICfg &cfg = CfgCenter::GetAppCfg();
    cfg.Set(QStringLiteral("UseScanBufferServer"), true);
    cfg.Set(QStringLiteral("ScanBufferServerEndpoint"), options.listen);
    if (options.serverKeyFile.isEmpty())
        return;
    cfg.Set(QStringLiteral("ScanBufferServerSecretKey"), apps::readKey(options.serverKeyFile));
    cfg.Set(QStringLiteral("ScanBufferServerClientKeys"),
            apps::readKeys(options.clientKeysFile).join(QLatin1Char(' ')));
}

} // namespace receiver
