#include "scanbuffer/messages/mdataazimuth.h"

#include "platform/base/bytes.h"
#include "scanbuffer/messages/mdatapacking_p.h"

#include <cstring>

MDataAzimuth::MDataAzimuth(const char **cursor) : MData(MDT_AzimuthImage), m_packed(true)
{
    m_head.bytesPerLine = Kelm::readLittleEndian<std::uint32_t>(cursor);
    m_head.youngest = Kelm::readLittleEndian<KRTimeStamp>(cursor);
    m_head.width = Kelm::readLittleEndian<std::uint32_t>(cursor);
    m_head.height = Kelm::readLittleEndian<std::uint32_t>(cursor);
    m_head.quality = Kelm::readLittleEndian<std::uint8_t>(cursor);
    const auto length = Kelm::readLittleEndian<std::uint32_t>(cursor);
    m_image = Kelm::readBytes(cursor, length);
}

const std::string &MDataAzimuth::GetString() const
{
    static const std::string nothing;
    if (!m_packed)
        return m_image;
    std::string plain;
    if (!MDataPacking::unpack(m_image.data(), m_image.size(), plain))
        return nothing;
    m_image = std::move(plain);
    m_packed = false;
    return m_image;
}

std::size_t MDataAzimuth::payloadSize() const
{
    if (!m_packed)
        m_image = MDataPacking::pack(m_image.data(), m_image.size());
    m_packed = true;
    return 4 + 8 + 4 + 4 + 1 + 4 + m_image.size();
}

char *MDataAzimuth::writePayload(char *destination) const
{
    destination = Kelm::putLittleEndian(destination, m_head.bytesPerLine);
    destination = Kelm::putLittleEndian(destination, m_head.youngest);
    destination = Kelm::putLittleEndian(destination, m_head.width);
    destination = Kelm::putLittleEndian(destination, m_head.height);
    destination = Kelm::putLittleEndian(destination, m_head.quality);
    destination = Kelm::putLittleEndian(destination, std::uint32_t(m_image.size()));
    std::memcpy(destination, m_image.data(), m_image.size());
    return destination + m_image.size();
}
