// Golden bytes of the fields and of the commands that every value understands.
#include "fault.h"
#include "valueclasses/commands/streamformat.h"
#include "valueclasses/commands/valuecommands.h"
#include "valueclasses/testvalue.h"
#include "valueclasses/value.h"
#include "valueclasses/valuebuffer.h"
#include "valueclasses/valuelist.h"
#include "valueclasses/valuestream.h"

#include <gmock/gmock.h>

#include <chrono>
#include <limits>

namespace {

using namespace values;
using namespace std::string_literals;

template <typename T>
struct Row {
    T value;
    int mode;
    std::string bytes;
    T readBack;
};

template <typename T>
void expectForms(std::initializer_list<Row<T>> rows)
{
    for (const Row<T> &row : rows) {
        SCOPED_TRACE(::testing::PrintToString(row.bytes) + " in mode " + std::to_string(row.mode));
        EXPECT_EQ(StreamFormat<T>::ToStream(row.value, row.mode), row.bytes);
        const std::string field = row.bytes + ';';
        const Kelm::ReadScope scope(field.data(), field.size());
        const char *pos = field.data();
        EXPECT_EQ(StreamFormat<T>::FromStream(&pos, row.mode), row.readBack);
        EXPECT_EQ(pos, field.data() + row.bytes.size());
    }
}

// Fields that no scalar value holds; those of the values stand in valueroad_test.cpp.
TEST(StreamFormat, WritesAndReadsNumbers)
{
    expectForms<char>({{'A', -1, "A", 0}});
    expectForms<unsigned short>({{65535, -1, "65535", 65535}, {65535, 0, "\xFF\xFF", 65535}});
    expectForms<Kelm::Long>({{-5, -1, "-5", -5}, {-5, 0, "\xFB\xFF\xFF\xFF", -5}});
    expectForms<std::uint64_t>(
        {{18446744073709551615U, -1, "18446744073709551615", 18446744073709551615U},
         {1, 0, "\x01\0\0\0\0\0\0\0"s, 1}});
    expectForms<float>({{0.1F, -1, "0.100000", 0.1F}, {1.0F, 0, "\0\0\x80\x3F"s, 1.0F}});
    expectForms<double>({{1e-9, -1, "0.000000", 0.0}});
}

TEST(StreamFormat, WritesAndReadsTexts)
{
    const QString umlaut = QString::fromUtf8("\xC3\xA4"); // two bytes of UTF-8, one character
    expectForms<std::string>({{"a;\0"s, 0, "\x03\0\0\0a;\0"s, "a;\0"s}});
    expectForms<std::wstring>({{L"a\u20AC", 0, "\x02\0\0\0a\0\0\0\xAC\x20\0\0"s, L"a\u20AC"}});
    expectForms<QString>({
        {"ab", -1, "ab", "ab"},
        {umlaut, -1, "\xC3\xA4", QString::fromLatin1("\xC3\xA4")},
        {"ab", 0, "\x02\0\0\0ab"s, "ab"},
        {"ab", -2,
         "\x02\0\0\0"
         "0ab"s,
         "ab"},
        {umlaut, -3,
         "\x02\0\0\0"
         "1\xE4\0"s,
         umlaut},
        {QString(), -2,
         "\0\0\0\0"
         "0"s,
         QString()},
    });
    EXPECT_EQ(StreamFormat<QString>::ToStream(umlaut, 1), "\x01\0\0\0\xC3\xA4"s)
        << "the count understates the bytes; a reader falls short";
    const std::string otherMark = "\x63\0\0\0"
                                  "7\x02\0\0\0ab"s;
    const char *pos = otherMark.data();
    EXPECT_EQ(StreamFormat<QString>::FromStream(&pos, -2), "ab") << "read afresh behind the mark";
}

TEST(StreamFormat, ReadsOddTexts)
{
    const auto read = [](auto kind, std::string text) {
        text += ';';
        const Kelm::ReadScope scope(text.data(), text.size());
        const char *pos = text.data();
        return StreamFormat<decltype(kind)>::FromStream(&pos, -1);
    };
    EXPECT_FALSE(read(true, "True"));
    EXPECT_EQ(read(0, "x"), 0);
    EXPECT_EQ(read(0, ""), 0);
    EXPECT_EQ(read(0, " 7 "), 7);
    EXPECT_EQ(read(0, "99999999999"), 0);
    EXPECT_EQ(read(short(0), "40000"), 0) << "rather than what is left of it in 16 bits";
    EXPECT_EQ(read(short(0), "-32768"), -32768);
    EXPECT_EQ(read(0U, "-1"), 0U);
    EXPECT_EQ(read(0.0, "1e3"), 1000.0);
    EXPECT_EQ(read(0.0, "inf"), std::numeric_limits<double>::infinity());
    EXPECT_EQ(read(0.0, "-"), 0.0);
    EXPECT_EQ(read(0.0, "-.5"), -0.5);
}

TEST(StreamFormat, PrintsDoublesAsTheFormatClassDoes)
{
    for (const double number :
         {0.0, -0.0, -1e-9, 1.0 / 3.0, 2.5e-7, 5e-7, 123456789.0123456789, 1e22, -1e15, 0.1 + 0.2,
          1e100, 2147483647.9999995, 1.7976931348623157e308, 0.0078125, -2.0078125, 12345.0078125,
          0.0234375, 0x1p46 - 0x1p-7})
        EXPECT_EQ(StreamFormat<double>::ToStream(number, -1),
                  FormatFloat<double>::GetString(number).toStdString());
}

// ------------------------------------------------------------------------------------- commands

struct StringCase {
    const char *name;
    std::string bytes;
    std::vector<int> ids;
};

TEST(CommandString, ParsesWhatItMayAndStopsAtAnEmptyId)
{
    const StringCase cases[] = {
        {"empty", "", {}},
        {"stops at an empty id", "3;;3;", {3}},
        {"stops at a zero byte", "3;\0"s + "3;", {3}},
        {"silent end", "4;0;", {4}},
        {"in a row", "0;10;3;4;3;", {0, 3, 4}},
    };
    for (const StringCase &row : cases) {
        SCOPED_TRACE(row.name);
        TestValue value;
        std::vector<std::unique_ptr<KELM::ICommand>> commands;
        value.SetCommandString(row.bytes, commands, nullptr, 0);
        std::vector<int> ids;
        for (const auto &command : commands)
            ids.push_back(command->GetCommandId());
        EXPECT_EQ(ids, row.ids);
    }
}

TEST(CommandString, RefusesWhatIsMalformedAndChangesNothing)
{
    const std::string noEnd = "Command string is not terminated with ';'";
    const std::string badFormat = "Passed string has unexpected format";
    struct Case {
        std::string bytes;
        int mode;
        std::string reason, className = {};
    } const cases[] = {
        {"1;2;6;", -1, "Invalid command id: 6"},
        {"1;2;99999999999;", -1, "Invalid command id: 2147483647"},
        {"1;2;1x;", -1, "Syntax error in command id: 1x"},
        {"1;2;3", -1, noEnd},
        {"1;2;0;;", -1,
         "There is no TChangeCode specified for received call on ValueBase::HasChanged()"},
        {"1;2;4;;", -1,
         "There is no TChangeCode specified for received call on ValueBase::EndTransaction()"},
        {"1;2;0;-1;", -1, "Syntax error in TChangeCode: -1"},
        {"1;2;0;1", -1, noEnd},
        {"1;2;1;2", -1, badFormat, "ValueBase::CommandSetState"},
        {"1;\x02\0\0\0x"s, 0, badFormat, "ValueBase::CommandSetState"},
        {"5;\x02\0\0\0x"s, 0, badFormat, "ValueBase::CommandUpdateTimerTime"},
        {"2;\x01\0\0\0xx"s, 0, badFormat, "ValueBase::CommandSetValueDescriptor"},
        {"2;\xFF\xFF\xFF\xFFx;", 0, badFormat, "ValueBase::CommandSetValueDescriptor"},
        {"7;\xFF\xFF\xFF\x7Fx;", 0, noEnd, "ValueBase::CommandSetTranslationNamespace"},
        {"7;\x01\0\0\0xx"s, 0, noEnd, "ValueBase::CommandSetTranslationNamespace"},
        {"7;abc", -1, noEnd, "ValueBase::CommandSetTranslationNamespace"},
        {"20;5", -1, noEnd, "Value::CommandSetValue"},
        {"20;\x05\0\0"s, 0, noEnd, "Value::CommandSetValue"},
    };
    for (const auto &row : cases) {
        SCOPED_TRACE(::testing::PrintToString(row.bytes));
        Value<int> value;
        std::vector<std::unique_ptr<KELM::ICommand>> commands(1);
        const Fault fault =
            faultOf([&] { value.SetCommandString(row.bytes, commands, nullptr, row.mode); });
        EXPECT_EQ(fault.reason, row.reason);
        if (!row.className.empty()) {
            EXPECT_EQ(fault.className, row.className);
        }
        EXPECT_EQ(commands.size(), 1U);
        EXPECT_THROW(value.SetCommandString(row.bytes, nullptr, row.mode), KRException);
        EXPECT_EQ(value.GetState(), VS_NORMAL);
    }
}

TEST(CommandString, NamesTheCommandWhoseBytesEndTooEarly)
{
    ValueStream<int> stream;
    ValueBuffer buffer;
    ValueList<int> list;
    struct Case {
        ValueBase &value;
        int mode;
        std::vector<std::string> strings; // that end in each part of the payload
        std::string className, functionName;
    } const cases[] = {
        {stream, -1, {"20;", "20;1 2"}, "valuestream", "CommandSetValueStr"},
        {stream,
         0,
         {"20;\x01\0"s, "20;\x01\0\0\0\x07"s, "20;\x01\0\0\0\x07\0\0\0"s},
         "valuestream",
         "CommandSetValueStr"},
        {buffer,
         0,
         {"20;\x02\0"s, "20;\x02\0\0\0x"s, "20;\x02\0\0\0xx"s},
         "ValueBuffer::CommandSetValue",
         "CommandSetValue"},
        {list, -1, {"20;0", "20;0;7"}, "ValueList::CommandInsert", "CommandInsert"},
        {list,
         0,
         {"20;\0\0"s, "20;\0\0\0\0\x07"s, "20;\0\0\0\0\x07\0\0\0"s},
         "ValueList::CommandInsert",
         "CommandInsert"},
    };
    for (const Case &row : cases)
        for (const std::string &bytes : row.strings) {
            SCOPED_TRACE(row.className + " " + ::testing::PrintToString(bytes));
            const Fault fault =
                faultOf([&] { row.value.SetCommandString(bytes, nullptr, row.mode); });
            EXPECT_EQ(fault.reason, "Command string is not terminated with ';'");
            EXPECT_EQ(fault.className, row.className);
            EXPECT_EQ(fault.functionName, row.functionName);
        }
}

TEST(CommandString, BaseCommandsHaveTheseForms)
{
    TestValue value;
    const TestDescriptors descriptors("/A/B");
    struct Case {
        std::unique_ptr<Command> command;
        std::string text, binary, tagged;
    } cases[] = {
        {std::make_unique<ValueBase::CommandSetValueDescriptor>(&value, descriptors.Get(), nullptr),
         "2;/A/B;", "2;\x04\0\0\0/A/B;"s,
         "2;\x04\0\0\0"
         "0/A/B;"s},
        {std::make_unique<ValueBase::CommandSetValueDescriptor>(&value, nullptr, nullptr), "2;;",
         "2;\0\0\0\0;"s,
         "2;\0\0\0\0"
         "0;"s},
        {std::make_unique<ValueBase::CommandStartTransaction>(&value, nullptr), "3;", "3;", "3;"},
        {std::make_unique<ValueBase::CommandEndTransaction>(&value, CC_VALUE, nullptr), "4;3;",
         "4;3;", "4;3;"},
    };
    for (const Case &row : cases) {
        const std::pair<int, std::string> forms[] = {
            {-1, row.text}, {0, row.binary}, {1, row.binary}, {-2, row.tagged}, {-3, row.tagged}};
        for (const auto &[mode, bytes] : forms) {
            SCOPED_TRACE(row.text + " in mode " + std::to_string(mode));
            const std::unique_ptr<Command> clone(row.command->Clone());
            std::string written;
            clone->AddCommandString(written, mode);
            EXPECT_EQ(written, bytes);

            std::vector<std::unique_ptr<KELM::ICommand>> parsed;
            value.SetCommandString(bytes, parsed, nullptr, mode);
            ASSERT_EQ(parsed.size(), 1U);
            std::string again;
            dynamic_cast<Command &>(*parsed[0]).AddCommandString(again, mode);
            EXPECT_EQ(again, bytes);
        }
    }
}

TEST(CommandString, ObjectStateRebuildsTheValue)
{
    const TestDescriptors descriptors("/A/B");
    TestValue from("from", VS_DISABLED);
    from.SetTranslationNamespace("Ns", nullptr);
    from.SetUpdateTimerTime(60000);
    from.SetValueDescriptor(descriptors.Get());
    EXPECT_EQ(from.GetObjectStateStringForTransmission(unsigned(-1)), "1;2;5;60000;7;Ns;2;/A/B;");
    for (const int mode : {-1, 0, -2}) {
        TestValue to;
        to.SetCommandString(from.GetObjectStateStringForTransmission(unsigned(mode)), nullptr,
                            mode);
        EXPECT_EQ(to.GetState(), VS_DISABLED);
        EXPECT_EQ(to.GetUpdateTimerTime(), 60000U);
        EXPECT_EQ(to.GetTranslationNamespace(), "Ns");
        EXPECT_EQ(to.GetValueDescriptor(), descriptors.Get());
        to.SetCommandString("7;\x03\0\0\0a\0b;"s, nullptr, 0);
        EXPECT_EQ(to.GetTranslationNamespace(), "a\0b"s);
        to.SetCommandString("2;unknown;", nullptr, -1);
        EXPECT_EQ(to.GetValueDescriptor(), nullptr) << "a key that isn't known clears";
    }
    EXPECT_EQ(TestValue().GetObjectStateStringForRecording(),
              "1;\0\0\0\0;7;\x05\0\0\0VdStr;2;\0\0\0\0;"s);
}

} // namespace
