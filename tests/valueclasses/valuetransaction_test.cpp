#include "platform/base/krexception.h"
#include "valueclasses/testvalue.h"

#include <gmock/gmock.h>

namespace {

using namespace values;
using ::testing::ElementsAre;
using ::testing::IsEmpty;

class ValueTransactionTest : public ::testing::Test {
protected:
    void SetUp() override { value.AddObserver(&log); }

    CodeLog log; // outlives the value, whose end it is told
    TestValue value;
};

TEST_F(ValueTransactionTest, EndsWithItsFirstCodeAndNotifiesTheOthers)
{
    struct Case {
        const char *name;
        std::initializer_list<TChangeCode> codes;
        std::function<void(ValueTransaction &)> change;
        std::vector<int> notified;
    } const cases[] = {
        {"one", {CC_VALUE}, nullptr, {CC_VALUE}},
        {"none", {}, nullptr, {}},
        {"two", {CC_VALUE, CC_LIMITS}, nullptr, {CC_VALUE, CC_LIMITS}},
        {"holes", {CC_NONE, CC_VALUE, CC_NONE, CC_LIMITS}, nullptr, {CC_VALUE, CC_LIMITS}},
        {"added",
         {CC_VALUE},
         [](ValueTransaction &t) { t.AddChangeCode(CC_NAME); },
         {CC_VALUE, CC_NAME}},
        {"set far", {}, [](ValueTransaction &t) { t.SetChangeCode(CC_NAME, 5); }, {CC_NAME}},
        {"canceled", {CC_VALUE, CC_NAME}, [](ValueTransaction &t) { t.Cancel(); }, {}},
    };
    for (const auto &row : cases) {
        SCOPED_TRACE(row.name);
        {
            ValueTransaction transaction(value, row.codes, nullptr);
            EXPECT_TRUE(value.IsTransactionActive());
            value.SetState(value.GetState() == VS_NORMAL ? VS_DISABLED : VS_NORMAL, nullptr);
            if (row.change)
                row.change(transaction);
            EXPECT_EQ(transaction.IsCanceled(), row.notified.empty());
            EXPECT_THAT(log.codes, IsEmpty());
        }
        EXPECT_FALSE(value.IsTransactionActive());
        EXPECT_EQ(log.take(), row.notified);
    }
}

TEST_F(ValueTransactionTest, AnOuterTransactionHoldsBackAllCodesOfAnInnerOne)
{
    {
        const ValueTransaction outer = value.CreateTransaction(CC_LIMITS, nullptr);
        const ValueTransaction inner(value, {CC_VALUE, CC_NAME}, nullptr);
    }
    EXPECT_THAT(log.codes, ElementsAre(CC_LIMITS));
}

TEST_F(ValueTransactionTest, MovesItsTransaction)
{
    ValueTransaction first(value, CC_VALUE, &log);
    ValueTransaction second(std::move(first));
    EXPECT_FALSE(first.IsValid()); // NOLINT: a moved-from guard is empty
    EXPECT_TRUE(second.IsValid());
    EXPECT_EQ(second.GetChangeCode(0), CC_VALUE);
    EXPECT_EQ(second.GetChangeCode(1), CC_NONE);
    EXPECT_EQ(second.GetChangeCode(7), CC_NONE);
    second = ValueTransaction();
    EXPECT_FALSE(value.IsTransactionActive());
    EXPECT_THAT(log.codes, IsEmpty()) << "the source is skipped";
}

TEST_F(ValueTransactionTest, AReplayThatFailsEndsTheTransactionsThatItBegan)
{
    log.then = [](Observable *, TChangeCode code) {
        if (code == CC_LIMITS)
            throw KRException("no", "", "", "", 0);
    };
    const auto limits = std::to_string(CC_LIMITS), end = "4;" + std::to_string(CC_VALUE) + ';';
    const std::string failing = "3;3;0;" + limits + ";3;" + end + end + end;
    EXPECT_THROW(value.SetCommandString(failing, nullptr, -1), KRException);
    log.codes.clear();
    value.SetCommandString("3;1;2;" + end, nullptr, -1);
    EXPECT_THAT(log.codes, ElementsAre(CC_VALUE)) << "the outermost one, and it is told";
}

} // namespace
