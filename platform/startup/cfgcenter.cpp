#include "platform/startup/cfgcenter.h"

#include "platform/base/sync.h"

#include <QSettings>
#include <QStandardPaths>

#include <map>

namespace {

class AppCfg final : public ICfg {
public:
    AppCfg()
    {
        // Rising precedence: a later file overwrites the keys of an earlier one.
        readFile(QStringLiteral("/etc/spectree.ini"));
        readFile(QStandardPaths::writableLocation(QStandardPaths::GenericConfigLocation) +
                 QStringLiteral("/spectree/spectree.ini"));
    }

    bool GetBool(const QString &key, bool defaultValue) const override
    {
        return value(key, defaultValue).toBool();
    }

    QString GetString(const QString &key, const QString &defaultValue) const override
    {
        return value(key, defaultValue).toString();
    }

    void Set(const QString &key, const QVariant &newValue) override
    {
        const Kelm::MutexLocker lock(m_mutex);
        if (newValue.isValid())
            m_set[key] = newValue;
        else
            m_set.erase(key);
    }

private:
    QVariant value(const QString &key, const QVariant &defaultValue) const
    {
        const Kelm::MutexLocker lock(m_mutex);
        for (const auto *keys : {&m_set, &m_files})
            if (const auto found = keys->find(key); found != keys->end())
                return found->second;
        return defaultValue;
    }

    void readFile(const QString &path)
    {
        const QSettings file(path, QSettings::IniFormat);
        const Kelm::MutexLocker lock(m_mutex);
        for (const QString &key : file.allKeys())
            m_files[key] = file.value(key);
    }

    mutable Kelm::Mutex m_mutex;
    std::map<QString, QVariant> m_files SPECTREE_GUARDED_BY(m_mutex);
    std::map<QString, QVariant> m_set SPECTREE_GUARDED_BY(m_mutex);
};

} // namespace

ICfg &CfgCenter::GetAppCfg()
{
    // Never destroyed: a thread that still runs at exit may come here.
    static auto *const cfg = new AppCfg;
    return *cfg;
}
