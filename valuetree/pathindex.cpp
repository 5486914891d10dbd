#include "valuetree/node.h"
#include "valuetree/pathindex_p.h"

#include <algorithm>

namespace values {

PathIndex::PathIndex(Node &top)
{
    top.m_pathHash = PathHash();
    addBelow(top);
}

std::size_t PathIndex::home(std::uint64_t hash) const
{
    return std::size_t((hash * 0x9E3779B97F4A7C15U) >> m_shift);
}

template <typename Matches>
TreeItem *PathIndex::find(std::uint64_t hash, Matches matches) const
{
    if (m_slots.empty())
        return nullptr;
    const std::size_t mask = m_slots.size() - 1;
    for (std::size_t i = home(hash); m_slots[i].item != nullptr; i = (i + 1) & mask)
        if (m_slots[i].hash == hash && matches(*m_slots[i].item))
            return m_slots[i].item;
    return nullptr;
}

TreeItem *PathIndex::child(const Node &parent, QStringView name, std::uint64_t hash) const
{
    return find(hash, [&](const TreeItem &item) {
        return item.m_parent == &parent && QStringView(item.m_name) == name;
    });
}

TreeItem *PathIndex::Child(const Node &parent, QStringView name) const
{
    return child(parent, name, parent.m_pathHash.valueWithName(name));
}

TreeItem *PathIndex::At(const Node &from, QStringView path) const
{
    const std::uint64_t hash = from.m_pathHash.valueWithName(path);
    return find(hash, [&](const TreeItem &item) { return isAt(item, from, path); });
}

TreeItem *PathIndex::AtAbsolute(const Node &root, QStringView path) const
{
    return find(PathHash::of(path),
                [&](const TreeItem &item) { return isAt(item, root, path.mid(1)); });
}

bool PathIndex::isAt(const TreeItem &item, const Node &from, QStringView path)
{
    const QChar *const begin = path.data();
    const QChar *end = begin + path.size();
    for (const TreeItem *at = &item;; --end) {
        const QString &name = at->m_name;
        // An item that isn't the first of its name hides what is below it.
        if (!at->m_indexed || at->m_slashInName || end - begin < name.size() ||
            !std::equal(name.cbegin(), name.cend(), end - name.size()))
            return false;
        end -= name.size();
        at = at->m_parent;
        if (at == &from || at == nullptr)
            return at != nullptr && end == begin;
        if (end == begin || end[-1] != QChar('/'))
            return false;
    }
}

void PathIndex::grow()
{
    std::vector<Slot> old(m_slots.empty() ? 16 : m_slots.size() * 2, Slot{0, nullptr});
    old.swap(m_slots);
    m_shift = 64 - __builtin_ctzll(m_slots.size());
    const std::size_t mask = m_slots.size() - 1;
    for (const Slot &slot : old)
        if (slot.item != nullptr) {
            std::size_t i = home(slot.hash);
            while (m_slots[i].item != nullptr)
                i = (i + 1) & mask;
            m_slots[i] = slot;
        }
}

void PathIndex::insert(TreeItem &item)
{
    if ((m_count + 1) * 4 > m_slots.size() * 3)
        grow();
    ++m_count;
    item.m_indexed = true;
    const std::size_t mask = m_slots.size() - 1;
    std::size_t i = home(item.m_hash);
    while (m_slots[i].item != nullptr)
        i = (i + 1) & mask;
    m_slots[i] = {item.m_hash, &item};
}

void PathIndex::erase(TreeItem &item)
{
    const std::size_t mask = m_slots.size() - 1;
    std::size_t hole = home(item.m_hash);
    while (m_slots[hole].item != &item)
        hole = (hole + 1) & mask;
    // What stands behind moves up, unless that would put it before its home.
    for (std::size_t i = (hole + 1) & mask; m_slots[i].item != nullptr; i = (i + 1) & mask)
        if (((i - home(m_slots[i].hash)) & mask) >= ((i - hole) & mask)) {
            m_slots[hole] = m_slots[i];
            hole = i;
        }
    m_slots[hole].item = nullptr;
    item.m_indexed = false;
    --m_count;
}

void PathIndex::hash(TreeItem &item)
{
    PathHash path = item.m_parent->m_pathHash;
    path.add(u"/");
    path.add(item.m_name);
    item.m_hash = path.value();
    if (item.m_kind == TreeItem::Kind::Node)
        static_cast<Node &>(item).m_pathHash = path;
}

void PathIndex::addOne(TreeItem &item)
{
    item.m_indexed = false; // what an index that was dropped has left
    item.m_hasTwin = false;
    hash(item);
    if (item.m_name.isEmpty())
        return;
    if (TreeItem *const twin = child(*item.m_parent, item.m_name, item.m_hash)) {
        TreeItem &first = twin->m_position < item.m_position ? *twin : item;
        first.m_hasTwin = true;
        if (&first == twin)
            return;
        erase(*twin);
    }
    insert(item);
}

void PathIndex::removeOne(TreeItem &item)
{
    if (!item.m_indexed)
        return;
    erase(item);
    if (!item.m_hasTwin)
        return;
    item.m_hasTwin = false;
    for (TreeItem *later = item.m_next; later != nullptr; later = later->m_next)
        if (later->m_name == item.m_name) {
            insert(*later);
            later->m_hasTwin = true; // perhaps; the next search tells
            return;
        }
}

void PathIndex::addBelow(TreeItem &item)
{
    if (const Node *const node = item.AsNode())
        for (TreeItem *below = node->m_first; below != nullptr; below = below->m_next)
            Add(*below);
}

void PathIndex::removeBelow(TreeItem &item)
{
    if (const Node *const node = item.AsNode())
        for (TreeItem *below = node->m_first; below != nullptr; below = below->m_next) {
            if (below->m_indexed)
                erase(*below);
            removeBelow(*below);
        }
}

void PathIndex::rehashBelow(TreeItem &item)
{
    const Node *const node = item.AsNode();
    if (node == nullptr)
        return;
    for (TreeItem *below = node->m_first; below != nullptr; below = below->m_next) {
        const bool indexed = below->m_indexed;
        if (indexed)
            erase(*below);
        hash(*below);
        if (indexed)
            insert(*below);
        rehashBelow(*below);
    }
}

void PathIndex::Add(TreeItem &item)
{
    addOne(item);
    addBelow(item);
}

void PathIndex::Remove(TreeItem &item)
{
    removeOne(item);
    removeBelow(item);
}

void PathIndex::Rename(TreeItem &item, const QString &name)
{
    removeOne(item);
    item.m_name = name;
    addOne(item);
    rehashBelow(item);
}

} // namespace values
