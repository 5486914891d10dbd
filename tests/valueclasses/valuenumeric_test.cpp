// Limits, steps, the changing value and the offset of numbers.
#include "valueclasses/testvalue.h"
#include "valueclasses/valuenumericwithoffset.h"

#include <gmock/gmock.h>

#include <cmath>
#include <limits>

namespace {

using namespace values;
using ::testing::ElementsAre;
using ::testing::IsEmpty;

template <typename V>
class ValueNumericTest : public ::testing::Test {
};
using Numbers = ::testing::Types<ValueNumeric<int>, ValueNumeric<std::int64_t>,
                                 ValueNumeric<double>, ValueNumericWithOffset<double>>;
TYPED_TEST_SUITE(ValueNumericTest, Numbers);

TYPED_TEST(ValueNumericTest, ClipsToTheLimitsThatAreInForce)
{
    TypeParam value;
    IValueNumeric &number = value;
    value.SetValue(5, nullptr);
    EXPECT_EQ(value.GetValue(), 1) << "limits are 0 and 1 at first";
    CodeLog log;
    value.AddObserver(&log);
    value.SetMinMax(
        QPair<typename TypeParam::ValueTypename, typename TypeParam::ValueTypename>(-10, 100),
        nullptr);
    value.SetMinMax(-10, 100, 1, nullptr);
    EXPECT_THAT(log.take(), ElementsAre(CC_LIMITS)) << "once, and not for equal ones";
    value.SetValue(50, nullptr);
    value.SetMax(20, nullptr);
    EXPECT_EQ(value.GetValue(), 50) << "only the next set clips";
    value.SetValue(60, nullptr);
    EXPECT_EQ(value.GetValue(), 20);
    value.SetStep(0, nullptr);
    value.SetStep(-1, nullptr);
    EXPECT_EQ(value.GetStep(), 1);
    EXPECT_THAT(log.take(), ElementsAre(CC_VALUE, CC_LIMITS, CC_VALUE));

    number.StepDown(3, nullptr);
    EXPECT_EQ(number.doubleGetValue(), 17);
    number.StepUp(65535, nullptr);
    number.StepUp(1, nullptr);
    EXPECT_EQ(number.doubleGetValue(), 20);
    EXPECT_THAT(log.take(), ElementsAre(CC_VALUE, CC_VALUE)) << "nothing at the limit";
    value.DeleteObservers();
}

TYPED_TEST(ValueNumericTest, AChangingValueMakesNoTraffic)
{
    TypeParam value;
    IValueNumeric &number = value;
    number.doubleSetMax(10, nullptr);
    value.CommandRecordingOn();
    CodeLog log;
    value.AddObserver(&log);
    number.doubleSetChangingValue(2.7, nullptr);
    EXPECT_EQ(number.doubleGetChangingValue(), number.castToValueType(2.7));
    number.doubleSetChangingValue(99, nullptr);
    EXPECT_EQ(number.doubleGetChangingValue(), 10);
    EXPECT_THAT(value.GetCommandList(), IsEmpty());
    EXPECT_EQ(value.GetValue(), 0);
    EXPECT_THAT(log.take(), ElementsAre(CC_CHANGING, CC_CHANGING));
    number.EndChangingValue(nullptr);
    EXPECT_EQ(value.GetValue(), 10);
    EXPECT_THAT(log.take(), ElementsAre(CC_VALUE));
    value.DeleteObservers();
}

TEST(ValueNumeric, ItsOwnValueIsNoChangeBehindAnOffset)
{
    ValueNumericWithOffset<double> value;
    value.SetMinMax(-2, 5, 0.1, nullptr);
    value.SetOffset(0.36, nullptr);
    value.SetMin(-1.36, nullptr);
    value.SetValue(-1.36, nullptr);
    ASSERT_NE(value.GetValue() + 0.36, -1.0) << "a case in which the sum is rounded";
    CodeLog log;
    value.AddObserver(&log);
    value.SetValue(value.GetValue(), nullptr);
    value.StepDown(1, nullptr);
    EXPECT_THAT(log.codes, IsEmpty());
    value.DeleteObservers();
}

TEST(ValueNumeric, ExtremesNeitherOverflowNorCut)
{
    constexpr auto kLowest = std::numeric_limits<std::int64_t>::min();
    constexpr auto kHighest = std::numeric_limits<std::int64_t>::max();
    ValueNumeric<std::int64_t> value("n", kHighest - 1, kLowest, kHighest, kHighest);
    value.StepUp(65535, nullptr);
    EXPECT_EQ(value.GetValue(), kHighest);
    value.StepDown(65535, nullptr);
    EXPECT_EQ(value.GetValue(), kLowest);
    value.doubleSetValue(1e30, nullptr);
    EXPECT_EQ(value.GetValue(), kHighest);
    value.doubleSetValue(std::nan(""), nullptr);
    EXPECT_EQ(value.GetValue(), 0);

    ValueNumericWithOffset<double> real;
    real.SetMinMax(-5, 5, 1, nullptr);
    real.SetMinMax(-6, 6, std::nan(""), nullptr);
    real.SetMax(std::nan(""), nullptr);
    real.SetOffset(-INFINITY, nullptr);
    real.SetValue(3, nullptr);
    real.SetValue(std::nan(""), nullptr);
    real.doubleSetChangingValue(std::nan(""), nullptr);
    EXPECT_THAT((std::array{real.GetMin(), real.GetMax(), real.GetValue()}), ElementsAre(-5, 5, 3));
    EXPECT_EQ(real.doubleGetChangingValue(), 3);
    EXPECT_EQ(ValueNumeric<double>("n", std::nan(""), 2, 4).GetValue(), 2);

    Value<double> plain;
    CodeLog log;
    plain.AddObserver(&log);
    plain.SetValue(std::nan(""), nullptr);
    plain.SetValue(std::nan(""), nullptr);
    EXPECT_THAT(log.codes, ElementsAre(CC_VALUE, CC_VALUE)) << "equal to nothing";
    EXPECT_EQ(StreamFormat<double>::ToStream(-std::nan(""), ModeText), "nan");
    plain.DeleteObservers();
}

TEST(ValueNumericWithOffset, KeepsTheOutsideViewAndTheStoredCommands)
{
    CodeLog log;
    ValueNumericWithOffset<double> value;
    value.SetMinMax(0, 100, 0.5, nullptr);
    value.SetValue(40, nullptr);
    value.AddObserver(&log);
    value.SetOffset(10, nullptr);
    EXPECT_EQ(value.GetValue(), 40);
    EXPECT_THAT(value.GetMinMax(), ::testing::Pair(0, 100));
    value.SetCommandString("20;70;22;90;21;20;20;500;", nullptr, ModeText);
    EXPECT_EQ(value.GetValue(), 80) << "stored 500, clipped to 90";
    EXPECT_THAT(value.GetMinMax(), ::testing::Pair(10, 80));
    log.codes.clear();

    value.SetOffsetMinMax_KeepValueInRange(20, 0, 50, 0.5, nullptr);
    EXPECT_EQ(value.GetValue(), 50);
    EXPECT_EQ(value.GetOffset(), 20);
    EXPECT_THAT(log.take(), ElementsAre(CC_VALUE, CC_LIMITS));
    value.SetOffsetMinMax_KeepValueInRange(20, 0, 50, 0.5, nullptr);
    EXPECT_THAT(log.take(), IsEmpty());
    value.DeleteObservers();
}

} // namespace
