#pragma once

#include "valueclasses/samples/handlerbase_impl.h"

#include <string>

namespace values {

/// The direction from which a signal arrives, with its level.
struct Bearing {
    std::int32_t dt = 0;         ///< first time-like count, carried and printed only
    std::int32_t D = 0;          ///< second time-like count, carried and printed only
    std::int16_t level = -32768; ///< 1/100 of the level unit; -32768 is invalid
    std::uint16_t azimuth = 0;   ///< 1/100 degree
    std::int16_t elevation = 0;  ///< 1/100 degree
    std::int16_t quality = 0;    ///< per cent; 0 means that the sample holds no bearing

    std::int16_t getElevation() const { return elevation; }
    std::int16_t getQuality() const { return quality; }
};

inline bool operator==(const Bearing &a, const Bearing &b)
{
    return a.level == b.level && a.quality == b.quality && a.azimuth == b.azimuth;
}
inline bool operator!=(const Bearing &a, const Bearing &b) { return !(a == b); }
/// A sample without a bearing is below one that has it; among equals the level decides.
inline bool operator<(const Bearing &a, const Bearing &b)
{
    const bool has = a.quality != 0, other = b.quality != 0;
    return has == other ? a.level < b.level : other;
}
inline bool operator<=(const Bearing &a, const Bearing &b)
{
    const bool has = a.quality != 0, other = b.quality != 0;
    return has == other ? a.level <= b.level : other;
}

/// A bearing with its validity and a short-time level. It compares as a Bearing does.
struct SPECTREE_EXPORT BearingExtended : Bearing {
    enum class Validity : std::uint8_t { invalid = 0, valid = 1, blank = 2 };

    Validity validity = Validity::invalid;
    std::int16_t shortTimeLevel = -32768; ///< 1/100 of the level unit; -32768 is invalid

    std::int16_t getShortTimeLevel() const { return shortTimeLevel; }
    /// "invalid", "valid", "blank", or "unknown validity!".
    static QString ValidStr(Validity validity);
};

template <>
struct SPECTREE_EXPORT RawImage<Bearing> {
    static constexpr std::size_t size = 16;
    static char *write(char *destination, const Bearing &sample);
    static Bearing read(const char **cursor);
};

template <>
struct SPECTREE_EXPORT RawImage<BearingExtended> {
    static constexpr std::size_t size = 19;
    static char *write(char *destination, const BearingExtended &sample);
    static BearingExtended read(const char **cursor);
};

/// Dimensions: 0 level, 1 dt, 2 D, 3 azimuth, 4 elevation (both in degrees, -1.0 without a
/// bearing), 5 quality.
class SPECTREE_EXPORT BearingHandler : public HandlerBase {
    static constexpr Bearing kMinimum{};

public:
    static constexpr int GetId() { return 107; }
    static constexpr int GetDimensionCnt() { return 6; }
    static double GetDimension(int dimension, const Bearing &sample)
    {
        switch (dimension) {
        case 0:
            return sample.level / 100.0;
        case 1:
            return sample.dt;
        case 2:
            return sample.D;
        case 3:
            return sample.quality == 0 ? -1.0 : sample.azimuth / 100.0;
        case 4:
            return sample.quality == 0 ? -1.0 : sample.elevation / 100.0;
        case 5:
            return sample.quality;
        default:
            throwNoDimension();
        }
    }
    static void SetDimensionValue(int dimension, Bearing &sample, double value);
    /// \a angleMode 1 shows the azimuth also without a bearing; 2 shows it from -180 to 180.
    static QString &GetFormattedString(int dimension, QString &text, const Bearing &sample,
                                       int angleMode, const QString *unit);
    static std::string ToString(const Bearing &sample);
    static const Bearing &Minimum() { return kMinimum; }

    static std::uint64_t SizeOf() { return GetDataCompressMode() == DataCompressed ? 4 : 16; }
    /// Compressed, a negative elevation borrows from the fields above it: that form is meant for
    /// elevations of 0 and above. Every other part is clamped to its bits.
    static char *ToBinary(char *destination, const Bearing &sample);
    static Bearing FromBinary(const char **cursor, bool &ok, int = 0);

protected:
    [[noreturn]] static void throwNoDimension();
};

/// Dimensions 0 to 5 as BearingHandler; 6 validity (can't be set), 7 short-time level.
class SPECTREE_EXPORT BearingExtendedHandler : public HandlerBase {
    static constexpr BearingExtended kMinimum{};

public:
    static constexpr int GetId() { return 110; }
    static constexpr int GetDimensionCnt() { return 8; }
    static BearingExtended::Validity GetValidity(const BearingExtended &sample)
    {
        return sample.validity;
    }
    static double GetDimension(int dimension, const BearingExtended &sample)
    {
        if (dimension == 6)
            return double(sample.validity);
        if (dimension == 7)
            return sample.shortTimeLevel / 100.0;
        return BearingHandler::GetDimension(dimension, sample);
    }
    static void SetDimensionValue(int dimension, BearingExtended &sample, double value);
    static QString &GetFormattedString(int dimension, QString &text, const BearingExtended &sample,
                                       int angleMode, const QString *unit);
    static std::string ToString(const BearingExtended &sample);
    static const BearingExtended &Minimum() { return kMinimum; }

    static std::uint64_t SizeOf() { return GetDataCompressMode() == DataCompressed ? 6 : 19; }
    static char *ToBinary(char *destination, const BearingExtended &sample);
    static BearingExtended FromBinary(const char **cursor, bool &ok, int = 0);
};

} // namespace values
