#include "apps/monitor/peaks.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cmath>
#include <limits>

namespace {

using namespace monitor;
using ::testing::ElementsAreArray;

constexpr float kHole = std::numeric_limits<float>::quiet_NaN();

struct PeakCase {
    const char *name;
    std::vector<float> levels;
    std::size_t count;
    std::vector<std::size_t> pixels; ///< strongest first
};
const PeakCase kPeakCases[] = {
    {"strongest first", {0, 5, 1, 9, 2, 7, 0}, 10, {3, 5, 1}},
    {"only as many as asked for", {0, 5, 1, 9, 2, 7, 0}, 2, {3, 5}},
    {"at both edges", {4, 1, 0, 3}, 10, {0, 3}},
    {"a flat top counts once, in its middle", {0, 6, 6, 6, 6, 0}, 10, {2}},
    {"a step in a slope is no maximum", {0, 3, 3, 6, 0}, 10, {3}},
    {"equal ones by frequency", {0, 4, 0, 4, 0}, 10, {1, 3}},
    {"a rising line has its end", {1, 2, 3}, 10, {2}},
    {"a flat spectrum has none", {2, 2, 2, 2}, 10, {}},
    {"holes stand for nothing", {3, 1, kHole, 5, 4, kHole, kHole, 2}, 10, {3, 0, 7}},
    {"a hole first and last", {kHole, 1, 2, 1, kHole}, 10, {2}},
    {"only holes", {kHole, kHole}, 10, {}},
    {"one pixel", {7}, 10, {0}},
    {"nothing", {}, 10, {}},
    {"none wanted", {0, 5, 0}, 0, {}},
};

TEST(Peaks, AreLocalMaxima)
{
    for (const PeakCase &c : kPeakCases) {
        SCOPED_TRACE(c.name);
        std::vector<std::size_t> pixels;
        for (const Peak &peak : strongestPeaks(c.levels, 0.0, 100.0, c.count)) {
            EXPECT_EQ(peak.levelDbuv, c.levels[peak.pixel]);
            pixels.push_back(peak.pixel);
        }
        EXPECT_THAT(pixels, ElementsAreArray(c.pixels));
    }
}

TEST(Peaks, StandInTheMiddleOfTheirPixel)
{
    const std::vector<float> levels{0, 5, 0, 0};
    const auto peaks = strongestPeaks(levels, 88e6, 88.4e6, 1);
    ASSERT_EQ(peaks.size(), 1u);
    EXPECT_NEAR(peaks[0].frequencyHz, 88.15e6, 1e-3);
}

TEST(Peaks, LabelsKeepTheirDistanceFromStrongerOnes)
{
    const std::vector<Peak> peaks{{50, 0, 60}, {53, 0, 58}, {20, 0, 40}, {90, 0, 31}, {70, 0, 22}};
    std::vector<std::size_t> labelled;
    for (const Peak &peak : labelledPeaks(peaks, 20.0, 6.0, 10, 8))
        labelled.push_back(peak.pixel);
    EXPECT_THAT(labelled, ElementsAreArray({50, 20, 90}));
    EXPECT_EQ(labelledPeaks(peaks, 20.0, 6.0, 10, 2).size(), 2u);
    EXPECT_TRUE(labelledPeaks(peaks, std::nan(""), 6.0, 10, 8).empty());
}

TEST(Peaks, QuantileLeavesHolesOut)
{
    const std::vector<float> levels{5, kHole, 1, 4, 2, 3};
    EXPECT_EQ(levelQuantile(levels, 0.0), 1.0);
    EXPECT_EQ(levelQuantile(levels, 0.5), 3.0);
    EXPECT_EQ(levelQuantile(levels, 1.0), 5.0);
    EXPECT_TRUE(std::isnan(levelQuantile(std::vector<float>{kHole}, 0.5)));
}

} // namespace
