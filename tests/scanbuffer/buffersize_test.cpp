#include "scanbuffer/scanbuffer.h"
#include "scanbuffer/scanbuffersizemanager.h"
#include "scanbuffer/scanbuffersizemanagerclient.h"
#include "waitfor.h"

#include <QCoreApplication>
#include <QElapsedTimer>
#include <QThread>
#include <gtest/gtest.h>

#include <thread>

namespace {

/// A ring that gives what it is asked for, within its limits.
struct FakeBuffer final : sbs::BufferSizeManagementInterface {
    std::uint32_t getMinimumNumberOfLines() const override { return 3; }
    std::uint32_t getMaximumNumberOfLines() const override { return most; }
    std::uint64_t getSizeInBytes() const override { return lines; }
    void setMaximumSizeInBytes(std::uint64_t) override {}
    std::uint32_t setNumberOfLines(unsigned int wanted) override
    {
        asked.push_back(wanted);
        return lines = std::clamp(wanted, 3u, most);
    }
    std::uint32_t getNumberOfLines() const override { return lines; }

    std::uint32_t lines = 20, most = 500'000;
    std::vector<unsigned int> asked;
};

/// A reader that counts how often it was asked to slow down.
struct Client : sbs::ScanBufferSizeManagerClient {
    using ScanBufferSizeManagerClient::ScanBufferSizeManagerClient;
    void registerAdapter(std::weak_ptr<sbs::Adapter>) override {}
    void reduceReadingSpeed() override { ++reductions; }
    std::atomic<int> reductions{0};
};

class SizeManager : public testing::Test {
public:
    SizeManager()
    {
        QObject::connect(manager, &sbs::ScanBufferSizeManager::signalBufferLimitReached,
                         [this] { ++limitReached; });
    }
    ~SizeManager() override { manager->dispose(); }
    /// One tick in which scans ended.
    void tick()
    {
        manager->endOfScanReceived();
        manager->slotTimerEvent();
    }
    /// What a tick in which scans ended asks of a ring of \a lines after \a work; 0 when it leaves
    /// it alone.
    unsigned int askedAfter(const std::function<void()> &work, std::uint32_t lines = 20)
    {
        buffer.lines = lines;
        buffer.asked.clear();
        work();
        tick();
        return buffer.asked.empty() ? 0 : buffer.asked.back();
    }
    /// The same after \a reader has advanced by each of \a steps.
    unsigned int askedAfterSteps(const QUuid &reader, std::initializer_list<std::uint64_t> steps,
                                 std::uint32_t lines = 20)
    {
        return askedAfter(
            [&] {
                for (const std::uint64_t step : steps)
                    manager->slotLastAccessedID(reader, position[reader] += step);
            },
            lines);
    }

    FakeBuffer buffer;
    sbs::ScanBufferSizeManager *manager = new sbs::ScanBufferSizeManager(buffer);
    std::map<QUuid, std::uint64_t> position;
    int limitReached = 0;
    const QUuid a = QUuid::createUuid(), b = QUuid::createUuid();
};

TEST_F(SizeManager, AsksForWhatTheReadersNeed)
{
    struct Case {
        const char *name;
        std::uint32_t lines;
        std::uint64_t step; // one line fewer than needed
        unsigned int asked;
    };
    constexpr Case cases[] = {
        {"far too few", 20, 89, 100},
        {"one too few", 20, 20, 23},
        {"just enough", 20, 19, 0},
        {"the margin is not used up", 20, 17, 0}, // needs 18, margin 2
        {"more than the margin", 20, 16, 18},     // t = 18, u = 17, 1 + 17
        {"a large ring, inside the margin", 1000, 899, 0},
        {"a large ring, a hundredth off", 1000, 898, 990}, // t = 900, u = 891, 99 + 891
        {"three lines are two and a margin", 3, 1, 0},
        {"an absurd step", 20, ~0ull / 2, 2386092941u}, // asked for, never overflowing
    };
    for (const Case &c : cases) {
        SCOPED_TRACE(c.name);
        const QUuid reader = QUuid::createUuid();
        askedAfterSteps(reader, {0}); // meets the reader
        EXPECT_EQ(askedAfterSteps(reader, {c.step}, c.lines), c.asked);
        manager->slotRemoveAdapter(reader);
    }
}

TEST_F(SizeManager, GrownRingKeepsItsMargin)
{
    askedAfterSteps(a, {0});
    EXPECT_EQ(askedAfterSteps(a, {89}), 100u);
    EXPECT_EQ(askedAfterSteps(a, {88}, 100), 0u) << "89 lines and the margin of 11";
    EXPECT_EQ(askedAfterSteps(a, {87}, 100), 97u);
}

TEST_F(SizeManager, WithoutReadersTheRingShrinksToItsMinimum)
{
    buffer.lines = 300;
    std::uint32_t before = buffer.lines;
    for (int i = 0; i < 2000 && buffer.lines > 3; ++i, before = buffer.lines) {
        tick();
        ASSERT_LT(buffer.lines, before);
        ASSERT_GE(buffer.lines + before / 20 + 2, before) << "a small step at a time";
    }
    EXPECT_EQ(buffer.lines, 3u);
    EXPECT_EQ(limitReached, 0);
}

TEST_F(SizeManager, TicksWithoutScansChangeNothing)
{
    manager->slotTimerEvent();
    EXPECT_TRUE(buffer.asked.empty());
    askedAfterSteps(a, {0});
    askedAfterSteps(a, {89});
    for (int i = 0; i < 10; ++i)
        manager->slotTimerEvent();
    EXPECT_EQ(buffer.lines, 100u) << "the reader's step has not aged";
}

TEST_F(SizeManager, CountsOnlyReadersThatAreThereAndActive)
{
    constexpr unsigned int kNobodyCounts = 18;
    const auto nothing = [] {};
    EXPECT_EQ(askedAfterSteps(a, {0, 89}), kNobodyCounts) << "the first tick of a reader";
    EXPECT_EQ(askedAfterSteps(a, {40, 49, 10}), 55u) << "the largest step: 50 lines and a ninth";
    EXPECT_EQ(askedAfter(nothing), 55u) << "a tick ago is recent enough";
    EXPECT_EQ(askedAfter(nothing), kNobodyCounts) << "two ticks ago is not";

    askedAfterSteps(b, {0});
    manager->slotResetHistory(a); // of no consequence: b is the slowest
    manager->slotLastAccessedID(a, position[a] += 70);
    EXPECT_EQ(askedAfterSteps(b, {29}), 33u);
    manager->resetFirstAccess();
    EXPECT_EQ(askedAfterSteps(b, {89}), kNobodyCounts);
    manager->slotResetHistory(QUuid::createUuid());
    manager->slotRemoveAdapter(QUuid::createUuid());
    askedAfterSteps(b, {89});
    manager->slotRemoveAdapter(b);
    manager->slotRemoveAdapter(a);
    EXPECT_EQ(askedAfter(nothing), kNobodyCounts) << "they have gone";

    askedAfterSteps(a, {1000});
    askedAfterSteps(a, {5});
    EXPECT_EQ(askedAfter([this] { manager->slotLastAccessedID(a, 3); }), kNobodyCounts)
        << "who falls back has not advanced";
    {
        Client client(manager);
        client.signal_LastAccessedID(0, false);
        tick();
        client.signal_LastAccessedID(89, false);
    }
    EXPECT_EQ(askedAfter(nothing), kNobodyCounts) << "a client that is gone";
}

TEST_F(SizeManager, TellsEveryClientWhenTheLimitIsReached)
{
    buffer.most = 50;
    Client first(manager), second(manager);
    first.signal_LastAccessedID(0, false);
    tick();
    first.signal_LastAccessedID(89, false);
    EXPECT_EQ(first.reductions, 0);
    tick();
    EXPECT_EQ(limitReached, 1);
    EXPECT_EQ(first.reductions, 1);
    EXPECT_EQ(second.reductions, 1);
    EXPECT_EQ(buffer.lines, 50u);

    first.signal_LastAccessedID(178, true);
    tick();
    EXPECT_EQ(limitReached, 1) << "reset: this tick does not count";
}

TEST(SizeManagerThreads, ClientsAndBuffersComeAndGoOnTheirOwnThreads)
{
    using Buffer = sbs::ScanBuffer<short, values::levelHandler>;
    std::atomic<bool> done{false};
    std::thread feeder([&] {
        for (int round = 0; round < 20; ++round) {
            const auto buffer = Buffer::create();
            values::ChannelRangeDefinition grid;
            grid.AddRangeDefinition(0, 64u, 1e6, 1e3, QString());
            buffer->setChannelRangeDefinition(grid);
            std::thread reader([buffer] {
                for (std::uint64_t id = 0; id < 200; id += 10)
                    Client(buffer->getSizeManager()).signal_LastAccessedID(id, id % 3 == 0);
            });
            for (KRTimeStamp time = 1; time < 200; ++time) {
                buffer->addTimeStamp(time);
                buffer->endOfScan();
                if (time % 50 == 0)
                    Kelm::post(buffer->getSizeManager(),
                               [manager = buffer->getSizeManager()] { manager->slotTimerEvent(); });
            }
            reader.join();
        }
        done = true;
    });
    EXPECT_TRUE(waitFor([&] { return done.load(); }));
    feeder.join();
    QCoreApplication::processEvents();
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
}

TEST(SizeManagerThreads, TicksComeOnTheApplicationThread)
{
    using Buffer = sbs::ScanBuffer<short, values::levelHandler>;
    std::shared_ptr<Buffer> buffer;
    std::thread([&] { buffer = Buffer::create(); }).join();
    EXPECT_EQ(buffer->getSizeManager()->thread(), QCoreApplication::instance()->thread());
    values::ChannelRangeDefinition grid;
    grid.AddRangeDefinition(0, 8u, 1e6, 1e3, QString());
    buffer->setChannelRangeDefinition(grid);
    ASSERT_EQ(buffer->setNumberOfLines(40), 40u);
    buffer->addTimeStamp(1);
    buffer->endOfScan();
    EXPECT_TRUE(waitFor([&] { return buffer->getNumberOfLines() < 40; }));

    buffer->setSizeManagerActive(false);
    EXPECT_FALSE(buffer->getSizeManager()->isActive());
}

} // namespace
