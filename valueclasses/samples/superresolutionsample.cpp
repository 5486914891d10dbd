#include "valueclasses/samples/superresolutionsample.h"

#include "valueclasses/samples/sampleimage.h"

#include <algorithm>

namespace values {
namespace {

void copyEntries(SuperResolutionSample::Entries &to, const std::int16_t *from, std::size_t count)
{
    std::copy_n(from, std::min(count, to.size()), to.begin());
}

} // namespace

void SuperResolutionSample::setLevel(const std::int16_t *entries, std::size_t count)
{
    copyEntries(m_level, entries, count);
}

void SuperResolutionSample::setFieldStrength(const std::int16_t *entries, std::size_t count)
{
    copyEntries(m_fieldStrength, entries, count);
}

void SuperResolutionSample::setAzimuth(const std::int16_t *entries, std::size_t count)
{
    copyEntries(m_azimuth, entries, count);
}

void SuperResolutionSample::setElevation(const std::int16_t *entries, std::size_t count)
{
    copyEntries(m_elevation, entries, count);
}

void SuperResolutionSample::setQuality(const std::int16_t *entries, std::size_t count)
{
    copyEntries(m_quality, entries, count);
    const auto end = m_quality.begin() + std::ptrdiff_t(std::min(count, kMaxWaves));
    m_waveCount = std::size_t(std::find(m_quality.begin(), end, 0) - m_quality.begin());
}

char *SuperResolutionSample::ToBinary(char *destination) const
{
    destination = Kelm::putLittleEndian(destination, std::uint8_t(m_waveCount));
    destination = Kelm::putLittleEndian(destination, m_reliability);
    for (const Entries *entries :
         {&m_level, &m_fieldStrength, &m_azimuth, &m_elevation, &m_quality})
        for (std::size_t wave = 0; wave < m_waveCount; ++wave)
            destination = Kelm::putLittleEndian(destination, (*entries)[wave]);
    return destination;
}

SuperResolutionSample SuperResolutionSample::FromBinary(const char **cursor)
{
    const char *position = *cursor;
    Kelm::requireBytes(position, 2);
    const std::size_t stored = Detail::takeCounted<std::uint8_t>(position);
    SuperResolutionSample waves;
    waves.m_reliability = Detail::takeCounted<Reliability>(position);
    waves.m_waveCount = std::min(stored, kMaxWaves);
    Kelm::requireBytes(position, stored, 10);
    for (Entries *entries : {&waves.m_level, &waves.m_fieldStrength, &waves.m_azimuth,
                             &waves.m_elevation, &waves.m_quality}) {
        for (std::size_t wave = 0; wave < waves.m_waveCount; ++wave)
            (*entries)[wave] = Detail::takeCounted<std::int16_t>(position);
        position += 2 * (stored - waves.m_waveCount);
    }
    *cursor = position;
    return waves;
}

} // namespace values
