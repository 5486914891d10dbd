#include "scanbuffer/lines/channellinebuffer.h"

#include <gtest/gtest.h>

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
    using Buffer = sbs::ChannelLineBuffer<Y, YHandler>;

    static std::vector<Y> samples(std::initializer_list<int> numbers)
    {
        std::vector<Y> result;
        for (const int number : numbers)
            result.push_back(number < 0 ? Y(YHandler::Minimum()) : sampleOf<Y, YHandler>(number));
        return result;
    }
    static void finishScan(Buffer &buffer, KRTimeStamp time)
    {
        buffer.currentLine().setFirstTimeStamp(time);
        const std::vector<Y> data(buffer.channelCount(), sampleOf<Y, YHandler>(int(time)));
        buffer.currentLine().setSamples(0, buffer.channelCount(), data.data());
        buffer.finishCurrentLine();
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
        ASSERT_EQ(line.getHistory().size(), c.stored != 0 ? 1u : 0u);
        if (c.stored != 0) {
            EXPECT_EQ(line.getHistory()[0], std::make_pair(c.index, c.stored));
        }
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

TYPED_TEST(ChannelLines, RingGivesEachIdItsOwnLine)
{
    typename TestFixture::Buffer buffer;
    EXPECT_EQ(buffer.channelCount(), 0u);
    EXPECT_EQ(buffer.scanCount(), 0u);
    buffer.recreate(5, 3);
    EXPECT_EQ(buffer.channelCount(), 3u);
    for (KRTimeStamp time = 1; time <= 12; ++time) {
        this->finishScan(buffer, time);
        const auto [first, end] = buffer.getIdRange();
        EXPECT_EQ(end, time + 1) << "the current line has no time yet";
        EXPECT_EQ(first, time <= 4 ? 1u : time - 3);
        for (std::uint64_t id = first; id < end; ++id) {
            EXPECT_EQ(buffer.line(id).getFirstTimeStamp(), id);
            EXPECT_EQ(buffer.line(id).spectralData(), this->samples({int(id), int(id), int(id)}));
        }
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
    for (const std::uint64_t lines : {0, 1, 2, 3, 4}) {
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

TEST(ChannelLineIds, CurrentLineIsReadableOnceItHasATime)
{
    Buffer buffer;
    EXPECT_EQ(buffer.getIdRange(), IdRange(0, 0));
    buffer.recreate(3, 2);
    EXPECT_EQ(buffer.getIdRange(), IdRange(0, 0));
    buffer.currentLine().setFirstTimeStamp(1);
    EXPECT_EQ(buffer.getIdRange(), IdRange(1, 2));
    buffer.finishCurrentLine();
    EXPECT_EQ(buffer.getIdRange(), IdRange(1, 2));
    EXPECT_EQ(buffer.getLastFinishedChannelLineId(), 1u);
    EXPECT_EQ(buffer.getCurrentChannelLineId(), 2u);
}

TEST(ChannelLineIds, OnlyRise)
{
    Buffer buffer;
    buffer.recreate(4, 2);
    buffer.clear();
    EXPECT_EQ(buffer.getCurrentChannelLineId(), 1u) << "nothing was in the line";
    for (KRTimeStamp time = 1; time <= 6; ++time)
        scan(buffer, time);
    buffer.clear();
    EXPECT_EQ(buffer.getCurrentChannelLineId(), 7u) << "the current line was empty";
    EXPECT_EQ(buffer.getIdRange(), IdRange(0, 0));
    EXPECT_EQ(buffer.getLastFinishedChannelLineId(), 0u);

    buffer.currentLine().setFirstTimeStamp(9);
    buffer.clear();
    EXPECT_EQ(buffer.getCurrentChannelLineId(), 8u) << "id 7 had been seen";
    buffer.currentLine().setFirstTimeStamp(10);
    buffer.recreate(5, 7);
    EXPECT_EQ(buffer.getCurrentChannelLineId(), 9u);
    EXPECT_EQ(buffer.channelCount(), 7u);
    scan(buffer, 11);
    EXPECT_EQ(buffer.getIdRange(), IdRange(9, 10));
}

TEST(ChannelLineIds, AfterClearTheRingFillsAnew)
{
    Buffer buffer;
    buffer.recreate(3, 2);
    for (KRTimeStamp time = 1; time <= 5; ++time)
        scan(buffer, time);
    buffer.clear(); // the current id is 6
    scan(buffer, 6);
    scan(buffer, 7);
    EXPECT_EQ(buffer.getIdRange(), IdRange(6, 8));
    scan(buffer, 8);
    EXPECT_EQ(buffer.getIdRange(), IdRange(7, 9));
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
