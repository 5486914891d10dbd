// Which thread may do what with a value, and how changes cross over to the application thread.
#include "platform/base/kelmos.h"
#include "platform/base/krexception.h"
#include "quiettraces.h"
#include "valueclasses/notifydistinction.h"
#include "valueclasses/testvalue.h"
#include "valueclasses/valuedescriptor.h"
#include "valueclasses/valuenumeric.h"
#include "waitfor.h"

#include <QCoreApplication>
#include <gmock/gmock.h>

#include <memory>
#include <thread>

namespace {

using namespace values;
using ::testing::ElementsAre;
using ::testing::IsEmpty;

void runElsewhere(const std::function<void()> &work) { std::thread(work).join(); }

TEST(ValueThreads, ANotificationArrivesOnTheApplicationThread)
{
    std::thread::id where;
    CodeLog log; // outlives the value, whose end it is told
    TestValue value;
    log.then = [&](Observable *, TChangeCode) { where = std::this_thread::get_id(); };
    value.AddObserver(&log);
    runElsewhere([&] {
        value.SetState(VS_DISABLED, nullptr);
        value.HasChanged(CC_VALUE, nullptr);
    });
    EXPECT_EQ(value.GetState(), VS_DISABLED) << "stored at once";
    EXPECT_THAT(log.codes, IsEmpty());
    QCoreApplication::processEvents();
    EXPECT_THAT(log.codes, ElementsAre(CC_STATE, CC_VALUE));
    EXPECT_EQ(where, std::this_thread::get_id());
}

TEST(ValueThreads, ARecordedChangeIsPostedWhole)
{
    const std::string kRecorded = "3;1;2;7;Ns;4;3;";
    for (const bool asString : {false, true}) {
        SCOPED_TRACE(asString);
        std::string commands;
        CodeLog log;
        TestValue value;
        log.then = [&](Observable *, TChangeCode) {
            commands += value.GetCommandStringForRecording(unsigned(-1));
        };
        value.AddObserver(&log);
        value.CommandRecordingOn();
        const QuietTraces quiet;
        runElsewhere([&] {
            if (asString) {
                EXPECT_THROW(value.SetCommandString("1;2;x", nullptr, -1), KRException);
                value.SetCommandString(kRecorded, nullptr, -1);
                return;
            }
            value.StartTransaction(nullptr);
            value.SetState(VS_DISABLED, nullptr);
            value.SetTranslationNamespace("Ns", nullptr);
            value.EndTransaction(CC_VALUE, nullptr);
            EXPECT_EQ(value.SetUpdateTimerTime(1000), 0);
        });
        EXPECT_EQ(value.GetState(), VS_NORMAL);
        QCoreApplication::processEvents();
        EXPECT_EQ(value.GetState(), VS_DISABLED);
        EXPECT_THAT(log.codes, ElementsAre(CC_VALUE));
        EXPECT_EQ(commands, kRecorded);
        EXPECT_EQ(value.GetUpdateTimerTime(), asString ? 0U : 1000U);
    }
}

TEST(ValueThreads, APostedChangeReadsWhatEarlierOnesSet)
{
    ValueNumeric<int> value("Gain", 1, 0, 100, 1);
    value.CommandRecordingOn();
    const QuietTraces quiet;
    runElsewhere([&] {
        value.SetStep(5, nullptr);
        value.SetMinMax({0, 10}, nullptr);
    });
    QCoreApplication::processEvents();
    EXPECT_EQ(value.GetMax(), 10);
    EXPECT_EQ(value.GetStep(), 5);
}

TEST(ValueThreads, PostedChangesStayInOrderWhenRecordingEnds)
{
    CodeLog log;
    TestValue value;
    value.AddObserver(&log);
    value.CommandRecordingOn();
    const QuietTraces quiet;
    runElsewhere([&] {
        const ValueTransaction transaction(value, {CC_VALUE, CC_LIMITS}, nullptr);
        value.CommandRecordingOff(); // the start waits, so the end has to
    });
    EXPECT_FALSE(value.IsTransactionActive());
    QCoreApplication::processEvents();
    EXPECT_THAT(log.take(), ElementsAre(CC_VALUE, CC_LIMITS));
    EXPECT_FALSE(value.IsTransactionActive());
    EXPECT_FALSE(value.IsChangeForeign());
    runElsewhere([&] { EXPECT_FALSE(value.IsChangeForeign()) << "none waits any more"; });
}

TEST(ValueThreads, AnAssignmentWaitsForWhatIsPosted)
{
    const Value<int> two("b", 2);
    Value<int> value("a", 0), recorded("c", 3);
    value.CommandRecordingOn();
    recorded.CommandRecordingOn();
    const QuietTraces quiet;
    runElsewhere([&] {
        value.SetValue(1, nullptr);
        value.Assign(two);
    });
    EXPECT_EQ(value.GetValue(), 0);
    QCoreApplication::processEvents();
    EXPECT_EQ(value.GetValue(), 2) << "not what was posted before";

    Value<int> plain("d", 0);
    runElsewhere([&] {
        recorded.SetValue(4, nullptr);
        plain.Assign(recorded); // behind what is posted there
    });
    QCoreApplication::processEvents();
    EXPECT_EQ(plain.GetValue(), 4);

    // A timer is the application thread's, what the value holds and its name are there at once.
    Value<int> timed("e", 5);
    timed.SetUpdateTimerTime(100000);
    std::unique_ptr<Value<int>> copy;
    Value<int> other("f", 0);
    runElsewhere([&] {
        copy = std::make_unique<Value<int>>(timed);
        copy->SetName("g", nullptr);
        other = timed;
        other = two; // behind what the first one has posted
    });
    EXPECT_EQ(other.GetValue(), 2);
    EXPECT_EQ(other.GetName(), QStringLiteral("b"));
    EXPECT_EQ(copy->GetUpdateTimerTime(), 0U);
    QCoreApplication::processEvents();
    EXPECT_EQ(copy->GetUpdateTimerTime(), 100000U);
    EXPECT_EQ(copy->GetName(), QStringLiteral("g"));
    EXPECT_EQ(other.GetUpdateTimerTime(), 0U);
}

struct AssignedValue : Value<int> {
    using Value<int>::Value;
    using ValueBase::IsChangeForeign;
    using ValueBase::PostAssignByReference;
};

template <typename V>
bool changesArePosted(const V &value)
{
    bool foreign = false;
    runElsewhere([&] { foreign = value.IsChangeForeign(); });
    return foreign;
}

TEST(ValueThreads, TheSourceOfAPostedAssignmentWaitsForIt)
{
    enum class End { Assigned, SourceDies, TargetDies, SourceDiesInIt };
    for (const End end : {End::Assigned, End::SourceDies, End::TargetDies, End::SourceDiesInIt}) {
        SCOPED_TRACE(int(end));
        CodeLog log;
        auto source = std::make_unique<AssignedValue>("b", 1); // plain by itself
        auto target = std::make_unique<AssignedValue>("a", 0);
        log.then = [&](Observable *, TChangeCode) {
            if (end == End::SourceDiesInIt)
                source.reset();
        };
        target->AddObserver(&log);
        target->CommandRecordingOn();
        const QuietTraces quiet;
        runElsewhere([&] {
            EXPECT_TRUE(target->PostAssignByReference(*source));
            source->SetValue(2, nullptr);
        });
        EXPECT_EQ(source->GetValue(), 1);
        if (end == End::SourceDies)
            source.reset();
        else if (end == End::TargetDies)
            target.reset();
        if (end == End::TargetDies) {
            EXPECT_TRUE(changesArePosted(*source)) << "its own change waits";
        }
        QCoreApplication::processEvents();
        if (target != nullptr) {
            EXPECT_EQ(target->GetValue(), end == End::SourceDies ? 0 : 1);
        }
        if (source != nullptr) {
            EXPECT_EQ(source->GetValue(), 2);
            EXPECT_FALSE(changesArePosted(*source));
        }
    }
}

TEST(ValueThreads, NothingOvertakesAnAssignmentThatWaits)
{
    const ValueDescriptor *const none = nullptr;
    const ValueDescriptor described("k", "/p");
    CodeLog log;
    Value<QString> source("b", "1"), target("a", "0");
    source.SetValueDescriptor(&described);
    target.CommandRecordingOn();
    const QuietTraces quiet;
    runElsewhere([&] {
        for (int i = 0; i < 1000; ++i) {
            target.Assign(source);
            target.SetName(QString::number(i), nullptr);
        }
        target.SetFlagStore(true);
        target.SetAutoDelete(true);
        target.SetValueDescriptor(none);
    });
    target.AddObserver(&log); // an auto-delete value needs one
    QCoreApplication::processEvents();
    EXPECT_EQ(target.GetName(), "999");
    EXPECT_TRUE(target.HasPropertyStore() && target.IsAutoDelete());
    EXPECT_EQ(target.GetValueDescriptor(), nullptr);
    target.SetAutoDelete(false);
}

TEST(ValueThreads, WhatAnObserverThrowsStaysWithinTheEventLoop)
{
    CodeLog log;
    TestValue value;
    log.then = [](Observable *, TChangeCode code) {
        if (code != CC_STATE)
            throw KRException("no", "", "", "", 0);
    };
    value.AddObserver(&log);
    runElsewhere([&] { value.HasChanged(CC_VALUE, nullptr); });
    const QuietTraces quiet;
    EXPECT_NO_THROW(QCoreApplication::processEvents());
    EXPECT_THAT(log.codes, ElementsAre(CC_VALUE));
}

TEST(ValueThreads, AHoldThatAnotherThreadDropsEndsOnTheApplicationThread)
{
    TestValue value;
    NotifyDistinction road(&value);
    runElsewhere([&] { const NotifyDistinction::Hold dropped(road); });
    EXPECT_TRUE(changesArePosted(value));
    QCoreApplication::processEvents();
    EXPECT_FALSE(changesArePosted(value));
}

TEST(ValueThreads, AFloodWaitsForTheApplicationThreadAndLosesNothing)
{
    constexpr int kChanges = 10005;
    CodeLog log;
    TestValue value;
    value.AddObserver(&log);
    value.CommandRecordingOn();
    const QuietTraces quiet;
    std::thread flood([&] {
        for (int i = 0; i < kChanges; ++i)
            value.HasChanged(CC_VALUE, nullptr);
    });
    EXPECT_TRUE(waitFor([&] { return log.codes.size() >= kChanges; }));
    flood.join();
}

TEST(ValueThreads, AFloodOfNotificationsEndsWithTheNewestState)
{
    constexpr int kWaiting = 10000;
    CodeLog log, other;
    TestValue value;
    int seen = 0;
    log.then = [&](Observable *, TChangeCode) { seen = value.GetState(); };
    value.AddObserver(&log);
    runElsewhere([&] {
        for (int i = 1; i <= 3 * kWaiting; ++i)
            value.SetState(TValueState(i), nullptr);
        value.HasChanged(CC_VALUE, &other);
        EXPECT_THROW(value.SetName("", nullptr), KRException);
    });
    QCoreApplication::processEvents();
    std::vector<int> expected(kWaiting, CC_STATE);
    expected.push_back(CC_VALUE);
    EXPECT_EQ(log.take(), expected);
    EXPECT_EQ(seen, 3 * kWaiting);
    runElsewhere([&] { value.HasChanged(CC_STATE, nullptr); });
    QCoreApplication::processEvents();
    EXPECT_THAT(log.take(), ElementsAre(CC_STATE)) << "what was delivered waits no more";
}

TEST(ValueThreads, WhatIsUnderWayDiesWithTheValue)
{
    CodeLog log;
    auto value = std::make_unique<ValueNumeric<int>>("Gain", 1, 0, 100);
    value->AddObserver(&log);
    // An observer may wait for a button, say.
    log.then = [](Observable *, TChangeCode) { QCoreApplication::processEvents(); };
    runElsewhere([&] { value->SetValue(2, nullptr); });
    value->CommandRecordingOn();
    const QuietTraces quiet;
    runElsewhere([&] { value->SetValue(3, nullptr); });
    value.reset();
    QCoreApplication::processEvents();
    EXPECT_THAT(log.codes, ElementsAre(CC_STATE));
}

TEST(ValueThreads, ManyThreadsMayNotifyAtOnce)
{
    constexpr int kThreads = 4, kChanges = 200;
    CodeLog log;
    TestValue value;
    value.AddObserver(&log);
    std::vector<std::thread> threads;
    for (int i = 0; i < kThreads; ++i)
        threads.emplace_back([&] {
            for (int change = 0; change < kChanges; ++change)
                value.HasChanged(CC_VALUE, nullptr);
        });
    for (std::thread &thread : threads)
        thread.join();
    EXPECT_TRUE(waitFor([&] { return log.codes.size() >= kThreads * kChanges; }));
}

TEST(ValueThreads, IgnoresEventsOfOtherTypes)
{
    CodeLog log;
    TestValue value;
    value.AddObserver(&log);
    NotifyDistinction distinction(&value);
    QEvent other(QEvent::Type(1011));
    QCoreApplication::sendEvent(&distinction, &other);
    NotifyEvent event(CC_LIMITS, nullptr);
    QCoreApplication::sendEvent(&distinction, &event);
    EXPECT_THAT(log.codes, ElementsAre(CC_LIMITS));
}

class ValueThreadsDeath : public ::testing::Test {
protected:
    void SetUp() override { GTEST_FLAG_SET(death_test_style, "threadsafe"); }
};

TEST_F(ValueThreadsDeath, DestroyingOnAWrongThreadEndsTheProcess)
{
    EXPECT_DEATH(runElsewhere([] { TestValue value("Gone"); }),
                 "VTTHREADING: Destructing value from non-main thread. ValueName: Gone, ");
}

TEST_F(ValueThreadsDeath, NotifyingHereOnAWrongThreadEndsTheProcess)
{
    TestValue value;
    EXPECT_DEATH(runElsewhere([&] { value.NotifyObserversDistinct(CC_VALUE, nullptr); }),
                 "VTTHREADING: Notifying in non-main thread for Item : ");
}

TEST_F(ValueThreadsDeath, AValueMadeBeforeTheApplicationCanNotHandOver)
{
    // A process of its own in which the value comes first.
    const auto lateApplication = [] {
        QCoreApplication::instance()->~QCoreApplication(); // main()'s; it never gets there
        TestValue early("Early");
        int argc = 1;
        char name[] = "test";
        char *arguments[] = {name, nullptr};
        const QCoreApplication app(argc, arguments);
        runElsewhere([&] { early.HasChanged(CC_VALUE, nullptr); });
    };
    EXPECT_DEATH(lateApplication(),
                 "The value \"Early\" of type \"TestValue\" is not able to notify its observers");
}

TEST(ValueThreads, ChecksAreWaivedWhileTheLibraryUnloads)
{
    Kelm::setUnloading(true);
    runElsewhere([] { TestValue value; });
    Kelm::setUnloading(false);
}

} // namespace
