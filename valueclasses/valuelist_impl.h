#pragma once

#include "platform/base/errorhandler.h"
#include "valueclasses/sequenceforms.h"
#include "valueclasses/valuelist.h"

#include <algorithm>
#include <memory>
#include <type_traits>
#include <typeinfo>
#include <utility>

namespace values {

template <typename Items, typename T>
auto findElement(Items &items, const T &wanted)
{
    return std::find_if(items.begin(), items.end(),
                        [&](const T &item) { return Sequence::isSame(item, wanted); });
}

template <typename T, typename F, typename S>
class ValueList<T, F, S>::WholeForm {
public:
    static std::list<T> FromStream(const char **pos, int mode)
    {
        return Sequence::read<std::list<T>, S>(pos, mode);
    }
    static void Append(std::string &out, const std::list<T> &items, int mode)
    {
        const std::size_t count = std::min(items.size(), Sequence::kMaxCount);
        Sequence::append<S>(out, items.begin(), count, mode);
        const auto rest = std::next(items.begin(), std::ptrdiff_t(count));
        for (auto item = rest; item != items.end(); ++item) {
            out += ';';
            CommandInsert::Write(out, mode, kToEnd, *item);
            out.pop_back(); // the last one is closed by the command
        }
    }
};

template <typename T, typename F, typename S>
ValueList<T, F, S>::ValueList(QString name, TValueState state) : ValueBase(std::move(name), state)
{
}

template <typename T, typename F, typename S>
ValueList<T, F, S>::ValueList(const ValueList &other)
    : Observable(other), ISupportTransaction(other), ValueBase(other), m_items(other.m_items)
{
}

template <typename T, typename F, typename S>
ValueList<T, F, S> &ValueList<T, F, S>::operator=(const ValueList &other)
{
    if (this == &other)
        return *this;
    m_items = other.m_items;
    ToBegin();
    ValueBase::operator=(other); // last, for it may tell somebody who deletes this value
    return *this;
}

template <typename T, typename F, typename S>
void ValueList<T, F, S>::PushBack(const T &value, IObserver *source)
{
    if (IsChangeForeign())
        return PostChange([this, value, source] { PushBack(value, source); });
    insert(m_items.end(), kToEnd, value, source);
}

template <typename T, typename F, typename S>
void ValueList<T, F, S>::PushFront(const T &value, IObserver *source)
{
    if (IsChangeForeign())
        return PostChange([this, value, source] { PushFront(value, source); });
    insert(m_items.begin(), 0, value, source);
}

template <typename T, typename F, typename S>
void ValueList<T, F, S>::Insert(const T &before, const T &value, IObserver *source)
{
    if (IsChangeForeign())
        return PostChange([this, before, value, source] { Insert(before, value, source); });
    const auto it = findElement(m_items, before);
    _Q_assert(it != m_items.end(), "it != m_items.end()", "valueclasses/valuelist_impl", __LINE__);
    insert(it, Record() ? indexOf(it) : Kelm::Long(kToEnd), value, source);
}

template <typename T, typename F, typename S>
void ValueList<T, F, S>::InsertAt(Kelm::Long position, const T &value, IObserver *source)
{
    if (position == 0)
        return PushFront(value, source);
    if (position == kToEnd)
        return PushBack(value, source);
    if (IsChangeForeign())
        return PostChange([this, position, value, source] { InsertAt(position, value, source); });
    insert(at(position), position, value, source);
}

template <typename T, typename F, typename S>
void ValueList<T, F, S>::Erase(const T &value, IObserver *source)
{
    if (IsChangeForeign())
        return PostChange([this, value, source] { Erase(value, source); });
    const auto item = findElement(m_items, value);
    if (item != m_items.end())
        erase(item, source);
}

template <typename T, typename F, typename S>
void ValueList<T, F, S>::EraseAt(Kelm::Long position, IObserver *source)
{
    if (PostIfForeign([this, position, source] { EraseAt(position, source); }))
        return;
    const auto item = at(position);
    _Q_assert(item != m_items.end(), "long(m_items.size()) > iIdx", "valueclasses/valuelist_impl",
              __LINE__);
    if (item != m_items.end())
        erase(item, source);
}

template <typename T, typename F, typename S>
void ValueList<T, F, S>::EraseCurrent(IObserver *source)
{
    if (PostIfForeign([this, source] { EraseCurrent(source); }))
        return;
    if (m_current != m_items.end())
        erase(m_current, source);
}

template <typename T, typename F, typename S>
void ValueList<T, F, S>::SetList(const std::list<T> &items, IObserver *source)
{
    setItems(items, source);
}

template <typename T, typename F, typename S>
void ValueList<T, F, S>::setItems(std::list<T> items, IObserver *source)
{
    if (IsChangeForeign())
        return PostChange([this, items = std::move(items), source] { setItems(items, source); });
    if (undoToPresent())
        replaceItems(std::move(items), source);
}

template <typename T, typename F, typename S>
void ValueList<T, F, S>::replaceItems(std::list<T> items, IObserver *source)
{
    m_items.swap(items);
    ToBegin();
    if (Record())
        RecordCommand(new CommandSetList(this, m_items, source));
    HasChanged(CC_LIST_REPLACED, source);
}

template <typename T, typename F, typename S>
void ValueList<T, F, S>::Clear(IObserver *source)
{
    if (PostIfForeign([this, source] { Clear(source); }))
        return;
    if (!undoToPresent())
        return;
    m_items.clear();
    m_current = m_items.end();
    if (Record())
        RecordCommand(new CommandClear(this, source));
    HasChanged(CC_LIST_CLEARED, source);
}

template <typename T, typename F, typename S>
const T &ValueList<T, F, S>::First()
{
    ToBegin();
    return Current();
}

template <typename T, typename F, typename S>
const T &ValueList<T, F, S>::Next()
{
    if (m_current == m_items.end())
        return First();
    ++m_current;
    return Current();
}

template <typename T, typename F, typename S>
const T &ValueList<T, F, S>::Current() const
{
    return m_current != m_items.end() ? *m_current : Null();
}

template <typename T, typename F, typename S>
bool ValueList<T, F, S>::IsLast() const
{
    return m_current == m_items.end() || std::next(m_current) == m_items.end();
}

template <typename T, typename F, typename S>
const T &ValueList<T, F, S>::At(Kelm::Long position) const
{
    if (position < 0 || std::size_t(position) >= m_items.size())
        return Null();
    return *std::next(m_items.begin(), position);
}

template <typename T, typename F, typename S>
const T &ValueList<T, F, S>::Null()
{
    static const T null{};
    return null;
}

template <typename T, typename F, typename S>
void ValueList<T, F, S>::SetStringValue(QString text, IObserver *source)
{
    std::list<T> items;
    Sequence::forEachLine(text, [&](const QString &line) { items.push_back(F::GetValue(line)); });
    refill(items, source);
}

template <typename T, typename F, typename S>
void ValueList<T, F, S>::refill(const std::list<T> &items, IObserver *source)
{
    if (IsChangeForeign())
        return PostChange([this, items, source] { refill(items, source); });
    const ValueTransaction transaction(*this, CC_LIST_REPLACED, source);
    if (transaction.IsValid())
        Clear(source);
    // Undo of the clearing restores all: the elements need none of their own.
    for (auto item = items.begin(); item != items.end() && transaction.IsValid(); ++item) {
        m_items.push_back(*item);
        if (Record())
            RecordCommand(new CommandInsert(this, kToEnd, *item, source));
        HasChanged(CC_ITEM_ADDED, source);
    }
}

template <typename T, typename F, typename S>
QString ValueList<T, F, S>::GetStringValue() const
{
    QString text;
    for (const T &item : m_items)
        text += F::GetString(item) + QLatin1Char('\n');
    return text;
}

template <typename T, typename F, typename S>
ValueType ValueList<T, F, S>::GetType() const
{
    return ListKind<T, F>::kType;
}

template <typename T, typename F, typename S>
QString ValueList<T, F, S>::GetTypeName() const
{
    return QString::fromLatin1(ListKind<T, F>::kTypeName);
}

template <typename T, typename F, typename S>
void ValueList<T, F, S>::Assign(const ValueBase &other)
{
    const auto &list = CastForAssign<ValueList>(other);
    if (PostAssignIfForeign(list))
        return;
    const LifeWatch own(this), theirs(const_cast<ValueList *>(&list));
    ValueBase::operator=(other); // its undo manager comes with it
    if (own.IsGone() || theirs.IsGone())
        return;
    m_lastIndex = -1;
    m_lastItem = T{};
    replaceItems(list.m_items, nullptr);
}

template <typename T, typename F, typename S>
bool ValueList<T, F, S>::Compare(const ValueBase *other) const
{
    if (other == this || other == nullptr)
        return other == this;
    if (typeid(*other) != typeid(*this))
        return false;
    const auto &list = static_cast<const ValueList &>(*other);
    return list.GetName() == GetName() &&
           std::equal(m_items.begin(), m_items.end(), list.m_items.begin(), list.m_items.end(),
                      Sequence::isSame<T>);
}

template <typename T, typename F, typename S>
void ValueList<T, F, S>::OptimizeCommandList(CommandList &commands)
{
    ValueBase::OptimizeCommandList(commands);
    const auto isClear = [](const auto &command) {
        return command->GetCommandId() == CommandClear::kId;
    };
    const auto isOfList = [](const auto &command) {
        const int id = command->GetCommandId();
        return id >= CommandInsert::kId && id <= CommandSetList::kId;
    };
    const auto last = std::find_if(commands.rbegin(), commands.rend(), isClear);
    if (last == commands.rend())
        return;
    const auto clear = last.base() - 1;
    commands.erase(std::remove_if(commands.begin(), clear, isOfList), clear);
}

template <typename T, typename F, typename S>
void ValueList<T, F, S>::NotifyListChanged(TChangeCode code, Kelm::Long index, const T &item,
                                           IObserver *source)
{
    m_lastIndex = index;
    m_lastItem = item;
    HasChanged(code, source);
}

template <typename T, typename F, typename S>
void ValueList<T, F, S>::AddObjectStateStringForTransmission(std::string &out, unsigned int mode)
{
    ValueBase::AddObjectStateStringForTransmission(out, mode);
    CommandSetList::Write(out, int(mode), m_items);
}

template <typename T, typename F, typename S>
Command *ValueList<T, F, S>::CreateNextCommand(int id, const char **pos, IObserver *source,
                                               int mode)
{
    Command *const own = CreateOneOf<CommandInsert, CommandErase, CommandClear, CommandSetList>(
        id, this, pos, source, mode);
    return own != nullptr ? own : ValueBase::CreateNextCommand(id, pos, source, mode);
}

template <typename T, typename F, typename S>
typename ValueList<T, F, S>::Iterator ValueList<T, F, S>::at(Kelm::Long position)
{
    if (position < 0 || std::size_t(position) >= m_items.size())
        return m_items.end();
    return std::next(m_items.begin(), position);
}

template <typename T, typename F, typename S>
Kelm::Long ValueList<T, F, S>::indexOf(Iterator item)
{
    return Kelm::Long(std::int32_t(std::distance(m_items.begin(), item)));
}

template <typename T, typename F, typename S>
void ValueList<T, F, S>::insert(Iterator before, Kelm::Long recordedAs, const T &value,
                                IObserver *source)
{
    std::list<T> added{value};
    if (GetUndoManager() != nullptr && !AddUndo(new CommandErase(this, value, nullptr)))
        return;
    m_items.splice(before, added);
    if (Record())
        RecordCommand(new CommandInsert(this, recordedAs, value, source));
    HasChanged(CC_ITEM_ADDED, source);
}

template <typename T, typename F, typename S>
void ValueList<T, F, S>::erase(Iterator item, IObserver *source)
{
    std::list<T> removed; // keeps the element alive: the caller's value may be a reference to it
    if (GetUndoManager() != nullptr &&
        !AddUndo(new CommandInsert(this, indexOf(item), *item, nullptr)))
        return;
    if (m_current == item)
        ++m_current;
    removed.splice(removed.begin(), m_items, item);
    if (Record())
        RecordCommand(new CommandErase(this, removed.front(), source));
    HasChanged(CC_ITEM_REMOVED, source);
}

template <typename T, typename F, typename S>
bool ValueList<T, F, S>::undoToPresent()
{
    return GetUndoManager() == nullptr || AddUndo(new CommandSetList(this, m_items, nullptr));
}

} // namespace values
