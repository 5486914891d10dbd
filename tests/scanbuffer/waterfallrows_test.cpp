#include "fakewindow.h"
#include "scanbuffer/waterfall/waterfallrows_impl.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <optional>
#include <random>

namespace {

using values::Bearing;
using values::BearingHandler;
using values::levelHandler;

/// The rows of a made window, pass by pass, with what went out.
template <typename Y, typename YHandler>
struct Rig {
    FakeWindow<Y> window;
    sbs::WaterfallRows<Y, YHandler> rows;
    bool relative = false;

    int addLine(std::vector<Y> samples, std::uint64_t id = 1)
    {
        window.lines.push_back(std::move(samples));
        window.ids.push_back(id);
        return int(window.lines.size()) - 1;
    }
    /// One pass over lines that were added, newest first; nothing when time has run back.
    std::optional<MDataWaterfall> pass(const std::vector<int> &lines,
                                       const std::vector<KRTimeStamp> &times)
    {
        const int pixels = int(window.lines[std::size_t(lines.front())].size());
        const typename sbs::WaterfallRows<Y, YHandler>::Pass pass{
            lines, times, pixels, int(lines.size()), relative, true, 7};
        if (rows.hasRunBack(pass))
            return {};
        rows.compose(window, pass);
        return rows.message();
    }
    /// The colours of one line in a single pass.
    std::string colors(std::vector<Y> samples)
    {
        const int line = addLine(std::move(samples));
        return pass({line}, {++m_time})->GetString();
    }

private:
    KRTimeStamp m_time = 0;
};

using LevelRig = Rig<short, levelHandler>;
using Times = std::vector<KRTimeStamp>;

std::string bytes(std::initializer_list<int> colors)
{
    return std::string(colors.begin(), colors.end());
}

TEST(WaterfallColors, TheRule)
{
    struct Row {
        double value, start, stop;
        int steps;
        short dimension;
        int color;
    };
    const double nan = std::nan(""), inf = std::numeric_limits<double>::infinity();
    for (const Row &row : std::vector<Row>{
             {0, 0, 100, 0, 0, 0},
             {50, 0, 100, 0, 0, 128},
             {99.4, 0, 100, 0, 0, 253},
             {99.5, 0, 100, 0, 0, 255}, // 254.2 is above 254 already
             {100, 0, 100, 0, 0, 255},
             {-1, 0, 100, 0, 0, 0},
             {1e300, 0, 100, 255, 0, 255},
             {10, 100, 0, 0, 0, 230},   // a range that is turned
             {10, 20, 20, 64, 0, 0},    // no range at all
             {50, 0, 100, 3, 0, 85},    // one of three steps
             {50, 0, 100, 256, 0, 128}, // counted modulo 256: no steps
             {360, 20, 20, 0, 3, 0},    // azimuths have a range of their own
             {-90, 0, 1, 0, 3, 191},
             {nan, 0, 100, 64, 0, 0},
             {inf, 0, 100, 0, 0, 255},
             {-inf, 0, 100, 64, 0, 0},
         }) {
        const sbs::WaterfallColors colors(row.start, row.stop, row.steps, row.dimension);
        EXPECT_EQ(colors.ValueToChar(row.value), row.color)
            << row.value << " of " << row.start << " to " << row.stop << ", " << row.steps;
    }
}

/// The table of 16-bit levels gives what the plain rule gives, for all of them.
TEST(WaterfallRows, TheTableIsTheRule)
{
    std::vector<short> all;
    for (int value = -32768; value <= 32767; ++value)
        all.push_back(short(value));
    for (const auto &range : {std::pair{-30.0, 130.0}, {130.0, -30.0}, {-3276.8, 3276.7}, {5, 5}})
        for (int steps = 0; steps <= 256; ++steps) {
            if (steps > 4 && steps % 9 != 0 && steps != 64 && steps != 126 && steps < 254)
                continue;
            LevelRig rig;
            rig.window.yRanges[0] = range;
            rig.window.colorSteps = steps;
            const sbs::WaterfallColors rule(range.first, range.second, steps, 0);
            std::string expected;
            for (const short level : all)
                expected.push_back(char(rule.ValueToChar(level / 10.0)));
            ASSERT_EQ(rig.colors(all), expected) << range.first << ", " << steps;
        }
}

TEST(WaterfallRows, TheTableKeepsTheThresholdExact)
{
    std::mt19937 random(3);
    LevelRig rig;
    rig.window.thresholdActive = true;
    std::vector<short> line;
    for (int pixel = 0; pixel < 5000; ++pixel) {
        const int level = int(random() % 2000) - 500;
        line.push_back(short(level));
        // On the level, one rounding beside it, or anywhere.
        const double at = level / 10.0;
        const double choice[] = {at,
                                 std::nextafter(at, 1e9),
                                 std::nextafter(at, -1e9),
                                 double(random() % 100),
                                 std::nan(""),
                                 -1e300,
                                 1e300};
        rig.window.thresholdLine.push_back(choice[random() % 7]);
    }
    rig.window.yRanges[0] = {-51.0, 150.0};
    const sbs::WaterfallColors rule(-51.0, 150.0, 255, 0);
    std::string expected;
    for (std::size_t pixel = 0; pixel < line.size(); ++pixel) {
        const double level = line[pixel] / 10.0;
        const bool hidden = !(rig.window.thresholdLine[pixel] < level);
        expected.push_back(hidden ? char(0) : char(rule.ValueToChar(level)));
    }
    EXPECT_EQ(rig.colors(line), expected);
    // The line of thresholds changes, or ends early: what was worked out before is not kept.
    rig.window.thresholdLine.assign(10, 1e300);
    rig.window.threshold = -1e300;
    const std::string colors = rig.colors(line);
    EXPECT_EQ(colors.substr(0, 10), std::string(10, '\0'));
    EXPECT_EQ(colors[11], char(rule.ValueToChar(line[11] / 10.0)));
}

TEST(WaterfallRows, RelativeToTheReferenceLine)
{
    LevelRig rig;
    rig.relative = true;
    rig.window.colorSteps = 0;
    rig.window.yRanges[0] = {-50.0, 50.0};
    rig.window.refLine = {20.0, 20.0, 20.0, 20.0};
    rig.window.thresholdLine.assign(4, 10.0);
    EXPECT_EQ(rig.colors({200, 0, 300, 700}), bytes({128, 77, 153, 255}));
    rig.window.thresholdActive = true; // of the distance from the line, strictly
    EXPECT_EQ(rig.colors({200, 0, 300, 700}), bytes({128, 77, 128, 255}));
}

Bearing bearing(int level, int azimuth, int elevation, int quality)
{
    Bearing sample;
    sample.level = std::int16_t(level * 100);
    sample.azimuth = std::uint16_t(azimuth * 100);
    sample.elevation = std::int16_t(elevation * 100);
    sample.quality = std::int16_t(quality);
    return sample;
}

TEST(WaterfallRows, BearingsLeaveAByteWhereThereIsNone)
{
    Rig<Bearing, BearingHandler> rig;
    rig.window.scansPerLine = 9;
    rig.window.colorSteps = 0;
    rig.window.yRanges[4] = {0.0, 90.0};
    rig.window.yRanges[3] = {0.0, 1.0};
    rig.window.thresholdLine.assign(4, 10.0);
    rig.window.thresholdActive = true;
    rig.rows.SetDimension(4);
    // A bearing, a weak one, none, a negative elevation; then none anywhere.
    EXPECT_EQ(rig.colors({bearing(20, 0, 45, 1), bearing(10, 0, 45, 1), bearing(20, 0, 45, 0),
                          bearing(20, 0, -10, 1)}),
              bytes({128, 0, 0, 0}));
    EXPECT_EQ(rig.colors(std::vector<Bearing>(4, bearing(20, 0, 45, 0))), bytes({128, 0, 0, 0}))
        << "the row goes on";
    rig.rows.SetDimension(3);
    EXPECT_EQ(rig.colors({bearing(20, 360, 0, 1), bearing(20, 180, 0, 1), bearing(20, 90, 0, 1),
                          bearing(20, 90, 0, 0)}),
              bytes({0, 128, 64, 0}));
    // Relative: only the level counts from the line, and a hidden pixel of a bearing stays.
    rig.relative = true;
    rig.window.refLine.assign(4, 15.0);
    EXPECT_EQ(rig.colors({bearing(20, 90, 0, 1), bearing(40, 90, 0, 1), bearing(20, 0, 0, 1),
                          bearing(20, 0, 0, 0)}),
              bytes({0, 64, 64, 0}));
}

/// Passes over some of the lines 1 to 4, newest first. Line k was taken at k and has the level and
/// the id k. For each pass: the colours of the rows, their times, the youngest id; "-" for nothing.
std::string gathered(int scansPerLine, const std::vector<std::vector<int>> &passes)
{
    LevelRig rig;
    rig.window.scansPerLine = scansPerLine;
    rig.window.yRanges[0] = {0.0, 25.5};
    rig.window.colorSteps = 0;
    for (int line = 0; line <= 4; ++line)
        rig.addLine({short(line)}, std::uint64_t(line));
    std::string text;
    for (const std::vector<int> &lines : passes) {
        const auto sent = rig.pass(lines, Times(lines.begin(), lines.end()));
        text += text.empty() ? "" : " ";
        if (!sent) {
            text += "-";
            continue;
        }
        for (const char color : sent->GetString())
            text += char('0' + color);
        text += "@";
        for (const KRTimeStamp time : sent->GetTime())
            text += std::to_string(time);
        text += "#" + std::to_string(sent->GetYoungestID());
        EXPECT_TRUE(sent->UseForCurve());
        EXPECT_EQ(sent->PacketId(), 7);
    }
    return text;
}

TEST(WaterfallRows, GatherScansPassByPass)
{
    EXPECT_EQ(gathered(3, {{1}, {2}, {3}, {4}}), "1@1#1 2@1#2 3@1#3 4@4#4") << "a row grows";
    EXPECT_EQ(gathered(2, {{1}, {1}, {2, 1}, {2}, {3}}), "1@1#1 1@1#1 2@1#2 2@1#2 3@3#3")
        << "a scan that is read in parts counts once, of a finished row too";
    EXPECT_EQ(gathered(1, {{3, 2, 1}}), "321@321#3") << "rows stand newest first";
    EXPECT_EQ(gathered(2, {{3, 2, 1}, {4}}), "2@1#2 4@3#4") << "what is left over waits unseen";
    EXPECT_EQ(gathered(2, {{4}, {2}, {2}, {3, 1}}), "4@4#4 - 2@2#2 3@2#3")
        << "time that runs back begins anew, and an older line is out";
    LevelRig rig;
    rig.addLine({0}, 1000001);
    EXPECT_EQ(rig.pass({0}, {1})->GetYoungestID(), 1000002u) << "above a million one is added";
    EXPECT_THROW(rig.pass({0, 0}, {2}), std::out_of_range) << "a list that is too short";
}

TEST(WaterfallRows, AnotherWidthDropsTheRow)
{
    LevelRig rig;
    rig.window.scansPerLine = 2;
    rig.window.colorSteps = 0;
    const int narrow = rig.addLine({500}), wide = rig.addLine({500, 500, 500});
    rig.pass({narrow}, {10});
    EXPECT_EQ(rig.pass({wide}, {20})->GetTime(), Times{20});
    EXPECT_EQ(rig.pass({wide}, {30})->GetString(), bytes({128, 128, 128}));
}

} // namespace
