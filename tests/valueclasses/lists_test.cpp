// Lists and vectors: the road of every change in every kind, the walk, commands in all modes.
#include "platform/base/krexception.h"
#include "quiettraces.h"
#include "valueclasses/changeroad.h"
#include "valueclasses/recordsamples.h"
#include "valueclasses/valuespecialinterest.h"
#include "waitfor.h"

#include <QCoreApplication>
#include <gmock/gmock.h>

#include <algorithm>
#include <atomic>
#include <cmath>
#include <thread>

namespace {

using namespace values;
using namespace std::string_literals;
using ::testing::ElementsAre;

constexpr int kModes[] = {-1, 0, -2, -3};

using Samples = std::initializer_list<int>;

template <typename List>
struct Step {
    const char *name;
    std::function<void(List &, IObserver *)> change;
    Samples expected;
    std::vector<int> codes; ///< none: it changes nothing
    unsigned traits = RoadCase::Loud;
};

/// The change leaves what is expected, and a real one goes the road.
template <typename Value, typename Make>
void expectStep(const Step<Value> &step, Make make)
{
    SCOPED_TRACE(step.name);
    const auto value = make({0});
    step.change(*value, nullptr);
    EXPECT_TRUE(value->Compare(make(step.expected).get()));
    if (step.codes.empty()) {
        const auto silent = make({0});
        const Recorder recorder(*silent, 0);
        step.change(*silent, nullptr);
        EXPECT_TRUE(recorder.codes.empty());
        EXPECT_TRUE(silent->GetCommandList().empty());
        return;
    }
    checkRoad<Value>(
        {step.name, step.change, step.codes, {}, step.traits | RoadCase::EndsSuppression},
        [&] { return make({0}); });
}

template <typename List>
auto makeList(Samples samples)
{
    auto list = std::make_unique<List>();
    for (const int i : samples)
        list->PushBack(sample<typename List::Element>(i), nullptr);
    return list;
}

#define SET(...) [&](List &l, [[maybe_unused]] IObserver *on) { l.__VA_ARGS__; }

template <typename List>
void expectRoadOfList(const char *kind)
{
    SCOPED_TRACE(kind);
    using F = typename List::Format;
    const auto a = sample<typename List::Element>(0), b = sample<typename List::Element>(1);
    const QString text = F::GetString(b) + '\n' + F::GetString(a) + "\n\nafter an empty line";
    const auto other = makeList<List>({1, 0});
    const Step<List> steps[] = {
        {"back", SET(PushBack(b, on)), {0, 1}, {5}},
        {"front", SET(PushFront(b, on)), {1, 0}, {5}},
        {"before", SET(Insert(a, b, on)), {1, 0}, {5}},
        {"before nothing", SET(Insert(b, b, on)), {0, 1}, {5}},
        {"at 0", SET(InsertAt(0, b, on)), {1, 0}, {5}},
        {"at -1", SET(InsertAt(-1, b, on)), {0, 1}, {5}},
        {"past the end", SET(InsertAt(7, b, on)), {0, 1}, {5}},
        {"erase", SET(Erase(l.At(0), on)), {}, {6}, 0},
        {"erase nothing", SET(Erase(b, on)), {0}, {}},
        {"erase at", SET(EraseAt(0, on)), {}, {6}, 0},
        {"erase past the end", SET(EraseAt(1, on)), {0}, {}},
        {"erase before 0", SET(EraseAt(-1, on)), {0}, {}},
        {"erase current", SET(First(), l.EraseCurrent(on)), {}, {6}, 0},
        {"erase at the end", SET(EraseCurrent(on)), {0}, {}},
        {"set", SET(SetList({b, a}, on)), {1, 0}, {7}},
        {"clear", SET(Clear(on)), {}, {8}},
        {"assign",
         SET(Assign(*other)),
         {1, 0},
         {7},
         RoadCase::Loud | RoadCase::NoUndo | RoadCase::NoSource},
        {"text", SET(SetStringValue(text, on)), {1, 0}, {8, 5, 5, 7}},
    };
    for (const Step<List> &step : steps)
        expectStep(step, makeList<List>);
    const auto list = makeList<List>({0, 1});
    list->SetStringValue(list->GetStringValue(), nullptr);
    list->SetList(list->GetList(), nullptr);
    EXPECT_TRUE(list->Compare(makeList<List>({0, 1}).get())) << "set to what it holds";
}

TEST(Lists, EveryChangeOfEveryKindGoesTheRoad)
{
#define SPECTREE_EXPECT(T, FormatClass, Type, Name)                                                \
    expectRoadOfList<ValueList<T, FormatClass>>(Name);
    SPECTREE_FOR_EACH_LIST_KIND(SPECTREE_EXPECT)
#undef SPECTREE_EXPECT
    expectRoadOfList<ValueSpecialInterest>("ValueSpecialInterest");
}

template <typename Vector>
void expectRoadOfVector(const char *kind)
{
    SCOPED_TRACE(kind);
    using T = typename Vector::Element;
    if constexpr (std::is_same_v<T, char>)
        return; // prints as a character, reads as a number: its text mode loses it
    const auto make = [](Samples samples) {
        auto vector = std::make_unique<Vector>();
        std::vector<T> items;
        for (const int i : samples)
            items.push_back(sample<T>(i));
        vector->SetValue(items, nullptr);
        return vector;
    };
    const std::vector<T> items{sample<T>(1), sample<T>(0)};
    expectStep<Vector>(
        {"set", [&](Vector &v, IObserver *on) { v.SetValue(items, on); }, {1, 0}, {CC_VALUE}},
        make);
    const auto vector = make({});
    vector->SetStringValue(
        Vector::Format::GetString(items[0]) + '\n' + Vector::Format::GetString(items[1]), nullptr);
    EXPECT_EQ(vector->GetValue(), items);
}

TEST(Vectors, EveryKindGoesTheRoad)
{
#define SPECTREE_EXPECT(T, FormatClass, Type, Name)                                                \
    expectRoadOfVector<ValueVector<T, FormatClass>>(Name);
    SPECTREE_FOR_EACH_VECTOR_KIND(SPECTREE_EXPECT)
#undef SPECTREE_EXPECT
}

TEST(Vectors, ClearWithoutANotificationAndReadTextWithoutACommand)
{
    ValueVector<char> vector;
    vector.SetValue({'A'}, nullptr);
    UndoOnce undo;
    vector.SetUndoManager(&undo);
    Recorder recorder(vector, ModeText);
    vector.SetStringValue("66\n67\n", nullptr);
    EXPECT_EQ(recorder.recorded, "0;3;");
    EXPECT_EQ(vector.GetStringValue(), "B - C - ");
    vector.Clear(nullptr);
    EXPECT_EQ(recorder.recorded, "0;3;");
    EXPECT_EQ(vector.GetCommandStringForRecording(0), "22;");
    EXPECT_EQ(vector.Size(), 0U);
    undo.undoAll();
    EXPECT_THAT(vector.GetValue(), ElementsAre('A'));
    vector.SetCommandString("22;", nullptr, 0);
    EXPECT_EQ(vector.Size(), 0U);
    vector.SetUndoManager(nullptr);
}

using IntList = ValueList<int>;

IntList listOf(std::list<int> items)
{
    IntList list;
    list.SetList(items, nullptr);
    return list;
}

TEST(Lists, RefuseCountsThatNoCommandHas)
{
    IntList list;
    ValueVector<int> vector;
    for (const std::string count : {"65536;", "x;"}) {
        EXPECT_THROW(list.SetCommandString("23;" + count, nullptr, ModeText), KRException);
        EXPECT_THROW(vector.SetCommandString("20;" + count, nullptr, ModeText), KRException);
    }
}

TEST(Lists, WriteTheirCommands)
{
    using List = IntList;
    struct Row {
        const char *name;
        std::function<void(IntList &, IObserver *)> change;
        std::string text, binary;
    } const rows[] = {
        {"back", SET(PushBack(7, on)), "20;-1;7;", "20;\xFF\xFF\xFF\xFF\x07\0\0\0;"s},
        {"front", SET(PushFront(7, on)), "20;0;7;", "20;\0\0\0\0\x07\0\0\0;"s},
        {"before", SET(Insert(2, 7, on)), "20;1;7;", "20;\x01\0\0\0\x07\0\0\0;"s},
        {"at", SET(InsertAt(9, 7, on)), "20;9;7;", "20;\x09\0\0\0\x07\0\0\0;"s},
        {"erase at", SET(EraseAt(1, on)), "21;2;", "21;\x02\0\0\0;"s},
        {"clear", SET(Clear(on)), "22;", "22;"},
        {"set", SET(SetList({3, 4}, on)), "23;2;3;4;", "23;\x02\0\x03\0\0\0\x04\0\0\0;"s},
        {"set to nothing", SET(SetList({}, on)), "23;0;", "23;\0\0;"s},
    };
    for (const Row &row : rows) {
        SCOPED_TRACE(row.name);
        IntList list = listOf({1, 2});
        list.CommandRecordingOn();
        list.StartTransaction(nullptr);
        CodeLog log;
        std::string text, binary;
        log.then = [&](Observable *, TChangeCode) {
            text = list.GetCommandStringForRecording(unsigned(-1));
            binary = list.GetCommandStringForRecording(0);
        };
        list.AddObserver(&log);
        row.change(list, nullptr);
        const std::string change = "0;" + std::to_string(log.codes.at(0)) + ";";
        EXPECT_EQ(text, "3;" + row.text + change)
            << "the change is recorded and ends a suppression";
        EXPECT_EQ(binary, "3;" + row.binary + change);
        list.DeleteObservers();
    }
}

TEST(Lists, WalkFromTheStartAndOverAgain)
{
    IntList list;
    EXPECT_EQ(list.Next(), 0) << "nothing to walk";
    EXPECT_TRUE(list.IsLast());
    list.PushBack(1, nullptr);
    list.PushBack(2, nullptr);
    EXPECT_EQ(list.Next(), 1) << "from the end to the first";
    EXPECT_FALSE(list.IsLast());
    EXPECT_EQ(list.Next(), 2);
    EXPECT_TRUE(list.IsLast());
    EXPECT_EQ(list.Next(), 0) << "the end";
    EXPECT_EQ(list.Current(), 0);
    EXPECT_EQ(list.First(), 1);
    list.Erase(1, nullptr);
    EXPECT_EQ(list.Current(), 2) << "the walk leaves an element that goes";
    list.Clear(nullptr);
    EXPECT_EQ(list.Current(), 0);
    list.PushBack(3, nullptr);
    EXPECT_EQ(list.Next(), 3);
    list.SetList({4, 5}, nullptr);
    EXPECT_EQ(list.Current(), 4);
    const IntList copy = list;
    EXPECT_EQ(copy.Current(), 0) << "a copy walks its own elements";
    EXPECT_EQ(copy.At(1), 5);
    EXPECT_EQ(copy.At(2), 0);
    EXPECT_EQ(copy.At(-1), 0);
}

TEST(Lists, UndoOfAnInsertionTakesTheFirstEqualElement)
{
    UndoOnce undo;
    IntList list = listOf({7, 8});
    list.SetUndoManager(&undo);
    list.PushBack(7, nullptr);
    undo.undoAll();
    EXPECT_THAT(list.GetList(), ElementsAre(8, 7));
    list.SetUndoManager(nullptr);
}

TEST(Lists, UndoOfATextIsOneChange)
{
    UndoOnce undo;
    IntList list = listOf({7, 8});
    list.SetUndoManager(&undo);
    list.SetStringValue("8\n7\n8\n", nullptr);
    CodeLog log;
    list.AddObserver(&log);
    undo.undoAll();
    EXPECT_THAT(list.GetList(), ElementsAre(7, 8));
    EXPECT_EQ(std::count(log.codes.begin(), log.codes.end(), CC_ITEM_REMOVED), 0);
    list.DeleteObservers();
    list.SetUndoManager(nullptr);
}

TEST(Lists, FindAnElementThatIsNoNumber)
{
    UndoOnce undo;
    ValueList<double> list, copy;
    list.SetUndoManager(&undo);
    list.PushBack(NAN, nullptr);
    list.Insert(NAN, 1.0, nullptr);
    copy.SetList({1.0, NAN}, nullptr);
    EXPECT_EQ(list, copy);
    copy.Erase(NAN, nullptr);
    EXPECT_THAT(copy.GetList(), ElementsAre(1.0));
    undo.undoAll();
    EXPECT_TRUE(list.Empty());
    list.SetUndoManager(nullptr);

    // Also as a field of a record; the recorded erase finds it at a far end.
    CodeLog log;
    ValueList<QuadFloat> records, others;
    records.SetList({{1, NAN, 0, 0}, {1, 2, 0, 0}}, nullptr);
    others.Assign(records);
    EXPECT_EQ(others, records);
    records.CommandRecordingOn();
    log.then = [&](Observable *, TChangeCode) {
        others.SetCommandString(records.GetCommandStringForRecording(unsigned(-2)), nullptr, -2);
    };
    records.AddObserver(&log);
    records.EraseAt(0, nullptr);
    EXPECT_EQ(others.GetList().size(), 1U);
    EXPECT_EQ(others, records);
    records.DeleteObservers();
}

TEST(Lists, OptimizeToWhatFollowsTheLastClear)
{
    IntList list;
    expectOptimized(list,
                    {{"20;-1;1;23;2;1;2;0;7;", "20;-1;1;23;2;1;2;0;7;"}, // a list set is no barrier
                     {"0;7;1;2;20;-1;3;0;5;22;0;8;20;-1;4;0;5;", "0;7;1;2;0;5;22;0;8;20;-1;4;0;5;"},
                     {"20;-1;3;22;21;3;22;", "22;"}});
}

TEST(Lists, ReportPositionsThatAreNotThere)
{
    const QuietTraces asserts(TraceAssertions);
    static QStringList traces;
    const auto handler = qInstallMessageHandler(
        [](QtMsgType, const QMessageLogContext &, const QString &text) { traces << text; });
    IntList list = listOf({1});
    list.EraseAt(1, nullptr);
    list.Insert(5, 6, nullptr);
    qInstallMessageHandler(handler);
    ASSERT_EQ(traces.size(), 2);
    EXPECT_TRUE(traces[0].contains("long(m_items.size()) > iIdx"));
    EXPECT_TRUE(traces[1].contains("it != m_items.end()"));
}

TEST(Lists, CompareClassNameAndElements)
{
    IntList list = listOf({1, 2});
    EXPECT_TRUE(list.Compare(&list));
    EXPECT_FALSE(list.Compare(nullptr));
    EXPECT_FALSE(list.Compare(std::make_unique<ValueVector<int>>().get()));
    IntList other("Named");
    EXPECT_THROW(other.Assign(ValueVector<int>()), KRException);
    CodeLog log;
    other.AddObserver(&log);
    other.Assign(list);
    EXPECT_THAT(log.codes, ElementsAre(CC_LIST_REPLACED));
    EXPECT_EQ(other, list);
    EXPECT_EQ(other.Current(), 1);
    other.SetName("Named", nullptr);
    EXPECT_FALSE(other == list);
    list.SetState(VS_DISABLED, nullptr);
    other.SetName("x", nullptr);
    list.SetName("x", nullptr);
    EXPECT_EQ(other, list) << "the state doesn't count";
    list.EraseAt(0, nullptr);
    EXPECT_FALSE(other == list);
    other.DeleteObservers();
}

TEST(Lists, MoreElementsThanACommandCounts)
{
    std::list<int> items(70000);
    std::generate(items.begin(), items.end(), [n = 0]() mutable { return n++; });
    const auto list = std::make_unique<IntList>(listOf(items));
    for (const int mode : kModes) {
        IntList restored;
        restored.SetCommandString(list->GetObjectStateStringForTransmission(unsigned(mode)),
                                  nullptr, mode);
        EXPECT_EQ(restored.GetList(), items) << mode;
    }
    ValueVector<int> vector;
    vector.SetValue(std::vector<int>(65535, 1), nullptr);
    EXPECT_THROW(vector.SetValue(std::vector<int>(65536), nullptr), KRException);
    EXPECT_THROW(vector.SetStringValue(QString("1\n").repeated(65536), nullptr), KRException);
    EXPECT_EQ(vector.Size(), 65535U);
}

TEST(Lists, ReadTheirTextsInOnePiece)
{
    IntList list = listOf({9});
    list.SetStringValue("1\n\n2", nullptr);
    EXPECT_THAT(list.GetList(), ElementsAre(1));
    list.SetStringValue("", nullptr);
    EXPECT_TRUE(list.Empty());
    ValueList<bool> flags;
    flags.SetStringValue("True\ntrue\n", nullptr);
    EXPECT_THAT(flags.GetList(), ElementsAre(false, true));
    ValueList<GSMResult> results;
    results.PushBack({1, 2, 3}, nullptr);
    EXPECT_THROW(results.SetStringValue("4;5;6\n4;5", nullptr), KRException);
    EXPECT_EQ(results.GetStringValue(), "1;2;3\n") << "a bad second line leaves the list alone";
}

TEST(Lists, ABadTextIsRefusedOnTheThreadThatSetsIt)
{
    ValueList<GSMResult> results;
    results.CommandRecordingOn();
    std::thread([&] { EXPECT_THROW(results.SetStringValue("1", nullptr), KRException); }).join();
}

TEST(SpecialInterest, ChangesTheInterestOfAnElementByOneCommand)
{
    const auto make = [](Samples interests) {
        auto list = std::make_unique<ValueSpecialInterest>();
        for (const int interest : interests)
            list->PushBack({interest, "guid", QString::number(list->Size())}, nullptr);
        return list;
    };
    using List = ValueSpecialInterest;
    const Step<List> steps[] = {
        {"change", SET(ChangeInterest({2, "guid", "0"}, on)), {2}, {3}, 0},
        {"same", SET(ChangeInterest({0, "guid", "0"}, on)), {0}, {}},
        {"new", SET(ChangeInterest({3, "guid", "1"}, on)), {0, 3}, {5}, 0},
    };
    for (const Step<List> &step : steps)
        expectStep(step, make);
    const ValueList<SpecialInterest> plain;
    EXPECT_FALSE(plain.Compare(make({}).get()) || make({})->Compare(&plain)) << "two classes";
}

/// The application thread takes each change while the thread that posts it is still at it: what is
/// posted must not end there, since a value would end the process.
TEST(ValueLists, AnAssignmentEndsOnTheApplicationThread)
{
    ValueList<int> list;
    list.CommandRecordingOn();
    const ValueList<int> empty;
    std::atomic<bool> done = false;
    const QuietTraces quiet;
    std::thread poster([&] {
        for (int i = 0; i < 5000; ++i)
            list.Assign(empty);
        done = true;
    });
    EXPECT_TRUE(waitFor([&] { return done.load(); }));
    poster.join();
    QCoreApplication::processEvents();
    EXPECT_EQ(list.Size(), 0);
}

} // namespace
