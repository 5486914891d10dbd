#include "scanbuffer/scanbuffer_connector_xrange_impl.h"

namespace sbs {

#define SPECTREE_DEFINE(Y, Handler) template class ScanBufferAdapter_XRange<Y, Handler>;
SPECTREE_FOR_EACH_SAMPLE_PAIR(SPECTREE_DEFINE)
#undef SPECTREE_DEFINE

} // namespace sbs
