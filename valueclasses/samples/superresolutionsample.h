#pragma once

#include "platform/base/export.h"

#include <array>
#include <cstddef>
#include <cstdint>

namespace values {

/// Up to five waves that were resolved at one channel.
///
/// The setters copy at most five entries and leave the others alone. Set the quality last: it
/// settles the wave count.
class SPECTREE_EXPORT SuperResolutionSample {
public:
    static constexpr std::size_t kMaxWaves = 5;
    using Entries = std::array<std::int16_t, kMaxWaves>;
    /// How far the result can be relied on; the numbers belong to the producer.
    enum class Reliability : std::uint8_t { unknown = 2 };

    Reliability getReliability() const { return m_reliability; }
    void setReliability(Reliability reliability) { m_reliability = reliability; }
    /// Entries that hold a wave, 0 to 5.
    std::size_t getWaveCount() const { return m_waveCount; }

    /// 1/100 of the level unit; -32768 is invalid.
    const Entries &getLevel() const { return m_level; }
    void setLevel(const std::int16_t *entries, std::size_t count);
    /// 1/100 dBµV/m; -32768 is invalid.
    const Entries &getFieldStrength() const { return m_fieldStrength; }
    void setFieldStrength(const std::int16_t *entries, std::size_t count);
    /// 1/100 degree, as is the elevation.
    const Entries &getAzimuth() const { return m_azimuth; }
    void setAzimuth(const std::int16_t *entries, std::size_t count);
    const Entries &getElevation() const { return m_elevation; }
    void setElevation(const std::int16_t *entries, std::size_t count);
    /// Per cent.
    const Entries &getQuality() const { return m_quality; }
    /// The wave count becomes the number of leading entries that are not 0, at most \a count.
    void setQuality(const std::int16_t *entries, std::size_t count);

    /// Bytes of the binary form: 2, and 10 a wave.
    std::size_t serializedSize() const { return 2 + 10 * m_waveCount; }
    /// Writes the wave count, the reliability and the used part of the five arrays.
    char *ToBinary(char *destination) const;
    /// A stored count above 5 keeps five waves; the cursor passes all that were stored.
    /// \throws KRException when the bytes end before; the cursor then stays.
    static SuperResolutionSample FromBinary(const char **cursor);

private:
    static constexpr Entries kNoLevels{-32768, -32768, -32768, -32768, -32768};

    Reliability m_reliability = Reliability::unknown;
    Entries m_level = kNoLevels, m_fieldStrength = kNoLevels;
    Entries m_azimuth{}, m_elevation{}, m_quality{};
    std::size_t m_waveCount = 0;
};

} // namespace values
