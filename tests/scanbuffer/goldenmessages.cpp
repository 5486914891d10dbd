#include "goldenmessages.h"

#include "valueclasses/samplegoldens.h"

namespace {

using namespace values;

template <typename Message, typename... Fields>
std::shared_ptr<MData> make(Fields &&...fields)
{
    return std::make_shared<Message>(std::forward<Fields>(fields)...);
}

template <typename T>
std::shared_ptr<MData> value(T fields)
{
    return std::make_shared<MYData<T>>(fields, MDT_None);
}

PixelMap pixelMap()
{
    PixelMap map;
    map.axisMin = 1;
    map.axisMax = 2;
    map.pixelCount = 800;
    map.flags = 1;
    map.suppressed.emplace_back(1.0, 2.0, 1.0, true);
    return map;
}

/// The lists of the pixel map have room for 22 sections of 25 bytes.
std::string pixelMapPayload()
{
    const std::string head = fromHex("000000000000f03f 0000000000000040 2003 01");
    const std::string section = fromHex("000000000000f03f 0000000000000040 000000000000f03f 01");
    return head + std::string(4, '\0') + std::string(550, '\0') + fromHex("01000000") + section +
           std::string(525, '\0') + ";";
}

ChannelRangeDefinition ranges()
{
    ChannelRangeDefinition definition;
    definition.AddRangeDefinition(1, 2u, 100e6, 25e3, QStringLiteral("A"));
    return definition;
}

MDataWaterfall::Head waterfallHead(std::uint16_t compression)
{
    return {3, 2, 9, compression, 1000, true, {20, 10}};
}

std::shared_ptr<MData> container()
{
    MDataContainer contents;
    contents.addMData(MDataId(MDT_RecalculateYRange));
    contents.addMData(MYData<bool>(true, MDT_WindowVisible));
    return std::make_shared<MDataContainer>(contents);
}

// A zstd frame of n plain bytes: magic, one segment whose size takes a byte, a raw last block.
const char *const kFrame3 = "28b52ffd 20 03 190000";
const char *const kFrame11 = "28b52ffd 20 0b 590000";

std::vector<GoldenMessage> makeMessages()
{
    std::vector<GoldenMessage> rows;
    const auto add = [&](const char *name, std::shared_ptr<MData> message,
                         const std::string &payload, std::vector<int> types) {
        rows.push_back({name, std::move(message), payload, std::move(types)});
    };
    const auto sample = [&]<typename Handler>(const char *name, std::vector<int> types) {
        add(name, value(goldens::Golden<Handler>::sample()),
            fromHex(goldens::Golden<Handler>::bytes().raw), std::move(types));
    };
    const std::string one = "000000000000f03f", two = "0000000000000040";

    add("id", make<MDataId>(MDT_None), "", {14, 47, 68});
    add("char", value<char>(-2), fromHex("fe"), {30, 46, 55});
    add("bool", value(true), fromHex("01"),
        {10, 12, 19, 20, 28, 31, 35, 39, 43, 44, 50, 54, 67, 69, 70, 73, 76});
    add("short", value<short>(-2), fromHex("feff"), {15, 16, 32, 33, 51, 52, 56, 57, 71});
    add("unsigned short", value<unsigned short>(0x1234), fromHex("3412"), {34, 36, 42, 49, 53});
    add("long", value(Kelm::Long(-2)), fromHex("feffffff"), {2, 58});
    add("int", value(0x12345678), fromHex("78563412"), {72});
    add("float", value(1.0F), fromHex("0000803f"), {59, 60});
    add("double", value(1.0), fromHex(one), {1, 9, 11, 37, 45, 61});
    add("unsigned 64", value<std::uint64_t>(0x0102030405060708), fromHex("0807060504030201"), {13});
    sample.operator()<BearingHandler>("bearing", {62});
    sample.operator()<MinMaxHandler>("minmax", {63, 64});
    sample.operator()<BearingExtendedHandler>("bearing extended", {65});
    sample.operator()<PulseHandler>("pulse", {66});
    sample.operator()<DFSpectrumSampleHandler>("df sample with two waves", {75});
    add("df sample", value(DFSpectrumSample()), fromHex("00 0080 0080 0080 0000 0000 0000 00"),
        {75});
    add("axis", value(AxisData{1.0, 2.0, 800, 1, 0.0}),
        fromHex(one + two + "2003 01 0000000000 0000000000000000"), {41});
    add("pixel map", value(pixelMap()), pixelMapPayload(), {40});
    add("bytes", make<MDataByteArray>(QByteArray("abc"), short(-2), MDT_None),
        fromHex(std::string("0c000000") + kFrame3 + "616263 feff"), {3, 21, 22, 77});
    add("container", container(),
        fromHex(std::string("14000000") + kFrame11 + "2f000000 3b  0a000000 01 3b  0200"), {74});
    add("start and stop", make<MDataStartStop<double>>(1.0, 2.0, MDT_None), fromHex(one + two),
        {6, 7});
    add("y range", make<MXYZData<double, double, short>>(1.0, 2.0, short(3), MDT_None),
        fromHex(one + two + "0300"), {48});
    add("doubles", make<MDataVector<double>>(std::vector<double>{1, 2}, MDT_None),
        fromHex("0200000000000000" + one + two), {17, 18});
    add("unsigned shorts",
        make<MDataVector<unsigned short>>(std::vector<unsigned short>{1, 0xfffe}, MDT_None),
        fromHex("0200000000000000 0100 feff"), {24});
    add("ints", make<MDataVector<int>>(std::vector<int>{0, 0, 0, 3}, MDT_None),
        fromHex("0400000000000000 00000000 00000000 00000000 03000000"), {38});
    add("k-factor", make<MDataKFactor>(std::vector<double>{1, 2}, true, 1.0, MDT_None),
        fromHex("0200000000000000" + one + two + "3b 01" + one), {25, 26, 27});
    add("waterfall", make<MDataWaterfall>("abcabc", 3, waterfallHead(1)),
        fromHex(std::string("03000000 02000000 0900000000000000 0100 e803 01 1400000000000000"
                            "0a00000000000000 0c000000") +
                kFrame3 + "616263"),
        {4});
    add("plain waterfall", make<MDataWaterfall>("abcdef", 6, waterfallHead(0)),
        fromHex("03000000 02000000 0900000000000000 0000 e803 01 1400000000000000"
                "0a00000000000000 06000000 616263646566"),
        {4});
    add("channels", make<MDataChannelRangeDefinition>(ranges(), 7),
        fromHex("27000000 00 00000001 00000000 00000001 00000002 4197d78400000000"
                "40d86a0000000000 00000002 0041  07000000"),
        {5});
    add("azimuth", make<MDataAzimuth>("abc", MDataAzimuth::Head{3, 20, 3, 1, 50}),
        fromHex(std::string("03000000 1400000000000000 03000000 01000000 32 0c000000") + kFrame3 +
                "616263"),
        {8});
    add("area", make<MDataWaterfallArea>(MDataWaterfallArea::Area{1, 2, 20, 10, 100, 800}),
        fromHex(one + two + "1400000000000000 0a00000000000000 64000000 20030000"), {29});
    add("histogram",
        make<MDataStaticHistogramWanted>(
            MDataStaticHistogramWanted::Wanted{5, 1, 2, 10, 20, 3, -1, 1, 4}),
        fromHex("0500" + one + two + "0a00000000000000 1400000000000000 0300" + "000000000000f0bf" +
                one + "0400"),
        {23});
    return rows;
}

} // namespace

std::string GoldenMessage::image(int type) const
{
    std::string bytes(4, '\0');
    bytes[0] = char(type);
    return bytes + payload + ";";
}

const std::vector<GoldenMessage> &goldenMessages()
{
    static const std::vector<GoldenMessage> messages = makeMessages();
    return messages;
}
