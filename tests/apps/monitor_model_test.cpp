#include "apps/monitor/levelscale.h"
#include "apps/monitor/rowhistory.h"
#include "apps/monitor/spectrumdisplay.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <string>

namespace {

using namespace monitor;

constexpr float kHole = std::numeric_limits<float>::quiet_NaN();

SpectrumDisplay displayOf(std::size_t pixels)
{
    SpectrumDisplay display;
    display.setAxis(88e6, 108e6, pixels);
    return display;
}

TEST(SpectrumDisplay, AveragesPowersAndKeepsTheHighest)
{
    SpectrumDisplay display = displayOf(2);
    EXPECT_TRUE(display.addRow(10, std::vector<float>{20, kHole}));
    EXPECT_TRUE(display.addRow(20, std::vector<float>{40, 30}));
    EXPECT_TRUE(display.setLatest(std::vector<float>{41, 31}));
    EXPECT_FLOAT_EQ(display.latest()[0], 41);
    display.finishRow();
    // (10^2 + 10^4) / 2 is 37.03 dB, where the mean of the dB would be 30.
    EXPECT_NEAR(display.mean()[0], 10.0 * std::log10(5050.0), 1e-4);
    EXPECT_NEAR(display.mean()[1], 30.0, 1e-4) << "a hole is no level of 0";
    EXPECT_FLOAT_EQ(display.highest()[0], 40);
    EXPECT_EQ(display.rowCount(), 2u);
}

TEST(SpectrumDisplay, ARowWithTheSameTimeIsThatScanFurtherAlong)
{
    SpectrumDisplay display = displayOf(1);
    display.addRow(10, std::vector<float>{90});
    display.addRow(10, std::vector<float>{20});
    display.addRow(20, std::vector<float>{20});
    display.finishRow();
    EXPECT_EQ(display.rowCount(), 2u);
    EXPECT_NEAR(display.mean()[0], 20.0, 1e-4);
    EXPECT_FLOAT_EQ(display.highest()[0], 20);
    EXPECT_EQ(display.history().rows().size(), 2u);
}

TEST(SpectrumDisplay, OnlyADifferentAxisDropsTheLevels)
{
    SpectrumDisplay display = displayOf(2);
    display.addRow(10, std::vector<float>{20, 30});
    display.setAxis(88e6, 108e6, 2); // a link that came back tells the axis again
    display.finishRow();
    EXPECT_NEAR(display.mean()[1], 30.0, 1e-4);
    display.setAxis(88e6, 98e6, 2);
    EXPECT_TRUE(std::isnan(display.mean()[1]));
    EXPECT_TRUE(display.history().rows().empty());
    EXPECT_EQ(display.rowCount(), 1u) << "counts over all axes";
}

TEST(SpectrumDisplay, RefusesRowsOfAnotherWidth)
{
    SpectrumDisplay display = displayOf(2);
    EXPECT_FALSE(display.addRow(10, std::vector<float>{20}));
    EXPECT_FALSE(display.setLatest(std::vector<float>{1, 2, 3}));
    EXPECT_FALSE(SpectrumDisplay().addRow(10, std::vector<float>{}));
    display.finishRow();
    EXPECT_EQ(display.rowCount(), 0u);
}

TEST(SpectrumDisplay, SurvivesSamplesThatAreNoLevels)
{
    SpectrumDisplay display = displayOf(1);
    display.addRow(10, std::vector<float>{1e30F});
    display.addRow(20, std::vector<float>{-1e30F});
    display.finishRow();
    EXPECT_TRUE(std::isfinite(display.mean()[0]));
}

TEST(RowHistory, GetsCoarserInsteadOfForgetting)
{
    RowHistory history(4);
    for (KRTimeStamp time = 1; time <= 9; ++time)
        history.add(time * 100, std::vector<float>{time == 2 ? 70.0F : 10.0F, kHole});
    ASSERT_EQ(history.scansPerRow(), 4u);
    ASSERT_EQ(history.rows().size(), 3u);
    EXPECT_EQ(history.rows().front().first, 100u);
    EXPECT_EQ(history.rows().front().last, 400u);
    EXPECT_EQ(history.rows().back().last, 900u);
    EXPECT_FLOAT_EQ(history.rows().front().levels[0], 70) << "a burst is never lost";
    EXPECT_TRUE(std::isnan(history.rows().front().levels[1]));
}

TEST(RowHistory, BeginsAnewWhenTimeRunsBackOrTheWidthChanges)
{
    RowHistory history(8);
    history.add(500, std::vector<float>{1});
    history.add(400, std::vector<float>{2});
    ASSERT_EQ(history.rows().size(), 1u);
    EXPECT_EQ(history.rows().front().first, 400u);
    history.add(600, std::vector<float>{1, 2});
    EXPECT_EQ(history.rows().size(), 1u);
}

TEST(LevelScale, BytesGiveBackTheLevelTheyWereMadeFrom)
{
    const LevelScale scale{10.0, 60.0};
    const double step = 50.0 / 255.0;
    for (const double level : {10.3, 22.22, 35.0, 59.7}) {
        const int byte = int((level - scale.low) / 50.0 * 255.0);
        EXPECT_NEAR(scale.levelOf(static_cast<unsigned char>(byte)), level, 0.5 * step + 1e-9);
    }
    EXPECT_TRUE(std::isnan(scale.table()[0]));
    EXPECT_NEAR(scale.table()[255], 60.0, step);
}

/// A row of levels as a window colours it.
std::string coloured(const LevelScale &scale, const std::vector<double> &levels)
{
    std::string row;
    for (const double level : levels) {
        const double share = (level - scale.low) / (scale.high - scale.low);
        row.push_back(char(int(std::fmin(std::fmax(share * 255.0, 0.0), 255.0))));
    }
    return row;
}

/// Runs the control against a window that does what it is asked for, until it asks no more.
LevelScale settled(const std::vector<double> &levels, LevelScaleControl &control)
{
    for (int round = 0; round < 20; ++round) {
        for (int row = 0; row < 5; ++row)
            control.addRow(coloured(control.scale(), levels));
        const auto next = control.proposal(10.0);
        if (!next)
            return control.scale();
        control.setScale(*next);
    }
    ADD_FAILURE() << "the range never settles";
    return control.scale();
}

struct ScaleCase {
    const char *name;
    std::vector<double> levels;
    double low, high; ///< levels that the settled range must hold
    double largestSpan;
};
const ScaleCase kScaleCases[] = {
    {"noise and a carrier", {20, 22, 18, 19, 61, 21}, 18, 61, 70},
    {"far above the first range", {150, 152, 260, 151}, 150, 260, 330},
    {"below the first range", {-80, -85, -60, -82}, -85, -60, 60},
    {"one level", {40, 40, 40}, 40, 40, 25},
    {"with channels that were never measured", {-3000, -3000, 30, 33, 55}, 30, 55, 60},
};

TEST(LevelScale, ClosesAroundTheLevelsWithoutClippingThem)
{
    for (const ScaleCase &c : kScaleCases) {
        SCOPED_TRACE(c.name);
        LevelScaleControl control;
        const LevelScale scale = settled(c.levels, control);
        EXPECT_LT(scale.low, c.low);
        EXPECT_GT(scale.high, c.high);
        EXPECT_LE(scale.high - scale.low, c.largestSpan);
    }
}

TEST(LevelScale, WaitsBeforeItComesCloserButNotWhenPeaksClip)
{
    LevelScaleControl control;
    control.addRow(coloured(control.scale(), {20, 21, 22}));
    EXPECT_FALSE(control.proposal(0.05));
    EXPECT_TRUE(control.proposal(0.5));
    control.addRow(coloured(control.scale(), {20, 500, 22}));
    ASSERT_TRUE(control.proposal(0.0));
    EXPECT_GT(control.proposal(0.0)->high, 130.0);
    EXPECT_FALSE(LevelScaleControl().proposal(100.0)) << "nothing seen, nothing to say";
}

} // namespace
