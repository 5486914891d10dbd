#include "platform/base/krexception.h"
#include "scanbuffer/compressiondetails.h"

#include <gtest/gtest.h>

#include <limits>

namespace {

using sbs::CompressionDetails;
using Steps = std::vector<int>;

void feedRate(CompressionDetails &details, double scansPerSecond)
{
    for (int sample = 0; sample < 101; ++sample)
        details.slotCurrentScanPerSecond(scansPerSecond);
}

TEST(CompressionDetails, StepsSetTheFields)
{
    CompressionDetails details;
    EXPECT_EQ(details.GetSettings(), (Steps{0, 0, 0, 3}));
    struct Row {
        Steps steps;
        short resolution, colors, scansPerLine, data, process, t200, t1000, azimuth;
    };
    for (const Row &row : std::vector<Row>{{{0, 0, 0, 0}, 4000, 255, 1, 1, 20, 200, 1000, 1},
                                           {{1, 1, 3, 1}, 1000, 126, 2, 3, 100, 400, 1000, 2},
                                           {{2, 2, 4, 2}, 500, 64, 4, 5, 500, 1000, 2000, 4},
                                           {{0, 0, 4, 3}, 4000, 255, 4, 1, 40, 400, 2000, 1}}) {
        details.Set(row.steps, false);
        EXPECT_EQ(details.GetSettings(), row.steps);
        EXPECT_EQ(details.GetFrequencyResolution(), row.resolution);
        EXPECT_EQ(details.GetWaterfallColorResolutionSteps(), row.colors);
        EXPECT_EQ(details.GetWaterfallScansPerLine(), row.scansPerLine);
        EXPECT_EQ(details.GetDataResolution(), row.data);
        EXPECT_EQ(details.GetProcessSpeed(), row.process);
        EXPECT_EQ(details.GetT200Speed(), row.t200);
        EXPECT_EQ(details.GetT1000Speed(), row.t1000);
        EXPECT_EQ(details.GetSendAzimuthPackageEvery(), row.azimuth);
    }
}

TEST(CompressionDetails, BadStepsChangeNothing)
{
    CompressionDetails details;
    details.Set({1, 1, 3, 1}, true);
    for (const Steps &bad : {Steps{3, 0, 0, 0}, Steps{0, -1, 0, 0}, Steps{0, 0, 9, 0},
                             Steps{0, 0, 0, 4}, Steps{}, Steps{0, 0, 0}, Steps{0, 0, 0, 0, 0}}) {
        EXPECT_THROW(details.Set(bad, true), KRException);
        EXPECT_EQ(details.GetSettings(), (Steps{1, 1, 3, 1}));
    }
    details.reset();
    EXPECT_EQ(details.GetSettings(), (Steps{1, 1, 3, 1})) << "the defaults were kept too";
}

TEST(CompressionDetails, RisesUntilNothingIsLeftAndFallsBack)
{
    CompressionDetails details;
    const std::vector<Steps> rise{{0, 0, 0, 3}, {1, 1, 3, 1}, {2, 2, 4, 2}};
    for (std::size_t i = 1; i < rise.size(); ++i) {
        EXPECT_TRUE(details.increaseCompression());
        EXPECT_EQ(details.GetSettings(), rise[i]);
    }
    EXPECT_FALSE(details.increaseCompression());
    const CompressionDetails copy = details;
    for (std::size_t i = rise.size() - 1; i > 0; --i) {
        EXPECT_TRUE(details.decreaseCompression());
        EXPECT_EQ(details.GetSettings(), rise[i - 1]);
    }
    EXPECT_FALSE(details.decreaseCompression());
    CompressionDetails other;
    other = copy;
    EXPECT_EQ(other.GetSettings(), rise.back());
    EXPECT_TRUE(other.decreaseCompression()) << "a copy keeps the history";
    other.reset();
    EXPECT_FALSE(other.decreaseCompression()) << "and a reset forgets it";
}

TEST(CompressionDetails, RateAndTimeGiveTheScansOfARow)
{
    struct Row {
        int waterfall;
        double rate;
        short scansPerLine;
    };
    for (const Row &row : std::vector<Row>{{1, 1000, 100},
                                           {2, 1000, 50},
                                           {1, 3, 1},
                                           {2, 0, 1},
                                           {5, 10, 72},
                                           {6, 10, 432},
                                           {7, 10, 864},
                                           {8, 10, 1728},
                                           {8, 1e9, 32767},
                                           {8, std::numeric_limits<double>::quiet_NaN(), 1}}) {
        CompressionDetails details;
        details.Set({0, 0, row.waterfall, 0}, false);
        feedRate(details, row.rate);
        EXPECT_EQ(details.GetWaterfallScansPerLine(), row.scansPerLine)
            << row.waterfall << " at " << row.rate;
    }
    CompressionDetails details;
    details.Set({0, 0, 1, 0}, false);
    feedRate(details, 1000);
    feedRate(details, 1010);
    EXPECT_EQ(details.GetWaterfallScansPerLine(), 100) << "one more doesn't make it flicker";
    feedRate(details, 1020);
    EXPECT_EQ(details.GetWaterfallScansPerLine(), 102);
    details.Set({0, 0, 2, 0}, false);
    details.Set({0, 0, 1, 0}, false);
    feedRate(details, 15);
    ASSERT_EQ(details.GetWaterfallScansPerLine(), 2);
    EXPECT_TRUE(details.increaseCompression());
    EXPECT_EQ(details.GetSettings()[2], 4) << "below four scans a row";
}

TEST(CompressionDetails, AutomaticSpeedFollowsTheRate)
{
    CompressionDetails details;
    int changes = 0;
    QObject::connect(&details, &CompressionDetails::signalTimeSlotsChanged,
                     [&changes] { ++changes; });
    struct Row {
        double rate;
        short process, t200, t1000;
    };
    for (const Row &row : std::vector<Row>{{50, 20, 200, 1000},
                                           {2, 500, 5000, 25000},
                                           {1.99, 500, 1000, 2000},
                                           {1e6, 20, 200, 1000},
                                           {10, 100, 1000, 5000},
                                           {0, 500, 1000, 2000},
                                           {-1, 500, 1000, 2000}}) {
        feedRate(details, row.rate);
        EXPECT_EQ(details.GetProcessSpeed(), row.process) << row.rate;
        EXPECT_EQ(details.GetT200Speed(), row.t200) << row.rate;
        EXPECT_EQ(details.GetT1000Speed(), row.t1000) << row.rate;
    }
    EXPECT_EQ(changes, 4) << "only when the process speed changed";
    for (int sample = 0; sample < 100; ++sample)
        details.slotCurrentScanPerSecond(50);
    EXPECT_EQ(details.GetProcessSpeed(), 500) << "the 101st sample counts";
    details.slotCurrentScanPerSecond(50);
    EXPECT_EQ(details.GetProcessSpeed(), 20);
}

} // namespace
