#include "fault.h"
#include "samplegoldens.h"

#include <gmock/gmock.h>

#include <cmath>
#include <functional>
#include <limits>
#include <tuple>

namespace values {
namespace {

using goldens::Golden;

/// The process-wide mode, put back at the end of a test.
struct InMode {
    explicit InMode(char mode) { HandlerBase::SetDataCompressMode(mode); }
    ~InMode() { HandlerBase::SetDataCompressMode(DataRaw); }
};

template <typename Handler, typename Y>
std::string binary(const Y &sample)
{
    char buffer[64];
    return {buffer, Handler::ToBinary(buffer, sample)};
}

template <typename Y>
std::string raw(const Y &sample)
{
    char buffer[64];
    return {buffer, toRawImage(buffer, sample)};
}

template <typename Handler>
auto parsed(const std::string &image, std::size_t &consumed)
{
    const Kelm::ReadScope scope(image.data(), image.size());
    const char *cursor = image.data();
    bool ok = true;
    auto sample = Handler::FromBinary(&cursor, ok, 0);
    EXPECT_TRUE(ok);
    consumed = std::size_t(cursor - image.data());
    return sample;
}

template <typename Handler, typename Y>
std::tuple<short, unsigned short, short, short> fields(const Y &sample)
{
    std::size_t consumed = 0;
    const auto back = parsed<Handler>(binary<Handler>(sample), consumed);
    return {back.level, back.azimuth, back.elevation, back.quality};
}

template <typename Pair>
class EverySample : public testing::Test {
};
TYPED_TEST_SUITE(EverySample, SamplePairList<testing::Types>, SamplePairNames);

TYPED_TEST(EverySample, HasTheBytesWrittenDown)
{
    using Handler = typename TypeParam::Handler;
    const auto golden = Golden<Handler>::bytes();
    const auto sample = Golden<Handler>::sample();
    const typename TypeParam::Sample minimum = Handler::Minimum();
    EXPECT_TRUE(minimum <= sample && minimum < sample);
    const std::string rawImage = fromHex(golden.raw);
    for (const auto &[modeNumber, image, back] :
         {std::tuple(DataRaw, rawImage, rawImage),
          {DataCompressed, fromHex(golden.compressed), fromHex(golden.back)}}) {
        SCOPED_TRACE(int(modeNumber));
        const InMode mode(modeNumber);
        std::size_t consumed = 0;
        EXPECT_EQ(binary<Handler>(sample), image);
        EXPECT_EQ(raw(parsed<Handler>(image, consumed)), back);
        EXPECT_EQ(consumed, image.size());
        EXPECT_EQ(raw(sample), rawImage) << "messages are raw in every mode";
        EXPECT_EQ(rawImageSize(sample), rawImage.size());

        const std::string least = binary<Handler>(minimum);
        EXPECT_EQ(least.size(), Handler::SizeOf());
        EXPECT_EQ(raw(parsed<Handler>(least, consumed)), raw(minimum));
        for (std::size_t length = 0; length < image.size(); ++length) {
            const Kelm::ReadScope scope(image.data(), length);
            const char *cursor = image.data();
            bool ok = true;
            EXPECT_THROW(Handler::FromBinary(&cursor, ok, 0), KRException) << length;
            EXPECT_EQ(cursor, image.data());
        }
    }
}

TEST(Samples, ReadNothingInAnUnknownMode)
{
    const InMode mode(2);
    const std::string image(19, '\1');
    std::size_t level = 1, bearing = 1, extended = 1;
    EXPECT_EQ(parsed<levelHandler>(image, level), -9999);
    EXPECT_EQ(raw(parsed<BearingHandler>(image, bearing)), raw(Bearing()));
    EXPECT_EQ(raw(parsed<BearingExtendedHandler>(image, extended)), raw(BearingExtended()));
    EXPECT_EQ(level + bearing + extended, 0U);
    EXPECT_EQ(binary<BearingHandler>(Bearing()).size(), 16U);
}

TEST(Samples, CompressALevelToOneByte)
{
    const InMode mode(DataCompressed);
    for (const auto &[level, byte, back] :
         {std::tuple<short, const char *, short>(-9999, "80", -9999),
          {-32768, "80", -9999},
          {-9998, "81", -1270},
          {1275, "7f", 1270},
          {-1275, "81", -1270},
          {-1285, "81", -1270},
          {32767, "7f", 1270},
          {-19, "ff", -10},
          {9, "00", 0}}) {
        std::size_t consumed = 0;
        EXPECT_EQ(binary<levelHandler>(level), fromHex(byte)) << level;
        EXPECT_EQ(parsed<levelHandler>(fromHex(byte), consumed), back);
    }
}

TEST(Samples, CompressABearingWithoutSpillingIntoNeighbours)
{
    struct Case {
        const char *name;
        Bearing sample;
        std::tuple<short, unsigned short, short, short> back;
    };
    const InMode mode(DataCompressed);
    for (const Case &c :
         {Case{"largest of all", {0, 0, 32767, 65535, 32767, 32767}, {31200, 51100, 12700, 127}},
          {"level at the offset is invalid", {0, 0, -19900, 9000, 0, 50}, {-32768, 9000, 0, 50}},
          {"lowest level", {0, 0, -19899, 9000, 0, 50}, {-19800, 9000, 0, 50}},
          {"invalid level", {0, 0, -32768, 9000, 0, 50}, {-32768, 9000, 0, 50}},
          {"negative quality", {0, 0, 100, 9000, 100, -1}, {100, 9000, 100, 0}},
          {"negative elevation borrows", {0, 0, 100, 9000, -100, 5}, {100, 8900, 12700, 5}}})
        EXPECT_EQ(fields<BearingHandler>(c.sample), c.back) << c.name;
}

TEST(Samples, CompressAnExtendedBearing)
{
    using Fields = std::pair<int, short>;
    const InMode mode(DataCompressed);
    // The bit of 0x10 is lost: the reader's mask is 0x6F.
    for (const auto &[written, read] : {std::pair(Fields(2, -1234), Fields(2, -1200)),
                                        {{1, -32768}, {1, -32768}},
                                        {{255, 32767}, {0x6F, 31200}},
                                        {{0x10, -19900}, {0, -32768}}}) {
        std::size_t consumed = 0;
        const BearingExtended sample{{}, BearingExtended::Validity(written.first), written.second};
        const auto back =
            parsed<BearingExtendedHandler>(binary<BearingExtendedHandler>(sample), consumed);
        EXPECT_EQ(Fields(int(back.validity), back.shortTimeLevel), read);
        EXPECT_EQ(consumed, 6U);
    }
}

TEST(Samples, CompareWithAllAsymmetries)
{
    const auto verdict = [](const auto &a, const auto &b) {
        EXPECT_NE(a == b, a != b);
        return std::string(a < b ? "< " : "") + (a <= b ? "<= " : "") + (a == b ? "==" : "");
    };
    const Bearing weak{0, 0, 100, 1, 0, 5}, strong{0, 0, 200, 1, 0, 90}, none{0, 0, 900, 1, 0, 0};
    EXPECT_EQ(verdict(weak, strong), "< <= ");
    EXPECT_EQ(verdict(none, weak), "< <= ");
    EXPECT_EQ(verdict(weak, none), "");
    EXPECT_EQ(verdict(weak, Bearing{7, 8, 100, 1, 9, 5}), "<= ==");
    EXPECT_EQ(verdict(weak, Bearing{0, 0, 100, 2, 0, 5}), "<= ");
    EXPECT_EQ(verdict(BearingExtended{weak, BearingExtended::Validity::valid, 5},
                      BearingExtended{weak, BearingExtended::Validity::blank, 6}),
              "<= ==");
    EXPECT_EQ(verdict(MinMax(1, 5), MinMax(9, 5)), "<= ==");
    EXPECT_EQ(verdict(MinMax(9, 4), MinMax(1, 5)), "< <= ");
    Pulse counted(10, 20, 1, 0, 0);
    counted.pulseCount = 9;
    EXPECT_EQ(verdict(Pulse(10, 20, 1, 3, 4), counted), "<= ==");
    EXPECT_EQ(verdict(Pulse(10, 20, 1, 0, 0), Pulse(10, 99, 1, 0, 0)), "<= ");
    const auto df = [](short level, short quality) {
        DFSpectrumSample sample;
        sample.setLevel(level);
        sample.setQuality(quality);
        return sample;
    };
    EXPECT_EQ(verdict(df(500, 1), df(100, 2)), "< ");
    EXPECT_EQ(verdict(df(100, 2), df(500, 1)), "<= ");
    EXPECT_EQ(verdict(df(100, 2), df(200, 2)), "< <= ");
}

template <typename Handler, typename Y>
std::vector<double> dimensions(const Y &sample, int count = Handler::GetDimensionCnt())
{
    std::vector<double> all;
    for (int i = 0; i < count; ++i)
        all.push_back(Handler::GetDimension(i, sample));
    return all;
}

TEST(Samples, TellTheirDimensions)
{
    using All = std::vector<double>;
    constexpr double kLowest = std::numeric_limits<double>::lowest();
    Bearing bearing = Golden<BearingHandler>::sample();
    EXPECT_EQ(dimensions<BearingHandler>(bearing), (All{45.67, 1, -2, 123.45, 6.78, 90}));
    EXPECT_EQ(dimensions<BearingExtendedHandler>(
                  BearingExtended{bearing, BearingExtended::Validity(2), 150}),
              (All{45.67, 1, -2, 123.45, 6.78, 90, 2, 1.5}));
    bearing.quality = 0;
    EXPECT_EQ(dimensions<BearingHandler>(bearing), (All{45.67, 1, -2, -1, -1, 0}));
    const auto df = Golden<DFSpectrumSampleHandler>::sample();
    EXPECT_EQ(dimensions<DFSpectrumSampleHandler>(df, 7),
              (All{1.0, 1, -0.01, 360, -0.05, 99, 0.02}));
    EXPECT_TRUE(std::isnan(DFSpectrumSampleHandler::GetDimension(7, df)));
    EXPECT_EQ(dimensions<PulseHandler>(Pulse()), (All{kLowest, kLowest, 0.0, 3276.7, 0}));
    EXPECT_EQ(dimensions<PulseHandler>(Golden<PulseHandler>::sample()),
              (All{-1.0, 20.0, 7, 10.0, 513}));
    EXPECT_EQ(dimensions<levelHandler>(short(123)), All{12.3});
    EXPECT_EQ(dimensions<ElevOverAziMinMaxHandler>(MinMax(1, 2)).front(), 2.0);
}

template <typename Handler, typename Y>
std::string afterSetting(Y sample, int dimension, double value)
{
    Handler::SetDimensionValue(dimension, sample, value);
    return Handler::ToString(sample);
}

TEST(Samples, CutWhatIsSetToTheField)
{
    EXPECT_EQ(afterSetting<charHandler>(char(0), 0, 65.9), "A;");
    EXPECT_EQ(afterSetting<shortHandler>(short(0), 0, -2.9), "-2;");
    EXPECT_EQ(afterSetting<shortHandler>(short(0), 0, 1e9), "32767;");
    EXPECT_EQ(afterSetting<shortHandler>(short(0), 0, std::nan("")), "0;");
    EXPECT_EQ(afterSetting<longHandler>(Kelm::Long(), 0, -1e300), "-2147483648;");
    EXPECT_EQ(afterSetting<levelHandler>(short(0), 0, 12.39), "12.3;");
    MinMax minMax;
    MinMaxHandler::SetDimensionValue(0, minMax, 12.0);
    EXPECT_EQ(MinMaxHandler::GetDimension(0, minMax), 1.2);
    const char *const bearings[] = {"[dt:0 D:0 Level:1234 Az:0 El:0 Qual:0]",
                                    "[dt:12 D:0 Level:-32768 Az:0 El:0 Qual:0]",
                                    "[dt:0 D:12 Level:-32768 Az:0 El:0 Qual:0]",
                                    "[dt:0 D:0 Level:-32768 Az:1234 El:0 Qual:0]",
                                    "[dt:0 D:0 Level:-32768 Az:0 El:1234 Qual:0]",
                                    "[dt:0 D:0 Level:-32768 Az:0 El:0 Qual:12]"};
    for (int i = 0; i < 6; ++i)
        EXPECT_EQ(afterSetting<BearingHandler>(Bearing(), i, 12.349), bearings[i]);
    BearingExtended extended;
    BearingExtendedHandler::SetDimensionValue(7, extended, 1.509);
    EXPECT_EQ(extended.getShortTimeLevel(), 150);

    DFSpectrumSample df;
    for (int i : {0, 2, 3, 4, 6})
        DFSpectrumSampleHandler::SetDimensionValue(i, df, 0.126);
    DFSpectrumSampleHandler::SetDimensionValue(5, df, 9.9);
    DFSpectrumSampleHandler::SetDimensionValue(1, df, 2.0);
    DFSpectrumSampleHandler::SetDimensionValue(7, df, 2.0);
    EXPECT_EQ(raw(df), fromHex("00 0d 00 0d 00 0d 00 0d 00 0d 00 09 00 00"));

    Pulse pulse;
    for (int i = 0; i < 5; ++i)
        PulseHandler::SetDimensionValue(i, pulse, 3.19);
    EXPECT_EQ(raw(pulse), fromHex("1f 00 1f 00 1f 00 03 00 03"));
}

TYPED_TEST(EverySample, RefusesADimensionThatIsNotThere)
{
    using Handler = typename TypeParam::Handler;
    if (Handler::GetId() == 112)
        return; // gives no number, and prints all whatever the dimension is
    auto sample = Golden<Handler>::sample();
    QString text = QStringLiteral("as it was");
    for (const int dimension : {-1, Handler::GetDimensionCnt()}) {
        const std::string fault = faultOf([&] { Handler::GetDimension(dimension, sample); }).reason;
        EXPECT_THAT(fault, testing::HasSubstr("Base Type for ValueMap is "));
        if (Handler::GetId() != 109) { // its text never looks at the dimension
            EXPECT_NE(faultOf([&] {
                          Handler::GetFormattedString(dimension, text, sample, 0, nullptr);
                      }).reason,
                      "");
        }
        EXPECT_EQ(text, QStringLiteral("as it was"));
    }
}

TEST(Samples, NameTheirFaultAsTracesKnowIt)
{
    Bearing bearing;
    BearingExtended extended;
    Pulse pulse;
    QString text;
    const std::string base = "Base Type for ValueMap is ";
    const std::string six = base + "Bearing and has only six dimensions!";
    struct {
        Fault fault;
        std::string handler, reason;
    } const rows[] = {
        {faultOf([&] { BearingHandler::GetDimension(6, bearing); }), "doubleHandler", six},
        {faultOf([&] { BearingExtendedHandler::SetDimensionValue(6, extended, 0); }),
         "doubleHandler", six},
        {faultOf([&] { BearingHandler::GetFormattedString(6, text, bearing, 0, nullptr); }),
         "BearingHandler", six},
        {faultOf([&] { PulseHandler::SetDimensionValue(5, pulse, 0); }), "",
         base + "Pulse and has only 7 dimensions!"},
    };
    for (const auto &row : rows) {
        EXPECT_EQ(row.fault.reason, row.reason);
        if (!row.handler.empty()) {
            EXPECT_EQ(row.fault.className, row.handler) << row.reason;
            EXPECT_EQ(row.fault.functionName, row.handler + "::GetDimension");
        }
    }
}

TEST(Samples, PrintOneLine)
{
    EXPECT_EQ(charHandler::ToString('x'), "x;");
    EXPECT_EQ(levelHandler::ToString(-123), "-12.3;");
    EXPECT_EQ(longHandler::ToString(-7), "-7;");
    EXPECT_EQ(floatHandler::ToString(1.5F), "1.500000;");
    EXPECT_EQ(floatHandler::ToString(2e10F), "20000000000.000000;");
    EXPECT_EQ(doubleHandler::ToString(2e10), "2e+10;");
    EXPECT_EQ(MinMaxHandler::ToString({-1, 2}), "[Level min:-1 Level max:2]");
    EXPECT_EQ(PulseHandler::ToString(Golden<PulseHandler>::sample()),
              "[Level:-10 Pulse: T:7 L:100-200 PD:%5-%6]");
    EXPECT_EQ(BearingExtendedHandler::ToString(Golden<BearingExtendedHandler>::sample()),
              "[dt:1 D:-2 Level:4567 Az:12345 El:678 Qual:90 Validity:blank ShortTimeLevel:-1234]");
    EXPECT_EQ(DFSpectrumSampleHandler::ToString(Golden<DFSpectrumSampleHandler>::sample()),
              "[Level:100 Az:36000 El:-5 Qual:99]");
}

template <typename Handler, typename Y>
std::string tooltip(int dimension, Y sample, int angleMode = 0, const char *unitName = "dBm")
{
    const QString unit = QString::fromUtf8(unitName);
    QString text;
    const QString &result = Handler::GetFormattedString(dimension, text, sample, angleMode, &unit);
    EXPECT_EQ(&result, &text);
    return text.toStdString();
}

TEST(Samples, PrintATooltip)
{
    EXPECT_EQ(tooltip<levelHandler>(0, short(123)), "-94.7 dBm");
    EXPECT_EQ(tooltip<levelHandler>(0, short(123), 0, "dBµV"), "12.3 dBµV");
    EXPECT_EQ(tooltip<shortHandler>(0, short(110)), "3 dBm");
    EXPECT_EQ(tooltip<doubleHandler>(0, 1.25, 0, "dBm"), "1.3 dBm");
    EXPECT_EQ(tooltip<floatPercentHandler>(0, 12.5F), "12.5 %");
    EXPECT_EQ(tooltip<MinMaxHandler>(1, MinMax(-15, 25)), "2.5 dBm\n-1.5 dBm");
    EXPECT_EQ(tooltip<ElevOverAziMinMaxHandler>(9, MinMax(50, 30)), "30.0 °\n50.0 %");
    EXPECT_EQ(tooltip<PulseHandler>(4, Golden<PulseHandler>::sample()), "-108.0 dBm\n-87.0 dBm");

    const Bearing bearing{3, 4, 10700, 18050, 1230, 80};
    Bearing without = bearing, below = bearing, beyond = bearing;
    without.quality = 0;
    below.elevation = -1;
    beyond.azimuth = 36000;
    EXPECT_EQ(tooltip<BearingHandler>(0, bearing), "0.0 dBm\n180.5  °\n80 %");
    EXPECT_EQ(tooltip<BearingHandler>(3, bearing, 2), "0.0 dBm\n-179.5  °\n80 %");
    EXPECT_EQ(tooltip<BearingHandler>(3, without), "0.0 dBm\n-\n0 %");
    EXPECT_EQ(tooltip<BearingHandler>(3, without, 1), "0.0 dBm\n180.5  °\n0 %");
    EXPECT_EQ(tooltip<BearingHandler>(0, beyond), "0.0 dBm\n-\n0 %");
    EXPECT_EQ(tooltip<BearingHandler>(1, bearing), "3");
    EXPECT_EQ(tooltip<BearingHandler>(2, bearing), "4");
    EXPECT_EQ(tooltip<BearingHandler>(4, bearing), "12.3  °\n0.0 dBm\n80 %");
    EXPECT_EQ(tooltip<BearingHandler>(4, below), "0.0 dBm\n-\n0 %");
    EXPECT_EQ(tooltip<BearingHandler>(5, bearing), "80 %");

    BearingExtended extended{bearing, BearingExtended::Validity::valid, 1070};
    EXPECT_EQ(tooltip<BearingExtendedHandler>(6, extended),
              "0.0 dBm\n180.5  °\n80 %\nvalid\nShort-Time: 10.7 dBm");
    extended.shortTimeLevel = -32768;
    extended.validity = BearingExtended::Validity(3);
    EXPECT_EQ(tooltip<BearingExtendedHandler>(5, extended), "80 %\nunknown validity!");

    DFSpectrumSample df = Golden<DFSpectrumSampleHandler>::sample();
    df.setAzimuth(18050);
    EXPECT_EQ(tooltip<DFSpectrumSampleHandler>(99, df, 2),
              "-106.0 dBm\n-179.5 °\n0.0 dBµV/m\n99 %\nvalid\nShort-Time: -0.0 dBm");
    df.setQuality(0);
    df.setShortTimeLevel(-32768);
    df.setValidity(DFSpectrumSample::Validity::invalid);
    EXPECT_EQ(tooltip<DFSpectrumSampleHandler>(0, df), "-106.0 dBm\n0.0 dBµV/m\n0 %\ninvalid");
}

TEST(Samples, ShareALevelUnitButForSpectraOfBearings)
{
    MinMaxHandler::SetSuffix(QStringLiteral("dBm"));
    DFSpectrumSampleHandler::SetLevelUnit(QStringLiteral("dBµV"));
    EXPECT_EQ(levelHandler::GetLevelUnit(), QStringLiteral("dBm"));
    EXPECT_EQ(DFSpectrumSampleHandler::GetLevelUnit(), QStringLiteral("dBµV"));
    HandlerBase::SetLevelUnit(QString());
    DFSpectrumSampleHandler::SetLevelUnit(QString());
}

TEST(SuperResolution, CountsLeadingQualities)
{
    SuperResolutionSample waves;
    const std::int16_t many[] = {1, 2, 3, 4, 5, 6, 7}, gap[] = {9, 9, 0, 9, 9};
    waves.setLevel(many, 7);
    EXPECT_EQ(waves.getWaveCount(), 0U);
    EXPECT_EQ(waves.getLevel(), (SuperResolutionSample::Entries{1, 2, 3, 4, 5}));
    for (const auto &[qualities, given, counted] :
         {std::tuple(many, 7U, 5U), {gap, 5U, 2U}, {gap, 1U, 1U}}) {
        waves.setQuality(qualities, given);
        EXPECT_EQ(waves.getWaveCount(), counted);
    }
}

TEST(SuperResolution, ReadsMoreWavesThanItKeeps)
{
    std::string image = fromHex("07 03");
    for (char number = 0; number < 5 * 7; ++number)
        image += {number, 0};
    const Kelm::ReadScope scope(image.data(), image.size());
    const char *cursor = image.data();
    const auto waves = SuperResolutionSample::FromBinary(&cursor);
    EXPECT_EQ(cursor, image.data() + image.size());
    EXPECT_EQ(waves.getWaveCount(), 5U);
    EXPECT_EQ(waves.getFieldStrength(), (SuperResolutionSample::Entries{7, 8, 9, 10, 11}));
    EXPECT_EQ(waves.getQuality(), (SuperResolutionSample::Entries{28, 29, 30, 31, 32}));

    const std::string one = fromHex("01 02 05 00 06 00 07 00 08 00 09 00");
    cursor = one.data();
    const auto single = SuperResolutionSample::FromBinary(&cursor);
    EXPECT_EQ(single.getLevel(),
              (SuperResolutionSample::Entries{5, -32768, -32768, -32768, -32768}));
    EXPECT_EQ(single.getAzimuth(), (SuperResolutionSample::Entries{7, 0, 0, 0, 0}));
}

TEST(SuperResolution, IsCopiedWithItsSample)
{
    const DFSpectrumSample original = Golden<DFSpectrumSampleHandler>::sample();
    DFSpectrumSample copy = original, assigned;
    assigned.createSuperResolutionSample();
    assigned = original;
    copy.createSuperResolutionSample();
    EXPECT_EQ(copy.getSuperResolutionSample()->getWaveCount(), 0U);
    EXPECT_EQ(raw(original), raw(assigned));
    EXPECT_NE(original.getSuperResolutionSample(), assigned.getSuperResolutionSample());
    const DFSpectrumSample &itself = assigned;
    assigned = itself;
    EXPECT_EQ(raw(original), raw(assigned));
    assigned = DFSpectrumSample();
    EXPECT_FALSE(assigned.isSuperResolutionSampleSet());
    EXPECT_EQ(assigned.serializedSize(), 14U);
    EXPECT_EQ(original.serializedSize(), 36U);
}

} // namespace
} // namespace values
