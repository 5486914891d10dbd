#include "apps/receiver/options.h"

#include "apps/receiver/simulation.h"
#include "platform/startup/cfgcenter.h"
#include "platform/transmission/server.h"

#include <QRegularExpression>

#include <vector>

namespace receiver {

using apps::CommandLine;
using apps::parseHertz;

namespace {

constexpr int kLeastFft = 16, kMostFft = 1 << 22, kMostAverage = 1000000;

struct TypeName {
    const char *name;
    SampleType type;
};
constexpr TypeName kTypes[] = {
    {"char", SampleType::charLevel},     {"short", SampleType::shortLevel},
    {"level", SampleType::level},        {"long", SampleType::longLevel},
    {"float", SampleType::floatLevel},   {"percent", SampleType::percent},
    {"double", SampleType::doubleLevel}, {"bearing", SampleType::bearing},
    {"minmax", SampleType::minMax},      {"bearing-extended", SampleType::bearingExtended},
    {"pulse", SampleType::pulse},        {"df-spectrum", SampleType::dfSpectrum},
};

QString typeNames()
{
    QStringList names;
    for (const TypeName &entry : kTypes)
        names << QLatin1String(entry.name);
    return names.join(QStringLiteral(", "));
}

void declare(CommandLine &line)
{
    line.add(
        "input",
        QStringLiteral("Where scans come from: sim:KEY=VALUE,... (the default, a made-up band), "
                       "iq:FILE (samples: SigMF, WAV, or plain with --format), sweep:FILE.csv "
                       "(of rtl_power or hackrf_sweep)."),
        "source", "sim:");
    line.add("listen", QStringLiteral("ZeroMQ endpoint to serve; * is any free port."), "endpoint",
             "tcp://127.0.0.1:*");
    line.add("rate",
             QStringLiteral("Samples per second of an iq: input, if its file doesn't tell."), "hz");
    line.add(
        "center",
        QStringLiteral("Centre frequency of an iq: input; the dial frequency of a mono WAV file."),
        "hz");
    line.add("format", QStringLiteral("How plain samples are stored: cu8, cs8, cs16 or cf32."),
             "name");
    line.add("fft", QStringLiteral("Samples a transform of an iq: input, even."), "n", "4096");
    line.add("average", QStringLiteral("Transforms a scan, whose powers are averaged."), "n", "1");
    line.add("window",
             QStringLiteral("Window of the transforms: hann, blackman-harris or flattop."), "name",
             "hann");
    line.add("full-scale-dbuv",
             QStringLiteral("Level of a full-scale sine; a sweep's dB are added."), "dbuv",
             "107.0");
    line.add(
        "ranges",
        QStringLiteral("Serve these pieces only: START:STOP,... in Hz, both ends inclusive; for "
                       "sim: also START:STOP:STEP."),
        "list");
    line.add(
        "type",
        QStringLiteral("Sample type to serve: %1. Bearings come from sim: only.").arg(typeNames()),
        "name", "level");
    line.add("speed",
             QStringLiteral("1 is real time, 10 ten times as fast, 0 as fast as possible."),
             "factor", "1");
    line.add("loop", QStringLiteral("Begin again at the end of the input."));
    line.add(
        "wait",
        QStringLiteral("yes: hold the first scan back until a window has connected; no: start at "
                       "once. Default: yes for files, no for sim:."),
        "yes|no");
    line.add("stats", QStringLiteral("Write progress to standard error once a second."));
    line.add("server-key",
             QStringLiteral("File with the server's secret CURVE key, as --make-key writes it."),
             "file");
    line.add("client-keys",
             QStringLiteral("File with the public CURVE keys of the clients that are let in."),
             "file");
    line.add("allow-remote",
             QStringLiteral("Listen on other than loopback addresses without keys."));
}

void readInput(const CommandLine &line, Options &options)
{
    const QString text = line.value("input");
    const QString kind = text.section(QLatin1Char(':'), 0, 0);
    options.inputText = text.section(QLatin1Char(':'), 1);
    if (kind == QLatin1String("sim"))
        options.inputKind = InputKind::simulation;
    else if (kind == QLatin1String("iq"))
        options.inputKind = InputKind::iq;
    else if (kind == QLatin1String("sweep"))
        options.inputKind = InputKind::sweep;
    else
        throw line.usage(
            QStringLiteral("--input \"%1\" begins with none of sim:, iq: and sweep:.").arg(text));
    if (options.inputKind != InputKind::simulation && options.inputText.isEmpty())
        throw line.usage(QStringLiteral("--input %1 names no file.").arg(text));
    if (options.inputKind == InputKind::simulation)
        parseSimulation(options.inputText);
}

void readSpectrum(const CommandLine &line, Options &options)
{
    for (const char *name : {"rate", "center", "format", "fft", "average", "window"})
        if (options.inputKind != InputKind::iq && line.isSet(name))
            throw line.usage(
                QStringLiteral("--%1 is for an iq: input only.").arg(QLatin1String(name)));
    options.rate = line.hertz("rate", 1e-3);
    options.center = line.hertz("center", -1e12);
    options.format = line.value("format");
    if (!options.format.isEmpty() && !formatByName(options.format))
        throw line.usage(
            QStringLiteral("--format \"%1\" is unknown; cu8, cs8, cs16 and cf32 are read.")
                .arg(options.format));
    options.spectrum.fft = line.count("fft", kLeastFft, kMostFft);
    if (options.spectrum.fft % 2 != 0)
        throw line.usage(
            QStringLiteral("--fft %1 is odd; give an even number.").arg(options.spectrum.fft));
    options.spectrum.average = line.count("average", 1, kMostAverage);
    options.spectrum.fullScaleDbuv = line.number("full-scale-dbuv", -300, 300);
}

void readWindow(const CommandLine &line, Options &options)
{
    const QString name = line.value("window");
    if (name == QLatin1String("hann"))
        options.spectrum.window = Window::hann;
    else if (name == QLatin1String("blackman-harris"))
        options.spectrum.window = Window::blackmanHarris;
    else if (name == QLatin1String("flattop"))
        options.spectrum.window = Window::flattop;
    else
        throw line.usage(
            QStringLiteral("--window \"%1\" is none of hann, blackman-harris and flattop.")
                .arg(name));
}

FrequencyRange readRange(const CommandLine &line, const QString &text, InputKind kind)
{
    const QStringList parts = text.split(QLatin1Char(':'));
    const std::size_t most = kind == InputKind::simulation ? 3 : 2;
    std::vector<double> numbers;
    for (const QString &part : parts)
        if (const auto value = parseHertz(part))
            numbers.push_back(*value);
    const bool ok = parts.size() >= 2 && numbers.size() == std::size_t(parts.size()) &&
                    numbers.size() <= most && numbers[0] <= numbers[1] &&
                    (numbers.size() < 3 || numbers[2] > 0);
    if (!ok)
        throw line.usage(
            QStringLiteral("--ranges \"%1\" is not START:STOP in Hz with START not above STOP "
                           "(a STEP behind them is for sim: only).")
                .arg(text));
    return {numbers[0], numbers[1], numbers.size() == 3 ? numbers[2] : 0};
}

SampleType readType(const CommandLine &line)
{
    const QString text = line.value("type");
    if (text == QLatin1String("elev-over-azi") || text == QLatin1String("109"))
        throw line.usage(
            QStringLiteral("--type %1 (elevation over azimuth) has no scan buffer to serve; "
                           "take bearing.")
                .arg(text));
    for (const TypeName &entry : kTypes)
        if (text == QLatin1String(entry.name) || text == QString::number(int(entry.type)))
            return entry.type;
    throw line.usage(
        QStringLiteral("--type \"%1\" is unknown; there are %2.").arg(text, typeNames()));
}

bool readWait(const CommandLine &line, InputKind kind)
{
    const QString text = line.value("wait");
    if (!line.isSet("wait"))
        return kind != InputKind::simulation;
    if (text != QLatin1String("yes") && text != QLatin1String("no"))
        throw line.usage(QStringLiteral("--wait \"%1\" is neither yes nor no.").arg(text));
    return text == QLatin1String("yes");
}

void readServer(const CommandLine &line, Options &options)
{
    options.listen = line.value("listen");
    options.serverKeyFile = line.value("server-key");
    options.clientKeysFile = line.value("client-keys");
    static const QRegularExpression form(QStringLiteral("^tcp://[^\\s/]+:(\\*|\\d{1,5})$"));
    const auto match = form.match(options.listen);
    if (!match.hasMatch() || match.captured(1).toInt() > 65535)
        throw line.usage(QStringLiteral("--listen \"%1\" is not of the form tcp://ADDRESS:PORT, "
                                        "with * or a number up to 65535 for the port.")
                             .arg(options.listen));
    if (options.serverKeyFile.isEmpty() != options.clientKeysFile.isEmpty())
        throw line.usage(QStringLiteral("--server-key and --client-keys go together."));
    const bool configuredKey = !CfgCenter::GetAppCfg()
                                    .GetString(QStringLiteral("ScanBufferServerSecretKey"), {})
                                    .isEmpty();
    const bool safe = configuredKey || !options.serverKeyFile.isEmpty() ||
                      sbs::Server::isLoopback(options.listen.toUtf8());
    if (!safe && !line.isSet("allow-remote"))
        throw line.usage(
            QStringLiteral("--listen %1 would let other computers in without a key: give "
                           "--server-key and --client-keys, or --allow-remote if the "
                           "network is trusted.")
                .arg(options.listen));
}

QString helpText(CommandLine &line)
{
    const QString text = line.helpText(
        QStringLiteral("Serves the scans of a receiver, of a recording or of a made-up band to "
                       "display windows.\nThe first line of its output is the endpoint: "
                       "\"endpoint tcp://...\"."));
    return text + QStringLiteral("\nKeys of sim: (defaults in brackets):\n%1"
                                 "\nExit codes: 0 after SIGINT or SIGTERM, 1 failure, 2 bad usage.")
                      .arg(simulationHelp());
}

} // namespace

Options parseOptions(const QStringList &arguments)
{
    CommandLine line(QStringLiteral("spectree-receiver"));
    declare(line);
    line.parse(arguments, QStringLiteral("a file is given as --input iq:FILE or sweep:FILE"));
    Options options;
    options.request = {line.action(), line.value("make-key"), helpText(line)};
    if (line.action() != apps::Action::run)
        return options;
    readInput(line, options);
    readSpectrum(line, options);
    readWindow(line, options);
    for (const QString &range : line.value("ranges").split(QLatin1Char(','), Qt::SkipEmptyParts))
        options.ranges.push_back(readRange(line, range, options.inputKind));
    options.type = readType(line);
    options.speed = line.number("speed", 0, 1e6);
    options.loop = line.isSet("loop");
    options.wait = readWait(line, options.inputKind);
    options.stats = line.isSet("stats");
    readServer(line, options);
    return options;
}

} // namespace receiver
