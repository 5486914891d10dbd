#include "platform/base/krexception.h"
#include "valueclasses/changeroad.h"
#include "valueclasses/selection/selectioncommands.h"
#include "valueclasses/selection/valueselectionhelpers.h"
#include "valueclasses/valueselection.h"

#include <QCoreApplication>

#include <thread>

namespace {

using namespace values;
using ::testing::ElementsAre;

/// AM 0.5/10, FM 1.5/20, AM 0.5/10 again, CW 4/0; nothing chosen.
std::unique_ptr<ValueSelection> makeModes()
{
    auto modes = std::make_unique<ValueSelection>("modes");
    modes->AddItem("AM", 0.5, 10, nullptr);
    modes->AddItem("FM", 1.5, 20, nullptr);
    modes->AddItem("AM", 0.5, 10, nullptr);
    modes->AddItem("CW", 4.0, 0, nullptr);
    return modes;
}

std::vector<std::string> names(const ValueSelection &selection)
{
    std::vector<std::string> all;
    for (int i = 0; i < selection.GetItemCount(); ++i)
        all.push_back(selection.GetItemAt(i)->GetName().toStdString());
    return all;
}

RoadCase road(const char *name, std::function<void(ValueSelection &)> set, std::vector<int> codes,
              std::string text, RoadCase::Again again = RoadCase::Quiet, int chosen = -1)
{
    const auto make = [chosen] {
        auto modes = makeModes();
        modes->SelectIndex(chosen, nullptr);
        return modes;
    };
    const auto change = [set](ValueBase &value) { set(dynamic_cast<ValueSelection &>(value)); };
    return {name, make, change, std::move(codes), std::move(text), again};
}

TEST(ValueSelection, GoesTheRoadOfAChange)
{
    using S = ValueSelection;
    constexpr auto kRepeats = RoadCase::Repeats;
    const SelItemDesc declared[] = {{L"USB", 6, 6}, {QString("LSB"), 7, 7}};
    const RoadCase cases[] = {
        road(
            "by name", [](S &s) { s.Select("FM", nullptr); }, {3}, "20;FM;"),
        road(
            "by text", [](S &s) { s.SetStringValue("CW", nullptr); }, {3}, "20;CW;"),
        road(
            "by value", [](S &s) { s.Select(1.5, nullptr, false); }, {3}, "21;1.500000;"),
        road(
            "nearest value", [](S &s) { s.Select(3.0, nullptr, true); }, {3}, "21;4.000000;"),
        road(
            "by key", [](S &s) { s.Select(20, nullptr); }, {3}, "22;20;"),
        road(
            "by key 0", [](S &s) { s.Select(0, nullptr); }, {3}, "22;0;"),
        road(
            "from key 0", [](S &s) { s.Select(20, nullptr); }, {3}, "22;20;", {}, 3),
        road(
            "from the second of two", [](S &s) { s.Select("FM", nullptr); }, {3}, "", {}, 2),
        road(
            "by index", [](S &s) { s.SelectIndex(2, nullptr); }, {3}, "26;2;"),
        road(
            "next", [](S &s) { s.SelectNext(true, nullptr); }, {3}, "26;0;", kRepeats),
        road(
            "back", [](S &s) { s.SelectNext(false, nullptr); }, {3}, "26;3;", kRepeats, 0),
        road(
            "add", [](S &s) { s.AddItem("AM", 0.5, 10, nullptr); }, {5}, "23;AM;0.500000;10;",
            kRepeats, 1),
        road(
            "add names",
            [](S &s) {
                s.AddItems({"a", "b"}, nullptr);
            },
            {5}, "3;23;a;4.000000;4;23;b;5.000000;5;4;5;", kRepeats),
        road(
            "add to itself", [](S &s) { s.AddItemsFrom(s, nullptr); }, {5}, "", kRepeats, 1),
        road(
            "declared", [&](S &s) { SelItemDesc::AddItems(declared, 2, &s, nullptr); }, {5},
            "3;23;USB;6.000000;6;23;LSB;7.000000;7;4;5;", kRepeats),
        road(
            "delete before the choice", [](S &s) { s.DeleteItem("FM", 1.5, 20, nullptr); }, {7},
            "24;FM;1.500000;20;", {}, 3),
        road(
            "delete the choice", [](S &s) { s.DeleteItem(s.GetItem(20), nullptr); }, {7},
            "24;FM;1.500000;20;", {}, 1),
        road(
            "delete the first of two", [](S &s) { s.DeleteItem("AM", 0.5, 10, nullptr); }, {7},
            "24;AM;0.500000;10;", kRepeats, 2),
        road(
            "delete all", [](S &s) { s.DeleteItems(nullptr); }, {8}, "25;", kRepeats, 2),
    };
    for (const RoadCase &c : cases)
        checkRoad(c);
}

TEST(ValueSelection, KeepsTheChoiceOnItsItem)
{
    const auto modes = makeModes();
    EXPECT_EQ(modes->GetCurrentItem(), nullptr);
    EXPECT_EQ(modes->GetStringValue(), "");
    modes->SetChanged(2);
    modes->SelectIndex(3, nullptr);
    EXPECT_EQ(modes->GetChanged(), 0);
    const SelectionItem *chosen = modes->GetCurrentItem();
    modes->DeleteItem("AM", 0.5, 10, nullptr);
    EXPECT_EQ(modes->GetCurrentItem(), chosen);
    EXPECT_EQ(modes->GetCurrentIndex(), 2);
    EXPECT_TRUE(modes->DeleteItem(modes->GetCurrentItem(), nullptr));
    EXPECT_EQ(modes->GetCurrentIndex(), -1);
    EXPECT_THAT(names(*modes), ElementsAre("FM", "AM"));
}

TEST(ValueSelection, AnswersWhatIsNotThere)
{
    CodeLog log; // outlives the selection, whose end it is told
    const auto modes = makeModes();
    modes->Select(20, nullptr);
    modes->AddObserver(&log);
    EXPECT_FALSE(modes->Select("", nullptr));
    EXPECT_FALSE(modes->Select(static_cast<const wchar_t *>(nullptr), nullptr));
    EXPECT_FALSE(modes->Select(0.6, nullptr, false));
    EXPECT_FALSE(modes->Select(double(NAN), nullptr, true));
    EXPECT_FALSE(modes->Select(99, nullptr));
    EXPECT_FALSE(modes->SelectIndex(-1, nullptr));
    EXPECT_FALSE(modes->SelectIndex(4, nullptr));
    EXPECT_FALSE(modes->DeleteItem("AM", 0.5, 11, nullptr));
    EXPECT_FALSE(modes->DeleteItem(nullptr, nullptr));
    modes->AddItems({}, nullptr);
    modes->SetCommandString("20;none;22;99;26;4;", nullptr, ModeText);
    EXPECT_TRUE(modes->Select(L"FM", nullptr)); // chosen already
    EXPECT_TRUE(log.codes.empty());
    EXPECT_EQ(modes->GetItem("none"), nullptr);
    EXPECT_EQ(modes->GetItem(0.6), nullptr);
    EXPECT_EQ(modes->GetItem(99), nullptr);
    EXPECT_EQ(modes->GetItemAt(4), nullptr);
    EXPECT_EQ(modes->GetItemIndex(99), -1);
    EXPECT_EQ(modes->GetKeyForItemName("none"), 0);
    EXPECT_EQ(modes->GetKeyForItemName("FM"), 20);
    EXPECT_EQ(modes->GetItemNameForKey(20), "FM");
    EXPECT_FALSE(ValueSelection().SelectNext(true, nullptr));
    EXPECT_THROW(modes->Assign(TestValue()), KRException);
}

TEST(ValueSelection, RefusesABrokenStringWhole)
{
    using namespace std::string_literals;
    const std::pair<int, std::string> broken[] = {
        {-1, "20;FM"},
        {-1, "22;20;26;1"},
        {-1, "23;a;1.0;5"},
        {-1, "24;a;1.0"},
        {0, "21;\0\0\0\0;"s},
        {0, "20;\xFF\xFF\xFF\x7F"
            "FM;"s},
        {-2, "20;\2\0\0\0"s},
        {0, "22;\x14\0\0\0"s},
        {0, "26;\1\0\0\0."s},
        {-2, "25;20;\x4\0\0\0\x31"
             "F;"s},
        {-1, "25;27;"},
    };
    const auto modes = makeModes();
    const auto before = makeModes();
    for (const auto &[mode, text] : broken) {
        EXPECT_THROW(modes->SetCommandString(text, nullptr, mode), KRException) << text;
        EXPECT_TRUE(modes->Compare(before.get()));
    }
}

TEST(ValueSelection, OptimizesOnlyWhatIsSuperseded)
{
    struct Case {
        const char *commands, *optimized;
    };
    const Case cases[] = {
        {"20;a;22;1;26;0;21;1.000000;", "21;1.000000;"},
        {"3;20;a;1;2;26;0;4;3;0;3;", "3;1;2;26;0;4;3;0;3;"},
        {"3;23;a;0.000000;0;1;2;26;0;25;4;8;", "3;1;2;25;4;8;"},
        {"25;23;a;0.000000;0;26;0;24;a;0.000000;0;", "25;23;a;0.000000;0;26;0;24;a;0.000000;0;"},
        {"26;0;25;23;a;0.000000;0;26;0;", "25;23;a;0.000000;0;26;0;"},
    };
    for (const Case &c : cases) {
        ValueSelection value("s");
        std::vector<std::unique_ptr<KELM::ICommand>> parsed;
        value.SetCommandString(c.commands, parsed, nullptr, ModeText);
        CommandList list;
        for (auto &command : parsed)
            list.emplace_back(dynamic_cast<Command *>(command.release()));
        value.OptimizeCommandList(list);
        EXPECT_EQ(ValueBase::CreateCommandString(list, unsigned(ModeText)), c.optimized);
    }
}

TEST(ValueSelection, CarriesTextsAsTheModesCan)
{
    ValueSelection value("s");
    value.AddItem(QString::fromUtf8("\xC2\xB5V;\xE2\x82\xAC"), 1.0 / 3.0, -7, nullptr);
    value.SelectIndex(0, nullptr);
    for (const int mode : {-2, -3}) {
        ValueSelection copy("s");
        copy.AddItems({"gone"}, nullptr); // an object state clears first
        copy.SetCommandString(value.GetObjectStateStringForTransmission(unsigned(mode)), nullptr,
                              mode);
        EXPECT_TRUE(copy == value);
    }
    // In text mode a ";" splits and six decimals remain.
    ValueSelection plain("s"), copy("s");
    plain.AddItem("third", 1.0 / 3.0, -7, nullptr);
    plain.Select(0.3, nullptr, true);
    copy.SetCommandString(plain.GetObjectStateStringForTransmission(unsigned(ModeText)), nullptr,
                          ModeText);
    EXPECT_EQ(copy.GetCurrentValue(), 0.333333);
}

/// One random change; the names and keys repeat, so that equal items occur.
void changeAtRandom(ValueSelection &value, std::mt19937 &random)
{
    const int n = int(random() % 5);
    const QString name = QString::fromUtf8("\xC3\xA4%1").arg(n);
    SelectionItem *item = value.GetItemAt(int(random() % unsigned(value.GetItemCount() + 1)));
    switch (random() % 12) {
    case 0:
        return void(value.Select(name, nullptr));
    case 1:
        return void(value.Select(n, nullptr));
    case 2:
        return void(value.Select(n + 0.4, nullptr, n % 2 == 0));
    case 3:
        return void(value.SelectNext(n % 2 == 0, nullptr));
    case 4:
        return void(value.DeleteItem(item, nullptr));
    case 5:
        return n == 0 ? value.DeleteItems(nullptr) : void(value.SelectIndex(n, nullptr));
    case 6:
        return value.AddItems({name, QString()}, nullptr);
    case 7:
        return value.SetState(n == 0 ? VS_DISABLED : VS_NORMAL, nullptr);
    case 8: {
        const ValueTransaction transaction(value, CC_VALUE, nullptr);
        value.DeleteItem(item, nullptr);
        return void(value.Select(name, nullptr));
    }
    default:
        return value.AddItem(name, n, n, nullptr);
    }
}

TEST(ValueSelection, UndoesAndReplaysARandomLife)
{
    checkRandomLife(20, 500, makeModes, changeAtRandom);
}

TEST(ValueSelection, CopiesWhatItHolds)
{
    const auto modes = makeModes();
    modes->SelectIndex(1, nullptr);
    ValueSelection copy(*modes), assigned;
    assigned.Assign(*modes);
    EXPECT_TRUE(copy == *modes && assigned == *modes);
    copy.GetItemAt(0)->SetState(VS_DISABLED);
    EXPECT_FALSE(copy == *modes);
}

TEST(ValueSelection, PostsAForeignChangeWhole)
{
    const auto modes = makeModes(), others = makeModes();
    others->SelectIndex(1, nullptr);
    const SelItemDesc declared(L"USB", 6, 6);
    Recorder recorder(*modes, ModeText);
    std::thread([&] {
        EXPECT_TRUE(modes->Select("FM", nullptr));
        modes->Select(10, nullptr);
        modes->Select(4.1, nullptr, true);
        modes->SelectIndex(1, nullptr);
        modes->SelectNext(true, nullptr);
        modes->AddItems({"x"}, nullptr);
        modes->AddItem("y", 0, 0, nullptr);
        modes->AddItemsFrom(*modes, nullptr);
        modes->DeleteItem("x", 4.0, 4, nullptr);
        modes->DeleteItems(nullptr);
        ValueSelectionHelpers::ReplaceItems(*modes, *others, nullptr);
        SelItemDesc::AddItems(&declared, 1, modes.get(), nullptr);
    }).join();
    EXPECT_TRUE(recorder.codes.empty());
    QCoreApplication::sendPostedEvents();
    EXPECT_THAT(recorder.codes, ElementsAre(3, 3, 3, 3, 3, 5, 5, 5, 7, 8, 7, 5));
    EXPECT_THAT(names(*modes), ElementsAre("AM", "FM", "AM", "CW", "USB"));
    EXPECT_EQ(modes->GetCurrentIndex(), 1);
}

TEST(ValueSelection, StaysUsableWithManyItems)
{
    constexpr int kCount = 10000;
    QStringList many;
    for (int i = 0; i < kCount; ++i)
        many << QString::number(i);
    ValueSelection value("s"), copy("s");
    UndoOnce undo;
    value.SetUndoManager(&undo);
    value.AddItems(many, nullptr);
    for (int i = 0; i < kCount; ++i)
        ASSERT_TRUE(value.Select(many[kCount - 1 - i], nullptr));
    copy.SetCommandString(value.GetObjectStateStringForTransmission(0), nullptr, 0);
    EXPECT_EQ(copy.GetStringValue(), "0");
    undo.undoAll();
    EXPECT_EQ(value.GetItemCount(), 0);
    value.SetUndoManager(nullptr);
}

} // namespace
