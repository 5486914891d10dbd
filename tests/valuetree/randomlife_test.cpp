// Values of every kind: making and copying them, and long random lives of a tree with all of them,
// which undo takes back whole and a copy of the tree follows by the recorded strings.
#include "quiettraces.h"
#include "valueclasses/changeroad.h"
#include "valueclasses/valuefactory.h"
#include "valuetree/everykind.h"
#include "valuetree/node.h"
#include "valuetree/tree.h"
#include "valuetree/vtxml.h"

namespace {

using namespace values;

constexpr int kSetterSteps = 100000; // at least, in each life

std::string stateOf(ValueBase &value)
{
    return value.GetObjectStateStringForTransmission(unsigned(ModeBinaryTagged));
}

template <typename V>
V *at(BaseTree &tree, const char *path)
{
    return dynamic_cast<V *>(tree.GetValue(path));
}

const std::list<int> &itemsOf(ValueBase &value)
{
    return dynamic_cast<ValueList<int> &>(value).GetList();
}

class Life {
public:
    explicit Life(unsigned seed);
    void change();
    void endTransactions();
    void undoAll();
    /// Both trees hold the same.
    void expectEqual(BaseTree &other);
    /// Gives the copy what was recorded since the last call.
    void replay(BaseTree &copy);

    BaseTree first, copy; // of the tree before its life
    int setterSteps = 0;  // changes that surely called a setter

private:
    struct Actor {
        QString path;
        ValueBase *value;
        std::function<void(Random &)> change;
    };
    void changeTransaction();
    static void expectRestorable(const Actor &actor);

    Random m_random;
    UndoManager m_undo{kSetterSteps};
    BaseTree m_tree;
    std::vector<Actor> m_actors;
    std::vector<std::unique_ptr<Recorder>> m_recorders; // leave the values before these go
    std::vector<ValueBase *> m_open;                    // one entry a transaction
};

Life::Life(unsigned seed) : m_random(seed)
{
    forEachKind([this](const char *node, const char *name, auto *value, auto act) {
        const QString path = QStringLiteral("/%1/%2").arg(node, name);
        EXPECT_TRUE(m_tree.AddValue(path, value));
        m_actors.push_back({path, value, [=](Random &random) { act(*value, random); }});
    });
    for (const Actor &actor : m_actors)
        for (int i = 0; i < 3; ++i)
            actor.change(m_random);
    for (BaseTree *const other : {&first, &copy})
        other->GetRoot()->Copy(m_tree.GetRoot());
    for (const Actor &actor : m_actors) {
        actor.value->SetUndoManager(&m_undo);
        m_recorders.push_back(std::make_unique<Recorder>(*actor.value, ModeBinaryTagged));
    }
}

void Life::changeTransaction()
{
    constexpr TChangeCode kCodes[] = {CC_NONE, CC_VALUE, CC_ITEM_ADDED, CC_LIST_CLEARED};
    if (m_open.empty() || m_random(3) == 0) {
        m_open.push_back(m_actors[std::size_t(m_random(m_actors.size()))].value);
        return m_open.back()->StartTransaction(nullptr);
    }
    const auto ended = m_open.begin() + m_random(m_open.size());
    ValueBase *const value = *ended;
    m_open.erase(ended);
    value->EndTransaction(kCodes[m_random(std::size(kCodes))], nullptr);
}

/// The object state makes an equal value of a new one.
void Life::expectRestorable(const Actor &actor)
{
    const QString kind = actor.value->GetTypeName();
    const std::unique_ptr<ValueBase> made(ValueFactory::Instance().CreateValue(kind));
    made->SetCommandString(stateOf(*actor.value), nullptr, ModeBinaryTagged);
    if (!actor.path.startsWith("/MAPS")) {
        EXPECT_EQ(stateOf(*made), stateOf(*actor.value)) << kind.toStdString();
    }
}

void Life::change()
{
    m_undo.OpenNewUndoStack("some"); // unless one is open
    const Actor &actor = m_actors[std::size_t(m_random(m_actors.size()))];
    switch (m_random(100)) {
    case 0:
        return actor.value->SetState(m_random(2) == 0 ? VS_NORMAL : VS_DISABLED, nullptr);
    case 1:
        return void(actor.value->SetUpdateTimerTime(unsigned(m_random(3)) * 60000U));
    case 2:
        return actor.value->HasChanged(CC_MAPPING, nullptr);
    case 3:
        return actor.value->SetTranslationNamespace(m_random(2) == 0 ? "Ns" : "VdStr", nullptr);
    case 4:
        expectRestorable(actor);
        m_undo.FinishCurrentUndoStack(); // waits for the transactions that are open
        if (m_open.empty() && m_random(10) == 0)
            m_undo.ExecuteUndoStacks(2);
        return;
    case 5:
    case 6:
    case 7:
        return changeTransaction();
    default:
        // An empty value has no setter, and a list that has the item already may be left alone.
        const bool mayRest =
            actor.value->GetType() == VTYPE_ValueEmpty || actor.path.contains("/LISTS/");
        const std::string before = mayRest ? stateOf(*actor.value) : std::string();
        actor.change(m_random);
        setterSteps += int(!mayRest || stateOf(*actor.value) != before);
        if (actor.path.contains("Exclusive")) {
            const auto &selection = dynamic_cast<IMultiSelection &>(*actor.value);
            EXPECT_LE(selection.GetSelectedIndices().size(), 1U);
        }
    }
}

void Life::endTransactions()
{
    for (; !m_open.empty(); m_open.pop_back())
        m_open.back()->EndTransaction(CC_VALUE, nullptr);
    m_undo.FinishCurrentUndoStack();
}

void Life::undoAll()
{
    EXPECT_GT(m_undo.GetUndoStackDescriptions().size(), 10U);
    EXPECT_TRUE(m_undo.ExecuteUndoStacks(UndoManager::kAllStacks));
    for (const Actor &actor : m_actors) {
        EXPECT_FALSE(actor.value->IsTransactionActive());
        // A namespace isn't undone.
        actor.value->SetTranslationNamespace("VdStr", nullptr);
    }
    // A buffer isn't undone either.
    int size = 0;
    const char *const bytes = at<ValueBuffer>(first, "/PLAIN/BUFFER")->GetValue(size);
    at<ValueBuffer>(m_tree, "/PLAIN/BUFFER")->SetValue(bytes, size, nullptr);
}

void Life::expectEqual(BaseTree &other)
{
    for (const Actor &actor : m_actors) {
        SCOPED_TRACE(actor.path.toStdString());
        ValueBase *const value = other.GetValue(actor.path);
        if (actor.path.startsWith("/MAPS")) // records under keys have no order
            EXPECT_TRUE(value->Compare(actor.value));
        else if (actor.path.startsWith("/BAGS")) // commands remove the first equal element
            EXPECT_THAT(itemsOf(*value),
                        ::testing::UnorderedElementsAreArray(itemsOf(*actor.value)));
        else
            EXPECT_EQ(stateOf(*value), stateOf(*actor.value));
    }
    // The offset of a number is neither recorded nor undone; its state has the stored numbers.
    const auto xmlOf = [](BaseTree &tree) {
        VtXml document;
        document.AddNode(tree.GetNode("/PLAIN"));
        return document.GetString().toStdString();
    };
    EXPECT_EQ(xmlOf(m_tree), xmlOf(other));
}

void Life::replay(BaseTree &follower)
{
    for (std::size_t i = 0; i < m_actors.size(); ++i) {
        Recorder &recorder = *m_recorders[i];
        m_actors[i].value->HasChanged(CC_VALUE, nullptr); // hands over what nobody was told of
        EXPECT_EQ(recorder.recorded, recorder.transmitted);
        follower.GetValue(m_actors[i].path)
            ->SetCommandString(recorder.recorded, nullptr, ModeBinaryTagged);
        recorder.recorded.clear();
        recorder.transmitted.clear();
    }
}

TEST(EveryKind, IsMadeByItsNameAndCopied)
{
    const ValueFactory &factory = ValueFactory::Instance();
    Random random(1);
    forEachKind([&](const char *, const char *name, auto *made, auto change) {
        SCOPED_TRACE(name);
        const std::unique_ptr<std::remove_pointer_t<decltype(made)>> value(made);
        for (int i = 0; i < 4; ++i)
            change(*value, random);
        const std::unique_ptr<ValueBase> assigned(factory.CreateValue(value->GetTypeName())),
            copy(factory.CloneValue(*value)), byNumber(factory.CreateValue(value->GetType()));
        EXPECT_THROW(assigned->Assign(TestValue()), KRException);
        assigned->Assign(*value);
        for (const ValueBase *const other : {assigned.get(), copy.get()}) {
            EXPECT_TRUE(typeid(*other) == typeid(*made));
            EXPECT_TRUE(other->Compare(value.get()) && value->Compare(other));
        }
        EXPECT_EQ(byNumber->GetType(), value->GetType());
        EXPECT_FALSE(value->Compare(nullptr));
    });
}

TEST(RandomLife, IsUndoneToTheFirstStateAndFollowedByACopy)
{
    const QuietTraces quiet;
    for (unsigned seed = 1; seed <= 5; ++seed) {
        SCOPED_TRACE(seed);
        Life life(seed);
        while (life.setterSteps < kSetterSteps)
            life.change();
        life.endTransactions();
        life.replay(life.copy);
        life.expectEqual(life.copy);
        life.undoAll();
        life.expectEqual(life.first);
        life.replay(life.copy);
        life.expectEqual(life.copy);
    }
}

} // namespace
