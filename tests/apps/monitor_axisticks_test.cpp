#include "apps/monitor/axisticks.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>

namespace {

using namespace monitor;

constexpr double kInfinity = std::numeric_limits<double>::infinity();

struct TickCase {
    const char *name;
    double low, high;
    int most;
    double step, first, last;
    std::size_t count;
};
constexpr TickCase kTickCases[] = {
    {"an FM band", 88e6, 108e6, 12, 2e6, 88e6, 108e6, 11},
    {"ends between ticks", 88.3e6, 107.9e6, 12, 2e6, 90e6, 106e6, 9},
    {"a step of 5", 0.0, 40.0, 8, 5.0, 0.0, 40.0, 9},
    {"across zero", -13.0, 12.0, 6, 5.0, -10.0, 10.0, 5},
    {"less than one", 0.0, 0.03, 4, 0.01, 0.0, 0.03, 4},
    {"a narrow audio span far from zero", 14.074e6, 14.080e6, 7, 1e3, 14.074e6, 14.080e6, 7},
    {"one tick at most", 0.0, 10.0, 1, 10.0, 0.0, 10.0, 2},
};

TEST(Ticks, StandAtMultiplesOfOneTwoOrFive)
{
    for (const TickCase &c : kTickCases) {
        SCOPED_TRACE(c.name);
        const Ticks ticks = ticksFor(c.low, c.high, c.most);
        EXPECT_DOUBLE_EQ(ticks.step, c.step);
        ASSERT_EQ(ticks.values.size(), c.count);
        EXPECT_NEAR(ticks.values.front(), c.first, 1e-9 * c.step);
        EXPECT_NEAR(ticks.values.back(), c.last, 1e-9 * c.step);
    }
}

TEST(Ticks, AreNoneOnAnAxisWithoutExtent)
{
    const double nan = std::nan("");
    const std::pair<double, double> axes[] = {
        {5.0, 5.0}, {6.0, 5.0}, {nan, 5.0}, {0.0, kInfinity}, {1e9, 1e9 + 1e-7}};
    for (const auto &[low, high] : axes)
        EXPECT_TRUE(ticksFor(low, high, 8).values.empty()) << low << " .. " << high;
    EXPECT_TRUE(ticksFor(0.0, 1.0, 0).values.empty());
    EXPECT_LE(ticksFor(0.0, 1.0, 2'000'000'000).values.size(), 2001u);
}

TEST(Ticks, LabelsTellNeighboursApart)
{
    struct {
        double value, step;
        EngineeringUnit unit;
        const char *label;
    } const cases[] = {
        {98e6, 2e6, frequencyUnit(88e6, 108e6), "98"},
        {98.1e6, 100e3, frequencyUnit(98e6, 98.5e6), "98.1"},
        {14.0745e6, 500.0, frequencyUnit(14.074e6, 14.08e6), "14.0745"},
        {1090e6, 500e3, frequencyUnit(1089e6, 1091e6), "1090.0"},
        {500e6, 500e6, frequencyUnit(0.0, 3e9), "0.5"},
        {-30.0, 10.0, {}, "\u221230"},
        {-1e-12, 0.5, {}, "0.0"},
        {457.0, 1.0, frequencyUnit(0.0, 900.0), "457"},
    };
    for (const auto &c : cases)
        EXPECT_EQ(tickLabel(c.value, c.step, c.unit).toStdString(), c.label);
}

TEST(Ticks, UnitsFollowTheSize)
{
    EXPECT_EQ(frequencyUnit(2.4e9, 2.48e9).name, QStringLiteral("MHz"));
    EXPECT_EQ(frequencyUnit(24.0e9, 24.2e9).name, QStringLiteral("GHz"));
    EXPECT_EQ(frequencyUnit(-3e3, 3e3).name, QStringLiteral("kHz"));
    EXPECT_EQ(durationUnit(90.0).name, QStringLiteral("s"));
    EXPECT_EQ(durationUnit(0.02).name, QStringLiteral("ms"));
    EXPECT_EQ(durationUnit(7200.0).name, QStringLiteral("min"));
    EXPECT_EQ(frequencyText(98.1e6, 1e3), QStringLiteral("98.100 MHz"));
    EXPECT_EQ(groupedNumber(1234567), QStringLiteral("1\u202F234\u202F567"));
    EXPECT_EQ(groupedNumber(100), QStringLiteral("100"));
}

} // namespace
