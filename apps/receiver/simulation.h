#pragma once

#include "apps/receiver/input.h"

#include <QString>

#include <cstdint>
#include <vector>

namespace receiver {

/// Ids of channels and sizes of messages are 32-bit numbers with a sign.
constexpr double kMostSimulatedChannels = 50e6;

/// What the built-in band holds. parseSimulation() reads it from "key=value,key=value".
struct SimulationSettings {
    struct Carrier {
        double frequency = 0;
        float level = 50;   ///< dBuV
        float azimuth = -1; ///< degrees; negative for one by the seed
    };
    double start = 88e6; ///< Hz, centre of the first channel
    double step = 2e3;   ///< Hz
    std::uint32_t channels = 10000;
    double rate = 50; ///< scans per second
    std::uint64_t seed = 1;
    double noise = 8;            ///< dBuV, mean noise power in a channel
    std::uint32_t carriers = 12; ///< steady carriers, placed by the seed
    std::uint32_t fm = 2;        ///< FM broadcast stations
    std::uint32_t bursts = 6;    ///< channels that come and go
    std::uint32_t hoppers = 1;   ///< transmitters that jump through a part of the band
    std::uint64_t scans = 0;     ///< scans until the end; 0 for no end
    std::vector<Carrier> placed; ///< from "carrier=HZ@DBUV@DEGREES"
};

/// \throws Failure (usage) that names the key that is unknown or has a bad value
SimulationSettings parseSimulation(const QString &text);
/// The keys with their meaning and default, for --help.
QString simulationHelp();

/// One source of the simulated band.
struct Emitter {
    enum class Kind { carrier, fm, burst, hopper };
    Kind kind = Kind::carrier;
    double frequency = 0; ///< Hz, the middle; of a hopper: of the part it jumps through
    double width = 0;     ///< Hz: occupied by FM, jumped through by a hopper, else 0
    float level = 0;      ///< dBuV while it is on
    Direction direction;
};

/// A made-up band: noise, carriers, FM stations, bursts and hoppers, each from its own direction.
///
/// The same settings give the same scans, on every machine, after each rewind. Noise comes from a
/// table, so that a scan costs little more than a copy.
class Simulation : public Input {
public:
    /// \a ranges replaces start, step and channels unless empty. \a startTime stamps the first
    /// scan; the others follow by the rate.
    Simulation(const SimulationSettings &settings, const Grid &ranges, KRTimeStamp startTime,
               bool withDirections);

    const Grid &grid() const override { return m_grid; }
    bool read(Scan &scan) override;
    void rewind() override { m_scan = 0; }
    double period() const override { return 1e6 / m_settings.rate; }

    const std::vector<Emitter> &emitters() const { return m_emitters; }

private:
    void placeEmitters();
    void addEmitters(Emitter::Kind kind, std::uint32_t count);
    /// A channel's centre that depends on seed, kind and number only.
    double somewhere(std::uint64_t salt) const;
    void fillNoise(Scan &scan) const;
    void add(const Emitter &emitter, std::uint64_t number, Scan &scan) const;
    void addFm(const Emitter &emitter, std::uint64_t number, Scan &scan) const;
    void addLine(double frequency, float level, const Direction &direction, Scan &scan) const;
    void addPower(std::size_t channel, float level, const Direction &direction, Scan &scan) const;

    SimulationSettings m_settings;
    Grid m_grid;
    std::size_t m_channels;
    KRTimeStamp m_startTime;
    bool m_withDirections;
    std::vector<float> m_noise; // dB about the mean, repeated once so that a copy never wraps
    std::vector<Emitter> m_emitters;
    std::uint64_t m_scan = 0;
};

} // namespace receiver
