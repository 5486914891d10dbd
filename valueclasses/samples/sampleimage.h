#pragma once

#include "platform/base/bytes.h"

#include <bit>
#include <cstddef>

/// The raw image of a sample: its fields in declaration order, little-endian, without padding. It
/// does not depend on the data compress mode; messages always carry it.
namespace values {

/// Specialised beside each sample type: `size` (bytes; without what a sample owns besides),
/// `write(char *, Y const &)` (returns the position behind the image) and `read(char const **)`.
template <typename Y>
struct RawImage;

template <Kelm::RawNumber Y>
struct RawImage<Y> {
    static constexpr std::size_t size = sizeof(Y);
    static char *write(char *destination, Y value)
    {
        return Kelm::putLittleEndian(destination, value);
    }
    static Y read(const char **cursor) { return Kelm::readLittleEndian<Y>(cursor); }
};

/// Bytes of one sample in raw form: 1, 2, 4, 8, 16, 4, 9, 19 or 14. What counts memory counts it.
template <typename Y>
inline constexpr std::size_t imageSize = RawImage<Y>::size;

/// Bytes that toRawImage writes for \a sample; more than imageSize only where it owns waves.
template <typename Y>
std::size_t rawImageSize(const Y &sample)
{
    if constexpr (requires { sample.serializedSize(); })
        return sample.serializedSize();
    else
        return imageSize<Y>;
}

/// Writes rawImageSize(sample) bytes and returns the position behind them.
template <typename Y>
char *toRawImage(char *destination, const Y &sample)
{
    return RawImage<Y>::write(destination, sample);
}

/// Reads one sample and advances the cursor. \throws KRException when the bytes end before it does;
/// the cursor then stays.
template <typename Y>
Y fromRawImage(const char **cursor)
{
    return RawImage<Y>::read(cursor);
}

namespace Detail {
/// Takes a number from bytes that were counted before.
template <Kelm::RawNumber T>
T takeCounted(const char *&position)
{
    typename Kelm::Detail::UintOf<sizeof(T)>::type image;
    std::memcpy(&image, position, sizeof image);
    position += sizeof image;
    if constexpr (std::endian::native == std::endian::big)
        image = Kelm::Detail::swapBytes(image);
    return std::bit_cast<T>(image);
}
} // namespace Detail

} // namespace values
