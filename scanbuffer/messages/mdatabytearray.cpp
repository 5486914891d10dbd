#include "scanbuffer/messages/mdatabytearray.h"

#include "platform/base/bytes.h"
#include "scanbuffer/messages/mdatapacking_p.h"

#include <cstring>

MDataByteArray::MDataByteArray(const char **cursor) : m_packed(true)
{
    const auto length = Kelm::readLittleEndian<std::uint32_t>(cursor);
    Kelm::requireBytes(*cursor, length);
    m_payload = QByteArray(*cursor, int(length));
    *cursor += length;
    m_additional = Kelm::readLittleEndian<short>(cursor);
}

QByteArray MDataByteArray::GetValue() const { return unpack() ? m_payload : QByteArray(); }

bool MDataByteArray::unpack() const
{
    if (!m_packed)
        return true;
    std::string plain;
    if (!MDataPacking::unpack(m_payload.constData(), std::size_t(m_payload.size()), plain))
        return false;
    m_payload = QByteArray(plain.data(), int(plain.size()));
    m_packed = false;
    return true;
}

void MDataByteArray::pack() const
{
    if (m_packed)
        return;
    const std::string &packed =
        MDataPacking::pack(m_payload.constData(), std::size_t(m_payload.size()));
    m_payload = QByteArray(packed.data(), int(packed.size()));
    m_packed = true;
}

std::size_t MDataByteArray::payloadSize() const
{
    pack();
    return sizeof(std::uint32_t) + std::size_t(m_payload.size()) + sizeof(m_additional);
}

char *MDataByteArray::writePayload(char *destination) const
{
    destination = Kelm::putLittleEndian(destination, std::uint32_t(m_payload.size()));
    std::memcpy(destination, m_payload.constData(), std::size_t(m_payload.size()));
    return Kelm::putLittleEndian(destination + m_payload.size(), m_additional);
}
