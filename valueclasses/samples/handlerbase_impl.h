#pragma once

#include "valueclasses/samples/handlerbase.h"
#include "valueclasses/samples/sampleimage.h"

#include <cmath>
#include <cstdint>
#include <limits>
#include <type_traits>

namespace values {

namespace Detail {
/// Truncates toward zero and stops at the limits of \a T; no number becomes 0.
template <typename T>
T truncateTo(double value)
{
    if constexpr (std::is_same_v<T, Kelm::Long>)
        return truncateTo<std::int32_t>(value);
    else if constexpr (std::is_floating_point_v<T>)
        return static_cast<T>(value);
    else {
        if (std::isnan(value))
            return T(0);
        if (value <= double(std::numeric_limits<T>::min()))
            return std::numeric_limits<T>::min();
        if (value >= double(std::numeric_limits<T>::max()))
            return std::numeric_limits<T>::max();
        return static_cast<T>(value);
    }
}
} // namespace Detail

/// What the handlers of plain numbers have in common: one dimension and a raw binary form that does
/// not depend on the data compress mode.
template <typename T>
class SimpleType_Binary : public HandlerBase {
public:
    static constexpr int GetDimensionCnt() { return 1; }
    /// Stores the value, cut to whole numbers and to the limits of \a T, whatever the dimension.
    static void SetDimensionValue(int /*dimension*/, T &sample, double value)
    {
        sample = Detail::truncateTo<T>(value);
    }

    static std::uint64_t SizeOf() { return imageSize<T>; }
    static char *ToBinary(char *destination, const T &sample)
    {
        return toRawImage(destination, sample);
    }
    static T FromBinary(const char **cursor, bool &ok, int = 0)
    {
        ok = true;
        return fromRawImage<T>(cursor);
    }
};

} // namespace values
