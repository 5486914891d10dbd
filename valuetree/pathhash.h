#pragma once

#include <QStringView>

#include <cstdint>
#include <cstring>

namespace values {

/// A hash over the characters of a path that goes on where another one ended: that of a child is
/// its parent's, continued by "/" and its name.
///
/// It folds 128-bit products of the characters, eight at a time, and of numbers that each process
/// draws by chance, so that nobody can choose names that collide.
class PathHash {
public:
    void add(QStringView text);
    std::uint64_t value() const { return fold(m_hash, m_pending); }

    /// The same as a fresh one to which \a text was added.
    static std::uint64_t of(QStringView text);
    std::uint64_t valueWithName(QStringView name) const
    {
        PathHash child = *this;
        child.add(u"/");
        child.add(name);
        return child.value();
    }

private:
    static constexpr int kBlock = 8; // characters

    static const std::uint64_t s_key[2];
    static std::uint64_t fold(std::uint64_t hash, const char16_t *block)
    {
        std::uint64_t halves[2];
        std::memcpy(halves, block, sizeof halves);
        __extension__ using Wide = unsigned __int128;
        const Wide product = Wide(halves[0] ^ s_key[0]) * (halves[1] ^ hash ^ s_key[1]);
        return std::uint64_t(product) ^ std::uint64_t(product >> 64);
    }

    std::uint64_t m_hash = 0;
    char16_t m_pending[kBlock] = {}; // the last block, filled up with zeroes
    int m_count = 0;                 // characters in it
};

} // namespace values
