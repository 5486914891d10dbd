#include "valueclasses/valuemapping_impl.h"

namespace values {

#define SPECTREE_INSTANTIATE(Y, Handler) template class ValueMap<Y, Handler>;
SPECTREE_FOR_EACH_SAMPLE_PAIR(SPECTREE_INSTANTIATE)

} // namespace values
