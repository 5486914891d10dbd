#include "scanbuffer/scanbuffer_impl.h"

namespace sbs {

#define SPECTREE_INSTANTIATE(Y, Handler) template class ScanBuffer<Y, Handler>;
SPECTREE_FOR_EACH_SAMPLE_PAIR(SPECTREE_INSTANTIATE)
#undef SPECTREE_INSTANTIATE

} // namespace sbs
