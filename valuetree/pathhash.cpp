#include "valuetree/pathhash_p.h"

#include <array>
#include <random>

namespace values {

namespace {

__extension__ using Wide = unsigned __int128;
constexpr std::uint64_t kPrime = (std::uint64_t(1) << 61) - 1;

std::uint64_t reduce(Wide number)
{
    const std::uint64_t sum = (std::uint64_t(number) & kPrime) + std::uint64_t(number >> 61);
    return sum >= kPrime ? sum - kPrime : sum;
}

/// The powers 0 to 8 of the point.
using Powers = std::array<std::uint64_t, 9>;

Powers makePowers()
{
    std::random_device chance;
    const std::uint64_t point =
        (std::uint64_t(chance()) << 32 | chance()) % (kPrime - (1 << 16)) + (1 << 16);
    Powers powers{1};
    for (std::size_t i = 1; i < powers.size(); ++i)
        powers[i] = reduce(Wide(powers[i - 1]) * point);
    return powers;
}

template <int Count>
std::uint64_t step(std::uint64_t hash, const char16_t *text, const Powers &powers)
{
    Wide sum = 0;
    for (int i = 0; i < Count; ++i)
        sum += Wide(powers[std::size_t(Count - 1 - i)]) * text[i];
    return reduce(Wide(hash) * powers[Count] + sum);
}

} // namespace

std::uint64_t PathHash::extend(std::uint64_t hash, QStringView text)
{
    static const Powers powers = makePowers();
    const char16_t *at = text.utf16();
    auto left = text.size();
    for (; left >= 8; left -= 8, at += 8)
        hash = step<8>(hash, at, powers);
    if (left >= 4) {
        hash = step<4>(hash, at, powers);
        at += 4;
        left -= 4;
    }
    if (left >= 2) {
        hash = step<2>(hash, at, powers);
        at += 2;
        left -= 2;
    }
    if (left != 0)
        hash = step<1>(hash, at, powers);
    // A number has two images in the steps; equal paths must get equal hashes.
    return hash >= kPrime ? hash - kPrime : hash;
}

} // namespace values
