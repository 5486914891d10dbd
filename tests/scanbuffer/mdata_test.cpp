#include "fault.h"
#include "goldenmessages.h"
#include "platform/base/zstdcodec.h"

#include <gtest/gtest.h>

#include <set>
#include <typeinfo>

namespace {

std::unique_ptr<MData> parse(const std::string &bytes)
{
    // A copy of exactly these bytes, so that the address sanitizer sees a read past them.
    const std::vector<char> exact(bytes.begin(), bytes.end());
    return MData::FromBinary(exact.data(), std::int32_t(exact.size()));
}

template <typename Message>
std::unique_ptr<Message> parseAs(const std::string &bytes)
{
    auto message = parse(bytes);
    return std::unique_ptr<Message>(dynamic_cast<Message *>(message.release()));
}

TEST(MData, EveryTypeHasItsBytes)
{
    std::set<int> seen;
    for (const GoldenMessage &row : goldenMessages())
        for (const int type : row.types) {
            SCOPED_TRACE(row.name + ", type " + std::to_string(type));
            const std::string image = row.image(type);
            row.message->SetType(MDataType(type));
            EXPECT_EQ(row.message->GetBinary(), image);
            EXPECT_EQ(row.message->GetBinarySize(), image.size());
            EXPECT_EQ(QByteArray(*row.message).toStdString(), image);

            const auto read = parse(image);
            ASSERT_NE(read, nullptr);
            EXPECT_EQ(read->GetType(), MDataType(type));
            const MData &written = *row.message, &got = *read;
            EXPECT_TRUE(typeid(got) == typeid(written));
            EXPECT_EQ(read->GetBinary(), image);
            seen.insert(type);
        }
    EXPECT_EQ(seen.size(), 77u) << "types 1 to 77";
}

TEST(MData, AShortMessageGivesNothing)
{
    for (const GoldenMessage &row : goldenMessages()) {
        const std::string image = row.image(row.types.front());
        for (std::size_t size = 0; size < image.size(); ++size)
            EXPECT_EQ(parse(image.substr(0, size)), nullptr) << row.name << ", " << size;
        EXPECT_EQ(parse(image.substr(0, image.size() - 1) + ","), nullptr) << row.name;
        EXPECT_EQ(parse(image + "more") == nullptr, row.types.front() == MDT_XMarkerResult);
    }
    EXPECT_EQ(MData::FromBinary(nullptr, 0), nullptr);
    EXPECT_EQ(MData::FromBinary("", -1), nullptr);
}

TEST(MData, TypesThatNobodySends)
{
    EXPECT_EQ(parse(fromHex("00000000 3b")), nullptr);
    EXPECT_EQ(parse(fromHex("4e000000 3b")), nullptr);
    for (const char *type : {"4f000000", "ffffffff"}) {
        const Fault fault = faultOf([type] { parse(fromHex(type)); });
        EXPECT_EQ(fault.reason, "RangeCheck failed for Enum");
        EXPECT_EQ(fault.functionName, "EnumRangeCheck");
    }
    // A marker result that carries a sample can't be told from "nothing there" by its type.
    for (const short sample : {short(5), short(';'), short(0x3b3b)})
        EXPECT_EQ(parse(MYData<short>(sample, MDT_XMarkerResult).GetBinary()), nullptr) << sample;
}

template <typename Message>
std::unique_ptr<Message> parseGolden(const std::string &name)
{
    for (const GoldenMessage &row : goldenMessages())
        if (row.name == name)
            return parseAs<Message>(row.image(row.types.front()));
    return nullptr;
}

TEST(MData, FieldsReadAsTheyWereWritten)
{
    const auto histogram = parseGolden<MDataStaticHistogramWanted>("histogram");
    EXPECT_EQ(std::tuple(histogram->GetWantedId(), histogram->GetX1(), histogram->GetX2(),
                         histogram->GetT1(), histogram->GetT2(), histogram->GetXTile(),
                         histogram->GetY1(), histogram->GetY2(), histogram->GetYTile()),
              std::tuple(5, 1, 2, 10U, 20U, 3, -1, 1, 4));
    const auto area = parseGolden<MDataWaterfallArea>("area");
    EXPECT_EQ(std::tuple(area->XStart(), area->XStop(), area->TMax(), area->TMin(),
                         std::int32_t(area->Scans()), std::int32_t(area->Width())),
              std::tuple(1, 2, 20U, 10U, 100, 800));
    const auto kFactor = parseGolden<MDataKFactor>("k-factor");
    EXPECT_EQ(std::tuple(kFactor->asVector(), kFactor->GetSmooth(), kFactor->GetOffset()),
              std::tuple(std::vector<double>{1, 2}, true, 1));
    const auto channels = parseGolden<MDataChannelRangeDefinition>("channels");
    EXPECT_EQ(channels->getId(), 7);
    EXPECT_EQ(channels->asChannelRangeDefinition().ChannelIdToFrequency(2), 100.025e6);
    const auto range = parseGolden<MXYZData<double, double, short>>("y range");
    EXPECT_EQ(std::tuple(range->GetValue(), range->YValue(), range->ZValue()), std::tuple(1, 2, 3));
    const auto sample = parseGolden<MYData<values::DFSpectrumSample>>("df sample with two waves");
    EXPECT_EQ(sample->GetValue().getSuperResolutionSample()->getWaveCount(), 2u);
}

TEST(MData, SamplesAreRawWhateverTheCompressMode)
{
    const std::string raw = MYData<values::Bearing>({}, MDT_BearingSample).GetBinary();
    values::HandlerBase::SetDataCompressMode(values::DataCompressed);
    EXPECT_EQ(MYData<values::Bearing>({}, MDT_BearingSample).GetBinary(), raw);
    EXPECT_NE(parse(raw), nullptr);
    values::HandlerBase::SetDataCompressMode(values::DataRaw);

    const MXYZData<double, values::Pulse, std::uint64_t> writeOnly(1, {}, 2, MDT_Application2);
    EXPECT_EQ(writeOnly.GetBinarySize(), 4u + 8 + 9 + 8 + 1);
}

TEST(MDataByteArray, PacksOnceAndUnpacksOnDemand)
{
    const QByteArray plain(10000, 'x');
    MDataByteArray message(plain, 1, MDT_CurvePixels);
    const std::string first = message.GetBinary();
    EXPECT_LT(first.size(), 100u);
    EXPECT_EQ(message.GetBinary(), first);
    EXPECT_EQ(message.GetValue(), plain);
    EXPECT_EQ(message.GetBinary(), first);
    EXPECT_EQ(MDataByteArray({}, 0, MDT_CurvePixels).GetValue(), QByteArray());
}

TEST(MDataByteArray, ABrokenFrameReadsAsEmptyAndIsKept)
{
    // Broken magic; a frame that declares 256 MB in 13 bytes; one that is cut.
    for (const char *frame : {"28b52ffe 20 03 190000 616263", "28b52ffd a0 00000010 190000 616263",
                              "28b52ffd 20 03 190000 6162"}) {
        const std::string bytes = fromHex(frame);
        std::string image = fromHex("03000000");
        image += std::string(1, char(bytes.size())) + std::string(3, '\0') + bytes;
        image += std::string(2, '\0') + ";";
        const auto message = parseAs<MDataByteArray>(image);
        ASSERT_NE(message, nullptr) << frame;
        EXPECT_TRUE(message->GetValue().isEmpty());
        EXPECT_EQ(message->GetBinary(), image);
        image[0] = 74;
        EXPECT_EQ(parse(image), nullptr) << "a container unpacks at once";
    }
}

TEST(MDataContainer, HoldsMessagesThatMove)
{
    MDataContainer outer, inner;
    EXPECT_EQ(outer.getMData(0), nullptr);
    inner.addMData(MYData<double>(2.5, MDT_ScansPerSecond));
    outer.addMData(MYData<bool>(true, MDT_WindowVisible));
    EXPECT_NE(outer.getMData(0), nullptr);
    outer.addMData(inner); // the payload grows, and moves, after it was analysed
    outer.GetBinary();     // and is packed
    outer.addMData(MDataId(MDT_RecalculateYRange));
    const MDataContainer copy = outer;
    outer = MDataContainer();

    const auto read = parseAs<MDataContainer>(copy.GetBinary());
    ASSERT_NE(read, nullptr);
    EXPECT_EQ(read->GetAdditional(), 3);
    EXPECT_EQ(read->getMData(2)->GetType(), MDT_RecalculateYRange);
    EXPECT_EQ(read->getMData(0)->GetType(), MDT_WindowVisible);
    const auto nested = read->getMData(1);
    const auto number = dynamic_cast<MDataContainer &>(*nested).getMData(0);
    EXPECT_EQ(dynamic_cast<MYData<double> &>(*number).GetValue(), 2.5);
    EXPECT_EQ(read->getMData(3), nullptr);
    EXPECT_EQ(read->getMData(-1), nullptr);
}

TEST(MDataContainer, ABrokenMessageHidesThoseBehindIt)
{
    const std::string good = MDataId(MDT_XMarkerResult).GetBinary();
    for (const char *broken : {"00000000 3b", "4f000000 3b", "0a000000 3b", "2f000000 3c"}) {
        const std::string plain = good + fromHex(broken) + good;
        MDataByteArray bytes(QByteArray::fromStdString(plain), 3, MDT_Container);
        const auto container = parseAs<MDataContainer>(bytes.GetBinary());
        ASSERT_NE(container, nullptr);
        EXPECT_NE(container->getMData(0), nullptr);
        EXPECT_EQ(container->getMData(1), nullptr) << broken;
        EXPECT_EQ(container->getMData(2), nullptr);
    }
}

TEST(MDataContainer, AContainerInsideUnpacksWhenItIsAsked)
{
    const std::string good = MDataId(MDT_XMarkerResult).GetBinary();
    const std::string broken = fromHex("4a000000 04000000 00000000 0100 3b");
    MDataByteArray bytes(QByteArray::fromStdString(broken + good), 2, MDT_Container);
    const auto outer = parseAs<MDataContainer>(bytes.GetBinary());
    const auto inner = outer->getMData(0);
    EXPECT_EQ(dynamic_cast<MDataContainer &>(*inner).getMData(0), nullptr);
    EXPECT_THROW(dynamic_cast<MDataContainer &>(*inner).addMData(*inner), KRException);
    EXPECT_NE(outer->getMData(1), nullptr) << "what is behind it doesn't suffer";
}

TEST(MDataWaterfall, UnpacksOnDemand)
{
    std::string pixels(2000, 'a');
    // Any other compression than 0 packs in the one way there is.
    MDataWaterfall::Head head{1000, 2, 0, 5, 0, false, {7, 3}};
    const auto read =
        parseAs<MDataWaterfall>(MDataWaterfall(pixels.data(), pixels.size(), head).GetBinary());
    ASSERT_NE(read, nullptr);
    EXPECT_EQ(read->CompressionLevel(), 5);
    EXPECT_EQ(read->GetString(), pixels);
    EXPECT_EQ(read->CompressionLevel(), 0);
    EXPECT_EQ(read->GetString(), pixels);
    EXPECT_EQ(read->size(), QSize(1000, 2));
    EXPECT_EQ(read->GetYoungest(), 7u);
    EXPECT_EQ(read->GetBinarySize(), 4u + 25 - 4 + 16 + 4 + 2000 + 1) << "plain from now on";

    head.width = 999;
    const MDataWaterfall longer(pixels.data(), pixels.size(), head);
    EXPECT_EQ(longer.GetString(), pixels) << "more than the rows hold";
    head.times = {7};
    EXPECT_THROW(MDataWaterfall(pixels.data(), pixels.size(), head), KRException);
}

TEST(MDataAzimuth, PacksOnceAndUnpacksOnDemand)
{
    const std::string image(5000, 'z');
    const MDataAzimuth::Head head{100, 0, 100, 50, 0};
    const MDataAzimuth message(image, head);
    const std::string first = message.GetBinary();
    EXPECT_EQ(message.GetBinary(), first);
    const auto read = parseAs<MDataAzimuth>(first);
    ASSERT_NE(read, nullptr);
    EXPECT_EQ(read->byteCount(), 5000u);
    EXPECT_EQ(read->GetString(), image);
    EXPECT_EQ(read->size(), QSize(100, 50));
    EXPECT_EQ(read->bytesPerLine(), 100u);
}

TEST(PixelMap, HasAStructureImageOfItsOwn)
{
    values::PixelMap map;
    map.axisMin = 1;
    map.axisMax = 2;
    map.pixelCount = 5;
    map.zoomed.emplace_back(1.0, 2.0, 1.0, false);
    const std::string image = Kelm::toStandardString(map);
    EXPECT_EQ(image, fromHex("000000000000f03f 0000000000000040 0500 00 01000000"
                             "000000000000f03f 0000000000000040 000000000000f03f 00"
                             "00000000 3b"));
    const char *cursor = image.data();
    EXPECT_EQ(Kelm::fromCharStream<values::PixelMap>(&cursor), map);
    EXPECT_EQ(cursor, image.data() + image.size());
    const std::string open = image.substr(0, image.size() - 1) + ",";
    cursor = open.data();
    EXPECT_THROW(Kelm::fromCharStream<values::PixelMap>(&cursor), KRException);

    map.zoomed.assign(values::PixelMap::kMaxSections + 1, map.zoomed.front());
    EXPECT_THROW(MYData<values::PixelMap>(map, MDT_PixelMap).GetBinary(), KRException);
}

} // namespace
