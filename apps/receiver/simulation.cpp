#include "apps/receiver/simulation.h"

#include <algorithm>
#include <cmath>
#include <numbers>

namespace receiver {
namespace {

constexpr std::size_t kNoiseValues = 1 << 17;
constexpr std::size_t kNoisePiece = 4096;
constexpr int kNoiseAverages = 4; // transforms that a real receiver would average
constexpr double kFmDeviation = 75e3;
constexpr std::uint64_t kHopScans = 3, kBurstScans = 20;

/// SplitMix64 (G. Steele et al., 2014): one good 64-bit number for each input.
std::uint64_t mix(std::uint64_t x)
{
    x += 0x9E3779B97F4A7C15u;
    x = (x ^ (x >> 30)) * 0xBF58476D1CE4E5B9u;
    x = (x ^ (x >> 27)) * 0x94D049BB133111EBu;
    return x ^ (x >> 31);
}

std::uint64_t mix(std::uint64_t a, std::uint64_t b) { return mix(mix(a) ^ b); }

/// Above 0, up to 1.
double unit(std::uint64_t bits) { return (double(bits >> 11) + 1) * 0x1p-53; }

std::vector<float> makeNoise(std::uint64_t seed)
{
    std::vector<float> values(kNoiseValues + kNoisePiece);
    for (std::size_t i = 0; i < kNoiseValues; ++i) {
        double power = 0; // of noise in one channel: exponentially distributed
        for (int k = 0; k < kNoiseAverages; ++k)
            power -= std::log(unit(mix(seed, i * kNoiseAverages + std::size_t(k))));
        values[i] = float(10 * std::log10(power / kNoiseAverages + 1e-12));
    }
    std::copy_n(values.begin(), kNoisePiece, values.begin() + kNoiseValues);
    return values;
}

float addLevels(float a, float b)
{
    const float high = std::max(a, b), low = std::min(a, b);
    return high + 10 * std::log10(1 + std::pow(10.0f, (low - high) / 10));
}

Direction makeDirection(std::uint64_t bits)
{
    Direction direction;
    direction.azimuth = float(360 * unit(mix(bits, 1)) * 0.99999);
    direction.elevation = float(30 * unit(mix(bits, 2)));
    direction.quality = std::int16_t(70 + 30 * unit(mix(bits, 3)));
    return direction;
}

} // namespace

Simulation::Simulation(const SimulationSettings &settings, const Grid &ranges,
                       KRTimeStamp startTime, bool withDirections)
    : m_settings(settings), m_grid(ranges), m_startTime(startTime),
      m_withDirections(withDirections), m_noise(makeNoise(settings.seed))
{
    if (m_grid.empty())
        m_grid = {{settings.start, settings.step, settings.channels}};
    m_channels = channelCount(m_grid);
    for (float &value : m_noise)
        value += float(settings.noise);
    placeEmitters();
}

void Simulation::placeEmitters()
{
    for (const auto &carrier : m_settings.placed) {
        Emitter emitter;
        emitter.frequency = carrier.frequency;
        emitter.level = carrier.level;
        emitter.direction = makeDirection(mix(m_settings.seed, m_emitters.size()));
        if (carrier.azimuth >= 0)
            emitter.direction.azimuth = carrier.azimuth;
        m_emitters.push_back(emitter);
    }
    addEmitters(Emitter::Kind::carrier, m_settings.carriers);
    addEmitters(Emitter::Kind::fm, m_settings.fm);
    addEmitters(Emitter::Kind::burst, m_settings.bursts);
    addEmitters(Emitter::Kind::hopper, m_settings.hoppers);
}

void Simulation::addEmitters(Emitter::Kind kind, std::uint32_t count)
{
    for (std::uint32_t i = 0; i < count; ++i) {
        const std::uint64_t salt = mix(m_settings.seed ^ (std::uint64_t(kind) + 1) << 32, i);
        Emitter emitter;
        emitter.kind = kind;
        emitter.frequency = somewhere(salt);
        emitter.level = float(m_settings.noise + 20 + 35 * unit(mix(salt, 7)));
        emitter.direction = makeDirection(salt);
        if (kind == Emitter::Kind::fm)
            emitter.width = 2 * kFmDeviation;
        if (kind == Emitter::Kind::hopper)
            emitter.width = (m_grid.front().lastCenter() - m_grid.front().firstCenter) / 5;
        m_emitters.push_back(emitter);
    }
}

double Simulation::somewhere(std::uint64_t salt) const
{
    auto channel = std::size_t(unit(salt) * 0.999999 * double(m_channels));
    for (const Range &range : m_grid) {
        if (channel < range.count)
            return range.firstCenter + double(channel) * range.step;
        channel -= range.count;
    }
    return m_grid.back().lastCenter();
}

bool Simulation::read(Scan &scan)
{
    if (m_settings.scans != 0 && m_scan == m_settings.scans)
        return false;
    scan.time = m_startTime + KRTimeStamp(std::llround(double(m_scan) * period()));
    fillNoise(scan);
    scan.directions.clear();
    if (m_withDirections)
        scan.directions.resize(m_channels);
    for (std::size_t i = 0; i < m_emitters.size(); ++i)
        add(m_emitters[i], i, scan);
    ++m_scan;
    return true;
}

void Simulation::fillNoise(Scan &scan) const
{
    scan.levels.resize(m_channels);
    for (std::size_t done = 0; done < m_channels; done += kNoisePiece) {
        const std::uint64_t bits = mix(m_scan, done + m_settings.seed);
        std::copy_n(m_noise.begin() + std::ptrdiff_t(bits % kNoiseValues),
                    std::min(kNoisePiece, m_channels - done),
                    scan.levels.begin() + std::ptrdiff_t(done));
    }
}

void Simulation::add(const Emitter &emitter, std::uint64_t number, Scan &scan) const
{
    switch (emitter.kind) {
    case Emitter::Kind::carrier:
        return addLine(emitter.frequency, emitter.level, emitter.direction, scan);
    case Emitter::Kind::fm:
        return addFm(emitter, number, scan);
    case Emitter::Kind::burst:
        // On for about a third of the time, for whole pieces of it.
        if (mix(number + 1000, (m_scan + 7 * number) / kBurstScans) % 3 == 0)
            addLine(emitter.frequency, emitter.level, emitter.direction, scan);
        return;
    case Emitter::Kind::hopper: {
        const double place = unit(mix(number + 2000, m_scan / kHopScans)) - 0.5;
        return addLine(emitter.frequency + place * emitter.width, emitter.level, emitter.direction,
                       scan);
    }
    }
}

void Simulation::addFm(const Emitter &emitter, std::uint64_t number, Scan &scan) const
{
    // Loud and quiet programme: the deviation swings between a fifth and all of its limit.
    const double seconds = double(m_scan) * period() / 1e6;
    const double loudness =
        0.6 + 0.4 * std::sin(2 * std::numbers::pi * 0.7 * seconds + double(number));
    const double deviation = kFmDeviation * loudness;
    std::size_t offset = 0;
    for (const Range &range : m_grid) {
        const double middle = (emitter.frequency - range.firstCenter) / range.step;
        const double reach = 2 * deviation / range.step;
        const double from = std::max(0.0, std::ceil(middle - reach));
        const double to = std::min(range.count - 1.0, std::floor(middle + reach));
        // The power spreads over the deviation; its density is about that of Gaussian programme.
        const auto top = float(emitter.level - 10 * std::log10(std::max(1.0, reach / 2)));
        for (double channel = from; channel <= to; ++channel) {
            const double distance = (channel - middle) * range.step / deviation;
            addPower(offset + std::size_t(channel), top - float(12 * distance * distance),
                     emitter.direction, scan);
        }
        offset += range.count;
    }
}

void Simulation::addLine(double frequency, float level, const Direction &direction,
                         Scan &scan) const
{
    std::size_t offset = 0;
    for (const Range &range : m_grid) {
        const double channel = std::round((frequency - range.firstCenter) / range.step);
        if (channel >= 0 && channel < range.count)
            addPower(offset + std::size_t(channel), level, direction, scan);
        offset += range.count;
    }
}

void Simulation::addPower(std::size_t channel, float level, const Direction &direction,
                          Scan &scan) const
{
    const float above = level - scan.levels[channel];
    scan.levels[channel] = addLevels(scan.levels[channel], level);
    // A direction finder gives no bearing below the noise, and a shaky one just above it.
    if (!m_withDirections || above < 3)
        return;
    const double jitter = (unit(mix(m_scan, channel)) - 0.5) * 20 / std::max(1.0f, above);
    Direction &found = scan.directions[channel];
    found = direction;
    found.azimuth = float(std::fmod(direction.azimuth + jitter + 360, 360));
    found.quality = std::int16_t(std::min(float(direction.quality), above * 4));
}

} // namespace receiver
