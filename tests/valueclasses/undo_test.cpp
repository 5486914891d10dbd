#include "platform/base/krexception.h"
#include "quiettraces.h"
#include "valueclasses/commands/valuecommands.h"
#include "valueclasses/testvalue.h"
#include "valueclasses/undo/undomanager.h"
#include "valueclasses/undo/undoremote.h"
#include "valuetree/tree.h"

#include <gmock/gmock.h>

#include <functional>

namespace {

using namespace values;
using ::testing::ElementsAre;
using ::testing::IsEmpty;

/// Something executable that isn't a change of a value.
struct Step : KELM::ICommand {
    explicit Step(std::function<void()> function) : work(std::move(function)) {}
    void Execute() override { work(); }
    int GetCommandId() const override { return 1000; }
    std::function<void()> work;
};

struct Listener : IUndoRecordingsListener, IUndoExecutionListener {
    void OnUndoRecordingsChanged() override { told += 'r'; }
    void OnUndoExecutionStart() override { told += '('; }
    void OnUndoExecutionEnd() override { told += ')'; }
    std::string told;
};

class UndoTest : public ::testing::Test {
protected:
    void SetUp() override
    {
        for (Value<int> *v : {&value, &other})
            v->SetUndoManager(&undo);
    }
    /// One finished stack with what \a work does.
    void stack(const char *description, const std::function<void()> &work)
    {
        ASSERT_TRUE(undo.OpenNewUndoStack(description));
        work();
        undo.FinishCurrentUndoStack();
    }
    void set(int number)
    {
        stack("set", [&] { value.SetValue(number, nullptr); });
    }

    UndoManager undo{3};
    CodeLog log; // outlives the values, whose end it is told
    Value<int> value, other;
};

TEST_F(UndoTest, KeepsTheNewestStacksAndRunsThemBackwards)
{
    for (const int number : {1, 2, 3, 4})
        stack(std::to_string(number).c_str(), [&] {
            value.SetValue(10 * number, nullptr);
            value.SetValue(number, nullptr);
        });
    stack("empty", [] {});
    EXPECT_THAT(undo.GetUndoStackDescriptions(), ElementsAre("2", "3", "4"));
    EXPECT_FALSE(undo.ExecuteUndoStacks(0));
    EXPECT_FALSE(undo.ExecuteUndoStacks(4));
    EXPECT_TRUE(undo.ExecuteUndoStacks(1));
    EXPECT_EQ(value.GetValue(), 3);
    EXPECT_TRUE(undo.OpenNewUndoStack("open"));
    EXPECT_FALSE(undo.OpenNewUndoStack("another"));
    EXPECT_FALSE(undo.ExecuteUndoStacks(1));
    undo.FinishCurrentUndoStack();
    EXPECT_TRUE(undo.ExecuteUndoStacks(UndoManager::kAllStacks));
    EXPECT_EQ(value.GetValue(), 1) << "the oldest was dropped";
    EXPECT_FALSE(undo.ExecuteUndoStacks(UndoManager::kAllStacks));
    EXPECT_THAT(undo.GetUndoStackDescriptions(), IsEmpty()) << "undo itself leaves no trace";
}

TEST_F(UndoTest, AChangeOutsideOfAStackOrOfADeletedValueEmptiesTheHistory)
{
    const std::function<void()> ends[] = {
        [&] { value.SetValue(7, nullptr); },
        [&] { stack("deleted", [&] { other.SetState(VS_DELETED, nullptr); }); },
        [&] {
            auto dying = std::make_unique<Value<int>>();
            dying->SetUndoManager(&undo);
            stack("dying", [&] { dying->SetValue(1, nullptr); });
            dying->SetUndoManager(nullptr); // too late: the manager has its command
            dying->AddObserver(&log);
            log.then = [&](Observable *, TChangeCode) { EXPECT_FALSE(undo.ExecuteUndoStacks(1)); };
            dying.reset();
            log.then = nullptr;
        },
        [&] { undo = UndoManager(5); },
    };
    for (const auto &end : ends) {
        set(1);
        set(2);
        end();
        EXPECT_THAT(undo.GetUndoStackDescriptions(), IsEmpty());
        EXPECT_TRUE(undo.OpenNewUndoStack("again")) << "no stack is open";
        undo.FinishCurrentUndoStack();
        value.SetValue(0, nullptr);
    }
    EXPECT_EQ(undo.GetMaxStacksSize(), 5U);
    EXPECT_FALSE(undo.AddUndoCommand(nullptr));
    EXPECT_FALSE(undo.AddUndoCommand(new Step([] {})));
    {
        set(1);
        const Value<int> copy(value); // took the manager over, but never used it
    }
    EXPECT_EQ(undo.GetUndoStackDescriptions().size(), 1U);
}

TEST_F(UndoTest, ListenersAreToldAndExecutionIsFencedIn)
{
    Listener listener;
    undo.AddRecordingsListener(&listener);
    undo.AddExecutionListener(&listener);
    stack("step", [&] {
        value.SetValue(1, nullptr);
        undo.AddUndoCommand(new Step([&] {
            listener.told += 'x';
            EXPECT_TRUE(undo.IsExecuting());
            EXPECT_FALSE(undo.OpenNewUndoStack("nested"));
            EXPECT_FALSE(undo.ExecuteUndoStacks(1));
            undo.ResetUndoStacks();
            undo.FinishCurrentUndoStack();
        }));
    });
    EXPECT_TRUE(undo.ExecuteUndoStacks(1));
    EXPECT_EQ(listener.told, "r(x)r");
    EXPECT_EQ(value.GetValue(), 0);
    undo.ResetUndoStacks();
    EXPECT_EQ(listener.told, "r(x)rr");
    undo.DeleteRecordingsListener(&listener);
    undo.DeleteExecutionListener(&listener);
    undo.ResetUndoStacks();
    EXPECT_EQ(listener.told, "r(x)rr");
}

TEST_F(UndoTest, BreaksOffWhenACommandFailsOrItsValueGoes)
{
    auto dying = std::make_unique<Value<int>>();
    dying->SetUndoManager(&undo);
    const std::function<void()> steps[] = {[&] { dying.reset(); },
                                           [] { throw KRException("no", "", "", "", 0); }};
    other.AddObserver(&log);
    for (const auto &step : steps) {
        stack("below", [&] {
            const ValueTransaction ofDying(dying != nullptr ? *dying : other, CC_VALUE, nullptr);
            {
                const ValueTransaction notReached(value, CC_VALUE, nullptr);
                value.SetValue(1, nullptr);
            }
            const ValueTransaction broken(other, CC_LIMITS, nullptr);
            other.SetValue(1, nullptr);
            if (dying != nullptr)
                dying->SetValue(1, nullptr);
            undo.AddUndoCommand(new Step(step));
            other.SetValue(2, nullptr);
        });
        log.take();
        try {
            EXPECT_TRUE(undo.ExecuteUndoStacks(1));
        } catch (const KRException &error) {
            EXPECT_EQ(error.GetReason(), "no");
        }
        EXPECT_EQ(value.GetValue(), 1);
        EXPECT_EQ(other.GetValue(), 1);
        EXPECT_FALSE(other.IsTransactionActive()) << "nobody stays muted";
        EXPECT_EQ(log.take().size(), 1U);
        EXPECT_FALSE(undo.IsExecuting());
        EXPECT_THAT(undo.GetUndoStackDescriptions(), IsEmpty());
        value.SetValue(0, nullptr);
    }
}

TEST_F(UndoTest, AValueLeavesWhatItDidToTheManagerThatItHad)
{
    UndoManager second(3), third(3);
    third.OpenNewUndoStack("untouched");
    third.AddUndoCommand(new Step([] {}));
    third.FinishCurrentUndoStack();
    {
        Value<int> leaving;
        leaving.AddObserver(&log);
        leaving.SetUndoManager(&undo);
        undo.OpenNewUndoStack("left");
        leaving.StartTransaction(nullptr);
        leaving.SetValue(1, nullptr);
        undo.FinishCurrentUndoStack(); // waits for the end of the transaction
        leaving.Assign(Value<int>());
        EXPECT_THAT(undo.GetUndoStackDescriptions(), ElementsAre("left"));
        leaving.SetUndoManager(&second);
        leaving.EndTransaction(CC_NONE, nullptr);
        leaving.SetValue(5, nullptr);
        log.take();
        EXPECT_TRUE(undo.ExecuteUndoStacks(1));
        EXPECT_EQ(leaving.GetValue(), 0);
        EXPECT_THAT(log.take(), ElementsAre(CC_VALUE));
        set(1);
        second.OpenNewUndoStack("gone");
        leaving.SetValue(2, nullptr);
        second.FinishCurrentUndoStack();
        leaving.SetUndoManager(nullptr);
    }
    EXPECT_THAT(undo.GetUndoStackDescriptions(), IsEmpty());
    EXPECT_THAT(second.GetUndoStackDescriptions(), IsEmpty());
    EXPECT_THAT(third.GetUndoStackDescriptions(), ElementsAre("untouched"));
}

TEST_F(UndoTest, AManagerMayDieBeforeItsValues)
{
    auto shortLived = std::make_unique<UndoManager>(1);
    Value<int> survivor;
    survivor.SetUndoManager(shortLived.get());
    shortLived->OpenNewUndoStack("s");
    survivor.SetValue(1, nullptr);
    shortLived.reset();
}

TEST_F(UndoTest, ATransactionIsUndoneAsOne)
{
    stack("transaction", [&] {
        value.StartTransaction(nullptr);
        value.SetValue(1, nullptr);
        value.StartTransaction(nullptr);
        other.StartTransaction(nullptr); // of another value, and still open when ours ends
        value.SetValue(2, nullptr);
        value.EndTransaction(CC_ITEM_ADDED, nullptr);
        value.EndTransaction(CC_LIST_CLEARED, nullptr);
        other.SetValue(9, nullptr);
        other.EndTransaction(CC_ITEM_REMOVED, nullptr);
    });
    value.AddObserver(&log);
    other.AddObserver(&log);
    EXPECT_TRUE(undo.ExecuteUndoStacks(1));
    EXPECT_EQ(value.GetValue(), 0);
    EXPECT_EQ(other.GetValue(), 0);
    EXPECT_THAT(log.take(), ElementsAre(CC_ITEM_ADDED, CC_LIST_REPLACED));
    value.SetValue(3, nullptr);
    other.SetValue(3, nullptr);
    EXPECT_THAT(log.take(), ElementsAre(CC_VALUE, CC_VALUE)) << "nobody stays muted";
}

TEST_F(UndoTest, AStackIsFinishedWithItsLastOpenTransaction)
{
    const QuietTraces quiet;
    Value<int> leaving;
    leaving.SetUndoManager(&undo);
    value.StartTransaction(nullptr); // before there is a stack: its end belongs to none
    undo.OpenNewUndoStack("waits");
    value.EndTransaction(CC_VALUE, nullptr);
    leaving.StartTransaction(nullptr);
    value.StartTransaction(nullptr);
    other.StartTransaction(nullptr);
    leaving.SetUndoManager(nullptr); // takes its command from below theirs
    value.SetValue(1, nullptr);
    undo.FinishCurrentUndoStack();
    EXPECT_FALSE(undo.OpenNewUndoStack("too early"));
    value.EndTransaction(CC_VALUE, nullptr);
    EXPECT_THAT(undo.GetUndoStackDescriptions(), IsEmpty());
    other.EndTransaction(CC_VALUE, nullptr);
    EXPECT_THAT(undo.GetUndoStackDescriptions(), ElementsAre("waits"));
    EXPECT_TRUE(undo.ExecuteUndoStacks(1));
    EXPECT_EQ(value.GetValue(), 0);
    EXPECT_FALSE(value.IsTransactionActive());
    EXPECT_FALSE(other.IsTransactionActive());
}

/// A value in the trees of a server and a client, and the connection between them: what one side
/// records the other replays.
template <typename V>
class Link : public IObserver {
public:
    Link(BaseTree &atServer, BaseTree &atClient, const char *path)
        : server(add(atServer, path)), client(add(atClient, path))
    {
    }
    ~Link() override
    {
        server->DeleteObserver(this);
        client->DeleteObserver(this);
    }
    void Update(Observable *subject, TChangeCode) override
    {
        V *const from = subject == server ? server : client;
        (from == server ? client : server)
            ->SetCommandString(from->GetCommandStringForTransmission(unsigned(ModeText)), this,
                               ModeText);
    }

    V *const server, *const client;

private:
    V *add(BaseTree &tree, const char *path)
    {
        auto *const value = dynamic_cast<V *>(tree.CreateValue(path, V()));
        value->CommandRecordingOnForTransmission();
        value->AddObserver(this);
        return value;
    }
};

TEST_F(UndoTest, ClientsOpenFinishShowAndRunStacksOfAServer)
{
    BaseTree atServer, atClient;
    const Link<Value<int>> level(atServer, atClient, "/RX/LEVEL");
    const Link<Value<QString>> trigger(atServer, atClient, "/UNDO/TRIGGER"),
        recordings(atServer, atClient, "/UNDO/RECORDINGS"),
        request(atServer, atClient, "/UNDO/REQUEST");
    level.server->SetUndoManager(&undo);
    UndoRecordingTriggerByValueServer triggerServer(&undo, trigger.server);
    UndoRecordingsToValueServer server(&undo, recordings.server, request.server);
    UndoRecordingTriggerByValueClient triggerClient(trigger.client);
    UndoRecordingsToValueClient client(recordings.client, request.client);
    Listener listener;
    client.AddRecordingsListener(&listener);
    EXPECT_THAT(client.GetUndoStackDescriptions(), IsEmpty());

    const QString odd = QString::fromUtf8("a; \xC3\xA4 %1");
    for (const QString &description : {odd, QString(), odd}) {
        triggerClient.OpenNewUndoStack(description);
        level.client->SetValue(level.server->GetValue() + 1, nullptr);
    }
    EXPECT_THAT(client.GetUndoStackDescriptions(), ElementsAre(odd, QString())) << "one is open";
    client.ExecuteUndo(1);
    EXPECT_EQ(level.client->GetValue(), 3) << "refused while a stack is open";
    triggerClient.FinishCurrentUndoStack();
    EXPECT_EQ(client.GetUndoStackDescriptions().size(), 3U);
    client.ExecuteUndo(1);
    client.ExecuteUndo(1); // an equal request is one more
    EXPECT_EQ(level.server->GetValue(), 1);
    EXPECT_EQ(level.client->GetValue(), 1);
    EXPECT_THAT(client.GetUndoStackDescriptions(), ElementsAre(odd));
    EXPECT_EQ(listener.told, "rrrrr");

    request.client->SetValue("7 x", nullptr); // not from our class
    recordings.client->SetValue("5 a", nullptr);
    EXPECT_THAT(client.GetUndoStackDescriptions(), IsEmpty());
    EXPECT_EQ(level.client->GetValue(), 1);
    client.ExecuteUndo(UndoManager::kAllStacks);
    EXPECT_EQ(level.client->GetValue(), 0);
    level.server->SetUndoManager(nullptr);

    triggerClient.OpenNewUndoStack("first");
    {
        const ValueTransaction transaction = value.CreateTransaction(CC_VALUE, nullptr);
        triggerClient.OpenNewUndoStack("second"); // waits for the end
        value.SetValue(8, nullptr);
    }
    value.SetValue(9, nullptr);
    triggerClient.FinishCurrentUndoStack();
    EXPECT_THAT(undo.GetUndoStackDescriptions(), ElementsAre("first", "second"));
    client.ExecuteUndo(1);
    EXPECT_EQ(value.GetValue(), 8);
}

TEST_F(UndoTest, TheTextsOfAServerAreNoPartOfItsHistory)
{
    Value<QString> recordings, request;
    for (Value<QString> *text : {&recordings, &request})
        text->SetUndoManager(&undo);
    const UndoRecordingsToValueServer server(&undo, &recordings, &request);
    stack("a", [&] {
        value.SetValue(1, nullptr);
        recordings.SetUndoManager(&undo); // and once more
    });
    EXPECT_EQ(recordings.GetValue(), "1 a");
    request.SetValue("1 1", nullptr);
    EXPECT_EQ(value.GetValue(), 0);
    EXPECT_EQ(recordings.GetValue(), "0");
}

TEST_F(UndoTest, ABrokenRunTakesTheStackThatAListenerOpened)
{
    auto dying = std::make_unique<Value<int>>("d", 0);
    dying->SetUndoManager(&undo);
    set(1);
    struct Opener : Listener {
        void OnUndoExecutionStart() override { open(); }
        std::function<void()> open;
    } opener;
    opener.open = [&] {
        undo.OpenNewUndoStack("late");
        dying->SetValue(1, nullptr);
    };
    undo.AddExecutionListener(&opener);
    log.then = [&](Observable *, TChangeCode) { dying.reset(); };
    value.AddObserver(&log);
    EXPECT_TRUE(undo.ExecuteUndoStacks(1));
    undo.FinishCurrentUndoStack();
    EXPECT_THAT(undo.GetUndoStackDescriptions(), IsEmpty());
    undo.DeleteExecutionListener(&opener);
    value.DeleteObservers();
}

TEST_F(UndoTest, AnEndLeavesATextThatIsMarkedAsDeleted)
{
    Value<QString> text;
    {
        const UndoRemoteValue end(&text);
        text.SetState(VS_DELETED, nullptr);
        EXPECT_FALSE(text.HasObservers());
    }
    text.SetState(VS_NORMAL, nullptr);
}

} // namespace
