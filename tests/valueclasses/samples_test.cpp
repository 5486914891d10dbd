#include "platform/base/krexception.h"
#include "samplegoldens.h"

#include <gtest/gtest.h>

#include <cmath>
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

template <typename Function>
std::string reasonOf(Function function)
{
    try {
        function();
    } catch (const KRException &error) {
        return error.what();
    }
    return "nothing thrown";
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
    const std::string rawImage = goldens::bytes(golden.raw);
    struct Case {
        char mode;
        std::string image, back;
    };
    for (const Case &c :
         {Case{DataRaw, rawImage, rawImage},
          Case{DataCompressed, goldens::bytes(golden.compressed), goldens::bytes(golden.back)}}) {
        SCOPED_TRACE(int(c.mode));
        const InMode mode(c.mode);
        std::size_t consumed = 0;

        EXPECT_EQ(binary<Handler>(sample), c.image);
        EXPECT_EQ(raw(parsed<Handler>(c.image, consumed)), c.back);
        EXPECT_EQ(consumed, c.image.size());
        EXPECT_EQ(raw(sample), rawImage) << "messages are raw in every mode";
        EXPECT_EQ(rawImageSize(sample), rawImage.size());
    }
}

TYPED_TEST(EverySample, RefusesBytesThatEndEarly)
{
    using Handler = typename TypeParam::Handler;
    for (const char modeNumber : {DataRaw, DataCompressed}) {
        const InMode mode(modeNumber);
        const std::string image = binary<Handler>(Golden<Handler>::sample());
        for (std::size_t length = 0; length < image.size(); ++length) {
            const std::string cut = image.substr(0, length);
            const Kelm::ReadScope scope(cut.data(), cut.size());
            const char *cursor = cut.data();
            bool ok = true;
            EXPECT_THROW(Handler::FromBinary(&cursor, ok, 0), KRException) << length;
            EXPECT_EQ(cursor, cut.data());
        }
    }
}

TYPED_TEST(EverySample, HasAMinimumThatItsOwnFormKeeps)
{
    using Handler = typename TypeParam::Handler;
    const typename TypeParam::Sample minimum = Handler::Minimum();
    EXPECT_TRUE(minimum <= Golden<Handler>::sample());
    EXPECT_TRUE(minimum < Golden<Handler>::sample());
    for (const char modeNumber : {DataRaw, DataCompressed}) {
        const InMode mode(modeNumber);
        const std::string image = binary<Handler>(minimum);
        std::size_t consumed = 0;
        EXPECT_EQ(image.size(), Handler::SizeOf());
        EXPECT_EQ(raw(parsed<Handler>(image, consumed)), raw(minimum));
    }
}

TEST(Samples, HaveTheNumbersOfTheirPairs)
{
    struct Row {
        std::string_view name;
        int id, dimensions;
        std::size_t image, compressed;
        bool operator==(const Row &) const = default;
    };
    std::vector<Row> rows;
    const InMode mode(DataCompressed);
#define ROW(Y, Handler)                                                                            \
    rows.push_back({pairName<Handler>, Handler::GetId(), Handler::GetDimensionCnt(), imageSize<Y>, \
                    Handler::SizeOf()});
    SPECTREE_FOR_EACH_SAMPLE_PAIR(ROW)
#undef ROW
    const std::vector<Row> expected = {{"charHandler", 100, 1, 1, 1},
                                       {"levelHandler", 102, 1, 2, 1},
                                       {"shortHandler", 101, 1, 2, 2},
                                       {"longHandler", 103, 1, 4, 4},
                                       {"floatHandler", 104, 1, 4, 4},
                                       {"floatPercentHandler", 105, 1, 4, 4},
                                       {"doubleHandler", 106, 1, 8, 8},
                                       {"BearingHandler", 107, 6, 16, 4},
                                       {"MinMaxHandler", 108, 2, 4, 4},
                                       {"ElevOverAziMinMaxHandler", 109, 2, 4, 4},
                                       {"PulseHandler", 111, 5, 9, 9},
                                       {"BearingExtendedHandler", 110, 8, 19, 6},
                                       {"DFSpectrumSampleHandler", 112, 6, 14, 14}};
    EXPECT_EQ(rows, expected);
}

TEST(Samples, ReadNothingInAnUnknownMode)
{
    const InMode mode(2);
    const std::string image(19, '\1');
    std::size_t consumed = 1;
    EXPECT_EQ(parsed<levelHandler>(image, consumed), -9999);
    EXPECT_EQ(consumed, 0U);
    EXPECT_EQ(raw(parsed<BearingHandler>(image, consumed)), raw(Bearing()));
    EXPECT_EQ(consumed, 0U);
    EXPECT_EQ(raw(parsed<BearingExtendedHandler>(image, consumed)), raw(BearingExtended()));
    EXPECT_EQ(consumed, 0U);
    EXPECT_EQ(binary<BearingHandler>(Bearing()).size(), 16U);
    EXPECT_EQ(levelHandler::SizeOf(), 2U);
}

TEST(Samples, CompressALevelToOneByte)
{
    struct Case {
        short level;
        const char *byte;
        short back;
    };
    const InMode mode(DataCompressed);
    for (const Case &c : {Case{-9999, "80", -9999},
                          {-32768, "80", -9999},
                          {-9998, "81", -1270},
                          {1275, "7f", 1270},
                          {-1275, "81", -1270},
                          {-1285, "81", -1270},
                          {32767, "7f", 1270},
                          {-19, "ff", -10},
                          {9, "00", 0}}) {
        std::size_t consumed = 0;
        EXPECT_EQ(binary<levelHandler>(c.level), goldens::bytes(c.byte)) << c.level;
        EXPECT_EQ(parsed<levelHandler>(goldens::bytes(c.byte), consumed), c.back);
    }
}

TEST(Samples, CompressABearingWithoutSpillingIntoNeighbours)
{
    struct Case {
        const char *name;
        Bearing sample;
        std::int16_t level;
        std::uint16_t azimuth;
        std::int16_t elevation, quality;
    };
    const InMode mode(DataCompressed);
    for (const Case &c :
         {Case{"largest of all", {0, 0, 32767, 65535, 32767, 32767}, 31200, 51100, 12700, 127},
          {"level at the offset is invalid", {0, 0, -19900, 9000, 0, 50}, -32768, 9000, 0, 50},
          {"lowest level", {0, 0, -19899, 9000, 0, 50}, -19800, 9000, 0, 50},
          {"invalid level", {0, 0, -32768, 9000, 0, 50}, -32768, 9000, 0, 50},
          {"negative quality", {0, 0, 100, 9000, 100, -1}, 100, 9000, 100, 0},
          {"negative elevation borrows", {0, 0, 100, 9000, -100, 5}, 100, 8900, 12700, 5}}) {
        SCOPED_TRACE(c.name);
        std::size_t consumed = 0;
        const Bearing back = parsed<BearingHandler>(binary<BearingHandler>(c.sample), consumed);
        EXPECT_EQ(std::tuple(back.level, back.azimuth, back.elevation, back.quality),
                  std::tuple(c.level, c.azimuth, c.elevation, c.quality));
    }
}

TEST(Samples, CompressAnExtendedBearing)
{
    struct Case {
        int validity;
        std::int16_t level;
        int validityBack;
        std::int16_t levelBack;
    };
    const InMode mode(DataCompressed);
    // The bit of 0x10 is lost: the reader's mask is 0x6F.
    for (const Case &c : {Case{2, -1234, 2, -1200},
                          {1, -32768, 1, -32768},
                          {255, 32767, 0x6F, 31200},
                          {0x10, -19900, 0, -32768}}) {
        std::size_t consumed = 0;
        BearingExtended sample;
        sample.validity = BearingExtended::Validity(c.validity);
        sample.shortTimeLevel = c.level;
        const auto back =
            parsed<BearingExtendedHandler>(binary<BearingExtendedHandler>(sample), consumed);
        EXPECT_EQ(int(back.validity), c.validityBack);
        EXPECT_EQ(back.shortTimeLevel, c.levelBack);
        EXPECT_EQ(consumed, 6U);
    }
}

TEST(Samples, CompareWithAllAsymmetries)
{
    struct Verdict {
        bool less, lessOrEqual, equal;
        bool operator==(const Verdict &) const = default;
    };
    const auto verdict = [](const auto &a, const auto &b) {
        EXPECT_NE(a == b, a != b);
        return Verdict{a < b, a <= b, a == b};
    };
    const Bearing weak{0, 0, 100, 1, 0, 5}, strong{0, 0, 200, 1, 0, 90}, none{0, 0, 900, 1, 0, 0};
    EXPECT_EQ(verdict(weak, strong), (Verdict{true, true, false}));
    EXPECT_EQ(verdict(none, weak), (Verdict{true, true, false}));
    EXPECT_EQ(verdict(weak, none), (Verdict{false, false, false}));
    EXPECT_EQ(verdict(weak, Bearing{7, 8, 100, 1, 9, 5}), (Verdict{false, true, true}));
    EXPECT_EQ(verdict(weak, Bearing{0, 0, 100, 2, 0, 5}), (Verdict{false, true, false}));
    EXPECT_EQ(verdict(BearingExtended{weak, BearingExtended::Validity::valid, 5},
                      BearingExtended{weak, BearingExtended::Validity::blank, 6}),
              (Verdict{false, true, true}));

    EXPECT_EQ(verdict(MinMax(1, 5), MinMax(9, 5)), (Verdict{false, true, true}));
    EXPECT_EQ(verdict(MinMax(9, 4), MinMax(1, 5)), (Verdict{true, true, false}));

    Pulse counted(10, 20, 1, 0, 0);
    counted.pulseCount = 9;
    EXPECT_EQ(verdict(Pulse(10, 20, 1, 3, 4), counted), (Verdict{false, true, true}));
    EXPECT_EQ(verdict(Pulse(10, 20, 1, 0, 0), Pulse(10, 99, 1, 0, 0)),
              (Verdict{false, true, false}));

    const auto df = [](short level, short quality) {
        DFSpectrumSample sample;
        sample.setLevel(level);
        sample.setQuality(quality);
        return sample;
    };
    EXPECT_EQ(verdict(df(500, 1), df(100, 2)), (Verdict{true, false, false}));
    EXPECT_EQ(verdict(df(100, 2), df(500, 1)), (Verdict{false, true, false}));
    EXPECT_EQ(verdict(df(100, 2), df(200, 2)), (Verdict{true, true, false}));
}

TEST(Samples, ReadAndWriteDimensions)
{
    constexpr double kLowest = std::numeric_limits<double>::lowest();
    const auto bearing = Golden<BearingHandler>::sample();
    Bearing without = bearing;
    without.quality = 0;
    const double bearingFacets[] = {45.67, 1, -2, 123.45, 6.78, 90};
    for (int i = 0; i < 6; ++i)
        EXPECT_EQ(BearingHandler::GetDimension(i, bearing), bearingFacets[i]) << i;
    EXPECT_EQ(BearingHandler::GetDimension(3, without), -1.0);
    EXPECT_EQ(BearingHandler::GetDimension(4, without), -1.0);
    EXPECT_EQ(BearingHandler::GetDimension(0, without), 45.67);

    const auto df = Golden<DFSpectrumSampleHandler>::sample();
    const double dfFacets[] = {1.0, 1, -0.01, 360, -0.05, 99, 0.02};
    for (int i = 0; i < 7; ++i)
        EXPECT_EQ(DFSpectrumSampleHandler::GetDimension(i, df), dfFacets[i]) << i;
    EXPECT_TRUE(std::isnan(DFSpectrumSampleHandler::GetDimension(7, df)));

    const Pulse fresh;
    const double freshFacets[] = {kLowest, kLowest, 0.0, 3276.7, 0};
    const double pulseFacets[] = {-1.0, 20.0, 7, 10.0, 513};
    for (int i = 0; i < 5; ++i) {
        EXPECT_EQ(PulseHandler::GetDimension(i, fresh), freshFacets[i]) << i;
        EXPECT_EQ(PulseHandler::GetDimension(i, Golden<PulseHandler>::sample()), pulseFacets[i]);
    }
    EXPECT_EQ(levelHandler::GetDimension(0, 123), 12.3);
    EXPECT_EQ(BearingExtendedHandler::GetDimension(6, {bearing, BearingExtended::Validity(2), 150}),
              2.0);
    EXPECT_EQ(BearingExtendedHandler::GetDimension(7, {bearing, BearingExtended::Validity(2), 150}),
              1.5);
    EXPECT_EQ(ElevOverAziMinMaxHandler::GetDimension(0, MinMax(1, 2)), 2.0);
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
    EXPECT_EQ(raw(df), goldens::bytes("00 0d 00 0d 00 0d 00 0d 00 0d 00 09 00 00"));

    Pulse pulse;
    for (int i = 0; i < 5; ++i)
        PulseHandler::SetDimensionValue(i, pulse, 3.19);
    EXPECT_EQ(raw(pulse), goldens::bytes("1f 00 1f 00 1f 00 03 00 03"));
}

TYPED_TEST(EverySample, SaysThatADimensionIsNotThere)
{
    using Handler = typename TypeParam::Handler;
    using Sample = typename TypeParam::Sample;
    if constexpr (!std::is_same_v<Sample, DFSpectrumSample>) {
        const std::string type = std::is_base_of_v<Bearing, Sample>   ? "Bearing"
                                 : std::is_same_v<Sample, MinMax>     ? "MinMax"
                                 : std::is_same_v<Sample, Pulse>      ? "Pulse"
                                 : std::is_same_v<Sample, Kelm::Long> ? "long"
                                 : std::is_same_v<Sample, char>       ? "char"
                                 : std::is_same_v<Sample, short>      ? "short"
                                 : std::is_same_v<Sample, float>      ? "float"
                                                                      : "double";
        const std::string count = type == "Bearing"                     ? "six dimensions!"
                                  : type == "MinMax" || type == "Pulse" ? "two dimensions!"
                                                                        : "one dimension!";
        const std::string start = "Base Type for ValueMap is " + type + " and has only ";
        const std::string setting = start + (type == "Pulse" ? "7 dimensions!" : count);
        Sample sample = Golden<Handler>::sample();
        QString text = QStringLiteral("as it was");
        const bool plain = std::is_arithmetic_v<Sample> || type == "long";
        const int past = Handler::GetDimensionCnt();
        for (const int dimension : {-1, past}) {
            EXPECT_EQ(reasonOf([&] { Handler::GetDimension(dimension, sample); }), start + count);
            const std::string setReason =
                reasonOf([&] { Handler::SetDimensionValue(dimension, sample, 0.0); });
            EXPECT_EQ(setReason, plain ? "nothing thrown" : setting);
            if (Handler::GetId() == 109)
                continue; // its text never looks at the dimension
            EXPECT_EQ(
                reasonOf([&] { Handler::GetFormattedString(dimension, text, sample, 0, nullptr); }),
                setting);
            EXPECT_EQ(text, QStringLiteral("as it was"));
        }
    }
    SUCCEED();
}

TEST(Samples, NameTheirFaultAsTracesKnowIt)
{
    Bearing sample;
    QString text;
    const auto tags = [](auto function) {
        try {
            function();
        } catch (const KRException &error) {
            return error.GetClassName() + " " + error.GetFunctionName();
        }
        return std::string();
    };
    EXPECT_EQ(tags([&] { BearingHandler::GetDimension(6, sample); }),
              "doubleHandler doubleHandler::GetDimension");
    EXPECT_EQ(tags([&] { BearingHandler::SetDimensionValue(6, sample, 0); }),
              "doubleHandler doubleHandler::GetDimension");
    EXPECT_EQ(tags([&] { BearingHandler::GetFormattedString(6, text, sample, 0, nullptr); }),
              "BearingHandler BearingHandler::GetDimension");
    BearingExtended extended;
    EXPECT_EQ(tags([&] { BearingExtendedHandler::SetDimensionValue(6, extended, 0); }),
              "doubleHandler doubleHandler::GetDimension");
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
    waves.setQuality(many, 7);
    EXPECT_EQ(waves.getWaveCount(), 5U);
    waves.setQuality(gap, 5);
    EXPECT_EQ(waves.getWaveCount(), 2U);
    waves.setQuality(gap, 1);
    EXPECT_EQ(waves.getWaveCount(), 1U);
}

TEST(SuperResolution, ReadsMoreWavesThanItKeeps)
{
    std::string image = goldens::bytes("07 03");
    for (char number = 0; number < 5 * 7; ++number)
        image += {number, 0};
    const Kelm::ReadScope scope(image.data(), image.size());
    const char *cursor = image.data();
    const auto waves = SuperResolutionSample::FromBinary(&cursor);
    EXPECT_EQ(cursor, image.data() + image.size());
    EXPECT_EQ(waves.getWaveCount(), 5U);
    EXPECT_EQ(waves.getFieldStrength(), (SuperResolutionSample::Entries{7, 8, 9, 10, 11}));
    EXPECT_EQ(waves.getQuality(), (SuperResolutionSample::Entries{28, 29, 30, 31, 32}));

    const std::string one = goldens::bytes("01 02 05 00 06 00 07 00 08 00 09 00");
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
