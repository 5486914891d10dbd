#include "valueclasses/fastvaluemap_impl.h"

namespace values {

const char *ChannelNotSetExc::what() const noexcept { return "ChannelDefinition is not set"; }

#define SPECTREE_INSTANTIATE(Y, Handler) template class FastValueMap<Y, Handler>;
SPECTREE_FOR_EACH_SAMPLE_PAIR(SPECTREE_INSTANTIATE)

} // namespace values
