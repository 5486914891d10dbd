// The changes of a selection: undo, store, record, notify.
#include "valueclasses/iundomanager.h"
#include "valueclasses/selection/selectioncommands.h"
#include "valueclasses/valueselection.h"

#include <algorithm>

namespace values {

ValueSelection::Choice ValueSelection::describe(ChoiceKind kind, int index) const
{
    Choice choice{kind, QString(), 0.0, kind == ByIndex ? index : 0};
    if (const SelectionItem *item = GetItemAt(index)) {
        choice.name = item->GetName();
        choice.value = item->GetValue();
        if (kind == ByKey)
            choice.number = item->GetKey();
    }
    return choice;
}

int ValueSelection::find(const Choice &choice) const
{
    switch (choice.kind) {
    case ByName:
        return indexOfName(choice.name);
    case ByValue:
        return indexOfValue(choice.value, true);
    case ByKey:
        return GetItemIndex(choice.number);
    case ByIndex:
        break;
    }
    return choice.number;
}

bool ValueSelection::choose(int index, ChoiceKind kind, IObserver *source)
{
    if (index == m_current)
        return true;
    if (GetUndoManager() != nullptr &&
        !AddUndo(new CommandSelect(this, describe(kind, m_current), m_current)))
        return true;
    m_current = index;
    m_changed = 0;
    if (Record())
        RecordCommand(new CommandSelect(this, describe(kind, index), source));
    NotifyObservers(CC_VALUE, source);
    return true;
}

void ValueSelection::chooseNone(IObserver *source)
{
    if (PostIfForeign([this, source] { chooseNone(source); }))
        return;
    choose(-1, ByIndex, source);
}

bool ValueSelection::restoreChoice(const Choice &choice, int index)
{
    // An empty name or the key 0 would find an item where none was chosen before.
    if (index >= int(m_items.size()) || (index >= 0 && find(choice) == index))
        return false;
    return choose(std::max(index, -1), ByIndex, nullptr);
}

bool ValueSelection::Select(Kelm::Long key, IObserver *source)
{
    if (PostIfForeign([this, key, source] { Select(key, source); }))
        return true;
    const int index = GetItemIndex(key);
    return index >= 0 && choose(index, ByKey, source);
}

bool ValueSelection::Select(double value, IObserver *source, bool nearest)
{
    if (PostIfForeign([this, value, source, nearest] { Select(value, source, nearest); }))
        return true;
    const int index = indexOfValue(value, nearest);
    return index >= 0 && choose(index, ByValue, source);
}

bool ValueSelection::Select(const wchar_t *name, IObserver *source)
{
    return name != nullptr && Select(QString::fromWCharArray(name), source);
}

bool ValueSelection::Select(const QString &name, IObserver *source)
{
    if (PostIfForeign([this, name, source] { Select(name, source); }))
        return true;
    const int index = indexOfName(name);
    return index >= 0 && choose(index, ByName, source);
}

void ValueSelection::SetStringValue(QString text, IObserver *source) { Select(text, source); }

bool ValueSelection::SelectIndex(Kelm::Long index, IObserver *source)
{
    if (PostIfForeign([this, index, source] { SelectIndex(index, source); }))
        return true;
    return index >= 0 && index < GetItemCount() && choose(index, ByIndex, source);
}

bool ValueSelection::SelectNext(bool forward, IObserver *source)
{
    if (PostIfForeign([this, forward, source] { SelectNext(forward, source); }))
        return true;
    const int count = GetItemCount();
    if (count == 0)
        return false;
    const int next = m_current + (forward ? 1 : -1);
    return SelectIndex(next < 0 ? count - 1 : next % count, source);
}

void ValueSelection::AddItems(const QStringList &names, IObserver *source)
{
    if (PostIfForeign([this, names, source] { AddItems(names, source); }))
        return;
    if (names.isEmpty())
        return;
    const ValueTransaction transaction(*this, CC_ITEM_ADDED, source);
    for (auto name = names.begin(); name != names.end() && transaction.IsValid(); ++name) {
        const int place = GetItemCount();
        AddItem(*name, double(place), place, source);
    }
}

void ValueSelection::AddItem(const QString &name, double value, Kelm::Long key, IObserver *source)
{
    AddItem(new SelectionItem(name, value, key), source);
}

void ValueSelection::AddItem(SelectionItem *item, IObserver *source)
{
    std::unique_ptr<SelectionItem> own(item);
    if (own == nullptr)
        return;
    if (IsChangeForeign())
        return PostChange(
            [this, posted = *own, source] { AddItem(new SelectionItem(posted), source); });
    insertItem(GetItemCount(), std::move(own), source);
}

void ValueSelection::AddItemsFrom(const ValueSelection &other, IObserver *source)
{
    AppendItems(other.GetItems(), source);
}

void ValueSelection::AppendItems(const std::vector<SelectionItem> &items, IObserver *source)
{
    if (IsChangeForeign())
        return PostChange([this, items, source] { AppendItems(items, source); });
    if (items.empty())
        return;
    const ValueTransaction transaction(*this, CC_ITEM_ADDED, source);
    for (auto item = items.begin(); item != items.end() && transaction.IsValid(); ++item)
        AddItem(new SelectionItem(*item), source);
}

void ValueSelection::ReplaceItems(const std::vector<SelectionItem> &items, Kelm::Long chosen,
                                  IObserver *source)
{
    if (IsChangeForeign())
        return PostChange([this, items, chosen, source] { ReplaceItems(items, chosen, source); });
    const ValueTransaction transaction(*this, CC_LIST_REPLACED, source);
    if (transaction.IsValid())
        DeleteItems(source);
    if (transaction.IsValid())
        AppendItems(items, source);
    if (transaction.IsValid())
        SelectIndex(chosen, source);
}

void ValueSelection::insertItem(int position, std::unique_ptr<SelectionItem> item,
                                IObserver *source)
{
    const int count = GetItemCount();
    position = std::clamp(position, 0, count);
    if (GetUndoManager() != nullptr &&
        !AddUndo(new CommandAddOrDeleteItem(CommandAddOrDeleteItem::Delete, this, *item, position)))
        return;
    const SelectionItem &added = **m_items.insert(m_items.begin() + position, std::move(item));
    if (m_current >= position)
        ++m_current;
    if (position != count)
        m_firstByName.clear();
    else if (!m_firstByName.isEmpty() && !m_firstByName.contains(added.GetName()))
        m_firstByName.insert(added.GetName(), position);
    if (Record() && position != count)
        recordItems(source);
    else if (Record())
        RecordCommand(new CommandAddOrDeleteItem(CommandAddOrDeleteItem::Add, this, added, source));
    NotifyObservers(CC_ITEM_ADDED, source);
}

bool ValueSelection::DeleteItem(SelectionItem *item, IObserver *source)
{
    return item != nullptr &&
           DeleteItem(QString(item->GetName()), item->GetValue(), item->GetKey(), source);
}

bool ValueSelection::DeleteItem(const QString &name, double value, Kelm::Long key,
                                IObserver *source)
{
    if (PostIfForeign([this, name, value, key, source] { DeleteItem(name, value, key, source); }))
        return true;
    const int position = indexOfItem(name, value, key);
    if (position < 0)
        return false;
    removeItem(position, source);
    return true;
}

bool ValueSelection::removeItemAt(int position, const SelectionItem &expected, IObserver *source)
{
    const SelectionItem *item = GetItemAt(position);
    // Undo names the place; key and state may have been set since then, without a command.
    if (item == nullptr || item->GetName() != expected.GetName())
        return false;
    removeItem(position, source);
    return true;
}

void ValueSelection::removeItem(int position, IObserver *source)
{
    const SelectionItem removed = *GetItemAt(position);
    using Add = CommandAddOrDeleteItem;
    if (GetUndoManager() != nullptr &&
        (!AddUndo(new CommandSelect(this, describe(ByIndex, m_current), m_current)) ||
         !AddUndo(new Add(Add::Add, this, removed, position))))
        return;
    const bool isFirst = Record() && indexOfItem(removed.GetName(), removed.GetValue(),
                                                 removed.GetKey()) == position;
    m_items.erase(m_items.begin() + position);
    m_firstByName.clear();
    if (m_current == position) {
        m_current = -1;
        m_changed = 0;
    } else if (m_current > position) {
        --m_current;
    }
    if (Record() && !isFirst)
        recordItems(source);
    else if (Record())
        RecordCommand(
            new CommandAddOrDeleteItem(CommandAddOrDeleteItem::Delete, this, removed, source));
    NotifyObservers(CC_LIST_REPLACED, source);
}

void ValueSelection::DeleteItems(IObserver *source)
{
    if (PostIfForeign([this, source] { DeleteItems(source); }))
        return;
    if (GetUndoManager() != nullptr) {
        // Undo runs backwards: the first item comes first, and the choice at the end.
        bool isThere = AddUndo(new CommandSelect(this, describe(ByIndex, m_current), m_current));
        for (int i = isThere ? GetItemCount() : 0; i-- > 0 && isThere;)
            isThere = AddUndo(
                new CommandAddOrDeleteItem(CommandAddOrDeleteItem::Add, this, *GetItemAt(i), i));
        if (!isThere)
            return;
    }
    m_items.clear();
    m_firstByName.clear();
    m_current = -1;
    m_changed = 0;
    if (Record())
        RecordCommand(new CommandDeleteItems(this, source));
    NotifyObservers(CC_LIST_CLEARED, source);
}

/// Neither an item that returns to its place nor the second of two equal ones that goes can be told
/// by a command for one item.
void ValueSelection::recordItems(IObserver *source)
{
    RecordCommand(new CommandDeleteItems(this, source));
    for (const auto &item : m_items)
        RecordCommand(new CommandAddOrDeleteItem(CommandAddOrDeleteItem::Add, this, *item, source));
    RecordCommand(new CommandSelect(this, describe(ByIndex, m_current), source));
}

} // namespace values
