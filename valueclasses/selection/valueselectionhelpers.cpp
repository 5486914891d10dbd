#include "valueclasses/selection/valueselectionhelpers.h"

#include "valueclasses/valueselection.h"

#include <algorithm>

using namespace values;

QStringList ValueSelectionHelpers::GetItemNames(const ValueSelection &selection)
{
    QStringList names;
    for (int i = 0; i < selection.GetItemCount(); ++i)
        names << selection.GetItemAt(i)->GetName();
    return names;
}

Kelm::Long ValueSelectionHelpers::GetCurrentKey(const ValueSelection &selection, Kelm::Long none)
{
    const SelectionItem *item = selection.GetCurrentItem();
    return item != nullptr ? item->GetKey() : none;
}

void ValueSelectionHelpers::ReplaceItems(ValueSelection &selection, const ValueSelection &other,
                                         IObserver *source)
{
    if (&selection == &other)
        return;
    const ValueTransaction transaction(selection, CC_LIST_REPLACED, source);
    selection.DeleteItems(source);
    selection.AddItemsFrom(other, source);
    selection.SelectIndex(other.GetCurrentIndex(), source);
}

QStringList ValueSelectionHelpers::GetSelectedTexts(const IMultiSelection &selection)
{
    QStringList texts;
    for (const unsigned int index : selection.GetSelectedIndices())
        texts << selection.GetTextAt(index);
    return texts;
}

bool ValueSelectionHelpers::SelectOnly(IMultiSelection &selection, unsigned int index,
                                       IObserver *source)
{
    const std::vector<unsigned int> before = selection.GetSelectedIndices();
    if (before.size() == 1 && before.front() == index)
        return true;
    ValueTransaction transaction(*selection.GetValueBase(), CC_SELECTION, source);
    if (!selection.SelectAt(index, true, source)) {
        transaction.Cancel();
        return false;
    }
    for (const unsigned int other : before)
        if (other != index)
            selection.SelectAt(other, false, source);
    return true;
}
