// Value maps and fast value maps, typed over all sample pairs, against a buffer that only
// remembers.
#include "platform/base/krexception.h"
#include "platform/startup/cfgcenter.h"
#include "valueclasses/channels/ichannelmapping.h"
#include "valueclasses/fastvaluemap.h"
#include "valueclasses/mapping/samplecommands.h"
#include "valueclasses/samplegoldens.h"
#include "valueclasses/testvalue.h"

#include <QCoreApplication>
#include <gmock/gmock.h>

#include <set>
#include <thread>

namespace {

using namespace values;
using namespace std::string_literals;
using goldens::Golden;
using ::testing::ElementsAre;
using ::testing::IsEmpty;

/// What the buffer was told, call by call.
std::vector<std::string> calls;
void call(const std::string &name, std::uint64_t number)
{
    calls.push_back(name + ' ' + std::to_string(number));
}

template <typename Y, typename YHandler>
class FakeBuffer : public IRealTimeBuffer<Y, YHandler> {
public:
    static std::unique_ptr<IRealTimeBuffer<Y, YHandler>> create()
    {
        return std::make_unique<FakeBuffer>();
    }
    std::shared_ptr<sbs::ScanBuffer<Y, YHandler>> GetScanBuffer() const override
    {
        // Never looked into; it only has to be the same again.
        return {std::shared_ptr<int>(), reinterpret_cast<sbs::ScanBuffer<Y, YHandler> *>(&calls)};
    }
    void endService() override { calls.push_back("endService"); }
    std::string GetName() const override { return "tcp://here:1"; }
    void setChannelRangeDefinition(const ChannelRangeDefinition &definition) override
    {
        call("grid", definition.GetChannelCount());
    }
    void setMaximumSizeInBytes(std::uint64_t bytes) override { call("size", bytes); }
    void addTimeStamp(KRTimeStamp time) override { call("time", time); }
    void addSpectralData(std::span<const SpectralDataPiece<Y>> pieces) override
    {
        std::string all = "data";
        for (const auto &piece : pieces) {
            all += ' ' + std::to_string(piece.firstIndex) + '+' + std::to_string(piece.count);
            for (std::uint32_t i = 0; i < piece.count; ++i)
                EXPECT_EQ(piece.samples[i], (Golden<YHandler>::sample()));
        }
        calls.push_back(all);
    }
    void endOfScan() override { calls.push_back("end"); }
    void endOfScan(KRTimeStamp time) override { call("end", time); }
    void setKeepScanDataAfterEndOfScan(bool) override { calls.push_back("keep"); }
    void setClearScanData(bool) override { calls.push_back("clear"); }
    void setKeepNoOverwriteWFLines(bool) override { calls.push_back("keep lines"); }
    void setAvoidSettingMaxValueDuringScan(bool) override { calls.push_back("avoid"); }
};

/// Ids 10 to 13 at 100 to 103, and, neighbours by id, 14 to 15 at 200 to 210; 20 alone at 300.
ChannelRangeDefinition grid()
{
    ChannelRangeDefinition definition;
    definition.AddRangeDefinition(10, 4U, 100.0, 1.0, "");
    definition.AddRangeDefinition(14, 2U, 200.0, 10.0, "");
    definition.AddRangeDefinition(20, 1U, 300.0, 1.0, "");
    return definition;
}

template <typename Pair>
class FastValueMapTest : public ::testing::Test {
protected:
    using Sample = typename Pair::Sample;
    using YHandler = typename Pair::Handler;
    using Map = FastValueMap<Sample, YHandler>;

    void SetUp() override
    {
        calls.clear();
        CfgCenter::GetAppCfg().Set("UseScanBufferServer", true);
        former = RealTimeBufferFactory<Sample, YHandler>::SetCreator(
            FakeBuffer<Sample, YHandler>::create);
    }
    void TearDown() override
    {
        fast.DeleteObservers();
        RealTimeBufferFactory<Sample, YHandler>::SetCreator(former);
        CfgCenter::GetAppCfg().Set("UseScanBufferServer", QVariant());
        CfgCenter::GetAppCfg().Set("UseScanBufferServerGUISide", QVariant());
        HandlerBase::SetDataCompressMode(DataRaw);
    }
    void giveGrid() { fast.SetChannelRangeDefinition(grid(), 0); }
    std::vector<Sample> samples(std::size_t count) const
    {
        return std::vector<Sample>(count, Golden<YHandler>::sample());
    }
    /// Both lists, in mode 0.
    using Lists = std::pair<std::string, std::string>;
    Lists lists()
    {
        return {ValueBase::CreateCommandString(fast.GetCommandList(), 0),
                fast.GetCommandStringForTransmission(0)};
    }
    Lists takeLists()
    {
        const Lists both = lists();
        fast.NotifyObservers(CC_NONE, nullptr);
        return both;
    }
    void record()
    {
        fast.CommandRecordingOn();
        fast.CommandRecordingOnForTransmission();
    }

    Map fast;
    typename RealTimeBufferFactory<Sample, YHandler>::Creator former = nullptr;
};
using AllPairs = SamplePairList<::testing::Types>;
TYPED_TEST_SUITE(FastValueMapTest, AllPairs, SamplePairNames);

std::string le32(std::uint32_t number) { return raw(number); }
std::string le64(double number) { return raw(number); }

TYPED_TEST(FastValueMapTest, FeedsTheBufferWithOneCallAScan)
{
    auto &map = this->fast;
    this->giveGrid();
    EXPECT_NE(map.CreateRealTimeBuffer(), nullptr);
    map.SetTimeStamp(5);
    map.SetChannelValues(11, 5, this->samples(5).data()); // over a border between ranges
    map.SetChannelValues(20, 1, this->samples(1).data());
    map.EndOfScan(7);
    map.EndOfScan();
    EXPECT_THAT(calls, ElementsAre("grid 7", "time 5", "data 1+3 4+2", "data 6+1", "end 7", "end"));
    EXPECT_THAT(map.GetCommandList(), IsEmpty());
    calls.clear();
    map.SetChannelRangeDefinition(grid(), 1000);
    map.setAvoidSettingMaxValueDuringScan(true);
    map.setClearScanData(true);
    map.setKeepNoOverwriteWFLines(true);
    map.setKeepScanDataAfterEndOfScan(true);
    map.aboutToTerminate();
    EXPECT_THAT(calls, ElementsAre("grid 7", "size 1000", "avoid", "clear", "keep lines", "keep",
                                   "endService"));
}

TYPED_TEST(FastValueMapTest, RefusesWrongChannelsBeforeAnythingIsWritten)
{
    auto &map = this->fast;
    const auto samples = this->samples(8);
    map.CreateRealTimeBuffer();
    EXPECT_THROW(map.SetChannelValues(10, 1, samples.data()), ChannelNotSetExc);
    this->giveGrid();
    map.CommandRecordingOn();
    calls.clear();
    EXPECT_THROW(map.SetChannelValues(-1, 1, samples.data()), KRException);
    for (const auto &[first, count] : {std::pair(0, 1), {9, 2}, {10, 7}, {15, 6}, {21, 1}})
        EXPECT_THROW(map.SetChannelValues(first, unsigned(count), samples.data()),
                     InvalidChannelIdException)
            << first;
    map.SetChannelValues(10, 0, samples.data());
    EXPECT_THAT(calls, IsEmpty());
    EXPECT_THAT(map.GetCommandList(), IsEmpty());
}

TYPED_TEST(FastValueMapTest, CommandsHaveTheseBytesInBothCompressModes)
{
    using Y = typename TestFixture::Sample;
    using Handler = typename TestFixture::YHandler;
    auto &map = this->fast;
    this->giveGrid();
    const auto samples = this->samples(2);
    const unsigned short index[] = {1, 258};
    const std::string version = std::is_same_v<Y, DFSpectrumSample> ? "\x01"s : ""s;
    for (const char mode : {DataRaw, DataCompressed}) {
        HandlerBase::SetDataCompressMode(mode);
        const goldens::Bytes golden = Golden<Handler>::bytes();
        const std::string one = fromHex(mode == DataRaw ? golden.raw : golden.compressed);
        const auto check = [&](const Command &command, int id, int oldId,
                               const std::string &payload) {
            SCOPED_TRACE(std::to_string(id) + " in compress mode " + std::to_string(mode));
            const std::string bytes = std::to_string(id) + ';' + payload + ';';
            std::string written;
            command.AddCommandString(written, 0);
            EXPECT_EQ(written, bytes);
            std::vector<std::string> forms{bytes};
            if (oldId != 0) // older forms have two more bytes
                forms.push_back(std::to_string(oldId) + ';' + payload + "xx;");
            for (const std::string &form : forms) {
                std::vector<std::unique_ptr<KELM::ICommand>> parsed;
                map.SetCommandString(form + "3;", parsed, nullptr, 0);
                ASSERT_EQ(parsed.size(), 2U);
                EXPECT_EQ(parsed[0]->GetCommandId(), id);
                const std::string open = form.substr(0, form.size() - 1);
                EXPECT_THROW(map.SetCommandString(open, parsed, nullptr, 0), KRException);
            }
        };
        const Y *data = samples.data();
        check(CommandSetXYValue<Y, Handler>(&map, nullptr, 1.0, *data), 120, 20, le64(1) + one);
        const std::string two = le32(2) + one + one;
        check(CommandSetXYValues<Y, Handler>(&map, nullptr, 1.0, 2.0, 2, data), 123, 23,
              le64(1) + le64(2) + two);
        check(CommandSetXYValues2<Y, Handler>(&map, nullptr, 1.0, 2.0, 2, data, index), 131, 31,
              le64(1) + le64(2) + two + "\x01\0\x02\x01"s);
        check(CommandSetDataCompressMode<Y, Handler>(&map, nullptr, char(1)), 39, 0, "\x01");
        check(CommandSetChannelValues<Y, Handler>(&map, nullptr, 10, 2, data), 35, 0,
              version + le32(10) + two);
    }
    std::vector<std::unique_ptr<KELM::ICommand>> parsed;
    EXPECT_THROW(map.SetCommandString("123;" + le64(1) + le64(2) + le32(0xFFFFFFFF) + ";", parsed,
                                      nullptr, 0),
                 KRException)
        << "a count that the bytes can't hold takes no memory";
    EXPECT_THROW(
        map.SetCommandString("35;" + version + le32(1) + le32(0xFFFFFFF0), parsed, nullptr, 0),
        KRException);
}

TYPED_TEST(FastValueMapTest, RecordedScansRepeatInAnotherMap)
{
    auto &map = this->fast;
    this->giveGrid();
    map.CreateRealTimeBuffer();
    this->record();
    for (const bool coexist : {false, true}) {
        SCOPED_TRACE(coexist);
        map.SetFastValueMapAndScanBufferCoexist(coexist);
        std::string scan;
        CodeLog log;
        log.then = [&](Observable *, TChangeCode) { scan += map.GetCommandStringForRecording(0); };
        map.AddObserver(&log);
        map.SetTimeStamp(5);
        map.SetChannelValues(12, 3, this->samples(3).data());
        map.EndOfScan(7);
        map.HasChanged(CC_MAPPING, nullptr);
        map.DeleteObserver(&log);
        typename TestFixture::Map other;
        other.SetChannelRangeDefinition(grid(), 0);
        other.CreateRealTimeBuffer();
        calls.clear();
        other.SetCommandString(scan, nullptr, 0);
        EXPECT_THAT(calls, ElementsAre("time 5", "data 2+2 4+1", "end 7")) << "each once";
    }
}

TYPED_TEST(FastValueMapTest, WithoutABufferSamplesGoTheWayOfAValueMap)
{
    using Handler = typename TestFixture::YHandler;
    auto &map = this->fast;
    this->giveGrid();
    map.CommandRecordingOnForTransmission();
    const std::string one = fromHex(Golden<Handler>::bytes().raw);
    const typename TestFixture::Lists expected{"", "123;" + le64(102) + le64(103) + le32(2) + one +
                                                       one + ";120;" + le64(200) + one + ";"};
    map.SetChannelValues(12, 3, this->samples(3).data());
    EXPECT_EQ(this->takeLists(), expected);
    map.CreateRealTimeBuffer();
    map.SetFastValueMapAndScanBufferCoexist(true);
    calls.clear();
    map.SetChannelValues(12, 3, this->samples(3).data());
    EXPECT_EQ(this->lists(), expected) << "with both, it goes both ways";
    EXPECT_THAT(calls, ElementsAre("data 2+2 4+1"));
}

TYPED_TEST(FastValueMapTest, AStringIsInTheModesThatItSets)
{
    using Handler = typename TestFixture::YHandler;
    using SetValue = CommandSetXYValue<typename TestFixture::Sample, Handler>;
    auto &map = this->fast;
    const goldens::Bytes golden = Golden<Handler>::bytes();
    const std::string raw = "120;" + le64(1) + fromHex(golden.raw) + ";";
    const std::string compressed = "120;" + le64(1) + fromHex(golden.compressed) + ";";
    const auto setValue = [&] { SetValue(&map, nullptr, 1.0, this->samples(1)[0]).Execute(); };
    map.CommandRecordingOnForTransmission();
    setValue();
    map.SetDataCompressMode(DataCompressed);
    setValue();
    map.SetDataCompressMode(DataRaw);
    setValue();
    const std::string sent = map.GetCommandStringForTransmission(0);
    EXPECT_EQ(sent, raw + "39;\1;" + compressed + "39;\0;"s + raw);

    std::vector<std::unique_ptr<KELM::ICommand>> parsed;
    map.SetCommandString(sent, parsed, nullptr, 0);
    EXPECT_EQ(parsed.size(), 5U);
    const std::string start = "39;\1;" + compressed;
    EXPECT_THROW(map.SetCommandString(start + "120;", parsed, nullptr, 0), KRException);
    map.SetCommandString(start, parsed, nullptr, 0);
    EXPECT_EQ(HandlerBase::GetDataCompressMode(), DataRaw) << "parsing sets nothing";
    map.SetCommandString(start, nullptr, 0);
    EXPECT_EQ(HandlerBase::GetDataCompressMode(), DataCompressed);
}

TYPED_TEST(FastValueMapTest, PrintsSerialisedSamples)
{
    using Handler = typename TestFixture::YHandler;
    const std::string sample = fromHex(Golden<Handler>::bytes().raw);
    EXPECT_NE(this->fast.Binary2FormattedString(0, sample.data()), "---");
    std::string invalid(64, '\0');
    Handler::ToBinary(invalid.data(), Handler::Minimum());
    EXPECT_EQ(this->fast.Binary2FormattedString(0, invalid.data()), "---");
}

TEST(FastValueMap, TypesGoByThePair)
{
    std::set<int> types;
    std::string names;
#define NOTE(Y, Handler)                                                                           \
    types.insert({ValueMap<Y, Handler>().GetType(), FastValueMap<Y, Handler>().GetType()});        \
    names += (FastValueMap<Y, Handler>().GetTypeName() + ' ').toStdString();
    SPECTREE_FOR_EACH_SAMPLE_PAIR(NOTE)
#undef NOTE
    EXPECT_EQ(types.size(), 25U) << "13 pairs in two maps, but pulses have one type for both";
    EXPECT_EQ(names, "FastValueMapChar FastValueMapLevel FastValueMapShort FastValueMapLong "
                     "FastValueMapFloat FastValueMapPercent FastValueMapDouble FastValueMapQDF0xA "
                     "FastValueMapMinMax FastValueMapElevOverAzi PulseMapping "
                     "FastValueMapBearingExtended FastValueMapDFSpectrumSample ");
    EXPECT_EQ((ValueMap<MinMax, MinMaxHandler>().GetTypeName()), "ValueMappingMinMax");
}

/// What doesn't depend on the samples.
class LevelMap : public FastValueMapTest<SamplePair<short, levelHandler>> {
protected:
    Map &map = fast;
};

TEST_F(LevelMap, CreatesABufferOnlyWhereOneIsWanted)
{
    giveGrid();
    CfgCenter::GetAppCfg().Set("UseScanBufferServer", QVariant());
    EXPECT_EQ(map.CreateRealTimeBuffer(), nullptr) << "the default is off";
    CfgCenter::GetAppCfg().Set("UseScanBufferServer", true);
    RealTimeBufferFactory<short, levelHandler>::SetCreator(nullptr);
    EXPECT_EQ(map.CreateRealTimeBuffer(), nullptr) << "nobody serves the pair";
    RealTimeBufferFactory<short, levelHandler>::SetCreator(FakeBuffer<short, levelHandler>::create);

    CodeLog log;
    map.CommandRecordingOnForTransmission();
    std::string commands;
    log.then = [&](Observable *, TChangeCode) {
        commands = map.GetCommandStringForTransmission(0);
    };
    map.AddObserver(&log);
    const auto buffer = map.CreateRealTimeBuffer();
    EXPECT_EQ(map.GetRealTimeBufferName(), "tcp://here:1");
    EXPECT_EQ(commands, "40;\x0C\0\0\0tcp://here:1;"s);
    EXPECT_EQ(map.CreateRealTimeBuffer(), buffer);
    EXPECT_THAT(log.codes, ElementsAre(CC_VALUE, CC_VALUE));

    CfgCenter::GetAppCfg().Set("UseScanBufferServerGUISide", false);
    map.SetCommandString("40;\x01\0\0\0x;"s, nullptr, 0);
    EXPECT_EQ(map.GetRealTimeBufferName(), "tcp://here:1");
    CfgCenter::GetAppCfg().Set("UseScanBufferServerGUISide", true);
    map.SetCommandString("40;\x01\0\0\0x;"s, nullptr, 0);
    EXPECT_EQ(map.GetRealTimeBufferName(), "x");
}

TEST_F(LevelMap, TheGridIsRecordedAndFollowedByTheWidth)
{
    struct Mapping : IChannelMapping {
        void SetChannelRangeDefinition(const ChannelRangeDefinition &definition) override
        {
            call("mapping", definition.GetChannelCount());
        }
        void SetTimeStamp(KRTimeStamp time) override { call("time", time); }
        void EndOfScan(KRTimeStamp time) override { call("end", time); }
    } mapping;
    map.SetChannelMapping(&mapping);
    CodeLog log;
    map.AddObserver(&log);
    map.SetChannelRangeDefinition(ChannelRangeDefinition(), 0);
    EXPECT_THAT(log.codes, IsEmpty()) << "an empty grid is ignored";
    record();
    Lists told;
    log.then = [&](Observable *, TChangeCode) { told = lists(); };
    giveGrid();
    map.SetTimeStamp(3);
    map.EndOfScan(4);
    EXPECT_THAT(calls, ElementsAre("mapping 0", "mapping 7", "time 3", "end 4"));
    EXPECT_THAT(log.codes, ElementsAre(CC_LIMITS, CC_END_OF_SCAN));

    log.codes.clear();
    giveGrid();
    const std::string gridCommand = "134;" + Kelm::toStandardString(grid()) + ";";
    EXPECT_EQ(told.first, "27;33;" + le64(1) + ";" + gridCommand + "0;4;");
    EXPECT_EQ(told.second, told.first);
    EXPECT_EQ(map.GetWidth4Interpolation(205.0), 10.0);
    EXPECT_EQ(map.GetWidth4Interpolation(-1.0), 1.0);
    EXPECT_EQ(map.GetWidth4Interpolation(5000.0), 1.0);
    map.SetChannelMapping(nullptr);
}

TEST_F(LevelMap, ClearsChannels)
{
    map.ClearChannelRange(10, 1); // no grid: nothing
    giveGrid();
    record();
    struct Case {
        int first, count;
        Lists recorded;
    };
    const std::string all = le32(0xFFFFFFFF);
    for (const Case &c :
         {Case{-1, -1, {"27;", "27;"}},
          {13, 1, {"36;" + le32(13) + le32(1) + ";", "124;" + le64(103) + ";"}},
          {-1,
           5,
           {"36;" + all + le32(5) + ";",
            "125;" + le64(100) + le64(103) + ";124;" + le64(200) + ";"}},
          {13,
           -1,
           {"36;" + le32(13) + all + ";",
            "124;" + le64(103) + ";125;" + le64(200) + le64(210) + ";124;" + le64(300) + ";"}}}) {
        takeLists();
        map.ClearChannelRange(c.first, unsigned(c.count));
        EXPECT_EQ(lists(), c.recorded) << c.first << ", " << c.count;
    }
    takeLists();
    EXPECT_THROW(map.ClearChannelRange(15, 2), InvalidChannelIdException);
    EXPECT_THAT(map.GetCommandList(), IsEmpty());
    EXPECT_TRUE(map.IsCommandRecording()) << "no longer suspended";
}

TEST_F(LevelMap, FixedCommandsHaveTheseBytes)
{
    giveGrid();
    const std::string old = grid().toOldStandardString();
    struct Case {
        std::string bytes, again, readable;
        int id;
    } const cases[] = {
        {"124;" + le64(1) + ";", "", "124;1.000000;", 124},
        {"24;" + le64(1) + "xx;", "124;" + le64(1) + ";", "", 124},
        {"125;" + le64(1) + le64(2) + ";", "", "125;1.000000;2.000000;", 125},
        {"126;" + le64(1) + le64(2) + ";", "", "", 126},
        {"27;", "", "27;", 27},
        {"128;\x07\0\0\0\0\0\0\0"s, "", "128;\x07\0\0\0\0\0\0\0"s, 128},
        {"28;", "128;\0\0\0\0\0\0\0\0"s, "", 128},
        {"29;\x07\0\0\0\0\0\0\0;"s, "", "29;7;", 29},
        {"32;", "", "", 32},
        {"33;" + le64(2) + ";", "", "33;2.000000;", 33},
        {"37;", "", "", 37},
        {"38;" + le64(2) + ";", "", "38;2.000000;", 38},
        {"39;\x01;", "", "39;1;", 39},
        {"34;" + old, "", "", 34},
        {"134;" + Kelm::toStandardString(grid()) + ";", "",
         "134;3;10;4;100.000000;1.000000;14;2;200.000000;10.000000;20;1;300.000000;1.000000;", 134},
        {"36;" + le32(1) + le32(2) + ";", "125;" + le32(1) + le32(2) + ";", "125;1;2;", 125},
        {"40;\x02\0\0\0ab;"s, "", "40;ab;", 40},
    };
    for (const Case &row : cases) {
        SCOPED_TRACE(::testing::PrintToString(row.bytes));
        for (const int mode : {-1, 0, 1, -2}) { // reading is binary in every mode
            std::vector<std::unique_ptr<KELM::ICommand>> parsed;
            map.SetCommandString(row.bytes + "30;\x02\0ab;3;"s, parsed, nullptr, mode);
            ASSERT_EQ(parsed.size(), 2U) << "the withdrawn command 30 is skipped";
            EXPECT_EQ(parsed[0]->GetCommandId(), row.id);
            const std::unique_ptr<Command> clone(dynamic_cast<Command &>(*parsed[0]).Clone());
            std::string written;
            clone->AddCommandString(written, mode);
            const std::string &binary = row.again.empty() ? row.bytes : row.again;
            const bool readable = mode == -1 && !row.readable.empty();
            if (readable || mode != -1) {
                EXPECT_EQ(written, readable ? row.readable : binary);
            }
        }
        for (std::size_t size = 3; size + 1 < row.bytes.size(); ++size) {
            std::vector<std::unique_ptr<KELM::ICommand>> parsed;
            EXPECT_THROW(map.SetCommandString(row.bytes.substr(0, size), parsed, nullptr, 0),
                         KRException)
                << size;
        }
    }
    EXPECT_THROW(map.SetCommandString("40;\xFF\xFF\xFF\xFFx;", nullptr, 0), KRException);
}

TEST_F(LevelMap, AMalformedStringChangesNothing)
{
    giveGrid();
    map.CreateRealTimeBuffer();
    calls.clear();
    const std::string good = "29;\x07\0\0\0\0\0\0\0;"s + "128;\x07\0\0\0\0\0\0\0"s;
    EXPECT_THROW(map.SetCommandString(good + "35;x", nullptr, 0), KRException);
    EXPECT_THAT(calls, IsEmpty());
    map.SetCommandString(good, nullptr, 0);
    EXPECT_THAT(calls, ElementsAre("time 7", "end 7"));
}

TEST_F(LevelMap, ARecordedChangeIsToldAndLeavesNothingBehind)
{
    struct Case {
        const char *name;
        bool coexist, own, sent;
        std::vector<int> codes;
        std::string ownCommands, sentCommands;
    };
    const std::string change = "0;10;", stamp = "29;" + raw(std::uint64_t(5)) + ";";
    for (const Case &c :
         {Case{"nothing recorded", false, false, false, {}, "", ""},
          {"own", false, true, false, {CC_FAST_MAP}, stamp + change, ""},
          {"sent", false, false, true, {CC_FAST_MAP}, "", stamp},
          {"both roads, own", true, true, false, {CC_FAST_MAP, CC_MAPPING}, stamp + change, ""},
          {"both roads, sent", true, false, true, {CC_MAPPING}, "", stamp + change},
          {"all", true, true, true, {CC_FAST_MAP, CC_MAPPING}, stamp + change, stamp + change}}) {
        SCOPED_TRACE(c.name);
        Map value;
        value.CreateRealTimeBuffer();
        value.SetFastValueMapAndScanBufferCoexist(c.coexist);
        if (c.own)
            value.CommandRecordingOn();
        if (c.sent)
            value.CommandRecordingOnForTransmission();
        CodeLog log;
        std::string own, sent;
        log.then = [&](Observable *, TChangeCode) {
            own += value.GetCommandStringForRecording(0);
            sent += value.GetCommandStringForTransmission(0);
        };
        value.SetTimeStamp(5);
        value.AddObserver(&log);
        value.HasChanged(CC_MAPPING, nullptr);
        EXPECT_EQ(log.codes, c.codes);
        EXPECT_EQ(own, c.ownCommands);
        EXPECT_EQ(sent, c.sentCommands);
        EXPECT_THAT(value.GetCommandList(), IsEmpty());
        EXPECT_THAT(value.GetCommandListForTransmission(), IsEmpty());
        value.DeleteObserver(&log);
    }
}

TEST_F(LevelMap, AnObserverOfAChangeMayDestroyTheMap)
{
    auto value = std::make_unique<Map>();
    value->CreateRealTimeBuffer();
    value->SetFastValueMapAndScanBufferCoexist(true);
    value->CommandRecordingOn();
    CodeLog log;
    log.then = [&](Observable *, TChangeCode code) {
        if (code == CC_FAST_MAP)
            value.reset();
    };
    value->AddObserver(&log);
    value->HasChanged(CC_MAPPING, nullptr);
    EXPECT_EQ(value, nullptr);
    EXPECT_EQ(log.codes.front(), CC_FAST_MAP);
}

TEST(ValueMap, ARecordedChangeOfAnotherThreadIsPosted)
{
    using Map = ValueMap<short, levelHandler>;
    const std::vector<std::pair<int, std::function<void(Map &)>>> cases = {
        {120, [](Map &map) { map.SetXYValue(1, 2); }},
        {27, [](Map &map) { map.ClearData(); }},
        {29, [](Map &map) { map.SetTimeStamp(1); }},
        {32, [](Map &map) { map.EndOfHistory(); }},
        {33, [](Map &map) { map.SetWidth4Interpolation(2); }},
        {37, [](Map &map) { map.ResetGrowOnly(); }},
        {38, [](Map &map) { map.SetScanPerSecond(2); }},
        {39, [](Map &map) { map.SetDataCompressMode(DataRaw); }},
    };
    for (const auto &[id, change] : cases) {
        SCOPED_TRACE(id);
        Map map;
        map.CommandRecordingOnForTransmission();
        std::thread([&map, &change = change] { change(map); }).join();
        EXPECT_THAT(map.GetCommandListForTransmission(), IsEmpty());
        EXPECT_EQ(map.GetWidth4Interpolation(), -1.0);
        QCoreApplication::processEvents();
        ASSERT_EQ(map.GetCommandListForTransmission().size(), 1U);
        EXPECT_EQ(map.GetCommandListForTransmission()[0]->GetCommandId(), id);
    }
}

TEST_F(LevelMap, StateRebuildsGridModeAndName)
{
    giveGrid();
    map.SetWidth4Interpolation(42.0);
    map.SetRealTimeBufferName("x");
    HandlerBase::SetDataCompressMode(DataCompressed);
    std::string state = map.GetObjectStateStringForTransmission(0);
    Map other, assigned;
    other.SetCommandString(state, nullptr, 0);
    assigned.Assign(map);
    EXPECT_EQ(other.GetChannelRangeDefinition(), grid());
    EXPECT_EQ(assigned.GetChannelRangeDefinition(), grid());
    EXPECT_EQ(other.GetRealTimeBufferName(), "x");
    EXPECT_EQ(other.GetWidth4Interpolation(), 1.0) << "the grid follows and takes the width along";
    const std::string name = "40;\x01\0\0\0x;"s;
    state.replace(state.find("39;\1;"), 5, "39;\0;"s);
    EXPECT_EQ(map.GetObjectStateStringForRecording() + name, state)
        << "raw, as all recordings, and without the name";

    map.CommandRecordingOn();
    map.SetChannelValues(10, 1, samples(1).data());
    EXPECT_EQ(map.GetCommandStringForRecording(0), "35;" + le32(10) + le32(1) + "\x7B\0;"s);
    EXPECT_EQ(HandlerBase::GetDataCompressMode(), DataCompressed);
}

TEST_F(LevelMap, TimeStampsAreMadeWhereAskedFor)
{
    giveGrid();
    map.CreateRealTimeBuffer();
    map.CreateTimeStampOnHasChanged(true);
    calls.clear();
    map.SetChannelValues(10, 1, samples(1).data());
    EXPECT_THAT(calls, ElementsAre("time " + std::to_string(map.GetTimeStamp()), "data 0+1"));
}

TEST_F(LevelMap, PassesOnTheChangesOfWhatItWatches)
{
    CodeLog log;
    map.AddObserver(&log);
    for (const TChangeCode code : {CC_VALUE, CC_NAME})
        map.Update(nullptr, code);
    EXPECT_THAT(log.codes, ElementsAre(CC_LIMITS));
}

TEST(ScanPerSecond, CountsOverHalfAMinute)
{
    ScanPerSecond rate;
    EXPECT_EQ(rate.Recalc(100'000'000), -21.0);
    EXPECT_EQ(rate.Recalc(101'000'000), 1.0);
    EXPECT_DOUBLE_EQ(rate.Recalc(101'500'000), 2 / 1.5);
    EXPECT_DOUBLE_EQ(rate.Recalc(100'500'000), 3 / 0.5) << "from the oldest on";
    EXPECT_EQ(rate.Recalc(99'000'000), -22.0);
    EXPECT_DOUBLE_EQ(rate.Recalc(131'250'000), 3 / 29.75) << "older ones drop out";
    ScanPerSecond fast;
    for (std::int64_t scan = 0; scan < 500; ++scan) {
        const double found = fast.Recalc(1'000'000 + scan * 100'000);
        if (scan != 0) {
            EXPECT_DOUBLE_EQ(found, 10.0) << scan;
        }
    }
    ScanPerSecond units;
    units.Recalc(50);
    units.Recalc(50);
    EXPECT_EQ(units.Recalc(51), -1.0);
}

TEST(ScanPerSecond, EndOfScanComputesItWhenAskedFor)
{
    ValueMap<short, levelHandler> map;
    map.SetTimeStamp(1'000'000);
    map.EndOfScan();
    EXPECT_EQ(map.GetScanPerSecond(), -1.0);
    map.CalcScanPerSecond(0);
    map.EndOfScan();
    map.SetTimeStamp(1'500'000);
    map.EndOfScan();
    EXPECT_EQ(map.GetScanPerSecond(), 2.0);
    map.SetTimeStamp(0);
    map.EndOfScan();
    EXPECT_EQ(map.GetScanPerSecond(), 2.0) << "no time, no rate";
}

} // namespace
