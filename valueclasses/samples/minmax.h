#pragma once

#include "valueclasses/samples/handlerbase_impl.h"

#include <string>

namespace values {

/// The smallest and the greatest of something. Only the greatest takes part in comparisons.
struct MinMax {
    std::int16_t min = -32768;
    std::int16_t max = -32768;

    constexpr MinMax() = default;
    constexpr MinMax(short smallest, short greatest) : min(smallest), max(greatest) {}
};

inline bool operator==(const MinMax &a, const MinMax &b) { return a.max == b.max; }
inline bool operator!=(const MinMax &a, const MinMax &b) { return a.max != b.max; }
inline bool operator<(const MinMax &a, const MinMax &b) { return a.max < b.max; }
inline bool operator<=(const MinMax &a, const MinMax &b) { return a.max <= b.max; }

template <>
struct SPECTREE_EXPORT RawImage<MinMax> {
    static constexpr std::size_t size = 4;
    static char *write(char *destination, const MinMax &sample);
    static MinMax read(const char **cursor);
};

/// Levels in 1/10 of the level unit. Dimensions: 0 maximum, 1 minimum. Setting a dimension stores
/// the plain number without the factor 10 that reading divides by.
class SPECTREE_EXPORT MinMaxHandler : public HandlerBase {
    static constexpr MinMax kMinimum{};

public:
    static constexpr int GetId() { return 108; }
    static constexpr int GetDimensionCnt() { return 2; }
    static double GetDimension(int dimension, const MinMax &sample)
    {
        return plainDimension(dimension, sample) / 10.0;
    }
    static void SetDimensionValue(int dimension, MinMax &sample, double value);
    static QString &GetFormattedString(int dimension, QString &text, const MinMax &sample,
                                       int angleMode, const QString *unit);
    static std::string ToString(const MinMax &sample);
    static const MinMax &Minimum() { return kMinimum; }
    /// Writes the level unit that all handlers share.
    static void SetSuffix(const QString &unit) { SetLevelUnit(unit); }

    static std::uint64_t SizeOf() { return imageSize<MinMax>; }
    static char *ToBinary(char *destination, const MinMax &sample);
    static MinMax FromBinary(const char **cursor, bool &ok, int = 0);

protected:
    static double plainDimension(int dimension, const MinMax &sample)
    {
        if (dimension != 0 && dimension != 1) [[unlikely]]
            throwNoDimension("MinMaxHandler::GetDimension");
        return dimension == 0 ? sample.max : sample.min;
    }
    [[noreturn]] static void throwNoDimension(const char *functionName);
};

/// Plain integers: the maximum in degrees, the minimum in per cent.
class SPECTREE_EXPORT ElevOverAziMinMaxHandler : public MinMaxHandler {
public:
    static constexpr int GetId() { return 109; }
    static double GetDimension(int dimension, const MinMax &sample)
    {
        return plainDimension(dimension, sample);
    }
    static QString &GetFormattedString(int dimension, QString &text, const MinMax &sample,
                                       int angleMode, const QString *unit);
};

} // namespace values
