#include "scanbuffer/messages/mdatachannelrange.h"

#include "platform/base/bytes.h"

#include <cstring>

MDataChannelRangeDefinition::MDataChannelRangeDefinition(
    const values::ChannelRangeDefinition &definition, int id)
    : MData(MDT_ChannelRangeDefinition), m_definition(definition),
      m_image(Kelm::toStandardString(definition)), m_id(id)
{
}

MDataChannelRangeDefinition::MDataChannelRangeDefinition(const char **cursor)
    : MData(MDT_ChannelRangeDefinition)
{
    const char *const begin = *cursor;
    m_definition = Kelm::fromCharStream<values::ChannelRangeDefinition>(cursor);
    m_image.assign(begin, *cursor);
    m_id = Kelm::readLittleEndian<int>(cursor);
}

char *MDataChannelRangeDefinition::writePayload(char *destination) const
{
    std::memcpy(destination, m_image.data(), m_image.size());
    return Kelm::putLittleEndian(destination + m_image.size(), m_id);
}
