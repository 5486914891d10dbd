#include "platform/axis/axisdata.h"

#include "platform/base/bytes.h"

#include <cstring>

namespace {

constexpr std::size_t kReserved = 5; // bytes 19 to 23

} // namespace

char *AxisData::ToBinary(char *destination) const
{
    destination = Kelm::putLittleEndian(destination, min);
    destination = Kelm::putLittleEndian(destination, max);
    destination = Kelm::putLittleEndian(destination, pixelCount);
    destination = Kelm::putLittleEndian(destination, flags);
    std::memset(destination, 0, kReserved);
    return Kelm::putLittleEndian(destination + kReserved, sectionHash);
}

AxisData AxisData::FromBinary(const char **cursor)
{
    Kelm::requireBytes(*cursor, kImageSize);
    AxisData data;
    data.min = Kelm::readLittleEndian<double>(cursor);
    data.max = Kelm::readLittleEndian<double>(cursor);
    data.pixelCount = Kelm::readLittleEndian<std::int16_t>(cursor);
    data.flags = Kelm::readLittleEndian<std::uint8_t>(cursor);
    *cursor += kReserved;
    data.sectionHash = Kelm::readLittleEndian<double>(cursor);
    return data;
}
