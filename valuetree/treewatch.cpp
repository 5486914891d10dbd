#include "valuetree/node.h"
#include "valuetree/treewatch_p.h"

namespace values {

namespace {
thread_local ItemWatch *innermostWatch = nullptr;
thread_local ChildWalk *innermostWalk = nullptr;
} // namespace

ItemWatch::ItemWatch(const TreeItem *item, Ends ends)
    : m_item(item), m_ends(ends), m_outer(innermostWatch)
{
    innermostWatch = this;
}

ItemWatch::~ItemWatch() { innermostWatch = m_outer; }

void ItemWatch::tellDestroyed(const TreeItem *item)
{
    for (ItemWatch *watch = innermostWatch; watch != nullptr; watch = watch->m_outer)
        if (watch->m_item == item)
            watch->m_item = nullptr;
}

bool ItemWatch::isEnding(const TreeItem &item)
{
    for (const ItemWatch *watch = innermostWatch; watch != nullptr && item.m_toldAhead;
         watch = watch->m_outer)
        if ((watch->m_ends == Ends::Item && watch->m_item == &item) ||
            (watch->m_ends == Ends::Children && item.m_parent != nullptr &&
             watch->m_item == item.m_parent))
            return true;
    return false;
}

bool ItemWatch::areChildrenEnding(const TreeItem &node)
{
    for (const ItemWatch *watch = innermostWatch; watch != nullptr; watch = watch->m_outer)
        if (watch->m_ends == Ends::Children && watch->m_item == &node)
            return true;
    return false;
}

bool ItemWatch::isBelowEnd(const TreeItem &item)
{
    for (const TreeItem *above = &item; above != nullptr; above = above->m_parent)
        if (above->m_ending || isEnding(*above))
            return true;
    return false;
}

ChildWalk::ChildWalk(const Node &node)
    : m_next(node.m_first), m_end(node.m_nextPosition), m_outer(innermostWalk)
{
    innermostWalk = this;
}

ChildWalk::~ChildWalk() { innermostWalk = m_outer; }

TreeItem *ChildWalk::next()
{
    TreeItem *const item = m_next;
    if (item == nullptr || item->m_position >= m_end)
        return nullptr;
    m_next = item->m_next;
    return item;
}

void ChildWalk::tellUnlinked(const TreeItem &item)
{
    for (ChildWalk *walk = innermostWalk; walk != nullptr; walk = walk->m_outer)
        if (walk->m_next == &item)
            walk->m_next = item.m_next;
}

void ChildWalk::rememberPaths(TreeItem &item)
{
    item.rememberPath();
    if (const Node *const node = item.AsNode())
        for (TreeItem *child = node->m_first; child != nullptr; child = child->m_next)
            rememberPaths(*child);
}

} // namespace values
