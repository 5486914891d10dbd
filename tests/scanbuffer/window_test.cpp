#include "windowrig.h"

#include <QCoreApplication>
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <limits>

using testing::Each;
using testing::ElementsAre;
using values::levelHandler;
using Rig = WindowRig<short, levelHandler>;
using Waterfall = sbs::ScanBufferAdapter_Waterfall<short, levelHandler>;
using ScanLine = sbs::ScanBufferAdapter_ScanLine<short, levelHandler>;
using Statistics = sbs::ScanBufferAdapter_Statistics<short, levelHandler>;

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
    rig.scan(samples);
    rig.window.readNewData();
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
    rig.window.readNewData();
    EXPECT_EQ(rig.newestId(), 20U);
    EXPECT_THAT(rig.newest(), ElementsAre(20, 20));
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
    rig.scan({5, 6});
    rig.window.readNewData();
    EXPECT_EQ(rig.newestId(), 2U);
    EXPECT_EQ(rig.window.GetChannelRangeDefinition().GetMinChannelId(), 100U);
    for (int pass = 0; pass < 3; ++pass)
        rig.window.readNewData();
    EXPECT_EQ(rig.newestId(), 3U);
    EXPECT_EQ(rig.window.WaterfallChannelLine(rig.window.GetCurrentLine())[0], 700U);
}

struct EndOfScanCase {
    const char *name;
    bool keepData, keepLines;
    short gapAfterEnd;
};

TEST(Window, GapsShowTheScanBeforeUntilTheEnd)
{
    const EndOfScanCase cases[] = {{"blanked", false, false, kNone},
                                   {"data are kept", true, false, 20},
                                   {"writes are not counted", false, true, 20}};
    for (const EndOfScanCase &c : cases) {
        SCOPED_TRACE(c.name);
        Rig rig(3);
        rig.buffer->setKeepScanDataAfterEndOfScan(c.keepData);
        rig.buffer->setKeepNoOverwriteWFLines(c.keepLines);
        rig.scan({10, 20, 30});
        rig.window.readNewData();
        rig.begin();
        rig.write(0, {11});
        rig.window.readNewData();
        EXPECT_THAT(rig.newest(), ElementsAre(11, 20, 30));
        rig.write(2, {31});
        rig.window.readNewData();
        EXPECT_THAT(rig.newest(), ElementsAre(11, 20, 31)) << "only the new stretch is folded";
        rig.buffer->endOfScan();
        rig.window.readNewData();
        EXPECT_THAT(rig.newest(), ElementsAre(11, c.gapAfterEnd, 31));
    }
}

TEST(Window, AvoidingTheMaximumTakesTheLastSample)
{
    Rig rig(4);
    rig.window.SetXRange({0.0, 4.0, 1, 0, 0.0});
    rig.scan({10, 40, 20, kNone});
    rig.window.readNewData();
    EXPECT_THAT(rig.newest(), ElementsAre(40));
    rig.buffer->setAvoidSettingMaxValueDuringScan(true);
    rig.scan({10, 40, 20, kNone});
    rig.window.readNewData();
    EXPECT_THAT(rig.newest(), ElementsAre(kNone));
}

TEST(Window, ClearedScanDataLeaveNothingOfTheScanBefore)
{
    Rig rig(2);
    rig.scan({10, 20});
    rig.window.readNewData();
    rig.buffer->setClearScanData(true);
    rig.begin();
    rig.write(0, {11});
    rig.window.readNewData();
    EXPECT_THAT(rig.newest(), ElementsAre(11, kNone));
}

TEST(Window, CallsAdaptersOnlyForAChange)
{
    Rig rig(4);
    const auto waterfall = rig.add<Waterfall>();
    rig.window.readNewData();
    const std::size_t before = rig.link->messages.size();
    rig.scan({1, 2, 3, 4});
    rig.window.readNewData();
    EXPECT_EQ(rig.link->messages.size(), before + 1);
    for (int pass = 0; pass < 3; ++pass)
        rig.window.readNewData();
    EXPECT_EQ(rig.link->messages.size(), before + 1) << "the scan has ended, nothing is new";
    rig.begin();
    rig.write(0, {5});
    rig.window.readNewData();
    rig.buffer->endOfScan();
    rig.window.readNewData();
    EXPECT_EQ(rig.link->messages.size(), before + 3) << "the end of a scan is a change";
    rig.window.readNewData();
    EXPECT_EQ(rig.link->messages.size(), before + 3);
}

TEST(Window, TheWaterfallDrawsTheCurveWhenBothShowTheSame)
{
    Rig rig(4);
    const auto scanLine = rig.add<ScanLine>();
    const auto curveLink = rig.link;
    const auto waterfall = rig.add<Waterfall>();
    rig.window.readNewData();
    const std::size_t curves = curveLink->messages.size();
    rig.scan({1, 2, 3, 4});
    rig.window.readNewData();
    EXPECT_EQ(curveLink->messages.size(), curves);
    rig.window.SetThresholdActiveForLevel(false);
    rig.scan({1, 2, 3, 4});
    rig.window.readNewData();
    EXPECT_EQ(curveLink->messages.size(), curves + 1);
}

TEST(Window, ReadsOnlyWhileItIsLookedAt)
{
    struct Case {
        const char *name;
        void (*hide)(Rig::Window &);
        void (*show)(Rig::Window &);
    };
    const Case cases[] = {
        {"visible", [](Rig::Window &w) { w.SetWindowVisible(false); },
         [](Rig::Window &w) { w.SetWindowVisible(true); }},
        {"minimised", [](Rig::Window &w) { w.SetWindowMinimized(true); },
         [](Rig::Window &w) { w.SetWindowMinimized(false); }},
        {"measuring", [](Rig::Window &w) { w.SetMeasureMode(true); },
         [](Rig::Window &w) { w.SetMeasureMode(false); }},
    };
    for (const Case &c : cases) {
        SCOPED_TRACE(c.name);
        Rig rig(2);
        int resets = 0;
        QObject::connect(&rig.window, &sbs::ScanBufferSizeManagerClient::signalResetHistory,
                         [&] { ++resets; });
        rig.scan({1, 2});
        rig.window.readNewData();
        c.hide(rig.window);
        rig.scan({3, 4});
        rig.window.readNewData();
        EXPECT_EQ(rig.newestId(), 1U);
        c.show(rig.window);
        rig.window.readNewData();
        EXPECT_EQ(rig.newestId(), 2U);
        EXPECT_EQ(resets, 1) << "the pause doesn't count as slow reading";
    }
    Rig rig(2);
    rig.window.SetStatic();
    rig.scan({1, 2});
    rig.window.readNewData();
    EXPECT_EQ(rig.newestId(), 0U);
}

TEST(Window, TellsOfItsVisibility)
{
    auto rig = std::make_unique<Rig>(2);
    std::vector<bool> told;
    QObject::connect(&rig->window, &sbs::WindowRelatedQObject::signalVisibilityChanged,
                     [&](bool visible) { told.push_back(visible); });
    const std::uint32_t version = rig->window.GetWindowSettingsVersion();
    rig->window.SetWindowVisible(true);
    rig->window.SetWindowVisible(false);
    rig->window.SetWindowVisible(true);
    EXPECT_EQ(rig->window.GetWindowSettingsVersion(), version + 2);
    rig.reset();
    EXPECT_THAT(told, ElementsAre(false, true, false)) << "the last one from the destructor";
}

TEST(Window, KeepsItsAxisUntilItIsGivenOneThatIs)
{
    Rig rig(4);
    rig.window.SetXRange({5.0, 5.0, 10, 0, 0.0});
    EXPECT_EQ(rig.window.GetXAxis().GetMax(), 4.0);
    rig.window.SetXRange({1.0, 3.0, 2, 0, 0.0});
    EXPECT_EQ(rig.window.GetXAxis().GetMin(), 1.0);
    EXPECT_EQ(rig.window.GetXAxis().GetPixelCnt(), 2);
    rig.scan({1, 2, 3, 4});
    rig.window.readNewData();
    EXPECT_THAT(rig.newest(), ElementsAre(2, 3));
}

TEST(Window, CompressionCutsThePixels)
{
    Rig rig(4);
    rig.window.SetXRange({0.0, 4.0, 2000, 0, 0.0});
    EXPECT_EQ(rig.window.GetXAxis().GetPixelCnt(), 2000);
    rig.window.slotSetDefaultCompression({1, 0, 0, 3});
    rig.window.readNewData();
    EXPECT_EQ(rig.window.GetXAxis().GetPixelCnt(), 1000);
    rig.window.slotSetDefaultCompression({9, 0, 0, 3});
    EXPECT_EQ(rig.window.GetWaterfallColorResolutionSteps(), 255) << "out of range: left alone";
    rig.window.slotSetDefaultCompression({0, 0, 0, 3});
    rig.window.readNewData();
    EXPECT_EQ(rig.window.GetXAxis().GetPixelCnt(), 2000) << "what was asked for comes back";
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
    Rig rig(3);
    std::vector<std::pair<double, double>> told;
    QObject::connect(&rig.window, &sbs::WindowRelatedQObject::signalStartStopRecalculated,
                     [&](double low, double high, short) {
                         told.push_back({low, high});
                     });
    rig.window.OptimizeMinMax(0);
    rig.scan({500, 500, 500});
    rig.window.readNewData();
    EXPECT_TRUE(told.empty()) << "a flat scan has no range";
    rig.scan({100, kNone, 600});
    rig.window.readNewData();
    EXPECT_THAT(told, ElementsAre(std::pair(5.0, 65.0))) << "a tenth of 50 is added";
    EXPECT_EQ(rig.window.GetYRange(0), std::pair(5.0, 65.0));
    rig.scan({0, 0, 900});
    rig.window.readNewData();
    EXPECT_EQ(told.size(), 1U);
}

TEST(Window, ReloadSendsStoredScansInMarkedBatches)
{
    struct Case {
        int scans, asked;
        std::vector<int> marks, rows;
    };
    const Case cases[] = {
        {20, 10, {1000}, {10}},
        {120, 110, {1, 2, 999}, {50, 50, 10}},
        {120, 100, {1, 999}, {50, 50}},
        {3, 10, {1000}, {3}},
        {3, 0, {}, {}},
    };
    for (const Case &c : cases) {
        SCOPED_TRACE(c.asked);
        Rig rig(2, 200);
        const auto waterfall = rig.add<Waterfall>();
        for (int scan = 1; scan <= c.scans; ++scan)
            rig.scan({short(scan), short(scan)});
        rig.window.readNewData();
        rig.link->messages.clear();
        rig.window.reload(0.0, 2.0, 0, c.asked, 0);
        std::vector<int> marks, rows;
        for (const QByteArray &bytes : rig.link->messages) {
            const auto message = MData::FromBinary(bytes.data(), bytes.size());
            const auto *block = dynamic_cast<const MDataWaterfall *>(message.get());
            ASSERT_NE(block, nullptr);
            marks.push_back(block->PacketId());
            rows.push_back(int(block->GetLineCnt()));
        }
        EXPECT_EQ(marks, c.marks);
        EXPECT_EQ(rows, c.rows);
    }
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

TEST(Window, AdaptersThatHaveGoneReadAsAbsent)
{
    Rig rig(2);
    auto waterfall = rig.add<Waterfall>();
    const auto link = rig.link;
    rig.scan({1, 2});
    rig.window.readNewData();
    waterfall.reset();
    link->messages.clear();
    rig.scan({3, 4});
    rig.window.readNewData();
    EXPECT_TRUE(link->messages.empty());
    rig.window.registerAdapter({});
    rig.window.registerAdapter(std::make_shared<sbs::Adapter>("no kind of a window"));
}

TEST(Window, CursorsStepThroughPixelsChannelsAndMaxima)
{
    Rig rig(8);
    rig.scan({10, 50, 20, 20, 70, 70, 30, 90});
    rig.window.readNewData();
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

TEST(WindowLevels, TablesOfRangesAndThresholds)
{
    sbs::WindowLevels levels;
    using Range = sbs::WindowLevels::Range;
    EXPECT_EQ(levels.GetYRange(0), Range(-30, 130));
    EXPECT_EQ(levels.GetYRange(1), Range(0, 255));
    EXPECT_EQ(levels.GetYRange(3), Range(0, 360));
    EXPECT_EQ(levels.GetYRange(4), Range(0, 90));
    EXPECT_EQ(levels.GetYRange(5), Range(0, 100));
    EXPECT_FALSE(levels.SetYRange({-30, 130}, 0)) << "the same";
    EXPECT_TRUE(levels.SetYRange({0, 255}, 1)) << "there was no entry";

    levels.init(2);
    EXPECT_FALSE(levels.filteredByThreshold(-1e30, 0, false)) << "nothing is below the first one";
    levels.SetThreshold(20.0);
    EXPECT_TRUE(levels.filteredByThreshold(20.0, 0, false)) << "at the threshold is not above it";
    EXPECT_FALSE(levels.filteredByThreshold(20.1, 7, false));
    EXPECT_FALSE(levels.filteredByThreshold(-30.0, 0, true)) << "the distance counts";
    levels.SetThresholdActive(false);
    EXPECT_FALSE(levels.filteredByThreshold(-30.0, 0, false));
    EXPECT_THAT(levels.GetThresholdLine(), Each(std::numeric_limits<double>::lowest()));
    EXPECT_TRUE(levels.GetThresholdActive(0)) << "the level has a switch of its own";
    EXPECT_FALSE(levels.GetThresholdActive(1));
    levels.SetThreshold(40.0);
    EXPECT_THAT(levels.GetThresholdLine(), Each(std::numeric_limits<double>::lowest()));
    levels.SetThresholdActive(true);
    EXPECT_THAT(levels.GetThresholdLine(), Each(40.0));
}

} // namespace
