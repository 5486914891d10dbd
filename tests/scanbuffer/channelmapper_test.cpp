#include "scanbuffer/fold/channelindextopixel.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <random>

using channelToPixel::ChannelIndexToPixelRangeMapper;
using channelToPixel::PixelRange;
using values::ChannelRangeDefinition;

namespace {

struct Range {
    unsigned int firstId, count;
    double first, step;
};

ChannelRangeDefinition definitionOf(const std::vector<Range> &ranges)
{
    ChannelRangeDefinition definition;
    for (const Range &range : ranges)
        definition.AddRangeDefinition(range.firstId, range.count, range.first, range.step, {});
    return definition;
}

axisDefinition axisOf(double min, double max, short pixels)
{
    axisDefinition axis;
    EXPECT_EQ(axis.init(min, max, pixels), 0);
    return axis;
}

/// "-" for a channel without pixels, "3" for one pixel, "3-5" for several.
std::string textOf(const ChannelRangeDefinition &definition, const axisDefinition &axis)
{
    const ChannelIndexToPixelRangeMapper mapper(definition, axis);
    std::string text;
    for (unsigned int channel = 0; channel < definition.GetChannelCount(); ++channel) {
        text += channel == 0 ? "" : " ";
        const auto pixels = mapper.pixels(channel);
        text += !pixels ? "-" : std::to_string(pixels->first);
        if (pixels && pixels->last != pixels->first)
            text += "-" + std::to_string(pixels->last);
    }
    return text;
}

TEST(ChannelMapper, GivesEachChannelThePixelsOfItsBand)
{
    struct Case {
        const char *name;
        std::vector<Range> ranges;
        double min, max;
        short pixels;
        const char *expected;
    };
    const Case cases[] = {
        {"a pixel a channel", {{1, 4, 0.5, 1}}, 0, 4, 4, "0 1 2 3"},
        {"a centre on the lower edge belongs, on the upper not", {{1, 3, 1, 1}}, 0, 4, 4, "0 1 2"},
        {"several pixels a channel", {{1, 2, 2, 4}}, 0, 8, 8, "0-3 4-7"},
        {"several channels a pixel", {{1, 8, 0.5, 1}}, 0, 8, 2, "0 0 0 0 1 1 1 1"},
        {"neither band nor frequency on the axis", {{1, 5, -2, 2}}, 1, 3, 2, "- - 0-1 - -"},
        {"axis zoomed into one channel", {{1, 3, 10, 10}}, 18, 22, 4, "- 0-3 -"},
        {"a band that only reaches in", {{1, 2, 0, 4}}, 1, 9, 8, "0 1-4"},
        {"axis maximum belongs to the last pixel", {{1, 2, 4, 0}}, 0, 4, 4, "3 3"},
        {"just above the axis", {{1, 1, 4.5, 0.5}}, 0, 4, 4, "-"},
        {"a gap between ranges stays free", {{1, 2, 0.5, 1}, {9, 2, 6.5, 1}}, 0, 8, 8, "0 1 6 7"},
        {"keys, not frequencies, order the index",
         {{1, 2, 6.5, 1}, {9, 2, 0.5, 1}},
         0,
         8,
         8,
         "6 7 0 1"},
        {"overlapping ranges share pixels", {{1, 2, 0.5, 1}, {9, 1, 1, 2}}, 0, 2, 2, "0 1 0-1"},
        {"range without channels", {{1, 0, 0.5, 1}, {9, 1, 0.5, 1}}, 0, 2, 2, "0"},
        {"no step: the pixel of the frequency", {{1, 3, 2.5, 0}}, 0, 4, 4, "2 2 2"},
        {"falling frequencies", {{1, 4, 3.5, -1}}, 0, 4, 4, "3 2 1 0"},
        {"frequency is no number", {{1, 2, std::nan(""), 1}}, 0, 4, 4, "- -"},
        {"nothing on the axis", {{1, 2, 1e300, 1e300}}, 0, 4, 4, "- -"},
    };
    for (const Case &c : cases) {
        SCOPED_TRACE(c.name);
        EXPECT_EQ(textOf(definitionOf(c.ranges), axisOf(c.min, c.max, c.pixels)), c.expected);
    }
}

TEST(ChannelMapper, MapsNothingWithoutAnAxis)
{
    const ChannelIndexToPixelRangeMapper mapper(definitionOf({{1, 4, 0.5, 1}}), axisDefinition());
    EXPECT_EQ(mapper.pixels(0), std::nullopt);
    EXPECT_TRUE(mapper.runs().empty());
    EXPECT_EQ(mapper.pixelCount(), 0U);
}

TEST(ChannelMapper, AnswersNothingPastTheLastChannel)
{
    const ChannelIndexToPixelRangeMapper mapper(definitionOf({{1, 4, 0.5, 1}}), axisOf(0, 4, 4));
    EXPECT_EQ(mapper.firstPixel(3), 3);
    EXPECT_EQ(mapper.lastPixel(3), 3);
    EXPECT_EQ(mapper.firstPixel(4), std::nullopt);
    EXPECT_EQ(mapper.lastPixel(std::numeric_limits<std::uint32_t>::max()), std::nullopt);
}

/// The rule, read word by word: every pixel is tried for every channel.
std::optional<PixelRange> byTheRule(double frequency, double step, const axisDefinition &axis)
{
    const double low = axis.GetPosition(frequency - step / 2);
    const double high = axis.GetPosition(frequency + step / 2);
    std::optional<PixelRange> found;
    for (int pixel = 0; pixel < axis.GetPixelCnt(); ++pixel) {
        if (pixel + 0.5 < low || pixel + 0.5 >= high)
            continue;
        const auto number = static_cast<std::uint16_t>(pixel);
        found = found ? PixelRange{found->first, number} : PixelRange{number, number};
    }
    bool inside = false;
    const auto own = static_cast<std::uint16_t>(axis.ToPixel(frequency, inside));
    return found || !inside ? found : PixelRange{own, own};
}

TEST(ChannelMapper, AgreesWithTheRuleForAnyGrid)
{
    std::mt19937 random(7);
    std::uniform_int_distribution<int> counts(1, 70), start(-40, 40), steps(1, 24);
    for (int round = 0; round < 500; ++round) {
        // Eighths are exact, so that edges and centres often meet.
        const double step = steps(random) / 8.0;
        const Range range{unsigned(counts(random)), unsigned(counts(random)), start(random) / 4.0,
                          step};
        const double min = start(random) / 8.0;
        const short pixels = short(counts(random));
        const axisDefinition axis = axisOf(min, min + pixels * steps(random) / 8.0, pixels);
        const ChannelIndexToPixelRangeMapper mapper(definitionOf({range}), axis);
        for (unsigned int channel = 0; channel < range.count; ++channel)
            ASSERT_EQ(mapper.pixels(channel),
                      byTheRule(range.first + channel * range.step, range.step, axis))
                << "round " << round << ", channel " << channel;
    }
}

TEST(ChannelMapper, RunsCoverTheChannelsOnceAndKnowTheirIds)
{
    const auto definition = definitionOf({{5000, 1000, 88e6, 25e3}, {10, 777, 100e6, 12.5e3}});
    const ChannelIndexToPixelRangeMapper mapper(definition, axisOf(80e6, 120e6, 300));
    std::uint32_t next = 0;
    for (const channelToPixel::PixelRun &run : mapper.runs()) {
        ASSERT_EQ(run.firstChannel, next);
        ASSERT_EQ(run.firstChannelId, definition.IndexToChannelId(run.firstChannel));
        next = run.endChannel();
        ASSERT_EQ(mapper.pixels(next - 1), run.pixels);
    }
    EXPECT_EQ(next, definition.GetChannelCount());
    EXPECT_LT(mapper.runs().size(), 400U) << "one entry a pixel, not one a channel";

    const auto some = mapper.runs(3, 1003);
    EXPECT_LE(some.front().firstChannel, 3U);
    EXPECT_GT(some.front().endChannel(), 3U);
    EXPECT_LE(some.back().firstChannel, 1003U);
    EXPECT_GT(some.back().endChannel(), 1003U);
}

} // namespace
