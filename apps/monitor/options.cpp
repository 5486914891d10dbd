#include "apps/monitor/options.h"

#include <QRegularExpression>
#include <QUuid>

namespace monitor {

using apps::CommandLine;

namespace {

constexpr int kLeastWidth = 320, kLeastHeight = 240, kMostExtent = 16384;
constexpr double kMostSeconds = 366.0 * 86400.0;

void declare(CommandLine &line)
{
    line.add("connect", QStringLiteral("Endpoint of the server, as spectree-receiver prints it."),
             "tcp://HOST:PORT");
    line.add("png", QStringLiteral("Write the picture to this file."), "file");
    line.add("json", QStringLiteral("Write the report to this file; - is standard output."),
             "file");
    line.add("seconds", QStringLiteral("End after this time."), "s");
    line.add("scans", QStringLiteral("End after this many waterfall lines."), "n");
    line.add("timeout",
             QStringLiteral("Give up when the server, or its next line, stays away this long."),
             "s", "10");
    line.add("width", QStringLiteral("Width of the picture in pixels."), "n", "1600");
    line.add("height", QStringLiteral("Height of the picture in pixels."), "n", "1000");
    line.add("from", QStringLiteral("Show from this frequency, such as 88M, instead of all."),
             "hz");
    line.add("to", QStringLiteral("Show up to this frequency."), "hz");
    line.add("window-guid",
             QStringLiteral("Identity of the window; by default a new one each time."), "guid");
    line.add("server-key", QStringLiteral("File with the public CURVE key of the server."), "file");
    line.add(
        "client-key",
        QStringLiteral("File with the secret CURVE key of this client, as --make-key writes it."),
        "file");
    line.add("quiet", QStringLiteral("Write no progress."));
}

void readServer(const CommandLine &line, Options &options)
{
    options.endpoint = line.value("connect");
    if (options.endpoint.isEmpty())
        throw line.usage(
            QStringLiteral("--connect is missing: give the endpoint that the server prints, "
                           "such as tcp://127.0.0.1:40123."));
    static const QRegularExpression form(QStringLiteral("^tcp://[^\\s/*]+:(\\d{1,5})$"));
    const auto match = form.match(options.endpoint);
    const int port = match.captured(1).toInt();
    if (!match.hasMatch() || port < 1 || port > 65535)
        throw line.usage(QStringLiteral("--connect \"%1\" is not of the form tcp://HOST:PORT.")
                             .arg(options.endpoint));
    options.serverKeyFile = line.value("server-key");
    options.clientKeyFile = line.value("client-key");
    if (options.serverKeyFile.isEmpty() != options.clientKeyFile.isEmpty())
        throw line.usage(QStringLiteral("--server-key and --client-key go together."));
}

void readEnd(const CommandLine &line, Options &options)
{
    if (line.isSet("seconds"))
        options.seconds = line.number("seconds", 0.1, kMostSeconds);
    if (line.isSet("scans"))
        options.scans = quint64(line.count("scans", 1, 1'000'000'000));
    if (!options.seconds && !options.scans)
        throw line.usage(QStringLiteral("Tell when to end: --seconds S, --scans N, or both."));
    options.timeoutSeconds = line.number("timeout", 0.1, 86400.0);
}

void readOutput(const CommandLine &line, Options &options)
{
    options.pngFile = line.value("png");
    options.jsonFile = line.value("json");
    if (options.pngFile.isEmpty() && options.jsonFile.isEmpty())
        throw line.usage(QStringLiteral("Tell what to write: --png FILE, --json FILE, or both."));
    options.size = {line.count("width", kLeastWidth, kMostExtent),
                    line.count("height", kLeastHeight, kMostExtent)};
    options.quiet = line.isSet("quiet");
}

void readFrequencies(const CommandLine &line, Options &options)
{
    options.fromHz = line.hertz("from", -1e13);
    options.toHz = line.hertz("to", -1e13);
    if (options.fromHz && options.toHz && !(*options.fromHz < *options.toHz))
        throw line.usage(QStringLiteral("--from must lie below --to."));
}

void readWindowGuid(const CommandLine &line, Options &options)
{
    const QString text = line.value("window-guid");
    const QUuid guid = text.isEmpty() ? QUuid::createUuid() : QUuid(text);
    if (guid.isNull())
        throw line.usage(QStringLiteral("--window-guid \"%1\" is no GUID, such as "
                                        "0b5e1c6e-7a0f-4b0e-9c55-3d7d1d7c2f11.")
                             .arg(text));
    options.windowGuid = guid.toString(QUuid::WithoutBraces);
}

QString helpText(CommandLine &line)
{
    const QString text = line.helpText(QStringLiteral(
        "Watches a spectrum server as a display window does, and writes what it saw: "
        "a picture\nwith curves and waterfall, and a report with figures and the "
        "strongest signals."));
    return text + QStringLiteral("\nExample:\n  spectree-monitor --connect tcp://127.0.0.1:40123 "
                                 "--seconds 10 --png band.png --json band.json\n"
                                 "\nExit codes: 0 done, 1 failure, 2 bad usage.");
}

} // namespace

Options parseOptions(const QStringList &arguments)
{
    CommandLine line(QStringLiteral("spectree-monitor"));
    declare(line);
    line.parse(arguments, QStringLiteral("the server is given as --connect tcp://HOST:PORT"));
    Options options;
    options.request = {line.action(), line.value("make-key"), helpText(line)};
    if (line.action() != apps::Action::run)
        return options;
    readServer(line, options);
    readEnd(line, options);
    readOutput(line, options);
    readFrequencies(line, options);
    readWindowGuid(line, options);
    return options;
}

} // namespace monitor
