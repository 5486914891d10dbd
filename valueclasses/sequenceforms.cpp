#include "valueclasses/sequenceforms.h"

#include "platform/base/krexception.h"

namespace values {

std::size_t Sequence::readCount(const char **pos, int mode)
{
    if (!isTextMode(mode)) {
        const auto count = Kelm::readLittleEndian<std::uint16_t>(pos);
        Kelm::requireBytes(*pos, count); // no element is shorter than a byte
        return count;
    }
    const QString text = Format::ReadToken(pos);
    bool isNumber = false;
    const ushort count = text.toUShort(&isNumber);
    if (!isNumber)
        throw KRException(QStringLiteral("Invalid element count: %1").arg(text), __FILE__,
                          "Sequence", "readCount", __LINE__);
    Kelm::requireBytes(*pos, count);
    return count;
}

void Sequence::appendCount(std::string &out, std::size_t count, int mode)
{
    StreamFormat<unsigned short>::Append(out, static_cast<unsigned short>(count), mode);
}

} // namespace values
