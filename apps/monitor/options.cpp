#include "apps/monitor/options.h"

#include "apps/monitor/failure.h"

#include <QCommandLineParser>
#include <QRegularExpression>
#include <QUuid>

#include <cmath>

namespace monitor {
namespace {

constexpr int kLeastWidth = 320, kLeastHeight = 240, kMostExtent = 16384;
constexpr double kMostSeconds = 366.0 * 86400.0;

Failure usage(const QString &sentence)
{
    return {Failure::Usage, sentence + QStringLiteral(" See spectree-monitor --help.")};
}

void declare(QCommandLineParser &parser)
{
    const auto add = [&parser](const char *name, const char *text, const char *value,
                               const char *standard = nullptr) {
        QCommandLineOption option{QString::fromLatin1(name), QLatin1String(text),
                                  QLatin1String(value)};
        if (standard)
            option.setDefaultValue(QLatin1String(standard));
        parser.addOption(option);
    };
    add("connect", "Endpoint of the server, as spectree-receiver prints it.", "tcp://HOST:PORT");
    add("png", "Write the picture to this file.", "file");
    add("json", "Write the report to this file; - is standard output.", "file");
    add("seconds", "End after this time.", "s");
    add("scans", "End after this many waterfall lines.", "n");
    add("timeout", "Give up when the server, or its next line, stays away this long.", "s", "10");
    add("width", "Width of the picture in pixels.", "n", "1600");
    add("height", "Height of the picture in pixels.", "n", "1000");
    add("from", "Show from this frequency, such as 88M, instead of all.", "hz");
    add("to", "Show up to this frequency.", "hz");
    add("window-guid", "Identity of the window; by default a new one each time.", "guid");
    add("server-key", "File with the public CURVE key of the server.", "file");
    add("client-key", "File with the secret CURVE key of this client.", "file");
    parser.addOption({QStringLiteral("quiet"), QStringLiteral("Write no progress.")});
    parser.addHelpOption();
    parser.addVersionOption();
}

double readNumber(const QCommandLineParser &parser, const char *name, double least, double most)
{
    bool ok = false;
    const QString text = parser.value(QLatin1String(name));
    const double value = text.toDouble(&ok);
    if (!ok || !(value >= least && value <= most))
        throw usage(QStringLiteral("--%1 \"%2\" is no number from %3 to %4.")
                        .arg(QLatin1String(name), text)
                        .arg(least)
                        .arg(most));
    return value;
}

int readCount(const QCommandLineParser &parser, const char *name, int least, int most)
{
    bool ok = false;
    const QString text = parser.value(QLatin1String(name));
    const int value = text.toInt(&ok);
    if (!ok || value < least || value > most)
        throw usage(QStringLiteral("--%1 \"%2\" is no whole number from %3 to %4.")
                        .arg(QLatin1String(name), text)
                        .arg(least)
                        .arg(most));
    return value;
}

std::optional<double> readHertz(const QCommandLineParser &parser, const char *name)
{
    if (!parser.isSet(QLatin1String(name)))
        return std::nullopt;
    const QString text = parser.value(QLatin1String(name));
    const auto value = parseHertz(text);
    if (!value)
        throw usage(QStringLiteral("--%1 \"%2\" is no frequency in Hz, such as 98.5M or 2e6.")
                        .arg(QLatin1String(name), text));
    return value;
}

void readServer(const QCommandLineParser &parser, Options &options)
{
    options.endpoint = parser.value(QStringLiteral("connect"));
    if (options.endpoint.isEmpty())
        throw usage(
            QStringLiteral("--connect is missing: give the endpoint that the server prints, "
                           "such as tcp://127.0.0.1:40123."));
    static const QRegularExpression form(QStringLiteral("^tcp://[^\\s/*]+:(\\d{1,5})$"));
    const auto match = form.match(options.endpoint);
    const int port = match.captured(1).toInt();
    if (!match.hasMatch() || port < 1 || port > 65535)
        throw usage(QStringLiteral("--connect \"%1\" is not of the form tcp://HOST:PORT.")
                        .arg(options.endpoint));
    options.serverKeyFile = parser.value(QStringLiteral("server-key"));
    options.clientKeyFile = parser.value(QStringLiteral("client-key"));
    if (options.serverKeyFile.isEmpty() != options.clientKeyFile.isEmpty())
        throw usage(QStringLiteral("--server-key and --client-key go together."));
}

void readEnd(const QCommandLineParser &parser, Options &options)
{
    if (parser.isSet(QStringLiteral("seconds")))
        options.seconds = readNumber(parser, "seconds", 0.1, kMostSeconds);
    if (parser.isSet(QStringLiteral("scans")))
        options.scans = quint64(readCount(parser, "scans", 1, 1'000'000'000));
    if (!options.seconds && !options.scans)
        throw usage(QStringLiteral("Tell when to end: --seconds S, --scans N, or both."));
    options.timeoutSeconds = readNumber(parser, "timeout", 0.1, 86400.0);
}

void readOutput(const QCommandLineParser &parser, Options &options)
{
    options.pngFile = parser.value(QStringLiteral("png"));
    options.jsonFile = parser.value(QStringLiteral("json"));
    if (options.pngFile.isEmpty() && options.jsonFile.isEmpty())
        throw usage(QStringLiteral("Tell what to write: --png FILE, --json FILE, or both."));
    options.size = {readCount(parser, "width", kLeastWidth, kMostExtent),
                    readCount(parser, "height", kLeastHeight, kMostExtent)};
    options.quiet = parser.isSet(QStringLiteral("quiet"));
}

void readFrequencies(const QCommandLineParser &parser, Options &options)
{
    options.fromHz = readHertz(parser, "from");
    options.toHz = readHertz(parser, "to");
    if (options.fromHz && options.toHz && !(*options.fromHz < *options.toHz))
        throw usage(QStringLiteral("--from must lie below --to."));
}

void readWindowGuid(const QCommandLineParser &parser, Options &options)
{
    const QString text = parser.value(QStringLiteral("window-guid"));
    const QUuid guid = text.isEmpty() ? QUuid::createUuid() : QUuid(text);
    if (guid.isNull())
        throw usage(QStringLiteral("--window-guid \"%1\" is no GUID, such as "
                                   "0b5e1c6e-7a0f-4b0e-9c55-3d7d1d7c2f11.")
                        .arg(text));
    options.windowGuid = guid.toString(QUuid::WithoutBraces);
}

} // namespace

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

Options parseOptions(const QStringList &arguments)
{
    QCommandLineParser parser;
    declare(parser);
    if (!parser.parse(arguments))
        throw usage(parser.errorText() + QLatin1Char('.'));
    Options options;
    if (parser.isSet(QStringLiteral("help")) || parser.isSet(QStringLiteral("help-all")))
        options.action = Options::Action::showHelp;
    else if (parser.isSet(QStringLiteral("version")))
        options.action = Options::Action::showVersion;
    if (options.action != Options::Action::run)
        return options;
    if (!parser.positionalArguments().isEmpty())
        throw usage(QStringLiteral("\"%1\" belongs to no option; the server is given as "
                                   "--connect tcp://HOST:PORT.")
                        .arg(parser.positionalArguments().first()));
    readServer(parser, options);
    readEnd(parser, options);
    readOutput(parser, options);
    readFrequencies(parser, options);
    readWindowGuid(parser, options);
    return options;
}

QString helpText()
{
    QCommandLineParser parser;
    declare(parser);
    parser.setApplicationDescription(QStringLiteral(
        "Watches a spectrum server as a display window does, and writes what it saw: "
        "a picture\nwith curves and waterfall, and a report with figures and the "
        "strongest signals."));
    return parser.helpText() +
           QStringLiteral("\nExample:\n  spectree-monitor --connect tcp://127.0.0.1:40123 "
                          "--seconds 10 --png band.png --json band.json\n"
                          "\nExit codes: 0 done, 1 failure, 2 bad usage.\n");
}

} // namespace monitor
