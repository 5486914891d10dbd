// Configurations beside that of the application: parts of one, and files.
#include "platform/base/krexception.h"
#include "platform/startup/cfgcenter.h"

#include <QRegularExpression>
#include <QSettings>
#include <QStandardPaths>
#include <QXmlStreamReader>
#include <QXmlStreamWriter>

namespace {

class CfgEntry final : public ICfg {
public:
    CfgEntry(ICfg &whole, const QString &name) : m_whole(whole), m_prefix(name + '/') {}
    bool GetBool(const QString &key, bool defaultValue) const override
    {
        return m_whole.GetBool(m_prefix + key, defaultValue);
    }
    QString GetString(const QString &key, const QString &defaultValue) const override
    {
        return m_whole.GetString(m_prefix + key, defaultValue);
    }
    void Set(const QString &key, const QVariant &value) override
    {
        m_whole.Set(m_prefix + key, value);
    }

private:
    ICfg &m_whole;
    QString m_prefix;
};

bool readXml(QIODevice &device, QSettings::SettingsMap &map)
{
    QXmlStreamReader reader(&device);
    if (!reader.readNextStartElement())
        return false;
    while (reader.readNextStartElement()) {
        const QString key = reader.attributes().value(QLatin1String("Key")).toString();
        map[key] = reader.readElementText(QXmlStreamReader::SkipChildElements);
    }
    return !reader.hasError();
}

bool writeXml(QIODevice &device, const QSettings::SettingsMap &map)
{
    QXmlStreamWriter writer(&device);
    writer.setAutoFormatting(true);
    writer.writeStartDocument();
    writer.writeStartElement(QStringLiteral("Configuration"));
    for (auto entry = map.begin(); entry != map.end(); ++entry) {
        writer.writeStartElement(QStringLiteral("Entry"));
        writer.writeAttribute(QStringLiteral("Key"), entry.key());
        writer.writeCharacters(entry.value().toString());
        writer.writeEndElement();
    }
    writer.writeEndDocument();
    return !writer.hasError();
}

class XmlCfg final : public ICfg {
public:
    explicit XmlCfg(const QString &file) : m_settings(file, format()) {}
    bool GetBool(const QString &key, bool defaultValue) const override
    {
        return m_settings.value(key, defaultValue).toBool();
    }
    QString GetString(const QString &key, const QString &defaultValue) const override
    {
        return m_settings.value(key, defaultValue).toString();
    }
    void Set(const QString &key, const QVariant &value) override
    {
        if (value.isValid())
            m_settings.setValue(key, value);
        else
            m_settings.remove(key);
    }

private:
    static QSettings::Format format()
    {
        static const QSettings::Format xml =
            QSettings::registerFormat(QStringLiteral("xml"), readXml, writeXml);
        return xml;
    }

    QSettings m_settings;
};

} // namespace

std::unique_ptr<ICfg> ICfg::CreateEntry(const QString &name)
{
    return std::make_unique<CfgEntry>(*this, name);
}

std::unique_ptr<ICfg> CfgCenter::CreateCfg(const QString &name, const QString &view)
{
    static const QRegularExpression form(QStringLiteral("^Xml:([A-Za-z0-9_ -][A-Za-z0-9_ .-]*)$"));
    const QRegularExpressionMatch match = form.match(name);
    if (!match.hasMatch() || view != QStringLiteral("User"))
        throw KRException(
            QStringLiteral("There is no configuration \"%1\" in the view \"%2\".").arg(name, view),
            __FILE__, "CfgCenter", "CreateCfg", __LINE__);
    return std::make_unique<XmlCfg>(
        QStandardPaths::writableLocation(QStandardPaths::GenericConfigLocation) +
        QStringLiteral("/spectree/%1.xml").arg(match.captured(1)));
}
