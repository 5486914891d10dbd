#pragma once

#include "valueclasses/samples/bearing.h"
#include "valueclasses/samples/superresolutionsample.h"

#include <memory>
#include <string>

namespace values {

/// The result of direction finding at one channel, with the waves that were resolved there, if any.
class SPECTREE_EXPORT DFSpectrumSample {
public:
    using Validity = BearingExtended::Validity;

    DFSpectrumSample() = default;
    /// A copy owns a copy of the waves.
    DFSpectrumSample(const DFSpectrumSample &other)
        : m_fields(other.m_fields), m_waves(other.m_waves ? clone(*other.m_waves) : nullptr)
    {
    }
    DFSpectrumSample(DFSpectrumSample &&) noexcept = default;
    DFSpectrumSample &operator=(const DFSpectrumSample &other)
    {
        if (m_waves || other.m_waves) [[unlikely]]
            assignWaves(other);
        m_fields = other.m_fields;
        return *this;
    }
    DFSpectrumSample &operator=(DFSpectrumSample &&) noexcept = default;
    ~DFSpectrumSample() = default;

    Validity getValidity() const { return m_fields.validity; }
    void setValidity(Validity validity) { m_fields.validity = validity; }
    /// 1/100 of the level unit; -32768 is invalid. So are the short-time level, and the field
    /// strength in dBµV/m.
    short getLevel() const { return m_fields.level; }
    void setLevel(short level) { m_fields.level = level; }
    short getShortTimeLevel() const { return m_fields.shortTimeLevel; }
    void setShortTimeLevel(short level) { m_fields.shortTimeLevel = level; }
    short getFieldStrength() const { return m_fields.fieldStrength; }
    void setFieldStrength(short strength) { m_fields.fieldStrength = strength; }
    /// 1/100 degree, as is the elevation.
    unsigned short getAzimuth() const { return m_fields.azimuth; }
    void setAzimuth(unsigned short azimuth) { m_fields.azimuth = azimuth; }
    short getElevation() const { return m_fields.elevation; }
    void setElevation(short elevation) { m_fields.elevation = elevation; }
    /// Per cent.
    short getQuality() const { return m_fields.quality; }
    void setQuality(short quality) { m_fields.quality = quality; }

    /// Gives the sample fresh waves, or resets the ones that it has.
    SuperResolutionSample &createSuperResolutionSample();
    /// Null when there are none. The sample goes on owning them.
    SuperResolutionSample *getSuperResolutionSample() { return m_waves.get(); }
    const SuperResolutionSample *getSuperResolutionSample() const { return m_waves.get(); }
    void discardSuperResolutionSample() { m_waves.reset(); }
    bool isSuperResolutionSampleSet() const { return m_waves != nullptr; }
    /// Bytes of the binary form: 14, and the waves' own.
    std::size_t serializedSize() const { return 14 + (m_waves ? m_waves->serializedSize() : 0); }

private:
    struct Fields {
        Validity validity = Validity::invalid;
        std::int16_t level = -32768, shortTimeLevel = -32768, fieldStrength = -32768;
        std::uint16_t azimuth = 0;
        std::int16_t elevation = 0, quality = 0;
    };
    static std::unique_ptr<SuperResolutionSample> clone(const SuperResolutionSample &waves);
    void assignWaves(const DFSpectrumSample &other);

    Fields m_fields;
    std::unique_ptr<SuperResolutionSample> m_waves;
};

inline bool operator==(const DFSpectrumSample &a, const DFSpectrumSample &b)
{
    return a.getLevel() == b.getLevel() && a.getQuality() == b.getQuality() &&
           a.getAzimuth() == b.getAzimuth();
}
inline bool operator!=(const DFSpectrumSample &a, const DFSpectrumSample &b) { return !(a == b); }
/// The quality decides, and among equal qualities the level.
inline bool operator<(const DFSpectrumSample &a, const DFSpectrumSample &b)
{
    return a.getQuality() == b.getQuality() ? a.getLevel() < b.getLevel()
                                            : a.getQuality() < b.getQuality();
}
/// The level alone: not the negation of a swapped `<`, and meant so.
inline bool operator<=(const DFSpectrumSample &a, const DFSpectrumSample &b)
{
    return a.getLevel() <= b.getLevel();
}

/// 14 bytes; the last tells whether the waves follow.
template <>
struct SPECTREE_EXPORT RawImage<DFSpectrumSample> {
    static constexpr std::size_t size = 14;
    static char *write(char *destination, const DFSpectrumSample &sample);
    static DFSpectrumSample read(const char **cursor);
};

/// Dimensions: 0 level, 1 validity (setting it does nothing), 2 short-time level, 3 azimuth,
/// 4 elevation, 5 quality, and beyond the count 6 field strength; NaN for others. Never throws for
/// a dimension, and has a level unit of its own.
class SPECTREE_EXPORT DFSpectrumSampleHandler : public HandlerBase {
public:
    static constexpr int GetId() { return 112; }
    static constexpr int GetDimensionCnt() { return 6; }
    static double GetDimension(int dimension, const DFSpectrumSample &sample)
    {
        switch (dimension) {
        case 0:
            return sample.getLevel() / 100.0;
        case 1:
            return double(sample.getValidity());
        case 2:
            return sample.getShortTimeLevel() / 100.0;
        case 3:
            return sample.getAzimuth() / 100.0;
        case 4:
            return sample.getElevation() / 100.0;
        case 5:
            return sample.getQuality();
        case 6:
            return sample.getFieldStrength() / 100.0;
        default:
            return std::numeric_limits<double>::quiet_NaN();
        }
    }
    /// Rounds by adding 0.5 hundredths and cutting; the quality is only cut.
    static void SetDimensionValue(int dimension, DFSpectrumSample &sample, double value);
    static QString &GetFormattedString(int dimension, QString &text, const DFSpectrumSample &sample,
                                       int angleMode, const QString *unit);
    static std::string ToString(const DFSpectrumSample &sample);
    static DFSpectrumSample Minimum() { return {}; }
    static QString GetLevelUnit();
    static void SetLevelUnit(const QString &unit);

    /// The fixed part only; serializedSize() tells the whole of one sample.
    static std::uint64_t SizeOf() { return imageSize<DFSpectrumSample>; }
    static char *ToBinary(char *destination, const DFSpectrumSample &sample);
    /// Leaves \a ok untouched.
    static DFSpectrumSample FromBinary(const char **cursor, bool &ok, int = 0);
};

} // namespace values
