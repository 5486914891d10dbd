#include "platform/base/krexception.h"
#include "valueclasses/changeroad.h"
#include "valueclasses/selection/valuemultiselection.h"
#include "valueclasses/selection/valueselectionhelpers.h"

namespace {

using namespace values;
using ::testing::ElementsAre;
using ::testing::UnorderedElementsAre;
using valueitemmap::ChangeRecord;
using valueitemmap::InvalidKey;

template <typename Selection>
class MultiSelection : public ::testing::Test {
public:
    using Items = typename Selection::Items;
    using Item = typename Items::mapped_type;
    static constexpr bool isExclusive =
        std::is_same_v<Selection, ValueStringExclusiveSelection> ||
        std::is_same_v<Selection, ValueStringDoubleExclusiveSelection>;

    static Item item(const char *text, bool selected = false)
    {
        Item made;
        made.SetText(QString::fromUtf8(text));
        made.SetSelected(selected);
        if constexpr (requires { made.SetValue(0.0); })
            made.SetValue(1.0 / 3.0);
        return made;
    }
    /// "a", "\xC3\xA4;" and "c" under 0, 1 and 2; the middle one is selected.
    static std::unique_ptr<Selection> make()
    {
        auto made = std::make_unique<Selection>("m");
        made->Add(item("a"), nullptr);
        made->Add(item("\xC3\xA4;", true), nullptr);
        made->Add(item("c"), nullptr);
        return made;
    }
};

using Kinds =
    ::testing::Types<ValueStringMultiSelection, ValueStringExclusiveSelection,
                     ValueStringDoubleMultiSelection, ValueStringDoubleExclusiveSelection>;
TYPED_TEST_SUITE(MultiSelection, Kinds);

#define SET(...) [&](S &s, IObserver *on) { s.__VA_ARGS__; }

TYPED_TEST(MultiSelection, GoesTheRoadOfAChange)
{
    using S = TypeParam;
    const auto item = [](const char *text, bool selected = false) {
        return TestFixture::item(text, selected);
    };
    using enum RoadCase::Trait;
    const std::list<typename TestFixture::Item> others{item("x"), item("y", true)};
    const RoadRow<S> rows[] = {
        {"select", SET(SelectAt(2, true, on)), {19}, "31;2;true;"},
        {"deselect", SET(SelectAt(1, false, on)), {19}, "31;1;false;"},
        {"disable", SET(EnableAt(0, false, on)), {19}, "32;0;false;"},
        {"no empty selection", SET(SetAllowEmptySelection(false, on)), {3}, "33;false;"},
        {"empty text", SET(SetEmptyText("none", on)), {3}, "33;none;"},
        {"text of many", SET(SetMultiSelectedText("many", on)), {3}, "34;many;"},
        {"select only",
         [](S &s, IObserver *on) { ValueSelectionHelpers::SelectOnly(s, 2, on); },
         {19},
         ""},
        {"erase", SET(EraseAt(1, on)), {3}, "21;1;0;3;", EndsSuppression},
        {"clear", SET(Clear(on)), {3}, "22;0;3;", EndsSuppression},
        {"replace", SET(SetAt(1, item("n"), on)), {3}, "", EndsSuppression},
        {"set all",
         SET(SetMap({{7, item("x")}, {1, item("y", true)}}, on)),
         {3, 3, 3, 3, 3},
         "",
         Loud | EndsSuppression},
        {"set a list", SET(Set(others, true, false, on)), {3, 3, 3, 3}, "", Loud | EndsSuppression},
    };
    for (const RoadRow<S> &row : rows)
        checkRoad(row, TestFixture::make);
}

TYPED_TEST(MultiSelection, KeepsItsRules)
{
    const auto value = this->make();
    EXPECT_TRUE(value->SelectAt(0, true, nullptr));
    if (this->isExclusive)
        EXPECT_THAT(value->GetSelectedIndices(), ElementsAre(0));
    else
        EXPECT_THAT(value->GetSelectedIndices(), ElementsAre(0, 1));
    value->SetAllowEmptySelection(false, nullptr);
    value->SelectAt(1, false, nullptr);
    EXPECT_FALSE(value->SelectAt(0, false, nullptr));
    EXPECT_FALSE(value->SelectAt(9, true, nullptr));
    EXPECT_FALSE(value->EnableAt(9, true, nullptr));
    EXPECT_EQ(value->GetCurrentIndex(), 0U);
    EXPECT_EQ(value->GetSelectionText(), "a");
    EXPECT_TRUE(ValueSelectionHelpers::SelectOnly(*value, 2, nullptr));
    EXPECT_FALSE(ValueSelectionHelpers::SelectOnly(*value, 9, nullptr));
    EXPECT_THAT(ValueSelectionHelpers::GetSelectedTexts(*value), ElementsAre("c"));
    value->SetEmptyText("-", nullptr);
    value->Clear(nullptr);
    EXPECT_EQ(value->GetSelectionText(), "-");
    EXPECT_THROW(value->Assign(TestValue()), KRException);
}

TYPED_TEST(MultiSelection, ASelectedItemReplacesTheOtherInOneStep)
{
    CodeLog log;
    TypeParam copy("m");
    const auto value = this->make();
    copy.Assign(*value);
    value->SetAllowEmptySelection(false, nullptr);
    std::string commands;
    log.then = [&](Observable *, TChangeCode) {
        if (value->GetSelectedIndices().empty())
            value->SelectAt(0, true, nullptr);
        commands += value->GetCommandStringForRecording(unsigned(-2));
    };
    value->AddObserver(&log);
    value->CommandRecordingOn();
    value->SetAt(2, this->item("n", true), nullptr);
    EXPECT_EQ(value->GetSelectedIndices().size(), this->isExclusive ? 1U : 2U);
    EXPECT_TRUE(value->IsSelectedAt(2));
    CodeLog seen;
    bool empty = false;
    seen.then = [&](Observable *, TChangeCode) { empty |= copy.GetSelectedIndices().empty(); };
    copy.AddObserver(&seen);
    copy.SetCommandString(commands, nullptr, -2);
    EXPECT_EQ(copy.GetSelectedIndices(), value->GetSelectedIndices());
    EXPECT_FALSE(empty) << "at a far end either";
    copy.DeleteObservers();
    value->DeleteObservers();
}

TYPED_TEST(MultiSelection, TellsTheFlagFromTheTextOfId33)
{
    const QString texts[] = {"", "1", "true ", QString(0x3B00, 'x'), QString(0x3B01, ';')};
    for (const int mode : {-1, 0, 1, -2, -3})
        for (const QString &text : texts)
            for (const bool allow : {true, false}) {
                if (mode == ModeText && text.contains(';'))
                    continue; // a ";" splits a text
                TypeParam value("m"), copy("m");
                value.SetEmptyText(text, nullptr);
                value.SetAllowEmptySelection(allow, nullptr);
                copy.SetAllowEmptySelection(!allow, nullptr);
                copy.SetCommandString(value.GetObjectStateStringForTransmission(unsigned(mode)),
                                      nullptr, mode);
                EXPECT_TRUE(copy == value) << mode << ' ' << text.size();
            }
    // The one loss of the text form beside those of every text.
    TypeParam value("m");
    value.SetCommandString("33;false;", nullptr, ModeText);
    EXPECT_FALSE(value.GetAllowEmptySelection());
    EXPECT_EQ(value.GetEmptyText(), "");
}

using Map = ValueStringMultiSelection;

TEST(ItemMap, LogsItsLastHundredChanges)
{
    Map map("m");
    const StringMultiSelectionItem item("a");
    EXPECT_EQ(map.Add(item, nullptr), 0U);
    map.SetAt(0, item, nullptr); // equal: no change
    map.EraseAt(9, nullptr);
    map.EraseAt(0, nullptr);
    map.Clear(nullptr); // empty already
    map.SetAt(4, item, nullptr);
    map.Clear(nullptr);
    const auto &log = map.GetChangeLog();
    EXPECT_THAT(std::vector<ChangeRecord>(log.begin(), log.end()),
                ElementsAre(ChangeRecord{0, valueitemmap::ItemSet, 0},
                            ChangeRecord{1, valueitemmap::ItemErased, 0},
                            ChangeRecord{2, valueitemmap::ItemSet, 4},
                            ChangeRecord{3, valueitemmap::MapCleared, InvalidKey}));
    for (int i = 0; i < 97; ++i)
        map.PushBack(item, nullptr);
    EXPECT_EQ(log.size(), 100U);
    EXPECT_EQ(log.front().serial, 1U);
    EXPECT_EQ(log.back().serial, 100U);
}

TEST(ItemMap, FindsKeysAndItems)
{
    CodeLog codes; // outlives the map, whose end it is told
    Map map("m");
    EXPECT_EQ(map.GetStringValue(), "");
    for (const char *text : {"a", "b", "c"})
        map.Add(StringMultiSelectionItem(text), nullptr);
    map.EraseAt(0, nullptr);
    EXPECT_EQ(map.CreateNewUniqueKey(), 3U); // counts from 2, which is taken
    EXPECT_EQ(map.Set(StringMultiSelectionItem("d"), nullptr), 3U);
    EXPECT_EQ(map.At(3).GetKey(), 3U);
    EXPECT_EQ(map.find(StringMultiSelectionItem("c")), 2U);
    EXPECT_EQ(map.find(StringMultiSelectionItem("a")), InvalidKey);
    EXPECT_THROW(map.At(0), KRException);
    EXPECT_THAT(map.IndexVector(), UnorderedElementsAre(1, 2, 3));
    EXPECT_TRUE(map.GetStringValue().endsWith(" - 2 more items..."));

    // A list of new and known items, with and without those that it doesn't name.
    StringMultiSelectionItem known("B");
    known.SetKey(1);
    map.Set(std::list{known, StringMultiSelectionItem("new")}, false, true, nullptr);
    EXPECT_THAT(map.IndexVector(), UnorderedElementsAre(1, 2, 3, 4));
    map.AddObserver(&codes);
    map.Set(std::list{known}, true, true, nullptr);
    EXPECT_THAT(map.IndexVector(), ElementsAre(1));
    EXPECT_THAT(codes.take(), ElementsAre(3, 3, 3, 3)); // three erased, and the transaction's end
    map.SetMap(Map::Items(map.GetItems()), nullptr);
    EXPECT_THAT(codes.take(), ElementsAre(3));
    map.Set(map.GetItems(), true, false, nullptr);
    EXPECT_EQ(map.Size(), 1U);
}

} // namespace
