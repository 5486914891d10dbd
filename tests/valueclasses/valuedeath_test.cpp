// Somebody who is told of a change deletes the value while the operation that told still runs.
#include "quiettraces.h"
#include "valueclasses/records/sequencekinds.h"
#include "valueclasses/selection/valuemultiselection.h"
#include "valueclasses/selection/valueselectionhelpers.h"
#include "valueclasses/testvalue.h"
#include "valueclasses/undo/undomanager.h"
#include "valueclasses/valuefactory.h"
#include "valueclasses/valuenumericwithoffset.h"
#include "valueclasses/valueselection.h"
#include "valueclasses/xmlvaluefactory.h"
#include "valuetree/tree.h"
#include "valuetree/valueitem.h"

#include <gtest/gtest.h>

namespace {

using namespace values;
using Offset = ValueNumericWithOffset<double>;
using Choices = ValueStringMultiSelection;

/// Deletes the value when it is told for the \a countdown-th time, by the value or by its manager.
class Killer : public IObserver, public IUndoRecordingsListener {
public:
    Killer(ValueBase *victim, int countdown) : m_victim(victim), m_countdown(countdown) {}
    void Update(Observable * /*subject*/, TChangeCode /*code*/) override { told(); }
    void OnUndoRecordingsChanged() override { told(); }
    bool HasKilled() const { return m_victim == nullptr; }

private:
    void told()
    {
        if (m_victim != nullptr && m_victim->GetState() != VS_DELETED && --m_countdown == 0)
            delete std::exchange(m_victim, nullptr);
    }

    ValueBase *m_victim;
    int m_countdown;
};

struct Case {
    const char *name, *kind;
    std::function<void(ValueBase &)> run;
};

StringMultiSelectionItem choice(const char *text, bool selected = false)
{
    StringMultiSelectionItem item((QString(text)));
    item.SetSelected(selected);
    return item;
}

/// What a value of each kind holds before the operation.
void fill(ValueBase &value)
{
    value.SetName("v", nullptr);
    if (auto *const modes = dynamic_cast<ValueSelection *>(&value))
        modes->AddItems({"AM", "FM", "CW"}, nullptr);
    else if (auto *const map = dynamic_cast<IMultiSelection *>(&value))
        map->GetValueBase()->SetCommandString(
            [] {
                Choices filled;
                filled.SetAt(1, choice("one", true), nullptr);
                filled.SetAt(2, choice("two"), nullptr);
                return filled.GetObjectStateStringForTransmission(0);
            }(),
            nullptr, 0);
    else
        value.SetStringValue("1", nullptr);
}

std::unique_ptr<ValueBase> make(const char *kind)
{
    return std::unique_ptr<ValueBase>(ValueFactory::Instance().CreateValue(QString(kind)));
}

void readXml(ValueBase &value)
{
    const auto from = make(qPrintable(value.GetTypeName()));
    fill(*from);
    if (auto *const number = dynamic_cast<IValueNumeric *>(from.get())) {
        number->doubleSetMax(9, nullptr);
        number->doubleSetMin(-9, nullptr);
        number->doubleSetValue(5, nullptr);
    }
    const XmlValueBase &handler = XmlValueFactory::Instance().HandlerFor(*from);
    QDomDocument document;
    QDomElement element = document.createElement("v");
    handler.ToXml(from.get(), element, document);
    handler.FromXml(&value, element);
}

void readItemText(ValueBase &value)
{
    BaseTree tree;
    tree.AddValue("/v", &value);
    if (ValueItem *const item = tree.GetValueItem("/v")) // its name is told, too
        item->SetAsStdString("v;6,;22;9;21;-9;20;5;;", nullptr);
}

template <typename V, typename Act>
Case on(const char *name, const char *kind, Act act)
{
    return {name, kind, [act](ValueBase &value) { act(dynamic_cast<V &>(value)); }};
}

const Case kCases[] = {
    on<ValueBase>("replay", "ValueInt",
                  [](auto &v) { v.SetCommandString("20;5;1;2;7;Ns;20;6;", nullptr, -1); }),
    on<ValueBase>("replayed transaction", "ValueIntList",
                  [](auto &v) { v.SetCommandString("3;20;0;7;4;3;22;", nullptr, -1); }),
    on<ValueBase>("states", "ValueInt",
                  [](auto &v) { v.SetCommandString("1;2;1;1;", nullptr, -1); }),
    on<ValueBase>("timer", "ValueInt",
                  [](auto &v) { v.SetCommandString("5;60000;0;3;", nullptr, -1); }),
    on<ValueBase>("codes of a guard", "ValueInt",
                  [](auto &v) {
                      const ValueTransaction guard(v, {CC_VALUE, CC_LIMITS, CC_NAME}, nullptr);
                  }),
    on<ValueBase>("inside of guards", "ValueInt",
                  [](auto &v) {
                      ValueTransaction outer(v, CC_VALUE, nullptr), inner;
                      if (outer.IsValid())
                          inner = ValueTransaction(v, CC_VALUE, nullptr);
                      if (inner.IsValid())
                          v.HasChanged(CC_NAME, nullptr);
                      const ValueTransaction moved(std::move(outer));
                  }),
    on<Offset>("offset", "ValueNumericFloatWithOffset", [](Offset &v) { v.SetOffset(5, nullptr); }),
    on<Offset>("offset and limits", "ValueNumericFloatWithOffset",
               [](Offset &v) { v.SetOffsetMinMax_KeepValueInRange(5, 2, 9, 2, nullptr); }),
    on<IValueNumeric>("steps", "ValueNumericInt", [](auto &v) { v.StepDown(1, nullptr); }),
    on<ValueBase>("text of a list", "ValueIntList",
                  [](auto &v) { v.SetStringValue("7\n8\n", nullptr); }),
    on<ValueBase>("text of a vector", "IntValueVector",
                  [](auto &v) { v.SetStringValue("7\n8\n", nullptr); }),
    on<Choices>("whole map", "ValueStringMultiSelection",
                [](Choices &v) {
                    v.Set({{3, choice("3")}, {4, choice("4")}}, true, false, nullptr);
                }),
    on<Choices>("compared map", "ValueStringMultiSelection",
                [](Choices &v) {
                    v.SetMap({{3, choice("3")}, {2, choice("2")}}, nullptr);
                }),
    on<ValueStringExclusiveSelection>(
        "exclusive item", "ValueStringExclusiveSelection",
        [](ValueStringExclusiveSelection &v) { v.SetAt(2, choice("2", true), nullptr); }),
    on<IMultiSelection>("only one", "ValueStringMultiSelection",
                        [](auto &v) { ValueSelectionHelpers::SelectOnly(v, 2, nullptr); }),
    on<ValueSelection>("new items", "ValueSelection",
                       [](auto &v) {
                           v.AddItems({"USB", "LSB"}, nullptr);
                       }),
    on<ValueSelection>("other items", "ValueSelection",
                       [](auto &v) {
                           ValueSelection other;
                           fill(other);
                           other.SelectIndex(1, nullptr);
                           ValueSelectionHelpers::ReplaceItems(v, other, nullptr);
                       }),
    on<ValueSelection>("one item less", "ValueSelection",
                       [](auto &v) { v.DeleteItem("FM", 1, 1, nullptr); }),
    on<ValueBase>("number from XML", "ValueNumericInt", readXml),
    on<ValueBase>("stored number from XML", "ValueNumericFloatWithOffset", readXml),
    on<ValueBase>("list from XML", "ValueIntList", readXml),
    on<ValueBase>("selection from XML", "ValueSelection", readXml),
    on<ValueBase>("item text", "ValueNumericInt", readItemText),
};

/// The address sanitizer sees who still touches the value.
TEST(ValueDeath, AValueMayGoAtAnyStepOfAnOperation)
{
    const QuietTraces quiet; // each death in a notification is traced
    for (const Case &row : kCases)
        for (const bool undone : {false, true}) {
            SCOPED_TRACE(std::string(row.name) + (undone ? ", undone" : ""));
            bool killed = true;
            for (int step = 1; killed; ++step) {
                ValueBase *const value = make(row.kind).release();
                fill(*value);
                UndoManager manager(1);
                Killer killer(value, step);
                manager.AddRecordingsListener(&killer);
                if (undone)
                    value->SetUndoManager(&manager);
                value->AddObserver(&killer);
                const LifeWatch life(value);
                row.run(*value);
                killed = killer.HasKilled();
                ASSERT_TRUE(killed || step > 1) << "nobody was told";
                if (life.IsGone())
                    continue;
                EXPECT_FALSE(value->IsTransactionActive());
                value->DeleteObserver(&killer);
                value->SetUndoManager(nullptr);
                manager.DeleteRecordingsListener(&killer);
                delete value;
                EXPECT_TRUE(life.IsGone());
            }
        }
}

} // namespace
