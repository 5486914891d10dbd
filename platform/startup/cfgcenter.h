#pragma once

#include "platform/base/export.h"

#include <QString>
#include <QVariant>

#include <memory>

/// Answers configuration keys. A key may name its section: "Section/Key".
class SPECTREE_EXPORT ICfg {
public:
    virtual ~ICfg() = default;
    virtual bool GetBool(const QString &key, bool defaultValue) const = 0;
    virtual QString GetString(const QString &key, const QString &defaultValue) const = 0;
    /// Sets a key for this process; it goes before every file. Invalid takes it back.
    virtual void Set(const QString &key, const QVariant &value) = 0;
    /// The keys below \a name, as a configuration of their own; it uses this one, which outlives
    /// it.
    std::unique_ptr<ICfg> CreateEntry(const QString &name);
};

/// The configuration of the application, in rising precedence: the default that the caller gives,
/// /etc/spectree.ini, the user's spectree/spectree.ini (XDG), what the program set (its command
/// line). A file is read once, on first use. Any thread.
class SPECTREE_EXPORT CfgCenter {
public:
    static ICfg &GetAppCfg();
    /// A configuration by its format and name: "Xml:Name" is the file Name.xml in the folder of a
    /// view, of which there is "User": the user's spectree/ (XDG). It is read here, and written
    /// when it is destroyed after a Set. \throws KRException for another format or view, and for a
    /// name that leads out of the folder.
    static std::unique_ptr<ICfg> CreateCfg(const QString &name, const QString &view);
};
