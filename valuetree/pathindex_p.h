#pragma once

#include <QStringView>

#include <cstdint>
#include <vector>

namespace values {

class Node;
class TreeItem;

/// Finds the items below one topmost node by path, in one look for a path of any length.
///
/// Open addressing over the hash of the whole path; a hit is checked name by name up to the start.
/// Among siblings of one name only the first stands here; the others are marked to move up.
/// Lookups allocate nothing. Adding and removing are constant, a new name costs the size of the
/// subtree whose paths it changes.
class PathIndex {
public:
    /// Everything below \a top, which has no parent.
    explicit PathIndex(Node &top);
    /// \a item and all below it. Its parent is set, its hash isn't.
    void Add(TreeItem &item);
    /// \a item and all below it, while it still stands among its siblings.
    void Remove(TreeItem &item);
    void Rename(TreeItem &item, const QString &name);

    TreeItem *Child(const Node &parent, QStringView name) const;
    /// What stands at \a path, relative to \a from.
    TreeItem *At(const Node &from, QStringView path) const;
    /// What stands at \a path, which begins with "/", below the topmost node.
    TreeItem *AtAbsolute(const Node &root, QStringView path) const;

private:
    struct Slot {
        std::uint64_t hash;
        TreeItem *item; // null: free
    };

    template <typename Matches>
    TreeItem *find(std::uint64_t hash, Matches matches) const;
    TreeItem *child(const Node &parent, QStringView name, std::uint64_t hash) const;
    static bool isAt(const TreeItem &item, const Node &from, QStringView path);
    std::size_t home(std::uint64_t hash) const;
    static void hash(TreeItem &item);
    void insert(TreeItem &item);
    void erase(TreeItem &item);
    void grow();
    void addOne(TreeItem &item);
    void removeOne(TreeItem &item);
    void addBelow(TreeItem &item);
    void removeBelow(TreeItem &item);
    void rehashBelow(TreeItem &item);

    std::vector<Slot> m_slots; // a power of two
    std::size_t m_count = 0;
    int m_shift = 64;
};

} // namespace values
