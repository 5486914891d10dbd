#include "scanbuffer/messages/mdatakfactor.h"

MDataKFactor::MDataKFactor(const char **cursor) : MDataVector(cursor)
{
    // Left standing there, the cursor makes the parse miss the message's own terminator too.
    if (Kelm::bytesLeft(*cursor) == 0 || **cursor != ';')
        return;
    ++*cursor;
    m_smooth = Kelm::readLittleEndian<bool>(cursor);
    m_offset = Kelm::readLittleEndian<double>(cursor);
}

std::size_t MDataKFactor::payloadSize() const
{
    return MDataVector::payloadSize() + sizeof(';') + sizeof(bool) + sizeof(double);
}

char *MDataKFactor::writePayload(char *destination) const
{
    destination = MDataVector::writePayload(destination);
    *destination++ = ';';
    return Kelm::putLittleEndian(Kelm::putLittleEndian(destination, m_smooth), m_offset);
}
