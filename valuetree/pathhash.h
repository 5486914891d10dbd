#pragma once

#include <QStringView>

#include <cstdint>
#include <cstring>

namespace values {

/// A hash of 128 bits over the characters of a path. It goes on where another one ended: that of a
/// child is its parent's, continued by "/" and its name.
///
/// Equal hashes stand for equal paths. Both halves fold products of the characters and of numbers
/// that each process draws by chance, so that nobody can choose names that collide, and by chance
/// no process of this world will see it.
class PathHash {
public:
    struct Value {
        std::uint64_t place; ///< where it stands in a table
        std::uint64_t check;
        bool operator==(const Value &) const = default;
    };

    void add(QStringView text);
    Value value() const
    {
        char16_t last[kBlock];
        std::memcpy(last, m_pending, sizeof last);
        last[m_count] = kEnd;
        return fold(m_hash, last);
    }
    Value valueWithName(QStringView name) const
    {
        PathHash child = *this;
        child.add(u"/");
        child.add(name);
        return child.value();
    }
    /// That of a fresh one to which \a text was added.
    static Value of(QStringView text);

private:
    static constexpr int kBlock = 8; // characters
    // Behind the last one, before the zeroes that fill the block up: a path may hold zeroes too.
    static constexpr char16_t kEnd = 0xFFFF;

    static const std::uint64_t s_key[4];
    static std::uint64_t multiply(std::uint64_t a, std::uint64_t b)
    {
        __extension__ using Wide = unsigned __int128;
        const Wide product = Wide(a) * b;
        return std::uint64_t(product) ^ std::uint64_t(product >> 64);
    }
    static Value fold(const Value &hash, const char16_t *block)
    {
        std::uint64_t half[2];
        std::memcpy(half, block, sizeof half);
        return {multiply(half[0] ^ s_key[0], half[1] ^ hash.place ^ s_key[1]),
                multiply(half[0] ^ s_key[2], half[1] ^ hash.check ^ s_key[3])};
    }

    Value m_hash{0, 0};
    char16_t m_pending[kBlock] = {}; // the last block, filled up with zeroes
    int m_count = 0;                 // characters in it, less than kBlock
};

} // namespace values
