#include "platform/base/bytes.h"
#include "scanbuffer/mdatatypes.h"
#include "scanbuffer/scanbuffer_connector_xrange.h"
#include "scanbuffer/scanbuffer_connector_yrange.h"
#include "windowrig.h"

#include <gtest/gtest.h>

#include <cmath>

namespace {

using sbs::SendMode;
using values::Bearing;
using values::BearingHandler;
using values::levelHandler;
using YRange = MXYZData<double, double, short>;

/// A window on this thread over a buffer of three channels, a pixel each, with one adapter.
template <template <typename, typename> class Adapter, typename Y = short,
          typename YHandler = levelHandler>
struct Rig : WindowRig<Y, YHandler> {
    Rig() : WindowRig<Y, YHandler>(3) {}

    void command(const MData &message) { adapter->slotCommand(message); }
    std::size_t count() const { return this->link->messages.size(); }
    template <typename Message>
    const Message &last(SendMode mode, MDataType type) const
    {
        EXPECT_GT(count(), 0U);
        EXPECT_EQ(int(this->link->messages.back().mode), int(mode));
        EXPECT_EQ(this->link->messages.back().data->GetType(), type);
        return dynamic_cast<const Message &>(*this->link->messages.back().data);
    }

    std::shared_ptr<Adapter<Y, YHandler>> adapter = this->template add<Adapter<Y, YHandler>>();
};

MYData<bool> flag(MDataType type, bool value) { return {value, type}; }
MYData<short> dimension(short value) { return {value, MDT_Dimension}; }

std::vector<double> levels(const MData &message)
{
    const QByteArray bytes = dynamic_cast<const MDataByteArray &>(message).GetValue();
    std::vector<double> values;
    for (const char *at = bytes.constData(); at < bytes.constData() + bytes.size();)
        values.push_back(Kelm::readLittleEndian<double>(&at));
    return values;
}

TEST(Adapters, DropWhatDoesNotParse)
{
    Rig<sbs::ScanBufferAdapter_Waterfall> rig;
    for (const QByteArray &bad : {QByteArray(), QByteArray("\x0a\0\0\0", 4),
                                  QByteArray("\xff\xff\xff\xff;"), QByteArray("\x0a\0\0\0\0,", 6)})
        EXPECT_NO_THROW(rig.adapter->slotCommand(bad));
    // A carrier that doesn't belong to its type, made in this process.
    EXPECT_NO_THROW(rig.adapter->SetParameter(MYData<double>(0, MDT_WindowVisible)));
    EXPECT_TRUE(rig.adapter->IsVisible());
    rig.command(dimension(3));
    EXPECT_EQ(rig.adapter->GetDimension(), 0) << "levels have one dimension";
    EXPECT_EQ(rig.count(), 0u);
}

/// Counts the commands that get through.
class CountingAdapter final : public DataSourceAdapter {
public:
    CountingAdapter() : DataSourceAdapter(AdapterType_None, nullptr, "counting") {}
    void SetParameter(const MData &) override { ++m_count; }

    int m_count = 0;
};

TEST(Adapters, TakeNoContainers)
{
    MDataContainer container;
    container.addMData(flag(MDT_WindowVisible, false));
    CountingAdapter adapter;
    adapter.slotCommand(flag(MDT_WindowVisible, false));
    adapter.slotCommand(container);
    EXPECT_EQ(adapter.m_count, 1);
}

TEST(Adapters, WithoutAWindowTheyAreSilent)
{
    const auto link = std::make_shared<RecordingLink>();
    sbs::ScanBufferAdapter_Waterfall<short, levelHandler> waterfall(nullptr, "a");
    sbs::ScanBufferAdapter_XRange<short, levelHandler> xRange(nullptr, "b");
    sbs::ScanBufferAdapter_Statistics<short, levelHandler> statistics(nullptr, "c");
    waterfall.attach(link);
    xRange.attach(link);
    statistics.attach(link);
    waterfall.process({0}, {1}, 3, 1, false, false, 0);
    waterfall.slotRequestFullStateUpdate();
    waterfall.SetParameter(flag(MDT_MeasureMode, true));
    xRange.slotRequestFullStateUpdate();
    xRange.SetParameter(flag(MDT_WindowVisible, false));
    statistics.process();
    EXPECT_TRUE(link->messages.empty());
}

TEST(WaterfallAdapter, SendsRowsWithTheirTimeAndCountsThem)
{
    Rig<sbs::ScanBufferAdapter_Waterfall> rig;
    rig.window.SetYRange(0, 100, 0);
    rig.show({0, 500, 1000});
    const auto &rows = rig.last<MDataWaterfall>(SendMode::massdata, MDT_WaterfallLines);
    EXPECT_EQ(rows.size(), QSize(3, 1));
    EXPECT_EQ(rows.GetTime(), std::vector<KRTimeStamp>{1000000});
    EXPECT_EQ(rows.GetString(), std::string("\x00\x7f\xff", 3)) << "255 steps: 127/255";

    const std::size_t before = rig.count();
    for (const bool visible : {false, true}) {
        rig.command(flag(MDT_WindowVisible, visible));
        rig.show({1, 2, 3});
        EXPECT_EQ(rig.count(), before + (visible ? 1 : 0));
    }
    EXPECT_FALSE(rig.adapter->connectionLost());
}

TEST(WaterfallAdapter, HandsParametersOnAndTellsItsState)
{
    Rig<sbs::ScanBufferAdapter_Waterfall, Bearing, BearingHandler> rig;
    rig.command(dimension(4));
    EXPECT_EQ(rig.adapter->GetDimension(), 4);
    rig.command(MYData<KRTimeStamp>(77, MDT_TimeLine));
    EXPECT_EQ(rig.window.GetTimeLine(), 77u);
    rig.command(flag(MDT_MeasureMode, true));
    EXPECT_TRUE(rig.window.GetMeasureMode());

    rig.adapter->slotRequestFullStateUpdate();
    const auto &state = rig.last<MDataContainer>(SendMode::fullState, MDT_Container);
    ASSERT_EQ(state.GetAdditional(), 2);
    EXPECT_EQ(dynamic_cast<MYData<AxisData> &>(*state.getMData(0)).GetValue(),
              rig.window.GetXAxis().GetAxisDefinitionSet(true));
    const auto range = state.getMData(1);
    const auto &y = dynamic_cast<YRange &>(*range);
    EXPECT_EQ(std::tuple(y.GetValue(), y.YValue(), y.ZValue()), std::tuple(0, 90, 4));

    Q_EMIT rig.window.signalStartStopRecalculated(1, 2, 3);
    EXPECT_EQ(rig.last<YRange>(SendMode::incrementalState, MDT_YRange).YValue(), 2);
    rig.adapter->sendXAxisDefinitionSet();
    rig.last<MYData<AxisData>>(SendMode::incrementalState, MDT_XAxis);
}

TEST(CurveAdapter, SendsExactLevels)
{
    Rig<sbs::ScanBufferAdapter_ScanLine> rig;
    rig.show({-1, levelHandler::Minimum(), 1234});
    const auto sent = levels(rig.last<MDataByteArray>(SendMode::massdata, MDT_CurvePixels));
    ASSERT_EQ(sent.size(), 3u);
    EXPECT_EQ(sent[0], -0.1);
    EXPECT_TRUE(std::isnan(sent[1]));
    EXPECT_EQ(sent[2], 123.4);

    const std::size_t before = rig.count();
    for (const MDataType type : {MDT_FirstCurveVisible, MDT_WindowVisible}) {
        rig.command(flag(type, false));
        rig.adapter->process({rig.window.GetCurrentLine()}, 3, false);
        rig.command(flag(type, true));
        rig.adapter->process({}, 3, false);
        EXPECT_EQ(rig.count(), before) << type;
    }
    rig.adapter->slotRequestFullStateUpdate();
    EXPECT_EQ(rig.last<MYData<AxisData>>(SendMode::fullState, MDT_XAxis).GetValue().pixelCount, 3);
}

TEST(CurveAdapter, TwoDimensionsAreTwoCurves)
{
    Rig<sbs::ScanBufferAdapter_ScanLine, Bearing, BearingHandler> rig;
    rig.command(MYData<short>(3, MDT_SecondDimension));
    rig.command(flag(MDT_SecondCurveVisible, true));
    EXPECT_TRUE(rig.adapter->Get2ndCurveVisible());
    Bearing sample;
    sample.level = 5000;
    sample.azimuth = 9000;
    sample.quality = 1;
    Bearing none = sample;
    none.quality = 0;
    rig.show({sample, none, Bearing{}});
    ASSERT_EQ(rig.count(), 2u);
    const MData &first = *rig.link->messages[0].data, &second = *rig.link->messages[1].data;
    EXPECT_EQ(dynamic_cast<const MDataByteArray &>(first).GetAdditional(), 0);
    EXPECT_EQ(levels(first)[1], 50.0);
    EXPECT_EQ(dynamic_cast<const MDataByteArray &>(second).GetAdditional(), 1);
    EXPECT_EQ(levels(second)[0], 90.0);
    EXPECT_EQ(levels(second)[1], -1.0);
    EXPECT_TRUE(std::isnan(levels(second)[2]));
}

TEST(XRangeAdapter, TakesTheAxisAndTellsTheChannels)
{
    Rig<sbs::ScanBufferAdapter_XRange> rig;
    rig.command(MYData<short>(-7, MDT_Echo));
    EXPECT_EQ(rig.last<MYData<short>>(SendMode::massdataStateIndependent, MDT_Echo).GetValue(), -7);

    rig.adapter->SendChannelRangeDefinition();
    using Channels = MDataChannelRangeDefinition;
    const int id =
        rig.last<Channels>(SendMode::incrementalState, MDT_ChannelRangeDefinition).getId();
    EXPECT_FALSE(rig.adapter->IsAcknowledged());
    rig.command(MYData<int>(id, MDT_ChannelRangeAcknowledged));
    EXPECT_TRUE(rig.adapter->IsAcknowledged());

    rig.adapter->slotRequestFullStateUpdate();
    const auto &state = rig.last<MDataContainer>(SendMode::fullState, MDT_Container);
    EXPECT_EQ(state.getMData(0)->GetType(), MDT_XAxis);
    const auto channels = state.getMData(1);
    const auto &definition = dynamic_cast<Channels &>(*channels);
    EXPECT_EQ(definition.getId(), id + 1);
    EXPECT_EQ(definition.asChannelRangeDefinition(), rig.window.GetChannelRangeDefinition());

    rig.command(MYData<AxisData>({1.0, 2.0, 5, 0, 0.0}, MDT_XAxis));
    EXPECT_EQ(rig.window.GetXAxis().GetPixelCnt(), 5);
    rig.command(flag(MDT_UseAxisCalculatorForWidget, true));
    EXPECT_TRUE(rig.window.GetUseAxisCalculatorForWidget());
    rig.command(flag(MDT_WindowMinimized, true));
    EXPECT_TRUE(rig.window.GetWindowMinimized());
    rig.command(flag(MDT_WindowVisible, false));
    EXPECT_FALSE(rig.window.GetWindowVisible());
}

TEST(YRangeAdapter, SetsAndTellsTheRangeOfItsDimension)
{
    Rig<sbs::ScanBufferAdapter_YRange, Bearing, BearingHandler> rig;
    rig.command(YRange(10, -10, 5, MDT_YRange));
    rig.command(YRange(std::nan(""), 1, 5, MDT_YRange));
    EXPECT_EQ(rig.window.GetYRange(5), std::pair(10.0, -10.0)) << "NaN is dropped";

    rig.command(dimension(4));
    short asked = -1;
    QObject::connect(&rig.window, &sbs::WindowRelatedQObject::signalYRangeRecalculated,
                     [&asked](short which) { asked = which; });
    rig.command(MDataId(MDT_RecalculateYRange));
    EXPECT_EQ(asked, 4);
    Q_EMIT rig.window.signalStartStopRecalculated(1, 2, 0);
    EXPECT_EQ(rig.count(), 0u) << "of another dimension";
    Q_EMIT rig.window.signalStartStopRecalculated(1, 2, 4);
    EXPECT_EQ(rig.last<YRange>(SendMode::massdataStateIndependent, MDT_YRange).ZValue(), 4);
}

TEST(StatisticsAdapter, TellsRateRowsAndTraffic)
{
    Rig<sbs::ScanBufferAdapter_Statistics> rig;
    Q_EMIT rig.window.signalScansPerSecond(12.5);
    rig.window.slotTimeStampNow(1000000);
    rig.adapter->process();
    ASSERT_EQ(rig.count(), 3u);
    const auto mode = SendMode::massdataStateIndependent;
    EXPECT_EQ(rig.last<MYData<double>>(mode, MDT_Traffic).GetValue(), 0);
    const MData &rate = *rig.link->messages[0].data, &rows = *rig.link->messages[1].data;
    EXPECT_EQ(rate.GetType(), MDT_ScansPerSecond);
    EXPECT_EQ(dynamic_cast<const MYData<double> &>(rate).GetValue(), 12.5);
    EXPECT_EQ(rows.GetType(), MDT_WaterfallScansPerLine);
    EXPECT_EQ(dynamic_cast<const MYData<unsigned short> &>(rows).GetValue(), 1);
}

} // namespace
