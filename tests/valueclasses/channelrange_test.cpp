#include "byteimages.h"
#include "platform/axis/axisdefinition.h"
#include "platform/base/bytes.h"
#include "platform/base/krexception.h"
#include "valueclasses/channels/channelrangedefinition.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <stdexcept>

namespace values {
namespace {

using Ids = std::vector<unsigned int>;
constexpr double kLargest = std::numeric_limits<double>::max();

/// Three ranges whose ids and frequencies do not follow their keys: key 0 has ids 100 to 104,
/// key 1 ids 0 to 9, key 2 ids 200 to 201 over frequencies of key 1.
ChannelRangeDefinition three()
{
    ChannelRangeDefinition definition;
    definition.AddRangeDefinition(100, 5U, 1000.0, 10.0, QStringLiteral("high"));
    definition.AddRangeDefinition(0, 10U, 100.0, 1.0, QStringLiteral("low"));
    definition.AddRangeDefinition(200, 2U, 105.0, 2.0, QString());
    return definition;
}

TEST(ChannelRange, CountsItsChannels)
{
    struct Case {
        const char *name;
        double start, step, stop;
        unsigned int first, count;
    };
    for (const Case &c : {Case{"span below 0.5", 100.0, 0.1, 100.4, 0, 1},
                          {"span of 0.5", 100.0, 0.1, 100.5, 0, 6},
                          {"rounded down", 0, 10, 24, 0, 3},
                          {"rounded up", 0, 10, 25, 0, 4},
                          {"no step", 0, 0, 25, 0, 1},
                          {"falling", 25, 1, 0, 0, 1},
                          {"no number", std::nan(""), 1, 5, 0, 1},
                          {"more than ids", 0, 1e-9, 1e9, 10, 4294967286U},
                          {"infinitely many", 0, 1e-300, 1e300, 0, 4294967295U}}) {
        SCOPED_TRACE(c.name);
        const ChannelRange range(c.first, c.start, c.step, c.stop, QString());
        EXPECT_EQ(range.GetChannelCount(), c.count);
        EXPECT_EQ(range.GetFirstChannelId(), c.first);
        EXPECT_EQ(range.GetLastChannelId(), c.first + c.count - 1);
    }
    const ChannelRange cut(0xFFFFFFF0U, 100U, 0.0, 1.0, QString());
    EXPECT_EQ(cut.GetChannelCount(), 16U);
    EXPECT_TRUE(cut.HoldsChannelId(0xFFFFFFFFU));
    EXPECT_FALSE(cut.HoldsChannelId(0));
    const ChannelRange none(0, 0U, 5.0, 1.0, QString());
    EXPECT_EQ(none.GetLastCenterFrequency(), 5.0);
    EXPECT_FALSE(none.HoldsChannelId(0));
    EXPECT_FALSE(none.SharesIdsWith(cut));

    ChannelRangeDefinition all;
    all.AddRangeDefinition(5, 0xFFFFFFFFU, 0.0, 1.0, QString());
    all.AddRangeDefinition(0, 5U, 0.0, 1.0, QString());
    EXPECT_EQ(all.GetChannelCount(), 0xFFFFFFFFU) << "all ids but one: they have no number";
    EXPECT_EQ(all.IndexToChannelId(0xFFFFFFFAU), 0xFFFFFFFFU);
    EXPECT_EQ(all.IndexToChannelId(0xFFFFFFFEU), 3U);
}

TEST(ChannelRange, ComparesInItsOwnWay)
{
    const ChannelRange range(5, 10U, 100.0, 0.1, QStringLiteral("a"));
    EXPECT_TRUE(range == ChannelRange(5, 10U, 100.0, 0.1, QStringLiteral("b")));
    EXPECT_TRUE(range == ChannelRange(5, 10U, std::nextafter(100.0, 0.0), 0.1, QString()));
    EXPECT_FALSE(range == ChannelRange(5, 10U, 100.0 + 3e-14, 0.1, QString()));
    EXPECT_FALSE(range == ChannelRange(5, 10U, 0.0, 0.1, QString()));
    EXPECT_FALSE(range == ChannelRange(5, 11U, 100.0, 0.1, QString()));
    EXPECT_TRUE(range < range);
    EXPECT_TRUE(range < ChannelRange(4, 1.0, 1.0, QString()));
    EXPECT_FALSE(range < ChannelRange(6, 1.0, 1.0, QString()));
}

TEST(ChannelRange, FindsTheClosest)
{
    const ChannelRange range(10, 5U, 100.0, 10.0, QString()); // 100 to 140, edges 95 and 145
    struct Case {
        double frequency;
        unsigned int id;
        double centre, halfStep;
    };
    for (const Case &c : {Case{-1e300, 10, 100, 95},
                          {99, 10, 100, 100},
                          {104.9, 10, 100, 105},
                          {105, 11, 110, 105},
                          {102.5, 10, 100, 105},
                          {97.4, 10, 100, 95},
                          {144, 14, 140, 145},
                          {1e300, 14, 140, 145}}) {
        SCOPED_TRACE(c.frequency);
        EXPECT_EQ(range.GetClosestChannelIdForFrequency(c.frequency), c.id);
        EXPECT_EQ(range.GetClosestChannelFrequency(c.frequency, false), c.centre);
        EXPECT_EQ(range.GetClosestChannelFrequency(c.frequency, true), c.halfStep);
    }
    EXPECT_EQ(range.GetClosestChannelIdForFrequency(std::nan("")), 10U);
    EXPECT_EQ(ChannelRange(7, 9U, 100.0, 0.0, QString()).GetClosestChannelIdForFrequency(1e9), 7U);
}

TEST(ChannelRangeDefinition, AnswersWhenEmpty)
{
    const ChannelRangeDefinition empty;
    EXPECT_EQ(empty.GetMinChannelId() + empty.GetMaxChannelId() + empty.GetChannelCount(), 0U);
    EXPECT_EQ(empty.GetMinCenterFrequency(), kLargest);
    EXPECT_EQ(empty.GetMaxCenterFrequency(), -kLargest);
    EXPECT_EQ(empty.FindStartChannel4RangeDefinition(0, 0, 0), -1);
    EXPECT_THROW(empty.IndexToChannelId(0), std::out_of_range);
}

TEST(ChannelRangeDefinition, MapsIdIndexAndFrequencyInKeyOrder)
{
    const ChannelRangeDefinition definition = three();
    EXPECT_EQ(definition.GetChannelCount(), 17U);
    EXPECT_EQ(definition.GetMinChannelId(), 0U);
    EXPECT_EQ(definition.GetMaxChannelId(), 201U);
    EXPECT_EQ(definition.GetMinCenterFrequency(), 100.0);
    EXPECT_EQ(definition.GetMaxCenterFrequency(), 1040.0);
    EXPECT_EQ(definition.GetKeyVector(), (std::vector<int>{0, 1, 2}));
    struct Case {
        unsigned int index, id;
        double frequency, step;
        int key;
    };
    const auto frequencies = definition.Frequencies();
    ASSERT_EQ(frequencies.size(), 17U);
    for (const Case &c : {Case{0, 100, 1000, 10, 0},
                          {4, 104, 1040, 10, 0},
                          {5, 0, 100, 1, 1},
                          {14, 9, 109, 1, 1},
                          {15, 200, 105, 2, 2},
                          {16, 201, 107, 2, 2}}) {
        SCOPED_TRACE(c.index);
        EXPECT_EQ(definition.IndexToChannelId(c.index), c.id);
        EXPECT_EQ(definition.IndexToChannelIdAndFrequency(c.index),
                  (std::pair<unsigned int, double>(c.id, c.frequency)));
        EXPECT_EQ(definition.ChannelIdToIndex(c.id), c.index);
        EXPECT_EQ(definition.ChannelIdToFrequency(c.id), c.frequency);
        EXPECT_EQ(definition.GetFrequencyStepForChannelId(c.id), c.step);
        EXPECT_EQ(definition.GetRangeKeyForChannelId(c.id), c.key);
        EXPECT_EQ(&definition.GetRangeForChannelId(c.id), &definition.GetChannelRange(c.key));
        EXPECT_EQ(frequencies[c.index], c.frequency);
    }
}

// The same ids, whether the ranges ascend (a binary search) or not.
TEST(ChannelRangeDefinition, FindsTheRangeOfEachId)
{
    ChannelRangeDefinition ascending, mixed;
    for (const unsigned int first : {0U, 20U, 30U, 40U, 100U})
        ascending.AddRangeDefinition(first, first == 30 ? 0U : 10U, 1e6, 1e3, QString());
    for (const unsigned int first : {100U, 0U, 40U, 30U, 20U})
        mixed.AddRangeDefinition(first, first == 30 ? 0U : 10U, 1e6, 1e3, QString());
    for (unsigned int id = 0; id < 120; ++id) {
        SCOPED_TRACE(id);
        const unsigned int first = id / 10 * 10;
        const bool held = first == 0 || first == 20 || first == 40 || first == 100;
        for (const auto *definition : {&ascending, &mixed}) {
            const auto *range = definition->FindIndexedRange(id);
            ASSERT_EQ(range != nullptr, held);
            if (held) {
                EXPECT_EQ(range->firstChannelId, first);
            }
        }
    }
}

TEST(ChannelRangeDefinition, RefusesWhatItDoesNotHold)
{
    const ChannelRangeDefinition definition = three();
    for (const unsigned int id : {10U, 99U, 105U, 199U, 202U, 0xFFFFFFFFU}) {
        EXPECT_EQ(definition.FindIndexedRange(id), nullptr);
        EXPECT_THROW(definition.ChannelIdToIndex(id), InvalidChannelIdException);
        EXPECT_THROW(definition.GetRangeKeyForChannelId(id), InvalidChannelIdException);
    }
    EXPECT_THROW(definition.IndexToChannelId(17), std::out_of_range);
    EXPECT_THROW(definition.IndexToChannelIdAndFrequency(17), std::out_of_range);
    EXPECT_THROW(definition.GetChannelRange(3), std::out_of_range);
}

TEST(ChannelRangeDefinition, ReusesTheSmallestKey)
{
    ChannelRangeDefinition definition = three();
    definition.RemoveRangeDefinitionByKey(0);
    definition.RemoveRangeDefinitionByKey(77);
    EXPECT_EQ(definition.IndexToChannelId(0), 0U);
    EXPECT_EQ(definition.AddRangeDefinition(300, 5.0, 1.0, QString()), 0);
    EXPECT_EQ(definition.IndexToChannelId(0), 300U);
    EXPECT_EQ(definition.ChannelIdToIndex(0), 1U);
    const ChannelRangeDefinition moved = std::move(definition);
    EXPECT_EQ(moved.GetChannelCount(), 13U);
}

TEST(ChannelRangeDefinition, KeepsADuplicateUntilItIsRemoved)
{
    ChannelRangeDefinition definition = three();
    EXPECT_THROW(definition.AddRangeDefinition(9, 1U, 1.0, 1.0, QString()),
                 DuplicateChannelIdException);
    EXPECT_EQ(definition.GetKeyVector().size(), 4U);
    EXPECT_EQ(definition.ChannelIdToIndex(9), 14U) << "the smaller key wins";
    EXPECT_THROW(definition.AddRangeDefinition(500, 1U, 1.0, 1.0, QString()),
                 DuplicateChannelIdException);
    definition.RemoveRangeDefinitionByKey(3);
    definition.RemoveRangeDefinitionByKey(4);
    EXPECT_EQ(definition.AddRangeDefinition(500, 1U, 1.0, 1.0, QString()), 3);
    EXPECT_THROW(definition.SetChannelRangeMap({{1, ChannelRange(0, 5U, 0.0, 1.0, QString())},
                                                {2, ChannelRange(4, 5U, 0.0, 1.0, QString())}}),
                 DuplicateChannelIdException);
    EXPECT_EQ(definition.GetKeyVector(), (std::vector<int>{1, 2}));
}

TEST(ChannelRangeDefinition, FindsChannelsByFrequency)
{
    const ChannelRangeDefinition definition = three();
    EXPECT_EQ(definition.GetClosestChannelIdsForFrequency(106.2), (Ids{6, 201}));
    EXPECT_EQ(definition.GetClosestChannelIdsForFrequency(109.5), (Ids{9})) << "outer edge";
    EXPECT_EQ(definition.GetClosestChannelIdsForFrequency(109.6), Ids{});
    EXPECT_EQ(definition.GetClosestChannelIdsForFrequencyRange(107.9, 1015),
              (Ids{100, 102, 8, 9, 201, 201}));
    EXPECT_EQ(definition.GetClosestChannelIdsForFrequencyRange(300, 400), Ids{});
    EXPECT_EQ(definition.GetFrequencyStep4Frequency(106.0), 1.0);
    EXPECT_EQ(definition.GetFrequencyStep4Frequency(1040.0), 10.0);
    EXPECT_EQ(definition.GetFrequencyStep4Frequency(1041.0), -1.0);
    double frequency = 106.2, outside = 500.0;
    EXPECT_TRUE(definition.GetClosestChannelCenterFrequency(frequency));
    EXPECT_EQ(frequency, 106.0);
    EXPECT_FALSE(definition.GetClosestChannelCenterFrequency(outside));
    EXPECT_EQ(outside, 500.0);
    EXPECT_EQ(definition.FindStartChannel4RangeDefinition(105, 2, 107), 200);
    EXPECT_EQ(definition.FindStartChannel4RangeDefinition(105, 2, 106), -1);
    EXPECT_EQ(definition.FindFirstChannel4RangeDefinition(1001, 10.00000005, 1039), 100);
    EXPECT_EQ(definition.FindFirstChannel4RangeDefinition(1001, 10.001, 1039), -1);
    EXPECT_EQ(definition.FindFirstChannel4RangeDefinition(1001, 10, 1041), -1);
}

TEST(ChannelRangeDefinition, GivesEachChannelItsPixels)
{
    constexpr unsigned short kNone = 0xFFFF;
    struct Case {
        const char *name;
        double first, step;
        unsigned int count;
        short pixels; // over 0 to 100
        std::vector<unsigned short> expected;
    };
    for (const Case &c : {
             Case{"a channel of several pixels", 10, 20, 5, 10, {0, 1, 2, 3, 4, 5, 6, 7, 8, 9}},
             {"several channels in a pixel", 2.5, 5, 4, 10, {0, 0, 0, 0, 1, 1, 1, 2}},
             {"over the lower end", 0, 20, 2, 10, {0, 0, 1, 3}},
             {"over the upper end", 100, 20, 1, 10, {9, 9}},
             {"outside", 200, 20, 2, 10, {kNone, kNone, kNone, kNone}},
             {"wider than the axis", 50, 1000, 1, 10, {0, 9}},
             {"falling step", 50, -20, 1, 10, {4, 6}},
             {"no number", std::nan(""), 20, 1, 10, {kNone, kNone}},
             {"first off the axis", -20, 20, 2, 10, {kNone, kNone, 0, 1}},
         }) {
        SCOPED_TRACE(c.name);
        ChannelRangeDefinition definition;
        definition.AddRangeDefinition(0, c.count, c.first, c.step, QString());
        axisDefinition axis;
        ASSERT_EQ(axis.init(0, 100, c.pixels), 0);
        std::vector<unsigned short> pixels{1, 2, 3};
        EXPECT_EQ(definition.CalcIndex2Pixel(axis, pixels), int(c.count));
        EXPECT_EQ(pixels, c.expected);
        axis.invalidate();
        EXPECT_EQ(definition.CalcIndex2Pixel(axis, pixels), -1);
        EXPECT_EQ(pixels, c.expected);
    }
}

/// Keys 0 ("A", ids 1 to 3, 2.0, step 0.5) and 7 (no name, id -2 as unsigned, 1.0, step 0.0).
ChannelRangeDefinition named()
{
    ChannelRangeDefinition definition;
    definition.SetChannelRangeMap({{0, ChannelRange(1, 3U, 2.0, 0.5, QStringLiteral("A"))},
                                   {7, ChannelRange(0xFFFFFFFEU, 1U, 1.0, 0.0, QString())}});
    return definition;
}
const char *const kNamedForm = "47 00 00 00 00 00 00 00 02 "
                               "00 00 00 00 00 00 00 01 00 00 00 03 40 00 00 00 00 00 00 00 "
                               "3f e0 00 00 00 00 00 00 00 00 00 02 00 41 "
                               "00 00 00 07 ff ff ff fe 00 00 00 01 3f f0 00 00 00 00 00 00 "
                               "00 00 00 00 00 00 00 00 00 00 00 00 ";
const char *const kOldForm = "02 00 "
                             "00 00 00 00 01 00 00 00 03 00 00 00 00 00 00 00 00 00 00 40 "
                             "00 00 00 00 00 00 e0 3f "
                             "07 00 00 00 fe ff ff ff 01 00 00 00 00 00 00 00 00 00 f0 3f "
                             "00 00 00 00 00 00 00 00 3b ";
const char *const kOldestForm = "02 00 "
                                "01 00 00 00 03 00 00 00 00 00 00 00 00 00 00 40 "
                                "00 00 00 00 00 00 e0 3f "
                                "fe ff ff ff 01 00 00 00 00 00 00 00 00 00 f0 3f "
                                "00 00 00 00 00 00 00 00 3b ";

/// Reads \a image into a definition that holds \a before, and tells how many bytes it took; after
/// a fault, its class and reason, with cursor and definition as they were.
enum class Form { Current, Old };
struct Read {
    ChannelRangeDefinition definition;
    std::size_t consumed = 0;
    std::string className{}, reason{};
};
Read read(Form form, const std::string &image, ChannelRangeDefinition before = {})
{
    const Kelm::ReadScope scope(image.data(), image.size());
    const char *cursor = image.data();
    Read result{before};
    try {
        if (form == Form::Current)
            result.definition = Kelm::fromCharStream<ChannelRangeDefinition>(&cursor);
        else
            result.definition.fromOldCharStream(&cursor);
        result.consumed = std::size_t(cursor - image.data());
    } catch (const KRException &error) {
        result.className = error.GetClassName();
        result.reason = error.what();
        EXPECT_EQ(result.definition, before);
        EXPECT_EQ(cursor, image.data());
    }
    return result;
}

TEST(ChannelRangeStreams, HaveTheBytesWrittenDown)
{
    const std::string image = fromHex(kNamedForm), old = fromHex(kOldForm),
                      oldest = fromHex(kOldestForm);
    EXPECT_EQ(Kelm::toStandardString(named()), image);
    EXPECT_EQ(named().toOldStandardString(), old);
    const Read current = read(Form::Current, image), fromOld = read(Form::Old, old);
    EXPECT_EQ(current.consumed, image.size());
    EXPECT_EQ(current.definition, named());
    EXPECT_EQ(current.definition.GetChannelRange(0).GetName(), QStringLiteral("A"));
    EXPECT_EQ(fromOld.consumed, old.size());
    EXPECT_EQ(fromOld.definition, named());
    const Read fromOldest = read(Form::Old, oldest);
    EXPECT_EQ(fromOldest.consumed, oldest.size());
    EXPECT_EQ(fromOldest.definition.GetKeyVector(), (std::vector<int>{0, 1}));
    EXPECT_EQ(fromOldest.definition.GetChannelRange(1), named().GetChannelRange(7));
}

TEST(ChannelRangeStreams, RefuseWhatAHostilePeerWouldSend)
{
    for (const auto &[form, whole] :
         {std::pair(Form::Current, fromHex(kNamedForm)), {Form::Old, fromHex(kOldForm)}})
        for (std::size_t length = 0; length < whole.size(); ++length)
            EXPECT_NE(read(form, whole.substr(0, length), three()).reason, "") << length;

    const std::string begun =
        " 00 00 00 00 00 00 00 01 00 00 00 00 00 00 00 01 00 00 00 03 40 00 00 "
        "00 00 00 00 00 3f e0 00 00 00 00 00 00 ";
    struct Case {
        const char *name;
        Form form;
        std::string hex, reason = "Command string is not terminated with ';'";
    };
    const std::string kNotFinite = "A channel range has a frequency that is not finite";
    for (const Case &c :
         {Case{"length that ends inside", Form::Current, "04 00 00 00 00 00 00 00 02 00 "},
          {"many ranges announced", Form::Current, "05 00 00 00 00 7f ff ff ff "},
          {"negative count", Form::Current, "05 00 00 00 00 ff ff ff ff "},
          {"later version", Form::Current, "05 00 00 00 01 00 00 00 00 ",
           "Unknown version 1 of a channel range definition"},
          {"length past the end", Form::Current, "ff ff ff ff 00 00 00 00 00 "},
          {"long name announced", Form::Current, "25" + begun + "7f ff ff fe "},
          {"name of half a character", Form::Current, "26" + begun + "00 00 00 01 41 "},
          {"centre that is no number", Form::Current,
           "25 00 00 00 00 00 00 00 01 00 00 00 00 00 00 00 01 00 00 00 03 7f f8 00 00 00 00 00 00 "
           "3f e0 00 00 00 00 00 00 00 00 00 00 ",
           kNotFinite},
          {"infinite step, without keys", Form::Old,
           "01 00 01 00 00 00 03 00 00 00 00 00 00 00 00 00 00 40 00 00 00 00 00 00 f0 7f 3b ",
           kNotFinite},
          {"no terminator", Form::Old, "ff ff 3b "}}) {
        const Read refused = read(c.form, fromHex(c.hex));
        EXPECT_EQ(refused.reason, c.reason) << c.name;
        if (c.form == Form::Old && c.reason != kNotFinite) {
            EXPECT_EQ(refused.className, "CommandSetChannelRangeDefinition<Y, YHandler>");
        }
    }
}

TEST(ChannelRangeStreams, ReadANullNameAndWriteAnEmptyOne)
{
    std::string image = fromHex(kNamedForm);
    image.replace(image.size() - 4, 4, "\xff\xff\xff\xff");
    EXPECT_EQ(Kelm::toStandardString(read(Form::Current, image).definition), fromHex(kNamedForm));
}

TEST(ChannelRangeStreams, OldFormAddsToWhatIsThere)
{
    const Read none = read(Form::Old, fromHex("00 00 3b "), three());
    EXPECT_EQ(none.consumed, 3U);
    EXPECT_EQ(none.definition, three());

    ChannelRangeDefinition target = three();
    const std::string some = fromHex(kOldForm);
    const char *cursor = some.data(); // its key 0 overwrites, but its ids 1 to 3 are those of key 1
    EXPECT_THROW(target.fromOldCharStream(&cursor), DuplicateChannelIdException);
    EXPECT_EQ(cursor, some.data()) << "nothing has moved";
    EXPECT_EQ(target, three());
    target.RemoveRangeDefinitionByKey(1);
    target = read(Form::Old, some, target).definition;
    EXPECT_EQ(target.GetKeyVector(), (std::vector<int>{0, 2, 7}));
    EXPECT_EQ(target.GetChannelRange(0).GetFirstChannelId(), 1U);
}

} // namespace
} // namespace values
