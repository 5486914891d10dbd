#include "apps/receiver/options.h"

#include "apps/receiver/failure.h"
#include "apps/receiver/simulation.h"
#include "platform/startup/cfgcenter.h"

#include <QCommandLineParser>
#include <QRegularExpression>

#include <cmath>
#include <vector>

namespace receiver {
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

Failure usage(const QString &sentence)
{
    return {Failure::Usage, sentence + QStringLiteral(" See spectree-receiver --help.")};
}

QString typeNames()
{
    QStringList names;
    for (const TypeName &entry : kTypes)
        names << QLatin1String(entry.name);
    return names.join(QStringLiteral(", "));
}

void declare(QCommandLineParser &parser)
{
    const auto add = [&parser](const char *name, const QString &text, const char *value = nullptr,
                               const char *standard = nullptr) {
        QCommandLineOption option(QLatin1String(name), text);
        if (value)
            option.setValueName(QLatin1String(value));
        if (standard)
            option.setDefaultValue(QLatin1String(standard));
        parser.addOption(option);
    };
    add("input",
        QStringLiteral("Where scans come from: sim:KEY=VALUE,... (the default, a made-up band), "
                       "iq:FILE (samples: SigMF, WAV, or plain with --format), sweep:FILE.csv "
                       "(of rtl_power or hackrf_sweep)."),
        "source", "sim:");
    add("listen", QStringLiteral("ZeroMQ endpoint to serve; * is any free port."), "endpoint",
        "tcp://127.0.0.1:*");
    add("rate", QStringLiteral("Samples per second of an iq: input, if its file doesn't tell."),
        "hz");
    add("center",
        QStringLiteral("Centre frequency of an iq: input; the dial frequency of a mono WAV file."),
        "hz");
    add("format", QStringLiteral("How plain samples are stored: cu8, cs8, cs16 or cf32."), "name");
    add("fft", QStringLiteral("Samples a transform of an iq: input, even."), "n", "4096");
    add("average", QStringLiteral("Transforms a scan, whose powers are averaged."), "n", "1");
    add("window", QStringLiteral("Window of the transforms: hann, blackman-harris or flattop."),
        "name", "hann");
    add("full-scale-dbuv", QStringLiteral("Level of a full-scale sine; a sweep's dB are added."),
        "dbuv", "107.0");
    add("ranges",
        QStringLiteral("Serve these pieces only: START:STOP,... in Hz, both ends inclusive; for "
                       "sim: also START:STOP:STEP."),
        "list");
    add("type",
        QStringLiteral("Sample type to serve: %1. Bearings come from sim: only.").arg(typeNames()),
        "name", "level");
    add("speed", QStringLiteral("1 is real time, 10 ten times as fast, 0 as fast as possible."),
        "factor", "1");
    add("loop", QStringLiteral("Begin again at the end of the input."));
    add("wait",
        QStringLiteral("yes: hold the first scan back until a window has connected; no: start at "
                       "once. Default: yes for files, no for sim:."),
        "yes|no");
    add("stats", QStringLiteral("Write progress to standard error once a second."));
    add("server-key", QStringLiteral("File with the server's secret CURVE key."), "file");
    add("client-keys",
        QStringLiteral("File with the public CURVE keys of the clients that are let in."), "file");
    add("make-key",
        QStringLiteral("Print a new key pair, in the form of a --server-key file, and end."));
    add("allow-remote", QStringLiteral("Listen on other than loopback addresses without keys."));
    parser.addHelpOption();
    parser.addVersionOption();
}

double readHertz(const QCommandLineParser &parser, const char *name, double least)
{
    const QString text = parser.value(QLatin1String(name));
    const auto value = parseHertz(text);
    if (!value || *value < least || *value > 1e13)
        throw usage(QStringLiteral("--%1 \"%2\" is no frequency in Hz, such as 98.5M or 2e6.")
                        .arg(QLatin1String(name), text));
    return *value;
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

void readInput(const QCommandLineParser &parser, Options &options)
{
    const QString text = parser.value(QStringLiteral("input"));
    const QString kind = text.section(QLatin1Char(':'), 0, 0);
    options.inputText = text.section(QLatin1Char(':'), 1);
    if (kind == QLatin1String("sim"))
        options.inputKind = InputKind::simulation;
    else if (kind == QLatin1String("iq"))
        options.inputKind = InputKind::iq;
    else if (kind == QLatin1String("sweep"))
        options.inputKind = InputKind::sweep;
    else
        throw usage(
            QStringLiteral("--input \"%1\" begins with none of sim:, iq: and sweep:.").arg(text));
    if (options.inputKind != InputKind::simulation && options.inputText.isEmpty())
        throw usage(QStringLiteral("--input %1 names no file.").arg(text));
    if (options.inputKind == InputKind::simulation)
        parseSimulation(options.inputText);
}

void readSpectrum(const QCommandLineParser &parser, Options &options)
{
    for (const char *name : {"rate", "center", "format", "fft", "average", "window"})
        if (options.inputKind != InputKind::iq && parser.isSet(QLatin1String(name)))
            throw usage(QStringLiteral("--%1 is for an iq: input only.").arg(QLatin1String(name)));
    if (parser.isSet(QStringLiteral("rate")))
        options.rate = readHertz(parser, "rate", 1e-3);
    if (parser.isSet(QStringLiteral("center")))
        options.center = readHertz(parser, "center", -1e12);
    options.format = parser.value(QStringLiteral("format"));
    if (!options.format.isEmpty() && !formatByName(options.format))
        throw usage(QStringLiteral("--format \"%1\" is unknown; cu8, cs8, cs16 and cf32 are read.")
                        .arg(options.format));
    options.spectrum.fft = readCount(parser, "fft", kLeastFft, kMostFft);
    if (options.spectrum.fft % 2 != 0)
        throw usage(
            QStringLiteral("--fft %1 is odd; give an even number.").arg(options.spectrum.fft));
    options.spectrum.average = readCount(parser, "average", 1, kMostAverage);
    options.spectrum.fullScaleDbuv = readNumber(parser, "full-scale-dbuv", -300, 300);
}

void readWindow(const QCommandLineParser &parser, Options &options)
{
    const QString name = parser.value(QStringLiteral("window"));
    if (name == QLatin1String("hann"))
        options.spectrum.window = Window::hann;
    else if (name == QLatin1String("blackman-harris"))
        options.spectrum.window = Window::blackmanHarris;
    else if (name == QLatin1String("flattop"))
        options.spectrum.window = Window::flattop;
    else
        throw usage(QStringLiteral("--window \"%1\" is none of hann, blackman-harris and flattop.")
                        .arg(name));
}

FrequencyRange readRange(const QString &text, InputKind kind)
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
        throw usage(QStringLiteral("--ranges \"%1\" is not START:STOP in Hz with START below STOP "
                                   "(a STEP behind them is for sim: only).")
                        .arg(text));
    return {numbers[0], numbers[1], numbers.size() == 3 ? numbers[2] : 0};
}

SampleType readType(const QString &text)
{
    if (text == QLatin1String("elev-over-azi") || text == QLatin1String("109"))
        throw usage(
            QStringLiteral("--type %1 (elevation over azimuth) has no scan buffer to serve; "
                           "take bearing.")
                .arg(text));
    for (const TypeName &entry : kTypes)
        if (text == QLatin1String(entry.name) || text == QString::number(int(entry.type)))
            return entry.type;
    throw usage(QStringLiteral("--type \"%1\" is unknown; there are %2.").arg(text, typeNames()));
}

bool readWait(const QCommandLineParser &parser, InputKind kind)
{
    const QString text = parser.value(QStringLiteral("wait"));
    if (!parser.isSet(QStringLiteral("wait")))
        return kind != InputKind::simulation;
    if (text != QLatin1String("yes") && text != QLatin1String("no"))
        throw usage(QStringLiteral("--wait \"%1\" is neither yes nor no.").arg(text));
    return text == QLatin1String("yes");
}

void readServer(const QCommandLineParser &parser, Options &options)
{
    options.listen = parser.value(QStringLiteral("listen"));
    options.serverKeyFile = parser.value(QStringLiteral("server-key"));
    options.clientKeysFile = parser.value(QStringLiteral("client-keys"));
    if (!options.listen.startsWith(QLatin1String("tcp://")) ||
        options.listen.lastIndexOf(QLatin1Char(':')) < 6)
        throw usage(QStringLiteral("--listen \"%1\" is not of the form tcp://ADDRESS:PORT.")
                        .arg(options.listen));
    if (options.serverKeyFile.isEmpty() != options.clientKeysFile.isEmpty())
        throw usage(QStringLiteral("--server-key and --client-keys go together."));
    const bool configuredKey = !CfgCenter::GetAppCfg()
                                    .GetString(QStringLiteral("ScanBufferServerSecretKey"), {})
                                    .isEmpty();
    const bool safe =
        configuredKey || !options.serverKeyFile.isEmpty() || isLoopback(options.listen);
    if (!safe && !parser.isSet(QStringLiteral("allow-remote")))
        throw usage(QStringLiteral("--listen %1 would let other computers in without a key: give "
                                   "--server-key and --client-keys, or --allow-remote if the "
                                   "network is trusted.")
                        .arg(options.listen));
}

} // namespace

std::optional<double> parseHertz(const QString &text)
{
    QString digits = text.trimmed();
    double factor = 1;
    if (digits.endsWith(QLatin1Char('k')))
        factor = 1e3;
    else if (digits.endsWith(QLatin1Char('M')))
        factor = 1e6;
    else if (digits.endsWith(QLatin1Char('G')))
        factor = 1e9;
    if (factor != 1)
        digits.chop(1);
    bool ok = false;
    const double value = digits.toDouble(&ok) * factor;
    return ok && std::isfinite(value) ? std::optional(value) : std::nullopt;
}

bool isLoopback(const QString &endpoint)
{
    static const QRegularExpression loopback(
        QStringLiteral("^tcp://(localhost|127(\\.\\d{1,3}){3}|\\[::1\\]|::1):[^:]*$"));
    return loopback.match(endpoint).hasMatch();
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
    else if (parser.isSet(QStringLiteral("make-key")))
        options.action = Options::Action::makeKey;
    if (options.action != Options::Action::run)
        return options;
    if (!parser.positionalArguments().isEmpty())
        throw usage(QStringLiteral("\"%1\" belongs to no option; a file is given as --input "
                                   "iq:FILE or sweep:FILE.")
                        .arg(parser.positionalArguments().first()));
    readInput(parser, options);
    readSpectrum(parser, options);
    readWindow(parser, options);
    const QString ranges = parser.value(QStringLiteral("ranges"));
    for (const QString &range : ranges.split(QLatin1Char(','), Qt::SkipEmptyParts))
        options.ranges.push_back(readRange(range, options.inputKind));
    options.type = readType(parser.value(QStringLiteral("type")));
    options.speed = readNumber(parser, "speed", 0, 1e6);
    options.loop = parser.isSet(QStringLiteral("loop"));
    options.wait = readWait(parser, options.inputKind);
    options.stats = parser.isSet(QStringLiteral("stats"));
    readServer(parser, options);
    return options;
}

QString helpText()
{
    QCommandLineParser parser;
    declare(parser);
    parser.setApplicationDescription(
        QStringLiteral("Serves the scans of a receiver, of a recording or of a made-up band to "
                       "display windows.\nThe first line of its output is the endpoint: "
                       "\"endpoint tcp://...\"."));
    return parser.helpText() +
           QStringLiteral("\nKeys of sim: (defaults in brackets):\n%1"
                          "\nExit codes: 0 after SIGINT or SIGTERM, 1 failure, 2 bad usage.\n")
               .arg(simulationHelp());
}

} // namespace receiver
