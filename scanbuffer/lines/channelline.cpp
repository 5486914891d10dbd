#include "scanbuffer/lines/channelline_impl.h"
#include "scanbuffer/lines/channellinebuffer_impl.h"

namespace sbs {

#define SPECTREE_INSTANTIATE(Y, Handler)                                                           \
    template class ChannelLine<Y, Handler>;                                                        \
    template class ChannelLineBuffer<Y, Handler>;
SPECTREE_FOR_EACH_SAMPLE_PAIR(SPECTREE_INSTANTIATE)
#undef SPECTREE_INSTANTIATE

} // namespace sbs
