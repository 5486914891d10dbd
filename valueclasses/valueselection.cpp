// Lookups, copies and forms; the changes stand in valueselection_change.cpp.
#include "valueclasses/valueselection.h"

#include "valueclasses/selection/selectioncommands.h"

#include <algorithm>
#include <cmath>

namespace values {

ValueSelection::ValueSelection() = default;

ValueSelection::ValueSelection(QString name, TValueState state) : ValueBase(std::move(name), state)
{
}

ValueSelection::ValueSelection(const ValueSelection &other)
    : Observable(other), ISupportTransaction(other), ValueBase(other)
{
    copyItems(other);
}

ValueSelection &ValueSelection::operator=(const ValueSelection &other)
{
    if (this == &other)
        return *this;
    copyItems(other);
    ValueBase::operator=(other); // last, for it may tell somebody who deletes this value
    return *this;
}

ValueSelection::~ValueSelection() = default;

void ValueSelection::copyItems(const ValueSelection &other)
{
    m_items.clear();
    m_firstByName.clear();
    m_items.reserve(other.m_items.size());
    for (const auto &item : other.m_items)
        m_items.push_back(std::make_unique<SelectionItem>(*item));
    m_current = other.m_current;
    m_changed = other.m_changed;
}

QString ValueSelection::GetTypeName() const { return QStringLiteral("ValueSelection"); }

void ValueSelection::Assign(const ValueBase &other)
{
    const auto &selection = CastForAssign<ValueSelection>(other);
    if (!PostAssignIfForeign(selection))
        ValueSelection::operator=(selection);
}

bool ValueSelection::Compare(const ValueBase *other) const
{
    const auto *selection = dynamic_cast<const ValueSelection *>(other);
    if (selection == nullptr || selection == this)
        return selection == this;
    return ValueBase::Compare(other) && m_current == selection->m_current &&
           std::equal(m_items.begin(), m_items.end(), selection->m_items.begin(),
                      selection->m_items.end(),
                      [](const auto &left, const auto &right) { return *left == *right; });
}

QString ValueSelection::GetStringValue() const
{
    const SelectionItem *item = GetCurrentItem();
    return item != nullptr ? item->GetName() : QString();
}

SelectionItem *ValueSelection::GetCurrentItem() const { return GetItemAt(m_current); }

double ValueSelection::GetCurrentValue() const
{
    const SelectionItem *item = GetCurrentItem();
    return item != nullptr ? item->GetValue() : 0.0;
}

int ValueSelection::GetItemCount() const { return int(m_items.size()); }

SelectionItem *ValueSelection::GetItemAt(int index) const
{
    return index >= 0 && index < int(m_items.size()) ? m_items[std::size_t(index)].get() : nullptr;
}

std::vector<SelectionItem> ValueSelection::GetItems() const
{
    std::vector<SelectionItem> copies;
    copies.reserve(m_items.size());
    for (const auto &item : m_items)
        copies.push_back(*item);
    return copies;
}

int ValueSelection::indexOfName(const QString &name) const
{
    if (m_firstByName.isEmpty()) {
        m_firstByName.reserve(int(m_items.size()));
        for (int i = int(m_items.size()); i-- > 0;) // backwards, so that the first one stays
            m_firstByName.insert(m_items[std::size_t(i)]->GetName(), i);
    }
    return m_firstByName.value(name, -1);
}

int ValueSelection::indexOfValue(double value, bool nearest) const
{
    int best = -1;
    double bestDistance = INFINITY;
    for (std::size_t i = 0; i < m_items.size(); ++i) {
        const double candidate = m_items[i]->GetValue();
        if (candidate == value)
            return int(i);
        const double distance = std::abs(candidate - value);
        if (nearest && distance < bestDistance) {
            best = int(i);
            bestDistance = distance;
        }
    }
    return best;
}

int ValueSelection::GetItemIndex(Kelm::Long key) const
{
    const auto found = std::find_if(m_items.begin(), m_items.end(),
                                    [key](const auto &item) { return item->GetKey() == key; });
    return found != m_items.end() ? int(found - m_items.begin()) : -1;
}

int ValueSelection::indexOfItem(const QString &name, double value, Kelm::Long key) const
{
    const auto found = std::find_if(
        m_items.begin(), m_items.end(), [&wanted = name, value, key](const auto &item) {
            const double own = item->GetValue();
            return item->GetKey() == key && item->GetName() == wanted &&
                   (own == value || (std::isnan(own) && std::isnan(value)));
        });
    return found != m_items.end() ? int(found - m_items.begin()) : -1;
}

SelectionItem *ValueSelection::GetItem(const QString &name) const
{
    return GetItemAt(indexOfName(name));
}

SelectionItem *ValueSelection::GetItem(double value) const
{
    return GetItemAt(indexOfValue(value, false));
}

SelectionItem *ValueSelection::GetItem(Kelm::Long key) const
{
    return GetItemAt(GetItemIndex(key));
}

Kelm::Long ValueSelection::GetKeyForItemName(const QString &name) const
{
    const SelectionItem *item = GetItem(name);
    return item != nullptr ? item->GetKey() : Kelm::Long(0);
}

QString ValueSelection::GetItemNameForKey(Kelm::Long key) const
{
    const SelectionItem *item = GetItem(key);
    return item != nullptr ? item->GetName() : QString();
}

void ValueSelection::OptimizeCommandList(CommandList &commands)
{
    ValueBase::OptimizeCommandList(commands);
    bool chosen = false, cleared = false;
    for (auto command = commands.rbegin(); command != commands.rend(); ++command) {
        const int id = (*command)->GetCommandId();
        const bool isChoice = CommandSelect::IsId(id);
        const bool isItem = id == CommandAddOrDeleteItem::Add ||
                            id == CommandAddOrDeleteItem::Delete || id == CommandDeleteItems::kId;
        if ((isChoice && chosen) || ((isChoice || isItem) && cleared))
            command->reset();
        chosen = chosen || isChoice;
        cleared = cleared || id == CommandDeleteItems::kId;
    }
    std::erase(commands, nullptr);
}

void ValueSelection::AddObjectStateStringForTransmission(std::string &out, unsigned int mode)
{
    ValueBase::AddObjectStateStringForTransmission(out, mode);
    CommandDeleteItems(this, nullptr).AddCommandString(out, int(mode));
    for (const auto &item : m_items)
        CommandAddOrDeleteItem(CommandAddOrDeleteItem::Add, this, *item, nullptr)
            .AddCommandString(out, int(mode));
    CommandSelect(this, describe(ByIndex, m_current), nullptr).AddCommandString(out, int(mode));
}

Command *ValueSelection::CreateNextCommand(int id, const char **pos, IObserver *source, int mode)
{
    switch (id) {
    case ByName:
    case ByValue:
    case ByKey:
    case ByIndex:
        return new CommandSelect(ChoiceKind(id), this, pos, source, mode);
    case CommandAddOrDeleteItem::Add:
    case CommandAddOrDeleteItem::Delete:
        return new CommandAddOrDeleteItem(CommandAddOrDeleteItem::Kind(id), this, pos, source,
                                          mode);
    case CommandDeleteItems::kId:
        return new CommandDeleteItems(this, pos, source);
    default:
        return ValueBase::CreateNextCommand(id, pos, source, mode);
    }
}

} // namespace values
