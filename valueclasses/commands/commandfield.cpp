#include "platform/base/bytes.h"
#include "platform/base/krexception.h"
#include "valueclasses/commands/commandfield_p.h"

#include <algorithm>
#include <charconv>
#include <climits>

namespace values {

std::string_view commandField(const char *position)
{
    const std::size_t left = Kelm::bytesLeft(position);
    std::size_t length = 0;
    while (length < left && position[length] != ';' && position[length] != '\0')
        ++length;
    return {position, length};
}

void skipCommandField(const char **pos, std::string_view field, const char *className,
                      const char *functionName)
{
    *pos += field.size();
    Kelm::readTerminator(pos, className, functionName);
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

void appendDecimal(std::string &out, int number)
{
    char digits[12];
    const auto end = std::to_chars(digits, digits + sizeof digits, number).ptr;
    out.append(digits, end);
}

} // namespace values
