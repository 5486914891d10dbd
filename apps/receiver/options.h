#pragma once

#include "apps/common/program.h"
#include "apps/receiver/rangefilter.h"
#include "apps/receiver/spectrum.h"

#include <QString>
#include <QStringList>

#include <optional>
#include <vector>

namespace receiver {

/// The sample type of the scan buffer that is served, by the numbers of the sample handlers.
enum class SampleType : int {
    charLevel = 100,
    shortLevel = 101,
    level = 102,
    longLevel = 103,
    floatLevel = 104,
    percent = 105,
    doubleLevel = 106,
    bearing = 107,
    minMax = 108,
    bearingExtended = 110,
    pulse = 111,
    dfSpectrum = 112,
};

enum class InputKind { simulation, iq, sweep };

/// What the command line asks for.
struct Options {
    apps::Request request; ///< where it isn't to run, what follows is not filled

    InputKind inputKind = InputKind::simulation;
    QString inputText; ///< the file, or the simulation's keys
    std::optional<double> rate, center;
    QString format;
    SpectrumSettings spectrum;
    std::vector<FrequencyRange> ranges;
    SampleType type = SampleType::level;

    double speed = 1; ///< 1 is real time, 0 as fast as possible
    bool loop = false;
    bool wait = false; ///< for the first window
    bool stats = false;

    QString listen;
    QString serverKeyFile;  ///< holds the server's secret key; empty for none
    QString clientKeysFile; ///< lists the public keys of the clients that are let in
};

/// Reads the command line, of which the first entry is the program. Needs a QCoreApplication.
/// \throws Failure (usage) with a sentence that names the option
Options parseOptions(const QStringList &arguments);

} // namespace receiver
