#include "scanbuffer/messages/mdatacontainer.h"

#include "platform/base/bytes.h"
#include "platform/base/krexception.h"

#include <limits>

namespace {

constexpr auto kBroken = std::numeric_limits<std::size_t>::max();

} // namespace

MDataContainer::MDataContainer(const char **cursor, Unpacking /*later*/) : MDataByteArray(cursor)
{
    SetType(MDT_Container);
}

MDataContainer::MDataContainer(const char **cursor) : MDataContainer(cursor, Unpacking::later)
{
    requireUnpacked();
}

void MDataContainer::requireUnpacked() const
{
    if (!unpack())
        throw KRException(QStringLiteral("A container doesn't unpack"), __FILE__, "MDataContainer",
                          "MDataContainer", __LINE__);
}

void MDataContainer::addMData(const MData &message)
{
    if (m_additional == std::numeric_limits<short>::max())
        throw KRException(QStringLiteral("A container is full"), __FILE__, "MDataContainer",
                          "addMData", __LINE__);
    requireUnpacked();
    m_payload += QByteArray(message);
    ++m_additional;
}

std::unique_ptr<MData> MDataContainer::getMData(short index) const
{
    if (index < 0 || index >= m_additional || !unpack())
        return nullptr;
    if (m_starts.size() != std::size_t(m_additional))
        analyse();
    const std::size_t start = m_starts[std::size_t(index)];
    if (start == kBroken)
        return nullptr;
    const Kelm::ReadScope scope(m_payload.constData(), std::size_t(m_payload.size()));
    const char *cursor = m_payload.constData() + start;
    return parseContained(&cursor); // FromBinary would look at the messages behind it, too
}

/// As parse(), but a container stays packed: a message of some hundred bytes can hold thousands of
/// them that unpack to 256 MB each.
std::unique_ptr<MData> MDataContainer::parseContained(const char **cursor)
{
    const char *payload = *cursor;
    if (Kelm::bytesLeft(payload) < sizeof(std::uint32_t) ||
        Kelm::readLittleEndian<std::uint32_t>(&payload) != MDT_Container)
        return parse(cursor);
    std::unique_ptr<MData> container(new MDataContainer(&payload, Unpacking::later));
    Kelm::readTerminator(&payload, "MDataContainer", "parseContained");
    *cursor = payload;
    return container;
}

void MDataContainer::analyse() const
{
    m_starts.assign(std::size_t(m_additional), kBroken);
    const Kelm::ReadScope scope(m_payload.constData(), std::size_t(m_payload.size()));
    const char *cursor = m_payload.constData();
    try {
        for (std::size_t &start : m_starts) {
            const char *const begin = cursor;
            if (!parseContained(&cursor))
                return;
            start = std::size_t(begin - m_payload.constData());
        }
    } catch (const KRException &) { // a type that doesn't exist, a container that is cut
    }
}
