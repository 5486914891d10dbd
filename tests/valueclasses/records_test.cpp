// The elements of lists: their texts and their images, written out.
#include "fault.h"
#include "valueclasses/changeroad.h"
#include "valueclasses/itemmaps/iglobalformatter.h"
#include "valueclasses/records/detectionadapters.h"
#include "valueclasses/recordsamples.h"

#include <gmock/gmock.h>

namespace {

using namespace values;
using namespace std::string_literals;

/// The form of a record inside a command, in one mode.
template <typename T>
std::string form(const T &record, int mode)
{
    return StreamFormat<T>::ToStream(record, mode);
}

template <typename T>
void expectReadsForm(const T &record, int mode)
{
    const std::string field = form(record, mode) + ';';
    const Kelm::ReadScope scope(field.data(), field.size());
    const char *pos = field.data();
    EXPECT_EQ(StreamFormat<T>::FromStream(&pos, mode), record);
    EXPECT_EQ(pos + 1, field.data() + field.size());
}

template <typename T>
void expectForms(const T &record, const char *text, const std::string &image)
{
    SCOPED_TRACE(text);
    using F = typename Detail::DefaultFormat<T>::type;
    EXPECT_EQ(F::GetString(record), QString::fromUtf8(text));
    EXPECT_EQ(F::GetValue(QString::fromUtf8(text)), record);
    EXPECT_EQ(form(record, 0), image);
    EXPECT_EQ(form(record, -2), image);
    for (const int mode : {-1, 0, -3})
        expectReadsForm(record, mode);
}

TEST(Records, PrintAndPackTheirFieldsInOrder)
{
    expectForms(HMapRange{1.5, 2}, "1.500000;2.000000", raw(1.5) + raw(2.0));
    expectForms(HVMapRange{1.5, 2, -3}, "1.500000;2.000000;-3.000000",
                raw(1.5) + raw(2.0) + raw(-3.0));
    expectForms(GSMResult{62, 17, 455}, "62;17;455", "\x3E\0\0\0\x11\0\0\0\xC7\x01\0\0"s);
    expectForms(AlarmResult{1, 2, 1e8, 12500, 455, 300, 1.5, 0, "zu hoch: 30 # dBµV"},
                "1#2#100000000.000000#12500.000000#455#300#1.500000#0.000000#zu hoch: 30 # dBµV#",
                "\x01\0\0\0\x02\0\0\0"s + raw(1e8) + raw(12500.0) + "\xC7\x01\0\0\x2C\x01\0\0"s +
                    raw(1.5) + raw(0.0) +
                    "\x12\0\0\0"
                    "z\0u\0 \0h\0o\0c\0h\0:\0 \0"
                    "3\0"
                    "0\0 \0#\0 \0d\0B\0\xB5\0V\0"s);
    expectForms(IPC::Burst{16, 2, 1e6, 0.5, -1, 3599}, "16#2#1000000.000000#0.500000#-1#3599",
                "\x10\0\0\0\0\0\0\0\x02\0\0\0"s + raw(1e6) + raw(0.5) +
                    "\xFF\xFF\xFF\xFF\x0F\x0E\0\0"s);
    expectForms(IPC::BurstHistResult{577, 4294967295U}, "577#4294967295",
                "\x41\x02\0\0\xFF\xFF\xFF\xFF"s);
    expectForms(RecordRanges{-2, 5, 1LL << 40}, "-2#5#1099511627776",
                "\xFE\xFF\xFF\xFF\0\0\0\0\x05\0\0\0\0\0\0\0\0\0\0\0\0\x01\0\0"s);
    expectForms(BearingResult{145.5e6, 1234, -5, 90, 455, 12500, 100, 3},
                "1.455e+08#1234#-5#90#455#12500#100#3#",
                raw(145.5e6) + raw(1234) + raw(-5) + raw(90) + raw(455) + raw(12500) + raw(100) +
                    raw(3));
    expectForms(QuadFloat{1, 2, 3, 4.25}, "1.000000;2.000000;3.000000;4.250000",
                raw(1.0) + raw(2.0) + raw(3.0) + raw(4.25));
    expectForms(RectangleNColor(1, 2, -3, 4.5, 0xFF00A0U).GetBuffer(),
                "1.000000,2.000000,-3.000000,4.500000,0xff00a0",
                raw(1.0) + raw(2.0) + raw(-3.0) + raw(4.5) + "\xA0\0\xFF\0"s);
    expectForms(TrafficControlFrequency{121.5e6, 8330, 80, "Guard # 1"},
                "121500000.000000#8330.000000#80#Guard # 1#",
                raw(121.5e6) + raw(8330.0) + raw(80) + "\x09\0\0\0G\0u\0a\0r\0d\0 \0#\0 \0001\0"s);
    expectForms(Wkf{"a#b", 1e6, 25e3, 4}, "a#b#1000000.000000#25000.000000#4#",
                "\x03\0\0\0a\0#\0b\0"s + raw(1e6) + raw(25e3) + raw(4));
    expectForms(DdcFrequency{2, 1e6, 25e3, "FM"}, "2#1000000.000000#25000.000000#FM#",
                raw(2) + raw(1e6) + raw(25e3) + "\x02\0\0\0F\0M\0"s);
    expectForms(FrequencyMask{1, 88000000, 100000, 30, "FM", "", {{true, 500}, {false, -10}}},
                "1#88000000#100000#30#FM##1,500#0,-10",
                raw(1) + raw(std::int64_t(88000000)) + raw(std::int64_t(100000)) + raw(30) +
                    "\x02\0\0\0F\0M\0\0\0\0\0\x02\0\0\0\x01\xF4\x01\0\0\0\xF6\xFF\xFF\xFF"s);
    expectForms(SpecialInterest{2, "{1-2}", "a#1.df"}, "2#{1-2}#a#1.df#",
                raw(2) + "\x05\0\0\0{\0001\0-\0002\0}\0\x06\0\0\0a\0#\0001\0.\0d\0f\0"s);
    expectForms(CheckedString{true, "a,b"}, "1,a,b", "\x01\x03\0\0\0a\0,\0b\0"s);
    BaseStation station;
    station.arfcn = 62;
    station.cellId = 9;
    expectForms(station, "62;0;9;", raw(62) + raw(0) + raw(9) + raw(0));
    station.AddTCH(70);
    station.AddTCH(71);
    expectForms(station, "62;0;9;70;71;", raw(62) + raw(0) + raw(9) + raw(2) + raw(70) + raw(71));
}

TEST(Records, AreImagesInTextModeTooUnlessTheyArePrinted)
{
    EXPECT_EQ(form(GSMResult{1, 2, 3}, -1), form(GSMResult{1, 2, 3}, 0));
    EXPECT_EQ(form(RecordRanges{1, 2, 3}, -1), "1#2#3");
    EXPECT_EQ(form(Wkf{"a", 1, 2, 3}, -1), "a#1.000000#2.000000#3#");
    EXPECT_EQ(form(DdcFrequency{1, 2, 3, "AM"}, -1), "1#2.000000#3.000000#AM#");
}

/// What the lowest double prints as.
QString lowest() { return QString::number(std::numeric_limits<double>::lowest(), 'f', 6); }

DetectionConventional detection()
{
    DetectionConventional record;
    record.SetID(7);
    record.SetLevel(-20);
    record.SetFrequency(1e6);
    record.SetBandwidth(2400);
    record.SetActive(true);
    record.SetIpc(200);
    record.SetStartTime(1);
    record.SetStopTime(2);
    record.SetStatusChangedTime(3.5);
    return record;
}

const std::string kDetectionImage =
    "\x07\0\0\0\xEC\xFF"s + raw(1e6) + raw(2400.0) + "\x01\xC8" + raw(1.0) + raw(2.0) + raw(3.5);
constexpr const char *kDetectionText =
    "7#-20#1000000.000000#2400.000000#1#200#1.000000#2.000000#3.500000";

TEST(Detection, Is48Bytes)
{
    DetectionConventional named = detection();
    named.SetName("stays behind");
    EXPECT_EQ(named.ToStream(), kDetectionImage);
    EXPECT_EQ(kDetectionImage.size(), 48U);
    expectForms(detection(), kDetectionText, kDetectionImage);
    const DetectionConventional none;
    expectForms(
        none,
        qPrintable("0#-9999#" + lowest() + '#' + lowest() + "#0#0#0.000000#0.000000#0.000000"),
        none.ToStream());
}

/// The image, closed; without the ";" it reads, but not as an item.
template <typename F, typename T>
void expectItemForm(const T &record)
{
    const std::string item = F::toStandardString(record);
    EXPECT_EQ(item, record.ToStream() + ';');
    for (const std::string &bytes : {item, item.substr(0, item.size() - 1)}) {
        const Kelm::ReadScope scope(bytes.data(), bytes.size());
        const char *pos = bytes.data();
        T read;
        EXPECT_EQ(F::fromCharStream(&pos, read), bytes == item);
        EXPECT_EQ(pos, bytes.data() + bytes.size());
        EXPECT_EQ(read, record);
    }
}

TEST(ExtendedDetection, ExtendsADetectionByItsFindings)
{
    ExtendedDetectionConventional record(detection());
    EXPECT_EQ(record.ToStream().size(), 154U);
    record.SetAzimuth("1001");
    record.SetClassifierResultString("x;y;90 %;AM;Voice;50 Bd;170 Hz;5 kHz;2.5 MHz;1.5 s;2 s;3;D");
    const auto text = [](const char *t) { return raw(std::uint32_t(strlen(t))) + t; };
    expectForms(record,
                qPrintable(QString(kDetectionText) +
                           "#1001#-1000#-1000#-1000#5000.000000#2500000.000000#90#50.000000#"
                           "170.000000#1.500000#2.000000#AM#Voice#3##D"),
                kDetectionImage + text("1001") + text("-1000") + text("-1000") + text("-1000") +
                    raw(5000.0) + raw(2.5e6) + raw(short(90)) + raw(50.0) + raw(170.0) + raw(1.5) +
                    raw(2.0) + text("AM") + text("Voice") + text("3") + text("") + text("D"));

    expectItemForm<FormatExtendedDetectionConventional>(record);
    expectItemForm<FormatDetectionConventional>(detection());
    record.init();
    EXPECT_EQ(record, ExtendedDetectionConventional(detection()));
}

TEST(ExtendedDetection, ReadsAReportByItsBand)
{
    ExtendedDetectionConventional record;
    record.SetDFQuality("90");
    record.SetClassifierResultString(";;5;;;;;30 MHz;;QPSK;8;;;more");
    EXPECT_EQ(record.GetClassifierPrimMod(), "QPSK");
    EXPECT_EQ(record.GetClassifierCycletime(), 8.0);
    EXPECT_EQ(record.GetClassifierBlocklength(), -1.0);
    EXPECT_THROW(record.SetClassifierResultString(";;6;;;;;1 MHz;;;;"), KRException);
    EXPECT_EQ(record.GetClassifierConfidence(), 5) << "a short report changes nothing";
    record.SetClassifierResultString("");
    ExtendedDetectionConventional cleared;
    cleared.SetDFQuality("90");
    EXPECT_EQ(record, cleared);
    for (const auto &[text, hertz] :
         {std::pair("5 kHz", 5000.0), {"5 MHz", 5e6}, {"5 Hz", 5.0}, {"5", 5.0}, {"5 khz", 0.0}})
        EXPECT_EQ(getValueFromFreqString(text), hertz) << text;
}

struct Wording : IGlobalFormatter {
    Wording() { Set(this); }
    ~Wording() override { Set(nullptr); }
    QString GetFrequencyText(double hertz) const override { return QString("f%1").arg(hertz); }
    QString GetBandwidthText(double hertz) const override { return QString("b%1").arg(hertz); }
    QString GetPositionText(double longitude, double latitude) const override
    {
        return QString("%1/%2").arg(longitude).arg(latitude);
    }
};

TEST(ExtendedDetection, WordsItsColumns)
{
    ExtendedDetectionConventional record(detection()), none;
    record.SetName("carrier");
    record.SetFrequency(1e5);
    record.SetStopTime(-1);
    record.SetClassifierResultString(
        ";;90 %;AM;Voice;50.25 Bd;170 Hz;5 kHz;2.5 MHz;1.5 s;2.5 s;3;D");
    record.SetClassifierPrimMod("P");
    record.SetAzimuth("10010");
    record.SetDFQuality("1001");
    record.SetDFLatitude("1002");
    struct Row {
        int column;
        const char *text;
    } const rows[] = {{4, "carrier"},
                      {10, "-20 dB\u03BCV"},
                      {18, "1970-01-01 00:00:01.000"},
                      {19, ""},
                      {20, "5.000 kHz"},
                      {21, "2500.000 kHz"},
                      {22, "90 %"},
                      {23, "AM"},
                      {24, "P"},
                      {25, "2"},
                      {26, "Voice"},
                      {28, "50.25 Bd"},
                      {29, "170 Hz"},
                      {30, "1.5 s"},
                      {31, "2.5 s"},
                      {32, "3"},
                      {33, "D"},
                      {34, "10010"},
                      {35, "Invalid DF result"},
                      {36, "Locate timeout"},
                      {2, ""},
                      {99, ""}};
    for (const Row &row : rows) {
        EXPECT_EQ(ExtendedDetConAdapter::GetText4Column(row.column, record), row.text)
            << row.column;
        EXPECT_EQ(ExtendedDetConAdapter::GetText4Column(row.column, none), "") << row.column;
    }
    EXPECT_EQ(ExtendedDetConAdapter::GetColumnText(record, 35, 7), "Invalid");
    EXPECT_EQ(ExtendedDetConAdapter::GetFreqStringVUHF(record), "0.005000 MHz");
    record.SetDFLatitude("48.5");
    record.SetDFLongitude("11");
    for (const int column : {0, 1, 6, 36})
        EXPECT_EQ(ExtendedDetConAdapter::GetText4Column(column, record), "") << "without wording";
    const Wording wording;
    EXPECT_EQ(ExtendedDetConAdapter::GetText4Column(0, none), "");
    for (const Row &row : {Row{0, "f100000"}, {6, "f100000"}, {1, "b2400"}, {36, "11/48.5"}})
        EXPECT_EQ(ExtendedDetConAdapter::GetText4Column(row.column, record), row.text);
}

template <typename F>
void expectRefused(std::initializer_list<const char *> texts)
{
    for (const char *text : texts)
        EXPECT_THROW(F::GetValue(text), KRException) << text;
}

TEST(Records, RefuseTextsThatAreNotTheirs)
{
    expectRefused<GSMResultFormat>({"", "1;2", "1;2;3;4", "1;2;x", "1;2;2147483648", "1;2;"});
    expectRefused<FormatRecordRanges>({"1#2", "1#2#3#", "1#2#9223372036854775808"});
    expectRefused<IPC::FormatBurst>({"-1#2#3#4#5#6", "1#4294967296#3#4#5#6"});
    expectRefused<FormatAlarmResult>({"1#2#3#4#5#6#7#8#cut off", "1#2#3#4#5#6#7#8#"});
    expectRefused<BaseStationFormat>({"1;2;3", "1;2;", "1;2;3;4", "1;2;3;x;"});
    expectRefused<FormatFrequencyMask>(
        {"1#2#3#4#name", "1#2#3#4#a#b#c", "1#2#3#4#a#b#2,1", "1#2#3#4#a#b#1", "1#2#3#4#a#b#"});
    expectRefused<RectangleNColor>({"1,2,3,4,5", "1,2,3,4,0x", "1,2,3,0x5", "1,2,3,4,0x100000000"});
    expectRefused<FormatCheckedString>({"yes", "2,a"});
    expectRefused<FormatDetectionConventional>(
        {"7#-20#1#2#1#256#1#2#3", "7#-32769#1#2#1#2#1#2#3", "7#-20#1#2#2#2#1#2#3"});
    expectRefused<FormatHVMapRange>({"1;2;3;4", "1;2;x"});
    const QString extended = FormatExtendedDetectionConventional::GetString({});
    EXPECT_THROW(FormatExtendedDetectionConventional::GetValue(extended + "#"), KRException);
    EXPECT_EQ(faultOf([] { FormatHVMapRange::GetValue("1;;3"); }).reason, "! sToken.isEmpty()");
}

TEST(Records, AreValuesOfTheirOwnToo)
{
    using Held = Value<BearingResult>;
    checkRoad<Held>(
        {"bearing",
         [](Held &value, IObserver *on) { value.SetValue(sample<BearingResult>(1), on); },
         {CC_VALUE}},
        [] { return std::make_unique<Held>(); });
}

} // namespace
