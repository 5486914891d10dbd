#pragma once

#include "apps/common/failure.h"

#include <QCommandLineParser>
#include <QString>
#include <QStringList>

#include <optional>

namespace apps {

/// What a program is asked for; everything but run is done at once and ends it.
enum class Action { run, showHelp, showVersion, makeKey };

/// The options of one program, and their values with sentences for whoever mistyped one. Knows
/// --help, --version and --make-key by itself. An option is named without its dashes; one that was
/// not declared reads as empty.
class CommandLine {
public:
    /// \a program is the name that a user types.
    explicit CommandLine(const QString &program);

    /// Declares an option; without \a value it is a switch, \a standard is its default.
    void add(const char *name, const QString &text, const char *value = nullptr,
             const char *standard = nullptr);

    /// Reads the command line, of which the first entry is the program; \a hint tells where a word
    /// goes that belongs to no option. \throws Failure (usage), as all below
    void parse(const QStringList &arguments, const QString &hint);

    Action action() const;
    bool isSet(const char *name) const;
    QString value(const char *name) const;
    double number(const char *name, double least, double most) const;
    int count(const char *name, int least, int most) const;
    /// nullopt when the option was not given.
    std::optional<double> hertz(const char *name, double least) const;

    /// \a sentence and where to find help.
    Failure usage(const QString &sentence) const;
    /// The text of --help. Needs a QCoreApplication.
    QString helpText(const QString &description);

private:
    QString m_program;
    QCommandLineParser m_parser;
};

/// A number with an optional k, M or G: "98.5M". nullopt for anything else, infinities included.
std::optional<double> parseHertz(const QString &text);

} // namespace apps
