#include "valueclasses/mapping/samplecommands_impl.h"

namespace values {

#define SPECTREE_INSTANTIATE(Y, Handler)                                                           \
    template class CommandOnValueMapping<Y, Handler>;                                              \
    template class CommandSetXYValue<Y, Handler>;                                                  \
    template class CommandSetXYValues<Y, Handler>;                                                 \
    template class CommandSetXYValues2<Y, Handler>;                                                \
    template class CommandSetDataCompressMode<Y, Handler>;                                         \
    template class CommandSetChannelValues<Y, Handler>;                                            \
    template class CommandClearChannelRange<Y, Handler>;
SPECTREE_FOR_EACH_SAMPLE_PAIR(SPECTREE_INSTANTIATE)

} // namespace values
