#pragma once

#include <boost/circular_buffer.hpp>

#include <cstddef>
#include <cstdint>
#include <vector>

namespace values {
class ValueBase;
}

/// What readers of an item map see of it without knowing its items.
namespace valueitemmap {

/// Stands for no key; a record set under it gets a new one.
inline constexpr unsigned int InvalidKey = 0xFFFFFFFFU;

enum ChangeKind : std::uint8_t {
    ItemSet = 1, ///< added or replaced
    ItemErased = 2,
    MapCleared = 3, ///< with the invalid key
};

/// One change of a map. Serials start at 0 and rise by one: a reader who finds a gap behind the
/// last one that it saw reads the whole map.
struct ChangeRecord {
    std::uint64_t serial = 0;
    ChangeKind kind = ItemSet;
    unsigned int key = InvalidKey;

    bool operator==(const ChangeRecord &other) const = default;
};

inline constexpr std::size_t ChangeLogCapacity = 100;
/// The newest changes, oldest first.
using ChangeLog = boost::circular_buffer<ChangeRecord>;

/// A map whose readers can catch up by difference.
template <typename Key>
class IHasChangeLogValueTemplate {
public:
    virtual ~IHasChangeLogValueTemplate() = default;
    virtual const ChangeLog &GetChangeLog() const = 0;
    /// The keys of all records, in no order.
    virtual std::vector<Key> IndexVector() const = 0;
    virtual bool Contains(Key key) const = 0;
    virtual values::ValueBase *GetValueBase() = 0;
};

/// An item that knows its key. The key is its place, not its content: items compare without it.
template <typename Key>
class IKeyItemTemplate {
public:
    virtual ~IKeyItemTemplate() = default;
    virtual Key GetKey() const = 0;
    virtual void SetKey(Key key) = 0;
};

} // namespace valueitemmap
