// The bodies of valueitemmapbase.h, for the files that instantiate maps.
#pragma once

#include "valueclasses/itemmaps/itemmapcommands.h"

#include <algorithm>
#include <unordered_set>
#include <vector>

namespace values {

template <typename T, typename F, typename A>
requires ItemFormat<F, T> ValueItemMapBase<T, F, A>::ValueItemMapBase(QString name,
                                                                      TValueState state)
    : ValueBase(std::move(name), state)
{
}

template <typename T, typename F, typename A>
requires ItemFormat<F, T> ValueItemMapBase<T, F, A>
&ValueItemMapBase<T, F, A>::operator=(const ValueItemMapBase &other)
{
    ValueItemMapBase::Assign(other);
    return *this;
}

template <typename T, typename F, typename A>
requires ItemFormat<F, T> QString ValueItemMapBase<T, F, A>::GetStringValue()
const
{
    if (m_items.empty())
        return {};
    return F::GetString(m_items.begin()->second) + QStringLiteral(" - ") +
           QStringLiteral("%1 more items...").arg(m_items.size() - 1);
}

template <typename T, typename F, typename A>
requires ItemFormat<F, T>
void ValueItemMapBase<T, F, A>::Assign(const ValueBase &other)
{
    const auto &map = CastForAssign<ValueItemMapBase>(other);
    if (&map == this || PostAssignIfForeign(map))
        return;
    if (!m_items.empty())
        LogChange(valueitemmap::MapCleared, GetInvalidKey());
    m_items = map.m_items;
    for (const auto &entry : m_items)
        LogChange(valueitemmap::ItemSet, entry.first);
    ValueBase::operator=(other); // last, for it may tell somebody who deletes this value
}

template <typename T, typename F, typename A>
requires ItemFormat<F, T>
bool ValueItemMapBase<T, F, A>::Compare(const ValueBase *other) const
{
    const auto *map = dynamic_cast<const ValueItemMapBase *>(other);
    return map != nullptr &&
           (map == this || (ValueBase::Compare(other) && m_items == map->m_items));
}

template <typename T, typename F, typename A>
requires ItemFormat<F, T>
unsigned int ValueItemMapBase<T, F, A>::SetAt(unsigned int key, const T &item, IObserver *source)
{
    if (IsChangeForeign()) {
        PostChange([this, key, item, source] { SetAt(key, item, source); });
        return key;
    }
    if (key == GetInvalidKey())
        key = CreateNewUniqueKey();
    const T *const old = GetStored(key);
    if (old != nullptr && *old == item)
        return key;
    if (GetUndoManager() != nullptr) {
        Command *undo = nullptr;
        if (old != nullptr)
            undo = new CommandMapSetAt<T, F, A>(this, key, *old, nullptr);
        else
            undo = new CommandMapEraseAt<T, F, A>(this, key, nullptr);
        if (!AddUndo(undo))
            return key;
    }
    T &stored = m_items.insert_or_assign(key, item).first->second;
    if constexpr (KeyItem<T>)
        stored.SetKey(key);
    LogChange(valueitemmap::ItemSet, key);
    if (Record())
        RecordCommand(new CommandMapSetAt<T, F, A>(this, key, stored, source));
    HasChanged(CC_VALUE, source);
    return key;
}

template <typename T, typename F, typename A>
requires ItemFormat<F, T>
void ValueItemMapBase<T, F, A>::EraseAt(unsigned int key, IObserver *source)
{
    if (PostIfForeign([this, key, source] { EraseAt(key, source); }))
        return;
    const auto found = m_items.find(key);
    if (found == m_items.end())
        return;
    if (GetUndoManager() != nullptr &&
        !AddUndo(new CommandMapSetAt<T, F, A>(this, key, found->second, nullptr)))
        return;
    m_items.erase(found);
    LogChange(valueitemmap::ItemErased, key);
    if (Record())
        RecordCommand(new CommandMapEraseAt<T, F, A>(this, key, source));
    HasChanged(CC_VALUE, source);
}

template <typename T, typename F, typename A>
requires ItemFormat<F, T>
void ValueItemMapBase<T, F, A>::Clear(IObserver *source)
{
    if (PostIfForeign([this, source] { Clear(source); }))
        return;
    if (m_items.empty())
        return;
    if (GetUndoManager() != nullptr)
        for (const auto &[key, item] : m_items)
            if (!AddUndo(new CommandMapSetAt<T, F, A>(this, key, item, nullptr)))
                return;
    m_items.clear();
    LogChange(valueitemmap::MapCleared, GetInvalidKey());
    if (Record())
        RecordCommand(new CommandMapClear<T, F, A>(this, source));
    HasChanged(CC_VALUE, source);
}

template <typename T, typename F, typename A>
requires ItemFormat<F, T>
unsigned int ValueItemMapBase<T, F, A>::CreateNewUniqueKey() const
{
    auto key = static_cast<unsigned int>(m_items.size());
    while (key == GetInvalidKey() || m_items.contains(key))
        ++key;
    return key;
}

template <typename T, typename F, typename A>
requires ItemFormat<F, T>
unsigned int ValueItemMapBase<T, F, A>::Add(const T &item, IObserver *source)
{
    if constexpr (KeyItem<T>)
        return SetAt(item.GetKey(), item, source);
    else
        return SetAt(GetInvalidKey(), item, source);
}

template <typename T, typename F, typename A>
requires ItemFormat<F, T>
template <typename Range, typename KeyOf, typename ItemOf>
void ValueItemMapBase<T, F, A>::setAll(const Range &range, bool eraseOthers, bool compare,
                                       IObserver *source, KeyOf keyOf, ItemOf itemOf)
{
    const ValueTransaction transaction(*this, CC_VALUE, source);
    std::unordered_set<unsigned int> others;
    if (!transaction.IsValid())
        return;
    if (eraseOthers && !compare)
        Clear(source);
    else if (eraseOthers)
        for (const auto &entry : m_items)
            others.insert(entry.first);
    for (auto entry = range.begin(); entry != range.end() && transaction.IsValid(); ++entry) {
        others.erase(keyOf(*entry));
        SetAt(keyOf(*entry), itemOf(*entry), source);
    }
    for (auto key = others.begin(); key != others.end() && transaction.IsValid(); ++key)
        EraseAt(*key, source);
}

template <typename T, typename F, typename A>
requires ItemFormat<F, T>
void ValueItemMapBase<T, F, A>::Set(const std::list<T> &items, bool eraseOthers, bool compare,
                                    IObserver *source) requires KeyItem<T>
{
    if (IsChangeForeign())
        return PostChange([=, this] { Set(items, eraseOthers, compare, source); });
    setAll(
        items, eraseOthers, compare, source, [](const T &item) { return item.GetKey(); },
        [](const T &item) -> const T & { return item; });
}

template <typename T, typename F, typename A>
requires ItemFormat<F, T>
void ValueItemMapBase<T, F, A>::Set(const Items &items, bool eraseOthers, bool compare,
                                    IObserver *source)
{
    if (IsChangeForeign())
        return PostChange([=, this] { Set(items, eraseOthers, compare, source); });
    if (&items == &m_items)
        return; // clearing would take what is to be set
    setAll(
        items, eraseOthers, compare, source, [](const auto &entry) { return entry.first; },
        [](const auto &entry) -> const T & { return entry.second; });
}

template <typename T, typename F, typename A>
requires ItemFormat<F, T>
const T &ValueItemMapBase<T, F, A>::At(unsigned int key) const
{
    const auto found = m_items.find(key);
    if (found == m_items.end())
        throw KRException("invalid unordered_map<K, T> key", __FILE__, "ValueItemMapBase", "At",
                          __LINE__);
    return found->second;
}

template <typename T, typename F, typename A>
requires ItemFormat<F, T>
unsigned int ValueItemMapBase<T, F, A>::find(const T &item) const
{
    for (const auto &[key, stored] : m_items)
        if (stored == item)
            return key;
    return GetInvalidKey();
}

template <typename T, typename F, typename A>
requires ItemFormat<F, T> std::vector<unsigned int> ValueItemMapBase<T, F, A>::IndexVector()
const
{
    std::vector<unsigned int> keys;
    keys.reserve(m_items.size());
    for (const auto &entry : m_items)
        keys.push_back(entry.first);
    return keys;
}

template <typename T, typename F, typename A>
requires ItemFormat<F, T> T *ValueItemMapBase<T, F, A>::GetStored(unsigned int key)
{
    const auto found = m_items.find(key);
    return found != m_items.end() ? &found->second : nullptr;
}

template <typename T, typename F, typename A>
requires ItemFormat<F, T>
void ValueItemMapBase<T, F, A>::LogChange(valueitemmap::ChangeKind kind, unsigned int key)
{
    m_changeLog.push_back({m_nextSerial++, kind, key});
}

template <typename T, typename F, typename A>
requires ItemFormat<F, T>
void ValueItemMapBase<T, F, A>::AddObjectStateStringForTransmission(std::string &out,
                                                                    unsigned int mode)
{
    ValueBase::AddObjectStateStringForTransmission(out, mode);
    CommandMapClear<T, F, A>::Write(out, int(mode));
    std::vector<unsigned int> keys; // ascending, so that equal maps have equal forms
    keys.reserve(m_items.size());
    for (const auto &entry : m_items)
        keys.push_back(entry.first);
    std::sort(keys.begin(), keys.end());
    for (const unsigned int key : keys)
        CommandMapSetAt<T, F, A>::Write(out, int(mode), key, m_items.at(key));
}

template <typename T, typename F, typename A>
requires ItemFormat<F, T> Command *
ValueItemMapBase<T, F, A>::CreateNextCommand(int id, const char **pos, IObserver *source, int mode)
{
    Command *const own =
        CreateOneOf<CommandMapSetAt<T, F, A>, CommandMapEraseAt<T, F, A>, CommandMapClear<T, F, A>>(
            id, this, pos, source, mode);
    return own != nullptr ? own : ValueBase::CreateNextCommand(id, pos, source, mode);
}

} // namespace values
