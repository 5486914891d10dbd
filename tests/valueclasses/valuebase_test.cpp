#include "platform/base/krexception.h"
#include "valueclasses/commands/commandlistoptimizer.h"
#include "valueclasses/testvalue.h"
#include "valuetree/tree.h"

#include <gmock/gmock.h>

#include <memory>

namespace {

using namespace values;
using ::testing::ElementsAre;
using ::testing::IsEmpty;

TEST(ValueBase, AcceptsOnlyGoodNames)
{
    for (const char *name : {"a", "1 name", "A_b.c-d:e"})
        EXPECT_NO_THROW(TestValue{QString(name)}) << name;
    for (const char *name : {"", "a/b", "\xC3\xA4", "a;b", "a\tb"})
        EXPECT_THROW(TestValue{QString::fromUtf8(name)}, KRException) << name;

    EXPECT_EQ(LastDeletedObject::Instance().name, "A_b.c-d:e") << "a refused one never was";

    CodeLog log; // outlives the value, whose end it is told
    TestValue value("name");
    value.AddObserver(&log);
    EXPECT_THROW(value.SetName("", nullptr), KRException);
    value.SetName(QString::fromUtf8("\xC3\xA4/"), nullptr); // only the constructor checks
    EXPECT_THAT(log.codes, ElementsAre(CC_NAME));
}

TEST(ValueBase, RecordsIntoEitherListAsCountedAndSuspended)
{
    struct Case {
        const char *name;
        std::function<void(TestValue &)> prepare;
        std::size_t recorded, transmitted;
    } const cases[] = {
        {"off", [](TestValue &) {}, 0, 0},
        {"recording", [](TestValue &v) { v.CommandRecordingOn(); }, 1, 0},
        {"transmission", [](TestValue &v) { v.CommandRecordingOnForTransmission(); }, 0, 1},
        {"off below zero",
         [](TestValue &v) {
             v.CommandRecordingOff();
             v.CommandRecordingOff();
             v.CommandRecordingOn();
         },
         1, 0},
        {"counted",
         [](TestValue &v) {
             v.CommandRecordingOn();
             v.CommandRecordingOn();
             v.CommandRecordingOff();
         },
         1, 0},
        {"one suspended",
         [](TestValue &v) {
             v.CommandRecordingOn();
             v.CommandRecordingOnForTransmission();
             v.SuspendCommandRecording(true);
         },
         0, 1},
        {"other suspended",
         [](TestValue &v) {
             v.CommandRecordingOn();
             v.CommandRecordingOnForTransmission();
             v.SuspendCommandRecordingForTransmission(true);
         },
         1, 0},
    };
    for (const auto &row : cases) {
        SCOPED_TRACE(row.name);
        TestValue value;
        row.prepare(value);
        value.StartTrImpl(); // so that nothing empties the lists
        value.SetState(VS_DISABLED, nullptr);
        EXPECT_EQ(value.GetCommandList().size(), row.recorded);
        EXPECT_EQ(value.GetCommandListForTransmission().size(), row.transmitted);
        value.EndTrImpl(CC_VALUE, nullptr);
        EXPECT_THAT(value.GetCommandList(), IsEmpty()) << "suspended or not";
        EXPECT_THAT(value.GetCommandListForTransmission(), IsEmpty());
    }
}

TEST(ValueBase, OnlyTheOutermostNotificationEmptiesTheLists)
{
    std::size_t afterInner = 0;
    CodeLog log;
    TestValue value;
    log.then = [&](Observable *, TChangeCode code) {
        if (code == CC_VALUE) {
            value.SetState(VS_DISABLED, nullptr);
            afterInner = value.GetCommandList().size();
        }
    };
    value.AddObserver(&log);
    value.CommandRecordingOn();
    value.HasChanged(CC_VALUE, nullptr);
    EXPECT_EQ(afterInner, 2U);
    EXPECT_THAT(value.GetCommandList(), IsEmpty());
}

// --------------------------------------------------------------------------------- transactions

struct TransactionCase {
    const char *name;
    std::function<void(TestValue &)> run;
    std::vector<int> codes;
    bool active;
    std::string commands; // as they reach the observer of the last code
};

const TransactionCase kTransactions[] = {
    {"the outermost code counts",
     [](TestValue &v) {
         v.StartTransaction(nullptr);
         v.StartTransaction(nullptr);
         v.SetState(VS_DISABLED, nullptr);
         v.EndTransaction(CC_ITEM_ADDED, nullptr);
         v.EndTransaction(CC_VALUE, nullptr);
     },
     {CC_VALUE},
     false,
     "3;3;1;2;4;5;4;3;"},
    {"code 0 is silent, and lets go",
     [](TestValue &v) {
         v.StartTransaction(nullptr);
         v.EndTransaction(CC_NONE, nullptr);
         v.HasChanged(CC_LIMITS, nullptr);
     },
     {CC_LIMITS},
     false,
     "3;4;0;0;4;"},
    {"HasChanged ends the suppression",
     [](TestValue &v) {
         v.StartTransaction(nullptr);
         v.HasChanged(CC_LIMITS, nullptr);
         EXPECT_FALSE(v.IsTransactionActive());
         v.SetState(VS_DISABLED, nullptr);
     },
     {CC_LIMITS, CC_STATE},
     false,
     "1;2;"},
    {"an end too many",
     [](TestValue &v) {
         v.EndTransaction(CC_VALUE, nullptr);
         v.StartTransaction(nullptr);
         v.EndTransaction(CC_VALUE, nullptr);
     },
     {},
     true,
     ""},
};

TEST(ValueBase, TransactionsHoldNotificationsBack)
{
    for (const TransactionCase &row : kTransactions) {
        SCOPED_TRACE(row.name);
        std::string commands;
        CodeLog log;
        TestValue value;
        log.then = [&](Observable *, TChangeCode) {
            commands = value.GetCommandStringForTransmission(unsigned(-1));
        };
        value.AddObserver(&log);
        value.CommandRecordingOnForTransmission();
        row.run(value);
        EXPECT_EQ(log.take(), row.codes);
        EXPECT_EQ(value.IsTransactionActive(), row.active);
        EXPECT_EQ(commands, row.commands);
        value.ResumeNotifyObservers();
    }
}

// ------------------------------------------------------------------------------ life and death

TEST(ValueBase, CopiesWhatItSaysAndComparesIt)
{
    CodeLog log;
    TestValue from("name", VS_DISABLED);
    from.AddObserver(&log);
    from.SetFlagStore(true);
    from.SetUpdateTimerTime(60000);
    from.SetTranslationNamespace("Ns", nullptr);
    from.CommandRecordingOn();
    TestValue copy(from);
    EXPECT_TRUE(copy.Compare(&from));
    EXPECT_TRUE(copy.HasPropertyStore());
    EXPECT_EQ(copy.GetUpdateTimerTime(), 60000U);
    EXPECT_EQ(copy.GetTranslationNamespace(), "VdStr");
    EXPECT_FALSE(copy.HasObservers());
    EXPECT_FALSE(copy.IsCommandRecording());

    EXPECT_FALSE(copy.Compare(nullptr));
    const std::function<void(TestValue &)> differences[] = {
        [](TestValue &v) { v.SetName("other", nullptr); },
        [](TestValue &v) { v.SetState(VS_NORMAL, nullptr); },
        [](TestValue &v) { v.SetFlagExport(true); },
        [](TestValue &v) { v.SetUpdateTimerTime(0); },
        [](TestValue &v) { v.SetLastCompletePathName(); }, // refreshes the type
    };
    for (const auto &differ : differences) {
        TestValue other(from);
        differ(other);
        EXPECT_FALSE(other == from);
    }
}

TEST(ValueBase, TellsItsEndInOrder)
{
    CodeLog log;
    std::vector<std::string> order;
    BaseTree tree;
    auto value = std::make_unique<TestValue>("name");
    log.then = [&](Observable *, TChangeCode) {
        order.push_back("observer, state " + std::to_string(value->GetState()));
    };
    value->AddObserver(&log);
    value->BindNotifyDeleteFn([&](ValueBase *) { order.push_back("function"); });
    tree.AddValue("/A/name", value.get());
    EXPECT_EQ(value->GetPathName(), "/A/name");
    value->StartTransaction(nullptr); // an open transaction must not hide the end
    delete value.get();
    static_cast<void>(value.release());
    EXPECT_THAT(order, ElementsAre("observer, state 1", "function"));
    EXPECT_EQ(LastDeletedObject::Instance().name, "/A/name");
    EXPECT_EQ(LastDeletedObject::Instance().type, LastDeletedObject::ValueObjectType);
    {
        TestValue withoutPath("short");
    }
    EXPECT_EQ(LastDeletedObject::Instance().name, "short");
}

TEST(ValueBase, AutoDeleteGoesWithTheLastObserver)
{
    int deleted = 0;
    CodeLog a, b;
    const auto make = [&] {
        auto *value = new TestValue;
        value->SetAutoDelete(true);
        value->BindNotifyDeleteFn([&](ValueBase *) { ++deleted; });
        value->AddObserver(&a);
        value->AddObserver(&b);
        return value;
    };
    TestValue *value = make();
    value->DeleteObserver(&a);
    EXPECT_EQ(deleted, 0);
    value->DeleteObserver(&b);
    EXPECT_EQ(deleted, 1);
    make()->DeleteObservers();
    EXPECT_EQ(deleted, 2);

    value = make();
    value->CommandRecordingOn();
    const auto leave = [&](Observable *subject, TChangeCode) {
        subject->DeleteObserver(&a);
        subject->DeleteObserver(&b);
    };
    a.then = leave;
    value->HasChanged(CC_VALUE, nullptr); // goes in the middle of its own notification
    EXPECT_EQ(deleted, 3);
}

// ------------------------------------------------------------------------------------ optimizers

TEST(ValueBase, FeedsTheListOfAnOptimizer)
{
    struct Optimizer : CommandListOptimizer {
        CommandList &GetCommands() override { return commands; }
        void Clear() override { commands.clear(); }
        bool IsSmoothing() const override { return smooths; }
        std::string CreateCommandString(unsigned int mode) const override
        {
            return ValueBase::CreateCommandString(commands, mode);
        }
        CommandList commands;
        bool smooths = false;
    };
    struct Smooth : TestValue {
        using TestValue::OptimizeCommandList;
        void OptimizeCommandList(CommandList &commands) override { commands.clear(); }
    } value;
    value.CommandRecordingOnForTransmission();
    value.StartTransaction(nullptr);
    auto own = std::make_shared<Optimizer>();
    std::shared_ptr<CommandListOptimizer> optimizer = own, none;
    value.UpdateOptimizersCommandList(optimizer);
    EXPECT_EQ(value.GetOptimizedCommandString(optimizer, true, 0), "3;");
    EXPECT_THAT(own->commands, IsEmpty());
    value.UpdateOptimizersCommandList(optimizer);
    own->smooths = true;
    value.UpdateOptimizersCommandList(optimizer);
    EXPECT_THAT(own->commands, IsEmpty()) << "the value's own reduction ran";
    value.UpdateOptimizersCommandList(none);
    EXPECT_EQ(value.GetOptimizedCommandString(none, true, 0), "");
    EXPECT_EQ(value.GetCommandListForTransmission().size(), 1U);
}

} // namespace
