#include "scanbuffer/fold/foldkernels.h"
#include "scanbuffer/window/windowfold_impl.h"

#include <gtest/gtest.h>

#include <cstring>
#include <limits>
#include <random>

using channelToPixel::ChannelIndexToPixelRangeMapper;
using sbs::FoldRules;
using sbs::ScanDisplayLine;
using values::ChannelRangeDefinition;

namespace {

std::mt19937 &generator()
{
    static std::mt19937 random(20);
    return random;
}
int upTo(int limit) { return std::uniform_int_distribution<int>(0, limit)(generator()); }

/// Few values, so that equal ones are many, and now and then what a careless comparison gets wrong.
template <typename Y>
Y randomNumber()
{
    using Limits = std::numeric_limits<Y>;
    const int special = upTo(60);
    if (special == 0)
        return Limits::has_quiet_NaN ? Limits::quiet_NaN() : Limits::min();
    if (special == 1)
        return Limits::has_infinity ? -Limits::infinity() : Limits::max();
    return special == 2 ? Y(-0.0) : Y(upTo(200) - 100);
}

template <typename Y, typename Handler>
Y randomSample()
{
    if (upTo(7) == 0)
        return Y(Handler::Minimum());
    const auto value = static_cast<short>(upTo(200) - 100);
    if constexpr (std::is_arithmetic_v<Y>) {
        return randomNumber<Y>();
    } else if constexpr (std::is_same_v<Y, values::MinMax>) {
        return Y(short(value - upTo(3)), value);
    } else if constexpr (std::is_same_v<Y, values::Pulse>) {
        return Y(value, short(upTo(9)), 1, 0, 0);
    } else if constexpr (std::is_same_v<Y, Kelm::Long>) {
        return Y(value);
    } else {
        Y sample;
        Handler::SetDimensionValue(0, sample, value / 10.0);
        Handler::SetDimensionValue(5, sample, upTo(2));
        return sample;
    }
}

struct Grid {
    ChannelRangeDefinition definition;
    ChannelIndexToPixelRangeMapper mapper;
    unsigned int channels;
    std::size_t pixels;
};

Grid randomGrid()
{
    Grid grid;
    const unsigned int most = upTo(3) == 0 ? 700 : 90;
    const unsigned int first = 1 + unsigned(upTo(int(most)));
    grid.definition.AddRangeDefinition(1000, first, 1e6, 1e3, {});
    if (upTo(1) == 0)
        grid.definition.AddRangeDefinition(5, 1 + unsigned(upTo(60)), 1.05e6, 2.5e3, {});
    const short pixels = short(1 + upTo(upTo(1) == 0 ? 5 : 150));
    axisDefinition axis;
    axis.init(1e6 - upTo(20) * 1e3, 1e6 + (1 + upTo(int(first))) * 1e3, pixels);
    grid.mapper = ChannelIndexToPixelRangeMapper(grid.definition, axis);
    grid.channels = grid.definition.GetChannelCount();
    grid.pixels = std::size_t(pixels);
    return grid;
}

/// The rule, sample by sample, without the mapper's runs.
template <typename Y, typename Handler>
bool foldByTheRule(const std::vector<Y> &samples, const Grid &grid, ScanDisplayLine<Y> &line,
                   std::uint32_t first, std::uint32_t last, FoldRules &rules)
{
    bool changed = false;
    for (std::uint32_t channel = first; channel <= last; ++channel) {
        const auto range = grid.mapper.pixels(channel);
        const Y &y = samples[channel];
        for (std::size_t p = range ? range->first : 1; range && p <= range->last; ++p) {
            const bool firstWrite = y != Handler::Minimum() && line.overwriteCounts[p] == 0;
            if (firstWrite || rules.lastSampleWins || line.yValues[p] < y) {
                line.yValues[p] = y;
                line.channelIds[p] = grid.definition.IndexToChannelId(channel);
                line.overwriteCounts[p] += rules.keepOverwriteCounts ? 0 : 1;
                changed = true;
                if (!rules.maxHold.empty())
                    rules.maxHold[p] =
                        std::max(rules.maxHold[p], Handler::GetDimension(rules.holdDimension, y));
            }
            if (!rules.minHold.empty())
                rules.minHold[p] =
                    std::min(rules.minHold[p], Handler::GetDimension(rules.holdDimension, y));
        }
    }
    return changed;
}

template <typename Y, typename Handler>
void expectEqualLines(const ScanDisplayLine<Y> &actual, const ScanDisplayLine<Y> &expected)
{
    ASSERT_EQ(actual.channelIds, expected.channelIds);
    ASSERT_EQ(actual.overwriteCounts, expected.overwriteCounts);
    for (std::size_t pixel = 0; pixel < expected.size(); ++pixel)
        ASSERT_EQ(Handler::ToString(actual.yValues[pixel]),
                  Handler::ToString(expected.yValues[pixel]))
            << "pixel " << pixel;
}

/// Lines as a window has them: fresh ones, and ones that continue another scan.
template <typename Y, typename Handler>
ScanDisplayLine<Y> randomLine(std::size_t pixels)
{
    ScanDisplayLine<Y> line(pixels, Handler::Minimum());
    for (std::size_t pixel = 0; pixel < pixels; ++pixel) {
        if (upTo(2) != 0)
            line.yValues[pixel] = randomSample<Y, Handler>();
        line.overwriteCounts[pixel] = upTo(3) == 0 ? upTo(5) : 0;
    }
    return line;
}

FoldRules randomRules(std::size_t pixels)
{
    FoldRules rules;
    rules.lastSampleWins = upTo(5) == 0;
    rules.keepOverwriteCounts = upTo(5) == 0;
    if (upTo(4) == 0)
        rules.maxHold.assign(pixels, std::numeric_limits<double>::lowest());
    if (upTo(4) == 0)
        rules.minHold.assign(pixels, std::numeric_limits<double>::max());
    return rules;
}

template <typename Pair>
class Fold : public testing::Test {
};
TYPED_TEST_SUITE(Fold, values::SamplePairList<testing::Types>, values::SamplePairNames);

TYPED_TEST(Fold, EqualsTheRuleForAnyScan)
{
    using Y = typename TypeParam::Sample;
    using Handler = typename TypeParam::Handler;
    for (int round = 0; round < 400; ++round) {
        SCOPED_TRACE(round);
        const Grid grid = randomGrid();
        std::vector<Y> samples(grid.channels);
        std::generate(samples.begin(), samples.end(), randomSample<Y, Handler>);
        const auto first = unsigned(upTo(int(grid.channels) - 1));
        const auto last = first + unsigned(upTo(int(grid.channels - first) - 1));

        const ScanDisplayLine<Y> start = randomLine<Y, Handler>(grid.pixels);
        ScanDisplayLine<Y> expected = start, actual = start, plain = start;
        FoldRules expectedRules = randomRules(grid.pixels);
        FoldRules rules = expectedRules, plainRules = expectedRules;
        const bool changed =
            foldByTheRule<Y, Handler>(samples, grid, expected, first, last, expectedRules);

        const std::span<const Y> all(samples);
        ASSERT_EQ((sbs::fold<Y, Handler>(all, grid.mapper, actual, first, last, rules)), changed);
        ASSERT_EQ((sbs::foldPlain<Y, Handler>(all, grid.mapper, plain, first, last, plainRules)),
                  changed);
        ASSERT_NO_FATAL_FAILURE((expectEqualLines<Y, Handler>(actual, expected)));
        ASSERT_NO_FATAL_FAILURE((expectEqualLines<Y, Handler>(plain, expected)));
        ASSERT_EQ(rules.maxHold, expectedRules.maxHold);
        ASSERT_EQ(rules.minHold, expectedRules.minHold);
    }
}

TYPED_TEST(Fold, RefusesWhatDoesNotFit)
{
    using Y = typename TypeParam::Sample;
    const Grid grid = randomGrid();
    const Y minimum = TypeParam::Handler::Minimum();
    const std::vector<Y> samples(grid.channels, minimum);
    const auto folds = [&](std::size_t given, std::size_t pixels, std::uint32_t last) {
        ScanDisplayLine<Y> line(pixels, minimum);
        FoldRules rules;
        return sbs::fold<Y, typename TypeParam::Handler>(std::span(samples).first(given),
                                                         grid.mapper, line, 0, last, rules);
    };
    EXPECT_FALSE(folds(grid.channels, grid.pixels - 1, 0)) << "a line of another width";
    EXPECT_FALSE(folds(0, grid.pixels, 9)) << "no samples";
    EXPECT_FALSE(folds(grid.channels, grid.pixels, grid.channels + 9)) << "as far as there are any";
}

template <typename T>
class FoldKernels : public testing::Test {
};
using Numbers = testing::Types<char, short, std::int32_t, float, double>;
TYPED_TEST_SUITE(FoldKernels, Numbers);

/// The best kernel is what fold() runs; the others have to be right on the machines that need them.
TYPED_TEST(FoldKernels, AllGiveTheSame)
{
    using namespace sbs::foldkernels;
    const auto plain = kernelFor<TypeParam>(Instructions::plain);
    const auto vectors = kernelFor<TypeParam>(Instructions::avx2);
    if (vectors == nullptr)
        GTEST_SKIP() << "this processor has no AVX2";
    for (int round = 0; round < 400; ++round) {
        SCOPED_TRACE(round);
        const Grid grid = randomGrid();
        std::vector<TypeParam> samples(grid.channels);
        const bool rising = upTo(3) == 0;
        for (unsigned int i = 0; i < grid.channels; ++i)
            samples[i] = rising ? TypeParam(i / 8) : randomNumber<TypeParam>();
        ScanDisplayLine<TypeParam> expected(grid.pixels, TypeParam(-127)), actual = expected;
        const auto &runs = grid.mapper.runs();
        const auto fold = [&](auto kernel, ScanDisplayLine<TypeParam> &line) {
            return kernel({samples.data(), samples.size(), TypeParam(-127), line.yValues.data(),
                           line.channelIds.data(), line.overwriteCounts.data(), runs.data(),
                           runs.data() + runs.size(), 0, grid.channels - 1});
        };
        ASSERT_EQ(fold(vectors, actual), fold(plain, expected));
        ASSERT_EQ(actual.channelIds, expected.channelIds);
        ASSERT_EQ(actual.overwriteCounts, expected.overwriteCounts);
        ASSERT_EQ(std::memcmp(actual.yValues.data(), expected.yValues.data(),
                              grid.pixels * sizeof(TypeParam)),
                  0);
    }
}

} // namespace
