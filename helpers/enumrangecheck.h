#pragma once

#include "platform/base/krexception.h"

#include <type_traits>

namespace values {

/// Turns a number that came from outside into an enum of the values 0 up to, not including,
/// \a count. \throws KRException "RangeCheck failed for Enum" for any other number.
template <typename Enum, typename Number>
Enum EnumRangeCheck(Number number, std::type_identity_t<Number> count)
{
    if (number < Number(0) || number >= count)
        throw KRException(QStringLiteral("RangeCheck failed for Enum"), "helpers/enumrangecheck",
                          "EnumRangeCheck", "EnumRangeCheck", __LINE__);
    return static_cast<Enum>(number);
}

} // namespace values
