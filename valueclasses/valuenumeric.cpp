#include "valueclasses/valuenumeric_impl.h"

namespace values {

#define SPECTREE_INSTANTIATE(T, FormatClass, Type, Name)                                           \
    template class CommandSetValueNum<T>;                                                          \
    template class ValueNumeric<T>;
SPECTREE_FOR_EACH_NUMERIC(SPECTREE_INSTANTIATE)

} // namespace values
