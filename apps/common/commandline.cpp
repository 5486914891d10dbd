#include "apps/common/commandline.h"

#include <QRegularExpression>

#include <cmath>

namespace apps {
namespace {

constexpr double kMostHertz = 1e13;

} // namespace

CommandLine::CommandLine(const QString &program) : m_program(program) {}

void CommandLine::add(const char *name, const QString &text, const char *value,
                      const char *standard)
{
    QCommandLineOption option(QLatin1String(name), text);
    if (value)
        option.setValueName(QLatin1String(value));
    if (standard)
        option.setDefaultValue(QLatin1String(standard));
    m_parser.addOption(option);
}

void CommandLine::parse(const QStringList &arguments, const QString &hint)
{
    add("make-key",
        QStringLiteral("Make a new CURVE key pair, the secret key in FILE and the public one in "
                       "FILE.pub, and end."),
        "FILE");
    m_parser.addHelpOption();
    m_parser.addVersionOption();
    if (!m_parser.parse(arguments))
        throw usage(m_parser.errorText() + QLatin1Char('.'));
    if (action() == Action::run && !m_parser.positionalArguments().isEmpty())
        throw usage(QStringLiteral("\"%1\" belongs to no option; %2.")
                        .arg(m_parser.positionalArguments().first(), hint));
}

Action CommandLine::action() const
{
    if (isSet("help") || isSet("help-all"))
        return Action::showHelp;
    if (isSet("version"))
        return Action::showVersion;
    return isSet("make-key") ? Action::makeKey : Action::run;
}

bool CommandLine::isSet(const char *name) const { return m_parser.isSet(QLatin1String(name)); }

QString CommandLine::value(const char *name) const { return m_parser.value(QLatin1String(name)); }

double CommandLine::number(const char *name, double least, double most) const
{
    bool ok = false;
    const double number = value(name).toDouble(&ok);
    if (!ok || !(number >= least && number <= most))
        throw usage(QStringLiteral("--%1 \"%2\" is no number from %3 to %4.")
                        .arg(QLatin1String(name), value(name))
                        .arg(least)
                        .arg(most));
    return number;
}

int CommandLine::count(const char *name, int least, int most) const
{
    bool ok = false;
    const int number = value(name).toInt(&ok);
    if (!ok || number < least || number > most)
        throw usage(QStringLiteral("--%1 \"%2\" is no whole number from %3 to %4.")
                        .arg(QLatin1String(name), value(name))
                        .arg(least)
                        .arg(most));
    return number;
}

std::optional<double> CommandLine::hertz(const char *name, double least) const
{
    if (!isSet(name))
        return std::nullopt;
    const auto number = parseHertz(value(name));
    if (!number || *number < least || *number > kMostHertz)
        throw usage(QStringLiteral("--%1 \"%2\" is no frequency in Hz, such as 98.5M or 2e6.")
                        .arg(QLatin1String(name), value(name)));
    return number;
}

Failure CommandLine::usage(const QString &sentence) const
{
    return {Failure::Usage, QStringLiteral("%1 See %2 --help.").arg(sentence, m_program)};
}

QString CommandLine::helpText(const QString &description)
{
    m_parser.setApplicationDescription(description);
    return m_parser.helpText();
}

std::optional<double> parseHertz(const QString &text)
{
    static const QRegularExpression form(
        QStringLiteral("^\\s*([-+]?(?:\\d+\\.?\\d*|\\.\\d+)(?:[eE][-+]?\\d+)?)\\s*([kMG]?)\\s*$"));
    const auto match = form.match(text);
    if (!match.hasMatch())
        return std::nullopt;
    const QString prefix = match.captured(2);
    const double factor = prefix == QLatin1String("k")   ? 1e3
                          : prefix == QLatin1String("M") ? 1e6
                          : prefix == QLatin1String("G") ? 1e9
                                                         : 1.0;
    const double value = match.captured(1).toDouble() * factor;
    return std::isfinite(value) ? std::optional(value) : std::nullopt;
}

} // namespace apps
