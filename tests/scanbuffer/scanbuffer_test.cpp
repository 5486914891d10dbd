#include "fault.h"
#include "scanbuffer/scanbuffer.h"
#include "scanbuffer/scanbuffersizemanager.h"

#include <QCoreApplication>
#include <QElapsedTimer>
#include <gmock/gmock.h>

#include <cmath>
#include <functional>
#include <thread>

namespace {

using testing::ElementsAre;
using IdRange = std::pair<std::uint64_t, std::uint64_t>;

values::ChannelRangeDefinition grid(unsigned int channels, double start = 1e8)
{
    values::ChannelRangeDefinition definition;
    definition.AddRangeDefinition(1, channels, start, 1e3, QString());
    return definition;
}

template <typename Y, typename YHandler>
using LookAt = std::function<void(const sbs::ScanBufferAccess<Y, YHandler> &)>;

/// Runs a function as a visit.
template <typename Y, typename YHandler>
struct Look : sbs::ScanBufferVisitor<Y, YHandler> {
    explicit Look(LookAt<Y, YHandler> function) : look(std::move(function)) {}
    void visit(const sbs::ScanBufferAccess<Y, YHandler> &access) override { look(access); }
    LookAt<Y, YHandler> look;
};

template <typename Y, typename YHandler>
void readBuffer(sbs::ScanBuffer<Y, YHandler> &buffer, LookAt<Y, YHandler> function)
{
    Look<Y, YHandler> visitor(std::move(function));
    buffer.accept(visitor);
}

template <typename Pair>
class ScanBuffers : public testing::Test {
};
TYPED_TEST_SUITE(ScanBuffers, values::SamplePairList<testing::Types>, values::SamplePairNames);

TYPED_TEST(ScanBuffers, VisitorsReadWhatWasStored)
{
    using Y = typename TypeParam::Sample;
    using YHandler = typename TypeParam::Handler;
    constexpr std::uint64_t kImageSizes[] = {1, 2, 2, 4, 4, 4, 8, 16, 4, 4, 9, 19, 14};
    static_assert(std::ranges::find(kImageSizes, values::imageSize<Y>) != std::end(kImageSizes));

    const auto buffer = sbs::ScanBuffer<Y, YHandler>::create();
    buffer->setChannelRangeDefinition(grid(6));
    EXPECT_EQ(buffer->getNumberOfLines(), 5u);
    EXPECT_EQ(buffer->getSizeInBytes(), 5 * 6 * values::imageSize<Y>);

    std::vector<Y> data(4, YHandler::Minimum());
    YHandler::SetDimensionValue(0, data[0], 40);
    YHandler::SetDimensionValue(0, data[3], 70);
    std::vector<Y> expected{
        data[0], data[1], data[2], data[3], YHandler::Minimum(), YHandler::Minimum()};
    for (KRTimeStamp time = 1; time <= 12; ++time) { // twice round the ring
        buffer->addTimeStamp(time);
        buffer->addSpectralData({0, 4, data.data()});
        readBuffer<Y, YHandler>(*buffer, [&](const auto &access) {
            EXPECT_EQ(access.getChannelLine(time).spectralData(), expected);
            EXPECT_THAT(access.getChannelLine(time).getHistory(), ElementsAre(IdRange(0, 4)));
        });
        buffer->endOfScan(time);
    }
    readBuffer<Y, YHandler>(*buffer, [&](const auto &access) {
        EXPECT_EQ(access.getChannelLineIdRange(), IdRange(9, 13));
        EXPECT_EQ(access.getLastFinishedChannelLineId(), 12u);
        EXPECT_EQ(access.getChannelLine(12).getLastTimeStamp(), 12u);
        EXPECT_EQ(access.getChannelLine(9).spectralData(), expected);
        EXPECT_THROW(access.getChannelLine(8), KRException);
        EXPECT_THROW(access.getChannelLine(13), KRException) << "the current line has no time";
    });
}

/// A buffer of levels that writes down its signals.
class ScanBufferTest : public testing::Test {
public:
    using Buffer = sbs::ScanBuffer<short, values::levelHandler>;
    using Access = sbs::ScanBufferAccess<short, values::levelHandler>;

    ScanBufferTest()
    {
        const auto note = [this](const char *name) { return [=, this] { signals += name; }; };
        QObject::connect(buffer.get(), &Buffer::signalTimeStampAdded, note("t"));
        QObject::connect(buffer.get(), &Buffer::signalSpectralDataAdded, note("d"));
        QObject::connect(buffer.get(), &Buffer::signalEndOfScan, note("e"));
        QObject::connect(buffer.get(), &Buffer::signalChannelRangeDefinitionChanged, note("c"));
        QObject::connect(buffer.get(), &Buffer::signalScansPerSecond, [this](double rate) {
            signals += "r";
            scansPerSecond = rate;
        });
    }
    /// The signals since the last call, one letter each.
    std::string takeSignals() { return std::exchange(signals, {}); }
    void scan(KRTimeStamp time)
    {
        const std::vector<short> data(buffer->channelsPerChannelLine(), short(time % 100));
        buffer->addTimeStamp(time);
        buffer->addSpectralData({0, std::uint32_t(data.size()), data.data()});
        buffer->endOfScan();
    }
    void read(std::function<void(const Access &)> look)
    {
        readBuffer<short, values::levelHandler>(*buffer, std::move(look));
    }
    IdRange idRange()
    {
        IdRange range;
        read([&](const Access &access) { range = access.getChannelLineIdRange(); });
        return range;
    }

    std::shared_ptr<Buffer> buffer = Buffer::create();
    std::string signals;
    double scansPerSecond = -1.0;
};

TEST_F(ScanBufferTest, WithoutChannelsNothingIsStored)
{
    const short sample = 1;
    buffer->addTimeStamp(5);
    buffer->addSpectralData({0, 1, &sample});
    buffer->endOfScan(6);
    buffer->setChannelRangeDefinition({});
    buffer->setMaximumSizeInBytes(1000);
    buffer->clear();
    EXPECT_EQ(buffer->setNumberOfLines(10), 0u);
    EXPECT_EQ(buffer->getSizeInBytes(), 0u);
    EXPECT_EQ(buffer->channelsPerChannelLine(), 0u);
    EXPECT_EQ(idRange(), IdRange(0, 0));
    EXPECT_EQ(takeSignals(), "");
    read([](const Access &access) {
        std::uint64_t first = 7, last = 8;
        EXPECT_TRUE(access.getChannelRangeDefinition(1, first, last).empty());
        EXPECT_EQ(std::make_pair(first, last), std::make_pair(7ul, 8ul));
        EXPECT_EQ(access.getIdForTimeStamp(9), 0u);
    });

    buffer->setChannelRangeDefinition(grid(3));
    buffer->addTimeStamp(5); // not above the stamp from before there was a ring: it was kept
    EXPECT_EQ(idRange(), IdRange(1, 2));
}

TEST_F(ScanBufferTest, EachStepOfAScanTellsOnce)
{
    const short samples[] = {1, 2, 3};
    buffer->setChannelRangeDefinition(grid(3));
    EXPECT_EQ(takeSignals(), "c");
    buffer->addTimeStamp(100);
    EXPECT_EQ(takeSignals(), "t");
    buffer->addTimeStamp(200);
    EXPECT_EQ(takeSignals(), "") << "the line has its time";
    const Buffer::Piece pieces[] = {{2, 1, samples}, {0, 2, samples + 1}};
    buffer->addSpectralData(pieces);
    EXPECT_EQ(takeSignals(), "d") << "several pieces, one signal";
    read([](const Access &access) {
        EXPECT_THAT(access.getChannelLine(1).spectralData(), ElementsAre(2, 3, 1));
        EXPECT_THAT(access.getChannelLine(1).getHistory(),
                    ElementsAre(IdRange(2, 1), IdRange(0, 2)));
    });
    buffer->addSpectralData({3, 1, samples});
    EXPECT_EQ(takeSignals(), "") << "behind the last channel";
    buffer->addSpectralData({1, 3, samples});
    EXPECT_EQ(takeSignals(), "d") << "what fits is stored";
    buffer->endOfScan();
    EXPECT_EQ(takeSignals(), "er");
    read([](const Access &access) {
        EXPECT_THAT(access.getChannelLine(1).spectralData(), ElementsAre(2, 1, 2));
        EXPECT_EQ(access.getTimeStampForId(1), 100u);
        EXPECT_EQ(access.getTimeStampForId(2), 0u);
    });
    buffer->setChannelRangeDefinition({});
    EXPECT_EQ(takeSignals(), "");
}

TEST_F(ScanBufferTest, ATimeThatDoesNotRiseClearsTheRing)
{
    for (const KRTimeStamp backTo : {300, 299}) {
        buffer->setChannelRangeDefinition(grid(4));
        for (const KRTimeStamp time : {100, 200, 300})
            scan(time + 1000 * backTo);
        const std::uint64_t next = idRange().second;
        buffer->addTimeStamp(backTo + 1000 * backTo);
        EXPECT_EQ(idRange(), IdRange(next, next + 1)) << backTo;
    }
}

TEST_F(ScanBufferTest, LooksUpLinesByTime)
{
    const short sample = 7;
    buffer->setChannelRangeDefinition(grid(4));
    for (const KRTimeStamp time : {100, 200, 300, 400, 500, 600}) // keeps ids 3 to 6
        scan(time);
    EXPECT_GT(scansPerSecond, 0.0);
    buffer->addSpectralData({0, 1, &sample}); // id 7 has no time
    read([](const Access &access) {
        const std::pair<KRTimeStamp, std::uint64_t> cases[] = {{299, 0}, {300, 3}, {399, 3},
                                                               {400, 4}, {600, 6}, {~0ul, 6}};
        for (const auto &[time, id] : cases)
            EXPECT_EQ(access.getIdForTimeStamp(time), id) << time;
    });
    buffer->endOfScan();
    EXPECT_EQ(scansPerSecond, 0.0) << "behind a line without a time the rate starts over";
}

TEST_F(ScanBufferTest, OldLinesKeepTheirDefinition)
{
    buffer->setSizeManagerActive(false);
    buffer->setNumberOfLines(5); // refused: there are no channels yet
    buffer->setChannelRangeDefinition(grid(4, 1e6));
    scan(1);
    scan(2);
    const short sample = 1;
    buffer->addTimeStamp(3);
    buffer->addSpectralData({0, 1, &sample});
    takeSignals();
    buffer->setChannelRangeDefinition(grid(4, 2e6)); // ends the line of id 3
    EXPECT_EQ(takeSignals(), "c");
    buffer->setChannelRangeDefinition(grid(4, 3e6)); // no line in between
    scan(4);
    scan(5);

    struct Row {
        std::uint64_t id, first, last;
        double start;
    };
    const auto expectRows = [this](std::initializer_list<Row> rows) {
        read([&](const Access &access) {
            EXPECT_EQ(access.getChannelRangeDefinition(), grid(4, 3e6));
            for (const Row &row : rows) {
                SCOPED_TRACE(row.id);
                std::uint64_t first = 77, last = 77;
                EXPECT_EQ(access.getChannelRangeDefinition(row.id, first, last),
                          grid(4, row.start));
                EXPECT_EQ(first, row.first);
                EXPECT_EQ(last, row.last);
            }
        });
    };
    expectRows({{1, 77, 77, 3e6},
                {2, 2, 3, 1e6},
                {3, 2, 3, 1e6},
                {4, 4, 5, 3e6},
                {5, 4, 5, 3e6},
                {6, 77, 77, 3e6}});
    buffer->addTimeStamp(6);
    expectRows({{3, 2, 3, 1e6}, {4, 4, 6, 3e6}, {6, 4, 6, 3e6}});

    buffer->setChannelRangeDefinition(grid(8, 3e6));
    EXPECT_EQ(idRange(), IdRange(0, 0)) << "another number of channels, another ring";
}

TEST(ChannelRangeQueueTest, ForgetsWhatNoLineNeedsAndKeepsItsLimit)
{
    sbs::ChannelRangeQueue queue(3);
    queue.restart(1, grid(1));
    queue.push(5, grid(2));
    queue.push(9, grid(3));
    queue.dropBelow(4);
    EXPECT_EQ(queue.size(), 3u) << "line 4 still has the oldest definition";
    EXPECT_EQ(faultOf([&] { queue.push(12, grid(4)); }).reason, "list<T> too long");
    EXPECT_EQ(queue.current(), grid(3));
    queue.dropBelow(5);
    EXPECT_EQ(queue.size(), 2u);
}

TEST_F(ScanBufferTest, ReportsTheScanRate)
{
    constexpr KRTimeStamp kSecond = 1'000'000, kTenMinutes = 600 * kSecond;
    buffer->setChannelRangeDefinition(grid(2));
    struct Step {
        KRTimeStamp gap;
        double rate;
    };
    const Step steps[] = {
        {kSecond, 0.0},           // the first stamp
        {kSecond / 10, 10.0},     // the first interval
        {kSecond / 5, 1 / 0.11},  // 0.9 * 0.1 s + 0.1 * 0.2 s
        {kTenMinutes + 1, 0.0},   // too long a gap
        {kTenMinutes, 1 / 600.0}, // just short enough
    };
    KRTimeStamp time = 0;
    for (const Step &step : steps) {
        scan(time += step.gap);
        EXPECT_NEAR(scansPerSecond, step.rate, 1e-9) << time;
    }
}

TEST_F(ScanBufferTest, SizesStayWithinTheirLimits)
{
    buffer->setSizeManagerActive(false);
    buffer->setChannelRangeDefinition(grid(1000));
    EXPECT_EQ(buffer->getNumberOfLines(), 5u);
    EXPECT_EQ(buffer->setNumberOfLines(0), 3u);
    EXPECT_EQ(buffer->setNumberOfLines(1000), 1000u);

    buffer->setMaximumSizeInBytes(1'000'000);
    EXPECT_EQ(buffer->getNumberOfLines(), 500u) << "500 lines of 1000 channels of 2 bytes";
    EXPECT_EQ(buffer->setNumberOfLines(500'001), 500u);
    for (const std::uint64_t tooFew : {2000, 0}) {
        buffer->setMaximumSizeInBytes(tooFew);
        EXPECT_EQ(buffer->getNumberOfLines(), 3u) << "the floor of the ring";
    }
    buffer->setMaximumSizeInBytes(~0ul);
    EXPECT_EQ(buffer->setNumberOfLines(4), 4u);

    buffer->setChannelRangeDefinition(grid(1));
    buffer->setMaximumSizeInBytes(200'000'000);
    EXPECT_EQ(buffer->setNumberOfLines(~0u), 500'000u);
    buffer->setChannelRangeDefinition(grid(100'000));
    EXPECT_EQ(buffer->getNumberOfLines(), 1000u) << "half a million such lines would be 100 GB";
}

TEST_F(ScanBufferTest, AnActiveSizeManagerKeepsTheMemoryInUse)
{
    ASSERT_TRUE(buffer->getSizeManager()->isActive());
    buffer->setChannelRangeDefinition(grid(1000));
    buffer->setNumberOfLines(20);
    buffer->setChannelRangeDefinition(grid(500));
    EXPECT_EQ(buffer->getNumberOfLines(), 40u);
    buffer->setChannelRangeDefinition(grid(4'000'000));
    EXPECT_EQ(buffer->getNumberOfLines(), 3u);

    buffer->setSizeManagerActive(false);
    buffer->setChannelRangeDefinition(grid(500));
    EXPECT_EQ(buffer->getNumberOfLines(), 20u) << "the wanted number";
}

// 4e9 channels once took three such lines of memory, and a thrown std::bad_alloc left no ring.
TEST_F(ScanBufferTest, ABadDefinitionChangesNothing)
{
    buffer->setChannelRangeDefinition(grid(4));
    scan(100);
    takeSignals();
    const auto expectRefused = [&](unsigned int channels, double start = 1e8) {
        EXPECT_THROW(buffer->setChannelRangeDefinition(grid(channels, start)), KRException)
            << channels;
        EXPECT_EQ(takeSignals(), "");
        EXPECT_EQ(buffer->channelsPerChannelLine(), 4u);
        read([](const Access &access) {
            EXPECT_EQ(access.getChannelRangeDefinition(), grid(4));
            EXPECT_THAT(access.getChannelLine(1).spectralData(), ElementsAre(0, 0, 0, 0));
        });
    };
    expectRefused(4'000'000'000);
    expectRefused(33'333'334); // three lines of 2 bytes are just above 200 MB
    buffer->setMaximumSizeInBytes(~0ul);
    expectRefused(666'666'667); // and above 4 GB
    expectRefused(4, std::nan(""));
}

TEST_F(ScanBufferTest, WhatNeverEndsDoesNotPileUp)
{
    const short sample = 7;
    buffer->setChannelRangeDefinition(grid(4));
    buffer->addTimeStamp(1);
    for (int i = 0; i < 10'000; ++i)
        buffer->addSpectralData({0, 1, &sample});
    buffer->addTimeStamp(2);
    read([](const Access &access) {
        const auto [first, end] = access.getChannelLineIdRange();
        EXPECT_EQ(end - first, 5u) << "the scan goes on in new lines";
        for (std::uint64_t id = first; id < end; ++id) {
            EXPECT_LE(access.getChannelLine(id).getHistory().size(), 1028u);
            EXPECT_EQ(access.getTimeStampForId(id), 1u);
            EXPECT_EQ(access.getChannelLine(id).spectralData().front(), 7);
        }
    });
}

TEST_F(ScanBufferTest, AVisitorMayVisitAgainWhileTheFeederWaits)
{
    buffer->setChannelRangeDefinition(grid(4));
    scan(1);
    std::jthread feeder;
    int visits = 0;
    read([&](const Access &) {
        feeder = std::jthread([this] { buffer->addTimeStamp(2); });
        std::this_thread::sleep_for(std::chrono::milliseconds(20));
        read([&](const Access &) { ++visits; });
    });
    EXPECT_EQ(visits, 1);
}

// Each sample tells its scan, and each scan leaves out other channels. Whoever sees a number that
// is neither the line's own nor `Minimum` sees a sample of an evicted line.
TEST(ScanBufferThreads, NoReaderSeesASampleOfAnEvictedLine)
{
    using Buffer = sbs::ScanBuffer<double, values::doubleHandler>;
    using Access = sbs::ScanBufferAccess<double, values::doubleHandler>;
    constexpr std::uint32_t kChannels = 512;
    constexpr KRTimeStamp kScans = 4000;
    const auto buffer = Buffer::create();
    buffer->setChannelRangeDefinition(grid(kChannels));
    std::atomic<bool> done{false};
    std::atomic<std::uint64_t> wrong{0}, currentLinesSeen{0};

    const auto look = [&](const Access &access) {
        const auto [first, end] = access.getChannelLineIdRange();
        for (std::uint64_t id = first; id < end; ++id) {
            const auto &line = access.getChannelLine(id);
            const double own = double(line.getFirstTimeStamp());
            for (const double sample : line.spectralData())
                wrong += sample != own && sample != values::doubleHandler::Minimum();
            currentLinesSeen += !line.isFinished();
        }
    };
    std::vector<std::jthread> readers;
    for (int i = 0; i < 3; ++i)
        readers.emplace_back([&] {
            while (!done)
                readBuffer<double, values::doubleHandler>(*buffer, look);
        });
    std::jthread resizer([&] {
        for (unsigned int lines = 3; !done; lines = 3 + (lines + 1) % 9) {
            buffer->setNumberOfLines(lines);
            std::this_thread::sleep_for(std::chrono::milliseconds(1));
        }
    });
    // On a busy machine all scans may be over before the readers have started.
    QElapsedTimer clock;
    clock.start();
    for (KRTimeStamp time = 1;
         time <= kScans || (currentLinesSeen == 0 && clock.elapsed() < 10'000); ++time) {
        const std::vector<double> data(kChannels, double(time));
        const std::uint32_t skipped = std::uint32_t(time * 37 % kChannels);
        const Buffer::Piece pieces[] = {{skipped / 2, skipped / 3, data.data()},
                                        {skipped, kChannels - skipped, data.data()}};
        buffer->addTimeStamp(time);
        for (const Buffer::Piece &piece : pieces)
            buffer->addSpectralData(piece);
        // Some scans that are never finished, and some that start over.
        if (time % 7 == 0)
            buffer->setChannelRangeDefinition(grid(kChannels, double(time)));
        else
            buffer->endOfScan();
        if (time % 5 == 0)
            std::this_thread::yield();
    }
    done = true;
    readers.clear();
    EXPECT_EQ(wrong, 0u);
    EXPECT_GT(currentLinesSeen, 0u) << "the readers never came during a scan";
}

TEST(ScanBufferThreads, TheLastOwnerMayBeAnyThread)
{
    auto buffer = sbs::ScanBuffer<short, values::levelHandler>::create();
    buffer->setChannelRangeDefinition(grid(10));
    std::thread([owned = std::move(buffer)]() mutable { owned.reset(); }).join();
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
}

} // namespace
