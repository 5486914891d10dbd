#pragma once

#include "valuetree/treeitem.h"

namespace values {

/// Tells whether an item was destroyed since, by an observer that was called meanwhile. Lives on
/// the stack.
class ItemWatch {
public:
    /// \a ends: what follows is the end of the item, which takes nothing any more unless it is
    /// moved.
    explicit ItemWatch(const TreeItem *item, bool ends = false);
    ~ItemWatch();
    ItemWatch(const ItemWatch &) = delete;
    ItemWatch &operator=(const ItemWatch &) = delete;
    bool isGone() const { return m_item == nullptr; }
    static void tellDestroyed(const TreeItem *item);
    static bool isEnding(const TreeItem &item);
    /// Whether it, or a node above it, is ending or being told so: nothing new may come there.
    static bool isBelowEnd(const TreeItem &item);

private:
    const TreeItem *m_item;
    const bool m_ends;
    ItemWatch *m_outer;
};

/// Walks the children that a node has now, while any of them may go. Lives on the stack.
class ChildWalk {
public:
    explicit ChildWalk(const Node &node);
    ~ChildWalk();
    ChildWalk(const ChildWalk &) = delete;
    ChildWalk &operator=(const ChildWalk &) = delete;
    /// Null at the end.
    TreeItem *next();
    static void tellUnlinked(const TreeItem &item);
    /// Keeps the path of \a item, which is about to leave its tree, and of all below it.
    static void rememberPaths(TreeItem &item);

private:
    TreeItem *m_next;
    std::uint32_t m_end; // children that came later are left out
    ChildWalk *m_outer;
};

} // namespace values
