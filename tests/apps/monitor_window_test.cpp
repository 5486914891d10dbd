#include "apps/monitor/displaywindow.h"
#include "platform/base/bytes.h"
#include "scanbuffer/messages/mdatawaterfall.h"

#include <gtest/gtest.h>

#include <cmath>
#include <string>

namespace {

using namespace monitor;

/// A window in a server's place: writes down what it is asked for.
struct Server final : WindowCommands {
    std::vector<AxisData> axes;
    std::vector<int> acknowledged;
    std::vector<LevelScale> levels;
    int stateRequests = 0;

    void askForAxis(const AxisData &axis) override { axes.push_back(axis); }
    void acknowledgeChannels(int id) override { acknowledged.push_back(id); }
    void askForLevels(const LevelScale &scale) override { levels.push_back(scale); }
    void requestWaterfallState() override { ++stateRequests; }
};

values::ChannelRangeDefinition grid(unsigned channels, double first, double step)
{
    values::ChannelRangeDefinition definition;
    definition.AddRangeDefinition(0u, channels, first, step, QStringLiteral("band"));
    return definition;
}

MDataWaterfall rows(const std::vector<std::string> &newestFirst,
                    const std::vector<KRTimeStamp> &times, bool useForCurve = true)
{
    MDataWaterfall::Head head;
    head.width = std::uint32_t(newestFirst.at(0).size());
    head.lineCnt = std::uint32_t(newestFirst.size());
    head.useForCurve = useForCurve;
    head.times = times;
    std::string bytes;
    for (const std::string &row : newestFirst)
        bytes += row;
    return {bytes.data(), bytes.size(), head};
}

class MonitorWindow : public ::testing::Test {
protected:
    /// Goes through the start of a run with four channels of 1 MHz around 88 .. 91 MHz.
    void open()
    {
        window.axisAdapterReady();
        window.channelsTold(grid(4, 88e6, 1e6), 7);
        window.axisTold(server.axes.back());
        window.waterfallAdapterReady();
        window.waterfallAxisTold(server.axes.back());
        window.waterfallLevelsTold({0.0, 102.0}, 0.0); // a step of 0.4 dB
    }

    Server server;
    DisplayWindow window{server, std::nullopt, std::nullopt};
};

TEST_F(MonitorWindow, AsksForAllChannelsFromEdgeToEdge)
{
    window.axisAdapterReady();
    window.channelsTold({}, 1);
    EXPECT_TRUE(server.axes.empty()) << "a server without a grid has nothing to show";
    window.channelsTold(grid(4, 88e6, 1e6), 2);
    EXPECT_EQ(server.acknowledged, (std::vector<int>{1, 2}));
    ASSERT_EQ(server.axes.size(), 1u);
    EXPECT_EQ(server.axes[0].min, 87.5e6);
    EXPECT_EQ(server.axes[0].max, 91.5e6);
    EXPECT_EQ(server.axes[0].pixelCount, 4);

    window.axisTold(AxisData{1e7, 1.1e7, 1000, 0, 0.0}); // what the window began with
    EXPECT_FALSE(window.hasAxis());
    window.channelsTold(grid(4, 88e6, 1e6), 3);
    EXPECT_EQ(server.axes.size(), 1u) << "asked for already";
    window.axisTold(server.axes[0]);
    EXPECT_TRUE(window.hasAxis());
}

struct AxisCase {
    const char *name;
    values::ChannelRangeDefinition channels;
    std::optional<double> from, to;
    double min, max;
    int pixels;
};

TEST(MonitorAxis, HasAPixelAChannelUpToTheFinestOfAServer)
{
    values::ChannelRangeDefinition two = grid(100, 88e6, 1e5);
    two.AddRangeDefinition(1000u, 50u, 400e6, 2e5, QStringLiteral("upper"));
    const AxisCase cases[] = {
        {"many channels", grid(10000, 88e6, 2e3), {}, {}, 87.999e6, 107.999e6, 4000},
        {"a part", grid(10000, 88e6, 2e3), 90e6, 91e6, 90e6, 91e6, 501},
        {"from a frequency on", grid(100, 88e6, 1e5), 90e6, {}, 90e6, 97.95e6, 80},
        {"two ranges", two, {}, {}, 87.95e6, 409.9e6, 150},
        {"falling frequencies", grid(11, 100e6, -1e6), {}, {}, 89.5e6, 100.5e6, 11},
        {"one frequency", grid(1, 100e6, 0.0), {}, {}, 100e6 - 500, 100e6 + 500, 1},
        {"beside all channels", grid(100, 88e6, 1e5), 200e6, 210e6, 200e6, 210e6, 1},
    };
    for (const AxisCase &c : cases) {
        SCOPED_TRACE(c.name);
        const auto axis = axisFor(c.channels, c.from, c.to);
        ASSERT_TRUE(axis);
        EXPECT_NEAR(axis->min, c.min, 1e-3);
        EXPECT_NEAR(axis->max, c.max, 1e-3);
        EXPECT_EQ(axis->pixelCount, c.pixels);
    }
    EXPECT_FALSE(axisFor({}, 1e6, 2e6));
}

TEST_F(MonitorWindow, RowsBecomeLevelsOldestFirst)
{
    open();
    window.rowsArrived(rows({{'\x64', '\x65', '\x66', '\0'}, {'\x32', '\x32', '\x32', '\x32'}},
                            {2'000'000, 1'000'000}));
    window.finish();
    const SpectrumDisplay &display = window.display();
    ASSERT_EQ(display.rowCount(), 2u);
    EXPECT_EQ(display.history().rows().front().first, 1'000'000u);
    EXPECT_NEAR(display.history().rows().front().levels[0], 0.4 * 50.5, 1e-4);
    EXPECT_NEAR(display.latest()[0], 0.4 * 100.5, 1e-4) << "the curve is drawn from the waterfall";
    EXPECT_TRUE(std::isnan(display.latest()[3]));
    EXPECT_NEAR(window.scansPerSecond(), 1.0, 1e-9) << "measured, since nobody told it";
    window.scansPerSecondTold(25.0);
    EXPECT_EQ(window.scansPerSecond(), 25.0);
}

TEST_F(MonitorWindow, TheCurveComesOnItsOwnWhereTheWindowDrawsIt)
{
    open();
    window.rowsArrived(rows({"aaaa"}, {5}, false));
    EXPECT_TRUE(std::isnan(window.display().latest()[0]));
    std::string curve;
    for (const double level : {11.5, 12.5, std::nan(""), 14.5})
        Kelm::appendLittleEndian(curve, level);
    window.curveArrived(QByteArray(curve.data(), int(curve.size())));
    EXPECT_FLOAT_EQ(window.display().latest()[1], 12.5F);
    EXPECT_TRUE(std::isnan(window.display().latest()[2]));
    window.curveArrived(QByteArray(curve.data(), 12)); // cut short
    EXPECT_FLOAT_EQ(window.display().latest()[3], 14.5F);
}

TEST_F(MonitorWindow, OnlyRowsOfTheWishedAxisCount)
{
    open();
    window.rowsArrived(rows({"abc"}, {1}));
    EXPECT_EQ(window.droppedRows(), 1u) << "the wrong width";
    window.rowsArrived(rows({"aaaa"}, {2}));
    window.waterfallAxisTold(AxisData{1e7, 1.1e7, 4, 0, 0.0}); // a server that was started anew
    window.rowsArrived(rows({"zzzz"}, {3}));
    EXPECT_EQ(window.display().rowCount(), 1u);
    window.waterfallAxisTold(server.axes.back());
    window.rowsArrived(rows({"aaaa"}, {4}));
    window.finish();
    EXPECT_EQ(window.display().history().rows().size(), 2u) << "what was seen is kept";
    AxisData coarse = server.axes.back();
    coarse.pixelCount = 2; // a server that compresses
    window.waterfallAxisTold(coarse);
    window.rowsArrived(rows({"aa"}, {5}));
    EXPECT_EQ(window.display().pixels(), 2u);
    EXPECT_EQ(window.display().rowCount(), 3u);
}

TEST_F(MonitorWindow, AsksForItsAxisAgainAfterTheLinkCameBack)
{
    open();
    window.axisAdapterReady();
    EXPECT_FALSE(window.hasAxis());
    window.channelsTold(grid(4, 88e6, 1e6), 1);
    ASSERT_EQ(server.axes.size(), 2u);
    EXPECT_EQ(server.axes[0], server.axes[1]);
}

TEST_F(MonitorWindow, DropsRowsUntilNewLevelsAreConfirmed)
{
    open();
    window.rowsArrived(rows({"aacc"}, {1})); // 97 and 99: about 39 dBuV
    window.tick(0.1);
    EXPECT_TRUE(server.levels.empty());
    window.tick(0.5);
    ASSERT_EQ(server.levels.size(), 1u);
    EXPECT_EQ(server.stateRequests, 1);
    EXPECT_LT(server.levels[0].low, 39.0);
    EXPECT_GT(server.levels[0].high, 39.0);

    window.rowsArrived(rows({"aacc"}, {2}));
    EXPECT_EQ(window.droppedRows(), 1u) << "of the old levels, or of the new ones?";
    window.waterfallLevelsTold({0.0, 102.0}, 0.6); // the request overtook the levels
    window.rowsArrived(rows({"aacc"}, {3}));
    EXPECT_EQ(window.droppedRows(), 2u);
    window.tick(0.7);
    EXPECT_EQ(server.stateRequests, 2);
    EXPECT_EQ(server.levels.size(), 1u);
    window.tick(5.0);
    EXPECT_EQ(server.levels.size(), 2u) << "lost on the way";
    window.waterfallLevelsTold(server.levels[0], 5.1);
    window.rowsArrived(rows({"aacc"}, {4}));
    EXPECT_EQ(window.droppedRows(), 2u);
    EXPECT_EQ(window.display().rowCount(), 2u);
}

} // namespace
