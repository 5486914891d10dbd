#include "platform/base/bytes.h"
#include "platform/base/krexception.h"
#include "valueclasses/commands/commandfield_p.h"

#include <algorithm>
#include <charconv>
#include <climits>

namespace values {

static std::size_t fieldLength(const char *position, std::size_t left)
{
    std::size_t length = 0;
    while (length < left && position[length] != ';' && position[length] != '\0')
        ++length;
    return length;
}

std::string_view commandField(const char *position)
{
    return {position, fieldLength(position, Kelm::bytesLeft(position))};
}

void skipCommandField(const char **pos, std::string_view field, const char *className,
                      const char *functionName)
{
    *pos += field.size();
    Kelm::readTerminator(pos, className, functionName);
}

void skipCommandId(const char **pos)
{
    const std::size_t left = Kelm::bytesLeft(*pos);
    if (shortCommandId(*pos, left) >= 0) {
        *pos += 3;
        return;
    }
    const std::size_t length = fieldLength(*pos, left);
    if (length == 0)
        throw KRException("The command id in the passed string is empty.", __FILE__,
                          "ValueBase::CommandOnValue", "CommandOnValue", __LINE__);
    *pos += length;
    Kelm::readTerminator(pos, "ValueBase::CommandOnValue", "CommandOnValue");
}

int parseDigits(std::string_view field, const char *message, const char *className,
                const char *functionName)
{
    const auto isDigit = [](char c) { return c >= '0' && c <= '9'; };
    if (!std::all_of(field.begin(), field.end(), isDigit))
        throw KRException(
            QString::fromLatin1(message).arg(QString::fromLatin1(field.data(), int(field.size()))),
            __FILE__, className, functionName, __LINE__);
    int number = 0;
    const auto result = std::from_chars(field.data(), field.data() + field.size(), number);
    return result.ec == std::errc::result_out_of_range ? INT_MAX : number;
}

void appendDecimalField(std::string &out, int number)
{
    char digits[13];
    char *const end = std::to_chars(digits, digits + 12, number).ptr;
    *end = ';';
    out.append(digits, end + 1);
}

} // namespace values
