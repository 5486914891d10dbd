#include "scanbuffer/fold/foldkernels.h"

#include "scanbuffer/fold/foldkernelrun_p.h"
#if defined(__x86_64__)
#include "scanbuffer/fold/foldkernelavx2_p.h"
#endif

namespace sbs::foldkernels {
namespace {

template <typename T>
struct PlainScanner {
    static Records scan(const T *samples, std::uint32_t count, std::size_t /*readable*/, T value)
    {
        Records records;
        for (std::uint32_t at = 0; at < count; ++at) {
            if (!(value < samples[at]))
                continue;
            value = samples[at];
            ++records.count;
            records.last = at;
        }
        return records;
    }
};

} // namespace

template <Number T>
Kernel<T> kernelFor(Instructions instructions)
{
#if defined(__x86_64__)
    if (instructions == Instructions::avx2)
        return __builtin_cpu_supports("avx2") && __builtin_cpu_supports("popcnt") ? &foldAvx2<T>
                                                                                  : nullptr;
#endif
    return instructions == Instructions::plain ? &foldRuns<PlainScanner<T>, T> : nullptr;
}

template <Number T>
Kernel<T> bestKernel()
{
    static const Kernel<T> kernel = [] {
        const Kernel<T> vectors = kernelFor<T>(Instructions::avx2);
        return vectors != nullptr ? vectors : kernelFor<T>(Instructions::plain);
    }();
    return kernel;
}

#define SPECTREE_INSTANTIATE(T)                                                                    \
    template SPECTREE_EXPORT Kernel<T> kernelFor<T>(Instructions);                                 \
    template SPECTREE_EXPORT Kernel<T> bestKernel<T>();
SPECTREE_INSTANTIATE(char)
SPECTREE_INSTANTIATE(short)
SPECTREE_INSTANTIATE(std::int32_t)
SPECTREE_INSTANTIATE(float)
SPECTREE_INSTANTIATE(double)
#undef SPECTREE_INSTANTIATE

} // namespace sbs::foldkernels
