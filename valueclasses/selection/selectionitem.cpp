#include "valueclasses/selection/selectionitem.h"

#include "valueclasses/valueselection.h"

#include <cmath>

namespace values {

bool SelectionItem::operator==(const SelectionItem &other) const
{
    const bool sameValue =
        m_value == other.m_value || (std::isnan(m_value) && std::isnan(other.m_value));
    return sameValue && m_key == other.m_key && m_state == other.m_state && m_name == other.m_name;
}

SelItemDesc::SelItemDesc(const wchar_t *name, double value, Kelm::Long key)
    : SelItemDesc(QString::fromWCharArray(name), value, key)
{
}

SelItemDesc::SelItemDesc(QString name, double value, Kelm::Long key)
    : m_name(std::move(name)), m_value(value), m_key(key)
{
}

void SelItemDesc::AddItems(const SelItemDesc *items, int count, ValueSelection *selection,
                           IObserver *source)
{
    std::vector<SelectionItem> added;
    for (int i = 0; i < count; ++i)
        added.emplace_back(items[i].m_name, items[i].m_value, items[i].m_key);
    selection->AppendItems(added, source);
}

} // namespace values
