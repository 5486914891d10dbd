#include "valueclasses/records/sequencekinds.h"
#include "valueclasses/valuevector_impl.h"

namespace values {

#define SPECTREE_INSTANTIATE(T, FormatClass, Type, Name) template class ValueVector<T, FormatClass>;
SPECTREE_FOR_EACH_VECTOR_KIND(SPECTREE_INSTANTIATE)

} // namespace values
