#include "platform/startup/translationcenter.h"

#include <QCoreApplication>

namespace {

/// The library's own catalogue, there for as long as the library is loaded.
struct LibraryCatalogue {
    LibraryCatalogue() { TranslationCenter::Instance().RegisterCatalogue(name()); }
    ~LibraryCatalogue() { TranslationCenter::Instance().RemoveCatalogue(name()); }
    static QString name() { return QStringLiteral("spectree"); }
} const g_libraryCatalogue;

} // namespace

TranslationCenter &TranslationCenter::Instance()
{
    // Never destroyed: a plug-in that is unloaded late removes its catalogue here.
    static auto *const instance = new TranslationCenter;
    return *instance;
}

void TranslationCenter::RegisterCatalogue(const QString &name)
{
    const auto [entry, isNew] = m_catalogues.try_emplace(name);
    if (isNew && !m_folder.isEmpty())
        load(name, entry->second);
}

void TranslationCenter::RemoveCatalogue(const QString &name) { m_catalogues.erase(name); }

QStringList TranslationCenter::GetCatalogues() const
{
    QStringList names;
    for (const auto &entry : m_catalogues)
        names << entry.first;
    return names;
}

QStringList TranslationCenter::SetLanguage(const QLocale &language, const QString &folder)
{
    m_language = language;
    m_folder = folder;
    QStringList found;
    for (auto &[name, translator] : m_catalogues)
        if (load(name, translator))
            found << name;
    return found;
}

bool TranslationCenter::load(const QString &name, std::unique_ptr<QTranslator> &translator) const
{
    translator.reset(); // which leaves the application
    auto loaded = std::make_unique<QTranslator>();
    if (!loaded->load(m_language, name, QStringLiteral("_"), m_folder) ||
        !QCoreApplication::installTranslator(loaded.get()))
        return false;
    translator = std::move(loaded);
    return true;
}

QString TranslationCenter::Translate(const std::string &nameSpace, const char *text)
{
    return QCoreApplication::translate(nameSpace.c_str(), text);
}
