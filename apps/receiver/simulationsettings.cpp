#include "apps/common/commandline.h"
#include "apps/receiver/simulation.h"

#include <QStringList>

#include <algorithm>
#include <cmath>
#include <functional>
#include <type_traits>
#include <vector>

namespace receiver {

using apps::Failure;
using apps::parseHertz;

namespace {

using Assign = std::function<bool(SimulationSettings &, const QString &)>;

/// Sets a number that lies between two limits, whole for whole types.
template <typename T>
Assign number(T SimulationSettings::*member, double least, double most)
{
    return [=](SimulationSettings &settings, const QString &text) {
        const auto value = parseHertz(text);
        if (!value || *value < least || *value > most)
            return false;
        if (std::is_integral_v<T> && *value != std::floor(*value))
            return false;
        settings.*member = T(*value);
        return true;
    };
}

bool placeCarrier(SimulationSettings &settings, const QString &text)
{
    const QStringList parts = text.split(QLatin1Char('@'));
    SimulationSettings::Carrier carrier;
    const auto frequency = parseHertz(parts.first());
    bool levelOk = true, azimuthOk = true;
    if (parts.size() > 1)
        carrier.level = parts[1].toFloat(&levelOk);
    if (parts.size() > 2)
        carrier.azimuth = parts[2].toFloat(&azimuthOk);
    const bool ok = frequency && levelOk && azimuthOk && parts.size() <= 3 &&
                    std::abs(carrier.level) <= 200 && carrier.azimuth < 360 &&
                    (parts.size() < 3 || carrier.azimuth >= 0);
    if (ok) {
        carrier.frequency = *frequency;
        settings.placed.push_back(carrier);
    }
    return ok;
}

struct Key {
    const char *name;
    const char *help;
    Assign assign;
};

const std::vector<Key> &keys()
{
    using S = SimulationSettings;
    static const std::vector<Key> all = {
        {"start", "centre of the first channel in Hz (88M)", number(&S::start, 0, 1e13)},
        {"step", "channel spacing in Hz (2k)", number(&S::step, 1e-3, 1e12)},
        {"channels", "number of channels (10000)", number(&S::channels, 1, kMostSimulatedChannels)},
        {"rate", "scans per second (50)", number(&S::rate, 1e-3, 1e6)},
        {"seed", "another seed, another band (1)", number(&S::seed, 0, 0x1p53)},
        {"noise", "mean noise in a channel, dBuV (8)", number(&S::noise, -100, 150)},
        {"carriers", "steady carriers (12)", number(&S::carriers, 0, 1e5)},
        {"fm", "FM broadcast stations (2)", number(&S::fm, 0, 1e4)},
        {"bursts", "channels that come and go (6)", number(&S::bursts, 0, 1e5)},
        {"hoppers", "transmitters that hop (1)", number(&S::hoppers, 0, 1e4)},
        {"scans", "scans until the end, 0 for none (0)", number(&S::scans, 0, 0x1p53)},
        {"carrier", "HZ[@DBUV[@DEGREES]], one more carrier there; may be repeated", placeCarrier},
    };
    return all;
}

} // namespace

SimulationSettings parseSimulation(const QString &text)
{
    SimulationSettings settings;
    for (const QString &entry : text.split(QLatin1Char(','), Qt::SkipEmptyParts)) {
        const QString name = entry.section(QLatin1Char('='), 0, 0).trimmed();
        const QString value = entry.section(QLatin1Char('='), 1).trimmed();
        const auto key = std::find_if(keys().begin(), keys().end(), [&](const Key &candidate) {
            return name == QLatin1String(candidate.name);
        });
        if (key == keys().end())
            throw Failure(Failure::Usage,
                          QStringLiteral("--input sim: has no key \"%1\"; the keys are:\n%2")
                              .arg(name, simulationHelp()));
        if (!key->assign(settings, value))
            throw Failure(Failure::Usage,
                          QStringLiteral("--input sim: \"%1\" is no good value of %2 (%3).")
                              .arg(value, name, QLatin1String(key->help)));
    }
    return settings;
}

QString simulationHelp()
{
    QString text;
    for (const Key &key : keys())
        text += QStringLiteral("  %1 %2\n")
                    .arg(QLatin1String(key.name), -9)
                    .arg(QLatin1String(key.help));
    return text;
}

} // namespace receiver
