#include "scanbuffer/window/windowfold_impl.h"

namespace sbs {

#define SPECTREE_INSTANTIATE(Y, Handler)                                                           \
    template SPECTREE_EXPORT bool fold<Y, Handler>(                                                \
        std::span<const Y>, const channelToPixel::ChannelIndexToPixelRangeMapper &,                \
        ScanDisplayLine<Y> &, std::uint32_t, std::uint32_t, FoldRules &);                          \
    template SPECTREE_EXPORT bool foldPlain<Y, Handler>(                                           \
        std::span<const Y>, const channelToPixel::ChannelIndexToPixelRangeMapper &,                \
        ScanDisplayLine<Y> &, std::uint32_t, std::uint32_t, FoldRules &);
SPECTREE_FOR_EACH_SAMPLE_PAIR(SPECTREE_INSTANTIATE)
#undef SPECTREE_INSTANTIATE

} // namespace sbs
