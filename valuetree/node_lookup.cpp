// Lookups: by path, name, place and descriptor.
#include "valuetree/node.h"
#include "valuetree/pathindex_p.h"
#include "valuetree/valueitem.h"

#include <algorithm>

namespace values {

PathIndex &Node::index() const
{
    Node *const highest = top();
    if (highest->m_index == nullptr)
        highest->m_index = std::make_unique<PathIndex>(*highest);
    return *highest->m_index;
}

/// The first child of the name, by a walk.
TreeItem *Node::walkTo(QStringView name) const
{
    TreeItem *child = name.isEmpty() ? nullptr : m_first;
    while (child != nullptr && QStringView(child->m_name) != name)
        child = child->m_next;
    return child;
}

TreeItem *Node::child(QStringView name) const
{
    const PathIndex &paths = index();
    // What no path leads to isn't in the index: below a twin, or with a "/" in its name.
    return isReachable() && !name.contains(QChar('/')) ? paths.At(*this, name) : walkTo(name);
}

TreeItem *Node::find(QStringView path) const
{
    const PathIndex &paths = index();
    if (isReachable() || path.isEmpty())
        return path.isEmpty() ? nullptr : paths.At(*this, path);
    const auto cut = path.indexOf(QChar('/'));
    TreeItem *const first = walkTo(cut < 0 ? path : path.left(cut));
    const Node *const node = first != nullptr && cut >= 0 ? first->AsNode() : nullptr;
    return cut < 0 ? first : node != nullptr ? node->find(path.mid(cut + 1)) : nullptr;
}

ValueBase *Node::GetValue(QString path) const
{
    TreeItem *const item = find(path);
    const ValueItem *const holder = item != nullptr ? item->valueItem() : nullptr;
    return holder != nullptr ? holder->GetValue() : nullptr;
}

Node *Node::GetNode(QString path) const
{
    QStringView rest = path;
    if (rest.endsWith(QChar('/')))
        rest.chop(1);
    if (rest.isEmpty())
        return path.isEmpty() ? const_cast<Node *>(this) : nullptr;
    TreeItem *const item = find(rest);
    return item != nullptr ? item->AsNode() : nullptr;
}

Node *Node::GetSubTree(QString path) const { return GetNode(std::move(path)); }

TreeItem *Node::GetChild(QString name) const { return child(name); }

const std::vector<TreeItem *> &Node::GetTreeItems() const
{
    if (!m_viewValid) {
        m_view.clear();
        m_view.reserve(m_count);
        for (TreeItem *child = m_first; child != nullptr; child = child->m_next)
            m_view.push_back(child);
        m_viewValid = true;
    }
    return m_view;
}

TreeItem *Node::GetChild(quint64 index) const
{
    return index < m_count ? GetTreeItems()[std::size_t(index)] : nullptr;
}

int Node::GetIndex(const TreeItem *item) const
{
    if (item == nullptr || item->m_parent != this)
        return -1;
    const auto &items = GetTreeItems();
    const auto found = std::lower_bound(
        items.begin(), items.end(), item->m_position,
        [](const TreeItem *child, std::uint32_t position) { return child->m_position < position; });
    return int(found - items.begin());
}

Node *Node::GetChildNode(const QString &name) const
{
    TreeItem *const child = GetChild(name);
    return child != nullptr ? child->AsNode() : nullptr;
}

ValueItem *Node::GetChildValueItem(const QString &name) const
{
    TreeItem *const child = GetChild(name);
    return child != nullptr ? child->AsValueItem() : nullptr;
}

ValueBase *Node::GetChildValue(const QString &name) const
{
    const ValueItem *const item = GetChildValueItem(name);
    return item != nullptr ? item->GetValue() : nullptr;
}

Node *Node::GetChildNode(const ValueDescriptor *descriptor) const
{
    for (TreeItem *child = m_first; child != nullptr; child = child->m_next)
        if (Node *const node = child->AsNode(); node != nullptr && node->m_descriptor == descriptor)
            return node;
    return nullptr;
}

ValueItem *Node::GetChildValueItem(const ValueDescriptor *descriptor) const
{
    for (TreeItem *child = m_first; child != nullptr; child = child->m_next)
        if (ValueItem *const item = child->AsValueItem();
            item != nullptr && item->GetValueDescriptor() == descriptor)
            return item;
    return nullptr;
}

ValueBase *Node::GetChildValue(const ValueDescriptor *descriptor) const
{
    const ValueItem *const item = GetChildValueItem(descriptor);
    return item != nullptr ? item->GetValue() : nullptr;
}

QString Node::GetUniqueChildName(const QString &base) const
{
    int length = base.size();
    while (length > 0 && base[length - 1] >= QChar('0') && base[length - 1] <= QChar('9'))
        --length;
    const QStringView stem = QStringView(base).left(length);
    if (stem != m_uniqueBase) {
        m_uniqueBase = stem.toString();
        m_uniqueNext = 0;
    }
    for (;; ++m_uniqueNext) {
        const QString name =
            m_uniqueBase + QStringLiteral("%1").arg(m_uniqueNext, 5, 10, QLatin1Char('0'));
        if (GetChild(name) == nullptr)
            return name;
    }
}

Node *Node::GetAncestor(int levels) const
{
    Node *node = levels < 0 ? nullptr : const_cast<Node *>(this);
    for (; node != nullptr && levels > 0; --levels)
        node = node->m_parent;
    return node;
}

Node *Node::GetAncestor(const ValueDescriptor *descriptor) const
{
    Node *node = m_parent;
    while (node != nullptr && node->m_descriptor != descriptor)
        node = node->m_parent;
    return node;
}

} // namespace values
