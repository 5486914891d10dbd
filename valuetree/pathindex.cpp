#include "valuetree/node.h"
#include "valuetree/pathindex_p.h"

namespace values {

PathIndex::PathIndex(Node &top)
{
    grow();
    top.m_pathHash = PathHash();
    addBelow(top);
}

TreeItem *PathIndex::find(const PathHash::Value &hash) const
{
    const std::size_t mask = m_slots.size() - 1;
    for (std::size_t i = home(hash.place); m_slots[i].item != nullptr; i = (i + 1) & mask)
        if (m_slots[i].place == hash.place && m_slots[i].item->m_check == hash.check)
            return m_slots[i].item;
    return nullptr;
}

TreeItem *PathIndex::At(const Node &from, QStringView path) const
{
    return find(from.m_pathHash.valueWithName(path));
}

void PathIndex::put(const Slot &slot)
{
    const std::size_t mask = m_slots.size() - 1;
    std::size_t i = home(slot.place);
    while (m_slots[i].item != nullptr)
        i = (i + 1) & mask;
    m_slots[i] = slot;
}

void PathIndex::grow()
{
    std::vector<Slot> old(m_slots.empty() ? 16 : m_slots.size() * 2, Slot{0, nullptr});
    old.swap(m_slots);
    m_shift = 64 - __builtin_ctzll(m_slots.size());
    for (const Slot &slot : old)
        if (slot.item != nullptr)
            put(slot);
}

void PathIndex::insert(TreeItem &item)
{
    if ((m_count + 1) * 4 > m_slots.size() * 3)
        grow();
    ++m_count;
    item.m_indexed = true;
    put({item.m_place, &item});
}

void PathIndex::erase(TreeItem &item)
{
    const std::size_t mask = m_slots.size() - 1;
    std::size_t hole = home(item.m_place);
    while (m_slots[hole].item != &item)
        hole = (hole + 1) & mask;
    // What stands behind moves up, unless that would put it before its home.
    for (std::size_t i = (hole + 1) & mask; m_slots[i].item != nullptr; i = (i + 1) & mask)
        if (((i - home(m_slots[i].place)) & mask) >= ((i - hole) & mask)) {
            m_slots[hole] = m_slots[i];
            hole = i;
        }
    m_slots[hole].item = nullptr;
    item.m_indexed = false;
    --m_count;
}

/// False for an item to which no path leads.
bool PathIndex::addOne(TreeItem &item)
{
    item.m_indexed = false; // what an index that was dropped has left
    item.m_hasTwin = false;
    const Node &parent = *item.m_parent;
    if (!parent.isReachable() || item.m_name.isEmpty() || item.m_name.contains('/'))
        return false;
    PathHash path = parent.m_pathHash;
    path.add(u"/");
    path.add(item.m_name);
    const PathHash::Value hash = path.value();
    item.m_place = hash.place;
    item.m_check = hash.check;
    if (Node *const node = item.AsNode())
        node->m_pathHash = path;
    if (TreeItem *const twin = find(hash)) {
        if (twin->m_position < item.m_position) {
            twin->m_hasTwin = true;
            return false;
        }
        removeWithAllBelow(*twin);
        item.m_hasTwin = true;
    }
    insert(item);
    return true;
}

void PathIndex::addBelow(TreeItem &item)
{
    if (const Node *const node = item.AsNode())
        for (TreeItem *below = node->m_first; below != nullptr; below = below->m_next)
            Add(*below);
}

void PathIndex::Add(TreeItem &item)
{
    if (addOne(item))
        addBelow(item);
    else
        forget(item);
}

/// A subtree that had an index of its own may come to where no path leads.
void PathIndex::forget(TreeItem &item)
{
    item.m_indexed = false;
    item.m_hasTwin = false;
    if (const Node *const node = item.AsNode())
        for (TreeItem *below = node->m_first; below != nullptr; below = below->m_next)
            forget(*below);
}

void PathIndex::removeWithAllBelow(TreeItem &item)
{
    if (!item.m_indexed)
        return;
    erase(item);
    if (const Node *const node = item.AsNode())
        for (TreeItem *below = node->m_first; below != nullptr; below = below->m_next)
            removeWithAllBelow(*below);
}

void PathIndex::Remove(TreeItem &item)
{
    const bool hasTwin = item.m_indexed && item.m_hasTwin;
    removeWithAllBelow(item);
    if (!hasTwin)
        return;
    for (TreeItem *later = item.m_next; later != nullptr; later = later->m_next)
        if (later->m_name == item.m_name) {
            Add(*later);
            later->m_hasTwin = true; // perhaps; the next search tells
            return;
        }
}

void PathIndex::Rename(TreeItem &item, const QString &name)
{
    Remove(item);
    item.m_name = name;
    Add(item);
}

} // namespace values
