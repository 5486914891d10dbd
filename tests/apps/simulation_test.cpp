#include "apps/receiver/rangefilter.h"
#include "apps/receiver/samplewriter.h"
#include "apps/receiver/simulation.h"
#include "apps/receiver/stampkeeper.h"
#include "tests/apps/inputtools.h"

using namespace receiver;
using namespace receivertest;

namespace {

Simulation make(const char *text, bool directions = false, const Grid &ranges = {})
{
    return Simulation(parseSimulation(QString::fromLatin1(text)), ranges, 1000000, directions);
}

std::vector<float> levelsOf(Simulation &simulation, int scans)
{
    std::vector<float> all;
    for (Scan scan; scans > 0 && simulation.read(scan); --scans)
        all.insert(all.end(), scan.levels.begin(), scan.levels.end());
    return all;
}

constexpr const char *kQuiet = "carriers=0,fm=0,bursts=0,hoppers=0,";

} // namespace

TEST(Simulation, TheSeedAloneDecides)
{
    Simulation a = make("channels=5000,seed=7"), same = make("channels=5000,seed=7");
    Simulation other = make("channels=5000,seed=8");
    const std::vector<float> first = levelsOf(a, 40);
    EXPECT_EQ(first.size(), 40u * 5000);
    EXPECT_EQ(levelsOf(same, 40), first);
    EXPECT_NE(levelsOf(other, 40), first);
    a.rewind();
    EXPECT_EQ(levelsOf(a, 40), first);
}

TEST(Simulation, NoiseHasItsLevelAndNoPatternFromScanToScan)
{
    Simulation simulation = make((std::string(kQuiet) + "channels=50000,noise=12").c_str());
    Scan one, two;
    ASSERT_TRUE(simulation.read(one) && simulation.read(two));
    double power = 0;
    std::size_t equal = 0;
    for (std::size_t i = 0; i < one.levels.size(); ++i) {
        power += std::pow(10, one.levels[i] / 10);
        equal += one.levels[i] == two.levels[i];
    }
    EXPECT_NEAR(10 * std::log10(power / double(one.levels.size())), 12, 0.1);
    EXPECT_LT(equal, one.levels.size() / 100);
}

TEST(Simulation, EmittersStandWhereTheyAreSaidToBe)
{
    Simulation simulation = make("channels=20000,step=1k,noise=0,carriers=5,bursts=8,hoppers=1,"
                                 "carrier=90.5M@70@123");
    std::vector<float> top(20000, -200), sum(20000, 0);
    const int scans = 400;
    Scan scan;
    for (int i = 0; i < scans && simulation.read(scan); ++i)
        for (std::size_t k = 0; k < top.size(); ++k) {
            top[k] = std::max(top[k], scan.levels[k]);
            sum[k] += scan.levels[k];
        }
    int seen[4] = {};
    for (const Emitter &emitter : simulation.emitters()) {
        const auto channel = channelAt(simulation.grid(), emitter.frequency);
        const double mean = sum[channel] / scans;
        ++seen[int(emitter.kind)];
        if (emitter.kind == Emitter::Kind::carrier) {
            EXPECT_NEAR(mean, emitter.level, 0.5) << emitter.frequency;
        }
        if (emitter.kind == Emitter::Kind::burst) {
            EXPECT_GE(top[channel], emitter.level - 0.5) << emitter.frequency;
            EXPECT_LT(mean, emitter.level - 5) << emitter.frequency << " is always on";
        }
        if (emitter.kind == Emitter::Kind::fm) {
            EXPECT_GT(mean, 5) << emitter.frequency;
        }
    }
    EXPECT_EQ(seen[0], 6);
    EXPECT_EQ(seen[1], 2);
    EXPECT_EQ(seen[2], 8);
    EXPECT_EQ(seen[3], 1);
    EXPECT_NEAR(sum[channelAt(simulation.grid(), 90.5e6)] / scans, 70, 0.5);
}

TEST(Simulation, AHopperVisitsManyChannelsOneAtATime)
{
    Simulation simulation = make("channels=1000,noise=-20,carriers=0,fm=0,bursts=0,hoppers=1");
    const Emitter &hopper = simulation.emitters().at(0);
    std::vector<std::size_t> visited;
    Scan scan;
    for (int i = 0; i < 60 && simulation.read(scan); ++i) {
        const auto loud = std::count_if(scan.levels.begin(), scan.levels.end(),
                                        [&](float level) { return level > hopper.level - 3; });
        EXPECT_LE(loud, 1);
        if (loud == 1)
            visited.push_back(std::size_t(std::max_element(scan.levels.begin(), scan.levels.end()) -
                                          scan.levels.begin()));
    }
    std::sort(visited.begin(), visited.end());
    visited.erase(std::unique(visited.begin(), visited.end()), visited.end());
    EXPECT_GT(visited.size(), 5u);
}

TEST(Simulation, BearingsPointToTheEmitterAndNoiseHasNone)
{
    Simulation simulation =
        make((std::string(kQuiet) + "channels=1000,carrier=88.5M@60@359.9").c_str(), true);
    const auto channel = channelAt(simulation.grid(), 88.5e6);
    Scan scan;
    for (int i = 0; i < 100; ++i) {
        ASSERT_TRUE(simulation.read(scan));
        const Direction &found = scan.directions.at(channel);
        EXPECT_GT(found.quality, 50);
        EXPECT_GE(found.azimuth, 0);
        EXPECT_LT(found.azimuth, 360);
        EXPECT_NEAR(std::remainder(found.azimuth - 359.9, 360), 0, 2);
        EXPECT_EQ(scan.directions.at(channel + 10).quality, 0);
    }
}

TEST(Simulation, TimesEndAndRangesFollowTheKeys)
{
    Simulation simulation =
        make("rate=4,scans=3,carrier=200M@50", false, {{100e6, 10e3, 50}, {199e6, 25e3, 60}});
    EXPECT_EQ(channelCount(simulation.grid()), 110u);
    const auto scans = readAll(simulation);
    ASSERT_EQ(scans.size(), 3u);
    EXPECT_EQ(scans[2].time, 1500000u);
    EXPECT_NEAR(scans[0].levels.at(50 + 40), 50, 0.5);
}

TEST(RangeFilter, CutsRangesInclusivelyAndInTheOrderAskedFor)
{
    const auto filtered = [](const std::vector<FrequencyRange> &wanted) {
        SimulationSettings settings = parseSimulation(QStringLiteral("scans=1"));
        return RangeFilter(
            std::make_unique<Simulation>(settings, Grid{{100, 10, 10}, {300, 5, 10}}, 1, true),
            wanted);
    };
    RangeFilter both = filtered({{299, 315}, {120, 140}});
    EXPECT_EQ(centers(both.grid()), (std::vector<double>{300, 305, 310, 315, 120, 130, 140}));
    Scan scan, whole;
    ASSERT_TRUE(both.read(scan));
    EXPECT_EQ(scan.levels.size(), 7u);
    EXPECT_EQ(scan.directions.size(), 7u);
    RangeFilter all = filtered({{0, 1000}});
    ASSERT_TRUE(all.read(whole));
    EXPECT_EQ(whole.levels.size(), 20u);
    EXPECT_EQ(scan.levels[0], whole.levels[10]);
    EXPECT_EQ(scan.levels[4], whole.levels[2]);
    EXPECT_EQ(outcomeOf([&] { filtered({{200, 250}}); }).code, 2);
}

TEST(StampKeeper, StampsRiseWhateverTheRecordingSays)
{
    StampKeeper keeper(0);
    std::vector<KRTimeStamp> stamps;
    for (const KRTimeStamp recorded : {1000u, 3000u, 3000u, 3000u, 5000u, 1000u, 3000u})
        stamps.push_back(keeper.next(recorded));
    // Whole seconds repeat; then the clock was set back.
    EXPECT_EQ(stamps, (std::vector<KRTimeStamp>{1000, 3000, 3001, 3002, 5000, 7000, 9000}));
    keeper.restart();
    EXPECT_EQ(keeper.next(3000), 11000u); // the recording's only stamp, again
    EXPECT_EQ(keeper.next(4000), 12000u);
}

template <typename Pair>
class SampleWriter : public testing::Test {
};
TYPED_TEST_SUITE(SampleWriter, values::SamplePairList<testing::Types>, values::SamplePairNames);

TYPED_TEST(SampleWriter, LevelsAndGapsReachEachSampleType)
{
    using Y = typename TypeParam::Sample;
    using Handler = typename TypeParam::Handler;
    Scan scan;
    scan.levels = {42, NAN, 1e9F, -1e9F};
    scan.directions.resize(4);
    scan.directions[0] = {123.5F, 20, 80};
    std::vector<Y> samples;

    writeSamples<Handler>(scan, samples);

    ASSERT_EQ(samples.size(), 4u);
    const bool inTenths = std::is_same_v<Handler, values::ElevOverAziMinMaxHandler>;
    EXPECT_EQ(Handler::GetDimension(0, samples[0]), inTenths ? 420 : 42);
    EXPECT_TRUE(samples[1] == Y(Handler::Minimum()));
    EXPECT_TRUE(samples[1] < samples[3] || samples[1] == samples[3]) << "a gap is the lowest";
    EXPECT_GE(Handler::GetDimension(0, samples[2]), 100);
    if constexpr (requires { samples[0].azimuth; }) {
        EXPECT_EQ(samples[0].azimuth, 12350);
        EXPECT_EQ(samples[0].quality, 80);
    }
}
