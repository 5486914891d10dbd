#include "valueclasses/selection/valuemultiselection_impl.h"

namespace values {

template class ValueItemMapBase<StringMultiSelectionItem, StringMultiSelectionItemFormat,
                                MultiSelectionItemAdapter>;
template class ValueItemMapBase<StringDoubleMultiSelectionItem,
                                StringDoubleMultiSelectionItemFormat, MultiSelectionItemAdapter>;
#define SPECTREE_INSTANTIATE(Item, Format, Adapter, exclusive, type, name)                         \
    template class ValueMultiSelection<Item, Format, Adapter, exclusive>;
SPECTREE_FOR_EACH_MULTI_SELECTION(SPECTREE_INSTANTIATE)

} // namespace values
