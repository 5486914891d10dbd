#pragma once

#include "platform/base/export.h"
#include "platform/base/types.h"

#include <bit>
#include <cstddef>
#include <cstring>
#include <string>
#include <type_traits>

/// Reading and writing of binary forms: little-endian, without padding, never past the end.
///
/// Readers take a cursor (`char const **`) and advance it. Whoever starts a parse opens a ReadScope
/// that tells where the bytes end; a read, a length field or a search that would pass that end
/// throws. With no scope open on the thread, the reader trusts its caller.
namespace Kelm {

/// The end of the bytes that a parse on this thread may read. Scopes nest: the innermost one that
/// holds a position bounds it, and a position in none of them is unbounded.
class SPECTREE_EXPORT ReadScope {
public:
    ReadScope(const char *begin, std::size_t size);
    ~ReadScope();
    ReadScope(const ReadScope &) = delete;
    ReadScope &operator=(const ReadScope &) = delete;

private:
    friend SPECTREE_EXPORT std::size_t bytesLeft(const char *position);
    const char *m_begin;
    const char *m_end;
    const ReadScope *m_outer;
};

/// Bytes between \a position and the end of its scope; the largest number when there is none.
SPECTREE_EXPORT std::size_t bytesLeft(const char *position);
/// \throws KRException "Command string is not terminated with ';'" when fewer than \a count bytes
/// are left, or \a count times \a size does not fit.
SPECTREE_EXPORT void requireBytes(const char *position, std::size_t count, std::size_t size = 1);
/// The first \a terminator at or after \a position. \throws KRException as requireBytes does.
SPECTREE_EXPORT const char *findByte(const char *position, char terminator);

namespace Detail {
template <std::size_t Size>
struct UintOf;
template <>
struct UintOf<1> {
    using type = std::uint8_t;
};
template <>
struct UintOf<2> {
    using type = std::uint16_t;
};
template <>
struct UintOf<4> {
    using type = std::uint32_t;
};
template <>
struct UintOf<8> {
    using type = std::uint64_t;
};

template <typename T>
constexpr T swapBytes(T value)
{
    if constexpr (sizeof(T) == 1)
        return value;
    else if constexpr (sizeof(T) == 2)
        return T(__builtin_bswap16(value));
    else if constexpr (sizeof(T) == 4)
        return T(__builtin_bswap32(value));
    else
        return T(__builtin_bswap64(value));
}
} // namespace Detail

/// What has a fixed raw image of 1, 2, 4 or 8 bytes: arithmetic types, enums, Long.
template <typename T>
concept RawNumber = std::is_trivially_copyable_v<T> &&
                    (sizeof(T) == 1 || sizeof(T) == 2 || sizeof(T) == 4 || sizeof(T) == 8) &&
                    (std::is_arithmetic_v<T> || std::is_enum_v<T> || std::is_same_v<T, Long>);

/// Writes the image of \a value to \a destination and returns the position behind it.
template <RawNumber T>
char *putLittleEndian(char *destination, T value)
{
    auto image = std::bit_cast<typename Detail::UintOf<sizeof(T)>::type>(value);
    if constexpr (std::endian::native == std::endian::big)
        image = Detail::swapBytes(image);
    std::memcpy(destination, &image, sizeof image);
    return destination + sizeof image;
}

template <RawNumber T>
void appendLittleEndian(std::string &out, T value)
{
    char image[sizeof(T)];
    putLittleEndian(image, value);
    out.append(image, sizeof image);
}

/// Reads an image and advances the cursor. \throws KRException at the end of the bytes.
template <RawNumber T>
T readLittleEndian(const char **cursor)
{
    requireBytes(*cursor, sizeof(T));
    typename Detail::UintOf<sizeof(T)>::type image;
    std::memcpy(&image, *cursor, sizeof image);
    *cursor += sizeof image;
    if constexpr (std::endian::native == std::endian::big)
        image = Detail::swapBytes(image);
    if constexpr (std::is_same_v<T, bool>)
        return image != 0; // a bool that is neither 0 nor 1 would be undefined behaviour
    else
        return std::bit_cast<T>(image);
}

/// Reads \a count raw bytes and advances the cursor. \throws KRException at the end of the bytes,
/// before any memory is taken.
SPECTREE_EXPORT std::string readBytes(const char **cursor, std::size_t count);
/// Requires ';' at the cursor and steps over it. The tags go into the exception.
SPECTREE_EXPORT void readTerminator(const char **cursor, const char *className,
                                    const char *functionName);

} // namespace Kelm
