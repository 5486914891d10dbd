// The whole road of a scan in one process: from a fast value map through its scan buffer, window,
// adapters and transmission to the consumers of a display.
#include "../platform/transmission_rig.h"
#include "platform/base/bytes.h"
#include "platform/startup/cfgcenter.h"
#include "scanbuffer/dataconsumer.h"
#include "scanbuffer/mdatatypes.h"
#include "scanbuffer/scanbufferdatasource.h"
#include "scanbuffer/waterfall/waterfallcolors.h"
#include "valueclasses/fastvaluemap.h"
#include "windowrig.h"

#include <gtest/gtest.h>

namespace {

constexpr int kChannels = 16, kFirstId = 100; // as WindowRig::definitionOf() has them

/// Keeps the newest of everything that one adapter sends.
class Display final : public DataConsumer {
public:
    Display(Adapter_Type type, sbs::ConsumerGroup &group, QList<QByteArray> parameters)
        : DataConsumer(type), m_parameters(std::move(parameters))
    {
        registerAtGroup(group);
    }

    std::map<int, std::vector<double>> m_curves; // by the number of the curve
    std::string m_row;
    KRTimeStamp m_rowTime = 0;
    std::pair<double, double> m_yRange;
    values::ChannelRangeDefinition m_grid;

protected:
    void handleAdapterReady() override
    {
        for (const QByteArray &parameter : m_parameters)
            sendCommandOverConnector(parameter);
    }
    void handleData(const MData &message) override
    {
        if (const auto *container = dynamic_cast<const MDataContainer *>(&message)) {
            for (short i = 0; i < container->GetAdditional(); ++i)
                handleData(*container->getMData(i));
        } else if (const auto *curve = dynamic_cast<const MDataByteArray *>(&message)) {
            const QByteArray bytes = curve->GetValue();
            std::vector<double> &values = m_curves[curve->GetAdditional()];
            values.clear();
            for (const char *at = bytes.constData(); at < bytes.constData() + bytes.size();)
                values.push_back(Kelm::readLittleEndian<double>(&at));
        } else if (const auto *rows = dynamic_cast<const MDataWaterfall *>(&message)) {
            m_row = rows->GetString().substr(0, std::size_t(rows->size().width()));
            m_rowTime = rows->GetYoungest();
        } else if (const auto *range =
                       dynamic_cast<const MXYZData<double, double, short> *>(&message)) {
            m_yRange = {range->GetValue(), range->YValue()};
        } else if (const auto *grid = dynamic_cast<const MDataChannelRangeDefinition *>(&message)) {
            m_grid = grid->asChannelRangeDefinition();
        }
    }

private:
    const QList<QByteArray> m_parameters;
};

template <typename Pair>
class Road : public testing::Test {
protected:
    using Y = typename Pair::Sample;
    using Handler = typename Pair::Handler;

    static constexpr short kLast = Handler::GetDimensionCnt() - 1;

    Road()
    {
        CfgCenter::GetAppCfg().Set("UseScanBufferServer", true);
        CfgCenter::GetAppCfg().Set("ScanBufferServerEndpoint", "tcp://127.0.0.1:*");
    }
    ~Road() override
    {
        CfgCenter::GetAppCfg().Set("UseScanBufferServer", QVariant());
        CfgCenter::GetAppCfg().Set("ScanBufferServerEndpoint", QVariant());
    }

    static values::ChannelRangeDefinition grid()
    {
        return WindowRig<Y, Handler>::definitionOf(kChannels, kFirstId);
    }
    /// No two channels of a scan have the same samples, nor has a channel in two scans.
    static std::vector<Y> samplesOf(int scan)
    {
        std::vector<Y> samples;
        for (int channel = 0; channel < kChannels; ++channel) {
            samples.push_back(Handler::Minimum());
            for (const short dimension : {short(0), kLast})
                Handler::SetDimensionValue(dimension, samples.back(),
                                           5 * channel + scan + dimension);
        }
        return samples;
    }
    void feed(int scan)
    {
        const std::vector<Y> samples = samplesOf(scan);
        m_map.SetTimeStamp(m_time += 1'000'000);
        m_map.SetChannelValues(kFirstId, kChannels, samples.data());
        m_map.EndOfScan();
    }
    static std::vector<double> levels(int scan, short dimension)
    {
        std::vector<double> levels;
        for (const Y &sample : samplesOf(scan))
            levels.push_back(Handler::GetDimension(dimension, sample));
        return levels;
    }
    static std::string colors(int scan, std::pair<double, double> yRange)
    {
        const sbs::WaterfallColors colors(
            yRange.first, yRange.second,
            sbs::CompressionDetails().GetWaterfallColorResolutionSteps(), 0);
        std::string row;
        for (const double level : levels(scan, 0))
            row += char(colors.ValueToChar(level));
        return row;
    }

    values::FastValueMap<Y, Handler> m_map;
    KRTimeStamp m_time = 0;
};

#define ROAD_NEXT(id, Y, Handler) , values::SamplePair<Y, Handler>
using Pairs =
    typename values::Detail::DropFirst<testing::Types,
                                       void SPECTREE_FOR_EACH_DATA_SOURCE(ROAD_NEXT)>::type;
#undef ROAD_NEXT
TYPED_TEST_SUITE(Road, Pairs, values::SamplePairNames);

TYPED_TEST(Road, ADisplayShowsWhatTheMapWasGiven)
{
    const short last = this->kLast;
    const auto grid = this->grid();
    ASSERT_NE(this->m_map.CreateRealTimeBuffer(), nullptr);
    this->m_map.SetChannelRangeDefinition(grid, 0);
    sbs::ConsumerGroup group(QByteArray::fromStdString(this->m_map.GetRealTimeBufferName()),
                             QStringLiteral("window"));
    const AxisData pixelAChannel{0.0, kChannels, kChannels, 0, 0.0};
    const Display axis(AdapterType_XAxis, group, {MYData<AxisData>(pixelAChannel, MDT_XAxis)});
    Display curve(
        AdapterType_Curve, group,
        {MYData<short>(last, MDT_SecondDimension), MYData<bool>(true, MDT_SecondCurveVisible)});
    Display waterfall(AdapterType_Waterfall, group, {});

    // Scans that come before the parameters don't show them, so feed until one does.
    ASSERT_TRUE(waitFor([&] {
        this->feed(0);
        return curve.m_curves[1] == this->levels(0, last) && waterfall.m_row.size() == kChannels &&
               axis.m_grid == grid;
    }));
    ASSERT_NE(waterfall.m_yRange.first, waterfall.m_yRange.second);
    for (int scan = 1; scan <= 3; ++scan) {
        this->feed(scan);
        const std::string row = this->colors(scan, waterfall.m_yRange);
        waitFor([&] {
            return curve.m_curves[0] == this->levels(scan, 0) &&
                   curve.m_curves[1] == this->levels(scan, last) && waterfall.m_row == row &&
                   waterfall.m_rowTime == this->m_time;
        });
        EXPECT_EQ(curve.m_curves[0], this->levels(scan, 0));
        EXPECT_EQ(curve.m_curves[1], this->levels(scan, last));
        EXPECT_EQ(waterfall.m_row, row);
        EXPECT_EQ(waterfall.m_rowTime, this->m_time);
    }
}

} // namespace
