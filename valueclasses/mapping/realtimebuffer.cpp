#include "valueclasses/mapping/realtimebuffer.h"

#include <atomic>

namespace values {

namespace {

// Constant-initialised: creators arrive while the library's other constants are still being made.
template <typename Y, typename YHandler>
constinit std::atomic<typename RealTimeBufferFactory<Y, YHandler>::Creator> creator{nullptr};

} // namespace

template <typename Y, typename YHandler>
requires SampleHandler<YHandler, Y> std::unique_ptr<IRealTimeBuffer<Y, YHandler>>
RealTimeBufferFactory<Y, YHandler>::Create()
{
    const Creator create = creator<Y, YHandler>.load();
    return create != nullptr ? create() : nullptr;
}

template <typename Y, typename YHandler>
requires SampleHandler<YHandler, Y>
typename RealTimeBufferFactory<Y, YHandler>::Creator
RealTimeBufferFactory<Y, YHandler>::SetCreator(Creator newCreator)
{
    return creator<Y, YHandler>.exchange(newCreator);
}

#define SPECTREE_INSTANTIATE(Y, Handler) template class RealTimeBufferFactory<Y, Handler>;
SPECTREE_FOR_EACH_SAMPLE_PAIR(SPECTREE_INSTANTIATE)

} // namespace values
