#include "platform/axis/section.h"

#include <bit>
#include <cstdint>

namespace {

/// FNV-1a, 64 bits, a word at a time.
std::uint64_t mixed(std::uint64_t hash, double value)
{
    const auto word = std::bit_cast<std::uint64_t>(value + 0.0); // -0.0 and 0.0 are equal
    return (hash ^ word) * 0x100000001B3U;
}

} // namespace

double section::hash() const
{
    if (m_stretches.empty())
        return 0.0;
    std::uint64_t hash = 0xCBF29CE484222325U;
    for (const Stretch &stretch : m_stretches)
        hash = mixed(mixed(mixed(hash, stretch.from), stretch.to), stretch.scale);
    return double((hash ^ (hash >> 32)) >> 12 | 1); // 52 bits fit a double exactly
}
