#pragma once

#include <cstdint>

/// Microseconds since 1970 UTC; 0 means none. The one unsigned 64-bit type of all interfaces.
using KRTimeStamp = std::uint64_t;

namespace Kelm {

/// The 32-bit `long` of all forms, on every machine.
///
/// A type of its own, so that overloads and template instances tell it from `int`; it converts
/// both ways without loss and costs what an int costs.
class Long {
public:
    constexpr Long() = default;
    constexpr Long(std::int32_t value) : m_value(value) {} // NOLINT: converts like a number
    constexpr operator std::int32_t() const { return m_value; }

private:
    std::int32_t m_value = 0;
};
static_assert(sizeof(Long) == 4, "a Long has the size of its image");

} // namespace Kelm
