#pragma once

#include "valuetree/treeitem.h"

namespace values {

/// Tells whether an item was destroyed since, by an observer that was called meanwhile. Lives on
/// the stack.
class ItemWatch {
public:
    /// What comes to its end meanwhile, and takes nothing any more unless it is moved.
    enum class Ends { Nothing, Item, Children };

    explicit ItemWatch(const TreeItem *item, Ends ends = Ends::Nothing);
    ~ItemWatch();
    ItemWatch(const ItemWatch &) = delete;
    ItemWatch &operator=(const ItemWatch &) = delete;
    bool isGone() const { return m_item == nullptr; }
    static void tellDestroyed(const TreeItem *item);
    /// Whether the end of the item, or of its node's children, has been told and goes on.
    static bool isEnding(const TreeItem &item);
    /// Whether the children of \a node are being deleted.
    static bool areChildrenEnding(const TreeItem &node);
    /// Whether it, or a node above it, is ending or being told so: nothing new may come there.
    static bool isBelowEnd(const TreeItem &item);

private:
    const TreeItem *m_item;
    const Ends m_ends;
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
