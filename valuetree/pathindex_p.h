#pragma once

#include "valuetree/pathhash.h"

#include <vector>

namespace values {

class Node;
class TreeItem;

/// Finds the items below one topmost node by path, in one look for a path of any length.
///
/// Open addressing over the hash of the whole path. It holds what a path leads to: of siblings with
/// one name the first, and nothing below the others, nor an item with an empty name or a "/" in it.
/// A first one remembers that there may be another to take its place.
/// Lookups allocate nothing. Adding and removing cost the size of the subtree, a new name too.
class PathIndex {
public:
    /// Everything below \a top, which has no parent.
    explicit PathIndex(Node &top);
    /// \a item and all below it, once it stands among its siblings.
    void Add(TreeItem &item);
    /// \a item and all below it, while it still stands there.
    void Remove(TreeItem &item);
    void Rename(TreeItem &item, const QString &name);

    /// What stands at \a path, relative to \a from, which a path leads to.
    TreeItem *At(const Node &from, QStringView path) const;
    /// What stands at \a path, which begins with "/", below the topmost node.
    TreeItem *AtAbsolute(QStringView path) const { return find(PathHash::of(path)); }

private:
    struct Slot {
        std::uint64_t place;
        TreeItem *item; // null: free
    };

    TreeItem *find(const PathHash::Value &hash) const;
    std::size_t home(std::uint64_t place) const { return std::size_t(place >> m_shift); }
    void put(const Slot &slot);
    void insert(TreeItem &item);
    void erase(TreeItem &item);
    void grow();
    bool addOne(TreeItem &item);
    void addBelow(TreeItem &item);
    static void forget(TreeItem &item);
    void removeWithAllBelow(TreeItem &item);

    std::vector<Slot> m_slots; // a power of two
    std::size_t m_count = 0;
    int m_shift = 63;
};

} // namespace values
