#pragma once

#include "valueclasses/kfactorvalue.h"
#include "valueclasses/recordsamples.h"
#include "valueclasses/selection/valuemultiselection.h"
#include "valueclasses/valuebuffer.h"
#include "valueclasses/valueempty.h"
#include "valueclasses/valuenumericwithoffset.h"
#include "valueclasses/valueselection.h"
#include "valueclasses/valuespecialinterest.h"
#include "valueclasses/valuestream.h"

#include <algorithm>
#include <cmath>
#include <random>

/// One value of every kind that undo knows, and random changes of each.
namespace values {

class Random {
public:
    explicit Random(unsigned seed) : m_engine(seed) {}
    /// 0 to \a count - 1.
    int operator()(std::size_t count) { return int(m_engine() % count); }

private:
    std::mt19937 m_engine;
};

// ------------------------------------------------------------ one random change of a kind of value

template <typename V>
void changeScalar(V &value, Random &random)
{
    using T = typename V::ValueTypename;
    const int n = random(40);
    if constexpr (std::is_same_v<T, KFactor>) {
        KFactor curve;
        curve.Set({{1e6, double(n)}, {2e6 + n, 1}});
        value.SetValue(curve, nullptr);
    } else if constexpr (std::is_same_v<T, QString>) {
        value.SetValue(QString::fromUtf8("\xC3\xA4;%1").arg(n), nullptr);
    } else if constexpr (std::is_same_v<T, std::wstring>) {
        value.SetValue(std::to_wstring(n), nullptr);
    } else if constexpr (std::is_same_v<T, double>) {
        value.SetValue(n == 0 ? std::nan("") : 1.0 / n, nullptr);
    } else {
        value.SetValue(sample<T>(n), nullptr);
    }
}

/// Of what its strings hold: a transducer's name and the edits of reduced points they don't.
inline void changeCurve(ValueKFactor &value, Random &random)
{
    const int n = random(10);
    switch (n) {
    case 0:
        return value.Set({}, nullptr);
    case 1:
        return value.SetMaxOffset(random(5), nullptr);
    case 2:
        return value.Reduce(1 + random(3), nullptr);
    case 3:
        return value.SetDescription(QString::fromUtf8("\xC3\xA4;%1").arg(random(5)), nullptr);
    case 4:
        return value.SetUseMin(random(2) == 0, nullptr);
    default:
        return value.Add(n * 1e6, random(20), random(20), nullptr);
    }
}

template <typename V>
void changeNumber(V &value, Random &random)
{
    const int n = random(41) - 20;
    switch (random(8)) {
    case 0:
        return value.SetMin(n, nullptr);
    case 1:
        return value.SetMax(n, nullptr);
    case 2:
        return value.SetStep(n, nullptr);
    case 3:
        return value.SetMinMax(n, n + 10, 2, nullptr);
    case 4:
        return n < 0 ? value.StepDown(2, nullptr) : value.StepUp(2, nullptr);
    case 5:
        value.doubleSetChangingValue(n, nullptr);
        return value.EndChangingValue(nullptr);
    default:
        return value.SetValue(n, nullptr);
    }
}

inline void changeShifted(ValueNumericWithOffset<double> &value, Random &random)
{
    const int n = random(9) - 4;
    switch (random(8)) {
    case 0:
        return value.SetOffset(n, nullptr);
    case 1:
        return value.SetOffsetMinMax_KeepValueInRange(n, n, 3 * n, 1, nullptr);
    default:
        return changeNumber(value, random);
    }
}

template <typename T>
void changeStream(ValueStream<T> &value, Random &random)
{
    const T numbers[] = {T(random(5)), T(2), T(-3)};
    value.SetValue(numbers, unsigned(random(4)), nullptr);
}

inline void changeBuffer(ValueBuffer &value, Random &random)
{
    value.SetValue("ab;\0cd", random(7), nullptr);
}

inline void changeNothing(ValueEmpty & /*value*/, Random & /*random*/) {}

template <typename V>
void changeList(V &list, Random &random, int samples, bool mayRepeat)
{
    using T = typename V::Element;
    const int n = random(std::size_t(samples));
    const T item = sample<T>(n);
    const auto &items = list.GetList();
    const int place = random(items.size() + 1);
    switch (random(13)) {
    case 0:
        return list.Erase(item, nullptr);
    case 1:
        return list.EraseAt(place, nullptr);
    case 2:
        list.Next();
        return list.EraseCurrent(nullptr);
    case 3:
        return n == 0 ? list.Clear(nullptr) : list.Erase(item, nullptr);
    case 4:
        return list.SetList({item, sample<T>(n + 1)}, nullptr);
    case 5:
        return list.SetStringValue(list.GetStringValue(), nullptr);
    default:
        if (!mayRepeat && std::find(items.begin(), items.end(), item) != items.end())
            return;
    }
    switch (random(4)) {
    case 0:
        return list.PushFront(item, nullptr);
    case 1:
        return list.InsertAt(place, item, nullptr);
    case 2:
        return list.Insert(list.At(place), item, nullptr);
    default:
        return list.PushBack(item, nullptr);
    }
}

template <typename V>
void changeOddList(V &list, Random &random)
{
    changeList(list, random, 12, false);
}

inline void changeEqualList(ValueList<int> &list, Random &random)
{
    changeList(list, random, 3, true);
}

inline void changeInterests(ValueSpecialInterest &list, Random &random)
{
    SpecialInterest item = sample<SpecialInterest>(10 * random(12)); // known by two of its fields
    if (random(8) == 0)
        return list.Clear(nullptr);
    if (random(4) == 0)
        return list.EraseAt(random(list.Size() + 1), nullptr);
    item.SetInterest(random(3));
    list.ChangeInterest(item, nullptr);
}

template <typename V>
void changeVector(V &vector, Random &random)
{
    using T = typename V::Element;
    const int n = random(20);
    if (n == 0)
        return vector.Clear(nullptr);
    if (n == 1) // records no command, so a recorded change has to follow
        vector.SetStringValue(V::Format::GetString(sample<T>(0)) + '\n', nullptr);
    vector.SetValue(std::vector<T>(std::size_t(n % 4), sample<T>(n)), nullptr);
}

/// The names and keys repeat, so that equal items occur.
inline void changeSelection(ValueSelection &value, Random &random)
{
    const int n = random(5);
    const QString name = QString::fromUtf8("\xC3\xA4%1").arg(n);
    SelectionItem *const item = value.GetItemAt(random(std::size_t(value.GetItemCount()) + 1));
    switch (random(14)) {
    case 0:
        return void(value.Select(name, nullptr));
    case 1:
        return void(value.Select(n, nullptr));
    case 2:
        return void(value.Select(n + 0.4, nullptr, n % 2 == 0));
    case 3:
        return void(value.SelectNext(n % 2 == 0, nullptr));
    case 4:
    case 5:
        return void(value.DeleteItem(item, nullptr));
    case 6:
        return n == 0 ? value.DeleteItems(nullptr) : void(value.SelectIndex(n, nullptr));
    case 7:
        return value.AddItems({name, QString()}, nullptr);
    case 8: {
        const ValueTransaction transaction(value, CC_VALUE, nullptr);
        value.DeleteItem(item, nullptr);
        return void(value.Select(name, nullptr));
    }
    default:
        return value.AddItem(name, n, n, nullptr);
    }
}

template <typename V>
void changeMultiSelection(V &value, Random &random)
{
    typename V::Items::mapped_type item;
    const auto key = unsigned(random(6));
    const bool flag = random(2) == 0;
    item.SetText(key < 3 ? QString::fromUtf8("\xE2\x82\xAC;") : "b");
    item.SetSelected(flag);
    switch (random(10)) {
    case 0:
        value.SetAt(key, item, nullptr);
        break;
    case 1:
        value.EraseAt(key, nullptr);
        break;
    case 2:
        value.EnableAt(key, flag, nullptr);
        break;
    case 3:
        value.SetAllowEmptySelection(flag, nullptr);
        break;
    case 4:
        value.SetEmptyText(flag ? "true" : QString::fromUtf8("\xC3\xA4"), nullptr);
        break;
    case 5:
        value.SetMultiSelectedText(QString::number(key), nullptr);
        break;
    case 6:
        key == 0 ? value.Clear(nullptr) : void(value.Add(item, nullptr));
        break;
    case 7:
        value.Set(typename V::Items{{key, item}, {7, item}}, flag, key < 3, nullptr);
        break;
    default:
        value.SelectAt(key, flag, nullptr);
    }
}

// ------------------------------------------------------------------------------------- the kinds

/// Calls \a visit(node, name, new value, its change) for each kind. Under "PLAIN" stand those whose
/// forms tell all of them in one way; item maps stand under "MAPS", a list with equal elements
/// under "BAGS", a number with an offset under "SHIFTED".
template <typename Visit>
void forEachKind(Visit visit)
{
#define SPECTREE_VISIT(T, F, Type, Name)                                                           \
    visit("PLAIN/SCALARS", Name, new Value<T>, changeScalar<Value<T>>);
    SPECTREE_FOR_EACH_SCALAR(SPECTREE_VISIT)
#undef SPECTREE_VISIT
    visit("PLAIN/RECORDS", "BEARING", new Value<BearingResult>, changeScalar<Value<BearingResult>>);
    visit("PLAIN/RECORDS", "PURE", new KFactorPure, changeScalar<KFactorPure>);
    visit("PLAIN/RECORDS", "CURVE", new ValueKFactor, changeCurve);
#define SPECTREE_VISIT(T, F, Type, Name)                                                           \
    visit("PLAIN", Name, new ValueNumeric<T>, changeNumber<ValueNumeric<T>>);
    SPECTREE_FOR_EACH_NUMERIC(SPECTREE_VISIT)
#undef SPECTREE_VISIT
#define SPECTREE_VISIT(T, F, Type, Name)                                                           \
    visit("PLAIN/STREAMS", Name, new ValueStream<T>, changeStream<T>);
    SPECTREE_FOR_EACH_STREAM(SPECTREE_VISIT)
#undef SPECTREE_VISIT
#define SPECTREE_VISIT(T, F, Type, Name)                                                           \
    visit("PLAIN/LISTS", Name, new ValueList<T, F>, changeOddList<ValueList<T, F>>);
    SPECTREE_FOR_EACH_LIST_KIND(SPECTREE_VISIT)
#undef SPECTREE_VISIT
    visit("PLAIN/LISTS", "INTERESTS", new ValueSpecialInterest, changeInterests);
    visit("BAGS", "EQUAL", new ValueList<int>, changeEqualList);
#define SPECTREE_VISIT(T, F, Type, Name)                                                           \
    visit("PLAIN/VECTORS", Name, new ValueVector<T, F>, changeVector<ValueVector<T, F>>);
    SPECTREE_FOR_EACH_VECTOR_KIND(SPECTREE_VISIT)
#undef SPECTREE_VISIT
    visit("PLAIN", "BUFFER", new ValueBuffer, changeBuffer);
    visit("PLAIN", "EMPTY", new ValueEmpty, changeNothing);
    visit("PLAIN", "SELECTION", new ValueSelection, changeSelection);
    visit("SHIFTED", "OFFSET", new ValueNumericWithOffset<double>, changeShifted);
#define SPECTREE_VISIT(Item, Format, Adapter, exclusive, Type, Name)                               \
    visit("MAPS", Name, new ValueMultiSelection<Item, Format, Adapter, exclusive>,                 \
          changeMultiSelection<ValueMultiSelection<Item, Format, Adapter, exclusive>>);
    SPECTREE_FOR_EACH_MULTI_SELECTION(SPECTREE_VISIT)
#undef SPECTREE_VISIT
}

} // namespace values
