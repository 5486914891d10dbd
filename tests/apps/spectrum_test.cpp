#include "apps/receiver/spectrum.h"
#include "tests/apps/inputtools.h"

#include <random>

using namespace receiver;
using namespace receivertest;

namespace {

constexpr double kRate = 1e6, kCenter = 100e6;

QByteArray encode(const char *format, const std::vector<double> &numbers)
{
    const std::string name = format;
    QByteArray bytes;
    for (const double number : numbers) {
        if (name == "cu8")
            bytes += images<std::uint8_t>({std::uint8_t(std::lround(127.5 + 127.5 * number))});
        else if (name == "cs8")
            bytes += images<std::int8_t>({std::int8_t(std::lround(128 * number))});
        else if (name == "cs16")
            bytes += images<std::int16_t>({std::int16_t(std::lround(32768 * number))});
        else
            bytes += images<float>({float(number)});
    }
    return bytes;
}

/// I and Q of a sine at \a channels from the centre, in channel widths.
std::vector<double> sine(double amplitude, double channels, int fft, int samples)
{
    std::vector<double> numbers;
    for (int i = 0; i < samples; ++i) {
        const double phase = 2 * std::numbers::pi * channels * i / fft;
        numbers.push_back(amplitude * std::cos(phase));
        numbers.push_back(amplitude * std::sin(phase));
    }
    return numbers;
}

Recording recordingOf(const Files &files, const char *format, const std::vector<double> &numbers)
{
    Recording recording = openRecording(files.write("test.bin", encode(format, numbers)),
                                        QString::fromLatin1(format));
    recording.rate = kRate;
    recording.center = kCenter;
    return recording;
}

SpectrumSettings settingsOf(int fft, int average = 1, Window window = Window::hann)
{
    SpectrumSettings settings;
    settings.fft = fft;
    settings.average = average;
    settings.window = window;
    return settings;
}

std::vector<Scan> scansOf(const Recording &recording, const SpectrumSettings &settings)
{
    SpectrumInput input(recording, settings);
    return readAll(input);
}

double dBuv(double amplitude) { return 107 + 20 * std::log10(amplitude); }

} // namespace

TEST(Spectrum, ASineReadsItsLevelWhateverFormatSizeAndWindow)
{
    const Files files;
    for (const char *format : {"cu8", "cs8", "cs16", "cf32"})
        for (const int fft : {16, 64, 1000, 4096, 65536})
            for (const Window window : {Window::hann, Window::blackmanHarris, Window::flattop}) {
                SCOPED_TRACE(std::string(format) + " " + std::to_string(fft) + " window " +
                             std::to_string(int(window)));
                const int channel = -fft / 4 + 1; // from the centre
                SpectrumInput input(recordingOf(files, format, sine(0.5, channel, fft, 2 * fft)),
                                    settingsOf(fft, 1, window));

                const auto scans = readAll(input);

                ASSERT_EQ(scans.size(), 2u);
                const auto expected = channelAt(input.grid(), kCenter + channel * kRate / fft);
                for (const Scan &scan : scans) {
                    ASSERT_EQ(scan.levels.size(), std::size_t(fft));
                    const auto top = std::max_element(scan.levels.begin(), scan.levels.end());
                    EXPECT_EQ(std::size_t(top - scan.levels.begin()), expected);
                    EXPECT_NEAR(*top, dBuv(0.5), 0.1);
                }
            }
}

TEST(Spectrum, RealSamplesReachFromTheDialToHalfTheRate)
{
    const Files files;
    const int fft = 1200;
    std::vector<double> numbers;
    for (int i = 0; i < fft; ++i)
        numbers.push_back(0.25 + 0.5 * std::sin(2 * std::numbers::pi * 150 * i / fft));
    Recording recording = recordingOf(files, "cf32", numbers);
    recording.format.complex = false;
    SpectrumInput input(recording, settingsOf(fft));
    const auto scans = readAll(input);

    ASSERT_EQ(input.grid().size(), 1u);
    EXPECT_EQ(input.grid()[0].firstCenter, kCenter);
    EXPECT_EQ(input.grid()[0].count, 600u);
    EXPECT_NEAR(input.grid()[0].step, kRate / fft, 1e-9);
    ASSERT_EQ(scans.size(), 1u);
    EXPECT_NEAR(scans[0].levels[150], dBuv(0.5), 0.1);
    EXPECT_NEAR(scans[0].levels[0], dBuv(0.25), 0.1); // a constant has no mirror image
}

TEST(Spectrum, ScallopingAndNoiseBandwidthAreWhatTheTableSays)
{
    const struct {
        Window window;
        double scalloping, bandwidth;
    } cases[] = {{Window::hann, 1.42, 1.50},
                 {Window::blackmanHarris, 0.83, 2.00},
                 {Window::flattop, 0.01, 3.77}};
    const Files files;
    const int fft = 1024;
    for (const auto &c : cases) {
        SCOPED_TRACE(int(c.window));
        const auto scans = scansOf(recordingOf(files, "cf32", sine(1, 100.5, fft, fft)),
                                   settingsOf(fft, 1, c.window));
        const auto &levels = scans.at(0).levels;
        EXPECT_NEAR(107 - *std::max_element(levels.begin(), levels.end()), c.scalloping, 0.01);

        double squares = 0;
        for (const float value : makeWindow(c.window, std::size_t(fft)))
            squares += double(value) * value;
        EXPECT_NEAR(squares * fft, c.bandwidth, 0.01);
    }
}

TEST(Spectrum, AveragingKeepsTheNoiseLevelAndCalmsIt)
{
    const Files files;
    const int fft = 512, transforms = 400;
    std::mt19937 random(1);
    std::normal_distribution<double> normal(0, 0.01);
    std::vector<double> numbers(2 * fft * transforms);
    for (double &number : numbers)
        number = normal(random);
    const Recording recording = recordingOf(files, "cf32", numbers);
    // The power of I and Q spreads over fft channels, each of which sees 1.5 of them.
    const double expected = dBuv(std::sqrt(2 * 0.01 * 0.01 * 1.5 / fft));
    for (const int average : {1, 50, 400}) {
        SCOPED_TRACE(average);
        const auto scans = scansOf(recording, settingsOf(fft, average));
        ASSERT_EQ(scans.size(), std::size_t(transforms / average));
        double power = 0, deviation = 0;
        for (const Scan &scan : scans)
            for (const float level : scan.levels) {
                power += std::pow(10, level / 10);
                deviation += std::abs(level - expected);
            }
        const double count = double(scans.size() * fft);
        EXPECT_NEAR(10 * std::log10(power / count), expected, 0.1);
        EXPECT_LT(deviation / count, average == 1 ? 6 : 6 / std::sqrt(average));
    }
}

TEST(Spectrum, TimesScansByTheRateAndAveragesTheRestAtTheEnd)
{
    const Files files;
    Recording recording = recordingOf(files, "cs16", sine(0.5, 3, 100, 1099));
    recording.start = 5000000;
    SpectrumInput input(recording, settingsOf(100, 4));
    EXPECT_EQ(input.period(), 400);
    for (int pass = 0; pass < 2; ++pass) {
        const auto scans = readAll(input);
        ASSERT_EQ(scans.size(), 3u); // 4, 4 and 2 transforms; 99 samples are left over
        EXPECT_EQ(scans[2].time, 5000800u);
        EXPECT_NEAR(scans[2].levels[53], dBuv(0.5), 0.1);
        input.rewind();
    }
}

TEST(Spectrum, SilenceHasALevelAndTooFewSamplesASentence)
{
    const Files files;
    const auto scans = scansOf(recordingOf(files, "cs16", sine(0, 0, 64, 64)), settingsOf(64));
    for (const float level : scans.at(0).levels)
        EXPECT_TRUE(std::isfinite(level) && level < -100) << level;

    const Recording recording = recordingOf(files, "cs16", sine(0, 0, 64, 63));
    const Outcome outcome = outcomeOf([&] { SpectrumInput(recording, settingsOf(64)); });
    EXPECT_EQ(outcome.code, 1);
    EXPECT_NE(outcome.sentence.find("63 samples, fewer than one transform of 64"),
              std::string::npos);
}
