// Compiled with -mavx2 -mpopcnt; see foldkernelrun_p.h for what may stand here.
#include "scanbuffer/fold/foldkernelavx2_p.h"
#include "scanbuffer/fold/foldkernelrun_p.h"

#include <immintrin.h>

namespace sbs::foldkernels {
namespace {

constexpr int kBytes = 32;

/// What the kinds of numbers do differently; all of them pass as whole vectors of bytes.
template <typename T>
struct Lanes;

#define SPECTREE_WHOLE_LANES(Number, kind, lowest)                                                 \
    template <>                                                                                    \
    struct Lanes<Number> {                                                                         \
        static constexpr Number kLowest = lowest;                                                  \
        static __m256i max(__m256i a, __m256i b) { return _mm256_max_##kind(a, b); }               \
        static __m256i above(__m256i a, __m256i b) { return _mm256_cmpgt_##kind(a, b); }           \
        static __m256i spread(Number value) { return _mm256_set1_##kind(value); }                  \
        static __m256i withoutNan(__m256i y) { return y; }                                         \
    };
SPECTREE_WHOLE_LANES(char, epi8, -128)
SPECTREE_WHOLE_LANES(short, epi16, -32768)
SPECTREE_WHOLE_LANES(std::int32_t, epi32, -2147483647 - 1)
#undef SPECTREE_WHOLE_LANES

#define SPECTREE_REAL_LANES(Number, Vector, kind, lowest)                                          \
    template <>                                                                                    \
    struct Lanes<Number> {                                                                         \
        static constexpr Number kLowest = lowest;                                                  \
        static Vector real(__m256i y) { return _mm256_castsi256_##kind(y); }                       \
        static __m256i bytes(Vector y) { return _mm256_cast##kind##_si256(y); }                    \
        static __m256i max(__m256i a, __m256i b)                                                   \
        {                                                                                          \
            return bytes(_mm256_max_##kind(real(a), real(b)));                                     \
        }                                                                                          \
        static __m256i above(__m256i a, __m256i b)                                                 \
        {                                                                                          \
            return bytes(_mm256_cmp_##kind(real(a), real(b), _CMP_GT_OQ));                         \
        }                                                                                          \
        static __m256i spread(Number value) { return bytes(_mm256_set1_##kind(value)); }           \
        static __m256i withoutNan(__m256i y)                                                       \
        {                                                                                          \
            const Vector isNumber = _mm256_cmp_##kind(real(y), real(y), _CMP_EQ_OQ);               \
            return bytes(_mm256_blendv_##kind(_mm256_set1_##kind(kLowest), real(y), isNumber));    \
        }                                                                                          \
    };
SPECTREE_REAL_LANES(float, __m256, ps, -__builtin_inff())
SPECTREE_REAL_LANES(double, __m256d, pd, -__builtin_inf())
#undef SPECTREE_REAL_LANES

/// All ones, then all zeros: a load at kBytes - n gives a mask of the first n bytes.
alignas(64) constexpr signed char kMaskBytes[2 * kBytes] = {
    -1, -1, -1, -1, -1, -1, -1, -1, -1, -1, -1, -1, -1, -1, -1, -1,
    -1, -1, -1, -1, -1, -1, -1, -1, -1, -1, -1, -1, -1, -1, -1, -1};

template <typename T>
struct Avx2Scanner {
    using L = Lanes<T>;
    static constexpr int kSize = sizeof(T);
    static constexpr std::uint32_t kLanes = kBytes / kSize;
    static constexpr std::uint32_t kGroup = 4; // vectors that are tested at once
    static constexpr std::uint32_t kGroupLanes = kGroup * kLanes;

    static Records scan(const T *samples, std::uint32_t count, std::size_t readable, T value)
    {
        if (count == 0 || value != value)
            return {}; // nothing is above NaN
        Avx2Scanner scanner(samples, value);
        if (count >= kGroupLanes)
            scanner.takeGroups(count);
        else if (count >= kLanes)
            scanner.takeVectors(count);
        else
            scanner.take(loadPart(samples, count, readable), 0);
        return scanner.m_records;
    }

private:
    Avx2Scanner(const T *samples, T value)
        : m_samples(samples), m_maximum(L::spread(value)), m_lowest(L::spread(L::kLowest))
    {
    }

    static __m256i loadRaw(const T *samples)
    {
        return _mm256_loadu_si256(reinterpret_cast<const __m256i *>(samples));
    }
    /// NaN is above nothing and nothing is above it: the lowest number does the same.
    static __m256i load(const T *samples) { return L::withoutNan(loadRaw(samples)); }
    /// \a count samples, then lanes that are above nothing.
    static __m256i loadPart(const T *samples, std::uint32_t count, std::size_t readable)
    {
        alignas(kBytes) T copy[kLanes];
        if (readable < kLanes) {
            for (std::uint32_t lane = 0; lane < kLanes; ++lane)
                copy[lane] = lane < count ? samples[lane] : L::kLowest;
            samples = copy;
        }
        const __m256i mask = _mm256_loadu_si256(
            reinterpret_cast<const __m256i *>(kMaskBytes + kBytes - count * kSize));
        return _mm256_blendv_epi8(L::spread(L::kLowest), load(samples), mask);
    }

    // The last group and the last vector end with the stretch and may reach back over samples that
    // were taken before: those are not above the maximum any more, so they change nothing.
    void takeGroups(std::uint32_t count)
    {
        takeVectors(kGroupLanes);
        std::uint32_t at = kGroupLanes;
        for (; at + kGroupLanes <= count; at += kGroupLanes)
            testGroup(at);
        if (at != count)
            testGroup(count - kGroupLanes);
    }

    void takeVectors(std::uint32_t count, std::uint32_t at = 0)
    {
        const std::uint32_t end = at + count;
        for (; at + kLanes <= end; at += kLanes)
            take(load(m_samples + at), at);
        if (at != end)
            take(load(m_samples + end - kLanes), end - kLanes);
    }

    /// In noise, most groups hold nothing above the maximum.
    void testGroup(std::uint32_t at)
    {
        __m256i above = L::above(loadRaw(m_samples + at), m_maximum);
        for (std::uint32_t part = 1; part < kGroup; ++part)
            above = _mm256_or_si256(above,
                                    L::above(loadRaw(m_samples + at + part * kLanes), m_maximum));
        if (!_mm256_testz_si256(above, above))
            takeVectors(kGroupLanes, at);
    }

    /// Each lane becomes the last lane of its half.
    static __m256i lastOfHalves(__m256i y)
    {
        if constexpr (kSize == 8)
            return _mm256_unpackhi_epi64(y, y);
        else if constexpr (kSize == 4)
            return _mm256_shuffle_epi32(y, 0xFF);
        else if constexpr (kSize == 2)
            return _mm256_shuffle_epi8(y, _mm256_set1_epi16(0x0F0E));
        else
            return _mm256_shuffle_epi8(y, _mm256_set1_epi8(0x0F));
    }

    template <int Shift>
    static __m256i maxWithin(__m256i y, __m256i lowest)
    {
        if constexpr (Shift < 16)
            return maxWithin<Shift * 2>(L::max(y, _mm256_alignr_epi8(y, lowest, 16 - Shift)),
                                        lowest);
        else
            return y;
    }

    /// Counts the lanes above everything before them. Only the running maximum depends on the
    /// vector before, so that vectors overlap in the processor.
    void take(__m256i y, std::uint32_t index)
    {
        __m256i upTo = maxWithin<kSize>(y, m_lowest);
        upTo = L::max(upTo, lastOfHalves(_mm256_permute2x128_si256(upTo, m_lowest, 0x02)));
        const __m256i before =
            _mm256_alignr_epi8(upTo, _mm256_permute2x128_si256(upTo, m_lowest, 0x02), 16 - kSize);
        const auto records = static_cast<std::uint32_t>(
            _mm256_movemask_epi8(L::above(y, L::max(before, m_maximum))));
        m_maximum = L::max(m_maximum, lastOfHalves(_mm256_permute4x64_epi64(upTo, 0xFF)));
        m_records.count += static_cast<std::uint32_t>(__builtin_popcount(records)) / kSize;
        const std::uint32_t last =
            index + static_cast<std::uint32_t>(31 - __builtin_clz(records | 1)) / kSize;
        m_records.last = records != 0 ? last : m_records.last;
    }

    const T *m_samples;
    __m256i m_maximum; // in every lane
    __m256i m_lowest;
    Records m_records;
};

} // namespace

template <Number T>
bool foldAvx2(const Job<T> &job)
{
    return foldRuns<Avx2Scanner<T>>(job);
}

template bool foldAvx2(const Job<char> &);
template bool foldAvx2(const Job<short> &);
template bool foldAvx2(const Job<std::int32_t> &);
template bool foldAvx2(const Job<float> &);
template bool foldAvx2(const Job<double> &);

} // namespace sbs::foldkernels
