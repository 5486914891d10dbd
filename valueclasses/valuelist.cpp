#include "valueclasses/records/sequencekinds.h"
#include "valueclasses/valuelist_impl.h"

namespace values {

#define SPECTREE_INSTANTIATE(T, FormatClass, Type, Name) template class ValueList<T, FormatClass>;
SPECTREE_FOR_EACH_LIST_KIND(SPECTREE_INSTANTIATE)

} // namespace values
