#include "platform/base/krexception.h"
#include "valueclasses/changeroad.h"
#include "valueclasses/selection/valueselectionhelpers.h"
#include "valueclasses/valueselection.h"

#include <map>

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

#define SET(...) [&](S &s, IObserver *on) { s.__VA_ARGS__; }

TEST(ValueSelection, GoesTheRoadOfAChange)
{
    using S = ValueSelection;
    constexpr auto kRepeats = RoadCase::Loud;
    const auto others = makeModes();
    others->SelectIndex(1, nullptr);
    const SelItemDesc declared[] = {{L"USB", 6, 6}, {QString("LSB"), 7, 7}};
    const std::map<int, std::vector<RoadRow<S>>> rows = {
        // Nothing is chosen before.
        {-1,
         {{"by name", SET(Select("FM", on)), {3}, "20;FM;"},
          {"by text", SET(SetStringValue("CW", on)), {3}, "20;CW;"},
          {"by value", SET(Select(1.5, on, false)), {3}, "21;1.500000;"},
          {"nearest value", SET(Select(3.0, on, true)), {3}, "21;4.000000;"},
          {"by key", SET(Select(20, on)), {3}, "22;20;"},
          {"by key 0", SET(Select(0, on)), {3}, "22;0;"},
          {"by index", SET(SelectIndex(2, on)), {3}, "26;2;"},
          {"next", SET(SelectNext(true, on)), {3}, "26;0;", kRepeats},
          {"add names",
           SET(AddItems({"a", "b"}, on)),
           {5},
           "3;23;a;4.000000;4;23;b;5.000000;5;4;5;",
           kRepeats},
          {"declared",
           [&](S &s, IObserver *on) { SelItemDesc::AddItems(declared, 2, &s, on); },
           {5},
           "3;23;USB;6.000000;6;23;LSB;7.000000;7;4;5;",
           kRepeats},
          {"replace",
           [&](S &s, IObserver *on) { ValueSelectionHelpers::ReplaceItems(s, *others, on); },
           {7},
           "",
           kRepeats}}},
        {0, {{"back", SET(SelectNext(false, on)), {3}, "26;3;", kRepeats}}},
        {1,
         {{"add", SET(AddItem("AM", 0.5, 10, on)), {5}, "23;AM;0.500000;10;", kRepeats},
          {"add to itself", SET(AddItemsFrom(s, on)), {5}, "", kRepeats},
          {"delete the choice", SET(DeleteItem(s.GetItem(20), on)), {7}, "24;FM;1.500000;20;"}}},
        {2,
         {{"from the second of two", SET(Select("FM", on)), {3}, ""},
          {"delete the first of two",
           SET(DeleteItem("AM", 0.5, 10, on)),
           {7},
           "24;AM;0.500000;10;",
           kRepeats},
          {"delete all", SET(DeleteItems(on)), {8}, "25;", kRepeats}}},
        {3,
         {{"from key 0", SET(Select(20, on)), {3}, "22;20;"},
          {"delete before the choice",
           SET(DeleteItem("FM", 1.5, 20, on)),
           {7},
           "24;FM;1.500000;20;"}}},
    };
    for (const auto &[chosen, changes] : rows)
        for (const RoadRow<S> &row : changes)
            checkRoad<S>(row, [index = chosen] {
                auto modes = makeModes();
                modes->SelectIndex(index, nullptr);
                return modes;
            });
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

TEST(ValueSelection, UndoTakesAnAddedItemWhoseKeyWasSet)
{
    UndoOnce undo;
    const auto modes = makeModes();
    const auto before = names(*modes);
    modes->SetUndoManager(&undo);
    modes->AddItem("LSB", 1, 1, nullptr);
    SelectionItem *const added = modes->GetItem("LSB");
    added->SetKey(77);
    added->SetState(VS_DISABLED);
    undo.undoAll();
    EXPECT_EQ(names(*modes), before);
    modes->SetUndoManager(nullptr);
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

TEST(ValueSelection, RefusesAnUnknownCommandWithAllBeforeIt)
{
    const auto modes = makeModes(), before = makeModes();
    EXPECT_THROW(modes->SetCommandString("25;27;", nullptr, -1), KRException);
    EXPECT_TRUE(modes->Compare(before.get()));
}

TEST(ValueSelection, OptimizesOnlyWhatIsSuperseded)
{
    ValueSelection value("s");
    expectOptimized(value, {
                               {"20;a;22;1;26;0;21;1.000000;", "21;1.000000;"},
                               {"3;20;a;1;2;26;0;4;3;0;3;", "3;1;2;26;0;4;3;0;3;"},
                               {"3;23;a;0.000000;0;1;2;26;0;25;4;8;", "3;1;2;25;4;8;"},
                               {"25;23;a;0.000000;0;26;0;24;a;0.000000;0;",
                                "25;23;a;0.000000;0;26;0;24;a;0.000000;0;"},
                               {"26;0;25;23;a;0.000000;0;26;0;", "25;23;a;0.000000;0;26;0;"},
                           });
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

} // namespace
