#include "apps/receiver/serverconfig.h"

#include "apps/receiver/failure.h"
#include "platform/base/krexception.h"
#include "platform/startup/cfgcenter.h"
#include "platform/transmission/curvekeys.h"

#include <QFile>

namespace receiver {
namespace {

constexpr qint64 kLargestKeyFile = 1 << 20;

QStringList readKeys(const QString &path)
{
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly))
        throw Failure(
            Failure::Runtime,
            QStringLiteral("The key file %1 can't be read: %2.").arg(path, file.errorString()));
    QStringList keys;
    const QString text = QString::fromUtf8(file.read(kLargestKeyFile));
    for (const QString &line : text.split(QLatin1Char('\n')))
        keys += line.section(QLatin1Char('#'), 0, 0)
                    .simplified()
                    .split(QLatin1Char(' '), Qt::SkipEmptyParts);
    if (keys.isEmpty())
        throw Failure(Failure::Runtime, QStringLiteral("The key file %1 holds no key.").arg(path));
    try {
        for (const QString &key : keys)
            sbs::CurveKeys::parse(key, path);
    } catch (const KRException &error) {
        throw Failure(Failure::Runtime, error.GetReason());
    }
    return keys;
}

} // namespace

void configureServer(const Options &options)
{
    ICfg &cfg = CfgCenter::GetAppCfg();
    cfg.Set(QStringLiteral("UseScanBufferServer"), true);
    cfg.Set(QStringLiteral("ScanBufferServerEndpoint"), options.listen);
    if (options.serverKeyFile.isEmpty())
        return;
    const QStringList secret = readKeys(options.serverKeyFile);
    if (secret.size() != 1)
        throw Failure(
            Failure::Runtime,
            QStringLiteral("The key file %1 holds %2 keys, where one secret key is needed.")
                .arg(options.serverKeyFile)
                .arg(secret.size()));
    cfg.Set(QStringLiteral("ScanBufferServerSecretKey"), secret.first());
    cfg.Set(QStringLiteral("ScanBufferServerClientKeys"),
            readKeys(options.clientKeysFile).join(QLatin1Char(' ')));
}

} // namespace receiver
