#include "scanbuffer/lines/channellinebuffer.h"

#include <gtest/gtest.h>

#include <functional>
#include <random>

namespace {

/// A valid sample that tells which number it was made from, for 0..99.
template <typename Y, typename YHandler>
Y sampleOf(int number)
{
    Y sample = YHandler::Minimum();
    YHandler::SetDimensionValue(0, sample, number);
    return sample;
}

template <typename Pair>
class ChannelLines : public testing::Test {
public:
    using Y = typename Pair::Sample;
    using YHandler = typename Pair::Handler;
    using Line = sbs::ChannelLine<Y, YHandler>;

    static std::vector<Y> samples(std::initializer_list<int> numbers)
    {
        std::vector<Y> result;
        for (const int number : numbers)
            result.push_back(number < 0 ? Y(YHandler::Minimum()) : sampleOf<Y, YHandler>(number));
        return result;
    }
};
TYPED_TEST_SUITE(ChannelLines, values::SamplePairList<testing::Types>, values::SamplePairNames);

constexpr int kNone = -1;

TYPED_TEST(ChannelLines, StatesFollowTheScan)
{
    typename TestFixture::Line line(4);
    EXPECT_TRUE(line.isEmpty());
    EXPECT_EQ(line.spectralData(), this->samples({kNone, kNone, kNone, kNone}));

    line.setLastTimeStamp(9);
    EXPECT_TRUE(line.isEmpty()) << "a last stamp is no state";
    line.setFirstTimeStamp(7);
    EXPECT_TRUE(line.hasValidTime());
    EXPECT_FALSE(line.hasSpectralData());

    const auto two = this->samples({5, 6});
    EXPECT_EQ(line.setSamples(1, 2, two.data()), 2u);
    EXPECT_TRUE(line.hasSpectralData());
    EXPECT_FALSE(line.isFinished());
    EXPECT_EQ(line.spectralData(), this->samples({kNone, 5, 6, kNone}));

    line.finish();
    EXPECT_TRUE(line.isFinished());
    EXPECT_EQ(line.getFirstTimeStamp(), 7u);
    EXPECT_EQ(line.getLastTimeStamp(), 9u);

    line.reset();
    EXPECT_TRUE(line.isEmpty());
    EXPECT_TRUE(line.getHistory().empty());
    EXPECT_EQ(line.getFirstTimeStamp() + line.getLastTimeStamp(), 0u);
    EXPECT_EQ(line.spectralData(), this->samples({kNone, kNone, kNone, kNone}));
}

TYPED_TEST(ChannelLines, WritesAreClippedToTheLine)
{
    struct Case {
        const char *name;
        std::uint32_t index, count, stored;
    };
    constexpr Case cases[] = {
        {"up to the end", 2, 2, 2},
        {"past the end", 3, 2, 1},
        {"behind the end", 4, 1, 0},
        {"far behind the end", 0xffffffff, 2, 0},
        {"a count that wraps around", 3, 0xffffffff, 1},
        {"nothing", 0, 0, 0},
    };
    const auto data = this->samples({1, 2, 3, 4});
    for (const Case &c : cases) {
        SCOPED_TRACE(c.name);
        typename TestFixture::Line line(4);
        EXPECT_EQ(line.setSamples(c.index, c.count, data.data()), c.stored);
        EXPECT_EQ(line.hasSpectralData(), c.stored != 0);
        std::vector<typename TestFixture::Line::Segment> history;
        if (c.stored != 0)
            history.emplace_back(c.index, c.stored);
        EXPECT_EQ(line.getHistory(), history);
    }
}

// The refill is put off, in whatever order the next scan comes. A line that was filled at once has
// to look the same after each write.
TYPED_TEST(ChannelLines, NoOrderOfWritesShowsAnEvictedSample)
{
    constexpr unsigned int kChannels = 24;
    std::mt19937 random(20);
    typename TestFixture::Line line(kChannels);
    for (int scan = 0; scan < 200; ++scan) {
        std::vector<typename TestFixture::Y> expected(kChannels, TestFixture::YHandler::Minimum());
        const bool looksDuringTheScan = scan % 3 == 0;
        for (int write = 0; write < scan % 6; ++write) {
            const std::uint32_t index = random() % kChannels;
            const std::uint32_t count = random() % (kChannels - index) + 1;
            const std::vector<typename TestFixture::Y> data(
                count, sampleOf<typename TestFixture::Y, typename TestFixture::YHandler>(
                           int(random() % 100)));
            line.setSamples(index, count, data.data());
            std::copy(data.begin(), data.end(), expected.begin() + index);
            if (looksDuringTheScan) {
                ASSERT_EQ(line.spectralData(), expected) << "scan " << scan;
            }
        }
        line.finish();
        ASSERT_FALSE(line.needsRefill());
        ASSERT_EQ(line.spectralData(), expected) << "scan " << scan;
        line.resetDeferred();
    }
}

using Buffer = sbs::ChannelLineBuffer<short, values::levelHandler>;
using IdRange = std::pair<std::uint64_t, std::uint64_t>;

void scan(Buffer &buffer, KRTimeStamp time)
{
    buffer.currentLine().setFirstTimeStamp(time);
    buffer.finishCurrentLine();
}

TEST(ChannelLineIds, RingHasAtLeastThreeLines)
{
    for (const std::uint64_t lines : {0, 2, 3, 4}) {
        Buffer buffer;
        buffer.setNumberOfLines(lines);
        EXPECT_EQ(buffer.scanCount(), 0u) << "there is no ring yet";
        buffer.recreate(lines, 2);
        EXPECT_EQ(buffer.scanCount(), std::max<std::uint64_t>(lines, 3));
        buffer.recreate(9, 2);
        buffer.setNumberOfLines(lines);
        EXPECT_EQ(buffer.scanCount(), std::max<std::uint64_t>(lines, 3));
    }
}

TEST(ChannelLineIds, OnlyRise)
{
    const auto clear = [](Buffer &buffer) { buffer.clear(); };
    const auto stamp = [](Buffer &buffer) { buffer.currentLine().setFirstTimeStamp(1); };
    const auto twoScans = [](Buffer &buffer) { scan(buffer, 1), scan(buffer, 2); };
    struct Step {
        const char *name;
        std::function<void(Buffer &)> work;
        IdRange range;
        std::uint64_t current, finished;
    };
    const Step steps[] = {
        {"no ring", clear, {0, 0}, 0, 0},
        {"a fresh ring", [](Buffer &buffer) { buffer.recreate(3, 2); }, {0, 0}, 1, 0},
        {"nothing was in the line", clear, {0, 0}, 1, 0},
        {"a line with a time can be read", stamp, {1, 2}, 1, 0},
        {"a finished one too", [](Buffer &buffer) { buffer.finishCurrentLine(); }, {1, 2}, 2, 1},
        {"a full ring", twoScans, {2, 4}, 4, 3},
        {"the current line was empty", clear, {0, 0}, 4, 0},
        {"fills anew", twoScans, {4, 6}, 6, 5},
        {"and goes round", twoScans, {6, 8}, 8, 7},
        {"a time alone", stamp, {6, 9}, 8, 7},
        {"id 8 had been seen", clear, {0, 0}, 9, 0},
        {"so had id 9",
         [&](Buffer &buffer) { stamp(buffer), buffer.recreate(5, 7); },
         {0, 0},
         10,
         0},
        {"the new ring", twoScans, {10, 12}, 12, 11},
    };
    Buffer buffer;
    for (const Step &step : steps) {
        SCOPED_TRACE(step.name);
        step.work(buffer);
        EXPECT_EQ(buffer.getIdRange(), step.range);
        EXPECT_EQ(buffer.getCurrentChannelLineId(), step.current);
        EXPECT_EQ(buffer.getLastFinishedChannelLineId(), step.finished);
    }
    EXPECT_EQ(buffer.channelCount(), 7u);
}

TEST(ChannelLineIds, ResizeKeepsTheNewestLines)
{
    struct Case {
        const char *name;
        int scans;
        std::uint64_t lines;
        IdRange afterwards, afterThreeMore;
    };
    constexpr Case cases[] = {
        {"shrinking a full ring", 9, 4, {7, 10}, {10, 13}},
        {"shrinking into unused lines", 2, 5, {1, 3}, {2, 6}},
        {"shrinking to what is used", 3, 4, {1, 4}, {4, 7}},
        {"to the same size", 9, 6, {5, 10}, {8, 13}},
        {"growing a full ring", 9, 8, {5, 10}, {6, 13}},
        {"growing a new ring", 2, 8, {1, 3}, {1, 6}},
    };
    for (const Case &c : cases) {
        SCOPED_TRACE(c.name);
        Buffer buffer;
        buffer.recreate(6, 2);
        KRTimeStamp time = 0;
        while (time < KRTimeStamp(c.scans))
            scan(buffer, ++time);

        buffer.setNumberOfLines(c.lines);

        EXPECT_EQ(buffer.scanCount(), c.lines);
        EXPECT_EQ(buffer.getIdRange(), c.afterwards);
        for (std::uint64_t id = c.afterwards.first; id < c.afterwards.second; ++id)
            EXPECT_EQ(buffer.line(id).getFirstTimeStamp(), id);
        for (int i = 0; i < 3; ++i)
            scan(buffer, ++time);
        EXPECT_EQ(buffer.getIdRange(), c.afterThreeMore);
        EXPECT_EQ(buffer.line(c.afterThreeMore.first).getFirstTimeStamp(), c.afterThreeMore.first);
    }
}

} // namespace
