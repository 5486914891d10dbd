#pragma once

#include "platform/base/export.h"

#include <QLocale>
#include <QString>
#include <QStringList>
#include <QTranslator>

#include <map>
#include <memory>
#include <string>

/// The translation catalogues of the running parts of a suite: this library's, "spectree", which
/// registers itself while the library is loaded, and those of programs and plug-ins.
///
/// A catalogue is a file "<name>_<language>.qm" in the folder of the language that was chosen last;
/// one without such a file stays untranslated. Threads: the application thread.
class SPECTREE_EXPORT TranslationCenter {
public:
    static TranslationCenter &Instance();

    /// Loads it at once when a language is chosen. A second time changes nothing.
    void RegisterCatalogue(const QString &name);
    void RemoveCatalogue(const QString &name);
    /// The registered ones, sorted.
    QStringList GetCatalogues() const;

    /// Loads every catalogue anew; needs the application object. Returns the names of those found.
    QStringList SetLanguage(const QLocale &language, const QString &folder);
    /// \a text in the chosen language, by a namespace such as that of a value; \a text itself where
    /// no catalogue has it.
    static QString Translate(const std::string &nameSpace, const char *text);

private:
    TranslationCenter() = default;
    bool load(const QString &name, std::unique_ptr<QTranslator> &translator) const;

    std::map<QString, std::unique_ptr<QTranslator>> m_catalogues; // null: not loaded
    QLocale m_language = QLocale::c();
    QString m_folder; // empty: no language is chosen
};
