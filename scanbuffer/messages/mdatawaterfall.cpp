#include "scanbuffer/messages/mdatawaterfall.h"

#include "platform/base/bytes.h"
#include "platform/base/errorhandler.h"
#include "platform/base/krexception.h"
#include "platform/base/zstdcodec.h"
#include "scanbuffer/messages/mdatapacking_p.h"

#include <QString>

#include <cstring>

namespace {

/// Head, without times and pixels, and the length of the pixel data.
constexpr std::size_t kFixedSize = 4 + 4 + 8 + 2 + 2 + 1 + 4;

} // namespace

MDataWaterfall::MDataWaterfall(const char *pixels, std::size_t size, Head head) : MDataWaterfall()
{
    assign(pixels, size, head);
}

void MDataWaterfall::assign(const char *pixels, std::size_t size, const Head &head)
{
    if (head.times.size() != head.lineCnt)
        throw KRException(QStringLiteral("A waterfall block needs one time a row"), __FILE__,
                          "MDataWaterfall", "assign", __LINE__);
    m_head = head;
    m_data.clear();
    if (head.compression != 0)
        Kelm::zstdCompress(pixels, size, m_data);
    else
        m_data.assign(pixels, size);
}

MDataWaterfall::MDataWaterfall(const char **cursor) : MDataWaterfall()
{
    m_head.width = Kelm::readLittleEndian<std::uint32_t>(cursor);
    m_head.lineCnt = Kelm::readLittleEndian<std::uint32_t>(cursor);
    m_head.youngestID = Kelm::readLittleEndian<std::uint64_t>(cursor);
    m_head.compression = Kelm::readLittleEndian<std::uint16_t>(cursor);
    m_head.packetId = Kelm::readLittleEndian<std::uint16_t>(cursor);
    m_head.useForCurve = Kelm::readLittleEndian<bool>(cursor);
    Kelm::requireBytes(*cursor, m_head.lineCnt, sizeof(KRTimeStamp));
    m_head.times.resize(m_head.lineCnt);
    for (KRTimeStamp &time : m_head.times)
        time = Kelm::readLittleEndian<KRTimeStamp>(cursor);
    const auto length = Kelm::readLittleEndian<std::uint32_t>(cursor);
    m_data = Kelm::readBytes(cursor, length);
}

const std::string &MDataWaterfall::GetString() const
{
    static const std::string nothing;
    if (m_head.compression == 0)
        return m_data;
    std::string plain;
    if (!MDataPacking::unpack(m_data.data(), m_data.size(), plain))
        return nothing;
    m_data = std::move(plain);
    m_head.compression = 0;
    return m_data;
}

void MDataWaterfall::Trace(const QString &text) const
{
    if (m_head.packetId != 0)
        SPECTREE_TRACE(TraceWarnings, text + QStringLiteral(" (yCnt = %1) (packetId %2)")
                                                 .arg(m_head.lineCnt)
                                                 .arg(m_head.packetId));
}

std::size_t MDataWaterfall::payloadSize() const
{
    return kFixedSize + m_head.times.size() * sizeof(KRTimeStamp) + m_data.size();
}

char *MDataWaterfall::writePayload(char *destination) const
{
    destination = Kelm::putLittleEndian(destination, m_head.width);
    destination = Kelm::putLittleEndian(destination, m_head.lineCnt);
    destination = Kelm::putLittleEndian(destination, m_head.youngestID);
    destination = Kelm::putLittleEndian(destination, m_head.compression);
    destination = Kelm::putLittleEndian(destination, m_head.packetId);
    destination = Kelm::putLittleEndian(destination, m_head.useForCurve);
    for (const KRTimeStamp time : m_head.times)
        destination = Kelm::putLittleEndian(destination, time);
    destination = Kelm::putLittleEndian(destination, std::uint32_t(m_data.size()));
    std::memcpy(destination, m_data.data(), m_data.size());
    return destination + m_data.size();
}
