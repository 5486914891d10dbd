#include "platform/base/krexception.h"
#include "scanbuffer/mdatatypes.h"
#include "scanbuffer/window/windowkeeper.h"
#include "windowrig.h"

#include <QCoreApplication>
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <pthread.h>

using testing::Each;
using testing::ElementsAre;
using values::levelHandler;
using Rig = WindowRig<short, levelHandler>;
using Waterfall = sbs::ScanBufferAdapter_Waterfall<short, levelHandler>;
using ScanLine = sbs::ScanBufferAdapter_ScanLine<short, levelHandler>;

namespace {

constexpr short kNone = -9999;

template <typename Pair>
class WindowOfPair : public testing::Test {
};
TYPED_TEST_SUITE(WindowOfPair, values::SamplePairList<testing::Types>, values::SamplePairNames);

TYPED_TEST(WindowOfPair, ShowsAScan)
{
    using Y = typename TypeParam::Sample;
    using Handler = typename TypeParam::Handler;
    WindowRig<Y, Handler> rig(3);
    std::vector<Y> samples(3, Handler::Minimum());
    Handler::SetDimensionValue(0, samples[1], 50.0);
    rig.show(samples);
    EXPECT_EQ(rig.newestId(), 1U);
    for (int pixel = 0; pixel < 3; ++pixel)
        EXPECT_EQ(Handler::ToString(rig.window.GetLatestValue4Index(pixel)),
                  Handler::ToString(samples[std::size_t(pixel)]));
    const int line = rig.window.GetCurrentLine();
    EXPECT_EQ(rig.window.WaterfallChannelLine(line)[1], 101U);
    EXPECT_THAT(rig.window.OverwriteCntLine(line), ElementsAre(0, 1, 0));
}

TEST(Window, AnEmptyBufferInitialisesItOnce)
{
    Rig rig(4);
    rig.window.readNewData();
    const std::uint32_t version = rig.window.GetWindowSettingsVersion();
    rig.window.readNewData();
    rig.window.readNewData();
    EXPECT_EQ(rig.window.GetWindowSettingsVersion(), version);
}

TEST(Window, SkipsToTheOldestScanThatIsLeft)
{
    Rig rig(2, 5);
    for (short level = 1; level <= 20; ++level)
        rig.scan({level, level});
    EXPECT_THAT(rig.read(), ElementsAre(20, 20));
    int filled = 0;
    for (int line = 0; line < rig.window.LineCount(); ++line)
        filled += rig.window.WaterfallChannelLineID(line) != 0 ? 1 : 0;
    EXPECT_EQ(filled, 4) << "the ring of 5 keeps one line for the scan to come";
}

TEST(Window, FoldsNoMoreThanItsRingHoldsInOnePass)
{
    Rig rig(2, 200);
    for (short level = 1; level <= 120; ++level)
        rig.scan({level, level});
    rig.window.readNewData();
    EXPECT_EQ(rig.newestId(), 50U);
    // The rest follows by itself, without waiting for a timer.
    for (int turn = 0; turn < 10; ++turn)
        QCoreApplication::processEvents();
    EXPECT_EQ(rig.newestId(), 120U);
}

TEST(Window, APassEndsWhereTheChannelsChange)
{
    Rig rig(2);
    rig.scan({1, 2});
    rig.scan({3, 4});
    rig.buffer->setChannelRangeDefinition(Rig::definitionOf(2, 700));
    rig.show({5, 6});
    EXPECT_EQ(rig.newestId(), 2U);
    EXPECT_EQ(rig.window.GetChannelRangeDefinition().GetMinChannelId(), 100U);
    for (int pass = 0; pass < 3; ++pass)
        rig.window.readNewData();
    EXPECT_EQ(rig.newestId(), 3U);
    EXPECT_EQ(rig.window.WaterfallChannelLine(rig.window.GetCurrentLine())[0], 700U);
}

TEST(Window, GapsShowTheScanBeforeUntilTheEnd)
{
    for (const char *kept : {"nothing", "data", "lines"}) {
        SCOPED_TRACE(kept);
        Rig rig(3);
        rig.buffer->setKeepScanDataAfterEndOfScan(*kept == 'd');
        rig.buffer->setKeepNoOverwriteWFLines(*kept == 'l');
        rig.show({10, 20, 30});
        rig.begin();
        rig.write(0, {11});
        EXPECT_THAT(rig.read(), ElementsAre(11, 20, 30));
        rig.write(2, {31});
        EXPECT_THAT(rig.read(), ElementsAre(11, 20, 31)) << "only the new stretch is folded";
        rig.buffer->endOfScan();
        EXPECT_THAT(rig.read(), ElementsAre(11, *kept == 'n' ? kNone : 20, 31));
    }
}

TEST(Window, FlagsOfTheBufferChangeTheFold)
{
    Rig rig(4);
    rig.window.SetXRange({0.0, 4.0, 1, 0, 0.0});
    EXPECT_THAT(rig.show({10, 40, 20, kNone}), ElementsAre(40));
    rig.buffer->setAvoidSettingMaxValueDuringScan(true);
    EXPECT_THAT(rig.show({10, 40, 20, kNone}), ElementsAre(kNone)) << "the last sample wins";
    rig.window.SetXRange({0.0, 4.0, 2, 0, 0.0});
    rig.show({10, 20, 30, 40});
    rig.buffer->setClearScanData(true);
    rig.begin();
    rig.write(0, {11, 12});
    EXPECT_THAT(rig.read(), ElementsAre(12, kNone)) << "nothing of the scan before";
}

TEST(Window, ScansWithoutATimeAreToldApart)
{
    Rig rig(2);
    rig.write(0, {50});
    EXPECT_THAT(rig.read(), ElementsAre(50, kNone));
    rig.write(1, {60});
    rig.buffer->endOfScan();
    EXPECT_THAT(rig.read(), ElementsAre(50, 60)) << "more of the same scan";
    rig.write(0, {1, 2});
    rig.buffer->endOfScan();
    EXPECT_THAT(rig.read(), ElementsAre(1, 2));
    rig.buffer->endOfScan();
    EXPECT_THAT(rig.read(), ElementsAre(1, 2)) << "the end of no scan shows nothing";
    EXPECT_THAT(rig.show({3, 4}), ElementsAre(3, 4));
}

TEST(Window, CallsAdaptersOnlyForAChange)
{
    Rig rig(4);
    const auto waterfall = rig.add<Waterfall>();
    rig.window.readNewData();
    std::size_t expected = rig.link->messages.size();
    const auto afterAPass = [&] {
        rig.window.readNewData();
        return rig.link->messages.size();
    };
    rig.scan({1, 2, 3, 4});
    EXPECT_EQ(afterAPass(), ++expected);
    EXPECT_EQ(afterAPass(), expected) << "the scan has ended, nothing is new";
    rig.begin();
    rig.write(0, {5});
    EXPECT_EQ(afterAPass(), ++expected);
    rig.buffer->endOfScan();
    EXPECT_EQ(afterAPass(), ++expected) << "the end of a scan is a change";
    EXPECT_EQ(afterAPass(), expected);
}

TEST(Window, TheWaterfallDrawsTheCurveWhileBothShowTheSame)
{
    Rig rig(4);
    const auto scanLine = rig.add<ScanLine>();
    const auto curveLink = rig.link;
    auto waterfall = rig.add<Waterfall>();
    rig.window.readNewData();
    const auto curvesOfAScan = [&] {
        const std::size_t before = curveLink->messages.size();
        rig.show({1, 2, 3, 4});
        return curveLink->messages.size() - before;
    };
    EXPECT_EQ(curvesOfAScan(), 0U);
    rig.window.SetThresholdActiveForLevel(false);
    EXPECT_EQ(curvesOfAScan(), 1U);
    rig.window.SetThresholdActiveForLevel(true);
    EXPECT_EQ(curvesOfAScan(), 0U);
    waterfall->SetParameter(MYData<bool>(false, MDT_WindowVisible));
    EXPECT_EQ(curvesOfAScan(), 1U) << "a hidden waterfall draws nothing";
    waterfall->SetParameter(MYData<bool>(true, MDT_WindowVisible));
    EXPECT_EQ(curvesOfAScan(), 0U);
    waterfall.reset();
    rig.link->messages.clear();
    EXPECT_EQ(curvesOfAScan(), 1U) << "one that has gone neither";
    EXPECT_TRUE(rig.link->messages.empty());
}

TEST(Window, ReadsOnlyWhileItIsLookedAt)
{
    struct Case {
        const char *name;
        void (*look)(Rig::Window &, bool);
        std::uint64_t shownAtOnce; // by the ring, before the next pass
    };
    const Case cases[] = {
        {"visible", [](Rig::Window &w, bool look) { w.SetWindowVisible(look); }, 1},
        {"minimised", [](Rig::Window &w, bool look) { w.SetWindowMinimized(!look); }, 1},
        {"measuring", [](Rig::Window &w, bool look) { w.SetMeasureMode(!look); }, 0},
    };
    for (const Case &c : cases) {
        SCOPED_TRACE(c.name);
        Rig rig(2);
        int resets = 0;
        QObject::connect(&rig.window, &sbs::ScanBufferSizeManagerClient::signalResetHistory,
                         [&] { ++resets; });
        rig.show({1, 2});
        c.look(rig.window, false);
        rig.show({3, 4});
        EXPECT_EQ(rig.newestId(), 1U);
        c.look(rig.window, true);
        EXPECT_EQ(rig.newestId(), c.shownAtOnce);
        rig.window.readNewData();
        EXPECT_EQ(rig.newestId(), 2U);
        EXPECT_EQ(resets, 1) << "the pause doesn't count as slow reading";
    }
    Rig rig(2);
    rig.window.SetStatic();
    rig.show({1, 2});
    EXPECT_EQ(rig.newestId(), 0U);
}

TEST(Window, TellsOfItsVisibilityAndOfAdaptersThatGoWithIt)
{
    auto rig = std::make_unique<Rig>(2);
    std::vector<bool> told;
    QObject::connect(&rig->window, &sbs::WindowRelatedQObject::signalVisibilityChanged,
                     [&](bool visible) { told.push_back(visible); });
    QStringList deleted;
    QObject::connect(&rig->window, &sbs::WindowRelatedQObject::signalAdapterDeleted,
                     [&](const QString &adapter) { deleted.push_back(adapter); });
    const auto adapter = rig->add<Waterfall>();
    rig->window.registerAdapter(std::make_shared<sbs::Adapter>("no kind of a window"));
    rig->window.registerAdapter({});
    const std::uint32_t version = rig->window.GetWindowSettingsVersion();
    rig->window.SetWindowVisible(true);
    rig->window.SetWindowVisible(false);
    rig->window.SetWindowVisible(true);
    EXPECT_EQ(rig->window.GetWindowSettingsVersion(), version + 2);
    rig->window.unregisterAdapter("no kind of a window");
    rig.reset();
    EXPECT_THAT(told, ElementsAre(false, true, false)) << "the last one from the destructor";
    EXPECT_EQ(deleted, QStringList({"no kind of a window", "test"}));
}

TEST(Window, TakesTheAxisThatItIsGiven)
{
    Rig rig(4);
    Rig::Window fresh(rig.buffer, QStringLiteral("fresh"), nullptr);
    fresh.slotWorkerThreadStarted();
    fresh.readNewData();
    EXPECT_EQ(fresh.GetXAxis().GetPixelCnt(), 1000) << "its own, as long as it was given none";

    rig.window.SetXRange({5.0, 5.0, 10, 0, 0.0});
    EXPECT_EQ(rig.window.GetXAxis().GetMax(), 4.0) << "that is no axis";
    rig.window.SetXRange({1.0, 3.0, 2, 0, 0.0});
    EXPECT_EQ(rig.window.GetXAxis().GetMin(), 1.0);
    EXPECT_THAT(rig.show({1, 2, 3, 4}), ElementsAre(2, 3));
}

TEST(Window, CompressionCutsThePixels)
{
    Rig rig(4);
    rig.window.SetXRange({0.0, 4.0, 2000, 0, 0.0});
    const std::tuple<const char *, std::vector<int>, int> cases[] = {
        {"cut", {1, 0, 0, 3}, 1000},
        {"out of range: left alone", {9, 0, 0, 3}, 1000},
        {"what was asked for comes back", {0, 0, 0, 3}, 2000}};
    for (const auto &[name, steps, pixels] : cases) {
        rig.window.slotSetDefaultCompression(steps);
        rig.window.readNewData();
        EXPECT_EQ(rig.window.GetXAxis().GetPixelCnt(), pixels) << name;
    }
}

TEST(Window, ManyChannelsSlowTheReadTimer)
{
    const std::pair<unsigned int, int> cases[] = {
        {1000, 20}, {250'000, 20}, {250'001, 200}, {500'000, 200}, {500'001, 500}};
    for (const auto &[channels, milliseconds] : cases) {
        Rig rig(1000, 5);
        rig.buffer->setChannelRangeDefinition(Rig::definitionOf(channels));
        rig.window.slotChannelRangeDefinitionChanged();
        EXPECT_EQ(rig.window.GetProcessSpeed(), milliseconds) << channels;
    }
}

TEST(Window, FitsTheYRangeOnceThereIsOne)
{
    WindowRig<float, values::floatHandler> rig(3);
    std::vector<std::pair<double, double>> told;
    QObject::connect(&rig.window, &sbs::WindowRelatedQObject::signalStartStopRecalculated,
                     [&](double low, double high, short) {
                         told.push_back({low, high});
                     });
    const float nan = std::nanf(""), inf = std::numeric_limits<float>::infinity();
    rig.window.OptimizeMinMax(0);
    rig.show({50, 50, 50});
    rig.show({nan, inf, -inf});
    EXPECT_TRUE(told.empty()) << "there is no range in these";
    rig.show({10, kNone, 60});
    EXPECT_THAT(told, ElementsAre(std::pair(5.0, 65.0))) << "a tenth of 50 is added";
    EXPECT_EQ(rig.window.GetYRange(0), std::pair(5.0, 65.0));
    rig.show({0, 0, 90});
    EXPECT_EQ(told.size(), 1U);
    rig.window.OptimizeMinMax(0);
    rig.scan({nan, 0, 50});
    rig.show({-inf, 100, inf});
    EXPECT_EQ(told.back(), std::pair(-10.0, 110.0)) << "of all finite samples";
}

struct Batches {
    std::vector<int> marks, rows;
    std::string colors;
    bool operator==(const Batches &) const = default;
};

Batches batchesOf(const RecordingLink &link)
{
    Batches batches;
    for (const RecordingLink::Message &message : link.messages) {
        const auto &block = dynamic_cast<const MDataWaterfall &>(*message.data);
        batches.marks.push_back(block.PacketId());
        batches.rows.push_back(int(block.GetLineCnt()));
        batches.colors += block.GetString();
    }
    return batches;
}

TEST(WindowReload, SendsStoredScansInMarkedBatches)
{
    using Numbers = std::vector<int>;
    const std::tuple<int, int, Numbers, Numbers> cases[] = {{20, 10, {1000}, {10}},
                                                            {120, 110, {1, 2, 999}, {50, 50, 10}},
                                                            {120, 100, {1, 999}, {50, 50}},
                                                            {3, 10, {1000}, {3}},
                                                            {3, 0, {}, {}}};
    for (const auto &[scans, asked, marks, rows] : cases) {
        SCOPED_TRACE(asked);
        Rig rig(2, 200);
        const auto waterfall = rig.add<Waterfall>();
        rig.window.SetYRange(0, 12, 0);
        for (int scan = 1; scan <= scans; ++scan)
            rig.scan({short(scan), short(scan)});
        const auto reload = [&](int count) {
            rig.link->messages.clear();
            rig.window.reload(0.0, 2.0, 0, count, 0);
            return batchesOf(*rig.link);
        };
        for (int pass = 0; pass < 3; ++pass)
            rig.window.readNewData();
        const Batches batches = reload(asked);
        EXPECT_EQ(batches.marks, marks);
        EXPECT_EQ(batches.rows, rows);
        // Rows of a short reload, then one of a scan: a ring like no run of scans leaves it.
        reload(10);
        rig.show({0, 0});
        EXPECT_TRUE(asked > scans || reload(asked) == batches);
    }
}

TEST(WindowReload, LeavesTheScanUnderWayWhole)
{
    Rig rig(3, 100);
    const auto waterfall = rig.add<Waterfall>();
    for (int scan = 1; scan <= 60; ++scan)
        rig.show({1, 1, 1});
    rig.begin();
    rig.write(0, {20});
    rig.read();
    rig.window.reload(0.0, 3.0, 0, 50, 0);
    rig.write(1, {30});
    EXPECT_THAT(rig.read(), ElementsAre(20, 30, 1));
}

TEST(WindowReload, MapsScansByTheirOwnChannelsAndFitsTheYRange)
{
    Rig rig(3);
    const auto waterfall = rig.add<Waterfall>();
    rig.scan({100, 100, 100});
    rig.show({200, 200, 200});
    rig.buffer->setChannelRangeDefinition(Rig::definitionOf(3, 700, 1.5));
    rig.scan({300, 300, 300});
    for (int pass = 0; pass < 3; ++pass)
        rig.window.readNewData();
    rig.window.OptimizeMinMax(0);
    rig.window.reload(0.0, 3.0, 0, 2, 0);
    EXPECT_THAT(rig.window.WaterfallYLine(rig.window.GetCurrentLine()), Each(200));
    EXPECT_EQ(rig.window.GetYRange(0), std::pair(9.0, 21.0)) << "from two flat scans";
    rig.window.reload(0.0, 3.0, 0, 3, 0);
    EXPECT_THAT(rig.window.WaterfallYLine(rig.window.GetCurrentLine()), ElementsAre(200, 300, 300));
}

TEST(Window, CountsTrafficAgainstTheTimeOfScans)
{
    Rig rig(2);
    rig.window.AddTraffic(100);
    EXPECT_EQ(rig.window.GetAndResetTraffic(), 0.0) << "no time yet: the bytes are kept";
    rig.window.slotTimeStampNow(10'000'000);
    EXPECT_EQ(rig.window.GetAndResetTraffic(), 0.0) << "nothing to divide by: they are dropped";
    rig.window.AddTraffic(300);
    rig.window.slotTimeStampNow(12'000'000);
    EXPECT_EQ(rig.window.GetAndResetTraffic(), 150.0);
    EXPECT_EQ(rig.window.GetAndResetTraffic(), 0.0) << "no time has passed";
}

/// An adapter that fails on its timer.
class Failing : public sbs::Adapter, public sbs::IDataSourceAdapter {
public:
    Failing() : sbs::Adapter("failing") {}
    Adapter_Type GetType() const override { return AdapterType_XMarker; }
    void SetType(Adapter_Type) override {}
    void process() override
    {
        ++calls;
        throw std::bad_alloc();
    }
    int calls = 0;
};

TEST(Window, SurvivesAnAdapterThatFailsOnATimer)
{
    Rig rig(2);
    const auto failing = std::make_shared<Failing>();
    rig.window.registerAdapter(failing);
    for (int scan = 1; scan <= 2; ++scan) {
        rig.show({1, 2});
        EXPECT_NO_THROW(rig.window.slotTimerChanged());
        EXPECT_EQ(failing->calls, scan);
    }
}

TEST(WindowKeeper, SaysThatTheSystemGivesNoThread)
{
    Rig rig(2);
    sbs::WindowKeeper keeper([&](const QString &guid) {
        return std::make_unique<Rig::Window>(rig.buffer, guid, nullptr);
    });
    pthread_attr_t usual, huge;
    ASSERT_EQ(pthread_getattr_default_np(&usual), 0);
    ASSERT_EQ(pthread_getattr_default_np(&huge), 0);
    pthread_attr_setstacksize(&huge, std::size_t(1) << 50); // more than there are addresses
    ASSERT_EQ(pthread_setattr_default_np(&huge), 0);
    EXPECT_THROW(keeper.createOrGet(QStringLiteral("a")), KRException);
    pthread_setattr_default_np(&usual);
    EXPECT_NE(keeper.createOrGet(QStringLiteral("a")), nullptr) << "the next call tries again";
}

TEST(Window, CursorsStepThroughPixelsChannelsAndMaxima)
{
    Rig rig(8);
    rig.show({10, 50, 20, 20, 70, 70, 30, 90});
    int index = 7;
    EXPECT_FALSE(rig.window.NextPixel(index, true));
    EXPECT_EQ(index, 7);
    EXPECT_TRUE(rig.window.NextPixel(index, false));
    EXPECT_EQ(index, 6);
    EXPECT_EQ(rig.window.GetFrequency4Pixel(6), 6.5);
    EXPECT_EQ(rig.window.GetPixelIndex4Frequency(6.2), 6);
    EXPECT_EQ(rig.window.GetPixelIndex4Frequency(99.0), -1);

    double frequency = 0.5;
    index = 0;
    const auto next = [&](bool forward) {
        rig.window.NextLocalMax(index, frequency, forward);
        return std::pair(index, frequency);
    };
    EXPECT_EQ(next(true), std::pair(1, 1.5));
    EXPECT_EQ(next(true), std::pair(5, 5.5)) << "the last of a flat top";
    EXPECT_EQ(next(true), std::pair(7, 7.5)) << "the end, when it rises to it";
    EXPECT_EQ(next(false), std::pair(4, 4.5));
    rig.window.SetThreshold(100.0);
    EXPECT_EQ(next(true), std::pair(4, 4.0)) << "none above the threshold: the start, cut";
}

TEST(WindowLevels, HaveTheirRangesAndHideWhatIsNotAboveTheThreshold)
{
    sbs::WindowLevels levels;
    using Range = sbs::WindowLevels::Range;
    const Range ranges[] = {{-30, 130}, {0, 255}, {0, 255}, {0, 360}, {0, 90}, {0, 100}};
    for (short dimension = 0; dimension < 6; ++dimension)
        EXPECT_EQ(levels.GetYRange(dimension), ranges[dimension]) << dimension;

    levels.init(2);
    EXPECT_FALSE(levels.filteredByThreshold(-1e30, 0, false)) << "nothing is below the first one";
    levels.SetThreshold(20.0);
    EXPECT_TRUE(levels.filteredByThreshold(20.0, 0, false)) << "at the threshold is not above it";
    EXPECT_FALSE(levels.filteredByThreshold(20.1, 7, false));
    EXPECT_FALSE(levels.filteredByThreshold(-30.0, 0, true)) << "the distance counts";
    levels.SetThresholdActive(false);
    EXPECT_FALSE(levels.filteredByThreshold(-30.0, 0, false));
    EXPECT_TRUE(levels.GetThresholdActive(0)) << "the level has a switch of its own";
    EXPECT_FALSE(levels.GetThresholdActive(1));
    levels.SetThreshold(40.0);
    EXPECT_THAT(levels.GetThresholdLine(), Each(std::numeric_limits<double>::lowest()));
    levels.SetThresholdActive(true);
    EXPECT_THAT(levels.GetThresholdLine(), Each(40.0));
}

} // namespace
