// Checks the readers on real recordings, which are not part of the project: the folder
// ../shared/data beside it, or SPECTREE_RECORDINGS. Skipped where there is none.
#include "apps/receiver/inputs.h"
#include "tests/apps/inputtools.h"

#include <QFileInfo>

#include <algorithm>
#include <fstream>
#include <sstream>

using namespace receiver;
using namespace receivertest;

namespace {

class Recordings : public testing::Test {
protected:
    void SetUp() override
    {
        const QByteArray given = qgetenv("SPECTREE_RECORDINGS");
        m_folder = given.isEmpty() ? QStringLiteral(SPECTREE_SOURCE_DIR "/../shared/data")
                                   : QString::fromLocal8Bit(given);
        if (!QFileInfo(m_folder).isDir())
            GTEST_SKIP() << "no recordings in " << m_folder.toStdString();
    }

    std::unique_ptr<Input> open(const QString &kind, const QString &file, const QString &more)
    {
        const QStringList arguments = {QStringLiteral("spectree-receiver"),
                                       QStringLiteral("--input"),
                                       kind + m_folder + QLatin1Char('/') + file};
        const QStringList options = more.split(QLatin1Char(' '), Qt::SkipEmptyParts);
        return openInput(parseOptions(arguments + options),
                         [this](const QString &note) { m_notes << note; });
    }

    QString m_folder;
    QStringList m_notes;
};

/// Mean level of each channel, of the powers.
std::vector<double> meanLevels(const std::vector<Scan> &scans)
{
    std::vector<double> means(scans.at(0).levels.size());
    for (const Scan &scan : scans)
        for (std::size_t i = 0; i < means.size(); ++i)
            means[i] += std::pow(10, scan.levels[i] / 10) / double(scans.size());
    for (double &mean : means)
        mean = 10 * std::log10(mean);
    return means;
}

double meanBetween(const Grid &grid, const std::vector<double> &levels, double from, double to)
{
    double sum = 0;
    const auto first = channelAt(grid, from), last = channelAt(grid, to);
    for (auto i = first; i <= last; ++i)
        sum += levels[i];
    return sum / double(last - first + 1);
}

double topBetween(const Grid &grid, const std::vector<double> &levels, double from, double to)
{
    return *std::max_element(levels.begin() + std::ptrdiff_t(channelAt(grid, from)),
                             levels.begin() + std::ptrdiff_t(channelAt(grid, to)) + 1);
}

double quantile(std::vector<double> levels, double part)
{
    std::sort(levels.begin(), levels.end());
    return levels[std::size_t(part * double(levels.size() - 1))];
}

} // namespace

TEST_F(Recordings, TheFmStationStandsOutOfTheMean)
{
    const auto input = open(QStringLiteral("iq:"), QStringLiteral("fm_98M_2Msps_ci8.sigmf-meta"),
                            QStringLiteral("--fft 4096 --average 244"));
    EXPECT_EQ(m_notes.size(), 1) << "the data file's name is not the usual one";
    const auto scans = readAll(*input);
    ASSERT_EQ(scans.size(), 1u);
    EXPECT_EQ(scans[0].time, 1781545693436516u);
    const auto levels = meanLevels(scans);
    const double station = meanBetween(input->grid(), levels, 98.05e6, 98.13e6);
    EXPECT_NEAR(station - quantile(levels, 0.5), 3, 1);
}

TEST_F(Recordings, TheAircraftIsStrongestNearItsLine)
{
    const auto input = open(QStringLiteral("iq:"), QStringLiteral("adsb_1090M_2Msps.cu8"),
                            QStringLiteral("--rate 2M --center 1090M --fft 256 --average 100"));
    const auto levels = meanLevels(readAll(*input));
    const double line = topBetween(input->grid(), levels, 1089.91e6, 1089.95e6);
    EXPECT_EQ(line, *std::max_element(levels.begin(), levels.end()));
}

TEST_F(Recordings, EachListedShortWaveSignalRisesAboveTheFloor)
{
    const auto input = open(QStringLiteral("iq:"), QStringLiteral("hf_ft8_busy_12k.wav"),
                            QStringLiteral("--center 14.074M --fft 3840 --window blackman-harris"));
    const auto all = readAll(*input);
    const auto seconds = [&](double time) { return std::ptrdiff_t(time * 12000 / 3840); };
    const auto levels = meanLevels({all.begin() + seconds(2), all.begin() + seconds(12.5)});
    const Grid band = {{14.074e6, 12000.0 / 3840, 960}}; // 0 to 3 kHz is in use
    const double floor = quantile({levels.begin(), levels.begin() + 960}, 0.2);
    std::ifstream truth((m_folder + QStringLiteral("/hf_ft8_busy_12k.truth.txt")).toStdString());
    int signals = 0;
    for (std::string line; std::getline(truth, line); ++signals) {
        std::istringstream fields(line);
        std::string time;
        double snr = 0, dt = 0, offset = 0;
        ASSERT_TRUE(fields >> time >> snr >> dt >> offset) << line;
        EXPECT_GE(topBetween(band, levels, 14.074e6 + offset, 14.074e6 + offset + 50), floor + 8)
            << line;
    }
    EXPECT_EQ(signals, 27);
}

TEST_F(Recordings, TheOneSweepHasItsHopsInOrder)
{
    const auto input =
        open(QStringLiteral("sweep:"), QStringLiteral("scan_fm_88_108M_1sweep.csv"), QString());
    EXPECT_TRUE(m_notes.isEmpty()) << m_notes.join(QLatin1Char('\n')).toStdString();
    const auto scans = readAll(*input);
    ASSERT_EQ(scans.size(), 1u);
    EXPECT_EQ(centers(input->grid()).size(), 20u);
    EXPECT_EQ(input->grid().at(0).firstCenter, 88.5e6);
    const auto levels = meanLevels(scans);
    const auto strongest = std::max_element(levels.begin(), levels.end());
    EXPECT_NEAR(*strongest, -53.64 + 107, 0.01);
    EXPECT_EQ(centers(input->grid()).at(std::size_t(strongest - levels.begin())), 95.5e6);
}

TEST_F(Recordings, TheLongSweepFileIsReadWholeWithoutItsRepeats)
{
    const auto input =
        open(QStringLiteral("sweep:"), QStringLiteral("scan_fm_88M1_299sweeps.csv"), QString());
    EXPECT_TRUE(m_notes.isEmpty());
    const auto scans = readAll(*input);
    EXPECT_EQ(scans.size(), 299u);
    ASSERT_EQ(input->grid().size(), 1u);
    EXPECT_EQ(input->grid()[0].firstCenter, 88.05e6);
    EXPECT_EQ(input->grid()[0].step, 781.25);
    EXPECT_EQ(input->grid()[0].count, 128u);
    EXPECT_EQ(scans.back().time - scans.front().time, 298000000u);
    const auto levels = meanLevels(scans);
    EXPECT_GT(meanBetween(input->grid(), levels, 88.09e6, 88.11e6), levels.front() + 2);
}
