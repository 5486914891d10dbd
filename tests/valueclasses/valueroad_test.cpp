// One table of changes, of every kind of scalar value and of the base, and each road that a change
// can take: notification, recording, undo, transaction, replay, object state, another thread.
#include "platform/base/krexception.h"
#include "valueclasses/changeroad.h"
#include "valueclasses/valuebuffer.h"
#include "valueclasses/valueempty.h"
#include "valueclasses/valuenumericwithoffset.h"
#include "valueclasses/valuestream.h"

#include <gmock/gmock.h>

#include <limits>

namespace {

using namespace values;
using namespace std::string_literals;
using ::testing::ElementsAre;
using ::testing::IsEmpty;

using Change = RoadCase;
using Make = std::unique_ptr<ValueBase> (*)();

std::unique_ptr<ValueBase> changed(const Change &row)
{
    auto value = row.make();
    row.set(*value, nullptr);
    return value;
}

template <typename V>
std::unique_ptr<ValueBase> fresh()
{
    return std::make_unique<V>();
}

template <typename V>
std::unique_ptr<ValueBase> wide()
{
    auto value = std::make_unique<V>();
    value->SetMinMax(-1000, 1000, 1, nullptr);
    return value;
}

std::unique_ptr<ValueBase> withOffset()
{
    auto value = std::make_unique<ValueNumericWithOffset<double>>();
    value->SetOffset(10, nullptr);
    value->SetMinMax(0, 100, 1, nullptr);
    return value;
}

template <typename V, typename Set>
Change change(std::string name, Make make, int code, Set set, const std::string &id,
              const std::string &text, const std::string &binary, const std::string &tagged = {},
              unsigned traits = 0)
{
    return {.name = std::move(name),
            .make = make,
            .set = [set](ValueBase &value,
                         IObserver *source) { set(dynamic_cast<V &>(value), source); },
            .codes = code == CC_NONE ? std::vector<int>{} : std::vector{code},
            .traits = traits,
            .text = id + ';' + text + ';',
            .binary = id + ';' + binary + ';',
            .tagged = id + ';' + (tagged.empty() ? binary : tagged) + ';',
            .fresh = fresh<V>};
}

template <typename T>
Change scalar(std::string name, T state, const std::string &text, const std::string &binary,
              const std::string &tagged = {}, unsigned traits = 0)
{
    const auto set = [state](Value<T> &value, IObserver *source) { value.SetValue(state, source); };
    return change<Value<T>>(std::move(name), fresh<Value<T>>, CC_VALUE, set, "20", text, binary,
                            tagged, traits);
}

template <typename V, typename Set>
Change number(std::string name, int code, Set set, const std::string &id, const std::string &text,
              const std::string &binary)
{
    const Make make =
        std::is_same_v<V, ValueNumericWithOffset<double>> ? withOffset : Make(wide<V>);
    return change<V>(std::move(name), make, code, set, id, text, binary);
}

template <typename T>
Change stream(std::string name, std::vector<T> state, const std::string &text,
              const std::string &binary)
{
    const auto set = [state](ValueStream<T> &value, IObserver *source) {
        value.SetValue(state.data(), unsigned(state.size()), source);
    };
    return change<ValueStream<T>>(std::move(name), fresh<ValueStream<T>>, CC_VALUE, set, "20", text,
                                  binary);
}

#define SET(Class, Call) [](Class &v, IObserver *on) { v.Call; }

const std::vector<Change> &changes()
{
    using enum RoadCase::Trait;
    using Int = ValueNumeric<int>;
    using Int64 = ValueNumeric<std::int64_t>;
    using Double = ValueNumeric<double>;
    using Offset = ValueNumericWithOffset<double>;
    static const std::vector<Change> all = {
        scalar("bool", true, "true", "\x01"),
        scalar("char", 'A', "A", "A", {}, LossyText),
        scalar<unsigned char>("unsigned char", 200, "200", "\xC8"),
        scalar<short>("short", -2, "-2", "\xFE\xFF"),
        scalar("int", -2, "-2", "\xFE\xFF\xFF\xFF"),
        scalar("unsigned int", 4294967295U, "4294967295", "\xFF\xFF\xFF\xFF"),
        scalar("int64", std::numeric_limits<std::int64_t>::min(), "-9223372036854775808",
               "\0\0\0\0\0\0\0\x80"s),
        scalar("double", 12.5, "12.500000", "\0\0\0\0\0\0\x29\x40"s),
        scalar("QString", QString("ab"), "ab", "\x02\0\0\0ab"s,
               "\x02\0\0\0"
               "0ab"s),
        scalar("std::string", "a\0"s, "a\0"s, "\x02\0\0\0a\0"s),
        scalar("std::wstring", std::wstring(L"ab"), "ab", "\x02\0\0\0a\0\0\0b\0\0\0"s),
        number<Int>("numeric int", CC_VALUE, SET(Int, SetValue(-2, on)), "20", "-2",
                    "\xFE\xFF\xFF\xFF"),
        number<Int>("minimum", CC_LIMITS, SET(Int, SetMin(-9, on)), "21", "-9", "\xF7\xFF\xFF\xFF"),
        number<Int>("maximum", CC_LIMITS, SET(Int, SetMax(9, on)), "22", "9", "\x09\0\0\0"s),
        number<Int>("step", CC_LIMITS, SET(Int, SetStep(2, on)), "23", "2", "\x02\0\0\0"s),
        number<Int>("limits", CC_LIMITS, SET(Int, SetMinMax(-9, 9, 1, on)), "21", "-9;22;9",
                    "\xF7\xFF\xFF\xFF;22;\x09\0\0\0"s),
        number<Int64>("numeric int64", CC_VALUE, SET(Int64, SetValue(7, on)), "20", "7",
                      "\x07\0\0\0\0\0\0\0"s),
        number<Double>("numeric double", CC_VALUE, SET(Double, SetValue(12.5, on)), "20",
                       "12.500000", "\0\0\0\0\0\0\x29\x40"s),
        number<Offset>("with offset", CC_VALUE, SET(Offset, SetValue(2.5, on)), "20", "12.500000",
                       "\0\0\0\0\0\0\x29\x40"s),
        number<Offset>("offset minimum", CC_LIMITS, SET(Offset, SetMin(2.5, on)), "21", "12.500000",
                       "\0\0\0\0\0\0\x29\x40"s),
        number<Offset>("offset maximum", CC_LIMITS, SET(Offset, SetMax(2.5, on)), "22", "12.500000",
                       "\0\0\0\0\0\0\x29\x40"s),
        stream<int>("int stream", {1, -2}, "1 -2", "\x02\0\0\0\x01\0\0\0\xFE\xFF\xFF\xFF"s),
        stream<float>("float stream", {0.5F}, "0.5", "\x01\0\0\0\0\0\0\x3F"s),
        stream<double>("double stream", {12.5}, "12.5", "\x01\0\0\0\0\0\0\0\0\0\x29\x40"s),
        change<ValueBuffer>("buffer", fresh<ValueBuffer>, CC_VALUE,
                            SET(ValueBuffer, SetValue("a;\0", 3, on)), "20", "\x03\0\0\0a;\0"s,
                            "\x03\0\0\0a;\0"s, {}, Loud | NoUndo),
        change<ValueEmpty>("state", fresh<ValueEmpty>, CC_STATE,
                           SET(ValueEmpty, SetState(VS_DISABLED, on)), "1", "2", "\x02\0\0\0"s),
        change<ValueEmpty>("deleted", fresh<ValueEmpty>, CC_STATE,
                           SET(ValueEmpty, SetState(VS_DELETED, on)), "1", "1", "\x01\0\0\0"s, {},
                           NoUndo),
        change<ValueEmpty>("namespace", fresh<ValueEmpty>, CC_TRANSLATION_NAMESPACE,
                           SET(ValueEmpty, SetTranslationNamespace("Ns", on)), "7", "Ns",
                           "\x02\0\0\0Ns"s, {}, NoUndo | NotCompared),
        change<ValueEmpty>("changed", fresh<ValueEmpty>, CC_MAPPING,
                           SET(ValueEmpty, HasChanged(CC_MAPPING, on)), "0", "10", "10", {},
                           Loud | NoUndo | EndsSuppression | NotCompared),
        change<ValueEmpty>(
            "timer", fresh<ValueEmpty>, CC_NONE,
            [](ValueEmpty &v, IObserver *) { v.SetUpdateTimerTime(60000); }, "5", "60000",
            "\x60\xEA\0\0"s, {}, Loud),
    };
    return all;
}

void forEachChange(const std::function<void(const Change &)> &test)
{
    for (const Change &row : changes()) {
        SCOPED_TRACE(row.name);
        test(row);
    }
}

TEST(ValueRoad, EveryChangeGoesIt)
{
    forEachChange([](const Change &row) { checkRoad(row); });
}

TEST(ValueRoad, AssigningTellsNobody)
{
    forEachChange([](const Change &row) {
        CodeLog log;
        const auto value = row.fresh();
        value->AddObserver(&log);
        value->CommandRecordingOn();
        value->Assign(*changed(row));
        EXPECT_THAT(log.codes, IsEmpty());
        EXPECT_THAT(value->GetCommandList(), IsEmpty());
        value->DeleteObservers();
    });
}

TEST(ValueRoad, KindsHaveTheseNumbersNamesAndTexts)
{
    struct Case {
        Make fresh;
        int type;
        const char *name, *text; // a text that comes back as it is
    } const cases[] = {
        {fresh<ValueEmpty>, 0, "ValueEmpty", ""},
        {fresh<Value<bool>>, 1, "ValueBoolean", "true"},
        {fresh<Value<int>>, 2, "ValueInt", "-5"},
        {fresh<Value<std::int64_t>>, 3, "ValueInt64", "-5"},
        {fresh<Value<double>>, 4, "ValueFloat", "0.250000"},
        {fresh<Value<QString>>, 5, "ValueString", "\xC3\xA4;"},
        {fresh<Value<std::string>>, 27, "ValueCString", "\xC3\xA4;"},
        {fresh<Value<std::wstring>>, 80, "ValueWString", "\xC3\xA4;"},
        {fresh<Value<unsigned int>>, 29, "ValueUInt", "5"},
        {fresh<Value<char>>, 45, "ValueChar", nullptr},
        {fresh<Value<unsigned char>>, 78, "ValueUChar", "5"},
        {fresh<Value<short>>, 79, "ValueInt16", "-5"},
        {wide<ValueNumeric<int>>, 6, "ValueNumericInt", "-5"},
        {wide<ValueNumeric<std::int64_t>>, 7, "ValueNumericInt64", "-5"},
        {wide<ValueNumeric<double>>, 8, "ValueNumericFloat", "0.250000"},
        {withOffset, 104, "ValueNumericFloatWithOffset", "0.250000"},
        {fresh<ValueStream<int>>, 17, "ValueStreamInt", "\x01\x02\x03\x04"},
        {fresh<ValueStream<float>>, 18, "ValueStreamFloat", "\x01\x02\x03\x04"},
        {fresh<ValueStream<double>>, 18, "ValueStreamDouble", "12345678"},
        {fresh<ValueBuffer>, 19, "ValueBuffer", ""},
    };
    for (const Case &row : cases) {
        SCOPED_TRACE(row.name);
        const auto value = row.fresh();
        EXPECT_EQ(value->GetType(), row.type);
        EXPECT_EQ(value->GetTypeName(), row.name);
        if (row.text == nullptr)
            continue;
        value->SetStringValue(QString::fromUtf8(row.text), nullptr);
        EXPECT_EQ(value->GetStringValue(), QString::fromUtf8(row.text));
    }
}

// What the forms lose, so that nobody takes it for a fault of a reader.
TEST(ValueRoad, TheseLossesAreKnown)
{
    struct Case {
        const char *written;
        int mode;
        const char *read;
    } const texts[] = {
        {"\xC3\xA4", -1, "\xC3\x83\xC2\xA4"}, // UTF-8, read as Latin-1
        {"\xC3\xA4", -2, "\xC3\xA4"},
        {"a;b", 0, "a;b"},
    };
    for (const auto &row : texts) {
        Value<QString> from, to;
        from.SetValue(QString::fromUtf8(row.written), nullptr);
        to.SetCommandString(from.GetObjectStateStringForTransmission(unsigned(row.mode)), nullptr,
                            row.mode);
        EXPECT_EQ(to.GetValue(), QString::fromUtf8(row.read));
    }
    Value<QString> text;
    EXPECT_THROW(text.SetCommandString("20;a;b;", nullptr, -1), KRException) << "nothing escapes";
    Value<char> character;
    character.SetCommandString("20;A;", nullptr, -1);
    EXPECT_EQ(character.GetValue(), 0);
    Value<double> number;
    number.SetCommandString("20;0.0000004;", nullptr, -1);
    EXPECT_EQ(number.GetValue(), 4e-7) << "the reader takes all digits, the writer gives six";
    EXPECT_EQ(number.GetStringValue(), "0.000000");
}

TEST(ValueRoad, OptimizingDropsWhatALaterCommandReplaces)
{
    Value<int> value;
    expectOptimized(value, {
                               {"", ""},
                               {"20;1;", "20;1;"},
                               {"20;1;20;2;20;3;", "20;3;"},
                               {"0;3;20;1;", "20;1;"},
                               {"20;1;0;3;", "20;1;0;3;"},
                               {"0;3;0;4;", "0;4;"},
                               {"1;2;1;0;20;1;1;2;", "1;0;20;1;1;2;"},
                               {"3;20;1;4;3;20;2;", "3;20;1;4;3;20;2;"},
                               {"20;1;0;3;20;2;",
                                "20;1;20;2;"}, // each command is held against its neighbour once
                           });
}

TEST(ValueRoad, StreamsAndBuffersHandOutTheirElements)
{
    ValueStream<double> stream;
    int count = -1;
    EXPECT_EQ(stream.GetReferenceToValue(count), nullptr);
    EXPECT_EQ(stream.GetValue(count), nullptr);
    EXPECT_EQ(count, 0);
    const QString list = "0.1 -1e+300 nan inf";
    stream.SetStringValueReadable(list, nullptr);
    EXPECT_EQ(stream.GetStringValueReadable(), list);
    EXPECT_EQ(stream.GetValue(count)[1], -1e300);
    EXPECT_EQ(count, 4);
    EXPECT_THROW(stream.SetStringValueReadable("1 2x", nullptr), KRException);
    EXPECT_THROW(stream.SetStringValue("1234567", nullptr), KRException);
    EXPECT_THROW(stream.SetStringValue(QString(8, QChar(0x100)), nullptr), KRException);
    EXPECT_EQ(stream.GetStringValueReadable(), list);

    ValueBuffer buffer;
    EXPECT_TRUE(buffer.GetStringValue().isNull());
    buffer.SetValue("abcd", 4, nullptr);
    const char *const block = buffer.GetValue(count);
    buffer.SetValue(nullptr, 0, nullptr);
    EXPECT_EQ(buffer.GetSize(), 0);
    EXPECT_FALSE(buffer.GetStringValue().isNull());
    buffer.SetValue("xy", 2, nullptr);
    EXPECT_EQ(buffer.GetValue(count), block) << "the block is kept";
    EXPECT_THROW(buffer.SetValue("", -1, nullptr), KRException);
    EXPECT_THROW(buffer.SetCommandString("20;\xFF\xFF\xFF\xFF;", nullptr, 0), KRException);
    EXPECT_EQ(buffer.GetStringValue(), "xy");
}

} // namespace
