#pragma once

#include "valueclasses/samples/handlerbase_impl.h"

#include <string>

namespace values {

/// Pulses seen at one channel. A fresh one is neutral for running maxima and minima.
struct Pulse {
    std::int16_t level = -32768;         ///< 1/10 of the level unit
    std::int16_t pulseLevelMax = -32768; ///< 1/10 of the level unit; -32768: no pulse was seen
    std::int16_t pulseLevelMin = 32767;  ///< 1/10 of the level unit
    std::uint16_t pulseCount = 0;
    std::uint8_t pulseType = 255;

    Pulse() = default;
    /// One pulse; the last two arguments are accepted and ignored.
    Pulse(short channelLevel, short pulseLevel, unsigned char type, unsigned int, unsigned int)
        : level(channelLevel), pulseLevelMax(pulseLevel), pulseLevelMin(pulseLevel), pulseType(type)
    {
    }
};

/// The count takes no part in comparisons, and the order is that of the levels alone.
inline bool operator==(const Pulse &a, const Pulse &b)
{
    return a.level == b.level && a.pulseLevelMax == b.pulseLevelMax && a.pulseType == b.pulseType &&
           a.pulseLevelMin == b.pulseLevelMin;
}
inline bool operator!=(const Pulse &a, const Pulse &b) { return !(a == b); }
inline bool operator<(const Pulse &a, const Pulse &b) { return a.level < b.level; }
inline bool operator<=(const Pulse &a, const Pulse &b) { return a.level <= b.level; }

template <>
struct SPECTREE_EXPORT RawImage<Pulse> {
    static constexpr std::size_t size = 9;
    static char *write(char *destination, const Pulse &sample);
    static Pulse read(const char **cursor);
};

/// Dimensions: 0 level, 1 upper pulse level (both the most negative double when invalid), 2 type
/// (0.0 without a pulse), 3 lower pulse level, 4 count.
class SPECTREE_EXPORT PulseHandler : public HandlerBase {
public:
    static constexpr int GetId() { return 111; }
    static constexpr int GetDimensionCnt() { return 5; }
    static double GetDimension(int dimension, const Pulse &sample)
    {
        switch (dimension) {
        case 0:
            return tenthOrLowest(sample.level);
        case 1:
            return tenthOrLowest(sample.pulseLevelMax);
        case 2:
            return sample.pulseLevelMax == -32768 ? 0.0 : sample.pulseType;
        case 3:
            return sample.pulseLevelMin / 10.0;
        case 4:
            return sample.pulseCount;
        default:
            throwNoDimension();
        }
    }
    static void SetDimensionValue(int dimension, Pulse &sample, double value);
    static QString &GetFormattedString(int dimension, QString &text, Pulse &sample, int angleMode,
                                       const QString *unit);
    static std::string ToString(const Pulse &sample);
    static Pulse Minimum() { return {}; }

    static std::uint64_t SizeOf() { return imageSize<Pulse>; }
    static char *ToBinary(char *destination, const Pulse &sample);
    static Pulse FromBinary(const char **cursor, bool &ok, int = 0);

private:
    static double tenthOrLowest(std::int16_t level)
    {
        return level == -32768 ? std::numeric_limits<double>::lowest() : level / 10.0;
    }
    [[noreturn]] static void throwNoDimension();
};

} // namespace values
