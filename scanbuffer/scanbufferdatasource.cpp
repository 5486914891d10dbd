#include "scanbuffer/scanbufferdatasource_impl.h"

namespace sbs {

#define SPECTREE_INSTANTIATE(id, Y, Handler) template class ScanBufferDataSource<Y, Handler>;
SPECTREE_FOR_EACH_DATA_SOURCE(SPECTREE_INSTANTIATE)
#undef SPECTREE_INSTANTIATE

} // namespace sbs
