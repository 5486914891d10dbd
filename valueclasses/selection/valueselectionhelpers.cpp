#include "valueclasses/selection/valueselectionhelpers.h"

#include "valueclasses/valueselection.h"

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
    if (&selection != &other)
        selection.ReplaceItems(other.GetItems(), other.GetCurrentIndex(), source);
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
    return selection.SelectOnlyAt(index, source);
}
