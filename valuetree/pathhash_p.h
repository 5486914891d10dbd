#pragma once

#include <QStringView>

#include <cstdint>

namespace values {

/// A hash over the characters of a path that goes on where another one ended: that of a child is
/// its parent's, extended by "/" and its name.
///
/// A polynomial modulo 2^61 - 1, at a point that each process chooses by chance, so that nobody can
/// choose names that collide.
class PathHash {
public:
    /// The hash of an empty path.
    static constexpr std::uint64_t kEmpty = 0;
    static std::uint64_t extend(std::uint64_t hash, QStringView text);
    static std::uint64_t extendByName(std::uint64_t hash, QStringView name)
    {
        return extend(extend(hash, u"/"), name);
    }
};

} // namespace values
