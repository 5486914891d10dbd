#include "valueclasses/channels/pixelmap.h"

#include "platform/base/bytes.h"
#include "platform/base/krexception.h"

#include <cstring>

namespace values {
namespace {

using Sections = std::vector<pixSection>;

constexpr std::size_t kSectionSize = 3 * sizeof(double) + 1;
constexpr std::size_t kHeadSize = 2 * sizeof(double) + 2 + 1;
constexpr std::size_t kListSize = sizeof(std::uint32_t) + PixelMap::kMaxSections * kSectionSize;
static_assert(kHeadSize + 2 * kListSize + 1 == PixelMap::kImageSize, "the lists fill the image");

char *writeHead(char *destination, const PixelMap &map)
{
    destination = Kelm::putLittleEndian(destination, map.axisMin);
    destination = Kelm::putLittleEndian(destination, map.axisMax);
    destination = Kelm::putLittleEndian(destination, map.pixelCount);
    return Kelm::putLittleEndian(destination, map.flags);
}

PixelMap readHead(const char **cursor)
{
    PixelMap map;
    map.axisMin = Kelm::readLittleEndian<double>(cursor);
    map.axisMax = Kelm::readLittleEndian<double>(cursor);
    map.pixelCount = Kelm::readLittleEndian<std::int16_t>(cursor);
    map.flags = Kelm::readLittleEndian<std::uint8_t>(cursor);
    return map;
}

char *writeList(char *destination, const Sections &sections)
{
    destination = Kelm::putLittleEndian(destination, std::uint32_t(sections.size()));
    for (const pixSection &one : sections) {
        destination = Kelm::putLittleEndian(destination, one.GetFrom());
        destination = Kelm::putLittleEndian(destination, one.GetTo());
        destination = Kelm::putLittleEndian(destination, one.GetScale());
        destination = Kelm::putLittleEndian(destination, one.IsSuppressed());
    }
    return destination;
}

Sections readList(const char **cursor)
{
    const auto count = Kelm::readLittleEndian<std::uint32_t>(cursor);
    Kelm::requireBytes(*cursor, count, kSectionSize);
    Sections sections;
    for (std::uint32_t i = 0; i < count; ++i) {
        const auto from = Kelm::readLittleEndian<double>(cursor);
        const auto to = Kelm::readLittleEndian<double>(cursor);
        const auto scale = Kelm::readLittleEndian<double>(cursor);
        sections.emplace_back(from, to, scale, Kelm::readLittleEndian<bool>(cursor));
    }
    return sections;
}

Sections readFixedList(const char **cursor)
{
    const Kelm::ReadScope list(*cursor, kListSize);
    const char *position = *cursor;
    Sections sections = readList(&position);
    *cursor += kListSize;
    return sections;
}

} // namespace

char *PixelMap::ToBinary(char *destination) const
{
    if (zoomed.size() > kMaxSections || suppressed.size() > kMaxSections)
        throw KRException(
            QStringLiteral("A pixel map holds at most %1 sections of each kind").arg(kMaxSections),
            __FILE__, "PixelMap", "ToBinary", __LINE__);
    std::memset(destination, 0, kImageSize);
    writeHead(destination, *this);
    writeList(destination + kHeadSize, zoomed);
    writeList(destination + kHeadSize + kListSize, suppressed);
    destination[kImageSize - 1] = ';';
    return destination + kImageSize;
}

PixelMap PixelMap::FromBinary(const char **cursor)
{
    Kelm::requireBytes(*cursor, kImageSize);
    const char *position = *cursor;
    PixelMap map = readHead(&position);
    map.zoomed = readFixedList(&position);
    map.suppressed = readFixedList(&position);
    Kelm::readTerminator(&position, "PixelMap", "FromBinary");
    *cursor = position;
    return map;
}

} // namespace values

namespace Kelm {

template <>
std::string toStandardString(const values::PixelMap &map)
{
    using namespace values;
    const std::size_t sections = map.zoomed.size() + map.suppressed.size();
    std::string image(kHeadSize + 2 * sizeof(std::uint32_t) + sections * kSectionSize + 1, ';');
    writeList(writeList(writeHead(image.data(), map), map.zoomed), map.suppressed);
    return image;
}

template <>
values::PixelMap fromCharStream(const char **cursor)
{
    values::PixelMap map = values::readHead(cursor);
    map.zoomed = values::readList(cursor);
    map.suppressed = values::readList(cursor);
    readTerminator(cursor, "PixelMap", "fromCharStream");
    return map;
}

} // namespace Kelm
