#pragma once

#include "platform/base/types.h"
#include "valueclasses/selection/imultiselection.h"

#include <QStringList>

namespace values {
class ValueSelection;
}

/// What programs often ask of selections.
namespace ValueSelectionHelpers {

/// In their order.
SPECTREE_EXPORT QStringList GetItemNames(const values::ValueSelection &selection);
/// The key of the choice, \a none without one.
SPECTREE_EXPORT Kelm::Long GetCurrentKey(const values::ValueSelection &selection, Kelm::Long none);
/// Gives \a selection the items of \a other and the choice among them, in one transaction.
SPECTREE_EXPORT void ReplaceItems(values::ValueSelection &selection,
                                  const values::ValueSelection &other, IObserver *source);
/// In the order of their indices.
SPECTREE_EXPORT QStringList GetSelectedTexts(const values::IMultiSelection &selection);
/// Selects this item and deselects all others, in one transaction. False, with nothing changed, for
/// an unknown index.
SPECTREE_EXPORT bool SelectOnly(values::IMultiSelection &selection, unsigned int index,
                                IObserver *source);

} // namespace ValueSelectionHelpers
