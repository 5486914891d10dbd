#include "apps/receiver/inputs.h"

#include "apps/common/failure.h"
#include "apps/receiver/simulation.h"
#include "apps/receiver/sweepreader.h"

#include <QDateTime>
#include <QFile>
#include <QFileInfo>

#include <cmath>

namespace receiver {

using apps::Failure;

namespace {

KRTimeStamp now() { return KRTimeStamp(QDateTime::currentMSecsSinceEpoch()) * 1000; }

bool hasDirections(SampleType type)
{
    return type == SampleType::bearing || type == SampleType::bearingExtended ||
           type == SampleType::dfSpectrum || type == SampleType::pulse;
}

std::unique_ptr<Input> openSimulation(const Options &options)
{
    const SimulationSettings settings = parseSimulation(options.inputText);
    Grid grid;
    double channels = 0;
    for (const FrequencyRange &range : options.ranges) {
        const double step = range.step > 0 ? range.step : settings.step;
        const double count = std::floor((range.stop - range.start) / step + 1e-6) + 1;
        channels += count;
        if (channels > kMostSimulatedChannels)
            throw Failure(Failure::Usage,
                          QStringLiteral("--ranges asks for more than %1 channels: give a larger "
                                         "step.")
                              .arg(kMostSimulatedChannels, 0, 'f', 0));
        grid.push_back({range.start, step, std::uint32_t(count)});
    }
    return std::make_unique<Simulation>(settings, grid, now(), hasDirections(options.type));
}

std::unique_ptr<Input> openIq(const Options &options, const Note &note)
{
    Recording recording = openRecording(options.inputText, options.format);
    for (const QString &warning : recording.warnings)
        note(warning);
    recording.rate = options.rate.value_or(recording.rate);
    recording.center = options.center.value_or(recording.center);
    if (!(recording.rate > 0))
        throw Failure(
            Failure::Usage,
            QStringLiteral("%1 doesn't tell its sample rate: give --rate.").arg(options.inputText));
    if (recording.start == 0)
        recording.start = now();
    return std::make_unique<SpectrumInput>(recording, options.spectrum);
}

std::unique_ptr<Input> openSweep(const Options &options, const Note &note)
{
    auto file = std::make_unique<QFile>(options.inputText);
    if (QFileInfo(options.inputText).isDir())
        throw Failure(Failure::Runtime,
                      QStringLiteral("%1 is a folder: name a file.").arg(options.inputText));
    if (!file->open(QIODevice::ReadOnly))
        throw Failure(Failure::Runtime,
                      QStringLiteral("%1 can't be read: %2. Check the path and its permissions.")
                          .arg(options.inputText, file->errorString()));
    return std::make_unique<SweepReader>(std::move(file), options.inputText,
                                         options.spectrum.fullScaleDbuv, note);
}

} // namespace

std::unique_ptr<Input> openInput(const Options &options, const Note &note)
{
    if (options.inputKind == InputKind::simulation)
        return openSimulation(options);
    auto input =
        options.inputKind == InputKind::iq ? openIq(options, note) : openSweep(options, note);
    if (options.ranges.empty())
        return input;
    return std::make_unique<RangeFilter>(std::move(input), options.ranges);
}

} // namespace receiver
