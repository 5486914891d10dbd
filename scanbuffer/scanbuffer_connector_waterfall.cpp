#include "scanbuffer/scanbuffer_connector_waterfall_impl.h"

namespace sbs {

#define SPECTREE_DEFINE(Y, Handler) template class ScanBufferAdapter_Waterfall<Y, Handler>;
SPECTREE_FOR_EACH_SAMPLE_PAIR(SPECTREE_DEFINE)
#undef SPECTREE_DEFINE

} // namespace sbs
