#pragma once

#include <QString>

#include <string>
#include <string_view>

namespace values {

/// The number of an id of two digits and its ";", as nearly every one is; else -1.
inline int shortCommandId(const char *position, std::size_t left)
{
    if (left < 3 || position[2] != ';')
        return -1;
    const unsigned tens = unsigned(position[0]) - '0', ones = unsigned(position[1]) - '0';
    return tens < 10 && ones < 10 ? int(10 * tens + ones) : -1;
}
/// The bytes up to the next ";", zero byte or end of the string, found in place: a copy of the rest
/// would make the parse of a long string quadratic.
std::string_view commandField(const char *position);
/// Steps over \a field and its ";". \throws KRException when there is none.
void skipCommandField(const char **pos, std::string_view field, const char *className,
                      const char *functionName);
/// commandField and skipCommandField in one, for the id that was looked at before.
/// \throws KRException for an empty field, too.
void skipCommandId(const char **pos);
/// The number that \a field spells; one too large for an int is the largest int.
/// \throws KRException \a message with the field for %1, unless all are digits.
int parseDigits(std::string_view field, const char *message, const char *className,
                const char *functionName);
/// Appends the decimal digits of \a number and a ";".
void appendDecimalField(std::string &out, int number);

} // namespace values
