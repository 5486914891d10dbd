// The bodies of valuemultiselection.h, for the file that instantiates them.
#pragma once

#include "valueclasses/itemmaps/valueitemmapbase_impl.h"
#include "valueclasses/selection/multiselectioncommands.h"
#include "valueclasses/selection/valuemultiselection.h"

#include <QStringList>

#include <algorithm>

namespace values {

namespace Detail {

/// Type number and name of one kind.
template <typename Item, bool Exclusive>
struct MultiSelectionKind;
#define SPECTREE_KIND(Item, Format, Adapter, exclusive, typeNumber, typeName)                      \
    template <>                                                                                    \
    struct MultiSelectionKind<Item, exclusive> {                                                   \
        static constexpr ValueType type = typeNumber;                                              \
        static constexpr const char *name = typeName;                                              \
    };
SPECTREE_FOR_EACH_MULTI_SELECTION(SPECTREE_KIND)
#undef SPECTREE_KIND

} // namespace Detail

template <typename Item, typename Format, typename Adapter, bool Exclusive>
ValueMultiSelection<Item, Format, Adapter, Exclusive>::ValueMultiSelection(QString name,
                                                                           TValueState state)
    : Base(std::move(name), state)
{
}

template <typename Item, typename Format, typename Adapter, bool Exclusive>
ValueType ValueMultiSelection<Item, Format, Adapter, Exclusive>::GetType() const
{
    return Detail::MultiSelectionKind<Item, Exclusive>::type;
}

template <typename Item, typename Format, typename Adapter, bool Exclusive>
QString ValueMultiSelection<Item, Format, Adapter, Exclusive>::GetTypeName() const
{
    return QString::fromLatin1(Detail::MultiSelectionKind<Item, Exclusive>::name);
}

template <typename Item, typename Format, typename Adapter, bool Exclusive>
void ValueMultiSelection<Item, Format, Adapter, Exclusive>::Assign(const ValueBase &other)
{
    const auto &same = this->template CastForAssign<ValueMultiSelection>(other);
    if (this->PostAssignIfForeign(same))
        return;
    m_allowEmpty = same.m_allowEmpty;
    m_emptyText = same.m_emptyText;
    m_multiSelectedText = same.m_multiSelectedText;
    Base::Assign(other);
}

template <typename Item, typename Format, typename Adapter, bool Exclusive>
bool ValueMultiSelection<Item, Format, Adapter, Exclusive>::Compare(const ValueBase *other) const
{
    const auto *same = dynamic_cast<const ValueMultiSelection *>(other);
    return same != nullptr && Base::Compare(other) && m_allowEmpty == same->m_allowEmpty &&
           m_emptyText == same->m_emptyText && m_multiSelectedText == same->m_multiSelectedText;
}

template <typename Item, typename Format, typename Adapter, bool Exclusive>
unsigned int ValueMultiSelection<Item, Format, Adapter, Exclusive>::SetAt(unsigned int key,
                                                                          const Item &item,
                                                                          IObserver *source)
{
    const bool replaces = Exclusive && item.IsSelected();
    if (replaces && this->PostIfForeign([this, key, item, source] { SetAt(key, item, source); }))
        return key;
    const unsigned int current = replaces ? GetCurrentIndex() : this->GetInvalidKey();
    if (current == key || current == this->GetInvalidKey())
        return Base::SetAt(key, item, source);
    const Item selected = item; // it may be the one that is deselected now
    const LifeWatch watch(this);
    if (this->GetUndoManager() != nullptr &&
        !this->AddUndo(new CommandSelectAt(this, current, true, nullptr)))
        return key;
    // Not recorded, as it repeats itself at a far end, and told with the item: no observer sees, or
    // answers, that nothing is selected.
    if (Item *const deselected = this->GetStored(current)) {
        deselected->SetSelected(false);
        this->LogChange(valueitemmap::ItemSet, current);
    }
    key = Base::SetAt(key, selected, source);
    if (!watch.IsGone())
        this->NotifyObservers(CC_SELECTION, source);
    return key;
}

template <typename Item, typename Format, typename Adapter, bool Exclusive>
const Item *ValueMultiSelection<Item, Format, Adapter, Exclusive>::itemAt(unsigned int index) const
{
    const auto found = this->GetItems().find(index);
    return found != this->GetItems().end() ? &found->second : nullptr;
}

template <typename Item, typename Format, typename Adapter, bool Exclusive>
bool ValueMultiSelection<Item, Format, Adapter, Exclusive>::SelectAt(unsigned int index,
                                                                     bool selected,
                                                                     IObserver *source)
{
    if (this->PostIfForeign([this, index, selected, source] { SelectAt(index, selected, source); }))
        return true;
    if (!selected && !m_allowEmpty && IsSelectedAt(index) && GetSelectedIndices().size() == 1)
        return false;
    return RestoreSelectedAt(index, selected, source);
}

template <typename Item, typename Format, typename Adapter, bool Exclusive>
bool ValueMultiSelection<Item, Format, Adapter, Exclusive>::RestoreSelectedAt(unsigned int index,
                                                                              bool selected,
                                                                              IObserver *source)
{
    return storeFlag<CommandSelectAt>(index, selected, source);
}

template <typename Item, typename Format, typename Adapter, bool Exclusive>
bool ValueMultiSelection<Item, Format, Adapter, Exclusive>::SelectOnlyAt(unsigned int index,
                                                                         IObserver *source)
{
    if (this->PostIfForeign([this, index, source] { SelectOnlyAt(index, source); }))
        return true;
    const std::vector<unsigned int> before = GetSelectedIndices();
    if (itemAt(index) == nullptr)
        return false;
    if (before == std::vector{index})
        return true;
    const ValueTransaction transaction(*this, CC_SELECTION, source);
    if (transaction.IsValid())
        SelectAt(index, true, source);
    for (const unsigned int other : before)
        if (other != index && transaction.IsValid())
            SelectAt(other, false, source);
    return true;
}

template <typename Item, typename Format, typename Adapter, bool Exclusive>
bool ValueMultiSelection<Item, Format, Adapter, Exclusive>::EnableAt(unsigned int index,
                                                                     bool enabled,
                                                                     IObserver *source)
{
    return storeFlag<CommandEnableAt>(index, enabled, source);
}

template <typename Item, typename Format, typename Adapter, bool Exclusive>
template <typename FlagCommand>
bool ValueMultiSelection<Item, Format, Adapter, Exclusive>::storeFlag(unsigned int index, bool flag,
                                                                      IObserver *source)
{
    constexpr bool selects = std::is_same_v<FlagCommand, CommandSelectAt>;
    if (this->PostIfForeign(
            [this, index, flag, source] { storeFlag<FlagCommand>(index, flag, source); }))
        return true;
    Item *const item = this->GetStored(index);
    if (item == nullptr || (selects ? item->IsSelected() : item->IsEnabled()) == flag)
        return item != nullptr;
    const bool replaces = Exclusive && selects && flag;
    const unsigned int other = replaces ? GetCurrentIndex() : this->GetInvalidKey();
    Item *const deselected = this->GetStored(other);
    const bool restoresOther = deselected != nullptr; // which deselects this one again
    if (this->GetUndoManager() != nullptr &&
        !this->AddUndo(
            new FlagCommand(this, restoresOther ? other : index, restoresOther || !flag, nullptr)))
        return true;
    if (restoresOther) {
        deselected->SetSelected(false);
        this->LogChange(valueitemmap::ItemSet, other);
    }
    if constexpr (selects)
        item->SetSelected(flag);
    else
        item->SetEnabled(flag);
    this->LogChange(valueitemmap::ItemSet, index);
    if (this->Record())
        this->RecordCommand(new FlagCommand(this, index, flag, source));
    this->NotifyObservers(CC_SELECTION, source);
    return true;
}

template <typename Item, typename Format, typename Adapter, bool Exclusive>
bool ValueMultiSelection<Item, Format, Adapter, Exclusive>::IsSelectedAt(unsigned int index) const
{
    const Item *item = itemAt(index);
    return item != nullptr && item->IsSelected();
}

template <typename Item, typename Format, typename Adapter, bool Exclusive>
bool ValueMultiSelection<Item, Format, Adapter, Exclusive>::IsEnabledAt(unsigned int index) const
{
    const Item *item = itemAt(index);
    return item != nullptr && item->IsEnabled();
}

template <typename Item, typename Format, typename Adapter, bool Exclusive>
QString ValueMultiSelection<Item, Format, Adapter, Exclusive>::GetTextAt(unsigned int index) const
{
    const Item *item = itemAt(index);
    return item != nullptr ? item->GetText() : QString();
}

template <typename Item, typename Format, typename Adapter, bool Exclusive>
std::vector<unsigned int>
ValueMultiSelection<Item, Format, Adapter, Exclusive>::GetSelectedIndices() const
{
    std::vector<unsigned int> selected;
    for (const auto &[index, item] : this->GetItems())
        if (item.IsSelected())
            selected.push_back(index);
    std::sort(selected.begin(), selected.end());
    return selected;
}

template <typename Item, typename Format, typename Adapter, bool Exclusive>
unsigned int ValueMultiSelection<Item, Format, Adapter, Exclusive>::GetCurrentIndex() const
{
    unsigned int lowest = this->GetInvalidKey();
    for (const auto &[index, item] : this->GetItems())
        if (item.IsSelected())
            lowest = std::min(lowest, index);
    return lowest;
}

template <typename Item, typename Format, typename Adapter, bool Exclusive>
QString ValueMultiSelection<Item, Format, Adapter, Exclusive>::GetSelectionText() const
{
    const std::vector<unsigned int> selected = GetSelectedIndices();
    if (selected.empty())
        return m_emptyText;
    if (selected.size() > 1 && !m_multiSelectedText.isEmpty())
        return m_multiSelectedText;
    QStringList texts;
    for (const unsigned int index : selected)
        texts << GetTextAt(index);
    return texts.join(QStringLiteral(", "));
}

template <typename Item, typename Format, typename Adapter, bool Exclusive>
void ValueMultiSelection<Item, Format, Adapter, Exclusive>::SetAllowEmptySelection(
    bool allow, IObserver *source)
{
    this->ChangeField(m_allowEmpty, allow, CC_VALUE, source,
                      [this](bool state, IObserver *on, CommandUse) {
                          return new CommandAllowEmptySelection(this, state, on);
                      });
}

template <typename Item, typename Format, typename Adapter, bool Exclusive>
void ValueMultiSelection<Item, Format, Adapter, Exclusive>::SetEmptyText(const QString &text,
                                                                         IObserver *source)
{
    this->ChangeField(m_emptyText, text, CC_VALUE, source,
                      [this](const QString &state, IObserver *on, CommandUse) {
                          return new CommandMapEmptyText(this, state, on);
                      });
}

template <typename Item, typename Format, typename Adapter, bool Exclusive>
void ValueMultiSelection<Item, Format, Adapter, Exclusive>::SetMultiSelectedText(
    const QString &text, IObserver *source)
{
    this->ChangeField(m_multiSelectedText, text, CC_VALUE, source,
                      [this](const QString &state, IObserver *on, CommandUse) {
                          return new CommandMapMultiSelectedText(this, state, on);
                      });
}

template <typename Item, typename Format, typename Adapter, bool Exclusive>
void ValueMultiSelection<Item, Format, Adapter, Exclusive>::AddObjectStateStringForTransmission(
    std::string &out, unsigned int mode)
{
    Base::AddObjectStateStringForTransmission(out, mode);
    CommandAllowEmptySelection::Write(out, int(mode), m_allowEmpty);
    CommandMapEmptyText::Write(out, int(mode), m_emptyText);
    CommandMapMultiSelectedText::Write(out, int(mode), m_multiSelectedText);
}

template <typename Item, typename Format, typename Adapter, bool Exclusive>
Command *ValueMultiSelection<Item, Format, Adapter, Exclusive>::CreateNextCommand(int id,
                                                                                  const char **pos,
                                                                                  IObserver *source,
                                                                                  int mode)
{
    Command *const own = createMultiSelectionCommand(id, this, pos, source, mode);
    return own != nullptr ? own : Base::CreateNextCommand(id, pos, source, mode);
}

} // namespace values
