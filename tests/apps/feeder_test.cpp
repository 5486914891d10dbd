#include "apps/receiver/feeder.h"
#include "apps/receiver/terminationsignals.h"
#include "tests/apps/inputtools.h"

#include <QCoreApplication>
#include <QElapsedTimer>
#include <QSignalSpy>

#include <csignal>
#include <thread>

using namespace receiver;

namespace {

/// Scans with given stamps, counting up in their only channel.
class FakeInput : public Input {
public:
    explicit FakeInput(std::vector<KRTimeStamp> stamps) : m_stamps(std::move(stamps)) {}
    const Grid &grid() const override { return m_grid; }
    bool read(Scan &scan) override
    {
        if (m_next == failAt)
            throw apps::Failure(apps::Failure::Runtime, QStringLiteral("the disk is gone"));
        if (m_next == m_stamps.size())
            return false;
        scan.time = m_stamps[m_next];
        scan.levels = {float(m_next++)};
        return true;
    }
    void rewind() override { m_next = 0; }
    double period() const override { return 0; }

    std::size_t failAt = ~std::size_t(0);

private:
    Grid m_grid = {{1e6, 1e3, 1}};
    std::vector<KRTimeStamp> m_stamps;
    std::size_t m_next = 0;
};

struct Stored {
    std::vector<KRTimeStamp> times;
    std::vector<int> scans;
    std::function<void()> windowSeen;
};

class FakeSink : public ScanSink {
public:
    explicit FakeSink(Stored &stored) : m_stored(stored) {}
    void store(const Scan &scan, KRTimeStamp time) override
    {
        m_stored.times.push_back(time);
        m_stored.scans.push_back(int(scan.levels.at(0)));
    }
    QByteArray endpoint() const override { return "tcp://nowhere"; }
    void onWindow(std::function<void()> seen) override { m_stored.windowSeen = std::move(seen); }

private:
    Stored &m_stored;
};

void runFor(int milliseconds)
{
    QElapsedTimer clock;
    clock.start();
    while (clock.elapsed() < milliseconds)
        QCoreApplication::processEvents(QEventLoop::AllEvents, 5);
}

std::unique_ptr<FakeInput> inputOf(std::vector<KRTimeStamp> stamps)
{
    return std::make_unique<FakeInput>(std::move(stamps));
}

} // namespace

TEST(Feeder, FeedsAllAtOnceAtSpeedZeroAndSaysWhenItEnds)
{
    Stored stored;
    Feeder feeder(inputOf({1000000, 2000000, 3000000}), std::make_unique<FakeSink>(stored),
                  {0, false, false});
    QSignalSpy ended(&feeder, &Feeder::ended);
    feeder.start();
    EXPECT_TRUE(stored.scans.empty()) << "nothing before the event loop runs";
    runFor(50);
    EXPECT_EQ(stored.scans, (std::vector<int>{0, 1, 2}));
    EXPECT_EQ(stored.times, (std::vector<KRTimeStamp>{1000000, 2000000, 3000000}));
    EXPECT_EQ(ended.count(), 1);
    EXPECT_EQ(feeder.scans(), 3u);
}

TEST(Feeder, KeepsTheTimeOfTheStampsTimesTheSpeed)
{
    Stored stored;
    // 0.4 s and an hour behind the first, at twice the speed
    Feeder feeder(inputOf({1000000, 1400000, 3600000000}), std::make_unique<FakeSink>(stored),
                  {2, false, false});
    feeder.start();
    runFor(120);
    EXPECT_EQ(stored.scans.size(), 1u);
    runFor(300);
    EXPECT_EQ(stored.scans.size(), 2u);
}

TEST(Feeder, LoopsWithRisingStampsAndLetsOthersRun)
{
    Stored stored;
    Feeder feeder(inputOf({5000, 7000}), std::make_unique<FakeSink>(stored), {0, true, false});
    QSignalSpy ended(&feeder, &Feeder::ended);
    int ticks = 0;
    QTimer other;
    QObject::connect(&other, &QTimer::timeout, [&ticks] { ++ticks; });
    other.start(10);
    feeder.start();
    runFor(200);
    EXPECT_GT(stored.times.size(), 1000u);
    for (std::size_t i = 1; i < stored.times.size(); ++i)
        ASSERT_GT(stored.times[i], stored.times[i - 1]);
    EXPECT_EQ(stored.times[2], 9000u);
    EXPECT_EQ(ended.count(), 0);
    EXPECT_GT(ticks, 5) << "the event loop was held";
}

TEST(Feeder, WaitsUntilAWindowHasAllItsKindsOfData)
{
    Stored stored;
    Feeder feeder(inputOf({1, 2}), std::make_unique<FakeSink>(stored), {0, false, true});
    feeder.start();
    runFor(30);
    ASSERT_TRUE(stored.windowSeen);
    EXPECT_TRUE(feeder.isWaiting());
    for (int kind = 0; kind < 3; ++kind) {
        std::thread(stored.windowSeen).join(); // a window's thread tells
        runFor(200);
        EXPECT_TRUE(stored.scans.empty()) << "kind " << kind;
    }
    runFor(300);
    EXPECT_EQ(stored.scans.size(), 2u);
    EXPECT_FALSE(feeder.isWaiting());
}

TEST(Feeder, TellsOfAnInputThatFails)
{
    Stored stored;
    auto input = inputOf({1, 2, 3});
    input->failAt = 1;
    Feeder feeder(std::move(input), std::make_unique<FakeSink>(stored), {0, false, false});
    QSignalSpy failed(&feeder, &Feeder::failed);
    feeder.start();
    runFor(30);
    ASSERT_EQ(failed.count(), 1);
    EXPECT_EQ(failed[0][0].toString(), QStringLiteral("the disk is gone"));
    EXPECT_EQ(stored.scans.size(), 1u);
}

TEST(Feeder, EndsALoopOverAnInputThatHasNothing)
{
    Stored stored;
    Feeder feeder(inputOf({}), std::make_unique<FakeSink>(stored), {0, true, false});
    QSignalSpy ended(&feeder, &Feeder::ended);
    feeder.start();
    runFor(30);
    EXPECT_EQ(ended.count(), 1);
}

TEST(TerminationSignals, BecomeAQtSignal)
{
    for (const int signal : {SIGTERM, SIGINT}) {
        TerminationSignals signals;
        QSignalSpy caught(&signals, &TerminationSignals::caught);
        std::raise(signal);
        EXPECT_EQ(caught.count(), 0) << "not inside the handler";
        runFor(20);
        EXPECT_EQ(caught.count(), 1);
    }
}
