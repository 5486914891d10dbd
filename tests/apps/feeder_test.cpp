#include "apps/receiver/feeder.h"
#include "tests/apps/inputtools.h"

#include <QCoreApplication>
#include <QDeadlineTimer>
#include <QElapsedTimer>
#include <QSignalSpy>
#include <QThread>

#include <algorithm>
#include <numeric>
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
    Stored() { clock.start(); }

    std::vector<KRTimeStamp> times;
    std::vector<int> scans;
    std::vector<qint64> when; // by clock, in ms
    std::function<void()> windowSeen;
    QElapsedTimer clock;
};

class FakeSink : public ScanSink {
public:
    explicit FakeSink(Stored &stored) : m_stored(stored) {}
    void store(const Scan &scan, KRTimeStamp time) override
    {
        m_stored.times.push_back(time);
        m_stored.scans.push_back(int(scan.levels.at(0)));
        m_stored.when.push_back(m_stored.clock.elapsed());
    }
    QByteArray endpoint() const override { return "tcp://nowhere"; }
    void onWindow(std::function<void()> seen) override { m_stored.windowSeen = std::move(seen); }

private:
    Stored &m_stored;
};

/// Runs the event loop until \a done, at most \a milliseconds.
bool waitFor(const std::function<bool()> &done, int milliseconds = 10000)
{
    for (QDeadlineTimer limit(milliseconds); !done() && !limit.hasExpired(); QThread::usleep(500))
        QCoreApplication::processEvents();
    return done();
}

/// A feeder between fakes, started.
struct Rig {
    Rig(const std::vector<KRTimeStamp> &stamps, const FeedPlan &plan, std::size_t failAt = SIZE_MAX)
        : feeder(makeInput(stamps, failAt), std::make_unique<FakeSink>(stored), plan),
          ended(&feeder, &Feeder::ended), failed(&feeder, &Feeder::failed)
    {
        feeder.start();
    }
    static std::unique_ptr<FakeInput> makeInput(const std::vector<KRTimeStamp> &stamps,
                                                std::size_t failAt)
    {
        auto input = std::make_unique<FakeInput>(stamps);
        input->failAt = failAt;
        return input;
    }

    Stored stored;
    Feeder feeder;
    QSignalSpy ended, failed;
};

} // namespace

TEST(Feeder, FeedsAllAtOnceAtSpeedZeroAndSaysWhenItEnds)
{
    Rig rig({1000000, 2000000, 3000000}, {0, false, false});
    EXPECT_TRUE(rig.stored.scans.empty()) << "nothing before the event loop runs";
    EXPECT_TRUE(waitFor([&] { return rig.ended.count() != 0; }));
    EXPECT_EQ(rig.stored.scans, (std::vector<int>{0, 1, 2}));
    EXPECT_EQ(rig.stored.times, (std::vector<KRTimeStamp>{1000000, 2000000, 3000000}));
    EXPECT_EQ(rig.ended.count(), 1);
    EXPECT_EQ(rig.feeder.scans(), 3u);
}

TEST(Feeder, KeepsTheTimeOfTheStampsTimesTheSpeed)
{
    // 20 s and fifty minutes behind the first, at a hundred times the speed
    Rig rig({1000000, 21000000, 3001000000}, {100, false, false});
    ASSERT_TRUE(waitFor([&] { return rig.stored.scans.size() == 2; }));
    EXPECT_GE(rig.stored.when[1], 199);
    EXPECT_FALSE(rig.ended.wait(100));
    EXPECT_EQ(rig.stored.scans.size(), 2u);
}

TEST(Feeder, DoesNotWaitForAClockThatIsSet)
{
    // A clock that begins in 1970 is set, and set once more. Behind that, time goes on as before.
    constexpr KRTimeStamp kSet = 1795251600000000, kAgain = kSet + 7200000000;
    const std::vector<KRTimeStamp> stamps = {1000,        2000,   kSet,
                                             kSet + 1000, kAgain, kAgain + 200000};
    Rig rig(stamps, {1, false, false});
    QSignalSpy told(&rig.feeder, &Feeder::gapSkipped);
    ASSERT_TRUE(waitFor([&] { return rig.stored.scans.size() == stamps.size(); }));
    EXPECT_EQ(rig.stored.times, stamps);
    EXPECT_GE(rig.stored.when[5] - rig.stored.when[3], 199);
    EXPECT_EQ(told.count(), 1);

    Rig loop({1000, kSet}, {0, true, false});
    ASSERT_TRUE(waitFor([&] { return loop.stored.times.size() > 2; }));
    EXPECT_EQ(loop.stored.times[2], kSet + 1000000) << "the gap is not the usual interval";

    Rig fast({1000000, 7300000000}, {100, false, false});
    EXPECT_TRUE(waitFor([&] { return fast.stored.scans.size() == 2; }))
        << "two hours, at any speed";

    Rig slow({1000000, 5000000}, {0.001, false, false});
    EXPECT_FALSE(waitFor([&] { return slow.stored.scans.size() == 2; }, 100))
        << "four seconds at a thousandth of the speed are a wait, not a gap";
}

TEST(Feeder, LoopsWithRisingStampsAndLetsOthersRun)
{
    Rig rig({5000, 7000}, {0, true, false});
    std::vector<qint64> ticks;
    QTimer other;
    QObject::connect(&other, &QTimer::timeout,
                     [&] { ticks.push_back(rig.stored.clock.elapsed()); });
    other.start(10);
    const std::vector<KRTimeStamp> &times = rig.stored.times;
    ASSERT_TRUE(waitFor([&] { return ticks.size() > 8 && times.size() > 1000; }));
    // A busy machine lengthens some of the times between two ticks, a held event loop all of them.
    std::adjacent_difference(ticks.begin(), ticks.end(), ticks.begin());
    EXPECT_LT(*std::min_element(ticks.begin() + 1, ticks.end()), 100) << "the loop was held";
    for (std::size_t i = 1; i < times.size(); ++i)
        ASSERT_GT(times[i], times[i - 1]);
    EXPECT_EQ(times[2], 9000u);
    EXPECT_EQ(rig.ended.count(), 0);
}

TEST(Feeder, WaitsUntilAWindowHasAllItsKindsOfData)
{
    Rig rig({1, 2}, {0, false, true});
    ASSERT_TRUE(rig.stored.windowSeen);
    waitFor([&] { return rig.stored.clock.elapsed() > 1100; });
    EXPECT_TRUE(rig.feeder.isWaiting()) << "no window has come";
    std::vector<qint64> asked;
    for (int kind = 0; kind < 3 && rig.feeder.isWaiting(); ++kind) {
        const qint64 now = rig.stored.clock.elapsed();
        std::thread(rig.stored.windowSeen).join(); // a window's thread tells
        QCoreApplication::processEvents();
        if (!rig.feeder.isWaiting())
            break; // on a machine that stood still, it rightly began before this one
        asked.push_back(now);
        waitFor([&] { return rig.stored.clock.elapsed() >= asked.back() + 200; });
    }
    ASSERT_TRUE(waitFor([&] { return rig.stored.scans.size() == 2; }));
    EXPECT_GE(rig.stored.when[0] - asked.back(), 940) << "a coarse timer may be 5 % early";
    EXPECT_FALSE(rig.feeder.isWaiting());
}

TEST(Feeder, TellsOfAnInputThatFailsOrHasNothing)
{
    Rig broken({1, 2, 3}, {0, false, false}, 1), empty({}, {0, true, false});
    EXPECT_TRUE(waitFor([&] { return broken.failed.count() != 0 && empty.ended.count() != 0; }))
        << "a loop over nothing ends too";
    ASSERT_EQ(broken.failed.count(), 1);
    EXPECT_EQ(broken.failed[0][0].toString(), QStringLiteral("the disk is gone"));
    EXPECT_EQ(broken.stored.scans.size(), 1u);
}
